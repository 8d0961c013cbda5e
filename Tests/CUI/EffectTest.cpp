#include "CUI/Effects.h"

#include <math.h>
#include <numeric>

#include "CUI/Draw.h"
#include "CUI/OffScreenDC.h"
#include "Support/FailingCall.h"
#include "Support/FakeClock.h"
#include "Support/GdiCount.h"
#include "Support/HeapWatch.h"
#include "Support/PixelMap.h"
#include "Support/Reports.h"
#include "Support/TestTimer.h"
#include "Support/TestWindow.h"

namespace {

// --- Pictures, pixel by pixel ---

const int W = 64, H = 48;
const COLORREF KEY = 0xFF00FF, BACK = 0xFFFF;

// What the rectangle shows at a place and a progress.
using Model = std::function<COLORREF(int x, int y, double p)>;

CCUIBitmap MakeBitmap(const CPixelMap &map, int nDepth)
{
    struct
    {
        BITMAPINFOHEADER header;
        COLORREF colors[256];
    } info = {{40, map.cx, map.cy, 1, static_cast<WORD>(nDepth), BI_RGB, 0, 0, 0, 0, 0}, {}};
    for (int i = 0; i < 8; ++i)
        info.colors[i] = (i & 1 ? 0xFF : 0) | (i & 2 ? 0xFF00 : 0) | (i & 4 ? 0xFF0000 : 0);
    const HBITMAP hBitmap = CreateDIBSection(nullptr, reinterpret_cast<BITMAPINFO *>(&info),
                                             DIB_RGB_COLORS, nullptr, nullptr, 0);
    const HDC hDC = CreateCompatibleDC(nullptr);
    SelectObject(hDC, hBitmap);
    for (int i = 0; i < map.cx * map.cy; ++i)
        SetPixelV(hDC, i % map.cx, i / map.cx, map.At(i % map.cx, i / map.cx));
    DeleteDC(hDC);
    return CCUIBitmap(hBitmap, nullptr);
}

// A keyed picture smaller than the rectangle, one of 8 by 8 blocks that fills it, a background.
struct CScene
{
    explicit CScene(int nDepth)
    {
        for (int i = 0; i < W * H; ++i)
            blocks.Set(i % W, i / W, TestPicture(8, 6, 7).At(i % W / 8, i / W / 8));
        keyed = CUIEffectPicture(MakeBitmap(small, nDepth), KEY);
        full = MakeBitmap(blocks, nDepth);
        behind = MakeBitmap(under, nDepth);
    }
    COLORREF Keyed(int x, int y) const
    {
        x -= (W - small.cx) / 2;
        y -= (H - small.cy) / 2;
        const bool bIn = x >= 0 && y >= 0 && x < small.cx && y < small.cy;
        return bIn && small.At(x, y) != KEY ? small.At(x, y) : CLR_INVALID;
    }
    COLORREF First(int x, int y) const { return Keyed(x, y) == CLR_INVALID ? BACK : Keyed(x, y); }
    void Set(CCUITransitionEffect &effect) const
    {
        effect.SetBackground(BACK);
        effect.SetPictures(keyed, full);
    }
    // Of a transition, where the second picture is.
    Model Mix(const std::function<bool(int x, int y, double p)> &second) const
    {
        return
            [=](int x, int y, double p) { return second(x, y, p) ? blocks.At(x, y) : First(x, y); };
    }

