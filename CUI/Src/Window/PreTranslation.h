#pragma once

#include "CUI/Platform.h"

// A message on its way from window to window up, before it is dispatched. What several of them do
// about it, and once is enough, asks here.
class CUIPreTranslation
{
public:
    explicit CUIPreTranslation(const MSG *pMsg) { Begin(pMsg); }
    // A message of an inner loop forgets the outer one: what is asked for then is done again.
    ~CUIPreTranslation() { Begin(nullptr); }
    CUIPreTranslation(const CUIPreTranslation &) = delete;
    CUIPreTranslation &operator=(const CUIPreTranslation &) = delete;

    // False from the second call for the same message on. Outside of a pre-translation there is
    // nothing to tell messages apart by: true.
    static bool IsFirst(const MSG *pMsg)
    {
        const bool bFirst = s_pMsg != pMsg || !s_bAsked;
        s_bAsked = s_pMsg == pMsg;
        return bFirst;
    }

private:
    static void Begin(const MSG *pMsg)
    {
        s_pMsg = pMsg;
        s_bAsked = false;
    }

    static const MSG *s_pMsg;  // null: none
    static bool s_bAsked;
};
