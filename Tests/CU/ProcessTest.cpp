#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "CU/Assert.h"
#include "CU/CU.h"
#include "CU/IDGenerator.h"
#include "CU/Language.h"
#include "CU/ThreadExit.h"
#include "CU/Time.h"
#include "Support/ChildProcess.h"
#include "Support/FailingCall.h"
#include "Support/FakeClock.h"
#include "Support/HeapWatch.h"
#include "Support/Reports.h"
#include "Support/TestTimer.h"
#include "Support/ThreadBirths.h"
#include "Support/Threads.h"

namespace {

TEST(Process, ClockStartsAtItsFirstCallAndFollowsTheMultimediaClock)
{
    CFakeClock clock;
    clock.Jump(0UL - MultimediaTime());  // as the system's own clock wraps, even
    EXPECT_EQ(0u, CUGetTime());
    clock.Jump(1000);
    EXPECT_NEAR(1000.0, static_cast<double>(CUGetTime()), 1.0);
    const unsigned long uBefore = CUGetTime();
    clock.Jump(0xFFFFFFFF);
    EXPECT_EQ(uBefore - 1, CUGetTime());
}

CHILD_PROCESS(NoMultimedia)
{
    const CFailingCall<HMODULE(const char *, HANDLE, DWORD)> noLibrary("LoadLibraryExA");
    CFailPlan::Start(CFailPlan::ALL);
    const DWORD nBefore = GetTickCount();
    const DWORD nStamp = MultimediaTime();
    EXPECT_LE(nStamp - nBefore, GetTickCount() - nBefore);
    EXPECT_EQ(0u, CUGetTime());
    int nServed = 0;
    CTestTimer now([&] { ++nServed; }), later([&] { nServed += 10; });
    later.SetAlarm(10000000);  // nobody tells when that is
    now.SetAlarm(0);
    CFakeClock::Pump();
    EXPECT_FALSE(g_multimedia.playSound("SystemStart", nullptr, SND_ALIAS | SND_ASYNC));
    exit(CFailPlan::s_nCalls == 1 && nServed == 1 && !testing::Test::HasFailure() ? 7 : 1);
}

TEST(Process, GoesOnWithoutTheMultimediaLibrary)
{
    const CDumped dumped;
    EXPECT_EQ(7u, CChildProcess("NoMultimedia").ExitCode());
}

const CCUMultimedia g_multimediaBefore = g_multimedia;
decltype(&GetProcAddress) g_getProcAddress = nullptr;
bool g_bMultimediaHalf = false;

// Looks at what another thread would find that comes in between.
FARPROC WINAPI LookAtMultimedia(HMODULE hLibrary, const char *name)
{
    if (g_multimedia.getTime != g_multimediaBefore.getTime &&
        (g_multimedia.setEvent == g_multimediaBefore.setEvent ||
         g_multimedia.killEvent == g_multimediaBefore.killEvent ||
         g_multimedia.playSound == g_multimediaBefore.playSound))
        g_bMultimediaHalf = true;
    return g_getProcAddress(hLibrary, name);
}

CHILD_PROCESS(MultimediaOnTwoThreads)
{
    const CImportHook look("GetProcAddress", LookAtMultimedia);
    g_getProcAddress = look.Original<decltype(GetProcAddress)>();
    MultimediaTime();
    const bool bLoaded = g_multimedia.setEvent != g_multimediaBefore.setEvent;
    exit(bLoaded && !g_bMultimediaHalf ? 7 : 1);
}

TEST(Process, WhoReadsTheMultimediaClockMaySetTimersWhileAnotherThreadLoadsIt)
{
    EXPECT_EQ(7u, CChildProcess("MultimediaOnTwoThreads").ExitCode());
}

TEST(Process, KnowsItsOwnMessages)
{
    const UINT uForeign = RegisterWindowMessageA("ProcessTestForeign");
    for (const char *name : {"ProcessTest1", "ProcessTest2", "TimerTaskMock"}) {
        const UINT uMessage = CURegisterMessageId(name);
        EXPECT_TRUE(uMessage == RegisterWindowMessageA(name) && CUIsYourMessage(uMessage)) << name;
    }
    EXPECT_EQ(0u, CURegisterMessageId(nullptr) + CURegisterMessageId(""));
    for (const UINT uMessage : {uForeign, 0u, 0xBFFFu, 0x10000u, 0xFFFFFFFFu, 0x1C000u})
        EXPECT_FALSE(CUIsYourMessage(uMessage));
}

std::vector<LONG> g_messages;

void NoteMessage(unsigned int uMessage, WPARAM wParam, LPARAM lParam)
{
    g_messages.insert(g_messages.end(),
                      {static_cast<LONG>(uMessage), static_cast<LONG>(wParam), lParam});
}

TEST(Process, MessageWindowHandsPostedWorkToItsThread)
{
    const UINT uOwn = CURegisterMessageId("ProcessTestWork");
    CThreads::Run(1, [](int) { EXPECT_TRUE(IsWindow(CUGetWindow())); });
    const HWND hWnd = CUGetWindow();  // the other one ended with its thread
    EXPECT_EQ(GetCurrentThreadId(), GetWindowThreadProcessId(hWnd, nullptr));
    EXPECT_FALSE(IsWindowVisible(hWnd));
    for (const UINT uMessage : {WM_USER + 0u, WM_USER + 2u, uOwn})
        EXPECT_TRUE(CUSetMessageHandler(uMessage, NoteMessage));
    for (const UINT uMessage : {WM_CLOSE + 0u, WM_USER + 3u, uOwn + 1})
        EXPECT_FALSE(CUSetMessageHandler(uMessage, NoteMessage));
    CThreads::Run(1, [&](int) {
        PostMessageA(CUGetWindow(), uOwn, 5, -6);
        PostMessageA(CUGetWindow(), WM_USER + 2, 1, 2);
    });
    EXPECT_TRUE(g_messages.empty());
    CUSetMessageHandler(WM_USER + 2, nullptr);
    CFakeClock::Pump();
    EXPECT_EQ((std::vector<LONG>{static_cast<LONG>(uOwn), 5, -6}), g_messages);
    DestroyWindow(hWnd);
    EXPECT_TRUE(IsWindow(CUGetWindow()));
    DestroyWindow(CUGetWindow());
    CUShutdown();
    EXPECT_EQ(nullptr, CUGetWindow());
}

TEST(Process, NumbersAndTheMutexHoldOnManyThreads)
{
    const unsigned int uFirst = CCUIIDGenerator::GetNextID();
    EXPECT_GE(uFirst, 10000u);
    std::set<unsigned int> numbers;
    int nHeld = 0;
    CThreads::Run(8, [&](int) {
        for (int i = 0; i < 500; ++i) {
            const unsigned int uID = CCUIIDGenerator::GetNextID();
            const CCUMutexGuard outer;
            const CCUMutexGuard inner;
            EXPECT_EQ(0, nHeld++);
            numbers.insert(uID);
            Sleep(0);
            --nHeld;
        }
    });
    EXPECT_EQ(4000u, numbers.size());
    EXPECT_TRUE(*numbers.begin() == uFirst + 1 && *numbers.rbegin() == uFirst + 4000);
}

struct CNotingHandler : CCUThreadExitHandler
{
    CNotingHandler(std::string *pLog, char name) : m_pLog(pLog), m_name(name)
    {
        EXPECT_TRUE(CURegisterThreadExitHandler(this));
    }
    void OnThreadExit(bool bKillTimer) override
    {
        EXPECT_TRUE(bKillTimer);
        *m_pLog += m_name;
        if (m_name == 'c')  // even one that comes late is called
            new CNotingHandler(m_pLog, 'd');
        delete this;
    }
    std::string *const m_pLog;
    const char m_name;
};

TEST(Process, ThreadsHaveSlotsAndExitHandlersOfTheirOwn)
{
    const int nSlot = CUAllocateThreadLocalStorageIndex();
    ASSERT_NE(-1, nSlot);
    EXPECT_NE(nSlot, CUAllocateThreadLocalStorageIndex());
    EXPECT_EQ(nullptr, CUGetThreadLocalStorage(-1));
    EXPECT_FALSE(CUSetThreadLocalStorage(-1, nullptr) || CURegisterThreadExitHandler(nullptr));
    std::string logs[8];
    EXPECT_TRUE(CUSetThreadLocalStorage(nSlot, logs));
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
        delete new CNotingHandler(pLog, 'x');
        EXPECT_EQ(pLog, CUGetThreadLocalStorage(nSlot));
        EXPECT_EQ("", *pLog);
    });
    for (const std::string &log : logs)
        EXPECT_EQ("acd", log);
    EXPECT_EQ(logs, CUGetThreadLocalStorage(nSlot));
}

