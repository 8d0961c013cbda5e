#pragma once

#include "File/FileBytes.h"

// Files that change together. Each is written beside its place under a new name, brought to the
// disk and read back; only when all are there they take their places. Whatever fails, what was at
// these places is there again.
class CFileSet
{
public:
    CFileSet() {}
    // Takes back what Commit has not finished.
    ~CFileSet();
    CFileSet(const CFileSet &) = delete;
    CFileSet &operator=(const CFileSet &) = delete;

    void Add(const CCUString &sPath, const CBlob &bytes);
    bool IsEmpty() const { return m_files.empty(); }
    // Once. When it fails the reason is among the problems.
    bool Commit(CProblems &problems);

private:
    struct CFile
    {
        CCUString m_sPath;
        CBlob m_bytes;
        bool m_bReplaces = false;  // there was a file at the path
        CCUString m_sNew;          // where it stands until it takes its place; empty: nowhere
        CCUString m_sOld;          // where what it replaced stands; empty: nowhere
        bool m_bPlaced = false;
    };
    static bool Write(CFile &file, CProblems &problems);
    static bool Place(CFile &file, bool bAlone, CProblems &problems);

    std::vector<CFile> m_files;
};
