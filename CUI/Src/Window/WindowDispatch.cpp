// What every message passes: its object, the object's hooks, default processing.

#include "CU/Assert.h"
#include "CUI/Window.h"
#include "Window/WindowHookList.h"
#include "Window/WindowMap.h"
#include "Window/WindowMessage.h"
#include "Window/WindowTable.h"

#define CU_SOURCE "Window"

CCUIWindow::CWatch::CWatch(CCUIWindow *pWindow) : m_pWindow(pWindow), m_pNext(pWindow->m_pWatch)
{
    pWindow->m_pWatch = this;
}

CCUIWindow::CWatch::~CWatch()
{
    if (m_pWindow)
        m_pWindow->m_pWatch = m_pNext;
}

CCUIWindow *CUIWindowMapFind(HWND hWnd, bool &bDoubted)
{
    bDoubted = false;
    if (!hWnd)
        return nullptr;
    const unsigned nChanges = CUIWindowTable::s_nChanges.load(std::memory_order_acquire);
    uintptr_t nWindow =
        CUIWindowTable::Current().FindSlot(hWnd).nWindow.load(std::memory_order_acquire);
    if (nChanges % 2 != 0 || nChanges != CUIWindowTable::s_nChanges.load(std::memory_order_acquire))
    {
        // Another thread has been at the table meanwhile.
        const CUIWindowMapLock lock;
        nWindow = CUIWindowTable::Current().FindSlot(hWnd).nWindow;
    }
    bDoubted = (nWindow & CUIWindowSlot::DOUBTED) != 0;
    return reinterpret_cast<CCUIWindow *>(nWindow & ~CUIWindowSlot::DOUBTED);
}

CCUIWindow *CCUIWindow::FromHandle(HWND hWnd)
{
    bool bDoubted = false;
    CCUIWindow *const pWindow = CUIWindowMapFind(hWnd, bDoubted);
    return pWindow && bDoubted && !CUIIsStillBound(hWnd, pWindow) ? nullptr : pWindow;
}

LRESULT CALLBACK CCUIWindow::StaticWindowProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    // A window with a message lives, whatever is to come: no doubt about its binding.
    bool bDoubted = false;
    CCUIWindow *const pWindow = CUIWindowMapFind(hWnd, bDoubted);
    if (!pWindow)
        return ForwardUnbound(hWnd, message, wParam, lParam);
    CMessage current(pWindow, message, wParam, lParam);
    long result = 0;
    if (!pWindow->m_pHooks || !pWindow->CallHooks(current, result)) {
        if (pWindow->m_hWnd != hWnd)
            return ForwardUnbound(hWnd, message, wParam, lParam);
        result = pWindow->WindowProc(message, wParam, lParam);
    }
    if (message == WM_NCDESTROY && !current.IsGone() && pWindow->m_hWnd == hWnd) {
        pWindow->m_bMissedDetach = 1;
        pWindow->Detach();
        CUIWindowMapRemove(hWnd);
    }
    return result;
}

LRESULT CCUIWindow::ForwardUnbound(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CUIWindowBinding binding = {nullptr, nullptr};
    if (CUIWindowMapGet(hWnd, binding) && message == WM_NCDESTROY)
        CUIWindowMapRemove(hWnd);
    return CallProcedure(binding.pOldProc, hWnd, message, wParam, lParam);
}

long CCUIWindow::CallProcedure(WNDPROC pProc, HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    return pProc ? CallWindowProcA(pProc, hWnd, message, wParam, lParam)
                 : DefWindowProcA(hWnd, message, wParam, lParam);
}

long CCUIWindow::DefProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    // A window with a message lives. Of any other the handle may be another window's by now.
    if (!m_pMessage)
        HasWindow();
    CU_ASSERT_TEXT(m_hWnd && IsWindow(m_hWnd), "Exist()");
    return CallProcedure(m_pOldProc, m_hWnd, message, wParam, lParam);
}

long CCUIWindow::Default()
{
    return m_pMessage ? DefProc(m_pMessage->m_message, m_pMessage->m_wParam, m_pMessage->m_lParam)
                      : 0;
}

// True when the message is done with: a hook handled it, or the object is gone.
bool CCUIWindow::CallHooks(const CMessage &message, long &result)
{
    // A hook that is inserted on the way sees the next message first.
    CCUIWindowHookList::CWalk walk(*m_pHooks);
    while (CCUIWindowHook *const pHook = walk.Next()) {
        if (pHook->OnHookMessage(message.m_message, message.m_wParam, message.m_lParam, result) ||
            message.IsGone())
            return true;
    }
    return false;
}
