#include "Dialog/MessageContent.h"

#include "CU/Assert.h"
#include "CUI/Data.h"
#include "Dialog/Answers.h"
#include "Dialog/FrameworkText.h"

#define CU_SOURCE "MessageBox"

namespace {

// Newer than the headers' records: their identifiers and the set of MB_CANCELTRYCONTINUE.
const int ID_TRYAGAIN = 10;
const int ID_CONTINUE = 11;

const int SET_SIZE = 3;
const BYTE SETS[][SET_SIZE] = {
    {IDOK},
    {IDOK, IDCANCEL},
    {IDABORT, IDRETRY, IDIGNORE},
    {IDYES, IDNO, IDCANCEL},
    {IDYES, IDNO},
    {IDRETRY, IDCANCEL},
    {IDCANCEL, ID_TRYAGAIN, ID_CONTINUE},
};

// The system's captions: Windows 2000 and later have them among the strings of user32.dll, in the
// order of their identifiers.
CCUString StandardCaption(int nID)
{
    static const char *const CAPTIONS[] = {"OK",      "Cancel",     "&Abort",   "&Retry",
                                           "&Ignore", "&Yes",       "&No",      "&Close",
                                           "Help",    "&Try Again", "&Continue"};
    const UINT FIRST_STRING = 800;
    if (nID > ID_CONTINUE)
        return "";
    const int nIndex = nID - IDOK;
    char szCaption[64];
    const bool bSystem =
        LoadStringA(GetModuleHandleA("user32.dll"), FIRST_STRING + static_cast<UINT>(nIndex),
                    szCaption, sizeof szCaption) > 0;
    return CUIFrameworkText(CUI_TEXT_BUTTON + static_cast<UINT>(nID),
                            bSystem ? szCaption : CAPTIONS[nIndex]);
}

}  // namespace

CCUString CUIWithLineEnds(const CCUString &sText)
{
    CCUString sResult;
    char *pTo = sResult.GetBuffer(2 * sText.GetLength());
    char before = '\0';
    for (const char *pFrom = sText; *pFrom; before = *pFrom++) {
        if (*pFrom == '\n' && before != '\r')
            *pTo++ = '\r';
        *pTo++ = *pFrom;
    }
    *pTo = '\0';
    sResult.ReleaseBuffer();
    return sResult;
}

CCUIMessageContent::CCUIMessageContent(const char *pszText, const char *pszCaption, UINT nFlags)
    : m_sText(pszText),
      m_sCaption(pszCaption),
      m_bNoCaption(!pszCaption),
      m_nFlags(nFlags),
      m_nButtons(0),
      m_bOwnButtons(false),
      m_nDefault(0),
      m_nCancel(0),
      m_hIcon(nullptr),
      m_bOwnIcon(false),
      m_nSeconds(0),
      m_nDeadline(0),
      m_bCounting(false),
      m_bMade(false)
{
    UINT nSet = nFlags & MB_TYPEMASK;
    CU_ASSERT_TEXT(nSet < sizeof SETS / SET_SIZE, "nFlags");
    if (nSet >= sizeof SETS / SET_SIZE)
        nSet = MB_OK;
    for (const BYTE nID : SETS[nSet]) {
        if (nID)
            AddButton(nID, nullptr);
    }
    if (nFlags & MB_HELP)
        AddButton(IDHELP, nullptr);
}

void CCUIMessageContent::AddButton(int nID, const char *pszCaption)
{
    CCUIMessageButton &button = m_buttons[m_nButtons++];
    button.nID = nID;
    button.sCaption = pszCaption ? CCUString(pszCaption) : StandardCaption(nID);
}

bool CCUIMessageContent::AddOwnButton(int nID, const char *pszCaption)
{
    const bool bInRange = nID > 0 && nID <= LAST_BUTTON_ID;
    const bool bFits = bInRange && !(m_bOwnButtons && (Find(nID) || m_nButtons == MOST_BUTTONS));
    CU_ASSERT_TEXT(bFits, "nID");
    if (!bFits)
        return false;
    if (!m_bOwnButtons)
        m_nButtons = 0;
    m_bOwnButtons = true;
    AddButton(nID, pszCaption);
    return true;
}

const CCUIMessageButton *CCUIMessageContent::Find(int nID) const
{
    for (int i = 0; i < m_nButtons; ++i) {
        if (m_buttons[i].nID == nID)
            return &m_buttons[i];
    }
    return nullptr;
}

