#include "CUI/Dialog.h"

#include "CU/Assert.h"
#include "CUI/Data.h"
#include "Dialog/ControlList.h"

#define CU_SOURCE "Dialog"

namespace {

// No colour of the user's, so that the first SetColor makes the brush.
constexpr COLORREF s_crNone = 0x010101;

}  // namespace

CCUIDialog::CCUIDialog(HINSTANCE hInstance, const char *templateName)
    : m_template(hInstance, templateName),
      m_pControls(new CCUIControlList),
      m_color(s_crNone),
      m_hBrush(nullptr),
      m_hFirstControl(nullptr),
      m_hInstance(hInstance),
      m_templateName(templateName),
      m_mode(ModeNone),
      m_nResult(IDCANCEL),
      m_bDataValid(false),
      m_bAutoMakeDirty(false),
      m_bDirty(false),
      m_bExchanging(false),
      m_hRunOwner(nullptr),
      m_hDisabledTop(nullptr),
      m_bOwnerDisabled(false)
{
    CCUIDialog::SetColor(CUIGetWinData()->crSys[COLOR_BTNFACE]);
}

CCUIDialog::~CCUIDialog()
{
    // The window goes while its handlers are still those of a dialog: the owner is given back.
    m_bDead = 1;
    GiveOwnerBack();
    if (Exist())
        WakeLoop();
    if (m_hBrush)
        DeleteObject(m_hBrush);
    CCUIDialog::UnRegisterAllControls();
    delete m_pControls;
}

// --- Runs ---

int CCUIDialog::DoModal(CCUIWindow *pParent)
{
    if (!m_hInstance || !m_templateName)
        return 0;
    if (RefusesRun())
        return IDCANCEL;
    CWatch watch(this);
    BeginRun(ModeModal);
    if (!TakeOwner(pParent))
        return IDCANCEL;
    m_nResult = IDCANCEL;
    if (Start(nullptr, m_hRunOwner))
        ModalLoop();
    // Its window has gone without OnDestroy, which somebody kept from it.
    if (!watch.IsGone() && !m_bEnded && !HasWindow())
        Abandon();
    return watch.IsGone() ? static_cast<int>(IDCANCEL) : m_nResult;
}

// Finds the owner of a modal run and makes the parent ready for it. False: handlers of the windows
// that this touches have deleted the dialog, or it runs already.
bool CCUIDialog::TakeOwner(CCUIWindow *pParent)
{
    CWatch watch(this);
    HWND hOwner = nullptr, hDisabledTop = nullptr;
    if (pParent && pParent->Exist()) {
        CWatch parent(pParent);
        hOwner = pParent->GetSafeOwner(&hDisabledTop);
        if (parent.IsGone())
            pParent = nullptr;
    }
    if (!watch.IsGone())
        RestoreParent(pParent);
    // They may also have begun another run.
    if (watch.IsGone() || RefusesRun()) {
        if (hDisabledTop)
            EnableWindow(hDisabledTop, TRUE);
        return false;
    }
    m_hRunOwner = hOwner;
    m_hDisabledTop = hDisabledTop;
    return true;
}

HWND CCUIDialog::DoModeless(CCUIWindow *pParent)
{
    if (!m_hInstance || !m_templateName || RefusesRun())
        return nullptr;
    CWatch watch(this);
    BeginRun(ModeModeless);
    const HWND hOwner = FindOwner(pParent);
    return watch.IsGone() || RefusesRun() ? nullptr : Start(nullptr, hOwner);
}

// The owner of a modeless run. Handlers of the windows that this touches may delete the dialog, the
// parent or both.
HWND CCUIDialog::FindOwner(CCUIWindow *pParent)
{
    const bool bChild = (GetWindowStyle() & WS_CHILD) != 0;
    if (!pParent) {
        RestoreParent(nullptr);
        return nullptr;
    }
    CWatch parent(pParent);
    RestoreParent(pParent);
    if (parent.IsGone() || !pParent->Exist())
        return nullptr;
    return bChild ? pParent->GetHandle() : pParent->GetSafeOwner(nullptr);
}

HWND CCUIDialog::Create(HWND hParent)
{
    if (RefusesRun())
        return nullptr;
    const DLGTEMPLATE *pTemplate = GetTemplate();
    if (!pTemplate)
        return nullptr;
    BeginRun(ModeModeless);
    return Start(pTemplate, hParent);
}

// Whether no run may begin, which is reported.
bool CCUIDialog::RefusesRun()
{
    const bool bHasWindow = HasWindow();
    CU_ASSERT_TEXT(!bHasWindow, "m_hWnd == 0");
    return bHasWindow;
}

