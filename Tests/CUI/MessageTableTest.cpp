// Every message of the table, sent to a real window, against what its handler got.
#include <type_traits>

#include "Support/TestWindow.h"

namespace {

constexpr long s_nAnswer = 0x1234;

constexpr WPARAM Words(WORD low, WORD high)
{
    return static_cast<WPARAM>(high) << 16 | low;
}

template <typename T>
std::string Word(const T &value)
{
    if constexpr (std::is_same_v<T, POINT>)
        return Text(" %ld,%ld", value.x, value.y);
    else if constexpr (std::is_pointer_v<T>)
        return Text(" %x", reinterpret_cast<unsigned>(value));
    else
        return Text(" %x", static_cast<unsigned>(value));
}

// Writes down which handler was called with what; calls no base.
struct CRecorder : CCUIWindow
{
    std::string m_record;
    template <typename... Args>
    long Record(const char *name, const Args &...args)
    {
        m_record += (name + ... + Word(args));
        return s_nAnswer;
    }

    // clang-format off
    long OnMessage(UINT message, WPARAM w, LPARAM l) override { return Record("OnMessage", message, w, l); }
    int OnCreate(CREATESTRUCTA *p) override { return Record("OnCreate", p); }
    void OnDestroy() override { Record("OnDestroy"); }
    void OnClose() override { Record("OnClose"); }
    void OnActivate(UINT nState, UINT nMinimized, HWND h) override { Record("OnActivate", nState, nMinimized, h); }
    void OnSize(UINT nType, int cx, int cy) override { Record("OnSize", nType, cx, cy); }
    long OnNotify(UINT nID, NMHDR *p) override { return Record("OnNotify", nID, p); }
    void OnCommand(UINT nCode, UINT nID, HWND h) override { Record("OnCommand", nCode, nID, h); }
    void OnPaint(HDC h) override { Record("OnPaint", h); }
    int OnEraseBkgnd(HDC h) override { return Record("OnEraseBkgnd", h); }
    void OnLButtonDown(UINT n, POINT &p) override { Record("OnLButtonDown", n, p); }
    void OnLButtonUp(UINT n, POINT &p) override { Record("OnLButtonUp", n, p); }
    void OnLButtonDblClk(UINT n, POINT &p) override { Record("OnLButtonDblClk", n, p); }
    void OnRButtonDown(UINT n, POINT &p) override { Record("OnRButtonDown", n, p); }
    void OnRButtonUp(UINT n, POINT &p) override { Record("OnRButtonUp", n, p); }
    void OnRButtonDblClk(UINT n, POINT &p) override { Record("OnRButtonDblClk", n, p); }
    void OnContextMenu(HWND h, POINT &p) override { Record("OnContextMenu", h, p); }
    void OnMouseMove(UINT n, POINT &p) override { Record("OnMouseMove", n, p); }
    void OnSysColorChange() override { Record("OnSysColorChange"); }
    void OnShowWindow(int bShow, int nStatus) override { Record("OnShowWindow", bShow, nStatus); }
    int OnSetCursor(HWND h, UINT nHit, UINT nMessage) override { return Record("OnSetCursor", h, nHit, nMessage); }
    void OnWinIniChange(WPARAM nAction, const char *section) override { Record("OnWinIniChange", nAction, section); }
    void OnSetFocus(HWND h) override { Record("OnSetFocus", h); }
    void OnKillFocus(HWND h) override { Record("OnKillFocus", h); }
    void OnParentNotify(UINT nEvent, UINT nID, LPARAM l) override { Record("OnParentNotify", nEvent, nID, l); }
    void OnShowToolTips(int bShow) override { Record("OnShowToolTips", bShow); }
    int OnMeasureItem(UINT nID, MEASUREITEMSTRUCT *p) override { return Record("OnMeasureItem", nID, p); }
    int OnDrawItem(UINT nID, DRAWITEMSTRUCT *p) override { return Record("OnDrawItem", nID, p); }
    void OnMenuSelect(UINT nItem, UINT nFlags, HMENU h) override { Record("OnMenuSelect", nItem, nFlags, h); }
    void OnInitMenuPopup(HMENU h, UINT nIndex, int bSystem) override { Record("OnInitMenuPopup", h, nIndex, bSystem); }
    long OnMenuChar(UINT nChar, UINT nFlags, HMENU h) override { return Record("OnMenuChar", nChar, nFlags, h); }
    void OnCancelMode() override { Record("OnCancelMode"); }
    void OnCaptureChanged(HWND h) override { Record("OnCaptureChanged", h); }
    void OnSetWindowState(UINT n) override { Record("OnSetWindowState", n); }
    // clang-format on
};

struct CRow
{
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    const char *record;
    long result;
};

const CRow s_rows[] = {
    {0x0001, 0, 0x5678, "OnCreate 5678", s_nAnswer},
    {0x0005, 2, MAKELONG(300, 0xFFFE), "OnSize 2 12c fffe", 0},
    {0x0006, Words(2, 1), 0x40, "OnActivate 2 1 40", 0},
    {0x0007, 0x41, 9, "OnSetFocus 41", 0},
    {0x0008, 0x42, 9, "OnKillFocus 42", 0},
    {0x000F, 0x43, 9, "OnPaint 43", 0},
    {0x0010, 1, 9, "OnClose", 0},
    {0x0014, 0x44, 9, "OnEraseBkgnd 44", s_nAnswer},
    {0x0015, 1, 9, "OnSysColorChange", 0},
    {0x0018, 1, 3, "OnShowWindow 1 3", 0},
    {0x001A, 5, 0x53, "OnWinIniChange 5 53", 0},
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
    {0x0009, 1, 0x50, "OnMessage 9 1 50", s_nAnswer},
    {0x0436, 2, 0x51, "OnMessage 436 2 51", s_nAnswer},
    {0xC123, 3, 0x52, "OnMessage c123 3 52", s_nAnswer},
    {0x0002, 1, 2, "OnDestroy", 0},  // the base lets go of the window: the last
};

// What default processing was asked for, in the place of the system.
std::string s_default;
LRESULT CALLBACK DefaultProc(HWND, UINT message, WPARAM wParam, LPARAM lParam)
{
    s_default = Text("%x %x %lx", message, wParam, lParam);
    return s_nAnswer;
}

// Answers what comes back from the parent.
struct CChild : CTestWindow
{
    using CTestWindow::CTestWindow;
    UINT m_nSeen = 0;
    int OnReflectedMessage(UINT message, WPARAM, LPARAM, long &result) override
    {
        m_nSeen = message;
        result = 0x77;
        return 1;
    }
    int OnReflectedNotification(UINT, NMHDR *pHeader, long &result) override
    {
        return OnReflectedMessage(pHeader->code, 0, 0, result);
    }
};

}  // namespace

