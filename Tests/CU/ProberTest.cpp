#include "CU/Prober.h"

#include <gtest/gtest.h>

#include <deque>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>

#include "CU/CU.h"
#include "CU/DebugSwitch.h"
#include "CU/Dump.h"
#include "CU/ProberClient.h"
#include "Support/ChildProcess.h"
#include "Support/TestTimer.h"
#include "Support/Threads.h"

namespace {

std::string Value(unsigned long nID)
{
    CUProberValue value;
    return CCUProber::Get(nID, value) == CU_PROBER_DONE ? value.ToText().GetString() : "gone";
}

TEST(Prober, SetsEachKindToWhatItsTextSaysAndNothingElse)
{
    CCUProberLong number("\\Test", "Number", -7);
    CCUProberDouble fraction("\\Test", "Fraction", 0.1);
    CCUProberFlag flag("\\Test", "Flag", true);
    CCUProberText text("\\Test", "Text", "abc");
    const auto compute = [](void *p) { return *static_cast<long *>(p) + 1; };
    long nBase = 41;
    CCUProberFunction computed("\\Test", "Computed", compute, "", "", &nBase);
    const struct
    {
        unsigned long nID;
        const char *text;
        CUProberResult nResult;
        const char *value;
    } rows[] = {{number.GetID(), " +19 ", CU_PROBER_DONE, "19"},
                {number.GetID(), "0xFFFFFFFF", CU_PROBER_DONE, "-1"},
                {number.GetID(), "-2147483648", CU_PROBER_DONE, "-2147483648"},
                {number.GetID(), "2147483648", CU_PROBER_NOT_PARSED, "-2147483648"},
                {number.GetID(), "0x100000000", CU_PROBER_NOT_PARSED, "-2147483648"},
                {number.GetID(), "", CU_PROBER_NOT_PARSED, "-2147483648"},
                {number.GetID(), nullptr, CU_PROBER_DONE, "-7"},
                {fraction.GetID(), "-1e-3", CU_PROBER_DONE, "-0.001"},
                {fraction.GetID(), "1e999", CU_PROBER_NOT_PARSED, "-0.001"},
                {fraction.GetID(), "0.30000000000000004", CU_PROBER_DONE, "0.30000000000000004"},
                {fraction.GetID(), nullptr, CU_PROBER_DONE, "0.1"},
                {flag.GetID(), "OFF", CU_PROBER_DONE, "false"},
                {flag.GetID(), "offer", CU_PROBER_NOT_PARSED, "false"},
                {flag.GetID(), nullptr, CU_PROBER_DONE, "true"},
                {text.GetID(), "", CU_PROBER_DONE, ""},
                {text.GetID(), nullptr, CU_PROBER_DONE, "abc"},
                {computed.GetID(), "1", CU_PROBER_REFUSED, "42"},
                {computed.GetID() + 1, "1", CU_PROBER_GONE, "gone"}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.text ? row.text : "default");
        EXPECT_EQ(row.nResult, CCUProber::Set(row.nID, row.text));
        EXPECT_EQ(row.value, Value(row.nID));
    }
    EXPECT_TRUE(number == -7 && fraction > 0.09 && flag && text.Get() == "abc");
    // As a static one is found by another's constructor that runs before its own.
    alignas(CCUProberText) static char s_memory[sizeof(CCUProberText)];
    auto &early = *reinterpret_cast<CCUProberText *>(s_memory);
    early.Set("x");
    EXPECT_STREQ("", early.Get());
}

