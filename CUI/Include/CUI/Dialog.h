#pragma once

/// @file
/// Dialogs.

#include "CU/String.h"
#include "CUI/DialogTemplate.h"
#include "CUI/Window.h"

/// The kind of a registered control, which decides which notifications mean that the user changed
/// it.
enum DialogControlType
{
    DialogControlNone = 0,        ///< never changed
    DialogControlEdit = 1,        ///< EN_CHANGE
    DialogControlListBox = 2,     ///< LBN_SELCHANGE
    DialogControlComboBox = 3,    ///< CBN_SELCHANGE, CBN_EDITCHANGE
    DialogControlButton = 4,      ///< BN_CLICKED of a check box or radio button
    DialogControlAuto = 5,        ///< what its window class says
    DialogControlTreeView = 6,    ///< selection, label and item changes
    DialogControlListView = 7,    ///< state, text and label changes
    DialogControlTab = 8,         ///< another page
    DialogControlDatePicker = 9,  ///< another date
    DialogControlSpecial = 10     ///< CCUIDialog::IsSpecialControlModified decides
};

/// A registered control of a dialog.
struct CCUIControlInfo
{
    HWND hWnd;               ///< the control
    unsigned nID;            ///< its identifier, one entry each
    DialogControlType type;  ///< never DialogControlAuto
    bool bAutoMakeDirty;     ///< its changes make the dialog dirty
};

/// @name The directions of CCUIDialog::ExchangeData
/// @{
const unsigned short CUI_TOSCREEN = 0;    ///< the data goes into the controls
const unsigned short CUI_FROMSCREEN = 1;  ///< what the controls hold goes into the data
/// @}

class CCUIControlList;

/// A dialog made from a template resource, run modally (DoModal) or modelessly. The object outlives
/// its window; a run may follow a run.
///
/// Data exchange: OnInitDialog puts the data on the screen, OnOK takes it back, both through
/// UpdateData, which calls ExchangeData. Dirty tracking: the user's change of a registered control
/// makes the dialog dirty (OnEvent "Dirty"); a successful exchange makes it clean.
///
/// Several threads may make dialogs at once, each for objects of its own: Create, DoModal and
/// DoModeless see nothing of the others.
class CUI_API CCUIDialog : public CCUIWindow
{
public:
    /// The name, text or MAKEINTRESOURCE(id), is kept as a pointer. Under UNICODE it is an id, or
    /// 8-bit text; wide text is reported with "IS_INTRESOURCE(pszName)" and counts as null.
    /// @{
    CCUIDialog(HINSTANCE hInstance, const char *templateName);
    template <typename Wide>
    CCUIDialog(HINSTANCE hInstance, const Wide *templateName)
        : CCUIDialog(hInstance, CUIResourceName::OnlyID(templateName))
    {
    }
    /// @}
    ~CCUIDialog() override;

    using CCUIWindow::Create;
    /// Makes a modeless dialog from GetTemplate(), shown as its style says; null on failure, as in
    /// DoModeless, and when the object has a window already (reported with "m_hWnd == 0").
    virtual HWND Create(HWND hParent);
    /// Runs the dialog until EndDialog and returns what that was given; IDCANCEL when the dialog
    /// cannot be created (no template, or not all of it), has a window already (reported with
    /// "m_hWnd == 0"), is closed another way, or its object is deleted meanwhile; 0 without
    /// instance or template name. The parent (may be null, else one of this thread) is restored if
    /// it is minimised, and disabled meanwhile; a run that its handlers begin then is one already.
    /// WM_QUIT ends the run, with IDCANCEL, but not the dialog: it stays active and its parent
    /// disabled until it is ended or destroyed.
    virtual int DoModal(CCUIWindow *pParent);
    /// Makes a modeless dialog and shows it; null on failure, and when the object has a window
    /// already (reported with "m_hWnd == 0"). The parent, as for DoModal, is restored, not
    /// disabled.
    virtual HWND DoModeless(CCUIWindow *pParent);

    /// Exchanges data: "ToScreen" or "FromScreen"; any other code is traced. Returns what
    /// ExchangeData said.
    virtual int UpdateData(CCUString &sCode);
    /// The same, of a text as it is written.
    int UpdateData(const char *pszCode)
    {
        CCUString sCode(pszCode);
        return UpdateData(sCode);
    }
    /// Something happened that the program may want to know: "Dirty". The base does nothing.
    virtual void OnEvent(CCUString &sEvent);

    /// What the template says; see CCUIDialogTemplate.
    /// @{
    virtual const DLGTEMPLATE *GetTemplate();
    virtual unsigned long GetWindowStyle();
    virtual int GetSizeInDialogUnits(SIZE &size);
    virtual int GetSizeInPixels(SIZE &size);
    virtual int GetCaption(CCUString &sCaption);
    /// @}

    /// The background, a colour or what CUIData::ResolveColor takes; at first the button face.
    /// @{
    virtual void SetColor(COLORREF cr);
    virtual COLORREF GetColor();
    /// @}

