#include "File/PeImage.h"

#include <stddef.h>
#include <string.h>

namespace {

const size_t SECTION_HEADER_SIZE = sizeof(IMAGE_SECTION_HEADER);
const size_t OPTIONAL_HEADER = offsetof(IMAGE_NT_HEADERS32, OptionalHeader);
const size_t FIRST_DIRECTORY = offsetof(IMAGE_NT_HEADERS32, OptionalHeader.DataDirectory);
const DWORD ADDRESS_LIMIT = 0x7FFF0000;

size_t HeaderField(size_t nHeader, size_t nField)
{
    return nHeader + OPTIONAL_HEADER + nField;
}
#define FIELD(name) HeaderField(m_nHeader, offsetof(IMAGE_OPTIONAL_HEADER32, name))

bool IsPowerOfTwo(DWORD nValue)
{
    return nValue != 0 && (nValue & (nValue - 1)) == 0;
}

// What a file is that is no 32-bit program; empty if it may be one.
const char *ForeignKind(const CByteView &file)
{
    if (file.Size() == 0)
        return "The file is empty.";
    if (file.Word(0) != IMAGE_DOS_SIGNATURE)
        return "This is not a program.";
    const size_t nHeader = file.Dword(offsetof(IMAGE_DOS_HEADER, e_lfanew));
    if (file.Word(nHeader) == IMAGE_OS2_SIGNATURE)
        return "This is a program for 16-bit Windows.";
    if (!file.Has(nHeader, FIRST_DIRECTORY))
        return "This is a program for DOS, or its file is cut off.";
    if (file.Dword(nHeader) != IMAGE_NT_SIGNATURE)
        return "This is a program for DOS.";
    if (file.Word(nHeader + OPTIONAL_HEADER) == IMAGE_NT_OPTIONAL_HDR64_MAGIC)
        return "This is a program for 64-bit Windows.";
    if (file.Word(nHeader + 4) != IMAGE_FILE_MACHINE_I386 ||
        file.Word(nHeader + OPTIONAL_HEADER) != IMAGE_NT_OPTIONAL_HDR32_MAGIC)
        return "This is a program for another kind of computer.";
    return "";
}

// The sum that the system keeps in the header of drivers, and linkers in that of all programs: of
// all words with the carries added in, and the file's size. The sum's own place is 0 meanwhile.
DWORD CheckSum(const std::vector<BYTE> &file)
{
    // Two words at a time: their carries come to the same in the end.
    ULONGLONG nSum = 0;
    const size_t nWhole = file.size() / sizeof(DWORD) * sizeof(DWORD);
    for (size_t i = 0; i < nWhole; i += sizeof(DWORD)) {
        DWORD nWords;
        memcpy(&nWords, file.data() + i, sizeof nWords);
        nSum += nWords;
    }
    nSum += CByteView(file).Dword(nWhole);
    while (nSum > 0xFFFF)
        nSum = (nSum & 0xFFFF) + (nSum >> 16);
    return static_cast<DWORD>(nSum + file.size());
}

}  // namespace

bool CPeImage::CSection::HasAddress(DWORD nAddress) const
{
    const DWORD nSize = m_nVirtualSize > m_nFileSize ? m_nVirtualSize : m_nFileSize;
    return nAddress - m_nAddress < nSize;
}

bool CPeImage::Read(const CBlob &bytes, CCUString &sWhat)
{
    const CByteView file(*bytes);
    sWhat = ForeignKind(file);
    if (!sWhat.IsEmpty())
        return false;
    m_bytes = bytes;
    m_nHeader = file.Dword(offsetof(IMAGE_DOS_HEADER, e_lfanew));
    m_nSectionAlignment = file.Dword(FIELD(SectionAlignment));
    m_nFileAlignment = file.Dword(FIELD(FileAlignment));
    m_nDirectories = file.Dword(FIELD(NumberOfRvaAndSizes));
    m_nSectionTable =
        m_nHeader + OPTIONAL_HEADER +
        file.Word(m_nHeader + offsetof(IMAGE_NT_HEADERS32, FileHeader.SizeOfOptionalHeader));
    if (!IsPowerOfTwo(m_nSectionAlignment) || !IsPowerOfTwo(m_nFileAlignment) ||
        m_nSectionAlignment > 0x100000 || m_nFileAlignment > m_nSectionAlignment ||
        m_nDirectories > IMAGE_NUMBEROF_DIRECTORY_ENTRIES ||
        m_nSectionTable < m_nHeader + FIRST_DIRECTORY + m_nDirectories * sizeof(CDirectory))
    {
        sWhat = "The program's header is damaged.";
        return false;
    }
    return ReadSections(sWhat);
}