    CPixelMap small = TestPicture(40, 30, 3), blocks{W, H}, under = TestPicture(W, H, 5);
    CUIEffectPicture keyed{0UL}, full{0UL}, behind{0UL};
};

int Nearest(double f)
{
    return static_cast<int>(lround(f));
}

void ExpectFrames(const std::string &name, CCUITimeBasedEffect &effect, const Model &model)
{
    // The DC has an origin of its own, and clips a corner.
    CTestSurface surface(CPixelMap(W + 4, H + 3, 0xFF0000));
    ExcludeClipRect(surface, 0, 0, 9, 9);
    for (const double p : {0.0, 0.75, 0.25, 0.5, 1.0}) {
        CPixelMap wanted(W + 4, H + 3, 0xFF0000);
        for (int i = 0; i < W * H; ++i) {
            if (i % W >= 7 || i / W >= 8)
                wanted.Set(i % W + 2, i / W + 1, model(i % W, i / W, p));
        }
        SetViewportOrgEx(surface, -3, -3, nullptr);
        effect.Draw(surface, {5, 4, W + 5, H + 4}, p);
        SetViewportOrgEx(surface, 0, 0, nullptr);
        EXPECT_TRUE(ReadPixels(surface, W + 4, H + 3) == wanted) << name << " at " << p;
    }
}

void ExpectWipes(const CScene &s)
{
    const int STEPS[8][2] = {{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}};
    for (int i = 0; i < 16; ++i) {
        const int dx = STEPS[i / 2][0], dy = STEPS[i / 2][1], nEdge = i % 2 * 13;
        CCUIWipeEffect wipe;
        s.Set(wipe);
        wipe.SetDirection(static_cast<CCUITimeBasedEffect::Direction>(i / 2));
        wipe.SetEdgeWidth(nEdge);
        ExpectFrames(Text("wipe %d", i), wipe, s.Mix([=](int x, int y, double p) {
            const int nAll = (dx ? W : 0) + (dy ? H : 0) - (dx && dy) + nEdge,
                      n = Nearest(p * nAll);
            const int d = (dx < 0 ? W - 1 - x : dx * x) + (dy < 0 ? H - 1 - y : dy * y);
            int u = x, v = y, nOrder = 0;
            (dx ? u : v) += (dx ? dx : dy) > 0 ? nAll - n : n;
            for (int nBit = 1; nBit < 8; nBit *= 2)
                nOrder = 4 * nOrder + (!(u & nBit) != !(v & nBit) ? 2 : 0) + (v & nBit ? 1 : 0);
            return 64 * (n - d) > nEdge * nOrder;
        }));
    }
}

void ExpectReveals(const CScene &s)
{
    std::vector<int> ranks(7 * 5);
    std::iota(ranks.begin(), ranks.end(), 0);
    unsigned long r = 1;
    for (unsigned long i = 34; i > 0; --i) {
        r = 1664525 * r + 1013904223;
        std::swap(ranks[i], ranks[(r >> 8) % (i + 1)]);
    }
    const auto inBox = [](int x, int y, double p) {
        const int cx = Nearest(p * W), cy = Nearest(p * H), left = (W - cx) / 2, top = (H - cy) / 2;
        return x >= left && y >= top && x < left + cx && y < top + cy;
    };
    const std::function<bool(int, int, double)> shapes[] = {
        [](int x, int, double p) { return x % 10 < Nearest(p * 10); },
        [](int, int y, double p) { return y % 10 < Nearest(p * 10); },
        inBox,
        [&](int x, int y, double p) { return !inBox(x, y, 1 - p); },
        [](int x, int y, double p) {
            const int dx = 2 * x + 1 - W, dy = 2 * y + 1 - H;
            return dx * dx + dy * dy < p * p * (W * W + H * H);
        },
        [&](int x, int y, double p) {
            return ranks[static_cast<size_t>(y / 10 * 7 + x / 10)] < Nearest(p * 35);
        }};
    for (int i = 0; i < 6; ++i) {
        CCUIRevealEffect reveal;
        s.Set(reveal);
        reveal.SetShape(static_cast<CCUIRevealEffect::Shape>(i));
        reveal.SetSize(10);
        ExpectFrames(Text("reveal %d", i), reveal, s.Mix(shapes[i]));
    }
}

void ExpectScrolls(const CScene &s)
{
    for (int i = 0; i < 16; ++i) {
        const bool bAcross = i % 2 == 0, bBack = i % 4 < 2, bOnBitmap = i >= 8;
        const int nGap = i % 8 < 4 ? 0 : 30, nPeriod = (bAcross ? 40 : 30) + nGap;
        CCUIScrollEffect scroll;
        scroll.SetBackground(bOnBitmap ? s.behind : BACK);
        scroll.SetPicture(s.keyed);
        scroll.SetGap(nGap);
        scroll.SetDirection(static_cast<CCUITimeBasedEffect::Direction>(i % 4 * 2));
        EXPECT_EQ(nPeriod, scroll.GetPeriod(W, H));
        ExpectFrames(Text("scroll %d", i), scroll, [=](int x, int y, double p) {
            const int nMoved = (bBack ? nPeriod - Nearest(p * nPeriod) : Nearest(p * nPeriod));
            const int at = ((bAcross ? x : y) + nMoved) % nPeriod;
            // The place in the picture, as it lies in the middle.
            const int px = bAcross ? at + 12 : x, py = bAcross ? y : at + 9;
            const COLORREF cr = at < nPeriod - nGap ? s.Keyed(px, py) : CLR_INVALID;
            return cr != CLR_INVALID ? cr : bOnBitmap ? s.under.At(x, y) : BACK;
        });
    }
}

void ExpectShrinks(const CScene &s)
{
    for (int i = 0; i < 6; ++i) {
        const bool bWide = i == 1 || i == 3, bHigh = i == 0 || i == 2, bOnBitmap = i == 5;
        const double fX = i < 4 ? i == 0 : i == 4 ? 0.5 : 0.25, fY = i < 4 ? i == 1 : 0.5;
        CCUIShrinkEffect shrink;
        shrink.SetBackground(bOnBitmap ? s.behind : BACK);
        shrink.SetPicture(bOnBitmap ? CUIEffectPicture(s.full.m_bitmap, KEY) : s.full);
        if (i < 4)
            shrink.SetEdge(static_cast<CCUITimeBasedEffect::Direction>(i * 2));
        else
            shrink.SetPoint(fX, fY);
        ExpectFrames(Text("shrink %d", i), shrink, [=](int x, int y, double p) {
            const int cx = bWide ? W : Nearest(W * (1 - p)), cy = bHigh ? H : Nearest(H * (1 - p));
            const int dx = x - Nearest((W - cx) * fX), dy = y - Nearest((H - cy) * fY);
            const bool bIn = dx >= 0 && dy >= 0 && dx < cx && dy < cy;
            const COLORREF cr = bIn ? s.blocks.At(dx * 8 / cx * 8, dy * 6 / cy * 8) : KEY;
            return bIn && !(bOnBitmap && cr == KEY) ? cr : bOnBitmap ? s.under.At(x, y) : BACK;
        });
    }
}

}  // namespace

