// Those who show commands: what they are told, and who may go meanwhile.
#include "CUI/CommandMap.h"
#include "CUI/CommandView.h"
#include "Support/TestCommand.h"

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

    std::string m_told;
    std::function<void()> m_onChange = [] {};
};

}  // namespace

TEST(CommandView, HearsOfEveryChangeOnceAndMayGoInEveryCallOfAPass)
{
    for (int nCase = 0; nCase < 4; ++nCase) {
        auto command = std::make_unique<CTestCommand>(1001u);
        std::unique_ptr<CView> views[20];
        for (auto &view : views)
            view = std::make_unique<CView>(1001);
        const std::function<void()> leave = [&] {
            if (!views[1])
                return;
            for (int i = 0; i < 10; ++i)
                views[i].reset();
            if (nCase == 3)
                command.reset();
            views[0] = std::make_unique<CView>(1002);
            CCUICommandMap::IdleUpdate();
        };
        command->m_nState = 0x142;
        (nCase == 0   ? command->m_onText
         : nCase == 1 ? command->m_onState
                      : views[1]->m_onChange) = leave;
        CCUICommandMap::IdleUpdate();
        EXPECT_EQ(nullptr, views[1]) << nCase;
        if (command)
            command->m_nState = 2;
        CCUICommandMap::IdleUpdate();
        EXPECT_EQ("0 ", views[0]->m_told);
        for (int i = 10; i < 20; ++i)
            EXPECT_EQ(command ? "2 142tip 2 " : "2 0 ", views[i]->m_told) << nCase;
    }
}