bool CPeImage::ReadSections(CCUString &sWhat)
{
    const CByteView file = File();
    const size_t nCount =
        file.Word(m_nHeader + offsetof(IMAGE_NT_HEADERS32, FileHeader.NumberOfSections));
    if (!file.Has(m_nSectionTable, nCount * SECTION_HEADER_SIZE)) {
        sWhat = "The program's file is cut off.";
        return false;
    }
    m_sections.clear();
    m_nResources = nCount;
    const CDirectory resources = Directory(IMAGE_DIRECTORY_ENTRY_RESOURCE);
    DWORD nFreeAddress = 0;
    for (size_t i = 0; i < nCount; ++i) {
        CSection section;
        if (!ReadSection(section, m_nSectionTable + i * SECTION_HEADER_SIZE, nCount) ||
            section.m_nAddress < nFreeAddress)
        {
            sWhat = "The program's file is cut off or damaged.";
            return false;
        }
        nFreeAddress = section.m_nAddress + section.m_nVirtualSize;
        if (resources.m_nAddress != 0 && section.HasAddress(resources.m_nAddress) &&
            resources.m_nAddress - section.m_nAddress < section.m_nFileSize)
            m_nResources = i;
        m_sections.push_back(section);
    }
    if (m_nResources == nCount)
        sWhat = "This program has no pictures and texts.";
    return m_nResources < nCount;
}

bool CPeImage::ReadSection(CSection &section, size_t nHeader, size_t nSections) const
{
    const CByteView header = File().From(nHeader);
    section.m_nHeader = nHeader;
    section.m_nVirtualSize = header.Dword(offsetof(IMAGE_SECTION_HEADER, Misc));
    section.m_nAddress = header.Dword(offsetof(IMAGE_SECTION_HEADER, VirtualAddress));
    section.m_nFileSize = header.Dword(offsetof(IMAGE_SECTION_HEADER, SizeOfRawData));
    section.m_nFileOffset = header.Dword(offsetof(IMAGE_SECTION_HEADER, PointerToRawData));
    if (section.m_nVirtualSize == 0)
        section.m_nVirtualSize = section.m_nFileSize;
    const size_t nHeadersEnd = m_nSectionTable + nSections * SECTION_HEADER_SIZE;
    return section.m_nAddress < ADDRESS_LIMIT &&
           section.m_nVirtualSize < ADDRESS_LIMIT - section.m_nAddress &&
           (section.m_nFileSize == 0 || (section.m_nFileOffset >= nHeadersEnd &&
                                         File().Has(section.m_nFileOffset, section.m_nFileSize)));
}

CPeImage::CDirectory CPeImage::Directory(UINT nIndex) const
{
    if (nIndex >= m_nDirectories)
        return CDirectory();
    const CByteView entry = File().From(m_nHeader + FIRST_DIRECTORY + nIndex * sizeof(CDirectory));
    return CDirectory{entry.Dword(0), entry.Dword(4)};
}

CBlob CPeImage::Resources() const
{
    const CSection &section = m_sections[m_nResources];
    const DWORD nInside = ResourcesAddress() - section.m_nAddress;
    return PartOf(m_bytes, section.m_nFileOffset + nInside, section.m_nFileSize - nInside);
}

DWORD CPeImage::ResourcesAddress() const
{
    return Directory(IMAGE_DIRECTORY_ENTRY_RESOURCE).m_nAddress;
}