void CCUIDialog::BeginRun(Mode mode)
{
    m_bActive = 1;
    m_mode = mode;
    m_hRunOwner = nullptr;
}

// Makes the window from the given template or, without one, from the resource, which is shown at
// once. On failure the object is as it was before the run. Null, too, when that is over already.
HWND CCUIDialog::Start(const DLGTEMPLATE *pTemplate, HWND hOwner)
{
    CWatch watch(this);
    m_bEnded = 0;
    Hook();
    HWND hWnd = nullptr;
    if (pTemplate)
        hWnd = CreateDialogIndirectParamA(m_hInstance, pTemplate, hOwner, DialogProc, 0);
    else if (m_template.GetTemplate())  // the system would read past one that is cut short
        hWnd = CreateDialogParamA(m_hInstance, m_templateName, hOwner, DialogProc, 0);
    if (watch.IsGone())
        return nullptr;
    if (!FinishCreation(hWnd)) {
        if (m_hWnd)  // of another run, begun by a handler that had ended this one
            return nullptr;
        Abandon();
        return nullptr;
    }
    if (!pTemplate) {
        ShowWindow(hWnd, SW_SHOW);
        SetForegroundWindow(hWnd);
    }
    return watch.IsGone() || m_hWnd != hWnd ? nullptr : hWnd;
}

// Ends a run that has no window. Handlers of the owner may delete the dialog.
void CCUIDialog::Abandon()
{
    m_mode = ModeNone;
    m_bActive = 0;
    m_bEnded = 1;
    GiveOwnerBack();
}

void CCUIDialog::RestoreParent(CCUIWindow *pParent)
{
    const HWND hTop = pParent ? pParent->GetTopLevelWindow() : nullptr;
    WINDOWPLACEMENT placement = {};
    placement.length = sizeof placement;
    if (!hTop || !GetWindowPlacement(hTop, &placement) || placement.showCmd != SW_SHOWMINIMIZED)
        return;
    placement.showCmd = SW_RESTORE;
    SetWindowPlacement(hTop, &placement);
}

void CCUIDialog::EndDialog(unsigned nResult)
{
    CWatch watch(this);
    GiveOwnerBack();
    if (watch.IsGone())
        return;
    m_nResult = static_cast<int>(nResult);
    if (!HasWindow())
        return;
    // Wakes the loop of the run even if the window stays.
    PostMessageA(m_hWnd, WM_NULL, 0, 0);
    Destroy();
}

// False: handlers of the owner have ended the dialog, or deleted it.
bool CCUIDialog::DisableOwner()
{
    const HWND hOwner = m_hRunOwner;
    if (!hOwner || !IsWindow(hOwner) || !IsWindowEnabled(hOwner))
        return true;
    CWatch watch(this);
    m_bOwnerDisabled = true;
    EnableWindow(hOwner, FALSE);
    if (watch.IsGone() || m_hRunOwner != hOwner) {
        // It was given back before it was quite disabled.
        EnableWindow(hOwner, TRUE);
        return false;
    }
    EnableWindow(m_hWnd, TRUE);
    return true;
}

// Enabled before the dialog goes: the system activates the next window, and must be able to choose
// the owner.
void CCUIDialog::GiveOwnerBack()
{
    const HWND hOwner = m_hRunOwner;
    const HWND hTop = m_hDisabledTop;
    const HWND hWnd = m_hWnd;
    const bool bEnable = m_bOwnerDisabled;
    m_hRunOwner = nullptr;
    m_hDisabledTop = nullptr;
    m_bOwnerDisabled = false;
    if (!hOwner)
        return;
    if (bEnable)
        EnableWindow(hOwner, TRUE);
    if (hWnd && GetActiveWindow() == hWnd)
        SetActiveWindow(hOwner);
    if (hTop && IsWindow(hTop))
        EnableWindow(hTop, TRUE);
}

// --- Messages ---

// Every message goes through the object; nothing is left for the procedure that Win32 asks for.
INT_PTR CALLBACK CCUIDialog::DialogProc(HWND, UINT, WPARAM, LPARAM)
{
    return FALSE;
}

long CCUIDialog::WindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG: return OnInitDialog(reinterpret_cast<HWND>(wParam), lParam);
    case WM_CTLCOLORSTATIC:
        SetBkColor(reinterpret_cast<HDC>(wParam), CUIGetWinData()->ResolveColor(m_color));
        return reinterpret_cast<long>(m_hBrush);
    case WM_CTLCOLORDLG: return reinterpret_cast<long>(m_hBrush);
    default: return CCUIWindow::WindowProc(message, wParam, lParam);
    }
}

