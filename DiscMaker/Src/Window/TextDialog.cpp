#include "Window/TextDialog.h"

#include <string.h>

#include "Window/Ids.h"

namespace {

CCUString Replaced(const CCUString &sText, const char *pszWhat, const char *pszBy)
{
    CCUString sResult, sRest = sText;
    for (int nAt = sRest.Find(pszWhat); nAt >= 0; nAt = sRest.Find(pszWhat)) {
        sResult += sRest.Left(nAt) + pszBy;
        sRest = sRest.Mid(nAt + static_cast<int>(strlen(pszWhat)));
    }
    return sResult + sRest;
}

}  // namespace

CTextDialog::CTextDialog(const CCUString &sText)
    : CCUIDialog(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDD_TEXT)), m_sText(sText)
{
}

CTextDialog::~CTextDialog() = default;

int CTextDialog::OnInitDialog(HWND hFocus, LPARAM lParam)
{
    m_edit.Bind(*this, IDC_TEXT);
    CenterOnOwner();
    return CCUIDialog::OnInitDialog(hFocus, lParam);
}

int CTextDialog::ExchangeData(unsigned short nDirection)
{
    if (nDirection == CUI_TOSCREEN)
        m_edit.SetText(Replaced(m_sText, "\n", "\r\n"));
    else
        m_sText = Replaced(m_edit.GetText(), "\r\n", "\n");
    return 1;
}
