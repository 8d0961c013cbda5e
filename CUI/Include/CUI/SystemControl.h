#pragma once

/// @file
/// What all classes over the system's own controls have in common.

#include "CU/String.h"
#include "CUI/ControlWindow.h"
#include "CUI/Platform.h"

/// A kind of control of the system: its window class and how CreateControl makes one.
struct CCUISystemClass
{
    const char *pszName;  ///< of the window class; kept as a pointer
    DWORD dwStyle;        ///< the usual style
    DWORD dwExStyle;      ///< the extended style
    /// A message that such a control answers with other than 0, and other windows with 0: Bind
    /// knows classes of a program's own by it, made from the system's. 0: there is none.
    UINT nProbe;
    bool bCommon;      ///< from comctl32.dll
    unsigned char cx;  ///< the usual width, in the units of dialogs
    unsigned char cy;  ///< the usual height, in the units of dialogs
};

/// The base of the thin typed classes over the system's controls. An object makes its control
/// (CreateControl, Create) or binds itself to one of a dialog (Bind). Either is a control window: a
/// layout arranges it, Tab goes from and to it, and all handlers of CCUIWindow may be overridden.
///
/// What a control tells its parent comes back to the object, where the parent is a framework
/// window, as a call of a virtual function such as OnChange. Each answers whether it handled that:
/// nonzero, and the parent does not see it; the bases answer 0. It may delete the object. Then, as
/// whenever an object is deleted, a control that the object made goes with it, and one that it was
/// bound to stays as it was; a control that is just telling something is hidden at once and goes a
/// moment later.
///
/// Texts are of any length and in the ANSI code page. Lists count from 0; -1 is none. Without a
/// control, functions do nothing and answer 0 or nothing. Sizes and positions are in pixels.
///
/// The classes of comctl32.dll load that library as an object is constructed, so that an object
/// that is a member of a dialog's class is early enough for the dialog's template; no such object
/// may be a static of a module (DLL). All of them are there on Windows 95 and NT 4; what needs a
/// later library, which came with the Internet Explorer that is named, says so, and without that
/// does nothing. Creation fails, with a line in the trace, where the system has no such class.
///
/// For the thread of the window only.
class CCUISystemControl : public CCUIControlWindow
{
public:
    CUI_API ~CCUISystemControl() override;

    /// Creates the control as a visible child. The style is the one given, with WS_CHILD and
    /// WS_VISIBLE; 0: the usual one of the class, its member STYLE. It has the font of its parent,
    /// else that of menus, also after the user has chosen another. prc is in client pixels of the
    /// parent; null: at its corner, as large as GetNaturalSize says. 1 on success.
    CUI_API int CreateControl(HWND hParent, UINT nID, const char *pszText = nullptr,
                              DWORD dwStyle = 0, const RECT *prc = nullptr);
    /// Binds the object to the control of a dialog, or of any other window. The control must be of
    /// the right window class, or of one that was made from that; anything else is reported. An
    /// object that the control was bound to before lets go of it. 1 on success; 0, and a line in
    /// the trace, when there is no such control or another thread or program has made it.
    CUI_API int Bind(HWND hDialog, UINT nID);
    /// Lets go of the control, which stays; null if there is none. Not to be replaced by Detach,
    /// which leaves the layout's property behind.
    CUI_API HWND Unbind();

    /// The font; not owned. Null: the system's.
    /// @{
    void SetFont(HFONT hFont) { Send(WM_SETFONT, FromPointer<WPARAM>(hFont), 1); }
    HFONT GetFont() const { return reinterpret_cast<HFONT>(Send(WM_GETFONT)); }
    /// @}
    /// Enables or disables it. A focus that would be lost goes on to the next control.
    CUI_API void Enable(bool bEnable);
    /// Off, while much is changed: nothing is painted; on again: all of it. A hidden control stays
    /// hidden.
    CUI_API void SetRedraw(bool bRedraw);
    /// The colour of texts, as CUIData::ResolveColor takes it, or CUI_NO_WINDOW_COLOR, as at first.
    /// With SetWindowColor, which is the background's, it counts for static texts, edits, list
    /// boxes, check boxes and the backgrounds of track bars.
    CUI_API void SetTextColor(DWORD crText);

    /// The size that the control needs, in pixels; the answer to CUI_WM_NATURALSIZE. The usual one
    /// of its class for its font, unless the class says otherwise.
    CUI_API virtual void GetNaturalSize(SIZE &size);

