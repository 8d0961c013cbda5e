#include "CUI/Data.h"

#include <gtest/gtest.h>

#include <mmsystem.h>

#include "Support/AssertReports.h"
#include "Support/GdiCount.h"
#include "Support/ImportHook.h"
#include "Support/PixelMap.h"

namespace {

// Changes system colours, and puts them back.
class CSystemColors
{
public:
    ~CSystemColors() { SetSysColors(static_cast<int>(m_indexes.size()), &m_indexes[0], &m_old[0]); }
    void Set(int nIndex, COLORREF cr)
    {
        m_indexes.push_back(nIndex);
        m_old.push_back(GetSysColor(nIndex));
        SetSysColors(1, &nIndex, &cr);
    }

private:
    std::vector<int> m_indexes;
    std::vector<COLORREF> m_old;
};

COLORREF PaintedBy(HBRUSH hBrush)
{
    CTestSurface surface(32, CPixelMap(2, 2));
    const RECT rect = {0, 0, 2, 2};
    FillRect(surface, &rect, hBrush);
    return surface.Read().At(1, 1);
}
COLORREF DrawnBy(HPEN hPen)
{
    CTestSurface surface(32, CPixelMap(9, 1));
    const HGDIOBJ hOld = SelectObject(surface, hPen);
    LineTo(surface, 9, 0);
    SelectObject(surface, hOld);
    return surface.Read().At(5, 0);
}
void ExpectFont(LOGFONTA expected, LONG nWeight, HFONT hFont)
{
    LOGFONTA actual;
    memset(&actual, 0, sizeof actual);
    ASSERT_NE(0, GetObjectA(hFont, sizeof actual, &actual));
    EXPECT_STREQ(expected.lfFaceName, actual.lfFaceName);
    EXPECT_EQ(expected.lfHeight, actual.lfHeight);
    EXPECT_EQ(nWeight, actual.lfWeight);
}

HBRUSH WINAPI NoBrush(COLORREF)
{
    return nullptr;
}
HPEN WINAPI NoPen(int, int, COLORREF)
{
    return nullptr;
}
HFONT WINAPI NoFont(const LOGFONTA *)
{
    return nullptr;
}
HDC WINAPI NoDC(HWND)
{
    return nullptr;
}
HCURSOR WINAPI NoCursor(HINSTANCE, const char *)
{
    return nullptr;
}
BOOL WINAPI NoVersion(OSVERSIONINFOA *)
{
    return FALSE;
}

// What is reported when a function of the system answers null from now on.
template <typename Function>
void ExpectReports(const char *name, Function *fail, std::initializer_list<const char *> texts)
{
    CUIData *pData = CUIGetWinData();
    const CAssertReports reports;
    {
        const CImportHook hook(name, fail);
        pData->UpdateSysColors();
        pData->UpdateSysFonts();
    }
    for (const char *text : texts)
        EXPECT_EQ(1, reports.Count(text, "Data")) << text;
    EXPECT_EQ(static_cast<int>(texts.size()), reports.Total());
    pData->UpdateSysColors();
    pData->UpdateSysFonts();
}

}  // namespace

