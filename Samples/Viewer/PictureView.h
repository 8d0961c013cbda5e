#pragma once

#include <math.h>

#include <algorithm>

#include "CUI/BmpBlt.h"
#include "CUI/Control.h"

// Shows a picture: all of it, or larger, to be dragged about.
class CPictureView : public CCUIControl
{
public:
    CPictureView() { m_nShownStates = 0; }

    void SetPicture(const CCUIBitmap &picture)
    {
        m_picture = picture;
        SetPalette(picture);
        Fit();
    }
    const CCUIBitmap &GetPicture() const { return m_picture; }

    // As large as the window, at most as the picture.
    void Fit()
    {
        m_bFitted = true;
        Adjust();
    }
    bool IsFitted() const { return m_bFitted; }

    // Pixels of the screen for one of the picture, at most 16: Windows 95 draws no lengths above
    // 32,767. What is in the middle stays there.
    void ZoomTo(double zoom)
    {
        const double most = 32767. / std::max({m_picture.Width(), m_picture.Height(), 2048});
        zoom = std::max(LEAST_ZOOM, std::min(zoom, most));
        const int x = m_size.cx / 2, y = m_size.cy / 2;
        const double change = zoom / m_zoom;
        m_at = {x - lround((x - m_at.x) * change), y - lround((y - m_at.y) * change)};
        m_zoom = zoom;
        m_bFitted = false;
        Adjust();
    }
    // Two steps are twice as large, or half.
    void ZoomBy(int nSteps) { ZoomTo(exp2(round(2 * log2(m_zoom) + nSteps) / 2)); }
    double GetZoom() const { return m_zoom; }

private:
    void Paint(HDC hDC, const RECT &) override
    {
        SetStretchBltMode(hDC, m_zoom < 1 && m_picture.Depth() > 8 ? HALFTONE : COLORONCOLOR);
        CUIBmpStretchBlt(hDC, m_at.x, m_at.y, Scaled(m_picture.Width()), Scaled(m_picture.Height()),
                         m_picture, 0, 0, 0, 0, m_picture, FALSE);
    }
    void OnSize(UINT nType, int cx, int cy) override
    {
        m_size = {cx, cy};
        Adjust();
        CCUIControl::OnSize(nType, cx, cy);
    }
    void OnMouseMove(UINT nFlags, POINT &point) override
    {
        if (IsHeld())
            Pan(point.x - m_mouse.x, point.y - m_mouse.y);
        m_mouse = point;
        CCUIControl::OnMouseMove(nFlags, point);
    }
    void OnMouseWheel(UINT, int nDelta, POINT &) override { ZoomTo(m_zoom * exp2(nDelta / 240.)); }
    void OnKeyDown(UINT nKey, UINT nRepeat, UINT nFlags) override
    {
        const int x = (nKey == VK_LEFT) - (nKey == VK_RIGHT);
        const int y = (nKey == VK_UP) - (nKey == VK_DOWN);
        if (x || y)
            Pan(x * ARROW, y * ARROW);
        else
            CCUIControl::OnKeyDown(nKey, nRepeat, nFlags);
    }

    LONG Scaled(int n) const { return lround(n * m_zoom); }

    static constexpr double LEAST_ZOOM = 0.01;
    static constexpr int ARROW = 40;  // pixels that an arrow key moves the picture by

    void Pan(int cx, int cy)
    {
        m_at = {m_at.x + cx, m_at.y + cy};
        Adjust();
    }

    // Where a length begins: in the middle of a larger room, else so that it covers the room.
    static LONG Placed(LONG nAt, LONG nLength, LONG nRoom)
    {
        return nLength <= nRoom ? (nRoom - nLength) / 2
                                : std::max(nRoom - nLength, std::min(nAt, 0L));
    }
    void Adjust()
    {
        const int cx = m_picture.Width(), cy = m_picture.Height();
        if (m_picture && m_bFitted)
            m_zoom = std::max(LEAST_ZOOM, std::min({1., 1. * m_size.cx / cx, 1. * m_size.cy / cy}));
        m_at = {Placed(m_at.x, Scaled(cx), m_size.cx), Placed(m_at.y, Scaled(cy), m_size.cy)};
        Repaint();
    }

    CCUIBitmap m_picture;
    SIZE m_size = {};  // of the window
    POINT m_at = {};   // where the picture's corner is in it
    POINT m_mouse = {};
    double m_zoom = 1;
    bool m_bFitted = true;
};
