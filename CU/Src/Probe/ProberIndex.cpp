#include "Probe/ProberIndex.h"

#include <stdlib.h>
#include <string.h>

namespace {

const unsigned FIRST_BITS = 6;

// The same for texts that differ in the case of letters only.
CU_NOINLINE unsigned Hash(const char *p, size_t nLength)
{
    unsigned nHash = nLength;
    UINT32 nWord;
    for (; nLength >= sizeof nWord; nLength -= sizeof nWord, p += sizeof nWord) {
        memcpy(&nWord, p, sizeof nWord);
        nHash = (nHash ^ (nWord | 0x20202020U)) * 2654435769U;  // 2^32 by the golden ratio
    }
    for (; nLength > 0; --nLength)
        nHash = (nHash ^ (static_cast<unsigned char>(*p++) | 0x20U)) * 2654435769U;
    return nHash;
}

// In any case of letters. Most texts are the same in theirs, and so compared in words.
inline bool IsSame(const char *p, const char *q, size_t nLength)
{
    UINT32 nWord, nOther;
    while (nLength >= sizeof nWord) {
        memcpy(&nWord, p, sizeof nWord);
        memcpy(&nOther, q, sizeof nOther);
        if (nWord != nOther)
            break;
        p += sizeof nWord;
        q += sizeof nWord;
        nLength -= sizeof nWord;
    }
    while (nLength > 0 && CUFold(*p) == CUFold(*q)) {
        ++p;
        ++q;
        --nLength;
    }
    return nLength == 0;
}

CUProberNode *MakeNode(const char *pszPath, const char *pszName, unsigned long nID)
{
    const size_t nPath = strlen(pszPath), nLength = nPath + 1 + strlen(pszName);
    auto *const pNode = static_cast<CUProberNode *>(operator new(sizeof(CUProberNode) + nLength));
    memcpy(pNode->szPath, pszPath, nPath);
    pNode->szPath[nPath] = '\\';
    memcpy(pNode->szPath + nPath + 1, pszName, nLength - nPath);
    pNode->nHash = Hash(pNode->szPath, nLength);
    pNode->nLength = nLength;
    pNode->nID = nID;
    return pNode;
}

}  // namespace

void CCUProberIndex::AtLast(CCULastCall &call)
{
    auto &index = static_cast<CCUProberIndex &>(call);
    const CCULockGuard guard(index.m_lock);
    const CCUTryLockWait change(index.m_nBusy);
    index.GiveUp();
}

void CCUProberIndex::GiveUp()
{
    if (!IsMade())
        return;
    for (CCUProberVariable *p = *m_pFirst; p; p = p->m_pNext) {
        operator delete(p->m_pNode);
        p->m_pNode = nullptr;
    }
    delete[] m_ppPaths;
    delete[] m_ppIDs;
    m_ppPaths = nullptr;
}

void CCUProberIndex::Make(CCUProberVariable *const &pFirst, unsigned long nCount)
{
    const CCUTryLockWait change(m_nBusy);
    m_nBits = FIRST_BITS;
    while ((1UL << m_nBits) < nCount * 2)
        ++m_nBits;
    m_ppPaths = new CUProberNode *[1UL << m_nBits]();
    m_ppIDs = new CCUProberVariable *[1UL << m_nBits]();
    m_pFirst = &pFirst;
    CUAtLast(*this, AtLast);
    for (CCUProberVariable *p = pFirst; p; p = p->m_pNext)
        Enter(*p);
}

void CCUProberIndex::Add(CCUProberVariable &variable, unsigned long nCount)
{
    if (!IsMade())
        return;
    const CCUTryLockWait change(m_nBusy);
    if (nCount > 1UL << m_nBits)
        GiveUp();  // with it, for it is in the list
    else
        Enter(variable);
}

void CCUProberIndex::Enter(CCUProberVariable &variable)
{
    CUProberNode *const pNode = MakeNode(variable.m_pszPath, variable.m_pszName, variable.m_nID);
    variable.m_pNode = pNode;
    CUProberNode **const ppFirst = PathBucket(pNode->nHash);
    pNode->pNext = *ppFirst;
    *ppFirst = pNode;
    CCUProberVariable **const ppOfID = IDBucket(variable.m_nID);
    variable.m_pNextOfID = *ppOfID;
    *ppOfID = &variable;
}

void CCUProberIndex::Remove(CCUProberVariable &variable)
{
    if (!IsMade())
        return;
    const CCUTryLockWait change(m_nBusy);
    CUProberNode **ppNode = PathBucket(variable.m_pNode->nHash);
    while (*ppNode != variable.m_pNode)
        ppNode = &(*ppNode)->pNext;
    *ppNode = variable.m_pNode->pNext;
    operator delete(variable.m_pNode);
    variable.m_pNode = nullptr;
    CCUProberVariable **ppLink = IDBucket(variable.m_nID);
    while (*ppLink != &variable)
        ppLink = &(*ppLink)->m_pNextOfID;
    *ppLink = variable.m_pNextOfID;
}

unsigned long CCUProberIndex::Find(const char *pPath, size_t nLength) const
{
    const unsigned nHash = Hash(pPath, nLength);
    for (const CUProberNode *p = *PathBucket(nHash); p; p = p->pNext) {
        if (p->nHash == nHash && p->nLength == nLength && IsSame(p->szPath, pPath, nLength))
            return p->nID;
    }
    return 0;
}

bool CCUProberIndex::TryFind(const char *pPath, size_t nLength, unsigned long &nID)
{
    const CCUTryLock lock(m_nBusy);
    const bool bFound = lock.IsTaken() && IsMade();
    if (bFound)
        nID = Find(pPath, nLength);
    return bFound;
}

CCUProberVariable *CCUProberIndex::Find(unsigned long nID) const
{
    CCUProberVariable *p = *IDBucket(nID);
    while (p && p->m_nID != nID)
        p = p->m_pNextOfID;
    return p;
}
