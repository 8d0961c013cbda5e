// What a message box puts on the clipboard.

#include "Dialog/MessageCopy.h"

#include "Base/Clipboard.h"
#include "CU/Dump.h"
#include "CUI/MessageBox.h"
#include "Dialog/MessageContent.h"
#include "Window/MnemonicText.h"

// The form that the system's box has.
CCUString CCUIMessageBox::GetCopyText()
{
    const char *const pszLine = "---------------------------\r\n";
    CCUString sCaption;
    GetCaption(sCaption);
    CCUString sText(pszLine);
    sText += sCaption;
    sText += "\r\n";
    sText += pszLine;
    sText += CUIWithLineEnds(m_pContent->m_sText);
    sText += "\r\n";
    sText += pszLine;
    for (int i = 0; i < m_pContent->m_nButtons; ++i) {
        sText += CUIWithoutMnemonic(m_pContent->m_buttons[i].sCaption);
        sText += "   ";
    }
    sText += "\r\n";
    sText += pszLine;
    return sText;
}

// The system makes wide text of it by the code page of CF_LOCALE, which without ours is that of the
// keyboard.
void CUICopyText(HWND hWnd, const CCUString &sText)
{
    const CCUClipboard clipboard(hWnd);
    if (!clipboard) {
        CUDump("Unable to open the clipboard, gle: %lu\n", GetLastError());
        return;
    }
    const LCID nLocale = GetSystemDefaultLCID();
    const SIZE_T nSize = static_cast<SIZE_T>(sText.GetLength()) + 1;
    if (!EmptyClipboard() || !CUPutOnClipboard(CF_TEXT, sText.GetString(), nSize) ||
        !CUPutOnClipboard(CF_LOCALE, &nLocale, sizeof nLocale))
        CUDump("Unable to copy a message, gle: %lu\n", GetLastError());
}
