#pragma once

#include "CU/String.h"
#include "Dialog/TemplateWriter.h"

// The text with "\r\n" at the end of each line, as edit controls and the clipboard want it.
CCUString CUIWithLineEnds(const CCUString &sText);

struct CCUIMessageButton
{
    int nID = 0;
    CCUString sCaption;
};

// What a message box shows, and which control is what.
class CCUIMessageContent
{
public:
    enum
    {
        MOST_BUTTONS = 12,
        LAST_BUTTON_ID = 0xEFFF,
        CHECK_ID = 0xF000,
        ICON_ID = 0xF001,
        TEXT_ID = 0xFFFF,  // as in the system's box
        LONGEST_COUNTDOWN = 99999
    };

    CCUIMessageContent(const char *pszText, const char *pszCaption, UINT nFlags);

    // The first one that the program adds takes the place of those that the flags name.
    bool AddOwnButton(int nID, const char *pszCaption);
    const CCUIMessageButton *Find(int nID) const;
    // The button with that identifier among the box's controls. There, IDCANCEL is the button that
    // cancels, since this is what Escape, the close box and AbortDialog press.
    const CCUIMessageButton *FindControl(UINT nControl) const;
    UINT ControlOf(const CCUIMessageButton &button) const;
    // The identifier of the button that cancels; 0: none.
    int CancelID() const;
    const CCUIMessageButton &Default() const;
    HICON Icon() const;
    // The default button's with the seconds that are left.
    CCUString CountdownCaption(int nSeconds) const;
    CCUString CheckText() const;
    // 0: none that this box could give.
    int KeptAnswer() const;
    void KeepAnswer(int nID) const;
    const DLGTEMPLATE *MakeTemplate();
    DWORD Style() const;

    CCUString m_sText;
    CCUString m_sCaption;
    bool m_bNoCaption;  // the owner's
    UINT m_nFlags;
    CCUIMessageButton m_buttons[MOST_BUTTONS];
    int m_nButtons;
    bool m_bOwnButtons;
    int m_nDefault;  // 0: as the flags say
    int m_nCancel;   // 0: none named
    HICON m_hIcon;
    bool m_bOwnIcon;
    CCUString m_sAnswerName;  // empty: no check box
    CCUString m_sCheckText;
    int m_nSeconds;  // 0: no countdown
    unsigned long m_nDeadline;
    bool m_bCounting;
    bool m_bMade;  // the window of this run was made

private:
    void AddButton(int nID, const char *pszCaption);

    // A head, icon, text and check box, and the buttons.
    DWORD m_template[(sizeof(CUITemplateHead) + (3 + MOST_BUTTONS) * sizeof(CUITemplateItem)) /
                         sizeof(DWORD) +
                     1];
};
