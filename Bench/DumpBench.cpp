#include <stdio.h>
#include <string.h>

#include "Bench.h"
#include "CU/Dump.h"
#include "CU/String.h"

namespace {

const char Line[] = "CCUIWindow::Create 0001002C of class pzl-Window took 12 ms\n";

// What a trace without lists, lock and roll-over would do with a line.
void WritePlain(FILE *file)
{
    char szText[2048];
    sprintf(szText, "CCUIWindow::Create %08X of class %s took %d ms\n", 0x1002C, "pzl-Window", 12);
    fwrite(szText, 1, strlen(szText), file);
    fflush(file);
    OutputDebugStringA(szText);
}

}  // namespace

BENCH_GROUP(Dump)
{
    FILE *file = tmpfile();
    if (!file)
        return;
    BenchCompare(
        "CUDump, one line",
        [] {
            CUDump("CCUIWindow::Create %08X of class %s took %d ms\n", 0x1002C, "pzl-Window", 12);
        },
        "sprintf + fwrite + fflush + OutputDebugStringA", [file] { WritePlain(file); }, 1.1);
    BenchCompare(
        "CUDumpString, one line", [] { CUDumpString(Line, -1); },
        "fwrite + fflush + OutputDebugStringA",
        [file] {
            fwrite(Line, 1, sizeof Line - 1, file);
            fflush(file);
            OutputDebugStringA(Line);
        },
        1.1);
    fclose(file);
}
