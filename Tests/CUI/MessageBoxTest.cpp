// Message boxes: beside the system's own, driven from a message that the loop of either gives their
// owner.

#include "CUI/MessageBox.h"
#include "Support/FakeClock.h"
#include "Support/GdiCount.h"
#include "Support/ImportHook.h"
#include "Support/PixelMap.h"
#include "Support/Reports.h"
#include "Support/TestSettings.h"
#include "Support/TestWindow.h"

namespace {

using Act = std::function<void(HWND)>;

// The window in front of the owner, once it has the focus: that the box before had it the screen
// may tell late.
HWND FocusedBox(HWND owner)
{
    const HWND hBox = GetLastActivePopup(owner);
    EXPECT_TRUE(PumpUntil([=] {
        return IsChild(hBox, GetFocus()) || (SetForegroundWindow(hBox), IsChild(hBox, GetFocus()));
    }));
    return hBox;
}

// Shows a box, has `act` called once when it is there, and returns its answer.
int Ask(const std::function<int(CCUIWindow *)> &show, const Act &act)
{
    CTestWindow owner(nullptr, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    owner.m_on[WM_APP] = [&] { return act(FocusedBox(owner)), 0; };
    PostMessageA(owner, WM_APP, 0, 0);
    return show(&owner);
}
int Ask(CCUIMessageBox &box, const Act &act)
{
    return Ask([&](CCUIWindow *pOwner) { return box.DoModal(pOwner); }, act);
}
int Ask(UINT nFlags, const Act &act)
{
    return Ask([=](CCUIWindow *p) { return CUIMessageBox(p, "text", "title", nFlags); }, act);
}

// From the left to the right, with what has the focus.
std::map<int, HWND> ButtonsOf(HWND hBox)
{
    std::map<int, HWND> buttons;
    for (HWND h = GetWindow(hBox, GW_CHILD); h; h = GetWindow(h, GW_HWNDNEXT)) {
        if (SendMessageA(h, WM_GETDLGCODE, 0, 0) & (DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON))
            buttons[RectOf(h).left] = h;
    }
    return buttons;
}
std::string Describe(HWND hBox)
{
    std::string all = TextOf(hBox) + ": " + TextOf(GetDlgItem(hBox, 0xFFFF));
    for (const auto &[x, hButton] : ButtonsOf(hBox))
        all += (hButton == GetFocus() ? " *" : " ") + TextOf(hButton);
    return all;
}
Act Click(int nIndex)
{
    return [=](HWND hBox) {
        const HWND hButton = std::next(ButtonsOf(hBox).begin(), nIndex)->second;
        PostMessageA(hButton, BM_CLICK, 0, 0);
    };
}
Act Press(WPARAM nKey)
{
    return [=](HWND) { PostMessageA(GetFocus(), WM_KEYDOWN, nKey, 1); };
}

}  // namespace

TEST(MessageBoxes, AnswersAsTheSystemsDoes)
{
    const int COUNTS[] = {1, 2, 3, 3, 2, 2, 3};
    for (UINT nSet = MB_OK; nSet <= 6; ++nSet) {
        for (int i = 0; i < COUNTS[nSet]; ++i) {
            const UINT nFlags = nSet | static_cast<UINT>(i) << 8;
            std::string shown;
            const auto click = [&](HWND hBox) {
                shown += Describe(hBox) + "; ";
                Click(i)(hBox);
            };
            const auto system = [=](HWND h) { return MessageBoxA(h, "text", "title", nFlags); };
            EXPECT_EQ(Ask([=](CCUIWindow *p) { return system(*p); }, click), Ask(nFlags, click));
            const size_t nHalf = shown.size() / 2;
            EXPECT_EQ(shown.substr(0, nHalf), shown.substr(nHalf));
        }
    }
}

TEST(MessageBoxes, IsCancelledWhereThereIsACancelButton)
{
    for (const UINT message : {UINT{WM_KEYDOWN}, UINT{WM_CLOSE}}) {
        const Act close = [=](HWND hBox) { PostMessageA(hBox, message, VK_ESCAPE, 1); };
        EXPECT_EQ(IDOK, Ask(MB_OK | MB_HELP, close));
        EXPECT_EQ(IDCANCEL, Ask(MB_YESNOCANCEL, close));
        EXPECT_EQ(IDNO, Ask(MB_YESNO, [&](HWND hBox) {
                      EXPECT_EQ(-1, int(GetMenuState(GetSystemMenu(hBox, FALSE), SC_CLOSE, 0)));
                      close(hBox);
                      PumpWaiting();
                      EXPECT_TRUE(IsWindow(hBox));
                      Click(1)(hBox);
                  }));
    }
    // The owner goes and takes the box along.
    ExpectNoGdiLeft(40, [] {
        EXPECT_EQ(IDCANCEL, Ask(MB_ICONHAND, [](HWND hBox) {
                      CCUIWindow::FromHandle(GetWindow(hBox, GW_OWNER))->Destroy();
                  }));
    });
    // From outside, by the owner; and with a cancel button of another number.
    const auto abort = [](HWND hBox) { CCUIWindow::AbortDialog(GetWindow(hBox, GW_OWNER)); };
    EXPECT_EQ(IDNO, Ask(MB_YESNO, abort));
    CCUIMessageBox box("text", "title", MB_YESNO);
    ASSERT_TRUE(box.AddButton(IDOK, "&Now"));
    box.AddButton(101, "&Later");
    box.SetCancelButton(101);
    EXPECT_EQ(101, Ask(box, Press(VK_ESCAPE)));
    EXPECT_EQ(IDOK, Ask(box, Press('N')));
}

TEST(MessageBoxes, IsAsLargeAsItsTextNeedsAndTheScreenAllows)
{
    std::string words;
    for (int i = 0; i < 60; ++i)
        words += "Several words, andonethatislonger. ";
    std::string lines;
    for (int i = 0; i < 2000; ++i)
        lines += "line\n";
    const RECT work = WorkArea();
    for (const std::string &text :
         {std::string("\"Fox\" was replaced."), words, std::string(900, 'x'), lines})
    {
        const bool bRight = text == words, bShort = text.size() < 99;
        CCUIMessageBox box(text.c_str(), std::string(bShort ? 99 : 1, 'W').c_str(),
                           MB_YESNOCANCEL | MB_ICONHAND | (bRight ? MB_RIGHT | MB_RTLREADING : 0));
        box.SetDontAsk("size", text == lines ? nullptr : text.c_str());
        for (int nID = 100; bRight && nID < 107; ++nID)
            box.AddButton(nID, std::string(30, 'm').c_str());  // in several rows
        box.SetCancelButton(100);
        Ask(box, [&](HWND hBox) {
            const RECT rect = RectOf(hBox);
            const RECT client = ClientOf(hBox);
            RECT both;
            EXPECT_TRUE(UnionRect(&both, &rect, &work) && EqualRect(&both, &work));
            for (HWND h = GetWindow(hBox, GW_CHILD); h; h = GetWindow(h, GW_HWNDNEXT)) {
                const RECT child = RectOf(h);
                EXPECT_TRUE(UnionRect(&both, &client, &child) && EqualRect(&both, &client));
                for (HWND hNext = h; (hNext = GetWindow(hNext, GW_HWNDNEXT)) != nullptr;) {
                    const RECT next = RectOf(hNext);
                    EXPECT_FALSE(IntersectRect(&both, &child, &next));
                }
            }
            const std::map<int, HWND> buttons = ButtonsOf(hBox);
            const LONG nRight = RectOf(buttons.rbegin()->second).right;
            EXPECT_NEAR(client.right - nRight, buttons.begin()->first, 1) << "not in the middle";
            const HWND hText = GetDlgItem(hBox, 0xFFFF);
            const RECT rcText = RectOf(hText), rcIcon = RectOf(GetDlgItem(hBox, 0xF001));
            const LONG nHigher = std::max(rcText.bottom - rcText.top, rcIcon.bottom - rcIcon.top);
            EXPECT_NEAR(2 * rcIcon.top + nHigher, rcText.top + rcText.bottom, 1);
            EXPECT_EQ(bRight || text == lines, rcText.right == client.right - rcIcon.left);
            EXPECT_EQ(bRight, (GetWindowLongA(hText, GWL_EXSTYLE) & WS_EX_RTLREADING) != 0);
            const bool bScrolls = (GetWindowLongA(hText, GWL_STYLE) & WS_VSCROLL) != 0;
            EXPECT_EQ(text == lines, bScrolls);
            RECT place = ClientOf(hText);
            const auto draw = [&](UINT nMore) {
                CTestSurface surface(CPixelMap(place.right + 9, place.bottom + 9, 0xFFFFFF));
                SelectObject(surface, HGDIOBJ(SendMessageA(hText, WM_GETFONT, 0, 0)));
                DrawTextA(surface, text.c_str(), -1, &place, DT_WORDBREAK | DT_EDITCONTROL | nMore);
                return surface.Read();
            };
            EXPECT_EQ(!bScrolls, draw(DT_NOCLIP) == draw(0)) << "something sticks out";
            const LONG nCheck = ClientOf(GetDlgItem(hBox, 0xF000)).right;
            EXPECT_TRUE(!bShort || place.right + GetSystemMetrics(SM_CXMENUCHECK) <= nCheck);
            EXPECT_TRUE(!bShort || rect.right - rect.left >= work.right / 2) << "its title";
            Press(VK_NEXT)(hBox);
            PumpWaiting();
            EXPECT_EQ(bScrolls, SendMessageA(hText, EM_GETFIRSTVISIBLELINE, 0, 0) > 0);
            SendMessageA(hBox, 0x020A, MAKEWPARAM(0, 120 * 99), 0);  // the wheel
            EXPECT_EQ(0, SendMessageA(hText, EM_GETFIRSTVISIBLELINE, 0, 0));
            Press(VK_ESCAPE)(hBox);
        });
    }
}

TEST(MessageBoxes, KeepsAnAnswerThatTheUserWantsKept)
{
    const CTestSettings settings;
    const auto ask = [](int nButton, bool bCheck, UINT nFlags = MB_YESNOCANCEL) {
        CCUIMessageBox box("text", "title", nFlags);
        box.SetDontAsk("question");
        return Ask(box, [=](HWND hBox) {
            if (bCheck)
                SendMessageA(GetDlgItem(hBox, 0xF000), BM_CLICK, 0, 0);
            Click(nButton)(hBox);
        });
    };
    EXPECT_EQ(IDCANCEL, ask(2, true));  // is no answer
    EXPECT_EQ(IDYES, ask(0, false));
    EXPECT_EQ(IDNO, ask(1, true));
    EXPECT_EQ(IDNO, ask(0, false));        // not shown any more
    EXPECT_EQ(IDOK, ask(0, true, MB_OK));  // has no such button; its only one is an answer
    EXPECT_EQ(IDOK, ask(1, false, MB_OKCANCEL));
    EXPECT_EQ(1, CUIForgetAnswer("question"));
    EXPECT_EQ(IDYES, ask(0, true));
    EXPECT_EQ(1, CUIForgetAnswer());
    EXPECT_EQ(IDNO, ask(1, false));
}

TEST(MessageBoxes, CountsDownUntilTheUserTouchesIt)
{
    CCUIMessageBox box("text", "title", MB_YESNO);
    CFakeClock clock;
    const auto pass = [&](DWORD nTime) {
        clock.Jump(nTime);
        box.TimeOut(0);
        PumpWaiting();
    };
    for (const int nTouch : {0, WM_KEYDOWN, WM_SYSKEYDOWN, WM_LBUTTONDOWN, WM_RBUTTONDOWN, 0x020A})
    {
        const bool bTouch = nTouch != 0;
        box.SetCountdown(5);
        const int nAnswer = Ask(box, [&](HWND hBox) {
            pass(2100);
            EXPECT_EQ("title: text *&Yes (3) &No", Describe(hBox));
            PostMessageA(GetDlgItem(hBox, 0xFFFF), UINT(nTouch), VK_SHIFT, 1);
            pass(0);
            EXPECT_EQ(bTouch, Describe(hBox) == "title: text *&Yes &No");
            pass(3000);
            if (bTouch)
                Click(1)(hBox);
        });
        EXPECT_EQ(bTouch ? IDNO : IDYES, nAnswer);
    }
}

TEST(MessageBoxes, SpeaksAsTheProgramDoesAndCopiesItselfInTheSystemsForm)
{
    CCUIMessageBox box("One\nTwo", "Title");
    box.AddButton(IDCLOSE);
    box.AddButton(20, "&More");
    box.SetDefaultButton(20);
    const HICON hIcon = LoadIconA(nullptr, IDI_QUESTION);
    box.SetIcon(hIcon);
    box.SetDontAsk("texts", "Nie &mehr");
    Ask(box, [&](HWND hBox) {
        EXPECT_EQ("Title: One\nTwo S&chluss *&More", Describe(hBox));
        EXPECT_EQ(hIcon, HICON(SendDlgItemMessageA(hBox, 0xF001, STM_GETICON, 0, 0)));
        HoldKey(VK_CONTROL);
        Press('C')(hBox);
        PumpWaiting();
        HoldKey(0);
        Press(VK_RETURN)(hBox);
    });
    ASSERT_TRUE(OpenClipboard(nullptr));
    const std::string line(27, '-');
    EXPECT_EQ(line + "\r\nTitle\r\n" + line + "\r\nOne\r\nTwo\r\n" + line +
                  "\r\nSchluss   More   \r\n" + line + "\r\n",
              static_cast<const char *>(GlobalLock(GetClipboardData(CF_TEXT))));
    CloseClipboard();
}

TEST(MessageBoxes, ShowsIconHelpAndCaptionOfItsOwner)
{
    CTestWindow owner;
    const CFakeCall<BOOL(UINT)> beep(
        "MessageBeep", [&](UINT n) { return owner.m_told += Text("beep %u ", n), TRUE; });
    owner.m_on[WM_HELP] = [&] { return owner.m_told += "help", 0; };
    owner.m_on[WM_ENTERIDLE] = [&] {
        const HWND hBox = HWND(owner.m_lParam);
        EXPECT_EQ("test: text *OK Help", Describe(hBox));
        EXPECT_EQ(LoadIconA(nullptr, IDI_EXCLAMATION),
                  HICON(SendDlgItemMessageA(hBox, 0xF001, STM_GETICON, 0, 0)));
        EXPECT_TRUE(GetWindowLongA(hBox, GWL_EXSTYLE) & WS_EX_TOPMOST);
        SendMessageA(hBox, WM_COMMAND, IDHELP, 0);
        SendMessageA(hBox, WM_HELP, 0, 0);
        return Press(VK_ESCAPE)(hBox), 0;
    };
    EXPECT_EQ(IDOK,
              CUIMessageBox(&owner, "text", nullptr, MB_HELP | MB_ICONEXCLAMATION | MB_TOPMOST));
    EXPECT_EQ("beep 48 helphelp", owner.Told());
    // A message that cannot be shown is not lost.
    const CDumped trace;
    const CFakeCall<HWND(HINSTANCE, const DLGTEMPLATE *, HWND, DLGPROC, LPARAM)> none(
        "CreateDialogIndirectParamA", [](auto...) { return nullptr; });
    EXPECT_EQ(IDCANCEL, CUIMessageBox(&owner, "lost", nullptr, MB_OK));
    EXPECT_NE(std::string::npos, trace.m_text.find(": lost\n"));
    EXPECT_TRUE(IsWindowEnabled(owner));
}
