#pragma once

/// @file
/// The system's edit control.

#include "CUI/Platform.h"
#include "CUI/SystemControl.h"

/// A field of text, of one line or many. Positions are characters from the text's start; of a text
/// of many lines, which end in "\r\n", both of these count. Whether lines wrap is settled when the
/// control is made: with WS_HSCROLL and ES_AUTOHSCROLL they do not.
class CCUIEdit : public CCUISystemControl
{
public:
    /// The usual style: one line; and that for many, in which Enter begins a new one.
    enum : DWORD
    {
        STYLE = WS_TABSTOP | ES_AUTOHSCROLL,  ///< the usual style
        STYLE_LINES =
            WS_TABSTOP | WS_VSCROLL | ES_MULTILINE | ES_AUTOVSCROLL | ES_WANTRETURN  ///< many lines
    };
    /// Bound to no control.
    CCUIEdit()
        : CCUISystemControl({"EDIT", STYLE, WS_EX_CLIENTEDGE, EM_GETLINECOUNT, false, 60, 14}),
          m_bWantTab(false)
    {
    }

    /// The selection; from nEnd on it is not selected. SetSelection(0, -1) selects all, nStart -1
    /// nothing.
    /// @{
    void SetSelection(int nStart, int nEnd)
    {
        Send(EM_SETSEL, static_cast<WPARAM>(nStart), static_cast<LPARAM>(nEnd));
        Send(EM_SCROLLCARET);
    }
    void GetSelection(int &nStart, int &nEnd) const
    {
        nStart = nEnd = 0;
        Send(EM_GETSEL, FromPointer<WPARAM>(&nStart), &nEnd);
    }
    /// @}
    /// Puts a text in the place of the selection, as if it was typed.
    void ReplaceSelection(const char *pszText, bool bCanUndo = true)
    {
        Send(EM_REPLACESEL, bCanUndo, InText(pszText));
    }
    /// Adds to the end, and shows it.
    void Append(const char *pszText)
    {
        const int nEnd = GetWindowTextLengthA(m_hWnd);
        SetSelection(nEnd, nEnd);
        ReplaceSelection(pszText, false);
    }

    /// The most characters that the user can make of it; 0: as many as it can hold.
    void SetLimit(int nCharacters) { Send(EM_SETLIMITTEXT, static_cast<WPARAM>(nCharacters)); }
    /// Whether the user can change the text.
    void SetReadOnly(bool bReadOnly) { Send(EM_SETREADONLY, bReadOnly); }
    /// Whether the user cannot change the text.
    bool IsReadOnly() const { return HasStyle(ES_READONLY); }
    /// Whether the user has changed the text since this was set to false.
    /// @{
    bool IsModified() const { return Send(EM_GETMODIFY) != 0; }
    void SetModified(bool bModified) { Send(EM_SETMODIFY, bModified); }
    /// @}
    /// Whether there is a change to take back.
    bool CanUndo() const { return Send(EM_CANUNDO) != 0; }
    /// Takes the last change back, or does it again.
    void Undo() { Send(EM_UNDO); }
    /// Moves what is selected to the clipboard.
    void Cut() { Send(WM_CUT); }
    /// Copies what is selected to the clipboard.
    void Copy() { Send(WM_COPY); }
    /// Puts the clipboard's text in the place of the selection.
    void Paste() { Send(WM_PASTE); }
    void Clear() { Send(WM_CLEAR); }  ///< deletes what is selected
    /// What is shown in the place of each character; 0: the characters.
    void SetPasswordChar(char ch)
    {
        Send(EM_SETPASSWORDCHAR, static_cast<BYTE>(ch));
        InvalidateRect(m_hWnd, nullptr, TRUE);
    }

    /// Lines, as they are wrapped; -1: the one of the caret. One that there is not starts at -1 and
    /// is empty.
    /// @{
    int GetLineCount() const { return Send(EM_GETLINECOUNT); }
    int GetLineOf(int nPosition) const  ///< -1: of the selection's start
    {
        return Send(EM_LINEFROMCHAR, static_cast<WPARAM>(nPosition));
    }
    int GetLineStart(int nLine) const { return Send(EM_LINEINDEX, static_cast<WPARAM>(nLine)); }
    int GetLineLength(int nLine) const
    {
        // Of -1 the message tells something else: what is not selected around the selection.
        const int nStart = GetLineStart(nLine);
        return nStart < 0 ? 0 : Send(EM_LINELENGTH, static_cast<WPARAM>(nStart));
    }
    CCUString GetLine(int nLine) const
    {
        return GetText().Mid(GetLineStart(nLine), GetLineLength(nLine));
    }
    void ScrollLines(int nLines) { Send(EM_LINESCROLL, 0, static_cast<LPARAM>(nLines)); }
    /// @}

    /// How far apart tab stops are in a text of many lines, in characters as wide as most; 8 at
    /// first.
    void SetTabWidth(int nCharacters)
    {
        UINT nUnits = static_cast<UINT>(4 * nCharacters);  // each a fourth of a character
        Send(EM_SETTABSTOPS, 1, &nUnits);
        InvalidateRect(m_hWnd, nullptr, TRUE);
    }

    /// Whether Tab goes into a text of many lines, in dialogs too, instead of to the next control,
    /// which is then reached with Ctrl and Tab, where that is no dialog, and with Shift and Tab.
    /// false at first.
    void SetWantTab(bool bWant) { m_bWantTab = bWant; }
    /// What SetWantTab said.
    bool GetWantTab() const { return m_bWantTab; }

    int PreTranslateMessage(MSG *pMsg) override
    {
        const bool bTab = pMsg->message == WM_KEYDOWN && pMsg->wParam == VK_TAB;
        if (bTab && TakesTab() && GetKeyState(VK_SHIFT) >= 0 && GetKeyState(VK_CONTROL) >= 0) {
            ReplaceSelection("\t");
            return 1;
        }
        return CCUISystemControl::PreTranslateMessage(pMsg);
    }

protected:
    /// The text has changed, by whatever means.
    virtual int OnChange() { return 0; }
    /// No more characters fit.
    virtual int OnMaxText() { return 0; }

    int OnControlCommand(UINT nCode) override
    {
        switch (nCode) {
        case EN_CHANGE: return OnChange();
        case EN_MAXTEXT: return OnMaxText();
        default: return 0;
        }
    }

private:
    bool TakesTab() const { return m_bWantTab && HasStyle(ES_MULTILINE) && !IsReadOnly(); }

    bool m_bWantTab;
};
