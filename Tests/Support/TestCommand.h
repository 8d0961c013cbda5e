#pragma once

#include "CUI/CommandHandler.h"
#include "Support/TestWindow.h"

// A command, or several in a row, that answers what the test wants and writes down what is done.
class CTestCommand final : public CCUICommandHandler
{
public:
    explicit CTestCommand(unsigned nID, unsigned nRange = 1)
        : CCUICommandHandler(nID, nRange), m_nFirst(nID)
    {
    }
    void HandleCommand(unsigned nID) override
    {
        m_done += Text("%u ", nID - m_nFirst);
        m_onCommand();
    }
    void HandleUpdate(unsigned) override { m_onUpdate(); }
    unsigned short GetState(unsigned) override { return m_onState(), m_nState; }
    CCUString GetShortTT(unsigned) override { return m_onText(), m_text; }
    CCUString GetLongTT(unsigned) override { return "Long help"; }
    std::string Done() { return std::exchange(m_done, ""); }

    unsigned short m_nState = CUI_COMMAND_ACTIVE;
    const char *m_text = "tip";
    std::function<void()> m_onCommand = [] {}, m_onUpdate = [] {}, m_onState = [] {},
                          m_onText = [] {};

private:
    const unsigned m_nFirst;
    std::string m_done;
};