    /// Whether OnInitDialog registers all controls with an identifier; false at first.
    /// @{
    virtual void SetAutoMakeDirty(bool bAuto);
    virtual bool GetAutoMakeDirty();
    /// @}
    /// Registers a control. Each identifier has one entry; the later registration counts.
    virtual void RegisterControl(HWND hControl, unsigned nID, DialogControlType type);
    /// Takes a registration back. An identifier that is not registered is ignored.
    virtual void UnRegisterControl(unsigned nID);
    /// Takes all registrations back.
    virtual void UnRegisterAllControls();
    /// The first enabled child, known from OnInitDialog on.
    /// @{
    virtual HWND GetFirstControl();
    virtual void SetFirstControl(HWND hControl);
    /// @}
    /// Gives 1 and the entry, or 0 when none has the identifier.
    virtual int GetControlInfo(unsigned nID, CCUIControlInfo &info);
    /// Sets whether changes of that control make the dialog dirty. Does nothing when none has the
    /// identifier.
    virtual void SetControlAutoMakeDirty(unsigned nID, bool bAuto);

protected:
    /// DoModal with a template in memory, of either form, which must stand until the window is
    /// made: for classes that build their own. A null one is the resource.
    int DoModalIndirect(const DLGTEMPLATE *pTemplate, CCUIWindow *pParent);

    /// OK: ends the dialog with IDOK if the data can be taken; else it stays open.
    virtual void OnOK();
    /// Cancel, Escape and the close box: ends the dialog with IDCANCEL.
    virtual void OnCancel();

public:
    /// Ends a modal run with a result, and destroys the window. May be called from any handler,
    /// OnInitDialog too; without a window it only sets the result.
    virtual void EndDialog(unsigned nResult);

protected:
    /// For ExchangeData: moves what a control holds in that direction, 1, or 0 when it cannot be
    /// taken, which the user has been told (ExchangeFail). A control that is not there is traced,
    /// and its data stays as it is.
    /// @{
    /// The text of any control; no more than nMost characters can be typed there, 0: as many as the
    /// system takes.
    int ExchangeText(unsigned short nDirection, int nID, CCUString &sText, int nMost = 0);
    /// A number in decimal digits, from nLeast to nMost. What else stands there is answered with
    /// "nLeast - nMost", or with the message.
    int ExchangeInt(unsigned short nDirection, int nID, int &nValue, int nLeast, int nMost,
                    const char *pszMessage = nullptr);
    /// A check box: BST_UNCHECKED (0), BST_CHECKED (1) or BST_INDETERMINATE (2).
    int ExchangeCheck(unsigned short nDirection, int nID, int &nCheck);
    /// Radio buttons of consecutive identifiers: which of them is checked, counted from 0; -1:
    /// none.
    int ExchangeRadio(unsigned short nDirection, int nFirstID, int nLastID, int &nChecked);
    /// Which item of a list box or combo box is selected, counted from 0; -1: none.
    int ExchangeSelection(unsigned short nDirection, int nID, int &nSelected);
    /// @}
    /// For OnInitDialog: moves the dialog to the middle of its owner, without one of the primary
    /// screen, and as far as it must to be seen whole.
    void CenterOnOwner();

    /// For ExchangeData, which returns the result: tells the user that a control's text cannot be
    /// taken, and the trace which control that is; puts the focus there, with the text selected.
    /// Returns 0.
    virtual int ExchangeFail(int nID, CCUString &sMessage);
    /// WM_INITDIALOG. Nonzero: the system sets the focus (to `hFocus`). The base disables the
    /// owner, whose handlers may end the dialog, or delete it.
    virtual int OnInitDialog(HWND hFocus, LPARAM lParam);
    /// Moves the data in a direction, CUI_TOSCREEN or CUI_FROMSCREEN; 0 when it cannot.
    virtual int ExchangeData(unsigned short nDirection);
    /// Restores the parent's top-level window if it is minimised.
    virtual void RestoreParent(CCUIWindow *pParent);
    /// Whether the notification of a registered control means that the user changed it.
    /// @{
    virtual int IsWMCommandControlModified(int nCode, unsigned nID, HWND hControl);
    virtual int IsWMNotifyControlModified(int nCode, unsigned nID, HWND hControl);
    virtual int IsSpecialControlModified(int nCode, unsigned nID, HWND hControl);
    /// @}

public:
    int PreTranslateMessage(MSG *pMsg) override;

    /// Whether the last data exchange succeeded.
    bool IsDataValid() const { return m_bDataValid; }
    /// Whether something has changed since the last exchange that succeeded.
    bool IsDirty() const { return m_bDirty; }
    /// Calls OnEvent with "Dirty" when the dialog becomes dirty.
    void SetDirty(bool bDirty);

protected:
    long WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnDestroy() override;
    void OnCommand(UINT nCode, UINT nID, HWND hControl) override;
    long OnNotify(UINT nID, NMHDR *pHeader) override;
    void OnSysColorChange() override;

private:
    enum Mode
    {
        ModeNone,
        ModeModal,
        ModeModeless
    };
    class CRun;

    static INT_PTR CALLBACK DialogProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);
    static BOOL CALLBACK VisitChild(HWND hChild, LPARAM lParam);
    void MakeBrush();
    bool DisableOwner();
    void GiveOwnerBack();
    void WakeLoop() const;

    CCUIDialogTemplate m_template;
    CCUIControlList *m_pControls;
    COLORREF m_color;
    HBRUSH m_hBrush;
    HWND m_hFirstControl;

protected:
    HINSTANCE m_hInstance;  ///< of the template

private:
    const char *m_templateName;
    Mode m_mode;
    CRun *m_pRun;  // the innermost that a function is busy with; null: none
    bool m_bDataValid;
    bool m_bAutoMakeDirty;
    bool m_bDirty;
    bool m_bExchanging;
    HWND m_hRunOwner;       // of this run
    HWND m_hDisabledTop;    // disabled for this run
    bool m_bOwnerDisabled;  // by us
};
