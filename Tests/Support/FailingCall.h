#pragma once

#include "Support/ImportHook.h"

// The calls of all CFailingCall objects, counted together: the one of number s_nFailAt fails.
struct CFailPlan
{
    static const int ALL = -1;
    static void Start(int nFailAt)
    {
        s_nCalls = 0;
        s_nFailAt = nFailAt;
    }
    static bool Fails() { return ++s_nCalls == s_nFailAt || s_nFailAt == ALL; }
    // Runs `work` with the first call failing, then the second, and so on until none is left;
    // returns how many there were.
    template <typename Work>
    static int RunAll(Work work)
    {
        int nFailAt = 0;
        do {
            Start(++nFailAt);
            work();
        } while (s_nCalls >= nFailAt);
        s_nFailAt = 0;
        return s_nCalls;
    }
    inline static int s_nFailAt = 0;
    inline static int s_nCalls = 0;
};

// Makes an imported function answer 0 when it is its turn.
template <typename Function>
class CFailingCall;
template <typename Result, typename... Arguments>
class CFailingCall<Result(Arguments...)> : public CFakeCall<Result(Arguments...)>
{
public:
    explicit CFailingCall(const char *name)
        : CFakeCall<Result(Arguments...)>(name, [this](Arguments... arguments) {
              return CFailPlan::Fails() ? Result() : this->Original(arguments...);
          })
    {
    }
    CFailingCall(const CFailingCall &) = delete;
};
