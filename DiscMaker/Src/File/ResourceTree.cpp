#include "File/ResourceTree.h"

#include <algorithm>

#include "Model/Blob.h"

namespace {

const int LEVELS = 3;
const size_t HEAD_SIZE = 16;
const size_t ENTRY_SIZE = 8;
const DWORD HIGH_BIT = 0x80000000;

// One pass over a section, which ends when it has seen more than a sound one can have.
class CTreeReader
{
public:
    CTreeReader(const CBlob &section, DWORD nAddress)
        : m_bytes(section),
          m_section(*section),
          m_nAddress(nAddress),
          m_nEntriesLeft(m_section.Size() / ENTRY_SIZE),
          // Some linkers let equal resources share their bytes.
          m_nBytesLeft(m_section.Size() * 2)
    {
    }

    bool ReadDirectory(CResourceNode &node, size_t nOffset, int nLevel)
    {
        if (!m_section.Has(nOffset, HEAD_SIZE))
            return false;
        node.m_nCharacteristics = m_section.Dword(nOffset);
        node.m_nTimeStamp = m_section.Dword(nOffset + 4);
        node.m_nVersion = m_section.Dword(nOffset + 8);
        const size_t nCount = size_t(m_section.Word(nOffset + 12)) + m_section.Word(nOffset + 14);
        if (!m_section.Has(nOffset + HEAD_SIZE, nCount * ENTRY_SIZE) || nCount > m_nEntriesLeft)
            return false;
        m_nEntriesLeft -= nCount;
        node.m_children.resize(nCount);
        size_t nEntry = nOffset + HEAD_SIZE;
        for (CResourceNode &child : node.m_children) {
            if (!ReadEntry(child, nEntry, nLevel))
                return false;
            nEntry += ENTRY_SIZE;
        }
        return true;
    }

private:
    bool ReadEntry(CResourceNode &node, size_t nEntry, int nLevel)
    {
        const DWORD nTarget = m_section.Dword(nEntry + 4);
        const bool bDirectory = (nTarget & HIGH_BIT) != 0;
        if (!ReadName(node.m_name, m_section.Dword(nEntry)) || bDirectory != (nLevel < LEVELS))
            return false;
        return bDirectory ? ReadDirectory(node, nTarget & ~HIGH_BIT, nLevel + 1)
                          : ReadData(node, nTarget);
    }

    bool ReadName(CResourceName &name, DWORD nName)
    {
        name.m_bText = (nName & HIGH_BIT) != 0;
        name.m_nId = name.m_bText ? 0 : nName;
        if (!name.m_bText)
            return nName <= 0xFFFF;
        const size_t nOffset = nName & ~HIGH_BIT;
        const size_t nLength = m_section.Word(nOffset);
        if (!m_section.Has(nOffset, 2 + nLength * 2) || nLength * 2 > m_nBytesLeft)
            return false;
        m_nBytesLeft -= nLength * 2;
        for (size_t i = 0; i < nLength; ++i)
            name.m_sText.Append(m_section.Word(nOffset + 2 + i * 2));
        return true;
    }

    bool ReadData(CResourceNode &node, size_t nOffset)
    {
        if (!m_section.Has(nOffset, HEAD_SIZE))
            return false;
        // Below the section's address it wraps to an offset that is far too large.
        const size_t nData = m_section.Dword(nOffset) - m_nAddress;
        const size_t nSize = m_section.Dword(nOffset + 4);
        if (!m_section.Has(nData, nSize) || nSize > m_nBytesLeft)
            return false;
        m_nBytesLeft -= nSize;
        node.m_data = PartOf(m_bytes, nData, nSize);
        node.m_nCodePage = m_section.Dword(nOffset + 8);
        node.m_nReserved = m_section.Dword(nOffset + 12);
        return true;
    }

    const CBlob &m_bytes;
    CByteView m_section;
    DWORD m_nAddress;
    size_t m_nEntriesLeft;
    size_t m_nBytesLeft;
};

// Named ones come first, then numbers as they grow.
CResourceNode &FindOrAdd(CResourceNode &parent, UINT nId)
{
    if (CResourceNode *const pNode = parent.Find(nId))
        return *pNode;
    CResourceNode node;
    node.m_name = nId;
    const auto place = std::find_if(parent.m_children.begin(), parent.m_children.end(),
                                    [nId](const CResourceNode &child) {
                                        return !child.m_name.m_bText && child.m_name.m_nId > nId;
                                    });
    return *parent.m_children.insert(place, node);
}

void RemoveBelow(CResourceNode &parent, const UINT *pPath, int nLevels)
{
    CResourceNode *const pNode = parent.Find(*pPath);
    if (!pNode)
        return;
    if (nLevels > 1)
        RemoveBelow(*pNode, pPath + 1, nLevels - 1);
    if (nLevels == 1 || pNode->m_children.empty())
        parent.m_children.erase(parent.m_children.begin() + (pNode - parent.m_children.data()));
}

}  // namespace

const CResourceNode *CResourceNode::Find(const CResourceName &name) const
{
    for (const CResourceNode &child : m_children) {
        if (child.m_name == name)
            return &child;
    }
    return nullptr;
}

CResourceNode *CResourceNode::Find(const CResourceName &name)
{
    return const_cast<CResourceNode *>(static_cast<const CResourceNode *>(this)->Find(name));
}

bool CResourceTree::Read(const CBlob &section, DWORD nAddress)
{
    m_root = CResourceNode();
    if (CTreeReader(section, nAddress).ReadDirectory(m_root, 0, 1))
        return true;
    m_root = CResourceNode();
    return false;
}

const CResourceNode *CResourceTree::Find(UINT nType, UINT nId) const
{
    const CResourceNode *const pType = m_root.Find(nType);
    const CResourceNode *const pName = pType ? pType->Find(nId) : nullptr;
    if (!pName || pName->m_children.empty())
        return nullptr;
    const CResourceNode *const pNeutral = pName->Find(LANG_NEUTRAL);
    return pNeutral ? pNeutral : &pName->m_children.front();
}

const CResourceNode *CResourceTree::Find(UINT nType, UINT nId, UINT nLanguage) const
{
    const CResourceNode *const pType = m_root.Find(nType);
    const CResourceNode *const pName = pType ? pType->Find(nId) : nullptr;
    return pName ? pName->Find(nLanguage) : nullptr;
}

void CResourceTree::Set(UINT nType, UINT nId, UINT nLanguage, const CBlob &data)
{
    FindOrAdd(FindOrAdd(FindOrAdd(m_root, nType), nId), nLanguage).m_data = data;
}

void CResourceTree::Remove(UINT nType, UINT nId, UINT nLanguage)
{
    const UINT path[LEVELS] = {nType, nId, nLanguage};
    RemoveBelow(m_root, path, LEVELS);
}

void CResourceTree::RemoveAll(UINT nType, UINT nId)
{
    const UINT path[] = {nType, nId};
    RemoveBelow(m_root, path, 2);
}
