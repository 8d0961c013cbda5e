#pragma once

#include <string.h>

#include "CUI/Edit.h"

// What is looked for, and how.
struct CSearch
{
    CCUString sWhat, sWith;
    int bCase = 0, bWord = 0;

    // A text in which to look: where case does not count, in small letters.
    CCUString Folded(CCUString sText) const
    {
        if (!bCase)
            sText.MakeLower();
        return sText;
    }
    // The next place from nFrom on in two folded texts; -1: there is none.
    int Next(const CCUString &sText, const CCUString &sFolded, int nFrom) const
    {
        int nAt = sFolded.IsEmpty() ? -1 : sText.Find(sFolded, nFrom);
        while (nAt >= 0 && !IsWhole(sText, nAt, nAt + sFolded.GetLength()))
            nAt = sText.Find(sFolded, nAt + 1);
        return nAt;
    }
    // The last place that ends before nBefore.
    int Last(const CCUString &sText, const CCUString &sFolded, int nBefore) const
    {
        int nLast = -1;
        for (int nAt = 0; (nAt = Next(sText, sFolded, nAt)) >= 0; nAt++) {
            if (nAt + sFolded.GetLength() > nBefore)
                break;
            nLast = nAt;
        }
        return nLast;
    }

private:
    bool IsWhole(const CCUString &sText, int nAt, int nEnd) const
    {
        return !bWord || ((nAt == 0 || !IsWordChar(sText[nAt - 1])) && !IsWordChar(sText[nEnd]));
    }
    static bool IsWordChar(char ch) { return IsCharAlphaNumericA(ch) || ch == '_'; }
};

// The text: its lines by their number in the file, and finding.
class CTextEdit : public CCUIEdit
{
public:
    // Makes the control, or makes it anew: none can change whether it wraps.
    void Make(HWND hParent, bool bWrap)
    {
        const CCUString sText = GetText();
        const RECT place = GetPlace();
        const bool bReadOnly = Exist() && IsReadOnly();
        int nStart, nEnd;
        GetSelection(nStart, nEnd);
        Destroy();
        const DWORD dwScroll = WS_HSCROLL | static_cast<DWORD>(ES_AUTOHSCROLL);
        CreateControl(hParent, 1, nullptr, STYLE_LINES | ES_NOHIDESEL | (bWrap ? 0 : dwScroll),
                      &place);
        m_bWrap = bWrap;
        SetLimit(0);
        SetWantTab(true);
        SetText(sText);
        SetReadOnly(bReadOnly);
        SetSelection(nStart, nEnd);
    }
    bool IsWrapping() const { return m_bWrap; }
    bool HasSelection() const
    {
        int nStart, nEnd;
        GetSelection(nStart, nEnd);
        return nStart != nEnd;
    }

    // Line and column of the selection's start, both from 1. The control counts lines as they are
    // wrapped.
    POINT GetCaretPlace() const
    {
        int nStart, nEnd;
        GetSelection(nStart, nEnd);
        if (!m_bWrap) {
            const int nLine = GetLineOf(nStart);
            return {nStart - GetLineStart(nLine) + 1, nLine + 1};
        }
        const CCUString sText = GetText().Left(nStart);
        return {nStart - sText.ReverseFind('\n'), CountLines(sText)};
    }
    int CountLines() const { return m_bWrap ? CountLines(GetText()) : GetLineCount(); }
    void GoToLine(int nLine)
    {
        const CCUString sText = GetText();
        int nAt = 0;
        while (--nLine > 0)
            nAt = sText.Find("\n", nAt) + 1;
        SetSelection(nAt, nAt);
    }

    // Selects the next place, or the one before; if there is none, from the other end of the text.
    bool Find(const CSearch &search, bool bBack)
    {
        const CCUString sText = search.Folded(GetText()), sWhat = search.Folded(search.sWhat);
        int nStart, nEnd;
        GetSelection(nStart, nEnd);
        int nAt = bBack ? search.Last(sText, sWhat, nStart) : search.Next(sText, sWhat, nEnd);
        if (nAt < 0)
            nAt =
                bBack ? search.Last(sText, sWhat, sText.GetLength()) : search.Next(sText, sWhat, 0);
        if (nAt >= 0)
            SetSelection(nAt, nAt + sWhat.GetLength());
        return nAt >= 0;
    }
    // Replaces the selection, if it is what is looked for.
    void Replace(const CSearch &search)
    {
        const CCUString sText = search.Folded(GetText()), sWhat = search.Folded(search.sWhat);
        int nStart, nEnd;
        GetSelection(nStart, nEnd);
        if (nEnd - nStart == sWhat.GetLength() && search.Next(sText, sWhat, nStart) == nStart)
            ReplaceSelection(search.sWith);
    }
    // Replaces all, as one change; returns how many.
    int ReplaceAll(const CSearch &search)
    {
        const CCUString sText = GetText(), sFolded = search.Folded(sText);
        const CCUString sWhat = search.Folded(search.sWhat);
        const int nWhat = sWhat.GetLength(), nWith = search.sWith.GetLength();
        int nCount = 0;
        for (int nAt = 0; (nAt = search.Next(sFolded, sWhat, nAt)) >= 0; nAt += nWhat)
            nCount++;
        if (nCount == 0)
            return 0;
        // With all of its room at once: a string that grows piece by piece is copied each time.
        CCUString sNew;
        const int nNew = sText.GetLength() + nCount * (nWith - nWhat);
        char *pTo = sNew.GetBuffer(nNew);
        const auto add = [&](const char *p, int nLength) {
            memcpy(pTo, p, static_cast<size_t>(nLength));
            pTo += nLength;
        };
        int nFrom = 0;
        for (int nAt; (nAt = search.Next(sFolded, sWhat, nFrom)) >= 0; nFrom = nAt + nWhat) {
            add(sText.GetString() + nFrom, nAt - nFrom);
            add(search.sWith, nWith);
        }
        add(sText.GetString() + nFrom, sText.GetLength() - nFrom);
        sNew.ReleaseBuffer(nNew);
        SetSelection(0, -1);
        ReplaceSelection(sNew);
        SetSelection(0, 0);
        return nCount;
    }

private:
    static int CountLines(const CCUString &sText)
    {
        int nLines = 1;
        for (int nAt = 0; (nAt = sText.Find("\n", nAt)) >= 0; nAt++)
            nLines++;
        return nLines;
    }

    bool m_bWrap = false;
};
