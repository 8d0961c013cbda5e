// An order, asked for in a dialog.

#include <stdio.h>

#include "CU/String.h"
#include "CUI/Dialog.h"
#include "Resource.h"

//! [data]
struct COrder
{
    CCUString sName = "Harbour at dusk";
    int nCopies = 2;
    int nPaper = 0;
    int bFrame = 1;
};
//! [data]

class COrderDialog : public CCUIDialog
{
public:
    //! [constructor]
    explicit COrderDialog(COrder &order)
        : CCUIDialog(GetModuleHandle(nullptr), MAKEINTRESOURCE(IDD_ORDER)), m_order(order)
    {
    }
    //! [constructor]

protected:
    //! [exchange]
    int ExchangeData(unsigned short nDirection) override
    {
        return ExchangeText(nDirection, IDC_NAME, m_order.sName, 40) &&
               ExchangeInt(nDirection, IDC_COPIES, m_order.nCopies, 1, 99) &&
               ExchangeRadio(nDirection, IDC_MATT, IDC_GLOSSY, m_order.nPaper) &&
               ExchangeCheck(nDirection, IDC_FRAME, m_order.bFrame);
    }
    //! [exchange]

    //! [init]
    int OnInitDialog(HWND hFocus, LPARAM lParam) override
    {
        CenterOnOwner();
        SetAutoMakeDirty(true);
        return CCUIDialog::OnInitDialog(hFocus, lParam);
    }
    //! [init]

    //! [dirty]
    void OnEvent(CCUString &sEvent) override
    {
        if (sEvent == "Dirty")
            SetText("Order (changed)");
    }
    //! [dirty]

private:
    COrder &m_order;
};

//! [main]
int main()
{
    COrder order;
    COrderDialog dialog(order);
    if (dialog.DoModal(nullptr) == IDOK)
        printf("%d of %s, %s%s\n", order.nCopies, order.sName.GetString(),
               order.nPaper ? "glossy" : "matt", order.bFrame ? ", framed" : "");
    return 0;
}
//! [main]
