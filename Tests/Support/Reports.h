#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "CU/Dump.h"
#include "CU/String.h"
#include "Support/TemporaryDirectory.h"

// The failed checks that the process reports while the object lives, which gives it a temporary
// directory. A process reports no more than ten.
class CReports
{
public:
    // How often `expression` was reported by `source`.
    int Count(const std::string &expression, const std::string &source = "String") const
    {
        const std::vector<std::string> all = All();
        return static_cast<int>(std::count(all.begin(), all.end(), source + ": " + expression));
    }
    int Total() const { return static_cast<int>(All().size()); }
    // Those since the last call, as "Source: expression", in order.
    std::vector<std::string> Asserts()
    {
        const std::vector<std::string> all = All();
        std::vector<std::string> asserts(all.begin() + m_nSeen, all.end());
        m_nSeen += static_cast<int>(asserts.size());
        return asserts;
    }

    // The expressions alone of what `source` reports while `act` runs, with "; " between them.
    template <typename Act>
    std::string Of(const std::string &source, Act act)
    {
        const std::string head = source + ": ";
        std::string texts;
        Asserts();
        act();
        for (const std::string &text : Asserts()) {
            const bool bIts = text.compare(0, head.size(), head) == 0;
            texts += (texts.empty() ? "" : "; ") + (bIts ? text.substr(head.size()) : text);
        }
        return texts;
    }

    const CTemporaryDirectory &Directory() const { return m_directory; }

private:
    std::vector<std::string> All() const
    {
        const std::string text = m_directory.Contents("ZELTrace-*.txt"), head = "\nAssert:";
        std::vector<std::string> asserts;
        for (size_t at = 0; (at = text.find(head, at)) != std::string::npos;) {
            at += head.size();
            const size_t file = text.find("  File:", at);
            const size_t line = text.find("  Line:", file);
            asserts.push_back(text.substr(file + 7, line - file - 7) + ": " +
                              text.substr(at, file - at));
        }
        return asserts;
    }

    CTemporaryDirectory m_directory;
    int m_nSeen = 0;
};

// What goes to the trace while the object lives.
class CDumped : public CCUDumpCallback
{
public:
    CDumped() { CUDumpRegister(this); }
    ~CDumped() { CUDumpUnRegister(this); }
    CDumped(const CDumped &) = delete;
    CDumped &operator=(const CDumped &) = delete;
    void OnDump(const CCUString &sText) override { m_text += sText; }

    std::string m_text;
};
