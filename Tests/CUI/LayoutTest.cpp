#include "CUI/Data.h"
#include "CUI/Draw.h"
#include "CUI/LayoutWindow.h"
#include "Support/HeapWatch.h"
#include "Support/ImportHook.h"
#include "Support/PixelMap.h"
#include "Support/TestControl.h"

namespace {

const auto COLUMN = CCUILayoutWindow::Column;
const auto ROW = CCUILayoutWindow::Row;

struct CLayout : CScripted<CCUILayoutWindow>
{
    CLayout(HWND hParent, Direction direction, int cx = 100, int cy = 60) : CScripted(direction)
    {
        Create(nullptr, "", SHOWN, {0, 0, cx, cy}, hParent, 0);
    }
    void OnSplitting(HWND hChild, int &nSize) override
    {
        nSize = nSize == 13 ? 14 : nSize;
        SetSplit(hChild, nSize);
    }
    void OnSplit(HWND, int nSize) override { m_told += Text("%d ", nSize); }
};

using Boxes = std::vector<std::unique_ptr<CTestControl>>;

// From and size along the layout of each.
std::string Along(const Boxes &boxes, bool bRow = true)
{
    std::string text;
    for (const auto &pBox : boxes) {
        const RECT rc = RectOf(*pBox);
        const LONG nFrom = bRow ? rc.left : rc.top, nTo = bRow ? rc.right : rc.bottom;
        text += Text("%ld+%ld ", nFrom, nTo - nFrom);
    }
    return text;
}

Boxes MakeBoxes(HWND hParent, const std::vector<std::pair<int, unsigned long>> &children)
{
    Boxes boxes;
    for (const auto &child : children)
        boxes.push_back(std::make_unique<CTestControl>(hParent, child.first, child.second));
    PumpWaiting();
    return boxes;
}

// Who has the focus then; null: nobody wanted the key.
HWND PressTab(bool bShift = false)
{
    HoldKey(bShift ? VK_SHIFT : 0);
    if (!PressKey(VK_TAB))
        SetFocus(nullptr);
    HoldKey(0);
    return GetFocus();
}

struct Layout : testing::Test
{
    CTestPopup top;
};

}  // namespace

TEST_F(Layout, GivesChildrenTheirPlacesWhateverChanges)
{
    CLayout layout(top, ROW);
    layout.SetMargins({5, 5, 5, 5});
    layout.SetGap(3);
    const HWND hPlain = MakePlain("STATIC", layout);
    Boxes boxes =
        MakeBoxes(layout, {{10, CUI_PLACE_NEAR}, {20, CUI_PLACE_CENTER}, {30, CUI_PLACE_FAR}});
    EXPECT_EQ("5+7 26+7 48+7 ", Along(boxes, false));
    const auto widen = [&](int cx) { SetWindowPos(layout, nullptr, 0, 0, cx, 60, SWP_NOMOVE); };
    const std::pair<const char *, std::function<void()>> steps[] = {
        {"5+10 18+20 41+30 ", [] {}},
        {"5+10 18+44 65+30 ",
         [&] { boxes[1]->SetLayoutFlags(CUI_PLACE_CENTER | CUIPlaceWeight(1)); }},
        {"5+10 5+57 65+30 ", [&] { ShowWindow(*boxes[0], SW_HIDE); }},
        // Two share by weight, but for what each needs.
        {"5+34 42+20 65+30 ",
         [&] { boxes[0]->SetLayoutFlags(4 | CUI_PLACE_KEEP | CUIPlaceWeight(3)); }},
        {"5+71 79+23 105+30 ", [&] { widen(140); }},
        {"5+63 71+21 95+40 ",
         [&] { layout.Suspend(), boxes[2]->SetFixedSize(40), layout.Resume(); }},
        {"5+87 95+40 ", [&] { boxes.erase(boxes.begin() + 1); }},
        {"5+77 85+40 128+7 ", [&] { boxes.push_back(std::make_unique<CTestControl>(layout, 7)); }},
        {"5+10 18+40 61+7 ", [&] { widen(20); }},
    };
    for (const auto &[places, act] : steps) {
        act();
        PumpWaiting();
        EXPECT_EQ(places, Along(boxes));
    }
    EXPECT_EQ("0,0,9,9", PlaceOf(hPlain));
    widen(100);
    layout.SetDirection(COLUMN);
    EXPECT_EQ("5+90 55+40 5+90 5+10 18+40 61+7 ", Along(boxes) + Along(boxes, false));
}

