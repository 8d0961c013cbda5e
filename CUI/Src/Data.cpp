#include "CUI/Data.h"

#include <string.h>

#include <mmsystem.h>

#include "CU/Assert.h"

#include "GdiGuards.h"

#define CU_SOURCE "Data"

// Of later systems; earlier ones answer 0.
#if !defined(COLOR_MENUHILIGHT)
#define COLOR_MENUHILIGHT 29
#define COLOR_MENUBAR 30
#endif

namespace {

const DWORD COLOR_MASK = 0x00FFFFFF;
const int FIRST_TAG = 10;
const int SYSTEM_COLORS = COLOR_BTNHIGHLIGHT + 1;

template <typename Handle>
void DeleteField(Handle *pObject)
{
    CU_ASSERT_TEXT(pObject, "pObject");
    if (!pObject || !*pObject)
        return;
    DeleteObject(*pObject);
    *pObject = nullptr;
}

HPEN SolidPen(DWORD cr)
{
    return CreatePen(PS_SOLID, 0, cr & COLOR_MASK);
}

HFONT BoldFont(const LOGFONTA &font)
{
    LOGFONTA bold = font;
    bold.lfWeight = FW_BOLD;
    return CreateFontIndirectA(&bold);
}

// What a newer system calls by a name of its own, or the older colour in its place.
DWORD NewerColor(int nIndex, DWORD crOlder)
{
    const DWORD cr = GetSysColor(nIndex);
    return cr != 0 ? cr : crOlder;
}

}  // namespace

CUIData::CUIData()
{
    memset(static_cast<void *>(this), 0, sizeof *this);
    OSVERSIONINFOA VersionInfo;
    memset(&VersionInfo, 0, sizeof VersionInfo);
    VersionInfo.dwOSVersionInfoSize = sizeof VersionInfo;
    CU_ASSERT_TEXT(GetVersionExA(&VersionInfo), "GetVersionEx(&VersionInfo)");
    bWin9x = VersionInfo.dwPlatformId == VER_PLATFORM_WIN32_WINDOWS;
    bWinNT = VersionInfo.dwPlatformId == VER_PLATFORM_WIN32_NT;
    UpdateWinIni();

    crMonoText = RGB(0, 0, 0);
    crMonoBkgnd = RGB(0xFF, 0xFF, 0xFF);
    crLtGray = RGB(0xC0, 0xC0, 0xC0);
    crDkGray = RGB(0x80, 0x80, 0x80);
    UpdateSysColors();

    hcurWait = LoadCursorA(nullptr, reinterpret_cast<const char *>(IDC_WAIT));
    CU_ASSERT_TEXT(hcurWait, "hcurWait != 0");
    hcurArrow = LoadCursorA(nullptr, reinterpret_cast<const char *>(IDC_ARROW));
    CU_ASSERT_TEXT(hcurArrow, "hcurArrow != 0");
    hcurIBeam = LoadCursorA(nullptr, reinterpret_cast<const char *>(IDC_IBEAM));
    CU_ASSERT_TEXT(hcurIBeam, "hcurIBeam != 0");
    bFlag1 = 1;
    bFlag2 = 1;
}

void CUIData::UpdateWinIni()
{
    UpdateMetrics();
    UpdateSysFonts();
}

void CUIData::UpdateMetrics()
{
    const CCUIWindowDC hDCScreen(nullptr);
    CU_ASSERT_TEXT(hDCScreen, "hDCScreen");
    if (!hDCScreen)
        return;
    cxVScroll = GetSystemMetrics(SM_CXVSCROLL);
    cyHScroll = GetSystemMetrics(SM_CYHSCROLL);
    cxIcon = GetSystemMetrics(SM_CXICON);
    cyIcon = GetSystemMetrics(SM_CYICON);
    cxFrame = GetSystemMetrics(SM_CXFRAME);
    cyFrame = GetSystemMetrics(SM_CYFRAME);
    cyCaption = GetSystemMetrics(SM_CYCAPTION);
    cxBorder = GetSystemMetrics(SM_CXBORDER);
    cyBorder = GetSystemMetrics(SM_CYBORDER);
    cxSize = GetSystemMetrics(SM_CXSIZE);
    cySize = GetSystemMetrics(SM_CYSIZE);
    RECT desktop = {0, 0, 0, 0};
    GetWindowRect(GetDesktopWindow(), &desktop);
    cxDesktop = desktop.right - desktop.left;
    cyDesktop = desktop.bottom - desktop.top;
    cxPixelsPerInch = GetDeviceCaps(hDCScreen, LOGPIXELSX);
    cyPixelsPerInch = GetDeviceCaps(hDCScreen, LOGPIXELSY);
    SIZE extent = {0, 0};
    GetTextExtentPoint32A(hDCScreen, "M", 1, &extent);
    cyChar = extent.cy;
}

