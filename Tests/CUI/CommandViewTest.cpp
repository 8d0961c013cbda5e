// Those who show commands: what they are told, and who may go meanwhile.
#include "CUI/CommandHandler.h"
#include "CUI/CommandMap.h"
#include "CUI/CommandView.h"
#include "Support/Reports.h"
#include "Support/TestWindow.h"

namespace {

struct CView final : CCUICommandView
{
    explicit CView(unsigned nID) { SetCommand(nID); }
    void OnCommandChanged(unsigned short nState, const CCUString &sText) override
    {
        m_told += Text("%x%s ", nState, sText.GetString());
        const auto function = m_onChange;  // it may delete this
        function();
    }
    std::string Told() { return std::exchange(m_told, ""); }

    std::string m_told;
    std::function<void()> m_onChange = [] {};
};

struct CCommand final : CCUICommandHandler
{
    explicit CCommand(unsigned nID) : CCUICommandHandler(nID, 1) {}
    unsigned short GetState(unsigned) override { return m_onState(), m_nState; }
    CCUString GetShortTT(unsigned) override { return m_onText(), m_text; }
    void HandleUpdate(unsigned) override { m_nState = m_nNext; }

    unsigned short m_nState = 2, m_nNext = 2;
    const char *m_text = "a";
    std::function<void()> m_onState = [] {}, m_onText = [] {};
};

}  // namespace

TEST(CommandView, HearsOfEveryChangeOfItsCommandOnceAndAfterAllUpdates)
{
    CReports reports;
    CView view(1001), other(999), none(0);
    EXPECT_EQ("0 ", view.Told()) << "no handler";
    EXPECT_EQ("0 ", other.Told());
    auto command = std::make_unique<CCommand>(1001);
    const struct
    {
        unsigned short nState;
        const char *text, *told;
    } steps[] = {{2, "a", "2 "},        {2, "b", ""},       {0x102, "b", "102b "}, {0x102, "b", ""},
                 {0x102, "c", "102c "}, {0x3D, "c", "3d "}, {0x42, "c", "42 "},    {0, "c", "0 "}};
    for (const auto &step : steps) {
        command->m_nNext = step.nState;
        command->m_text = step.text;
        CCUICommandMap::IdleUpdate();
        EXPECT_EQ(step.told, view.Told()) << step.nState;
        command->m_nState &= 0x1C2;  // with the other bits it is not updated, but shown
    }
    command->m_nNext = 2;
    CCUICommandMap::IdleUpdate();
    command.reset();
    CCUICommandMap::IdleUpdate();
    EXPECT_EQ("2 0 ", view.Told());
    view.SetCommand(0);
    const CCommand again(1001);
    CCUICommandMap::IdleUpdate();
    EXPECT_EQ("", view.Told() + other.Told() + none.Told());
    EXPECT_EQ(0, reports.Total());
}

TEST(CommandView, MayGoInEveryCallOfAPass)
{
    CReports reports;
    for (int nCase = 0; nCase < 5; ++nCase) {
        auto command = std::make_unique<CCommand>(1001);
        std::unique_ptr<CView> views[3];
        for (auto &view : views)
            view = std::make_unique<CView>(1001);
        int nAsked = 0;
        bool bDone = false;
        const auto leave = [&] {
            if (std::exchange(bDone, true))
                return;
            for (auto &view : views)
                view.reset();
            if (nCase & 1)
                command.reset();
            views[0] = std::make_unique<CView>(1002);
            CCUICommandMap::IdleUpdate();
        };
        command->m_nNext = 0x142;
        if (nCase < 2)
            command->m_onState = [&] { return ++nAsked == 2 ? leave() : void(); };
        else if (nCase < 4)
            views[1]->m_onChange = leave;
        else
            command->m_onText = leave;
        CCUICommandMap::IdleUpdate();
        EXPECT_EQ(nullptr, views[1]) << nCase;
        EXPECT_EQ("0 ", views[0]->Told());
    }
    EXPECT_EQ(0, reports.Total());
}
