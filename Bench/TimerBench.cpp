#include "Bench.h"

#include <mmsystem.h>

#include "CU/CU.h"
#include "CU/Timer.h"

namespace {

class CBenchTimer : public CCUTimer
{
public:
    using CCUTimer::KillAlarm;
    using CCUTimer::SetAlarm;
};

// The start-up tick of the first half second makes arming cheaper than it is ever after.
void WaitForStartTick(CBenchTimer &timer)
{
    timer.SetAlarm(0);
    MSG msg;
    for (const unsigned long uStart = CUGetTime(); CUGetTime() - uStart < 1000;) {
        if (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageA(&msg);
        else
            Sleep(10);
    }
}

void Compare(const char *name, CBenchTimer &timer, long nMilliseconds, double ceiling)
{
    const HWND hWnd = CUGetWindow();
    BenchCompare(
        name,
        [&] {
            timer.SetAlarm(nMilliseconds);
            timer.KillAlarm();
        },
        "SetTimer + KillTimer",
        [&] {
            SetTimer(hWnd, 7, static_cast<UINT>(nMilliseconds), nullptr);
            KillTimer(hWnd, 7);
        },
        ceiling);
}

void CompareAmong(CBenchTimer &timer, size_t nOthers, const char *head, const char *tail,
                  double headCeiling, double tailCeiling)
{
    std::vector<CBenchTimer> others(nOthers);
    for (size_t i = nOthers; i-- > 0;)
        others[i].SetAlarm(1000000 + static_cast<long>(i));
    Compare(head, timer, 500000, headCeiling);
    Compare(tail, timer, 2000000, tailCeiling);
}

}  // namespace

BENCH_GROUP(Timer)
{
    CBenchTimer timer;
    WaitForStartTick(timer);
    Compare("arm and kill an alarm, alone", timer, 500000, 0.1);
    CompareAmong(timer, 10, "arm and kill an alarm, head of 10",
                 "arm and kill an alarm, tail of 10", 0, 0);
    CompareAmong(timer, 1000, "arm and kill an alarm, head of 1,000",
                 "arm and kill an alarm, tail of 1,000", 0.2, 0.5);
    CompareAmong(timer, 100000, "arm and kill an alarm, head of 100,000",
                 "arm and kill an alarm, tail of 100,000", 0, 0);
    BenchCompare(
        "CUGetTime", [] { BenchKeep(CUGetTime()); }, "timeGetTime",
        [] { BenchKeep(timeGetTime()); }, 0);
}
