// The shared GDI data, and what a change of the system's colours and settings does to it.
#include "CUI/Data.h"

#include "CU/Time.h"
#include "Support/ImportHook.h"
#include "Support/TestWindow.h"

namespace {

// The colour that a brush or a pen is made of, which a screen of few colours may not have.
COLORREF ColorOf(HGDIOBJ hObject)
{
    LOGBRUSH brush = {};
    LOGPEN pen = {};
    GetObjectA(hObject, sizeof brush, &brush);
    GetObjectA(hObject, sizeof pen, &pen);
    return GetObjectType(hObject) == OBJ_BRUSH ? brush.lbColor : pen.lopnColor;
}

}  // namespace

TEST(Data, HoldsTheSystemsMetricsInTheOrderOfTheRecord)
{
    CUIData &data = *CUIGetWinData();
    RECT desktop;
    GetWindowRect(GetDesktopWindow(), &desktop);
    const CFakeCall<int(int)> metric("GetSystemMetrics", [](int nIndex) { return 1000 + nIndex; });
    data.UpdateWinIni();
    int nRead = 0;
    for (const int nMetric : {SM_CXVSCROLL, SM_CYHSCROLL, SM_CXICON, SM_CYICON, SM_CXFRAME,
                              SM_CYFRAME, SM_CYCAPTION, SM_CXBORDER, SM_CYBORDER})
        EXPECT_EQ(1000 + nMetric, (&data.cxVScroll)[nRead++]);
    EXPECT_EQ(1000 + SM_CXSIZE, data.cxSize);
    EXPECT_EQ(1000 + SM_CYSIZE, data.cySize);
    EXPECT_EQ(Text("%ld %ld 96 96", desktop.right, desktop.bottom),
              Text("%d %d %d %d", data.cxDesktop, data.cyDesktop, data.cxPixelsPerInch,
                   data.cyPixelsPerInch));
    EXPECT_LT(0, data.cyChar);
}

TEST(Data, HoldsTheSystemsFonts)
{
    const CUIData *pData = CUIGetWinData();
    NONCLIENTMETRICSA metrics;
    metrics.cbSize = 340;
    SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, 340, &metrics, 0);
    ICONMETRICSA icons;
    icons.cbSize = 76;
    SystemParametersInfoA(SPI_GETICONMETRICS, 76, &icons, 0);
    LOGFONTA fonts[] = {metrics.lfStatusFont, metrics.lfMenuFont, metrics.lfMenuFont, icons.lfFont,
                        icons.lfFont};
    fonts[2].lfWeight = fonts[4].lfWeight = FW_BOLD;
    for (int i = 0; i < 5; ++i) {
        LOGFONTA actual = {};
        GetObjectA((&pData->hStatusFont)[i], sizeof actual, &actual);
        EXPECT_EQ(0, memcmp(&fonts[i], &actual, offsetof(LOGFONTA, lfFaceName))) << i;
        EXPECT_STREQ(fonts[i].lfFaceName, actual.lfFaceName);
    }
}

TEST(Data, FollowsTheSystemsColoursAndTellsTheWindowsInside)
{
    CUIData &data = *CUIGetWinData();
    CTestWindow first, second, child(second, WS_CHILD), dies(second, WS_CHILD),
        last(child, WS_CHILD);
    int nSeen = 0;
    for (CTestWindow *pWindow : {&child, &last})
        pWindow->m_on[WM_SYSCOLORCHANGE] = [&] { return ++nSeen; };
    child.m_on[WM_WININICHANGE] = [&] { return dies.Destroy(); };
    int indexes[31];
    COLORREF old[31], colors[31];
    for (int i = 0; i <= 30; ++i) {
        indexes[i] = i;
        old[i] = GetSysColor(i);
        colors[i] = i == 30 ? 0 : 0x102030U + 0x010305U * static_cast<COLORREF>(i);
    }
    SetSysColors(31, indexes, colors);
    EXPECT_EQ(2, nSeen);
    for (DWORD i = 0; i <= 20; ++i)
        EXPECT_EQ((10 + i) << 24 | colors[i], data.crSys[i]);
    for (DWORD i = 0; i <= 29; ++i)
        EXPECT_EQ(colors[i], data.ResolveColor((10 + i) << 24)) << i;
    EXPECT_EQ(colors[COLOR_BTNFACE], data.ResolveColor(0x03FFFFFF));
    EXPECT_EQ(0x123456U, data.ResolveColor(0x123456));
    const COLORREF light = 0xC0C0C0, dark = 0x808080;
    const COLORREF hilite = colors[COLOR_BTNHIGHLIGHT], shadow = colors[COLOR_BTNSHADOW];
    // Six brushes, then five pens.
    const COLORREF drawn[] = {
        light, light,  hilite, colors[COLOR_BTNFACE], shadow, colors[COLOR_WINDOW], light,
        dark,  hilite, shadow, colors[COLOR_BTNTEXT]};
    for (int i = 0; i < 11; ++i)
        EXPECT_EQ(drawn[i], ColorOf(reinterpret_cast<HGDIOBJ *>(&data.hbrLtGray)[i])) << i;
    SetSysColors(31, indexes, old);

    data.cxFrame = -1;
    CCUTime::TimeFormatChanged(false);
    SendMessageA(second, WM_WININICHANGE, 9, reinterpret_cast<LPARAM>("intl"));
    EXPECT_EQ(9u, child.m_wParam);
    EXPECT_STREQ("intl", reinterpret_cast<const char *>(child.m_lParam));
    EXPECT_TRUE(CCUTime::IsTimeFormatChanged());
    EXPECT_EQ(GetSystemMetrics(SM_CXFRAME), data.cxFrame);
}
