#include <gtest/gtest.h>

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
std::string s_events;

struct CCallback : CCUDumpCallback
{
    explicit CCallback(std::function<void()> act = [] {}) : m_act(std::move(act)) {}
    void OnDump(const CCUString &sText) override
    {
        s_events += sText.GetString() + std::string(";");
        m_act();
    }
    std::function<void()> m_act;
};

class Dump : public testing::Test
{
protected:
    static std::string Events() { return std::exchange(s_events, ""); }
    // The lines of all log files but for the header's two, sorted.
    std::vector<std::string> LoggedLines() const
    {
        std::vector<std::string> lines;
        std::istringstream text(m_directory.Contents("ZELLog-*"));
        for (std::string line; std::getline(text, line);) {
            if (line[0] != '*' && line[0] != 'S')
                lines.push_back(line);
        }
        std::sort(lines.begin(), lines.end());
        return lines;
    }

    const CTemporaryDirectory m_directory;
    const CFakeCall<void(const char *)> m_debugger{
        "OutputDebugStringA",
        [](const char *text) { s_events += std::string("debugger:") + text + ";"; }};
    CCallback m_first;
};

// A line of up to 3,000 characters that names its writer.
std::string LineOf(DWORD nProcess, int nThread, int nLine)
{
    char szHead[64];
    sprintf(szHead, "%08lx %02d %04d ", nProcess, nThread, nLine);
    return szHead + std::string(static_cast<size_t>(nLine % 10 == 0 ? 3000 : nLine), 'x');
}

}  // namespace

CHILD_PROCESS(ManyThreads)
{
    CThreads::Run(4, [](int nThread) {
        for (int i = 0; i < 100; ++i)
            CUDumpString((LineOf(GetCurrentProcessId(), nThread, i) + "\n").c_str(), -1);
    });
}

TEST_F(Dump, BringsATextToEveryOutputInOrder)
{
    const HWND hWnd =
        CreateWindowA("STATIC", "", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    CUDumpRegisterWindow(hWnd, WM_APP + 1);
    CUDumpRegisterWindow(hWnd, WM_APP);
    CUDumpUnRegisterWindow(hWnd, WM_APP + 1);
    MSG msg;
    CCallback second([&] {
        s_events += "log:" + LoggedLines().at(0) + ";";
        ASSERT_TRUE(PeekMessageA(&msg, nullptr, WM_APP, WM_APP, PM_REMOVE));
        const CCUString *pText = reinterpret_cast<const CCUString *>(msg.lParam);
        s_events += "window:" + std::string(*pText) + ";";
        delete pText;
    });
    CUDumpRegister(&m_first);
    CUDumpRegister(&second);
    SetLastError(1234);
    CUDump("%s %d\n", "seven", 7);
    EXPECT_EQ(1234u, GetLastError());
    EXPECT_EQ("seven 7\n;seven 7\n;log:seven 7\r;window:seven 7\n;debugger:seven 7\n;", Events());
    EXPECT_FALSE(PeekMessageA(&msg, nullptr, WM_APP, WM_APP + 1, PM_NOREMOVE));
    CUDumpUnRegister(&second);
    CUDumpString("abc", 2);
    CUDumpString(nullptr, 5);
    EXPECT_EQ("ab;debugger:ab;;debugger:;", Events());
}

TEST_F(Dump, CutsWhatDoesNotFitIntoItsBuffer)
{
    for (const size_t nLength : {2047u, 2048u}) {
        CUDump("%s", std::string(nLength, 'y').c_str());
        EXPECT_EQ("debugger:" + std::string(2047, 'y') + ";", Events());
        EXPECT_EQ(nLength > 2047, !m_directory.Files("ZELTrace-*").empty());
    }
}

TEST_F(Dump, CallbacksMayDumpComeAndGoWhileCalled)
{
    CCallback next, last, inner([&] {
        CUDump("nested");
        CUDumpUnRegister(&m_first);
        CUDumpUnRegister(&inner);
        CUDumpUnRegister(&next);
    });
    for (CCallback *pCallback : {&m_first, &inner, &next, &last})
        CUDumpRegister(pCallback);
    CUDump("a");
    CUDump("b");
    EXPECT_EQ("a;a;debugger:nested;a;debugger:a;b;debugger:b;", Events());
}

TEST_F(Dump, ManyProcessesAndThreadsLoseAndTearNoLine)
{
    std::vector<std::string> expected;
    const CChildProcess processes[] = {CChildProcess("ManyThreads"), CChildProcess("ManyThreads")};
    for (const CChildProcess &process : processes) {
        EXPECT_EQ(0u, process.ExitCode());
        for (int i = 0; i < 400; ++i)
            expected.push_back(LineOf(process.Id(), i / 100, i % 100) + "\r");
    }
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(2u, m_directory.Files("ZELLog-*").size());
    EXPECT_EQ(expected, LoggedLines());
}
