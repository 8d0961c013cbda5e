// Effects: a frame beside the fewest BitBlt calls that make the same picture, and what a running
// effect takes of the processor beside those calls on a bare timer.
#include <stdio.h>
#include <stdlib.h>

#include "Bench.h"
#include "CU/CU.h"
#include "CUI/Effects.h"
#include "CUI/OffScreenDC.h"

namespace {

const int CX = 514, CY = 345;
const RECT RC = {0, 0, CX, CY};

// A DC in memory with a bitmap that stays in it.
struct CKept
{
    explicit CKept(COLORREF cr)
    {
        const HDC hScreen = GetDC(nullptr);
        hDC = CreateCompatibleDC(hScreen);
        hBitmap = CreateCompatibleBitmap(hScreen, CX, CY);
        ReleaseDC(nullptr, hScreen);
        SelectObject(hDC, hBitmap);
        const HBRUSH hBrush = CreateHatchBrush(HS_DIAGCROSS, cr);
        FillRect(hDC, &RC, hBrush);
        DeleteObject(hBrush);
    }
    HDC hDC;
    HBITMAP hBitmap;
};

CCUIBitmap MakePicture(COLORREF cr)
{
    const CKept kept(cr);
    DeleteDC(kept.hDC);
    return CCUIBitmap(kept.hBitmap, nullptr);
}

void Copy(HDC hTo, int x, int y, int cx, int cy, HDC hFrom, int xFrom, int yFrom,
          DWORD dwRop = SRCCOPY)
{
    BitBlt(hTo, x, y, cx, cy, hFrom, xFrom, yFrom, dwRop);
}

// A mask of where a transition shows its second picture, in black.
HDC MaskOf(CCUITransitionEffect &effect, HDC hTarget, double fProgress)
{
    effect.SetPictures(RGB(255, 255, 255), RGB(0, 0, 0));
    effect.Draw(hTarget, RC, fProgress);
    const HDC hMask = CreateCompatibleDC(nullptr);
    SelectObject(hMask, CreateBitmap(CX, CY, 1, 1, nullptr));
    Copy(hMask, 0, 0, CX, CY, hTarget, 0, 0);
    return hMask;
}

// The second picture over the first one from x on, where the mask is black.
void ThroughMask(HDC hTo, int x, int cx, HDC hMask, HDC hFirst, HDC hSecond)
{
    Copy(hTo, x, 0, cx, CY, hFirst, x, 0);
    Copy(hTo, x, 0, cx, CY, hSecond, x, 0, SRCINVERT);
    Copy(hTo, x, 0, cx, CY, hMask, x, 0, SRCAND);
    Copy(hTo, x, 0, cx, CY, hSecond, x, 0, SRCINVERT);
}

// One picture in a box, the other around it.
void BoxAndAround(HDC hTo, const RECT &box, HDC hInside, HDC hOutside)
{
    const int cx = box.right - box.left, cy = box.bottom - box.top;
    Copy(hTo, box.left, box.top, cx, cy, hInside, box.left, box.top);
    Copy(hTo, 0, 0, CX, box.top, hOutside, 0, 0);
    Copy(hTo, 0, box.top, box.left, cy, hOutside, 0, box.top);
    Copy(hTo, box.right, box.top, CX - box.right, cy, hOutside, box.right, box.top);
    Copy(hTo, 0, box.bottom, CX, CY - box.bottom, hOutside, 0, box.bottom);
}

// The pictures are made anew for the measure, and the peer must make what the effect makes.
template <typename Peer>
void CompareFrame(const char *name, CCUITimeBasedEffect &effect, double fProgress, HDC hTarget,
                  const char *peerName, Peer peer)
{
    const auto sum = [&] {
        unsigned long nSum = 0;
        for (int i = 0; i < CX * CY; i += 7)
            nSum = nSum * 31 + GetPixel(hTarget, i % CX, i / CX);
        return nSum;
    };
    PatBlt(hTarget, 0, 0, CX, CY, WHITENESS);
    effect.Draw(hTarget, RC, fProgress);
    const unsigned long nOurs = sum();
    PatBlt(hTarget, 0, 0, CX, CY, BLACKNESS);
    peer();
    if (sum() != nOurs) {
        fprintf(stderr, "%s: the peer makes another picture.\n", name);
        exit(1);
    }
    BenchCompare(
        name, [&] { effect.Draw(hTarget, RC, fProgress); }, peerName, peer, 1.1);
}

void CompareFrames()
{
    const COLORREF RED = RGB(255, 0, 0), BLUE = RGB(0, 0, 255);
    const CKept target(0), first(RED), second(BLUE), memory(0), behind(0);
    const HDC hTarget = target.hDC, hFirst = first.hDC, hSecond = second.hDC;
    const CCUIBitmap bmpFirst = MakePicture(RED), bmpSecond = MakePicture(BLUE);

    CCUIBlinkEffect blink;
    blink.SetPictures(bmpFirst, bmpSecond);
    CompareFrame("blink, 514 x 345", blink, 0.75, hTarget, "BitBlt",
                 [&] { Copy(hTarget, 0, 0, CX, CY, hSecond, 0, 0); });

    CCUIScrollEffect scroll;
    scroll.SetPicture(bmpFirst);
    CompareFrame("scroll, 514 x 345", scroll, 0.5, hTarget, "2 BitBlts", [&] {
        Copy(hTarget, 0, 0, CX / 2, CY, hFirst, CX / 2, 0);
        Copy(hTarget, CX / 2, 0, CX / 2, CY, hFirst, 0, 0);
    });

    CCUIShrinkEffect shrink;
    shrink.SetBackground(RGB(255, 255, 0));
    shrink.SetPicture(bmpFirst);
    shrink.SetPoint(0, 0);
    const HBRUSH hBrush = CreateSolidBrush(RGB(255, 255, 0));
    FillRect(behind.hDC, &RC, hBrush);
    CompareFrame("shrink, 514 x 345", shrink, 0.5, hTarget, "StretchBlt, 2 BitBlts", [&] {
        SetStretchBltMode(hTarget, COLORONCOLOR);
        StretchBlt(hTarget, 0, 0, 257, 173, hFirst, 0, 0, CX, CY, SRCCOPY);
        Copy(hTarget, 257, 0, 257, 173, behind.hDC, 257, 0);
        Copy(hTarget, 0, 173, CX, CY - 173, behind.hDC, 0, 173);
    });

    CCUIWipeEffect wipe;
    wipe.SetPictures(bmpFirst, bmpSecond);
    CompareFrame("wipe, 514 x 345", wipe, 0.5, hTarget, "2 BitBlts", [&] {
        Copy(hTarget, 0, 0, CX / 2, CY, hSecond, 0, 0);
        Copy(hTarget, CX / 2, 0, CX / 2, CY, hFirst, CX / 2, 0);
    });
    // No fewer BitBlts make what is not made of rectangles.
    const char *const MASKED = "4 BitBlts with a mask that is ready, 1 to show them";
    const auto compareMasked = [&](const char *name, CCUITransitionEffect &effect) {
        const HDC hMask = MaskOf(effect, hTarget, 0.5);
        effect.SetPictures(bmpFirst, bmpSecond);
        CompareFrame(name, effect, 0.5, hTarget, MASKED, [&] {
            ThroughMask(memory.hDC, 0, CX, hMask, hFirst, hSecond);
            Copy(hTarget, 0, 0, CX, CY, memory.hDC, 0, 0);
        });
    };
    wipe.SetDirection(CCUITimeBasedEffect::RightDown);
    compareMasked("wipe to a corner, 514 x 345", wipe);
    const int EDGE = 64, FROM = (CX + EDGE) / 2 - EDGE, TO = FROM + EDGE;
    wipe.SetEdgeWidth(EDGE);
    compareMasked("wipe to a corner with a soft edge, 514 x 345", wipe);
    wipe.SetDirection(CCUITimeBasedEffect::Right);
    const HDC hMask = MaskOf(wipe, hTarget, 0.5);
    wipe.SetPictures(bmpFirst, bmpSecond);
    CompareFrame("wipe with a soft edge, 514 x 345", wipe, 0.5, hTarget,
                 "6 BitBlts with a mask that is ready, 1 to show them", [&] {
                     Copy(memory.hDC, 0, 0, FROM, CY, hSecond, 0, 0);
                     Copy(memory.hDC, TO, 0, CX - TO, CY, hFirst, TO, 0);
                     ThroughMask(memory.hDC, FROM, EDGE, hMask, hFirst, hSecond);
                     Copy(hTarget, 0, 0, CX, CY, memory.hDC, 0, 0);
                 });

    CCUIRevealEffect reveal;
    reveal.SetShape(CCUIRevealEffect::Circle);
    compareMasked("reveal by a circle, 514 x 345", reveal);
    reveal.SetShape(CCUIRevealEffect::Tiles);
    compareMasked("reveal by tiles, 514 x 345", reveal);
    const RECT BOX = {128, 86, 128 + 257, 86 + 173};
    reveal.SetShape(CCUIRevealEffect::BoxOut);
    CompareFrame("reveal by a box, 514 x 345", reveal, 0.5, hTarget, "5 BitBlts",
                 [&] { BoxAndAround(hTarget, BOX, hSecond, hFirst); });
    reveal.SetShape(CCUIRevealEffect::BoxIn);
    CompareFrame("reveal around a box, 514 x 345", reveal, 0.5, hTarget, "5 BitBlts",
                 [&] { BoxAndAround(hTarget, BOX, hFirst, hSecond); });
    reveal.SetShape(CCUIRevealEffect::BlindsRight);
    CompareFrame("reveal by blinds across, 514 x 345", reveal, 0.5, hTarget, "43 BitBlts", [&] {
        for (int x = 0, nSlat = 0; x < CX; x += 12, ++nSlat)
            Copy(hTarget, x, 0, std::min(12, CX - x), CY, nSlat % 2 ? hFirst : hSecond, x, 0);
    });
    reveal.SetShape(CCUIRevealEffect::BlindsDown);
    CompareFrame("reveal by blinds down, 514 x 345", reveal, 0.5, hTarget, "29 BitBlts", [&] {
        for (int y = 0, nSlat = 0; y < CY; y += 12, ++nSlat)
            Copy(hTarget, 0, y, CX, std::min(12, CY - y), nSlat % 2 ? hFirst : hSecond, 0, y);
    });
}

// --- Running ---

// The system counts processor time in steps of 10 ms.
const int FRAMES = 240, FRAME_TIME = 16;

double ProcessorSeconds()
{
    FILETIME created, ended, kernel, user;
    GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user);
    const auto units = [](const FILETIME &time) {
        return static_cast<double>(time.dwHighDateTime) * 4294967296.0 + time.dwLowDateTime;
    };
    return (units(kernel) + units(user)) * 1e-7;
}

