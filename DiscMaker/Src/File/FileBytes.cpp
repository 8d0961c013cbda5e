#include "File/FileBytes.h"

#include "File/DiscFiles.h"
#include "Model/Blob.h"

namespace {

const DWORD LARGEST_FILE = 0x10000000;

DWORD AttributesOf(const CCUString &sPath)
{
    return DiscAttributes(CDiscPath(sPath));
}

int NameStart(const CCUString &sPath)
{
    const char *const pszPath = sPath;
    const char *pszName = pszPath;
    for (const char *p = pszPath; *p; p = CharNextA(p)) {
        if (*p == '\\' || *p == '/' || *p == ':')
            pszName = p + 1;
    }
    return static_cast<int>(pszName - pszPath);
}

}  // namespace

CBlob ReadFileBytes(const CCUString &sPath, DWORD *pError)
{
    DWORD nUnused = 0;
    DWORD &nError = pError ? *pError : nUnused;
    const CCUFileHandle file(DiscOpen(CDiscPath(sPath)));
    DWORD nHigh = 0;
    const DWORD nSize = file ? GetFileSize(file, &nHigh) : 0;
    nError = file ? NO_ERROR : GetLastError();
    if (file && (nHigh != 0 || nSize > LARGEST_FILE))
        nError = ERROR_FILE_TOO_LARGE;
    if (nError != NO_ERROR)
        return nullptr;
    std::vector<BYTE> bytes(nSize);
    DWORD nRead = 0;
    if (!ReadFile(file, bytes.data(), nSize, &nRead, nullptr))
        nError = GetLastError();
    else if (nRead != nSize)
        nError = ERROR_HANDLE_EOF;
    return nError == NO_ERROR ? MakeBlob(std::move(bytes)) : nullptr;
}

bool FileExists(const CCUString &sPath)
{
    const DWORD nAttributes = AttributesOf(sPath);
    return nAttributes != INVALID_FILE_ATTRIBUTES && !(nAttributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool FolderExists(const CCUString &sPath)
{
    const DWORD nAttributes = AttributesOf(sPath);
    return nAttributes != INVALID_FILE_ATTRIBUTES && (nAttributes & FILE_ATTRIBUTE_DIRECTORY);
}

CCUString FolderOf(const CCUString &sPath)
{
    return sPath.Left(NameStart(sPath));
}

CCUString NameOf(const CCUString &sPath)
{
    return sPath.Mid(NameStart(sPath));
}

CCUString JoinPath(const CCUString &sFolder, const CCUString &sName)
{
    const bool bJoined = sFolder.IsEmpty() || NameStart(sFolder) == sFolder.GetLength();
    return bJoined ? sFolder + sName : sFolder + "\\" + sName;
}
