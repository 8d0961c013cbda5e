#include <random>

#include "CU/IDGenerator.h"
#include "CUI/CommandHandler.h"
#include "CUI/CommandMap.h"
#include "Support/Reports.h"
#include "Support/TestWindow.h"

namespace {

using Ids = std::vector<unsigned int>;

// Tells what it is asked.
class CCommand final : public CCUICommandHandler
{
public:
    CCommand(unsigned int nID, unsigned int nRange = 1) : CCUICommandHandler(nID, nRange) {}
    void HandleUpdate(unsigned int nID) override { s_updates.push_back(nID); }
    unsigned short GetState(unsigned int) override { return m_nState; }
    CCUString GetShortTT(unsigned int) override { return "Open"; }

    inline static Ids s_updates;
    unsigned short m_nState = CUI_COMMAND_ACTIVE;
};

}  // namespace

TEST(CommandMap, FindsWhatWasAddedOrPutThereLastInTablesThatGrowInSteps)
{
    const CReports reports;
    std::mt19937 random(1);
    std::vector<std::unique_ptr<CCommand>> commands;
    std::map<unsigned int, CCUICommandHandler *> expected;
    CCommand edge(1126, 2);
    expected[1126] = expected[1127] = &edge;
    unsigned int nEnds[] = {1128, 10064};  // of the tables
    CCUICommandMap::Override(10063, &edge);
    EXPECT_EQ(&edge, CCUICommandMap::Override(10063, nullptr));
    for (int i = 0; i < 3000; ++i) {
        const int nTable = i % 2;
        const unsigned int nBase = nTable ? 10000 : 1000, nRange = 1 + random() % 4;
        const unsigned int nID = nBase + random() % 500, nOther = nBase + random() % 500;
        const size_t n = commands.empty() ? 0 : random() % commands.size();
        if (random() % 4 || commands.empty()) {
            if (expected[nID] || expected[nID + 1] || expected[nID + 2] || expected[nID + 3])
                continue;
            commands.push_back(std::make_unique<CCommand>(nID, nRange));
            for (unsigned int own = nID; own < nID + nRange; ++own)
                expected[own] = commands.back().get();
            nEnds[nTable] = std::max(nEnds[nTable], nBase + (nID - nBase + nRange + 63) / 64 * 64);
        } else if (random() % 2 && nOther < nEnds[nTable]) {
            EXPECT_EQ(expected[nOther], CCUICommandMap::Override(nOther, commands[n].get()));
            expected[nOther] = commands[n].get();
        } else {  // removal finds it wherever it has been put
            for (unsigned int own = 0; own < commands[n]->GetIDRange(); ++own)
                expected[commands[n]->GetID() + own] = nullptr;
            for (auto &entry : expected)
                entry.second = entry.second == commands[n].get() ? nullptr : entry.second;
            commands.erase(commands.begin() + static_cast<ptrdiff_t>(n));
        }
        ASSERT_EQ(expected[nOther], CCUICommandMap::Lookup(nOther)) << i << ": " << nOther;
        CCommand probe(static_cast<unsigned int>(-1));
        CCUICommandMap::Override(nEnds[nTable], &probe);
        ASSERT_EQ(nullptr, CCUICommandMap::Lookup(nEnds[nTable])) << i;
    }
    EXPECT_EQ(0, reports.Total());
}

TEST(CommandMap, ReportsMisuse)
{
    CReports reports;
    for (const unsigned int nID : {0u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
        EXPECT_EQ(nullptr, CCUICommandMap::Lookup(nID));
    EXPECT_EQ("0; pCmdHandler; pCmdHandler", reports.Of("CommandMap", [] {
        EXPECT_EQ(nullptr, CCUICommandMap::Lookup(999));
        EXPECT_EQ(0, CCUICommandMap::Add(nullptr) + CCUICommandMap::Remove(nullptr));
    }));
    const Texts add = {"CommandHandler: CCUICommandMap::Add(this)"};
    CCommand one(1500, 2), tooLarge(0x7FFFFFFF, 0xFFFFFFFF);  // no memory has that
    EXPECT_EQ(add, reports.Asserts());
    std::vector<std::unique_ptr<CCommand>> late;
    EXPECT_EQ("m_pMap[nMap][nIndex + nI] == NULL; 0; nIndex >= 0; " + add[0],
              reports.Of("CommandMap", [&] {
                  late.push_back(std::make_unique<CCommand>(1501));
                  late.push_back(std::make_unique<CCommand>(999));
              }));
}

TEST(CommandMap, DumpsEveryEntry)
{
    const CDumped trace;
    CCommand command(1002);
    command.m_nState = 0xFF;
    CCUICommandHandler plain(10005, 1);
    CCUICommandMap::Dump();
    EXPECT_EQ(
        "CommandMap Dump\n  Map[0]\n    Entry[2] ShortTT: Open, ID: 1002, State: Menu "
        "Minimized Hidden Timer Active HiddenDialogControl\n  Map[1]\n"
        "    Entry[5] ShortTT: UNKNOWN!, ID: 10005, State: Active\n",
        trace.m_text);
}

TEST(CommandHandler, DrawsIdentifiersInBlocksOrServesNoneAndChecksItsRange)
{
    CReports reports;
    CCommand block(0, 3);
    EXPECT_EQ(&block, CCUICommandMap::Lookup(block.GetID() + 2));
    EXPECT_EQ(block.GetID() + 3, CCUIIDGenerator::GetNextID());
    EXPECT_EQ(0u, CCommand(0x80000000).GetID());
    EXPECT_EQ(0u, CCommand(0xFFFFFFFB, 2).GetID());
    EXPECT_EQ(Texts{"CommandHandler: nIDRange == 1"}, reports.Asserts());
    CCUICommandHandler handler(2000, 2);
    handler.HandleCommand(0);
    handler.HandleUpdate(2001);
    EXPECT_EQ(2, handler.GetState(3000));
    EXPECT_EQ(Texts(), reports.Asserts());
    handler.HandleCommand(2002);
    handler.HandleUpdate(1999);
    EXPECT_STREQ("UNKNOWN!", handler.GetShortTT(0));
    EXPECT_STREQ("This command is UNKNOWN!", handler.GetLongTT(0));
    EXPECT_EQ(Texts(4, "CommandHandler: nID >= m_nID && nID < m_nID + m_nIDRange"),
              reports.Asserts());
}
