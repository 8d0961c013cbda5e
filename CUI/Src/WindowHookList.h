#pragma once

#include "CUI/Window.h"

// Message hooks in the order of insertion. While somebody walks, a removed hook leaves a gap, which
// is closed when the last walk ends.
class CCUIWindowHookList
{
public:
    ~CCUIWindowHookList() { delete[] m_ppHooks; }

    void Insert(CCUIWindowHook *pHook)
    {
        if (m_nCount == m_nSize) {
            m_nSize = m_nSize ? 2 * m_nSize : 4;
            auto **ppHooks = new CCUIWindowHook *[m_nSize];
            for (unsigned i = 0; i < m_nCount; ++i)
                ppHooks[i] = m_ppHooks[i];
            delete[] m_ppHooks;
            m_ppHooks = ppHooks;
        }
        m_ppHooks[m_nCount++] = pHook;
    }

    void Remove(const CCUIWindowHook *pHook)
    {
        for (unsigned i = 0; i < m_nCount; ++i) {
            if (m_ppHooks[i] == pHook)
                m_ppHooks[i] = nullptr;
        }
        CloseGaps();
    }

    void BeginWalk() { ++m_nWalks; }
    void EndWalk()
    {
        --m_nWalks;
        CloseGaps();
    }
    unsigned GetCount() const { return m_nCount; }
    CCUIWindowHook *GetAt(unsigned nIndex) const { return m_ppHooks[nIndex]; }

private:
    void CloseGaps()
    {
        if (m_nWalks)
            return;
        unsigned nKept = 0;
        for (unsigned i = 0; i < m_nCount; ++i) {
            if (m_ppHooks[i])
                m_ppHooks[nKept++] = m_ppHooks[i];
        }
        m_nCount = nKept;
    }

    CCUIWindowHook **m_ppHooks = nullptr;
    unsigned m_nCount = 0;
    unsigned m_nSize = 0;
    unsigned m_nWalks = 0;
};
