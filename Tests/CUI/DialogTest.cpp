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

// Runs what it is told in WM_INITDIALOG, and when its loop first serves a posted message.
class CTestDialog : public CScripted<CCUIDialog>
{
public:
    using Step = std::function<void(CTestDialog &)>;
    explicit CTestDialog(const char *name = MAKEINTRESOURCEA(500))
        : CScripted(GetModuleHandleA(nullptr), name)
    {
        m_on[s_nGo] = [this] {
            const Step inLoop = m_inLoop;  // it may delete this
            return inLoop(*this), 0;
        };
    }
    int Run(Step inLoop, CCUIWindow *pParent = nullptr)
    {
        m_inLoop = std::move(inLoop);
        return DoModal(pParent);
    }

    Step m_onInit = [](CTestDialog &) {}, m_inLoop;
    std::function<int(unsigned short)> m_onExchange = [](unsigned short) { return 1; };
    std::string m_record;

    using CCUIDialog::ExchangeFail;
    using CCUIDialog::OnCancel;
    using CCUIDialog::OnOK;

    bool IsWaiting() const
    {
        const volatile MSG *const pAwaited = const_cast<const MSG *const volatile &>(m_pAwaited);
        return pAwaited && pAwaited->message == NoMessage;
    }

protected:
    static constexpr UINT s_nGo = WM_APP + 7;

    int OnInitDialog(HWND hFocus, LPARAM lParam) override
    {
        CWatch watch(this);
        const int nResult = CCUIDialog::OnInitDialog(hFocus, lParam);
        if (watch.IsGone())
            return nResult;
        const HWND hGo = m_inLoop ? m_hWnd : nullptr;
        const Step onInit = m_onInit;  // it may delete this
        onInit(*this);
        if (hGo)
            PostMessageA(hGo, s_nGo, 0, 0);
        return nResult;
    }
    int ExchangeData(unsigned short nDirection) override
    {
        m_record += nDirection == CUI_TOSCREEN ? "to " : "from ";
        return m_onExchange(nDirection);
    }
    void OnEvent(CCUString &sEvent) override { m_record += std::string(sEvent) + " "; }
};

CTestDialog::Step End(unsigned nResult)
{
    return [=](CTestDialog &dialog) { dialog.EndDialog(nResult); };
}

CTestDialog::Step Post(UINT message, WPARAM wParam)
{
    return [=](CTestDialog &dialog) { PostMessageA(dialog, message, wParam, 1); };
}

DWORD WINAPI SendCancel(LPVOID running)
{
    const auto &dialog = *static_cast<const CTestDialog *>(running);
    while (!dialog.IsWaiting())
        Sleep(1);
    SendMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
    return 0;
}

// The loop waits in the very call that serves the message of the other thread.
void CancelFromAThread(CTestDialog &running)
{
    CloseHandle(CreateThread(nullptr, 0, SendCancel, &running, 0, nullptr));
}

DWORD WINAPI CutSize(HMODULE, HRSRC)
{
    return 40;
}

}  // namespace

TEST(Dialog, EndsWithWhatItWasToldInEveryWay)
{
    CTestDialog dialog;
    const auto endTwice = [](CTestDialog &running) {
        running.EndDialog(5);
        running.EndDialog(6);
    };
    // Another one that runs below that message takes what was to wake the loop.
    const auto endBelow = [&](CTestDialog &running) {
        running.m_on[WM_COMMAND] = [&] {
            CTestDialog below;
            const auto endBoth = [&](CTestDialog &other) {
                running.EndDialog(8);
                PostMessageA(other, WM_COMMAND, IDOK, 1);
            };
            return below.Run(endBoth);
        };
        CancelFromAThread(running);
    };
    const std::pair<CTestDialog::Step, int> cases[] = {
        {End(77), 77},
        {Post(WM_COMMAND, IDOK), IDOK},
        {Post(WM_COMMAND, IDCANCEL), IDCANCEL},
        {Post(WM_CLOSE, 0), IDCANCEL},
        {Post(WM_KEYDOWN, VK_ESCAPE), IDCANCEL},
        {[](CTestDialog &running) { running.Destroy(); }, IDCANCEL},
        {endTwice, 6},
        {CancelFromAThread, IDCANCEL},
        {endBelow, 8},
    };
    const int nWindows = WindowCount();
    for (const auto &[inLoop, nResult] : cases) {
        EXPECT_EQ(nResult, dialog.Run(inLoop));
        EXPECT_FALSE(dialog.IsActive());
        EXPECT_EQ(nullptr, dialog.GetHandle());
        EXPECT_EQ(nWindows, WindowCount());
    }
    // It may go on with another window.
    const auto goOn = [](CTestDialog &running) {
        running.m_onInit = [](CTestDialog &) {};
        running.EndDialog(79);
        EXPECT_TRUE(running.DoModeless(nullptr));
    };
    CTestDialog again;
    EXPECT_EQ(79, again.Run(goOn));
    EXPECT_TRUE(again.IsActive() && again.Destroy());
    again.m_onInit = goOn;
    EXPECT_EQ(79, again.Run(nullptr));
    EXPECT_TRUE(again.IsActive() && again.Destroy());
}

