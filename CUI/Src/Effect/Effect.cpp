#include "CUI/Effect.h"

#include "Base/GdiGuards.h"
#include "Base/Wrap.h"
#include "CU/Assert.h"
#include "CU/CU.h"
#include "CUI/OffScreenDC.h"

#define CU_SOURCE "Effect"

namespace {

// SPI_GETUIEFFECTS of Windows 2000 and SPI_GETCLIENTAREAANIMATION of Windows Vista.
const UINT GET_UI_EFFECTS = 0x103E;
const UINT GET_CLIENT_AREA_ANIMATION = 0x1042;

// How many frames that look the same are passed over without a look at the clock.
const int MOST_SKIPPED = 64;

}  // namespace

CCUITimeBasedEffect::~CCUITimeBasedEffect()
{
    LetGo();
}

// --- Runs ---

int CCUITimeBasedEffect::Start(CCUIWindow *pWindow, const RECT &rect)
{
    Stop();
    CU_ASSERT(pWindow && pWindow->GetHandle());
    if (!pWindow || !pWindow->GetHandle())
        return 0;
    m_pWindow = pWindow;
    pWindow->InsertMessageHook(this);
    m_rect = rect;
    m_state = Running;
    m_bAsleep = false;
    m_bStill = !IsAnimationWanted();
    m_nPass = 0;
    m_uStart = CUGetTime();
    SetAlarm(0);
    return 1;
}

void CCUITimeBasedEffect::Pause()
{
    if (m_state != Running)
        return;
    m_uElapsed = Elapsed(CUGetTime());
    m_state = Paused;
    m_bAsleep = false;
    KillAlarm();
}

void CCUITimeBasedEffect::Resume()
{
    if (m_state != Paused)
        return;
    m_uStart = CUGetTime() - m_uElapsed;
    m_state = Running;
    SetAlarm(0);
}

void CCUITimeBasedEffect::Stop()
{
    LetGo();
    Discard();
}

void CCUITimeBasedEffect::LetGo()
{
    if (!m_pWindow)
        return;
    KillAlarm();
    m_pWindow->RemoveMessageHook(this);
    m_pWindow = nullptr;
    m_state = Stopped;
}

void CCUITimeBasedEffect::Move(const RECT &rect)
{
    if (!m_pWindow)
        return;
    Invalidate(true);
    m_rect = rect;
    Invalidate(false);
}

// A setting counts from now on, not from the next frame on that is due.
void CCUITimeBasedEffect::Changed()
{
    if (m_state == Running)
        SetAlarm(0);
    else if (m_state == Paused)
        Invalidate(false);
}

// --- The clock ---

double CCUITimeBasedEffect::Ease(Easing easing, double fTime)
{
    const double fLeft = 1 - fTime;
    switch (easing) {
    case EaseIn: return fTime * fTime;
    case EaseOut: return 1 - fLeft * fLeft;
    case EaseBoth: return fTime < 0.5 ? 2 * fTime * fTime : 1 - 2 * fLeft * fLeft;
    default: return fTime;
    }
}

double CCUITimeBasedEffect::GetProgress() const
{
    return ProgressAt(CUGetTime());
}

// Since the start of m_nPass. What runs without an end may have slept for weeks.
unsigned long CCUITimeBasedEffect::Elapsed(unsigned long uNow) const
{
    return m_state == Running ? uNow - m_uStart : m_state == Paused ? m_uElapsed : 0;
}

bool CCUITimeBasedEffect::IsBehindEnd(long nPass) const
{
    return m_nPasses > 0 && nPass >= m_nPasses;
}

double CCUITimeBasedEffect::ProgressAt(unsigned long uNow) const
{
    const auto uDuration = static_cast<unsigned long>(m_nDuration);
    const unsigned long uElapsed = Elapsed(uNow);
    long nPass = CUWrapAdd(m_nPass, static_cast<long>(uElapsed / uDuration));
    double fTime = static_cast<double>(uElapsed % uDuration) / uDuration;
    if (IsBehindEnd(nPass)) {
        nPass = m_nPasses - 1;
        fTime = 1;
    }
    if (m_state == Finished)
        fTime = 1;
    const double fWay = Ease(m_easing, fTime);
    const bool bBack = m_repeat == ToAndFro && nPass % 2 != 0;
    return m_bBackwards != bBack ? 1 - fWay : fWay;
}

// Brings the pass up to the clock. False at the end.
bool CCUITimeBasedEffect::Advance(unsigned long uNow)
{
    const auto uDuration = static_cast<unsigned long>(m_nDuration);
    const unsigned long uOver = Elapsed(uNow) / uDuration;
    const long nPass = CUWrapAdd(m_nPass, static_cast<long>(uOver));
    if (m_bStill || IsBehindEnd(nPass)) {
        m_nPass = m_nPasses > 0 ? m_nPasses - 1 : 0;
        return false;
    }
    m_uStart += uOver * uDuration;
    m_nPass = nPass;
    return true;
}

void CCUITimeBasedEffect::TimeOut(long)
{
    // Without a handle the window is just telling its hooks, one after the other, that it is lost.
    if (m_state != Running || !m_pWindow->GetHandle())
        return;
    const unsigned long uNow = CUGetTime();
    const long nPass = m_nPass;
    const bool bGoesOn = Advance(uNow);
    if (!bGoesOn)
        m_state = Finished;
    const bool bSeen = Show(uNow);
    // What may delete the effect comes last.
    if (!bGoesOn) {
        OnEnd(true);
        return;
    }
    if (bSeen)
        Schedule(uNow);
    else
        Sleep(uNow);
    if (m_nPass != nPass)
        OnTurn(m_nPass);
}

