#pragma once

#include "Base/Array.h"
#include "CUI/Window.h"

// Message hooks in the order of insertion. While somebody walks, a removed hook leaves a gap, which
// is closed when the last walk ends.
class CCUIWindowHookList
{
public:
    void Insert(CCUIWindowHook *pHook) { m_hooks.Add(pHook); }

    void Remove(const CCUIWindowHook *pHook)
    {
        for (int i = 0; i < m_hooks.Count(); ++i) {
            if (m_hooks[i] == pHook)
                m_hooks[i] = nullptr;
        }
        CloseGaps();
    }

    void BeginWalk() { ++m_nWalks; }
    void EndWalk()
    {
        --m_nWalks;
        CloseGaps();
    }
    int GetCount() const { return m_hooks.Count(); }
    CCUIWindowHook *GetAt(int nIndex) const { return m_hooks[nIndex]; }

private:
    void CloseGaps()
    {
        if (m_nWalks)
            return;
        for (int i = m_hooks.Count() - 1; i >= 0; --i) {
            if (!m_hooks[i])
                m_hooks.Remove(i, 1);
        }
    }

    CCUArray<CCUIWindowHook *> m_hooks;
    unsigned m_nWalks = 0;
};