TEST_F(Layout, MovesAllInOneBatchAndPaintsNothingTwice)
{
    CLayout layout(top, ROW);
    Boxes boxes = MakeBoxes(layout, {{10, 4}, {20, 4}, {20, 4}});
    const COLORREF colors[] = {0, 0x0000FF, 0xFFFF00};
    int nPaints = 0;
    for (size_t i = 1; i < 3; ++i) {
        const RECT rect = {0, 0, 20, 60};
        const HDC hDC = GetDC(*boxes[i]);
        CUIDCFillSolidRect(hDC, &rect, colors[i]);
        ReleaseDC(*boxes[i], hDC);
        boxes[i]->m_on[WM_ERASEBKGND] = [&] { return ++nPaints; };
    }
    bool bFails = false;
    int nBatches = 0;
    const CFakeCall<HDWP(int)> begin("BeginDeferWindowPos", [&](int n) {
        return ++nBatches, bFails ? nullptr : begin.Original(n);
    });
    boxes[0]->SetFixedSize(12);
    PumpWaiting();
    EXPECT_EQ("0+12 12+20 32+20 1 0", Along(boxes) + Text("%d %d", nBatches, nPaints));
    const CPixelMap row = WindowPixels(layout, {0, 30, 52, 31});
    // Of 256 colours Wine 8 makes black of what it moves.
    const bool bBlack = GetDeviceCaps(CTestSurface(row), BITSPIXEL) == 8;
    for (const COLORREF cr : {colors[1], colors[2]})
        EXPECT_EQ(bBlack ? 0 : 20, row.Count(cr)) << "none is lost";
    SetWindowLongA(layout, GWL_EXSTYLE, MIRRORED);
    layout.Layout();
    layout.Layout();
    EXPECT_EQ("0+12 12+20 32+20 2", Along(boxes) + Text("%d", nBatches));
    bFails = true;
    boxes[0]->SetFixedSize(10);
    EXPECT_EQ("0+10 10+20 30+20 ", Along(boxes)) << "without memory for a batch";
}

TEST_F(Layout, NestedLayoutsTellWhatTheyNeed)
{
    CLayout outer(top, COLUMN), inner(outer, ROW), deepest(inner, COLUMN);
    inner.SetMargins({1, 2, 3, 4});
    inner.SetLayoutFlags(CUI_PLACE_FIT | CUI_PLACE_NEAR);
    deepest.SetLayoutFlags(CUI_PLACE_FIT | CUI_PLACE_FILL);
    deepest.SetFixedSize(0);
    CTestControl box(deepest, 15, CUI_PLACE_NEAR), last(outer, 5);
    PumpWaiting();
    EXPECT_EQ("0,0,13,21 1,2,10,17", PlaceOf(inner) + " " + PlaceOf(deepest));
    box.SetFixedSize(20);
    EXPECT_EQ("0,26,100,31", PlaceOf(last));
    EXPECT_EQ("13x31", Text("%ldx%ld", outer.GetMinimumSize().cx, outer.GetMinimumSize().cy));
}

TEST_F(Layout, TabGoesThroughAllThatCanHaveTheFocus)
{
    CLayout outer(top, COLUMN);
    CTestControl first(outer);
    CLayout inner(outer, ROW), empty(outer, ROW);
    const HWND hEdit = MakePlain("EDIT", inner, 0, SHOWN);
    CTestControl hidden(inner, 5, 4, WS_CHILD | WS_TABSTOP),
        disabled(inner, 5, 4, SHOWN | WS_DISABLED);
    CTestControl noStop(inner, 5, 4, WS_CHILD | WS_VISIBLE), last(inner);
    SetFocus(outer);
    EXPECT_EQ(first.GetHandle(), GetFocus());
    const HWND order[] = {hEdit, last, first, hEdit, first, last, hEdit};
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(order[i], PressTab(i > 3));
    EXPECT_EQ(MAKELONG(0, 4), SendMessageA(hEdit, EM_GETSEL, 0, 0));
    SetFocus(top);
    SetFocus(inner);
    EXPECT_EQ(hEdit, GetFocus()) << "the last one gets it back";
    last.m_on[WM_GETDLGCODE] = [] { return DLGC_WANTTAB; };
    PressTab();
    EXPECT_EQ(nullptr, PressTab());
}

