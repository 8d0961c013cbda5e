#include "CUI/SingleInstance.h"

#include "Base/SystemLibrary.h"
#include "CU/Dump.h"
#include "CU/String.h"
#include "CUI/FrameWindow.h"
#include "CUI/WindowClass.h"

// What a later run has handed over and nobody has looked at yet.
struct CUIHandedOver
{
    CCUString sCommandLine;
    CCUString sFolder;
    CUIHandedOver *pNext;
};

namespace {

// What marks our WM_COPYDATA, and the answer to it.
const ULONG_PTR HAND_OVER = 0x43554931;
const LRESULT TAKEN = 0x43554932;
// No command line is as long as this, with its folder.
const DWORD MOST_BYTES = 0x20000;
// Handles what was handed over, when the later run need not wait for it any more.
const UINT WM_HANDLE_RECEIVED = WM_USER;
// Milliseconds between two looks for the window of a run that has just begun.
const DWORD LOOK_AGAIN = 50;
const int MOST_NAME = MAX_PATH - 1;

// The desktop's name; Windows 95 has one only.
CCUString DesktopName()
{
    typedef HDESK WINAPI GetDesktop(DWORD);
    typedef BOOL WINAPI GetInformation(HANDLE, int, void *, DWORD, DWORD *);
    const auto getDesktop = CUFindFunction<GetDesktop>("user32.dll", "GetThreadDesktop");
    const auto getInformation =
        CUFindFunction<GetInformation>("user32.dll", "GetUserObjectInformationA");
    char szName[64] = "";
    DWORD nLength = 0;
    if (getDesktop && getInformation)
        getInformation(getDesktop(GetCurrentThreadId()), UOI_NAME, szName, sizeof szName - 1,
                       &nLength);
    return szName;
}

// What tells the program, the user and the desktop from all others.
CCUString InstanceName(const char *pszName)
{
    char szUser[257] = "";
    DWORD nLength = sizeof szUser - 1;
    GetUserNameA(szUser, &nLength);
    CCUString sName = CCUString(pszName) + "/" + szUser + "/" + DesktopName();
    sName = sName.Left(MOST_NAME);
    // In a mutex's name it would lead to another namespace.
    for (int i = 0; i < sName.GetLength(); ++i) {
        if (sName[i] == '\\')
            sName.SetAt(i, '/');
    }
    return sName;
}

CCUString CurrentFolder()
{
    CCUString sFolder;
    const DWORD nRoom = GetCurrentDirectoryA(0, nullptr);
    GetCurrentDirectoryA(nRoom, sFolder.GetBuffer(static_cast<int>(nRoom)));
    sFolder.ReleaseBuffer();
    return sFolder;
}

// Lets the first run come to the front, which the system allows only to whom the user works with.
void LetComeToFront(HWND hWnd)
{
    typedef BOOL WINAPI AllowForeground(DWORD);
    const auto allow = CUFindFunction<AllowForeground>("user32.dll", "AllowSetForegroundWindow");
    DWORD nProcess = 0;
    GetWindowThreadProcessId(hWnd, &nProcess);
    if (allow)
        allow(nProcess);
}

// "folder", NUL, "command line", NUL.
bool HandOver(HWND hWnd, DWORD nTimeout)
{
    const CCUString sText = CurrentFolder() + CCUString('\0', 1) + GetCommandLineA();
    COPYDATASTRUCT data = {HAND_OVER, static_cast<DWORD>(sText.GetLength() + 1),
                           const_cast<char *>(sText.GetString())};
    LetComeToFront(hWnd);
    DWORD_PTR answer = 0;
    return SendMessageTimeoutA(hWnd, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data),
                               SMTO_ABORTIFHUNG, nTimeout, &answer) &&
           answer == TAKEN;
}

bool IsTaken(DWORD nResult)
{
    return nResult == WAIT_OBJECT_0 || nResult == WAIT_ABANDONED;
}

}  // namespace

CCUISingleInstance::CCUISingleInstance() : m_hMutex(nullptr), m_pReceived(nullptr)
{
    m_window.InsertMessageHook(this);
}

