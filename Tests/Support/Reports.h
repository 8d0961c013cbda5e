#pragma once

#include <algorithm>
#include <sstream>
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
    // The expressions alone of what `source` reports while `act` runs, with "; " between them.
    template <typename Act>
    std::string Of(const std::string &source, Act act)
    {
        std::string texts;
        const size_t nBefore = All().size();
        act();
        const std::vector<std::string> all = All();
        for (size_t i = nBefore; i < all.size(); ++i) {
            const bool bIts = all[i].find(source + ": ") == 0;
            texts += (texts.empty() ? "" : "; ") + all[i].substr(bIts ? source.size() + 2 : 0);
        }
        return texts;
    }
    const CTemporaryDirectory &Directory() const { return m_directory; }

private:
    // As "Source: expression", in order.
    std::vector<std::string> All() const
    {
        std::istringstream text(m_directory.Contents("ZELTrace-*.txt"));
        std::vector<std::string> asserts;
        for (std::string line; std::getline(text, line);) {
            const size_t file = line.find("  File:"), number = line.find("  Line:");
            if (line.find("Assert:") == 0)
                asserts.push_back(line.substr(file + 7, number - file - 7) + ": " +
                                  line.substr(7, file - 7));
        }
        return asserts;
    }

    CTemporaryDirectory m_directory;
};

// What goes to the trace while the object lives.
class CDumped : public CCUDumpCallback
{
public:
    CDumped() { CUDumpRegister(this); }
    ~CDumped() { CUDumpUnRegister(this); }
    void OnDump(const CCUString &sText) override { m_text += sText; }

    std::string m_text;
};