TEST(Data, HoldsTheSystemsMetricsInTheOrderOfTheRecord)
{
    CUIData *pData = CUIGetWinData();
    EXPECT_EQ(pData, CUIGetWinData());
    RECT desktop;
    GetWindowRect(GetDesktopWindow(), &desktop);
    const HDC hScreen = GetDC(nullptr);
    SIZE size;
    GetTextExtentPoint32A(hScreen, "M", 1, &size);
    const int expected[] = {0,
                            1,
                            GetSystemMetrics(SM_CXVSCROLL),
                            GetSystemMetrics(SM_CYHSCROLL),
                            GetSystemMetrics(SM_CXICON),
                            GetSystemMetrics(SM_CYICON),
                            GetSystemMetrics(SM_CXFRAME),
                            GetSystemMetrics(SM_CYFRAME),
                            GetSystemMetrics(SM_CYCAPTION),
                            GetSystemMetrics(SM_CXBORDER),
                            GetSystemMetrics(SM_CYBORDER),
                            1,
                            1,
                            GetSystemMetrics(SM_CXSIZE),
                            GetSystemMetrics(SM_CYSIZE),
                            desktop.right - desktop.left,
                            desktop.bottom - desktop.top,
                            GetDeviceCaps(hScreen, LOGPIXELSX),
                            GetDeviceCaps(hScreen, LOGPIXELSY),
                            size.cy};
    ReleaseDC(nullptr, hScreen);
    for (size_t i = 0; i < sizeof expected / sizeof expected[0]; ++i)
        EXPECT_EQ(expected[i], reinterpret_cast<const int *>(pData)[i]) << "field " << i;
    EXPECT_EQ(LoadCursorA(nullptr, IDC_WAIT), pData->hcurWait);
    EXPECT_EQ(LoadCursorA(nullptr, IDC_ARROW), pData->hcurArrow);
    EXPECT_EQ(LoadCursorA(nullptr, IDC_IBEAM), pData->hcurIBeam);
    // 20 metrics, 11 brushes and pens, 6 colours and the table, 3 cursors, 5 fonts, the stamp.
    static_assert(sizeof(CUIData) == (20 + 11 + 6 + 21 + 3 + 5 + 1) * 4, "nothing in between");

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
    CSystemColors colors;
    for (int i = 0; i <= 20; ++i)
        colors.Set(i, static_cast<COLORREF>(0x102030 + 0x010305 * i));
    colors.Set(29, 0x654321);
    colors.Set(30, 0);
    // Who still has an old object selected does not hold the update up.
    CTestSurface user(32, CPixelMap(4, 4));
    SelectObject(user, pData->hbrLtGray);
    SelectObject(user, pData->hpenBtnText);
    const DWORD dwBefore = timeGetTime();
    pData->UpdateSysColors();
    EXPECT_LE(pData->dwColorStamp - dwBefore, timeGetTime() - dwBefore);
    for (DWORD i = 0; i <= 20; ++i) {
        EXPECT_EQ((10 + i) << 24 | GetSysColor(static_cast<int>(i)), pData->crSys[i]);
        EXPECT_EQ(GetSysColor(static_cast<int>(i)), pData->ResolveColor(pData->crSys[i]));
    }
    EXPECT_EQ(pData->crSys[COLOR_MENU], pData->crMenuBar);
    EXPECT_EQ(0x654321U, pData->crMenuHilite);
    EXPECT_EQ(GetSysColor(COLOR_BTNFACE), pData->ResolveColor(0x03FFFFFF));
    EXPECT_EQ(GetSysColor(29), pData->ResolveColor((10U + 29U) << 24));
    for (const DWORD cr : {0x123456U, 0x02FFFFFFU, 0x03FFFFFEU, 0x09FFFFFFU})
        EXPECT_EQ(cr, pData->ResolveColor(cr));

    EXPECT_EQ(0xC0C0C0U, PaintedBy(pData->hbrLtGray));
    EXPECT_EQ(0xC0C0C0U, PaintedBy(pData->hbrDkGray));
    EXPECT_EQ(GetSysColor(COLOR_BTNHIGHLIGHT), PaintedBy(pData->hbrBtnHilite));
    EXPECT_EQ(GetSysColor(COLOR_BTNSHADOW), PaintedBy(pData->hbrBtnShadow));
    LOGBRUSH brush = {};
    GetObjectA(pData->hbrBtnFace, sizeof brush, &brush);
    EXPECT_EQ(pData->crSys[COLOR_BTNFACE], brush.lbColor);
    GetObjectA(pData->hbrWindow, sizeof brush, &brush);
    EXPECT_EQ(pData->crSys[COLOR_WINDOW], brush.lbColor);
    EXPECT_EQ(0xC0C0C0U, DrawnBy(pData->hpenLtGray));
    EXPECT_EQ(0x808080U, DrawnBy(pData->hpenDkGray));
    EXPECT_EQ(GetSysColor(COLOR_BTNHIGHLIGHT), DrawnBy(pData->hpenBtnHilite));
    EXPECT_EQ(GetSysColor(COLOR_BTNSHADOW), DrawnBy(pData->hpenBtnShadow));
    EXPECT_EQ(GetSysColor(COLOR_BTNTEXT), DrawnBy(pData->hpenBtnText));
    EXPECT_EQ(0U, pData->crMonoText);
    EXPECT_EQ(0xFFFFFFU, pData->crMonoBkgnd);

    const int nBefore = GdiCount();
    for (int i = 0; i < 1000; ++i) {
        pData->UpdateSysColors();
        pData->UpdateWinIni();
    }
    EXPECT_NEAR(nBefore, GdiCount(), 2);
}

TEST(Data, ReportsWhatItCannotHaveWhenItIsMade)
{
    const CAssertReports reports;
    const CImportHook version("GetVersionExA", NoVersion), cursor("LoadCursorA", NoCursor);
    const CImportHook screen("GetDC", NoDC);
    CUIData *pData = CUIGetWinData();
    for (const char *text : {"GetVersionEx(&VersionInfo)", "hDCScreen", "hcurWait != 0",
                             "hcurArrow != 0", "hcurIBeam != 0"})
        EXPECT_EQ(1, reports.Count(text, "Data")) << text;
    EXPECT_EQ(5, reports.Total());
    EXPECT_EQ(0, pData->bWin9x + pData->bWinNT + pData->cxVScroll);
    EXPECT_NE(nullptr, pData->hMenuFont);
}

TEST(Data, ReportsBrushesThatItCannotMake)
{
    ExpectReports("CreateSolidBrush", NoBrush,
                  {"hbrLtGray != 0", "hbrDkGray != 0", "hbrBtnFace != 0", "hbrBtnShadow != 0",
                   "hbrBtnHilite != 0", "hbrWindow != 0"});
}

TEST(Data, ReportsPensThatItCannotMake)
{
    ExpectReports("CreatePen", NoPen,
                  {"hpenLtGray != 0", "hpenDkGray != 0", "hpenBtnShadow != 0", "hpenBtnHilite != 0",
                   "hpenBtnText != 0"});
}

TEST(Data, ReportsFontsThatItCannotMake)
{
    ExpectReports("CreateFontIndirectA", NoFont,
                  {"hStatusFont", "hMenuFont", "hMenuFontBold", "hIconFont", "hIconFontBold"});
}
