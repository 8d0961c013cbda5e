#pragma once

#include "CUI/Window.h"

// The owner of one of the system's dialogs, for as long as that is shown: the system disables the
// owner itself, this also the top-level window above it, as CCUIDialog does.
class CCUIChooserOwner
{
public:
    // Null: none. Handlers of the parent may delete it.
    explicit CCUIChooserOwner(CCUIWindow *pParent);
    ~CCUIChooserOwner();
    CCUIChooserOwner(const CCUIChooserOwner &) = delete;
    CCUIChooserOwner &operator=(const CCUIChooserOwner &) = delete;
    operator HWND() const { return m_hOwner; }

private:
    HWND m_hOwner;
    HWND m_hDisabledTop;
};

// Restores a window that is minimised; null is none.
void CUIRestoreWindow(HWND hWnd);
// 0 after a chooser that the user has cancelled: says so in the last error.
int CUIChoiceCancelled();
// 0 after a failure, which is traced: `what` could not be called, or answered with that code. The
// last error becomes dwError.
int CUIChoiceFailed(const char *what, DWORD dwCode, DWORD dwError);
