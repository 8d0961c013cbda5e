#pragma once

#include "CU/String.h"

// Where a command says what it has to say: the standard output that the process was given, else the
// console of the program that started it, where the system can find that (Windows XP and later).
// Lines in a console have its own code page, elsewhere the system's.
class COutput
{
public:
    COutput();
    void WriteLine(const CCUString &sLine) const;

private:
    void *m_hOutput;  // null: nobody listens
    bool m_bConsole;
};
