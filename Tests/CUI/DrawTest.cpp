#include "CUI/Draw.h"

#include <gtest/gtest.h>

#include "Support/PixelMap.h"

namespace {

const COLORREF TL = 0xFFFFFF;
const COLORREF BR = 0x0000FF;

struct CRect
{
    int x, y, cx, cy;
};
const CRect RECTS[] = {{4, 3, 9, 7},   {4, 3, 1, 1},   {4, 3, 2, 2},    {4, 3, 0, 0},
                       {4, 3, 3, 1},   {9, 8, -4, 3},  {9, 8, 4, -5},   {9, 8, -3, -2},
                       {-2, -3, 9, 8}, {15, 9, 12, 8}, {-1, -1, 22, 18}};

// What each frame consists of, in the order of filling.
struct CFill
{
    int left, top, right, bottom;
    COLORREF cr;
};
using CFills = std::vector<CFill>;

CFills Frame(int x, int y, int cx, int cy)
{
    return {{x, y, x + cx, y + 1, TL},
            {x, y, x + 1, y + cy, TL},
            {x + cx, y, x + cx - 1, y + cy, TL},
            {x, y + cy, x + cx, y + cy - 1, TL}};
}
CFills Bevel(int x, int y, int cx, int cy)
{
    return {{x, y, x + cx - 1, y + 1, TL},
            {x, y + 1, x + 1, y + cy - 1, TL},
            {x + cx, y, x + cx - 1, y + cy, BR},
            {x, y + cy, x + cx - 1, y + cy - 1, BR}};
}
CFills BevelTrimmedBoth(int x, int y, int cx, int cy)
{
    return {{x, y + 1, x + 1, y + cy - 1, TL},
            {x + cx, y + 1, x + cx - 1, y + cy - 1, BR},
            {x + 1, y, x + cx, y + 1, TL},
            {x, y + cy, x + cx - 1, y + cy - 1, BR}};
}
CFills BevelTrimmed(int x, int y, int cx, int cy)
{
    return {{x + 1, y, x + cx - 1, y + 1, TL},
            {x, y + 1, x + 1, y + cy, TL},
            {x + cx, y, x + cx - 1, y + cy - 1, BR},
            {x + 1, y + cy, x + cx - 1, y + cy - 1, BR}};
}
CFills Solid(int x, int y, int cx, int cy)
{
    return {{x, y, x + cx, y + cy, TL}};
}

// A drawing in both its forms, and its fills.
const struct
{
    void (*draw)(HDC hDC, const CRect &r);
    void (*drawRect)(HDC hDC, const RECT *prc);
    CFills (*fills)(int x, int y, int cx, int cy);
} DRAWINGS[] = {
    {[](HDC hDC, const CRect &r) { CUIDCFillSolidRect(hDC, r.x, r.y, r.cx, r.cy, TL); },
     [](HDC hDC, const RECT *prc) { CUIDCFillSolidRect(hDC, prc, TL); }, Solid},
    {[](HDC hDC, const CRect &r) { CUIDCDrawRect(hDC, r.x, r.y, r.cx, r.cy, TL); },
     [](HDC hDC, const RECT *prc) { CUIDCDrawRect(hDC, prc, TL); }, Frame},
    {[](HDC hDC, const CRect &r) { CUIDCDraw3dRect(hDC, r.x, r.y, r.cx, r.cy, TL, BR, 0, 1); },
     [](HDC hDC, const RECT *prc) { CUIDCDraw3dRect(hDC, prc, TL, BR, 0, 0); }, Bevel},
    {[](HDC hDC, const CRect &r) { CUIDCDraw3dRect(hDC, r.x, r.y, r.cx, r.cy, TL, BR, 2, 4); },
     [](HDC hDC, const RECT *prc) { CUIDCDraw3dRect(hDC, prc, TL, BR, 1, 1); }, BevelTrimmedBoth},
    {[](HDC hDC, const CRect &r) { CUIDCDraw3dRect(hDC, r.x, r.y, r.cx, r.cy, TL, BR, -1, 0); },
     [](HDC hDC, const RECT *prc) { CUIDCDraw3dRect(hDC, prc, TL, BR, 1, 0); }, BevelTrimmed}};

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
        for (const CRect &r : RECTS) {
            for (const auto &drawing : DRAWINGS) {
                // A background colour is white on monochrome, whichever it is.
                if (nBits == 1 && &drawing > &DRAWINGS[1])
                    continue;
                SCOPED_TRACE(testing::Message() << nBits << " bits, rectangle " << &r - RECTS
                                                << ", drawing " << &drawing - DRAWINGS);
                CTestSurface target(nBits, CPixelMap(20, 16)), other(nBits, CPixelMap(20, 16));
                SetBkColor(target, 0x123456);
                const CDCState state(target);
                drawing.draw(target, r);
                const RECT rect = {r.x, r.y, r.x + r.cx, r.y + r.cy};
                drawing.drawRect(other, &rect);
                CPixelMap expected(20, 16);
                for (const CFill &f : drawing.fills(r.x, r.y, r.cx, r.cy))
                    expected.Fill(f.left, f.top, f.right, f.bottom, f.cr);
                EXPECT_TRUE(state == CDCState(target));
                EXPECT_EQ("", Difference(expected, target.Read()));
                EXPECT_EQ("", Difference(expected, other.Read()));
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
            const CDCState state(target);
            CUIDCRubberRect(target, nullptr, &rect);
            EXPECT_EQ("", Difference(expected, target.Read()));
            CUIDCRubberRect(target, &rect, &moved);
            CUIDCRubberRect(target, &moved, nullptr);
            CUIDCRubberRect(target, nullptr, nullptr);
            EXPECT_EQ("", Difference(before, target.Read()));
            EXPECT_TRUE(state == CDCState(target));
        }
    }
}
