// Every message of the table, sent to a real window, against what its handler got.
#include <gtest/gtest.h>

#include "Support/TestWindow.h"

namespace {

constexpr long s_nAnswer = 0x1234;

constexpr WPARAM Words(WORD low, WORD high)
{
    return static_cast<WPARAM>(high) << 16 | low;
}

unsigned Hex(const void *pointer)
{
    return reinterpret_cast<unsigned>(pointer);
}

// Writes down which handler was called with what; calls no base.
class CRecorder : public CCUIWindow
{
public:
    std::string m_record;

protected:
    void Record(const std::string &text) { m_record += text; }
    long Answer(const std::string &text)
    {
        Record(text);
        return s_nAnswer;
    }
    void RecordMouse(const char *name, UINT nFlags, const POINT &point)
    {
        Record(Text("%s %x %ld,%ld", name, nFlags, point.x, point.y));
    }

    int OnCreate(CREATESTRUCTA *p) override
    {
        return m_hWnd && m_bReady ? Answer(Text("OnCreate %x", Hex(p))) : 0;
    }
    void OnDestroy() override { m_bReady ? Record("OnDestroy") : CCUIWindow::OnDestroy(); }
    void OnClose() override { Record("OnClose"); }
    void OnActivate(UINT nState, UINT nMinimized, HWND hOther) override
    {
        Record(Text("OnActivate %x %x %x", nState, nMinimized, Hex(hOther)));
    }
    void OnSize(UINT nType, int cx, int cy) override
    {
        Record(Text("OnSize %x %d %d", nType, cx, cy));
    }
    long OnNotify(UINT nID, NMHDR *p) override
    {
        return Answer(Text("OnNotify %x %x", nID, Hex(p)));
    }
    void OnCommand(UINT nCode, UINT nID, HWND hControl) override
    {
        Record(Text("OnCommand %x %x %x", nCode, nID, Hex(hControl)));
    }
    void OnPaint(HDC hDC) override { Record(Text("OnPaint %x", Hex(hDC))); }
    int OnEraseBkgnd(HDC hDC) override { return Answer(Text("OnEraseBkgnd %x", Hex(hDC))); }
    void OnLButtonDown(UINT n, POINT &p) override { RecordMouse("OnLButtonDown", n, p); }
    void OnLButtonUp(UINT n, POINT &p) override { RecordMouse("OnLButtonUp", n, p); }
    void OnLButtonDblClk(UINT n, POINT &p) override { RecordMouse("OnLButtonDblClk", n, p); }
    void OnRButtonDown(UINT n, POINT &p) override { RecordMouse("OnRButtonDown", n, p); }
    void OnRButtonUp(UINT n, POINT &p) override { RecordMouse("OnRButtonUp", n, p); }
    void OnRButtonDblClk(UINT n, POINT &p) override { RecordMouse("OnRButtonDblClk", n, p); }
    void OnContextMenu(HWND hWnd, POINT &p) override { RecordMouse("OnContextMenu", Hex(hWnd), p); }
    void OnMouseMove(UINT n, POINT &p) override { RecordMouse("OnMouseMove", n, p); }
    void OnSysColorChange() override { Record("OnSysColorChange"); }
    void OnShowWindow(int bShow, int nStatus) override
    {
        Record(Text("OnShowWindow %d %d", bShow, nStatus));
    }
    int OnSetCursor(HWND hWnd, UINT nHit, UINT nMessage) override
    {
        return Answer(Text("OnSetCursor %x %x %x", Hex(hWnd), nHit, nMessage));
    }
    void OnWinIniChange(WPARAM nAction, const char *section) override
    {
        Record(Text("OnWinIniChange %x %s", nAction, section));
    }
    void OnSetFocus(HWND h) override { Record(Text("OnSetFocus %x", Hex(h))); }
    void OnKillFocus(HWND h) override { Record(Text("OnKillFocus %x", Hex(h))); }
    void OnParentNotify(UINT nEvent, UINT nID, LPARAM l) override
    {
        Record(Text("OnParentNotify %x %x %lx", nEvent, nID, l));
    }
    void OnShowToolTips(int bShow) override { Record(Text("OnShowToolTips %d", bShow)); }
    int OnMeasureItem(UINT nID, MEASUREITEMSTRUCT *p) override
    {
        return Answer(Text("OnMeasureItem %x %x", nID, Hex(p)));
    }
    int OnDrawItem(UINT nID, DRAWITEMSTRUCT *p) override
    {
        return Answer(Text("OnDrawItem %x %x", nID, Hex(p)));
    }
    void OnMenuSelect(UINT nItem, UINT nFlags, HMENU h) override
    {
        Record(Text("OnMenuSelect %x %x %x", nItem, nFlags, Hex(h)));
    }
    void OnInitMenuPopup(HMENU h, UINT nIndex, int bSystem) override
    {
        Record(Text("OnInitMenuPopup %x %x %x", Hex(h), nIndex, bSystem));
    }
    long OnMenuChar(UINT nChar, UINT nFlags, HMENU h) override
    {
        return Answer(Text("OnMenuChar %x %x %x", nChar, nFlags, Hex(h)));
    }
    void OnCancelMode() override { Record("OnCancelMode"); }
    void OnCaptureChanged(HWND h) override { Record(Text("OnCaptureChanged %x", Hex(h))); }
    void OnSetWindowState(UINT n) override { Record(Text("OnSetWindowState %x", n)); }
    long OnMessage(UINT message, WPARAM w, LPARAM l) override
    {
        return m_bReady ? Answer(Text("OnMessage %x %x %lx", message, w, l))
                        : CCUIWindow::OnMessage(message, w, l);
    }

public:
    bool m_bReady = false;
};

struct CRow
{
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    const char *record;
    long result;
};

const char s_szSection[] = "intl";

const CRow s_rows[] = {
    {0x0001, 0, 0x5678, "OnCreate 5678", s_nAnswer},
    {0x0002, 1, 2, "OnDestroy", 0},
    {0x0005, 2, MAKELONG(300, 0xFFFE), "OnSize 2 300 65534", 0},
    {0x0006, Words(2, 1), 0x40, "OnActivate 2 1 40", 0},
    {0x0007, 0x41, 9, "OnSetFocus 41", 0},
    {0x0008, 0x42, 9, "OnKillFocus 42", 0},
    {0x000F, 0x43, 9, "OnPaint 43", 0},
    {0x0010, 1, 9, "OnClose", 0},
    {0x0014, 0x44, 9, "OnEraseBkgnd 44", s_nAnswer},
    {0x0015, 1, 9, "OnSysColorChange", 0},
    {0x0018, 1, 3, "OnShowWindow 1 3", 0},
    {0x001A, 5, reinterpret_cast<LPARAM>(s_szSection), "OnWinIniChange 5 intl", 0},
    {0x001F, 1, 9, "OnCancelMode", 0},
    {0x0020, 0x45, MAKELONG(0xFFFF, 0x201), "OnSetCursor 45 ffff 201", s_nAnswer},
    {0x002B, 6, 0x46, "OnDrawItem 6 46", s_nAnswer},
    {0x002C, 7, 0x47, "OnMeasureItem 7 47", s_nAnswer},
    {0x004E, 8, 0x48, "OnNotify 8 48", s_nAnswer},
    {0x007B, 0x49, MAKELONG(-1, -1), "OnContextMenu 49 -1,-1", 0},
    {0x0111, Words(0xF001, 0x8002), 0x4A, "OnCommand 8002 f001 4a", 0},
    {0x0117, 0x4B, MAKELONG(3, 1), "OnInitMenuPopup 4b 3 1", 0},
    {0x011F, Words(4, 0xFFFF), 0x4C, "OnMenuSelect 4 ffff 4c", 0},
    {0x0120, Words(0x1261, 0x10), 0x4D, "OnMenuChar 61 10 4d", s_nAnswer},
    {0x0200, 1, MAKELONG(-3, 5), "OnMouseMove 1 -3,5", 0},
    {0x0201, 2, MAKELONG(5, -3), "OnLButtonDown 2 5,-3", 0},
    {0x0202, 3, MAKELONG(32767, -32768), "OnLButtonUp 3 32767,-32768", 0},
    {0x0203, 4, MAKELONG(1, 2), "OnLButtonDblClk 4 1,2", 0},
    {0x0204, 5, MAKELONG(-1, 2), "OnRButtonDown 5 -1,2", 0},
    {0x0205, 6, MAKELONG(1, -2), "OnRButtonUp 6 1,-2", 0},
    {0x0206, 7, MAKELONG(-9, -9), "OnRButtonDblClk 7 -9,-9", 0},
    {0x0210, Words(0x201, 0xFFF0), 0x4E, "OnParentNotify 201 fff0 4e", 0},
    {0x0215, 8, 0x4F, "OnCaptureChanged 4f", 0},
    {0x0435, 9, 1, "OnSetWindowState 9", 0},
    {0x0438, 1, 1, "OnShowToolTips 1", 0},
    {0x0003, 1, 0x50, "OnMessage 3 1 50", s_nAnswer},
    {0x0436, 2, 0x51, "OnMessage 436 2 51", s_nAnswer},
    {0xC123, 3, 0x52, "OnMessage c123 3 52", s_nAnswer},
};

}  // namespace

