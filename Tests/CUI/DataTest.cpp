#include "CUI/Data.h"

#include <gtest/gtest.h>

#include <mmsystem.h>

#include "Support/FailingCall.h"
#include "Support/GdiCount.h"
#include "Support/PixelMap.h"
#include "Support/Reports.h"

namespace {

COLORREF PaintedBy(HBRUSH hBrush)
{
    CTestSurface surface(32, CPixelMap(2, 2));
    const RECT rect = {0, 0, 2, 2};
    FillRect(surface, &rect, hBrush);
    return surface.Read().At(1, 1);
}
COLORREF LogColor(HBRUSH hBrush)
{
    LOGBRUSH brush = {};
    GetObjectA(hBrush, sizeof brush, &brush);
    return brush.lbColor;
}
COLORREF DrawnBy(HPEN hPen)
{
    CTestSurface surface(32, CPixelMap(9, 1));
    const HGDIOBJ hOld = SelectObject(surface, hPen);
    LineTo(surface, 9, 0);
    SelectObject(surface, hOld);
    return surface.Read().At(5, 0);
}
void ExpectFont(const LOGFONTA &expected, LONG nWeight, HFONT hFont)
{
    LOGFONTA actual;
    ASSERT_NE(0, GetObjectA(hFont, sizeof actual, &actual));
    EXPECT_STREQ(expected.lfFaceName, actual.lfFaceName);
    EXPECT_EQ(expected.lfHeight, actual.lfHeight);
    EXPECT_EQ(nWeight, actual.lfWeight);
}

// What is reported when the hooked calls fail from now on.
void ExpectReports(std::initializer_list<const char *> texts)
{
    const CReports reports;
    CFailPlan::Start(CFailPlan::ALL);
    CUIGetWinData()->UpdateSysColors();
    CUIGetWinData()->UpdateSysFonts();
    CFailPlan::Start(0);
    for (const char *text : texts)
        EXPECT_EQ(1, reports.Count(text, "Data")) << text;
    EXPECT_EQ(static_cast<int>(texts.size()), reports.Total());
    CUIGetWinData()->UpdateSysColors();
    CUIGetWinData()->UpdateSysFonts();
}

}  // namespace

