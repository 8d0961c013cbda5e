#include <deque>
#include <unordered_map>

#include "Bench.h"
#include "CUI/CommandHandler.h"
#include "CUI/CommandMap.h"

namespace {

const unsigned int FIRST_ID = 10000;
const int COMMANDS = 5000;

class CCountingCommand : public CCUICommandHandler
{
public:
    explicit CCountingCommand(unsigned int nID) : CCUICommandHandler(nID, 1) {}
    void HandleUpdate(unsigned int nID) override { m_nUpdates += nID; }

private:
    unsigned int m_nUpdates = 0;
};

// What most commands are: always refreshed, because they leave GetState as it is.
class CBenchCommand final : public CCountingCommand
{
public:
    using CCountingCommand::CCountingCommand;
};

// One that says from moment to moment who refreshes it.
class CStateCommand final : public CCountingCommand
{
public:
    using CCountingCommand::CCountingCommand;
    unsigned short GetState(unsigned int) override { return s_nState; }

    static unsigned short s_nState;
};

unsigned short CStateCommand::s_nState = CUI_COMMAND_ACTIVE;

template <typename Command>
std::deque<Command> MakeCommands()
{
    std::deque<Command> commands;
    for (unsigned int i = 0; i < COMMANDS; ++i)
        commands.emplace_back(FIRST_ID + i);
    return commands;
}

std::vector<CCUICommandHandler *> Handlers()
{
    std::vector<CCUICommandHandler *> handlers;
    for (unsigned int i = 0; i < COMMANDS; ++i)
        handlers.push_back(CCUICommandMap::Lookup(FIRST_ID + i));
    return handlers;
}

void CompareLookup()
{
    const auto commands = MakeCommands<CBenchCommand>();
    const std::vector<CCUICommandHandler *> handlers = Handlers();
    std::unordered_map<unsigned int, CCUICommandHandler *> hash;
    std::vector<unsigned int> ids;
    for (unsigned int i = 0; i < COMMANDS; ++i) {
        hash[FIRST_ID + i] = handlers[i];
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
}

void CompareIdleUpdate()
{
    const auto commands = MakeCommands<CBenchCommand>();
    const std::vector<CCUICommandHandler *> handlers = Handlers();
    BenchCompare(
        "IdleUpdate, 5,000 commands", CCUICommandMap::IdleUpdate, "loop of 5,000 virtual calls",
        [&] {
            for (CCUICommandHandler *handler : handlers)
                handler->HandleUpdate(0);
        },
        1.5);
}

// A GetState of one's own must be called: with the refreshing that is two calls a command.
void CompareIdleUpdateOfStates()
{
    const auto commands = MakeCommands<CStateCommand>();
    const std::vector<CCUICommandHandler *> handlers = Handlers();
    const auto askAll = [&] {
        for (CCUICommandHandler *handler : handlers)
            BenchKeep(handler->GetState(0));
    };
    BenchCompare(
        "IdleUpdate, 5,000 commands with GetState", CCUICommandMap::IdleUpdate,
        "loop of 10,000 virtual calls",
        [&] {
            for (CCUICommandHandler *handler : handlers) {
                BenchKeep(handler->GetState(0));
                handler->HandleUpdate(0);
            }
        },
        1.5);
    BenchCompare("IdleUpdate, 5,000 commands with GetState", CCUICommandMap::IdleUpdate,
                 "loop of 5,000 virtual calls", askAll, 0);
    CStateCommand::s_nState = CUI_COMMAND_MENU;
    BenchCompare("IdleUpdate, 5,000 commands in menus", CCUICommandMap::IdleUpdate,
                 "loop of 5,000 virtual calls", askAll, 1.5);
}

}  // namespace

BENCH_GROUP(Command)
{
    CompareLookup();
    CompareIdleUpdate();
    CompareIdleUpdateOfStates();
}
