#pragma once

#include "CUI/Control.h"

// Says what the selected property is, and what is wrong with it.
class CNotePane : public CCUIControl
{
public:
    CNotePane();
    ~CNotePane() override;

    // In which faults are marked, here and beside it.
    static COLORREF FaultColor();

    void Show(const CCUString &sCaption, const CCUString &sHelp, const CCUString &sFault);

protected:
    void Paint(HDC hDC, const RECT &rect) override;
    UINT OnGetDlgCode(const MSG *pMsg) override;

private:
    CCUString m_sCaption;
    CCUString m_sHelp;
    CCUString m_sFault;
};
