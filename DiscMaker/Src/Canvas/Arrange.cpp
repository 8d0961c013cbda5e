#include "Canvas/Arrange.h"

#include <algorithm>

namespace {

LONG Width(const RECT &rect)
{
    return rect.right - rect.left;
}

LONG Height(const RECT &rect)
{
    return rect.bottom - rect.top;
}

void AlignTo(Arrangement arrangement, const RECT &to, RECT &rect)
{
    LONG x = 0, y = 0;
    switch (arrangement) {
    case AlignLeft: x = to.left - rect.left; break;
    case AlignRight: x = to.right - rect.right; break;
    case AlignTop: y = to.top - rect.top; break;
    case AlignBottom: y = to.bottom - rect.bottom; break;
    case AlignCenter: x = to.left + (Width(to) - Width(rect)) / 2 - rect.left; break;
    case AlignMiddle: y = to.top + (Height(to) - Height(rect)) / 2 - rect.top; break;
    default: break;
    }
    OffsetRect(&rect, x, y);
}

void Space(bool bDown, std::vector<RECT> &rects)
{
    std::vector<RECT *> order;
    LONG nUsed = 0;
    for (RECT &rect : rects) {
        order.push_back(&rect);
        nUsed += bDown ? Height(rect) : Width(rect);
    }
    const auto start = [=](const RECT *p) { return bDown ? p->top : p->left; };
    std::stable_sort(order.begin(), order.end(),
                     [&](const RECT *a, const RECT *b) { return start(a) < start(b); });
    const RECT *const pLast = order.back();
    const LONG nEnd = bDown ? pLast->bottom : pLast->right;
    const LONG nRoom = nEnd - start(order.front()) - nUsed;
    const LONG nGaps = static_cast<LONG>(order.size()) - 1;
    LONG nAt = start(order.front());
    for (LONG i = 0; i < nGaps; ++i) {
        RECT &rect = *order[static_cast<size_t>(i)];
        // What does not divide is spread over the gaps.
        const LONG nTo = nAt + nRoom * i / nGaps;
        OffsetRect(&rect, bDown ? 0 : nTo - rect.left, bDown ? nTo - rect.top : 0);
        nAt += bDown ? Height(rect) : Width(rect);
    }
}

}  // namespace

bool CanArrange(Arrangement arrangement, size_t nThings)
{
    return nThings >= (arrangement >= SpaceAcross ? 3U : 2U);
}

void Arrange(Arrangement arrangement, std::vector<RECT> &rects)
{
    if (!CanArrange(arrangement, rects.size()))
        return;
    if (arrangement >= SpaceAcross) {
        Space(arrangement == SpaceDown, rects);
        return;
    }
    for (size_t i = 1; i < rects.size(); ++i)
        AlignTo(arrangement, rects[0], rects[i]);
}
