#include "CUI/Data.h"

#include <string.h>

#include "Base/GdiGuards.h"
#include "Base/Lifetime.h"
#include "Base/Module.h"
#include "Base/Multimedia.h"
#include "CU/Assert.h"

#define CU_SOURCE "Data"

// Of Windows XP; earlier systems answer 0.
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

// A field that holds an object of one colour, and what is reported when it cannot be made.
template <typename Handle>
struct CColored
{
    Handle *pField;
    DWORD cr;
    const char *pszCheck;
};

HBRUSH SolidBrush(DWORD cr)
{
    return CreateSolidBrush(cr);
}

HPEN SolidPen(DWORD cr)
{
    return CreatePen(PS_SOLID, 0, cr);
}

// Deletes all before it makes any again. The tags are taken off: GDI takes a colour with an odd top
// byte, as those of button face and window have, for a palette index, and would paint black.
template <typename Handle, size_t N>
void Renew(const CColored<Handle> (&fields)[N], Handle (*make)(DWORD))
{
    for (const CColored<Handle> &field : fields)
        DeleteField(field.pField);
    for (const CColored<Handle> &field : fields) {
        *field.pField = make(field.cr & COLOR_MASK);
        CU_ASSERT_TEXT(*field.pField, field.pszCheck);
    }
}

// What the system says of its fonts.
template <typename Metrics, size_t nSize>
Metrics ReadMetrics(UINT nAction)
{
    Metrics metrics;
    static_assert(sizeof metrics == nSize, "the size that every system takes");
    memset(&metrics, 0, sizeof metrics);
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoA(nAction, sizeof metrics, &metrics, 0);
    return metrics;
}

HFONT BoldFont(const LOGFONTA &font)
{
    LOGFONTA bold = font;
    bold.lfWeight = FW_BOLD;
    return CreateFontIndirectA(&bold);
}

// A colour that only newer systems have; on others the older colour in its place.
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
    dwColorStamp = g_multimedia.getTime();
}

void CUIData::UpdateBrushes()
{
    Renew<HBRUSH>({{&hbrLtGray, crLtGray, "hbrLtGray != 0"},
                   {&hbrDkGray, crLtGray, "hbrDkGray != 0"},
                   {&hbrBtnFace, crSys[COLOR_BTNFACE], "hbrBtnFace != 0"},
                   {&hbrBtnShadow, crSys[COLOR_BTNSHADOW], "hbrBtnShadow != 0"},
                   {&hbrBtnHilite, crSys[COLOR_BTNHIGHLIGHT], "hbrBtnHilite != 0"},
                   {&hbrWindow, crSys[COLOR_WINDOW], "hbrWindow != 0"}},
                  SolidBrush);
}

void CUIData::UpdatePens()
{
    Renew<HPEN>({{&hpenLtGray, crLtGray, "hpenLtGray != 0"},
                 {&hpenDkGray, crDkGray, "hpenDkGray != 0"},
                 {&hpenBtnShadow, crSys[COLOR_BTNSHADOW], "hpenBtnShadow != 0"},
                 {&hpenBtnHilite, crSys[COLOR_BTNHIGHLIGHT], "hpenBtnHilite != 0"},
                 {&hpenBtnText, crSys[COLOR_BTNTEXT], "hpenBtnText != 0"}},
                SolidPen);
}

void CUIData::UpdateSysFonts()
{
    DeleteField(&hStatusFont);
    DeleteField(&hMenuFont);
    DeleteField(&hMenuFontBold);
    DeleteField(&hIconFont);
    DeleteField(&hIconFontBold);

    const auto metrics = ReadMetrics<NONCLIENTMETRICSA, 340>(SPI_GETNONCLIENTMETRICS);
    hStatusFont = CreateFontIndirectA(&metrics.lfStatusFont);
    CU_ASSERT(hStatusFont);
    hMenuFont = CreateFontIndirectA(&metrics.lfMenuFont);
    CU_ASSERT(hMenuFont);
    hMenuFontBold = BoldFont(metrics.lfMenuFont);
    CU_ASSERT(hMenuFontBold);

    const auto icons = ReadMetrics<ICONMETRICSA, 76>(SPI_GETICONMETRICS);
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

namespace {

// CUIData lets nobody else make one.
struct CProcessData : CUIData
{
};
CCUShared<CProcessData> s_data;

// With the colours and settings of the program's start.
const struct CMaker
{
    CMaker() { s_data.Get(); }
} MAKER;

}  // namespace

CUIData *CUIGetWinData()
{
    return &s_data.Get();
}

// The objects stand one after the other in the record.
void CUIUnloadData()
{
    if (!s_data.IfMade())
        return;
    CUIData &data = *s_data.IfMade();
    for (HBRUSH *pBrush = &data.hbrLtGray; pBrush <= &data.hbrWindow; ++pBrush)
        DeleteField(pBrush);
    for (HPEN *pPen = &data.hpenLtGray; pPen <= &data.hpenBtnText; ++pPen)
        DeleteField(pPen);
    for (HFONT *pFont = &data.hStatusFont; pFont <= &data.hIconFontBold; ++pFont)
        DeleteField(pFont);
}
