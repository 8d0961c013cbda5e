#include "Problems/CommandLine.h"

CCUString ProgramOf(const CCUString &sCommand)
{
    CCUString sRest = sCommand;
    sRest.TrimLeft();
    return sRest.Left(1) == "\"" ? sRest.Mid(1).SpanExcluding("\"") : sRest.SpanExcluding(" \t");
}

CCUString ExtensionOf(const CCUString &sProgram)
{
    const CCUString sName = sProgram.Mid(sProgram.ReverseFind('\\') + 1);
    const int nDot = sName.ReverseFind('.');
    CCUString sExtension = nDot < 0 ? CCUString() : sName.Mid(nDot + 1);
    sExtension.MakeLower();
    return sExtension;
}

CCUString WithExtension(const CCUString &sProgram)
{
    const CCUString sName = sProgram.Mid(sProgram.ReverseFind('\\') + 1);
    return sName.Find('.') < 0 ? sProgram + ".exe" : sProgram;
}
