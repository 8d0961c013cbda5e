// Dialogs: runs one in another, every way of ending one, owners, data and changes.

#include <limits.h>

#include "CUI/Data.h"
#include "CUI/Dialog.h"
#include "Support/Reports.h"
#include "Support/SysColors.h"
#include "Support/TestWindow.h"
#include "Support/Threads.h"

namespace {

// Runs what it is told when its loop first serves a posted message.
struct CTestDialog : CScripted<CCUIDialog>
{
    using Step = std::function<void(CTestDialog &)>;
    explicit CTestDialog(const char *name = MAKEINTRESOURCEA(500))
        : CScripted(GetModuleHandleA(nullptr), name)
    {
    }
    int Run(const Step &inLoop, CCUIWindow *pParent = nullptr)
    {
        m_on[WM_APP + 7] = [=] { return inLoop(*this), 0; };
        return DoModal(pParent);
    }

    int m_nExchanged = 1;

    using CCUIDialog::OnOK;

    int OnInitDialog(HWND hFocus, LPARAM lParam) override
    {
        PostMessageA(m_hWnd, WM_APP + 7, 0, 0);
        return CCUIDialog::OnInitDialog(hFocus, lParam);
    }
    int ExchangeData(unsigned short nDirection) override
    {
        m_told += nDirection == CUI_TOSCREEN ? "to " : "from ";
        SetDlgItemTextA(m_hWnd, 1001, "put");
        return m_nExchanged;
    }
    void OnEvent(CCUString &sEvent) override { m_told += std::string(sEvent) + " "; }
};

CTestDialog::Step End(unsigned nResult)
{
    return [=](CTestDialog &dialog) { dialog.EndDialog(nResult); };
}

CTestDialog::Step Post(UINT message, WPARAM wParam)
{
    return [=](CTestDialog &dialog) { PostMessageA(dialog, message, wParam, 1); };
}

}  // namespace

TEST(Dialog, EndsWithWhatItWasToldInEveryWay)
{
    const std::pair<CTestDialog::Step, int> cases[] = {
        {End(77), 77},
        {Post(WM_COMMAND, IDOK), IDOK},
        {Post(WM_COMMAND, IDCANCEL), IDCANCEL},
        {Post(WM_CLOSE, 0), IDCANCEL},
        {Post(WM_KEYDOWN, VK_ESCAPE), IDCANCEL},
        {[](CTestDialog &running) { running.Destroy(); }, IDCANCEL},
        {[](CTestDialog &running) {  // and keeps that from the object
             SetWindowLongA(running, GWL_WNDPROC, reinterpret_cast<LONG>(DefWindowProcA));
             DestroyWindow(running);
         },
         IDCANCEL},
    };
    CTestWindow owner;
    CTestDialog dialog;
    const int nWindows = WindowCount();
    for (const auto &[inLoop, nResult] : cases) {
        EXPECT_EQ(nResult, dialog.Run(inLoop, &owner));
        EXPECT_FALSE(dialog.IsActive());
        EXPECT_EQ(nullptr, dialog.GetHandle());
        EXPECT_TRUE(IsWindowEnabled(owner));
        EXPECT_EQ(nWindows, WindowCount());
    }
}

// The loop waits in the very call that serves the message of the other thread.
TEST(Dialog, IsCancelledByAnotherThread)
{
    struct CIdle : CCUIIdleCallback
    {
        void OnIdle() override { m_bIdle = true; }
        volatile bool m_bIdle = false;
    } idle;
    CCUIWindow::SetIdleCallback(&idle);
    CTestDialog dialog;
    CThreads::Run(2, [&](int nThread) {
        if (nThread == 0) {
            EXPECT_EQ(IDCANCEL, dialog.DoModal(nullptr));
            return;
        }
        while (!idle.m_bIdle)
            Sleep(1);
        SendMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
    });
    CCUIWindow::SetIdleCallback(nullptr);
}

