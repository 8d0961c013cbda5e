#include "AutoRunDlg.h"

#include "Base/GdiGuards.h"
#include "Base/Wrap.h"
#include "CUI/BmpBlt.h"
#include "CUI/OffScreenDC.h"
#include "CUI/ResourceString.h"
#include "Resource.h"
#include "SkinTable.h"

namespace {

const COLORREF TEXT_COLOR = RGB(0, 0, 0);
const COLORREF EMBOSS_COLOR = RGB(255, 255, 255);

// How long the exit line stays lit before Escape closes the launcher, in milliseconds.
const DWORD ESCAPE_PAUSE = 500;

const WORD BITMAP_FLAGS = CUIBMP_PALETTE | CUIBMP_RESOURCE;

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

// Drawing may wait to be shown: in a batch of GDI's on NT, and in Wine 8 until the thread looks for
// messages next, which it does not while it sleeps.
void ShowDrawing()
{
    GdiFlush();
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 0, 0);
}

}  // namespace

CAutoRunDlg::CAutoRunDlg(HINSTANCE hInstance)
    : CCUIDialog(hInstance, MAKEINTRESOURCEA(IDD_AUTORUN)),
      m_bmpBackground(IDB_BACKGROUND, BITMAP_FLAGS, hInstance),
      m_bmpProduct(IDB_PRODUCT, BITMAP_FLAGS, hInstance),
      m_bmpBullet(IDB_BULLET, BITMAP_FLAGS, hInstance),
      m_ptProductBMP(),
      m_ptProductIcon(),
      m_ptTitleDVR(),
      m_hotSpots(),
      m_rectAbout(),
      m_hFontTitle(nullptr),
      m_hFontItem(nullptr),
      m_hFontAbout(nullptr),
      m_hIcon(nullptr),
      m_clrHighlight(0),
      m_clrSpare(0),
      m_nHotSpot(HotSpotNone),
      m_nPressed(HotSpotNone)
{
}

// --- Start: the string table, the window's place ---

// The order of reading is the order in which bad entries are reported.
int CAutoRunDlg::OnInitDialog(HWND hFocus, LPARAM lParam)
{
    CSkinTable table(m_hInstance);
    ReadFonts(table);
    CCUIDialog::OnInitDialog(hFocus, lParam);
    SetWindowTextA(m_hWnd, table.ReadText(IDS_CAPTION));
    PlaceWindow();
    SetIcons();
    ReadTexts(table);
    ReadPoints(table);
    m_clrHighlight = table.ReadColor(IDS_HIGHLIGHT_COLOR);
    m_clrSpare = table.ReadColor(IDS_SPARE_COLOR);
    return 1;
}

void CAutoRunDlg::ReadFonts(CSkinTable &table)
{
    // Another program may send the window the message that leads here once more.
    DeleteFonts();
    m_hFontTitle = table.ReadFont(IDS_TITLE_FONT);
    m_hFontItem = table.ReadFont(IDS_ITEM_FONT);
    m_hFontAbout = table.ReadFont(IDS_ABOUT_FONT);
}

void CAutoRunDlg::ReadTexts(const CSkinTable &table)
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

void CAutoRunDlg::ReadPoints(const CSkinTable &table)
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

void CAutoRunDlg::PlaceWindow()
{
    const int cx = m_bmpBackground.Width();
    const int cy = m_bmpBackground.Height();
    SetWindowPos(m_hWnd, nullptr, (GetSystemMetrics(SM_CXSCREEN) - cx) / 2,
                 (GetSystemMetrics(SM_CYSCREEN) - cy) / 2, cx, cy, SWP_NOZORDER);
}

void CAutoRunDlg::SetIcons()
{
    m_hIcon = LoadIconA(m_hInstance, MAKEINTRESOURCEA(IDI_AUTORUN));
    SendMessageA(m_hWnd, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(m_hIcon));
    SendMessageA(m_hWnd, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(m_hIcon));
}

