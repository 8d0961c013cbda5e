#include "Model/WideText.h"

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
