#pragma once

#include "File/SkinFile.h"

// Runs a launcher with a skin from a temporary folder, in front of the disc's contents. The folder
// goes when the launcher has ended and the object dies, or the next one is run; what is left then,
// or by a crash, goes with the next run of this program.
class CPreview
{
public:
    CPreview() {}
    ~CPreview() { Clean(); }
    CPreview(const CPreview &) = delete;
    CPreview &operator=(const CPreview &) = delete;

    // Of any launcher. Its lines start programs of the folder `sContents` (empty: there is none).
    // Why it failed is among the problems; a launcher whose window would have no size is not run.
    bool Run(const CSkinFile &launcher, const CSkin &skin, const CCUString &sContents,
             CProblems &problems);

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