TEST(Effect, EveryPixelIsWhatTheFormulaSays)
{
    for (const int nDepth : {8, 16, 24, 32}) {
        SCOPED_TRACE(nDepth);
        const CScene s(nDepth);
        ExpectWipes(s);
        ExpectReveals(s);
        ExpectScrolls(s);
        ExpectShrinks(s);
        CCUIBlinkEffect blink;
        s.Set(blink);
        blink.SetBlinks(3);
        // What was made for a frame without colours must not be used for others.
        const CTestSurface mono(CPixelMap(W, H), true);
        blink.Draw(mono, {0, 0, W, H}, 0);
        ExpectFrames("blink", blink,
                     s.Mix([](int, int, double p) { return static_cast<int>(p * 6) % 2 != 0; }));
    }
}

TEST(Effect, TextScrollsOnColoursAndPictures)
{
    const CTestSurface surface(CPixelMap(W, H, 0));
    const CUIEffectPicture bitmap(MakeBitmap(CPixelMap(W, H, BACK), 32));
    for (const CUIEffectPicture &back : {CUIEffectPicture(BACK), bitmap}) {
        CCUIScrollEffect scroll;
        scroll.SetBackground(back);
        scroll.SetText("A&B I", nullptr, 0);
        const auto at = [&](int nPixels) {
            scroll.Draw(surface, {0, 0, W, H}, 1.0 * nPixels / scroll.GetPeriod(W, H));
            return ReadPixels(surface, W, H);
        };
        const CPixelMap map = at(0), moved = at(4);
        EXPECT_TRUE(map == at(scroll.GetPeriod(W, H)));
        EXPECT_GT(map.Count(0), 20);
        for (int i = 0; i < (W - 4) * H; ++i)
            EXPECT_EQ(map.At(i % (W - 4) + 4, i / (W - 4)), moved.At(i % (W - 4), i / (W - 4)));
    }
}

