#pragma once

#include "CUI/Button.h"
#include "CUI/Dialog.h"
#include "CUI/Settings.h"
#include "CUI/SpinButton.h"
#include "Resource.h"

// What the viewer keeps from run to run, and the dialog in which some of it is changed.
class COptions : public CCUIDialog
{
public:
    int m_nSeconds = 4;  // a picture in a slide show
    int m_bRepeat = 1;   // the slide show
    int m_bNotify = 0;   // the icon in the notification area
    int m_bList = 1;
    int m_cxList = 180;

    COptions() : CCUIDialog(GetModuleHandle(nullptr), MAKEINTRESOURCE(IDD_OPTIONS)) {}

    void Keep(bool bSave)
    {
        CCURegistry registry;
        CUIOpenSettings(registry, "Options", !bSave);
        const auto keep = [&](const char *pszName, int &nValue) {
            bSave ? registry.SetInt(pszName, nValue) : registry.GetInt(pszName, nValue);
        };
        keep("Seconds", m_nSeconds);
        keep("Repeat", m_bRepeat);
        keep("Notify", m_bNotify);
        keep("List", m_bList);
        keep("ListWidth", m_cxList);
    }

private:
    int OnInitDialog(HWND hFocus, LPARAM lParam) override
    {
        m_spin.Bind(*this, IDC_SPIN);
        m_spin.SetRange(1, 3600);
        m_repeat.ReplaceControl(*this, IDC_REPEAT);
        m_notify.ReplaceControl(*this, IDC_NOTIFY);
        CenterOnOwner();
        return CCUIDialog::OnInitDialog(hFocus, lParam);
    }
    int ExchangeData(unsigned short nDirection) override
    {
        return ExchangeInt(nDirection, IDC_SECONDS, m_nSeconds, 1, 3600) &&
               ExchangeCheck(nDirection, IDC_REPEAT, m_bRepeat) &&
               ExchangeCheck(nDirection, IDC_NOTIFY, m_bNotify);
    }

    CCUISpinButton m_spin;
    CCUIButton m_repeat{CUI_BUTTON_CHECK}, m_notify{CUI_BUTTON_CHECK};
};
