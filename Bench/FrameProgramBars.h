#pragma once

#include "CUI/ControlWindow.h"
#include "CUI/Data.h"
#include "FrameProgram.h"

// Stand-ins for a control bar and a status bar: windows that draw as much as those do, a row of
// buttons with pictures and a text in a pane, straight to the screen.

class CFrameBar : public CCUIControlWindow
{
public:
    int CreateBar(HWND hFrame)
    {
        SetFixedSize(28);
        return Create(nullptr, "", WS_CHILD | WS_VISIBLE, {}, hFrame, 1);
    }

protected:
    void OnPaint(HDC) override
    {
        const CUIData &data = *CUIGetWinData();
        PAINTSTRUCT paint;
        const HDC hDC = BeginPaint(*this, &paint);
        for (int i = 0; i < FRAME_BUTTONS; ++i) {
            const int x = 8 + i * 23;
            const RECT face = {x, 6, x + 16, 22};
            FillRect(hDC, &face, i % 2 ? data.hbrBtnShadow : data.hbrWindow);
            const RECT inner = {x + 4, 10, x + 12, 18};
            FillRect(hDC, &inner, data.hbrBtnHilite);
        }
        EndPaint(*this, &paint);
    }
};

class CFrameStatusBar : public CCUIControlWindow
{
public:
    int CreateBar(HWND hFrame)
    {
        SetFixedSize(20);
        return Create(nullptr, "", WS_CHILD | WS_VISIBLE, {}, hFrame, 2);
    }

protected:
    void OnPaint(HDC) override
    {
        PAINTSTRUCT paint;
        const HDC hDC = BeginPaint(*this, &paint);
        const HGDIOBJ hOld = SelectObject(hDC, CUIGetWinData()->hStatusFont);
        RECT rect;
        GetClientRect(*this, &rect);
        DrawEdge(hDC, &rect, BDR_SUNKENOUTER, BF_RECT);
        SetBkMode(hDC, TRANSPARENT);
        ExtTextOutA(hDC, 4, 3, 0, nullptr, FRAME_READY, sizeof FRAME_READY - 1, nullptr);
        SelectObject(hDC, hOld);
        EndPaint(*this, &paint);
    }
};
