#include "File/FileSet.h"

#include <string.h>

#include "File/DiscFiles.h"
#include "File/FileProblem.h"
#include "Model/Blob.h"

namespace {

// Why a call failed; some drivers do not say it.
DWORD FailureCode()
{
    const DWORD nError = GetLastError();
    return nError == NO_ERROR ? ERROR_GEN_FAILURE : nError;
}

// Goes through names of its own beside a file until one is good, or nothing more can be done.
template <typename Try>
void FindNameBeside(const CDiscPath &path, Try isGood)
{
    const DWORD nFirst = GetTickCount();
    for (DWORD i = 0; i <= 0xFFFF; ++i) {
        CCUString sName;
        sName.Format("skn%04lX.tmp", (nFirst + i) & 0xFFFF);
        SetLastError(NO_ERROR);  // of a driver that does not say why it fails
        if (isGood(path.Parent().Join(CDiscPath().With(sName))))
            return;
    }
}

// A new file beside another one, to be written and read; created is its path.
HANDLE CreateBeside(const CDiscPath &path, CDiscPath &created)
{
    HANDLE hFile = INVALID_HANDLE_VALUE;
    FindNameBeside(path, [&](const CDiscPath &name) {
        created = name;
        hFile = DiscCreateNew(name);
        return hFile != INVALID_HANDLE_VALUE || GetLastError() != ERROR_FILE_EXISTS;
    });
    return hFile;
}

// Gives a file another name beside its own; moved is its path then.
bool MoveAside(const CDiscPath &path, CDiscPath &moved)
{
    bool bMoved = false;
    FindNameBeside(path, [&](const CDiscPath &name) {
        moved = name;
        bMoved = DiscMove(path, name);
        return bMoved || GetLastError() != ERROR_ALREADY_EXISTS;
    });
    return bMoved;
}

DWORD WriteBytes(HANDLE file, const CBytes &bytes)
{
    const DWORD nSize = static_cast<DWORD>(bytes.size());
    DWORD nWritten = 0;
    if (!WriteFile(file, bytes.data(), nSize, &nWritten, nullptr))
        return FailureCode();
    if (nWritten != nSize)
        return ERROR_DISK_FULL;
    return FlushFileBuffers(file) ? NO_ERROR : FailureCode();
}

// Whether the file has these bytes and no more.
DWORD CompareBytes(HANDLE file, const CBytes &bytes)
{
    std::vector<BYTE> piece(0x10000);
    size_t nDone = 0;
    DWORD nRead = 0;
    if (SetFilePointer(file, 0, nullptr, FILE_BEGIN) != 0)
        return FailureCode();
    do {
        if (!ReadFile(file, piece.data(), static_cast<DWORD>(piece.size()), &nRead, nullptr))
            return FailureCode();
        if (nRead > bytes.size() - nDone || memcmp(piece.data(), bytes.data() + nDone, nRead) != 0)
            return ERROR_CRC;
        nDone += nRead;
    } while (nRead > 0);
    return nDone == bytes.size() ? NO_ERROR : ERROR_CRC;
}

}  // namespace

void CFileSet::Add(const CCUString &sPath, const CBlob &bytes)
{
    CFile file;
    file.m_sPath = sPath;
    file.m_path = CDiscPath(sPath);
    for (const CFile &other : m_files) {
        if (other.m_path.IsSame(file.m_path))
            return;
    }
    file.m_bytes = bytes;
    m_files.push_back(file);
}

bool CFileSet::Write(CFile &file, CProblems &problems)
{
    const DWORD nAttributes = DiscAttributes(file.m_path);
    file.m_bReplaces = nAttributes != INVALID_FILE_ATTRIBUTES;
    DWORD nError = file.m_path.IsEmpty() ? ERROR_FILENAME_EXCED_RANGE : NO_ERROR;
    // Wine 8 replaces a file that is read-only without a word.
    if (file.m_bReplaces && (nAttributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)))
        nError = ERROR_ACCESS_DENIED;
    if (nError == NO_ERROR) {
        CDiscPath created;
        const CCUFileHandle hNew(CreateBeside(file.m_path, created));
        nError = hNew ? NO_ERROR : FailureCode();
        if (hNew)
            file.m_new = created;
        if (nError == NO_ERROR)
            nError = WriteBytes(hNew, *file.m_bytes);
        if (nError == NO_ERROR)
            nError = CompareBytes(hNew, *file.m_bytes);
    }
    if (nError != NO_ERROR)
        AddFileProblem(problems, file.m_sPath, "The file cannot be written", nError);
    return nError == NO_ERROR;
}

bool CFileSet::Place(CFile &file, bool bAlone, CProblems &problems)
{
    const bool bReplaces = file.m_bReplaces;
    // In one step where nothing else may have to be taken back; Windows 98 cannot. What refuses is
    // not asked in another way: NT renames a launcher that runs, but cannot delete it then.
    if (bReplaces && bAlone && DiscReplace(file.m_new, file.m_path)) {
        file.m_new = CDiscPath();
        return true;
    }
    const bool bRefused = bReplaces && bAlone && GetLastError() != ERROR_CALL_NOT_IMPLEMENTED;
    bool bMoved = !bReplaces;
    if (bReplaces && !bRefused) {
        CDiscPath moved;
        bMoved = MoveAside(file.m_path, moved);
        if (bMoved)
            file.m_old = moved;
    }
    file.m_bPlaced = bMoved && DiscMove(file.m_new, file.m_path);
    if (!file.m_bPlaced) {
        AddFileProblem(problems, file.m_sPath, "The file cannot be replaced", GetLastError());
        return false;
    }
    file.m_new = CDiscPath();
    return true;
}

bool CFileSet::WriteAndPlaceAll(CProblems &problems)
{
    for (CFile &file : m_files) {
        if (!Write(file, problems))
            return false;
    }
    for (CFile &file : m_files) {
        if (!Place(file, m_files.size() == 1, problems))
            return false;
    }
    return true;
}

void CFileSet::TakeBack(CProblems &problems)
{
    for (auto file = m_files.rbegin(); file != m_files.rend(); ++file) {
        if (file->m_bPlaced)
            DiscDeleteFile(file->m_path);
        if (!file->m_old.IsEmpty() && !DiscMove(file->m_old, file->m_path))
            AddProblem(problems, ProblemError, file->m_old.Text(),
                       "This is \"" + NameOf(file->m_sPath) +
                           "\" as it was before, which cannot get its name back.",
                       "give it its name again");
        if (!file->m_new.IsEmpty())
            DiscDeleteFile(file->m_new);
    }
}

bool CFileSet::Commit(CProblems &problems)
{
    const bool bDone = WriteAndPlaceAll(problems);
    if (!bDone)
        TakeBack(problems);
    for (const CFile &file : m_files) {
        if (bDone && !file.m_old.IsEmpty() && !DiscDeleteFile(file.m_old))
            AddProblem(problems, ProblemNote, file.m_old.Text(),
                       "\"" + NameOf(file.m_sPath) + "\" as it was before cannot be deleted.",
                       "it is not needed any more");
    }
    m_files.clear();
    return bDone;
}