void CAutoRunDlg::DeleteFonts()
{
    CUIBmpDeleteObject(reinterpret_cast<void **>(&m_hFontTitle));
    CUIBmpDeleteObject(reinterpret_cast<void **>(&m_hFontItem));
    CUIBmpDeleteObject(reinterpret_cast<void **>(&m_hFontAbout));
}

void CAutoRunDlg::OnDestroy()
{
    CCUIDialog::OnDestroy();
    DeleteFonts();
    // The icon came with LoadIcon and is the system's: DeleteObject gives nothing of it away.
    CUIBmpDeleteObject(reinterpret_cast<void **>(&m_hIcon));
}

// --- The mouse and the keyboard ---

void CAutoRunDlg::SetHotSpot(int nHotSpot)
{
    if (nHotSpot == m_nHotSpot)
        return;
    m_nHotSpot = nHotSpot;
    InvalidateRect(m_hWnd, nullptr, TRUE);
    UpdateWindow(m_hWnd);
}

int CAutoRunDlg::HitTest(const POINT &point) const
{
    for (int i = 0; i < HotSpotCount; ++i) {
        const HotSpot &hotSpot = m_hotSpots[i];
        if (IsWithin(point.x, hotSpot.ptText.x, hotSpot.sizeText.cx) &&
            IsWithin(point.y, hotSpot.ptText.y, hotSpot.sizeText.cy))
            return i;
    }
    return HotSpotNone;
}

void CAutoRunDlg::OnMouseMove(UINT, POINT &point)
{
    SetHotSpot(HitTest(point));
}

void CAutoRunDlg::OnLButtonDown(UINT, POINT &point)
{
    SetHotSpot(HitTest(point));
    if (m_nHotSpot == HotSpotNone)
        return;
    m_nPressed = m_nHotSpot;
    SetCapture(m_hWnd);
}

void CAutoRunDlg::OnLButtonUp(UINT, POINT &point)
{
    if (GetCapture() == m_hWnd) {
        SetHotSpot(HitTest(point));
        if (m_nPressed == m_nHotSpot)
            Activate(m_nHotSpot);
        // Activate may have ended the window. For a null one all windows would be painted again.
        if (m_hWnd) {
            ReleaseCapture();
            InvalidateRect(m_hWnd, nullptr, TRUE);
        }
    }
    m_nPressed = HotSpotNone;
}

void CAutoRunDlg::OnCancelMode()
{
    if (GetCapture() == m_hWnd)
        ReleaseCapture();
}

void CAutoRunDlg::OnCaptureChanged(HWND)
{
    m_nPressed = HotSpotNone;
}

int CAutoRunDlg::PreTranslateMessage(MSG *pMsg)
{
    if (pMsg->message != WM_KEYDOWN || pMsg->wParam != VK_ESCAPE)
        return CCUIDialog::PreTranslateMessage(pMsg);
    SetHotSpot(HotSpotExit);
    ShowDrawing();
    Sleep(ESCAPE_PAUSE);
    EndDialog(IDCANCEL);
    return 1;
}

void CAutoRunDlg::Activate(int nHotSpot)
{
    switch (nHotSpot) {
    case HotSpotSetup: Start(IDS_SETUP_COMMAND); break;
    case HotSpotExit: EndDialog(IDCANCEL); break;
    case HotSpotRun: Start(IDS_RUN_COMMAND); break;
    case HotSpotHelp: Start(IDS_HELP_COMMAND); break;
    default: break;
    }
}

// A bare file name is found beside the launcher, whatever the current directory.
void CAutoRunDlg::Start(UINT nCommandLineID)
{
    WinExec(CUIResourceString(m_hInstance, nCommandLineID, false), SW_SHOWNORMAL);
}

// --- Painting ---

int CAutoRunDlg::OnEraseBkgnd(HDC hDC)
{
    const CCUISavedDC saved(hDC);
    if (IsIconic(m_hWnd))
        PaintIcon(hDC);
    else
        PaintPicture(hDC);
    return 1;
}

