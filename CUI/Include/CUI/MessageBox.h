#pragma once

/// @file
/// Message boxes.

#include "CU/String.h"
#include "CUI/Dialog.h"

class CCUIMessageContent;

/// A message that the user answers with a button; what the system's MessageBox shows, and more:
///
///     +-----------------------------------------+
///     | Caption                               x |
///     |  (i)   The text, which wraps, and       |
///     |        scrolls if it is very long.      |
///     |        [ ] Do not ask again             |
///     |    [ Save (5) ]  [ Discard ]  [Cancel]  |
///     +-----------------------------------------+
///
///     CCUIMessageBox box("Save the picture?", nullptr, MB_ICONQUESTION);
///     box.AddButton(IDYES, "&Save");
///     box.AddButton(IDNO, "&Discard");
///     box.AddButton(IDCANCEL);
///     if (box.DoModal(&frame) == IDYES) ...
///
/// The box is as large as its text needs, in the font that the user has chosen for messages, stands
/// in the middle of its owner (without a visible one: of the screen) and inside of the work area.
/// As in the system's box, Ctrl+C or WM_COPY copies the message as text. Escape, Alt+F4 and the
/// close box press the cancel button; where there is none the box cannot be closed. A text too long
/// for the screen scrolls: by its bar, the wheel, Page Up and Page Down.
///
/// CCUIWindow::AbortDialog presses the cancel button, else No. A box with neither, such as Abort,
/// Retry and Ignore, stays.
class CCUIMessageBox : public CCUIDialog
{
public:
    /// A null caption is the owner's or, without one, the program's name. Of the flags of
    /// MessageBox these count: a set of buttons (MB_OK to MB_CANCELTRYCONTINUE), MB_HELP, an icon
    /// (with its sound), MB_DEFBUTTON2 to 4, MB_RIGHT, MB_RTLREADING, MB_TOPMOST, MB_SYSTEMMODAL
    /// (the same). MB_SETFOREGROUND is what every dialog does; all others are ignored.
    CUI_API explicit CCUIMessageBox(const char *pszText, const char *pszCaption = nullptr,
                                    UINT nFlags = MB_OK);
    CUI_API ~CCUIMessageBox() override;

    /// Adds a button to the right of those added before; the first one takes the place of the set
    /// that the flags name. The identifier, 1 to 0xEFFF, is what DoModal answers. A null caption
    /// is, for IDOK to IDCONTINUE (11), the program's (CUI/FrameworkText.h); without one the
    /// system's, in the user's language (Windows 2000 and later), else English. Returns 1; or 0,
    /// reported, for an identifier out of range or used already, and for more than 12 buttons.
    CUI_API int AddButton(int nID, const char *pszCaption = nullptr);
    /// The button that has the focus at first; without a call the flags say which.
    CUI_API void SetDefaultButton(int nID);
    /// The button that Escape presses. Without a call, and always where there is such a button, it
    /// is that of IDCANCEL; a box with one button alone, beside Help, is cancelled by that.
    CUI_API void SetCancelButton(int nID);
    /// An icon in place of the flags' one, of the system's size (SM_CXICON); not owned. Null: none.
    CUI_API void SetIcon(HICON hIcon);
    /// Adds a check box to keep the answer by, under that name in the program's settings
    /// (CUI/Settings.h): while an answer is kept that the box has a button for, DoModal returns it
    /// at once, without a box. Cancel, where there are other buttons, is no answer to keep. A null
    /// pszCheck is "Do not ask again", with one button "Do not show this again", in English unless
    /// the program has these texts (CUI/FrameworkText.h). A null or empty name takes the check box
    /// away.
    CUI_API void SetDontAsk(const char *pszName, const char *pszCheck = nullptr);
    /// Presses the default button when so many seconds (1 to 99999; 0: never) have passed, and
    /// shows them behind its caption. A key or mouse button that is pressed in the box ends it.
    CUI_API void SetCountdown(int nSeconds);

    /// The message as Ctrl+C copies it: caption, text and buttons between dashed lines.
    CUI_API CCUString GetCopyText();

    /// Shows the box and returns the identifier of the button that was pressed, or a kept answer;
    /// IDCANCEL where CCUIDialog::DoModal says so (a box that cannot be made is traced).
    CUI_API int DoModal(CCUIWindow *pParent) override;

    /// @name What CCUIDialog asks
    /// The template is made in memory, without texts and places, which come with the window.
    /// @{
    CUI_API const DLGTEMPLATE *GetTemplate() override;
    CUI_API unsigned long GetWindowStyle() override;
    CUI_API int GetCaption(CCUString &sCaption) override;
    CUI_API int PreTranslateMessage(MSG *pMsg) override;
    CUI_API void TimeOut(long nNow) override;
    /// @}

protected:
    /// The Help button, or F1 in a box that has one. The base sends the owner WM_HELP.
    CUI_API virtual void OnHelp();
    /// What CCUIDialog calls.
    /// @{
    CUI_API long WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    CUI_API int OnInitDialog(HWND hFocus, LPARAM lParam) override;
    CUI_API void OnCommand(UINT nCode, UINT nID, HWND hControl) override;
    /// @}

private:
    void SetTexts();
    long OnColor(HDC hDC, HWND hControl);
    void StartCountdown();
    void StopCountdown();
    void ShowCountdown(int nSeconds);
    void Answer(int nID);
    bool HasSelection(HWND hWnd) const;
    bool ScrollByKey(WPARAM nKey);

    CCUIMessageContent *m_pContent;
};

/// Shows a message box and returns the answer: see CCUIMessageBox and its SetDontAsk. A null parent
/// is none.
CUI_API int CUIMessageBox(CCUIWindow *pParent, const char *pszText,
                          const char *pszCaption = nullptr, UINT nFlags = MB_OK,
                          const char *pszDontAsk = nullptr);

/// Forgets the answer that is kept under a name (SetDontAsk), or all of them (null), so that the
/// user is asked again. 1, or 0 when there is none or the registry refuses.
CUI_API int CUIForgetAnswer(const char *pszName = nullptr);
