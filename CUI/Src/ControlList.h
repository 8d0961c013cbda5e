#pragma once

#include "CUI/Dialog.h"

// A dialog's registered controls, one entry an identifier.
class CCUIControlList
{
public:
    CCUIControlList() = default;
    ~CCUIControlList() { delete[] m_pEntries; }
    CCUIControlList(const CCUIControlList &) = delete;
    CCUIControlList &operator=(const CCUIControlList &) = delete;

    CCUIControlInfo *Find(unsigned nID)
    {
        for (unsigned i = 0; i < m_nCount; ++i) {
            if (m_pEntries[i].nID == nID)
                return &m_pEntries[i];
        }
        return nullptr;
    }

    void Set(const CCUIControlInfo &info)
    {
        CCUIControlInfo *pEntry = Find(info.nID);
        if (!pEntry) {
            if (m_nCount == m_nSize)
                Grow();
            pEntry = &m_pEntries[m_nCount++];
        }
        *pEntry = info;
    }

    void Remove(unsigned nID)
    {
        CCUIControlInfo *const pEntry = Find(nID);
        if (pEntry)
            *pEntry = m_pEntries[--m_nCount];
    }

    void RemoveAll() { m_nCount = 0; }

private:
    void Grow()
    {
        m_nSize = m_nSize ? 2 * m_nSize : 16;
        auto *pEntries = new CCUIControlInfo[m_nSize];
        for (unsigned i = 0; i < m_nCount; ++i)
            pEntries[i] = m_pEntries[i];
        delete[] m_pEntries;
        m_pEntries = pEntries;
    }

    CCUIControlInfo *m_pEntries = nullptr;
    unsigned m_nCount = 0;
    unsigned m_nSize = 0;
};
