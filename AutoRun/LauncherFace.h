#pragma once

#include "CU/String.h"
#include "CUI/Bitmap.h"

class CSkinSource;
class CSkinTable;

// The lines of text that act as buttons, in the order of hit testing.
enum
{
    HotSpotSetup,
    HotSpotExit,
    HotSpotRun,
    HotSpotHelp,
    HotSpotNone,
    HotSpotCount = HotSpotNone
};

struct HotSpot
{
    POINT ptText;   // top left, client pixels
    POINT ptIcon;   // top left of the bullet beside it
    SIZE sizeText;  // of the text in the item font; the first one's width is 0 until measured
};

// What a launcher shows: pictures, texts and lines, where they are and how they are drawn. It knows
// no window, so that the tool for making discs draws with it, too.
class CLauncherFace
{
public:
    CLauncherFace();
    ~CLauncherFace() { DeleteFonts(); }
    CLauncherFace(const CLauncherFace &) = delete;
    CLauncherFace &operator=(const CLauncherFace &) = delete;

    // Reading in parts, since the order of reading is the order in which bad entries are reported.
    // Each may be repeated.
    void ReadBitmaps(const CSkinSource &source);
    void ReadFonts(CSkinTable &table);
    void ReadTexts(const CSkinTable &table);
    void ReadPoints(const CSkinTable &table);
    void ReadColors(CSkinTable &table);
    void DeleteFonts();
    // Before places are read once more: those that do not parse are then what they are in a new
    // launcher.
    void ForgetPoints()
    {
        m_ptProductBMP = m_ptProductIcon = m_ptTitleDVR = POINT();
        m_rectAbout = RECT();
        for (HotSpot &hotSpot : m_hotSpots)
            hotSpot.ptText = hotSpot.ptIcon = POINT();
    }
    // The next drawing measures the lines anew: texts or fonts are other ones.
    void ForgetSizes() { m_hotSpots[0].sizeText.cx = 0; }

    // The line whose text holds the point, or HotSpotNone. Before the first drawing texts have no
    // size.
    int HitTest(const POINT &point) const;

    // Draws all of it off screen and shows it at (0, 0) of hDC in one blit, so that nothing
    // flickers; selects and realises the background's palette. nHotSpot: the line under the mouse;
    // nPressed: the one that is held down; HotSpotNone: none.
    void Paint(HDC hDC, int nHotSpot, int nPressed);
    // The drawing alone, piece by piece, into a DC with transparent background mode.
    void Draw(HDC hDC, int nHotSpot, int nPressed);
    // Selects the background's palette into a window for a moment; whether colours of the screen
    // changed.
    bool RealizeBackground(HWND hWnd) const;

    const CCUIBitmap &Background() const { return m_bmpBackground; }
    const CCUIBitmap &Product() const { return m_bmpProduct; }
    const CCUIBitmap &Bullet() const { return m_bmpBullet; }
    const CCUString &Title() const { return m_strTitle; }
    const CCUString &About() const { return m_strAbout; }
    const POINT &TitlePlace() const { return m_ptTitleDVR; }
    const POINT &ProductPlace() const { return m_ptProductBMP; }
    const RECT &AboutPlace() const { return m_rectAbout; }
    const HotSpot &Line(int nHotSpot) const { return m_hotSpots[nHotSpot]; }
    HFONT TitleFont() const { return m_hFontTitle; }
    HFONT AboutFont() const { return m_hFontAbout; }

private:
    void DrawBitmaps(HDC hDC);
    void DrawTexts(HDC hDC, int nHotSpot, int nPressed);
    void DrawHotSpots(HDC hDC, int nHotSpot, int nPressed);
    void MeasureHotSpots(HDC hDC);

    CCUIBitmap m_bmpBackground;
    CCUIBitmap m_bmpProduct;
    CCUIBitmap m_bmpBullet;
    CCUString m_strTitle;
    CCUString m_strHotSpots[HotSpotCount];
    CCUString m_strAbout;
    POINT m_ptProductBMP;
    POINT m_ptProductIcon;  // read, and kept for skins that have it; nothing is drawn there
    POINT m_ptTitleDVR;
    HotSpot m_hotSpots[HotSpotCount];
    RECT m_rectAbout;
    HFONT m_hFontTitle;
    HFONT m_hFontItem;
    HFONT m_hFontAbout;
    COLORREF m_clrHighlight;
    COLORREF m_clrSpare;  // read, and kept for skins that have it; nothing is drawn in it
};
