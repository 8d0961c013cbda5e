// The resource tree as bytes: all directories, each before those below it; then one record for each
// resource, the names, and the data, at multiples of 8.

#include "File/ResourceTree.h"

namespace {

const size_t DATA_ALIGNMENT = 8;
const size_t HEAD_SIZE = 16;
const size_t ENTRY_SIZE = 8;
const size_t RECORD_SIZE = 16;
const DWORD HIGH_BIT = 0x80000000;

// Where the next of each part goes.
struct CParts
{
    size_t m_nDirectory = 0;
    size_t m_nRecord = 0;
    size_t m_nName = 0;
    size_t m_nData = 0;
};

bool IsResource(const CResourceNode &node)
{
    return node.m_data != nullptr;
}

// How much each part needs.
void Measure(const CResourceNode &node, CParts &sizes)
{
    if (node.m_name.m_bText)
        sizes.m_nName += 2 + node.m_name.m_sText.Length() * 2;
    if (IsResource(node)) {
        sizes.m_nRecord += RECORD_SIZE;
        sizes.m_nData = AlignUp(sizes.m_nData, DATA_ALIGNMENT) + node.m_data->size();
        return;
    }
    sizes.m_nDirectory += HEAD_SIZE + node.m_children.size() * ENTRY_SIZE;
    for (const CResourceNode &child : node.m_children)
        Measure(child, sizes);
}

// Where each part begins; the data come last.
CParts StartsOf(const CParts &sizes)
{
    CParts starts;
    starts.m_nRecord = sizes.m_nDirectory;
    starts.m_nName = starts.m_nRecord + sizes.m_nRecord;
    starts.m_nData = AlignUp(starts.m_nName + sizes.m_nName, DATA_ALIGNMENT);
    return starts;
}

class CTreeWriter
{
public:
    CTreeWriter(const CResourceNode &root, DWORD nAddress, std::vector<BYTE> &bytes)
        : m_bytes(bytes), m_nStart(bytes.size()), m_nAddress(nAddress)
    {
        CParts sizes;
        Measure(root, sizes);
        m_next = StartsOf(sizes);
        m_bytes.resize(m_nStart + m_next.m_nData + sizes.m_nData);
        WriteDirectory(root);
    }

private:
    void PutDword(size_t nOffset, DWORD nValue) { ::PutDword(m_bytes, m_nStart + nOffset, nValue); }
    void PutWord(size_t nOffset, UINT nValue) { ::PutWord(m_bytes, m_nStart + nOffset, nValue); }

    size_t WriteDirectory(const CResourceNode &node)
    {
        const size_t nStart = m_next.m_nDirectory;
        m_next.m_nDirectory += HEAD_SIZE + node.m_children.size() * ENTRY_SIZE;
        UINT nNamed = 0;
        size_t nEntry = nStart + HEAD_SIZE;
        for (const CResourceNode &child : node.m_children) {
            nNamed += child.m_name.m_bText ? 1 : 0;
            WriteEntry(child, nEntry);
            nEntry += ENTRY_SIZE;
        }
        PutDword(nStart, node.m_nCharacteristics);
        PutDword(nStart + 4, node.m_nTimeStamp);
        PutDword(nStart + 8, node.m_nVersion);
        PutWord(nStart + 12, nNamed);
        PutWord(nStart + 14, static_cast<UINT>(node.m_children.size()) - nNamed);
        return nStart;
    }

    void WriteEntry(const CResourceNode &node, size_t nEntry)
    {
        PutDword(nEntry, node.m_name.m_bText ? HIGH_BIT | WriteName(node.m_name.m_sText)
                                             : node.m_name.m_nId);
        const size_t nTarget =
            IsResource(node) ? WriteRecord(node) : HIGH_BIT | WriteDirectory(node);
        PutDword(nEntry + 4, static_cast<DWORD>(nTarget));
    }

    DWORD WriteName(const CWideText &sText)
    {
        const size_t nStart = m_next.m_nName;
        PutWord(nStart, static_cast<UINT>(sText.Length()));
        for (size_t i = 0; i < sText.Length(); ++i)
            PutWord(nStart + 2 + i * 2, sText.Data()[i]);
        m_next.m_nName += 2 + sText.Length() * 2;
        return static_cast<DWORD>(nStart);
    }

    size_t WriteRecord(const CResourceNode &node)
    {
        const size_t nStart = m_next.m_nRecord;
        const CBytes &data = *node.m_data;
        m_next.m_nRecord += RECORD_SIZE;
        m_next.m_nData = AlignUp(m_next.m_nData, DATA_ALIGNMENT);
        PutDword(nStart, m_nAddress + static_cast<DWORD>(m_next.m_nData));
        PutDword(nStart + 4, static_cast<DWORD>(data.size()));
        PutDword(nStart + 8, node.m_nCodePage);
        PutDword(nStart + 12, node.m_nReserved);
        if (!data.empty())
            memcpy(m_bytes.data() + m_nStart + m_next.m_nData, data.data(), data.size());
        m_next.m_nData += data.size();
        return nStart;
    }

    std::vector<BYTE> &m_bytes;
    const size_t m_nStart;  // of the section, in the bytes
    const DWORD m_nAddress;
    CParts m_next;
};

}  // namespace

size_t CResourceTree::Size() const
{
    CParts sizes;
    Measure(m_root, sizes);
    return StartsOf(sizes).m_nData + sizes.m_nData;
}

void CResourceTree::AppendTo(std::vector<BYTE> &bytes, DWORD nAddress) const
{
    CTreeWriter(m_root, nAddress, bytes);
}
