// A sheet on which each click leaves a cross.

#include "CUI/Window.h"

//! [class]
class CSheet : public CCUIWindow
{
protected:
    void OnLButtonDown(UINT nFlags, POINT &point) override
    {
        if (m_nCrosses < MOST_CROSSES)
            m_crosses[m_nCrosses++] = point;
        Invalidate();
        CCUIWindow::OnLButtonDown(nFlags, point);
    }
    //! [class]

    //! [paint]
    void OnPaint(HDC) override
    {
        PAINTSTRUCT paint;
        BeginPaint(*this, &paint);
        for (int i = 0; i < m_nCrosses; ++i) {
            const POINT &at = m_crosses[i];
            MoveToEx(paint.hdc, at.x - 8, at.y - 8, nullptr);
            LineTo(paint.hdc, at.x + 9, at.y + 9);
            MoveToEx(paint.hdc, at.x - 8, at.y + 8, nullptr);
            LineTo(paint.hdc, at.x + 9, at.y - 9);
        }
        EndPaint(*this, &paint);
    }
    //! [paint]

    //! [end]
    void OnDestroy() override
    {
        CCUIWindow::OnDestroy();
        PostQuitMessage(0);
    }
    //! [end]

private:
    static const int MOST_CROSSES = 100;
    POINT m_crosses[MOST_CROSSES];
    int m_nCrosses = 0;
};

//! [main]
int main()
{
    CSheet sheet;
    const RECT place = {40, 40, 360, 240};
    if (!sheet.Create(nullptr, "Sheet", WS_OVERLAPPEDWINDOW | WS_VISIBLE, place, nullptr, 0))
        return 1;
    return CCUIWindow::RunLoop();
}
//! [main]
