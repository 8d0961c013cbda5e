#include "Frame/MoveBatch.h"

#include <string.h>

#include "Base/Wrap.h"

namespace {

const UINT MOVE_ALONE = SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOOWNERZORDER;

}  // namespace

void CCUIMoveBatch::Add(HWND hParent, HWND hChild, const RECT &place)
{
    RECT now;
    if (!GetWindowRect(hChild, &now))
        return;
    MapWindowPoints(nullptr, hParent, reinterpret_cast<POINT *>(&now), 2);
    if (memcmp(&now, &place, sizeof now) != 0)
        m_moves.Add({hChild, place});
}

void CCUIMoveBatch::Perform() const
{
    if (m_moves.Count() == 0 || PerformAtOnce())
        return;
    for (int i = 0; i < m_moves.Count(); ++i) {
        const RECT &place = m_moves[i].place;
        SetWindowPos(m_moves[i].hChild, nullptr, place.left, place.top, CUIWidth(place),
                     CUIHeight(place), MOVE_ALONE);
    }
}

bool CCUIMoveBatch::PerformAtOnce() const
{
    HDWP hStep = BeginDeferWindowPos(m_moves.Count());
    for (int i = 0; hStep && i < m_moves.Count(); ++i) {
        const RECT &place = m_moves[i].place;
        hStep = DeferWindowPos(hStep, m_moves[i].hChild, nullptr, place.left, place.top,
                               CUIWidth(place), CUIHeight(place), MOVE_ALONE);
    }
    return hStep && EndDeferWindowPos(hStep);
}
