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
        m_seconds.Bind(*this, IDC_SPIN);
        m_seconds.SetRange(1, 3600);
        m_repeat.ReplaceControl(*this, IDC_REPEAT);
        m_notify.ReplaceControl(*this, IDC_NOTIFY);
        return CCUIDialog::OnInitDialog(hFocus, lParam);
    }
    int ExchangeData(unsigned short nDirection) override
    {
        if (nDirection == CUI_TOSCREEN) {
            m_seconds.SetPos(m_nSeconds);
            m_repeat.SetCheck(m_bRepeat);
            m_notify.SetCheck(m_bNotify);
        } else {
            m_nSeconds = m_seconds.GetPos();
            m_bRepeat = m_repeat.GetCheck() == BST_CHECKED;
            m_bNotify = m_notify.GetCheck() == BST_CHECKED;
        }
        return 1;
    }

    CCUISpinButton m_seconds;
    CCUIButton m_repeat{CUI_BUTTON_CHECK}, m_notify{CUI_BUTTON_CHECK};
};
