// Dialogs: runs one in another, every way of ending one, owners, data and changes.
#include <gtest/gtest.h>

#include <functional>
#include <utility>

#include "CUI/Data.h"
#include "CUI/Dialog.h"
#include "Support/ImportHook.h"
#include "Support/Reports.h"
#include "Support/SysColors.h"
#include "Support/TestWindow.h"

#include <commctrl.h>  // needs windows.h before it

namespace {

HINSTANCE Module()
{
    return GetModuleHandleA(nullptr);
}

// Runs what it is told, once, in WM_INITDIALOG or when its loop first serves a posted message.
class CTestDialog : public CCUIDialog
{
public:
    explicit CTestDialog(const char *name = MAKEINTRESOURCEA(500)) : CCUIDialog(Module(), name) {}

    std::function<void(CTestDialog &)> m_onInit;
    std::function<void(CTestDialog &)> m_inLoop;
    std::string m_record;
    int m_nExchange = 1;
    std::function<int(unsigned short)> m_onExchange;

    using CCUIDialog::ExchangeFail;
    using CCUIDialog::OnCancel;
    using CCUIDialog::OnOK;

protected:
    static const UINT s_nGo = WM_APP + 7;

    int OnInitDialog(HWND hFocus, LPARAM lParam) override
    {
        const int nResult = CCUIDialog::OnInitDialog(hFocus, lParam);
        const HWND hWnd = m_hWnd;
        const bool bLoop = m_inLoop != nullptr;
        const auto onInit = m_onInit;
        if (onInit)
            onInit(*this);
        if (bLoop)
            PostMessageA(hWnd, s_nGo, 0, 0);
        return nResult;
    }
    long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        if (message != s_nGo)
            return CCUIDialog::OnMessage(message, wParam, lParam);
        const auto inLoop = m_inLoop;
        inLoop(*this);
        return 0;
    }
    int ExchangeData(unsigned short nDirection) override
    {
        m_record += nDirection == CUI_TOSCREEN ? "to " : "from ";
        return m_onExchange ? m_onExchange(nDirection) : m_nExchange;
    }
    void OnEvent(CCUString &sEvent) override { m_record += std::string(sEvent) + " "; }
};

void Press(CCUIDialog &dialog, int nID)
{
    SendMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(nID), 0);
}

}  // namespace

TEST(Dialog, EndsWithWhatItWasToldInEveryWay)
{
    struct CCase
    {
        std::function<void(CTestDialog &)> onInit, inLoop;
        int nResult;
    };
    const CCase cases[] = {
        {nullptr, [](CTestDialog &dialog) { dialog.EndDialog(77); }, 77},
        {[](CTestDialog &dialog) { dialog.EndDialog(78); }, nullptr, 78},
        {nullptr, [](CTestDialog &dialog) { Press(dialog, IDOK); }, IDOK},
        {nullptr, [](CTestDialog &dialog) { Press(dialog, IDCANCEL); }, IDCANCEL},
        {nullptr, [](CTestDialog &dialog) { PostMessageA(dialog, WM_CLOSE, 0, 0); }, IDCANCEL},
        {nullptr, [](CTestDialog &dialog) { PostMessageA(dialog, WM_KEYDOWN, VK_ESCAPE, 1); },
         IDCANCEL},
        {nullptr, [](CTestDialog &dialog) { dialog.Destroy(); }, IDCANCEL},
        {nullptr,
         [](CTestDialog &dialog) {
             dialog.EndDialog(5);
             dialog.EndDialog(6);
         },
         6},
    };
    const int nWindows = WindowCount();
    CTestDialog dialog;
    for (const CCase &one : cases) {
        dialog.m_onInit = one.onInit;
        dialog.m_inLoop = one.inLoop;
        EXPECT_EQ(one.nResult, dialog.DoModal(nullptr));
        EXPECT_FALSE(dialog.IsActive());
        EXPECT_EQ(nullptr, dialog.GetHandle());
        EXPECT_EQ(nWindows, WindowCount());
    }
}

