#pragma once

#include "CU/Platform.h"

#include "Base/Array.h"

// Callbacks that come and go while they are being called. There are two kinds of lists, because two
// kinds of callers cannot be served by one:
//
// CCUCallbackList is for one thread, or for use under a lock. It is exact: what is removed is not
// called any more, and its object may be deleted at once.
//
// CCURegistered is an item of a list that any thread may walk at any time without a lock. Failed
// checks and crashes are reported that way, whoever holds what lock at that moment, and a handler
// that is called under no lock may take any. The price is that an item stays in memory for as long
// as its list, and that a handler which another thread takes back may just be running.

// Objects of class T, called in the order in which they were added. The list does not own them; one
// that is added twice is in it twice.
template <typename T>
class CCUCallbackList
{
public:
    CCUCallbackList() = default;
    ~CCUCallbackList()
    {
        for (CWalk *pWalk = m_pWalks; pWalk; pWalk = pWalk->m_pOuter)
            pWalk->m_pList = nullptr;
    }
    CCUCallbackList(const CCUCallbackList &) = delete;
    CCUCallbackList &operator=(const CCUCallbackList &) = delete;

    void Add(T *pCallback) { m_callbacks.Add(pCallback); }

    // Where the object is in the list more than once, the first of these. False if it is not there.
    bool Remove(const T *pCallback)
    {
        for (int i = 0; i < m_callbacks.Count(); ++i) {
            if (m_callbacks[i] != pCallback)
                continue;
            m_callbacks.Remove(i, 1);
            for (CWalk *pWalk = m_pWalks; pWalk; pWalk = pWalk->m_pOuter) {
                pWalk->m_nNext -= i < pWalk->m_nNext;
                pWalk->m_nEnd -= i < pWalk->m_nEnd;
            }
            return true;
        }
        return false;
    }

    // A walk over those that are in the list when it begins, and are still there when their turn
    // comes. Whoever is called may start another walk, and may delete the list.
    class CWalk
    {
    public:
        explicit CWalk(CCUCallbackList &list)
            : m_pList(&list), m_pOuter(list.m_pWalks), m_nNext(0), m_nEnd(list.m_callbacks.Count())
        {
            list.m_pWalks = this;
        }
        ~CWalk()
        {
            if (m_pList)
                m_pList->m_pWalks = m_pOuter;
        }
        CWalk(const CWalk &) = delete;
        CWalk &operator=(const CWalk &) = delete;

        // Null at the end, and when the list is gone.
        T *Next()
        {
            return m_pList && m_nNext < m_nEnd ? m_pList->m_callbacks[m_nNext++] : nullptr;
        }

    private:
        friend class CCUCallbackList;

        CCUCallbackList *m_pList;  // null: gone
        CWalk *m_pOuter;           // began before this one and has not ended
        int m_nNext;
        int m_nEnd;
    };

private:
    CCUArray<T *> m_callbacks;
    CWalk *m_pWalks = nullptr;  // that have not ended, the latest first
};

// The head of an item. Items are put at the head of their list with CUPushFront and never taken
// off, but used again. So their place says nothing; a number tells the order of registration.
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
