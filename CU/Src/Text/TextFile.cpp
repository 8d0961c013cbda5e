#include "CU/TextFile.h"

#include <string.h>

#include "Base/Handle.h"
#include "Base/SystemLibrary.h"
#include "CU/File.h"
#include "Text/Utf.h"

namespace {

// What this makes of so much fits into a string.
const unsigned long MOST_BYTES = 256 << 20;
const int MOST_CHARACTERS = 2 * MOST_BYTES;
const char MARK8[] = "\xEF\xBB\xBF";
const char MARK16[] = "\xFF\xFE";

// Of Windows 2000; keeps the file's rights, attributes and times.
typedef BOOL WINAPI ReplaceFileCall(const char *, const char *, const char *, DWORD, void *,
                                    void *);
const DWORD IGNORE_MERGE_ERRORS = 2;

bool HasMark(const CCUString &sBytes, const char *pszMark, int nLength)
{
    return sBytes.GetLength() >= nLength &&
           memcmp(sBytes, pszMark, static_cast<size_t>(nLength)) == 0;
}

bool ReadBytes(const char *pszPath, CCUString &sBytes)
{
    CCUFile file;
    if (!file.Open(pszPath, CCUFile::modeRead | CCUFile::shareDenyNone))
        return false;
    const unsigned long nLength = file.GetLength();
    if (nLength > MOST_BYTES) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return false;
    }
    const int nRoom = static_cast<int>(nLength);
    SetLastError(ERROR_READ_FAULT);  // of a read that is short
    const bool bRead = file.Read(sBytes.GetBuffer(nRoom), nLength) == nLength;
    sBytes.ReleaseBuffer(nRoom);
    return bRead;
}

bool WriteBytes(const char *pszPath, const CCUString &sBytes)
{
    const CCUFileHandle file(CreateFileA(pszPath, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                         FILE_ATTRIBUTE_NORMAL, nullptr));
    const auto nLength = static_cast<DWORD>(sBytes.GetLength());
    DWORD nWritten = 0;
    if (!file || !WriteFile(file, sBytes, nLength, &nWritten, nullptr))
        return false;
    SetLastError(ERROR_DISK_FULL);  // of a write that is short
    return nWritten == nLength && FlushFileBuffers(file);
}

// Wine 8 replaces a file that is read-only without a word.
bool IsProtected(const char *pszPath)
{
    const DWORD nAttributes = GetFileAttributesA(pszPath);
    if (nAttributes == INVALID_FILE_ATTRIBUTES ||
        !(nAttributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)))
        return false;
    SetLastError(ERROR_ACCESS_DENIED);
    return true;
}

// A new, empty file in the folder of another one; "" where there can be none.
CCUString MakeFileBeside(const char *pszPath)
{
    char szFolder[MAX_PATH] = "", szNew[MAX_PATH] = "";
    char *pszName = nullptr;
    // The system knows which of the characters divide a path.
    if (GetFullPathNameA(pszPath, MAX_PATH, szFolder, &pszName) >= MAX_PATH)
        SetLastError(ERROR_FILENAME_EXCED_RANGE);
    if (!pszName)
        return "";
    *pszName = '\0';
    return GetTempFileNameA(szFolder, "txt", 0, szNew) ? szNew : "";
}

// Puts a file in the place of another one, if there is one, in one step but for Windows 95 and its
// successors, which have none for that.
bool Replace(const char *pszNew, const char *pszPath)
{
    if (GetFileAttributesA(pszPath) == INVALID_FILE_ATTRIBUTES)
        return MoveFileA(pszNew, pszPath) != 0;
    const auto replaceFile = CUFindFunction<ReplaceFileCall>("kernel32.dll", "ReplaceFileA");
    if (replaceFile && replaceFile(pszPath, pszNew, nullptr, IGNORE_MERGE_ERRORS, nullptr, nullptr))
        return true;
    if (MoveFileExA(pszNew, pszPath, MOVEFILE_REPLACE_EXISTING))
        return true;
    if (GetLastError() != ERROR_CALL_NOT_IMPLEMENTED)
        return false;
    const CCUString sOld = MakeFileBeside(pszPath);
    if (sOld.IsEmpty() || !DeleteFileA(sOld) || !MoveFileA(pszPath, sOld))
        return false;
    if (MoveFileA(pszNew, pszPath)) {
        DeleteFileA(sOld);
        return true;
    }
    const DWORD nError = GetLastError();
    MoveFileA(sOld, pszPath);
    SetLastError(nError);
    return false;
}

