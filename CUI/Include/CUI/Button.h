#pragma once

/// @file
/// Buttons that draw themselves.

#include "CUI/Bitmap.h"
#include "CUI/Control.h"
#include "CUI/Platform.h"

class CCUIMenu;

/// What a click does.
enum CUIButtonKind : int
{
    CUI_BUTTON_PUSH,   ///< tells the parent, no more
    CUI_BUTTON_CHECK,  ///< checks and unchecks
    /// Checks, and unchecks the other radio buttons of its group: the siblings from one with
    /// WS_GROUP to the next one with that. The arrow keys go from one to the other.
    CUI_BUTTON_RADIO,
    CUI_BUTTON_DROPDOWN,  ///< opens a menu
    CUI_BUTTON_SPLIT,     ///< as push; beside it an arrow that opens a menu
    /// As push, at once and again and again while it is held down, with the delay and the rate of
    /// the keyboard.
    CUI_BUTTON_REPEAT
};

/// Where a button's picture stands.
enum CUIPicturePlace : int
{
    CUI_PICTURE_LEFT,   ///< of the text
    CUI_PICTURE_RIGHT,  ///< of the text
    CUI_PICTURE_ABOVE,  ///< the text
    CUI_PICTURE_BELOW   ///< the text
};

/// In place of a picture's key colour: the picture has none.
const COLORREF CUI_NO_KEY_COLOR = 0xFFFFFFFF;

/// A button with text, picture or both: raised, as in dialogs (checks and radio buttons have a box
/// or a circle instead), or flat, as in tool bars, where those that are checked stay down. It
/// understands what dialogs say to the system's buttons: BM_GETCHECK, BM_SETCHECK, BM_GETSTATE,
/// BM_SETSTATE, BM_SETSTYLE (for the default button) and BM_CLICK, and so CheckDlgButton and the
/// like. A button that is bound to a command is checked when the command says so, and only then.
class CCUIButton : public CCUIControl
{
public:
    /// Bound to no window.
    CUI_API explicit CCUIButton(CUIButtonKind kind = CUI_BUTTON_PUSH);
    CUI_API ~CCUIButton() override;

    /// Flat or raised, at first. The mouse does not bring a flat one the focus.
    CUI_API void SetFlat(bool bFlat);
    /// A picture, which is shared: number nIndex in a row of pictures cx pixels wide (0: the whole
    /// bitmap). Pixels of the key colour, or of the button face without one, let the button shine
    /// through. It is stretched from nDpi, the dots an inch that it was drawn for, to those of the
    /// screen, where these are more. A bitmap that is null: no picture.
    CUI_API void SetPicture(const CCUIBitmap &bitmap, int nIndex = 0, int cx = 0,
                            COLORREF crKey = CUI_NO_KEY_COLOR, int nDpi = 96);
    /// CUI_PICTURE_LEFT at first.
    CUI_API void SetPicturePlace(CUIPicturePlace place);
    /// BST_UNCHECKED, BST_CHECKED or BST_INDETERMINATE. To set it tells nobody; a checked radio
    /// button becomes the one of its group that Tab reaches.
    /// @{
    CUI_API void SetCheck(UINT nCheck);
    CUI_API UINT GetCheck() const;
    /// @}
    /// The menu that OnDropDown opens; not owned, and to stay while it is open.
    void SetDropMenu(CCUIMenu *pMenu) { m_pMenu = pMenu; }
    /// Whether Enter presses it in its dialog, which is told, as long as no other button has the
    /// focus.
    CUI_API void SetDefault(bool bDefault);
    /// Opens the menu and waits; the button is down meanwhile.
    CUI_API void DropDown();

    CUI_API void GetNaturalSize(SIZE &size) override;
    CUI_API void TimeOut(long nNow) override;

protected:
    /// Opens the menu below, or above where there is more room. Its commands go where a bound
    /// button's do; they come when this has returned. To fill the menu, override this.
    CUI_API virtual void OnDropDown();

    CUI_API void Paint(HDC hDC, const RECT &rect) override;
    CUI_API void OnPress() override;
    CUI_API void OnRelease() override;
    CUI_API void OnClick() override;
    CUI_API int OnCreate(CREATESTRUCTA *pCreate) override;
    CUI_API long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    CUI_API UINT OnGetDlgCode(const MSG *pMsg) override;
    CUI_API void OnLButtonDown(UINT nFlags, POINT &point) override;
    CUI_API void OnKeyDown(UINT nKey, UINT nRepeat, UINT nFlags) override;
    CUI_API void OnSysKeyDown(UINT nKey, UINT nRepeat, UINT nFlags) override;

private:
    struct CParts;

    bool HasMark() const;
    bool HasArrow() const;
    bool IsCheckable() const;
    bool IsRaised() const;
    bool IsDown() const;
    void UpdateLook();
    SIZE GetContentSize();
    void Arrange(const RECT &client, CParts &parts);
    void PlaceContent(RECT rect, CParts &parts);
    void PaintFace(HDC hDC, const RECT &rect, bool bDown, DWORD &crFace);
    void PaintMark(HDC hDC, RECT rect);
    void PaintPicture(HDC hDC, const RECT &rect, COLORREF crFace);
    void PaintArrow(HDC hDC, const RECT &rect);
    void Repeat();
    bool MoveInGroup(bool bForward);
    void UncheckGroup();

    CUIButtonKind m_kind;
    CUIPicturePlace m_place;
    CCUIBitmap m_bitmap;
    int m_xPicture;  // in the bitmap
    SIZE m_picture;
    COLORREF m_crKey;
    CCUIMenu *m_pMenu;
    bool m_bFlat;
    bool m_bOpen;  // the menu is
};
