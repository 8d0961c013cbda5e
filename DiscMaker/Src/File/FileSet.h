#pragma once

#include "File/DiscPath.h"
#include "File/FileBytes.h"

// Files that change together. Each is written beside its place under a new name, brought to the
// disk and read back; only when all are there they take their places. Whatever fails, what was at
// these places is there again, or the problems say under which name.
class CFileSet
{
public:
    CFileSet() {}
    CFileSet(const CFileSet &) = delete;
    CFileSet &operator=(const CFileSet &) = delete;

    // A path that is there already does not come a second time: two pictures may share a file.
    void Add(const CCUString &sPath, const CBlob &bytes);
    bool IsEmpty() const { return m_files.empty(); }
    // Once. When it fails the reason is among the problems.
    bool Commit(CProblems &problems);

private:
    struct CFile
    {
        CCUString m_sPath;  // as people know it
        CDiscPath m_path;
        CBlob m_bytes;
        bool m_bReplaces = false;  // there was a file at the path
        CDiscPath m_new;           // where it stands until it takes its place; empty: nowhere
        CDiscPath m_old;           // where what it replaced stands; empty: nowhere
        bool m_bPlaced = false;
    };
    static bool Write(CFile &file, CProblems &problems);
    static bool Place(CFile &file, bool bAlone, CProblems &problems);
    bool WriteAndPlaceAll(CProblems &problems);
    void TakeBack(CProblems &problems);

    std::vector<CFile> m_files;
};
