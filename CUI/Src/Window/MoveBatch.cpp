#include "Window/MoveBatch.h"

#include "Base/Wrap.h"
#include "Window/Mirrored.h"

CCUIMoveBatch::CCUIMoveBatch(HWND hParent) : m_origin(), m_bMirrored(CUIIsMirrored(hParent))
{
    ClientToScreen(hParent, &m_origin);
}

bool CCUIMoveBatch::Find(HWND hChild, RECT &now) const
{
    if (!GetWindowRect(hChild, &now) || !OffsetRect(&now, -m_origin.x, -m_origin.y))
        return false;
    if (m_bMirrored)
        now = {-now.right, now.top, -now.left, now.bottom};
    return true;
}

void CCUIMoveBatch::Add(HWND hChild, const RECT &now, const RECT &place)
{
    const bool bMoved = now.left != place.left || now.top != place.top;
    const bool bSized = CUIWidth(now) != CUIWidth(place) || CUIHeight(now) != CUIHeight(place);
    if (!bMoved && !bSized)
        return;
    const UINT nFlags = SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOOWNERZORDER |
                        (bMoved ? 0 : SWP_NOMOVE) | (bSized ? 0 : SWP_NOSIZE);
    m_moves.Add({hChild, place, nFlags, now.left + now.top < place.left + place.top});
}

// With the last ones first if they go outwards, so that none comes to lie on one that is still to
// be moved, whose pixels Wine 8 would lose.
const CCUIMoveBatch::CMove &CCUIMoveBatch::Next(int nIndex) const
{
    const int nLast = m_moves.Count() - 1;
    return m_moves[m_moves[nLast].bOutwards ? nLast - nIndex : nIndex];
}

bool CCUIMoveBatch::PerformAtOnce() const
{
    HDWP hStep = BeginDeferWindowPos(m_moves.Count());
    for (int i = 0; hStep && i < m_moves.Count(); ++i) {
        const CMove &move = Next(i);
        const RECT &place = move.place;
        hStep = DeferWindowPos(hStep, move.hChild, nullptr, place.left, place.top, CUIWidth(place),
                               CUIHeight(place), move.nFlags);
    }
    return hStep && EndDeferWindowPos(hStep);
}

void CCUIMoveBatch::Perform() const
{
    if (m_moves.Count() == 0 || PerformAtOnce())
        return;
    for (int i = 0; i < m_moves.Count(); ++i) {
        const CMove &move = Next(i);
        const RECT &place = move.place;
        SetWindowPos(move.hChild, nullptr, place.left, place.top, CUIWidth(place), CUIHeight(place),
                     move.nFlags);
    }
}
