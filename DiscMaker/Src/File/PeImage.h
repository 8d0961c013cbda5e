#pragma once

#include "CU/String.h"
#include "File/ByteView.h"
#include "File/ResourceTree.h"

// A 32-bit program as its file: headers, sections, and what stands behind them.
class CPeImage
{
public:
    // False when the bytes are no whole 32-bit program with resources; sWhat says what they are.
    bool Read(const CBlob &bytes, CCUString &sWhat);

    const CBytes &Bytes() const { return *m_bytes; }
    // From the root directory on to the end of its section in the file, and its address.
    CBlob Resources() const;
    DWORD ResourcesAddress() const;
    // Whether the file is signed: it is no more when the resources are other ones.
    bool IsSigned() const { return Directory(IMAGE_DIRECTORY_ENTRY_SECURITY).m_nSize != 0; }

    // The same program with other resources; empty when its headers have no room for that. They
    // stand where they stood. When they need more room there, the relocations behind them move, the
    // one section that may: nothing in the program holds its address. If another one is in the way,
    // they go to a new section at the end. All other sections keep their bytes and addresses, and
    // what stands behind the sections is kept, but for the signature.
    std::vector<BYTE> WithResources(const CResourceTree &resources) const;

private:
    struct CSection
    {
        size_t m_nHeader;  // offset of its header in the file
        DWORD m_nVirtualSize;
        DWORD m_nAddress;
        DWORD m_nFileSize;
        DWORD m_nFileOffset;

        bool HasAddress(DWORD nAddress) const;
    };
    struct CDirectory
    {
        DWORD m_nAddress;
        DWORD m_nSize;
    };
    class CWriter;

    CByteView File() const { return CByteView(*m_bytes); }
    bool ReadSections(CCUString &sWhat);
    bool ReadSection(CSection &section, size_t nHeader, size_t nSections) const;
    CDirectory Directory(UINT nIndex) const;
    bool HoldsOnly(const CSection &section, UINT nDirectory) const;
    bool IsPlaceFree(size_t nOffset, size_t nSize) const;

    CBlob m_bytes;
    size_t m_nHeader = 0;  // of IMAGE_NT_HEADERS32
    size_t m_nSectionTable = 0;
    DWORD m_nDirectories = 0;
    DWORD m_nSectionAlignment = 0;
    DWORD m_nFileAlignment = 0;
    std::vector<CSection> m_sections;  // by address
    size_t m_nResources = 0;           // index of the section that has them
};
