// A list beside a page, with a splitter between them, above a line of status: nested layouts.

#include "CU/String.h"
#include "CUI/Draw.h"
#include "CUI/LayoutWindow.h"

// A control that shows its name on its colour.
class CPanel : public CCUIControlWindow
{
public:
    CPanel(HWND hParent, const char *pszName, COLORREF color, int nSize, unsigned long nFlags)
        : m_sName(pszName)
    {
        SetWindowColor(color);
        SetFixedSize(nSize);
        SetLayoutFlags(nFlags);
        Create(nullptr, "", WS_CHILD | WS_VISIBLE, {0, 0, 0, 0}, hParent, 0);
    }

protected:
    int OnEraseBkgnd(HDC hDC) override
    {
        RECT rect;
        GetClientRect(*this, &rect);
        CUIDCFillSolidRect(hDC, &rect, GetWindowColor());
        SetBkMode(hDC, TRANSPARENT);
        TextOutA(hDC, 6, 4, m_sName, m_sName.GetLength());
        return 1;
    }

private:
    CCUString m_sName;
};

// The window itself is the outer layout, a column.
class CMainWindow : public CCUILayoutWindow
{
protected:
    void OnDestroy() override
    {
        CCUILayoutWindow::OnDestroy();
        PostQuitMessage(0);
    }
};

int main()
{
    CMainWindow window;
    window.SetMargins({8, 8, 8, 8});
    window.SetGap(8);
    const RECT rect = {100, 100, 500, 340};
    if (!window.Create(nullptr, "Layout", WS_OVERLAPPEDWINDOW, rect, nullptr, 0))
        return 1;

    CCUILayoutWindow row(CCUILayoutWindow::Row), line(CCUILayoutWindow::Row);
    row.SetLayoutFlags(CUI_PLACE_FILL | CUIPlaceWeight(1));
    row.Create(nullptr, "", WS_CHILD | WS_VISIBLE, {0, 0, 0, 0}, window, 0);
    line.SetFixedSize(24);
    line.SetGap(8);
    line.Create(nullptr, "", WS_CHILD | WS_VISIBLE, {0, 0, 0, 0}, window, 0);

    // The list has 120 pixels until its splitter is moved. The page gets the rest, 80 at the least.
    CPanel list(row, "List", RGB(255, 255, 255), 120, CUI_PLACE_FILL | CUI_PLACE_SPLITTER);
    CPanel page(row, "Page", RGB(255, 255, 224), 80, CUI_PLACE_FILL | CUIPlaceWeight(1));
    CPanel status(line, "Status", RGB(224, 224, 224), 60, CUI_PLACE_FILL | CUIPlaceWeight(2));
    CPanel zoom(line, "Zoom", RGB(208, 224, 240), 60, CUI_PLACE_FILL | CUIPlaceWeight(1));
    CPanel help(line, "Help", RGB(208, 240, 208), 60, CUI_PLACE_FILL);

    ShowWindow(window, SW_SHOW);
    return CCUIWindow::RunLoop();
}