TEST(MessageTable, HandsEveryMessageToItsHandler)
{
    CRecorder window;
    ASSERT_TRUE(CreateTestWindow(window));
    window.m_bReady = true;
    for (const CRow &row : s_rows) {
        window.m_record.clear();
        EXPECT_EQ(row.result, SendMessageA(window, row.message, row.wParam, row.lParam))
            << row.record;
        EXPECT_EQ(row.record, window.m_record);
    }
    window.m_bReady = false;
}

namespace {

// Answers what comes back from the parent, and says what it was.
class CChild : public CCUIWindow
{
public:
    std::string m_record;
    bool m_bHandle = true;

protected:
    int OnReflectedMessage(UINT message, WPARAM, LPARAM, long &result) override
    {
        m_record = Text("message %x", message);
        result = 0x77;
        return m_bHandle;
    }
    int OnReflectedNotification(UINT nID, NMHDR *pHeader, long &result) override
    {
        m_record = Text("notification %x %x", nID, pHeader->code);
        result = 0x78;
        return m_bHandle;
    }
};

}  // namespace

TEST(MessageTable, GivesWhatAChildSentBackToTheChildFirst)
{
    CCUIWindow parent;
    CChild child;
    ASSERT_TRUE(CreateTestWindow(parent));
    ASSERT_TRUE(CreateTestWindow(child, parent, WS_CHILD));
    const HWND hChild = child;
    const auto lChild = reinterpret_cast<LPARAM>(hChild);
    NMHDR header = {hChild, 7, 0x99};
    DRAWITEMSTRUCT draw = {};
    draw.CtlType = ODT_BUTTON;
    draw.hwndItem = hChild;
    MEASUREITEMSTRUCT measure = {};
    measure.CtlType = ODT_LISTBOX;
    COMPAREITEMSTRUCT compare = {};
    compare.hwndItem = hChild;
    DELETEITEMSTRUCT remove = {};
    remove.hwndItem = hChild;
    const CRow rows[] = {
        {WM_NOTIFY, 7, reinterpret_cast<LPARAM>(&header), "notification 7 99", 0x78},
        {WM_COMMAND, 7, lChild, "message 111", 0},
        {WM_DRAWITEM, 7, reinterpret_cast<LPARAM>(&draw), "message 2b", 0x77},
        {WM_MEASUREITEM, 7, reinterpret_cast<LPARAM>(&measure), "message 2c", 0x77},
        {WM_COMPAREITEM, 7, reinterpret_cast<LPARAM>(&compare), "message 39", 0x77},
        {WM_DELETEITEM, 7, reinterpret_cast<LPARAM>(&remove), "message 2d", 0x77},
        {WM_CTLCOLOREDIT, 1, lChild, "message 133", 0x77},
        {WM_CTLCOLORLISTBOX, 1, lChild, "message 134", 0x77},
        {WM_CTLCOLORBTN, 1, lChild, "message 135", 0x77},
        {WM_CTLCOLORSCROLLBAR, 1, lChild, "message 137", 0x77},
        {WM_CTLCOLORSTATIC, 1, lChild, "message 138", 0x77},
        {WM_HSCROLL, 1, lChild, "message 114", 0x77},
        {WM_VSCROLL, 1, lChild, "message 115", 0x77},
        {WM_CHARTOITEM, 1, lChild, "message 2f", 0x77},
        {WM_VKEYTOITEM, 1, lChild, "message 2e", 0x77},
    };
    for (const CRow &row : rows) {
        child.m_record.clear();
        EXPECT_EQ(row.result, SendMessageA(parent, row.message, row.wParam, row.lParam));
        EXPECT_EQ(row.record, child.m_record);
    }
    // What the child does not take goes on to the system: a scroll message is nothing to it.
    child.m_bHandle = false;
    EXPECT_EQ(0, SendMessageA(parent, WM_HSCROLL, 1, lChild));
}

TEST(MessageTable, SurvivesNullWhereAStructureIsExpected)
{
    CCUIWindow window;
    ASSERT_TRUE(CreateTestWindow(window));
    for (const UINT message : {WM_NOTIFY, WM_DRAWITEM, WM_MEASUREITEM, WM_COMPAREITEM,
                               WM_DELETEITEM, WM_COMMAND, WM_HSCROLL, WM_SETTINGCHANGE})
        SendMessageA(window, message, 0, 0);
    EXPECT_TRUE(window.Exist());
}
