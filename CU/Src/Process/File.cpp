#include "CU/File.h"

#include "CU/Assert.h"
#include "CU/Dump.h"
#include "Process/Directories.h"

#define CU_SOURCE "File"

namespace {

const unsigned int ACCESS_MASK = 0x3;
const unsigned int SHARE_MASK = 0x70;
const int LONGEST_NAME = 500;

bool MapAccess(unsigned int nOpenFlags, DWORD &dwAccess)
{
    switch (nOpenFlags & ACCESS_MASK) {
    case CCUFile::modeRead: dwAccess = GENERIC_READ; return true;
    case CCUFile::modeWrite: dwAccess = GENERIC_WRITE; return true;
    case CCUFile::modeReadWrite: dwAccess = GENERIC_READ | GENERIC_WRITE; return true;
    default: return false;
    }
}

bool MapSharing(unsigned int nOpenFlags, DWORD &dwShare)
{
    switch (nOpenFlags & SHARE_MASK) {
    case 0:
    case CCUFile::shareExclusive: dwShare = 0; return true;
    case CCUFile::shareDenyWrite: dwShare = FILE_SHARE_READ; return true;
    case CCUFile::shareDenyRead: dwShare = FILE_SHARE_WRITE; return true;
    case CCUFile::shareDenyNone: dwShare = FILE_SHARE_READ | FILE_SHARE_WRITE; return true;
    default: return false;
    }
}

DWORD MapCreation(unsigned int nOpenFlags)
{
    if (!(nOpenFlags & CCUFile::modeCreate))
        return OPEN_EXISTING;
    return nOpenFlags & CCUFile::modeNoTruncate ? OPEN_ALWAYS : CREATE_ALWAYS;
}

}  // namespace

CCUFile::CCUFile() : m_hFile(nullptr) {}

CCUFile::~CCUFile()
{
    if (m_hFile)
        Close();
}

int CCUFile::Open(const char *name, unsigned int nOpenFlags)
{
    CU_ASSERT((nOpenFlags & typeText) == 0);
    // Copied first: it may be the name that Close empties.
    const CCUString sFileName(name);
    Close();
    m_sFileName = sFileName;
    DWORD dwAccess = 0;
    DWORD dwShare = 0;
    if (!MapAccess(nOpenFlags, dwAccess) || !MapSharing(nOpenFlags, dwShare)) {
        CU_ASSERT_TEXT(false, "0");
        return 0;
    }
    SECURITY_ATTRIBUTES security = {sizeof security, nullptr, (nOpenFlags & modeNoInherit) == 0};
    const HANDLE hFile = CreateFileA(m_sFileName, dwAccess, dwShare, &security,
                                     MapCreation(nOpenFlags), FILE_ATTRIBUTE_NORMAL, nullptr);
    if (hFile == INVALID_HANDLE_VALUE)
        return 0;
    m_hFile = hFile;
    return 1;
}

bool CCUFile::isOpen() const
{
    return m_hFile != nullptr;
}

CCUString CCUFile::GetFileName() const
{
    return m_sFileName;
}

unsigned int CCUFile::Read(void *lpBuf, unsigned int nCount)
{
    CU_ASSERT(m_hFile != 0);
    if (nCount == 0)
        return 0;
    CU_ASSERT(lpBuf != 0);
    DWORD nRead = 0;
    return ReadFile(m_hFile, lpBuf, nCount, &nRead, nullptr) ? nRead : 0;
}

unsigned int CCUFile::Write(const void *lpBuf, unsigned int nCount)
{
    CU_ASSERT(m_hFile != 0);
    if (nCount == 0)
        return 0;
    CU_ASSERT(lpBuf != 0);
    DWORD nWritten = 0;
    return WriteFile(m_hFile, lpBuf, nCount, &nWritten, nullptr) ? nWritten : 0;
}

long CCUFile::Seek(long lOff, unsigned int nFrom)
{
    CU_ASSERT(m_hFile != 0);
    CU_ASSERT(nFrom == begin || nFrom == end || nFrom == current);
    const DWORD nPosition = SetFilePointer(m_hFile, lOff, nullptr, nFrom);
    CU_ASSERT_TEXT(nPosition != INVALID_SET_FILE_POINTER, "0");
    return static_cast<long>(nPosition);
}

unsigned long CCUFile::GetPosition() const
{
    return static_cast<unsigned long>(const_cast<CCUFile *>(this)->Seek(0, current));
}

unsigned long CCUFile::GetLength() const
{
    CCUFile *pFile = const_cast<CCUFile *>(this);
    const long lCurrent = pFile->Seek(0, current);
    const long lLength = pFile->Seek(0, end);
    CU_ASSERT_TEXT(lCurrent == pFile->Seek(lCurrent, begin),
                   "dwCur == (DWORD)pFile->Seek(dwCur, begin)");
    return static_cast<unsigned long>(lLength);
}

void CCUFile::Flush()
{
    if (m_hFile)
        CU_ASSERT_TEXT(FlushFileBuffers(m_hFile), "0");
}

void CCUFile::Close()
{
    if (!m_hFile)
        return;
    CU_ASSERT_TEXT(CloseHandle(m_hFile), "0");
    m_hFile = nullptr;
    m_sFileName.Empty();
}

CCUString CUTranslateFileName(const char *name)
{
    char szName[LONGEST_NAME];
    int nLength = 0;
    for (; name && nLength < LONGEST_NAME && name[nLength]; ++nLength)
        szName[nLength] = name[nLength] == '/' ? '\\' : name[nLength];
    return CCUString(szName, nLength);
}

int CCUFileCreateDirs(CCUString path, int pathEndsInFileName)
{
    if (path.IsEmpty())
        return 0;
    path = CUTranslateFileName(path);
    if (!pathEndsInFileName && path.Right(1) != "\\")
        path += '\\';
    const CCUString sFailed = CUMakeDirectories(path);
    if (!sFailed.IsEmpty())
        CUDump(CU_DIRECTORY_FAILED, sFailed.GetString());
    return sFailed.IsEmpty();
}
