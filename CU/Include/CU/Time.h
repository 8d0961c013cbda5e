#pragma once

/// @file
/// Instants and lengths of time, in whole seconds.

#include <time.h>

#include "CU/Platform.h"
#include "CU/String.h"

/// A signed length of time in whole seconds, in one 32-bit word. Nothing is checked or clamped:
/// sums and products wrap. All divisions truncate toward zero, so that every part of a negative
/// span is zero or negative.
class CU_API CCUTimeSpan
{
public:
    /// Leaves the length unset.
    CCUTimeSpan() {}
    /// A length in seconds.
    CCUTimeSpan(long nSeconds) : m_nSpan(nSeconds) {}
    /// ((days * 24 + hours) * 60 + minutes) * 60 + seconds; any of them may be negative or large.
    CCUTimeSpan(long nDays, int nHours, int nMinutes, int nSeconds);

    /// The whole length in one unit, the rest cut off: seconds for GetSpan and GetTotalSeconds.
    /// @{
    long GetSpan() const { return m_nSpan; }
    long GetTotalSeconds() const { return m_nSpan; }
    long GetTotalMinutes() const { return m_nSpan / 60; }
    long GetTotalHours() const { return m_nSpan / 3600; }
    long GetDays() const { return m_nSpan / 86400; }
    /// @}
    /// @name What is left over from the next larger unit
    /// @{
    int GetHours() const { return static_cast<int>(m_nSpan / 3600 % 24); }  ///< -23..23
    int GetMinutes() const { return static_cast<int>(m_nSpan / 60 % 60); }  ///< -59..59
    int GetSeconds() const { return static_cast<int>(m_nSpan % 60); }       ///< -59..59
    /// @}

    /// Sum and difference, which wrap.
    /// @{
    CCUTimeSpan operator+(CCUTimeSpan other) const;
    CCUTimeSpan operator-(CCUTimeSpan other) const;
    CCUTimeSpan &operator+=(CCUTimeSpan other);
    CCUTimeSpan &operator-=(CCUTimeSpan other);
    /// @}
    /// By their seconds, signed: 1 or 0.
    /// @{
    int operator==(CCUTimeSpan other) const { return m_nSpan == other.m_nSpan; }
    int operator!=(CCUTimeSpan other) const { return m_nSpan != other.m_nSpan; }
    int operator<(CCUTimeSpan other) const { return m_nSpan < other.m_nSpan; }
    int operator>(CCUTimeSpan other) const { return m_nSpan > other.m_nSpan; }
    int operator<=(CCUTimeSpan other) const { return m_nSpan <= other.m_nSpan; }
    int operator>=(CCUTimeSpan other) const { return m_nSpan >= other.m_nSpan; }
    /// @}

    /// Text by the codes `%D` (days), `%H`, `%M`, `%S` (two digits, what is left over) and `%%` (a
    /// percent sign); other characters stand for themselves. Asserts that the text stays within 128
    /// characters (the rest is dropped) and that every code is one of these (of another one the
    /// letter alone is copied). A null format gives the empty string.
    CCUString Format(const char *pszFormat) const;
    /// Reads "days:hours:minutes:seconds", four numbers of any size. Returns 1, or 0 when there are
    /// not four, with the span unchanged.
    int Parse(const CCUString &sText);

private:
    long m_nSpan;
};

/// An instant: seconds since 1970-01-01 00:00:00 UTC in one signed 32-bit word, up to 2038-01-19
/// 03:14:07. Construction, copying and assignment turn a negative value into the greatest instant,
/// 0x7FFFFFFF, which so serves as the mark of an invalid one; only += and -= may leave a negative
/// value behind. Every year divisible by 4 is a leap year here.
///
/// Where a zone is asked for, null is the system's current one, as it was at most one tick of
/// GetTickCount ago. The conversions may be called from any thread. The shared record that
/// GetGmtTm(nullptr) and GetLocalTm(nullptr, ...) return is the C library's own, one a thread: it
/// lasts until the thread's next call of either (with an `out` of its own, too), of GetYear to
/// GetDayOfWeek, of a Format or Parse function or of gmtime or localtime, or its next trace.
class CU_API CCUTime
{
public:
    /// The current time.
    CCUTime();
    /// That many seconds after 1970-01-01 00:00:00 UTC; a negative number becomes the greatest
    /// instant.
    CCUTime(long nSeconds) : m_nTime(Clamp(nSeconds)) {}
    /// The same instant; the greatest one for a negative one.
    CCUTime(const CCUTime &other) : m_nTime(Clamp(other.m_nTime)) {}
    /// Calendar fields in the zone `tzi`: full year, month 1..12. isDst: 1, the fields are daylight
    /// time; 0, standard time; -1, the zone's rules decide. Fields are not normalised: a date or
    /// time of day that does not exist counts as 0, so that only the zone's offset remains. A
    /// result before 1970 or after 2038-01-19 03:14:07 UTC is traced and becomes the greatest
    /// instant.
    CCUTime(int nYear, int nMonth, int nDay, int nHour, int nMinute, int nSecond, int isDst = -1,
            const _TIME_ZONE_INFORMATION *tzi = nullptr);
    /// The same from a record in the current zone, milliseconds dropped. A year before 1900 gives
    /// the instant 0.
    CCUTime(const _SYSTEMTIME &time, int isDst = -1);
    /// From a file's time, which is UTC, by way of local time. What the system cannot convert gives
    /// the greatest instant.
    CCUTime(const _FILETIME &time, int isDst = -1);

