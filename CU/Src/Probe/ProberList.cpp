#include "Probe/ProberList.h"

#include "Base/Lifetime.h"
#include "CU/DebugSwitch.h"
#include "Probe/ProberText.h"

namespace {

const LONG ALL_WATCHES = 0x7FFFFFFF;

template <typename Value>
Value Call(void (*function)(), void *pArgument)
{
    return reinterpret_cast<Value (*)(void *)>(function)(pArgument);
}

}  // namespace

// The computing of a value that is going on.
struct CCUProberList::CReading
{
    const CCUProberVariable *pVariable;
    DWORD nThread;
    CReading *pNext;
};

CCULazyLock CCUProberList::s_lock;
CCUProberIndex CCUProberList::s_index;
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

// By another thread: a function that destroys its own variable is not waited for.
bool CCUProberList::IsRead(const CCUProberVariable &variable)
{
    const DWORD nThread = GetCurrentThreadId();
    for (const CReading *p = s_pReadings; p; p = p->pNext) {
        if (p->pVariable == &variable && p->nThread != nThread)
            return true;
    }
    return false;
}

// --- Asking ---

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

CCUString CCUProberList::DefaultOf(const CCUProberVariable &variable)
{
    if (variable.m_bComputed)
        return CCUString();
    CUProberValue value;
    value.nKind = variable.m_nKind;
    switch (variable.m_nKind) {
    case CU_PROBER_LONG:
        value.nLong = static_cast<const CCUProberLong &>(variable).m_nDefault;
        break;
    case CU_PROBER_DOUBLE:
        value.fDouble = static_cast<const CCUProberDouble &>(variable).m_fDefault;
        break;
    case CU_PROBER_TEXT:
        value.sText = static_cast<const CCUProberText &>(variable).m_pszDefault;
        break;
    case CU_PROBER_FLAG:
        value.nLong = static_cast<const CCUProberFlag &>(variable).m_bDefault;
        break;
    }
    return value.ToText();
}

bool CCUProberList::Describe(unsigned long nID, CUProberEntry &entry)
{
    const CCULockGuard guard(s_lock);
    const CCUProberVariable *const pVariable = Lookup(nID);
    if (!pVariable)
        return false;
    entry.nID = nID;
    entry.nKind = pVariable->m_nKind;
    entry.bComputed = pVariable->m_bComputed;
    entry.bOpen = pVariable->m_bOpen && !entry.bComputed;
    entry.sPath = pVariable->m_pszPath;
    entry.sName = pVariable->m_pszName;
    entry.sDescription = pVariable->m_pszDescription;
    entry.sUnit = pVariable->m_pszUnit;
    entry.sDefault = DefaultOf(*pVariable);
    return true;
}

void CCUProberList::Read(const CCUProberVariable &variable, CUProberValue &value)
{
    switch (variable.m_nKind) {
    case CU_PROBER_LONG: {
        const auto &number = static_cast<const CCUProberLong &>(variable);
        value.nLong = variable.m_nNotice & CCUProberVariable::UNREAD
                          ? static_cast<const CCUDebugSwitch &>(number).Get()
                          : number.m_nValue;
        break;
    }
    case CU_PROBER_DOUBLE:
        value.fDouble = static_cast<const CCUProberDouble &>(variable).Get();
        break;
    case CU_PROBER_TEXT: value.sText = static_cast<const CCUProberText &>(variable).m_sValue; break;
    case CU_PROBER_FLAG: value.nLong = static_cast<const CCUProberFlag &>(variable).m_bValue; break;
    }
}

void CCUProberList::GetLocked(unsigned long nID, CUProberValue &value)
{
    const CCUProberVariable *const pVariable = Lookup(nID);
    value.nResult = pVariable ? CU_PROBER_DONE : CU_PROBER_GONE;
    if (!pVariable)
        return;
    value.nKind = pVariable->m_nKind;
    if (pVariable->m_bComputed)
        Compute(static_cast<const CCUProberFunction &>(*pVariable), value);
    else
        Read(*pVariable, value);
}

// Gives the lock away meanwhile. Of the variable nothing is used afterwards.
void CCUProberList::Compute(const CCUProberFunction &variable, CUProberValue &value)
{
    CReading reading = {&variable, GetCurrentThreadId(), s_pReadings};
    s_pReadings = &reading;
    void (*const function)() = variable.m_function;
    void *const pArgument = variable.m_pArgument;
    s_lock.Leave();
    if (value.nKind == CU_PROBER_LONG)
        value.nLong = Call<long>(function, pArgument);
    else if (value.nKind == CU_PROBER_DOUBLE)
        value.fDouble = Call<double>(function, pArgument);
    else
        value.sText = Call<CCUString>(function, pArgument);
    s_lock.Enter();
    CReading **ppLink = &s_pReadings;
    while (*ppLink != &reading)
        ppLink = &(*ppLink)->pNext;
    *ppLink = reading.pNext;
}

// --- Setting ---

bool CCUProberList::Store(CCUProberVariable &variable, const char *pszText)
{
    switch (variable.m_nKind) {
    case CU_PROBER_LONG: {
        auto &number = static_cast<CCUProberLong &>(variable);
        long nValue = number.m_nDefault;
        if (pszText && !CUParseProberLong(pszText, nValue))
            return false;
        number.Set(nValue);
        return true;
    }
    case CU_PROBER_DOUBLE: {
        auto &number = static_cast<CCUProberDouble &>(variable);
        double fValue = number.m_fDefault;
        if (pszText && !CUParseProberDouble(pszText, fValue))
            return false;
        number.Set(fValue);
        return true;
    }
    case CU_PROBER_FLAG: {
        auto &flag = static_cast<CCUProberFlag &>(variable);
        bool bValue = flag.m_bDefault;
        if (pszText && !CUParseProberFlag(pszText, bValue))
            return false;
        flag.Set(bValue);
        return true;
    }
    case CU_PROBER_TEXT: break;
    }
    auto &text = static_cast<CCUProberText &>(variable);
    text.Set(pszText ? pszText : text.m_pszDefault);
    return true;
}

CUProberResult CCUProberList::Set(unsigned long nID, const char *pszText, bool bOutside)
{
    const CCULockGuard guard(s_lock);
    CCUProberVariable *const pVariable = Lookup(nID);
    if (!pVariable)
        return CU_PROBER_GONE;
    if (pVariable->m_bComputed || (bOutside && !pVariable->m_bOpen))
        return CU_PROBER_REFUSED;
    return Store(*pVariable, pszText) ? CU_PROBER_DONE : CU_PROBER_NOT_PARSED;
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