CCUISingleInstance::~CCUISingleInstance()
{
    GiveUpPlace();
}

// The window goes first: who finds it is served.
void CCUISingleInstance::GiveUpPlace()
{
    m_window.Destroy();
    if (m_hMutex) {
        ReleaseMutex(m_hMutex);
        CloseHandle(m_hMutex);
    }
    m_hMutex = nullptr;
    while (CUIHandedOver *const pFirst = m_pReceived) {
        m_pReceived = pFirst->pNext;
        delete pFirst;
    }
}

CCUISingleInstance::Outcome CCUISingleInstance::Start(const char *pszName, DWORD nTimeout)
{
    GiveUpPlace();
    const CCUString sName = InstanceName(pszName);
    m_hMutex = CreateMutexA(nullptr, FALSE, sName);
    if (!m_hMutex) {
        CUDump("Unable to create mutex %s, gle: %lu\n", sName.GetString(), GetLastError());
        return First;
    }
    const DWORD nStart = GetTickCount();
    DWORD nWait = 0;
    for (;;) {
        if (IsTaken(WaitForSingleObject(m_hMutex, nWait))) {
            const RECT rect = {};
            if (!m_window.Create(nullptr, sName, WS_POPUP, rect, nullptr, 0))
                CUDump("Unable to create the window of %s\n", sName.GetString());
            return First;
        }
        const DWORD nPassed = GetTickCount() - nStart;
        const HWND hFirst = FindWindowA(CUIWindowClassName(CUI_CLASS_WINDOW), sName);
        const bool bDone = hFirst && nPassed < nTimeout && HandOver(hFirst, nTimeout - nPassed);
        nWait = LOOK_AGAIN;
        if (!bDone && GetTickCount() - nStart < nTimeout)
            continue;
        CloseHandle(m_hMutex);
        m_hMutex = nullptr;
        return bDone ? HandedOver : Unreachable;
    }
}

// Takes a copy, and answers at once: what is done with it may take as long as a user does.
bool CCUISingleInstance::Receive(const COPYDATASTRUCT &data)
{
    const auto *const pText = static_cast<const char *>(data.lpData);
    if (data.dwData != HAND_OVER || !pText || data.cbData < 2 || data.cbData > MOST_BYTES ||
        pText[data.cbData - 1])
        return false;
    const CCUString sFolder = pText;
    const auto nRest = static_cast<DWORD>(sFolder.GetLength()) + 1;
    if (nRest >= data.cbData || !PostMessageA(m_window, WM_HANDLE_RECEIVED, 0, 0))
        return false;
    CUIHandedOver **ppLast = &m_pReceived;
    while (*ppLast)
        ppLast = &(*ppLast)->pNext;
    *ppLast = new CUIHandedOver{pText + nRest, sFolder, nullptr};
    return true;
}

// One for each message: whoever is called may delete this object.
void CCUISingleInstance::HandleReceived()
{
    CUIHandedOver *const pFirst = m_pReceived;
    if (!pFirst)
        return;
    m_pReceived = pFirst->pNext;
    OnLaterRun(pFirst->sCommandLine, pFirst->sFolder);
    delete pFirst;
}

int CCUISingleInstance::OnHookMessage(UINT message, WPARAM, LPARAM lParam, long &result)
{
    if (message == WM_HANDLE_RECEIVED) {
        HandleReceived();
        return 1;
    }
    if (message != WM_COPYDATA || !lParam ||
        !Receive(*reinterpret_cast<const COPYDATASTRUCT *>(lParam)))
        return 0;
    result = TAKEN;
    return 1;
}

void CCUISingleInstance::OnLaterRun(const CCUString &sCommandLine, const CCUString &sFolder)
{
    CCUIFrameWindow *const pFrame = CCUIFrameWindow::GetMainFrame();
    if (!pFrame) {
        CUDump("No frame for command line %s\n", sCommandLine.GetString());
        return;
    }
    pFrame->BringToFront();
    // What comes up with it may have deleted it.
    if (CCUIFrameWindow::GetMainFrame() == pFrame)
        pFrame->OnCommandLine(sCommandLine, sFolder);
}