TEST(Prober, FindsTheLatestOfANameAmongManyThatComeAndGo)
{
    std::map<std::string, std::map<unsigned long, std::unique_ptr<CCUProberLong>>> all;
    std::mt19937 random(14);
    const char *const paths[] = {"", "\\A", "\\A\\B", "\\AB"};
    const char *const names[] = {"x", "y1", "B", "Long name"};
    for (int i = 0; i < 5000; ++i) {
        const char *const path = paths[random() % 4], *const name = names[random() % 4];
        auto &same = all[path + std::string("\\") + name];
        if (random() % 3 == 0 && !same.empty()) {
            same.erase(std::next(same.begin(), static_cast<int>(random() % same.size())));
        } else {
            auto variable = std::make_unique<CCUProberLong>(path, name, i);
            same[variable->GetID()] = std::move(variable);
        }
        std::string asked = path + std::string("\\") + name;
        _strupr(&asked[0]);
        EXPECT_EQ(same.empty() ? 0 : same.rbegin()->first, CCUProber::Find(asked.c_str()));
    }
    std::set<unsigned long> within, listed;
    for (const auto &same : all) {
        for (const auto &variable : same.second) {
            if (same.first.compare(0, 3, "\\A\\") == 0)
                within.insert(variable.first);
        }
    }
    for (unsigned long nID = 0; (nID = CCUProber::GetNext(nID, "\\a")) != 0;)
        listed.insert(nID);
    EXPECT_EQ(within, listed);
    EXPECT_EQ(0u, CCUProber::Find("\\A"));
    EXPECT_NE(0u, CCUProber::GetNext(0, "\\ab\\LONG NAME"));
    EXPECT_EQ(*within.begin(), CCUProber::GetNext(0, "\\A\\"));
}

// Readers ask for all that is there while it dies under them.
TEST(Prober, DiesWhileOthersRead)
{
    volatile LONG nRunning = 4;
    CThreads::Run(8, [&](int nThread) {
        if (nThread >= 4) {
            for (unsigned long nID = 0; nRunning;) {
                nID = CCUProber::GetNext(nID, "\\Dying");
                const std::string value = Value(nID);
                EXPECT_TRUE(value == "gone" || value == "7" || value == "text") << value;
            }
            return;
        }
        for (int i = 0; i < 1000; ++i) {
            auto pAlive = std::make_unique<long>(7);
            const auto compute = [](void *p) {
                Sleep(0);
                return *static_cast<long *>(p);
            };
            auto pComputed = std::make_unique<CCUProberFunction>("\\Dying", "Function", compute, "",
                                                                 "", pAlive.get());
            const CCUProberText text("\\Dying", "Text", "text");
            pComputed.reset();
            *pAlive = -1;  // nobody computes any more
        }
        InterlockedDecrement(&nRunning);
    });
    static CCUProberFunction *s_pOwn;
    const auto destroy = [](void *) {
        delete s_pOwn;
        return 5L;
    };
    s_pOwn = new CCUProberFunction("\\Dying", "Own", destroy);
    const unsigned long nID = s_pOwn->GetID();
    EXPECT_EQ("5", Value(nID));
    EXPECT_EQ("gone", Value(nID));
}

TEST(Prober, TellsAWindowOnceOfWhatChanges)
{
    const UINT uMessage = CURegisterMessageId("ProberTestChanged");
    MSG msg;
    const auto posted = [&] {
        int nCount = 0;
        while (PeekMessageA(&msg, CUGetWindow(), uMessage, uMessage, PM_REMOVE))
            ++nCount;
        return nCount;
    };
    CCUProberLong inside("\\Watched\\A", "Inside"), outside("\\Watch", "Outside");
    CCUProberWatch watch("\\Watched", CUGetWindow(), uMessage);
    CCUProberText late("\\Watched", "Late");
    EXPECT_TRUE(watch.IsTreeChanged());
    EXPECT_FALSE(watch.IsTreeChanged());
    EXPECT_EQ(1, posted());
    CThreads::Run(2, [&](int nThread) {
        for (int i = 0; i < 1000; ++i)
            nThread ? late.Set("x") : inside.Set(i), outside.Set(i);
    });
    EXPECT_EQ(1, posted());
    EXPECT_EQ(inside.GetID(), watch.Next());
    EXPECT_EQ(late.GetID(), watch.Next());
    inside.Add(1);
    EXPECT_EQ(0u, watch.Next());
    EXPECT_EQ(1, posted());
    EXPECT_EQ(inside.GetID(), watch.Next());
}

