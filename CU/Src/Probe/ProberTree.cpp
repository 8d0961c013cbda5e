// The tree as the program asks it.

#include "CU/Dump.h"
#include "CU/Prober.h"
#include "Probe/ProberList.h"
#include "Probe/ProberValues.h"
#include "Text/Characters.h"

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
    return CCUProberValues::Describe(nID, entry);
}

CUProberResult CCUProber::Get(unsigned long nID, CUProberValue &value)
{
    const CCULockGuard guard(CCUProberList::s_lock);
    CCUProberValues::GetLocked(nID, value);
    return value.nResult;
}

CUProberResult CCUProber::Set(unsigned long nID, const char *pszText)
{
    return CCUProberValues::Set(nID, pszText, false);
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
