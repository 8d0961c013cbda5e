#pragma once

/// @file
/// What the framework keeps once for the whole process. Any thread may call everything here, except
/// where one is named.

#include "CU/Platform.h"

/// The framework's clock: milliseconds since its own first call (which answers 0), on the
/// multimedia clock. It wraps after 49.7 days: compare two stamps by their signed 32-bit
/// difference.
CU_API unsigned long CUGetTime();

/// Tells the framework that the program ends: from now on no alarm is armed or killed. For good;
/// further calls do nothing.
CU_API void CUShutdown();

/// A window message of the framework's own, the same number for the same name in every process.
/// 0 when the system has no more numbers, or for an empty or null name.
CU_API unsigned int CURegisterMessageId(const char *name);
/// Whether this process got the number from CURegisterMessageId. Takes a few nanoseconds.
CU_API bool CUIsYourMessage(unsigned int uMessage);

/// The framework's message window: hidden, one a process, for posting work to the thread that made
/// it. That is the thread of the first call, which should be the one with the windows; the window
/// ends with it, and the next call makes another. Null when it cannot be made; none is made after
/// CUShutdown.
CU_API HWND CUGetWindow();
/// The message window if there is one, else null: makes none.
CU_API HWND CUFindWindow();
/// What the message window does with a message: WM_USER to WM_USER + 2, which even a restricted
/// CCUIWindow::IdleLoop serves, or one from CURegisterMessageId. Replaces an earlier handler; null
/// removes it. False for any other message.
/// @{
typedef void (*CUMessageHandler)(unsigned int uMessage, WPARAM wParam, LPARAM lParam);
CU_API bool CUSetMessageHandler(unsigned int uMessage, CUMessageHandler handler);
/// @}

/// A number of a new storage slot, in which every thread has a value of its own, null at first; -1
/// when the process has no more. Slots are given back with the module that has the framework
/// inside, not before. The framework frees no value: see CCUThreadExitHandler.
CU_API int CUAllocateThreadLocalStorageIndex();
/// Null for a number that is none.
CU_API void *CUGetThreadLocalStorage(int nIndex);
/// False for a number that is none.
CU_API bool CUSetThreadLocalStorage(int nIndex, void *value);

/// The process-wide mutex, for what needs no lock of its own. A thread may take it several times
/// and must give it back as often.
/// @{
CU_API void CUEnterMutex();
CU_API void CULeaveMutex();
/// @}

/// Takes the process-wide mutex for as long as the guard lives.
class CU_API CCUMutexGuard
{
public:
    /// Waits until the mutex is to be had.
    CCUMutexGuard() { CUEnterMutex(); }
    ~CCUMutexGuard() { CULeaveMutex(); }
    CCUMutexGuard(const CCUMutexGuard &) = delete;
    CCUMutexGuard &operator=(const CCUMutexGuard &) = delete;
};

/// A function that is called at process exit (a return from main, or exit), the latest registered
/// first, before the destructors of the statics made before it was registered. A program that ends
/// by ExitProcess or a crash calls none. In a module they are called when it is unloaded or its
/// process ends. False without memory, and for null.
CU_API bool CURegisterTerminationHandler(void (*handler)());

/// A static object that names what a source wants done once at start-up: CUInitialize calls
/// `initialize` of all of them, and has `terminate` (if not null) called at process exit. A
/// start-up routine may be where other statics, in no promised order, must all exist.
class CU_API CCUInitializer
{
public:
    /// Either may be null; neither runs by the construction.
    explicit CCUInitializer(void (*initialize)(), void (*terminate)() = nullptr);
    CCUInitializer(const CCUInitializer &) = delete;
    CCUInitializer &operator=(const CCUInitializer &) = delete;

private:
    friend CU_API void CUInitialize();

    CCUInitializer *m_pNext;
    void (*m_initialize)();
    void (*m_terminate)();
};
/// Runs the initializers that have not run yet. The program's entry calls it once, on the main
/// thread; a second call does nothing.
CU_API void CUInitialize();

/// Functions that write what a part of the process is doing to the trace, by name, which is copied.
/// Where the name has a handler the new one takes its place and its turn. False without memory or
/// for a null argument.
CU_API bool CURegisterProcessInfoHandler(const char *name, void (*handler)());
/// A name that is not registered is ignored.
CU_API void CUUnregisterProcessInfoHandler(const char *name);
/// Runs the handler of that name, or with null all of them in the order of registration; how many
/// it ran. A handler may register and unregister handlers; new ones run from the next call on.
CU_API int CURunProcessInfoHandlers(const char *name = nullptr);
