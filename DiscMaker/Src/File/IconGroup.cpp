// An .ico file and a group have the same list, but for where the picture is: the file says its
// offset, in four bytes, the group its resource, in two.

#include "File/IconGroup.h"

#include "Model/Blob.h"

namespace {

const size_t HEAD_SIZE = 6;
const size_t FILE_ENTRY_SIZE = 16;
const size_t GROUP_ENTRY_SIZE = 14;
const size_t PLANE_COUNT = 4;
const size_t BIT_COUNT = 6;
const size_t BYTES = 8;
const size_t PICTURE = 12;
const UINT LAST_ID = 0xFFFF;
const size_t MOST_PICTURES = 1024;

UINT RtIcon()
{
    return LOWORD(RT_ICON);
}
UINT RtGroup()
{
    return LOWORD(RT_GROUP_ICON);
}

bool IsIconList(const CByteView &list, size_t nEntrySize)
{
    const size_t nCount = list.Word(4);
    return list.Word(0) == 0 && list.Word(2) == 1 && nCount > 0 && nCount <= MOST_PICTURES &&
           list.Has(HEAD_SIZE, nCount * nEntrySize);
}

size_t EntryAt(size_t nIndex, size_t nEntrySize)
{
    return HEAD_SIZE + nIndex * nEntrySize;
}

CByteView FilePicture(const CByteView &file, size_t nIndex)
{
    const CByteView entry = file.From(EntryAt(nIndex, FILE_ENTRY_SIZE));
    return file.Part(entry.Dword(PICTURE), entry.Dword(BYTES));
}

// Files may leave these at 0; a group says them.
UINT PlanesOf(const CByteView &entry)
{
    return entry.Word(PLANE_COUNT) ? entry.Word(PLANE_COUNT) : 1;
}

UINT BitsOf(const CByteView &entry)
{
    if (entry.Word(BIT_COUNT) != 0)
        return entry.Word(BIT_COUNT);
    UINT nBits = 0;
    while (1U << nBits < entry.Byte(2))
        ++nBits;
    return nBits;
}

bool IsSameView(const CByteView &a, const CByteView &b)
{
    return a.Size() == b.Size() && memcmp(a.Data(), b.Data(), a.Size()) == 0;
}

bool IsSamePicture(const CByteView &a, const CByteView &b, size_t nIndex)
{
    const CByteView left = a.From(EntryAt(nIndex, FILE_ENTRY_SIZE)),
                    right = b.From(EntryAt(nIndex, FILE_ENTRY_SIZE));
    return IsSameView(left.Part(0, PLANE_COUNT), right.Part(0, PLANE_COUNT)) &&
           PlanesOf(left) == PlanesOf(right) && BitsOf(left) == BitsOf(right) &&
           IsSameView(FilePicture(a, nIndex), FilePicture(b, nIndex));
}

// The numbers of the pictures that a group has now.
std::vector<UINT> PicturesOf(const CResourceNode *pGroup)
{
    std::vector<UINT> ids;
    const CByteView list = pGroup ? CByteView(*pGroup->m_data) : CByteView();
    if (IsIconList(list, GROUP_ENTRY_SIZE)) {
        for (size_t i = 0; i < list.Word(4); ++i)
            ids.push_back(list.Word(EntryAt(i, GROUP_ENTRY_SIZE) + PICTURE));
    }
    return ids;
}

// Whether another group has the picture too.
bool IsUsedElsewhere(const CResourceTree &tree, const CResourceNode *pGroup, UINT nPicture)
{
    const CResourceNode *const pGroups = tree.Root().Find(RtGroup());
    for (const CResourceNode &name : pGroups->m_children) {
        for (const CResourceNode &other : name.m_children) {
            if (&other == pGroup || !other.m_data)
                continue;
            for (const UINT nId : PicturesOf(&other)) {
                if (nId == nPicture)
                    return true;
            }
        }
    }
    return false;
}

// Takes the group's own pictures out of the tree; their numbers are free then.
std::vector<UINT> RemovePictures(CResourceTree &tree, const CResourceNode *pGroup)
{
    std::vector<UINT> freed;
    for (const UINT nId : PicturesOf(pGroup)) {
        if (IsUsedElsewhere(tree, pGroup, nId))
            continue;
        // A damaged list may name it twice.
        if (!tree.Find(RtIcon(), nId))
            continue;
        tree.RemoveAll(RtIcon(), nId);
        freed.push_back(nId);
    }
    return freed;
}

// A number that no picture has: one of those freed, in their order, or else the lowest.
UINT NextId(const CResourceTree &tree, const std::vector<UINT> &freed, size_t &nUsed)
{
    if (nUsed < freed.size())
        return freed[nUsed++];
    UINT nId = 1;
    while (nId < LAST_ID && tree.Find(RtIcon(), nId))
        ++nId;
    return nId;
}

}  // namespace

