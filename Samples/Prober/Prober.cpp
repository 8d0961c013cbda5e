// Shows the values of running programs as they change, and sets those that are open.

#include <algorithm>

#include "CU/CU.h"
#include "CU/Dump.h"
#include "CU/Prober.h"
#include "CUI/Button.h"
#include "CUI/Edit.h"
#include "CUI/FrameWindow.h"
#include "CUI/LayoutWindow.h"
#include "CUI/Menu.h"
#include "CUI/ResourceCommands.h"
#include "CUI/Settings.h"
#include "CUI/Static.h"
#include "CUI/StatusBar.h"
#include "Plot.h"
#include "ProgramTree.h"

// What this program shows of itself.
static CCUProberLong s_interval("\\Prober", "Interval", 500, "between two readings", "ms");
static CCUProberLong s_readings("\\Prober", "Readings", 0, "readings of all values");

// The field in which a value is edited; Enter sets it.
class CValueEdit : public CCUIEdit
{
    int OnReturn() override { return CCUICommandMap::Execute(ID_SET); }
};

class CProberFrame : public CCUIFrameWindow, private CCUIResourceCommands
{
public:
    CProberFrame() : CCUIResourceCommands(ID_SET, ID_SELECTED - ID_SET + 1) {}

private:
    int OnCreate(CREATESTRUCTA *pCreate) override
    {
        CUGetWindow();  // this program shows its values, too
        s_interval.SetOpen(true);
        SetMenu(m_menu);
        SetAccelerators(m_hInstance, MAKEINTRESOURCE(IDR_PROBER));
        m_status.CreateBar(*this, 1);
        SetStatusBar(&m_status);

        const auto create = [](CCUILayoutWindow &layout, HWND hParent, UINT nID) {
            layout.SetGap(6);
            layout.Create(nullptr, "", WS_CHILD | WS_VISIBLE, {}, hParent, nID);
        };
        create(m_row, *this, 2);
        m_tree.SetFixedSize(ToScreen(300));
        m_tree.SetLayoutFlags(CUI_PLACE_FILL | CUI_PLACE_SPLITTER);
        m_tree.CreateControl(m_row, 1);
        m_page.SetMargins({8, 8, 8, 8});
        m_page.SetLayoutFlags(CUI_PLACE_FILL | CUIPlaceWeight(1));
        create(m_page, m_row, 2);
        m_about.SetFixedSize(ToScreen(48));
        m_about.SetLayoutFlags(CUI_PLACE_FILL);
        m_about.CreateControl(m_page, 1, "", SS_LEFT | SS_NOPREFIX);
        m_plot.SetLayoutFlags(CUI_PLACE_FILL | CUIPlaceWeight(1));
        m_plot.CreateControl(m_page, 2, "");
        m_line.SetLayoutFlags(CUI_PLACE_FILL);
        m_line.SetFixedSize(ToScreen(26));
        create(m_line, m_page, 3);
        m_value.SetLayoutFlags(CUI_PLACE_FILL | CUIPlaceWeight(1));
        m_value.CreateControl(m_line, 1);
        for (CCUIButton *const pButton : {&m_set, &m_default})
            pButton->SetLayoutFlags(CUI_PLACE_FILL | CUI_PLACE_FIT);
        m_set.CreateControl(m_line, ID_SET, "&Set");
        m_set.SetCommand(ID_SET);
        m_default.CreateControl(m_line, ID_SET_DEFAULT, "&Default");
        m_default.SetCommand(ID_SET_DEFAULT);
        SetClient(&m_row);
        m_tree.FindPrograms();
        m_tree.SelectOwn("\\CUI\\Messages", "PerSecond");
        Select();
        SetAlarm(0);
        return CCUIFrameWindow::OnCreate(pCreate);
    }

