#include "Window/PropertyGrid.h"

#include "DiscMaker/Skins.h"
#include "Support/TestWindow.h"

namespace {

struct CGridWindow : CCUIWindow, CDocumentWatcher, CPropertyHost
{
    CGridWindow() : m_document(this), m_grid(m_document, *this)
    {
        Create(nullptr, "grid", WS_POPUP | WS_VISIBLE, {0, 0, 300, 400}, nullptr, 0);
        m_grid.CreateGrid(*this, 1);
    }
    ~CGridWindow() override { Destroy(); }
    void OnSkinChanged(const SkinPart *pPart) override { m_grid.Read(pPart); }
    void OnPropertyRow(const PropertyRow &, bool) override {}
    void OnPropertyButton(const PropertyRow &) override {}

    HWND Editor() { return GetDlgItem(m_grid, 1); }
    void PressEscape() { EXPECT_TRUE(PressKey(VK_ESCAPE, Editor())); }

    CDocument m_document;
    CPropertyGrid m_grid;
};

}  // namespace

// Of the row that another skin finds selected, too.
TEST(PropertyGrid, TakesBackWhatWasTypedInTheSkinThatIsShown)
{
    CGridWindow window;
    CSkin skin = GoodSkin();
    for (const char *const pszLabel : {"First", "Second"}) {
        skin.m_texts[0].m_entries[IDS_DISC_LABEL] = CWideText(pszLabel, 1252);
        window.m_document.Start(skin);
        ASSERT_EQ(UINT{IDS_DISC_LABEL}, window.m_grid.Selected()->m_nID);
        window.PressEscape();
        EXPECT_FALSE(window.m_document.IsModified()) << pszLabel;
        SetWindowTextA(window.Editor(), "Typed");
        EXPECT_STREQ("Typed", window.m_document.Entry(IDS_DISC_LABEL));
        window.PressEscape();
        EXPECT_STREQ(pszLabel, window.m_document.Entry(IDS_DISC_LABEL));
    }
    // With a row for languages a heading stands where the background stood.
    window.m_grid.SelectEntry(IDB_BACKGROUND, true);
    skin.m_texts.push_back({0x407, {}});
    window.m_document.Start(skin);
    EXPECT_NE(PropertyRow::Heading, window.m_grid.Selected()->m_kind);
    // What problems are about; where no row is, it stays.
    window.m_grid.SelectEntry(PROBLEM_ICON, true);
    EXPECT_EQ(PropertyRow::Icon, window.m_grid.Selected()->m_kind);
    window.m_grid.SelectEntry(IDS_EXIT, true);
    window.m_grid.SelectEntry(99, true);
    EXPECT_EQ(UINT{IDS_EXIT}, window.m_grid.Selected()->m_nID);
}

TEST(PropertyGrid, SpacesPlacesAndWritesThemAsSkinsDo)
{
    CGridWindow window;
    CSkin skin = GoodSkin();
    skin.m_texts[0].m_entries[IDS_RUN_POS] = CWideText("14,  52", 1252);
    window.m_document.Start(skin);
    window.m_grid.SelectEntry(IDS_RUN_POS, true);
    EXPECT_EQ("14, 52", TextOf(window.Editor()));
    EXPECT_STREQ("14,  52", window.m_document.Entry(IDS_RUN_POS));
    SetWindowTextA(window.Editor(), "15, 52");
    EXPECT_STREQ("15,52", window.m_document.Entry(IDS_RUN_POS));
    EXPECT_EQ("15, 52", TextOf(window.Editor()));
    window.PressEscape();
    EXPECT_STREQ("14,  52", window.m_document.Entry(IDS_RUN_POS));
}
