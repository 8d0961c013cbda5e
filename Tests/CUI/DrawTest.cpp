#include "CUI/Draw.h"

#include <gtest/gtest.h>

#include "Support/PixelMap.h"

namespace {

const COLORREF TL = 0xFFFFFF, BR = 0x0000FF;

const RECT RECTS[] = {{4, 3, 13, 10}, {4, 3, 5, 4},    {4, 3, 6, 5},    {4, 3, 4, 3},
                      {4, 3, 7, 4},   {9, 8, 5, 11},   {9, 8, 13, 3},   {9, 8, 6, 6},
                      {-2, -3, 7, 5}, {15, 9, 27, 17}, {-1, -1, 21, 17}};

struct CFill
{
    int left, top, right, bottom;
    COLORREF cr;
};
// The fills of each drawing in order, of a rectangle from (x, y) to (r, b).
std::vector<CFill> Fills(int nDrawing, int x, int y, int r, int b)
{
    const int x1 = x + 1, y1 = y + 1, r1 = r - 1, b1 = b - 1;
    const std::vector<CFill> drawings[] = {
        {{x, y, r, b, TL}},
        {{x, y, r, y1, TL}, {x, y, x1, b, TL}, {r, y, r1, b, TL}, {x, b, r, b1, TL}},
        {{x, y, r1, y1, TL}, {x, y1, x1, b1, TL}, {r, y, r1, b, BR}, {x, b, r1, b1, BR}},
        {{x, y1, x1, b1, TL}, {r, y1, r1, b1, BR}, {x1, y, r, y1, TL}, {x, b, r1, b1, BR}},
        {{x1, y, r1, y1, TL}, {x, y1, x1, b, TL}, {r, y, r1, b1, BR}, {x1, b, r1, b1, BR}}};
    return drawings[nDrawing];
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

}  // namespace

TEST(Draw, FillsTheTablesPixelsOnEveryDepthAndKeepsTheDC)
{
    for (const int nBits : {0, 32, 24, 16, 8, 1}) {
        // A background colour is white on monochrome, whichever it is.
        for (int nDrawing = 0; nDrawing < (nBits == 1 ? 2 : 5); ++nDrawing) {
            for (const RECT &r : RECTS) {
                SCOPED_TRACE(testing::Message() << nBits << " bits, rectangle " << &r - RECTS
                                                << ", drawing " << nDrawing);
                CTestSurface target(nBits, CPixelMap(20, 16));
                SetBkColor(target, 0x123456);
                const std::vector<DWORD> state = DCState(target);
                Draw(nDrawing, target, &r);
                CPixelMap expected(20, 16);
                for (const CFill &f : Fills(nDrawing, r.left, r.top, r.right, r.bottom))
                    expected.Fill(f.left, f.top, f.right, f.bottom, f.cr);
                EXPECT_EQ(state, DCState(target));
                EXPECT_EQ(expected, target.Read());
            }
        }
    }
}

TEST(Draw, InvertsTheRubberFrameAndTakesItBack)
{
    for (const int nBits : {0, 24, 1}) {
        for (const RECT &r : RECTS) {
            SCOPED_TRACE(&r - RECTS);
            CTestSurface target(nBits, TestPicture(20, 16, 3));
            const CPixelMap before = target.Read();
            CPixelMap expected = before;
            const int x = std::min(r.left, r.right), r1 = std::max(r.left, r.right) - 1;
            const int y = std::min(r.top, r.bottom), b1 = std::max(r.top, r.bottom) - 1;
            for (const RECT &strip : {RECT{x, y, r1, y + 1}, RECT{x, y + 1, x + 1, b1 + 1},
                                      RECT{r1 + 1, y, r1, b1}, RECT{x + 1, b1 + 1, r1 + 1, b1}})
            {
                CPixelMap inverted(20, 16);
                inverted.Fill(strip.left, strip.top, strip.right, strip.bottom, 0xFFFFFF);
                for (size_t i = 0; i < inverted.pixels.size(); ++i)
                    expected.pixels[i] ^= inverted.pixels[i];
            }
            const RECT moved = {2, 2, 8, 9};
            CUIDCRubberRect(target, nullptr, &r);
            EXPECT_EQ(expected, target.Read());
            CUIDCRubberRect(target, &r, &moved);
            CUIDCRubberRect(target, &moved, nullptr);
            CUIDCRubberRect(target, nullptr, nullptr);
            EXPECT_EQ(before, target.Read());
        }
    }
}
