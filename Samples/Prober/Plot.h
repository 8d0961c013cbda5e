#pragma once

#include <algorithm>
#include <deque>
#include <vector>

#include "CUI/Control.h"

// Pixels at 96 dots per inch, in those of the screen.
inline int ToScreen(int nPixels)
{
    const HDC hDC = GetDC(nullptr);
    const int nScaled = MulDiv(nPixels, GetDeviceCaps(hDC, LOGPIXELSY), 96);
    ReleaseDC(nullptr, hDC);
    return nScaled;
}

// The history of a number as a line, the latest value at the right edge.
class CPlot : public CCUIControl
{
public:
    CPlot()
    {
        m_nShownStates = 0;
        m_bFocusOnClick = false;
        m_bOpaque = true;
    }

    void Clear()
    {
        m_values.clear();
        Repaint();
    }
    void Add(double fValue)
    {
        m_values.push_back(fValue);
        if (m_values.size() > MOST)
            m_values.pop_front();
        Repaint();
    }

private:
    static constexpr size_t MOST = 2000;
    static constexpr int STEP = 3;  // pixels between two values, at 96 dots per inch

    void Paint(HDC hDC, const RECT &rect) override
    {
        Fill(hDC, rect, GetSysColor(COLOR_WINDOW));
        RECT rcEdge = rect;
        DrawEdge(hDC, &rcEdge, EDGE_SUNKEN, BF_RECT | BF_ADJUST);
        if (m_values.empty())
            return;
        const auto range = std::minmax_element(m_values.begin(), m_values.end());
        const double fLeast = *range.first, fMost = *range.second;
        ::SetTextColor(hDC, GetSysColor(COLOR_WINDOWTEXT));
        SetBkMode(hDC, TRANSPARENT);
        RECT rcText = rcEdge;
        InflateRect(&rcText, -Scaled(4), -Scaled(2));
        const int nLine = DrawLabel(hDC, rcText, fMost, DT_TOP);
        DrawLabel(hDC, rcText, fLeast, DT_BOTTOM);
        InflateRect(&rcText, 0, -nLine);
        DrawLine(hDC, rcText, fLeast, fMost, GetSysColor(COLOR_WINDOWTEXT));
    }

    static int DrawLabel(HDC hDC, RECT rect, double fValue, UINT nPlace)
    {
        CCUString sText;
        sText.Format("%.10g", fValue);
        return DrawTextA(hDC, sText, sText.GetLength(), &rect,
                         DT_LEFT | DT_SINGLELINE | DT_NOPREFIX | nPlace);
    }

    // What does not change is in the middle.
    void DrawLine(HDC hDC, const RECT &rect, double fLeast, double fMost, COLORREF cr) const
    {
        const double fHeight = rect.bottom - rect.top - 1;
        std::vector<POINT> points;
        LONG x = rect.right - 1;
        for (auto i = m_values.rbegin(); i != m_values.rend() && x >= rect.left; ++i) {
            const double fPart = fMost > fLeast ? (*i - fLeast) / (fMost - fLeast) : 0.5;
            points.push_back({x, rect.bottom - 1 - static_cast<LONG>(fPart * fHeight)});
            x -= Scaled(STEP);
        }
        const HPEN hPen = CreatePen(PS_SOLID, Scaled(2), cr);
        const HGDIOBJ hOld = SelectObject(hDC, hPen);
        Polyline(hDC, points.data(), static_cast<int>(points.size()));
        SelectObject(hDC, hOld);
        DeleteObject(hPen);
    }

    std::deque<double> m_values;
};
