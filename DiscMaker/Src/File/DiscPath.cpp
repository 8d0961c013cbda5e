#include "File/DiscPath.h"

#include <algorithm>

#include "CUI/Data.h"

namespace {

std::vector<WCHAR> ToWide(const CCUString &sText, UINT nCodePage)
{
    std::vector<WCHAR> text(static_cast<size_t>(sText.GetLength()) + 1);
    const int nRoom = static_cast<int>(text.size());
    const int nLength = MultiByteToWideChar(nCodePage, 0, sText, -1, text.data(), nRoom);
    text.resize(static_cast<size_t>(std::max(nLength, 1)));
    return text;
}

CCUString FromWide(const std::vector<WCHAR> &text, UINT nCodePage)
{
    const int nSize =
        WideCharToMultiByte(nCodePage, 0, text.data(), -1, nullptr, 0, nullptr, nullptr);
    CCUString sText;
    if (nSize > 1)
        WideCharToMultiByte(nCodePage, 0, text.data(), -1, sText.GetBufferSetLength(nSize - 1),
                            nSize, nullptr, nullptr);
    return sText;
}

// Empty when that cannot be done. Names of the code page are limited to 260 characters by some
// systems, and wide ones are none on Windows 95 to Me.
std::vector<WCHAR> FullPath(const CCUString &sPath)
{
    if (!CUIGetWinData()->bWinNT) {
        char szPath[MAX_PATH] = "";
        char *pszName = nullptr;
        const DWORD nLength = GetFullPathNameA(sPath, MAX_PATH, szPath, &pszName);
        return nLength < MAX_PATH && *szPath ? ToWide(szPath, CP_ACP) : std::vector<WCHAR>();
    }
    const std::vector<WCHAR> path = ToWide(sPath, CP_ACP);
    std::vector<WCHAR> full(MAX_PATH);
    DWORD nRoom = MAX_PATH;
    DWORD nLength = GetFullPathNameW(path.data(), nRoom, full.data(), nullptr);
    if (nLength >= nRoom) {
        nRoom = nLength;
        full.resize(nRoom);
        nLength = GetFullPathNameW(path.data(), nRoom, full.data(), nullptr);
    }
    full.resize(nLength > 0 && nLength < nRoom ? nLength + 1 : 0);
    return full;
}

}  // namespace

CDiscPath::CDiscPath(const CCUString &sPath) : m_text(1)
{
    std::vector<WCHAR> text = FullPath(sPath);
    if (sPath.IsEmpty() || text.empty())
        return;
    m_text.swap(text);
    // "C:\Disc\" and "C:\Disc" are the same; "C:\" stays.
    while (Length() > 3 && m_text[Length() - 1] == L'\\')
        m_text.erase(m_text.end() - 2);
}

CDiscPath::CDiscPath(const WCHAR *pszPath) : m_text(pszPath, pszPath + lstrlenW(pszPath) + 1) {}

CCUString CDiscPath::Text() const
{
    return FromWide(m_text, CP_ACP);
}

CCUString CDiscPath::Utf8() const
{
    return FromWide(m_text, CP_UTF8);
}

CDiscPath CDiscPath::Join(const WCHAR *pszName) const
{
    CDiscPath path = *this;
    path.m_text.pop_back();
    if (!path.m_text.empty() && path.m_text.back() != L'\\')
        path.m_text.push_back(L'\\');
    path.m_text.insert(path.m_text.end(), pszName, pszName + lstrlenW(pszName) + 1);
    return path;
}

CDiscPath CDiscPath::With(const char *pszSuffix) const
{
    CDiscPath path = *this;
    path.m_text.pop_back();
    for (const char *p = pszSuffix; *p; ++p)
        path.m_text.push_back(static_cast<BYTE>(*p));
    path.m_text.push_back(0);
    return path;
}

CDiscPath CDiscPath::Parent() const
{
    CDiscPath parent;
    const size_t nName = static_cast<size_t>(Name() - Wide());
    if (nName == 0 || nName == Length())
        return parent;
    // "C:\" keeps its backslash.
    const size_t nKept = nName > 3 ? nName - 1 : nName;
    parent.m_text.assign(m_text.begin(), m_text.begin() + static_cast<ptrdiff_t>(nKept));
    parent.m_text.push_back(0);
    return parent;
}

bool CDiscPath::IsSame(const CDiscPath &other) const
{
    return Length() == other.Length() && lstrcmpiA(Text(), other.Text()) == 0;
}

const WCHAR *CDiscPath::Name() const
{
    const WCHAR *pName = Wide();
    for (const WCHAR *p = Wide(); *p; ++p) {
        if (*p == L'\\')
            pName = p + 1;
    }
    return pName;
}
