// A counter with a menu and shortcut keys: commands, their handler and what it says of them.

#include <stdio.h>

#include "CU/String.h"
#include "CUI/CommandHandler.h"
#include "CUI/Window.h"

const unsigned ID_COUNT = 1000;
const unsigned ID_RESET = 1001;

// Serves both commands. Menus ask it how they stand; a disabled command does not come here.
class CCounter : public CCUICommandHandler
{
public:
    CCounter() : CCUICommandHandler(ID_COUNT, 2) {}

    void HandleCommand(unsigned nID) override
    {
        m_nCount = nID == ID_COUNT ? m_nCount + 1 : 0;
        printf("Counter: %d\n", m_nCount);
    }
    unsigned short GetState(unsigned nID) override
    {
        if (nID == ID_COUNT)
            return CUI_COMMAND_ACTIVE | CUI_COMMAND_TEXT;
        return m_nCount ? CUI_COMMAND_ACTIVE : 0;
    }
    CCUString GetShortTT(unsigned) override
    {
        CCUString sText;
        sText.Format("&Count to %d", m_nCount + 1);
        return sText;
    }

private:
    int m_nCount = 0;
};

class CCounterWindow : public CCUIWindow
{
public:
    CCounterWindow() { RouteCommands(true); }

protected:
    void OnKeyDown(UINT nKey, UINT, UINT) override
    {
        if (nKey == VK_ESCAPE)
            Destroy();
    }

    void OnDestroy() override
    {
        CCUIWindow::OnDestroy();
        PostQuitMessage(0);
    }
};

int main()
{
    const HMENU hMenu = CreateMenu();
    const HMENU hPopup = CreatePopupMenu();
    AppendMenuA(hMenu, MF_POPUP, reinterpret_cast<UINT_PTR>(hPopup), "&Counter");
    AppendMenuA(hPopup, MF_STRING, ID_COUNT, "\tF5");
    AppendMenuA(hPopup, MF_STRING, ID_RESET, "&Reset\tF6");
    ACCEL keys[] = {{FVIRTKEY, VK_F5, ID_COUNT}, {FVIRTKEY, VK_F6, ID_RESET}};

    CCounter counter;
    CCounterWindow window;
    const RECT rect = {100, 100, 500, 300};
    if (!window.Create(nullptr, "Commands", WS_OVERLAPPEDWINDOW | WS_VISIBLE, rect, nullptr, 0))
        return 1;
    SetMenu(window, hMenu);
    window.SetAccelerators(keys, 2);
    return CCUIWindow::RunLoop();
}
