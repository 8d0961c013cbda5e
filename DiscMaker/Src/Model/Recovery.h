#pragma once

#include <vector>

#include "Model/Problem.h"
#include "Model/Skin.h"

// What is kept of an unsaved skin in the user's temporary folder, so that a crash loses nothing.
// The file stays open, for nobody else, as long as the program runs: one that can be opened was
// left behind.
class CRecovery
{
public:
    CRecovery() {}
    ~CRecovery() { Forget(); }
    CRecovery(const CRecovery &) = delete;
    CRecovery &operator=(const CRecovery &) = delete;

    // Keeps the skin, the path that it has and what its files were there (sums as a text; empty:
    // not known), in the place of what was kept before; which stays when that cannot be written.
    // False then, and why is among the problems.
    bool Keep(const CSkin &skin, const CCUString &sPath, const CCUString &sFiles,
              CProblems &problems);
    // There is nothing to be kept any more.
    void Forget();
    // What is kept stays for the next start.
    void Leave();

    // Takes what a program that has crashed has left behind, the first that can be read; false:
    // there is nothing. It stays on disk, as this object's, until Keep or Forget. What was cut off
    // by the crash itself is deleted; what cannot be read for any other reason stays.
    bool Find(CSkin &skin, CCUString &sPath, CCUString &sFiles);

private:
    HANDLE m_hFile = INVALID_HANDLE_VALUE;
    CCUString m_sFile;
    unsigned m_nNext = 0;
};