void CUIData::UpdateSysColors()
{
    for (int i = 0; i < SYSTEM_COLORS; ++i)
        crSys[i] = GetSysColor(i) | static_cast<DWORD>(FIRST_TAG + i) << 24;
    crMenuBar = NewerColor(COLOR_MENUBAR, crSys[COLOR_MENU]);
    crMenuHilite = NewerColor(COLOR_MENUHILIGHT, crSys[COLOR_HIGHLIGHT]);
    UpdateBrushes();
    UpdatePens();
    dwColorStamp = timeGetTime();
}

void CUIData::UpdateBrushes()
{
    DeleteField(&hbrLtGray);
    DeleteField(&hbrDkGray);
    DeleteField(&hbrBtnFace);
    DeleteField(&hbrBtnShadow);
    DeleteField(&hbrBtnHilite);
    DeleteField(&hbrWindow);
    hbrLtGray = CreateSolidBrush(crLtGray);
    CU_ASSERT_TEXT(hbrLtGray, "hbrLtGray != 0");
    hbrDkGray = CreateSolidBrush(crLtGray);
    CU_ASSERT_TEXT(hbrDkGray, "hbrDkGray != 0");
    // The tags stay on: a brush's LOGBRUSH names the system colour that it was made for.
    hbrBtnFace = CreateSolidBrush(crSys[COLOR_BTNFACE]);
    CU_ASSERT_TEXT(hbrBtnFace, "hbrBtnFace != 0");
    hbrBtnShadow = CreateSolidBrush(crSys[COLOR_BTNSHADOW]);
    CU_ASSERT_TEXT(hbrBtnShadow, "hbrBtnShadow != 0");
    hbrBtnHilite = CreateSolidBrush(crSys[COLOR_BTNHIGHLIGHT]);
    CU_ASSERT_TEXT(hbrBtnHilite, "hbrBtnHilite != 0");
    hbrWindow = CreateSolidBrush(crSys[COLOR_WINDOW]);
    CU_ASSERT_TEXT(hbrWindow, "hbrWindow != 0");
}

void CUIData::UpdatePens()
{
    DeleteField(&hpenLtGray);
    DeleteField(&hpenDkGray);
    DeleteField(&hpenBtnShadow);
    DeleteField(&hpenBtnHilite);
    DeleteField(&hpenBtnText);
    hpenLtGray = SolidPen(crLtGray);
    CU_ASSERT_TEXT(hpenLtGray, "hpenLtGray != 0");
    hpenDkGray = SolidPen(crDkGray);
    CU_ASSERT_TEXT(hpenDkGray, "hpenDkGray != 0");
    hpenBtnShadow = SolidPen(crSys[COLOR_BTNSHADOW]);
    CU_ASSERT_TEXT(hpenBtnShadow, "hpenBtnShadow != 0");
    hpenBtnHilite = SolidPen(crSys[COLOR_BTNHIGHLIGHT]);
    CU_ASSERT_TEXT(hpenBtnHilite, "hpenBtnHilite != 0");
    hpenBtnText = SolidPen(crSys[COLOR_BTNTEXT]);
    CU_ASSERT_TEXT(hpenBtnText, "hpenBtnText != 0");
}

void CUIData::UpdateSysFonts()
{
    DeleteField(&hStatusFont);
    DeleteField(&hMenuFont);
    DeleteField(&hMenuFontBold);
    DeleteField(&hIconFont);
    DeleteField(&hIconFontBold);

    NONCLIENTMETRICSA metrics;
    static_assert(sizeof metrics == 340, "the size that every system takes");
    memset(&metrics, 0, sizeof metrics);
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    hStatusFont = CreateFontIndirectA(&metrics.lfStatusFont);
    CU_ASSERT(hStatusFont);
    hMenuFont = CreateFontIndirectA(&metrics.lfMenuFont);
    CU_ASSERT(hMenuFont);
    hMenuFontBold = BoldFont(metrics.lfMenuFont);
    CU_ASSERT(hMenuFontBold);

    ICONMETRICSA icons;
    static_assert(sizeof icons == 76, "the size that every system takes");
    memset(&icons, 0, sizeof icons);
    icons.cbSize = sizeof icons;
    SystemParametersInfoA(SPI_GETICONMETRICS, sizeof icons, &icons, 0);
    hIconFont = CreateFontIndirectA(&icons.lfFont);
    CU_ASSERT(hIconFont);
    hIconFontBold = BoldFont(icons.lfFont);
    CU_ASSERT(hIconFontBold);
}

DWORD CUIData::ResolveColor(DWORD cr) const
{
    if (cr == CUI_COLOR_BTNFACE)
        return crSys[COLOR_BTNFACE] & COLOR_MASK;
    const int nIndex = static_cast<int>(cr >> 24) - FIRST_TAG;
    if (nIndex < 0)
        return cr;
    // The table ends before the system's newer colours, which may be tagged as well.
    return nIndex < SYSTEM_COLORS ? crSys[nIndex] & COLOR_MASK : GetSysColor(nIndex);
}

// Made by the first to ask, which for a program without windows is nobody: it costs a dozen calls
// to the system's server.
CUIData *CUIGetWinData()
{
    static CUIData s_data;
    return &s_data;
}
