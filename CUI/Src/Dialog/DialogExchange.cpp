// What a dialog's exchange of data mostly is, ready to be called.

#include <stdlib.h>

#include "CU/Dump.h"
#include "CUI/Dialog.h"
#include "Window/WindowText.h"

namespace {

HWND FindControl(HWND hDialog, int nID)
{
    const HWND hControl = GetDlgItem(hDialog, nID);
    if (!hControl)
        CUDump("No control %d to exchange data with.\n", nID);
    return hControl;
}

// Nothing else answers this.
bool IsCombo(HWND hControl)
{
    return SendMessageA(hControl, CB_GETITEMHEIGHT, 0, 0) != 0;
}

bool IsBlank(char ch)
{
    return ch == ' ' || ch == '\t';
}

// Whether the text is a number, and nothing but blanks besides.
bool ReadInt(const char *pszText, int &nValue)
{
    char *pEnd = nullptr;
    const long nRead = strtol(pszText, &pEnd, 10);
    // What is beyond its range is another number without a sign.
    if (pEnd == pszText || strtoul(pszText, nullptr, 10) != static_cast<unsigned long>(nRead))
        return false;
    while (IsBlank(*pEnd))
        ++pEnd;
    nValue = static_cast<int>(nRead);
    return !*pEnd;
}

}  // namespace

int CCUIDialog::ExchangeText(unsigned short nDirection, int nID, CCUString &sText, int nMost)
{
    const HWND hControl = FindControl(m_hWnd, nID);
    if (hControl && nDirection == CUI_FROMSCREEN) {
        sText = CUIWindowText(hControl);
    } else if (hControl) {
        SendMessageA(hControl, IsCombo(hControl) ? CB_LIMITTEXT : EM_LIMITTEXT,
                     static_cast<WPARAM>(nMost), 0);
        SetWindowTextA(hControl, sText);
    }
    return 1;
}

int CCUIDialog::ExchangeInt(unsigned short nDirection, int nID, int &nValue, int nLeast, int nMost,
                            const char *pszMessage)
{
    CCUString sText;
    if (nDirection == CUI_TOSCREEN) {
        sText.Format("%d", nValue);
        return ExchangeText(nDirection, nID, sText);
    }
    const HWND hControl = FindControl(m_hWnd, nID);
    if (!hControl)
        return 1;
    int nNew = 0;
    if (ReadInt(CUIWindowText(hControl), nNew) && nNew >= nLeast && nNew <= nMost) {
        nValue = nNew;
        return 1;
    }
    sText.Format("%d - %d", nLeast, nMost);
    if (pszMessage)
        sText = pszMessage;
    return ExchangeFail(nID, sText);
}

int CCUIDialog::ExchangeCheck(unsigned short nDirection, int nID, int &nCheck)
{
    const HWND hControl = FindControl(m_hWnd, nID);
    if (hControl && nDirection == CUI_TOSCREEN)
        SendMessageA(hControl, BM_SETCHECK, static_cast<WPARAM>(nCheck), 0);
    else if (hControl)
        nCheck = static_cast<int>(SendMessageA(hControl, BM_GETCHECK, 0, 0));
    return 1;
}

int CCUIDialog::ExchangeRadio(unsigned short nDirection, int nFirstID, int nLastID, int &nChecked)
{
    int nFound = -1;
    for (int nID = nFirstID; nID <= nLastID; ++nID) {
        int bChecked = nID - nFirstID == nChecked;
        ExchangeCheck(nDirection, nID, bChecked);
        if (bChecked == BST_CHECKED && GetDlgItem(m_hWnd, nID))
            nFound = nID - nFirstID;
    }
    if (nDirection == CUI_FROMSCREEN)
        nChecked = nFound;
    return 1;
}

int CCUIDialog::ExchangeSelection(unsigned short nDirection, int nID, int &nSelected)
{
    const HWND hControl = FindControl(m_hWnd, nID);
    if (!hControl)
        return 1;
    const bool bCombo = IsCombo(hControl);
    if (nDirection == CUI_TOSCREEN)
        SendMessageA(hControl, bCombo ? CB_SETCURSEL : LB_SETCURSEL, static_cast<WPARAM>(nSelected),
                     0);
    else
        nSelected =
            static_cast<int>(SendMessageA(hControl, bCombo ? CB_GETCURSEL : LB_GETCURSEL, 0, 0));
    return 1;
}