class CBenchWindow : public CCUIWindow
{
public:
    CBenchWindow()
    {
        Create(nullptr, "Bench", WS_POPUP | WS_VISIBLE, RC, nullptr, 0);
        UpdateWindow(*this);
    }
};

// Counts its frames.
class CCountedWipe : public CCUIWipeEffect
{
public:
    int m_nFrames = 0;

protected:
    void Render(HDC hDC, const RECT &rect, double fProgress) override
    {
        ++m_nFrames;
        CCUIWipeEffect::Render(hDC, rect, fProgress);
    }
};

// The same two copies, and nothing around them.
class CBareTimer : public CCUTimer
{
public:
    CBareTimer(HWND hWnd, HDC hFirst, HDC hSecond)
        : m_hWnd(hWnd), m_hFirst(hFirst), m_hSecond(hSecond), m_uStart(CUGetTime())
    {
        SetAlarm(0);
    }
    void TimeOut(long) override
    {
        const unsigned long uElapsed = CUGetTime() - m_uStart;
        const int nFront = static_cast<int>(uElapsed * CX / 1000) % CX;
        const HDC hDC = GetDC(m_hWnd);
        Copy(hDC, 0, 0, nFront, CY, m_hSecond, 0, 0);
        Copy(hDC, nFront, 0, CX - nFront, CY, m_hFirst, nFront, 0);
        ReleaseDC(m_hWnd, hDC);
        ++m_nFrames;
        SetAlarm(static_cast<long>(FRAME_TIME - uElapsed % FRAME_TIME));
    }

