#include "File/FileSet.h"

#include "Base/Handle.h"
#include "File/FileProblem.h"
#include "Model/Blob.h"

namespace {

// A name of its own beside a file, which is made. Empty: GetLastError says why not.
CCUString NewNameBeside(const CCUString &sPath)
{
    const CCUString sFolder = FolderOf(sPath);
    char name[MAX_PATH] = "";
    const char *const pszFolder = sFolder.IsEmpty() ? "." : sFolder.GetString();
    return GetTempFileNameA(pszFolder, "skn", 0, name) ? name : "";
}

DWORD WriteBytes(const CCUString &sPath, const std::vector<BYTE> &bytes)
{
    const CCUFileHandle file(CreateFileA(sPath, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                         FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file)
        return GetLastError();
    const DWORD nSize = static_cast<DWORD>(bytes.size());
    DWORD nWritten = 0;
    if (!WriteFile(file, bytes.data(), nSize, &nWritten, nullptr))
        return GetLastError();
    if (nWritten != nSize)
        return ERROR_DISK_FULL;
    return FlushFileBuffers(file) ? NO_ERROR : GetLastError();
}

}  // namespace

CFileSet::~CFileSet()
{
    for (auto file = m_files.rbegin(); file != m_files.rend(); ++file) {
        if (file->m_bPlaced)
            DeleteFileA(file->m_sPath);
        if (!file->m_sOld.IsEmpty())
            MoveFileA(file->m_sOld, file->m_sPath);
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
    DWORD nError = NO_ERROR;
    // Wine 8 replaces a file that is read-only without a word.
    if (nAttributes != INVALID_FILE_ATTRIBUTES &&
        (nAttributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)))
        nError = ERROR_ACCESS_DENIED;
    if (nError == NO_ERROR) {
        file.m_sNew = NewNameBeside(file.m_sPath);
        nError = file.m_sNew.IsEmpty() ? GetLastError() : WriteBytes(file.m_sNew, *file.m_bytes);
    }
    if (nError == NO_ERROR && !SameBytes(ReadFileBytes(file.m_sNew, &nError), file.m_bytes) &&
        nError == NO_ERROR)
        nError = ERROR_CRC;
    if (nError != NO_ERROR)
        AddFileProblem(problems, file.m_sPath, "The file cannot be written", nError);
    return nError == NO_ERROR;
}

bool CFileSet::Place(CFile &file, bool bAlone, CProblems &problems)
{
    const bool bReplaces = FileExists(file.m_sPath);
    // In one step where nothing else may have to be taken back; Windows 98 cannot.
    const DWORD nFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    if (bReplaces && bAlone && MoveFileExA(file.m_sNew, file.m_sPath, nFlags)) {
        file.m_sNew.Empty();
        return true;
    }
    bool bMoved = !bReplaces;
    if (bReplaces) {
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
        if (!file.m_sOld.IsEmpty())
            DeleteFileA(file.m_sOld);
    }
    m_files.clear();
    return true;
}
