// An egg timer of three seconds. Each click starts another egg.

#include "CU/String.h"
#include "CU/Time.h"
#include "CU/Timer.h"
#include "CUI/Draw.h"
#include "CUI/Window.h"

//! [egg]
// One egg: tells its window ten times a second how far it is.
class CEgg : public CCUTimer
{
public:
    void Start(CCUIWindow &window)
    {
        m_pWindow = &window;
        m_nTenths = 0;
        SetAlarm(100);
    }
    void TimeOut(long) override
    {
        if (++m_nTenths < DONE)
            SetAlarm(100);
        m_pWindow->Invalidate();
    }
    int GetTenths() const { return m_nTenths; }

    static const int DONE = 30;

private:
    CCUIWindow *m_pWindow = nullptr;
    int m_nTenths = -1;
};
//! [egg]

//! [window]
class CKitchen : public CCUIWindow
{
protected:
    int OnCreate(CREATESTRUCTA *pCreate) override
    {
        m_eggs[m_nEggs++].Start(*this);
        return CCUIWindow::OnCreate(pCreate);
    }
    void OnLButtonDown(UINT, POINT &) override
    {
        if (m_nEggs < MOST_EGGS)
            m_eggs[m_nEggs++].Start(*this);
    }
    //! [window]

    void OnPaint(HDC) override
    {
        PAINTSTRUCT paint;
        BeginPaint(*this, &paint);
        for (int i = 0; i < m_nEggs; ++i) {
            const int nTenths = m_eggs[i].GetTenths();
            const bool bDone = nTenths == CEgg::DONE;
            CUIDCFillSolidRect(paint.hdc, 20, 20 + 26 * i, 8 * nTenths, 18,
                               bDone ? RGB(32, 144, 64) : RGB(232, 176, 48));
        }
        //! [clock]
        const CCUTimeSpan open = CCUTime() - m_start;
        const CCUString sOpen = open.Format("The kitchen has been open for %M:%S");
        //! [clock]
        TextOutA(paint.hdc, 20, 140, sOpen, sOpen.GetLength());
        EndPaint(*this, &paint);
    }

    void OnDestroy() override
    {
        CCUIWindow::OnDestroy();
        PostQuitMessage(0);
    }

private:
    static const int MOST_EGGS = 4;
    CEgg m_eggs[MOST_EGGS];
    int m_nEggs = 0;
    const CCUTime m_start;  // now
};

int main()
{
    CKitchen kitchen;
    const RECT place = {40, 40, 360, 240};
    if (!kitchen.Create(nullptr, "Kitchen", WS_OVERLAPPEDWINDOW | WS_VISIBLE, place, nullptr, 0))
        return 1;
    return CCUIWindow::RunLoop();
}