// A handler of the owner's begins and ends another run, and so does one after the end.
TEST(Dialog, KeepsARunApartFromOthersInside)
{
    CTestWindow frame, popup(frame, WS_POPUP), child(popup, WS_CHILD);
    CTestDialog dialog;
    int nRuns = 0;
    const auto endWithNumber = [&](CTestDialog &running) {
        EXPECT_TRUE(running.IsActive());
        const int nRun = ++nRuns;
        running.EndDialog(static_cast<unsigned>(nRun));
        if (nRun == 2) {
            EXPECT_EQ(3, running.DoModal(nullptr));
        }
    };
    frame.m_on[WM_ENABLE] = [&] {
        if (nRuns == 0) {
            EXPECT_EQ(1, dialog.Run(endWithNumber));
        }
        return 0;
    };
    EXPECT_EQ(2, dialog.Run(endWithNumber, &child));
    EXPECT_EQ(3, nRuns);
    EXPECT_FALSE(dialog.IsActive());
}

TEST(Dialog, AnswersWhatCannotRun)
{
    const auto expectNone = [](CCUIDialog &dialog, int nResult) {
        EXPECT_EQ(nResult, dialog.DoModal(nullptr));
        EXPECT_EQ(nullptr, dialog.DoModeless(nullptr));
        EXPECT_EQ(nullptr, dialog.Create(nullptr));
        EXPECT_FALSE(dialog.IsActive());
    };
    CTestDialog missing("no such template"), nameless(nullptr), dialog;
    expectNone(missing, IDCANCEL);
    expectNone(nameless, 0);
    {
        // A resource that is cut short: the system would read on behind it.
        const CImportHook size("SizeofResource", CutSize);
        CTestDialog cut;
        cut.m_inLoop = End(9);
        expectNone(cut, IDCANCEL);
    }
    // No hook waits for the next window.
    const CTestWindow window;
    EXPECT_EQ(&window, CCUIWindow::FromHandle(window));
    // A dialog that runs does not run twice.
    CReports reports;
    const auto runAgain = [](CTestDialog &running) {
        EXPECT_EQ(IDCANCEL, running.DoModal(nullptr));
        EXPECT_EQ(nullptr, running.DoModeless(nullptr));
        EXPECT_EQ(nullptr, running.Create(nullptr));
        running.EndDialog(9);
    };
    EXPECT_EQ(9, dialog.Run(runAgain));
    EXPECT_EQ(std::vector<std::string>(3, "Dialog: m_hWnd == 0"), reports.Asserts());
}

