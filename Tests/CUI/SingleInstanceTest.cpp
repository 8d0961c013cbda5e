// Runs of a program, each a process, that find the first one.
#include "CUI/SingleInstance.h"

#include <set>

#include "FrameFixture.h"
#include "Support/ChildProcess.h"

namespace {

struct CInstance : CCUISingleInstance
{
    explicit CInstance(DWORD nTimeout = 60000) : m_outcome(Start("CUITests\\run", nTimeout)) {}
    void OnLaterRun(const CCUString &sCommandLine, const CCUString &sFolder) override
    {
        ++m_nRuns;
        CCUISingleInstance::OnLaterRun(sCommandLine, sFolder);
    }
    int m_nRuns = 0;
    const Outcome m_outcome;
};

// The first of four serves the others; the later ones end with 1.
CHILD_PROCESS(RivalRun)
{
    CInstance instance(strstr(GetCommandLineA(), "impatient") ? 300 : 60000);
    if (instance.m_outcome == CCUISingleInstance::First)
        PumpUntil([&] { return instance.m_nRuns >= 3; });
    exit(instance.m_outcome + 10 * instance.m_nRuns);
}

}  // namespace

TEST(SingleInstance, HandsItsCommandLineAndFolderToTheFirst)
{
    CTestFrame frame;
    ShowWindow(frame, SW_SHOWMINIMIZED);
    CInstance instance;
    const CChildProcess later("RivalRun", "\"a b.txt\"", "C:\\windows");
    EXPECT_TRUE(PumpUntil([&] { return instance.m_nRuns >= 1; }));
    EXPECT_EQ(1u, later.ExitCode());
    EXPECT_STRCASEEQ("C:\\windows\\a b.txt|", frame.m_told.c_str());
    EXPECT_FALSE(IsIconic(frame));
    // What others send is not taken.
    HWND hWnd = nullptr;
    do
        ASSERT_TRUE(hWnd = FindWindowExA(nullptr, hWnd, "pzl-Window", nullptr));
    while (TextOf(hWnd).find("CUITests/run/") != 0);
    char good[] = "f\0c", open[] = "fc";
    for (COPYDATASTRUCT data : {COPYDATASTRUCT{1, 4, good},
                                {0x43554931, 3, good},
                                {0x43554931, 3, open},
                                {0x43554931, 0, nullptr}})
        EXPECT_EQ(0, SendMessageA(hWnd, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data)));
    // Nobody answers now: it must not wait for ever.
    EXPECT_EQ(static_cast<DWORD>(CCUISingleInstance::Unreachable),
              CChildProcess("RivalRun", "impatient").ExitCode());
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
