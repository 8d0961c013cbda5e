#pragma once

#include <string>
#include <vector>

#include "CU/Platform.h"

// Gives the process a temporary directory of its own (what GetTempPath answers), empty at first,
// and removes it with all that is in it at the end.
class CTemporaryDirectory
{
public:
    CTemporaryDirectory();
    ~CTemporaryDirectory();
    CTemporaryDirectory(const CTemporaryDirectory &) = delete;
    CTemporaryDirectory &operator=(const CTemporaryDirectory &) = delete;

    // Without a backslash at the end.
    const std::string &Path() const { return m_path; }
    static void Set(const std::string &path);
    // The names of the files that match, in order.
    std::vector<std::string> Files(const std::string &pattern) const;
    // What these files hold, one after the other.
    std::string Contents(const std::string &pattern) const;
    // Makes an empty file.
    void Make(const std::string &name) const;

private:
    std::string m_old, m_path;
};