TEST(Dialog, AnswersWhatCannotRun)
{
    const CReports reports;
    CTestDialog missing("no such template"), nameless(nullptr), broken(MAKEINTRESOURCEA(521)), runs;
    runs.DoModeless(nullptr);
    for (CTestDialog *pDialog : {&missing, &nameless, &broken, &runs}) {
        EXPECT_EQ(pDialog == &nameless ? 0 : IDCANCEL, pDialog->DoModal(nullptr));
        EXPECT_EQ(nullptr, pDialog->DoModeless(nullptr));
        EXPECT_EQ(nullptr, pDialog->Create(nullptr));
        EXPECT_EQ(pDialog == &runs, pDialog->IsActive());
    }
    // No hook waits for the next window.
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(MakePlain()));
}

TEST(Dialog, DisablesTheOwnersAndGivesThemBack)
{
    CTestWindow frame, popup(frame, WS_POPUP | WS_VISIBLE), child(popup, WS_CHILD | WS_VISIBLE);
    const auto enabled = [&] { return IsWindowEnabled(frame) * 10 + IsWindowEnabled(popup); };
    int nCancels = 0;
    child.m_on[WM_CANCELMODE] = [&] { return ++nCancels; };
    CTestDialog dialog;
    ShowWindow(frame, SW_SHOWMINIMIZED);
    SetCapture(child);
    const auto look = [&](CTestDialog &running) {
        EXPECT_EQ(popup.GetHandle(), GetWindow(running, GW_OWNER));
        EXPECT_EQ(0, enabled());
        EXPECT_TRUE(running.IsActive());
        // After an idle pass, which tells the owner.
        popup.m_on[WM_ENTERIDLE] = [&] { return PostMessageA(running, WM_CLOSE, 0, 0); };
    };
    EXPECT_EQ(IDCANCEL, dialog.Run(look, &child));
    EXPECT_FALSE(IsIconic(frame));
    EXPECT_EQ(1, nCancels);
    EXPECT_EQ(11, enabled());
    EXPECT_EQ(popup.GetHandle(), GetActiveWindow());
    // What was disabled before stays so.
    for (CTestWindow *pWindow : {&popup, &frame}) {
        EnableWindow(*pWindow, FALSE);
        dialog.Run(End(1), &child);
        CTestDialog("no such template").DoModal(&child);
        EXPECT_EQ(pWindow == &popup ? 10 : 1, enabled());
        EnableWindow(*pWindow, TRUE);
    }
    // An owner that goes takes the dialog along, and the run ends.
    EXPECT_EQ(IDCANCEL, dialog.Run([&](CTestDialog &) { popup.Destroy(); }, &child));
    EXPECT_TRUE(IsWindowEnabled(frame));
}

TEST(Dialog, RunsInAnotherAndPassesQuitOn)
{
    CTestDialog outer, inner;
    const auto runInner = [&](CTestDialog &running) {
        EXPECT_EQ(30, inner.Run(End(30), &running));
        EXPECT_TRUE(IsWindowEnabled(running));
        EXPECT_EQ(IDCANCEL, inner.Run([](CTestDialog &) { PostQuitMessage(5); }, &running));
        EXPECT_TRUE(inner.Exist());
    };
    EXPECT_EQ(IDCANCEL, outer.Run(runInner));
    EXPECT_TRUE(outer.Exist());
    inner.Destroy();
    outer.Destroy();
    MSG msg;
    while (GetMessageA(&msg, nullptr, 0, 0))
        EXPECT_EQ(UINT(WM_NULL), msg.message);
    EXPECT_EQ(0u, msg.wParam);
}

// Another run begins and ends while this one looks for its owner, and one when it is over.
TEST(Dialog, KeepsARunApartFromOthersInside)
{
    CTestWindow frame, popup(frame, WS_POPUP), child(popup, WS_CHILD);
    CTestDialog dialog;
    int nRuns = 0;
    const auto endWithNumber = [&](CTestDialog &running) {
        EXPECT_TRUE(running.IsActive());
        const int nRun = ++nRuns;
        running.EndDialog(static_cast<unsigned>(10 + nRun));
        EXPECT_EQ(13, nRun == 2 ? running.DoModal(nullptr) : 13);
    };
    frame.m_on[WM_ENABLE] = [&] {
        EXPECT_EQ(11, nRuns == 0 ? dialog.Run(endWithNumber) : 11);
        return 0;
    };
    EXPECT_EQ(12, dialog.Run(endWithNumber, &child));
    EXPECT_EQ(3, nRuns);
    EXPECT_FALSE(dialog.IsActive());
}

