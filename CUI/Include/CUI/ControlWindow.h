#pragma once

/// @file
/// Windows that live in a layout.

#include "CU/String.h"
#include "CUI/Platform.h"
#include "CUI/Window.h"

/// What a control window tells its parent; wParam is the control window where nothing else is said.
enum : UINT
{
    CUI_WM_LAYOUT = WM_USER + 51,      ///< lParam: one of the codes below
    CUI_WM_CHILDFOCUS = WM_USER + 57,  ///< the window got the focus; lParam 0
    CUI_WM_TABKEY = WM_USER + 58       ///< Tab was pressed; lParam 0; nonzero: consumed
};
/// What has changed, as CUI_WM_LAYOUT tells it.
enum : LPARAM
{
    CUI_LAYOUT_ALL = 3,     ///< all windows, with wParam 0
    CUI_LAYOUT_SHOWN = 4,   ///< the window is shown; posted
    CUI_LAYOUT_HIDDEN = 5,  ///< the window is hidden; posted
    CUI_LAYOUT_CHANGED = 6  ///< size or flags
};

/// In place of a colour: the window has no colour of its own.
const COLORREF CUI_NO_WINDOW_COLOR = 0x3FFFFFF;

/// The name of the property that leads from a control window to its PropData, and of the window
/// class that a control window has when its creator names none.
extern CUI_API const CCUString g_sControlWindowProp;

/// Hears when a window takes the screen or gives it back.
class CUI_API CCUIWindowEventCallback
{
public:
    /// "InFullScreen" and "OutOfFullScreen", before the window is shown at its new place.
    virtual void OnWindowEvent(CCUString sEvent) = 0;

protected:
    ~CCUIWindowEventCallback() = default;
};

/// A window that lives as a child of a layout window, keeps what the layout needs to know of it and
/// tells the parent when that changes. It can take the whole screen and give it back.
///
/// It keeps its colour for those who paint it; the class itself paints nothing.
class CUI_API CCUIControlWindow : public CCUIWindow
{
public:
    /// From OnCreate to OnDestroy the window property g_sControlWindowProp is the address of this.
    struct PropData
    {
        int nFixedSize;              ///< pixels along the layout's direction
        COLORREF crWindow;           ///< CUI_NO_WINDOW_COLOR: none
        unsigned long nLayoutFlags;  ///< for the parent to read
        int bColorChanging;          ///< size and flags change without the parent being told
        int bFullScreen;             ///< it has the screen, or is about to
    };

    /// Bound to no window.
    CCUIControlWindow();
    ~CCUIControlWindow() override;

    int PreCreate(CREATESTRUCTA *pCreate) override;

    /// Tab goes to the parent, whose answer counts; Escape leaves full screen.
    int PreTranslateMessage(MSG *pMsg) override;

    /// Sets who hears of the transitions; not owned. Null: nobody.
    void SetWindowEventCallback(CCUIWindowEventCallback *pCallback);

    /// A change of the bits 0xFFFF0F00, or of other bits while one of these is set, makes the
    /// parent lay out everything and repaint at once. Any other change is told as
    /// CUI_LAYOUT_CHANGED.
    virtual void SetLayoutFlags(unsigned long nFlags);
    /// A change is told as CUI_LAYOUT_CHANGED.
    virtual void SetFixedSize(int nSize);
    /// While it is on, the parent hears of changes neither of the flags nor of the size.
    virtual void SetColorChanging(int bChanging);
    /// Repaints the window and what is around it in the parent; ends colour changing.
    virtual void SetWindowColor(unsigned long crWindow);
    /// Takes the screen, or goes back to the former parent, place, order and focus. If the former
    /// parent is gone, the window becomes a child of the desktop, and its former place is taken as
    /// screen coordinates. Does nothing without a window. Asked for during a transition, the other
    /// one follows it.
    virtual void SetFullScreen(int bFull);

    /// @name What was set last
    /// @{
    virtual int GetFixedSize();              ///< 20 at first
    virtual unsigned long GetWindowColor();  ///< CUI_NO_WINDOW_COLOR at first
    virtual unsigned long GetLayoutFlags();  ///< 4 at first
    virtual int GetColorChanging();          ///< 0 at first
    virtual int GetFullScreen();             ///< 0 at first
    /// @}

protected:
    /// These keep the window property, tell the parent that the window is shown, hidden or focused,
    /// and leave full screen on WM_CANCELMODE.
    /// @{
    int OnCreate(CREATESTRUCTA *pCreate) override;
    void OnDestroy() override;
    void OnShowWindow(int bShow, int nStatus) override;
    void OnSetFocus(HWND hOld) override;
    void OnCancelMode() override;
    /// @}

    /// Makes the window property lead here, or (with a null window) nowhere any more.
    void PublishLayoutData(HWND hWnd);
    /// Tells the parent, of a window with CUI_PLACE_FIT, that its content needs another size. It
    /// may delete the window.
    void NaturalSizeChanged();
    /// Gives the focus to the next control, as Tab does; to the parent where there is none.
    void PassFocusOn();
    bool IsInDialog() const;             ///< whether the parent is a dialog
    static CCUString TextOf(HWND hWnd);  ///< a window's text, of any length

    PropData m_propData;  ///< what the window property leads to

private:
    HWND GetLayoutParent() const;
    bool EnterFullScreen(HWND hWnd);
    bool LeaveFullScreen(HWND hWnd);
    bool TellCallback(const char *pszEvent);

    // Where the window was before it took the screen.
    RECT m_rcSaved;  // in the parent's client coordinates
    HWND m_hSavedParent;
    HWND m_hSavedPredecessor;
    HWND m_hSavedFocus;
    CCUIWindowEventCallback *m_pEventCallback;
    int m_bSwitching;       // a transition is under way
    HWND m_hPropertyOwner;  // the window whose property leads here
};