TEST_F(Layout, ScrollsWhenThereIsNoRoom)
{
    CLayout layout(top, COLUMN);
    layout.SetScrolling(true);
    Boxes boxes = MakeBoxes(layout, {{20, 4}, {20, 4}, {20, 4}});
    boxes[1]->SetFixedSize(100);
    EXPECT_GT(100, RectOf(*boxes[0]).right) << "a scroll bar";
    SetFocus(*boxes[2]);
    EXPECT_EQ("-80+20 -60+100 40+20 ", Along(boxes, false));
    const auto scroll = [&](WPARAM nCode) {
        return SendMessageA(layout, WM_VSCROLL, nCode, 0), layout.GetScrollPos();
    };
    const int nLine = CUIGetWinData()->cyChar;
    const std::pair<WPARAM, int> codes[] = {{SB_TOP, 0},       {SB_PAGEDOWN, 60},
                                            {SB_BOTTOM, 80},   {SB_LINEUP, 80 - nLine},
                                            {SB_LINEDOWN, 80}, {SB_PAGEUP, 20}};
    for (const auto &code : codes)
        EXPECT_EQ(code.second, scroll(code.first)) << code.first;
    // A fine wheel comes as far in many small turns.
    scroll(SB_TOP);
    for (int i = 0; i < WHEEL_DELTA; ++i)
        Send(*boxes[2], WM_MOUSEWHEEL, MAKEWPARAM(0, -1));
    EXPECT_EQ(std::min(3 * nLine, 60), layout.GetScrollPos());
    // Windows far out wait at one place, and come to theirs.
    boxes[1]->SetFixedSize(0x7000);
    scroll(SB_TOP);
    EXPECT_EQ("0+20 20+28672 12288+20 ", Along(boxes, false));
    ShowWindow(*boxes[1], SW_HIDE);
    PumpWaiting();
    EXPECT_EQ("0,0,100,20", PlaceOf(*boxes[0]));
}

TEST_F(Layout, SplitterMovesByMouseAndKeysAndGoesBack)
{
    CLayout layout(top, ROW, 106);
    const unsigned long split = CUI_PLACE_FILL | CUI_PLACE_SPLITTER;
    Boxes boxes = MakeBoxes(layout, {{30, split}, {20, 4 | CUIPlaceWeight(1)}});
    const HWND hSplitter = GetWindow(*boxes[0], GW_HWNDNEXT);
    EXPECT_EQ("30,0,36,60", PlaceOf(hSplitter));
    // The splitter moves under the mouse.
    const auto move = [&](int x) { SendMessageA(hSplitter, WM_MOUSEMOVE, 0, MAKELPARAM(x, 9)); };
    const auto drag = [&](int nBy) {
        SetFocus(*boxes[1]);
        SendMessageA(hSplitter, WM_LBUTTONDOWN, 0, MAKELPARAM(2, 9));
        return move(2 + nBy), boxes[0]->GetFixedSize();
    };
    EXPECT_EQ(13 + 1, drag(-17));
    EXPECT_EQ(58, drag(28)) << "from where it was before the focus went";
    EXPECT_TRUE(layout.SetSplit(*boxes[0], 40)) << "the drag goes on";
    EXPECT_EQ("0+40 46+60 ", Along(boxes));
    ReleaseCapture();
    EXPECT_EQ("0+30 36+70 ", Along(boxes));
    drag(28);
    move(-8);
    SendMessageA(hSplitter, WM_LBUTTONUP, 0, 0);
    EXPECT_EQ(boxes[1]->GetHandle(), GetFocus());
    SetFocus(*boxes[0]);
    PressTab();
    EXPECT_EQ(OnScreen(GetSysColor(COLOR_HIGHLIGHT)), WindowPixels(hSplitter).At(3, 30));
    Send(hSplitter, WM_SETCURSOR, 0, HTCLIENT);
    EXPECT_EQ(LoadCursorA(nullptr, IDC_SIZEWE), GetCursor());
    const std::pair<WPARAM, int> keys[] = {{VK_LEFT, 40}, {VK_HOME, 0},    {VK_END, 80},
                                           {VK_UP, 80},   {VK_ESCAPE, 48}, {VK_RIGHT, 56}};
    for (const auto &key : keys) {
        SendMessageA(hSplitter, WM_KEYDOWN, key.first, 0);
        EXPECT_EQ(key.second, layout.GetSplit(*boxes[0])) << key.first;
    }
    layout.SetSplit(*boxes[0], 50);
    HoldKey(VK_CONTROL);
    Input(hSplitter, {VK_RIGHT});
    PressTab();
    EXPECT_EQ("48 51 ", layout.Told());
    // Two with weights share otherwise, in a larger window too.
    boxes[0]->SetLayoutFlags(split | CUIPlaceWeight(1));
    boxes[0]->SetFixedSize(10);
    EXPECT_TRUE(layout.SetSplit(*boxes[0], 25));
    SetWindowPos(layout, nullptr, 0, 0, 206, 60, SWP_NOMOVE);
    EXPECT_EQ("0+50 56+150 ", Along(boxes));
    SetWindowLongA(layout, GWL_EXSTYLE, MIRRORED);
    SendMessageA(hSplitter, WM_KEYDOWN, VK_LEFT, 0);
    EXPECT_EQ("0+58 64+142 ", Along(boxes));
    // It goes with either of its neighbours.
    boxes.erase(boxes.begin());
    PumpWaiting();
    EXPECT_FALSE(IsWindow(hSplitter));
}

