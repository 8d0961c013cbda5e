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
/// What the message window calls for a message.
typedef void (*CUMessageHandler)(unsigned int uMessage, WPARAM wParam, LPARAM lParam);
/// Sets what the message window does with a message: WM_USER to WM_USER + 2, which even a
/// restricted CCUIWindow::IdleLoop serves, or one from CURegisterMessageId. Replaces an earlier
/// handler; null removes it. False for any other message.
CU_API bool CUSetMessageHandler(unsigned int uMessage, CUMessageHandler handler);

/// Allocates a storage slot, in which every thread has a value of its own, null at first. Returns
/// its number, or -1 when the process has no more slots. Slots are given back with the module that
/// has the framework inside, not before. The framework frees no value: see CCUThreadExitHandler.
CU_API int CUAllocateThreadLocalStorageIndex();
/// The calling thread's value in the slot; null for a number that is not a slot's.
CU_API void *CUGetThreadLocalStorage(int nIndex);
/// Sets the calling thread's value in the slot; false for a number that is not a slot's.
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
    /// Waits until the mutex is free, and takes it.
    CCUMutexGuard() { CUEnterMutex(); }
    ~CCUMutexGuard() { CULeaveMutex(); }
    CCUMutexGuard(const CCUMutexGuard &) = delete;
    CCUMutexGuard &operator=(const CCUMutexGuard &) = delete;
};

/// Registers a function to be called at process exit (a return from main, or exit). The latest
/// registered is called first, and each before the destructors of the statics that were made before
/// it was registered. A program that ends by ExitProcess or a crash calls none. In a module the
/// functions are called when it is unloaded or its process ends. False without memory, and for
/// null.
CU_API bool CURegisterTerminationHandler(void (*handler)());

/// A static object that names what a source wants done once at start-up: CUInitialize calls
/// `initialize` of all of them, and has `terminate` (if not null) called at process exit. It is for
/// start-up code that needs other static objects: all of them exist by then, while the order in
/// which they are constructed is not promised.
class CU_API CCUInitializer
{
public:
    /// Either may be null. The construction calls neither.
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

/// Registers, under a name (which is copied), a function that writes to the trace what a part of
/// the process is doing. If the name has a handler already, the new one replaces it and keeps its
/// place in the order. False without memory or for a null argument.
CU_API bool CURegisterProcessInfoHandler(const char *name, void (*handler)());
/// Removes the handler of that name. A name that is not registered is ignored.
CU_API void CUUnregisterProcessInfoHandler(const char *name);
/// Runs the handler of that name, or with null all of them in the order of registration. Returns
/// how many it ran. A handler may register and unregister handlers; new ones run from the next call
/// on.
CU_API int CURunProcessInfoHandlers(const char *name = nullptr);
