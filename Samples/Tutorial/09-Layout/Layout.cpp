// A shopping list: a field, two buttons and a list, arranged by layouts.

#include "CU/String.h"
#include "CUI/Button.h"
#include "CUI/CommandHandler.h"
#include "CUI/Edit.h"
#include "CUI/FrameWindow.h"
#include "CUI/LayoutWindow.h"
#include "CUI/ListBox.h"

enum : unsigned
{
    ID_ADD = 1000,
    ID_REMOVE
};

class CShopping : public CCUIFrameWindow, private CCUICommandHandler
{
public:
    CShopping() : CCUICommandHandler(ID_ADD, 2) {}

protected:
    //! [create]
    int OnCreate(CREATESTRUCTA *pCreate) override
    {
        const DWORD dwChild = WS_CHILD | WS_VISIBLE;
        m_page.SetMargins({8, 8, 8, 8});
        m_page.SetGap(8);
        m_page.Create(nullptr, "", dwChild, {}, *this, 1);
        SetClient(&m_page);

        m_line.SetFixedSize(26);
        m_line.SetGap(8);
        m_line.Create(nullptr, "", dwChild, {}, m_page, 0);
        m_item.SetLayoutFlags(CUI_PLACE_FILL | CUIPlaceWeight(1));
        m_item.CreateControl(m_line, 2);
        AddButton(m_add, ID_ADD, "&Add");
        AddButton(m_remove, ID_REMOVE, "&Remove");

        m_list.SetLayoutFlags(CUI_PLACE_FILL | CUIPlaceWeight(1));
        m_list.CreateControl(m_page, 3);
        return CCUIFrameWindow::OnCreate(pCreate);
    }
    //! [create]

private:
    //! [button]
    void AddButton(CCUIButton &button, unsigned nID, const char *pszText)
    {
        button.SetLayoutFlags(CUI_PLACE_FILL | CUI_PLACE_FIT);
        button.CreateControl(m_line, nID, pszText);
        button.SetCommand(nID);
    }
    //! [button]

    //! [commands]
    void HandleCommand(unsigned nID) override
    {
        if (nID == ID_ADD) {
            m_list.SetCurSel(m_list.AddString(m_item.GetText()));
            m_item.SetText("");
            m_item.Focus();
        } else {
            m_list.DeleteString(m_list.GetCurSel());
        }
    }
    unsigned short GetState(unsigned nID) override
    {
        return CUICommandState(nID == ID_ADD ? GetWindowTextLength(m_item) > 0
                                             : m_list.GetCurSel() >= 0);
    }
    //! [commands]
    CCUString GetLongTT(unsigned nID) override
    {
        return nID == ID_ADD ? "Puts it on the list" : "Takes it off the list";
    }

    CCUILayoutWindow m_page{CCUILayoutWindow::Column};
    CCUILayoutWindow m_line{CCUILayoutWindow::Row};
    CCUIEdit m_item;
    CCUIButton m_add;
    CCUIButton m_remove;
    CCUIListBox m_list;
};

int main()
{
    CShopping shopping;
    if (!shopping.CreateFrame("Shopping"))
        return 1;
    shopping.Move({40, 40, 360, 240});
    shopping.Show();
    return CCUIWindow::RunLoop();
}
