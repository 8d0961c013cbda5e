#include "Window/TextField.h"

#include "CUI/MessageBox.h"
#include "Window/Clipboard.h"

namespace {

// What a key gives waits behind the key's message, in Unicode; the field is handed it in characters
// of this system's code page, a question mark or a similar one for what that lacks. So it is seen
// here, and a dead key's part in it is not disturbed, as it would be by asking for the key's
// character anew. Windows 95 to Me have no Unicode and answer that nothing waits.
bool IsNextCharacterLost(HWND hWnd)
{
    MSG next;
    bool bLost = false;
    if (PeekMessageW(&next, hWnd, WM_CHAR, WM_CHAR, PM_NOREMOVE)) {
        const WCHAR ch = static_cast<WCHAR>(next.wParam);
        CWideText(&ch, 1).ToCodePage(CP_ACP, &bLost);
    }
    return bLost;
}

}  // namespace

CTextField::~CTextField() = default;

long CTextField::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    CWatch watch(this);
    if (message >= WM_KEYFIRST && message <= WM_KEYLAST) {
        const bool bLost = message == WM_CHAR && m_bNextLost;
        const bool bNextLost = IsNextCharacterLost(m_hWnd);
        if (watch.IsGone())
            return 0;
        m_bNextLost = bNextLost;
        if (bLost && !IsReadOnly()) {
            RefuseCharacter();
            return 0;
        }
    }
    if (message == WM_PASTE && !IsReadOnly() && LosesCharacters(m_hWnd) &&
        CUIMessageBox(this,
                      "The text has characters that cannot be written into this field. Question "
                      "marks would take their place. A script, Skin.rc, can hold them.\n\nPaste it "
                      "all the same?",
                      "Paste", MB_OKCANCEL | MB_ICONWARNING) != IDOK)
        return 0;
    if (watch.IsGone())
        return 0;
    return CCUIEdit::OnMessage(message, wParam, lParam);
}

// More of them that come while the user is told are dropped.
void CTextField::RefuseCharacter()
{
    if (m_bRefusing)
        return;
    CWatch watch(this);
    m_bRefusing = true;
    CUIMessageBox(this,
                  "This field cannot hold that character: the code page of this system lacks "
                  "it. A script, Skin.rc, can hold it.",
                  "Typing", MB_OK | MB_ICONWARNING);
    if (!watch.IsGone())
        m_bRefusing = false;
}
