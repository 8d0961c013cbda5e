#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "CU/IDGenerator.h"
#include "CUI/CommandHandler.h"
#include "CUI/CommandMap.h"
#include "Support/Reports.h"

namespace {

using Texts = std::vector<std::string>;
using Ids = std::vector<unsigned int>;

// Tells what it is asked and does what the test wants done then.
class CCommand final : public CCUICommandHandler
{
public:
    CCommand(unsigned int nID, unsigned int nRange = 1) : CCUICommandHandler(nID, nRange) {}

    void HandleUpdate(unsigned int nID) override
    {
        m_updates.push_back(nID);
        m_onUpdate();
    }
    unsigned short GetState(unsigned int) override
    {
        m_onState();
        return m_nState;
    }
    CCUString GetShortTT(unsigned int) override { return "Open"; }

    unsigned short m_nState = CUI_COMMAND_ACTIVE;
    Ids m_updates;
    std::function<void()> m_onUpdate = [] {}, m_onState = [] {};
};

// Whether the tables reach to the identifier.
bool Covers(unsigned int nID)
{
    CCommand probe(static_cast<unsigned int>(-1));
    CCUICommandMap::Override(nID, &probe);
    const bool bCovered = CCUICommandMap::Lookup(nID) == &probe;
    EXPECT_EQ(bCovered ? &probe : nullptr, CCUICommandMap::Override(nID, nullptr));
    return bCovered;
}

}  // namespace

TEST(CommandMap, MapsTheIdentifiersOfTwoTablesThatGrowInSteps)
{
    CReports reports;
    EXPECT_EQ(nullptr, CCUICommandMap::Lookup(1000));
    const struct
    {
        unsigned int nFirst, nRange;
        Ids mapped, unmapped;
        unsigned int nEnd;  // of the table
    } cases[] = {
        {1000, 1, {1000}, {0, 1001, 10000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF}, 1064},
        {1100, 10, {1100, 1109}, {1099, 1110}, 1128},
        {1300, 1, {1300}, {1299}, 1320},
        {10062, 2, {10062, 10063}, {10061, 1062}, 10064},
        {10063, 2, {10063, 10064}, {10062, 10065}, 10128},
        // Over the end of the first table: the second does not know these identifiers.
        {9998, 4, {9998, 9999}, {9997, 10000, 10001}, 10128},
    };
    for (const auto &test : cases) {
        CCommand command(test.nFirst, test.nRange);
        for (const unsigned int nID : test.mapped)
            EXPECT_EQ(&command, CCUICommandMap::Lookup(nID)) << nID;
        for (const unsigned int nID : test.unmapped)
            EXPECT_EQ(nullptr, CCUICommandMap::Lookup(nID)) << nID;
        EXPECT_TRUE(Covers(test.nEnd - 1) && !Covers(test.nEnd)) << test.nEnd;
    }
    for (const auto &test : cases)
        EXPECT_EQ(nullptr, CCUICommandMap::Lookup(test.nFirst));
    EXPECT_EQ(Texts(), reports.Asserts());
    EXPECT_EQ(nullptr, CCUICommandMap::Lookup(999));
    EXPECT_EQ(nullptr, CCUICommandMap::Override(1, nullptr));
    EXPECT_EQ(Texts(2, "CommandMap: 0"), reports.Asserts());
}

TEST(CommandMap, ReportsMisuse)
{
    CReports reports;
    EXPECT_EQ(0, CCUICommandMap::Add(nullptr) + CCUICommandMap::Remove(nullptr));
    EXPECT_EQ(Texts(2, "CommandMap: pCmdHandler"), reports.Asserts());
    const Texts refusals = {"CommandHandler: CCUICommandMap::Add(this)",
                            "CommandHandler: CCUICommandMap::Remove(this)"};
    // More than any memory holds, and more than numbers hold.
    for (const unsigned int nRange : {0x30000000u, 0xFFFFFFFFu})
        EXPECT_EQ(nRange, CCommand(0x7FFFFFFF, nRange).GetIDRange());
    EXPECT_EQ((Texts{refusals[0], refusals[1], refusals[0], refusals[1]}), reports.Asserts());
    CCommand one(1500, 2), other(1501), empty(1600, 0);
    EXPECT_EQ(&other, CCUICommandMap::Lookup(1501));
    EXPECT_EQ(nullptr, CCUICommandMap::Lookup(1600));
    EXPECT_EQ(Texts{"CommandMap: m_pMap[nMap][nIndex + nI] == NULL"}, reports.Asserts());
    CCommand below(999);
    EXPECT_EQ((Texts{"CommandMap: 0", "CommandMap: nIndex >= 0", refusals[0]}), reports.Asserts());
}