TEST(Dialog, DisablesTheOwnersAndGivesThemBack)
{
    CTestWindow frame, popup(frame, WS_POPUP | WS_VISIBLE), child(popup, WS_CHILD | WS_VISIBLE);
    const auto enabled = [&] {
        return Text("%d %d", IsWindowEnabled(frame), IsWindowEnabled(popup));
    };
    int nIdle = 0, nCancels = 0;
    popup.m_on[WM_ENTERIDLE] = [&] { return ++nIdle; };
    child.m_on[WM_CANCELMODE] = [&] { return ++nCancels; };
    CTestDialog dialog;
    ShowWindow(frame, SW_SHOWMINIMIZED);
    SetCapture(child);
    const auto look = [&](CTestDialog &running) {
        EXPECT_EQ(popup.GetHandle(), GetWindow(running, GW_OWNER));
        EXPECT_EQ("0 0", enabled());
        EXPECT_TRUE(running.IsActive());
        running.m_on[WM_APP] = [&] { return running.EndDialog(1), 0; };
        // After an idle pass, which tells the owner.
        popup.m_on[WM_ENTERIDLE] = [&] {
            ++nIdle;
            return PostMessageA(running, WM_APP, 0, 0);
        };
    };
    EXPECT_EQ(1, dialog.Run(look, &child));
    EXPECT_FALSE(IsIconic(frame));
    EXPECT_GT(nIdle, 0);
    EXPECT_EQ(1, nCancels);
    EXPECT_EQ("1 1", enabled());
    EXPECT_EQ(popup.GetHandle(), GetActiveWindow());

    // One that was disabled before stays so; one that is destroyed gives back too.
    EnableWindow(popup, FALSE);
    dialog.Run([](CTestDialog &running) { DestroyWindow(running); }, &child);
    EXPECT_EQ("1 0", enabled());
    EnableWindow(popup, TRUE);

    // So does one that does not hear of its end.
    CTestDialog deaf;
    deaf.m_on[WM_DESTROY] = [] { return 0; };
    EXPECT_EQ(IDCANCEL, deaf.Run([](CTestDialog &running) { DestroyWindow(running); }, &child));
    EXPECT_FALSE(deaf.IsActive());
    EXPECT_EQ("1 1", enabled());

    // A creation that fails leaves the owners enabled.
    CTestDialog("no such template").DoModal(&child);
    EXPECT_EQ("1 1", enabled());

    // An owner that goes takes the dialog along, and the run ends.
    EXPECT_EQ(IDCANCEL, dialog.Run([&](CTestDialog &) { popup.Destroy(); }, &child));
    EXPECT_TRUE(IsWindowEnabled(frame));
    // The desktop is no owner, and stays enabled.
    CTestWindow lone(GetDesktopWindow(), WS_CHILD);
    EXPECT_EQ(4, dialog.Run(End(4), &lone));
    EXPECT_TRUE(IsWindowEnabled(GetDesktopWindow()));
}