TEST(Dialog, StandsItsOwnDeathWhereverItComes)
{
    const CReports reports;
    EXPECT_EQ(IDCANCEL, (new CTestDialog)->Run([](CTestDialog &running) { delete &running; }));
    // In a handler of its owner, which is disabled or given back.
    for (const WPARAM bEnable : {0u, 1u}) {
        CTestWindow owner;
        auto *dialog = new CTestDialog;
        owner.m_on[WM_ENABLE] = [&] {
            return owner.m_wParam == bEnable ? delete std::exchange(dialog, nullptr), 0 : 0;
        };
        EXPECT_EQ(IDCANCEL, dialog->Run(End(6), &owner));
        EXPECT_TRUE(IsWindowEnabled(owner));
    }
}

TEST(Dialog, MakesModelessOnesWithoutDisablingAnybody)
{
    CTestWindow frame;
    CTestDialog popup, made;
    CCUIDialog child(GetModuleHandleA(nullptr), MAKEINTRESOURCEW(501));  // as with UNICODE
    const HWND hPopup = popup.DoModeless(&frame);
    EXPECT_EQ(frame.GetHandle(), GetWindow(hPopup, GW_OWNER));
    EXPECT_TRUE(IsWindowEnabled(frame));
    EXPECT_TRUE(IsWindowVisible(hPopup));
    EXPECT_EQ(hPopup, GetParent(child.DoModeless(&popup)));
    EXPECT_TRUE(made.Create(frame));
    EXPECT_FALSE(IsWindowVisible(made));
}

TEST(Dialog, TracksWhatTheUserChanges)
{
    CTestDialog dialog;
    dialog.SetAutoMakeDirty(true);
    dialog.DoModeless(nullptr);
    EXPECT_FALSE(dialog.IsDirty());  // the exchange itself is no change
    EXPECT_EQ(GetDlgItem(dialog, 1001), dialog.GetFirstControl());  // 1000 is disabled
    const auto change = [&](int nID, UINT nCode) {
        dialog.SetDirty(false);
        SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(nID, nCode), LPARAM(GetDlgItem(dialog, nID)));
        return dialog.IsDirty();
    };
    EXPECT_TRUE(change(1001, EN_CHANGE) && change(1002, LBN_SELCHANGE));
    EXPECT_TRUE(change(1003, CBN_EDITCHANGE) && change(1004, BN_CLICKED));
    EXPECT_FALSE(change(1001, EN_SETFOCUS) || change(1005, BN_CLICKED));
    dialog.RegisterControl(GetDlgItem(dialog, 1002), 1002, DialogControlNone);
    EXPECT_FALSE(change(1002, LBN_SELCHANGE));
    dialog.UnRegisterControl(1002);
    EXPECT_FALSE(change(1002, LBN_SELCHANGE));
    dialog.SetDirty(true);
    dialog.SetDirty(true);
    EXPECT_EQ("to Dirty Dirty Dirty Dirty Dirty ", dialog.m_told);
}

TEST(Dialog, StaysOpenWhereItsDataCannotBeTaken)
{
    CTestDialog dialog;
    dialog.DoModeless(nullptr);
    EXPECT_TRUE(dialog.IsDataValid());
    dialog.m_nExchanged = 0;
    dialog.OnOK();
    EXPECT_TRUE(dialog.Exist());
    EXPECT_FALSE(dialog.IsDataValid());
    dialog.m_nExchanged = 1;
    dialog.OnOK();
    EXPECT_FALSE(dialog.Exist());
    EXPECT_EQ("to from from ", dialog.m_told);
}

