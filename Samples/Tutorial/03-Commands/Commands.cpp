// A lamp of three colours, switched by a menu and by keys.

#include "CU/String.h"
#include "CUI/CommandHandler.h"
#include "CUI/Draw.h"
#include "CUI/FrameWindow.h"
#include "CUI/Menu.h"

//! [ids]
enum : unsigned
{
    ID_RED = 1000,
    ID_YELLOW,
    ID_GREEN,
    ID_LIGHT
};
//! [ids]

//! [lamp]
class CLamp : public CCUIFrameWindow, private CCUICommandHandler
{
public:
    CLamp() : CCUICommandHandler(ID_RED, 4) {}

private:
    void HandleCommand(unsigned nID) override
    {
        if (nID == ID_LIGHT)
            m_bLit = !m_bLit;
        else
            m_nColor = nID;
        Invalidate();
    }

    unsigned short GetState(unsigned nID) override
    {
        if (nID == ID_LIGHT)
            return CUICommandState(true, m_bLit);
        // Without light there is no colour to choose.
        return CUICommandState(m_bLit, nID == m_nColor) | CUI_COMMAND_RADIO;
    }
    //! [lamp]

    //! [menu]
    int OnCreate(CREATESTRUCTA *pCreate) override
    {
        m_colors.Append(ID_RED, "&Red");
        m_colors.Append(ID_YELLOW, "&Yellow");
        m_colors.Append(ID_GREEN, "&Green");
        m_colors.AppendSeparator();
        m_colors.Append(ID_LIGHT, "&Light");
        m_bar.AppendPopup("&Lamp", m_colors);
        SetMenu(m_bar);

        ACCEL keys[] = {{FVIRTKEY, VK_F2, ID_RED},
                        {FVIRTKEY, VK_F3, ID_YELLOW},
                        {FVIRTKEY, VK_F4, ID_GREEN},
                        {FVIRTKEY | FCONTROL, 'L', ID_LIGHT}};
        SetAccelerators(keys, 4);
        return CCUIFrameWindow::OnCreate(pCreate);
    }
    //! [menu]

    int OnEraseBkgnd(HDC hDC) override
    {
        const COLORREF colors[] = {RGB(208, 32, 32), RGB(240, 208, 32), RGB(32, 160, 64)};
        const RECT area = GetClientArea();
        CUIDCFillSolidRect(hDC, &area, m_bLit ? colors[m_nColor - ID_RED] : RGB(48, 48, 48));
        return 1;
    }

    CCUIMenu m_colors;
    CCUIMenu m_bar{CUI_MENU_BAR};
    unsigned m_nColor = ID_GREEN;
    bool m_bLit = true;
};

//! [main]
int main()
{
    CLamp lamp;
    if (!lamp.CreateFrame("Lamp"))
        return 1;
    lamp.Move({40, 40, 360, 240});
    lamp.Show();
    return CCUIWindow::RunLoop();
}
//! [main]
