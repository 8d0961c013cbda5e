// What the launcher exports, as its file has it and as a module in its process uses it.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <string>
#include <vector>

#include "Support/ProgramFile.h"
#include "Support/StartedProgram.h"
#include "Support/TemporaryDirectory.h"

namespace {

// The names in the order of the table.
std::vector<std::string> ExportedBy(const CProgramFile &program, std::string *pOwnName)
{
    std::vector<std::string> names;
    const DWORD nAt = program.Headers().OptionalHeader.DataDirectory[0].VirtualAddress;
    if (!nAt)
        return names;
    const auto &table = *reinterpret_cast<const IMAGE_EXPORT_DIRECTORY *>(program.At(nAt));
    if (pOwnName)
        *pOwnName = reinterpret_cast<const char *>(program.At(table.Name));
    const auto *pNames = reinterpret_cast<const DWORD *>(program.At(table.AddressOfNames));
    for (DWORD i = 0; i < table.NumberOfNames; ++i)
        names.emplace_back(reinterpret_cast<const char *>(program.At(pNames[i])));
    EXPECT_EQ(table.NumberOfFunctions, table.NumberOfNames);
    return names;
}

std::string TextOf(const std::filesystem::path &path)
{
    std::ifstream file(path);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

// How often each marked function and variable outside the classes is declared.
std::map<std::string, int> MarkedInHeaders()
{
    std::map<std::string, int> marked;
    const std::regex declaration(
        R"(\n(?:extern )?CUI?_API [^;{]*?(\w+)(?: = [^;]*|\([^;{]*\)[^;{]*)?;)");
    for (const char *folder : {AUTORUN_SOURCE "/CU/Include/CU", AUTORUN_SOURCE "/CUI/Include/CUI"})
    {
        for (const auto &header : std::filesystem::directory_iterator(folder)) {
            const std::string text = "\n" + TextOf(header.path());
            for (std::sregex_iterator i(text.begin(), text.end(), declaration), end; i != end; ++i)
                ++marked[(*i)[1]];
        }
    }
    return marked;
}

// Runs a function of another process there and returns its result, or the process's exit code.
DWORD CallIn(HANDLE hProcess, const void *function, const void *argument)
{
    DWORD nResult = 0;
    const HANDLE hThread =
        CreateRemoteThread(hProcess, nullptr, 0,
                           reinterpret_cast<LPTHREAD_START_ROUTINE>(const_cast<void *>(function)),
                           const_cast<void *>(argument), 0, nullptr);
    const HANDLE ends[] = {hThread, hProcess};
    if (WaitForMultipleObjects(2, ends, FALSE, INFINITE) == WAIT_OBJECT_0)
        GetExitCodeThread(hThread, &nResult);
    else
        GetExitCodeProcess(hProcess, &nResult);
    CloseHandle(hThread);
    return nResult;
}

// The module's base in the other process, or 0.
DWORD LoadIn(HANDLE hProcess, const std::string &path)
{
    void *pPath = VirtualAllocEx(hProcess, nullptr, path.size() + 1, MEM_COMMIT, PAGE_READWRITE);
    WriteProcessMemory(hProcess, pPath, path.c_str(), path.size() + 1, nullptr);
    const auto load = GetProcAddress(GetModuleHandleA("kernel32"), "LoadLibraryA");
    return CallIn(hProcess, reinterpret_cast<const void *>(load), pPath);
}

std::string FullPath(const char *path)
{
    char full[MAX_PATH] = "";
    GetFullPathNameA(path, MAX_PATH, full, nullptr);
    return full;
}

}  // namespace

TEST(Exports, AreWhatTheListHasAndTheHeadersMark)
{
    std::vector<std::string> listed;
    std::ifstream list(AUTORUN_SOURCE "/AutoRun/exports.txt");
    for (std::string line; std::getline(list, line);) {
        if (line[0] != ';')
            listed.push_back(line.substr(0, line.find_first_of(" \r")));
    }
    ASSERT_GT(listed.size(), 100u);
    // The system looks names up by halving the table.
    std::sort(listed.begin(), listed.end());
    for (const char *path : {AUTORUN_LAUNCHER, AUTORUN_SHIPPED_LAUNCHER, AUTORUN_OTHER_LAUNCHER}) {
        std::string name;
        EXPECT_EQ(ExportedBy(CProgramFile(path), &name), listed) << path;
        EXPECT_EQ(name, "AutoRun.exe") << path;
    }
    // What links the same libraries exports nothing.
    EXPECT_TRUE(ExportedBy(CProgramFile(AUTORUN_DISC "/Fennick.exe"), nullptr).empty());

    const CProgramFile launcher(AUTORUN_LAUNCHER);
    const auto marked = MarkedInHeaders();
    EXPECT_GT(marked.size(), 60u);
    EXPECT_EQ(marked.count("CUPchNil"), 1u);
    for (const auto &entry : marked) {
        const bool bFound = GetProcAddress(launcher.Module(), entry.first.c_str()) != nullptr;
        EXPECT_EQ(bFound, entry.second == 1) << entry.first << ": " << entry.second;
    }
}

// The second one was linked with the import library of a launcher that exports more.
TEST(Exports, ServeAModuleInTheLaunchersProcess)
{
    const CTemporaryDirectory temporary;
    for (const char *module : {AUTORUN_MODULE, AUTORUN_MODULE_OF_ANOTHER_VERSION}) {
        const std::string path = FullPath(module);
        const CProgramFile file(path);
        const auto *pRun = reinterpret_cast<const BYTE *>(GetProcAddress(file.Module(), "Run@4"));
        ASSERT_TRUE(pRun) << path;
        const CStartedProgram launcher("\"" + FullPath(AUTORUN_LAUNCHER) + "\"");
        ASSERT_TRUE(launcher.Window());
        const DWORD nBase = LoadIn(launcher.Process(), path);
        if (nBase) {
            const DWORD nRun = nBase + static_cast<DWORD>(pRun - file.At(0));
            EXPECT_EQ(
                CallIn(launcher.Process(), reinterpret_cast<const void *>(nRun), launcher.Window()),
                0u)
                << "the line of " << path << " that failed, or how the process ended";
        } else {
            // The system refuses it; Wine does not, as long as nobody calls what is not there.
            EXPECT_STREQ(module, AUTORUN_MODULE_OF_ANOTHER_VERSION);
        }
        EXPECT_EQ(launcher.End(IDCANCEL), 0u);
    }
}
