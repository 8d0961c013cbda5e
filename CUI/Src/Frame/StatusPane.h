#pragma once

#include "Base/Array.h"
#include "CUI/StatusBar.h"

// One pane of a status bar: what it shows, and where.
struct CCUIStatusPane
{
    CUIPaneWidth width = CUI_PANE_STRETCH;
    int nSize = 1;
    CCUString sText;
    CCUIBitmap given;  // the picture as it came
    int nDpi = 96;     // that it was drawn for
    CCUIBitmap picture;
    int nProgress = 0;
    int nMost = 0;       // 0: no progress
    int cxContent = -1;  // what a fitting pane takes; below 0: not measured yet
    RECT rc = {0, 0, 0, 0};
    RECT rcBefore = {0, 0, 0, 0};  // before the last layout

    // Where the pane's progress has come to, in pixels of its client rectangle.
    int ProgressWidth() const;
    RECT ProgressRect() const;
    // Makes the picture of what was given, for the screen's colours and dots an inch of now.
    void RefreshPicture();
    void Draw(HDC hDC, const CCUString *psHelp, COLORREF crText) const;

private:
    RECT Inside() const;
    void DrawContent(HDC hDC, RECT rc, COLORREF crText) const;
};

// The panes of a bar, from left to right.
class CCUIStatusPanes : public CCUArray<CCUIStatusPane>
{
public:
    // The height of a bar that has them.
    int NaturalHeight() const;
    void ForgetWidths();
    // Gives each its place in cx by cy pixels.
    void Layout(int cx, int cy);

private:
    int Width(CCUIStatusPane &pane, HDC hDC) const;
};
