// Blitting, state drawing, the rectangle helpers and the off-screen DC, beside the GDI calls that a
// program would make by hand. All draw into a 32-bit picture in memory.
#include "Bench.h"

#include "CUI/BmpBlt.h"
#include "CUI/BmpState.h"
#include "CUI/Draw.h"
#include "CUI/OffScreenDC.h"

namespace {

const DWORD DSPDXAX = 0x00E20746;
const DWORD PSDPXAX = 0x00B8074A;

// A target, a source of the screen's depth (device-dependent, or a DIB section), and three DCs that
// a careful program would keep.
struct CScene
{
    CScene(int nWidth, int nHeight, bool bSection = false) : cx(nWidth), cy(nHeight)
    {
        const HDC hScreen = GetDC(nullptr);
        hTarget = CreateCompatibleDC(hScreen);
        SelectObject(hTarget, CreateCompatibleBitmap(hScreen, 600, 400));
        const BITMAPINFO info = {{40, cx, cy, 1, 32, BI_RGB, 0, 0, 0, 0, 0}, {}};
        hImage = bSection ? CreateDIBSection(hScreen, &info, DIB_RGB_COLORS, nullptr, nullptr, 0)
                          : CreateCompatibleBitmap(hScreen, cx, cy);
        hMask = CreateBitmap(cx, cy, 1, 1, nullptr);
        for (HDC &hDC : kept)
            hDC = CreateCompatibleDC(hScreen);
        const HGDIOBJ hOld = SelectObject(kept[0], hImage);
        for (int i = 0; i < cx; i += 4)
            PatBlt(kept[0], i, 0, 2, cy, WHITENESS);
        const HGDIOBJ hOldMask = SelectObject(kept[1], hMask);
        BitBlt(kept[1], 0, 0, cx, cy, kept[0], 1, 0, SRCCOPY);
        SelectObject(kept[0], hOld);
        SelectObject(kept[1], hOldMask);
        ReleaseDC(nullptr, hScreen);
    }
    int cx, cy;
    HDC hTarget;
    HBITMAP hImage, hMask;
    HDC kept[3];
};

void BitBltByHand(const CScene &s, HDC hDC)
{
    const HGDIOBJ hOld = SelectObject(hDC, s.hImage);
    BitBlt(s.hTarget, 0, 0, s.cx, s.cy, hDC, 0, 0, SRCCOPY);
    SelectObject(hDC, hOld);
}

void TransparentByHand(const CScene &s)
{
    const HGDIOBJ hOld = SelectObject(s.kept[0], s.hImage);
    const HGDIOBJ hOldMask = SelectObject(s.kept[1], s.hMask);
    SetBkColor(s.hTarget, 0xFFFFFF);
    SetTextColor(s.hTarget, 0);
    BitBlt(s.hTarget, 0, 0, s.cx, s.cy, s.kept[0], 0, 0, SRCINVERT);
    BitBlt(s.hTarget, 0, 0, s.cx, s.cy, s.kept[1], 0, 0, SRCAND);
    BitBlt(s.hTarget, 0, 0, s.cx, s.cy, s.kept[0], 0, 0, SRCINVERT);
    SelectObject(s.kept[0], hOld);
    SelectObject(s.kept[1], hOldMask);
}

void BgBltByHand(const CScene &s)
{
    const HGDIOBJ hOld = SelectObject(s.kept[0], s.hImage);
    const HBITMAP hMask = CreateCompatibleBitmap(s.kept[1], s.cx, s.cy);
    const HBITMAP hWork = CreateCompatibleBitmap(s.hTarget, s.cx, s.cy);
    const HGDIOBJ hOldMask = SelectObject(s.kept[1], hMask);
    const HGDIOBJ hOldWork = SelectObject(s.kept[2], hWork);
    SetBkColor(s.kept[0], 0xFFFFFF);
    BitBlt(s.kept[1], 0, 0, s.cx, s.cy, s.kept[0], 0, 0, SRCCOPY);
    BitBlt(s.kept[2], 0, 0, s.cx, s.cy, s.kept[0], 0, 0, SRCCOPY);
    const HBRUSH hBrush = CreateSolidBrush(GetBkColor(s.hTarget));
    const HGDIOBJ hOldBrush = SelectObject(s.kept[2], hBrush);
    BitBlt(s.kept[2], 0, 0, s.cx, s.cy, s.kept[1], 0, 0, DSPDXAX);
    BitBlt(s.hTarget, 0, 0, s.cx, s.cy, s.kept[2], 0, 0, SRCCOPY);
    SelectObject(s.kept[2], hOldBrush);
    SelectObject(s.kept[2], hOldWork);
    SelectObject(s.kept[1], hOldMask);
    SelectObject(s.kept[0], hOld);
    DeleteObject(hBrush);
    DeleteObject(hWork);
    DeleteObject(hMask);
}

void EmbossByHand(const CScene &s)
{
    const int nSaved = SaveDC(s.hTarget);
    const HGDIOBJ hOld = SelectObject(s.kept[0], s.hImage);
    const HBITMAP hMask = CreateBitmap(s.cx, s.cy, 1, 1, nullptr);
    const HGDIOBJ hOldMask = SelectObject(s.kept[1], hMask);
    PatBlt(s.kept[1], 0, 0, s.cx, s.cy, WHITENESS);
    SetBkColor(s.kept[0], 0xC0C0C0);
    BitBlt(s.kept[1], 0, 0, s.cx, s.cy, s.kept[0], 0, 0, SRCCOPY);
    SetBkColor(s.kept[0], 0xFFFFFF);
    BitBlt(s.kept[1], 0, 0, s.cx, s.cy, s.kept[0], 0, 0, SRCPAINT);
    SetTextColor(s.hTarget, 0);
    SetBkColor(s.hTarget, 0xFFFFFF);
    for (int i = 1; i >= 0; --i) {
        const HBRUSH hBrush = CreateSolidBrush(i ? 0xFFFFFF : 0x808080);
        const HGDIOBJ hOldBrush = SelectObject(s.hTarget, hBrush);
        BitBlt(s.hTarget, i, i, s.cx - 2, s.cy - 2, s.kept[1], 0, 0, PSDPXAX);
        SelectObject(s.hTarget, hOldBrush);
        DeleteObject(hBrush);
    }
    SelectObject(s.kept[1], hOldMask);
    SelectObject(s.kept[0], hOld);
    DeleteObject(hMask);
    RestoreDC(s.hTarget, nSaved);
}

void FillByHand(HDC hDC, int left, int top, int right, int bottom, COLORREF cr)
{
    const RECT rect = {left, top, right, bottom};
    const COLORREF crOld = SetBkColor(hDC, cr);
    ExtTextOutA(hDC, 0, 0, ETO_OPAQUE, &rect, nullptr, 0, nullptr);
    SetBkColor(hDC, crOld);
}

// All that a kept DC saves of the first peer is making and deleting one. On Wine, selecting a
// device-dependent bitmap of any colours asks for the display mode, which takes longer than copying
// 514 x 345 pixels; selecting a DIB section does not, and shows what the DC is worth. The last row
// has nothing of ours: it is the part of the first peer that every way of drawing takes.
void BenchBlits(int cx, int cy, bool bSection, const char *const names[])
{
    const CScene s(cx, cy, bSection);
    const auto bitBlt = [&] { CUIBmpBitBlt(s.hTarget, 0, 0, s.hImage, 0, 0, 0, 0, nullptr, 0); };
    const auto newDC = [&] {
        const HDC hDC = CreateCompatibleDC(s.hTarget);
        BitBltByHand(s, hDC);
        DeleteDC(hDC);
    };
    const char *const newDCName = "CreateCompatibleDC, select, BitBlt, back, DeleteDC";
    BenchCompare(names[0], bitBlt, newDCName, newDC, bSection ? 0 : 0.6);
    BenchCompare(
        names[1], bitBlt, "select, BitBlt, back on a kept DC", [&] { BitBltByHand(s, s.kept[0]); },
        1.05);
    BenchCompare(
        names[2], [&] { BitBltByHand(s, s.kept[0]); }, newDCName, newDC, 0);
}

void BenchTransparent(int cx, int cy, const char *name)
{
    const CScene s(cx, cy);
    BenchCompare(
        name, [&] { CUIBmpTransparentBlt(s.hTarget, 0, 0, s.hImage, s.hMask); },
        "select, 3 BitBlts, back on kept DCs", [&] { TransparentByHand(s); }, 1.05);
}

}  // namespace

