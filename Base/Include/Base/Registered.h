#pragma once

#include "CU/Platform.h"

// What somebody registered, in a list that is walked without a lock while others register and
// unregister: items are put at its head and never taken off, but used again. So the place says
// nothing; a number tells the order of registration. Private to the layer.
struct CCURegistered
{
    CCURegistered *next;
    volatile LONG nOrder;  // 0: taken back; below 0: not ready yet
};

// A step of a walk in that order: from number nOrder, 0 at first, to the next one up to nLast,
// whose number nOrder is then. Null at the end.
inline CCURegistered *CUNextRegistered(CCURegistered *item, LONG &nOrder, LONG nLast)
{
    CCURegistered *found = nullptr;
    for (; item; item = item->next) {
        const LONG nItem = item->nOrder;
        if (nItem > nOrder && nItem <= nLast) {
            nLast = nItem;
            found = item;
        }
    }
    if (found)
        nOrder = nLast;
    return found;
}
