// Menus that draw themselves: what they take over, how large they are, how they look and answer.
#include <gtest/gtest.h>

#include "CUI/Accelerators.h"
#include "CUI/Data.h"
#include "CUI/Menu.h"
#include "Support/DotsPerInch.h"
#include "Support/GdiCount.h"
#include "Support/ImportHook.h"
#include "Support/MenuItems.h"
#include "Support/Reports.h"
#include "Support/TestBitmap.h"
#include "Support/TestCommand.h"

namespace {

const UINT ID = 1000;
const HINSTANCE MODULE = GetModuleHandleA(nullptr);

// A window with a menu, which is asked of its items as the system asks.
struct Menu : testing::Test
{
    void Open() { OpenMenu(window, hMenu); }
    // What a screen reader finds.
    std::string Accessible(UINT nItem)
    {
        const auto *const pInfo =
            reinterpret_cast<const DWORD *>(ItemInfo(hMenu, nItem).dwItemData);
        if (!pInfo || pInfo[0] != 0xAA0DF00D)
            return Text("no record: %p", reinterpret_cast<const void *>(pInfo));
        const CCUString sText(*reinterpret_cast<wchar_t *const *>(pInfo + 2));
        EXPECT_EQ(pInfo[1], static_cast<DWORD>(sText.GetLength()));
        return std::string(sText);
    }
    MEASUREITEMSTRUCT Measure(UINT nItem)
    {
        MEASUREITEMSTRUCT measure = {ODT_MENU, 0, 0, 0, 0, ItemInfo(hMenu, nItem).dwItemData};
        EXPECT_EQ(1, Send(window, WM_MEASUREITEM, 0, reinterpret_cast<LPARAM>(&measure)));
        return measure;
    }
    // What an item of the size that it asks for draws over a red ground.
    CPixelMap Draw(UINT nItem, UINT nState = 0)
    {
        const MEASUREITEMSTRUCT measure = Measure(nItem);
        const RECT rc = {0, 0, LONG(measure.itemWidth), LONG(measure.itemHeight)};
        CTestSurface surface(CPixelMap(rc.right, rc.bottom, RGB(255, 0, 0)));
        DRAWITEMSTRUCT draw = {ODT_MENU, 0,       0,  ODA_DRAWENTIRE,  nState,
                               nullptr,  surface, rc, measure.itemData};
        draw.hwndItem = reinterpret_cast<HWND>(hMenu);
        EXPECT_EQ(1, Send(window, WM_DRAWITEM, 0, reinterpret_cast<LPARAM>(&draw)));
        return surface.Read();
    }

    CTestPopup window;
    CCUIMenu menu;
    const HMENU hMenu = menu.GetHandle();
};

// Three pictures of 16 pixels: a square, of a colour of each one's own, in another colour.
const COLORREF PICTURE_COLORS[] = {0xFF0000, 0x0000FF, 0};
const COLORREF PICTURE_GROUND = 0xFFFF00;
CCUIBitmap Strip()
{
    CPixelMap strip(48, 16, PICTURE_GROUND);
    for (int i = 0; i < 64 * 3; ++i)
        strip.Set(i / 64 * 16 + 4 + i % 8, 4 + i / 8 % 8, PICTURE_COLORS[i / 64]);
    return BitmapOf(strip);
}

}  // namespace

TEST_F(Menu, CallsKeysAsTheLayoutDoesAndInEnglishWhereThatHasNoWords)
{
    const ACCEL rows[] = {{FVIRTKEY | FCONTROL | FSHIFT, VK_F5, 1},
                          {FVIRTKEY, VK_PRIOR, 2},
                          {FVIRTKEY, VK_NUMPAD5, 3},
                          {FCONTROL, 'A', 4},
                          {FALT, '?', 5}};
    const CFakeCall<int(LONG, LPSTR, int)> layout("GetKeyNameTextA", [](LONG n, char *psz, int) {
        const int nScan = n >> 16 & 0xFF;
        return nScan == 29 ? wsprintfA(psz, "STRG")
                           : wsprintfA(psz, n & 1 << 24 ? "%de" : "%d", nScan);
    });
    std::string names;
    for (const ACCEL &key : rows)
        names += std::string(CCUIAccelerators::KeyText(key)) + " ";
    EXPECT_EQ("STRG+42+F5 73e Num 5 42+A 56+? ", names);
}

