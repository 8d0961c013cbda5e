#include "Print.h"

#include <stdarg.h>

void CUPrint(FILE *file, const char *format, ...)
{
    char szText[1024];
    va_list args;
    va_start(args, format);
    _vsnprintf(szText, sizeof szText - 1, format, args);
    va_end(args);
    szText[sizeof szText - 1] = '\0';
    fputs(szText, file);
}