BENCH_GROUP(Draw)
{
    const char *const names[][3] = {
        {"CUIBmpBitBlt 64 x 64", "CUIBmpBitBlt 64 x 64, kept DC",
         "select, BitBlt, back on a kept DC 64 x 64"},
        {"CUIBmpBitBlt 514 x 345", "CUIBmpBitBlt 514 x 345, kept DC",
         "select, BitBlt, back on a kept DC 514 x 345"},
        {"CUIBmpBitBlt 64 x 64, DIB section", "CUIBmpBitBlt 64 x 64, DIB section, kept DC",
         "select, BitBlt, back on a kept DC 64 x 64, DIB section"},
        {"CUIBmpBitBlt 514 x 345, DIB section", "CUIBmpBitBlt 514 x 345, DIB section, kept DC",
         "select, BitBlt, back on a kept DC 514 x 345, DIB section"}};
    BenchBlits(64, 64, false, names[0]);
    BenchBlits(514, 345, false, names[1]);
    BenchBlits(64, 64, true, names[2]);
    BenchBlits(514, 345, true, names[3]);
    BenchTransparent(64, 64, "CUIBmpTransparentBlt 64 x 64");
    BenchTransparent(256, 256, "CUIBmpTransparentBlt 256 x 256");

    const CScene s(64, 64);
    BenchCompare(
        "CUIBmpBgBlt 64 x 64", [&] { CUIBmpBgBlt(s.hTarget, 0, 0, s.hImage, 0xFFFFFF); },
        "the same calls by hand", [&] { BgBltByHand(s); }, 1.05);
    CUIBmpStateRects rects = {{0, 0, 64, 64}, {0, 0, 65, 64}, {0, 0, 64, 64}};
    BenchCompare(
        "CUIBmpDrawState 64 x 64, disabled",
        [&] {
            CUIBmpDrawState(s.hTarget, &rects.rcArea, s.hImage, CUIBMPSTATE_DISABLED, 0xC0C0C0,
                            0xFFFFFF, 0x808080);
        },
        "the same calls by hand", [&] { EmbossByHand(s); }, 1.05);

    BenchCompare(
        "CUIDCFillSolidRect 40 x 20",
        [&] { CUIDCFillSolidRect(s.hTarget, 5, 5, 40, 20, 0x123456); }, "ExtTextOut by hand",
        [&] { FillByHand(s.hTarget, 5, 5, 45, 25, 0x123456); }, 1.1);
    BenchCompare(
        "CUIDCDraw3dRect 40 x 20",
        [&] { CUIDCDraw3dRect(s.hTarget, 5, 5, 40, 20, 0x123456, 0x654321, 0, 0); },
        "4 ExtTextOuts by hand",
        [&] {
            FillByHand(s.hTarget, 5, 5, 44, 6, 0x123456);
            FillByHand(s.hTarget, 5, 6, 6, 24, 0x123456);
            FillByHand(s.hTarget, 45, 5, 44, 25, 0x654321);
            FillByHand(s.hTarget, 5, 25, 44, 24, 0x654321);
        },
        1.1);

    CRITICAL_SECTION lock;
    InitializeCriticalSection(&lock);
    BenchCompare(
        "CCUIOffScreenDC GetDC + ReleaseDC, fits",
        [&] {
            BenchKeep(CUIGetOSDC()->GetDC(s.hTarget, 514, 345));
            CUIGetOSDC()->ReleaseDC();
        },
        "critical section pair + GetDeviceCaps",
        [&] {
            EnterCriticalSection(&lock);
            BenchKeep(GetDeviceCaps(s.hTarget, BITSPIXEL));
            LeaveCriticalSection(&lock);
        },
        1.5);
    DeleteCriticalSection(&lock);
}
