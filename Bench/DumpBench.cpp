#include <stdio.h>

#include "Bench.h"
#include "CU/Dump.h"
#include "CU/String.h"

namespace {

const char Line[] = "CCUIWindow::Create 0001002C of class pzl-Window took 12 ms\n";

void WritePlain(FILE *file)
{
    fwrite(Line, 1, sizeof Line - 1, file);
    fflush(file);
    OutputDebugStringA(Line);
}

}  // namespace

BENCH_GROUP(Dump)
{
    FILE *file = tmpfile();
    if (!file)
        return;
    CUDumpConfigLogFileManagement(30, 1, 0, true);  // earlier runs' files go
    const char *peer = "fwrite + fflush + OutputDebugStringA";
    BenchCompare(
        "CUDump, one line (the peer's is formatted already)",
        [] {
            CUDump("CCUIWindow::Create %08X of class %s took %d ms\n", 0x1002C, "pzl-Window", 12);
        },
        peer, [file] { WritePlain(file); }, 1.1);
    BenchCompare(
        "CUDumpString, one line", [] { CUDumpString(Line, -1); }, peer,
        [file] { WritePlain(file); }, 1.1);
    fclose(file);
}
