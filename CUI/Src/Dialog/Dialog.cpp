#include "CUI/Dialog.h"

#include "CU/Assert.h"
#include "CUI/Data.h"
#include "Dialog/ChooserOwner.h"
#include "Dialog/ControlList.h"

#define CU_SOURCE "Dialog"

namespace {

// A colour that nobody chooses, so that the first SetColor makes the brush.
const COLORREF NO_COLOR = 0x010101;

}  // namespace

CCUIDialog::CCUIDialog(HINSTANCE hInstance, const char *templateName)
    : m_template(hInstance, templateName),
      m_pControls(new CCUIControlList),
      m_color(NO_COLOR),
      m_hBrush(nullptr),
      m_hFirstControl(nullptr),
      m_hInstance(hInstance),
      m_templateName(templateName),
      m_mode(ModeNone),
      m_pRun(nullptr),
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
    // The base's destructor destroys the window, but OnDestroy below is no longer called then: what
    // others must hear of the end is told here.
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

// A run, on the stack of the function that begins it: until its window is there or, when it is
// modal, until it is over. Handlers of the windows that it touches may delete the dialog, end the
// run or begin another one.
class CCUIDialog::CRun : public CWatch
{
public:
    CRun(CCUIDialog &dialog, Mode mode);
    ~CRun();

    // Whether no run may begin, since the dialog has a window, which is reported.
    static bool IsRefused(CCUIDialog &dialog);
    // A modal run: finds the owner, disables the window above it and restores the parent. False:
    // the dialog is deleted, or another run is on.
    bool TakeOwner(CCUIWindow *pParent);
    // A modeless run: the same, but nothing is disabled.
    bool FindOwner(CCUIWindow *pParent);
    void SetOwner(HWND hOwner) { m_hOwner = hOwner; }
    // Makes the window from the template or, without one, from the resource. Null on failure, which
    // ends the run, and when the run is over already.
    HWND Start(const DLGTEMPLATE *pTemplate, bool bShow);
    // Ends the run without a window. Handlers of the owner may delete the dialog.
    void Abandon();

    void SetResult(unsigned nResult) { m_nResult = static_cast<int>(nResult); }
    int GetResult() const { return IsGone() ? static_cast<int>(IDCANCEL) : m_nResult; }

private:
    void MarkBegun();
    HWND MakeWindow(const DLGTEMPLATE *pTemplate);

    CCUIDialog &m_dialog;
    const Mode m_mode;
    CRun *const m_pOuter;
    HWND m_hOwner;
    int m_nResult;
};

CCUIDialog::CRun::CRun(CCUIDialog &dialog, Mode mode)
    : CWatch(&dialog),
      m_dialog(dialog),
      m_mode(mode),
      m_pOuter(dialog.m_pRun),
      m_hOwner(nullptr),
      m_nResult(IDCANCEL)
{
    dialog.m_pRun = this;
    dialog.m_hRunOwner = nullptr;
    MarkBegun();
}

CCUIDialog::CRun::~CRun()
{
    if (!IsGone())
        m_dialog.m_pRun = m_pOuter;
}

bool CCUIDialog::CRun::IsRefused(CCUIDialog &dialog)
{
    const bool bHasWindow = dialog.HasWindow();
    CU_ASSERT_TEXT(!bHasWindow, "m_hWnd == 0");
    return bHasWindow;
}

void CCUIDialog::CRun::MarkBegun()
{
    m_dialog.m_bActive = 1;
    m_dialog.m_mode = m_mode;
}

bool CCUIDialog::CRun::TakeOwner(CCUIWindow *pParent)
{
    HWND hDisabledTop = nullptr;
    if (pParent && pParent->Exist()) {
        CWatch parent(pParent);
        m_hOwner = pParent->GetSafeOwner(&hDisabledTop);
        if (parent.IsGone())
            pParent = nullptr;
    }
    if (!IsGone())
        m_dialog.RestoreParent(pParent);
    if (IsGone() || IsRefused(m_dialog)) {
        if (hDisabledTop)
            EnableWindow(hDisabledTop, TRUE);
        return false;
    }
    m_dialog.m_hRunOwner = m_hOwner;
    m_dialog.m_hDisabledTop = hDisabledTop;
    return true;
}

bool CCUIDialog::CRun::FindOwner(CCUIWindow *pParent)
{
    const bool bChild = (m_dialog.GetWindowStyle() & WS_CHILD) != 0;
    if (pParent) {
        CWatch parent(pParent);
        m_dialog.RestoreParent(pParent);
        if (!parent.IsGone() && pParent->Exist())
            m_hOwner = bChild ? pParent->GetHandle() : pParent->GetSafeOwner(nullptr);
    } else {
        m_dialog.RestoreParent(nullptr);
    }
    return !IsGone() && !IsRefused(m_dialog);
}

