// What becomes known of timers that take long.

#include "Time/TimerTrace.h"

#include "Base/Lock.h"
#include "CU/DebugSwitch.h"
#include "CU/Dump.h"
#include "CU/String.h"
#include "CU/Time.h"
#include "Time/TimerTask.h"

namespace {

const long MOST_SERVED = 200;  // the debug switches' values where they are 0
const long MOST_TIME = 1000;   // ms

CCULazyLock s_lock;
volatile LONG s_nTimeOuts = 0;  // since CUDumpTimerInfo
volatile LONG s_nTimeOutsBefore = 0;
volatile LONG s_nLongest = 0;                   // ms, written under the lock
const void *volatile s_longestClass = nullptr;  // of the object that took it

CCUDebugSwitch s_debug("\\Debug\\Timer", "TimerDebug",
                       "above 0: slow or crowded passes are traced");
CCUDebugSwitch s_countThreshold("\\Debug\\Timer", "TimerCountThreshold",
                                "calls in one pass above which they are traced; 0: 200");
CCUDebugSwitch s_timeThreshold("\\Debug\\Timer", "TimeOutThreshold",
                               "duration of a call above which it is traced; 0: 1000", "ms");

long TimersServed(void *)
{
    return s_nTimeOutsBefore + s_nTimeOuts;
}
long TimersArmed(void *)
{
    return CUCountArmedTimers();
}
CCUProberFunction s_served("\\CU\\Timers", "Served", TimersServed, "calls of TimeOut");
CCUProberFunction s_armed("\\CU\\Timers", "Armed", TimersArmed, "timers that are armed");

long Threshold(const CCUDebugSwitch &debugSwitch, long nDefault)
{
    const long nValue = debugSwitch.Get();
    return nValue ? nValue : nDefault;
}

}  // namespace

bool CUCountTimeOut(long nTook, const void *pClass, long nServed)
{
    InterlockedIncrement(&s_nTimeOuts);
    if (nTook > s_nLongest) {
        CCULockGuard guard(s_lock);
        if (nTook > s_nLongest) {
            s_nLongest = nTook;
            s_longestClass = pClass;
        }
    }
    return s_debug.Get() > 0 && (nServed > Threshold(s_countThreshold, MOST_SERVED) ||
                                 nTook > Threshold(s_timeThreshold, MOST_TIME));
}

void CUDumpTimerInfo()
{
    long nTimeOuts, nLongest;
    const void *pClass;
    {
        CCULockGuard guard(s_lock);
        nTimeOuts = InterlockedExchange(&s_nTimeOuts, 0);
        s_nTimeOutsBefore = s_nTimeOutsBefore + nTimeOuts;
        nLongest = InterlockedExchange(&s_nLongest, 0);
        pClass = s_longestClass;
        s_longestClass = nullptr;
    }
    CUDump("#timers:%ld  max:%ld  vtbl:%08lx\n", nTimeOuts, nLongest,
           reinterpret_cast<unsigned long>(pClass));
}

void CCUTimerTask::TraceTimeOut(const void *pTimer, unsigned long uBefore, unsigned long uAfter)
{
    CUDump("%s ", CCUTime().Format("%c").GetString());
    CUDump("TimeOut took %d (called at %d, finished at %d\n)\n", static_cast<int>(uAfter - uBefore),
           static_cast<int>(uBefore), static_cast<int>(uAfter));
    CUDump("For object %x\n", static_cast<unsigned int>(reinterpret_cast<ULONG_PTR>(pTimer)));
}
