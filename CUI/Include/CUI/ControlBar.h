#pragma once

/// @file
/// Bars of buttons at the sides of a window.

#include "CU/String.h"
#include "CUI/BarSide.h"
#include "CUI/Bitmap.h"
#include "CUI/ControlWindow.h"
#include "CUI/Platform.h"

class CCUIBarItem;
class CCUIBarItems;
class CCUIMenu;

/// A bar of command buttons, separators and windows of any kind: a toolbar. The buttons are drawn
/// by the bar itself. They show what their commands' handlers say, at once and after each idle
/// pass: enabled, checked and, where their texts are shown, the text; a command without a handler
/// is disabled. Only a button that looks otherwise is painted again.
///
/// A button that is pressed sends WM_COMMAND with its command and, as its control, this bar to the
/// command target, which carries the command out if it routes commands. While a button is under the
/// mouse the target gets WM_MENUSELECT for its command as a menu's owner does, with a null menu, so
/// that help texts of menu items and buttons take one way (CCUIStatusBar::ShowCommandHelp); and
/// its tooltip is the handler's GetShortTT, without '&' and shortcut. What the windows in the bar
/// notify of goes to the target, too.
///
/// What has no room at the end is in the menu of a button that is there then, ">>".
///
/// The parent, such as a frame window, puts the bar at its GetSide, as thick as its GetFixedSize,
/// and hears of changes by CUI_WM_LAYOUT. Dragged by its grip the bar goes from side to side as the
/// mouse gets near another one; Escape brings it back. Its context menu has the sides, too, unless
/// SetContextMenu gives it another one. In a vertical bar, windows that are wider than the widest
/// button have no room.
///
/// Keyboard: a bar that has the focus (ActivateNext) lights a button; arrow keys, Home and End go
/// from one to the next, Enter and Space press it, Escape gives the focus back to the window that
/// had it, as pressing does, before the command.
///
/// Without comctl32.dll there are no tooltips. Where the system has nothing for TrackMouseLeave, a
/// timer finds out that the mouse has left.
///
/// For the user-interface thread only: changes of its items on another one than the window's are
/// reported as "IsOwnThread()".
class CCUIControlBar : public CCUIControlWindow
{
public:
    /// Empty, at the top.
    CUI_API CCUIControlBar();
    CUI_API ~CCUIControlBar() override;

    /// Makes the window, a child, still without a place in its parent. With a name the user's side
    /// and whether the bar is shown are kept in the settings ("Bars\" and the name, see
    /// CUI/Settings.h) and come from there, if there are any, in the place of `side`; else nothing
    /// is kept. 1, or 0 as Create.
    CUI_API int CreateBar(HWND hParent, UINT nID, const char *pszName = nullptr,
                          CUIBarSide side = CUI_BAR_TOP);
    /// The class "pzl-ControlBAR" where none is named. When it cannot be registered
    /// "CUIWindowClassRegister(CUI_CLASS_CONTROLBAR)" is reported.
    CUI_API int PreCreate(CREATESTRUCTA *pCreate) override;
    /// Tab goes from a window in the bar to the next item.
    CUI_API int PreTranslateMessage(MSG *pMsg) override;

    // --- What is in it ---

    /// Puts buttons in the place of all that is there: for each identifier one with the next
    /// picture of the strip, for each 0 a separator.
    /// @{
    CUI_API void SetButtons(const unsigned int *pnIDs, int nCount);
    template <size_t COUNT>
    void SetButtons(const unsigned int (&nIDs)[COUNT])
    {
        SetButtons(nIDs, static_cast<int>(COUNT));
    }
    /// @}
    /// Appends a button with the strip's picture of that number, from 0; one that the strip does
    /// not have: with a text. The command is below 65,536, as the system has it.
    CUI_API void AddButton(unsigned int nID, int nPicture);
    /// Appends a separator.
    CUI_API void AddSeparator();
    /// Appends a window, which becomes a child of the bar and keeps its size; it stays its owner's.
    /// With the identifier of a command it is enabled as that is, and the command stands for it in
    /// the menu of what has no room; 0: none does. A focus that would be lost by disabling goes on
    /// as by Tab. Needs the bar's window, or it is reported as "m_hWnd" and not done; nor is it,
    /// which is traced, with what the system makes no child or what another thread or program has
    /// made. When the window is destroyed, its place closes up at the next layout.
    CUI_API void AddControl(HWND hControl, unsigned int nID);
    /// Takes everything away; windows become hidden and stay children.
    CUI_API void RemoveAll();
    /// Gives the command's button an arrow that opens the menu, which is not owned and must live as
    /// long as the bar or until this is called with null.
    CUI_API void SetDropDown(unsigned int nID, CCUIMenu *pMenu);

