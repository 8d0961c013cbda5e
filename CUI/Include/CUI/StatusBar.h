#pragma once

/// @file
/// The bar at the lower edge of a window that says how things stand.

#include "CU/String.h"
#include "CUI/Bitmap.h"
#include "CUI/ControlWindow.h"
#include "CUI/HelpText.h"
#include "CUI/Platform.h"

class CCUIStatusPanes;
struct CCUIStatusPane;

/// How wide a pane is.
enum CUIPaneWidth
{
    CUI_PANE_FIXED,   ///< as many pixels as said
    CUI_PANE_FIT,     ///< its picture and text, and no fewer pixels than said
    CUI_PANE_STRETCH  ///< what the others leave, by weight; nothing where they leave nothing
};

/// What the parent gets, as WM_NOTIFY, when a pane is clicked: NM_CLICK, NM_DBLCLK, NM_RCLICK or
/// NM_RDBLCLK of the system's commctrl.h is the code. Nonzero for NM_RCLICK: no context menu.
struct CUIPaneNotification
{
    NMHDR header;  ///< window and identifier of the bar
    int nPane;     ///< -1: between the panes
    POINT point;   ///< client pixels of the bar
};

/// A status bar: panes with text, picture or progress. It starts with one stretching pane, number
/// 0, which also shows help texts: the text that it had comes back after them. Its fixed size, the
/// height, follows the font of the user's settings. In a lower right corner that the user can size
/// the window by it has a grip.
///
///     [ Ready                        ][###### 60 %   ][ Ln 7 ] //
///       0, stretching                   1, fixed        2, fitting, then the grip
///
/// Tabs before a text align it as in the system's own status bars: one centres it, two put it to
/// the right. '&' is a character like any other, what does not fit ends in "...". A pane's number
/// that is none is reported as "pPane", and nothing happens or "" is answered. Panes can be set up
/// before there is a window. For the user-interface thread only: calls on another one than the
/// window's are reported as "IsOwnThread()".
class CCUIStatusBar : public CCUIControlWindow, public CCUIHelpText
{
public:
    /// With pane 0.
    CUI_API CCUIStatusBar();
    CUI_API ~CCUIStatusBar() override;

    /// Makes the window, a visible child, still without a size. 1, or 0 as Create.
    CUI_API int CreateBar(HWND hParent, UINT nID);

    /// Appends a pane and returns its number. nSize: pixels, or the weight of a stretching pane (at
    /// least 1), 32,767 at the most.
    CUI_API int AddPane(CUIPaneWidth width, int nSize);
    /// Changes the width of a pane.
    CUI_API void SetPaneWidth(int nPane, CUIPaneWidth width, int nSize);
    /// Later panes get the number before theirs. The last one cannot be removed.
    CUI_API void RemovePane(int nPane);
    CUI_API int GetPaneCount() const;  ///< 1 or more
    /// Where the pane is, in client pixels, with its border; empty when there is no room for it.
    CUI_API RECT GetPaneRect(int nPane) const;
    /// The pane at a point in client pixels, or -1.
    CUI_API int HitTest(const POINT &point) const;

    /// The text of a pane; the same text repaints nothing.
    /// @{
    CUI_API void SetText(int nPane, const char *pszText);
    CUI_API CCUString GetText(int nPane) const;
    /// @}
    /// A picture in front of the text; one that is null takes it away. It is drawn whole: load it
    /// with CUIBMP_SYSCOLORS, and it goes along with changes of the system's colours. It is
    /// stretched from nDpi, the dots an inch that it was drawn for, to those of the screen, where
    /// these are more.
    CUI_API void SetPicture(int nPane, const CCUIBitmap &bitmap, int nDpi = 96);
    /// Fills nValue of nMost parts of the pane behind its text, at once; an nMost of 0 or less ends
    /// that. Values outside are taken as the nearest inside.
    CUI_API void SetProgress(int nPane, int nValue, int nMost);

    /// Shows a help text in pane 0 until ClearHelp, over text, picture and progress.
    void ShowHelp(const CCUString &sText) override { SetHelp(true, sText); }
    /// Shows what pane 0 has now.
    void ClearHelp() override { SetHelp(false, ""); }
    /// Shows the long help (GetLongTT) of a command; without any as ClearHelp. For windows other
    /// than frames, which do so by themselves, to be called from OnMenuSelect with what it gets, an
    /// nFlags of 0xFFFF and a popup included.
    CUI_API void ShowCommandHelp(UINT nID, UINT nFlags = 0);

protected:
    /// Tells the parent of a click; nonzero: done with. nCode: as in CUIPaneNotification.
    CUI_API virtual int OnPaneClick(int nPane, int nCode, POINT &point);

    /// The bar's own handling.
    /// @{
    CUI_API void OnPaint(HDC hDC) override;
    CUI_API long WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    /// @}

private:
    // What overrides functions of a second base calls in the headers: the compilers disagree on
    // whether the way there from the base is exported as well.
    CUI_API void SetHelp(bool bHelp, const CCUString &sText);
    CCUIStatusPane *Pane(int nPane) const;
    void Repaint(const RECT &rect);
    void Repaint(const CCUIStatusPane &pane, bool bWidth);
    void Remeasure();
    void Layout();
    HWND SizingWindow() const;
    RECT GripRect() const;
    bool IsInGrip(POINT screen) const;
    void OnSized();
    void ReloadPictures();
    bool PaneClicked(UINT nCode, POINT point);
    bool Handle(UINT message, WPARAM wParam, LPARAM lParam, long &result);

    CCUIStatusPanes *m_pPanes;  // owned
    bool m_bHelp;
    bool m_bGrip;  // there is room for it
    CCUString m_sHelp;
};