// --- The clock and the window ---

namespace {

const RECT RC = {10, 10, 10 + W, 10 + H};

// Tells what happens, frames in percent.
class CLogged : public CCUITimeBasedEffect
{
public:
    CLogged()
    {
        SetDuration(100);
        SetFrameTime(10);
    }
    std::string Take() { return std::exchange(m_log, ""); }

    std::function<void()> m_onEnd = [] {}, m_onTurn = [] {};

protected:
    void Render(HDC hDC, const RECT &rect, double fProgress) override
    {
        CUIDCFillSolidRect(hDC, &rect, 0xFF00);
        m_log += Text("%d ", Nearest(fProgress * 100));
    }
    void OnEnd(bool bFinished) override
    {
        m_log += bFinished ? "end" : "lost";
        (std::function<void()>(m_onEnd))();  // a copy, which may delete this
    }
    void OnTurn(long nPass) override
    {
        m_log += Text("turn%ld ", nPass);
        (std::function<void()>(m_onTurn))();
    }

private:
    std::string m_log;
};

// A window on the screen, after the first half second of the thread's timers.
struct CStage
{
    CStage()
    {
        PassStartTick(clock);
        UpdateWindow(window);
        clock.Run(1);
    }
    CFakeClock clock;
    CTestWindow window{nullptr, WS_POPUP | WS_VISIBLE};
};

}  // namespace

TEST(Effect, RunsByTheClock)
{
    CStage s;
    CLogged effect;
    ASSERT_TRUE(effect.Start(&s.window, RC));
    s.clock.Run(30);
    EXPECT_EQ("0 10 20 30 ", effect.Take());
    s.clock.Jump(25);  // the frames at 40 and 50 are late
    s.clock.Run(15);
    EXPECT_EQ("55 60 70 ", effect.Take());
    effect.Pause();
    s.clock.Run(1000);
    EXPECT_EQ("", effect.Take());
    effect.Resume();
    s.clock.Run(1000);
    EXPECT_EQ("80 90 100 end", effect.Take());
    EXPECT_EQ(CLogged::Finished, effect.GetState());

    effect.SetFrameTime(50);
    effect.SetRepeat(CLogged::ToAndFro, 3);
    effect.SetEasing(CLogged::EaseIn);
    effect.SetBackwards(true);
    effect.Start(&s.window, RC);
    s.clock.Run(1000);
    EXPECT_EQ("100 75 0 turn1 25 100 turn2 75 0 end", effect.Take());
    effect.SetRepeat(CLogged::Repeated);
    effect.Start(&s.window, RC);
    s.clock.Run(100);
    s.clock.Jump(260);
    s.clock.Run(40);
    EXPECT_EQ("100 75 100 turn1 64 turn3 100 turn4 ", effect.Take());
    EXPECT_EQ("0.82 0.51", Text("%.2f %.2f", CLogged::Ease(CLogged::EaseBoth, 0.7),
                                CLogged::Ease(CLogged::EaseOut, 0.3)));

    // Settings count at once, for what pauses too.
    effect.SetFrameTime(LONG_MAX);
    effect.Start(&s.window, RC);
    s.clock.Run(1);
    s.clock.Jump(29);
    effect.SetDuration(50);
    s.clock.Run(1);
    EXPECT_EQ("100 64 ", effect.Take());
    effect.Pause();
    effect.SetBackwards(false);
    s.clock.Run(1);
    EXPECT_EQ("38 ", effect.Take());
    // Hidden for so long that the clock's sign has changed.
    effect.Resume();
    ShowWindow(s.window, SW_HIDE);
    s.clock.Run(1);
    s.clock.Jump(0x80000000);
    EXPECT_GE(effect.GetProgress(), 0);
    CReports reports;
    EXPECT_EQ("pWindow && pWindow->GetHandle()",
              reports.Of("Effect", [&] { effect.Start(nullptr, RC); }));
}

