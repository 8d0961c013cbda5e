#pragma once

#include "Model/Problem.h"

// What is wrong with a name for a disc.
struct CDiscNameFault
{
    ProblemWeight m_weight;  // of an error there is no disc
    const char *m_pszWhat;
    const char *m_pszEffect;
};

// Of a file or folder among the contents, without its path. Null: nothing.
const CDiscNameFault *FindDiscNameFault(const WCHAR *pszName);
