#include "CUI/Data.h"

#include <gtest/gtest.h>

#include "Support/MultimediaHook.h"
#include "Support/Reports.h"
#include "Support/FailingCall.h"
#include "Support/PixelMap.h"

namespace {

// A record of the test's own.
class CRecord : public CUIData
{
};

// The colour that a brush or a pen draws with.
COLORREF ColorOf(HGDIOBJ hObject)
{
    CTestSurface surface(32, CPixelMap(9, 1));
    const HGDIOBJ hOld = SelectObject(surface, hObject);
    if (GetObjectType(hObject) == OBJ_BRUSH)
        PatBlt(surface, 0, 0, 9, 1, PATCOPY);
    else
        LineTo(surface, 9, 0);
    SelectObject(surface, hOld);
    return surface.Read().At(5, 0);
}

}  // namespace

TEST(Data, HoldsTheSystemsMetricsFontsAndCursorsInTheOrderOfTheRecord)
{
    const CUIData *pData = CUIGetWinData();
    const bool bWin95 = GetVersion() >= 0x80000000;
    std::vector<LONG> expected = {bWin95, !bWin95};
    for (const int nMetric : {SM_CXVSCROLL, SM_CYHSCROLL, SM_CXICON, SM_CYICON, SM_CXFRAME,
                              SM_CYFRAME, SM_CYCAPTION, SM_CXBORDER, SM_CYBORDER})
        expected.push_back(GetSystemMetrics(nMetric));
    RECT desktop;
    GetWindowRect(GetDesktopWindow(), &desktop);
    const HDC hScreen = GetDC(nullptr);
    SIZE size;
    GetTextExtentPoint32A(hScreen, "M", 1, &size);
    const LONG cxInch = GetDeviceCaps(hScreen, LOGPIXELSX), cySize = GetSystemMetrics(SM_CYSIZE);
    expected.insert(expected.end(),
                    {1, 1, GetSystemMetrics(SM_CXSIZE), cySize, desktop.right, desktop.bottom,
                     cxInch, GetDeviceCaps(hScreen, LOGPIXELSY), size.cy});
    ReleaseDC(nullptr, hScreen);
    for (size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(expected[i], reinterpret_cast<const LONG *>(pData)[i]) << "field " << i;
    // 20 metrics, 11 brushes and pens, 6 colours and the table, 3 cursors, 5 fonts, the stamp.
    static_assert(sizeof(CUIData) == (20 + 11 + 6 + 21 + 3 + 5 + 1) * 4, "nothing in between");
    const char *const cursors[] = {IDC_WAIT, IDC_ARROW, IDC_IBEAM};
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(LoadCursorA(nullptr, cursors[i]), (&pData->hcurWait)[i]);

    NONCLIENTMETRICSA metrics;
    metrics.cbSize = 340;
    SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, 340, &metrics, 0);
    ICONMETRICSA icons;
    icons.cbSize = 76;
    SystemParametersInfoA(SPI_GETICONMETRICS, 76, &icons, 0);
    const LOGFONTA fonts[] = {metrics.lfStatusFont, metrics.lfMenuFont, metrics.lfMenuFont,
                              icons.lfFont, icons.lfFont};
    for (int i = 0; i < 5; ++i) {
        LOGFONTA actual;
        ASSERT_NE(0, GetObjectA((&pData->hStatusFont)[i], sizeof actual, &actual));
        EXPECT_STREQ(fonts[i].lfFaceName, actual.lfFaceName);
        EXPECT_EQ(fonts[i].lfHeight, actual.lfHeight);
        EXPECT_EQ(i == 2 || i == 4 ? 700 : fonts[i].lfWeight, actual.lfWeight);
    }
}

TEST(Data, FollowsTheSystemsColours)
{
    CUIData *pData = CUIGetWinData();
    int indexes[31];
    COLORREF old[31], colors[31];
    for (int i = 0; i <= 30; ++i) {
        indexes[i] = i;
        old[i] = GetSysColor(i);
        colors[i] = i == 30 ? 0 : 0x102030U + 0x010305U * static_cast<COLORREF>(i);
    }
    SetSysColors(31, indexes, colors);
    const DWORD dwBefore = MultimediaTime();
    pData->UpdateSysColors();
    EXPECT_LE(pData->dwColorStamp - dwBefore, MultimediaTime() - dwBefore);
    for (DWORD i = 0; i <= 20; ++i) {
        EXPECT_EQ((10 + i) << 24 | colors[i], pData->crSys[i]);
        EXPECT_EQ(colors[i], pData->ResolveColor(pData->crSys[i]));
    }
    EXPECT_EQ(pData->crSys[COLOR_MENU], pData->crMenuBar);
    EXPECT_EQ(colors[29], pData->crMenuHilite);
    EXPECT_EQ(colors[COLOR_BTNFACE], pData->ResolveColor(0x03FFFFFF));
    for (const DWORD i : {21U, 29U})
        EXPECT_EQ(colors[i], pData->ResolveColor((10U + i) << 24));
    for (const DWORD cr : {0x123456U, 0x02FFFFFFU, 0x03FFFFFEU, 0x09FFFFFFU})
        EXPECT_EQ(cr, pData->ResolveColor(cr));

    const COLORREF fixed[] = {0, 0xFFFFFF, 0xC0C0C0, 0x808080};
    EXPECT_EQ(0, memcmp(fixed, &pData->crMonoText, sizeof fixed));
    const COLORREF hilite = colors[COLOR_BTNHIGHLIGHT], shadow = colors[COLOR_BTNSHADOW];
    // Six brushes, then five pens.
    const COLORREF drawn[] = {
        fixed[2], fixed[2], hilite, colors[COLOR_BTNFACE], shadow, colors[COLOR_WINDOW], fixed[2],
        fixed[3], hilite,   shadow, colors[COLOR_BTNTEXT]};
    for (int i = 0; i < 11; ++i)
        EXPECT_EQ(drawn[i], ColorOf(reinterpret_cast<HGDIOBJ *>(&pData->hbrLtGray)[i])) << i;
    SetSysColors(31, indexes, old);
}

TEST(Data, ReportsInOrderWhatTheSystemDoesNotTellOrMake)
{
    CReports reports;
    const CFailingCall<BOOL(OSVERSIONINFOA *)> version("GetVersionExA");
    const CFailingCall<HCURSOR(HINSTANCE, const char *)> cursor("LoadCursorA");
    const CFailingCall<HDC(HWND)> screen("GetDC");
    const CFailingCall<HPEN(int, int, COLORREF)> pen("CreatePen");
    CRecord *pData = nullptr;
    CFailPlan::Start(CFailPlan::ALL);
    EXPECT_EQ(
        "GetVersionEx(&VersionInfo); hDCScreen; hpenLtGray != 0; hpenDkGray != 0; "
        "hpenBtnShadow != 0; hpenBtnHilite != 0; hpenBtnText != 0; hcurWait != 0; "
        "hcurArrow != 0; hcurIBeam != 0",
        reports.Of("Data", [&] { pData = new CRecord; }));
    CFailPlan::Start(0);
    EXPECT_EQ(0, pData->bWin9x + pData->bWinNT + pData->cxVScroll);
    EXPECT_NE(nullptr, pData->hMenuFont);
}