int CCUIMessageContent::CancelID() const
{
    if (Find(IDCANCEL))
        return IDCANCEL;
    if (Find(m_nCancel))
        return m_nCancel;
    const int nAnswers = m_nButtons - (Find(IDHELP) ? 1 : 0);
    return nAnswers == 1 ? m_buttons[m_buttons[0].nID == IDHELP ? 1 : 0].nID : 0;
}

UINT CCUIMessageContent::ControlOf(const CCUIMessageButton &button) const
{
    return static_cast<UINT>(button.nID == CancelID() ? IDCANCEL : button.nID);
}

const CCUIMessageButton *CCUIMessageContent::FindControl(UINT nControl) const
{
    const int nID = static_cast<int>(nControl);
    const int nCancel = CancelID();
    // The number of a button that cancels under another one is no control's.
    return Find(nID == IDCANCEL ? nCancel : nID == nCancel ? 0 : nID);
}

const CCUIMessageButton &CCUIMessageContent::Default() const
{
    const CCUIMessageButton *const pNamed = Find(m_nDefault);
    const int nIndex = static_cast<int>((m_nFlags & MB_DEFMASK) / MB_DEFBUTTON2);
    return pNamed ? *pNamed : m_buttons[nIndex < m_nButtons ? nIndex : 0];
}

HICON CCUIMessageContent::Icon() const
{
    if (m_bOwnIcon)
        return m_hIcon;
    // The icons follow each other as their flags do, behind that of the application.
    const UINT FIRST_ICON = 32512;
    const UINT nIndex = (m_nFlags & MB_ICONMASK) / MB_ICONHAND;
    return nIndex ? LoadIconA(nullptr, MAKEINTRESOURCEA(FIRST_ICON + nIndex)) : nullptr;
}

CCUString CCUIMessageContent::CountdownCaption(int nSeconds) const
{
    CCUString sNumber;
    sNumber.Format(" (%d)", nSeconds);
    return Default().sCaption + sNumber;
}

CCUString CCUIMessageContent::CheckText() const
{
    if (!m_sCheckText.IsEmpty())
        return m_sCheckText;
    return m_nButtons == 1 ? CUIFrameworkText(CUI_TEXT_DONT_SHOW, "&Do not show this again")
                           : CUIFrameworkText(CUI_TEXT_DONT_ASK, "&Do not ask again");
}

int CCUIMessageContent::KeptAnswer() const
{
    const int nID = m_sAnswerName.IsEmpty() ? 0 : CUIReadAnswer(m_sAnswerName);
    return Find(nID) && nID != IDHELP ? nID : 0;
}

void CCUIMessageContent::KeepAnswer(int nID) const
{
    if (nID != CancelID() || m_nButtons == 1)
        CUIWriteAnswer(m_sAnswerName, nID);
}

DWORD CCUIMessageContent::Style() const
{
    return WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | DS_3DLOOK;
}

const DLGTEMPLATE *CCUIMessageContent::MakeTemplate()
{
    NONCLIENTMETRICSA metrics = {};
    metrics.cbSize = sizeof metrics;
    metrics.lfMessageFont.lfHeight = 11;
    SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    const bool bTopmost = (m_nFlags & (MB_TOPMOST | MB_SYSTEMMODAL)) != 0;
    const DWORD nExStyle = m_nFlags & MB_RTLREADING ? WS_EX_RTLREADING : 0;
    CUITemplateWriter writer(m_template, Style(), nExStyle | (bTopmost ? WS_EX_TOPMOST : 0),
                             metrics.lfMessageFont, CUIGetWinData()->cyPixelsPerInch);
    if (Icon())
        writer.Add(CUIClassStatic, SS_ICON, 0, ICON_ID);
    const DWORD nAlign = m_nFlags & MB_RIGHT ? SS_RIGHT : SS_LEFT;
    writer.Add(CUIClassStatic, nAlign | SS_NOPREFIX | SS_EDITCONTROL, nExStyle, TEXT_ID);
    if (!m_sAnswerName.IsEmpty())
        writer.Add(CUIClassButton, BS_AUTOCHECKBOX | BS_MULTILINE | BS_TOP | WS_TABSTOP | WS_GROUP,
                   nExStyle, CHECK_ID);
    for (int i = 0; i < m_nButtons; ++i) {
        const CCUIMessageButton &button = m_buttons[i];
        writer.Add(CUIClassButton,
                   (&button == &Default() ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON) | WS_TABSTOP |
                       (i == 0 ? WS_GROUP : 0),
                   nExStyle, ControlOf(button));
    }
    return reinterpret_cast<const DLGTEMPLATE *>(m_template);
}
