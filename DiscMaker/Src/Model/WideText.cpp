#include "Model/WideText.h"

namespace {

bool IsFirstHalf(WCHAR ch)
{
    return ch >= 0xD800 && ch < 0xDC00;
}

// A character as the text holds it, of two halves if need be, and its bytes.
struct CPiece
{
    size_t m_nStart;
    size_t m_nLength;
    CCUString m_sBytes;
};

// Where characters of bytes begin, and the end.
std::vector<bool> StartsOf(const CCUString &sText, UINT nCodePage)
{
    std::vector<bool> starts(static_cast<size_t>(sText.GetLength()) + 1);
    const char *const pszText = sText;
    for (int i = 0; i < sText.GetLength(); i += CharacterSize(pszText + i, nCodePage))
        starts[static_cast<size_t>(i)] = true;
    starts.back() = true;
    return starts;
}

// Where a text and another one differ: what is in front and what is behind they have in common.
struct CDifference
{
    size_t m_nFirst, m_nLast;  // pieces of the one
    int m_nFront, m_nEnd;      // bytes of the other
};

CDifference Compare(const std::vector<CPiece> &pieces, const CCUString &sText, UINT nCodePage)
{
    const std::vector<bool> starts = StartsOf(sText, nCodePage);
    CDifference at = {0, pieces.size(), 0, sText.GetLength()};
    for (; at.m_nFirst < at.m_nLast; ++at.m_nFirst) {
        const CCUString &sBytes = pieces[at.m_nFirst].m_sBytes;
        if (sText.Mid(at.m_nFront, sBytes.GetLength()) != sBytes)
            break;
        at.m_nFront += sBytes.GetLength();
    }
    for (; at.m_nLast > at.m_nFirst; --at.m_nLast) {
        const CCUString &sBytes = pieces[at.m_nLast - 1].m_sBytes;
        const int nStart = at.m_nEnd - sBytes.GetLength();
        if (nStart < at.m_nFront || !starts[static_cast<size_t>(nStart)] ||
            sText.Mid(nStart, sBytes.GetLength()) != sBytes)
            break;
        at.m_nEnd = nStart;
    }
    return at;
}

}  // namespace

int CharacterSize(const char *p, UINT nCodePage)
{
    return IsDBCSLeadByteEx(nCodePage, static_cast<BYTE>(*p)) && p[1] ? 2 : 1;
}

CWideText::CWideText(const CCUString &sText, UINT nCodePage)
{
    const int nBytes = sText.GetLength();
    const int nLength = MultiByteToWideChar(nCodePage, 0, sText, nBytes, nullptr, 0);
    m_text.resize(static_cast<size_t>(nLength));
    MultiByteToWideChar(nCodePage, 0, sText, nBytes, m_text.data(), nLength);
}

CCUString CWideText::ToCodePage(UINT nCodePage, bool *pLost) const
{
    const int nChars = static_cast<int>(m_text.size());
    const int nBytes =
        WideCharToMultiByte(nCodePage, 0, m_text.data(), nChars, nullptr, 0, nullptr, nullptr);
    CCUString sText;
    WideCharToMultiByte(nCodePage, 0, m_text.data(), nChars, sText.GetBufferSetLength(nBytes),
                        nBytes, nullptr, nullptr);
    // The system may take a similar character without a word, so what comes back decides.
    if (pLost)
        *pLost = CWideText(sText, nCodePage) != *this;
    return sText;
}

CWideText CWideText::Edited(const CCUString &sText, UINT nCodePage) const
{
    std::vector<CPiece> pieces;
    CCUString sShown;
    for (size_t i = 0; i < m_text.size(); i += pieces.back().m_nLength) {
        const size_t nLength = IsFirstHalf(m_text[i]) && i + 1 < m_text.size() ? 2 : 1;
        pieces.push_back({i, nLength, CWideText(&m_text[i], nLength).ToCodePage(nCodePage)});
        sShown += pieces.back().m_sBytes;
    }
    // Not a code page that turns characters into bytes one by one.
    if (sShown != ToCodePage(nCodePage))
        return CWideText(sText, nCodePage);
    const CDifference difference = Compare(pieces, sText, nCodePage);
    const CWideText changed(sText.Mid(difference.m_nFront, difference.m_nEnd - difference.m_nFront),
                            nCodePage);
    const auto at = [&](size_t nPiece) {
        const size_t n = nPiece < pieces.size() ? pieces[nPiece].m_nStart : m_text.size();
        return m_text.begin() + static_cast<ptrdiff_t>(n);
    };
    CWideText text;
    text.m_text.assign(m_text.begin(), at(difference.m_nFirst));
    text.m_text.insert(text.m_text.end(), changed.m_text.begin(), changed.m_text.end());
    text.m_text.insert(text.m_text.end(), at(difference.m_nLast), m_text.end());
    return text;
}
