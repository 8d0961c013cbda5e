// Runs of a program, each a process, that find the first one.
#include "CUI/SingleInstance.h"

#include <set>

#include "FrameFixture.h"
#include "Support/ChildProcess.h"

namespace {

class CInstance : public CCUISingleInstance
{
public:
    explicit CInstance(DWORD nTimeout = 60000) : m_outcome(Start("CUITests\\run", nTimeout)) {}
    void OnLaterRun(const CCUString &sCommandLine, const CCUString &sFolder) override
    {
        ++m_nRuns;
        CCUISingleInstance::OnLaterRun(sCommandLine, sFolder);
    }
    // Serves until so many runs have come, for a minute at most.
    void Await(int nRuns)
    {
        for (int i = 0; i < 600 && m_nRuns < nRuns; ++i) {
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 100, QS_ALLINPUT);
            PumpWaiting();
        }
    }
    int m_nRuns = 0;
    const Outcome m_outcome;
};

CHILD_PROCESS(ImpatientRun)
{
    exit(CInstance(300).m_outcome);
}
// The first of four serves the others; the later ones end with 1.
CHILD_PROCESS(RivalRun)
{
    CInstance instance;
    if (instance.m_outcome == CCUISingleInstance::First)
        instance.Await(3);
    exit(instance.m_outcome + 10 * instance.m_nRuns);
}

}  // namespace

TEST(SingleInstance, HandsItsCommandLineAndFolderToTheFirst)
{
    CTestFrame frame;
    ShowWindow(frame, SW_SHOWMINIMIZED);
    CInstance instance;
    const CChildProcess later("RivalRun", "\"a b.txt\"", "C:\\windows");
    instance.Await(1);
    EXPECT_EQ(1u, later.ExitCode());
    EXPECT_STRCASEEQ("C:\\windows\\a b.txt|", frame.m_asked.c_str());
    EXPECT_FALSE(IsIconic(frame));
    EXPECT_EQ(frame.GetHandle(), GetForegroundWindow());
    // Nobody answers now: it must not wait for ever.
    EXPECT_EQ(static_cast<DWORD>(CCUISingleInstance::Unreachable),
              CChildProcess("ImpatientRun").ExitCode());
}

TEST(SingleInstance, IsOneOfRunsThatStartAtOnce)
{
    const CChildProcess runs[] = {CChildProcess("RivalRun"), CChildProcess("RivalRun"),
                                  CChildProcess("RivalRun"), CChildProcess("RivalRun")};
    std::multiset<DWORD> codes;
    for (const CChildProcess &run : runs)
        codes.insert(run.ExitCode());
    EXPECT_EQ((std::multiset<DWORD>{1, 1, 1, 30}), codes);
}

TEST(SingleInstance, TakesNothingButCommandLines)
{
    CInstance instance;
    HWND hWnd = nullptr;
    char szTitle[MAX_PATH] = "";
    while (strncmp(szTitle, "CUITests/run/", 13) != 0) {
        ASSERT_TRUE(hWnd = FindWindowExA(nullptr, hWnd, "pzl-Window", nullptr));
        GetWindowTextA(hWnd, szTitle, MAX_PATH);
    }
    const COPYDATASTRUCT rows[] = {{1, 4, const_cast<char *>("f\0c")},
                                   {0x43554931, 3, const_cast<char *>("f\0c")},
                                   {0x43554931, 3, const_cast<char *>("fc")},
                                   {0x43554931, 1, const_cast<char *>("")},
                                   {0x43554931, 0, nullptr},
                                   {0x43554931, 4, const_cast<char *>("f\0c")}};
    for (const COPYDATASTRUCT &row : rows)
        EXPECT_EQ(&row == rows + 5,
                  SendMessageA(hWnd, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&row)) != 0);
    instance.Await(1);
    EXPECT_EQ(1, instance.m_nRuns);
}
