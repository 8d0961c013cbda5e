#include "FrameProgram.h"
#include "ProgramStart.h"

namespace {

double TimeStart(const char *path)
{
    return TimeProgramStart(
        path, [] { PostMessageA(FindWindowA(nullptr, FRAME_TITLE), WM_CLOSE, 0, 0); });
}

}  // namespace

BENCH_GROUP(Frame)
{
    // A start that is no good: the first one reads files that the others find in memory.
    TimeStart(BENCH_FRAME);
    TimeStart(BENCH_PLAIN_FRAME);
    BenchPairs(
        "frame with bars: creation of the process to first frame", 41,
        [] { return TimeStart(BENCH_FRAME); }, "plain Win32 with the system's bars",
        [] { return TimeStart(BENCH_PLAIN_FRAME); }, 1.0);
}
