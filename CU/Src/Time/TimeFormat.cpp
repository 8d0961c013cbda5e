// Formatting an instant: first the codes of ours are replaced by their texts, in the format, then
// the C library's strftime does the rest.

#include <limits.h>
#include <stddef.h>
#include <string.h>

#include "Base/Lock.h"
#include "CU/Registry.h"
#include "CU/Time.h"
#include "CU/Version.h"
#include "Time/TimeZone.h"

namespace {

// Room for the whole text, its NUL included: a longer one gives the empty string.
const int TEXT_SIZE = 128;
// What the system asks for of the long date's picture, and its default.
const int PICTURE_SIZE = 80;

volatile LONG s_nTimeFormatChanged = 1;

// What the codes of ours are made from.
struct CSource
{
    const tm *record;
    const TIME_ZONE_INFORMATION *tzi;  // null: the current zone
};

SYSTEMTIME ToSystemTime(const tm &record)
{
    SYSTEMTIME time = {};
    time.wYear = static_cast<WORD>(record.tm_year + 1900);
    time.wMonth = static_cast<WORD>(record.tm_mon + 1);
    time.wDay = static_cast<WORD>(record.tm_mday);
    time.wHour = static_cast<WORD>(record.tm_hour);
    time.wMinute = static_cast<WORD>(record.tm_min);
    time.wSecond = static_cast<WORD>(record.tm_sec);
    return time;
}

CCUString DateText(const CSource &source, DWORD dwFlags, const char *picture)
{
    const SYSTEMTIME time = ToSystemTime(*source.record);
    char szText[256] = "";
    if (!GetDateFormatA(LOCALE_USER_DEFAULT, dwFlags, &time, picture, szText, sizeof szText))
        return CCUString();
    return szText;
}

CCUString ShortDate(const CSource &source)
{
    return DateText(source, 0, nullptr);
}

CCUString LongDate(const CSource &source)
{
    return DateText(source, DATE_LONGDATE, nullptr);
}

// One more, for a value in the registry that does not end in a NUL.
typedef char CPicture[PICTURE_SIZE + 1];

void ReadLongDatePicture(CPicture &szPicture)
{
    memset(szPicture, 0, sizeof szPicture);
    const CCUVersionInfo version;
    if (version.IsWin95()) {
        GetProfileStringA("Intl", "sLongDate", "MMM d',' yyyy", szPicture, PICTURE_SIZE);
        return;
    }
    const CCURegistry registry(HKEY_CURRENT_USER, "Control Panel\\International");
    DWORD nSize = PICTURE_SIZE;
    if (!version.IsWinNT() || !registry.GetBinary("sLongDate", szPicture, nSize))
        strncpy(szPicture, "MMM d, yyyy", sizeof szPicture);
}

// Shortens the first `name` ("MMMM" or "dddd") in a picture by one letter.
CCUString Abbreviated(const CCUString &sPicture, const char *name)
{
    const int nAt = sPicture.Find(name);
    return nAt < 0 ? sPicture : sPicture.Left(nAt) + sPicture.Mid(nAt + 1);
}

CCUString LongDatePicture()
{
    static CCULazyLock s_lock;
    const CCULockGuard guard(s_lock);
    // Plain characters, not a string: destructors of global objects format times, too.
    static CPicture s_szPicture;
    if (InterlockedExchange(&s_nTimeFormatChanged, 0))
        ReadLongDatePicture(s_szPicture);
    return s_szPicture;
}

CCUString AbbreviatedLongDate(const CSource &source)
{
    return DateText(source, 0, Abbreviated(Abbreviated(LongDatePicture(), "MMMM"), "dddd"));
}

CCUString TimeOfDay(const CSource &source)
{
    const SYSTEMTIME time = ToSystemTime(*source.record);
    char szText[256] = "";
    if (!GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &time, nullptr, szText, sizeof szText))
        return CCUString();
    return szText;
}

CCUString ZoneName(const CSource &source)
{
    TIME_ZONE_INFORMATION current = {};
    if (!source.tzi)
        CUGetCurrentZone(current);
    const TIME_ZONE_INFORMATION &zone = source.tzi ? *source.tzi : current;
    // The names in the record have room for 32 characters, and a caller's may fill it without a
    // NUL.
    WCHAR szName[33] = L"";
    memcpy(szName, source.record->tm_isdst ? zone.DaylightName : zone.StandardName,
           sizeof zone.StandardName);
    char szText[256] = "";
    if (!WideCharToMultiByte(CP_ACP, 0, szName, -1, szText, sizeof szText, nullptr, nullptr))
        return CCUString();
    return szText;
}