TEST(MessageTable, HandsEveryMessageToItsHandlerAndPassesOnWhatNoHandlerTakes)
{
    const HWND hWnd = MakePlain();
    SetWindowLongA(hWnd, GWL_WNDPROC, reinterpret_cast<LONG>(DefaultProc));
    for (const CRow &row : s_rows) {
        CRecorder recorder;
        recorder.Attach(hWnd);
        EXPECT_EQ(row.result, SendMessageA(hWnd, row.message, row.wParam, row.lParam));
        EXPECT_EQ(row.record, recorder.m_record);
        CCUIWindow window;
        window.Attach(hWnd);
        const UINT message = row.message;
        const bool bStructure =
            message == WM_DRAWITEM || message == WM_MEASUREITEM || message == WM_NOTIFY;
        const LPARAM lParam = bStructure ? 0 : row.lParam;
        EXPECT_EQ(row.result, SendMessageA(hWnd, message, row.wParam, lParam)) << row.record;
        EXPECT_EQ(message == WM_DESTROY ? "2 0 0" : Text("%x %x %lx", message, row.wParam, lParam),
                  s_default);
        window.Detach();
    }
}

TEST(MessageTable, GivesWhatAChildSentBackToTheChildFirst)
{
    CTestWindow parent;
    CChild child(parent, WS_CHILD);
    const HWND hChild = child;
    NMHDR header = {hChild, 7, WM_NOTIFY};
    DRAWITEMSTRUCT draw = {ODT_BUTTON, 7, 0, 0, 0, hChild, nullptr, {}, 0};
    MEASUREITEMSTRUCT measure = {ODT_LISTBOX, 7, 0, 0, 0, 0};
    COMPAREITEMSTRUCT compare = {ODT_LISTBOX, 7, hChild, 0, 0, 0, 0, 0};
    const std::pair<UINT, const void *> sent[] = {
        {WM_NOTIFY, &header},           {WM_DRAWITEM, &draw},     {WM_MEASUREITEM, &measure},
        {WM_COMPAREITEM, &compare},     {WM_COMMAND, hChild},     {WM_CTLCOLOREDIT, hChild},
        {WM_CTLCOLORLISTBOX, hChild},   {WM_CTLCOLORBTN, hChild}, {WM_CTLCOLORSTATIC, hChild},
        {WM_CTLCOLORSCROLLBAR, hChild}, {WM_HSCROLL, hChild},     {WM_VSCROLL, hChild},
        {WM_CHARTOITEM, hChild},        {WM_VKEYTOITEM, hChild}};
    for (const auto &[message, p] : sent) {
        const LRESULT result = SendMessageA(parent, message, 7, reinterpret_cast<LPARAM>(p));
        EXPECT_EQ(message == WM_COMMAND ? 0 : 0x77, result) << message;
        EXPECT_EQ(message, child.m_nSeen);
        SendMessageA(parent, message, 7, 0);  // names no child
    }
    // What a menu wants drawn is no child's, whatever the handle says.
    draw.CtlType = ODT_MENU;
    child.m_nSeen = 0;
    SendMessageA(parent, WM_DRAWITEM, 0, reinterpret_cast<LPARAM>(&draw));
    EXPECT_EQ(0U, child.m_nSeen);
}
