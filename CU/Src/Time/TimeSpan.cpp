#include <stdio.h>

#include "Base/Wrap.h"
#include "CU/Assert.h"
#include "CU/Time.h"

#define CU_SOURCE "Time"

namespace {

// The text of a span while it is put together. What does not fit into its buffer is dropped.
class CSpanText
{
public:
    void Put(char ch)
    {
        if (pch < &szBuffer[128])
            *pch++ = ch;
        else
            m_bCut = true;
    }
    void PutNumber(const char *format, long nValue)
    {
        char szNumber[16];
        sprintf(szNumber, format, nValue);
        for (const char *digit = szNumber; *digit; ++digit)
            Put(*digit);
    }
    // To be called before each character of the format. Reports a full buffer; returns the report's
    // answer, 0 to go on.
    int CheckRoom()
    {
        m_bReported = m_bReported || pch == &szBuffer[128];
        return CU_ASSERT(pch < &szBuffer[128]);
    }
    CCUString Text()
    {
        // Where the last code's text did not fit, no check has come after it.
        if (m_bCut && !m_bReported)
            CheckRoom();
        return CCUString(szBuffer, static_cast<int>(pch - szBuffer));
    }

private:
    // NOLINTBEGIN(readability-identifier-naming): the report quotes these two
    char szBuffer[128];
    char *pch = szBuffer;
    // NOLINTEND(readability-identifier-naming)
    bool m_bCut = false;
    bool m_bReported = false;
};

void PutCode(CSpanText &text, char code, const CCUTimeSpan &span)
{
    switch (code) {
    case 'D': text.PutNumber("%ld", span.GetDays()); break;
    case 'H': text.PutNumber("%02ld", span.GetHours()); break;
    case 'M': text.PutNumber("%02ld", span.GetMinutes()); break;
    case 'S': text.PutNumber("%02ld", span.GetSeconds()); break;
    case '%': text.Put('%'); break;
    default:
        CU_ASSERT(0);
        if (code)
            text.Put(code);
    }
}

}  // namespace

CCUTimeSpan::CCUTimeSpan(long nDays, int nHours, int nMinutes, int nSeconds)
{
    const long nTotalHours = CUWrapAdd(CUWrapMul(nDays, 24), nHours);
    const long nTotalMinutes = CUWrapAdd(CUWrapMul(nTotalHours, 60), nMinutes);
    m_nSpan = CUWrapAdd(CUWrapMul(nTotalMinutes, 60), nSeconds);
}

CCUTimeSpan CCUTimeSpan::operator+(CCUTimeSpan other) const
{
    return CUWrapAdd(m_nSpan, other.m_nSpan);
}

CCUTimeSpan CCUTimeSpan::operator-(CCUTimeSpan other) const
{
    return CUWrapSub(m_nSpan, other.m_nSpan);
}

CCUTimeSpan &CCUTimeSpan::operator+=(CCUTimeSpan other)
{
    m_nSpan = CUWrapAdd(m_nSpan, other.m_nSpan);
    return *this;
}

CCUTimeSpan &CCUTimeSpan::operator-=(CCUTimeSpan other)
{
    m_nSpan = CUWrapSub(m_nSpan, other.m_nSpan);
    return *this;
}

CCUString CCUTimeSpan::Format(const char *pszFormat) const
{
    CSpanText text;
    for (const char *next = pszFormat ? pszFormat : ""; *next && !text.CheckRoom(); ++next) {
        if (*next != '%') {
            text.Put(*next);
            continue;
        }
        ++next;
        PutCode(text, *next, *this);
        // A percent sign at the very end has no letter behind it.
        if (!*next)
            break;
    }
    return text.Text();
}

int CCUTimeSpan::Parse(const CCUString &sText)
{
    int nDays = 0;
    int nHours = 0;
    int nMinutes = 0;
    int nSeconds = 0;
    if (sscanf(sText, "%d:%d:%d:%d", &nDays, &nHours, &nMinutes, &nSeconds) != 4)
        return 0;
    *this = CCUTimeSpan(nDays, nHours, nMinutes, nSeconds);
    return 1;
}
