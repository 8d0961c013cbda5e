#include "CUI/CommandView.h"

#include <string.h>

#include "CUI/CommandHandler.h"
#include "CUI/CommandMap.h"
#include "Command/CommandViewList.h"

namespace {

// The function that the handler's class has for GetState: the third in the table of the class. The
// compiler looks there, too, where it compares before it calls.
const void *GetStateOf(const CCUICommandHandler &handler)
{
    const void *const *pTable;
    memcpy(&pTable, static_cast<const void *>(&handler), sizeof pTable);
    return pTable[2];
}

// The handler, if its state may change; null for those that leave GetState to the base.
CCUICommandHandler *HandlerToAsk(CCUICommandHandler *pHandler)
{
    static const void *s_pDefault;
    if (!s_pDefault) {
        const CCUICommandHandler plain(~0u, 1);
        s_pDefault = GetStateOf(plain);
    }
    return pHandler && GetStateOf(*pHandler) != s_pDefault ? pHandler : nullptr;
}

}  // namespace

CCUICommandViewList CCUICommandViewList::s_all;

int CCUICommandViewList::Add(CCUICommandView *pView, unsigned int nID)
{
    if (m_nCount == m_nCapacity) {
        m_nCapacity = m_nCapacity ? 2 * m_nCapacity : 16;
        auto *const pEntries = new CCUICommandViewEntry[static_cast<unsigned int>(m_nCapacity)];
        if (m_nCount)
            memcpy(pEntries, m_pEntries, static_cast<unsigned int>(m_nCount) * sizeof *pEntries);
        delete[] m_pEntries;
        m_pEntries = pEntries;
    }
    m_pEntries[m_nCount] = {pView, nID, CUI_COMMAND_NOT_TOLD, nullptr};
    return m_nCount++;
}

void CCUICommandViewList::Remove(int nIndex)
{
    SetAsked(nIndex, nullptr);
    m_pEntries[nIndex] = {nullptr, 0, 0, nullptr};
    m_bHoles = true;
    if (m_nWalks)
        return;
    Move(m_nCount - 1, nIndex);
    --m_nCount;
    Shrink();
}

void CCUICommandViewList::SetAsked(int nIndex, CCUICommandHandler *pAsked)
{
    CCUICommandHandler *&pOld = m_pEntries[nIndex].pAsked;
    m_nAsked += (pAsked ? 1 : 0) - (pOld ? 1 : 0);
    pOld = pAsked;
}

void CCUICommandViewList::Move(int nFrom, int nTo)
{
    m_pEntries[nTo] = m_pEntries[nFrom];
    if (CCUICommandView *const pView = m_pEntries[nTo].pView)
        pView->m_nIndex = nTo;
}

void CCUICommandViewList::EndWalk()
{
    if (--m_nWalks || !m_bHoles)
        return;
    int nKept = 0;
    for (int i = 0; i < m_nCount; ++i) {
        if (m_pEntries[i].pView)
            Move(i, nKept++);
    }
    m_nCount = nKept;
    Shrink();
}

void CCUICommandViewList::Shrink()
{
    m_bHoles = false;
    if (m_nCount)
        return;
    delete[] m_pEntries;
    m_pEntries = nullptr;
    m_nCapacity = 0;
}

void CCUICommandViewList::Update(int nIndex)
{
    const unsigned int nID = m_pEntries[nIndex].nID;
    CCUICommandHandler *const pHandler = CCUICommandMap::Find(nID);
    SetAsked(nIndex, HandlerToAsk(pHandler));
    const unsigned int nChange = CCUICommandMap::s_nChange;
    BeginWalk();
    const unsigned int nState = pHandler ? pHandler->GetState(nID) : CUI_COMMAND_NO_HANDLER;
    if (m_pEntries[nIndex].pView && nChange == CCUICommandMap::s_nChange)
        CCUICommandView::Tell(nIndex, pHandler, nState);
    EndWalk();
}

CCUICommandView::CCUICommandView() : m_nID(0), m_nIndex(0) {}

CCUICommandView::~CCUICommandView()
{
    if (m_nID)
        CCUICommandViewList::s_all.Remove(m_nIndex);
}

void CCUICommandView::SetCommand(unsigned int nID)
{
    if (nID == m_nID)
        return;
    if (m_nID)
        CCUICommandViewList::s_all.Remove(m_nIndex);
    m_nID = nID;
    m_sText.Empty();
    if (!nID)
        return;
    m_nIndex = CCUICommandViewList::s_all.Add(this, nID);
    UpdateCommand();
}

void CCUICommandView::OnCommandChanged(unsigned short, const CCUString &) {}

void CCUICommandView::UpdateCommand()
{
    if (m_nID)
        CCUICommandViewList::s_all.Update(m_nIndex);
}

// Tells the view at nIndex of a state that may be another than the one it knows. Handlers may
// delete it.
void CCUICommandView::Tell(int nIndex, CCUICommandHandler *pHandler, unsigned int nState)
{
    CCUICommandViewList &views = CCUICommandViewList::s_all;
    CCUString sText;
    if (nState & CUI_COMMAND_TEXT)
        sText = pHandler->GetShortTT(views.m_pEntries[nIndex].nID);
    CCUICommandViewEntry &entry = views.m_pEntries[nIndex];
    CCUICommandView *const pView = entry.pView;
    if (!pView || (nState == entry.nState && sText == pView->m_sText))
        return;
    entry.nState = nState;
    pView->m_sText = sText;
    pView->OnCommandChanged(static_cast<unsigned short>(nState), sText);
}
