#pragma once

#include "Base/Array.h"
#include "CUI/Platform.h"

// Moves of children, made in one step: none is seen at its new place before the others.
class CCUIMoveBatch
{
public:
    // Enters the child, unless it stands there already. The place is in client pixels of hParent.
    void Add(HWND hParent, HWND hChild, const RECT &place);
    // Makes the moves; one after the other where the system has no memory for a step. Children that
    // have gone meanwhile are passed over.
    void Perform() const;

private:
    struct CMove
    {
        HWND hChild;
        RECT place;
    };
    bool PerformAtOnce() const;

    CCUArray<CMove> m_moves;
};
