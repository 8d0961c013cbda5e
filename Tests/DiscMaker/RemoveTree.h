#pragma once

#include <string>

#include "File/DiscFiles.h"

// Empties a folder whose paths may be of any length. Nothing else does: of such a path the "rmdir
// /s" of Wine 8 makes an empty one, and then deletes what is in the current directory.
inline void RemoveTree(const std::string &path)
{
    const CDiscPath top(path.c_str());
    CDiscTree tree;
    CDiscPath failed;
    DiscReadTree(top, tree, failed);
    for (const CDiscTree::CFile &file : tree.m_files)
        DiscDeleteFile(top.Join(file.m_path));
    for (size_t i = tree.m_folders.size(); i > 0; --i)
        DiscRemoveFolder(top.Join(tree.m_folders[i - 1]));
}
