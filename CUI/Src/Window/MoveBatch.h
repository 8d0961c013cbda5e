#pragma once

#include "Base/Array.h"
#include "CUI/Platform.h"

// Moves of a window's children, made in one step: none is seen at its new place before the others.
class CCUIMoveBatch
{
public:
    explicit CCUIMoveBatch(HWND hParent);

    // Where a child is, in client pixels of the parent. False: it is no window any more.
    bool Find(HWND hChild, RECT &now) const;
    // Enters a child that is to be in another place than now, or in another size.
    void Add(HWND hChild, const RECT &now, const RECT &place);
    // Makes the moves; one after the other where the system gives up, since it has no memory for a
    // step or one of the windows went on the way. Any window, the parent too, may go meanwhile.
    void Perform() const;

private:
    struct CMove
    {
        HWND hChild;
        RECT place;
        UINT nFlags;
        bool bOutwards;  // to the right or down
    };
    const CMove &Next(int nIndex) const;
    bool PerformAtOnce() const;

    CCUArray<CMove> m_moves;
    POINT m_origin;
    const bool m_bMirrored;
};
