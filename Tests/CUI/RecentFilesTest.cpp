// The list of recent files, in the registry and in a menu.
#include "CUI/RecentFiles.h"

#include "FrameFixture.h"
#include "Support/ImportHook.h"
#include "Support/MenuItems.h"

namespace {

struct CRecent final : CCUIRecentFiles
{
    explicit CRecent(CTestFrame &frame, int nMost) : CCUIRecentFiles(&frame, 1710, nMost, "Test")
    {
        frame.SetMenu(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(700));
    }
    void OnGone(const CCUString &sPath, DWORD nError) override
    {
        m_gone += Text("%s %lu", sPath.GetString(), nError);
    }
    std::string m_gone;
};

// The items of the frame's menu when it opens.
std::string Open(CTestFrame &frame)
{
    const HMENU hMenu = GetSubMenu(frame.GetMenu(), 0);
    OpenMenu(frame, hMenu);
    return ItemsOf(hMenu, "|");
}

struct RecentFiles : testing::Test
{
    const CTestSettings settings;
    CTestFrame frame;
};

}  // namespace

TEST_F(RecentFiles, AreKeptLatestFirstAndSharedWithOtherRuns)
{
    CRecent recent(frame, 3);
    for (const char *path : {"C:\\0", "C:\\a", "C:\\b", "C:\\c", "c:\\B"})
        recent.Add(path);
    EXPECT_EQ("&Open|&1 c:\\B|&2 C:\\c|&3 C:\\a|E&xit", Open(frame));
    CTestSettings::Set("2", "C:\\another run");
    CTestSettings::Set("3", "C:\\b");
    EXPECT_EQ("&Open|&1 c:\\B|&2 C:\\another run|E&xit", Open(frame));
    recent.Add("c:\\B");
    EXPECT_EQ("C:\\b", CTestSettings::Get("3")) << "nothing is written that stands there";
    recent.Add("C:\\e");
    recent.Remove("C:\\b");
    EXPECT_EQ("C:\\another run", CTestSettings::Get("2") + CTestSettings::Get("3"));
    const CFakeCall<LONG(HKEY, LPCSTR, DWORD, DWORD, const BYTE *, DWORD)> refuse(
        "RegSetValueExA", [](auto...) { return ERROR_ACCESS_DENIED; });
    recent.Add("C:\\f");
    EXPECT_EQ("&Open|&1 C:\\f|&2 C:\\e|&3 C:\\another run|E&xit", Open(frame)) << "it refuses";
}

TEST_F(RecentFiles, ShowInTheMenuOpenAndTellWhatIsGone)
{
    CRecent recent(frame, 11);
    EXPECT_EQ("&Open|No files disabled|E&xit", Open(frame));
    recent.Add("C:\\A & B.txt");
    recent.Add("C:\\a very long folder name indeed\\and another one in it\\and so on\\file.txt");
    const std::string items = Open(frame);
    EXPECT_NE(std::string::npos, items.find("...\\")) << items;
    EXPECT_EQ("file.txt|&2 C:\\A && B.txt|E&xit", items.substr(items.find("file.txt")));
    recent.Add("C:\\windows\\system32\\kernel32.dll");
    for (const WPARAM nID : {1710U, 1712U, 1713U, 1720U})
        SendMessageA(frame, WM_COMMAND, nID, 0);
    EXPECT_EQ("C:\\windows\\system32\\kernel32.dll|C:\\A & B.txt 2", frame.m_told + recent.m_gone);
    for (int i = 0; i < 12; ++i)
        recent.Add(Text("C:\\%d", i).c_str());
    const std::string full = Open(frame);
    EXPECT_EQ("&9 C:\\3|1&0 C:\\2|11 C:\\1|E&xit", full.substr(full.find("&9"))) << full;
}
