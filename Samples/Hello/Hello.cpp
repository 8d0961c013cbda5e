// A window that tells where it was clicked; the right button closes it.

#include <stdio.h>

#include "CU/String.h"
#include "CUI/Window.h"

class CHelloWindow : public CCUIWindow
{
protected:
    void OnLButtonDown(UINT, POINT &point) override
    {
        m_sText.Format("Click %d at %ld, %ld", ++m_nClicks, point.x, point.y);
        puts(m_sText);
        InvalidateRect(*this, nullptr, TRUE);
    }
    void OnRButtonDown(UINT, POINT &) override { Destroy(); }

    void OnPaint(HDC) override
    {
        PAINTSTRUCT paint;
        BeginPaint(*this, &paint);
        TextOutA(paint.hdc, 20, 20, m_sText, m_sText.GetLength());
        EndPaint(*this, &paint);
    }

    void OnDestroy() override
    {
        CCUIWindow::OnDestroy();
        PostQuitMessage(0);
    }

private:
    CCUString m_sText = "Click here";
    int m_nClicks = 0;
};

int main()
{
    CHelloWindow window;
    const RECT rect = {100, 100, 500, 300};
    if (!window.Create(nullptr, "Hello", WS_OVERLAPPEDWINDOW | WS_VISIBLE, rect, nullptr, 0))
        return 1;
    return CCUIWindow::RunLoop();
}
