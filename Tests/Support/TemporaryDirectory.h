#pragma once

#include <stdio.h>
#include <string>
#include <vector>

#include "CU/Platform.h"

// Gives the process a temporary directory of its own (what GetTempPath answers), empty at first,
// and removes it with all its files at the end.
class CTemporaryDirectory
{
public:
    CTemporaryDirectory()
    {
        char szTemp[MAX_PATH] = "";
        GetTempPathA(MAX_PATH, szTemp);
        m_old = szTemp;
        static int s_nCount = 0;
        char szName[64];
        sprintf(szName, "test-%lu-%d", GetCurrentProcessId(), ++s_nCount);
        m_path = m_old + szName;
        CreateDirectoryA(m_path.c_str(), nullptr);
        // A process of this number that ended with files open has left them here.
        DeleteFiles();
        Set(m_path);
    }
    ~CTemporaryDirectory()
    {
        Set(m_old);
        DeleteFiles();
        RemoveDirectoryA(m_path.c_str());
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

    // The names that match, in the order of the directory.
    std::vector<std::string> Files(const std::string &pattern) const
    {
        std::vector<std::string> names;
        WIN32_FIND_DATAA data;
        const HANDLE find = FindFirstFileA((m_path + "\\" + pattern).c_str(), &data);
        if (find == INVALID_HANDLE_VALUE)
            return names;
        do {
            if (!(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
                names.push_back(data.cFileName);
        } while (FindNextFileA(find, &data));
        FindClose(find);
        return names;
    }

    // What the files that match hold, one after the other.
    std::string Contents(const std::string &pattern) const
    {
        std::string text;
        for (const std::string &name : Files(pattern)) {
            FILE *file = fopen((m_path + "\\" + name).c_str(), "rb");
            if (!file)
                continue;
            char buffer[4096];
            size_t nRead;
            while ((nRead = fread(buffer, 1, sizeof buffer, file)) > 0)
                text.append(buffer, nRead);
            fclose(file);
        }
        return text;
    }

private:
    void DeleteFiles() const
    {
        for (const std::string &name : Files("*"))
            DeleteFileA((m_path + "\\" + name).c_str());
    }

    std::string m_old;
    std::string m_path;
};
