#include <gtest/gtest.h>

#include <set>
#include <string>

#include "Base/Multimedia.h"
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
#include "Support/TemporaryDirectory.h"
#include "Support/TestTimer.h"
#include "Support/Threads.h"

namespace {

LONG g_nMessages = 0;

void NoteMessage(unsigned int uMessage, WPARAM wParam, LPARAM lParam)
{
    g_nMessages += CUIsYourMessage(uMessage) && wParam == 5 && lParam == -6 ? 1 : 100;
}

TEST(Process, ClockStartsAtItsFirstCallAndWraps)
{
    CFakeClock clock;
    clock.Jump(0UL - MultimediaTime());  // as the system's own clock wraps, even
    EXPECT_EQ(0u, CUGetTime());
    clock.Jump(1000);
    EXPECT_EQ(1001u, CUGetTime());  // the 0 that means "not known" counts as the moment before
    clock.Jump(0xFFFFFFFF);
    EXPECT_EQ(1000u, CUGetTime());
}

TEST(Process, MessageWindowHandsPostedWorkToItsThread)
{
    const UINT uForeign = RegisterWindowMessageA("ProcessTestForeign");
    const UINT uOwn = CURegisterMessageId("ProcessTestWork");
    EXPECT_EQ(uOwn, RegisterWindowMessageA("ProcessTestWork"));
    EXPECT_FALSE(CUIsYourMessage(uForeign));
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
    EXPECT_NE(nSlot, CUAllocateThreadLocalStorageIndex());
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
    char szSystem[64];
    sprintf(szSystem, "%lu.%lu.%lu", expected.dwMajorVersion, expected.dwMinorVersion,
            expected.dwPlatformId);
    const char *pszWanted = getenv("TEST_SYSTEM");  // by who runs the tests as on another one
    EXPECT_STREQ(pszWanted ? pszWanted : szSystem, szSystem);
}

TEST(Language, KeepsTheOffsetOfTheFirstLookUp)
{
    CUSetCurrentLanguage("FRENCH");
    EXPECT_STREQ(CUGetCurrentLanguage(), "french");
    CUSetCurrentLanguage("portuguese");
    EXPECT_EQ(CUGetLocalizedID(120), 6120U);
    CUSetCurrentLanguage("");
    EXPECT_STREQ(CUGetCurrentLanguage(), "english");
    EXPECT_EQ(CUGetLocalizedID(120), 6120U);
}

TEST(DebugSwitch, IsFoundByNameAndSetByTheUserOrTheProgram)
{
    SetEnvironmentVariableA("CU_DEBUG", ";;Level=1;\\debug\\test\\LEVEL = -0x10 ;Levels=5");
    CCUDebugSwitch level("\\Debug\\Test", "Level"), other("\\Debug\\Other", "Level");
    EXPECT_EQ(-16, level.Get());
    EXPECT_EQ(1, other.Get());
    level.Set(9);
    EXPECT_EQ(9, level.Get());
    EXPECT_EQ(&level, CCUDebugSwitch::Find("\\debug\\test", "Level"));
    EXPECT_EQ(nullptr, CCUDebugSwitch::Find(nullptr, "Levels"));
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

// Nothing has read the time yet.
TEST(Process, PlaysItsFirstSound)
{
    EXPECT_EQ(nullptr, GetModuleHandleA("winmm.dll"));
    g_multimedia.playSound(nullptr, nullptr, 0);  // ends those that play
    EXPECT_NE(nullptr, GetModuleHandleA("winmm.dll"));
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

}  // namespace