TEST(Effect, WhatCannotBeSeenCostsNothing)
{
    CStage s;
    CTestWindow cover(s.window, WS_CHILD), child(s.window, WS_CHILD | WS_CLIPSIBLINGS | WS_VISIBLE);
    CLogged effect;
    effect.SetRepeat(CLogged::Repeated);
    effect.Start(&child, {0, 0, 9, 9});
    struct
    {
        HWND hWnd;
        int nAway, nBack;
    } const ways[] = {{child, SW_HIDE, SW_SHOW},
                      {s.window, SW_HIDE, SW_SHOW},
                      {s.window, SW_MINIMIZE, SW_RESTORE},
                      {cover, SW_SHOW, SW_HIDE}};
    for (const auto &way : ways) {
        ShowWindow(way.hWnd, way.nAway);
        s.clock.Run(50);
        effect.Take();
        s.clock.m_delays.clear();
        s.clock.Run(5000);
        EXPECT_EQ("", effect.Take()) << &way - ways;
        EXPECT_TRUE(s.clock.m_delays.empty() && !s.clock.IsPending()) << &way - ways;
        ShowWindow(way.hWnd, way.nBack);
        s.clock.Run(50);
        EXPECT_GE(effect.Take().size(), 8U) << &way - ways;
    }
    // The end of a run is told all the same, and in time.
    ShowWindow(s.window, SW_HIDE);
    effect.SetRepeat(CLogged::Once);
    effect.Start(&child, RC);
    s.clock.Run(99);
    EXPECT_EQ("", effect.Take());
    s.clock.Run(1);
    EXPECT_EQ("end", effect.Take());
}