TEST(Data, HoldsTheSystemsMetricsFontsAndCursorsInTheOrderOfTheRecord)
{
    const CUIData *pData = CUIGetWinData();
    std::vector<int> expected = {0, 1};
    for (const int nMetric : {SM_CXVSCROLL, SM_CYHSCROLL, SM_CXICON, SM_CYICON, SM_CXFRAME,
                              SM_CYFRAME, SM_CYCAPTION, SM_CXBORDER, SM_CYBORDER})
        expected.push_back(GetSystemMetrics(nMetric));
    RECT desktop;
    GetWindowRect(GetDesktopWindow(), &desktop);
    const HDC hScreen = GetDC(nullptr);
    SIZE size;
    GetTextExtentPoint32A(hScreen, "M", 1, &size);
    for (const LONG nMetric :
         {1L, 1L, LONG{GetSystemMetrics(SM_CXSIZE)}, LONG{GetSystemMetrics(SM_CYSIZE)},
          desktop.right, desktop.bottom, LONG{GetDeviceCaps(hScreen, LOGPIXELSX)},
          LONG{GetDeviceCaps(hScreen, LOGPIXELSY)}, size.cy})
        expected.push_back(static_cast<int>(nMetric));
    ReleaseDC(nullptr, hScreen);
    for (size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(expected[i], reinterpret_cast<const int *>(pData)[i]) << "field " << i;
    // 20 metrics, 11 brushes and pens, 6 colours and the table, 3 cursors, 5 fonts, the stamp.
    static_assert(sizeof(CUIData) == (20 + 11 + 6 + 21 + 3 + 5 + 1) * 4, "nothing in between");
    EXPECT_EQ(LoadCursorA(nullptr, IDC_WAIT), pData->hcurWait);
    EXPECT_EQ(LoadCursorA(nullptr, IDC_ARROW), pData->hcurArrow);
    EXPECT_EQ(LoadCursorA(nullptr, IDC_IBEAM), pData->hcurIBeam);

    NONCLIENTMETRICSA metrics;
    metrics.cbSize = 340;
    SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, 340, &metrics, 0);
    ICONMETRICSA icons;
    icons.cbSize = 76;
    SystemParametersInfoA(SPI_GETICONMETRICS, 76, &icons, 0);
    ExpectFont(metrics.lfStatusFont, metrics.lfStatusFont.lfWeight, pData->hStatusFont);
    ExpectFont(metrics.lfMenuFont, metrics.lfMenuFont.lfWeight, pData->hMenuFont);
    ExpectFont(metrics.lfMenuFont, 700, pData->hMenuFontBold);
    ExpectFont(icons.lfFont, icons.lfFont.lfWeight, pData->hIconFont);
    ExpectFont(icons.lfFont, 700, pData->hIconFontBold);
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
    // Who still has an old object selected does not hold the update up.
    CTestSurface user(32, CPixelMap(4, 4));
    SelectObject(user, pData->hbrLtGray);
    SelectObject(user, pData->hpenBtnText);
    const DWORD dwBefore = timeGetTime();
    pData->UpdateSysColors();
    EXPECT_LE(pData->dwColorStamp - dwBefore, timeGetTime() - dwBefore);
    for (DWORD i = 0; i <= 20; ++i) {
        EXPECT_EQ((10 + i) << 24 | colors[i], pData->crSys[i]);
        EXPECT_EQ(colors[i], pData->ResolveColor(pData->crSys[i]));
    }
    EXPECT_EQ(pData->crSys[COLOR_MENU], pData->crMenuBar);
    EXPECT_EQ(colors[29], pData->crMenuHilite);
    EXPECT_EQ(colors[COLOR_BTNFACE], pData->ResolveColor(0x03FFFFFF));
    EXPECT_EQ(colors[29], pData->ResolveColor((10U + 29U) << 24));
    for (const DWORD cr : {0x123456U, 0x02FFFFFFU, 0x03FFFFFEU, 0x09FFFFFFU})
        EXPECT_EQ(cr, pData->ResolveColor(cr));

    EXPECT_EQ(0xC0C0C0U, PaintedBy(pData->hbrLtGray));
    EXPECT_EQ(0xC0C0C0U, PaintedBy(pData->hbrDkGray));
    EXPECT_EQ(colors[COLOR_BTNHIGHLIGHT], PaintedBy(pData->hbrBtnHilite));
    EXPECT_EQ(colors[COLOR_BTNSHADOW], PaintedBy(pData->hbrBtnShadow));
    EXPECT_EQ(pData->crSys[COLOR_BTNFACE], LogColor(pData->hbrBtnFace));
    EXPECT_EQ(pData->crSys[COLOR_WINDOW], LogColor(pData->hbrWindow));
    EXPECT_EQ(0xC0C0C0U, DrawnBy(pData->hpenLtGray));
    EXPECT_EQ(0x808080U, DrawnBy(pData->hpenDkGray));
    EXPECT_EQ(colors[COLOR_BTNHIGHLIGHT], DrawnBy(pData->hpenBtnHilite));
    EXPECT_EQ(colors[COLOR_BTNSHADOW], DrawnBy(pData->hpenBtnShadow));
    EXPECT_EQ(colors[COLOR_BTNTEXT], DrawnBy(pData->hpenBtnText));

    const int nBefore = GdiCount();
    for (int i = 0; i < 500; ++i) {
        pData->UpdateSysColors();
        pData->UpdateWinIni();
    }
    EXPECT_NEAR(nBefore, GdiCount(), 2);
    SetSysColors(31, indexes, old);
}

TEST(Data, ReportsWhatItCannotHaveWhenItIsMade)
{
    const CFailingCall<BOOL(OSVERSIONINFOA *)> version("GetVersionExA");
    const CFailingCall<HCURSOR(HINSTANCE, const char *)> cursor("LoadCursorA");
    const CFailingCall<HDC(HWND)> screen("GetDC");
    CFailPlan::Start(CFailPlan::ALL);
    const CReports reports;
    const CUIData *pData = CUIGetWinData();
    for (const char *text : {"GetVersionEx(&VersionInfo)", "hDCScreen", "hcurWait != 0",
                             "hcurArrow != 0", "hcurIBeam != 0"})
        EXPECT_EQ(1, reports.Count(text, "Data")) << text;
    EXPECT_EQ(0, pData->bWin9x + pData->bWinNT + pData->cxVScroll);
    EXPECT_NE(nullptr, pData->hMenuFont);
}

TEST(Data, ReportsBrushesThatItCannotMake)
{
    CUIGetWinData();
    const CFailingCall<HBRUSH(COLORREF)> fail("CreateSolidBrush");
    ExpectReports({"hbrLtGray != 0", "hbrDkGray != 0", "hbrBtnFace != 0", "hbrBtnShadow != 0",
                   "hbrBtnHilite != 0", "hbrWindow != 0"});
}

TEST(Data, ReportsPensAndFontsThatItCannotMake)
{
    CUIGetWinData();
    const CFailingCall<HPEN(int, int, COLORREF)> failPen("CreatePen");
    const CFailingCall<HFONT(const LOGFONTA *)> failFont("CreateFontIndirectA");
    ExpectReports({"hpenLtGray != 0", "hpenDkGray != 0", "hpenBtnShadow != 0", "hpenBtnHilite != 0",
                   "hpenBtnText != 0", "hStatusFont", "hMenuFont", "hMenuFontBold", "hIconFont",
                   "hIconFontBold"});
}