struct CAssertingHandler : CCUThreadExitHandler
{
    void OnThreadExit(bool) override { CUDisplayAssert("at the end", "Source", 1); }
};

// A report that asked the loader would wait for a thread that starts, and that for this one.
CHILD_PROCESS(AssertAtThreadEnd)
{
    CAssertingHandler handlers[8];
    CThreads::Run(8, [&](int nThread) { CURegisterThreadExitHandler(&handlers[nThread]); });
}

TEST(Process, AssertionsAtTheEndOfAThreadAreReported)
{
    const CReports reports;
    EXPECT_EQ(0u, CChildProcess("AssertAtThreadEnd").ExitCode());
    EXPECT_EQ(8, reports.Count("at the end", "Source"));
    const std::string text = reports.Directory().Contents("ZELTrace-*");
    const size_t nStack = text.find("\r\n\r\n00");
    EXPECT_EQ(nStack + 12, text.find("\r\n", nStack + 4)) << text;  // a bare address
}

DWORD WINAPI NoSlot()
{
    return TLS_OUT_OF_INDEXES;
}

struct CIdleHandler : CCUThreadExitHandler
{
    void OnThreadExit(bool) override {}
};

DWORD WINAPI Register(void *)
{
    CURegisterThreadExitHandler(new CIdleHandler);
    return 0;
}