TEST(Effect, KeepsItsPlaceWhenTheWindowPaints)
{
    CStage s;
    CLogged effect;
    s.window.m_on[WM_PAINT] = [&] {
        PAINTSTRUCT paint;
        FillRect(BeginPaint(s.window, &paint), &paint.rcPaint,
                 static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
        return EndPaint(s.window, &paint) - 1L;
    };
    effect.Start(&s.window, RC);
    s.clock.Run(200);
    for (int i = 0; i < 2; ++i) {
        InvalidateRect(s.window, nullptr, TRUE);
        const CPixelMap map = WindowPixels(s.window);
        EXPECT_EQ(0U, map.At(5, 5));
        EXPECT_EQ(i ? 0U : 0xFF00U, map.At(12, 12));
        EXPECT_EQ(0xFF00U, map.At(80, 50) | map.At(W + 9, H + 9));
        effect.Move({40, 40, W + 40, H + 40});
    }
    effect.Stop();
    InvalidateRect(s.window, nullptr, TRUE);
    EXPECT_EQ(0U, WindowPixels(s.window).At(80, 50));
}

TEST(Effect, MayBeDeletedAndLoseItsWindowAnywhere)
{
    const CHeapWatch heap;
    CStage s;
    for (int i = 0; i < 5; ++i) {
        auto *const pEffect = new CLogged;
        auto *const pWindow = new CScripted<>;
        CreateTestWindow(*pWindow, nullptr, WS_POPUP | WS_VISIBLE);
        pEffect->SetRepeat(CLogged::Repeated, 2);
        pEffect->Start(pWindow, RC);
        bool bGone = false;
        const auto goes = [&] { bGone = true, delete pEffect; };
        // Deleted at the end, at a turn, when the window is lost in any way.
        pEffect->m_onEnd = goes;
        const std::function<void()> ways[] = {[] {}, goes, [&] { pWindow->Destroy(); },
                                              [&] { delete pWindow; },
                                              [&] { DestroyWindow(pWindow->Detach()); }};
        pEffect->m_onTurn = ways[i];
        s.clock.Run(300);
        EXPECT_TRUE(bGone) << i;
        if (i != 3)
            delete pWindow;
    }
    // One that is not told yet does not run on the screen while another is.
    CLogged first, second;
    CTestWindow window(nullptr, WS_POPUP | WS_VISIBLE);
    first.Start(&window, RC);
    second.Start(&window, RC);
    first.m_onEnd = [&] { s.clock.Run(50); };
    window.Destroy();
    EXPECT_EQ("lost", second.Take());
}

TEST(Effect, WithoutMemoryOnlyTheBackgroundIsDrawn)
{
    CTestSurface surface(CPixelMap(W, H, 0));
    const CFailingCall<HBITMAP(HDC, int, int)> bitmap("CreateCompatibleBitmap");
    const CFailingCall<HDC(HDC)> memory("CreateCompatibleDC");
    const CFailingCall<HRGN(int, int, int, int)> clip("CreateRectRgn");
    const CFailingCall<HRGN(const XFORM *, DWORD, const RGNDATA *)> region("ExtCreateRegion");
    CCUIWipeEffect hard, soft;
    CCUIRevealEffect tiles;
    hard.SetDirection(CCUITimeBasedEffect::RightDown);
    soft.SetEdgeWidth(9);
    tiles.SetShape(CCUIRevealEffect::Tiles);
    tiles.SetSize(10);
    CCUITransitionEffect *const effects[] = {&hard, &soft, &tiles};
    for (CCUITransitionEffect *const p : effects) {
        p->SetPictures(0xFFUL, 0xFF00UL);
        p->SetBackground(BACK);
        CFailPlan::Start(0);
        p->Draw(surface, {0, 0, W, H}, 0.4);
        const CPixelMap right = surface.Read();
        EXPECT_LT(
            4, CFailPlan::RunAll([&] {
                p->SetBackground(BACK);
                IntersectClipRect(surface, 0, 0, W, 40);
                p->Draw(surface, {0, 0, W, H}, 0.4);
                RECT box;
                EXPECT_TRUE(GetClipBox(surface, &box) && box.bottom == 40) << CFailPlan::s_nFailAt;
                SelectClipRgn(surface, nullptr);
                const CPixelMap map = surface.Read();
                EXPECT_TRUE(map.Count(BACK) == W * 40 || map == right) << CFailPlan::s_nFailAt;
                CFailPlan::s_nFailAt = 0;
                p->Draw(surface, {0, 0, W, H}, 0.4);
                EXPECT_TRUE(surface.Read() == right);
            }));
        p->Draw(surface, {0, 0, 99999, 99999}, 0.4);  // there is none for so much
        EXPECT_EQ(W * H, surface.Read().Count(BACK));
    }
}

TEST(Effect, FiveThousandLeaveNothingBehind)
{
    const CHeapWatch heap;
    CStage s;
    const CScene scene(32);
    int nDone = 0, nLive = 0;
    ExpectNoGdiLeft(5000, [&] {
        if (++nDone == 3)
            nLive = heap.Live();
        CCUIWipeEffect effect;
        effect.SetPictures(scene.keyed, scene.full);
        effect.SetEdgeWidth(nDone % 2 * 8);
        effect.SetDirection(CCUITimeBasedEffect::RightDown);
        effect.Start(&s.window, RC);
        s.clock.Run(1);
    });
    EXPECT_EQ(nLive, heap.Live());
}

TEST(Effect, ShowsTheLastPictureAtOnceWhereAnimationIsNotWanted)
{
    CStage s;
    BOOL bKnown = TRUE;  // to the system
    const CFakeCall<BOOL(UINT, UINT, void *, UINT)> system(
        "SystemParametersInfoA", [&](UINT nAction, UINT, void *p, UINT) {
            if (nAction == 0x1042 || nAction == 0x103E)
                *static_cast<BOOL *>(p) = FALSE;
            return bKnown;
        });
    CLogged effect;
    for (const int nPasses : {0, 1, 2}) {
        effect.SetRepeat(CLogged::ToAndFro, nPasses);
        effect.Start(&s.window, RC);
        s.clock.Run(500);
        EXPECT_EQ(nPasses == 2 ? "0 end" : "100 end", effect.Take());
    }
    for (const bool bPaused : {false, true}) {
        bKnown = FALSE;
        effect.Start(&s.window, RC);
        s.clock.Run(10);
        if (bPaused)
            effect.Pause();
        bKnown = TRUE;
        SendMessageA(s.window, WM_SETTINGCHANGE, 0, 0);
        effect.Resume();
        s.clock.Run(10);
        EXPECT_EQ("0 10 0 end0 ", effect.Take());
    }
}