    /// As the constructors.
    /// @{
    CCUTime &operator=(long nSeconds);
    CCUTime &operator=(const CCUTime &other);
    /// @}

    /// The current time, as CCUTime() (not milliseconds, despite the name).
    static CCUTime GetTickCount();
    /// Seconds since 1970-01-01 00:00:00 UTC.
    long GetTime() const { return m_nTime; }

    /// @name Fields in the current zone
    /// By GetLocalTm; 0 for an instant that has none.
    /// @{
    int GetYear() const;       ///< 1970 on
    int GetMonth() const;      ///< 1..12
    int GetDay() const;        ///< 1..31
    int GetHour() const;       ///< 0..23
    int GetMinute() const;     ///< 0..59
    int GetSecond() const;     ///< 0..59
    int GetDayOfWeek() const;  ///< 1 (Sunday) to 7 (Saturday)
    /// @}

    /// The instant broken down as UTC, or in the zone `tzi`. Fills and returns `out`; a null `out`
    /// gives the shared record. Null, with `out` untouched, for an instant that the C library
    /// cannot break down (a negative one). An unknown current zone is traced, and the C library's
    /// own idea of local time used.
    /// @{
    tm *GetGmtTm(tm *out) const;
    tm *GetLocalTm(tm *out, const _TIME_ZONE_INFORMATION *tzi) const;
    /// @}

    /// The difference of two instants, which wraps, and the instant a span later or earlier, where
    /// a negative result becomes the greatest instant.
    /// @{
    CCUTimeSpan operator-(const CCUTime &other) const;
    CCUTime operator+(CCUTimeSpan span) const;
    CCUTime operator-(CCUTimeSpan span) const;
    /// @}
    /// The same in place; a negative result stays.
    /// @{
    CCUTime &operator+=(CCUTimeSpan span);
    CCUTime &operator-=(CCUTimeSpan span);
    /// @}

    /// Earlier and later, by their seconds: 1 or 0.
    /// @{
    int operator==(const CCUTime &other) const { return m_nTime == other.m_nTime; }
    int operator!=(const CCUTime &other) const { return m_nTime != other.m_nTime; }
    int operator<(const CCUTime &other) const { return m_nTime < other.m_nTime; }
    int operator>(const CCUTime &other) const { return m_nTime > other.m_nTime; }
    int operator<=(const CCUTime &other) const { return m_nTime <= other.m_nTime; }
    int operator>=(const CCUTime &other) const { return m_nTime >= other.m_nTime; }
    /// @}

    /// @name Text
    /// By strftime's codes, of which these are the user's own regional pictures: `%x` short date,
    /// `%lx` long date, `%sx` long date with month and day names abbreviated, `%X` time of day;
    /// `%Z` and `%z` name the zone (FormatGmt: the current one's standard name). They are looked
    /// for first, "%%" or not. Empty when the format is null, the text is longer than 127
    /// characters, strftime rejects the format, or the instant cannot be broken down.
    /// @{
    CCUString Format(const char *pszFormat) const;  ///< text in the current zone
    CCUString FormatTZI(const char *pszFormat,
                        const _TIME_ZONE_INFORMATION *tzi) const;  ///< text in the zone `tzi`
    CCUString FormatGmt(const char *pszFormat) const;              ///< text in UTC
    /// @}

    /// Replaces the time of day: "h:m:s" (0..23), or "hh:mm:ss AM" (1..12), in which the tenth
    /// character, "a" or "p" of either case, decides. Returns 1, or 0 with the value unchanged.
    int ParseTime(const CCUString &sText);
    /// Replaces the date: "month/day/year" from 1970 on. Returns 1, or 0 with the value unchanged.
    int ParseDate(const CCUString &sText);

    /// The flag that makes the next "%sx" read the user's long date picture again; set at start. To
    /// be set when the regional settings change.
    /// @{
    static void TimeFormatChanged(bool bChanged);
    static bool IsTimeFormatChanged();
    /// @}

private:
    static long Clamp(long nSeconds) { return nSeconds < 0 ? 0x7FFFFFFF : nSeconds; }

    long m_nTime;
};

/// Days of a month: -1 for a month outside 1..12; February has 29 in every year divisible by 4.
CU_API int CUGetDaysInMonth(int nYear, int nMonth);