    /// The strip of pictures, each cxPicture pixels wide; null or narrower, which is traced: texts
    /// in their place.
    /// In the disabled look what has the colours of the button's face or highlight is background:
    /// load the strip with CUIBMP_SYSCOLORS, and it goes along with changes of the system's
    /// colours. The pictures are stretched from nDpi, the dots an inch that they were drawn for, to
    /// those of the screen, where these are more; pictures that were drawn for them look better.
    CUI_API void SetPictures(const CCUIBitmap &strip, int cxPicture, int nDpi = 96);
    /// Whether buttons have texts beside their pictures; false at first.
    CUI_API void ShowTexts(bool bShow);
    /// What the handlers say now, at once.
    CUI_API void RefreshCommands();

    /// Where the item is, from 0 in the order of adding, in client pixels; empty for one that has
    /// no room, and for none.
    CUI_API RECT GetItemRect(int nItem) const;
    /// The button ">>"; empty while all have room.
    CUI_API RECT GetOverflowRect() const;

    // --- Where it is ---

    CUIBarSide GetSide() const { return m_side; }  ///< the side for the parent to put it at
    /// A change makes the parent lay out everything.
    CUI_API void SetSide(CUIBarSide side);
    /// Whether it stands upright: at the left or the right.
    bool IsVertical() const { return m_side >= CUI_BAR_LEFT; }
    /// Whether the user may drag it, for which it has a grip; true at first.
    CUI_API void SetDockable(bool bDockable);
    /// Shows or hides the bar for good, as the user wants it. (ShowWindow does so for the moment.)
    CUI_API void ShowBar(bool bShow);
    bool IsBarShown() const { return m_bShown; }  ///< what ShowBar said last; true at first

    /// Who gets the commands; null, as at first: the parent.
    void SetCommandTarget(HWND hTarget) { m_hTarget = hTarget; }

    /// Gives the focus to the first visible bar in the parent, or to the one behind (bBack: before)
    /// the one that has it; behind the last one, back to the window that had it before. For a key
    /// such as F6. False when there is no bar.
    CUI_API static bool ActivateNext(HWND hParent, bool bBack = false);

protected:
    /// The bar's own handling.
    /// @{
    CUI_API void OnPaint(HDC hDC) override;
    CUI_API void OnCommand(UINT nCode, UINT nID, HWND hControl) override;
    CUI_API long OnNotify(UINT nID, NMHDR *pHeader) override;
    CUI_API void OnLButtonDown(UINT nFlags, POINT &point) override;
    CUI_API void OnLButtonUp(UINT nFlags, POINT &point) override;
    CUI_API void OnMouseMove(UINT nFlags, POINT &point) override;
    CUI_API void OnKeyDown(UINT nKey, UINT nRepeat, UINT nFlags) override;
    /// The context menu, if it has one; else, of a bar that can be docked, one of the four sides.
    CUI_API void OnContextMenu(HWND hWnd, POINT &point) override;
    CUI_API long WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    /// @}

private:
    class CItem;

    static CCUIControlBar *Find(HWND hWnd);
    HWND Target() const;
    void LoadState();
    void SaveState() const;
    void Append(unsigned int nID, int nPicture, HWND hControl);
    void ItemsFilled();
    void ItemsChanged();
    void TextsChanged();
    void ShowCommand(CCUIBarItem &item, unsigned short nState, const CCUString &sText);
    void AskText(CCUIBarItem &item);
    void SetItemText(CCUIBarItem &item, const CCUString &sText);
    void Layout();
    void Relayout();
    void Repaint(const RECT *pRect = nullptr);
    void RepaintItem(int nItem);

    int HitTest(const POINT &point) const;
    bool CanPress(int nItem) const;
    void SetHot(int nItem);
    void ShowTip(unsigned int nID);
    void MouseHasLeft();
    bool ShowDragCursor() const;
    void TakeFocus(HWND hOld);
    SIZE NaturalSize() const;
    void LoseCapture();
    void LoseWindow();
    void LookForMouse();
    bool Handle(UINT message, WPARAM wParam, LPARAM lParam, long &result);
    void EndPress();
    void SendCommand(unsigned int nID);
    void Press(int nItem);
    void ShowMenuOpen(int nItem, bool bOpen);
    int ChooseBeside(CCUIMenu &menu, const RECT &rcScreen);
    void OpenMenu(int nItem, CCUIMenu &menu);
    void OpenOverflow();
    void LeaveKeyboard();
    int FindControl(HWND hWnd) const;
    void GoTo(int nItem);
    void EnableControl(HWND hControl, bool bEnable);
    int NextItem(int nFrom, int nStep) const;
    void PressByKey();
    CUIBarSide SideAt(const POINT &screen) const;
    void Drag();

    static CCUIControlBar *s_pFirst;  // of all bars
    static HWND s_hFocusBefore;       // where the focus goes back to

    CCUIBarItems *m_pItems;  // owned
    CCUIControlBar *m_pNext;
    CCUString m_sName;  // in the settings
    CUIBarSide m_side;
    bool m_bShown;
    bool m_bDragging;
    bool m_bTracking;  // the system tells when the mouse leaves
    HWND m_hTarget;
    int m_nHot;       // the item that is lit, -1: none
    int m_nPressed;   // the item that the mouse went down on, or whose menu is open
    bool m_bInside;   // the mouse is on that
    bool m_bFilling;  // items come one after the other, to be laid out together
};
