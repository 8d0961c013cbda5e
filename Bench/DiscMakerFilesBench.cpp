#include <windows.h>

#include <psapi.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "Bench.h"
#include "Command/Command.h"
#include "File/OpenSkin.h"
#include "Model/Document.h"
#include "Model/EntryText.h"
#include "ProgramStart.h"
#include "Resource.h"

namespace {

std::string WindowsPath(const char *path)
{
    char full[MAX_PATH] = "";
    char *name;
    GetFullPathNameA(path, MAX_PATH, full, &name);
    return full;
}

double TimeStart(const std::string &commandLine, const std::string &caption)
{
    return TimeProgramStart(commandLine.c_str(), [&] {
        PostMessageA(FindWindowA(nullptr, caption.c_str()), WM_CLOSE, 0, 0);
    });
}

// The same picture in other colours.
CBlob Inverted(const CBlob &dib)
{
    std::vector<BYTE> bytes(dib->begin(), dib->end());
    for (size_t i = bytes.size() / 2; i < bytes.size(); ++i)
        bytes[i] = static_cast<BYTE>(~bytes[i]);
    return MakeBlob(bytes);
}

// Two launchers that differ in their three pictures, put into a third in turns.
class CApplies
{
public:
    explicit CApplies(const std::string &folder) : m_folder(folder)
    {
        CProblems problems;
        const auto file = OpenSkin(BENCH_LAUNCHER, problems);
        CSkin skin = file->Skin();
        file->SaveCopy(skin, (m_folder + "\\0.exe").c_str(), problems);
        for (CBlob &picture : skin.m_pictures)
            picture = Inverted(picture);
        file->SaveCopy(skin, (m_folder + "\\1.exe").c_str(), problems);
        Copy();
    }
    void Apply()
    {
        m_nSkin = 1 - m_nSkin;
        int nExitCode = -1;
        RunCommand(("DiscMaker /apply " + m_folder + "\\" + std::to_string(m_nSkin) + ".exe /to " +
                    m_folder + "\\copy.exe")
                       .c_str(),
                   nExitCode);
        if (nExitCode != 0) {
            fputs("the pictures were not applied\n", stderr);
            exit(1);
        }
    }
    void Copy() { CopyTo("\\copy.exe"); }
    // On the disk before it counts, as what is applied is.
    void CopySafely()
    {
        CopyTo("\\safe.exe");
        const HANDLE hFile = CreateFileA((m_folder + "\\safe.exe").c_str(), GENERIC_WRITE, 0,
                                         nullptr, OPEN_EXISTING, 0, nullptr);
        FlushFileBuffers(hFile);
        CloseHandle(hFile);
    }

private:
    void CopyTo(const char *name)
    {
        CopyFileA((m_folder + "\\0.exe").c_str(), (m_folder + name).c_str(), FALSE);
    }

    const std::string m_folder;
    int m_nSkin = 0;
};

// How much a step of undo needs, after 10,000 of them.
double UndoBytes()
{
    CProblems problems;
    CDocument document;
    document.Start(OpenSkin(BENCH_LAUNCHER, problems)->Skin());
    // A number that may fall: the heap can give back more than the steps take.
    const auto Used = [] {
        PROCESS_MEMORY_COUNTERS counters = {};
        GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
        return static_cast<double>(counters.PagefileUsage);
    };
    const double nBefore = Used();
    for (int i = 0; i < 10000; ++i)
        document.SetEntry(i % 2 ? IDS_RUN_POS : IDS_EXIT_POS, FormatPoint({i, i}));
    return (Used() - nBefore) / 10000;
}

}  // namespace

BENCH_GROUP(DiscMakerFiles)
{
    // First, while the heap has no room from others that it could take.
    const double nBytes = UndoBytes();
    BenchAdd({"Disc Maker: memory of a step, of 10,000 to undo", "bytes", nBytes, 1024, "1 KiB",
              nBytes / 1024, 1});

    const std::string launcher = WindowsPath(BENCH_LAUNCHER);
    const std::string maker = WindowsPath(BENCH_DISC_MAKER) + " " + launcher;
    const std::string caption = launcher.substr(launcher.rfind('\\') + 1) + " - Disc Maker";
    // The first starts read files that the others find in memory.
    TimeStart(maker, caption);
    TimeStart(launcher, "Fennick Setup");
    BenchPairs(
        "Disc Maker: open, check and show a launcher", 21,
        [&] { return TimeStart(maker, caption); }, "start of the launcher",
        [&] { return TimeStart(launcher, "Fennick Setup"); }, 2.0);

    const std::string folder = (std::filesystem::temp_directory_path() / "DiscMakerBench").string();
    std::filesystem::create_directory(folder);
    CApplies applies(folder);
    BenchCompare(
        "Disc Maker: three pictures applied to a launcher", [&] { applies.Apply(); },
        "copy of the launcher", [&] { applies.Copy(); }, 3.0);
    BenchCompare(
        "Disc Maker: three pictures applied to a launcher", [&] { applies.Apply(); },
        "copy of the launcher, flushed", [&] { applies.CopySafely(); }, 3.0);
    std::filesystem::remove_all(folder);
}
