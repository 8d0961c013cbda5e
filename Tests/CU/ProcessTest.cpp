#include <gtest/gtest.h>

#include <set>
#include <string>

#include "CU/Assert.h"
#include "CU/CU.h"
#include "CU/DebugSwitch.h"
#include "CU/ErrorText.h"
#include "CU/Dump.h"
#include "CU/IDGenerator.h"
#include "CU/Language.h"
#include "CU/ThreadExit.h"
#include "CU/Version.h"
#include "Support/ChildProcess.h"
#include "Support/HeapWatch.h"
#include "Support/Reports.h"
#include "Support/TestTimer.h"
#include "Support/Threads.h"

namespace {

TEST(Process, ClockStartsAtItsFirstCallAndFollowsTheMultimediaClock)
{
    CFakeClock clock;
    clock.Jump(0UL - MultimediaTime());  // as the system's own clock wraps, even
    EXPECT_EQ(0u, CUGetTime());
    clock.Jump(1000);
    const unsigned long uBefore = CUGetTime();
    EXPECT_NEAR(1000.0, static_cast<double>(uBefore), 1.0);
    clock.Jump(0xFFFFFFFF);
    EXPECT_EQ(uBefore - 1, CUGetTime());
}

LONG g_nMessages = 0;

void NoteMessage(unsigned int uMessage, WPARAM wParam, LPARAM lParam)
{
    g_nMessages += CUIsYourMessage(uMessage) && wParam == 5 && lParam == -6 ? 1 : 100;
}

TEST(Process, MessageWindowHandsPostedWorkToItsThread)
{
    const UINT uForeign = RegisterWindowMessageA("ProcessTestForeign");
    const UINT uOwn = CURegisterMessageId("ProcessTestWork");
    EXPECT_EQ(uOwn, RegisterWindowMessageA("ProcessTestWork"));
    for (const UINT uMessage : {uForeign, 0u, 0xBFFFu, uOwn + 0x10000, 0xFFFFFFFFu})
        EXPECT_FALSE(CUIsYourMessage(uMessage));
    CThreads::Run(1, [](int) { EXPECT_TRUE(IsWindow(CUGetWindow())); });
    const HWND hWnd = CUGetWindow();  // the other one ended with its thread
    EXPECT_EQ(GetCurrentThreadId(), GetWindowThreadProcessId(hWnd, nullptr));
    for (const UINT uMessage : {WM_USER + 0u, WM_USER + 2u, uOwn})
        EXPECT_TRUE(CUSetMessageHandler(uMessage, NoteMessage));
    for (const UINT uMessage : {WM_CLOSE + 0u, WM_USER + 3u, uForeign})
        EXPECT_FALSE(CUSetMessageHandler(uMessage, NoteMessage));
    CUSetMessageHandler(WM_USER + 2, nullptr);
    for (const UINT uMessage : {WM_USER + 2u, uOwn})
        PostMessageA(hWnd, uMessage, 5, -6);
    CFakeClock::Pump();
    EXPECT_EQ(1, g_nMessages);
    DestroyWindow(hWnd);
    EXPECT_TRUE(IsWindow(CUGetWindow()));
    DestroyWindow(CUGetWindow());
    CUShutdown();
    EXPECT_EQ(nullptr, CUGetWindow());
}

TEST(Process, NumbersAndTheMutexHoldOnManyThreads)
{
    std::set<unsigned int> numbers = {CCUIIDGenerator::GetNextID()};
    CThreads::Run(8, [&](int) {
        for (int i = 0; i < 500; ++i) {
            const CCUMutexGuard guard;
            numbers.insert(CCUIIDGenerator::GetNextID());
        }
    });
    EXPECT_EQ(4001u, numbers.size());
    EXPECT_EQ(10000u, *numbers.begin());
}

struct CNotingHandler : CCUThreadExitHandler
{
    CNotingHandler(std::string *pLog, char name) : m_pLog(pLog), m_name(name)
    {
        EXPECT_TRUE(CURegisterThreadExitHandler(this));
    }
    void OnThreadExit(bool) override
    {
        *m_pLog += m_name;
        // A report that asked the loader would wait for a thread that starts, which waits for us.
        CUDisplayAssert("at the end", "Source", 1);
        if (m_name == 'c')  // even one that comes late is called
            new CNotingHandler(m_pLog, 'd');
        delete this;
    }
    std::string *const m_pLog;
    const char m_name;
};

TEST(Process, ThreadsHaveSlotsAndExitHandlersOfTheirOwn)
{
    const CReports reports;
    const int nSlot = CUAllocateThreadLocalStorageIndex();
    EXPECT_NE(nSlot, CUAllocateThreadLocalStorageIndex());
    EXPECT_FALSE(CUSetThreadLocalStorage(-1, nullptr) || CURegisterThreadExitHandler(nullptr));
    std::string logs[8];
    CThreads::Run(8, [&](int nThread) {
        std::string *const pLog = &logs[nThread];
        EXPECT_EQ(nullptr, CUGetThreadLocalStorage(nSlot));
        CUSetThreadLocalStorage(nSlot, pLog);
        CCUThreadExitHandler *const a = new CNotingHandler(pLog, 'a');
        CCUThreadExitHandler *const b = new CNotingHandler(pLog, 'b');
        new CNotingHandler(pLog, 'c');
        EXPECT_TRUE(CUUnregisterThreadExitHandler(b));
        EXPECT_FALSE(CUUnregisterThreadExitHandler(b));
        EXPECT_TRUE(CURegisterThreadExitHandler(a));  // once, but first now
        delete b;
        EXPECT_EQ(pLog, CUGetThreadLocalStorage(nSlot));
    });
    for (const std::string &log : logs)
        EXPECT_EQ("acd", log);
    EXPECT_EQ(10, reports.Count("at the end", "Source"));
}

std::string g_info;

TEST(Process, InfoHandlersRunByNameOrAll)
{
    CURegisterProcessInfoHandler("a", [] { g_info += "A"; });
    CURegisterProcessInfoHandler("b", [] {
        g_info += "b";
        CUUnregisterProcessInfoHandler("b");
        CURegisterProcessInfoHandler("c", [] { g_info += "c"; });
    });
    CURegisterProcessInfoHandler("a", [] { g_info += "a"; });
    EXPECT_EQ(2, CURunProcessInfoHandlers());
    EXPECT_EQ(1, CURunProcessInfoHandlers("c") + CURunProcessInfoHandlers("b"));
    EXPECT_EQ("abc", g_info);
}

TEST(Process, ErrorsHaveTheSystemsTextsOrTheirNumbers)
{
    SetLastError(7);
    const CCUString sText = CUErrorText(ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(7U, GetLastError());
    char szText[256] = "";
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, ERROR_FILE_NOT_FOUND, 0, szText,
                   sizeof szText, nullptr);
    EXPECT_STREQ(szText, sText + "\r\n");
    EXPECT_STREQ("Error 536870912", CUErrorText(0x20000000));
}

TEST(Version, IsTheSystemsAnswer)
{
    OSVERSIONINFOA expected = {sizeof expected, 0, 0, 0, 0, ""};
    ASSERT_TRUE(GetVersionExA(&expected));
    const CCUVersionInfo version;
    EXPECT_EQ(expected.dwPlatformId, version.IsWinNT() * 2U + version.IsWin95());
    EXPECT_EQ(static_cast<int>(expected.dwMajorVersion), version.GetMajor());
    EXPECT_EQ(static_cast<int>(expected.dwMinorVersion), version.GetMinor());
}

// Each case is a process of its own; what was looked up first holds in it.
struct Language : testing::TestWithParam<const char *>
{
};

TEST_P(Language, HasTheOffsetOfTheFirstLookUp)
{
    const CCUString sName = CCUString(GetParam()).SpanExcluding(" ");
    const unsigned int nOffset = strtoul(GetParam() + sName.GetLength(), nullptr, 10);
    CUSetCurrentLanguage("FRENCH");
    EXPECT_STREQ(CUGetCurrentLanguage(), "french");
    CUSetCurrentLanguage(sName);
    EXPECT_EQ(CUGetLocalizedID(120), 120 + nOffset);
    CUSetCurrentLanguage("");
    EXPECT_STREQ(CUGetCurrentLanguage(), "english");
    EXPECT_EQ(CUGetLocalizedID(120), 120 + nOffset);
}

INSTANTIATE_TEST_SUITE_P(, Language,
                         testing::Values("English 0", "FRENCH 1000", "spanish 2000", "German 3000",
                                         "italian 4000", "dutch 5000", "portuguese 6000"));

TEST(DebugSwitch, IsFoundByNameAndSetByTheUserOrTheProgram)
{
    const std::pair<const char *, long> cases[] = {
        {nullptr, 0},
        {" level = -0x10 ;Level=5x;Levels=5;\\Debug\\Level=5", -16},
        {";;Level=1;\\debug\\test\\LEVEL=010", 10},
        {"Level;Other=5", 1}};
    for (const auto &test : cases) {
        SetEnvironmentVariableA("CU_DEBUG", test.first);
        CCUDebugSwitch level("\\Debug\\Test", "Level"), other("\\Debug\\Other", "Level");
        EXPECT_EQ(test.second, level.Get());
        level.Set(9);
        EXPECT_EQ(9, level.Get());
        EXPECT_EQ(&other, CCUDebugSwitch::Find(nullptr, "level"));
        EXPECT_EQ(&level, CCUDebugSwitch::Find("\\debug\\test", "Level"));
    }
    EXPECT_EQ(nullptr, CCUDebugSwitch::Find(nullptr, "Level"));
}

// Leaves with alarms armed, due and being served on many threads; notes what runs at the end, and
// what the last object that is destroyed can still be told.
std::string *g_pOrder = new std::string;
const CCUInitializer g_initializer([] { *g_pOrder += "start "; }, [] { *g_pOrder += "end "; });
struct CLastStatic
{
    ~CLastStatic()
    {
        if (*g_pOrder != "")
            CUDump("%s%s%u", g_pOrder->c_str(), static_cast<const char *>(CUGetCurrentLanguage()),
                   CUGetLocalizedID(0));
    }
} g_lastStatic;

volatile LONG g_nBusy = 0;
const CHeapWatch *g_pHeap;

DWORD WINAPI ServeBusyTimers(void *)
{
    CThreads::Run(6, [](int) {
        CTestTimer due, busy([&] {
            due.SetAlarm(0);
            InterlockedIncrement(&g_nBusy);
            Sleep(INFINITE);
        });
        busy.SetAlarm(0);
        while (WaitMessage())
            CFakeClock::Pump();
    });
    return 0;
}

void Leave(void (*leave)())
{
    CUInitialize();
    CUInitialize();
    CURegisterTerminationHandler([] { *g_pOrder += "handler "; });
    g_pHeap = new CHeapWatch;  // overwrites what is given back
    CUSetCurrentLanguage("French");
    CUGetLocalizedID(0);
    CUGetWindow();
    CloseHandle(CreateThread(nullptr, 0, ServeBusyTimers, nullptr, 0, nullptr));
    CTestTimer last([&] {
        last.SetAlarm(1);
        if (g_nBusy == 6)
            WaitForThreadBirths(), leave();
    });
    last.SetAlarm(0);
    while (WaitMessage())
        CFakeClock::Pump();
}

CHILD_PROCESS(Exit)
{
    Leave([] { exit(5); });
}
CHILD_PROCESS(ExitProcess)
{
    Leave([] { ExitProcess(6); });
}

TEST(Process, EndsInTheMiddleOfEverything)
{
    const CTemporaryDirectory directory;
    EXPECT_EQ(6u, CChildProcess("ExitProcess").ExitCode());
    EXPECT_EQ("", directory.Contents("*"));
    EXPECT_EQ(5u, CChildProcess("Exit").ExitCode());
    const std::string order = "start handler end french1000";
    const std::string log = directory.Contents("*");
    EXPECT_EQ(order, log.substr(log.size() - order.size()));
}

struct CIdleHandler : CCUThreadExitHandler
{
    void OnThreadExit(bool) override {}
} g_idleHandler;

volatile bool g_bDeleted = false;

void WINAPI NoteDeleted(CRITICAL_SECTION *section)
{
    g_bDeleted = g_bDeleted || section->OwningThread != nullptr;
}

// The system calls slots in their order, so this one's comes behind the framework's.
void WINAPI AtTheVeryEnd(void *)
{
    TerminateProcess(GetCurrentProcess(), g_bDeleted ? 7 : 1);
}

CHILD_PROCESS(LockedEnd)
{
    typedef void WINAPI FlsCallback(void *);
    const HMODULE hKernel = GetModuleHandleA("kernel32.dll");
    CURegisterThreadExitHandler(&g_idleHandler);
    const DWORD nSlot = reinterpret_cast<DWORD(WINAPI *)(FlsCallback *)>(
        GetProcAddress(hKernel, "FlsAlloc"))(AtTheVeryEnd);
    reinterpret_cast<BOOL(WINAPI *)(DWORD, void *)>(GetProcAddress(hKernel, "FlsSetValue"))(
        nSlot, &g_idleHandler);
    const CImportHook hook("DeleteCriticalSection", NoteDeleted);
    CUEnterMutex();
    ExitProcess(2);
}

TEST(Process, LastThreadDeletesTheLocks)
{
    EXPECT_EQ(7u, CChildProcess("LockedEnd").ExitCode());
}

}  // namespace
