#include "CUI/BmpState.h"

#include <gtest/gtest.h>

#include "Support/FailingCall.h"
#include "Support/PixelMap.h"
#include "Support/Reports.h"

namespace {

const COLORREF FACE = 0xFFFF00, HILITE = 0xFFFFFF, SHADOW = 0xFF0000;

void Draw(HDC hDC, CUIBmpStateRects rects, HBITMAP hBmp, DWORD dwFlags, COLORREF crFace = FACE,
          COLORREF crHilite = HILITE)
{
    CUIBmpDrawState(hDC, &rects.rcArea, hBmp, dwFlags, crFace, crHilite, SHADOW);
}

// What is to be seen afterwards, pixel by pixel.
void Expect(CPixelMap &map, const CPixelMap &image, const CUIBmpStateRects &rects, DWORD dwFlags)
{
    const RECT &area = rects.rcArea, &center = rects.rcCenter, &source = rects.rcSource;
    const int cx = source.right - source.left, cy = source.bottom - source.top;
    const int left = (center.right - center.left - cx - 1) / 2 + center.left;
    const int top = (center.bottom - center.top - cy) / 2 + center.top;
    const auto isImage = [&](int x, int y) {
        if (x < left || y < top || x >= left + cx || y >= top + cy)
            return false;
        const COLORREF cr = image.At(source.left + x - left, source.top + y - top);
        return cr != FACE && cr != HILITE;
    };
    const bool bEmbossed = (dwFlags & CUIBMPSTATE_DISABLED) != 0;
    for (int i = 0; !bEmbossed && i < cx * cy; ++i)
        map.Set(left + i % cx, top + i / cx, image.At(source.left + i % cx, source.top + i / cx));
    for (int nOffset = 1; bEmbossed && nOffset >= 0; --nOffset)
        for (int x = area.left; x < area.right - 2; ++x)
            for (int y = area.top; y < area.bottom - 2; ++y)
                if (isImage(x, y))
                    map.Set(x + nOffset, y + nOffset, nOffset ? HILITE : SHADOW);
    for (int x = area.left; dwFlags & CUIBMPSTATE_OVERLAY && x < area.right; ++x)
        for (int y = area.top; y < area.bottom; ++y)
            if (!isImage(x, y) &&
                !(bEmbossed && x > area.left && y > area.top && isImage(x - 1, y - 1)))
                map.Set(x, y, (x + y) % 2 ? HILITE : FACE);
}

}  // namespace

TEST(BmpState, DrawsTheRulesPictureInEveryStateAndKeepsTheDC)
{
    const CPixelMap picture = TestPicture(12, 10, 2);
    CTestSurface image(0, picture);
    // An image of 10 by 10 centred in 15 and in 16; a part, off centre; larger than all around it.
    const CUIBmpStateRects places[] = {{{3, 2, 20, 19}, {4, 3, 19, 18}, {0, 0, 10, 10}},
                                       {{3, 2, 20, 19}, {4, 3, 20, 19}, {0, 0, 10, 10}},
                                       {{0, 0, 24, 20}, {9, 1, 13, 20}, {3, 2, 9, 9}},
                                       {{7, 6, 14, 12}, {8, 7, 11, 10}, {1, 1, 12, 10}}};
    for (const int nBits : {0, 32, 24, 16, 8}) {
        for (DWORD n = 0; n < 16; ++n) {
            SCOPED_TRACE(testing::Message() << nBits << " bits, place and flags " << n);
            ExpectDrawn(
                nBits, TestPicture(24, 20, 7),
                [&](HDC hDC) { Draw(hDC, places[n / 4], image.Bitmap(), n % 4); },
                [&](CPixelMap &map) { Expect(map, picture, places[n / 4], n % 4); });
            ASSERT_EQ(picture, image.Read());
        }
    }
}

TEST(BmpState, MakesTheBrushForNewColoursOnlyAndTracesWhatFails)
{
    const CPixelMap picture = TestPicture(12, 10, 2);
    CTestSurface image(0, picture), target(32, picture);
    const CUIBmpStateRects rects = {{0, 0, 12, 10}, {0, 0, 12, 10}, {0, 0, 12, 10}};
    const CFailingCall<HBRUSH(HBITMAP)> createPattern("CreatePatternBrush");
    CFailPlan::Start(0);
    const COLORREF colors[][2] = {{1, 2}, {1, 2}, {3, 2}, {3, 2}, {3, 4}, {1, 2}};
    for (const auto &pair : colors)
        Draw(target, rects, image.Bitmap(), CUIBMPSTATE_OVERLAY, pair[0], pair[1]);
    EXPECT_EQ(4, CFailPlan::s_nCalls);

    // No bitmap, one that another DC has, and no mask: a line each, and nothing drawn.
    const CDumped dumped;
    ExpectDrawn(32, picture, [&](HDC hDC) {
        Draw(hDC, rects, nullptr, 0);
        const HBITMAP hBusy = image.Bitmap();
        image.Read();
        Draw(hDC, rects, hBusy, 3);
        const CFailingCall<HBITMAP(int, int, UINT, UINT, const void *)> mask("CreateBitmap");
        CFailPlan::Start(CFailPlan::ALL);
        Draw(hDC, rects, image.Bitmap(), 1);
        CFailPlan::Start(0);
    });
    const std::string line = "CUIBmpDraw error drawing bitmap.\n";
    EXPECT_EQ(line + line + line, dumped.m_text);
}