HWND CCUIDialog::CRun::Start(const DLGTEMPLATE *pTemplate, bool bShow)
{
    // Once more, and the result too: another run may have come and gone meanwhile.
    MarkBegun();
    m_nResult = IDCANCEL;
    m_dialog.m_bEnded = 0;
    m_dialog.Hook();
    const HWND hWnd = MakeWindow(pTemplate);
    if (IsGone())
        return nullptr;
    if (!m_dialog.FinishCreation(hWnd)) {
        const bool bOtherRun = m_dialog.m_hWnd != nullptr;
        if (!bOtherRun)
            Abandon();
        return nullptr;
    }
    if (bShow) {
        ShowWindow(hWnd, SW_SHOW);
        SetForegroundWindow(hWnd);
    }
    const bool bOver = IsGone() || m_dialog.m_hWnd != hWnd;
    return bOver ? nullptr : hWnd;
}

HWND CCUIDialog::CRun::MakeWindow(const DLGTEMPLATE *pTemplate)
{
    const HINSTANCE hInstance = m_dialog.m_hInstance;
    if (pTemplate)
        return CreateDialogIndirectParamA(hInstance, pTemplate, m_hOwner, DialogProc, 0);
    // The system would read on behind the end of a template that is cut short.
    if (!m_dialog.m_template.GetTemplate())
        return nullptr;
    return CreateDialogParamA(hInstance, m_dialog.m_templateName, m_hOwner, DialogProc, 0);
}

void CCUIDialog::CRun::Abandon()
{
    m_dialog.m_mode = ModeNone;
    m_dialog.m_bActive = 0;
    m_dialog.m_bEnded = 1;
    m_dialog.GiveOwnerBack();
}

int CCUIDialog::DoModal(CCUIWindow *pParent)
{
    return m_hInstance && m_templateName ? DoModalIndirect(nullptr, pParent) : 0;
}

int CCUIDialog::DoModalIndirect(const DLGTEMPLATE *pTemplate, CCUIWindow *pParent)
{
    if (CRun::IsRefused(*this))
        return IDCANCEL;
    CRun run(*this, ModeModal);
    if (!run.TakeOwner(pParent))
        return IDCANCEL;
    if (run.Start(pTemplate, true))
        ModalLoop();
    // Without OnDestroy, which somebody kept from the dialog, the run is not ended yet.
    if (!run.IsGone() && !m_bEnded && !HasWindow())
        run.Abandon();
    return run.GetResult();
}

HWND CCUIDialog::DoModeless(CCUIWindow *pParent)
{
    if (!m_hInstance || !m_templateName || CRun::IsRefused(*this))
        return nullptr;
    CRun run(*this, ModeModeless);
    return run.FindOwner(pParent) ? run.Start(nullptr, true) : nullptr;
}

HWND CCUIDialog::Create(HWND hParent)
{
    if (CRun::IsRefused(*this))
        return nullptr;
    const DLGTEMPLATE *pTemplate = GetTemplate();
    if (!pTemplate)
        return nullptr;
    CRun run(*this, ModeModeless);
    run.SetOwner(hParent);
    return run.Start(pTemplate, false);
}

void CCUIDialog::RestoreParent(CCUIWindow *pParent)
{
    CUIRestoreWindow(pParent ? pParent->GetTopLevelWindow() : nullptr);
}

void CCUIDialog::EndDialog(unsigned nResult)
{
    CWatch watch(this);
    GiveOwnerBack();
    if (watch.IsGone())
        return;
    if (m_pRun)
        m_pRun->SetResult(nResult);
    if (!HasWindow())
        return;
    // Wakes the loop of the run, even if Destroy fails.
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
        // A handler of its own ended the run, which gave it back before it was disabled.
        EnableWindow(hOwner, TRUE);
        return false;
    }
    EnableWindow(m_hWnd, TRUE);
    return true;
}

// The owner is enabled while the dialog still has its window: when that goes, the system activates
// the next window that is enabled, which is to be the owner.
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

// Win32 wants one, but every message goes to the object, which leaves nothing for it.
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
    // Every further child costs calls to the system: the walk ends when nothing is left to find.
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

// The run is over; makes its loop notice. A loop that handles a message looks by itself afterwards.
// But one that waits does not, when the end comes in a message that another thread sent. Nor does
// one around a message that was sent, when a loop inside has taken what was posted to wake it. What
// is posted to the window is lost with the window, so the message goes to the thread.
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
