#pragma once

#include <stdio.h>

// Formats by the system's runtime into a file, up to 1023 characters a call. The compiler's own
// fprintf is of another make, at the price of some 20 KiB. Private to the layer.
void CUPrint(FILE *file, const char *format, ...) __attribute__((format(ms_printf, 2, 3)));
