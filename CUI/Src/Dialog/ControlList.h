#pragma once

#include "Base/Array.h"
#include "CUI/Dialog.h"

// A dialog's registered controls, one entry an identifier.
class CCUIControlList
{
public:
    CCUIControlInfo *Find(unsigned nID)
    {
        const int nIndex = IndexOf(nID);
        return nIndex < 0 ? nullptr : &m_entries[nIndex];
    }

    void Set(const CCUIControlInfo &info)
    {
        if (CCUIControlInfo *const pEntry = Find(info.nID))
            *pEntry = info;
        else
            m_entries.Add(info);
    }

    void Remove(unsigned nID)
    {
        const int nIndex = IndexOf(nID);
        if (nIndex >= 0)
            m_entries.Remove(nIndex, 1);
    }

    void RemoveAll() { m_entries.Empty(); }

private:
    int IndexOf(unsigned nID) const
    {
        int nIndex = m_entries.Count();
        do
            --nIndex;
        while (nIndex >= 0 && m_entries[nIndex].nID != nID);
        return nIndex;
    }

    CCUArray<CCUIControlInfo> m_entries;
};
