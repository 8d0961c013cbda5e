// Where a frame stands: the place that the settings keep, full screen, other screens.

#include "Base/Wrap.h"
#include "CU/Dump.h"
#include "CUI/Data.h"
#include "CUI/FrameWindow.h"
#include "CUI/Settings.h"
#include "Frame/FrameDocks.h"
#include "Frame/Placement.h"
#include "Window/Screen.h"

namespace {

const char PLACEMENT[] = "Placement";

// What a full screen has not. The system restores WS_MAXIMIZE itself.
const LONG FRAME_STYLE = WS_CAPTION | WS_THICKFRAME;

void GetPlacement(HWND hWnd, WINDOWPLACEMENT &placement)
{
    placement.length = sizeof placement;
    GetWindowPlacement(hWnd, &placement);
}

int ScreenDpi()
{
    return CUIGetWinData()->cyPixelsPerInch;
}

}  // namespace

void CCUIFrameWindow::ShowKept(const char *pszSection, int nShow)
{
    if (!Exist())
        return;
    m_sSection = pszSection;
    CCURegistry registry;
    CCUString sKept;
    CCUIPlacement kept = {};
    if (CUIOpenSettings(registry, m_sSection) && registry.GetString(PLACEMENT, sKept) &&
        CUIReadPlacement(sKept, kept))
    {
        CUIFitPlacement(kept, ScreenDpi());
        const WINDOWPLACEMENT placement = CUIToShow(kept, nShow);
        SetWindowPlacement(m_hWnd, &placement);
    } else {
        ShowWindow(m_hWnd, nShow);
    }
}

void CCUIFrameWindow::KeepPlacement()
{
    CCURegistry registry;
    if (m_sSection.IsEmpty() || !CUIOpenSettings(registry, m_sSection, false))
        return;
    WINDOWPLACEMENT placement = m_before;
    if (!m_bFullScreen)
        GetPlacement(m_hWnd, placement);
    CCUIPlacement kept = CUIPlacementOf(placement);
    kept.nDpi = ScreenDpi();
    if (!registry.SetString(PLACEMENT, CUIPlacementText(kept)))
        CUDump("Unable to keep the place of %s, gle: %lu\n", m_sSection.GetString(),
               GetLastError());
}

void CCUIFrameWindow::BringToFront()
{
    if (!Exist())
        return;
    CWatch watch(this);
    const HWND hWnd = m_hWnd;
    if (IsIconic(hWnd))
        ShowWindow(hWnd, SW_RESTORE);
    else if (!IsWindowVisible(hWnd))
        ShowWindow(hWnd, SW_SHOW);
    SetForegroundWindow(GetLastActivePopup(hWnd));
}

int CCUIFrameWindow::SetFullScreen(bool bFull)
{
    if (!Exist())
        return 0;
    if (bFull != m_bFullScreen)
        bFull ? EnterFullScreen() : LeaveFullScreen();
    return 1;
}

void CCUIFrameWindow::EnterFullScreen()
{
    CWatch watch(this);
    if (IsIconic(m_hWnd))
        ShowWindow(m_hWnd, SW_RESTORE);
    if (watch.IsGone() || !m_hWnd)
        return;
    GetPlacement(m_hWnd, m_before);
    m_hMenuBefore = ::GetMenu(m_hWnd);
    m_nStyleBefore = GetWindowLongA(m_hWnd, GWL_STYLE) & FRAME_STYLE;
    m_bFullScreen = true;
    m_pDocks->ShowBars(false);
    // Somebody may have gone back meanwhile.
    if (watch.IsGone() || !m_bFullScreen)
        return;
    const LONG nStyle = GetWindowLongA(m_hWnd, GWL_STYLE);
    SetWindowLongA(m_hWnd, GWL_STYLE, nStyle & ~(FRAME_STYLE | WS_MAXIMIZE));
    ::SetMenu(m_hWnd, nullptr);
    if (!watch.IsGone() && m_bFullScreen)
        CoverScreen();
}

void CCUIFrameWindow::CoverScreen()
{
    RECT rect;
    GetWindowRect(m_hWnd, &rect);
    rect = CUIScreenOf(rect).all;
    SetWindowPos(m_hWnd, HWND_TOP, rect.left, rect.top, CUIWidth(rect), CUIHeight(rect),
                 SWP_FRAMECHANGED | SWP_NOOWNERZORDER);
}

void CCUIFrameWindow::LeaveFullScreen()
{
    CWatch watch(this);
    m_bFullScreen = false;
    const HMENU hMenu = m_hMenuBefore;
    m_hMenuBefore = nullptr;
    if (!IsWindowVisible(m_hWnd))
        m_before.showCmd = SW_HIDE;
    const WINDOWPLACEMENT before = m_before;
    const HWND hWnd = m_hWnd;
    SetWindowLongA(hWnd, GWL_STYLE, GetWindowLongA(hWnd, GWL_STYLE) | m_nStyleBefore);
    ::SetMenu(hWnd, hMenu);
    if (!watch.IsGone())
        m_pDocks->ShowBars(true);
    SetWindowPos(hWnd, nullptr, 0, 0, 0, 0,
                 SWP_FRAMECHANGED | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    SetWindowPlacement(hWnd, &before);
}

void CCUIFrameWindow::OnDisplayChange(UINT nBitsPerPixel, int cx, int cy)
{
    CWatch watch(this);
    if (m_bFullScreen)
        CoverScreen();
    if (!watch.IsGone() && m_hWnd)
        CCUIWindow::OnDisplayChange(nBitsPerPixel, cx, cy);
}

void CCUIFrameWindow::OnDpiChanged(UINT, const RECT *pSuggested)
{
    if (m_bFullScreen)
        CoverScreen();
    else if (pSuggested)
        SetWindowPos(m_hWnd, nullptr, pSuggested->left, pSuggested->top, CUIWidth(*pSuggested),
                     CUIHeight(*pSuggested), SWP_NOZORDER | SWP_NOACTIVATE);
}
