// The idle pass: all commands, then all that shows them. Apart from CommandView.cpp, for this alone
// runs again and again, and so is compiled for speed.

#include "CUI/CommandHandler.h"
#include "CUI/CommandMap.h"
#include "CUI/CommandView.h"
#include "Command/CommandViewList.h"

void CCUICommandMap::IdleUpdate()
{
    // Not This(), which makes the tables: a program without commands needs none.
    s_this._IdleUpdate();
    CCUICommandViewList::s_all.UpdateAll();
}

void CCUICommandViewList::UpdateAll()
{
    const int nCount = m_nCount;
    const unsigned int nChange = CCUICommandMap::s_nChange;
    const bool bAll = m_nMapChange != nChange;
    if (!bAll && !m_nAsked)
        return;
    m_nMapChange = nChange;
    BeginWalk();
    for (int i = 0; i < nCount; ++i) {
        const CCUICommandViewEntry &entry = m_pEntries[i];
        if (bAll || nChange != CCUICommandMap::s_nChange) {
            Update(i);
        } else if (entry.pAsked) {
            CCUICommandHandler *const pHandler = entry.pAsked;
            const unsigned int nOld = entry.nState;
            const unsigned int nState = pHandler->GetState(entry.nID);
            const bool bSame = nState == nOld && !(nState & CUI_COMMAND_TEXT);
            if (!bSame && m_pEntries[i].pView && nChange == CCUICommandMap::s_nChange)
                CCUICommandView::Tell(i, pHandler, nState);
        }
    }
    EndWalk();
}
