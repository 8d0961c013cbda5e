#pragma once

#include <stdlib.h>

#include "CUI/Button.h"
#include "CUI/Choosers.h"
#include "CUI/Data.h"
#include "CUI/Dialog.h"
#include "CUI/Settings.h"
#include "CUI/SpinButton.h"
#include "Resource.h"
#include "TextEdit.h"

// Find and replace: stays open beside the text. Its buttons are commands of the editor.
class CFindDialog : public CCUIDialog
{
public:
    CFindDialog() : CCUIDialog(GetModuleHandle(nullptr), MAKEINTRESOURCE(IDD_FIND))
    {
        RouteCommands(true);
    }
    void Open(CCUIWindow *pParent)
    {
        if (!Exist())
            DoModeless(pParent);
        SetForegroundWindow(*this);
        SetFocus(GetDlgItem(*this, IDC_WHAT));
    }
    void Close()
    {
        if (Exist())
            EndDialog(IDCANCEL);
    }
    // What stands in the fields, or stood there when it was closed.
    const CSearch &GetSearch()
    {
        if (Exist())
            UpdateData("FromScreen");
        return m_search;
    }

private:
    int OnInitDialog(HWND hFocus, LPARAM lParam) override
    {
        const auto bind = [this](CCUIButton &button, UINT nID) {
            button.ReplaceControl(*this, nID);
            button.SetCommand(nID);
        };
        bind(m_next, ID_FIND_NEXT);
        bind(m_replace, ID_REPLACE);
        bind(m_all, ID_REPLACE_ALL);
        CenterOnOwner();
        return CCUIDialog::OnInitDialog(hFocus, lParam);
    }
    int ExchangeData(unsigned short nDirection) override
    {
        return ExchangeText(nDirection, IDC_WHAT, m_search.sWhat) &&
               ExchangeText(nDirection, IDC_WITH, m_search.sWith) &&
               ExchangeCheck(nDirection, IDC_CASE, m_search.bCase) &&
               ExchangeCheck(nDirection, IDC_WORD, m_search.bWord);
    }

    CSearch m_search;
    CCUIButton m_next, m_replace, m_all;
};

// Asks for a line.
class CGoToDialog : public CCUIDialog
{
public:
    int m_nLine, m_nLines;

    CGoToDialog(int nLine, int nLines)
        : CCUIDialog(GetModuleHandle(nullptr), MAKEINTRESOURCE(IDD_GO_TO)),
          m_nLine(nLine),
          m_nLines(nLines)
    {
    }

private:
    int OnInitDialog(HWND hFocus, LPARAM lParam) override
    {
        CenterOnOwner();
        return CCUIDialog::OnInitDialog(hFocus, lParam);
    }
    int ExchangeData(unsigned short nDirection) override
    {
        return ExchangeInt(nDirection, IDC_LINE, m_nLine, 1, m_nLines);
    }
};

// What the editor keeps from run to run, and the dialog in which it is changed.
class COptions : public CCUIDialog
{
public:
    int m_nTabWidth = 8;
    int m_bWrap = 0;
    int m_bHeader = 1;

    COptions() : CCUIDialog(GetModuleHandle(nullptr), MAKEINTRESOURCE(IDD_OPTIONS))
    {
        lstrcpyA(m_font.lfFaceName, "Courier New");
    }

    // The font for so many pixels an inch: it is kept in points, for all screens and paper.
    LOGFONTA GetFont(int nPixelsPerInch) const
    {
        LOGFONTA font = m_font;
        font.lfHeight = -MulDiv(m_nPoints, nPixelsPerInch, 72);
        return font;
    }
    void Keep(bool bSave)
    {
        CCURegistry registry;
        if (!CUIOpenSettings(registry, "Options", !bSave))
            return;
        const auto keep = [&](const char *pszName, int &nValue) {
            bSave ? registry.SetInt(pszName, nValue) : registry.GetInt(pszName, nValue);
        };
        keep("TabWidth", m_nTabWidth);
        keep("Wrap", m_bWrap);
        keep("Header", m_bHeader);
        keep("Points", m_nPoints);
        LOGFONTA font = m_font;
        DWORD nSize = sizeof font;
        if (bSave)
            registry.SetBinary("LogFont", &font, nSize);
        else if (registry.GetBinary("LogFont", &font, nSize) && nSize == sizeof font)
            m_font = font;
    }

private:
    int OnInitDialog(HWND hFocus, LPARAM lParam) override
    {
        m_spin.Bind(*this, IDC_TAB_SPIN);
        m_spin.SetRange(1, 16);
        m_chosen = GetFont(CUIGetWinData()->cyPixelsPerInch);
        ShowFont();
        CenterOnOwner();
        return CCUIDialog::OnInitDialog(hFocus, lParam);
    }
    int ExchangeData(unsigned short nDirection) override
    {
        if (!ExchangeInt(nDirection, IDC_TAB, m_nTabWidth, 1, 16) ||
            !ExchangeCheck(nDirection, IDC_WRAP, m_bWrap) ||
            !ExchangeCheck(nDirection, IDC_HEADER, m_bHeader))
            return 0;
        if (nDirection == CUI_FROMSCREEN) {
            m_nPoints = GetChosenPoints();
            m_font = m_chosen;
        }
        return 1;
    }
    void OnCommand(UINT nCode, UINT nID, HWND hControl) override
    {
        if (nID != IDC_FONT)
            CCUIDialog::OnCommand(nCode, nID, hControl);
        else if (CUIChooseFont(this, m_chosen))
            ShowFont();
    }
    int GetChosenPoints() const
    {
        return MulDiv(abs(m_chosen.lfHeight), 72, CUIGetWinData()->cyPixelsPerInch);
    }
    void ShowFont()
    {
        CCUString sText;
        sText.Format("%s, %d points", m_chosen.lfFaceName, GetChosenPoints());
        SetDlgItemTextA(*this, IDC_FONT_NAME, sText);
    }

    LOGFONTA m_font = {};
    LOGFONTA m_chosen = {};
    int m_nPoints = 10;
    CCUISpinButton m_spin;
};
