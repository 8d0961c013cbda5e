#pragma once

/// @file
/// The system's metrics and colours, and GDI objects made from them.

#include "CUI/Platform.h"

/// A colour that stands for the button face, whatever it is when the colour is used.
const DWORD CUI_COLOR_BTNFACE = 0x03FFFFFF;

/// The system's metrics, colours and the GDI objects made from them, one record for the process:
/// CUIGetWinData(). Made at start-up. Users select the objects and never delete them; an update
/// deletes them and makes new ones. Fields that an update could not make are null, and reported.
/// For the user-interface thread.
class CUI_API CUIData
{
public:
    int bWin9x;  ///< 1 on Windows 95 and its successors, else 0
    int bWinNT;  ///< 1 on Windows NT, else 0

    /// The system's metric of that name (SM_CXVSCROLL and so on), in pixels.
    /// @{
    int cxVScroll;
    int cyHScroll;
    int cxIcon;
    int cyIcon;
    int cxFrame;
    int cyFrame;
    int cyCaption;
    int cxBorder;
    int cyBorder;
    /// @}
    /// 1 at first; for the framework's users to change.
    /// @{
    int bFlag1;
    int bFlag2;
    /// @}
    /// The system's metric of that name: a caption button, in pixels.
    /// @{
    int cxSize;
    int cySize;
    /// @}
    /// All of the desktop, in pixels.
    /// @{
    int cxDesktop;
    int cyDesktop;
    /// @}
    /// Pixels in a logical inch of the screen.
    /// @{
    int cxPixelsPerInch;
    int cyPixelsPerInch;
    /// @}
    int cyChar;  ///< height of an "M" in the screen's default font, in pixels

    HBRUSH hbrLtGray;  ///< a brush in crLtGray
    HBRUSH hbrDkGray;  ///< a brush in crLtGray too
    /// Brushes in the system's colour of that name.
    /// @{
    HBRUSH hbrBtnHilite;
    HBRUSH hbrBtnFace;
    HBRUSH hbrBtnShadow;
    HBRUSH hbrWindow;
    /// @}
    HPEN hpenLtGray;  ///< a pen in crLtGray, one pixel wide
    HPEN hpenDkGray;  ///< a pen in crDkGray, one pixel wide
    /// Pens in the system's colour of that name, one pixel wide.
    /// @{
    HPEN hpenBtnHilite;
    HPEN hpenBtnShadow;
    HPEN hpenBtnText;
    /// @}

    DWORD crMonoText;    ///< black: the text colour for monochrome conversion
    DWORD crMonoBkgnd;   ///< white: the background colour for it
    DWORD crLtGray;      ///< RGB(0xC0, 0xC0, 0xC0)
    DWORD crDkGray;      ///< RGB(0x80, 0x80, 0x80)
    DWORD crMenuBar;     ///< where the system has none, the entry of COLOR_MENU
    DWORD crMenuHilite;  ///< where the system has none, the entry of COLOR_HIGHLIGHT
    /// The system colours 0 to 20 (of later ones ask GetSysColor), tagged: 10 + index in the top
    /// byte. Not for GDI, which takes some tags for palette indexes: see ResolveColor.
    DWORD crSys[COLOR_BTNHIGHLIGHT + 1];

    /// The system's cursors IDC_WAIT, IDC_ARROW and IDC_IBEAM.
    /// @{
    HCURSOR hcurWait;
    HCURSOR hcurArrow;
    HCURSOR hcurIBeam;
    /// @}
    /// The fonts of the user's settings, and two of them in bold.
    /// @{
    HFONT hStatusFont;
    HFONT hMenuFont;
    HFONT hMenuFontBold;
    HFONT hIconFont;
    HFONT hIconFontBold;
    /// @}
    /// timeGetTime(), milliseconds, at the end of the last UpdateSysColors.
    DWORD dwColorStamp;

    CUIData(const CUIData &) = delete;
    CUIData &operator=(const CUIData &) = delete;

    /// To be called when the system's settings changed: metrics, then fonts.
    void UpdateWinIni();
    /// To be called when the system's colours changed: colours, brushes, pens, the stamp.
    void UpdateSysColors();
    /// The fonts alone.
    void UpdateSysFonts();

    /// The COLORREF that a colour stands for: CUI_COLOR_BTNFACE gives the button face colour, a
    /// top byte of 10 or more the system colour of that number less 10, else the colour itself.
    DWORD ResolveColor(DWORD cr) const;

protected:
    /// Reads everything; see CUIGetWinData for the object.
    CUIData();

private:
    void UpdateMetrics();
    void UpdateBrushes();
    void UpdatePens();
    friend CUI_API CUIData *CUIGetWinData();
};

/// The process's one record; never null.
CUI_API CUIData *CUIGetWinData();
