#pragma once

#include <functional>

#include "CU/Platform.h"

// Runs `work` on several threads at once, each with its number from 0 on, and waits for all.
class CThreads
{
public:
    enum
    {
        Most = 32
    };
    static void Run(int nThreads, const std::function<void(int nThread)> &work)
    {
        CStart starts[Most];
        HANDLE threads[Most] = {};
        for (int i = 0; i < nThreads; ++i) {
            starts[i] = {&work, i};
            DWORD nId = 0;
            threads[i] = CreateThread(nullptr, 0, Start, &starts[i], 0, &nId);
        }
        WaitForMultipleObjects(static_cast<DWORD>(nThreads), threads, TRUE, INFINITE);
        for (int i = 0; i < nThreads; ++i)
            CloseHandle(threads[i]);
    }

private:
    struct CStart
    {
        const std::function<void(int)> *work;
        int nThread;
    };
    static DWORD WINAPI Start(void *start)
    {
        (*static_cast<CStart *>(start)->work)(static_cast<CStart *>(start)->nThread);
        return 0;
    }
};
