#pragma once

#include "CUI/FrameWindow.h"
#include "Support/TestSettings.h"
#include "Support/TestWindow.h"

// A frame that writes down what it is asked; it eats the WM_QUIT that its end posts.
struct CTestFrame : CScripted<CCUIFrameWindow>
{
    explicit CTestFrame(DWORD style = WS_OVERLAPPEDWINDOW)
    {
        CreateEx(0, nullptr, "Program", style, 40, 50, 400, 300, nullptr, nullptr);
    }
    ~CTestFrame() override
    {
        m_on.clear();
        Destroy();
        TakeQuit();
    }
    static bool TakeQuit()
    {
        MSG msg;
        return PeekMessageA(&msg, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE) != 0;
    }
    void OnOpenFile(const CCUString &sPath) override { m_told += std::string(sPath) + "|"; }
    bool QueryClose() override { return m_told += "close?", m_onQuery(); }
    void OnSetWindowState(UINT nState) override { m_told += Text("state%u", nState); }
    void OnFullScreen(bool) override { m_onFull(); }

    std::function<bool()> m_onQuery = [] { return true; };
    std::function<void()> m_onFull = [] {};
};
