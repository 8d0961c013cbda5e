#pragma once

/// @file
/// Controls that draw themselves.

#include "CU/String.h"
#include "CUI/CommandView.h"
#include "CUI/ControlWindow.h"
#include "CUI/Platform.h"

/// How a control stands: the bits of CCUIControl::GetState.
enum CUIControlState : unsigned int
{
    CUI_STATE_DISABLED = 0x01,       ///< takes no input
    CUI_STATE_HOT = 0x02,            ///< the mouse is over it
    CUI_STATE_PRESSED = 0x04,        ///< held down by the mouse, which is over it, or by a key
    CUI_STATE_FOCUSED = 0x08,        ///< has the keyboard focus
    CUI_STATE_CHECKED = 0x10,        ///< checked
    CUI_STATE_MIXED = 0x20,          ///< neither checked nor not
    CUI_STATE_DEFAULT = 0x40,        ///< what Enter presses in its dialog
    CUI_STATE_NO_FOCUS_MARK = 0x80,  ///< the system wants no mark of the focus (Windows 2000 on)
    CUI_STATE_NO_UNDERLINE = 0x100   ///< the same for mnemonics
};

/// Presses the button, or gives the focus to the field behind the label, whose text has the
/// mnemonic of a WM_SYSCHAR (Alt with a character), among all windows inside hParent, those of the
/// system too; where several have it, the next one after the focus just gets that. 1 when there was
/// one. The commands are refreshed before (CCUICommandMap::IdleUpdate), so that a button whose
/// command the last key has enabled is found. Dialogs do it by themselves, and so do own-drawn
/// controls with the focus; other windows, such as frames, call it in PreTranslateMessage for the
/// times when another child has the focus. The window may be gone afterwards.
CUI_API int CUITranslateMnemonic(HWND hParent, const MSG *pMsg);

/// The base of controls that draw themselves: text, font and colours; the states that mouse,
/// keyboard and a command bring; painting without flicker. In a dialog, a layout, a bar or any
/// other window. What a control says goes to its parent as WM_COMMAND, with BN_CLICKED and its
/// identifier.
///
/// In a mirrored window (WS_EX_LAYOUTRTL, on Windows 98 and 2000) all of it is mirrored, pictures
/// too, but not the text; WS_EX_RTLREADING has that read from right to left.
///
/// Without comctl32.dll there are no tooltips. Where the system has nothing for TrackMouseLeave, a
/// timer finds out that the mouse has left.
///
/// A control may be deleted by whatever it tells or calls. It uses its CCUTimer (SetAlarm) itself.
/// For the user-interface thread only.
class CCUIControl : public CCUIControlWindow, private CCUICommandView
{
public:
    /// Bound to no window.
    CUI_API CCUIControl();
    CUI_API ~CCUIControl() override;

    /// Creates the window as a visible child that Tab reaches, as large as it is by nature where
    /// prc (the parent's client pixels) is null. A null text leaves what SetText said. Further
    /// styles, such as WS_VSCROLL, a derived class adds in PreCreate. 1 on success.
    CUI_API int CreateControl(HWND hParent, UINT nID, const char *pszText,
                              const RECT *prc = nullptr);
    /// Creates the window in the place of a dialog's control, which is destroyed: with its
    /// identifier, text, font, place, turn in the tab order, visible and enabled as that was. 1 on
    /// success; 0, and a line in the trace, when there is no such control or another thread or
    /// program has made it.
    CUI_API int ReplaceControl(HWND hDialog, UINT nID);

    /// Binds the control to a command, whose number becomes the control's identifier: enabled,
    /// checked and, with CUI_COMMAND_TEXT, the text follow what the handler says (a command without
    /// a handler is disabled), the tooltip is its GetShortTT, and a click goes to the nearest
    /// window above that routes commands, or to the parent if none does. While the mouse is over
    /// it, the former gets WM_MENUSELECT for the command, as from a control bar, which makes a
    /// frame show the long help. 0: no command.
    /// @{
    CUI_API void SetCommand(unsigned int nID);
    unsigned int GetCommand() const { return CCUICommandView::GetCommand(); }
    /// @}

    /// The text, also through WM_SETTEXT and WM_GETTEXT; a character behind a single '&' is the
    /// mnemonic. It may be set before the window is there.
    /// @{
    CUI_API void SetText(const char *pszText);
    const CCUString &GetText() const { return m_sText; }
    /// @}
    /// The font, also through WM_SETFONT and WM_GETFONT; not owned. Null, at first: the font of
    /// menus as the user has set it.
    /// @{
    CUI_API void SetFont(HFONT hFont);
    HFONT GetFont() const { return m_hFont; }
    /// @}
    /// The colour of the text, as CUIData::ResolveColor takes it; that of buttons at first. The
    /// background has the colour of SetWindowColor, or the one that the parent answers to
    /// WM_CTLCOLORSTATIC.
    CUI_API void SetTextColor(DWORD crText);
    /// The colours that Paint needs on a screen that has a palette, of 256 colours: realised in
    /// front of the other windows' while the program is, behind them else. Not owned; null, at
    /// first: none. A frame passes on what the system says of palettes; another top-level window
    /// does so by SendMessageToDescendants, with WM_QUERYNEWPALETTE and WM_PALETTECHANGED.
    CUI_API void SetPalette(HPALETTE hPalette);
    /// The tip for a control without a command; null or "": none.
    CUI_API void SetToolTip(const char *pszText);
    /// Enables or disables the window; it may be done before that is there. A focus that would be
    /// lost goes on to the next control.
    CUI_API void Enable(bool bEnable);
    /// CUIControlState bits.
    unsigned int GetState() const { return m_nState; }
    /// Does what a click does. Nothing without a window or while it is disabled.
    CUI_API void Click();
    /// The size that the content needs, in pixels; the answer to CUI_WM_NATURALSIZE.
    CUI_API virtual void GetNaturalSize(SIZE &size);

