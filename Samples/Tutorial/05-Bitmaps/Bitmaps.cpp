// A picture with its palette, as large as the window, and a sun cut out of another one.

#include "CUI/Bitmap.h"
#include "CUI/BmpBlt.h"
#include "CUI/Window.h"
#include "Resource.h"

class CPictureWindow : public CCUIWindow
{
public:
    //! [load]
    CPictureWindow()
        : m_hills(IDB_HILLS, CUIBMP_PALETTE, GetModuleHandle(nullptr)),
          m_sun(IDB_SUN, 0, GetModuleHandle(nullptr))
    {
    }
    bool HasPictures() const { return m_hills && m_sun; }
    //! [load]
    ~CPictureWindow() override { DeleteObject(m_hSunMask); }

protected:
    int OnCreate(CREATESTRUCTA *pCreate) override
    {
        //! [mask]
        const HDC hDC = GetDC(*this);
        m_hSunMask = CUIBmpMakeMask(hDC, 0, 0, m_sun, RGB(255, 0, 255));
        ReleaseDC(*this, hDC);
        //! [mask]
        return CCUIWindow::OnCreate(pCreate);
    }

    int OnEraseBkgnd(HDC) override { return 1; }

    //! [paint]
    void OnPaint(HDC) override
    {
        PAINTSTRUCT paint;
        BeginPaint(*this, &paint);
        const RECT area = GetClientArea();
        SelectPalette(paint.hdc, m_hills, FALSE);
        RealizePalette(paint.hdc);
        SetStretchBltMode(paint.hdc, COLORONCOLOR);
        CUIBmpStretchBlt(paint.hdc, 0, 0, area.right, area.bottom, m_hills, 0, 0, 0, 0, m_hills, 0);
        CUIBmpTransparentBlt(paint.hdc, 30, 20, m_sun, m_hSunMask);
        EndPaint(*this, &paint);
    }
    //! [paint]

    //! [palette]
    long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        const bool bOthers = message == WM_PALETTECHANGED && HWND(wParam) != GetHandle();
        if (message != WM_QUERYNEWPALETTE && !bOthers)
            return CCUIWindow::OnMessage(message, wParam, lParam);
        const HDC hDC = GetDC(*this);
        SelectPalette(hDC, m_hills, bOthers);
        const bool bChanged = RealizePalette(hDC) > 0;
        ReleaseDC(*this, hDC);
        if (bChanged)
            Invalidate();
        return bChanged;
    }
    //! [palette]

    void OnDestroy() override
    {
        CCUIWindow::OnDestroy();
        PostQuitMessage(0);
    }

private:
    CCUIBitmap m_hills;
    CCUIBitmap m_sun;
    HBITMAP m_hSunMask = nullptr;
};

int main()
{
    CPictureWindow window;
    const RECT place = {40, 40, 360, 240};
    if (!window.HasPictures() ||
        !window.Create(nullptr, "Bitmaps", WS_OVERLAPPEDWINDOW | WS_VISIBLE, place, nullptr, 0))
        return 1;
    return CCUIWindow::RunLoop();
}
