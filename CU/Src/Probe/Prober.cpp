#include "CU/Prober.h"

#include "CU/Dump.h"
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

// --- The tree ---

unsigned long CCUProber::Find(const char *pszPath, int nLength)
{
    return pszPath ? CCUProberList::Find(pszPath, nLength) : 0;
}

unsigned long CCUProber::GetNext(unsigned long nID, const char *pszSubtree)
{
    return CCUProberList::Next(nID, pszSubtree);
}

bool CCUProber::Describe(unsigned long nID, CUProberEntry &entry)
{
    return CCUProberList::Describe(nID, entry);
}

CUProberResult CCUProber::Get(unsigned long nID, CUProberValue &value)
{
    const CCULockGuard guard(CCUProberList::s_lock);
    CCUProberList::GetLocked(nID, value);
    return value.nResult;
}

CUProberResult CCUProber::Set(unsigned long nID, const char *pszText)
{
    return CCUProberList::Set(nID, pszText, false);
}

void CCUProber::Dump(const char *pszSubtree)
{
    CUProberEntry entry;
    CUProberValue value;
    for (unsigned long nID = 0; (nID = GetNext(nID, pszSubtree)) != 0;) {
        if (!Describe(nID, entry) || Get(nID, value) != CU_PROBER_DONE)
            continue;
        CCUString sLine;
        sLine.Format("%s\\%s = %s%s%s\n", entry.sPath.GetString(), entry.sName.GetString(),
                     value.ToText().GetString(), entry.sUnit.IsEmpty() ? "" : " ",
                     entry.sUnit.GetString());
        CUDumpString(sLine, -1);
    }
}

CCUProberWatch::CCUProberWatch(const char *pszSubtree, HWND hWnd, unsigned int uMessage)
    : m_sSubtree(CUOrEmpty(pszSubtree)),
      m_hWnd(hWnd),
      m_uMessage(uMessage),
      m_nBit(0),
      m_bPosted(false),
      m_bTreeChanged(false),
      m_nLast(0),
      m_pNext(nullptr)
{
    CCUProberList::AddWatch(*this);
}

CCUProberWatch::~CCUProberWatch()
{
    CCUProberList::RemoveWatch(*this);
}

unsigned long CCUProberWatch::Next()
{
    return CCUProberList::NextChanged(*this);
}

bool CCUProberWatch::IsTreeChanged()
{
    const CCULockGuard guard(CCUProberList::s_lock);
    m_bPosted = false;
    const bool bChanged = m_bTreeChanged;
    m_bTreeChanged = false;
    return bChanged;
}