TEST(Dialog, RunsThreeDeepAndPassesQuitOn)
{
    CTestDialog outer, middle, inner;
    middle.m_onInit = [&](CTestDialog &running) { EXPECT_EQ(30, inner.Run(End(30), &running)); };
    const auto runMiddle = [&](CTestDialog &running) {
        EXPECT_EQ(20, middle.Run(End(20), &running));
        EXPECT_TRUE(IsWindowEnabled(running));
        running.EndDialog(10);
    };
    EXPECT_EQ(10, outer.Run(runMiddle));

    middle.m_onInit = [](CTestDialog &) {};
    const auto quitMiddle = [&](CTestDialog &running) {
        EXPECT_EQ(IDCANCEL, middle.Run([](CTestDialog &) { PostQuitMessage(5); }, &running));
        EXPECT_TRUE(middle.Exist());
        middle.Destroy();
    };
    EXPECT_EQ(IDCANCEL, outer.Run(quitMiddle));
    outer.Destroy();
    MSG msg;
    do {
        ASSERT_TRUE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE));
    } while (msg.message == WM_NULL);
    EXPECT_EQ(UINT(WM_QUIT), msg.message);
    EXPECT_FALSE(PeekMessageA(&msg, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
}

TEST(Dialog, StandsItsOwnDeathWhereverItComes)
{
    class CDying : public CTestDialog
    {
        void OnCancel() override { delete this; }
    };
    CReports reports;
    const CTestDialog::Step die = [](CTestDialog &running) { delete &running; };
    EXPECT_EQ(IDCANCEL, (new CTestDialog)->Run(die));
    EXPECT_EQ(std::vector<std::string>{"Window: !m_bDead"}, reports.Asserts());
    EXPECT_EQ(IDCANCEL, (new CDying)->Run(CancelFromAThread));
    // In handlers of its owner and of the window above, which are restored, disabled and given
    // back; or it only ends in them.
    const CTestDialog::Step close = [](CTestDialog &running) { DestroyWindow(running); };
    const struct
    {
        bool bAbove;
        UINT message;
        WPARAM wParam;
        CTestDialog::Step act, inLoop;
        int nResult;
    } cases[] = {
        {true, WM_ENABLE, FALSE, die, nullptr, IDCANCEL},
        {true, WM_SIZE, SIZE_RESTORED, die, nullptr, IDCANCEL},
        {false, WM_CANCELMODE, 0, die, nullptr, IDCANCEL},
        {false, WM_ENABLE, FALSE, die, nullptr, IDCANCEL},
        {false, WM_CANCELMODE, 0, End(5), nullptr, 5},
        {false, WM_ENABLE, FALSE, End(5), nullptr, 5},
        {false, WM_ENABLE, TRUE, die, End(6), IDCANCEL},
        {false, WM_ENABLE, TRUE, die, close, IDCANCEL},
    };
    for (const auto &one : cases) {
        CTestWindow above(nullptr, WS_POPUP | WS_VISIBLE), owner(above, WS_POPUP | WS_VISIBLE);
        ShowWindow(above, SW_SHOWMINIMIZED);
        auto *dialog = new CTestDialog;
        CTestWindow &told = one.bAbove ? above : owner;
        int nTold = 0;
        told.m_on[one.message] = [&] {
            if (told.m_wParam == one.wParam && ++nTold == 1)
                one.act(*dialog);
            return 0;
        };
        EXPECT_EQ(one.nResult, dialog->Run(one.inLoop, &owner));
        EXPECT_TRUE(nTold && IsWindowEnabled(above) && IsWindowEnabled(owner)) << &one - cases;
        if (one.nResult == 5)
            delete dialog;
    }
}

TEST(Dialog, MakesModelessOnesWithoutDisablingAnybody)
{
    const CTestWindow frame;
    CTestDialog popup, child(MAKEINTRESOURCEA(501)), made;
    const HWND hPopup = popup.DoModeless(CCUIWindow::FromHandle(frame));
    EXPECT_EQ(hPopup, popup.GetHandle());
    EXPECT_EQ(frame.GetHandle(), GetWindow(hPopup, GW_OWNER));
    EXPECT_TRUE(IsWindowEnabled(frame) && IsWindowVisible(hPopup));
    ASSERT_TRUE(child.DoModeless(&popup));
    EXPECT_EQ(hPopup, GetParent(child));
    ASSERT_TRUE(made.Create(frame));
    EXPECT_FALSE(IsWindowVisible(made));
    popup.OnCancel();
    EXPECT_FALSE(IsWindow(hPopup) || child.Exist());
}

TEST(Dialog, ExchangesDataAndTracksWhatTheUserChanges)
{
    CTestDialog dialog;
    dialog.SetAutoMakeDirty(true);
    dialog.m_onExchange = [&](unsigned short) {
        SetDlgItemTextA(dialog, 1001, "put");
        return 1;
    };
    ASSERT_TRUE(dialog.DoModeless(nullptr));
    EXPECT_EQ("to ", dialog.m_record);
    EXPECT_TRUE(dialog.IsDataValid());
    EXPECT_FALSE(dialog.IsDirty());  // the exchange itself is no change
    EXPECT_EQ(GetDlgItem(dialog, 1001), dialog.GetFirstControl());  // 1000 is disabled

    const DialogControlType types[] = {DialogControlTreeView, DialogControlListView,
                                       DialogControlTab, DialogControlDatePicker};
    for (unsigned i = 0; i < 4; ++i)
        dialog.RegisterControl(nullptr, 1100 + i, types[i]);
    const auto change = [&](unsigned nID, UINT nCode) {
        dialog.SetDirty(false);
        const HWND hControl = GetDlgItem(dialog, static_cast<int>(nID));
        NMHDR header = {hControl, nID, nCode};
        if (nID < 1100)
            SendMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(MAKELONG(nID, nCode)),
                         reinterpret_cast<LPARAM>(hControl));
        else
            SendMessageA(dialog, WM_NOTIFY, nID, reinterpret_cast<LPARAM>(&header));
        return dialog.IsDirty();
    };
    const struct
    {
        unsigned nID;
        UINT nCode;
        bool bDirty;
    } changes[] = {
        {1001, EN_CHANGE, true},        {1001, EN_SETFOCUS, false},
        {1002, LBN_SELCHANGE, true},    {1003, CBN_SELCHANGE, true},
        {1003, CBN_EDITCHANGE, true},   {1003, CBN_DROPDOWN, false},
        {1004, BN_CLICKED, true},       {1005, BN_CLICKED, false},  // a push button holds nothing
        {1100, TVN_SELCHANGEDA, true},  {1100, TVN_ITEMEXPANDEDA, false},
        {1101, LVN_ITEMCHANGED, true},  {1102, TCN_SELCHANGE, true},
        {1102, TCN_SELCHANGING, false}, {1103, DTN_DATETIMECHANGE, true},
    };
    for (const auto &one : changes)
        EXPECT_EQ(one.bDirty, change(one.nID, one.nCode)) << one.nID << " " << one.nCode;
    dialog.SetControlAutoMakeDirty(1001, false);
    EXPECT_FALSE(change(1001, EN_CHANGE));
    CCUIControlInfo info = {};
    EXPECT_EQ(1, dialog.GetControlInfo(1003, info));
    EXPECT_EQ(DialogControlComboBox, info.type);
    dialog.UnRegisterControl(1003);
    EXPECT_EQ(0, dialog.GetControlInfo(1003, info));
    EXPECT_FALSE(change(1003, CBN_SELCHANGE));

    dialog.m_record.clear();
    dialog.SetDirty(true);
    dialog.SetDirty(true);
    EXPECT_EQ("Dirty ", dialog.m_record);
    dialog.m_onExchange = [](unsigned short) { return 0; };
    dialog.OnOK();
    EXPECT_TRUE(dialog.Exist());  // data that cannot be taken keeps it open
    EXPECT_FALSE(dialog.IsDataValid());
    dialog.m_onExchange = [](unsigned short) { return 1; };
    CCUString sCode("Sideways");
    EXPECT_EQ(0, dialog.UpdateData(sCode));
    dialog.OnOK();
    EXPECT_FALSE(dialog.Exist() || dialog.IsDirty());
    EXPECT_EQ("Dirty from from ", dialog.m_record);
}