TEST_F(Menu, TakesItsItemsOverAsTheyAreWhenItOpensAndKeepsTheirTexts)
{
    CCUIMenu sub;
    EXPECT_TRUE(menu.Append(ID, "one\tF9") && menu.AppendSeparator() && menu.Append(ID + 1, "two"));
    sub.Append(ID + 2, "three");
    EXPECT_TRUE(menu.AppendPopup("more", sub));
    EXPECT_EQ(nullptr, sub.GetHandle());
    AppendMenuA(hMenu, MF_OWNERDRAW, 7, "foreign");
    Open();
    EXPECT_EQ("one\tF9*  two* more* *", ItemsOf(hMenu));
    OpenMenu(window, GetSubMenu(hMenu, 3));
    EXPECT_EQ("three*", ItemsOf(GetSubMenu(hMenu, 3)));
    // Whatever is done to it from outside.
    const std::string long_text(200, 'w');
    EXPECT_TRUE(InsertMenuA(hMenu, 0, MF_BYPOSITION, 5, long_text.c_str()));
    EXPECT_TRUE(menu.Remove(ID + 1) && !menu.Remove(ID + 1) && menu.SetText(ID, "uno"));
    menu.Insert(0, 20, "new");
    ModifyMenuA(hMenu, 2, MF_BYPOSITION | MF_STRING, ID, "dos");
    Open();
    EXPECT_EQ("new* " + long_text + "* dos*  more* *", ItemsOf(hMenu));
    const HMENU hPlain = menu.Detach();
    EXPECT_EQ("new " + long_text + " dos  more *", ItemsOf(hPlain));
    EXPECT_EQ(0u, ItemInfo(hPlain, 0).dwItemData);
    DestroyMenu(hPlain);

    EXPECT_EQ("T&hree", ItemsOf(CCUIMenu(MODULE, MAKEINTRESOURCEA(520), 1).GetHandle()));
}

TEST_F(Menu, ShowsWhatHandlersSay)
{
    CTestCommand handler(ID);
    handler.m_nState = CUI_COMMAND_ACTIVE | CUI_COMMAND_TEXT | CUI_COMMAND_RADIO;
    window.RouteCommands(true);
    menu.Append(ID, "old\tF4");
    menu.Append(ID + 1, "&plain");
    // A system that keeps no text of drawn items.
    const CFakeCall<BOOL(HMENU, UINT, BOOL, LPCMENUITEMINFOA)> set(
        "SetMenuItemInfoA", [&](HMENU h, UINT n, BOOL b, LPCMENUITEMINFOA p) -> BOOL {
            return !(p->fMask & 0x1C0) && set.Original(h, n, b, p);
        });
    const CFakeCall<int(HMENU, UINT, LPSTR, int, UINT)> get(
        "GetMenuStringA", [&](HMENU h, UINT n, char *psz, int nMost, UINT nFlags) {
            const bool bDrawn = ItemInfo(h, n).fType & MFT_OWNERDRAW;
            return bDrawn ? 0 : get.Original(h, n, psz, nMost, nFlags);
        });
    const auto width = [&](const char *pszText) {
        handler.m_text = pszText;
        Open();
        const std::string text = std::string(pszText) + "\tF4";
        EXPECT_EQ(text + text, menu.GetText(ID).GetString() + Accessible(0));
        return Measure(1).itemWidth;
    };
    const UINT cxOther = width("Other name");
    EXPECT_GT(cxOther, width("Name"));
    EXPECT_TRUE(ItemInfo(hMenu, 0).fType & MFT_RADIOCHECK);
    EXPECT_EQ("&plain", ItemOf(menu.Detach(), 1));
    DestroyMenu(hMenu);
}

