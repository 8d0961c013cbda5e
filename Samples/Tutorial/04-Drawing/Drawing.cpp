// Threads from the edges of the window to the mouse, painted in memory and shown at once.

#include "CUI/Draw.h"
#include "CUI/OffScreenDC.h"
#include "CUI/Window.h"

class CThreads : public CCUIWindow
{
protected:
    //! [mouse]
    void OnMouseMove(UINT, POINT &point) override
    {
        m_center = point;
        Invalidate();
    }
    //! [mouse]

    //! [erase]
    int OnEraseBkgnd(HDC) override { return 1; }
    //! [erase]

    //! [paint]
    void OnPaint(HDC) override
    {
        PAINTSTRUCT paint;
        BeginPaint(*this, &paint);
        const RECT area = GetClientArea();
        if (const HDC hDC = CUIGetOSDC()->GetDC(paint.hdc, area.right, area.bottom)) {
            Paint(hDC, area);
            BitBlt(paint.hdc, 0, 0, area.right, area.bottom, hDC, 0, 0, SRCCOPY);
        }
        CUIGetOSDC()->ReleaseDC();
        EndPaint(*this, &paint);
    }
    //! [paint]

    void OnDestroy() override
    {
        CCUIWindow::OnDestroy();
        PostQuitMessage(0);
    }

private:
    //! [threads]
    void Paint(HDC hDC, const RECT &area)
    {
        CUIDCFillSolidRect(hDC, &area, RGB(16, 24, 48));
        const HGDIOBJ hOldPen = SelectObject(hDC, m_hPen);
        for (int x = 0; x <= area.right; x += 12) {
            Thread(hDC, x, 0);
            Thread(hDC, x, area.bottom);
        }
        for (int y = 0; y <= area.bottom; y += 12) {
            Thread(hDC, 0, y);
            Thread(hDC, area.right, y);
        }
        SelectObject(hDC, hOldPen);
        CUIDCDraw3dRect(hDC, &area, RGB(64, 96, 160), RGB(0, 0, 0), FALSE, FALSE);
    }
    //! [threads]

    void Thread(HDC hDC, int x, int y)
    {
        MoveToEx(hDC, x, y, nullptr);
        LineTo(hDC, m_center.x, m_center.y);
    }

public:
    CThreads() : m_hPen(CreatePen(PS_SOLID, 1, RGB(240, 200, 96))) {}
    ~CThreads() override { DeleteObject(m_hPen); }

private:
    const HPEN m_hPen;
    POINT m_center = {100, 60};
};

int main()
{
    CThreads threads;
    const RECT place = {40, 40, 360, 240};
    if (!threads.Create(nullptr, "Threads", WS_OVERLAPPEDWINDOW | WS_VISIBLE, place, nullptr, 0))
        return 1;
    return CCUIWindow::RunLoop();
}
