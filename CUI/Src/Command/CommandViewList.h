#pragma once

#include "CU/Platform.h"

class CCUICommandHandler;
class CCUICommandView;

// What a pass needs to know of a view, side by side with the others: the views themselves lie
// scattered in memory, and to look at each costs several times the asking.
struct CCUICommandViewEntry
{
    CCUICommandView *pView;  // null: gone
    unsigned int nID;
    unsigned int nState;         // as told
    CCUICommandHandler *pAsked;  // in every pass; null: only when the map has changed
};

// A state that no command has: the view is to be told in any case.
const unsigned int CUI_COMMAND_NOT_TOLD = 0x10000;
// Nobody carries the command out. The view takes it for disabled, but hears when somebody comes.
const unsigned int CUI_COMMAND_NO_HANDLER = 0x20000;

// All views that have a command. While a pass is under way an entry keeps its place, so that the
// pass knows it again after each call of others; those that go leave an empty one behind.
class CCUICommandViewList
{
public:
    // Answers the place.
    int Add(CCUICommandView *pView, unsigned int nID);
    void Remove(int nIndex);
    // Has the handler asked in every pass; null: none.
    void SetAsked(int nIndex, CCUICommandHandler *pAsked);

    // Looks at the command of the view at that place. Handlers may delete the view, themselves, and
    // others; what they leave behind is found out by the next pass.
    void Update(int nIndex);
    // The pass over all views.
    void UpdateAll();

    // Around each walk.
    void BeginWalk() { ++m_nWalks; }
    void EndWalk();

    CCUICommandViewEntry *m_pEntries;
    int m_nCount;
    int m_nAsked;               // views whose handler is asked in every pass
    unsigned int m_nMapChange;  // the map's, at the last pass

private:
    void Move(int nFrom, int nTo);
    void Shrink();

    int m_nCapacity;
    int m_nWalks;
    bool m_bHoles;

public:
    // Plain static data. The memory goes with the last view.
    static CCUICommandViewList s_all;
};
