#pragma once

#include "CUI/FrameWindow.h"
#include "CUI/Settings.h"
#include "Support/TestWindow.h"

// Settings of the test's own, gone with the object.
class CTestSettings
{
public:
    CTestSettings() { CUISetSettingsKey("Software\\CUITests\\Frame"); }
    ~CTestSettings()
    {
        CUISetSettingsKey(nullptr);
        CCURegistry(HKEY_CURRENT_USER, "Software\\CUITests", false).DeleteKey("Frame");
    }
    static std::string Get(const char *value)
    {
        CCUString sText;
        CCURegistry(HKEY_CURRENT_USER, "Software\\CUITests\\Frame\\Test").GetString(value, sText);
        return sText.GetString();
    }
    static void Set(const char *value, const std::string &text)
    {
        CCURegistry(HKEY_CURRENT_USER, "Software\\CUITests\\Frame\\Test", false)
            .SetString(value, text.c_str());
    }
};

// A frame that writes down what it is asked; it eats the WM_QUIT that its end posts.
class CTestFrame : public CScripted<CCUIFrameWindow>
{
public:
    CTestFrame()
    {
        CreateEx(0, nullptr, "Program", WS_OVERLAPPEDWINDOW, 40, 50, 400, 300, nullptr, nullptr);
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
    void OnOpenFile(const CCUString &sPath) override { m_asked += std::string(sPath) + "|"; }
    bool QueryClose() override { return m_asked += "close?", m_onQuery(); }

    std::string m_asked;
    std::function<bool()> m_onQuery = [] { return true; };
};