TEST(CommandMap, RefreshesInOrderWhatAsksForNothingElseWhereverItIs)
{
    CCommand early(1001, 2), late(12000, 2);
    for (unsigned int nState = 0; nState < 0x100; ++nState) {
        early.m_updates.clear();
        early.m_nState = static_cast<unsigned short>(nState);
        CCUICommandMap::IdleUpdate();
        EXPECT_EQ((nState & 0x3D) ? Ids{} : (Ids{1001, 1002}), early.m_updates) << nState;
    }
    early.m_nState = 0;
    late.m_updates.clear();
    early.m_onUpdate = [&] { EXPECT_EQ(Ids(), late.m_updates); };
    EXPECT_EQ(&early, CCUICommandMap::Override(1002, &late));
    EXPECT_EQ(nullptr, CCUICommandMap::Override(10003, &late));
    CCUICommandMap::IdleUpdate();
    EXPECT_EQ((Ids{1002u, 10003u, 12000u, 12001u}), late.m_updates);
    // Removal finds it wherever it has been put.
    EXPECT_EQ(1, CCUICommandMap::Remove(&late));
    for (const unsigned int nID : {1002u, 10003u, 12000u, 12001u})
        EXPECT_EQ(nullptr, CCUICommandMap::Lookup(nID)) << nID;
}

TEST(CommandMap, IdlePassSurvivesWhatHandlersDo)
{
    CCommand leaving(1010), growing(1020), last(10001);
    auto first = std::make_unique<CCommand>(1001, 2);
    auto victim = std::make_unique<CCommand>(1003);
    // Deletes another and itself, and with it its second entry.
    first->m_onUpdate = [&] {
        victim.reset();
        first.reset();
    };
    leaving.m_onState = [&] { CCUICommandMap::Remove(&leaving); };
    // Every refreshed command adds one more behind the table's end.
    std::vector<std::unique_ptr<CCommand>> added;
    std::function<void()> grow = [&] {
        added.push_back(std::make_unique<CCommand>(1064 + 64 * added.size()));
        added.back()->m_onUpdate = grow;
    };
    growing.m_onUpdate = grow;
    CCUICommandMap::IdleUpdate();
    EXPECT_FALSE(first || victim);
    EXPECT_EQ(Ids(), leaving.m_updates);
    EXPECT_EQ(1u, added.size());
    growing.m_onUpdate = [] {};
    CCUICommandMap::IdleUpdate();
    EXPECT_EQ(2u, added.size());
    EXPECT_EQ((Ids{10001, 10001}), last.m_updates);
}

TEST(CommandMap, DumpsEveryEntry)
{
    CDumped trace;
    CCommand command(1002, 2);
    command.m_nState = 0xFF;
    CCUICommandHandler plain(10005, 1);
    CCUICommandMap::Dump();
    const std::string states = ", State: Menu Minimized Hidden Timer Active HiddenDialogControl\n";
    EXPECT_EQ("CommandMap Dump\n  Map[0]\n    Entry[2] ShortTT: Open, ID: 1002" + states +
                  "    Entry[3] ShortTT: Open, ID: 1003" + states +
                  "  Map[1]\n    Entry[5] ShortTT: UNKNOWN!, ID: 10005, State: Active\n",
              trace.m_text);
}

TEST(CommandHandler, DrawsIdentifiersInBlocksOrServesNoneAndChecksItsRange)
{
    CReports reports;
    CCommand block(0, 3);
    for (unsigned int nID = block.GetID(); nID < block.GetID() + 3; ++nID)
        EXPECT_EQ(&block, CCUICommandMap::Lookup(nID));
    EXPECT_EQ(block.GetID() + 3, CCUIIDGenerator::GetNextID());
    EXPECT_EQ(0u, CCommand(0x80000000).GetID() + CCommand(0xFFFFFFFF).GetID());
    EXPECT_EQ(Texts(), reports.Asserts());
    EXPECT_EQ(0u, CCommand(0xFFFFFFFB, 2).GetID());
    EXPECT_EQ(Texts{"CommandHandler: nIDRange == 1"}, reports.Asserts());

    // The defaults check the identifier.
    CCUICommandHandler handler(2000, 2);
    handler.HandleCommand(0);
    handler.HandleUpdate(0);
    handler.HandleCommand(2001);
    EXPECT_EQ(2, handler.GetState(3000));
    EXPECT_STREQ("UNKNOWN!", handler.GetShortTT(2000));
    EXPECT_EQ(Texts(), reports.Asserts());
    handler.HandleCommand(2002);
    handler.HandleUpdate(1999);
    EXPECT_STREQ("UNKNOWN!", handler.GetShortTT(0));
    EXPECT_STREQ("This command is UNKNOWN!", handler.GetLongTT(0));
    EXPECT_EQ(Texts(4, "CommandHandler: nID >= m_nID && nID < m_nID + m_nIDRange"),
              reports.Asserts());
}
