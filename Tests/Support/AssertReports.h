#pragma once

#include <string>

#include "Support/TemporaryDirectory.h"

// What this process has reported to the trace file of failed checks: its first 10.
class CAssertReports
{
public:
    // How often `expression` was reported by `source`.
    int Count(const std::string &expression, const std::string &source = "String") const
    {
        return Occurrences("\nAssert:" + expression + "  File:" + source + "  Line:");
    }
    int Total() const { return Occurrences("\nAssert:"); }

private:
    int Occurrences(const std::string &text) const
    {
        const std::string contents = m_directory.Contents("ZELTrace-*.txt");
        int nCount = 0;
        for (size_t n = contents.find(text); n != std::string::npos; n = contents.find(text, n + 1))
            ++nCount;
        return nCount;
    }
    CTemporaryDirectory m_directory;
};
