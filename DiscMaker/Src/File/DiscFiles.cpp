#include "File/DiscFiles.h"

#include <string.h>

#include <algorithm>

#include "Base/SystemLibrary.h"
#include "CUI/Data.h"

namespace {

// Deeper folders are no disc's.
const size_t MAX_PATH_LENGTH = 4000;

bool IsWide()
{
    return CUIGetWinData()->bWinNT != 0;
}

// In the form that lifts the limit of 260 characters.
std::vector<WCHAR> LongForm(const CDiscPath &path)
{
    const WCHAR *pText = path.Wide();
    const WCHAR drive[] = L"\\\\?\\";
    const size_t nPrefix = sizeof drive / sizeof *drive - 1;
    if (path.Length() > nPrefix && memcmp(pText, drive, nPrefix * sizeof *drive) == 0)
        return std::vector<WCHAR>(pText, pText + path.Length() + 1);  // given so
    const WCHAR network[] = L"\\\\?\\UNC";
    const bool bNetwork = pText[0] == L'\\' && pText[1] == L'\\';
    std::vector<WCHAR> text(bNetwork ? network : drive,
                            bNetwork ? network + lstrlenW(network) : drive + lstrlenW(drive));
    text.insert(text.end(), bNetwork ? pText + 1 : pText, path.Wide() + path.Length() + 1);
    return text;
}

HANDLE Create(const CDiscPath &path, DWORD nAccess, DWORD nShare, DWORD nHow, DWORD nFlags)
{
    return IsWide()
               ? CreateFileW(LongForm(path).data(), nAccess, nShare, nullptr, nHow, nFlags, nullptr)
               : CreateFileA(path.Text(), nAccess, nShare, nullptr, nHow, nFlags, nullptr);
}

// To ask or to tell something of a file or a folder, whoever uses it.
HANDLE OpenAny(const CDiscPath &path, DWORD nAccess)
{
    return Create(path, nAccess, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING,
                  FILE_FLAG_BACKUP_SEMANTICS);
}

// Which one it is on its drive; false where the system cannot tell (Windows 95 to Me).
bool Identify(const CDiscPath &folder, BY_HANDLE_FILE_INFORMATION &information)
{
    const CCUFileHandle hFolder(OpenAny(folder, 0));
    return hFolder && GetFileInformationByHandle(hFolder, &information);
}

// One name in a folder.
struct CFound
{
    CDiscPath m_name;
    DWORD m_nAttributes;
    ULONGLONG m_nSize;
    FILETIME m_written;
};

template <typename Data>
ULONGLONG SizeOf(const Data &data)
{
    return static_cast<ULONGLONG>(data.nFileSizeHigh) << 32 | data.nFileSizeLow;
}

// A search of a folder, in either kind of names.
class CSearch
{
public:
    explicit CSearch(const CDiscPath &folder) : m_hFind(INVALID_HANDLE_VALUE), m_wide(), m_narrow()
    {
        const CDiscPath pattern = folder.Join(L"*");
        *m_hFind.Receive() = IsWide() ? FindFirstFileW(LongForm(pattern).data(), &m_wide)
                                      : FindFirstFileA(pattern.Text(), &m_narrow);
    }
    bool IsThere() const { return static_cast<bool>(m_hFind); }
    bool Next()
    {
        return IsWide() ? FindNextFileW(m_hFind, &m_wide) : FindNextFileA(m_hFind, &m_narrow);
    }
    CFound Found() const
    {
        if (IsWide())
            return {CDiscPath(m_wide.cFileName), m_wide.dwFileAttributes, SizeOf(m_wide),
                    m_wide.ftLastWriteTime};
        WCHAR szName[MAX_PATH] = L"";
        MultiByteToWideChar(CP_ACP, 0, m_narrow.cFileName, -1, szName, MAX_PATH);
        return {CDiscPath(szName), m_narrow.dwFileAttributes, SizeOf(m_narrow),
                m_narrow.ftLastWriteTime};
    }

private:
    CCUFindHandle m_hFind;
    WIN32_FIND_DATAW m_wide;
    WIN32_FIND_DATAA m_narrow;
};

bool IsDots(const CDiscPath &name)
{
    return lstrcmpA(name.Text(), ".") == 0 || lstrcmpA(name.Text(), "..") == 0;
}

// In the order of the names, which file systems do not promise.
bool ReadFolder(const CDiscPath &folder, std::vector<CFound> &found)
{
    CSearch search(folder);
    if (!search.IsThere())
        return GetLastError() == ERROR_FILE_NOT_FOUND;
    do {
        CFound one = search.Found();
        if (!IsDots(one.m_name))
            found.push_back(std::move(one));
    } while (search.Next());
    const bool bAll = GetLastError() == ERROR_NO_MORE_FILES;
    std::sort(found.begin(), found.end(),
              [](const CFound &left, const CFound &right) { return left.m_name < right.m_name; });
    return bAll;
}

}  // namespace

HANDLE DiscOpen(const CDiscPath &path)
{
    return Create(path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN);
}

HANDLE DiscCreateNew(const CDiscPath &path)
{
    return Create(path, GENERIC_READ | GENERIC_WRITE, 0, CREATE_NEW, FILE_ATTRIBUTE_NORMAL);
}

