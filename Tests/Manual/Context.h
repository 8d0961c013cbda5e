// What the fragments of code in the pages take for granted: the program around them.

#include <stdio.h>
#include <windows.h>
// Behind it.
#include <commdlg.h>

#include "Resource.h"

const unsigned ID_COUNT = 1010, ID_RESET = 1011, ID_NEW = 1012, ID_OPEN = 1013, ID_CUT = 1014,
               ID_COPY = 1015, ID_PASTE = 1016, ID_NOTES = 1017;
const UINT IDB_BUTTONS = 1, IDI_PROGRAM = 2, IDC_WRAP = 3, IDC_NAME = 4, IDC_FILES = 5, IDB_DAY = 6,
           IDB_NIGHT = 7, IDD_OPTIONS = 8, IDC_SECONDS = 9, IDC_REPEAT = 10;

static long nQueued, nUsed;
void Save();
int Open(const CCUString &sPath);

// A fragment is the body of a function of a class derived from this one.
struct CContext : CCUIFrameWindow
{
    using CCUIFrameWindow::SetMenu;
    static int SetMenu(HWND hWnd, HMENU hMenu) { return ::SetMenu(hWnd, hMenu); }

    HINSTANCE hInstance, instance;
    CCUIFrameWindow frame;
    CCUIWindow window;
    CCUIBitmap strip;
    CCUIButton m_save;
    CCUIControlBar m_bar;
    CCUIStatusBar m_status;
    CCUINotifyIcon m_icon;
    CCUIMenu m_iconMenu;
    CCUIEdit m_notes;
    CCUIWipeEffect m_wipe;
    RECT rect;
};