// Frames are the frame time apart from the start of the pass on, so that a late one delays no
// other. There is one at the end of the pass, and none where nothing changes.
void CCUITimeBasedEffect::Schedule(unsigned long uNow)
{
    m_bAsleep = false;
    const auto nElapsed = static_cast<long>(Elapsed(uNow));
    const long nLeft = m_nDuration - nElapsed;
    long nDelay = m_nFrameTime - nElapsed % m_nFrameTime;
    for (int i = 0; i < MOST_SKIPPED && nDelay < nLeft; ++i, nDelay += m_nFrameTime) {
        if (!LooksSame(m_fShown, ProgressAt(uNow + static_cast<unsigned long>(nDelay))))
            break;
    }
    SetAlarm(CUISmaller(nDelay, nLeft));
}

// --- The window ---

// False: nothing of it can be seen.
bool CCUITimeBasedEffect::Show(unsigned long uNow)
{
    const CCUIWindowDC dc(*m_pWindow);
    if (!RectVisible(dc, &m_rect))
        return false;
    const double fProgress = ProgressAt(uNow);
    if (m_bShown && LooksSame(m_fShown, fProgress))
        return true;
    m_bShown = true;
    m_fShown = fProgress;
    Draw(dc, m_rect, fProgress);
    return true;
}

// No frames until the window is asked to paint there, or the end is due. The first time we ask for
// that ourselves: a window above may have saved what it covers (CS_SAVEBITS), and the system puts
// that back without a WM_PAINT unless something there has become invalid meanwhile.
void CCUITimeBasedEffect::Sleep(unsigned long uNow)
{
    if (!m_bAsleep)
        Invalidate(false);
    m_bAsleep = true;
    if (m_nPasses <= 0)
        return;
    const double fLeft = static_cast<double>(m_nPasses - m_nPass) * m_nDuration - Elapsed(uNow);
    SetAlarm(fLeft < LONGEST_SPAN ? static_cast<long>(fLeft) : LONGEST_SPAN);
}

// A null handle would mean all windows.
void CCUITimeBasedEffect::Invalidate(bool bErase)
{
    if (m_pWindow && m_pWindow->GetHandle())
        InvalidateRect(*m_pWindow, &m_rect, bErase);
}

// The window is about to paint. What it would paint in our place is taken away from it.
void CCUITimeBasedEffect::Repaint()
{
    const HWND hWnd = *m_pWindow;
    RECT rect;
    if (!GetUpdateRect(hWnd, &rect, FALSE) || !IntersectRect(&rect, &rect, &m_rect))
        return;
    ValidateRect(hWnd, &m_rect);
    m_bShown = false;
    const unsigned long uNow = CUGetTime();
    // The timer sees to what else is due.
    if (Show(uNow) && m_bAsleep) {
        m_bAsleep = false;
        SetAlarm(0);
    }
}

// What pauses finds it at its next frame.
void CCUITimeBasedEffect::SetStill()
{
    m_bStill = !IsAnimationWanted();
    if (m_bStill && m_state == Running)
        SetAlarm(0);
}

int CCUITimeBasedEffect::OnHookMessage(UINT message, WPARAM wParam, LPARAM, long &)
{
    switch (message) {
    case WM_PAINT:
        if (!wParam)
            Repaint();
        break;
    case WM_WINDOWPOSCHANGED:
        if (m_bAsleep)
            SetAlarm(0);
        break;
    case WM_SETTINGCHANGE:
        SetStill();
        Discard();
        break;
    case WM_SYSCOLORCHANGE:
    case WM_DISPLAYCHANGE: Discard(); break;
    default: break;
    }
    return 0;
}

void CCUITimeBasedEffect::OnUnbound()
{
    const bool bFinished = m_state == Finished;
    Stop();
    if (!bFinished)
        OnEnd(false);
}

// --- The picture ---

void CCUITimeBasedEffect::Draw(HDC hDC, const RECT &rect, double fProgress)
{
    if (IsRectEmpty(&rect))
        return;
    // What is no number becomes 0 as well.
    const double fFrom0 = fProgress > 0 ? fProgress : 0;
    const double fTo1 = fFrom0 < 1 ? fFrom0 : 1;
    if (!IsLayered()) {
        Render(hDC, rect, fTo1);
        return;
    }
    const int cx = CUIWidth(rect);
    const int cy = CUIHeight(rect);
    const HDC hMemory = CUIGetOSDC()->GetDC(hDC, cx, cy);
    Render(hMemory, {0, 0, cx, cy}, fTo1);
    BitBlt(hDC, rect.left, rect.top, cx, cy, hMemory, 0, 0, SRCCOPY);
    CUIGetOSDC()->ReleaseDC();
}

void CCUITimeBasedEffect::Paint(HDC hDC)
{
    Draw(hDC, m_rect, m_bShown ? m_fShown : GetProgress());
}

bool CCUITimeBasedEffect::IsAnimationWanted()
{
    BOOL bWanted = TRUE;
    if (!SystemParametersInfoA(GET_CLIENT_AREA_ANIMATION, 0, &bWanted, 0) &&
        !SystemParametersInfoA(GET_UI_EFFECTS, 0, &bWanted, 0))
        return true;
    return bWanted != 0;
}

void CCUITimeBasedEffect::Discard()
{
    m_bShown = false;
    Invalidate(false);
}