TEST(Prober, HasTheDebugSwitchesAndTheFrameworksOwnCounts)
{
    SetEnvironmentVariableA("CU_DEBUG", "TimeOutThreshold=250;Switch=3");
    CCUDebugSwitch switched("\\Debug\\Test", "Switch");
    switched.Add(1);
    EXPECT_EQ("4", Value(switched.GetID()));
    CTestTimer timer;
    timer.SetAlarm(3600000);
    EXPECT_EQ("250", Value(CCUProber::Find("\\Debug\\Timer\\TimeOutThreshold")));
    EXPECT_EQ("1", Value(CCUProber::Find("\\CU\\Timers\\Armed")));
    CUGetWindow();
    const std::string texts = Value(CCUProber::Find("\\CU\\Trace\\Texts"));
    struct CLines : CCUDumpCallback
    {
        void OnDump(const CCUString &sText) override { m_all += sText; }
        std::string m_all;
    } lines;
    CUDumpRegister(&lines);
    CCUProber::Dump("\\Debug\\Timer");
    CUDumpUnRegister(&lines);
    EXPECT_EQ(
        "\\Debug\\Timer\\TimerDebug = 0\n\\Debug\\Timer\\TimerCountThreshold = 0\n"
        "\\Debug\\Timer\\TimeOutThreshold = 250 ms\n",
        lines.m_all);
    EXPECT_EQ(std::stoi(texts) + 3, std::stoi(Value(CCUProber::Find("\\CU\\Trace\\Texts"))));
}

// The other process: reads all, sets what it may, and tells by its exit code how far it came.
CHILD_PROCESS(ProberAsker)
{
    const HWND hProgram =
        reinterpret_cast<HWND>(strtoul(strrchr(GetCommandLineA(), ' '), nullptr, 10));
    CCUProberClient client;
    int nStep = 1;
    const auto check = [&nStep](bool bTrue) { bTrue ? static_cast<void>(++nStep) : exit(nStep); };
    check(client.Connect(hProgram, 60000));
    check(client.GetProgram().Right(11) == "CUTests.exe");
    const int nCount = client.List();
    std::map<std::string, unsigned long> ids;
    std::vector<unsigned long> all;
    for (int i = 0; i < nCount; ++i) {
        const CUProberEntry &entry = client.GetEntry(i);
        ids[entry.sName.GetString()] = entry.nID;
        all.push_back(entry.nID);
        check(entry.sName != "Open" ||
              (entry.bOpen && entry.sUnit == "km" && entry.sDefault == "1"));
    }
    check(nCount > 6000 && ids["Long text"] != 0);
    std::vector<CUProberValue> values(all.size());
    check(client.Read(all.data(), values.data(), nCount) && !client.IsTreeChanged());
    for (size_t i = 0; i < all.size(); ++i) {
        if (all[i] == ids["Long text"])
            check(values[i].ToText() == CCUString('x', 4000));
        if (all[i] == ids["Closed"])
            check(values[i].ToText() == "2.5");
    }
    check(client.Set(ids["Closed"], "1") == CU_PROBER_REFUSED);
    check(client.Set(ids["Open"], "one") == CU_PROBER_NOT_PARSED);
    check(client.Set(999999, "1") == CU_PROBER_GONE);
    check(client.Set(ids["Open"], "77") == CU_PROBER_DONE);
    while (!client.IsTreeChanged())
        check(client.Read(&ids["Many"], values.data(), 1));
    exit(0);
}

TEST(Prober, IsReadAndSetFromAnotherProcess)
{
    CCUProberLong open("\\Outside", "Open", 1, "may be set", "km");
    CCUProberDouble closed("\\Outside", "Closed", 2.5);
    CCUProberText longText("\\Outside", "Long text");
    longText.Set(CCUString('x', 10000));
    open.SetOpen(true);
    std::deque<CCUProberLong> many;
    for (int i = 0; i < 6000; ++i)
        many.emplace_back("\\Outside", "Many", i);
    std::unique_ptr<CCUProberLong> added;
    const CChildProcess asker("ProberAsker",
                              std::to_string(reinterpret_cast<UINT_PTR>(CUGetWindow())).c_str());
    while (asker.IsRunning()) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
        CFakeClock::Pump();
        if (open == 77 && !added)
            added = std::make_unique<CCUProberLong>("\\Outside", "Added");
    }
    EXPECT_EQ(0u, asker.ExitCode());
    EXPECT_EQ(77, open.Get());
}

