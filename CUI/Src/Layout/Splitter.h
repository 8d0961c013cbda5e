#pragma once

#include "CUI/LayoutWindow.h"

// The gap between two children of a layout that the user drags. It turns the mouse and the keyboard
// into calls of the layout, which does the rest.
class CCUISplitter : public CCUIWindow
{
public:
    // For the gap behind the child.
    CCUISplitter(CCUILayoutWindow &layout, HWND hChild);

    bool Make();
    // Next in the z-order, so that Tab comes to it behind its child.
    void FollowChild();

    // Pixels.
    static int Width();

    CCUISplitter *m_pNext;  // that nobody needs either

protected:
    long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnDestroy() override;
    int OnEraseBkgnd(HDC hDC) override;
    void OnPaint(HDC hDC) override;
    int OnSetCursor(HWND hWnd, UINT nHitTest, UINT nMessage) override;
    void OnLButtonDown(UINT nFlags, POINT &point) override;
    void OnMouseMove(UINT nFlags, POINT &point) override;
    void OnLButtonUp(UINT nFlags, POINT &point) override;
    void OnCaptureChanged(HWND hNew) override;
    void OnSetFocus(HWND hOld) override;
    void OnKillFocus(HWND hNew) override;
    void OnKeyDown(UINT nKey, UINT nRepeat, UINT nFlags) override;

private:
    enum State
    {
        Idle,
        Dragged,  // by the mouse
        Moved     // by keys, since it got the focus
    };

    int Position(POINT point) const;
    void MoveByKey(int nBy);
    void End(bool bKeep);

    CCUILayoutWindow &m_layout;
    const HWND m_hChild;
    HWND m_hFocusBefore;
    State m_state;
    int m_nFrom;  // where the mouse took it
};
