#pragma once

#include <string>
#include <vector>

#include "CUI/Platform.h"

// Answers this thread's boxes of that title with these buttons in turn, the last one again and
// again, as long as it lives; of no title: all of its dialogs. A file chooser has its name some
// time after it is seen, and is asked again.
class CBoxAnswer
{
public:
    template <typename... Buttons>
    explicit CBoxAnswer(const char *pszTitle, Buttons... buttons)
        : m_nTimer(SetTimer(nullptr, 0, 100, OnTimer))
    {
        s_title = pszTitle;
        s_buttons = {static_cast<WPARAM>(buttons)...};
        s_nAsked = 0;
    }
    ~CBoxAnswer() { KillTimer(nullptr, m_nTimer); }
    CBoxAnswer(const CBoxAnswer &) = delete;
    CBoxAnswer &operator=(const CBoxAnswer &) = delete;
    int Asked() const { return s_nAsked; }

private:
    static void CALLBACK OnTimer(HWND, UINT, UINT_PTR, DWORD)
    {
        EnumThreadWindows(GetCurrentThreadId(), OnWindow, 0);
    }
    static BOOL CALLBACK OnWindow(HWND hWnd, LPARAM)
    {
        char szTitle[100] = "";
        GetWindowTextA(hWnd, szTitle, sizeof szTitle);
        const bool bDialog = GetClassLongA(hWnd, GCW_ATOM) == 32770;
        if (!IsWindowVisible(hWnd) || (s_title.empty() ? !bDialog : s_title != szTitle))
            return TRUE;
        const size_t nLast = s_buttons.size() - 1, nAsked = static_cast<size_t>(s_nAsked++);
        SendMessageA(hWnd, WM_COMMAND, s_buttons[nAsked < nLast ? nAsked : nLast], 0);
        return FALSE;
    }

    inline static std::string s_title;
    inline static std::vector<WPARAM> s_buttons;
    inline static int s_nAsked = 0;
    const UINT_PTR m_nTimer;
};
