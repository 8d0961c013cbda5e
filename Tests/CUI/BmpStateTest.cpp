#include "CUI/BmpState.h"

#include <gtest/gtest.h>

#include "Support/FailingCall.h"
#include "Support/GdiCount.h"
#include "Support/PixelMap.h"
#include "Support/Reports.h"
#include "Support/TemporaryDirectory.h"

namespace {

const COLORREF FACE = 0xC6C6C6;
const COLORREF HILITE = 0xFFFFFF;
const COLORREF SHADOW = 0x848484;

class CPicture
{
public:
    CPicture(const CPixelMap &target, const CPixelMap &image, const CUIBmpStateRects &rects)
        : m_map(target),
          m_image(image),
          m_rects(rects),
          m_cx(rects.rcArea.right - rects.rcArea.left),
          m_cy(rects.rcArea.bottom - rects.rcArea.top)
    {
        const RECT &source = rects.rcSource, &center = rects.rcCenter;
        m_cxSource = source.right - source.left;
        m_cySource = source.bottom - source.top;
        m_x = (center.right - center.left - m_cxSource - 1) / 2 + center.left;
        m_y = (center.bottom - center.top - m_cySource) / 2 + center.top;
    }
    CPixelMap Draw(DWORD dwFlags)
    {
        if (dwFlags & CUIBMPSTATE_DISABLED) {
            Emboss(1, HILITE);
            Emboss(0, SHADOW);
        } else {
            for (int i = 0; i < m_cxSource * m_cySource; ++i)
                m_map.Set(m_x + i % m_cxSource, m_y + i / m_cxSource,
                          m_image.At(m_rects.rcSource.left + i % m_cxSource,
                                     m_rects.rcSource.top + i / m_cxSource));
        }
        for (int i = 0; dwFlags & CUIBMPSTATE_OVERLAY && i < m_cx * m_cy; ++i) {
            const int x = m_rects.rcArea.left + i % m_cx, y = m_rects.rcArea.top + i / m_cx;
            const bool bSpared = dwFlags & CUIBMPSTATE_DISABLED && i % m_cx > 0 && i / m_cx > 0 &&
                                 IsImage(x - 1, y - 1);
            if (!IsImage(x, y) && !bSpared)
                m_map.Set(x, y, (x + y) % 2 ? HILITE : FACE);
        }
        return m_map;
    }

private:
    bool IsImage(int x, int y) const
    {
        x -= m_x;
        y -= m_y;
        if (x < 0 || y < 0 || x >= m_cxSource || y >= m_cySource)
            return false;
        const COLORREF cr = m_image.At(m_rects.rcSource.left + x, m_rects.rcSource.top + y);
        return cr != FACE && cr != HILITE;
    }
    void Emboss(int nOffset, COLORREF cr)
    {
        const int x = m_rects.rcArea.left, y = m_rects.rcArea.top;
        for (int i = 0; i < m_cx - 2; ++i)
            for (int j = 0; j < m_cy - 2; ++j)
                if (IsImage(x + i, y + j))
                    m_map.Set(x + i + nOffset, y + j + nOffset, cr);
    }

    CPixelMap m_map, m_image;
    CUIBmpStateRects m_rects;
    int m_cx, m_cy, m_cxSource, m_cySource, m_x, m_y;
};

void Draw(HDC hDC, CUIBmpStateRects rects, HBITMAP hBmp, DWORD dwFlags)
{
    CUIBmpDrawState(hDC, &rects.rcArea, hBmp, dwFlags, FACE, HILITE, SHADOW);
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
        for (const CUIBmpStateRects &rects : places) {
            for (DWORD dwFlags = 0; dwFlags < 4; ++dwFlags) {
                SCOPED_TRACE(testing::Message() << nBits << " bits, place " << &rects - places
                                                << ", flags " << dwFlags);
                CTestSurface target(nBits, TestPicture(24, 20, 7));
                SetBkColor(target, 0x123456);
                const CDCState state(target);
                const CPixelMap before = target.Read();
                Draw(target, rects, image.Bitmap(), dwFlags);
                EXPECT_TRUE(state == CDCState(target));
                EXPECT_EQ(
                    "", Difference(CPicture(before, picture, rects).Draw(dwFlags), target.Read()));
                ASSERT_EQ("", Difference(picture, image.Read()));
            }
        }
    }
}

TEST(BmpState, LeaksNothingTracesWhatFailsAndMakesTheBrushForNewColoursOnly)
{
    const CPixelMap picture = TestPicture(12, 10, 2);
    CTestSurface image(0, picture), target(32, picture);
    CUIBmpStateRects rects = {{0, 0, 12, 10}, {0, 0, 12, 10}, {0, 0, 12, 10}};
    const CTemporaryDirectory directory;
    const CDCState state(target);
    const auto drawAll = [&](COLORREF crFace) {
        for (DWORD dwFlags = 0; dwFlags < 4; ++dwFlags)
            CUIBmpDrawState(target, &rects.rcArea, image.Bitmap(), dwFlags, crFace, HILITE, SHADOW);
        EXPECT_TRUE(state == CDCState(target));
        ASSERT_EQ("", Difference(picture, image.Read()));
    };
    drawAll(FACE);
    const int nBefore = GdiCount();
    for (COLORREF cr = 0; cr < 500; ++cr)
        drawAll(cr);
    EXPECT_NEAR(nBefore, GdiCount(), 2);
    {
        CFailPlan::Start(0);
        const CFailingCall<HBRUSH(HBITMAP)> createPattern("CreatePatternBrush");
        for (const COLORREF cr : {0x99, 0x99, 0x77})
            drawAll(cr);
        EXPECT_EQ(2, CFailPlan::s_nCalls);
        CUIBmpDrawState(target, &rects.rcArea, image.Bitmap(), 0, 0x77, 0x66, SHADOW);
        EXPECT_EQ(3, CFailPlan::s_nCalls);
        const CFailingCall<HBITMAP(int, int, UINT, UINT, const void *)> createBitmap(
            "CreateBitmap");
        const CFailingCall<HBRUSH(COLORREF)> createBrush("CreateSolidBrush");
        COLORREF cr = 0x1000;
        EXPECT_EQ(9, CFailPlan::RunAll([&] { drawAll(++cr); }));
    }
    drawAll(FACE);
    EXPECT_NEAR(nBefore, GdiCount(), 2);

    // No bitmap, one that another DC has, and no mask: a line each, and nothing drawn.
    const CPixelMap before = target.Read();
    const CDumped dumped;
    Draw(target, rects, nullptr, 0);
    const HBITMAP hBusy = image.Bitmap();
    SelectObject(image, hBusy);
    Draw(target, rects, hBusy, 3);
    const CFailingCall<HBITMAP(int, int, UINT, UINT, const void *)> createBitmap("CreateBitmap");
    CFailPlan::Start(1);
    Draw(target, rects, image.Bitmap(), 1);
    const std::string line = "CUIBmpDraw error drawing bitmap.\n";
    EXPECT_EQ(line + line + line, dumped.m_text);
    EXPECT_TRUE(state == CDCState(target));
    EXPECT_EQ("", Difference(before, target.Read()));
}