namespace {

DWORD WINAPI CutSize(HMODULE, HRSRC)
{
    return 40;
}

DWORD WINAPI SendCancel(LPVOID hWnd)
{
    SendMessageA(static_cast<HWND>(hWnd), WM_COMMAND, IDCANCEL, 0);
    return 0;
}

}  // namespace

// The loop waits in the very call that serves the sent message.
TEST(Dialog, EndsWhenAnotherThreadSendsCancel)
{
    class CDying : public CTestDialog
    {
        void OnCancel() override { delete this; }
    };
    CTestDialog dialog;
    auto *dying = new CDying;
    for (CTestDialog *pDialog : {&dialog, static_cast<CTestDialog *>(dying)}) {
        pDialog->m_inLoop = [](CTestDialog &running) {
            const HWND hWnd = running;
            CloseHandle(CreateThread(nullptr, 0, SendCancel, hWnd, 0, nullptr));
        };
        EXPECT_EQ(IDCANCEL, pDialog->DoModal(nullptr));
    }
}

// What ends the object while it gives its owner back.
TEST(Dialog, StandsItsDeathAtItsOwnersHands)
{
    class COwner : public CCUIWindow
    {
    public:
        CTestDialog *m_pDialog = nullptr;

    protected:
        long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override
        {
            if (message == WM_ENABLE && wParam)
                delete std::exchange(m_pDialog, nullptr);
            return CCUIWindow::OnMessage(message, wParam, lParam);
        }
    };
    for (const bool bEnd : {true, false}) {
        COwner owner;
        ASSERT_TRUE(CreateTestWindow(owner, nullptr, WS_POPUP | WS_VISIBLE));
        owner.m_pDialog = new CTestDialog;
        owner.m_pDialog->m_inLoop = [=](CTestDialog &running) {
            bEnd ? running.EndDialog(5) : static_cast<void>(DestroyWindow(running));
        };
        EXPECT_EQ(IDCANCEL, owner.m_pDialog->DoModal(&owner));
        EXPECT_EQ(nullptr, owner.m_pDialog);
        EXPECT_TRUE(IsWindowEnabled(owner));
    }
}

TEST(Dialog, AnswersWhatCannotRun)
{
    CTestDialog missing("no such template");
    EXPECT_EQ(IDCANCEL, missing.DoModal(nullptr));
    EXPECT_EQ(nullptr, missing.DoModeless(nullptr));
    EXPECT_EQ(nullptr, missing.Create(nullptr));
    CTestDialog nameless(nullptr);
    EXPECT_EQ(0, nameless.DoModal(nullptr));
    CCUIDialog homeless(nullptr, MAKEINTRESOURCEA(500));
    EXPECT_EQ(0, homeless.DoModal(nullptr));
    {
        // A resource that is cut short: the system would read on behind it.
        const CImportHook size("SizeofResource", CutSize);
        CTestDialog cut;
        cut.m_inLoop = [](CTestDialog &running) { running.EndDialog(9); };
        EXPECT_EQ(IDCANCEL, cut.DoModal(nullptr));
        EXPECT_EQ(nullptr, cut.DoModeless(nullptr));
        EXPECT_EQ(nullptr, cut.Create(nullptr));
        EXPECT_FALSE(cut.IsActive());
    }
    // No hook waits for the next window.
    CCUIWindow window;
    ASSERT_TRUE(CreateTestWindow(window));
    EXPECT_EQ(&window, CCUIWindow::FromHandle(window));
    // A dialog that runs does not run twice.
    CTestDialog dialog;
    dialog.m_inLoop = [](CTestDialog &running) {
        EXPECT_EQ(IDCANCEL, running.DoModal(nullptr));
        running.EndDialog(9);
    };
    EXPECT_EQ(9, dialog.DoModal(nullptr));
}

