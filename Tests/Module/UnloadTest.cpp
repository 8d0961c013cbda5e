// A program without the framework loads and unloads a module that has it inside.

#include <gtest/gtest.h>

#include <malloc.h>

#include <atomic>
#include <functional>
#include <vector>

#include "Support/GdiCount.h"
#include "Support/TemporaryDirectory.h"
#include "Support/ThreadBirths.h"
#include "Support/Threads.h"
#include "Support/Times.h"

namespace {

// Serves the thread's messages until the condition holds; gives up after a minute.
bool PumpUntil(const std::function<bool()> &condition)
{
    const DWORD nStart = GetTickCount();
    while (!condition() && GetTickCount() - nStart < 60000) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
        MSG msg;
        while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageA(&msg);
    }
    return condition();
}

class CModule
{
public:
    // With the thread's timers at work.
    void Use(int nPart, HWND hHosts) const
    {
        EXPECT_TRUE(Function<BOOL(int, HWND)>("Use")(nPart, hHosts));
        auto *served = Function<int(int)>("TimesServed");
        EXPECT_TRUE(PumpUntil([&] { return served(nPart) > 2; }));
    }
    template <typename F>
    F *Function(const char *name) const
    {
        return reinterpret_cast<F *>(GetProcAddress(m_hModule, name));
    }
    const HMODULE m_hModule = LoadLibraryA(TEST_MODULE);
};

// A window of the program's; the module attaches an object to it.
class CHostsWindow
{
public:
    void ExpectFree() const { EXPECT_EQ(m_nProc, GetWindowLongA(m_hWnd, GWL_WNDPROC)); }
    const HWND m_hWnd =
        CreateWindowA("STATIC", "", 0, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);

private:
    const LONG m_nProc = GetWindowLongA(m_hWnd, GWL_WNDPROC);
};

// What the process has: GDI objects, slots, handles, blocks.
std::vector<int> Counts()
{
    WaitForThreadBirths();
    const DWORD nSlot = TlsAlloc();
    TlsFree(nSlot);
    DWORD nHandles = 0;
    reinterpret_cast<BOOL(WINAPI *)(HANDLE, DWORD *)>(GetProcAddress(
        GetModuleHandleA("kernel32"), "GetProcessHandleCount"))(GetCurrentProcess(), &nHandles);
    int nBlocks = 0;
    _HEAPINFO entry = {};
    while (_heapwalk(&entry) == _HEAPOK)
        nBlocks += entry._useflag == _USEDENTRY;
    return {GdiCount(), static_cast<int>(nSlot), static_cast<int>(nHandles), nBlocks};
}

// Two threads use the module. The first one then ends it, while the other one is in the program's
// code.
void UseOnTwoThreads(const std::function<void(const CModule &)> &end)
{
    const CModule module;
    std::atomic<bool> bUsed{false}, bEnded{false};
    CThreads::Run(2, [&](int nThread) {
        const CHostsWindow hosts;
        module.Use(nThread, hosts.m_hWnd);
        std::atomic<bool> &bOther = nThread ? bEnded : bUsed;
        if (nThread)
            bUsed = true;
        while (!bOther)
            Sleep(1);
        if (!nThread)
            end(module);
        bEnded = true;
        EXPECT_TRUE(PumpUntil([] { return !FindWindowA("ModulesOwn", nullptr); }));
        hosts.ExpectFree();
    });
}

TEST(Module, GoesInTheMiddleOfEverythingAndLeavesNothing)
{
    const CTemporaryDirectory directory;
    const LPTOP_LEVEL_EXCEPTION_FILTER filter = SetUnhandledExceptionFilter(nullptr);
    SetUnhandledExceptionFilter(filter);
    const auto cycle = [] {
        UseOnTwoThreads([](const CModule &module) {
            FreeLibrary(module.m_hModule);
            EXPECT_EQ(nullptr, GetModuleHandleA("Module.dll"));
        });
    };
    for (int i = 0; i < 4; ++i)
        cycle();
    const std::vector<int> before = Counts();
    const int nTimes = Times(10);
    for (int i = 0; i < nTimes; ++i)
        cycle();
    const std::vector<int> after = Counts();
    for (size_t i = 0; i < before.size(); ++i)
        EXPECT_NEAR(before[i], after[i], i == 1 ? 0 : 5) << i;
    // Without windows of another thread, which keep their classes until they go.
    const CModule alone;
    alone.Use(0, CHostsWindow().m_hWnd);
    FreeLibrary(alone.m_hModule);
    for (const char *name :
         {"pzl-Window", "pzl-ControlWindow", "CUMessageWindow", "CCUTimerTask", "ModulesOwn"})
    {
        WNDCLASSA found;
        EXPECT_FALSE(GetClassInfoA(alone.m_hModule, name, &found)) << name;
    }
    EXPECT_EQ(filter, SetUnhandledExceptionFilter(nullptr));
    EXPECT_EQ(static_cast<size_t>(nTimes) + 5, directory.Files("ZELLog-*").size());
    EXPECT_NE("", directory.Contents("ZELTrace-*"));
}

TEST(Module, GivesTheLibrariesBackThatItHasLoaded)
{
    const char *const libraries[] = {"comctl32.dll", "shell32.dll"};
    const CHostsWindow hosts;
    const CModule module;
    for (const char *name : libraries)
        EXPECT_EQ(nullptr, GetModuleHandleA(name)) << name;
    EXPECT_TRUE(module.Function<BOOL(HWND)>("UseLibraries")(hosts.m_hWnd));
    for (const char *name : libraries)
        EXPECT_NE(nullptr, GetModuleHandleA(name)) << name;
    FreeLibrary(module.m_hModule);
    for (const char *name : libraries)
        EXPECT_EQ(nullptr, GetModuleHandleA(name)) << name;
}

TEST(Module, EndsWithItsProcess)
{
    const CTemporaryDirectory directory;
    UseOnTwoThreads([](const CModule &module) {
        auto *served = module.Function<int(int)>("TimesServed");
        module.Function<void(int)>("Calm")(0);
        const int nServed = served(0);
        // The other thread serves none of its timers now, and so starts none either.
        EXPECT_TRUE(PumpUntil([&] { return served(0) > nServed; }));
        WaitForThreadBirths();
        exit(testing::Test::HasFailure());
    });
}

}  // namespace
