#pragma once

#include "File/SkinFile.h"

// Runs a launcher with a skin from a temporary folder, which goes when the launcher has ended and
// the object dies, or the next one is run.
class CPreview
{
public:
    CPreview() {}
    ~CPreview() { Clean(); }
    CPreview(const CPreview &) = delete;
    CPreview &operator=(const CPreview &) = delete;

    // Of any launcher. Why it failed is among the problems.
    bool Run(const CSkinFile &launcher, const CSkin &skin, CProblems &problems);

private:
    void Clean();

    struct CRun
    {
        HANDLE m_hProcess;
        CCUString m_sFolder;
    };
    std::vector<CRun> m_runs;
    unsigned m_nNext = 0;
};
