#include "File/FileSet.h"

#include <string.h>

#include "Base/Handle.h"
#include "CU/Dump.h"
#include "File/FileProblem.h"
#include "Model/Blob.h"

namespace {

// Why a call failed; some drivers do not say it.
DWORD FailureCode()
{
    const DWORD nError = GetLastError();
    return nError == NO_ERROR ? ERROR_GEN_FAILURE : nError;
}

// The folder of a file, as a call takes it.
CCUString FolderBeside(const CCUString &sPath)
{
    const CCUString sFolder = FolderOf(sPath);
    return sFolder.IsEmpty() ? CCUString(".") : sFolder;
}

// A name of its own beside a file, which is made. Empty: GetLastError says why not.
CCUString NewNameBeside(const CCUString &sPath)
{
    char name[MAX_PATH] = "";
    return GetTempFileNameA(FolderBeside(sPath), "skn", 0, name) ? name : "";
}

// A new file beside another one, to be written and read; sNew is its name. GetTempFileName would
// make the file and close it, to be opened a second time.
HANDLE CreateBeside(const CCUString &sPath, CCUString &sNew)
{
    const DWORD nFirst = GetTickCount();
    for (DWORD i = 0; i <= 0xFFFF; ++i) {
        CCUString sName;
        sName.Format("skn%04lX.tmp", (nFirst + i) & 0xFFFF);
        sNew = JoinPath(FolderBeside(sPath), sName);
        const HANDLE hFile = CreateFileA(sNew, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                         FILE_ATTRIBUTE_NORMAL, nullptr);
        if (hFile != INVALID_HANDLE_VALUE || GetLastError() != ERROR_FILE_EXISTS)
            return hFile;
    }
    return INVALID_HANDLE_VALUE;
}

DWORD WriteBytes(HANDLE file, const std::vector<BYTE> &bytes)
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
DWORD CompareBytes(HANDLE file, const std::vector<BYTE> &bytes)
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

CFileSet::~CFileSet()
{
    for (auto file = m_files.rbegin(); file != m_files.rend(); ++file) {
        if (file->m_bPlaced)
            DeleteFileA(file->m_sPath);
        if (!file->m_sOld.IsEmpty() && !MoveFileA(file->m_sOld, file->m_sPath))
            CUDump("DiscMaker: %s stays as %s: error %lu\n", file->m_sPath.GetString(),
                   file->m_sOld.GetString(), GetLastError());
        if (!file->m_sNew.IsEmpty())
            DeleteFileA(file->m_sNew);
    }
}

void CFileSet::Add(const CCUString &sPath, const CBlob &bytes)
{
    CFile file;
    file.m_sPath = sPath;
    file.m_bytes = bytes;
    m_files.push_back(file);
}

bool CFileSet::Write(CFile &file, CProblems &problems)
{
    const DWORD nAttributes = GetFileAttributesA(file.m_sPath);
    file.m_bReplaces = nAttributes != INVALID_FILE_ATTRIBUTES;
    DWORD nError = NO_ERROR;
    // Wine 8 replaces a file that is read-only without a word.
    if (file.m_bReplaces && (nAttributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)))
        nError = ERROR_ACCESS_DENIED;
    if (nError == NO_ERROR) {
        CCUString sNew;
        const CCUFileHandle hNew(CreateBeside(file.m_sPath, sNew));
        nError = hNew ? NO_ERROR : FailureCode();
        if (hNew)
            file.m_sNew = sNew;
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
    const DWORD nFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    if (bReplaces && bAlone && MoveFileExA(file.m_sNew, file.m_sPath, nFlags)) {
        file.m_sNew.Empty();
        return true;
    }
    const bool bRefused = bReplaces && bAlone && GetLastError() != ERROR_CALL_NOT_IMPLEMENTED;
    bool bMoved = !bReplaces;
    if (bReplaces && !bRefused) {
        const CCUString sOld = NewNameBeside(file.m_sPath);
        bMoved = !sOld.IsEmpty() && DeleteFileA(sOld) && MoveFileA(file.m_sPath, sOld);
        if (bMoved)
            file.m_sOld = sOld;
    }
    file.m_bPlaced = bMoved && MoveFileA(file.m_sNew, file.m_sPath);
    if (!file.m_bPlaced) {
        AddFileProblem(problems, file.m_sPath, "The file cannot be replaced", GetLastError());
        return false;
    }
    file.m_sNew.Empty();
    return true;
}

bool CFileSet::Commit(CProblems &problems)
{
    for (CFile &file : m_files) {
        if (!Write(file, problems))
            return false;
    }
    for (CFile &file : m_files) {
        if (!Place(file, m_files.size() == 1, problems))
            return false;
    }
    for (const CFile &file : m_files) {
        if (!file.m_sOld.IsEmpty() && !DeleteFileA(file.m_sOld))
            AddProblem(problems, ProblemNote, file.m_sOld,
                       "\"" + NameOf(file.m_sPath) + "\" as it was before cannot be deleted.",
                       "it is not needed any more");
    }
    m_files.clear();
    return true;
}
