#pragma once

#include "CU/String.h"
#include "CUI/Bitmap.h"
#include "CUI/Dialog.h"

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

// The launcher's only window: a borderless picture, centred on the screen, with four hot spots.
// Everything it shows and starts comes from the string table.
class CAutoRunDlg : public CCUIDialog
{
public:
    explicit CAutoRunDlg(HINSTANCE hInstance);

protected:
    long WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnDestroy() override;
    int OnEraseBkgnd(HDC hDC) override;
    void OnLButtonDown(UINT nFlags, POINT &point) override;
    void OnLButtonUp(UINT nFlags, POINT &point) override;
    void OnMouseMove(UINT nFlags, POINT &point) override;
    void OnCancelMode() override;
    void OnCaptureChanged(HWND hNew) override;

public:
    int PreTranslateMessage(MSG *pMsg) override;

protected:
    int OnInitDialog(HWND hFocus, LPARAM lParam) override;

private:
    void ReadFonts(CSkinTable &table);
    void DeleteFonts();
    void ReadTexts(const CSkinTable &table);
    void ReadPoints(const CSkinTable &table);
    void PlaceWindow();
    void SetIcons();

    void SetHotSpot(int nHotSpot);
    int HitTest(const POINT &point) const;
    void Activate(int nHotSpot);
    void Start(UINT nCommandLineID);

    void PaintIcon(HDC hDC);
    void PaintPicture(HDC hDC);
    void DrawBitmaps(HDC hDC);
    void DrawTexts(HDC hDC);
    void DrawHotSpots(HDC hDC);
    void MeasureHotSpots(HDC hDC);
    bool RealizeBackground();

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
    HICON m_hIcon;
    COLORREF m_clrHighlight;
    COLORREF m_clrSpare;  // read, and kept for skins that have it; nothing is drawn in it
    int m_nHotSpot;       // under the mouse
    int m_nPressed;       // where the left button went down; HotSpotNone: nowhere
};
