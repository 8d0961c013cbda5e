#include "Window/DiscDialog.h"

#include "CUI/Choosers.h"
#include "CUI/MessageBox.h"
#include "CUI/Settings.h"
#include "Window/Ids.h"

namespace {

const char *const SECTION = "Disc";
const char *const OUT_VALUE = "Out";
const int PARTS = 1000;

}  // namespace

CDiscDialog::CDiscDialog(const CSkin &skin, const CCUString &sLauncher, const CCUString &sContents)
    : CCUIDialog(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDD_DISC)),
      m_skin(skin),
      m_sLauncher(sLauncher),
      m_sContents(sContents)
{
    CCURegistry registry;
    if (CUIOpenSettings(registry, SECTION))
        registry.GetString(OUT_VALUE, m_sOut);
}

CDiscDialog::~CDiscDialog() = default;

int CDiscDialog::OnInitDialog(HWND hFocus, LPARAM lParam)
{
    m_contents.Bind(*this, IDC_CONTENTS);
    m_out.Bind(*this, IDC_OUT);
    m_state.Bind(*this, IDC_STATE);
    m_progress.Bind(*this, IDC_PROGRESS);
    m_progress.SetRange(0, PARTS);
    CenterOnOwner();
    return CCUIDialog::OnInitDialog(hFocus, lParam);
}

int CDiscDialog::ExchangeData(unsigned short nDirection)
{
    if (nDirection == CUI_TOSCREEN) {
        m_contents.SetText(m_sContents);
        m_out.SetText(m_sOut);
        return 1;
    }
    m_sContents = m_contents.GetText();
    m_sOut = m_out.GetText();
    CCUString sMessage = m_sContents.IsEmpty() ? "Which folder holds what shall be on the disc?"
                                               : "Which folder shall become the disc?";
    if (m_sContents.IsEmpty())
        return ExchangeFail(IDC_CONTENTS, sMessage);
    return m_sOut.IsEmpty() ? ExchangeFail(IDC_OUT, sMessage) : 1;
}

void CDiscDialog::Choose(CCUIEdit &field, const char *pszText)
{
    CCUString sFolder = field.GetText();
    if (CUIChooseFolder(this, sFolder, pszText))
        field.SetText(sFolder);
}

void CDiscDialog::OnCommand(UINT nCode, UINT nID, HWND hControl)
{
    switch (nID) {
    case IDC_CHOOSE_CONTENTS: Choose(m_contents, "What the disc holds beside the launcher:"); break;
    case IDC_CHOOSE_OUT: Choose(m_out, "The folder that becomes the disc:"); break;
    default: CCUIDialog::OnCommand(nCode, nID, hControl);
    }
}

void CDiscDialog::EnableAll(bool bEnable)
{
    for (const int nID : {IDC_CONTENTS, IDC_CHOOSE_CONTENTS, IDC_OUT, IDC_CHOOSE_OUT, IDOK})
        EnableWindow(GetDlgItem(*this, nID), bEnable);
}

void CDiscDialog::OnOK()
{
    CCUString sCode = "FromScreen";
    if (m_bWorking || !UpdateData(sCode))
        return;
    CCURegistry registry;
    if (CUIOpenSettings(registry, SECTION, false))
        registry.SetString(OUT_VALUE, m_sOut);
    CWatch watch(this);
    m_bWorking = true;
    m_bStopped = false;
    EnableAll(false);
    SetFocus(GetDlgItem(*this, IDCANCEL));
    m_problems.clear();
    const bool bMade = MakeDisc(m_skin, m_sLauncher, m_sContents, m_sOut, this, m_problems);
    if (watch.IsGone())
        return;
    m_bWorking = false;
    if (!Exist())
        return;
    EnableAll(true);
    m_state.SetText("");
    m_progress.SetPos(0);
    if (bMade) {
        EndDialog(IDOK);
        return;
    }
    SetFocus(m_out);
    if (!m_bStopped)
        CUIMessageBox(this, "The disc was not made.\n\n" + ProblemsInWords(m_problems),
                      "Make the disc", MB_OK | MB_ICONERROR);
}

// Stops the work, or closes the dialog.
void CDiscDialog::OnCancel()
{
    if (m_bWorking)
        m_bStopped = true;
    else
        CCUIDialog::OnCancel();
}

// What is written so far is no disc: the session ends when that has been taken back.
int CDiscDialog::OnQueryEndSession(UINT nReason)
{
    if (!m_bWorking || m_bStopped)
        return CCUIDialog::OnQueryEndSession(nReason);
    if (m_bAsking)
        return 0;
    CCUIMessageBox box("The disc is not finished. Stop making it?", "Make the disc",
                       MB_ICONQUESTION);
    box.AddButton(IDYES, "&Stop");
    box.AddButton(IDCANCEL, "&Go on");
    m_bAsking = true;
    m_bStopped = box.DoModal(this) == IDYES || m_bStopped;
    m_bAsking = false;
    return m_bStopped;
}

// Without its window, which an end of the session destroys unasked, the work stops as well.
bool CDiscDialog::OnProgress(ULONGLONG nDone, ULONGLONG nTotal, const CCUString &sFile)
{
    if (nTotal)
        m_progress.SetPos(static_cast<int>(nDone * PARTS / nTotal));
    if (m_state.GetText() != sFile)
        m_state.SetText(sFile);
    IdleLoop(1, 0);
    return !m_bStopped && Exist();
}