// Stands for a thread that waits for the loader's lock, while another one, which has it, registers.
FARPROC WINAPI LetAnotherThreadRegister(HMODULE hLibrary, const char *name)
{
    static bool s_bFirst = true;
    if (s_bFirst) {
        s_bFirst = false;
        const HANDLE hOther = CreateThread(nullptr, 0, Register, nullptr, 0, nullptr);
        if (WaitForSingleObject(hOther, 5000) != WAIT_OBJECT_0)
            _exit(1);
    }
    return g_getProcAddress(hLibrary, name);
}

CHILD_PROCESS(FirstHandlers)
{
    const CImportHook hook("GetProcAddress", LetAnotherThreadRegister);
    g_getProcAddress = hook.Original<decltype(GetProcAddress)>();
    Register(nullptr);
    _exit(7);
}

TEST(Process, FirstExitHandlersDoNotWaitForEachOthersLoader)
{
    EXPECT_EQ(7u, CChildProcess("FirstHandlers").ExitCode());
}

TEST(Process, NoMessageWindowWithoutAWatchOverItsEnd)
{
    const CImportHook tlsAlloc("TlsAlloc", NoSlot);
    EXPECT_EQ(nullptr, CUGetWindow());
}

std::string g_info;

TEST(Process, InfoHandlersRunByNameOrAll)
{
    EXPECT_FALSE(CURegisterProcessInfoHandler(nullptr, [] {}) ||
                 CURegisterProcessInfoHandler("none", nullptr));
    EXPECT_TRUE(CURegisterProcessInfoHandler("a", [] { g_info += "A"; }));
    CURegisterProcessInfoHandler("b", [] {
        g_info += "b";
        CUUnregisterProcessInfoHandler("b");
        CURegisterProcessInfoHandler("c", [] { g_info += "c"; });
    });
    CURegisterProcessInfoHandler("a", [] { g_info += "a"; });
    EXPECT_EQ(2, CURunProcessInfoHandlers());
    EXPECT_EQ(1, CURunProcessInfoHandlers("c"));
    EXPECT_EQ(0, CURunProcessInfoHandlers("b"));
    CUUnregisterProcessInfoHandler(nullptr);
    CUUnregisterProcessInfoHandler("a");
    CURegisterProcessInfoHandler("a", [] { g_info += "a"; });  // now behind c
    EXPECT_EQ(2, CURunProcessInfoHandlers());
    EXPECT_EQ("abcca", g_info);
}

std::string Date()
{
    return static_cast<const char *>(CCUTime(0L).FormatGmt("%sx"));
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
            std::ofstream(getenv("TEMP") + std::string("/order.txt"))
                << *g_pOrder << CUGetCurrentLanguage() << CUGetLocalizedID(0) << Date();
    }
} g_lastStatic;

volatile LONG g_nBusy = 0;

DWORD WINAPI ServeBusyTimer(void *pDue)
{
    CTestTimer later, due, busy([&] {
        later.SetAlarm(400);
        if (pDue)
            due.SetAlarm(0);
        InterlockedIncrement(&g_nBusy);
        Sleep(INFINITE);
    });
    busy.SetAlarm(0);
    while (WaitMessage())
        CFakeClock::Pump();
    return 0;
}

void Leave(void (*leave)())
{
    CUInitialize();
    CUInitialize();
    CURegisterTerminationHandler([] { *g_pOrder += "handler "; });
    new CHeapWatch;  // overwrites what is given back
    CUSetCurrentLanguage("French");
    CUGetLocalizedID(0);
    Date();
    CUGetWindow();
    static CTestTimer s_static;
    s_static.SetAlarm(400);
    for (int i = 0; i < 6; ++i) {
        void *const pDue = i % 2 ? g_pOrder : nullptr;
        CloseHandle(CreateThread(nullptr, 0, ServeBusyTimer, pDue, 0, nullptr));
    }
    CTestTimer last([&] {
        if (g_nBusy < 6) {
            last.SetAlarm(1);
            return;
        }
        WaitForThreadBirths();
        leave();
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
    const std::string order = "start handler end french1000" + Date();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(6u, CChildProcess("ExitProcess").ExitCode());
        EXPECT_EQ(i > 0 ? order : "", directory.Contents("order.txt"));
        EXPECT_EQ(5u, CChildProcess("Exit").ExitCode());
    }
    EXPECT_EQ(order, directory.Contents("order.txt"));
    EXPECT_EQ("", directory.Contents("ZELTrace-*"));
}

}  // namespace