TEST(Dialog, DisablesTheOwnersAndGivesThemBack)
{
    CCUIWindow frame, popup, child;
    ASSERT_TRUE(CreateTestWindow(frame));
    ASSERT_TRUE(CreateTestWindow(popup, frame, WS_POPUP | WS_VISIBLE));
    ASSERT_TRUE(CreateTestWindow(child, popup, WS_CHILD | WS_VISIBLE));
    CTestDialog dialog;
    dialog.m_inLoop = [&](CTestDialog &running) {
        EXPECT_EQ(popup.GetHandle(), GetWindow(running, GW_OWNER));
        EXPECT_FALSE(IsWindowEnabled(popup));
        EXPECT_FALSE(IsWindowEnabled(frame));
        EXPECT_TRUE(running.IsActive());
        running.EndDialog(1);
    };
    EXPECT_EQ(1, dialog.DoModal(&child));
    EXPECT_TRUE(IsWindowEnabled(popup));
    EXPECT_TRUE(IsWindowEnabled(frame));
    EXPECT_EQ(popup.GetHandle(), GetActiveWindow());

    // One that was disabled before stays so; one that is destroyed gives back too.
    EnableWindow(popup, FALSE);
    dialog.m_inLoop = [&](CTestDialog &running) { DestroyWindow(running); };
    dialog.DoModal(&child);
    EXPECT_FALSE(IsWindowEnabled(popup));
    EXPECT_TRUE(IsWindowEnabled(frame));
    EnableWindow(popup, TRUE);

    // An owner that goes takes the dialog along, and the run ends.
    dialog.m_inLoop = [&](CTestDialog &) { popup.Destroy(); };
    EXPECT_EQ(IDCANCEL, dialog.DoModal(&child));
    EXPECT_TRUE(IsWindowEnabled(frame));

    // A creation that fails leaves the owners enabled.
    CTestDialog missing("no such template");
    ASSERT_TRUE(CreateTestWindow(popup, frame, WS_POPUP));
    missing.DoModal(&popup);
    EXPECT_TRUE(IsWindowEnabled(frame));
    EXPECT_TRUE(IsWindowEnabled(popup));
}