    int m_nFrames = 0;

private:
    HWND m_hWnd;
    HDC m_hFirst, m_hSecond;
    unsigned long m_uStart;
};

// Processor seconds a frame.
double SecondsAFrame(const int &nFrames)
{
    const double fBefore = ProcessorSeconds();
    MSG msg;
    while (nFrames < FRAMES)
        CCUIWindow::PumpMessage(&msg);
    return (ProcessorSeconds() - fBefore) / nFrames;
}

void CompareRunning()
{
    CBenchWindow window;
    const CKept first(RGB(255, 0, 0)), second(RGB(0, 0, 255));
    CCountedWipe wipe;
    wipe.SetPictures(MakePicture(RGB(255, 0, 0)), MakePicture(RGB(0, 0, 255)));
    wipe.SetRepeat(CCUITimeBasedEffect::Repeated);
    wipe.SetFrameTime(FRAME_TIME);
    const auto ours = [&] {
        wipe.m_nFrames = 0;
        wipe.Start(&window, RC);
        const double fSeconds = SecondsAFrame(wipe.m_nFrames);
        wipe.Pause();
        return fSeconds;
    };
    const auto peer = [&] {
        CBareTimer timer(window, first.hDC, second.hDC);
        return SecondsAFrame(timer.m_nFrames);
    };
    BenchPairs("processor time, a wipe of 514 x 345 at 60 frames a second", 5, ours,
               "the same BitBlts on a bare timer", peer, 1.1);
}

}  // namespace

BENCH_GROUP(Effects)
{
    CompareFrames();
    CompareRunning();
}
