#include "AutoRunDlg.h"

#include "Base/GdiGuards.h"
#include "CUI/BmpBlt.h"
#include "CUI/ResourceString.h"
#include "Resource.h"
#include "SkinSource.h"
#include "SkinTable.h"

namespace {

// How long the exit line stays lit before Escape closes the launcher, in milliseconds.
const DWORD ESCAPE_PAUSE = 500;

// The looks are in the program's own resources.
class CResourceSource : public CSkinSource
{
public:
    explicit CResourceSource(HINSTANCE hInstance) : m_hInstance(hInstance) {}

    CCUString ReadText(UINT nID) const override
    {
        return CUIResourceString(m_hInstance, nID, false);
    }
    CCUIBitmap ReadBitmap(UINT nID) const override
    {
        return CCUIBitmap(nID, CUIBMP_PALETTE | CUIBMP_RESOURCE, m_hInstance);
    }
    bool ReportsBadEntries() const override { return true; }

private:
    HINSTANCE m_hInstance;
};

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
      m_hIcon(nullptr),
      m_nHotSpot(HotSpotNone),
      m_nPressed(HotSpotNone)
{
    m_face.ReadBitmaps(CResourceSource(hInstance));
}

// --- Start: the string table, the window's place ---

// The order of reading is the order in which bad entries are reported.
int CAutoRunDlg::OnInitDialog(HWND hFocus, LPARAM lParam)
{
    const CResourceSource source(m_hInstance);
    CSkinTable table(source);
    // Another program may send the window the message that leads here once more.
    m_face.ReadFonts(table);
    CCUIDialog::OnInitDialog(hFocus, lParam);
    SetWindowTextA(m_hWnd, source.ReadText(IDS_CAPTION));
    PlaceWindow();
    SetIcons();
    m_face.ReadTexts(table);
    m_face.ReadPoints(table);
    m_face.ReadColors(table);
    return 1;
}

void CAutoRunDlg::PlaceWindow()
{
    const int cx = m_face.Background().Width();
    const int cy = m_face.Background().Height();
    SetWindowPos(m_hWnd, nullptr, (GetSystemMetrics(SM_CXSCREEN) - cx) / 2,
                 (GetSystemMetrics(SM_CYSCREEN) - cy) / 2, cx, cy, SWP_NOZORDER);
}

void CAutoRunDlg::SetIcons()
{
    m_hIcon = LoadIconA(m_hInstance, MAKEINTRESOURCEA(IDI_AUTORUN));
    SendMessageA(m_hWnd, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(m_hIcon));
    SendMessageA(m_hWnd, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(m_hIcon));
}

void CAutoRunDlg::OnDestroy()
{
    CCUIDialog::OnDestroy();
    m_face.DeleteFonts();
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

void CAutoRunDlg::OnMouseMove(UINT, POINT &point)
{
    SetHotSpot(m_face.HitTest(point));
}

void CAutoRunDlg::OnLButtonDown(UINT, POINT &point)
{
    SetHotSpot(m_face.HitTest(point));
    if (m_nHotSpot == HotSpotNone)
        return;
    m_nPressed = m_nHotSpot;
    SetCapture(m_hWnd);
}

void CAutoRunDlg::OnLButtonUp(UINT, POINT &point)
{
    if (GetCapture() == m_hWnd) {
        SetHotSpot(m_face.HitTest(point));
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
        m_face.Paint(hDC, m_nHotSpot, m_nPressed);
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

// --- Palettes ---

long CAutoRunDlg::WindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    // The window that changed the palette is in wParam. That lParam is compared makes the launcher
    // realise its palette after a change of its own, too; then nothing changes any more.
    const bool bOther = message == WM_PALETTECHANGED && reinterpret_cast<HWND>(lParam) != m_hWnd;
    if (message != WM_QUERYNEWPALETTE && !bOther)
        return CCUIDialog::WindowProc(message, wParam, lParam);
    const bool bChanged = m_face.RealizeBackground(m_hWnd);
    if (bChanged)
        InvalidateRect(m_hWnd, nullptr, TRUE);
    return bChanged;
}
