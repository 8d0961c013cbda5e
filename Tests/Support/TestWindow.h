#pragma once

#include <gtest/gtest.h>
#include <stdarg.h>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "CUI/Window.h"

using Texts = std::vector<std::string>;

const LONG MIRRORED = 0x00400000;  // WS_EX_LAYOUTRTL

// The top-level windows of the calling thread.
inline BOOL CALLBACK CountWindow(HWND, LPARAM lParam)
{
    return ++*reinterpret_cast<int *>(lParam);
}
inline int WindowCount()
{
    int nCount = 0;
    EnumThreadWindows(GetCurrentThreadId(), CountWindow, reinterpret_cast<LPARAM>(&nCount));
    return nCount;
}

// A plain framework window, hidden unless the style says otherwise.
inline bool CreateTestWindow(CCUIWindow &window, HWND hParent = nullptr,
                             DWORD style = WS_OVERLAPPEDWINDOW, const char *className = nullptr)
{
    return window.Create(className, "test", style, {10, 20, 210, 170}, hParent, 7) != 0;
}

// A window that is no object's.
inline HWND MakePlain(const char *pszClass = "STATIC", HWND hParent = nullptr, int nID = 0,
                      DWORD nMore = 0, const char *pszText = "text")
{
    return CreateWindowExA(0, pszClass, pszText, nMore | (hParent ? WS_CHILD : WS_POPUP), 0, 0, 9,
                           9, hParent, reinterpret_cast<HMENU>(nID), nullptr, nullptr);
}

// An object without a window yet that runs functions of the test in the place of its own handling
// of messages.
template <typename Base = CCUIWindow>
class CScripted : public Base
{
public:
    using Base::Base;
    CScripted() = default;

    std::map<UINT, std::function<long()>> m_on;
    WPARAM m_wParam = 0;  // of the message that a function last ran for
    LPARAM m_lParam = 0;
    std::string Told() { return std::exchange(m_told, ""); }
    std::string m_told;  // for the test to write down what happens

protected:
    long WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        const auto found = m_on.find(message);
        if (found == m_on.end())
            return Base::WindowProc(message, wParam, lParam);
        m_wParam = wParam;
        m_lParam = lParam;
        const std::function<long()> function = found->second;  // it may delete this
        return function();
    }
};

// One that comes with its window.
class CTestWindow : public CScripted<>
{
public:
    explicit CTestWindow(HWND hParent = nullptr, DWORD style = WS_OVERLAPPEDWINDOW,
                         const char *className = nullptr)
    {
        EXPECT_TRUE(CreateTestWindow(*this, hParent, style, className));
    }
};

// One that is shown, without a border.
struct CTestPopup : CTestWindow
{
    explicit CTestPopup(DWORD nMore = 0) : CTestWindow(nullptr, WS_POPUP | WS_VISIBLE | nMore) {}
};

inline long Send(HWND hWnd, UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
{
    return SendMessageA(hWnd, message, wParam, lParam);
}

inline void Click(HWND hWnd, int x = 2, int y = 2)
{
    Send(hWnd, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, y));
    Send(hWnd, WM_LBUTTONUP, 0, MAKELPARAM(x, y));
}

inline void Input(HWND hWnd, std::initializer_list<WPARAM> keys)
{
    for (const WPARAM nKey : keys)
        Send(hWnd, WM_KEYDOWN, nKey, 1);
}

// Handles what the thread has waiting, and no more.
inline void PumpWaiting()
{
    MSG msg;
    while (PeekMessageA(&msg, nullptr, 0, 0, PM_NOREMOVE))
        CCUIWindow::PumpMessage(&msg);
}

// Does so until something is the case, for a minute at most.
template <typename Condition>
bool PumpUntil(Condition condition)
{
    for (int nQuiet = 0; nQuiet < 6000 && !condition(); PumpWaiting())
        nQuiet += MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT) == WAIT_TIMEOUT;
    return condition();
}

inline RECT ClientOf(HWND hWnd)
{
    RECT rect = {};
    return GetClientRect(hWnd, &rect), rect;
}

// What the screen has beside the taskbar.
inline RECT WorkArea()
{
    RECT work = {};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
    return work;
}

inline std::string TextOf(HWND hWnd)
{
    std::string text(static_cast<size_t>(GetWindowTextLengthA(hWnd)) + 1, '\0');
    GetWindowTextA(hWnd, &text[0], static_cast<int>(text.size()));
    return text.c_str();
}

// A window's place: a child's in its parent's client area, another's on the screen.
inline RECT RectOf(HWND hWnd)
{
    RECT rect = {};
    GetWindowRect(hWnd, &rect);
    if (GetWindowLongA(hWnd, GWL_STYLE) & WS_CHILD)
        MapWindowPoints(nullptr, GetParent(hWnd), reinterpret_cast<POINT *>(&rect), 2);
    return rect;
}

// printf into a std::string.
std::string Text(const char *format, ...) CU_PRINTF(1, 2);
inline std::string Text(const char *format, ...)
{
    char szText[256];
    va_list args;
    va_start(args, format);
    vsnprintf(szText, sizeof szText, format, args);
    va_end(args);
    return szText;
}

inline std::string Of(const RECT &rc)
{
    return Text("%ld,%ld,%ld,%ld", rc.left, rc.top, rc.right, rc.bottom);
}
inline std::string PlaceOf(HWND hWnd)
{
    return Of(RectOf(hWnd));
}

// One key is held down, and no other; 0: none.
inline void HoldKey(int nKey)
{
    BYTE keys[256] = {};
    keys[nKey] = nKey ? 0x80 : 0;
    SetKeyboardState(keys);
}

// A key as the loop gets it, pressed in the window with the focus.
inline int PressKey(WPARAM nKey, HWND hWnd = GetFocus(), UINT message = WM_KEYDOWN)
{
    MSG msg = {hWnd, message, nKey, 1, 0, {}};
    return CCUIWindow::PerformPreTranslation(&msg);
}