DWORD DiscAttributes(const CDiscPath &path)
{
    return IsWide() ? GetFileAttributesW(LongForm(path).data()) : GetFileAttributesA(path.Text());
}

bool DiscMakeFolder(const CDiscPath &path)
{
    return IsWide() ? CreateDirectoryW(LongForm(path).data(), nullptr)
                    : CreateDirectoryA(path.Text(), nullptr);
}

bool DiscRemoveFolder(const CDiscPath &path)
{
    return IsWide() ? RemoveDirectoryW(LongForm(path).data()) : RemoveDirectoryA(path.Text());
}

bool DiscDeleteFile(const CDiscPath &path)
{
    return IsWide() ? DeleteFileW(LongForm(path).data()) : DeleteFileA(path.Text());
}

bool DiscMove(const CDiscPath &from, const CDiscPath &to)
{
    return IsWide() ? MoveFileW(LongForm(from).data(), LongForm(to).data())
                    : MoveFileA(from.Text(), to.Text());
}

bool DiscReplace(const CDiscPath &from, const CDiscPath &to)
{
    const DWORD nFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    return IsWide() ? MoveFileExW(LongForm(from).data(), LongForm(to).data(), nFlags)
                    : MoveFileExA(from.Text(), to.Text(), nFlags);
}

bool DiscMakeFoldersFor(const CDiscPath &file)
{
    const CDiscPath folder = file.Parent();
    return folder.IsEmpty() || DiscIsFolder(folder) ||
           (DiscMakeFoldersFor(folder) && DiscMakeFolder(folder));
}

bool DiscGetWritten(const CDiscPath &path, FILETIME &written)
{
    const CCUFileHandle hFile(OpenAny(path, 0));
    return hFile && GetFileTime(hFile, nullptr, nullptr, &written);
}

bool DiscSetWritten(const CDiscPath &path, const FILETIME &written)
{
    const CCUFileHandle hFile(OpenAny(path, FILE_WRITE_ATTRIBUTES));
    return hFile && SetFileTime(hFile, nullptr, nullptr, &written);
}

bool DiscHasFiles(const CDiscPath &folder)
{
    CSearch search(folder);
    bool bMore = search.IsThere();
    while (bMore && search.Found().m_nAttributes & FILE_ATTRIBUTE_DIRECTORY)
        bMore = search.Next();
    return bMore;
}

bool DiscIsSameFolder(const CDiscPath &one, const CDiscPath &other)
{
    BY_HANDLE_FILE_INFORMATION first;
    BY_HANDLE_FILE_INFORMATION second;
    if (one.IsSame(other))
        return true;
    return Identify(one, first) && Identify(other, second) &&
           first.dwVolumeSerialNumber == second.dwVolumeSerialNumber &&
           first.nFileIndexHigh == second.nFileIndexHigh &&
           first.nFileIndexLow == second.nFileIndexLow;
}

bool DiscIsInside(const CDiscPath &inner, const CDiscPath &outer)
{
    for (CDiscPath path = inner; !path.IsEmpty(); path = path.Parent()) {
        if (DiscIsSameFolder(path, outer))
            return true;
    }
    return false;
}

bool DiscFreeSpace(const CDiscPath &folder, ULONGLONG &nBytes)
{
    typedef BOOL WINAPI FGetFreeSpace(const char *, ULARGE_INTEGER *, ULARGE_INTEGER *,
                                      ULARGE_INTEGER *);
    // Windows 95 got it with its second release.
    static const auto s_get = CUFindFunction<FGetFreeSpace>("kernel32.dll", "GetDiskFreeSpaceExA");
    ULARGE_INTEGER nFree;
    ULARGE_INTEGER nTotal;
    if (!s_get || !s_get(folder.Text() + "\\", &nFree, &nTotal, nullptr))
        return false;
    nBytes = nFree.QuadPart;
    return true;
}

ULONGLONG CDiscTree::Size() const
{
    ULONGLONG nSize = 0;
    for (const CFile &file : m_files)
        nSize += file.m_nSize;
    return nSize;
}

bool DiscReadTree(const CDiscPath &folder, CDiscTree &tree, CDiscPath &failed)
{
    std::vector<CDiscPath> waiting(1);
    while (!waiting.empty()) {
        const CDiscPath relative = waiting.back();
        waiting.pop_back();
        std::vector<CFound> found;
        failed = relative.IsEmpty() ? folder : folder.Join(relative);
        if (failed.Length() > MAX_PATH_LENGTH || !ReadFolder(failed, found))
            return false;
        for (const CFound &one : found) {
            const CDiscPath path = relative.Join(one.m_name);
            if (!(one.m_nAttributes & FILE_ATTRIBUTE_DIRECTORY)) {
                tree.m_files.push_back({path, one.m_nSize, one.m_written});
            } else if (one.m_nAttributes & FILE_ATTRIBUTE_REPARSE_POINT) {
                tree.m_links.push_back(path);
            } else {
                tree.m_folders.push_back(path);
                waiting.push_back(path);
            }
        }
    }
    return true;
}
