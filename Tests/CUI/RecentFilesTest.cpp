// The list of recent files, in the registry and in a menu.
#include "CUI/RecentFiles.h"

#include "FrameFixture.h"
#include "Support/FailingCall.h"
#include "Support/Reports.h"
#include "Support/TemporaryDirectory.h"

namespace {

class CRecent final : public CCUIRecentFiles
{
public:
    explicit CRecent(CCUIFrameWindow *pFrame, int nMost = 3)
        : CCUIRecentFiles(pFrame, 1710, nMost, "Test")
    {
    }
    void OnGone(const CCUString &sPath, DWORD nError) override
    {
        m_gone += Text("%s %lu", sPath.GetString(), nError);
    }
    std::string m_gone;
};

// The items of a menu of the frame that opens.
std::string Open(CTestFrame &frame)
{
    const HMENU hMenu = GetSubMenu(frame.GetMenu(), 0);
    SendMessageA(frame, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(hMenu), 0);
    std::string items;
    for (UINT i = 0; static_cast<int>(i) < GetMenuItemCount(hMenu); ++i) {
        char szText[256] = "";
        GetMenuStringA(hMenu, i, szText, sizeof szText, MF_BYPOSITION);
        items += szText + std::string(GetMenuState(hMenu, i, MF_BYPOSITION) & 3 ? " off|" : "|");
    }
    return items;
}

}  // namespace

TEST(RecentFiles, AreKeptLatestFirstAndSharedWithOtherRuns)
{
    const CTestSettings settings;
    CTestFrame frame;
    CRecent recent(&frame);
    frame.SetMenu(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(700));
    for (const char *path : {"C:\\a", "C:\\b", "C:\\c", "c:\\A", "C:\\d"})
        recent.Add(path);
    EXPECT_EQ("&Open|&1 C:\\d|&2 c:\\A|&3 C:\\c|E&xit|", Open(frame));
    CTestSettings::Set("2", "C:\\another run");
    CTestSettings::Set("3", "c:\\D");
    EXPECT_EQ("&Open|&1 C:\\d|&2 C:\\another run|E&xit|", Open(frame));
    recent.Add("C:\\e");
    recent.Remove("C:\\D");
    EXPECT_EQ("C:\\another run", CTestSettings::Get("2") + CTestSettings::Get("3"));
    const CFakeCall<LONG(HKEY, LPCSTR, DWORD, DWORD, const BYTE *, DWORD)> refuse(
        "RegSetValueExA", [](auto...) { return ERROR_ACCESS_DENIED; });
    const CDumped dumped;
    recent.Add("C:\\f");
    EXPECT_EQ(0u, dumped.m_text.find("Unable to keep file C:\\f, gle: "));
    recent.Add("C:\\g");
    EXPECT_EQ("&Open|&1 C:\\g|&2 C:\\f|&3 C:\\e|E&xit|", Open(frame)) << "it refuses";
}

TEST(RecentFiles, ShowInTheMenuOpenAndTellWhatIsGone)
{
    const CTestSettings settings;
    const CTemporaryDirectory folder;
    CTestFrame frame;
    CRecent replaced(&frame), recent(&frame, 11);
    frame.SetMenu(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(700));
    EXPECT_EQ("&Open|No files off|E&xit|", Open(frame));
    recent.Add("C:\\A & B.txt");
    recent.Add("C:\\a very long folder name indeed\\and another one in it\\and so on\\file.txt");
    const std::string items = Open(frame);
    EXPECT_EQ(0u, items.find("&Open|&1 C:\\")) << items;
    EXPECT_LT(items.find("...\\"), items.find("file.txt|&2 C:\\A && B.txt|E&xit|")) << items;
    folder.Make("there.txt");
    const std::string there = folder.Path() + "\\there.txt";
    recent.Add(there.c_str());
    EXPECT_EQ(there, recent.GetLongTT(1710).GetString());
    SendMessageA(frame, WM_COMMAND, 1710, 0);
    SendMessageA(frame, WM_COMMAND, 1712, 0);
    EXPECT_EQ(there + "|", frame.m_asked);
    EXPECT_EQ("C:\\A & B.txt 2", recent.m_gone);
    for (int i = 0; i < 12; ++i)
        recent.Add(Text("C:\\%d", i).c_str());
    EXPECT_EQ(
        "&Open|&1 C:\\11|&2 C:\\10|&3 C:\\9|&4 C:\\8|&5 C:\\7|&6 C:\\6|&7 C:\\5|&8 C:\\4|"
        "&9 C:\\3|1&0 C:\\2|11 C:\\1|E&xit|",
        Open(frame));
    while (recent.GetCount())
        recent.Remove(recent.GetFile(0));
    EXPECT_EQ("&Open|No files off|E&xit|", Open(frame));
}
