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
    const std::vector<bool> starts = StartsOf(sText, nCodePage);
    int nFront = 0, nEnd = sText.GetLength();
    size_t nFirst = 0, nLast = pieces.size();
    for (; nFirst < nLast; ++nFirst) {
        const CCUString &sBytes = pieces[nFirst].m_sBytes;
        if (sText.Mid(nFront, sBytes.GetLength()) != sBytes)
            break;
        nFront += sBytes.GetLength();
    }
    for (; nLast > nFirst; --nLast) {
        const CCUString &sBytes = pieces[nLast - 1].m_sBytes;
        const int nStart = nEnd - sBytes.GetLength();
        if (nStart < nFront || !starts[static_cast<size_t>(nStart)] ||
            sText.Mid(nStart, sBytes.GetLength()) != sBytes)
            break;
        nEnd = nStart;
    }
    const CWideText changed(sText.Mid(nFront, nEnd - nFront), nCodePage);
    const auto at = [&](size_t nPiece) {
        const size_t n = nPiece < pieces.size() ? pieces[nPiece].m_nStart : m_text.size();
        return m_text.begin() + static_cast<ptrdiff_t>(n);
    };
    CWideText text;
    text.m_text.assign(m_text.begin(), at(nFirst));
    text.m_text.insert(text.m_text.end(), changed.m_text.begin(), changed.m_text.end());
    text.m_text.insert(text.m_text.end(), at(nLast), m_text.end());
    return text;
}