    CUI_API int PreCreate(CREATESTRUCTA *pCreate) override;
    CUI_API int PreTranslateMessage(MSG *pMsg) override;
    CUI_API void TimeOut(long nNow) override;

protected:
    /// Paints the control, whose client area is rect, on the background and with font and colour
    /// set. What is done to the DC is undone afterwards. The text, in the middle, by default.
    CUI_API virtual void Paint(HDC hDC, const RECT &rect);
    /// Mouse or space bar hold the control down. Nothing by default.
    CUI_API virtual void OnPress();
    /// They were released while it was pressed. Clicks by default.
    CUI_API virtual void OnRelease();
    /// The control was clicked, by whatever means. Tells the parent by default.
    CUI_API virtual void OnClick();
    void OnCommandChanged(unsigned short nState, const CCUString &sText) override
    {
        FollowCommand(nState, sText);
    }

    /// For derived classes.
    /// @{
    CUI_API void SetState(unsigned int nBits,
                          bool bOn);      ///< repaints if one of m_nShownStates changes
    CUI_API void Repaint();               ///< soon, all of it
    CUI_API void ContentChanged();        ///< repaints, tells a layout; it may delete the control
    CUI_API void TellParent(UINT nCode);  ///< WM_COMMAND; it may delete the control
    bool IsHeld() const { return m_press != PressNone; }  ///< by mouse or key, pressed or not
    CUI_API const SIZE &GetTextSize();                    ///< pixels, on one line if it has no '\n'
    /// Draws the text with DrawText's flags, as the state wants it.
    CUI_API void PaintText(HDC hDC, const RECT &rect, UINT nFormat);
    /// The mark of the focus, where there is to be one.
    CUI_API void PaintFocus(HDC hDC, const RECT &rect);
    COLORREF GetBackColor() const { return m_crBack; }  ///< of the background while it is painted
    CUI_API COLORREF GetTextColor() const;              ///< resolved
    /// Fills with the colour; one that a screen of 256 colours does not have is mixed of dots
    /// there.
    CUI_API static void Fill(HDC hDC, const RECT &rect, COLORREF cr);
    CUI_API static bool IsHighContrast();    ///< whether the user has chosen such colours
    CUI_API static int Scaled(int nPixels);  ///< from 96 dots per inch to those of the screen
    /// @}

    unsigned int m_nShownStates;  ///< the states that Paint shows; all at first
    bool m_bFocusOnClick;         ///< the mouse brings the focus; true at first
    bool m_bOpaque;               ///< Paint covers everything, no background is needed

    CUI_API long WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    CUI_API long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    CUI_API int OnCreate(CREATESTRUCTA *pCreate) override;
    CUI_API void OnDestroy() override;
    CUI_API void OnSize(UINT nType, int cx, int cy) override;
    CUI_API void OnPaint(HDC hDC) override;
    CUI_API int OnEraseBkgnd(HDC hDC) override;
    CUI_API void OnEnable(int bEnable) override;
    CUI_API void OnLButtonDown(UINT nFlags, POINT &point) override;
    CUI_API void OnLButtonUp(UINT nFlags, POINT &point) override;
    CUI_API void OnLButtonDblClk(UINT nFlags, POINT &point) override;
    CUI_API void OnMouseMove(UINT nFlags, POINT &point) override;
    CUI_API void OnMouseLeave() override;
    CUI_API void OnKeyDown(UINT nKey, UINT nRepeat, UINT nFlags) override;
    CUI_API void OnKeyUp(UINT nKey, UINT nRepeat, UINT nFlags) override;
    CUI_API void OnSetFocus(HWND hOld) override;
    CUI_API void OnKillFocus(HWND hNew) override;
    CUI_API void OnCancelMode() override;
    CUI_API void OnCaptureChanged(HWND hNew) override;
    CUI_API void OnSysColorChange() override;
    CUI_API void OnWinIniChange(WPARAM nAction, const char *section) override;

private:
    enum Press : unsigned char
    {
        PressNone,
        PressMouse,
        PressKey
    };
    // Called in the header: see CCUIStatusBar::SetHelp.
    CUI_API void FollowCommand(unsigned short nState, const CCUString &sText);
    void BeginPress(Press press);
    void EndPress(bool bInside);
    void CancelPress();
    void SetHot(bool bHot);
    void TellHelp(unsigned int nID, UINT nFlags);
    void AwaitLeave();
    bool IsInside(const POINT &point) const;
    long FollowDefault(UINT message);
    void FocusAndClick();
    CCUString GetTipText();
    HBRUSH GetBackground(HDC hDC);
    bool ReadText();
    void ReadCues();
    UINT Realize(bool bBehind);

    unsigned int m_nState;
    CCUString m_sText;
    CCUString m_sToolTip;
    HFONT m_hFont;
    HPALETTE m_hPalette;
    DWORD m_crText;
    COLORREF m_crBack;
    SIZE m_textSize;  // cx below 0: to be measured
    Press m_press;
};