    CUI_API int PreCreate(CREATESTRUCTA *pCreate) override;
    CUI_API int PreTranslateMessage(MSG *pMsg) override;

    /// Sends the control a message.
    /// @{
    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const
    {
        return SendMessageA(m_hWnd, message, wParam, lParam);
    }
    template <typename T>
    LRESULT Send(UINT message, WPARAM wParam, T *pParam) const
    {
        return SendMessageA(m_hWnd, message, wParam, FromPointer<LPARAM>(pParam));
    }
    /// @}

protected:
    /// Bound to no control.
    CUI_API explicit CCUISystemControl(const CCUISystemClass &systemClass);

    /// The control told its parent something by WM_COMMAND: nCode is its notification.
    virtual int OnControlCommand(UINT) { return 0; }
    /// It did so by WM_NOTIFY; `result` is the answer of one that was handled.
    virtual int OnControlNotify(NMHDR *, long &) { return 0; }
    /// It did so by WM_HSCROLL or WM_VSCROLL; nCode is an SB_ or TB_ code.
    virtual int OnControlScroll(UINT) { return 0; }
    /// Enter was pressed in the control, in a dialog before that presses its default button.
    virtual int OnReturn() { return 0; }

    /// Whether Enter, pressed in that window, which is the control or inside of it, is for
    /// OnReturn.
    virtual bool IsReturnFor(HWND hFocus) const { return hFocus == m_hWnd; }

    CUI_API long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    CUI_API int OnReflectedMessage(UINT message, WPARAM wParam, LPARAM lParam,
                                   long &result) override;
    CUI_API int OnReflectedNotification(UINT nID, NMHDR *pHeader, long &result) override;
    CUI_API void OnWinIniChange(WPARAM nAction, const char *section) override;

    /// For derived classes.
    /// @{
    /// An item's text: nLengthMessage answers its length, nTextMessage writes it.
    CUI_API CCUString FetchText(UINT nLengthMessage, UINT nTextMessage, WPARAM nItem) const;
    /// The text of an item's record, of which pszText and nMax are members: buffers of growing size
    /// are offered until the text fits.
    CUI_API CCUString FetchText(UINT nMessage, WPARAM wParam, void *pItem, char *&pszText,
                                int &nMax) const;
    /// Whether all of these bits are in the style.
    bool HasStyle(DWORD dwStyle) const
    {
        return (static_cast<DWORD>(GetWindowLongA(m_hWnd, GWL_STYLE)) & dwStyle) == dwStyle;
    }
    /// Takes bits from the style, and adds others.
    void ModifyStyle(DWORD dwRemove, DWORD dwAdd)
    {
        const auto dwStyle = static_cast<DWORD>(GetWindowLongA(m_hWnd, GWL_STYLE));
        SetWindowLongA(m_hWnd, GWL_STYLE, static_cast<LONG>((dwStyle & ~dwRemove) | dwAdd));
    }
    /// Where the mouse was at the last message of the queue, in client pixels.
    POINT GetMessagePoint() const
    {
        const DWORD dwPos = GetMessagePos();
        POINT point = {static_cast<SHORT>(LOWORD(dwPos)), static_cast<SHORT>(HIWORD(dwPos))};
        ScreenToClient(m_hWnd, &point);
        return point;
    }
    /// A pointer as a parameter of a message.
    template <typename Param, typename T>
    static Param FromPointer(T *p)
    {
        return reinterpret_cast<Param>(p);
    }
    /// For sorting: calls the Compare that lParam points to.
    template <typename Compare>
    static int CALLBACK CallCompare(LPARAM lFirst, LPARAM lSecond, LPARAM lParam)
    {
        return (*reinterpret_cast<Compare *>(lParam))(lFirst, lSecond);
    }
    static char *InText(const char *psz)  ///< for records that are read only; null is ""
    {
        return const_cast<char *>(psz ? psz : "");
    }
    /// @}

private:
    class CNotice;
    bool IsOfClass(HWND hWnd) const;
    void UseSharedFont();
    long GetColors(UINT message, HDC hDC);

    CCUISystemClass m_class;
    HFONT m_hSharedFont;  // what CreateControl gave the control; null: nothing
    DWORD m_crText;
    COLORREF m_crBrush;  // of the brush
    HBRUSH m_hBrush;     // of the background, made when it is asked for
    int m_nNotices;      // what the control is just telling
    bool m_bMade;        // it goes with the object
    bool m_bRedrawOff;
};
