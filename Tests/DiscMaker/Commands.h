#pragma once

#include <fstream>
#include <sstream>
#include <string>

#include "Base/Handle.h"
#include "Command/Command.h"
#include "Support/TemporaryDirectory.h"

struct CAnswer
{
    bool m_bCommand;
    int m_nExitCode;
    std::string m_text;
};

inline std::string ReadText(const std::string &path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

// What a command answers and writes.
inline CAnswer Ask(const CTemporaryDirectory &folder, const std::string &arguments)
{
    const std::string path = folder.Path() + "\\output";
    CAnswer answer = {false, -1, ""};
    {
        const CCUFileHandle hFile(
            CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
        const HANDLE hOld = GetStdHandle(STD_OUTPUT_HANDLE);
        SetStdHandle(STD_OUTPUT_HANDLE, hFile);
        answer.m_bCommand =
            RunCommand(("\"C:\\a b\\DiscMaker.exe\" " + arguments).c_str(), answer.m_nExitCode);
        SetStdHandle(STD_OUTPUT_HANDLE, hOld);
    }
    answer.m_text = ReadText(path);
    DeleteFileA(path.c_str());
    return answer;
}