TEST(Dialog, TellsWhichControlFailedAndGoesThere)
{
    CTestDialog dialog;
    ASSERT_TRUE(dialog.DoModeless(nullptr));
    SetDlgItemTextA(dialog, 1001, "wrong");
    SetFocus(GetDlgItem(dialog, 1004));
    // The box's own loop serves the timer that closes it.
    SetTimer(dialog, 1, 10, nullptr);
    dialog.m_on[WM_TIMER] = [&] {
        const HWND hBox = GetLastActivePopup(dialog);
        return hBox == dialog ? 0 : PostMessageA(hBox, WM_COMMAND, IDOK, 0);
    };
    CCUString sMessage("Not a number.");
    EXPECT_EQ(0, dialog.ExchangeFail(1001, sMessage));
    EXPECT_EQ(GetDlgItem(dialog, 1001), GetFocus());
    EXPECT_EQ(MAKELONG(0, 5), SendDlgItemMessageA(dialog, 1001, EM_GETSEL, 0, 0));
}

TEST(Dialog, PaintsItsColour)
{
    CTestDialog dialog;
    EXPECT_EQ(CUIGetWinData()->crSys[COLOR_BTNFACE], dialog.GetColor());
    dialog.SetColor(RGB(10, 200, 30));
    ASSERT_TRUE(dialog.DoModeless(nullptr));
    const HDC hDC = GetDC(dialog);
    const auto brushColor = [&](UINT message) {
        LOGBRUSH brush = {};
        const LRESULT result = SendMessageA(dialog, message, reinterpret_cast<WPARAM>(hDC), 0);
        GetObjectA(reinterpret_cast<HBRUSH>(result), sizeof brush, &brush);
        return brush.lbColor;
    };
    EXPECT_EQ(RGB(10, 200, 30), brushColor(WM_CTLCOLORDLG));
    EXPECT_EQ(RGB(10, 200, 30), brushColor(WM_CTLCOLORSTATIC));
    EXPECT_EQ(RGB(10, 200, 30), GetBkColor(hDC));
    // A system colour is what the system says now.
    dialog.SetColor(CUIGetWinData()->crSys[COLOR_BTNFACE]);
    const CSysColors colors;
    EXPECT_EQ(GetSysColor(COLOR_BTNFACE), brushColor(WM_CTLCOLORDLG));
    ReleaseDC(dialog, hDC);
}

TEST(Dialog, TakesTheIdThatUnicodeMakesWide)
{
    CReports reports;
    const HINSTANCE hModule = GetModuleHandleA(nullptr);
    SIZE size = {}, expected = {};
    EXPECT_EQ(1, CCUIDialogTemplate(hModule, MAKEINTRESOURCEA(500)).GetSizeInPixels(expected));
    EXPECT_EQ(1, CCUIDialog(hModule, MAKEINTRESOURCEW(500)).GetSizeInPixels(size));
    EXPECT_TRUE(size.cx == expected.cx && size.cy == expected.cy);
    EXPECT_EQ(1, CCUIDialogTemplate(hModule, MAKEINTRESOURCEW(500)).GetSizeInPixels(size));
    EXPECT_EQ("IS_INTRESOURCE(pszName)", reports.Of("ResourceName", [&] {
        EXPECT_EQ(0, CCUIDialog(hModule, L"text").DoModal(nullptr));
    }));
}
