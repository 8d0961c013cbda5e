#pragma once

#include <functional>
#include <vector>

#include "CU/Platform.h"

// Runs `work` on several threads at once, each with its number from 0 on, and waits for all. None
// begins before all are there: short work would be done by one after the other. `meanwhile` is done
// again and again until then.
class CThreads
{
public:
    static void Run(int nThreads, const std::function<void(int nThread)> &work,
                    const std::function<void()> &meanwhile = nullptr)
    {
        const auto nCount = static_cast<size_t>(nThreads);
        volatile LONG nMissing = nThreads;
        std::vector<CStart> starts(nCount);
        std::vector<HANDLE> threads(nCount);
        for (size_t i = 0; i < nCount; ++i) {
            starts[i] = {&work, static_cast<int>(i), &nMissing};
            threads[i] = CreateThread(nullptr, 0, Start, &starts[i], 0, nullptr);
        }
        while (WaitForMultipleObjects(threads.size(), threads.data(), TRUE,
                                      meanwhile ? 0 : INFINITE) == WAIT_TIMEOUT)
            meanwhile();
        for (const HANDLE hThread : threads)
            CloseHandle(hThread);
    }

private:
    struct CStart
    {
        const std::function<void(int)> *pWork;
        int nThread;
        volatile LONG *pnMissing;
    };
    static DWORD WINAPI Start(void *p)
    {
        const CStart &start = *static_cast<CStart *>(p);
        InterlockedDecrement(start.pnMissing);
        while (*start.pnMissing > 0)
            Sleep(0);
        (*start.pWork)(start.nThread);
        return 0;
    }
};