int CCUIDialog::OnInitDialog(HWND, LPARAM)
{
    CWatch watch(this);
    m_hFirstControl = nullptr;
    EnumChildWindows(m_hWnd, VisitChild, reinterpret_cast<LPARAM>(this));
    const int nResult = Default();
    m_bDataValid = false;
    CCUString sCode("ToScreen");
    const bool bValid = UpdateData(sCode) != 0;
    if (watch.IsGone() || !m_hWnd)
        return nResult;
    m_bDataValid = bValid;
    if (!DisableOwner())
        return nResult;
    HWND hBusy = GetCapture();
    if (!hBusy)
        hBusy = GetFocus();
    if (hBusy)
        SendMessageA(hBusy, WM_CANCELMODE, 0, 0);
    return nResult;
}

BOOL CALLBACK CCUIDialog::VisitChild(HWND hChild, LPARAM lParam)
{
    auto &dialog = *reinterpret_cast<CCUIDialog *>(lParam);
    if (!dialog.m_hFirstControl && IsWindowEnabled(hChild))
        dialog.m_hFirstControl = hChild;
    const int nID = GetDlgCtrlID(hChild);
    if (dialog.GetAutoMakeDirty() && nID > 0)
        dialog.RegisterControl(hChild, static_cast<unsigned>(nID), DialogControlAuto);
    // To visit a child costs a call to the system.
    return dialog.GetAutoMakeDirty() || !dialog.m_hFirstControl;
}

int CCUIDialog::PreTranslateMessage(MSG *pMsg)
{
    CWatch watch(this);
    if (CCUIWindow::PreTranslateMessage(pMsg) || watch.IsGone())
        return 1;
    const bool bInput = (pMsg->message >= WM_KEYFIRST && pMsg->message <= WM_KEYLAST) ||
                        (pMsg->message >= WM_MOUSEFIRST && pMsg->message <= WM_MBUTTONDBLCLK);
    return bInput && IsDialogMessageA(m_hWnd, pMsg);
}

void CCUIDialog::OnDestroy()
{
    CWatch watch(this);
    GiveOwnerBack();
    if (watch.IsGone())
        return;
    WakeLoop();
    m_bActive = 0;
    m_bEnded = 1;
    m_mode = ModeNone;
    CCUIWindow::OnDestroy();
}

// The end may come to a loop that waits, sent by another thread: what is posted to the window is
// lost with it, so the thread itself is woken. A loop that handles a message looks by itself, but
// inside a message that was sent it may have taken what was to wake the loop around it.
void CCUIDialog::WakeLoop() const
{
    if ((m_pAwaited && m_pAwaited->message == NoMessage) || InSendMessage())
        PostThreadMessageA(GetCurrentThreadId(), WM_NULL, 0, 0);
}

void CCUIDialog::OnOK()
{
    CWatch watch(this);
    m_bDataValid = false;
    CCUString sCode("FromScreen");
    if (!UpdateData(sCode) || watch.IsGone())
        return;
    m_bDataValid = true;
    EndDialog(IDOK);
}

void CCUIDialog::OnCancel()
{
    EndDialog(IDCANCEL);
}

// --- Colour ---

void CCUIDialog::SetColor(COLORREF cr)
{
    if (cr == m_color)
        return;
    m_color = cr;
    MakeBrush();
    if (Exist())
        InvalidateRect(m_hWnd, nullptr, TRUE);
}

COLORREF CCUIDialog::GetColor()
{
    return m_color;
}

void CCUIDialog::MakeBrush()
{
    const HBRUSH hOld = m_hBrush;
    m_hBrush = CreateSolidBrush(CUIGetWinData()->ResolveColor(m_color));
    if (hOld)
        DeleteObject(hOld);
}

void CCUIDialog::OnSysColorChange()
{
    CWatch watch(this);
    CCUIWindow::OnSysColorChange();
    if (!watch.IsGone())
        MakeBrush();
}

// --- What the template says ---

const DLGTEMPLATE *CCUIDialog::GetTemplate()
{
    return m_template.GetTemplate();
}

unsigned long CCUIDialog::GetWindowStyle()
{
    return m_template.GetStyle();
}

int CCUIDialog::GetSizeInDialogUnits(SIZE &size)
{
    return m_template.GetSizeInDialogUnits(size);
}

int CCUIDialog::GetSizeInPixels(SIZE &size)
{
    return m_template.GetSizeInPixels(size);
}

int CCUIDialog::GetCaption(CCUString &sCaption)
{
    return m_template.GetCaption(sCaption);
}