// Whether a section has one table of the program's and nothing else that anything points to.
bool CPeImage::HoldsOnly(const CSection &section, UINT nDirectory) const
{
    const CByteView file = File();
    if (Directory(nDirectory).m_nAddress != section.m_nAddress ||
        section.HasAddress(file.Dword(FIELD(AddressOfEntryPoint))))
        return false;
    for (UINT i = 0; i < m_nDirectories; ++i) {
        // The signature's place is one in the file.
        if (i != nDirectory && i != IMAGE_DIRECTORY_ENTRY_SECURITY && Directory(i).m_nSize != 0 &&
            section.HasAddress(Directory(i).m_nAddress))
            return false;
    }
    return true;
}

bool CPeImage::IsPlaceFree(size_t nOffset, size_t nSize) const
{
    const CByteView file = File();
    if (nOffset + nSize > file.Dword(FIELD(SizeOfHeaders)) || !file.Has(nOffset, nSize))
        return false;
    for (const CSection &section : m_sections) {
        if (section.m_nFileSize != 0 && section.m_nFileOffset < nOffset + nSize)
            return false;
    }
    for (size_t i = nOffset; i < nOffset + nSize; ++i) {
        if (file.Byte(i) != 0)
            return false;
    }
    return true;
}

// Makes the new file, header by header.
class CPeImage::CWriter
{
public:
    CWriter(const CPeImage &image, const CResourceTree &resources)
        : m_image(image),
          m_sections(image.m_sections),
          m_nSection(image.m_nResources),
          m_nHeader(image.m_nHeader),
          m_nSize(static_cast<DWORD>(resources.Size())),
          m_nFileSize(static_cast<DWORD>(AlignUp(m_nSize, image.m_nFileAlignment))),
          m_nShiftFrom(0),
          m_nShift(0)
    {
        if (m_nSize > ADDRESS_LIMIT / 2 || !(FitsInPlace() || AddSection()))
            return;
        ReplaceBytes(resources);
        DropSignature();
        MoveFilePlaces();
        WriteHeaders();
        MoveDebugData();
        WriteCheckSum();
    }
    std::vector<BYTE> m_bytes;

private:
    DWORD EndAddress(const CSection &section) const
    {
        return static_cast<DWORD>(
            AlignUp(section.m_nAddress + section.m_nVirtualSize, m_image.m_nSectionAlignment));
    }

    bool FitsInPlace()
    {
        CSection &section = m_sections[m_nSection];
        if (!m_image.HoldsOnly(section, IMAGE_DIRECTORY_ENTRY_RESOURCE) || IsShared(section))
            return false;
        section.m_nVirtualSize = m_nSize;
        const DWORD nEnd = EndAddress(section);
        if (nEnd >= ADDRESS_LIMIT)
            return false;
        m_nShiftFrom = section.m_nFileOffset + section.m_nFileSize;
        m_nShift = m_nFileSize - section.m_nFileSize;
        section.m_nFileSize = m_nFileSize;
        const size_t nNext = m_nSection + 1;
        if (nNext + 1 == m_sections.size() &&
            m_image.HoldsOnly(m_sections[nNext], IMAGE_DIRECTORY_ENTRY_BASERELOC))
        {
            // They move back too, when there is less: the same skin always makes the same file.
            m_sections[nNext].m_nAddress = nEnd;
            return m_sections[nNext].m_nVirtualSize < ADDRESS_LIMIT - nEnd;
        }
        return nNext == m_sections.size() || nEnd <= m_sections[nNext].m_nAddress;
    }

    // Whether another section has some of the same bytes of the file.
    bool IsShared(const CSection &section) const
    {
        for (const CSection &other : m_sections) {
            if (&other != &section && other.m_nFileSize != 0 &&
                other.m_nFileOffset < section.m_nFileOffset + section.m_nFileSize &&
                section.m_nFileOffset < other.m_nFileOffset + other.m_nFileSize)
                return true;
        }
        return false;
    }