bool ReadIcon(const CResourceTree &tree, UINT nIcon, CBlob &icon)
{
    icon = nullptr;
    const CResourceNode *const pGroup = tree.Find(RtGroup(), nIcon);
    if (!pGroup)
        return true;
    const CByteView group(*pGroup->m_data);
    if (!IsIconList(group, GROUP_ENTRY_SIZE))
        return false;
    const size_t nCount = group.Word(4);
    std::vector<BYTE> file(HEAD_SIZE + nCount * FILE_ENTRY_SIZE);
    memcpy(file.data(), group.Data(), HEAD_SIZE);
    for (size_t i = 0; i < nCount; ++i) {
        const size_t nEntry = EntryAt(i, GROUP_ENTRY_SIZE);
        const CResourceNode *const pPicture = tree.Find(RtIcon(), group.Word(nEntry + PICTURE));
        // Bounded: a damaged list may name one large picture again and again.
        if (!pPicture || file.size() > 0x4000000)
            return false;
        const size_t nFileEntry = EntryAt(i, FILE_ENTRY_SIZE);
        memcpy(file.data() + nFileEntry, group.Data() + nEntry, BYTES);
        PutDword(file, nFileEntry + BYTES, static_cast<DWORD>(pPicture->m_data->size()));
        PutDword(file, nFileEntry + PICTURE, static_cast<DWORD>(file.size()));
        Append(file, CByteView(*pPicture->m_data));
    }
    icon = MakeBlob(file);
    return true;
}

bool IsIconFile(const CByteView &file)
{
    if (!IsIconList(file, FILE_ENTRY_SIZE))
        return false;
    for (size_t i = 0; i < file.Word(4); ++i) {
        const CByteView entry = file.From(EntryAt(i, FILE_ENTRY_SIZE));
        if (entry.Dword(BYTES) == 0 || !file.Has(entry.Dword(PICTURE), entry.Dword(BYTES)))
            return false;
    }
    return true;
}

bool IsSameIcon(const CBlob &a, const CBlob &b)
{
    if (!a || !b)
        return !a == !b;
    const CByteView left(*a), right(*b);
    if (!IsIconFile(left) || !IsIconFile(right) || left.Word(4) != right.Word(4))
        return false;
    for (size_t i = 0; i < left.Word(4); ++i) {
        if (!IsSamePicture(left, right, i))
            return false;
    }
    return true;
}

bool WriteIcon(CResourceTree &tree, UINT nIcon, UINT nLanguage, const CBlob &icon)
{
    if (icon && !IsIconFile(CByteView(*icon)))
        return false;
    const CResourceNode *const pGroup = tree.Find(RtGroup(), nIcon);
    if (pGroup)
        nLanguage = pGroup->m_name.m_nId;
    const std::vector<UINT> freed = RemovePictures(tree, pGroup);
    if (!icon) {
        tree.Remove(RtGroup(), nIcon, nLanguage);
        return true;
    }
    const CByteView file(*icon);
    std::vector<BYTE> group = file.Part(0, HEAD_SIZE).Copy();
    size_t nUsed = 0;
    for (size_t i = 0; i < file.Word(4); ++i) {
        const CByteView entry = file.From(EntryAt(i, FILE_ENTRY_SIZE));
        const UINT nId = NextId(tree, freed, nUsed);
        Append(group, entry.Part(0, PLANE_COUNT));
        AppendWord(group, PlanesOf(entry));
        AppendWord(group, BitsOf(entry));
        AppendDword(group, entry.Dword(BYTES));
        AppendWord(group, nId);
        tree.Set(RtIcon(), nId, nLanguage, MakeBlob(FilePicture(file, i).Copy()));
    }
    tree.Set(RtGroup(), nIcon, nLanguage, MakeBlob(group));
    return true;
}
