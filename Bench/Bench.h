#pragma once

#include <algorithm>
#include <vector>

#include "CU/Platform.h"

// One measure: ours and a peer doing the same work, run in turns in this process. Times are in
// nanoseconds per call; the ratio is the median of the pairs' ratios, so that a machine that
// slows down for a while slows both sides of a pair.
struct CBenchRow
{
    const char *name;
    const char *unit;
    double ours;
    double peer;
    const char *peerName;
    double ratio;
    double ceiling;               // the ratio that the project promises to stay below; 0: none
    const char *group = nullptr;  // written by BenchAdd
};

// The rows so far, in the order of measuring.
std::vector<CBenchRow> &BenchRows();
void BenchAdd(const CBenchRow &row);
// Seconds on the performance counter.
double BenchNow();
double BenchMedian(std::vector<double> values);

// A group of measures, run by main in the order of the names.
class CBenchGroup
{
public:
    CBenchGroup(const char *name, void (*run)());
    const char *m_name;
    void (*m_run)();
};
#define BENCH_GROUP(name)                                          \
    static void BenchRun##name();                                  \
    static const CBenchGroup s_group##name(#name, BenchRun##name); \
    static void BenchRun##name()

// Keeps the compiler from dropping a result that nobody reads.
template <typename T>
inline void BenchKeep(const T &value)
{
    asm volatile("" : : "g"(&value) : "memory");
}

template <typename F>
double BenchSample(F &call, int nCalls)
{
    const double start = BenchNow();
    for (int i = 0; i < nCalls; ++i)
        call();
    return (BenchNow() - start) / nCalls;
}

// How many calls fill a sample of some milliseconds.
template <typename F>
int BenchCalibrate(F &call, double seconds)
{
    int nCalls = 1;
    for (;;) {
        const double took = BenchSample(call, nCalls) * nCalls;
        if (took >= seconds || nCalls >= 100000000)
            return nCalls;
        nCalls =
            took * 16 < seconds ? nCalls * 8 : static_cast<int>(nCalls * seconds / took * 1.2) + 1;
    }
}

// Takes nPairs interleaved samples, each the seconds that one call of `ours` or `peer` answers, and
// adds the row.
template <typename Ours, typename Peer>
void BenchPairs(const char *name, int nPairs, Ours ours, const char *peerName, Peer peer,
                double ceiling)
{
    std::vector<double> oursTimes, peerTimes, ratios;
    for (int i = 0; i < nPairs; ++i) {
        // Who goes first changes, so that neither side always finds the warmer cache.
        double a = 0;
        if (i % 2 == 0)
            a = ours();
        const double b = peer();
        if (i % 2 != 0)
            a = ours();
        oursTimes.push_back(a * 1e9);
        peerTimes.push_back(b * 1e9);
        ratios.push_back(a / b);
    }
    BenchAdd({name, "ns", BenchMedian(oursTimes), BenchMedian(peerTimes), peerName,
              BenchMedian(ratios), ceiling});
}

// Measures a call of `ours` beside one of `peer`, as many as fill a sample of some milliseconds.
template <typename Ours, typename Peer>
void BenchCompare(const char *name, Ours ours, const char *peerName, Peer peer, double ceiling,
                  int nPairs = 31, double secondsPerSample = 0.004)
{
    const int nOurs = BenchCalibrate(ours, secondsPerSample);
    const int nPeer = BenchCalibrate(peer, secondsPerSample);
    BenchPairs(
        name, nPairs, [&] { return BenchSample(ours, nOurs); }, peerName,
        [&] { return BenchSample(peer, nPeer); }, ceiling);
}
