#pragma once

#include "File/ByteView.h"
#include "Model/Skin.h"

// The name of a resource or of its kind: a number or a text.
struct CResourceName
{
    CResourceName(UINT nId = 0) : m_nId(nId), m_bText(false) {}

    bool operator==(const CResourceName &other) const
    {
        return m_bText == other.m_bText &&
               (m_bText ? m_sText == other.m_sText : m_nId == other.m_nId);
    }

    UINT m_nId;
    bool m_bText;
    CWideText m_sText;
};

// A directory of the resource tree or, below three of them, a resource.
struct CResourceNode
{
    CResourceName m_name;
    std::vector<CResourceNode> m_children;  // in the file's order
    // What a directory's head has beside them; the launcher's are all 0.
    DWORD m_nCharacteristics = 0;
    DWORD m_nTimeStamp = 0;
    DWORD m_nVersion = 0;
    // What a resource has.
    CBlob m_data;
    DWORD m_nCodePage = 0;
    DWORD m_nReserved = 0;

    const CResourceNode *Find(const CResourceName &name) const;
    CResourceNode *Find(const CResourceName &name);
};

// All resources of a program: kind, name, language.
class CResourceTree
{
public:
    // Reads the resource section, which stands at an address in the program. False when it is cut
    // or damaged: nothing is kept then. What points in circles or at the same bytes again and again
    // is damaged. The resources are parts of the section's bytes.
    bool Read(const CBlob &section, DWORD nAddress);
    // The size of the section that has these.
    size_t Size() const;
    // Appends that section, which is to stand at an address in the program. The layout is that of
    // windres: a launcher that it made comes out as it was.
    void AppendTo(std::vector<BYTE> &bytes, DWORD nAddress) const;

    const CResourceNode &Root() const { return m_root; }
    // Null when there is none. Of several languages, the neutral one or else the first.
    const CResourceNode *Find(UINT nType, UINT nId) const;
    const CResourceNode *Find(UINT nType, UINT nId, UINT nLanguage) const;
    // Replaces the data of one that is there, or adds it where it belongs.
    void Set(UINT nType, UINT nId, UINT nLanguage, const CBlob &data);
    // Takes it away, and directories that are empty then.
    void Remove(UINT nType, UINT nId, UINT nLanguage);
    // The same in all languages.
    void RemoveAll(UINT nType, UINT nId);

private:
    CResourceNode m_root;
};
