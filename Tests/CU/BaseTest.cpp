// The ground floor, where no layer's tests reach it.

#include <gtest/gtest.h>

#include <string.h>

#include <new>
#include <vector>

#include "Base/CallbackList.h"
#include "Base/Lifetime.h"
#include "Base/Lock.h"
#include "CU/ThreadExit.h"
#include "Support/ChildProcess.h"
#include "Support/ImportHook.h"

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

CCULazyLock g_lock;
bool g_bDeleted = false;

struct CHandler : CCUThreadExitHandler
{
    void OnThreadExit(bool) override {}
} g_handler;

void WINAPI NoteDeleted(CRITICAL_SECTION *section)
{
    g_bDeleted = g_bDeleted || section->OwningThread != nullptr;
}

// The system calls slots in their order, so this one's comes behind the framework's.
void WINAPI AtTheVeryEnd(void *)
{
    TerminateProcess(GetCurrentProcess(), g_bDeleted ? 7 : 1);
}

CHILD_PROCESS(LockedEnd)
{
    typedef void WINAPI FlsCallback(void *);
    const HMODULE hKernel = GetModuleHandleA("kernel32.dll");
    CURegisterThreadExitHandler(&g_handler);
    const DWORD nSlot = reinterpret_cast<DWORD(WINAPI *)(FlsCallback *)>(
        GetProcAddress(hKernel, "FlsAlloc"))(AtTheVeryEnd);
    reinterpret_cast<BOOL(WINAPI *)(DWORD, void *)>(GetProcAddress(hKernel, "FlsSetValue"))(
        nSlot, &g_lock);
    const CImportHook hook("DeleteCriticalSection", NoteDeleted);
    g_lock.Enter();
    ExitProcess(2);
}

TEST(Lifetime, LastThreadDeletesTheLocks)
{
    EXPECT_EQ(7u, CChildProcess("LockedEnd").ExitCode());
}

}  // namespace
