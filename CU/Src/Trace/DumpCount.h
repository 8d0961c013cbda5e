#pragma once

// How many texts were written to the trace.
long CUCountDumps();
