#pragma once

#include "Base/Compiler.h"
#include "Base/Lifetime.h"
#include "Base/Lock.h"
#include "CU/Prober.h"

// A variable's path and name, with all that a search wants in one place.
struct CUProberNode
{
    CUProberNode *pNext;  // in its bucket
    unsigned nHash;
    unsigned long nID;
    size_t nLength;
    char szPath[1];  // nLength characters and a NUL
};

// The variables by path and by number: buckets, which are made when somebody asks for the first
// time, and again when there are more variables than buckets. Plain static data until it is made;
// its last call gives the memory back.
//
// Always under the list's lock, but for one: a search by path makes do with the try-lock in here,
// which costs a third. So who changes something needs both.
class CCUProberIndex : private CCULastCall
{
public:
    explicit constexpr CCUProberIndex(CCULazyLock &lock)
        : CCULastCall(),
          m_lock(lock),
          m_ppPaths(nullptr),
          m_ppIDs(nullptr),
          m_nBits(0),
          m_pFirst(nullptr),
          m_nBusy(0)
    {
    }
    CCUProberIndex(const CCUProberIndex &) = delete;
    CCUProberIndex &operator=(const CCUProberIndex &) = delete;

    bool IsMade() const { return m_ppPaths != nullptr; }
    // For nCount variables in a list, with room for as many more. Looking up is what this is
    // compiled for; the rest is small.
    CU_COLD void Make(CCUProberVariable *const &pFirst, unsigned long nCount);
    // These two do nothing before it is made. nCount: how many there are now; where that is too
    // many the index is given up, to be made anew.
    CU_COLD void Add(CCUProberVariable &variable, unsigned long nCount);
    CU_COLD void Remove(CCUProberVariable &variable);
    // Of several with that path and name the one that was added last; 0: none.
    CU_NOINLINE unsigned long Find(const char *pPath, size_t nLength) const;
    // The same without the list's lock. False: that is needed.
    bool TryFind(const char *pPath, size_t nLength, unsigned long &nID);
    CCUProberVariable *Find(unsigned long nID) const;

private:
    CU_COLD static void AtLast(CCULastCall &call);
    CU_COLD void GiveUp();
    CU_COLD void Enter(CCUProberVariable &variable);
    CUProberNode **PathBucket(unsigned nHash) const
    {
        return &m_ppPaths[(nHash * 2654435769U) >> (32 - m_nBits)];  // 2^32 by the golden ratio
    }
    CCUProberVariable **IDBucket(unsigned long nID) const
    {
        return &m_ppIDs[nID & ((1UL << m_nBits) - 1)];
    }

    CCULazyLock &m_lock;  // the list's
    CUProberNode **m_ppPaths;
    CCUProberVariable **m_ppIDs;
    unsigned m_nBits;
    CCUProberVariable *const *m_pFirst;  // where the list begins
    volatile LONG m_nBusy;               // CCUTryLock's
};

inline char CUFold(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
}
