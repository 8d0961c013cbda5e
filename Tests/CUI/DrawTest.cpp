#include "CUI/Draw.h"

#include <gtest/gtest.h>
#include <string.h>

#include "Support/PixelMap.h"

namespace {

const COLORREF TL = 0xFFFFFF, BR = 0x0000FF;
enum
{
    SOLID,
    FRAME,
    BEVEL,
    BEVEL_TRIM_BOTH,
    BEVEL_TRIM,
    RUBBER
};

// The picture of 8 by 6 that each drawing leaves on black: T the one colour, B the other.
const struct CDrawing
{
    int nKind;
    RECT rect;
    const char *picture;
} DRAWINGS[] = {
    {SOLID, {1, 1, 6, 5}, "........|.TTTTT..|.TTTTT..|.TTTTT..|.TTTTT..|........"},
    {SOLID, {5, 3, 2, 1}, "........|..TTT...|..TTT...|........|........|........"},
    {SOLID, {-2, -2, 9, 2}, "TTTTTTTT|TTTTTTTT|........|........|........|........"},
    {FRAME, {1, 1, 6, 5}, "........|.TTTTT..|.T...T..|.T...T..|.TTTTT..|........"},
    {FRAME, {2, 2, 3, 3}, "........|........|..T.....|........|........|........"},
    {FRAME, {2, 2, 2, 2}, "........|........|........|........|........|........"},
    {FRAME, {-1, -1, 7, 9}, "......T.|......T.|......T.|......T.|......T.|......T."},
    {BEVEL, {1, 1, 6, 5}, "........|.TTTTB..|.T...B..|.T...B..|.BBBBB..|........"},
    {BEVEL, {1, 1, 2, 2}, "........|.B......|........|........|........|........"},
    {BEVEL, {1, 1, 3, 3}, "........|.TB.....|.BB.....|........|........|........"},
    {BEVEL_TRIM_BOTH, {1, 1, 6, 5}, "........|..TTTT..|.T...B..|.T...B..|.BBBB...|........"},
    {BEVEL_TRIM_BOTH, {1, 1, 3, 3}, "........|..T.....|.B......|........|........|........"},
    {BEVEL_TRIM, {1, 1, 6, 5}, "........|..TTTB..|.T...B..|.T...B..|.TBBB...|........"},
    {BEVEL_TRIM, {1, 1, 3, 3}, "........|..B.....|.T......|........|........|........"},
    {RUBBER, {1, 1, 6, 5}, "........|.TTTTT..|.T...T..|.T...T..|.TTTTT..|........"},
    {RUBBER, {6, 5, 1, 1}, "........|.TTTTT..|.T...T..|.T...T..|.TTTTT..|........"},
    {RUBBER, {-1, 2, 7, 9}, "........|........|TTTTTTT.|......T.|......T.|......T."},
    {RUBBER, {1, 1, 3, 2}, "........|.TT.....|........|........|........|........"},
};

void Draw(HDC hDC, const CDrawing &drawing)
{
    const RECT *prc = &drawing.rect;
    switch (drawing.nKind) {
    case SOLID: return CUIDCFillSolidRect(hDC, prc, TL);
    case FRAME: return CUIDCDrawRect(hDC, prc, TL);
    case BEVEL: return CUIDCDraw3dRect(hDC, prc, TL, BR, 0, 1);
    case BEVEL_TRIM_BOTH: return CUIDCDraw3dRect(hDC, prc, TL, BR, 2, 4);
    case BEVEL_TRIM: return CUIDCDraw3dRect(hDC, prc, TL, BR, -1, 0);
    default: return CUIDCRubberRect(hDC, nullptr, prc);
    }
}

}  // namespace

TEST(Draw, SetsTheTablesPixelsOnEveryDepthAndKeepsTheDC)
{
    for (const int nBits : {0, 32, 24, 16, 8, 1}) {
        for (const CDrawing &drawing : DRAWINGS) {
            if (nBits == 1 && strchr(drawing.picture, 'B'))
                continue;  // which of two colours is white there differs between systems
            SCOPED_TRACE(testing::Message() << nBits << " bits, drawing " << &drawing - DRAWINGS);
            ExpectDrawn(
                nBits, CPixelMap(8, 6), [&](HDC hDC) { Draw(hDC, drawing); },
                [&](CPixelMap &map) {
                    for (int i = 0; i < 48; ++i) {
                        const char c = drawing.picture[i / 8 * 9 + i % 8];
                        map.Set(i % 8, i / 8, c == '.' ? 0 : c == 'T' ? TL : BR);
                    }
                });
        }
    }
}

TEST(Draw, TakesTheRubberFrameBack)
{
    const RECT frames[] = {{4, 3, 13, 10}, {9, 8, 5, 11}, {-2, -3, 7, 5}, {4, 3, 4, 3}};
    for (const RECT &frame : frames) {
        const RECT *pLast = nullptr;
        ExpectDrawn(0, TestPicture(20, 16, 3), [&](HDC hDC) {
            for (const RECT *pNext : {&frame, &frames[0], static_cast<const RECT *>(nullptr)}) {
                CUIDCRubberRect(hDC, pLast, pNext);
                pLast = pNext;
            }
        });
    }
}
