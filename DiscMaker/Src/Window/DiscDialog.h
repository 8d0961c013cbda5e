#pragma once

#include "CUI/Dialog.h"
#include "CUI/Edit.h"
#include "CUI/ProgressBar.h"
#include "CUI/Static.h"
#include "Disc/MakeDisc.h"

// Asks for the folders of a disc, makes it and shows how far that is.
class CDiscDialog : public CCUIDialog, private CDiscProgress
{
public:
    // sLauncher: any launcher, of which the disc's is made.
    CDiscDialog(const CSkin &skin, const CCUString &sLauncher, const CCUString &sContents);
    ~CDiscDialog() override;

    // As they were chosen at last.
    const CCUString &Contents() const { return m_sContents; }
    const CCUString &Out() const { return m_sOut; }
    // What MakeDisc said; IDOK of DoModal: there is a disc.
    const CProblems &Problems() const { return m_problems; }

protected:
    int OnInitDialog(HWND hFocus, LPARAM lParam) override;
    int ExchangeData(unsigned short nDirection) override;
    void OnCommand(UINT nCode, UINT nID, HWND hControl) override;
    void OnOK() override;
    void OnCancel() override;
    int OnQueryEndSession(UINT nReason) override;

private:
    bool OnProgress(ULONGLONG nDone, ULONGLONG nTotal, const CCUString &sFile) override;
    void Choose(CCUIEdit &field, const char *pszText);
    void EnableAll(bool bEnable);

    const CSkin m_skin;
    CCUString m_sLauncher;
    CCUString m_sContents;
    CCUString m_sOut;
    CProblems m_problems;
    CCUIEdit m_contents;
    CCUIEdit m_out;
    CCUIStatic m_state;
    CCUIProgressBar m_progress;
    bool m_bWorking = false;
    bool m_bStopped = false;
    bool m_bAsking = false;
};
