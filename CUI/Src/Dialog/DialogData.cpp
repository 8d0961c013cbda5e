// A dialog's data exchange and its registered controls.

#include "CU/Dump.h"
#include "CUI/Dialog.h"
#include "Dialog/ControlList.h"

#include <commctrl.h>  // needs windows.h before it

namespace {

struct CClassType
{
    const char *className;
    DialogControlType type;
};

DialogControlType TypeOfClass(HWND hControl)
{
    static const CClassType TYPES[] = {
        {"Edit", DialogControlEdit},
        {"RichEdit", DialogControlEdit},
        {"RichEdit20A", DialogControlEdit},
        {"ListBox", DialogControlListBox},
        {"ComboBox", DialogControlComboBox},
        {"ComboBoxEx32", DialogControlComboBox},
        {"Button", DialogControlButton},
        {WC_TREEVIEWA, DialogControlTreeView},
        {WC_LISTVIEWA, DialogControlListView},
        {WC_TABCONTROLA, DialogControlTab},
        {DATETIMEPICK_CLASSA, DialogControlDatePicker},
    };
    char szClass[64] = "";
    GetClassNameA(hControl, szClass, sizeof szClass);
    for (const CClassType &type : TYPES) {
        if (lstrcmpiA(szClass, type.className) == 0)
            return type.type;
    }
    return DialogControlSpecial;
}

// A push button does something; a check box or a radio button holds something.
bool HoldsState(HWND hButton)
{
    switch (GetWindowLongA(hButton, GWL_STYLE) & 0x0F) {
    case BS_CHECKBOX:
    case BS_AUTOCHECKBOX:
    case BS_RADIOBUTTON:
    case BS_AUTORADIOBUTTON:
    case BS_3STATE:
    case BS_AUTO3STATE: return true;
    default: return false;
    }
}

}  // namespace

// --- Data exchange ---

int CCUIDialog::UpdateData(CCUString &sCode)
{
    const bool bToScreen = sCode == "ToScreen";
    if (!bToScreen && sCode != "FromScreen") {
        CUDump("%s is not a valid code for UpdateData.\n", sCode.GetString());
        return 0;
    }
    CWatch watch(this);
    // What the exchange puts on the screen is no change of the user's.
    m_bExchanging = true;
    const int nResult = ExchangeData(bToScreen ? CUI_TOSCREEN : CUI_FROMSCREEN);
    if (watch.IsGone())
        return nResult;
    m_bExchanging = false;
    if (nResult)
        m_bDirty = false;
    return nResult;
}

int CCUIDialog::ExchangeData(unsigned short)
{
    return 1;
}

int CCUIDialog::ExchangeFail(int nID, CCUString &sMessage)
{
    CWatch watch(this);
    CUDump("Can't take the data of control %d: %s\n", nID, sMessage.GetString());
    CCUString sCaption;
    GetWindowTextA(m_hWnd, sCaption.GetBuffer(MAX_PATH), MAX_PATH);
    sCaption.ReleaseBuffer(-1);
    MessageBoxA(m_hWnd, sMessage, sCaption, MB_OK | MB_ICONEXCLAMATION);
    const HWND hControl = watch.IsGone() ? nullptr : GetDlgItem(m_hWnd, nID);
    if (hControl) {
        SetFocus(hControl);
        if (TypeOfClass(hControl) == DialogControlEdit)
            SendMessageA(hControl, EM_SETSEL, 0, -1);
    }
    return 0;
}

// --- Registered controls ---

void CCUIDialog::SetAutoMakeDirty(bool bAuto)
{
    m_bAutoMakeDirty = bAuto;
}

bool CCUIDialog::GetAutoMakeDirty()
{
    return m_bAutoMakeDirty;
}

void CCUIDialog::RegisterControl(HWND hControl, unsigned nID, DialogControlType type)
{
    if (type == DialogControlAuto)
        type = TypeOfClass(hControl);
    m_pControls->Set({hControl, nID, type, true});
}

void CCUIDialog::UnRegisterControl(unsigned nID)
{
    m_pControls->Remove(nID);
}

