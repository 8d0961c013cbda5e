#pragma once

#include "CUI/Dialog.h"
#include "Window/TextField.h"

// A text of several lines, with '\n' between them, to be edited.
class CTextDialog : public CCUIDialog
{
public:
    explicit CTextDialog(const CCUString &sText);
    ~CTextDialog() override;

    const CCUString &Text() const { return m_sText; }

protected:
    int OnInitDialog(HWND hFocus, LPARAM lParam) override;
    int ExchangeData(unsigned short nDirection) override;

private:
    CCUString m_sText;
    CTextField m_edit;
};
