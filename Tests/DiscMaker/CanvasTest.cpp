#include <gtest/gtest.h>

#include "Canvas/Canvas.h"
#include "Canvas/Snap.h"
#include "File/OpenSkin.h"
#include "Resource.h"
#include "Support/TestWindow.h"

namespace {

// A canvas with the shipped launcher's looks, in a window of its own.
struct CCanvasWindow : CCUIWindow, CDocumentWatcher, CCanvasHost
{
    CCanvasWindow() : m_document(this), m_canvas(m_document, *this)
    {
        Create(nullptr, "canvas", WS_POPUP | WS_VISIBLE, {0, 0, 700, 500}, nullptr, 0);
        m_canvas.CreateCanvas(*this, 1);
        SetWindowPos(m_canvas, nullptr, 0, 0, 700, 500, SWP_NOZORDER);
        CProblems problems;
        m_document.Start(OpenSkin(TEST_LAUNCHER, problems)->Skin());
        UpdateWindow(m_canvas);
    }
    ~CCanvasWindow() override { Destroy(); }
    void OnSkinChanged(const SkinPart *pPart) override { m_canvas.Read(pPart); }
    void OnCanvasSelection() override {}
    void OnCanvasActivate(FaceItem) override {}
    void OnCanvasZoom() override {}

    void Mouse(UINT message, LONG x, LONG y, WPARAM wParam = MK_LBUTTON)
    {
        const RECT at = m_canvas.ToClient({x, y, x, y});
        SendMessageA(m_canvas, message, wParam, MAKELPARAM(at.left, at.top));
    }
    void Drag(POINT from, POINT to)
    {
        Mouse(WM_LBUTTONDOWN, from.x, from.y);
        Mouse(WM_MOUSEMOVE, (from.x + to.x) / 2, (from.y + to.y) / 2);
        Mouse(WM_MOUSEMOVE, to.x, to.y);
        Mouse(WM_LBUTTONUP, to.x, to.y, 0);
    }

    CDocument m_document;
    CCanvas m_canvas;
};

}  // namespace

TEST(Canvas, MovesAndSizesWhatIsDragged)
{
    CCanvasWindow window;
    CCanvas &canvas = window.m_canvas;
    canvas.SetSnapping(false);
    for (const int nZoom : {100, 400, 50}) {
        SCOPED_TRACE(nZoom);
        canvas.SetZoom(nZoom);
        window.Drag({60, 180}, {70, 200});
        EXPECT_STREQ("56,192", window.m_document.Entry(IDS_RUN_POS));
        window.m_document.Undo();
        EXPECT_FALSE(window.m_document.IsModified());
        EXPECT_EQ(172, canvas.ItemRect(ItemRun).top);
    }
    canvas.SetZoom(100);
    canvas.Select(ItemAbout);
    window.Drag({500, 332}, {490, 320});
    EXPECT_STREQ("13,280,490,320", window.m_document.Entry(IDS_ABOUT_RECT));
    window.Drag({13, 300}, {600, 300});
    EXPECT_STREQ("486,280,490,320", window.m_document.Entry(IDS_ABOUT_RECT));
    // Tab leaves what is dragged selected.
    window.Mouse(WM_LBUTTONDOWN, 60, 180);
    PressKey(VK_TAB, canvas);
    EXPECT_EQ(std::vector<FaceItem>{ItemRun}, canvas.Selection());
    window.Mouse(WM_LBUTTONUP, 60, 180, 0);
    // What ends the drag otherwise takes it back.
    for (const UINT message : {UINT{WM_CANCELMODE}, UINT{WM_CAPTURECHANGED}}) {
        window.Mouse(WM_LBUTTONDOWN, 60, 180);
        window.Mouse(WM_MOUSEMOVE, 90, 180);
        EXPECT_STREQ("76,172", window.m_document.Entry(IDS_RUN_POS));
        SendMessageA(canvas, message, 0, 0);
        EXPECT_STREQ("46,172", window.m_document.Entry(IDS_RUN_POS));
        EXPECT_EQ(nullptr, GetCapture());
    }
}

