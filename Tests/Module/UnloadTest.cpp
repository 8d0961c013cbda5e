// A program without the framework loads and unloads a module that has it inside.

#include <gtest/gtest.h>

#include <malloc.h>
#include <functional>
#include <string>

#include "CU/Platform.h"

#include <mmsystem.h>
#include <tlhelp32.h>

#include "Support/ChildProcess.h"
#include "Support/GdiCount.h"
#include "Support/TemporaryDirectory.h"
#include "Support/ThreadBirths.h"

namespace {

LRESULT CALLBACK HostsProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    return message == WM_APP ? 4711 : DefWindowProcA(hWnd, message, wParam, lParam);
}

HWND MakeHostsWindow()
{
    WNDCLASSA hosts = {};
    hosts.lpfnWndProc = HostsProc;
    hosts.lpszClassName = "UnloadHost";
    RegisterClassA(&hosts);
    return CreateWindowA("UnloadHost", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr,
                         nullptr);
}

// Serves the thread's messages until the condition holds; gives up after a minute.
template <typename F>
bool PumpUntil(F condition)
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

BOOL CALLBACK CountModules(HWND hWnd, LPARAM lParam)
{
    char szClass[32] = "";
    GetClassNameA(hWnd, szClass, sizeof szClass);
    const std::string name = szClass;
    for (const char *start : {"pzl-", "CUM", "CCUT", "Unloaded", "#32770"})
        *reinterpret_cast<int *>(lParam) += name.compare(0, strlen(start), start) == 0;
    return TRUE;
}

// Top-level windows of classes that the module uses; the system's helpers come and go.
int ModulesWindows(DWORD nThread)
{
    int nCount = 0;
    EnumThreadWindows(nThread, CountModules, reinterpret_cast<LPARAM>(&nCount));
    return nCount;
}

// Another thread, with a message loop of the program's, that does what it is given.
class CLivingThread
{
public:
    CLivingThread() : m_hDone(CreateEventA(nullptr, FALSE, FALSE, nullptr))
    {
        m_hThread = CreateThread(nullptr, 0, Start, this, 0, &m_nId);
        WaitForSingleObject(m_hDone, INFINITE);
    }
    void Run(const std::function<void()> &work)
    {
        PostThreadMessageA(m_nId, WM_APP, 0, reinterpret_cast<LPARAM>(&work));
        WaitForSingleObject(m_hDone, INFINITE);
    }
    // Keeps the thread where it is, in the program's code.
    void Hold()
    {
        PostThreadMessageA(m_nId, WM_APP, 0, 0);
        WaitForSingleObject(m_hDone, INFINITE);
    }
    void Release() const { SetEvent(m_hGo); }
    void End()
    {
        PostThreadMessageA(m_nId, WM_QUIT, 0, 0);
        WaitForSingleObject(m_hThread, INFINITE);
        CloseHandle(m_hThread);
        CloseHandle(m_hDone);
        CloseHandle(m_hGo);
    }
    HWND Window() const { return m_hWnd; }
    DWORD Id() const { return m_nId; }

private:
    static DWORD WINAPI Start(void *parameter)
    {
        auto &self = *static_cast<CLivingThread *>(parameter);
        self.m_hWnd = MakeHostsWindow();
        SetEvent(self.m_hDone);
        MSG msg;
        while (GetMessageA(&msg, nullptr, 0, 0) > 0) {
            if (!msg.hwnd && msg.message == WM_APP) {
                if (msg.lParam)
                    (*reinterpret_cast<const std::function<void()> *>(msg.lParam))();
                SetEvent(self.m_hDone);
                if (!msg.lParam)
                    WaitForSingleObject(self.m_hGo, INFINITE);
            }
            DispatchMessageA(&msg);
        }
        return 0;
    }

    HANDLE m_hDone, m_hGo = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    HANDLE m_hThread = nullptr;
    DWORD m_nId = 0;
    HWND m_hWnd = nullptr;
};

class CModule
{
public:
    CModule() : m_hModule(LoadLibraryA(TEST_UNLOADED))
    {
        EXPECT_TRUE(m_hModule);
        m_use = reinterpret_cast<BOOL (*)(int, HWND)>(GetProcAddress(m_hModule, "Use"));
        m_served = reinterpret_cast<int (*)(int)>(GetProcAddress(m_hModule, "TimesServed"));
    }
    // With the thread's timers at work.
    void Use(int nPart, HWND hHosts) const
    {
        EXPECT_TRUE(m_use(nPart, hHosts));
        EXPECT_TRUE(PumpUntil([&] { return m_served(nPart) > 2; }));
        EXPECT_EQ(4711, SendMessageA(hHosts, WM_APP, 0, 0));
    }
    LPTIMECALLBACK TimerCallback() const
    {
        return reinterpret_cast<LPTIMECALLBACK (*)()>(GetProcAddress(m_hModule, "TimerCallback"))();
    }
    LPTHREAD_START_ROUTINE StopInTheMiddle() const
    {
        return reinterpret_cast<LPTHREAD_START_ROUTINE>(
            GetProcAddress(m_hModule, "StopInTheMiddle@4"));
    }
    HMODULE m_hModule;

private:
    BOOL (*m_use)(int, HWND);
    int (*m_served)(int);
};

