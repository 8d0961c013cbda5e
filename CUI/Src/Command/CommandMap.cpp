#include "CUI/CommandMap.h"

#include <stdlib.h>
#include <string.h>

#include "Base/Lifetime.h"
#include "CU/Assert.h"
#include "CU/Dump.h"
#include "CU/String.h"
#include "CUI/CommandHandler.h"

#define CU_SOURCE "CommandMap"

namespace {

const size_t ENTRY_SIZE = sizeof(void *);
// No block of memory is as large as half the address space.
const unsigned long long MOST_ENTRIES = 0x7FFF0000 / ENTRY_SIZE;

// The states whose commands are refreshed by somebody else, or not at all.
const unsigned short NO_IDLE_UPDATE = CUI_COMMAND_MENU | CUI_COMMAND_MINIMIZED | CUI_COMMAND_TIMER |
                                      CUI_COMMAND_HIDDEN | CUI_COMMAND_HIDDEN_DIALOG_CONTROL;

struct CStateName
{
    unsigned short nBit;
    const char *pszName;
};

// In the order of the dump.
const CStateName STATE_NAMES[] = {
    {CUI_COMMAND_MENU, " Menu"},     {CUI_COMMAND_MINIMIZED, " Minimized"},
    {CUI_COMMAND_HIDDEN, " Hidden"}, {CUI_COMMAND_TIMER, " Timer"},
    {CUI_COMMAND_ACTIVE, " Active"}, {CUI_COMMAND_HIDDEN_DIALOG_CONTROL, " HiddenDialogControl"},
};

}  // namespace

static CCULastCall s_lastCall;
CCUICommandMap CCUICommandMap::s_this;
bool CCUICommandMap::s_bDeleted;
unsigned int CCUICommandMap::s_nChange = 1;

CCUICommandMap &CCUICommandMap::This()
{
    if (s_this.m_nGrowBy == 0)
        s_this.Make();
    return s_this;
}

void CCUICommandMap::Make()
{
    m_nGrowBy = GROWTH_STEP;
    for (int nMap = 0; nMap < TABLES; ++nMap)
        Cover(nMap, 0, GROWTH_STEP);
    CUAtLast(s_lastCall, [](CCULastCall &) { Delete(); });
}

void CCUICommandMap::Delete()
{
    for (CCUICommandHandler **pMap : s_this.m_pMap)
        free(pMap);
    s_this = CCUICommandMap();
    s_bDeleted = true;
    ++s_nChange;
}

int CCUICommandMap::Add(CCUICommandHandler *pCmdHandler)
{
    return This()._Add(pCmdHandler);
}

int CCUICommandMap::Remove(CCUICommandHandler *pCmdHandler)
{
    // Handlers that are destroyed with late globals find no map; that is no fault of theirs.
    return s_bDeleted ? 1 : This()._Remove(pCmdHandler);
}

CCUICommandHandler *CCUICommandMap::Override(unsigned int nID, CCUICommandHandler *pCmdHandler)
{
    return This()._Override(nID, pCmdHandler);
}

void CCUICommandMap::Dump()
{
    This()._Dump();
}

// The table of an identifier. Those below the first base have none; they are given table 0, where
// their index is negative.
int CCUICommandMap::Table(unsigned int nID)
{
    if (nID == 0)
        return 0;
    for (int nMap = TABLES - 1; nMap >= 0; --nMap) {
        if (nID >= Base(nMap))
            return nMap;
    }
    CU_ASSERT_TEXT(false, "0");
    return 0;
}

// Lengthens a table, in steps, until it covers a range. False, and nothing changed, where there is
// no memory for that.
bool CCUICommandMap::Cover(int nMap, int nIndex, unsigned int nRange)
{
    const unsigned long long nEntries = static_cast<unsigned int>(nIndex) + 0ull + nRange;
    if (nEntries <= static_cast<unsigned int>(m_nLength[nMap]))
        return true;
    if (nEntries > MOST_ENTRIES)
        return false;
    const int nSteps = (static_cast<int>(nEntries) + m_nGrowBy - 1) / m_nGrowBy;
    const int nLength = nSteps * m_nGrowBy;
    // Not with operator new, which ends the program where there is no memory: a handler with a very
    // high identifier asks for gigabytes.
    void *pNew = calloc(static_cast<size_t>(nLength), ENTRY_SIZE);
    if (!pNew)
        return false;
    CCUICommandHandler **pOld = m_pMap[nMap];
    if (pOld)
        memcpy(pNew, pOld, static_cast<size_t>(m_nLength[nMap]) * ENTRY_SIZE);
    m_pMap[nMap] = static_cast<CCUICommandHandler **>(pNew);
    m_nLength[nMap] = nLength;
    free(pOld);
    return true;
}

