#pragma once

#include "Base/Lock.h"
#include "CU/Prober.h"
#include "Probe/ProberIndex.h"

class CCUDebugSwitch;

// All variables of the process, in the order in which they were listed. The list itself is made of
// the variables: nothing is allocated before somebody asks by path or number, which takes the
// index. What the variables say, and how they are set, is for CCUProberValues.
//
// Under the lock nobody calls what belongs to the program: functions that compute a value run
// without it, noted as readings, for whose end the variable's destructor waits.
class CCUProberList
{
public:
    static CCULazyLock s_lock;

    static void Add(CCUProberVariable &variable);
    static void Remove(CCUProberVariable &variable);
    // For who has set the value: tells the watches.
    static void Changed(CCUProberVariable &variable);
    static unsigned long Count() { return s_nCount; }
    // Counts variables that come and go.
    static unsigned long TreeChanges() { return s_nTreeChanges; }

    // The debug switch behind that one; null: the first.
    static CCUDebugSwitch *NextSwitch(const CCUDebugSwitch *pSwitch);
    static unsigned long Find(const char *pPath, int nLength);
    // What the iteration of CCUProber::GetNext answers.
    static unsigned long Next(unsigned long nID, const char *pszSubtree);
    // Under the lock. Null: it is gone.
    static CCUProberVariable *Lookup(unsigned long nID);

    // The computing of a value. Made by who has the lock once: gives it away for as long as it
    // lives. Of the variable nothing is used afterwards.
    class CReading
    {
    public:
        explicit CReading(const CCUProberVariable &variable);
        ~CReading();
        CReading(const CReading &) = delete;
        CReading &operator=(const CReading &) = delete;

    private:
        friend class CCUProberList;
        const CCUProberVariable &m_variable;
        const DWORD m_nThread;
        CReading *m_pNext;
    };

    static void AddWatch(CCUProberWatch &watch);
    static void RemoveWatch(CCUProberWatch &watch);
    static unsigned long NextChanged(CCUProberWatch &watch);

private:
    // All of these under the lock.
    static bool IsRead(const CCUProberVariable &variable);
    static bool IsWithin(const CCUProberVariable &variable, const char *pszSubtree);
    static void TreeChanged(CCUProberVariable &variable, bool bNew);
    static void Tell(CCUProberWatch &watch);

    static CCUProberIndex s_index;
    static CCUProberVariable *s_pFirst;
    static CCUProberVariable *s_pLast;
    static unsigned long s_nCount;
    static unsigned long s_nLastID;
    static volatile unsigned long s_nTreeChanges;
    static CCUProberWatch *s_pFirstWatch;
    static CReading *s_pReadings;
};
