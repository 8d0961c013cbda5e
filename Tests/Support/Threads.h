#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "CU/Platform.h"

// Runs `work` on several threads at once, each with its number from 0 on, and waits for all.
class CThreads
{
public:
    static void Run(int nThreads, const std::function<void(int nThread)> &work)
    {
        const auto nCount = static_cast<size_t>(nThreads);
        std::vector<std::pair<std::function<void(int)>, int>> starts(nCount);
        std::vector<HANDLE> threads(nCount);
        for (size_t i = 0; i < nCount; ++i) {
            starts[i] = {work, static_cast<int>(i)};
            threads[i] = CreateThread(nullptr, 0, Start, &starts[i], 0, nullptr);
        }
        WaitForMultipleObjects(threads.size(), threads.data(), TRUE, INFINITE);
        for (const HANDLE hThread : threads)
            CloseHandle(hThread);
    }

private:
    static DWORD WINAPI Start(void *p)
    {
        const auto &start = *static_cast<std::pair<std::function<void(int)>, int> *>(p);
        start.first(start.second);
        return 0;
    }
};
