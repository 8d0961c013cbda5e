#include "Window/TextField.h"

#include "CUI/MessageBox.h"
#include "Window/Clipboard.h"

CTextField::~CTextField() = default;

long CTextField::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    CWatch watch(this);
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