// Slots below nEnd get handlers.
void CCUICommandMap::UseUpTo(int nMap, int nEnd)
{
    ++s_nChange;
    if (m_nEnd[nMap] < nEnd)
        m_nEnd[nMap] = nEnd;
}

int CCUICommandMap::_Add(CCUICommandHandler *pCmdHandler)
{
    CU_ASSERT(pCmdHandler);
    if (!pCmdHandler)
        return 0;
    const int nMap = Table(pCmdHandler->GetID());
    const int nIndex = static_cast<int>(pCmdHandler->GetID() - Base(nMap));
    CU_ASSERT(nIndex >= 0);
    if (nIndex < 0 || !Cover(nMap, nIndex, pCmdHandler->GetIDRange()))
        return 0;
    const int nRange = static_cast<int>(pCmdHandler->GetIDRange());
    UseUpTo(nMap, nIndex + nRange);
    for (int nI = 0; nI < nRange; ++nI) {
        if (CU_ASSERT(m_pMap[nMap][nIndex + nI] == NULL))
            return 0;
        m_pMap[nMap][nIndex + nI] = pCmdHandler;
    }
    return 1;
}

int CCUICommandMap::_Remove(CCUICommandHandler *pCmdHandler)
{
    CU_ASSERT(pCmdHandler);
    if (!pCmdHandler)
        return 0;
    const int nOwn = Table(pCmdHandler->GetID());
    const unsigned int nLength = static_cast<unsigned int>(m_nLength[nOwn]);
    const unsigned int nFirst = pCmdHandler->GetID() - Base(nOwn);
    const unsigned int nRange = pCmdHandler->GetIDRange();
    if (nFirst > nLength || nRange > nLength - nFirst)
        return 0;
    ++s_nChange;
    for (unsigned int nI = 0; nI < nRange; ++nI)
        m_pMap[nOwn][nFirst + nI] = nullptr;
    // Override may have put it elsewhere.
    for (int nMap = 0; nMap < TABLES; ++nMap) {
        for (int nIndex = 0; nIndex < m_nLength[nMap]; ++nIndex) {
            if (m_pMap[nMap][nIndex] == pCmdHandler)
                m_pMap[nMap][nIndex] = nullptr;
        }
    }
    return 1;
}

CCUICommandHandler *CCUICommandMap::_Override(unsigned int nID, CCUICommandHandler *pCmdHandler)
{
    const int nMap = Table(nID);
    const unsigned int nIndex = nID - Base(nMap);
    if (nIndex >= static_cast<unsigned int>(m_nLength[nMap]))
        return nullptr;
    CCUICommandHandler *pPrevious = m_pMap[nMap][nIndex];
    m_pMap[nMap][nIndex] = pCmdHandler;
    UseUpTo(nMap, static_cast<int>(nIndex) + 1);
    return pPrevious;
}

// Here, so that the compiler knows it in the pass below: where a handler does not override it, the
// pass compares two pointers and calls nothing. The other defaults are in CommandHandler.cpp, for
// of those the pass would compare HandleUpdate as well, which every handler overrides.
unsigned short CCUICommandHandler::GetState(unsigned int)
{
    return CUI_COMMAND_ACTIVE;
}

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

void CCUICommandMap::_Dump()
{
    CUDump("CommandMap Dump\n");
    for (int nMap = 0; nMap < TABLES; ++nMap) {
        CUDump("  Map[%d]\n", nMap);
        const int nLength = m_nLength[nMap];
        for (int nIndex = 0; nIndex < nLength; ++nIndex) {
            if (m_pMap[nMap][nIndex])
                DumpEntry(nMap, nIndex);
        }
    }
}

// The whole entry goes out in one piece, so that windows and callbacks of the trace get lines.
void CCUICommandMap::DumpEntry(int nMap, int nIndex)
{
    CCUICommandHandler *pCmdHandler = m_pMap[nMap][nIndex];
    const unsigned int nID = Base(nMap) + static_cast<unsigned int>(nIndex);
    const CCUString sShortTT = pCmdHandler->GetShortTT(nID);
    CCUString sLine;
    sLine.Format("    Entry[%d] ShortTT: %s, ID: %d, State:", nIndex, sShortTT.GetString(), nID);
    if (m_pMap[nMap][nIndex] == pCmdHandler) {
        const unsigned short nState = pCmdHandler->GetState(nID);
        for (const CStateName &state : STATE_NAMES) {
            if (nState & state.nBit)
                sLine += state.pszName;
        }
    }
    sLine += "\n";
    CUDumpString(sLine, -1);
}
