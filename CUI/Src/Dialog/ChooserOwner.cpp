#include "Dialog/ChooserOwner.h"

#include "CU/Dump.h"

CCUIChooserOwner::CCUIChooserOwner(CCUIWindow *pParent) : m_hOwner(nullptr), m_hDisabledTop(nullptr)
{
    const HWND hParent = pParent && pParent->Exist() ? pParent->GetHandle() : nullptr;
    if (!hParent)
        return;
    CUIRestoreWindow(pParent->GetTopLevelWindow());
    if (CCUIWindow::FromHandle(hParent) == pParent)
        m_hOwner = pParent->GetSafeOwner(&m_hDisabledTop);
}

CCUIChooserOwner::~CCUIChooserOwner()
{
    if (m_hDisabledTop && IsWindow(m_hDisabledTop))
        EnableWindow(m_hDisabledTop, TRUE);
}

void CUIRestoreWindow(HWND hWnd)
{
    WINDOWPLACEMENT placement = {};
    placement.length = sizeof placement;
    if (!hWnd || !GetWindowPlacement(hWnd, &placement) || placement.showCmd != SW_SHOWMINIMIZED)
        return;
    placement.showCmd = SW_RESTORE;
    SetWindowPlacement(hWnd, &placement);
}

int CUIChoiceCancelled()
{
    SetLastError(ERROR_CANCELLED);
    return 0;
}

int CUIChoiceFailed(const char *what, DWORD dwCode, DWORD dwError)
{
    CUDump("%s failed, code: %#lx, gle: %lu\n", what, dwCode, dwError);
    SetLastError(dwError ? dwError : ERROR_GEN_FAILURE);
    return 0;
}
