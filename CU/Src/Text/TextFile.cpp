#include "CU/TextFile.h"

#include <string.h>

#include "Base/Handle.h"
#include "Base/KeepLastError.h"
#include "Base/SystemLibrary.h"
#include "Text/Utf.h"

namespace {

// What this makes of so much fits into a string.
const DWORD MOST_BYTES = 128 << 20;
const int MOST_CHARACTERS = 2 * MOST_BYTES;
const char MARK8[] = "\xEF\xBB\xBF";
const char MARK16[] = "\xFF\xFE";
const char MARK16_BIG[] = "\xFE\xFF";

// Of Windows 2000; keeps the file's rights, attributes and times.
typedef BOOL WINAPI ReplaceFileCall(const char *, const char *, const char *, DWORD, void *,
                                    void *);
const DWORD IGNORE_MERGE_ERRORS = 2;

bool HasMark(const CCUString &sBytes, const char *pszMark, int nLength)
{
    return sBytes.GetLength() >= nLength &&
           memcmp(sBytes, pszMark, static_cast<size_t>(nLength)) == 0;
}

bool IsUtf16(const CCUString &sBytes, const char *pszMark)
{
    return HasMark(sBytes, pszMark, 2) && sBytes.GetLength() % 2 == 0;
}

bool ReadBytes(const char *pszPath, CCUString &sBytes)
{
    const CCUFileHandle file(CreateFileA(pszPath, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                         nullptr, OPEN_EXISTING, 0, nullptr));
    if (!file)
        return false;
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);  // of a file that is too long
    DWORD nHigh = 0, nRead = 0;
    const DWORD nLength = GetFileSize(file, &nHigh);
    if (nHigh || nLength > MOST_BYTES)
        return false;
    SetLastError(ERROR_READ_FAULT);  // of one that has become shorter
    const bool bRead =
        ReadFile(file, sBytes.GetBuffer(static_cast<int>(nLength)), nLength, &nRead, nullptr) &&
        nRead == nLength;
    sBytes.ReleaseBuffer(static_cast<int>(nLength));
    return bRead;
}

// Into a file that is there already.
bool WriteBytes(const char *pszPath, const CCUString &sBytes)
{
    CCUFileHandle file(CreateFileA(pszPath, GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!file)
        return false;
    const auto nLength = static_cast<DWORD>(sBytes.GetLength());
    DWORD nWritten = 0;
    SetLastError(ERROR_DISK_FULL);  // of a write that is short
    // Of a disk elsewhere the last two steps may be the first to tell that it is full.
    return WriteFile(file, sBytes, nLength, &nWritten, nullptr) && nWritten == nLength &&
           FlushFileBuffers(file) && CloseHandle(file.Release());
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
    // The system knows all ways to write a path: "C:a.txt", "b/a.txt", in every code page.
    char szFolder[MAX_PATH] = "", szNew[MAX_PATH] = "", *pszName = nullptr;
    const DWORD nLength = GetFullPathNameA(pszPath, MAX_PATH, szFolder, &pszName);
    if (nLength >= MAX_PATH || !pszName) {
        SetLastError(nLength >= MAX_PATH ? ERROR_FILENAME_EXCED_RANGE : ERROR_INVALID_NAME);
        return "";
    }
    *pszName = '\0';
    return GetTempFileNameA(szFolder, "txt", 0, szNew) ? szNew : "";
}

bool Exists(const char *pszPath)
{
    return GetFileAttributesA(pszPath) != INVALID_FILE_ATTRIBUTES;
}

// Puts a file in the place of another one, which may be pszOld afterwards. It is one step but for
// Windows 95 and its successors, which have none for that.
bool PutInPlace(const char *pszNew, const char *pszPath, const char *pszOld)
{
    const auto replaceFile = CUFindFunction<ReplaceFileCall>("kernel32.dll", "ReplaceFileA");
    if (replaceFile && replaceFile(pszPath, pszNew, pszOld, IGNORE_MERGE_ERRORS, nullptr, nullptr))
        return true;
    if (MoveFileExA(pszNew, pszPath, MOVEFILE_REPLACE_EXISTING))
        return true;
    return GetLastError() == ERROR_CALL_NOT_IMPLEMENTED && DeleteFileA(pszOld) &&
           MoveFileA(pszPath, pszOld) && MoveFileA(pszNew, pszPath);
}

bool Replace(const char *pszNew, const char *pszPath)
{
    if (!Exists(pszPath))
        return MoveFileA(pszNew, pszPath) != 0;
    const CCUString sOld = MakeFileBeside(pszPath);
    if (sOld.IsEmpty())
        return false;
    SetFileAttributesA(pszNew, GetFileAttributesA(pszPath));
    const bool bDone = PutInPlace(pszNew, pszPath, sOld);
    const CCUKeepLastError keepLastError;
    // What breaks off between its steps, as ReplaceFile may, leaves the file with the other name.
    if (bDone || Exists(pszPath))
        DeleteFileA(sOld);
    else
        MoveFileA(sOld, pszPath);
    return bDone;
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
    if (IsUtf16(sBytes, MARK16)) {
        m_encoding = Utf16;
        sText = CUFromUtf16(sBytes.Mid(2), m_nLost);
    } else if (IsUtf16(sBytes, MARK16_BIG)) {
        m_encoding = Utf16Big;
        sText = CUFromUtf16(CUSwapUtf16(sBytes.Mid(2)), m_nLost);
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
    case Utf16Big: return MARK16_BIG + CUSwapUtf16(CUToUtf16(sText));
    default: return sText;
    }
}

int CCUTextFile::Save(const char *pszPath) const
{
    if (m_sText.GetLength() > MOST_CHARACTERS) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
    if (IsProtected(pszPath))
        return 0;
    const CCUString sNew = MakeFileBeside(pszPath);
    if (sNew.IsEmpty())
        return 0;
    if (WriteBytes(sNew, Encode()) && Replace(sNew, pszPath))
        return 1;
    const CCUKeepLastError keepLastError;
    SetFileAttributesA(sNew, FILE_ATTRIBUTE_NORMAL);
    DeleteFileA(sNew);
    return 0;
}