void CAutoRunDlg::PaintIcon(HDC hDC)
{
    RECT client;
    GetClientRect(m_hWnd, &client);
    // That x depends on the bottom is how minimised launchers have always looked.
    DrawIcon(hDC, (client.right - client.bottom - GetSystemMetrics(SM_CXICON) + 1) / 2,
             (client.bottom - client.top - GetSystemMetrics(SM_CYICON) + 1) / 2, m_hIcon);
}

// Off screen in one pass and to the window in one blit, so that nothing flickers.
void CAutoRunDlg::PaintPicture(HDC hDC)
{
    const int cx = m_bmpBackground.Width();
    const int cy = m_bmpBackground.Height();
    const HDC hMemDC = CUIGetOSDC()->GetDC(hDC, cx, cy);
    if (hMemDC) {
        DrawBitmaps(hMemDC);
        DrawTexts(hMemDC);
    }
    const HPALETTE hPalette = m_bmpBackground;
    if (hPalette) {
        SelectPalette(hDC, hPalette, FALSE);
        RealizePalette(hDC);
    }
    BitBlt(hDC, 0, 0, cx, cy, hMemDC, 0, 0, SRCCOPY);
    CUIGetOSDC()->ReleaseDC();
}

void CAutoRunDlg::DrawBitmaps(HDC hDC)
{
    DrawWhole(hDC, POINT(), m_bmpBackground);
    DrawWhole(hDC, m_ptProductBMP, m_bmpProduct);
    for (const HotSpot &hotSpot : m_hotSpots)
        DrawWhole(hDC, hotSpot.ptIcon, m_bmpBullet);
}

void CAutoRunDlg::DrawTexts(HDC hDC)
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
    DrawHotSpots(hDC);
}

void CAutoRunDlg::MeasureHotSpots(HDC hDC)
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

void CAutoRunDlg::DrawHotSpots(HDC hDC)
{
    for (int i = 0; i < HotSpotCount; ++i) {
        const CCUString &sText = m_strHotSpots[i];
        const POINT &at = m_hotSpots[i].ptText;
        DrawLine(hDC, at.x, at.y, sText);
        // While another line is held down, the one under the mouse stays dark.
        if (m_nHotSpot != i || (m_nPressed != i && m_nPressed != HotSpotNone))
            continue;
        SetTextColor(hDC, EMBOSS_COLOR);
        DrawLine(hDC, CUWrapSub(at.x, 2), CUWrapSub(at.y, 2), sText);
        SetTextColor(hDC, m_clrHighlight);
        DrawLine(hDC, CUWrapSub(at.x, 1), CUWrapSub(at.y, 1), sText);
        SetTextColor(hDC, TEXT_COLOR);
    }
}

// --- Palettes ---

long CAutoRunDlg::WindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    // The window that changed the palette is in wParam. That lParam is compared makes the launcher
    // realise its palette after a change of its own, too; then nothing changes any more.
    const bool bOther = message == WM_PALETTECHANGED && reinterpret_cast<HWND>(lParam) != m_hWnd;
    if (message != WM_QUERYNEWPALETTE && !bOther)
        return CCUIDialog::WindowProc(message, wParam, lParam);
    const bool bChanged = RealizeBackground();
    if (bChanged)
        InvalidateRect(m_hWnd, nullptr, TRUE);
    return bChanged;
}

// Whether colours of the screen changed.
bool CAutoRunDlg::RealizeBackground()
{
    const CCUIWindowDC hDC(m_hWnd);
    const HPALETTE hPalette = m_bmpBackground;
    if (!hPalette)
        return false;
    // By hand: the guard for palettes would realise the old one again at its end.
    const HPALETTE hOld = SelectPalette(hDC, hPalette, FALSE);
    const UINT nChanged = RealizePalette(hDC);
    SelectPalette(hDC, hOld, FALSE);
    return nChanged > 0 && nChanged != GDI_ERROR;
}
