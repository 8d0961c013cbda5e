#include "CUI/Draw.h"

#include <gtest/gtest.h>

#include "Support/PixelMap.h"

namespace {

const COLORREF TL = 0xFFFFFF;
const COLORREF BR = 0x0000FF;

// x, y, width and height.
struct CRect
{
    int x, y, cx, cy;
};
const CRect RECTS[] = {{4, 3, 9, 7},   {4, 3, 1, 1},   {4, 3, 2, 2},    {4, 3, 0, 0},
                       {4, 3, 3, 1},   {9, 8, -4, 3},  {9, 8, 4, -5},   {9, 8, -3, -2},
                       {-2, -3, 9, 8}, {15, 9, 12, 8}, {-1, -1, 22, 18}};

struct CFill
{
    int left, top, right, bottom;
    COLORREF cr;
};
// The fills of each drawing in order, of a rectangle from (x, y) to (r, b).
std::vector<CFill> Fills(int nDrawing, int x, int y, int r, int b)
{
    switch (nDrawing) {
    case 0: return {{x, y, r, b, TL}};
    case 1:
        return {
            {x, y, r, y + 1, TL}, {x, y, x + 1, b, TL}, {r, y, r - 1, b, TL}, {x, b, r, b - 1, TL}};
    case 2:
        return {{x, y, r - 1, y + 1, TL},
                {x, y + 1, x + 1, b - 1, TL},
                {r, y, r - 1, b, BR},
                {x, b, r - 1, b - 1, BR}};
    case 3:
        return {{x, y + 1, x + 1, b - 1, TL},
                {r, y + 1, r - 1, b - 1, BR},
                {x + 1, y, r, y + 1, TL},
                {x, b, r - 1, b - 1, BR}};
    default:
        return {{x + 1, y, r - 1, y + 1, TL},
                {x, y + 1, x + 1, b, TL},
                {r, y, r - 1, b - 1, BR},
                {x + 1, b, r - 1, b - 1, BR}};
    }
}
void Draw(int nDrawing, HDC hDC, const RECT *prc)
{
    switch (nDrawing) {
    case 0: return CUIDCFillSolidRect(hDC, prc, TL);
    case 1: return CUIDCDrawRect(hDC, prc, TL);
    case 2: return CUIDCDraw3dRect(hDC, prc, TL, BR, 0, 1);
    case 3: return CUIDCDraw3dRect(hDC, prc, TL, BR, 2, 4);
    default: return CUIDCDraw3dRect(hDC, prc, TL, BR, -1, 0);
    }
}

// A strip that goes back by one from an edge lies on one side of it or the other, as the system
// has it for PatBlt.
void Invert(CPixelMap &map, int x, int y, int cx, int cy, int nBack)
{
    for (int i = 0; i < abs(cx * cy); ++i) {
        const int px = (cx < 0 ? x + nBack : x) + i % abs(cx);
        const int py = (cy < 0 ? y + nBack : y) + i / abs(cx);
        if (map.Has(px, py))
            map.At(px, py) ^= 0xFFFFFF;
    }
}

}  // namespace

TEST(Draw, FillsTheTablesPixelsOnEveryDepthAndKeepsTheDC)
{
    for (const int nBits : {0, 32, 24, 16, 8, 1}) {
        // A background colour is white on monochrome, whichever it is.
        for (int nDrawing = 0; nDrawing < (nBits == 1 ? 2 : 5); ++nDrawing) {
            for (const CRect &r : RECTS) {
                SCOPED_TRACE(testing::Message() << nBits << " bits, rectangle " << &r - RECTS
                                                << ", drawing " << nDrawing);
                CTestSurface target(nBits, CPixelMap(20, 16));
                SetBkColor(target, 0x123456);
                const CDCState state(target);
                const RECT rect = {r.x, r.y, r.x + r.cx, r.y + r.cy};
                Draw(nDrawing, target, &rect);
                CPixelMap expected(20, 16);
                for (const CFill &f : Fills(nDrawing, rect.left, rect.top, rect.right, rect.bottom))
                    expected.Fill(f.left, f.top, f.right, f.bottom, f.cr);
                EXPECT_TRUE(state == CDCState(target));
                EXPECT_EQ("", Difference(expected, target.Read()));
            }
        }
    }
}

TEST(Draw, InvertsTheRubberFrameAndTakesItBack)
{
    CTestSurface probe(32, CPixelMap(3, 3));
    PatBlt(probe, 1, 0, -1, 1, DSTINVERT);
    const int nBack = probe.Read().At(1, 0) ? 0 : -1;
    for (const int nBits : {0, 24, 1}) {
        for (const CRect &r : RECTS) {
            SCOPED_TRACE(&r - RECTS);
            CTestSurface target(nBits, TestPicture(20, 16, 3));
            const CPixelMap before = target.Read();
            CPixelMap expected = before;
            const int x = r.cx < 0 ? r.x + r.cx : r.x, y = r.cy < 0 ? r.y + r.cy : r.y;
            const int w = abs(r.cx), h = abs(r.cy);
            Invert(expected, x, y, w - 1, 1, nBack);
            Invert(expected, x, y + 1, 1, h - 1, nBack);
            Invert(expected, x + w, y, -1, h - 1, nBack);
            Invert(expected, x + 1, y + h, w - 1, -1, nBack);
            const RECT rect = {r.x, r.y, r.x + r.cx, r.y + r.cy}, moved = {2, 2, 8, 9};
            CUIDCRubberRect(target, nullptr, &rect);
            EXPECT_EQ("", Difference(expected, target.Read()));
            CUIDCRubberRect(target, &rect, &moved);
            CUIDCRubberRect(target, &moved, nullptr);
            CUIDCRubberRect(target, nullptr, nullptr);
            EXPECT_EQ("", Difference(before, target.Read()));
        }
    }
}