TEST(Dialog, PaintsItsColour)
{
    CTestDialog dialog;
    EXPECT_EQ(CUIGetWinData()->crSys[COLOR_BTNFACE], dialog.GetColor());
    dialog.SetColor(0x1EC80A);
    dialog.DoModeless(nullptr);
    const HDC hDC = GetDC(dialog);
    const auto expectBrush = [&](UINT message, COLORREF cr) {
        LOGBRUSH brush = {};
        GetObjectA(HGDIOBJ(SendMessageA(dialog, message, WPARAM(hDC), 0)), sizeof brush, &brush);
        EXPECT_EQ(cr, brush.lbColor);
    };
    expectBrush(WM_CTLCOLORDLG, 0x1EC80A);
    expectBrush(WM_CTLCOLORSTATIC, 0x1EC80A);
    EXPECT_EQ(0x1EC80Au, GetBkColor(hDC));
    // A system colour is what the system says now.
    dialog.SetColor(CUIGetWinData()->crSys[COLOR_BTNFACE]);
    const CSysColors colors;
    expectBrush(WM_CTLCOLORDLG, GetSysColor(COLOR_BTNFACE));
}

TEST(Dialog, ExchangesWhatItsControlsHold)
{
    struct CData : CTestDialog
    {
        int ExchangeData(unsigned short nDirection) override
        {
            return ExchangeText(nDirection, 1000, m_sLabel) &&
                   ExchangeInt(nDirection, 1001, m_nNumber, -5, m_nMost) &&
                   ExchangeSelection(nDirection, 1002, m_nItem) &&
                   ExchangeSelection(nDirection, 1003, m_nEntry) &&
                   ExchangeCheck(nDirection, 1004, m_nCheck) &&
                   ExchangeCheck(nDirection, 999, m_nMissing) &&
                   ExchangeRadio(nDirection, 1004, 1004, m_nRadio);
        }
        int ExchangeFail(int nID, CCUString &sMessage) override
        {
            return m_told += Text("%d: %s ", nID, sMessage.GetString()), 0;
        }
        using CCUIDialog::CenterOnOwner;
        CCUString m_sLabel = "label";
        int m_nMost = 3600, m_nNumber = 7, m_nItem = -1, m_nEntry = -1, m_nCheck = 1,
            m_nMissing = 4, m_nRadio = 0;
    } dialog;
    CTestWindow owner;
    owner.Move({-30, 100, 670, 700});
    owner.Show();
    dialog.DoModeless(&owner);
    EXPECT_EQ("label|7|1", TextOf(GetDlgItem(dialog, 1000)) + "|" +
                               TextOf(GetDlgItem(dialog, 1001)) + "|" +
                               Text("%u", IsDlgButtonChecked(dialog, 1004)));
    for (const int nID : {1002, 1003})
        for (int i = 0; i < 2; ++i)
            SendDlgItemMessageA(dialog, nID, nID == 1002 ? LB_ADDSTRING : CB_ADDSTRING, 0,
                                reinterpret_cast<LPARAM>("entry"));
    SendDlgItemMessageA(dialog, 1002, LB_SETCURSEL, 1, 0);
    SendDlgItemMessageA(dialog, 1003, CB_SETCURSEL, 1, 0);
    CheckDlgButton(dialog, 1004, BST_UNCHECKED);
    EXPECT_TRUE(dialog.UpdateData("FromScreen") && dialog.m_nEntry == 1 && dialog.m_nCheck == 0);
    dialog.CenterOnOwner();
    const RECT rc = dialog.GetPlace();
    EXPECT_EQ("320 400", Text("%ld %ld", (rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2));
    for (const char *text : {"", "3601", "-6", "1x", "99999999999", " 3600 "}) {
        EXPECT_TRUE(dialog.Exist());
        SetDlgItemTextA(dialog, 1001, text);
        dialog.OnOK();
    }
    EXPECT_FALSE(dialog.Exist());
    const std::string fail = "1001: -5 - 3600 ";
    EXPECT_EQ(fail + fail + fail + fail + fail, dialog.m_told);
    EXPECT_EQ("3600 1 1 0 4 -1",
              Text("%d %d %d %d %d %d", dialog.m_nNumber, dialog.m_nItem, dialog.m_nEntry,
                   dialog.m_nCheck, dialog.m_nMissing, dialog.m_nRadio));
    dialog.m_nMost = INT_MAX;
    dialog.DoModeless(&owner);
    for (const char *text : {"2147483648", "2147483647"}) {
        EXPECT_TRUE(dialog.Exist());
        SetDlgItemTextA(dialog, 1001, text);
        dialog.OnOK();
    }
    EXPECT_EQ(INT_MAX, dialog.m_nNumber);
}
