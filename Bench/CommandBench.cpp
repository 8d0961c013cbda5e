#include <memory>
#include <unordered_map>

#include "Bench.h"
#include "CUI/CommandHandler.h"
#include "CUI/CommandMap.h"

namespace {

const unsigned int FIRST_ID = 10000;
const int COMMANDS = 5000;

class CBenchCommand final : public CCUICommandHandler
{
public:
    explicit CBenchCommand(unsigned int nID) : CCUICommandHandler(nID, 1) {}
    void HandleUpdate(unsigned int nID) override { m_nUpdates += nID; }
    unsigned short GetState(unsigned int) override { return s_nState; }

    static unsigned short s_nState;

private:
    unsigned int m_nUpdates = 0;
};

unsigned short CBenchCommand::s_nState = CUI_COMMAND_ACTIVE;

}  // namespace

BENCH_GROUP(Command)
{
    std::vector<std::unique_ptr<CBenchCommand>> commands;
    for (unsigned int i = 0; i < COMMANDS; ++i)
        commands.push_back(std::make_unique<CBenchCommand>(FIRST_ID + i));

    std::vector<CCUICommandHandler *> handlers;
    std::unordered_map<unsigned int, CCUICommandHandler *> hash;
    std::vector<unsigned int> ids;
    for (unsigned int i = 0; i < COMMANDS; ++i) {
        handlers.push_back(commands[i].get());
        hash[FIRST_ID + i] = commands[i].get();
        // In an order that no predictor of addresses knows.
        ids.push_back(FIRST_ID + (i * 2654435761u >> 8) % COMMANDS);
    }
    const auto lookUp = [&] {
        for (const unsigned int nID : ids)
            BenchKeep(CCUICommandMap::Lookup(nID));
    };
    BenchCompare(
        "5,000 times Lookup", lookUp, "array index",
        [&] {
            for (const unsigned int nID : ids)
                BenchKeep(handlers[nID - FIRST_ID]);
        },
        2.0);
    BenchCompare(
        "5,000 times Lookup", lookUp, "std::unordered_map",
        [&] {
            for (const unsigned int nID : ids)
                BenchKeep(hash.find(nID)->second);
        },
        0.5);
    // Commands that are refreshed elsewhere cost the pass one call, those that it refreshes two.
    const auto idleUpdate = [] { CCUICommandMap::IdleUpdate(); };
    BenchCompare(
        "IdleUpdate, 5,000 commands", idleUpdate, "loop of 10,000 virtual calls",
        [&] {
            for (CCUICommandHandler *handler : handlers) {
                BenchKeep(handler->GetState(0));
                handler->HandleUpdate(0);
            }
        },
        1.5);
    CBenchCommand::s_nState = CUI_COMMAND_MENU;
    BenchCompare(
        "IdleUpdate, 5,000 commands in menus", idleUpdate, "loop of 5,000 virtual calls",
        [&] {
            for (CCUICommandHandler *handler : handlers)
                BenchKeep(handler->GetState(0));
        },
        1.5);
}
