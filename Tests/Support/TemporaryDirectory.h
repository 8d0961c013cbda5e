#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "CU/Platform.h"

// Gives the process a temporary directory of its own (what GetTempPath answers), empty at first,
// and removes it with all that is in it at the end.
class CTemporaryDirectory
{
public:
    CTemporaryDirectory()
    {
        // A process of this number that ended with files open has left them here.
        std::filesystem::remove_all(m_path);
        std::filesystem::create_directory(m_path);
        Set(m_path);
    }
    ~CTemporaryDirectory()
    {
        Set(m_old);
        std::error_code stillInUse;
        std::filesystem::remove_all(m_path, stillInUse);
    }
    CTemporaryDirectory(const CTemporaryDirectory &) = delete;
    CTemporaryDirectory &operator=(const CTemporaryDirectory &) = delete;

    // Without a backslash at the end.
    const std::string &Path() const { return m_path; }
    static void Set(const std::string &path)
    {
        SetEnvironmentVariableA("TMP", path.c_str());
        SetEnvironmentVariableA("TEMP", path.c_str());
    }
    // The names of the files that match, in order.
    std::vector<std::string> Files(const std::string &pattern) const
    {
        std::set<std::string> names;
        WIN32_FIND_DATAA data;
        const HANDLE find = FindFirstFileA((m_path + "\\" + pattern).c_str(), &data);
        for (BOOL bMore = find != INVALID_HANDLE_VALUE; bMore; bMore = FindNextFileA(find, &data)) {
            if (!(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
                names.insert(data.cFileName);
        }
        FindClose(find);
        return std::vector<std::string>(names.begin(), names.end());
    }
    // What these files hold, one after the other.
    std::string Contents(const std::string &pattern) const
    {
        std::string text;
        for (const std::string &name : Files(pattern)) {
            std::ifstream file(m_path + "\\" + name, std::ios::binary);
            text.append(std::istreambuf_iterator<char>(file), {});
        }
        return text;
    }
    // Makes an empty file.
    void Make(const std::string &name) const { std::ofstream(m_path + "\\" + name); }

private:
    inline static int s_nCount = 0;
    const std::string m_old = std::filesystem::temp_directory_path().string();
    const std::string m_path =
        m_old + "test-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++s_nCount);
};
