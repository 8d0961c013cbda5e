#include "Command/Arguments.h"

namespace {

bool IsSpace(char ch)
{
    return ch == ' ' || ch == '\t';
}

// A quote begins or ends a part that may have spaces. Paths have no quotes in them, and a backslash
// before one is a folder's: "C:\My Disc\".
CCUString TakeWord(const char *&p)
{
    CCUString sWord;
    for (bool bQuoted = false; *p && (bQuoted || !IsSpace(*p)); ++p) {
        if (*p == '"')
            bQuoted = !bQuoted;
        else
            sWord += *p;
    }
    return sWord;
}

}  // namespace

std::vector<CCUString> SplitCommandLine(const char *pszLine)
{
    std::vector<CCUString> words;
    for (const char *p = pszLine; *p;) {
        if (IsSpace(*p)) {
            ++p;
            continue;
        }
        words.push_back(TakeWord(p));
    }
    if (!words.empty())
        words.erase(words.begin());
    return words;
}
