#include "Time/LocalTime.h"

#include "Time/TimeZone.h"

namespace {

// localtime's record, in a zone that the system cannot tell us.
tm *RuntimeLocal(long nTime)
{
    const time_t time = nTime;
    return localtime(&time);
}

tm *BreakDown(long nTime, const TIME_ZONE_INFORMATION &zone)
{
    bool bDaylight;
    tm *record = CUGmtTm(CULocalSeconds(nTime, zone, bDaylight));
    if (!record)
        return RuntimeLocal(nTime);
    record->tm_isdst = bDaylight;
    return record;
}

}  // namespace

tm *CUGmtTm(long nTime)
{
    const time_t time = nTime;
    return gmtime(&time);
}

tm *CULocalTm(long nTime, const TIME_ZONE_INFORMATION *pZone, bool &bInvalidZone)
{
    TIME_ZONE_INFORMATION current;
    bInvalidZone = !pZone && CUGetCurrentZone(current) == TIME_ZONE_ID_INVALID;
    return bInvalidZone ? RuntimeLocal(nTime) : BreakDown(nTime, pZone ? *pZone : current);
}
