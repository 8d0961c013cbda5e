// The ground floor, where no layer's tests reach it.

#include <gtest/gtest.h>

#include <string.h>

#include <new>
#include <vector>

#include "Base/CallbackList.h"
#include "Base/Lifetime.h"
#include "Support/ChildProcess.h"

namespace {

TEST(CallbackList, MayBeDeletedInTheMiddleOfItsWalks)
{
    typedef CCUCallbackList<int> CList;
    alignas(CList) char memory[sizeof(CList)];
    CList &list = *new (memory) CList;
    int items[3];
    for (int &item : items)
        list.Add(&item);
    CList::CWalk outer(list);
    EXPECT_EQ(&items[0], outer.Next());
    {
        CList::CWalk inner(list);
        EXPECT_EQ(&items[0], inner.Next());
        EXPECT_TRUE(list.Remove(&items[1]));
        EXPECT_FALSE(list.Remove(&items[1]));
        EXPECT_EQ(&items[2], inner.Next());
        EXPECT_EQ(nullptr, inner.Next());
    }
    list.~CList();
    memset(memory, 0xDD, sizeof memory);
    EXPECT_EQ(nullptr, outer.Next());
}

std::vector<int> *g_pReleased = new std::vector<int>;

struct CNoting
{
    explicit CNoting(int n) : m_n(n) {}
    ~CNoting() { g_pReleased->push_back(m_n); }
    const int m_n;
};
struct CFirst : CNoting
{
    CFirst() : CNoting(1) {}
};
CCUShared<CFirst> g_first;
struct CSecond : CNoting
{
    CSecond() : CNoting(2) {}
};
CCUShared<CSecond> g_second;
struct CThird : CNoting
{
    CThird() : CNoting(3) {}
    ~CThird() { g_second.Get(); }  // which is gone by then
};
CCUShared<CThird> g_third;
CCULastCall g_check;

// Constructed before the statics of all other sources, and destroyed behind them.
bool g_bStaticsGone = false;
struct CLastStatic
{
    CLastStatic() = default;
    ~CLastStatic() { g_bStaticsGone = true; }
};
const CLastStatic g_lastStatic __attribute__((init_priority(102)));

// Twice puts itself behind what has been made again.
void Check(CCULastCall &call)
{
    static int s_nCalls = 0;
    if (++s_nCalls < 3)
        CUAtLast(call, Check);
    else
        _exit(g_bStaticsGone && *g_pReleased == std::vector<int>{2, 1, 3, 2} ? 7 : 1);
}

CHILD_PROCESS(LastCalls)
{
    CUAtLast(g_check, Check);
    g_third.Get();
    g_first.Get();
    g_second.Get();
    g_second.Get();
}

TEST(Lifetime, LastCallsComeBehindTheDestructorsTheLatestFirst)
{
    EXPECT_EQ(7u, CChildProcess("LastCalls").ExitCode());
}

}  // namespace