struct CCode
{
    const char *code;
    CCUString (*Text)(const CSource &source);
};

// In the order in which they are replaced.
const CCode CODES[] = {{"%x", ShortDate}, {"%lx", LongDate}, {"%sx", AbbreviatedLongDate},
                       {"%X", TimeOfDay}, {"%Z", ZoneName},  {"%z", ZoneName}};

bool HasCodes(const char *format)
{
    for (const char *next = format; *next; ++next) {
        if (*next != '%')
            continue;
        switch (next[1]) {
        case 'x':
        case 'X':
        case 'Z':
        case 'z': return true;
        case 'l':
        case 's':
            if (next[2] == 'x')
                return true;
            break;
        default: break;
        }
    }
    return false;
}

char *Append(char *out, const char *text, ptrdiff_t nLength)
{
    memcpy(out, text, static_cast<size_t>(nLength));
    return out + nLength;
}

// Replaces every `code` that is there now. A result longer than a string can be becomes empty.
CCUString ReplacePresent(const CCUString &sFormat, const char *code, const CCUString &sText)
{
    const int nCode = static_cast<int>(strlen(code));
    long long nLength = sFormat.GetLength();
    for (const char *at = strstr(sFormat, code); at; at = strstr(at + nCode, code))
        nLength += sText.GetLength() - nCode;
    if (nLength >= INT_MAX)
        return CCUString();
    CCUString sResult;
    char *out = sResult.GetBuffer(static_cast<int>(nLength));
    const char *from = sFormat;
    for (const char *at = strstr(from, code); at; at = strstr(from, code)) {
        out = Append(out, from, at - from);
        out = Append(out, sText, sText.GetLength());
        from = at + nCode;
    }
    Append(out, from, sFormat.GetString() + sFormat.GetLength() - from);
    sResult.ReleaseBuffer(static_cast<int>(nLength));
    return sResult;
}

// Replaces `code` until there is none left: a text may make a new one with the percent sign before
// it, as "%%Z" does when the zone's name begins with a Z.
CCUString Replace(CCUString sFormat, const char *code, const CCUString &sText)
{
    // With a percent sign in the text there might always be a new one, so that is replaced once.
    const bool bEnds = sText.Find('%') < 0;
    // Without one, each round leaves fewer percent signs. Formats with thousands of them would take
    // long, so it stops when the texts that the rounds have put in fill the room for the result.
    const int nMostRounds = bEnds ? TEXT_SIZE : 1;
    for (int i = 0; i < nMostRounds && sFormat.Find(code) >= 0; ++i)
        sFormat = ReplacePresent(sFormat, code, sText);
    return sFormat;
}

CCUString Expand(const char *format, const CSource &source)
{
    CCUString sFormat(format);
    for (const CCode &code : CODES) {
        if (sFormat.Find(code.code) >= 0)
            sFormat = Replace(sFormat, code.code, code.Text(source));
    }
    return sFormat;
}

CCUString RuntimeText(const char *format, const tm &record)
{
    char szText[TEXT_SIZE];
    const size_t nLength = strftime(szText, sizeof szText, format, &record);
    return CCUString(szText, static_cast<int>(nLength));
}

CCUString FormatRecord(const char *format, const CSource &source)
{
    if (!format || !source.record)
        return CCUString();
    if (!HasCodes(format))
        return RuntimeText(format, *source.record);
    return RuntimeText(Expand(format, source), *source.record);
}

}  // namespace

CCUString CCUTime::Format(const char *pszFormat) const
{
    return FormatTZI(pszFormat, nullptr);
}

CCUString CCUTime::FormatTZI(const char *pszFormat, const _TIME_ZONE_INFORMATION *tzi) const
{
    tm record;
    return FormatRecord(pszFormat, {GetLocalTm(&record, tzi), tzi});
}

CCUString CCUTime::FormatGmt(const char *pszFormat) const
{
    tm record;
    return FormatRecord(pszFormat, {GetGmtTm(&record), nullptr});
}

void CCUTime::TimeFormatChanged(bool bChanged)
{
    InterlockedExchange(&s_nTimeFormatChanged, bChanged);
}

bool CCUTime::IsTimeFormatChanged()
{
    return s_nTimeFormatChanged != 0;
}