TEST_F(Menu, LooksAsTheSystemsColoursSayAtThatMoment)
{
    for (UINT i = 0; i < 5; ++i)
        menu.Append(ID + i, "mmmmmm");
    CCUIMenu sub;
    menu.AppendPopup("mmmmmm", sub);
    const UINT ids[] = {ID + 9, ID + 1, 0, ID + 4};
    ASSERT_TRUE(menu.SetPictures(Strip(), ids));
    menu.SetDefault(ID + 2);
    menu.CheckRadio(ID, ID, ID);
    // Colours that every depth has.
    const COLORREF crMenu = 0x00FFFF, crText = 0xFF0000, crGray = 0xFFFF00, crHilite = 0x00FF00;
    CUIData &data = *CUIGetWinData();
    data.crSys[COLOR_MENU] = crMenu;
    data.crSys[COLOR_MENUTEXT] = crText;
    data.crSys[COLOR_GRAYTEXT] = crGray;
    data.crSys[COLOR_HIGHLIGHT] = crHilite;
    data.crSys[COLOR_BTNSHADOW] = 0;
    data.crMenuHilite = 0xFF00FF;
    for (const BOOL bFlat : {FALSE, TRUE}) {
        const CFakeCall<BOOL(UINT, UINT, void *, UINT)> settings(
            "SystemParametersInfoA", [&](UINT n, UINT nMore, void *p, UINT nSave) {
                const BOOL bKnown = settings.Original(n, nMore, p, nSave);
                return n == 0x1022 ? (*static_cast<BOOL *>(p) = bFlat, TRUE) : bKnown;
            });
        Open();
        const CPixelMap plain = Draw(3);
        EXPECT_EQ(0, plain.Count(0x0000FF)) << "all of it is drawn";
        EXPECT_LT(plain.Count(crText), Draw(5).Count(crText)) << "an arrow";
        EXPECT_LT(Draw(2).Count(crMenu), plain.Count(crMenu)) << "bold";
        const CPixelMap selected = Draw(3, ODS_SELECTED);
        EXPECT_EQ(crHilite, selected.At(0, 0)) << "a frame";
        EXPECT_EQ(bFlat ? 0xFF00FF : crHilite, selected.At(1, 1));
        EXPECT_EQ(plain.Count(crText), selected.Count(GetSysColor(COLOR_HIGHLIGHTTEXT)));
        const CPixelMap gray = Draw(3, ODS_GRAYED);
        EXPECT_EQ(plain.Count(crText), gray.Count(crGray));
        EXPECT_EQ(bFlat, gray.Count(GetSysColor(COLOR_BTNHIGHLIGHT)) == 0) << "embossed";
        const CPixelMap dot = Draw(0, ODS_CHECKED);
        const CPixelMap tick = Draw(3, ODS_CHECKED);
        EXPECT_LT(plain.Count(crText) + 15, std::min(dot.Count(crText), tick.Count(crText)));
        EXPECT_FALSE(dot == tick);
        // Pictures: of 8 by 8 pixels, around which the item's own ground shows.
        const CPixelMap picture = Draw(1, ODS_SELECTED);
        EXPECT_EQ(64, picture.Count(PICTURE_COLORS[1]));
        EXPECT_EQ(0, picture.Count(PICTURE_GROUND));
        EXPECT_FALSE(Draw(4, ODS_CHECKED) == Draw(4)) << "pressed";
        EXPECT_LE(50, Draw(1, ODS_GRAYED).Count(0)) << "faint";
    }
    data.UpdateSysColors();
    const CDotsPerInch dpi(192);
    Open();
    EXPECT_EQ(4 * 64, Draw(1).Count(PICTURE_COLORS[1]));
}

TEST_F(Menu, FollowsSettingsThatChangeWhileItIsOpenWhenItOpensAgain)
{
    menu.Append(ID, "mmmm");
    NONCLIENTMETRICSA old = {};
    old.cbSize = 340;
    ASSERT_TRUE(SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, 340, &old, 0));
    NONCLIENTMETRICSA large = old;
    large.lfMenuFont.lfHeight = -60;
    const int nIndex = COLOR_MENU;
    const COLORREF crOld = GetSysColor(nIndex), crNew = 0x00FF00;
    // What is seen of it before they change.
    const auto open = [&](NONCLIENTMETRICSA &metrics, COLORREF cr) {
        CPixelMap map;
        window.m_on[WM_ENTERIDLE] = [&] {
            window.m_on.clear();
            const HWND hPopup = FindWindowA("#32768", nullptr);
            map = WindowPixels(hPopup);
            SystemParametersInfoA(SPI_SETNONCLIENTMETRICS, 340, &metrics, 0);
            Send(window, WM_SETTINGCHANGE, SPI_SETNONCLIENTMETRICS);
            SetSysColors(1, &nIndex, &cr);
            RedrawWindow(hPopup, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
            return EndMenu();
        };
        POINT point = {50, 50};
        window.DisplayPopupMenu(&menu, 0, point, nullptr);
        return map;
    };
    const CPixelMap before = open(large, crNew), grown = open(old, crOld);
    EXPECT_EQ(OnScreen(crNew), grown.At(4, grown.cy / 2));
    EXPECT_LE(before.cx + 120, grown.cx);
    EXPECT_LE(before.cy + 30, grown.cy);
    EXPECT_EQ(before, open(old, crOld));
}