CCUTextFile::LineEnd FindLineEnd(const CCUString &sText)
{
    int nCounts[CCUTextFile::Differ] = {}, nAll = 0;
    const char *const pEnd = sText.GetString() + sText.GetLength();
    for (const char *p = sText; p < pEnd; ++p) {
        if (*p != '\r' && *p != '\n')
            continue;
        const bool bBoth = *p == '\r' && p[1] == '\n';
        ++nCounts[bBoth ? CCUTextFile::CrLf : *p == '\n' ? CCUTextFile::Lf : CCUTextFile::Cr];
        ++nAll;
        p += bBoth;
    }
    int nEnd = CCUTextFile::CrLf;
    while (nEnd < CCUTextFile::Differ && nCounts[nEnd] != nAll)
        ++nEnd;
    return static_cast<CCUTextFile::LineEnd>(nEnd);
}

// The text with "\r\n" for each of its line ends, whatever they are.
CCUString WithCrLf(const CCUString &sText)
{
    const char *const pEnd = sText.GetString() + sText.GetLength();
    int nLonger = 0;
    for (const char *p = sText; p < pEnd; ++p) {
        if (*p == '\r' && p[1] == '\n')
            ++p;
        else
            nLonger += *p == '\r' || *p == '\n';
    }
    CCUString sResult;
    const int nLength = sText.GetLength() + nLonger;
    char *pTo = sResult.GetBuffer(nLength);
    for (const char *p = sText; p < pEnd; ++p) {
        if (*p != '\r' && *p != '\n') {
            *pTo++ = *p;
            continue;
        }
        p += *p == '\r' && p[1] == '\n';
        *pTo++ = '\r';
        *pTo++ = '\n';
    }
    sResult.ReleaseBuffer(nLength);
    return sResult;
}

// The text without one of the two characters of its line ends.
CCUString Without(char cDropped, const CCUString &sText)
{
    CCUString sResult;
    char *const pFirst = sResult.GetBuffer(sText.GetLength());
    char *pTo = pFirst;
    const char *const pEnd = sText.GetString() + sText.GetLength();
    for (const char *p = sText; p < pEnd; ++p) {
        if (*p != cDropped)
            *pTo++ = *p;
    }
    sResult.ReleaseBuffer(static_cast<int>(pTo - pFirst));
    return sResult;
}

}  // namespace

CCUTextFile::CCUTextFile() : m_encoding(Ansi), m_lineEnd(CrLf), m_nLost(0) {}

int CCUTextFile::Load(const char *pszPath)
{
    CCUString sBytes;
    if (!ReadBytes(pszPath, sBytes))
        return 0;
    Decode(sBytes);
    return 1;
}

void CCUTextFile::Decode(const CCUString &sBytes)
{
    CCUString sText = sBytes;
    m_nLost = 0;
    m_encoding = Ansi;
    if (HasMark(sBytes, MARK16, 2) && sBytes.GetLength() % 2 == 0) {
        m_encoding = Utf16;
        sText = CUFromUtf16(sBytes.Mid(2), m_nLost);
    } else if (CUIsUtf8(sBytes)) {
        const bool bMark = HasMark(sBytes, MARK8, 3);
        m_encoding = bMark ? Utf8Mark : Utf8;
        sText = CUFromUtf16(CUUtf8To16(bMark ? sBytes.Mid(3) : sBytes), m_nLost);
    }
    m_lineEnd = FindLineEnd(sText);
    m_sText = WithCrLf(sText);
}

CCUString CCUTextFile::Encode() const
{
    const CCUString sText = m_lineEnd == Lf   ? Without('\r', m_sText)
                            : m_lineEnd == Cr ? Without('\n', m_sText)
                                              : m_sText;
    switch (m_encoding) {
    case Utf8: return CUUtf16To8(CUToUtf16(sText));
    case Utf8Mark: return MARK8 + CUUtf16To8(CUToUtf16(sText));
    case Utf16: return MARK16 + CUToUtf16(sText);
    default: return sText;
    }
}

int CCUTextFile::Save(const char *pszPath) const
{
    if (m_sText.GetLength() > MOST_CHARACTERS) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
    if (!pszPath || !*pszPath) {
        SetLastError(ERROR_INVALID_NAME);
        return 0;
    }
    if (IsProtected(pszPath))
        return 0;
    const CCUString sNew = MakeFileBeside(pszPath);
    if (sNew.IsEmpty())
        return 0;
    if (WriteBytes(sNew, Encode()) && Replace(sNew, pszPath))
        return 1;
    const DWORD nError = GetLastError();
    DeleteFileA(sNew);
    SetLastError(nError);
    return 0;
}
