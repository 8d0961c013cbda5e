#pragma once

#include <string>
#include <vector>

#include "CU/Dump.h"
#include "CU/String.h"
#include "Support/TemporaryDirectory.h"

// What the process reported while the object lives, which gives it a temporary directory.
class CReports
{
public:
    // The failed checks since the last call, as "Source: expression", in order. The process reports
    // no more than ten.
    std::vector<std::string> Asserts()
    {
        const std::string text = m_directory.Contents("ZELTrace-*.txt");
        std::vector<std::string> asserts;
        for (size_t at = m_nSeen; (at = text.find("Assert:", at)) != std::string::npos;) {
            const size_t file = text.find("  File:", at);
            const size_t line = text.find("  Line:", file);
            asserts.push_back(text.substr(file + 7, line - file - 7) + ": " +
                              text.substr(at + 7, file - at - 7));
            at = line;
        }
        m_nSeen = text.size();
        return asserts;
    }

    const CTemporaryDirectory &Directory() const { return m_directory; }

private:
    CTemporaryDirectory m_directory;
    size_t m_nSeen = 0;
};

// What goes to the trace while the object lives, whole and in pieces.
class CTraceListener : public CCUDumpCallback
{
public:
    CTraceListener() { CUDumpRegister(this); }
    ~CTraceListener() { CUDumpUnRegister(this); }
    CTraceListener(const CTraceListener &) = delete;
    CTraceListener &operator=(const CTraceListener &) = delete;

    void OnDump(const CCUString &sText) override { m_text += static_cast<const char *>(sText); }

    const std::string &Text() const { return m_text; }

private:
    std::string m_text;
};
