// A module for the process of an AutoRun.exe: a small window tells what the launcher's window
// hears.

#include "CU/String.h"
#include "CUI/Window.h"

//! [watcher]
class CWatcher : public CCUIWindow, private CCUIWindowHook
{
public:
    void Watch(CCUIWindow &window)
    {
        if (Exist())
            return;
        m_pWatched = &window;
        const RECT place = window.GetPlace();
        CreateEx(WS_EX_TOOLWINDOW, nullptr, "Watcher", WS_POPUP | WS_CAPTION | WS_VISIBLE,
                 place.left + 20, place.bottom + 10, 260, 60, window, nullptr);
        window.InsertMessageHook(this);
    }

protected:
    void OnDestroy() override
    {
        m_pWatched->RemoveMessageHook(this);
        CCUIWindow::OnDestroy();
    }
    //! [watcher]

    //! [hook]
private:
    int OnHookMessage(UINT message, WPARAM, LPARAM lParam, long &) override
    {
        if (message == WM_LBUTTONDOWN) {
            m_sText.Format("Click %d at %d, %d", ++m_nClicks, LOWORD(lParam), HIWORD(lParam));
            Invalidate();
        }
        return 0;  // the launcher's window hears it as well
    }
    //! [hook]

    void OnPaint(HDC) override
    {
        PAINTSTRUCT paint;
        BeginPaint(*this, &paint);
        TextOutA(paint.hdc, 8, 8, m_sText, m_sText.GetLength());
        EndPaint(*this, &paint);
    }

    CCUIWindow *m_pWatched = nullptr;
    CCUString m_sText = "Not clicked yet";
    int m_nClicks = 0;
};

//! [entry]
static CWatcher s_watcher;

// Called by the system in the launcher's process, for a message of its window: see Loader.cpp.
extern "C" __declspec(dllexport) LRESULT CALLBACK
    WatcherHook(int nCode, WPARAM wParam, LPARAM lParam)
{
    const CWPSTRUCT *pCall = reinterpret_cast<const CWPSTRUCT *>(lParam);
    if (nCode == HC_ACTION && pCall->message == WM_APP)
        if (CCUIWindow *pWindow = CCUIWindow::FromHandle(pCall->hwnd))
            s_watcher.Watch(*pWindow);
    return CallNextHookEx(nullptr, nCode, wParam, lParam);
}
//! [entry]
