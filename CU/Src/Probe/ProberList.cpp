#include "Probe/ProberList.h"

#include <string.h>

#include "Base/Lifetime.h"
#include "CU/DebugSwitch.h"

namespace {

const LONG ALL_WATCHES = 0x7FFFFFFF;

}  // namespace

CCULazyLock CCUProberList::s_lock;
CCUProberIndex CCUProberList::s_index(CCUProberList::s_lock);
CCUProberVariable *CCUProberList::s_pFirst = nullptr;
CCUProberVariable *CCUProberList::s_pLast = nullptr;
unsigned long CCUProberList::s_nCount = 0;
unsigned long CCUProberList::s_nLastID = 0;
volatile unsigned long CCUProberList::s_nTreeChanges = 0;
CCUProberWatch *CCUProberList::s_pFirstWatch = nullptr;
CCUProberList::CReading *CCUProberList::s_pReadings = nullptr;

// --- Coming and going ---

void CCUProberList::Add(CCUProberVariable &variable)
{
    const CCULockGuard guard(s_lock);
    variable.m_nID = ++s_nLastID;
    variable.m_pPrevious = s_pLast;
    (s_pLast ? s_pLast->m_pNext : s_pFirst) = &variable;
    s_pLast = &variable;
    ++s_nCount;
    s_index.Add(variable, s_nCount);
    TreeChanged(variable, true);
}

void CCUProberList::Remove(CCUProberVariable &variable)
{
    s_lock.Enter();
    if (variable.m_nID != 0) {
        s_index.Remove(variable);
        (variable.m_pPrevious ? variable.m_pPrevious->m_pNext : s_pFirst) = variable.m_pNext;
        (variable.m_pNext ? variable.m_pNext->m_pPrevious : s_pLast) = variable.m_pPrevious;
        variable.m_nID = 0;
        --s_nCount;
        TreeChanged(variable, false);
        // Of a module whose process ends the other threads are gone, wherever they were.
        while (g_moduleEnd != CUModuleEndsWithProcess && IsRead(variable)) {
            s_lock.Leave();
            Sleep(1);
            s_lock.Enter();
        }
    }
    s_lock.Leave();
}

CCUProberList::CReading::CReading(const CCUProberVariable &variable)
    : m_variable(variable), m_nThread(GetCurrentThreadId()), m_pNext(s_pReadings)
{
    s_pReadings = this;
    s_lock.Leave();
}

CCUProberList::CReading::~CReading()
{
    s_lock.Enter();
    CReading **ppLink = &s_pReadings;
    while (*ppLink != this)
        ppLink = &(*ppLink)->m_pNext;
    *ppLink = m_pNext;
}

// By another thread: a function that destroys its own variable is not waited for.
bool CCUProberList::IsRead(const CCUProberVariable &variable)
{
    const DWORD nThread = GetCurrentThreadId();
    for (const CReading *p = s_pReadings; p; p = p->m_pNext) {
        if (&p->m_variable == &variable && p->m_nThread != nThread)
            return true;
    }
    return false;
}

// --- Asking ---

unsigned long CCUProberList::Find(const char *pPath, int nLength)
{
    const size_t nPath = nLength < 0 ? strlen(pPath) : static_cast<size_t>(nLength);
    unsigned long nID;
    if (s_index.TryFind(pPath, nPath, nID))
        return nID;
    const CCULockGuard guard(s_lock);
    if (!s_index.IsMade())
        s_index.Make(s_pFirst, s_nCount);
    return s_index.Find(pPath, nPath);
}

CCUProberVariable *CCUProberList::Lookup(unsigned long nID)
{
    if (!s_index.IsMade())
        s_index.Make(s_pFirst, s_nCount);
    return s_index.Find(nID);
}

CCUDebugSwitch *CCUProberList::NextSwitch(const CCUDebugSwitch *pSwitch)
{
    const CCULockGuard guard(s_lock);
    CCUProberVariable *p = pSwitch ? pSwitch->m_pNext : s_pFirst;
    while (p && !p->m_bSwitch)
        p = p->m_pNext;
    return static_cast<CCUDebugSwitch *>(p);
}

