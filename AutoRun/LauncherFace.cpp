#include "LauncherFace.h"

#include "Base/GdiGuards.h"
#include "Base/Wrap.h"
#include "CUI/BmpBlt.h"
#include "CUI/OffScreenDC.h"
#include "Resource.h"
#include "SkinSource.h"
#include "SkinTable.h"

namespace {

const COLORREF TEXT_COLOR = RGB(0, 0, 0);
const COLORREF EMBOSS_COLOR = RGB(255, 255, 255);

// Both ends of a text belong to it. The string table may hold any number, so the sum is made in 64
// bits.
bool IsWithin(LONG n, LONG nFirst, LONG nLength)
{
    return n >= nFirst && n <= static_cast<long long>(nFirst) + nLength;
}

void DrawWhole(HDC hDC, const POINT &at, const CCUIBitmap &bitmap)
{
    CUIBmpBitBlt(hDC, static_cast<UINT>(at.x), static_cast<UINT>(at.y), bitmap, 0, 0, 0, 0, bitmap,
                 FALSE);
}

void DrawLine(HDC hDC, int x, int y, const CCUString &sText)
{
    TextOutA(hDC, x, y, sText, sText.GetLength());
}

}  // namespace

CLauncherFace::CLauncherFace()
    : m_ptProductBMP(),
      m_ptProductIcon(),
      m_ptTitleDVR(),
      m_hotSpots(),
      m_rectAbout(),
      m_hFontTitle(nullptr),
      m_hFontItem(nullptr),
      m_hFontAbout(nullptr),
      m_clrHighlight(0),
      m_clrSpare(0)
{
}

// --- Reading ---

void CLauncherFace::ReadBitmaps(const CSkinSource &source)
{
    m_bmpBackground = source.ReadBitmap(IDB_BACKGROUND);
    m_bmpProduct = source.ReadBitmap(IDB_PRODUCT);
    m_bmpBullet = source.ReadBitmap(IDB_BULLET);
}

void CLauncherFace::ReadFonts(CSkinTable &table)
{
    DeleteFonts();
    m_hFontTitle = table.ReadFont(IDS_TITLE_FONT);
    m_hFontItem = table.ReadFont(IDS_ITEM_FONT);
    m_hFontAbout = table.ReadFont(IDS_ABOUT_FONT);
}

void CLauncherFace::ReadTexts(const CSkinTable &table)
{
    m_strTitle = table.ReadText(IDS_TITLE);
    m_strHotSpots[HotSpotSetup] = table.ReadText(IDS_SETUP);
    m_strHotSpots[HotSpotExit] = table.ReadText(IDS_EXIT);
    m_strHotSpots[HotSpotRun] = table.ReadText(IDS_RUN);
    m_strHotSpots[HotSpotHelp] = table.ReadText(IDS_HELP);
    m_strAbout = table.ReadText(IDS_ABOUT);
}

// What a failed check reports for a point and for the rectangle.
#define POINT_CHECK(name) "sscanf(sText, \"%d,%d\", &" name ".x, &" name ".y) == 2"
#define RECT_CHECK(name)                                                                    \
    "sscanf(sText, \"%d,%d,%d,%d\", &" name ".left, &" name ".top, &" name ".right, &" name \
    ".bottom) == 4"

void CLauncherFace::ReadPoints(const CSkinTable &table)
{
    HotSpot &setup = m_hotSpots[HotSpotSetup];
    HotSpot &exit = m_hotSpots[HotSpotExit];
    HotSpot &run = m_hotSpots[HotSpotRun];
    HotSpot &help = m_hotSpots[HotSpotHelp];

    table.ReadPoint(IDS_PRODUCT_POS, m_ptProductBMP, POINT_CHECK("m_ptProductBMP"));
    table.ReadPoint(IDS_PRODUCT_ICON_POS, m_ptProductIcon, POINT_CHECK("m_ptProductIcon"));
    table.ReadPoint(IDS_SETUP_ICON_POS, setup.ptIcon, POINT_CHECK("m_ptSetupIcon"));
    table.ReadPoint(IDS_EXIT_ICON_POS, exit.ptIcon, POINT_CHECK("m_ptExitIcon"));
    table.ReadPoint(IDS_RUN_ICON_POS, run.ptIcon, POINT_CHECK("m_ptRunIcon"));
    table.ReadPoint(IDS_HELP_ICON_POS, help.ptIcon, POINT_CHECK("m_ptHelpIcon"));
    table.ReadPoint(IDS_TITLE_POS, m_ptTitleDVR, POINT_CHECK("m_ptTitleDVR"));
    table.ReadPoint(IDS_SETUP_POS, setup.ptText, POINT_CHECK("m_ptSetup"));
    table.ReadPoint(IDS_EXIT_POS, exit.ptText, POINT_CHECK("m_ptExit"));
    table.ReadPoint(IDS_RUN_POS, run.ptText, POINT_CHECK("m_ptRun"));
    table.ReadPoint(IDS_HELP_POS, help.ptText, POINT_CHECK("m_ptHelp"));
    table.ReadRect(IDS_ABOUT_RECT, m_rectAbout, RECT_CHECK("m_rectAbout"));
}

