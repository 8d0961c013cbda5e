#pragma once

#include "Base/Handle.h"
#include "File/DiscPath.h"

// The file system by wide names, of any length, where the system takes them (NT); else by those of
// its code page. What fails leaves the thread's last error.

HANDLE DiscOpen(const CDiscPath &path);       // to read; nobody may write meanwhile
HANDLE DiscCreateNew(const CDiscPath &path);  // to write and read; fails when it is there
DWORD DiscAttributes(const CDiscPath &path);
bool DiscMakeFolder(const CDiscPath &path);
bool DiscRemoveFolder(const CDiscPath &path);
bool DiscDeleteFile(const CDiscPath &path);
bool DiscMove(const CDiscPath &from, const CDiscPath &to);
// A file to the place of another one, in one step; Windows 95 to Me cannot.
bool DiscReplace(const CDiscPath &from, const CDiscPath &to);
// Those that are missing on the way to a file.
bool DiscMakeFoldersFor(const CDiscPath &file);

inline bool DiscExists(const CDiscPath &path)
{
    return DiscAttributes(path) != INVALID_FILE_ATTRIBUTES;
}
inline bool DiscIsFolder(const CDiscPath &path)
{
    const DWORD nAttributes = DiscAttributes(path);
    return nAttributes != INVALID_FILE_ATTRIBUTES && (nAttributes & FILE_ATTRIBUTE_DIRECTORY);
}

// When a file or a folder was written last. Windows 95 to Me tell and set no folder's.
bool DiscGetWritten(const CDiscPath &path, FILETIME &written);
bool DiscSetWritten(const CDiscPath &path, const FILETIME &written);
// Folders do not count.
bool DiscHasFiles(const CDiscPath &folder);
// Whether both paths lead to the same folder, whatever they call it.
bool DiscIsSameFolder(const CDiscPath &one, const CDiscPath &other);
// Whether `inner` is that folder or lies below it; `inner` need not exist.
bool DiscIsInside(const CDiscPath &inner, const CDiscPath &outer);

// The bytes that the user may still write to the drive of an existing folder; false when the system
// cannot tell.
bool DiscFreeSpace(const CDiscPath &folder, ULONGLONG &nBytes);

// All that is below a folder, folders before what they hold, by paths relative to it.
struct CDiscTree
{
    struct CFile
    {
        CDiscPath m_path;
        ULONGLONG m_nSize;
        FILETIME m_written;
    };
    std::vector<CDiscPath> m_folders;
    std::vector<CFile> m_files;
    std::vector<CDiscPath> m_links;  // folders that are links; they are not followed

    ULONGLONG Size() const;
};
// False when a folder cannot be read; `failed` is which.
bool DiscReadTree(const CDiscPath &folder, CDiscTree &tree, CDiscPath &failed);