void CCUIDialog::UnRegisterAllControls()
{
    m_pControls->RemoveAll();
}

HWND CCUIDialog::GetFirstControl()
{
    return m_hFirstControl;
}

void CCUIDialog::SetFirstControl(HWND hControl)
{
    m_hFirstControl = hControl;
}

int CCUIDialog::GetControlInfo(unsigned nID, CCUIControlInfo &info)
{
    const CCUIControlInfo *pEntry = m_pControls->Find(nID);
    if (!pEntry)
        return 0;
    info = *pEntry;
    return 1;
}

void CCUIDialog::SetControlAutoMakeDirty(unsigned nID, bool bAuto)
{
    CCUIControlInfo *pEntry = m_pControls->Find(nID);
    if (pEntry)
        pEntry->bAutoMakeDirty = bAuto;
}

// --- Dirty tracking ---

void CCUIDialog::SetDirty(bool bDirty)
{
    const bool bBecomes = bDirty && !m_bDirty;
    m_bDirty = bDirty;
    if (!bBecomes)
        return;
    CCUString sEvent("Dirty");
    OnEvent(sEvent);
}

void CCUIDialog::OnEvent(CCUString &) {}

void CCUIDialog::OnCommand(UINT nCode, UINT nID, HWND hControl)
{
    if (nID == IDOK) {
        OnOK();
        return;
    }
    if (nID == IDCANCEL) {
        OnCancel();
        return;
    }
    CWatch watch(this);
    if (hControl && !m_bExchanging &&
        IsWMCommandControlModified(static_cast<int>(nCode), nID, hControl))
        SetDirty(true);
    if (!watch.IsGone())
        CCUIWindow::OnCommand(nCode, nID, hControl);
}

long CCUIDialog::OnNotify(UINT nID, NMHDR *pHeader)
{
    CWatch watch(this);
    if (pHeader && !m_bExchanging &&
        IsWMNotifyControlModified(static_cast<int>(pHeader->code),
                                  static_cast<unsigned>(pHeader->idFrom), pHeader->hwndFrom))
        SetDirty(true);
    return watch.IsGone() ? 0 : CCUIWindow::OnNotify(nID, pHeader);
}

int CCUIDialog::IsWMCommandControlModified(int nCode, unsigned nID, HWND hControl)
{
    const CCUIControlInfo *pEntry = m_pControls->Find(nID);
    if (!pEntry || !pEntry->bAutoMakeDirty)
        return 0;
    switch (pEntry->type) {
    case DialogControlEdit: return nCode == EN_CHANGE;
    case DialogControlListBox: return nCode == LBN_SELCHANGE;
    case DialogControlComboBox: return nCode == CBN_SELCHANGE || nCode == CBN_EDITCHANGE;
    case DialogControlButton: return nCode == BN_CLICKED && HoldsState(hControl);
    case DialogControlSpecial: return IsSpecialControlModified(nCode, nID, hControl);
    default: return 0;
    }
}

int CCUIDialog::IsWMNotifyControlModified(int nCode, unsigned nID, HWND hControl)
{
    const CCUIControlInfo *pEntry = m_pControls->Find(nID);
    if (!pEntry || !pEntry->bAutoMakeDirty)
        return 0;
    const auto uCode = static_cast<UINT>(nCode);
    switch (pEntry->type) {
    case DialogControlTreeView:
        return uCode == TVN_SELCHANGEDA || uCode == TVN_SELCHANGEDW || uCode == TVN_ENDLABELEDITA ||
               uCode == TVN_ENDLABELEDITW;
    case DialogControlListView:
        return uCode == LVN_ITEMCHANGED || uCode == LVN_ENDLABELEDITA || uCode == LVN_ENDLABELEDITW;
    case DialogControlTab: return uCode == TCN_SELCHANGE;
    case DialogControlDatePicker: return uCode == DTN_DATETIMECHANGE;
    case DialogControlSpecial: return IsSpecialControlModified(nCode, nID, hControl);
    default: return 0;
    }
}

int CCUIDialog::IsSpecialControlModified(int, unsigned, HWND)
{
    return 0;
}