TEST(Dialog, RunsThreeDeepAndPassesQuitOn)
{
    CTestDialog outer, middle, inner;
    outer.m_inLoop = [&](CTestDialog &running) {
        EXPECT_EQ(20, middle.DoModal(&running));
        EXPECT_TRUE(IsWindowEnabled(running));
        running.EndDialog(10);
    };
    middle.m_onInit = [&](CTestDialog &running) { EXPECT_EQ(30, inner.DoModal(&running)); };
    middle.m_inLoop = [](CTestDialog &running) { running.EndDialog(20); };
    inner.m_inLoop = [](CTestDialog &running) { running.EndDialog(30); };
    EXPECT_EQ(10, outer.DoModal(nullptr));

    outer.m_inLoop = [&](CTestDialog &running) {
        middle.m_onInit = nullptr;
        middle.m_inLoop = [](CTestDialog &) { PostQuitMessage(5); };
        EXPECT_EQ(IDCANCEL, middle.DoModal(&running));
        EXPECT_TRUE(middle.Exist());
        middle.Destroy();
    };
    EXPECT_EQ(IDCANCEL, outer.DoModal(nullptr));
    outer.Destroy();
    MSG msg;
    do {
        ASSERT_TRUE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE));
    } while (msg.message == WM_NULL);
    EXPECT_EQ(UINT(WM_QUIT), msg.message);
    EXPECT_FALSE(PeekMessageA(&msg, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
}

TEST(Dialog, StandsItsOwnDeathInItsLoop)
{
    const CReports reports;
    auto *dialog = new CTestDialog;
    dialog->m_inLoop = [](CTestDialog &running) { delete &running; };
    EXPECT_EQ(IDCANCEL, dialog->DoModal(nullptr));
    EXPECT_EQ(1, reports.Count("!m_bDead", "Window"));
    auto *other = new CTestDialog;
    other->m_onInit = [](CTestDialog &running) { delete &running; };
    EXPECT_EQ(IDCANCEL, other->DoModal(nullptr));
}

TEST(Dialog, MakesModelessOnesWithoutDisablingAnybody)
{
    CCUIWindow frame;
    ASSERT_TRUE(CreateTestWindow(frame));
    CTestDialog popup, child(MAKEINTRESOURCEA(501)), made;
    const HWND hPopup = popup.DoModeless(&frame);
    ASSERT_TRUE(hPopup);
    EXPECT_EQ(hPopup, popup.GetHandle());
    EXPECT_EQ(frame.GetHandle(), GetWindow(hPopup, GW_OWNER));
    EXPECT_TRUE(IsWindowEnabled(frame));
    EXPECT_TRUE(IsWindowVisible(hPopup));
    ASSERT_TRUE(child.DoModeless(&popup));
    EXPECT_EQ(hPopup, GetParent(child));
    ASSERT_TRUE(made.Create(frame));
    EXPECT_FALSE(IsWindowVisible(made));
    EXPECT_EQ(nullptr, made.Create(frame));  // has a window already
    popup.OnCancel();
    EXPECT_FALSE(IsWindow(hPopup));
    EXPECT_FALSE(child.Exist());
}

TEST(Dialog, ExchangesDataAndTracksWhatTheUserChanges)
{
    CTestDialog dialog;
    dialog.SetAutoMakeDirty(true);
    dialog.m_onExchange = [&](unsigned short nDirection) {
        if (nDirection == CUI_TOSCREEN)
            SetDlgItemTextA(dialog, 1001, "put");
        return 1;
    };
    ASSERT_TRUE(dialog.DoModeless(nullptr));
    EXPECT_EQ("to ", dialog.m_record);
    EXPECT_TRUE(dialog.IsDataValid());
    EXPECT_FALSE(dialog.IsDirty());  // the exchange itself is no change
    EXPECT_EQ(GetDlgItem(dialog, 1001), dialog.GetFirstControl());  // 1000 is disabled

    dialog.RegisterControl(nullptr, 1100, DialogControlTreeView);
    dialog.RegisterControl(nullptr, 1101, DialogControlListView);
    dialog.RegisterControl(nullptr, 1102, DialogControlTab);
    dialog.RegisterControl(nullptr, 1103, DialogControlDatePicker);
    const auto Change = [&](int nID, UINT nCode) {
        dialog.SetDirty(false);
        NMHDR header = {GetDlgItem(dialog, 1005), static_cast<UINT_PTR>(nID), nCode};
        if (nID < 1100)
            SendMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(MAKELONG(nID, nCode)),
                         reinterpret_cast<LPARAM>(GetDlgItem(dialog, nID)));
        else
            SendMessageA(dialog, WM_NOTIFY, header.idFrom, reinterpret_cast<LPARAM>(&header));
        return dialog.IsDirty();
    };
    struct CChange
    {
        int nID;
        UINT nCode;
        bool bDirty;
    };
    for (const CChange &one : {CChange{1001, EN_CHANGE, true},
                               {1001, EN_SETFOCUS, false},
                               {1002, LBN_SELCHANGE, true},
                               {1003, CBN_SELCHANGE, true},
                               {1003, CBN_EDITCHANGE, true},
                               {1003, CBN_DROPDOWN, false},
                               {1004, BN_CLICKED, true},
                               {1005, BN_CLICKED, false},  // a push button holds nothing
                               {1100, TVN_SELCHANGEDA, true},
                               {1100, TVN_ITEMEXPANDEDA, false},
                               {1101, LVN_ITEMCHANGED, true},
                               {1102, TCN_SELCHANGE, true},
                               {1102, TCN_SELCHANGING, false},
                               {1103, DTN_DATETIMECHANGE, true}})
        EXPECT_EQ(one.bDirty, Change(one.nID, one.nCode)) << one.nID << " " << one.nCode;
    dialog.SetControlAutoMakeDirty(1001, false);
    EXPECT_FALSE(Change(1001, EN_CHANGE));
    CCUIControlInfo info = {};
    EXPECT_EQ(1, dialog.GetControlInfo(1003, info));
    EXPECT_EQ(DialogControlComboBox, info.type);
    dialog.UnRegisterControl(1003);
    EXPECT_EQ(0, dialog.GetControlInfo(1003, info));
    EXPECT_FALSE(Change(1003, CBN_SELCHANGE));

    dialog.m_record.clear();
    dialog.SetDirty(true);
    dialog.SetDirty(true);
    EXPECT_EQ("Dirty ", dialog.m_record);
    dialog.m_onExchange = nullptr;
    dialog.m_nExchange = 0;
    dialog.OnOK();
    EXPECT_TRUE(dialog.Exist());  // data that cannot be taken keeps it open
    EXPECT_FALSE(dialog.IsDataValid());
    CCUString sCode("Sideways");
    EXPECT_EQ(0, dialog.UpdateData(sCode));
    dialog.m_nExchange = 1;
    dialog.OnOK();
    EXPECT_FALSE(dialog.Exist());
    EXPECT_FALSE(dialog.IsDirty());
}