    bool AddSection()
    {
        m_sections = m_image.m_sections;
        m_nShiftFrom = FileEnd();
        CSection section = {};
        section.m_nHeader =
            m_image.m_nSectionTable + m_image.m_sections.size() * SECTION_HEADER_SIZE;
        section.m_nAddress = EndAddress(m_sections.back());
        section.m_nVirtualSize = m_nSize;
        section.m_nFileSize = m_nFileSize;
        section.m_nFileOffset = static_cast<DWORD>(AlignUp(m_nShiftFrom, m_image.m_nFileAlignment));
        m_nShift = section.m_nFileOffset - m_nShiftFrom + m_nFileSize;
        m_nSection = m_sections.size();
        m_sections.push_back(section);
        return m_image.IsPlaceFree(section.m_nHeader, SECTION_HEADER_SIZE) &&
               section.m_nAddress < ADDRESS_LIMIT - m_nSize;
    }

    // Where the last section ends in the file as it was.
    DWORD FileEnd() const
    {
        DWORD nEnd = 0;
        for (const CSection &section : m_image.m_sections) {
            if (section.m_nFileSize != 0 && section.m_nFileOffset + section.m_nFileSize > nEnd)
                nEnd = section.m_nFileOffset + section.m_nFileSize;
        }
        return nEnd;
    }

    // It holds for the bytes as they were, and stands at the end of the file.
    void DropSignature()
    {
        const CDirectory signature = m_image.Directory(IMAGE_DIRECTORY_ENTRY_SECURITY);
        if (signature.m_nSize == 0)
            return;
        if (signature.m_nAddress >= FileEnd() &&
            m_image.File().Has(signature.m_nAddress, signature.m_nSize))
        {
            const auto start =
                m_bytes.begin() + static_cast<ptrdiff_t>(signature.m_nAddress + m_nShift);
            m_bytes.erase(start, start + static_cast<ptrdiff_t>(signature.m_nSize));
        }
        PutDirectory(IMAGE_DIRECTORY_ENTRY_SECURITY, 0, 0);
    }

    void ReplaceBytes(const CResourceTree &resources)
    {
        const CSection &section = m_sections[m_nSection];
        const DWORD nStart = section.m_nFileOffset;
        m_bytes.reserve(m_image.Bytes().size() + m_nShift);
        Append(m_bytes, m_image.File().Part(0, nStart < m_nShiftFrom ? nStart : m_nShiftFrom));
        m_bytes.resize(nStart);
        resources.AppendTo(m_bytes, section.m_nAddress);
        m_bytes.resize(nStart + m_nFileSize);
        Append(m_bytes, m_image.File().From(m_nShiftFrom));
    }

    // All places in the file behind the resources.
    void MoveFilePlaces()
    {
        for (size_t i = 0; i < m_sections.size(); ++i) {
            if (i == m_nSection)
                continue;
            Move(m_sections[i].m_nHeader + offsetof(IMAGE_SECTION_HEADER, PointerToRelocations));
            Move(m_sections[i].m_nHeader + offsetof(IMAGE_SECTION_HEADER, PointerToLinenumbers));
            if (m_sections[i].m_nFileSize != 0 && m_sections[i].m_nFileOffset >= m_nShiftFrom)
                m_sections[i].m_nFileOffset += m_nShift;
        }
        Move(m_nHeader + offsetof(IMAGE_NT_HEADERS32, FileHeader.PointerToSymbolTable));
    }

    void Move(size_t nField)
    {
        const DWORD nPlace = CByteView(m_bytes).Dword(nField);
        if (nPlace != 0 && nPlace >= m_nShiftFrom)
            PutDword(m_bytes, nField, nPlace + m_nShift);
    }

    void PutDirectory(UINT nIndex, DWORD nAddress, DWORD nSize)
    {
        const size_t nEntry = m_nHeader + FIRST_DIRECTORY + nIndex * sizeof(CDirectory);
        PutDword(m_bytes, nEntry, nAddress);
        PutDword(m_bytes, nEntry + 4, nSize);
    }

