#include "Base/Lock.h"
#include "CU/Dump.h"
#include "CU/Time.h"
#include "Time/TimeZone.h"

namespace {

// localtime's record, in a zone that the system cannot tell us.
tm *RuntimeLocal(long nTime)
{
    const time_t time = nTime;
    return localtime(&time);
}

tm *RuntimeGmt(long nTime)
{
    const time_t time = nTime;
    return gmtime(&time);
}

tm *BreakDown(long nTime, const TIME_ZONE_INFORMATION &zone)
{
    bool bDaylight;
    tm *record = RuntimeGmt(CULocalSeconds(nTime, zone, bDaylight));
    if (!record)
        return RuntimeLocal(nTime);
    record->tm_isdst = bDaylight;
    return record;
}

// The trace itself asks for the time, to name its files. So it may come here again from in here,
// and is not told a second time.
void TraceInvalidZone()
{
    static volatile LONG s_nTracing;
    const CCUTryLock lock(s_nTracing);
    if (lock.IsTaken())
        CUDump("CCUTime - invalid time zone\n");
}

tm *CopyOut(tm *record, tm *out)
{
    if (!record || !out)
        return record;
    *out = *record;
    return out;
}

}  // namespace

tm *CCUTime::GetGmtTm(tm *out) const
{
    return CopyOut(RuntimeGmt(m_nTime), out);
}

tm *CCUTime::GetLocalTm(tm *out, const _TIME_ZONE_INFORMATION *tzi) const
{
    if (tzi)
        return CopyOut(BreakDown(m_nTime, *tzi), out);
    TIME_ZONE_INFORMATION current;
    if (CUGetCurrentZone(current) == TIME_ZONE_ID_INVALID) {
        TraceInvalidZone();
        return CopyOut(RuntimeLocal(m_nTime), out);
    }
    return CopyOut(BreakDown(m_nTime, current), out);
}