namespace {

// Presses OK in the message box that the dialog under test shows.
void CALLBACK CloseBox(HWND, UINT, UINT_PTR nTimer, DWORD)
{
    const HWND hBox = GetLastActivePopup(FindWindowA("#32770", "Dialog under test"));
    if (!hBox || GetDlgItem(hBox, 1001))
        return;
    KillTimer(nullptr, nTimer);
    PostMessageA(hBox, WM_COMMAND, IDOK, 0);
}

}  // namespace

TEST(Dialog, TellsWhichControlFailedAndGoesThere)
{
    CTestDialog dialog;
    ASSERT_TRUE(dialog.DoModeless(nullptr));
    SetDlgItemTextA(dialog, 1001, "wrong");
    SetFocus(GetDlgItem(dialog, 1004));
    // The box is closed by the timer that its own loop serves.
    SetTimer(nullptr, 0, 10, CloseBox);
    CCUString sMessage("Not a number.");
    EXPECT_EQ(0, dialog.ExchangeFail(1001, sMessage));
    EXPECT_EQ(GetDlgItem(dialog, 1001), GetFocus());
    DWORD nFrom = 0, nTo = 0;
    SendDlgItemMessageA(dialog, 1001, EM_GETSEL, reinterpret_cast<WPARAM>(&nFrom),
                        reinterpret_cast<LPARAM>(&nTo));
    EXPECT_EQ(0u, nFrom);
    EXPECT_EQ(5u, nTo);
}

TEST(Dialog, PaintsItsColour)
{
    CTestDialog dialog;
    EXPECT_EQ(CUIGetWinData()->crSys[COLOR_BTNFACE], dialog.GetColor());
    dialog.SetColor(RGB(10, 200, 30));
    ASSERT_TRUE(dialog.DoModeless(nullptr));
    const HDC hDC = GetDC(dialog);
    const auto hBrush = reinterpret_cast<HBRUSH>(
        SendMessageA(dialog, WM_CTLCOLORDLG, reinterpret_cast<WPARAM>(hDC), 0));
    LOGBRUSH brush = {};
    GetObjectA(hBrush, sizeof brush, &brush);
    EXPECT_EQ(RGB(10, 200, 30), brush.lbColor);
    EXPECT_EQ(reinterpret_cast<LRESULT>(hBrush),
              SendMessageA(dialog, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(hDC), 0));
    EXPECT_EQ(RGB(10, 200, 30), GetBkColor(hDC));
    // A system colour is what the system says now.
    dialog.SetColor(CUIGetWinData()->crSys[COLOR_BTNFACE]);
    const CSysColors colors;
    GetObjectA(reinterpret_cast<HBRUSH>(SendMessageA(dialog, WM_CTLCOLORDLG, 0, 0)), sizeof brush,
               &brush);
    EXPECT_EQ(GetSysColor(COLOR_BTNFACE), brush.lbColor);
    ReleaseDC(dialog, hDC);
}
