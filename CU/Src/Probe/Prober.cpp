#include "CU/Prober.h"

#include "Probe/ProberList.h"
#include "Text/Characters.h"

CCUProberVariable::CCUProberVariable(CUProberKind nKind, bool bComputed, const char *pszPath,
                                     const char *pszName, const char *pszDescription,
                                     const char *pszUnit)
    : m_bSwitch(false),
      m_nNotice(0),
      m_pszPath(CUOrEmpty(pszPath)),
      m_pszName(CUOrEmpty(pszName)),
      m_pszDescription(CUOrEmpty(pszDescription)),
      m_pszUnit(CUOrEmpty(pszUnit)),
      m_nKind(nKind),
      m_bComputed(bComputed),
      m_bOpen(false),
      m_nID(0),
      m_nPending(0),
      m_pPrevious(nullptr),
      m_pNext(nullptr),
      m_pNextOfID(nullptr),
      m_pNode(nullptr)
{
}

void CCUProberVariable::List()
{
    CCUProberList::Add(*this);
}

void CCUProberVariable::Unlist()
{
    CCUProberList::Remove(*this);
}

void CCUProberVariable::Changed()
{
    CCUProberList::Changed(*this);
}

// --- Kinds ---

CCUProberLong::CCUProberLong(const char *pszPath, const char *pszName, long nDefault,
                             const char *pszDescription, const char *pszUnit)
    : CCUProberVariable(CU_PROBER_LONG, false, pszPath, pszName, pszDescription, pszUnit),
      m_nValue(nDefault),
      m_nDefault(nDefault)
{
    List();
}

CCUProberLong::CCUProberLong(CSwitch, const char *pszPath, const char *pszName,
                             const char *pszDescription, const char *pszUnit)
    : CCUProberVariable(CU_PROBER_LONG, false, pszPath, pszName, pszDescription, pszUnit),
      m_nValue(0),
      m_nDefault(0)
{
    m_bSwitch = true;
    m_nNotice = UNREAD;
    List();
}

// What is set holds, whatever the environment says.
void CCUProberLong::SetNoticed(long nValue)
{
    const CCULockGuard guard(CCUProberList::s_lock);
    m_nValue = nValue;
    InterlockedAnd(&m_nNotice, ~UNREAD);
    CCUProberList::Changed(*this);
}

CCUProberDouble::CCUProberDouble(const char *pszPath, const char *pszName, double fDefault,
                                 const char *pszDescription, const char *pszUnit)
    : CCUProberVariable(CU_PROBER_DOUBLE, false, pszPath, pszName, pszDescription, pszUnit),
      m_nBits(0),
      m_fDefault(fDefault)
{
    Set(fDefault);
    List();
}

CCUProberFlag::CCUProberFlag(const char *pszPath, const char *pszName, bool bDefault,
                             const char *pszDescription, const char *pszUnit)
    : CCUProberVariable(CU_PROBER_FLAG, false, pszPath, pszName, pszDescription, pszUnit),
      m_bValue(bDefault),
      m_bDefault(bDefault)
{
    List();
}

CCUProberText::CCUProberText(const char *pszPath, const char *pszName, const char *pszDefault,
                             const char *pszDescription, const char *pszUnit)
    : CCUProberVariable(CU_PROBER_TEXT, false, pszPath, pszName, pszDescription, pszUnit),
      m_sValue(CUOrEmpty(pszDefault)),
      m_pszDefault(CUOrEmpty(pszDefault))
{
    List();
}

// There is no text before the constructor has run, nor once the destructor has.
CCUString CCUProberText::Get() const
{
    const CCULockGuard guard(CCUProberList::s_lock);
    return GetID() ? m_sValue : CCUString();
}

void CCUProberText::Set(const CCUString &sValue)
{
    const CCULockGuard guard(CCUProberList::s_lock);
    if (!GetID())
        return;
    m_sValue = sValue;
    if (m_nNotice)
        CCUProberList::Changed(*this);
}

CCUProberFunction::CCUProberFunction(CUProberKind nKind, void (*function)(), const char *pszPath,
                                     const char *pszName, const char *pszDescription,
                                     const char *pszUnit, void *pArgument)
    : CCUProberVariable(nKind, true, pszPath, pszName, pszDescription, pszUnit),
      m_function(function),
      m_pArgument(pArgument)
{
    List();
}