struct CCounts
{
    int nGdi = GdiCount();
    int nThreads = Threads();
    DWORD nHandles = Handles();
    DWORD nTls = TlsAlloc();
    DWORD nFls = FlsIndex();
    int nBlocks = HeapBlocks();
    ~CCounts() { TlsFree(nTls); }

private:
    static int Threads()
    {
        int nCount = 0;
        const HANDLE hSnapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
        THREADENTRY32 entry = {};
        entry.dwSize = sizeof entry;
        for (BOOL b = Thread32First(hSnapshot, &entry); b; b = Thread32Next(hSnapshot, &entry))
            nCount += entry.th32OwnerProcessID == GetCurrentProcessId();
        CloseHandle(hSnapshot);
        return nCount;
    }
    template <typename F>
    static F *Kernel(const char *name)
    {
        return reinterpret_cast<F *>(GetProcAddress(GetModuleHandleA("kernel32"), name));
    }
    static DWORD Handles()
    {
        DWORD nCount = 0;
        if (auto *get = Kernel<BOOL WINAPI(HANDLE, DWORD *)>("GetProcessHandleCount"))
            get(GetCurrentProcess(), &nCount);
        return nCount;
    }
    static DWORD FlsIndex()
    {
        const DWORD nIndex = Kernel<DWORD WINAPI(void *)>("FlsAlloc")(nullptr);
        Kernel<BOOL WINAPI(DWORD)>("FlsFree")(nIndex);
        return nIndex;
    }
    static int HeapBlocks()
    {
        int nCount = 0;
        _HEAPINFO entry = {};
        while (_heapwalk(&entry) == _HEAPOK)
            nCount += entry._useflag == _USEDENTRY;
        return nCount;
    }
};

TEST(Module, GoesInTheMiddleOfEverythingAndLeavesNothing)
{
    const CTemporaryDirectory directory;
    const HWND hHosts = MakeHostsWindow();
    CLivingThread living;
    const LPTOP_LEVEL_EXCEPTION_FILTER filter = SetUnhandledExceptionFilter(nullptr);
    SetUnhandledExceptionFilter(filter);
    const auto cycle = [&](bool bLivingFirst) {
        const CModule module;
        // The first thread makes what there is one of in the process.
        if (!bLivingFirst)
            module.Use(0, hHosts);
        living.Run([&] { module.Use(1, living.Window()); });
        if (bLivingFirst)
            module.Use(0, hHosts);
        living.Hold();
        FreeLibrary(module.m_hModule);
        EXPECT_EQ(nullptr, GetModuleHandleA("Unloaded.dll"));
        EXPECT_EQ(0, ModulesWindows(GetCurrentThreadId()));
        living.Release();
        for (const HWND hWnd : {hHosts, living.Window()})
            EXPECT_EQ(4711, SendMessageA(hWnd, WM_APP, 0, 0));
        living.Run([&] {
            EXPECT_TRUE(PumpUntil([] { return ModulesWindows(GetCurrentThreadId()) == 0; }));
        });
    };
    for (int i = 0; i < 10; ++i)
        cycle(i % 2 != 0);
    const CCounts before;
    for (int i = 0; i < 90 && !HasFailure(); ++i)
        cycle(i % 2 != 0);
    const CCounts after;
    const CModule alone;
    alone.Use(0, hHosts);
    const LPTIMECALLBACK callback = alone.TimerCallback();
    const HINSTANCE hInstance = alone.m_hModule;
    FreeLibrary(hInstance);
    for (const char *name :
         {"pzl-Window", "pzl-ControlWindow", "CUMessageWindow", "CCUTimerTask", "UnloadedOwn"})
    {
        WNDCLASSA found;
        EXPECT_FALSE(GetClassInfoA(hInstance, name, &found)) << name;
        EXPECT_FALSE(GetClassInfoA(nullptr, name, &found)) << name;
    }
    EXPECT_EQ(before.nTls + 1, after.nTls);
    EXPECT_EQ(before.nFls, after.nFls);
    EXPECT_NEAR(before.nGdi, after.nGdi, 3);
    EXPECT_NEAR(before.nThreads, after.nThreads, 2);
    EXPECT_NEAR(static_cast<int>(before.nHandles), static_cast<int>(after.nHandles), 20);
    EXPECT_NEAR(before.nBlocks, after.nBlocks, 5);
    EXPECT_EQ(filter, SetUnhandledExceptionFilter(nullptr));
    EXPECT_EQ(101u, directory.Files("ZELLog-*").size());
    EXPECT_NE("", directory.Contents("ZELTrace-*"));
    living.End();
    CLivingThread().End();
    // The system's timer thread was on its way to call back.
    const UINT uReal = RegisterWindowMessageA("TimerTaskReal");
    for (const UINT uTimer : {0U, 7U})
        callback(uTimer, 0, reinterpret_cast<DWORD_PTR>(hHosts), 0, 0);
    MSG msg = {};
    EXPECT_TRUE(PeekMessageA(&msg, hHosts, uReal, uReal, PM_REMOVE));
    EXPECT_EQ(7u, msg.wParam);
    EXPECT_FALSE(PeekMessageA(&msg, hHosts, uReal, uReal, PM_REMOVE));
}

// One other thread is killed with its timers at work, one in the middle of a change.
void Leave(void (*leave)())
{
    const HWND hHosts = MakeHostsWindow();
    CLivingThread living;
    const CModule module;
    module.Use(0, hHosts);
    living.Run([&] { module.Use(1, living.Window()); });
    living.Hold();
    volatile LONG bStopped = FALSE;
    CreateThread(nullptr, 0, module.StopInTheMiddle(), const_cast<LONG *>(&bStopped), 0, nullptr);
    while (!bStopped)
        Sleep(1);
    WaitForThreadBirths();
    leave();
}

CHILD_PROCESS(Exit)
{
    Leave([] { exit(5); });
}
CHILD_PROCESS(ExitProcess)
{
    Leave([] { ExitProcess(6); });
}

TEST(Module, EndsWithItsProcess)
{
    const CTemporaryDirectory directory;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(5u, CChildProcess("Exit").ExitCode());
        EXPECT_EQ(6u, CChildProcess("ExitProcess").ExitCode());
    }
}

}  // namespace