    void WriteHeaders()
    {
        const CSection &resources = m_sections[m_nSection];
        DWORD nGrowth = m_nFileSize;
        if (m_nSection < m_image.m_sections.size())
            nGrowth -= m_image.m_sections[m_nSection].m_nFileSize;
        else
            StartSection(resources);
        for (size_t i = 0; i < m_sections.size(); ++i)
            WriteSection(m_sections[i], i == m_nSection);
        PutDirectory(IMAGE_DIRECTORY_ENTRY_RESOURCE, resources.m_nAddress, m_nSize);
        const size_t nLast = m_image.m_sections.size() - 1;
        if (m_sections[nLast].m_nAddress != m_image.m_sections[nLast].m_nAddress)
            PutDirectory(IMAGE_DIRECTORY_ENTRY_BASERELOC, m_sections[nLast].m_nAddress,
                         m_image.Directory(IMAGE_DIRECTORY_ENTRY_BASERELOC).m_nSize);
        PutDword(m_bytes, FIELD(SizeOfImage), EndAddress(m_sections.back()));
        const size_t nData = FIELD(SizeOfInitializedData);
        PutDword(m_bytes, nData, CByteView(m_bytes).Dword(nData) + nGrowth);
    }

    void StartSection(const CSection &section)
    {
        memcpy(m_bytes.data() + section.m_nHeader, ".rsrc\0\0", IMAGE_SIZEOF_SHORT_NAME);
        PutDword(m_bytes, section.m_nHeader + offsetof(IMAGE_SECTION_HEADER, Characteristics),
                 IMAGE_SCN_CNT_INITIALIZED_DATA | IMAGE_SCN_MEM_READ);
        PutWord(m_bytes, m_nHeader + offsetof(IMAGE_NT_HEADERS32, FileHeader.NumberOfSections),
                static_cast<UINT>(m_sections.size()));
    }

    void WriteSection(const CSection &section, bool bResources)
    {
        const size_t nHeader = section.m_nHeader;
        if (bResources)
            PutDword(m_bytes, nHeader + offsetof(IMAGE_SECTION_HEADER, Misc), m_nSize);
        PutDword(m_bytes, nHeader + offsetof(IMAGE_SECTION_HEADER, VirtualAddress),
                 section.m_nAddress);
        PutDword(m_bytes, nHeader + offsetof(IMAGE_SECTION_HEADER, SizeOfRawData),
                 section.m_nFileSize);
        PutDword(m_bytes, nHeader + offsetof(IMAGE_SECTION_HEADER, PointerToRawData),
                 section.m_nFileOffset);
    }

    // Debug information may stand behind the sections; its directory knows where.
    void MoveDebugData()
    {
        const CDirectory debug = m_image.Directory(IMAGE_DIRECTORY_ENTRY_DEBUG);
        for (const CSection &section : m_sections) {
            const size_t nInside = debug.m_nAddress - section.m_nAddress;
            if (!section.HasAddress(debug.m_nAddress) || nInside > section.m_nFileSize)
                continue;
            size_t nCount = section.m_nFileSize - nInside < debug.m_nSize
                                ? section.m_nFileSize - nInside
                                : debug.m_nSize;
            nCount /= sizeof(IMAGE_DEBUG_DIRECTORY);
            for (size_t i = 0; i < nCount; ++i)
                Move(section.m_nFileOffset + nInside + i * sizeof(IMAGE_DEBUG_DIRECTORY) +
                     offsetof(IMAGE_DEBUG_DIRECTORY, PointerToRawData));
        }
    }

    void WriteCheckSum()
    {
        const size_t nField = FIELD(CheckSum);
        if (CByteView(m_bytes).Dword(nField) == 0)
            return;
        PutDword(m_bytes, nField, 0);
        PutDword(m_bytes, nField, CheckSum(m_bytes));
    }

    const CPeImage &m_image;
    std::vector<CSection> m_sections;
    size_t m_nSection;
    size_t m_nHeader;
    DWORD m_nSize;
    DWORD m_nFileSize;
    DWORD m_nShiftFrom;  // what stands from here on in the file ...
    DWORD m_nShift;      // ... goes so much further back (or forward: it wraps)
};

std::vector<BYTE> CPeImage::WithResources(const CResourceTree &resources) const
{
    return CWriter(*this, resources).m_bytes;
}
