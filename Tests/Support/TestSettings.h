#pragma once

#include <string>

#include "CUI/Settings.h"

// Settings of the test's own, gone with the object. Get and Set are about one of its sections.
class CTestSettings
{
public:
    CTestSettings()
    {
        Clear();  // of what a test left that was ended
        CUISetSettingsKey("Software\\CUITests\\Own");
    }
    ~CTestSettings()
    {
        CUISetSettingsKey(nullptr);
        Clear();
    }
    static std::string Get(const char *value)
    {
        CCUString sText;
        CCURegistry(HKEY_CURRENT_USER, "Software\\CUITests\\Own\\Test").GetString(value, sText);
        return sText.GetString();
    }
    static void Set(const char *value, const std::string &text)
    {
        CCURegistry(HKEY_CURRENT_USER, "Software\\CUITests\\Own\\Test", false)
            .SetString(value, text.c_str());
    }

private:
    static void Clear()
    {
        CCURegistry(HKEY_CURRENT_USER, "Software\\CUITests", false).DeleteKey("Own");
    }
};
