#include "CUI/CommandHandler.h"

#include <limits.h>

#include "CU/Assert.h"
#include "CU/IDGenerator.h"
#include "CUI/CommandMap.h"

#define CU_SOURCE "CommandHandler"

namespace {

// The states whose commands are refreshed by somebody else, or not at all.
const unsigned short NO_IDLE_UPDATE = CUI_COMMAND_MENU | CUI_COMMAND_MINIMIZED | CUI_COMMAND_TIMER |
                                      CUI_COMMAND_HIDDEN | CUI_COMMAND_HIDDEN_DIALOG_CONTROL;

}  // namespace

CCUICommandHandler::CCUICommandHandler(unsigned int nID, unsigned int nIDRange)
    : m_nID(nID), m_nIDRange(nIDRange)
{
    if (nID > INT_MAX) {
        m_nID = 0;
        CU_ASSERT(nIDRange == 1);
        return;
    }
    if (nID == 0) {
        m_nID = CCUIIDGenerator::GetNextID();
        for (unsigned int nI = 1; nI < nIDRange; ++nI)
            CCUIIDGenerator::GetNextID();
    }
    CU_ASSERT(CCUICommandMap::Add(this));
}

CCUICommandHandler::~CCUICommandHandler()
{
    if (m_nID != 0)
        CU_ASSERT(CCUICommandMap::Remove(this));
}

void CCUICommandHandler::HandleCommand(unsigned int nID)
{
    CheckRange(nID == 0 ? m_nID : nID);
}

void CCUICommandHandler::HandleUpdate(unsigned int nID)
{
    CheckRange(nID == 0 ? m_nID : nID);
}

CCUString CCUICommandHandler::GetShortTT(unsigned int nID)
{
    CheckRange(nID);
    return "UNKNOWN!";
}

CCUString CCUICommandHandler::GetLongTT(unsigned int nID)
{
    CheckRange(nID);
    return "This command is UNKNOWN!";
}

void CCUICommandHandler::CheckRange(unsigned int nID) const
{
    CU_ASSERT(nID >= m_nID && nID < m_nID + m_nIDRange);
}

unsigned short CCUICommandHandler::GetState(unsigned int)
{
    return CUI_COMMAND_ACTIVE;
}

// Beside GetState, which the compiler is to know here: where a handler does not override it, the
// pass compares two pointers and calls nothing.
void CCUICommandMap::_IdleUpdate()
{
    for (int nMap = 0; nMap < TABLES; ++nMap) {
        // Handlers may move the table and change its slots: nothing is kept over a call of theirs.
        // The bound is, so that a pass ends even if every handler that is refreshed adds another.
        const int nLength = m_nLength[nMap];
        int nIndex = 0;
        int nEnd = 0;
        for (; nIndex < nLength && nIndex < m_nEnd[nMap]; ++nIndex) {
            CCUICommandHandler *pCmdHandler = m_pMap[nMap][nIndex];
            if (!pCmdHandler)
                continue;
            nEnd = nIndex + 1;
            const unsigned int nID = Base(nMap) + static_cast<unsigned int>(nIndex);
            const bool bRefresh = !(pCmdHandler->GetState(nID) & NO_IDLE_UPDATE);
            if (bRefresh && m_pMap[nMap][nIndex] == pCmdHandler)
                pCmdHandler->HandleUpdate(nID);
        }
        // The slots from there on were empty when the last handler had been called.
        if (nIndex == m_nEnd[nMap])
            m_nEnd[nMap] = nEnd;
    }
}
