#pragma once

#include "CUI/Platform.h"

// A colour that stands for the button face, whatever it is when the colour is used.
const DWORD CUI_COLOR_BTNFACE = 0x03FFFFFF;

// The system's metrics, colours and the GDI objects made from them, one record for the process:
// CUIGetWinData(). Made at start-up. Users select the objects and never delete them; an update
// deletes them and makes new ones. Fields that an update could not make are null, and reported. For
// the user-interface thread.
class CUI_API CUIData
{
public:
    int bWin9x;  // exactly one of the two is 1 where the platform is known
    int bWinNT;

    int cxVScroll;  // pixels, as are all sizes here
    int cyHScroll;
    int cxIcon;
    int cyIcon;
    int cxFrame;
    int cyFrame;
    int cyCaption;
    int cxBorder;
    int cyBorder;
    int bFlag1;  // 1; for the framework's users to change
    int bFlag2;
    int cxSize;  // a caption button
    int cySize;
    int cxDesktop;
    int cyDesktop;
    int cxPixelsPerInch;  // logical inch of the screen
    int cyPixelsPerInch;
    int cyChar;  // an "M" in the screen's default font

    HBRUSH hbrLtGray;
    HBRUSH hbrDkGray;  // light grey too
    HBRUSH hbrBtnHilite;
    HBRUSH hbrBtnFace;
    HBRUSH hbrBtnShadow;
    HBRUSH hbrWindow;
    HPEN hpenLtGray;
    HPEN hpenDkGray;
    HPEN hpenBtnHilite;
    HPEN hpenBtnShadow;
    HPEN hpenBtnText;

    DWORD crMonoText;   // black: the text colour for monochrome conversion
    DWORD crMonoBkgnd;  // white: the background colour for it
    DWORD crLtGray;
    DWORD crDkGray;
    DWORD crMenuBar;     // where the system has none, the entry of COLOR_MENU
    DWORD crMenuHilite;  // where the system has none, the entry of COLOR_HIGHLIGHT
    // The system colours 0 to 20, tagged: 10 + index in the top byte. Not for GDI, which takes some
    // tags for palette indexes: see ResolveColor.
    DWORD crSys[COLOR_BTNHIGHLIGHT + 1];

    HCURSOR hcurWait;
    HCURSOR hcurArrow;
    HCURSOR hcurIBeam;
    HFONT hStatusFont;
    HFONT hMenuFont;
    HFONT hMenuFontBold;
    HFONT hIconFont;
    HFONT hIconFontBold;
    // timeGetTime(), milliseconds, at the end of the last UpdateSysColors.
    DWORD dwColorStamp;

    CUIData(const CUIData &) = delete;
    CUIData &operator=(const CUIData &) = delete;

    // To be called when the system's settings changed: metrics, then fonts.
    void UpdateWinIni();
    // To be called when the system's colours changed: colours, brushes, pens, the stamp.
    void UpdateSysColors();
    void UpdateSysFonts();

    // The COLORREF that a colour stands for: CUI_COLOR_BTNFACE gives the button face colour, a
    // top byte of 10 or more the system colour of that number less 10, else the colour itself.
    DWORD ResolveColor(DWORD cr) const;

protected:
    CUIData();

private:
    void UpdateMetrics();
    void UpdateBrushes();
    void UpdatePens();
    friend CUI_API CUIData *CUIGetWinData();
};

CUI_API CUIData *CUIGetWinData();
