#include <gtest/gtest.h>

#include <stdlib.h>

#include <algorithm>
#include <functional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "CU/Dump.h"
#include "CU/String.h"
#include "Support/ChildProcess.h"
#include "Support/ImportHook.h"
#include "Support/TemporaryDirectory.h"
#include "Support/Threads.h"

namespace {

// What arrives where, in the order of arrival.
std::vector<std::string> s_events;

void WINAPI Debugger(const char *text)
{
    s_events.push_back(std::string("debugger:") + text);
}

class CCallback : public CCUDumpCallback
{
public:
    explicit CCallback(
        const char *name, std::function<void()> act = [] {})
        : m_name(name), m_act(std::move(act))
    {
    }
    void OnDump(const CCUString &sText) override
    {
        s_events.push_back(m_name + std::string(sText, static_cast<size_t>(sText.GetLength())));
        m_act();
    }

private:
    std::string m_name;
    std::function<void()> m_act;
};

CCallback s_first("first:"), s_last("last:");

typedef std::vector<std::string> CTexts;

class Dump : public testing::Test
{
protected:
    static void ExpectEvents(const CTexts &events)
    {
        EXPECT_EQ(events, s_events);
        s_events.clear();
    }
    // The lines of all log files that are not the header's, sorted.
    CTexts LoggedLines() const
    {
        CTexts lines;
        std::istringstream text(m_directory.Contents("ZELLog-*"));
        for (std::string line; std::getline(text, line);) {
            if (line.compare(0, 6, "**TZ**") != 0 && line.compare(0, 8, "Seconds ") != 0)
                lines.push_back(line);
        }
        std::sort(lines.begin(), lines.end());
        return lines;
    }

    const CTemporaryDirectory m_directory;
    const CImportHook m_debugger{"OutputDebugStringA", Debugger};
};

const int LinesOfThread = 150;

// Lines of up to 3,000 characters that name their writer.
std::string LineOf(DWORD nProcess, int nThread, int nLine)
{
    char szHead[64];
    sprintf(szHead, "%08lx %02d %04d ", nProcess, nThread, nLine);
    return szHead + std::string(static_cast<size_t>(nLine % 10 == 0 ? 3000 : nLine), 'x');
}

void DumpLines(int nThread)
{
    for (int i = 0; i < LinesOfThread; ++i)
        CUDumpString((LineOf(GetCurrentProcessId(), nThread, i) + "\n").c_str(), -1);
}

}  // namespace

CHILD_PROCESS(ManyThreads)
{
    CThreads::Run(4, DumpLines);
}

// Dumps while global objects are constructed, while they are destroyed, and after that.
static void DumpAtTheVeryEnd()
{
    CUDump("nobody but a debugger\n");
    CUDumpConfigLogFileManagement(1, 1, 1, true);
    CUDumpRegister(&s_first);
    CUDumpUnRegister(&s_first);
}
static void StartBeforeTheConstructors()
{
    if (getenv("TEST_DUMP_AT_THE_ENDS"))
        atexit(DumpAtTheVeryEnd);
}
__attribute__((section(".CRT$XCU"),
               used)) static void (*const s_start)() = StartBeforeTheConstructors;

static const struct CDumpAtTheEnds
{
    CDumpAtTheEnds() { Say("constructor\n"); }
    ~CDumpAtTheEnds() { Say("destructor\n"); }
    static void Say(const char *text)
    {
        if (getenv("TEST_DUMP_AT_THE_ENDS"))
            CUDump("%s", text);
    }
} s_dumpAtTheEnds;