TEST(Prober, AnswersManyThatAskAtOnce)
{
    CCUProberLong open("\\Asked", "Open");
    open.SetOpen(true);
    // Looks for messages, so that other requests come in between.
    const auto pump = [](void *) { return CFakeClock::Pump(1) + 5L; };
    const CCUProberFunction pumping("\\Asked", "Pumping", pump);
    const unsigned long nID = pumping.GetID();
    const HWND hWnd = CUGetWindow();  // the first thread's, whichever test asked first
    const auto ask = [&](int) {
        CCUProberClient client;
        CUProberValue value;
        EXPECT_TRUE(client.Connect(hWnd, 60000) && client.Read(&nID, &value, 1));
        EXPECT_EQ(CU_PROBER_DONE, client.Set(open.GetID(), "5"));
    };
    CThreads::Run(40, ask, [] {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
        CFakeClock::Pump();
    });
}

TEST(Prober, AnswersNoRequestThatIsNotWellFormed)
{
    CCUProberText text("\\Random", "Text", "unchanged");
    CCUProberLong number("\\Random", "Number");
    number.SetOpen(true);
    const HWND hWnd = CUGetWindow();
    const UINT uSet = RegisterWindowMessageA("CUProberSet");
    std::mt19937 random(20);
    // Requests end right before a page that nobody may touch.
    const size_t PAGE = 4096;
    char *const page =
        static_cast<char *>(VirtualAlloc(nullptr, PAGE + 1, MEM_RESERVE, PAGE_NOACCESS));
    ASSERT_TRUE(VirtualAlloc(page, PAGE, MEM_COMMIT, PAGE_READWRITE));
    int nAnswered = 0, nWrong = 0;
    for (int i = 0; i < 1000000; ++i) {
        // Of plausible words mostly.
        const DWORD nSize = random() % 20;
        DWORD words[5] = {random() % 6};
        for (int j = 1; j < 5; ++j)
            words[j] = random() % 2 ? random() % 6 : random();
        char *const pData = page + PAGE - nSize;
        memcpy(pData, words, nSize);
        COPYDATASTRUCT data = {random() % 8 ? 0x43555051 : random(), nSize, pData};
        const bool bAnswered = SendMessageA(hWnd, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
        nAnswered += bAnswered;
        const bool bRead = nSize > 8 && nSize % 4 == 0 && words[1] == 0;
        if (words[0] == 3 && bAnswered != (data.dwData == 0x43555051 && bRead))
            ++nWrong;
        if (i % 16 == 0)
            SendMessageA(hWnd, uSet, random() % 2 ? random() : random() % 100000, 0);
    }
    EXPECT_GT(nAnswered, 100);
    EXPECT_EQ(0, nWrong);
    EXPECT_EQ(0, SendMessageA(hWnd, WM_COPYDATA, 0, 0));
    EXPECT_STREQ("unchanged", text.Get());
    CCUProberClient client;
    const unsigned long nID = text.GetID();
    CUProberValue value;
    EXPECT_TRUE(client.Connect(hWnd) && client.Read(&nID, &value, 1));
    EXPECT_STREQ("unchanged", value.sText);
    EXPECT_EQ(CU_PROBER_NO_ANSWER, client.Set(number.GetID(), CCUString('1', 5000)));
    EXPECT_EQ(CU_PROBER_DONE, client.Set(number.GetID(), "5"));
    EXPECT_EQ(5, number.Get());
    // What several askers lay aside lies side by side, and each counts once.
    DWORD aside[] = {4, number.GetID(), '7' + ('0' << 8) + ('0' << 16)};
    COPYDATASTRUCT data = {0x43555051, sizeof aside, aside};
    const LPARAM lParam = reinterpret_cast<LPARAM>(&data);
    const auto layAside = [&] {
        return static_cast<WPARAM>(SendMessageA(hWnd, WM_COPYDATA, 0, lParam));
    };
    const WPARAM nFirst = layAside();
    layAside();
    EXPECT_EQ(CU_PROBER_DONE + 1, SendMessageA(hWnd, uSet, nFirst, 0));
    EXPECT_EQ(700, number.Get());
    EXPECT_EQ(0, SendMessageA(hWnd, uSet, nFirst, 0));
}

}  // namespace