    void TimeOut(long) override
    {
        if (++m_nRounds % 4 == 0)
            m_tree.FindPrograms();
        s_readings.Add(1);
        m_tree.ReadValues();
        int nIndex;
        const CProgram *const pProgram = m_tree.GetSelected(nIndex);
        if (pProgram) {
            const CUProberValue &value = pProgram->m_values[static_cast<size_t>(nIndex)];
            if (value.nResult == CU_PROBER_DONE && value.nKind != CU_PROBER_TEXT)
                m_plot.Add(value.nKind == CU_PROBER_DOUBLE ? value.fDouble : value.nLong);
        }
        SetAlarm(std::max(20L, std::min(s_interval.Get(), 60000L)));
    }

    void HandleCommand(unsigned nID) override
    {
        switch (nID) {
        case ID_SET: Set(m_value.GetText()); break;
        case ID_SET_DEFAULT: Set(nullptr); break;
        case ID_LOOK_AGAIN: m_tree.FindPrograms(); break;
        case ID_EXIT: OnClose(); break;
        case ID_SELECTED: Select(); break;
        }
    }
    unsigned short GetState(unsigned nID) override
    {
        const CUProberEntry *const pEntry = GetSelected();
        if (nID == ID_SET || nID == ID_SET_DEFAULT)
            return CUICommandState(pEntry && pEntry->bOpen);
        return CUI_COMMAND_ACTIVE;
    }

    const CUProberEntry *GetSelected() const
    {
        int nIndex;
        const CProgram *const pProgram = m_tree.GetSelected(nIndex);
        return pProgram ? &pProgram->m_client.GetEntry(nIndex) : nullptr;
    }

    // Another variable was selected, or none.
    void Select()
    {
        m_plot.Clear();
        const CUProberEntry *const pEntry = GetSelected();
        CCUString sAbout = "Select a variable.", sValue;
        if (pEntry) {
            sAbout = pEntry->sPath + "\\" + pEntry->sName + "\r\n" + pEntry->sDescription + "\r\n";
            sAbout += pEntry->bComputed ? "computed"
                                        : (pEntry->bOpen ? "can be set, default " : "default ") +
                                              pEntry->sDefault;
            int nIndex;
            const CProgram *const pProgram = m_tree.GetSelected(nIndex);
            const CUProberValue &value = pProgram->m_values[static_cast<size_t>(nIndex)];
            sValue = value.nResult == CU_PROBER_DONE ? value.ToText() : pEntry->sDefault;
            m_status.SetText(0, pProgram->m_client.GetProgram());
        }
        SetWindowTextA(m_about, sAbout);
        SetWindowTextA(m_value, sValue);
        EnableWindow(m_value, pEntry && pEntry->bOpen);
    }

    // Null: to the default.
    void Set(const char *pszText)
    {
        int nIndex;
        CProgram *const pProgram = m_tree.GetSelected(nIndex);
        if (!pProgram)
            return;
        const CUProberEntry &entry = pProgram->m_client.GetEntry(nIndex);
        static const char *const RESULTS[] = {"is set", "is gone", "is not open",
                                              "does not take this text", "does not answer"};
        const CUProberResult nResult =
            pProgram->m_client.Set(entry.nID, pszText ? pszText : entry.sDefault.GetString());
        m_status.SetText(0, entry.sName + " " + RESULTS[nResult]);
    }

    CCUIMenu m_menu{m_hInstance, MAKEINTRESOURCE(IDR_PROBER), CUI_MENU_BAR};
    CCUIStatusBar m_status;
    CCUILayoutWindow m_row{CCUILayoutWindow::Row}, m_page, m_line{CCUILayoutWindow::Row};
    CProgramTree m_tree;
    CCUIStatic m_about;
    CPlot m_plot;
    CValueEdit m_value;
    CCUIButton m_set, m_default;
    unsigned m_nRounds = 0;
};

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int nShow)
{
    CUDumpSetLogFile(nullptr, "Prober");
    CUISetSettingsKey("Software\\Samples\\Prober");
    CProberFrame frame;
    if (!frame.CreateFrame("Prober"))
        return 1;
    frame.ShowKept("Frame", nShow);
    return CCUIWindow::RunLoop();
}
