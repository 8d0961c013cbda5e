#include "Window/TextField.h"

#include "CUI/MessageBox.h"
#include "Window/Clipboard.h"

namespace {

// Whether the character of a WM_CHAR, a question mark or a similar one, stands for another: its key
// gives one that the code page lacks.
bool IsLostCharacter(WPARAM wParam, LPARAM lParam)
{
    // The keys of the number pad have some scan codes in common with letters.
    if (wParam < ' ' || lParam & KF_EXTENDED << 16)
        return false;
    typedef int WINAPI FToUnicode(UINT, UINT, const BYTE *, WCHAR *, int, UINT);
    // Windows 95 has none, and 98 and Me one that answers 0.
    static FToUnicode *const s_toUnicode =
        reinterpret_cast<FToUnicode *>(GetProcAddress(GetModuleHandleA("user32.dll"), "ToUnicode"));
    const UINT nScan = HIWORD(lParam) & 0xFF;
    const UINT nKey = MapVirtualKeyA(nScan, 1);
    BYTE keys[256] = {};
    WCHAR chars[8] = {};
    bool bLost = false;
    if (s_toUnicode && nKey && GetKeyboardState(keys) &&
        s_toUnicode(nKey, nScan, keys, chars, 8, 0) == 1)
        CWideText(chars, 1).ToCodePage(CP_ACP, &bLost);
    return bLost;
}

}  // namespace

CTextField::~CTextField() = default;

long CTextField::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    CWatch watch(this);
    if (message == WM_CHAR && !IsReadOnly() && IsLostCharacter(wParam, lParam)) {
        CUIMessageBox(this,
                      "This field cannot hold that character: the code page of this system lacks "
                      "it. A script, Skin.rc, can hold it.",
                      "Typing", MB_OK | MB_ICONWARNING);
        return 0;
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
