#pragma once

#include "CUI/Window.h"

// The message that a window is handling, on the stack of the window procedure. Messages nest: the
// one before comes back when the inner one is done.
class CCUIWindow::CMessage : public CCUIWindow::CWatch
{
public:
    CMessage(CCUIWindow *pWindow, UINT message, WPARAM wParam, LPARAM lParam)
        : CWatch(pWindow),
          m_message(message),
          m_wParam(wParam),
          m_lParam(lParam),
          m_pOuter(pWindow->m_pMessage),
          m_pOwner(pWindow)
    {
        pWindow->m_pMessage = this;
    }
    ~CMessage()
    {
        if (!IsGone())
            m_pOwner->m_pMessage = m_pOuter;
    }

    const UINT m_message;
    const WPARAM m_wParam;
    const LPARAM m_lParam;

private:
    CMessage *const m_pOuter;
    CCUIWindow *const m_pOwner;
};
