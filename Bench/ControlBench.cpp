// Own-drawn controls: what they cost while nothing changes, and what a painting takes.
#include <stdio.h>
#include <stdlib.h>

#include <deque>

#include "Bench.h"
#include "CUI/Button.h"
#include "CUI/CommandHandler.h"
#include "CUI/CommandMap.h"
#include "CUI/Data.h"
#include "CUI/Draw.h"

namespace {

const unsigned int FIRST_ID = 1000;
const int BUTTONS = 200;

class CPlainCommand : public CCUICommandHandler
{
public:
    explicit CPlainCommand(unsigned int nID) : CCUICommandHandler(nID, 1) {}
    void HandleUpdate(unsigned int nID) override { m_nUpdates += nID; }

private:
    unsigned int m_nUpdates = 0;
};

// What most commands are: always enabled.
class CEnabledCommand final : public CPlainCommand
{
public:
    using CPlainCommand::CPlainCommand;
};

class CStateCommand final : public CPlainCommand
{
public:
    using CPlainCommand::CPlainCommand;
    unsigned short GetState(unsigned int) override { return m_nState; }

private:
    unsigned short m_nState = CUI_COMMAND_ACTIVE | CUI_COMMAND_CHECKED;
};

class CBenchWindow : public CCUIWindow
{
public:
    CBenchWindow()
    {
        const RECT rect = {0, 0, 400, 300};
        Create(nullptr, "Bench", WS_POPUP | WS_VISIBLE, rect, nullptr, 0);
    }
};

// Buttons in a window, each with a command of its own, and handlers.
template <typename Command>
struct CBar
{
    CBar()
    {
        for (int i = 0; i < BUTTONS; ++i) {
            const unsigned int nID = FIRST_ID + static_cast<unsigned int>(i);
            commands.emplace_back(nID);
            handlers.push_back(&commands.back());
            buttons.emplace_back();
            buttons.back().SetCommand(nID);
            const RECT rect = {i % 20 * 20, i / 20 * 20, i % 20 * 20 + 20, i / 20 * 20 + 20};
            buttons.back().CreateControl(window, nID, "A", &rect);
        }
        UpdateWindow(window);
        for (CCUIButton &button : buttons)
            UpdateWindow(button);
    }
    // A pass that repaints is no pass in which nothing changes.
    void CheckNoRepaint() const
    {
        for (const CCUIButton &button : buttons) {
            if (GetUpdateRect(button, nullptr, FALSE)) {
                fprintf(stderr, "An idle pass repaints buttons that have not changed.\n");
                exit(1);
            }
        }
    }

    CBenchWindow window;
    std::deque<Command> commands;
    std::vector<CCUICommandHandler *> handlers;
    std::deque<CCUIButton> buttons;
};

void CompareIdlePass()
{
    const CBar<CEnabledCommand> bar;
    BenchCompare(
        "idle pass, 200 unchanged buttons", CCUICommandMap::IdleUpdate, "loop of 200 virtual calls",
        [&] {
            for (CCUICommandHandler *handler : bar.handlers)
                handler->HandleUpdate(0);
        },
        1.5);
    bar.CheckNoRepaint();
}

// A GetState of the handlers' own must be asked before the update and after all updates.
void CompareIdlePassOfStates()
{
    const CBar<CStateCommand> bar;
    BenchCompare(
        "idle pass, 200 unchanged buttons with GetState", CCUICommandMap::IdleUpdate,
        "loop of 600 virtual calls",
        [&] {
            for (CCUICommandHandler *handler : bar.handlers) {
                BenchKeep(handler->GetState(0));
                handler->HandleUpdate(0);
                BenchKeep(handler->GetState(0));
            }
        },
        1.5);
    bar.CheckNoRepaint();
}

const char TEXT[] = "&Open";

// A button as a program would paint it that has measured the text before and keeps a DC in memory.
class CByHand : public CCUIControlWindow
{
public:
    CByHand(HWND hParent, HBITMAP hPicture, const SIZE &text) : m_hPicture(hPicture), m_text(text)
    {
        const RECT rect = {0, 100, 100, 130};
        Create(nullptr, "", WS_CHILD | WS_VISIBLE, rect, hParent, 2);
        const HDC hScreen = GetDC(nullptr);
        m_hMemory = CreateCompatibleDC(hScreen);
        m_hSource = CreateCompatibleDC(hScreen);
        SelectObject(m_hMemory, CreateCompatibleBitmap(hScreen, 100, 30));
        SetBkMode(m_hMemory, TRANSPARENT);
        ReleaseDC(nullptr, hScreen);
    }

protected:
    int OnEraseBkgnd(HDC) override { return 1; }
    void OnPaint(HDC) override
    {
        PAINTSTRUCT paint;
        BeginPaint(m_hWnd, &paint);
        RECT rect;
        GetClientRect(m_hWnd, &rect);
        SetBkColor(m_hMemory, GetSysColor(COLOR_BTNFACE));
        ExtTextOutA(m_hMemory, 0, 0, ETO_OPAQUE, &rect, nullptr, 0, nullptr);
        DrawEdge(m_hMemory, &rect, EDGE_RAISED, BF_RECT | BF_SOFT);
        const int cx = 16 + 5 + m_text.cx;
        const int x = (static_cast<int>(rect.right) - cx) / 2;
        const HGDIOBJ hOld = SelectObject(m_hSource, m_hPicture);
        BitBlt(m_hMemory, x, 7, 16, 16, m_hSource, 0, 0, SRCCOPY);
        SelectObject(m_hSource, hOld);
        const HGDIOBJ hOldFont = SelectObject(m_hMemory, CUIGetWinData()->hMenuFont);
        SetTextColor(m_hMemory, GetSysColor(COLOR_BTNTEXT));
        RECT text = {x + 21, 0, x + cx, rect.bottom};
        DrawTextA(m_hMemory, TEXT, -1, &text,
                  DT_SINGLELINE | DT_VCENTER | DT_CENTER | DT_END_ELLIPSIS);
        SelectObject(m_hMemory, hOldFont);
        const RECT &part = paint.rcPaint;
        BitBlt(paint.hdc, part.left, part.top, part.right - part.left, part.bottom - part.top,
               m_hMemory, part.left, part.top, SRCCOPY);
        EndPaint(m_hWnd, &paint);
    }

private:
    HBITMAP m_hPicture;
    SIZE m_text;
    HDC m_hMemory, m_hSource;
};

class CTextButton : public CCUIButton
{
public:
    using CCUIButton::GetTextSize;
};

void ComparePainting()
{
    const HDC hScreen = GetDC(nullptr);
    const CCUIBitmap picture(CreateCompatibleBitmap(hScreen, 16, 16), nullptr);
    ReleaseDC(nullptr, hScreen);
    CBenchWindow window;
    CTextButton button;
    button.SetPicture(picture);
    const RECT rect = {0, 0, 100, 30};
    button.CreateControl(window, 1, TEXT, &rect);
    CByHand byHand(window, picture, button.GetTextSize());
    const auto paint = [](HWND hWnd) {
        InvalidateRect(hWnd, nullptr, FALSE);
        UpdateWindow(hWnd);
    };
    BenchCompare(
        "paint a button with picture and text", [&] { paint(button); },
        "the same GDI calls by hand", [&] { paint(byHand); }, 1.1);
}

}  // namespace

BENCH_GROUP(Control)
{
    CompareIdlePass();
    CompareIdlePassOfStates();
    ComparePainting();
}