TEST_F(Layout, SurvivesWhatHandlersDo)
{
    const CHeapWatch heap;  // what is used of a dead layout is wrong
    auto pLayout = std::make_unique<CLayout>(top, ROW);
    Boxes boxes = MakeBoxes(*pLayout, {{10, 4}, {10, 4 | CUI_PLACE_SPLITTER}, {10, 4}, {10, 4}});
    // One deletes another in the middle of the batch.
    boxes[0]->m_on[WM_SIZE] = [&] { return boxes[1].reset(), 0; };
    boxes[0]->SetFixedSize(11);
    boxes.erase(boxes.begin() + 1);
    PumpWaiting();
    EXPECT_EQ("0+11 11+10 21+10 ", Along(boxes));
    // One never comes to rest.
    int nSize = 20;
    boxes[0]->m_on[WM_SIZE] = [&] { return boxes[0]->SetFixedSize(++nSize), 0; };
    boxes[0]->SetFixedSize(12);
    EXPECT_EQ(28, nSize) << "in eight rounds";
    // One deletes the layout.
    boxes[0]->m_on[WM_SIZE] = [&] { return pLayout.reset(), 0; };
    boxes[0]->SetFixedSize(5);
    // One deletes it, or ends its window, when it is asked how large it is: by the layout, or since
    // others ask that.
    for (const int nWay : {0, 1, 2, 3}) {
        pLayout = std::make_unique<CLayout>(top, ROW);
        boxes = MakeBoxes(*pLayout, {{10, 4}, {10, 4}});
        boxes[0]->m_on[CUI_WM_NATURALSIZE] = [&] {
            nWay % 2 ? void(pLayout->Destroy()) : pLayout.reset();
            return 1;
        };
        if (nWay > 1)
            pLayout->Suspend();
        boxes[0]->SetLayoutFlags(CUI_PLACE_FIT);
        EXPECT_EQ(0, nWay > 1 ? pLayout->GetMinimumSize().cx : 0);
        EXPECT_FALSE(boxes[0]->Exist()) << nWay;
        EXPECT_EQ(nWay % 2, pLayout != nullptr);
    }
    // The mouse lets go when the layout is gone.
    pLayout = std::make_unique<CLayout>(top, ROW);
    boxes = MakeBoxes(*pLayout, {{10, 4 | CUI_PLACE_SPLITTER}, {10, 4}});
    const HWND hSplitter = GetWindow(*boxes[0], GW_HWNDNEXT);
    SendMessageA(hSplitter, WM_LBUTTONDOWN, 0, 0);
    boxes[1]->m_on[WM_MOVE] = [&] { return pLayout.reset(), 0; };
    SendMessageA(hSplitter, WM_MOUSEMOVE, 0, 50);
    SendMessageA(hSplitter, WM_MOUSEMOVE, 0, MAKELPARAM(20, 0));
    EXPECT_FALSE(pLayout);
    EXPECT_EQ(nullptr, GetCapture());
}

TEST_F(Layout, HoldsTenThousandChildren)
{
    // Hidden: what takes the system minutes is to find out what is seen of 10,000 windows.
    ShowWindow(top, SW_HIDE);
    CLayout layout(top, COLUMN);
    layout.SetScrolling(true);
    CCUIControlWindow::PropData data = {3, 0, 4, 0, 0};
    HWND hLast = nullptr;
    for (int i = 0; i < 10000; ++i)
        SetPropA(hLast = MakePlain("STATIC", layout, 0, SHOWN), g_sControlWindowProp, &data);
    PumpWaiting();
    layout.ScrollTo(0x7FFFFFFF);
    EXPECT_EQ(57, RectOf(hLast).top);
}
