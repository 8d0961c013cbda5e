#include "CUI/CommandHandler.h"

#include <limits.h>

#include "CU/Assert.h"
#include "CU/IDGenerator.h"
#include "CUI/CommandMap.h"

#define CU_SOURCE "CommandHandler"

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