TEST_F(Menu, ShowsTheShortcutsOfItsWindowsInAColumnOfTheirOwn)
{
    CTestWindow child(window, WS_CHILD);
    ACCEL outer[] = {{FVIRTKEY, VK_F6, ID}, {FVIRTKEY, VK_F7, ID + 1}}, inner = {FVIRTKEY, 'W', ID};
    window.SetAccelerators(outer, 2);
    child.SetAccelerators(&inner, 1);
    for (const char *const text : {"own\tSpace", "&column", "x", "\tF7"})
        menu.Append(ID + UINT(GetMenuItemCount(hMenu)), text);
    const auto width = [&](HWND hWnd) {
        OpenMenu(hWnd, hMenu);
        return Measure(2).itemWidth;
    };
    const auto ink = [&](UINT nItem) { return Draw(nItem).Count(GetSysColor(COLOR_MENUTEXT)); };
    const UINT cxSpace = width(window);
    const int nBoth = ink(1), nKey = ink(3);
    EXPECT_EQ("own\tSpace &column\tF7 x",
              Accessible(0) + " " + Accessible(1) + " " + Accessible(2));
    menu.SetText(ID, "own");
    const UINT cxF7 = width(child);
    EXPECT_EQ("own\tW", Accessible(0));
    EXPECT_LT(cxF7, cxSpace);
    CCUIAccelerators keys(MODULE, MAKEINTRESOURCEA(520));
    keys.Add(nullptr, 1);  // of none
    menu.SetAccelerators(keys);
    width(child);
    EXPECT_EQ("own\tShift+F2 &column", Accessible(0) + " " + Accessible(1));
    EXPECT_EQ(nBoth, ink(1) + nKey) << "one is over the other";
}

TEST_F(Menu, AnswersCharactersAsASystemMenu)
{
    for (const char *const text : {"&Ab", "&Cd\ta&x", "e&&&f", "&Cg", "&No", "Plain", "Cup", "Q"})
        menu.Append(ID + UINT(GetMenuItemCount(hMenu)), text);
    menu.Enable(ID + 4, false);
    const auto answer = [&](int ch) {
        const long n = Send(window, WM_MENUCHAR, WPARAM(ch), LPARAM(hMenu));
        return Text("%d %d", HIWORD(n), LOWORD(n));
    };
    Open();
    const char *const rows[] = {"a2 0", "A2 0", "F2 2", "c3 1", "n3 4", "p2 5", "&0 0", "x0 0"};
    for (const char *const row : rows)
        EXPECT_EQ(row + 1, answer(row[0])) << row;
}

TEST_F(Menu, RunsByKeyboardInItsPopupsAndSurvivesWhatHappensToIt)
{
    CReports reports;
    CTestCommand handler(ID, 3);
    window.RouteCommands(true);
    POINT at = {50, 50};
    const auto run = [&](CCUIMenu &popup, const std::vector<int> &keys) {
        for (const int nKey : keys)
            PostMessageA(window, nKey < 'a' ? WM_KEYDOWN : WM_CHAR, static_cast<WPARAM>(nKey), 1);
        window.DisplayPopupMenu(&popup, 0, at, nullptr);
        PumpWaiting();
    };
    const auto fill = [](CCUIMenu &popup) {
        CCUIMenu sub;
        popup.Append(ID + 1, "&one");
        sub.Append(ID + 2, "&two");
        return popup.AppendPopup("&sub", sub);
    };
    ExpectNoGdiLeft(30, [&] {
        CCUIMenu popup;
        fill(popup);
        popup.SetPictures(Strip(), &ID, 1);
        run(popup, {VK_DOWN, VK_RETURN});
        run(popup, {'s', 't'});
        EXPECT_EQ("1 2 ", handler.Done());
    });

    // The object, or the menu, goes while the menu is shown.
    for (const bool bObject : {true, false}) {
        auto shown = std::make_unique<CCUIMenu>();
        fill(*shown);
        window.m_on[WM_ENTERIDLE] = [&] {
            window.m_on.clear();
            bObject ? shown.reset() : void(DestroyMenu(shown->GetHandle()));
            const HWND hPopup = FindWindowA("#32768", nullptr);
            RedrawWindow(hPopup, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
            for (const int nKey : {VK_DOWN, VK_ESCAPE, VK_ESCAPE})
                PostMessageA(window, WM_KEYDOWN, static_cast<WPARAM>(nKey), 1);
            return 0;
        };
        window.DisplayPopupMenu(shown.get(), 0, at, nullptr);
    }
    // The window goes, with a bar that is the object's.
    CCUIMenu bar(CUI_MENU_BAR);
    fill(bar);
    SetMenu(window, bar.GetHandle());
    OpenMenu(window, GetSubMenu(bar.GetHandle(), 1));
    EXPECT_EQ("&one &sub", ItemsOf(bar.GetHandle())) << "the bar stays the system's";
    window.Destroy();
    EXPECT_EQ(nullptr, bar.GetHandle());
    EXPECT_EQ(0, reports.Total());
}