bool CCUProberList::IsWithin(const CCUProberVariable &variable, const char *pszSubtree)
{
    if (pszSubtree[0] == '\\' && !pszSubtree[1])
        return true;
    // The subtree may be the variable itself.
    const char *const parts[] = {variable.m_pszPath, "\\", variable.m_pszName};
    for (const char *psz : parts) {
        for (; *psz; ++psz, ++pszSubtree) {
            if (!*pszSubtree)
                return *psz == '\\' || psz == variable.m_pszPath || pszSubtree[-1] == '\\';
            if (CUFold(*psz) != CUFold(*pszSubtree))
                return false;
        }
    }
    return !*pszSubtree;
}

unsigned long CCUProberList::Next(unsigned long nID, const char *pszSubtree)
{
    const CCULockGuard guard(s_lock);
    const CCUProberVariable *const pLast = nID ? Lookup(nID) : nullptr;
    const CCUProberVariable *p = pLast ? pLast->m_pNext : s_pFirst;
    while (p && (p->m_nID <= nID || (pszSubtree && !IsWithin(*p, pszSubtree))))
        p = p->m_pNext;
    return p ? p->m_nID : 0;
}

// --- Watching ---

void CCUProberList::Tell(CCUProberWatch &watch)
{
    if (!watch.m_bPosted)
        watch.m_bPosted = PostMessageA(watch.m_hWnd, watch.m_uMessage, 0, 0) != 0;
}

void CCUProberList::TreeChanged(CCUProberVariable &variable, bool bNew)
{
    s_nTreeChanges = s_nTreeChanges + 1;
    for (CCUProberWatch *pWatch = s_pFirstWatch; pWatch; pWatch = pWatch->m_pNext) {
        if (!IsWithin(variable, pWatch->m_sSubtree))
            continue;
        if (bNew)
            InterlockedOr(&variable.m_nNotice, pWatch->m_nBit);
        pWatch->m_bTreeChanged = true;
        Tell(*pWatch);
    }
}

void CCUProberList::Changed(CCUProberVariable &variable)
{
    const CCULockGuard guard(s_lock);
    variable.m_nPending |= variable.m_nNotice & ALL_WATCHES;
    for (CCUProberWatch *pWatch = s_pFirstWatch; pWatch; pWatch = pWatch->m_pNext) {
        if (variable.m_nPending & pWatch->m_nBit)
            Tell(*pWatch);
    }
}

void CCUProberList::AddWatch(CCUProberWatch &watch)
{
    const CCULockGuard guard(s_lock);
    ULONG nTaken = 0;
    for (const CCUProberWatch *pWatch = s_pFirstWatch; pWatch; pWatch = pWatch->m_pNext)
        nTaken |= static_cast<ULONG>(pWatch->m_nBit);
    watch.m_nBit = static_cast<LONG>(~nTaken & (nTaken + 1)) & ALL_WATCHES;
    if (!watch.m_nBit)
        return;
    watch.m_pNext = s_pFirstWatch;
    s_pFirstWatch = &watch;
    for (CCUProberVariable *p = s_pFirst; p; p = p->m_pNext) {
        if (IsWithin(*p, watch.m_sSubtree))
            InterlockedOr(&p->m_nNotice, watch.m_nBit);
    }
}

void CCUProberList::RemoveWatch(CCUProberWatch &watch)
{
    const CCULockGuard guard(s_lock);
    CCUProberWatch **ppLink = &s_pFirstWatch;
    while (*ppLink && *ppLink != &watch)
        ppLink = &(*ppLink)->m_pNext;
    if (!*ppLink)
        return;
    *ppLink = watch.m_pNext;
    for (CCUProberVariable *p = s_pFirst; p; p = p->m_pNext) {
        InterlockedAnd(&p->m_nNotice, ~watch.m_nBit);
        p->m_nPending &= ~watch.m_nBit;
    }
}

// A change behind the place that this has come to is told by another message.
unsigned long CCUProberList::NextChanged(CCUProberWatch &watch)
{
    const CCULockGuard guard(s_lock);
    watch.m_bPosted = false;
    CCUProberVariable *const pLast = watch.m_nLast ? Lookup(watch.m_nLast) : nullptr;
    CCUProberVariable *p = pLast ? pLast->m_pNext : s_pFirst;
    while (p && !(p->m_nPending & watch.m_nBit))
        p = p->m_pNext;
    watch.m_nLast = p ? p->m_nID : 0;
    if (p)
        p->m_nPending &= ~watch.m_nBit;
    return watch.m_nLast;
}