TEST_F(Dump, BringsATextToEveryOutputInOrder)
{
    const HWND hWnd =
        CreateWindowA("STATIC", "", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    CUDumpRegisterWindow(hWnd, WM_APP);
    CUDumpRegisterWindow(nullptr, WM_APP);
    CUDumpRegisterWindow(reinterpret_cast<HWND>(0x7777), WM_APP);
    CUDumpRegisterWindow(hWnd, WM_APP + 1);
    MSG msg;
    CCallback middle("middle:", [&] {
        s_events.push_back("log has it: " + LoggedLines().at(0));
        for (const unsigned int uMessage : {0u + WM_APP, 1u + WM_APP}) {
            ASSERT_TRUE(PeekMessageA(&msg, nullptr, uMessage, uMessage, PM_REMOVE));
            const CCUString *pText = reinterpret_cast<const CCUString *>(msg.lParam);
            s_events.push_back(std::string("window:") + static_cast<const char *>(*pText));
            EXPECT_EQ(0u, msg.wParam);
            delete pText;
        }
    });
    for (CCallback *pCallback : {&s_first, &middle, &s_last})
        CUDumpRegister(pCallback);
    SetLastError(1234);
    CUDump("%s %d\n", "seven", 7);
    EXPECT_EQ(1234u, GetLastError());
    ExpectEvents({"first:seven 7\n", "middle:seven 7\n", "log has it: seven 7\r",
                  "window:seven 7\n", "window:seven 7\n", "last:seven 7\n", "debugger:seven 7\n"});
    CUDumpUnRegisterWindow(hWnd, WM_APP);
    CUDumpUnRegisterWindow(hWnd, WM_APP + 1);
    CUDumpUnRegister(&middle);
    CUDumpUnRegister(&middle);
    CUDumpString("a\0b", 3);
    CUDumpString("abc", 0);
    CUDumpString(nullptr, 5);
    ExpectEvents({std::string("first:a\0b", 9), std::string("last:a\0b", 8), "debugger:a",
                  "first:", "last:", "debugger:", "first:", "last:", "debugger:"});
    EXPECT_FALSE(PeekMessageA(&msg, nullptr, WM_APP, WM_APP + 1, PM_NOREMOVE));
    CUDumpRegister(nullptr);
    EXPECT_NE(
        std::string::npos,
        m_directory.Contents("ZELTrace-*").find("Assert:pCallback != NULL  File:Dump  Line:"));
    DestroyWindow(hWnd);
}

TEST_F(Dump, CutsWhatDoesNotFitIntoItsBuffer)
{
    for (const size_t nLength : {2046u, 2047u, 2048u, 100000u}) {
        CUDump("%s", std::string(nLength, 'y').c_str());
        ExpectEvents({"debugger:" + std::string(std::min<size_t>(nLength, 2047), 'y')});
        EXPECT_EQ(nLength > 2047,
                  m_directory.Contents("ZELTrace-*").find("nLength < DumpBufferSize  File:Dump") !=
                      std::string::npos);
    }
    CUDumpString(std::string(100000, 'z').c_str(), -1);
    ExpectEvents({"debugger:" + std::string(100000, 'z')});
}

TEST_F(Dump, CallbacksMayDumpComeAndGoWhileCalled)
{
    static CCallback s_inner("inner:", [] {
        CUDump("nested");
        CUDumpUnRegister(&s_first);
        CUDumpUnRegister(&s_inner);
        CUDumpRegister(&s_first);
    });
    for (CCallback *pCallback : {&s_first, &s_inner, &s_last})
        CUDumpRegister(pCallback);
    CUDump("a");
    ExpectEvents({"first:a", "inner:a", "debugger:nested", "last:a", "debugger:a"});
    CUDump("b");
    ExpectEvents({"last:b", "first:b", "debugger:b"});
    EXPECT_EQ(CTexts{"ab"}, LoggedLines());
}

TEST_F(Dump, ManyProcessesAndThreadsLoseAndTearNoLine)
{
    CTexts expected;
    {
        const CChildProcess processes[] = {
            CChildProcess("ManyThreads"), CChildProcess("ManyThreads"),
            CChildProcess("ManyThreads"), CChildProcess("ManyThreads")};
        for (const CChildProcess &process : processes) {
            EXPECT_EQ(0u, process.ExitCode());
            for (int i = 0; i < 4 * LinesOfThread; ++i)
                expected.push_back(LineOf(process.Id(), i / LinesOfThread, i % LinesOfThread) +
                                   "\r");
        }
    }
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(4u, m_directory.Files("ZELLog-*").size());
    EXPECT_TRUE(expected == LoggedLines());
}

TEST_F(Dump, WorksFromTheFirstConstructorToTheLastDestructor)
{
    SetEnvironmentVariableA("TEST_DUMP_AT_THE_ENDS", "1");
    SetEnvironmentVariableA("GTEST_FILTER", "-*");
    EXPECT_EQ(0u, CChildProcess("").ExitCode());
    EXPECT_EQ((CTexts{"constructor\r", "destructor\r"}), LoggedLines());
}