// Numbers can be any, and what is not on the face does not paint it anew.
TEST(Canvas, StandsHugePlacesAndRestsAtWhatItDoesNotShow)
{
    CCanvasWindow window;
    CDocument &document = window.m_document;
    document.SetEntry(IDS_ABOUT_RECT, "-2147483648,-2147483648,2147483647,2147483647");
    for (const UINT nPlace : {UINT{IDS_RUN_POS}, UINT{IDS_PRODUCT_POS}, UINT{IDS_TITLE_POS}}) {
        for (const char *const pszPlace : {"2147483647,-2147483648", "-2147483648,2147483647"}) {
            document.SetEntry(nPlace, pszPlace);
            for (const int nZoom : {400, 100}) {
                window.m_canvas.SetZoom(nZoom);
                window.m_canvas.SelectAll();
                window.m_canvas.Nudge(1, -1);
                window.m_canvas.ArrangeSelection(SpaceDown);
                UpdateWindow(window.m_canvas);
            }
            EXPECT_LE(abs(window.m_canvas.ItemRect(ItemRun).left), 0x1000001);
        }
    }
    ValidateRect(window.m_canvas, nullptr);
    for (const UINT nEntry : {UINT{IDS_CAPTION}, UINT{IDS_RUN_COMMAND}, UINT{IDS_SPARE_COLOR}}) {
        document.SetEntry(nEntry, "1,2,3");
        EXPECT_FALSE(GetUpdateRect(window.m_canvas, nullptr, FALSE)) << nEntry;
    }
    document.SetEntry(IDS_RUN, "Seen");
    EXPECT_TRUE(GetUpdateRect(window.m_canvas, nullptr, FALSE));
}

TEST(Canvas, SelectsAndArranges)
{
    CCanvasWindow window;
    CCanvas &canvas = window.m_canvas;
    window.Mouse(WM_LBUTTONDOWN, 60, 180);
    window.Mouse(WM_LBUTTONUP, 60, 180, 0);
    SendMessageA(canvas, WM_KEYDOWN, VK_RIGHT, 0);
    SendMessageA(canvas, WM_KEYDOWN, VK_DOWN, 0);
    EXPECT_STREQ("47,173", window.m_document.Entry(IDS_RUN_POS));
    for (const LONG y : {145, 210, 240})
        window.Mouse(WM_LBUTTONDOWN, 60, y, MK_CONTROL | MK_LBUTTON);
    ASSERT_EQ(4U, canvas.Selection().size());
    EXPECT_EQ(ItemRun, canvas.Selection()[0]);
    canvas.ArrangeSelection(AlignLeft);
    EXPECT_STREQ("47,140", window.m_document.Entry(IDS_HELP_POS));
    canvas.ArrangeSelection(SpaceDown);
    EXPECT_STREQ("47,172", window.m_document.Entry(IDS_RUN_POS));
    window.m_document.Undo();
    window.m_document.Undo();
    window.m_document.Undo();
    EXPECT_FALSE(window.m_document.IsModified()) << "two nudges are one step";
    // A frame takes what it touches.
    window.Drag({10, 135}, {50, 195});
    EXPECT_EQ((std::vector<FaceItem>{ItemHelp, ItemHelpBullet, ItemRun, ItemRunBullet}),
              canvas.Selection());
}

TEST(Canvas, TakesALinesBulletAlong)
{
    CCanvasWindow window;
    CCanvas &canvas = window.m_canvas;
    const auto bullet = [&] { return window.m_document.Entry(IDS_RUN_ICON_POS); };
    canvas.SetSnapping(false);
    window.Drag({60, 180}, {80, 177});
    canvas.Nudge(1, 2);
    EXPECT_STREQ("36,175", bullet());
    canvas.SelectAll();  // both are moved once
    canvas.Nudge(-1, 0);
    EXPECT_STREQ("35,175", bullet());
    canvas.Select(ItemRunBullet);
    canvas.Nudge(0, 9);
    EXPECT_STREQ("35,184", bullet());
    EXPECT_STREQ("66,171", window.m_document.Entry(IDS_RUN_POS)) << "a bullet goes alone";
    for (int i = 0; i < 4; ++i)
        window.m_document.Undo();
    EXPECT_STREQ("15,176", bullet());
    window.m_document.SetEntry(IDS_RUN_ICON_POS, "");
    canvas.Select(ItemRun);
    canvas.Nudge(1, 1);
    EXPECT_STREQ("", bullet());
}

TEST(Canvas, SnapsToTheNearestEdge)
{
    EXPECT_EQ(3, Snap(10, 30, {13, 34}, 4).m_nBy);
    EXPECT_EQ(-2, Snap(10, 30, {14, 28}, 4).m_nBy);
    EXPECT_TRUE(Snap(10, 30, {10}, 4).m_bSnaps);
    EXPECT_FALSE(Snap(10, 30, {5, 35}, 4).m_bSnaps);
    CCanvasWindow window;
    // To the left edges of the other lines; down, where the line ends, to that of a bullet.
    window.Drag({60, 180}, {63, 190});
    EXPECT_STREQ("46,181", window.m_document.Entry(IDS_RUN_POS));
}