void CLauncherFace::ReadColors(CSkinTable &table)
{
    m_clrHighlight = table.ReadColor(IDS_HIGHLIGHT_COLOR);
    m_clrSpare = table.ReadColor(IDS_SPARE_COLOR);
}

void CLauncherFace::DeleteFonts()
{
    CUIBmpDeleteObject(reinterpret_cast<void **>(&m_hFontTitle));
    CUIBmpDeleteObject(reinterpret_cast<void **>(&m_hFontItem));
    CUIBmpDeleteObject(reinterpret_cast<void **>(&m_hFontAbout));
}

int CLauncherFace::HitTest(const POINT &point) const
{
    for (int i = 0; i < HotSpotCount; ++i) {
        const HotSpot &hotSpot = m_hotSpots[i];
        if (IsWithin(point.x, hotSpot.ptText.x, hotSpot.sizeText.cx) &&
            IsWithin(point.y, hotSpot.ptText.y, hotSpot.sizeText.cy))
            return i;
    }
    return HotSpotNone;
}

// --- Painting ---

void CLauncherFace::Paint(HDC hDC, int nHotSpot, int nPressed)
{
    const int cx = m_bmpBackground.Width();
    const int cy = m_bmpBackground.Height();
    const HDC hMemDC = CUIGetOSDC()->GetDC(hDC, cx, cy);
    if (hMemDC)
        Draw(hMemDC, nHotSpot, nPressed);
    const HPALETTE hPalette = m_bmpBackground;
    if (hPalette) {
        SelectPalette(hDC, hPalette, FALSE);
        RealizePalette(hDC);
    }
    BitBlt(hDC, 0, 0, cx, cy, hMemDC, 0, 0, SRCCOPY);
    CUIGetOSDC()->ReleaseDC();
}

void CLauncherFace::Draw(HDC hDC, int nHotSpot, int nPressed)
{
    DrawBitmaps(hDC);
    DrawTexts(hDC, nHotSpot, nPressed);
}

void CLauncherFace::DrawBitmaps(HDC hDC)
{
    DrawWhole(hDC, POINT(), m_bmpBackground);
    DrawWhole(hDC, m_ptProductBMP, m_bmpProduct);
    for (const HotSpot &hotSpot : m_hotSpots)
        DrawWhole(hDC, hotSpot.ptIcon, m_bmpBullet);
}

void CLauncherFace::DrawTexts(HDC hDC, int nHotSpot, int nPressed)
{
    SetBkMode(hDC, TRANSPARENT);
    SetTextColor(hDC, TEXT_COLOR);
    // At the end it selects what was there before all three: the DC outlives the fonts.
    const CCUISelect font(hDC, m_hFontTitle);
    DrawLine(hDC, m_ptTitleDVR.x, m_ptTitleDVR.y, m_strTitle);
    SelectObject(hDC, m_hFontAbout);
    DrawTextA(hDC, m_strAbout, m_strAbout.GetLength(), &m_rectAbout, 0);
    SelectObject(hDC, m_hFontItem);
    MeasureHotSpots(hDC);
    DrawHotSpots(hDC, nHotSpot, nPressed);
}

void CLauncherFace::MeasureHotSpots(HDC hDC)
{
    if (m_hotSpots[0].sizeText.cx != 0)
        return;
    for (int i = 0; i < HotSpotCount; ++i) {
        RECT rect = {};
        DrawTextA(hDC, m_strHotSpots[i], m_strHotSpots[i].GetLength(), &rect,
                  DT_CALCRECT | DT_SINGLELINE);
        m_hotSpots[i].sizeText = {rect.right - rect.left, rect.bottom - rect.top};
    }
}

void CLauncherFace::DrawHotSpots(HDC hDC, int nHotSpot, int nPressed)
{
    for (int i = 0; i < HotSpotCount; ++i) {
        const CCUString &sText = m_strHotSpots[i];
        const POINT &at = m_hotSpots[i].ptText;
        DrawLine(hDC, at.x, at.y, sText);
        // While another line is held down, the one under the mouse stays dark.
        if (nHotSpot != i || (nPressed != i && nPressed != HotSpotNone))
            continue;
        SetTextColor(hDC, EMBOSS_COLOR);
        DrawLine(hDC, CUWrapSub(at.x, 2), CUWrapSub(at.y, 2), sText);
        SetTextColor(hDC, m_clrHighlight);
        DrawLine(hDC, CUWrapSub(at.x, 1), CUWrapSub(at.y, 1), sText);
        SetTextColor(hDC, TEXT_COLOR);
    }
}

bool CLauncherFace::RealizeBackground(HWND hWnd) const
{
    const CCUIWindowDC hDC(hWnd);
    const HPALETTE hPalette = m_bmpBackground;
    if (!hPalette)
        return false;
    // By hand: the guard for palettes would realise the old one again at its end.
    const HPALETTE hOld = SelectPalette(hDC, hPalette, FALSE);
    const UINT nChanged = RealizePalette(hDC);
    SelectPalette(hDC, hOld, FALSE);
    return nChanged > 0 && nChanged != GDI_ERROR;
}
