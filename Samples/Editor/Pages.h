#pragma once

#include <string.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "CU/String.h"
#include "CUI/Font.h"
#include "CUI/Printer.h"

// A text on pages. It is measured once, so large that all devices show the same lines, and each
// character is drawn where it was measured.
class CTextPages : public CCUIPages
{
public:
    CTextPages() : m_hDC(CreateCompatibleDC(nullptr)) {}
    ~CTextPages() { DeleteDC(m_hDC); }
    CTextPages(const CTextPages &) = delete;
    CTextPages &operator=(const CTextPages &) = delete;

    // The font has CUI_PAPER_INCH pixels an inch. Without a title the pages have neither that nor
    // their number.
    void Set(const CCUString &sText, const CCUString &sTitle, const LOGFONTA &font, int nTabWidth,
             const CUIPaper &paper)
    {
        m_sText = sText;
        m_sTitle = sTitle;
        m_paper = paper;
        CCUIFont taken(font);
        SelectObject(m_hDC, taken);
        m_font = std::move(taken);
        TEXTMETRICA metric;
        GetTextMetricsA(m_hDC, &metric);
        m_cyRow = metric.tmHeight + metric.tmExternalLeading;
        m_cxTab = std::max(1L, nTabWidth * metric.tmAveCharWidth);
        m_cxRow = paper.size.cx - paper.margins.left - paper.margins.right;
        const LONG cy = paper.size.cy - paper.margins.top - paper.margins.bottom;
        const LONG nTitleRows = sTitle.IsEmpty() ? 0 : 4;
        m_nRows = static_cast<int>(std::max(1L, cy / m_cyRow - nTitleRows));
        BreakText();
    }

    int GetPageCount() override
    {
        return (static_cast<int>(m_rows.size()) + m_nRows - 1) / m_nRows;
    }
    void DrawPage(HDC hDC, int nPage) override
    {
        const HGDIOBJ hOldFont = SelectObject(hDC, m_font);
        SetBkMode(hDC, TRANSPARENT);
        SetTextColor(hDC, 0);
        LONG y = m_paper.margins.top;
        if (!m_sTitle.IsEmpty()) {
            CCUString sNumber;
            sNumber.Format("%d / %d", nPage + 1, GetPageCount());
            SIZE size;
            GetTextExtentPoint32A(m_hDC, sNumber, sNumber.GetLength(), &size);
            DrawRow(hDC, 0, y, m_sTitle, m_sTitle.GetLength());
            DrawRow(hDC, (m_cxRow - size.cx) / 2,
                    m_paper.size.cy - m_paper.margins.bottom - m_cyRow, sNumber,
                    sNumber.GetLength());
            y += 2 * m_cyRow;
        }
        const size_t nRows = static_cast<size_t>(m_nRows),
                     nFirst = static_cast<size_t>(nPage) * nRows;
        const size_t nEnd = std::min(nFirst + nRows, m_rows.size());
        for (size_t n = nFirst; n < nEnd; n++, y += m_cyRow)
            DrawRow(hDC, 0, y, m_sText.GetString() + m_rows[n].nStart, m_rows[n].nLength);
        SelectObject(hDC, hOldFont);
    }

private:
    struct CRow
    {
        int nStart, nLength;
    };
    static const int LONGEST_ROW = 1024;  // characters

    // Calls for each piece between tabs, of what fits into a row: with its place, its characters
    // and their widths. Returns how many characters fit.
    template <typename Piece>
    int Walk(const char *psz, int nLength, const Piece &piece)
    {
        LONG x = 0;
        int n = 0;
        nLength = std::min(nLength, static_cast<int>(LONGEST_ROW));
        while (n < nLength && x < m_cxRow) {
            if (psz[n] == '\t') {
                x = (x / m_cxTab + 1) * m_cxTab;
                n++;
                continue;
            }
            const auto *const pTab =
                static_cast<const char *>(memchr(psz + n, '\t', static_cast<size_t>(nLength - n)));
            const int nPiece = pTab ? static_cast<int>(pTab - psz) - n : nLength - n;
            int nFit = 0, nWidths[LONGEST_ROW];
            SIZE size;
            GetTextExtentExPointA(m_hDC, psz + n, nPiece, m_cxRow - x, &nFit, nWidths, &size);
            nFit = std::min(nFit, nPiece);
            for (int i = nFit - 1; i > 0; i--)
                nWidths[i] -= nWidths[i - 1];
            piece(x, psz + n, nFit, nWidths);
            n += nFit;
            if (nFit < nPiece)
                break;
            x += size.cx;
        }
        return n;
    }
    void DrawRow(HDC hDC, LONG xFrom, LONG y, const char *psz, int nLength)
    {
        xFrom += m_paper.margins.left;
        Walk(psz, nLength, [&](LONG x, const char *pPiece, int nPiece, const int *pWidths) {
            ExtTextOutA(hDC, xFrom + x, y, 0, nullptr, pPiece, static_cast<UINT>(nPiece), pWidths);
        });
    }

    void BreakText()
    {
        m_rows.clear();
        for (int nAt = 0; nAt <= m_sText.GetLength(); nAt += 2) {
            int nEnd = m_sText.Find("\r\n", nAt);
            nEnd = nEnd < 0 ? m_sText.GetLength() : nEnd;
            do {
                const int nRow = FindRowLength(m_sText.GetString() + nAt, nEnd - nAt);
                m_rows.push_back({nAt, nRow});
                nAt += nRow;
            } while (nAt < nEnd);
        }
    }
    // How much of a line goes into one row: up to the last word that fits.
    int FindRowLength(const char *psz, int nLength)
    {
        const int nFit = Walk(psz, nLength, [](LONG, const char *, int, const int *) {});
        if (nFit == nLength)
            return nFit;
        for (int n = nFit; n > 0; n--) {
            if (psz[n - 1] == ' ' || psz[n - 1] == '\t')
                return n;
        }
        return std::max(1, nFit);
    }

    CCUIFont m_font;
    HDC m_hDC;  // to measure
    CCUString m_sText, m_sTitle;
    CUIPaper m_paper = {};
    std::vector<CRow> m_rows;
    LONG m_cyRow = 1, m_cxRow = 1, m_cxTab = 1;
    int m_nRows = 1;  // of a page
};
