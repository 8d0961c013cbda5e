#include <deque>
#include <string>
#include <unordered_map>

#include "Bench.h"
#include "CU/CU.h"
#include "CU/Prober.h"
#include "CU/ProberClient.h"
#include "ProgramStart.h"

namespace {

CCUProberLong s_probed("\\Bench", "Probed");
volatile long s_plain;

void CompareReading()
{
    BenchCompare(
        "1,000 times read a probed long",
        [] {
            long nSum = 0;
            for (int i = 0; i < 1000; ++i)
                nSum += s_probed;
            BenchKeep(nSum);
        },
        "volatile long",
        [] {
            long nSum = 0;
            for (int i = 0; i < 1000; ++i)
                nSum += s_plain;
            BenchKeep(nSum);
        },
        1.2);
}

void CompareFinding()
{
    const size_t nCount = 10000;
    std::vector<std::string> names;
    for (size_t i = 0; i < nCount; ++i)
        names.push_back("Variable " + std::to_string(i * 7919));
    std::deque<CCUProberLong> variables;
    std::unordered_map<std::string, CCUProberVariable *> map;
    std::vector<std::string> paths;
    for (size_t i = 0; i < nCount; ++i)
        variables.emplace_back("\\Bench\\Many", names[i].c_str());
    for (size_t i = 0; i < nCount; ++i) {
        // In an order that no predictor of addresses knows.
        const size_t nPlace = (i * 2654435761u >> 7) % nCount;
        paths.push_back("\\Bench\\Many\\" + names[nPlace]);
        map["\\Bench\\Many\\" + names[i]] = &variables[i];
    }
    BenchCompare(
        "10,000 times find a variable by its path",
        [&] {
            for (const std::string &path : paths)
                BenchKeep(CCUProber::Find(path.c_str(), static_cast<int>(path.size())));
        },
        "std::unordered_map<std::string>",
        [&] {
            for (const std::string &path : paths)
                BenchKeep(map.find(path)->second);
        },
        1.0);
}

// Null, or why there is no row.
const char *CompareAsking(HWND hProgram, HWND hPlain)
{
    CCUProberClient client;
    if (!client.Connect(hProgram, 60000) || client.List() < 1000)
        return "the program does not answer";
    std::vector<unsigned long> ids;
    for (int i = client.List() - 1000; ids.size() < 1000; ++i)
        ids.push_back(client.GetEntry(i).nID);
    std::vector<CUProberValue> values(ids.size());
    // A number and a value of twelve bytes for each.
    std::string bytes(16 * ids.size(), 'x');
    COPYDATASTRUCT data = {0, bytes.size(), &bytes[0]};
    BenchCompare(
        "1,000 values of another process",
        [&] { BenchKeep(client.Read(ids.data(), values.data(), 1000)); },
        "SendMessage of as many bytes",
        [&] { SendMessageA(hPlain, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data)); }, 1.5);
    return values[999].nResult == CU_PROBER_DONE ? nullptr : "the values did not come";
}

}  // namespace

BENCH_GROUP(Prober)
{
    CompareReading();
    CompareFinding();
    const char *fault = "there is no program to be asked";
    TimeProgramStart(BENCH_PROBER, [&] {
        HWND hPlain = nullptr;
        while (!(hPlain = FindWindowA("BenchTakeBytes", nullptr)))
            Sleep(1);
        const DWORD nThread = GetWindowThreadProcessId(hPlain, nullptr);
        HWND hProgram = nullptr;
        do
            hProgram = CCUProberClient::GetNextProgram(hProgram);
        while (hProgram && GetWindowThreadProcessId(hProgram, nullptr) != nThread);
        if (hProgram)
            fault = CompareAsking(hProgram, hPlain);
        PostThreadMessageA(nThread, WM_QUIT, 0, 0);
    });
    // A table without the row would look as if all was well.
    if (fault) {
        fprintf(stderr, "Prober: %s\n", fault);
        exit(1);
    }
}
