#pragma once

/// @file
/// Icons in the notification area of the task bar.

#include "CU/String.h"
#include "CUI/Platform.h"
#include "CUI/ResourceName.h"
#include "CUI/Window.h"

/// The picture of a balloon.
enum CUIBalloonIcon
{
    CUI_BALLOON_PLAIN,    ///< none
    CUI_BALLOON_INFO,     ///< an "i"
    CUI_BALLOON_WARNING,  ///< an exclamation mark
    CUI_BALLOON_ERROR     ///< a cross
};

/// An icon in the notification area, with a tip, a menu and balloons. It is there from Add to
/// Remove or the end of the object, and comes back by itself when the shell starts again, or starts
/// at all. The context menu is the one of SetContextMenu, refreshed from the commands' handlers as
/// it opens, and closes on a click elsewhere; its commands go to the command target.
///
/// It has a hidden window of its own, made by Add: so it needs none of the program's windows and
/// outlives each of them. A top-level one, since the shell tells no others of its start.
///
/// Calls return 1, or 0 where the shell refuses, which is traced: there may be none, or none yet,
/// or no shell32.dll, which the first icon loads. Systems without a notification area (NT 3.51)
/// have no icon, balloons need Windows Me or 2000; tips are cut to 63 characters, there to 127. For
/// the user-interface thread only.
class CCUINotifyIcon : public CCUIWindow
{
public:
    /// Not there.
    CUI_API CCUINotifyIcon();
    /// Removes the icon.
    CUI_API ~CCUINotifyIcon() override;

    /// Shows the icon, or changes that of one that is there. An HICON stays the caller's and must
    /// live as long as it is shown; one from a resource, by its name or MAKEINTRESOURCE(id), is
    /// loaded in the small size and is the object's. 0, and nothing changes, for a null or missing
    /// one. After a refusal of the shell the icon is shown when the shell starts.
    /// @{
    CUI_API int Add(HICON hIcon, const char *pszTip);
    CUI_API int Add(HINSTANCE hInstance, const char *name, const char *pszTip);
    template <typename Wide>
    int Add(HINSTANCE hInstance, const Wide *name, const char *pszTip)
    {
        return Add(hInstance, CUIResourceName(name), pszTip);
    }
    /// @}
    /// Change the icon, as Add, and the tip. 0 for an icon that is not there.
    /// @{
    CUI_API int SetIcon(HICON hIcon);
    CUI_API int SetIcon(HINSTANCE hInstance, const char *name);
    template <typename Wide>
    int SetIcon(HINSTANCE hInstance, const Wide *name)
    {
        return SetIcon(hInstance, CUIResourceName(name));
    }
    CUI_API int SetTip(const char *pszTip);
    /// @}
    /// Shows a balloon for some 10 to 30 seconds, as the system likes; up to 63 and 255 characters,
    /// an empty text takes it away. 0 where the system has none.
    CUI_API int ShowBalloon(const char *pszTitle, const char *pszText,
                            CUIBalloonIcon icon = CUI_BALLOON_INFO);
    /// Takes the icon away, its hidden window and a balloon with it.
    CUI_API void Remove();
    /// Whether Add has been called, and Remove has not.
    bool IsAdded() const { return m_bAdded; }

    /// Who gets the commands; null, as at first: their handlers. While the target is disabled, as
    /// the owner of a modal dialog is, a click of either button brings that dialog to the front,
    /// and nothing else happens.
    void SetCommandTarget(HWND hTarget) { m_hTarget = hTarget; }
    /// The command of a double click; 0, as at first: none.
    void SetDefaultCommand(unsigned int nID) { m_nDefault = nID; }

protected:
    /// A click with the left button; also the first of a double click. The base does nothing.
    CUI_API virtual void OnIconClick();
    /// The base sends the default command.
    CUI_API virtual void OnIconDoubleClick();
    /// The menu is asked for, at a point of the screen. The base shows the context menu, if any.
    CUI_API virtual void OnIconMenu(POINT &point);
    /// A balloon was clicked. The base does nothing.
    CUI_API virtual void OnBalloonClick();

    /// The icon's own handling.
    /// @{
    CUI_API void OnDestroy() override;
    CUI_API long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    /// @}

private:
    int Tell(DWORD nMessage, UINT nFlags);
    int Show();
    int AddIcon(HICON hIcon, bool bOwned, const char *pszTip);
    int ReplaceIcon(HICON hIcon, bool bOwned);
    void OnShellMessage(UINT message);
    bool WaitsForDialog();
    void SendCommand(unsigned int nID);

    HICON m_hIcon;
    bool m_bOwned;
    bool m_bAdded;
    bool m_bDoubleClick;  // the button is still to go up
    bool m_bInMenu;
    CCUString m_sTip;
    HWND m_hTarget;
    unsigned int m_nDefault;
};
