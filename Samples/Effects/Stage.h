#pragma once

#include <algorithm>

#include "CUI/ControlWindow.h"
#include "CUI/Data.h"
#include "CUI/Effects.h"

// Pixels at 96 dots per inch, in those of the screen.
inline int ToScreen(int nPixels)
{
    const HDC hDC = GetDC(nullptr);
    const int nScaled = MulDiv(nPixels, GetDeviceCaps(hDC, LOGPIXELSY), 96);
    ReleaseDC(nullptr, hDC);
    return nScaled;
}

// A bitmap of a night or a day by the sea. Without a sky it has the key colour there.
const DWORD SKY_KEY = RGB(255, 0, 255);

inline CCUIBitmap MakePicture(int nWidth, int nHeight, bool bNight, bool bSky)
{
    const int cx = ToScreen(nWidth), cy = ToScreen(nHeight);
    const HDC hScreen = GetDC(nullptr);
    const HDC hDC = CreateCompatibleDC(hScreen);
    const HBITMAP hBitmap = CreateCompatibleBitmap(hScreen, cx, cy);
    ReleaseDC(nullptr, hScreen);
    const HGDIOBJ hOld = SelectObject(hDC, hBitmap);
    const auto fill = [hDC](int left, int top, int right, int bottom, DWORD cr) {
        const RECT rect = {left, top, right, bottom};
        const HBRUSH hBrush = CreateSolidBrush(cr);
        FillRect(hDC, &rect, hBrush);
        DeleteObject(hBrush);
    };
    const int nHorizon = cy * 3 / 5;
    for (int y = 0; y < nHorizon; y += 4) {
        const int n = 160 * y / cy;
        const DWORD cr = bNight ? RGB(n / 2, n / 3, 60 + n) : RGB(90 + n, 150 + n / 2, 235);
        fill(0, y, cx, y + 4, bSky ? cr : SKY_KEY);
    }
    for (int y = nHorizon; y < cy; y += 4) {
        const int n = 120 * (cy - y) / cy;
        fill(0, y, cx, y + 4, bNight ? RGB(10, 20 + n / 2, 50 + n) : RGB(20, 90 + n, 140 + n));
    }
    SelectObject(hDC, GetStockObject(NULL_PEN));
    const HBRUSH hSun = CreateSolidBrush(bNight ? RGB(250, 250, 210) : RGB(255, 200, 40));
    const HGDIOBJ hOldBrush = SelectObject(hDC, hSun);
    const int nSize = cy / 4, x = bNight ? cx * 2 / 3 : cx / 5;
    Ellipse(hDC, x, cy / 8, x + nSize, cy / 8 + nSize);
    const POINT sail[] = {{cx / 2, cy / 4}, {cx / 2, nHorizon}, {cx / 2 + cy / 4, nHorizon}};
    SelectObject(hDC, GetStockObject(WHITE_BRUSH));
    Polygon(hDC, sail, 3);
    const POINT hull[] = {{cx / 2 - cy / 6, nHorizon + 3},
                          {cx / 2 + cy / 3, nHorizon + 3},
                          {cx / 2 + cy / 5, nHorizon + cy / 8},
                          {cx / 2 - cy / 10, nHorizon + cy / 8}};
    SelectObject(hDC, GetStockObject(DKGRAY_BRUSH));
    Polygon(hDC, hull, 4);
    SelectObject(hDC, hOldBrush);
    DeleteObject(hSun);
    SelectObject(hDC, hOld);
    DeleteDC(hDC);
    return CCUIBitmap(hBitmap, nullptr);
}

// A window with an effect all over it and its name below.
class CStage : public CCUIControlWindow
{
public:
    CStage(const char *pszName, CCUITimeBasedEffect &effect) : m_effect(effect), m_sName(pszName)
    {
        SetLayoutFlags(CUI_PLACE_FILL | CUIPlaceWeight(1));
    }

    void Begin() { m_effect.Start(this, Place()); }
    // Shows the picture at a progress, and nothing moves.
    void Show(double fProgress)
    {
        m_effect.Stop();
        m_fProgress = fProgress;
        InvalidateRect(*this, nullptr, FALSE);
    }

protected:
    void OnSize(UINT nType, int cx, int cy) override
    {
        m_effect.Move(Place());
        InvalidateRect(*this, nullptr, TRUE);
        CCUIControlWindow::OnSize(nType, cx, cy);
    }
    void OnPaint(HDC) override
    {
        PAINTSTRUCT paint;
        const HDC hDC = BeginPaint(*this, &paint);
        if (!m_effect.GetWindow())
            m_effect.Draw(hDC, Place(), m_fProgress);
        RECT rect;
        GetClientRect(*this, &rect);
        rect.top = Place().bottom;
        FillRect(hDC, &rect, CUIGetWinData()->hbrBtnFace);
        SelectObject(hDC, CUIGetWinData()->hIconFont);
        SetBkMode(hDC, TRANSPARENT);
        SetTextColor(hDC, GetSysColor(COLOR_BTNTEXT));
        DrawTextA(hDC, m_sName, -1, &rect, DT_CENTER | DT_SINGLELINE | DT_VCENTER);
        EndPaint(*this, &paint);
    }
    int OnEraseBkgnd(HDC) override { return 1; }

private:
    RECT Place() const
    {
        RECT rect;
        GetClientRect(*this, &rect);
        rect.bottom = std::max(rect.bottom - 2L * CUIGetWinData()->cyChar, rect.top);
        return rect;
    }

    CCUITimeBasedEffect &m_effect;
    CCUString m_sName;
    double m_fProgress = 0;
};
