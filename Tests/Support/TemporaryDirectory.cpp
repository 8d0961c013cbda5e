#include "Support/TemporaryDirectory.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

CTemporaryDirectory::CTemporaryDirectory() : m_old(std::filesystem::temp_directory_path().string())
{
    static int s_nCount = 0;
    m_path =
        m_old + "test-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++s_nCount);
    // A process of this number that ended with files open has left them here.
    std::filesystem::remove_all(m_path);
    std::filesystem::create_directory(m_path);
    Set(m_path);
}

CTemporaryDirectory::~CTemporaryDirectory()
{
    Set(m_old);
    std::error_code stillInUse;
    std::filesystem::remove_all(m_path, stillInUse);
}

void CTemporaryDirectory::Set(const std::string &path)
{
    SetEnvironmentVariableA("TMP", path.c_str());
    SetEnvironmentVariableA("TEMP", path.c_str());
}

std::vector<std::string> CTemporaryDirectory::Files(const std::string &pattern) const
{
    std::vector<std::string> names;
    WIN32_FIND_DATAA data;
    const HANDLE find = FindFirstFileA((m_path + "\\" + pattern).c_str(), &data);
    for (BOOL bMore = find != INVALID_HANDLE_VALUE; bMore; bMore = FindNextFileA(find, &data)) {
        if (!(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
            names.push_back(data.cFileName);
    }
    FindClose(find);
    std::sort(names.begin(), names.end());
    return names;
}

std::string CTemporaryDirectory::Contents(const std::string &pattern) const
{
    std::string text;
    for (const std::string &name : Files(pattern)) {
        std::ifstream file(m_path + "\\" + name, std::ios::binary);
        text.append(std::istreambuf_iterator<char>(file), {});
    }
    return text;
}

void CTemporaryDirectory::Make(const std::string &name) const
{
    std::ofstream(m_path + "\\" + name);
}
