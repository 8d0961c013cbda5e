// Alt and a character, outside of dialogs.

#include "CUI/CommandMap.h"
#include "CUI/Control.h"
#include "Window/MnemonicText.h"
#include "Window/PreTranslation.h"

namespace {

const int LONGEST_TEXT = 256;

LRESULT DialogCode(HWND hWnd)
{
    return SendMessageA(hWnd, WM_GETDLGCODE, 0, 0);
}

// Where '&' is a character as any other, as in a path.
bool HasNoPrefix(HWND hWnd, LRESULT nCode)
{
    return (nCode & DLGC_STATIC) && (GetWindowLongA(hWnd, GWL_STYLE) & SS_NOPREFIX);
}

// Neither the window nor one around it, up to that one, is disabled.
bool TakesInput(HWND hWnd, HWND hTop)
{
    while (hWnd && hWnd != hTop && IsWindowEnabled(hWnd))
        hWnd = GetParent(hWnd);
    return !hWnd || hWnd == hTop;
}

struct CSearch
{
    HWND hTop;
    char chMnemonic;
    HWND hFocus;
    HWND hFirst;  // of those found
    HWND hNext;   // the first behind the focus
    int nCount;
    bool bBehindFocus;
};

BOOL CALLBACK Visit(HWND hWnd, LPARAM lParam)
{
    auto &search = *reinterpret_cast<CSearch *>(lParam);
    if (hWnd == search.hFocus)
        search.bBehindFocus = true;
    if (!IsWindowVisible(hWnd) || !TakesInput(hWnd, search.hTop))
        return TRUE;
    char szText[LONGEST_TEXT] = "";
    const LRESULT nCode = DialogCode(hWnd);
    if (!(nCode & (DLGC_BUTTON | DLGC_STATIC)) || HasNoPrefix(hWnd, nCode) ||
        !GetWindowTextA(hWnd, szText, LONGEST_TEXT) || CUIMnemonicOf(szText) != search.chMnemonic)
        return TRUE;
    ++search.nCount;
    if (!search.hFirst)
        search.hFirst = hWnd;
    if (!search.hNext && search.bBehindFocus && hWnd != search.hFocus)
        search.hNext = hWnd;
    return TRUE;
}

}  // namespace

int CUITranslateMnemonic(HWND hParent, const MSG *pMsg)
{
    if (pMsg->message != WM_SYSCHAR || pMsg->wParam <= ' ')
        return 0;
    // Keys that come quickly leave no time for an idle pass: what the last one has enabled may look
    // disabled yet.
    if (CUIPreTranslation::IsFirst(pMsg))
        CCUICommandMap::IdleUpdate();
    CSearch search = {
        hParent, CUIUpper(static_cast<char>(pMsg->wParam)), GetFocus(), nullptr, nullptr, 0, false};
    EnumChildWindows(hParent, Visit, reinterpret_cast<LPARAM>(&search));
    const HWND hFound = search.hNext ? search.hNext : search.hFirst;
    if (!hFound)
        return 0;
    const bool bButton = (DialogCode(hFound) & DLGC_BUTTON) != 0;
    if (bButton && search.nCount == 1) {
        SendMessageA(hFound, BM_CLICK, 0, 0);
        return 1;
    }
    const HWND hFocus = bButton ? hFound : GetNextDlgTabItem(GetParent(hFound), hFound, FALSE);
    if (hFocus)
        SetFocus(hFocus);
    return 1;
}
