#include "AutoRunDlg.h"
#include "Bench.h"
#include "PlainLauncher.h"
#include "ProgramStart.h"

namespace {

double TimeStart(const char *path)
{
    return TimeProgramStart(path, [] {
        PostMessageA(FindWindowA("#32770", "Fennick Setup"), WM_COMMAND, IDCANCEL, 0);
    });
}

// The bytes of a program's file less those of its resources.
double SizeWithoutResources(const char *path)
{
    const HANDLE hFile =
        CreateFileA(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    double nSize = GetFileSize(hFile, nullptr);
    char headers[1024];
    DWORD nRead = 0;
    ReadFile(hFile, headers, sizeof headers, &nRead, nullptr);
    CloseHandle(hFile);
    const auto *pDos = reinterpret_cast<const IMAGE_DOS_HEADER *>(headers);
    const auto *pNt = reinterpret_cast<const IMAGE_NT_HEADERS *>(headers + pDos->e_lfanew);
    const IMAGE_SECTION_HEADER *pSection = IMAGE_FIRST_SECTION(pNt);
    for (int i = 0; i < pNt->FileHeader.NumberOfSections; ++i) {
        if (memcmp(pSection[i].Name, ".rsrc", 6) == 0)
            nSize -= pSection[i].SizeOfRawData;
    }
    return nSize;
}

void Repaint(HWND hWnd)
{
    RedrawWindow(hWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
}

}  // namespace

BENCH_GROUP(Launcher)
{
    const double nSize = SizeWithoutResources(BENCH_LAUNCHER), nMost = 288 * 1024;
    BenchAdd(
        {"launcher: size without resources", "bytes", nSize, nMost, "288 KiB", nSize / nMost, 1});

    // A start that is no good: the first one reads files that the others find in memory.
    TimeStart(BENCH_LAUNCHER);
    TimeStart(BENCH_PLAIN_LAUNCHER);
    BenchPairs(
        "launcher: creation of the process to first frame", 41,
        [] { return TimeStart(BENCH_LAUNCHER); }, "plain Win32 program",
        [] { return TimeStart(BENCH_PLAIN_LAUNCHER); }, 1.05);

    const HINSTANCE hInstance = GetModuleHandleA(nullptr);
    CPlainLauncher plain(hInstance);
    const HWND hPlain = plain.Create();
    CAutoRunDlg dialog(hInstance);
    const HWND hOurs = dialog.DoModeless(nullptr);
    // Beside each other, so that neither hides a part of the other.
    SetWindowPos(hPlain, nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    SetWindowPos(hOurs, nullptr, GetSystemMetrics(SM_CXSCREEN) - 514,
                 GetSystemMetrics(SM_CYSCREEN) - 345, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    BenchCompare(
        "launcher: full repaint", [=] { Repaint(hOurs); }, "the same calls by hand",
        [=] { Repaint(hPlain); }, 1.05);
    DestroyWindow(hPlain);
    // The plain launcher ends its program when it goes.
    MSG msg;
    PeekMessageA(&msg, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE);
}
