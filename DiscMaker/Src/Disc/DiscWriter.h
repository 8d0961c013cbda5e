#pragma once

#include <functional>

#include "Disc/DiscProgress.h"
#include "File/DiscFiles.h"
#include "File/SumsFile.h"
#include "Model/Problem.h"

// Writes files below one folder and keeps their sums. The first failure, or the user's wish to
// stop, becomes a problem, and nothing is written from then on.
class CDiscWriter
{
public:
    // `nTotal` is how many bytes will be written, for who hears of the progress (null: nobody).
    CDiscWriter(const CDiscPath &folder, ULONGLONG nTotal, CDiscProgress *pProgress,
                CProblems &problems);

    // Paths relative to the folder.
    bool MakeFolder(const CDiscPath &relative);
    bool Copy(const CDiscPath &from, const CDiscPath &relative);
    bool Write(const CCUString &sBytes, const CDiscPath &relative);
    // The list of all that was written so far. The folders get its time, by which even an empty one
    // is known for ours as long as nobody changes it.
    bool WriteSumsFile();

    // Deletes what was written, and the folder.
    void TakeBack();

private:
    bool CopyBytes(HANDLE hFrom, HANDLE hTo, const CDiscPath &from, const CDiscPath &relative);
    bool WriteBytes(HANDLE hTo, const void *p, DWORD nSize, const CDiscPath &relative);
    bool Report(const CDiscPath &relative);
    bool Fail(const CCUString &sWhere, const CCUString &sWhat);
    bool FailWriting(const CDiscPath &relative);

    const CDiscPath m_folder;
    const ULONGLONG m_nTotal;
    ULONGLONG m_nDone;
    CDiscProgress *const m_pProgress;
    CProblems &m_problems;
    CSums m_sums;
    std::vector<CDiscPath> m_files;
    std::vector<CDiscPath> m_folders;
    std::vector<BYTE> m_buffer;
};

// The path of a file on the disc as sums call it.
CCUString SumsPath(const CDiscPath &relative);
// The sum of a whole file; empty when it cannot be read. Asks before each piece whether to go on,
// and is empty, too, where not.
CCUString SumOfFile(const CDiscPath &path, const std::function<bool()> &goOn);
