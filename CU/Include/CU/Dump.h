#pragma once

#include "CU/Platform.h"

class CCUString;

// The debug trace: one call brings a text to the log file in the temporary directory, to the
// registered windows, to the registered callbacks and to the debugger, in this order. Any thread
// may call; one critical section serialises everything here, callbacks included, so a callback
// must not wait for a thread that dumps. Nothing here fails towards its caller: an output that
// does not work is left out. The thread's last error is kept. From the first constructor of a
// global object to the last destructor; what comes later at process exit goes to the debugger only,
// and settings and registrations do nothing.

// Formats as printf does and dumps the text. A text of 2048 characters or more is reported with
// "nLength < DumpBufferSize" and cut to 2047; CUDumpString takes any length.
CU_API void CUDump(const char *format, ...) CU_PRINTF(1, 2);

// Dumps `length` characters of `text`; a negative length means up to the NUL. A null text is an
// empty one. From inside a callback the text goes to the debugger only.
CU_API void CUDumpString(const char *text, int length);

// Receives every dumped text, on the thread that dumps.
class CU_API CCUDumpCallback
{
public:
    // The whole text, with no end of line but its own.
    virtual void OnDump(const CCUString &sText) = 0;

protected:
    ~CCUDumpCallback() = default;
};

// Adds a callback; it is called once for each time that it was added, in that order. The object
// stays the caller's and must be removed before it goes. Null is reported with
// "pCallback != NULL" and not added.
CU_API void CUDumpRegister(CCUDumpCallback *pCallback);
// Takes one registration back; a callback that is not registered is ignored. Both may be called
// from inside a callback: one added there is called from the next text on.
CU_API void CUDumpUnRegister(CCUDumpCallback *pCallback);

// Posts every dumped text to a window, as `message` with wParam 0 and lParam a CCUString * that
// the receiver owns and deletes. Where a post fails the text is deleted here. Nothing is removed
// when the window goes. A null window may be registered and is passed over.
CU_API void CUDumpRegisterWindow(HWND hWnd, unsigned int message);
// Takes one registration of that window with that message back, if there is one.
CU_API void CUDumpUnRegisterWindow(HWND hWnd, unsigned int message);

// Log files are "ZELLog-YYYY-MM-DD-hh-mm-ss.txt" in the temporary directory. The first text opens
// one; after 24 hours, or once it holds more than maxFileSize bytes, the next text opens another.
// Opening one, and calling this, prunes the directory: of the log files found there,
//   - all older than the daysToKeep newest days and the newest file of the day before them go;
//   - of the rest, the oldest go until filesToKeep are left. With manageAllFiles false (the
//     default) this second step counts and deletes no more files than were known before.
//
// Defaults: 30 days, 50 files, 0 bytes, false. A maxFileSize of 0 or less is no limit. Returns 1.
CU_API int CUDumpConfigLogFileManagement(int daysToKeep, int filesToKeep, long maxFileSize,
                                         bool manageAllFiles);
// Reads the four settings; a null pointer is passed over. Once the trace has ended nothing is
// filled in.
CU_API void CUDumpGetConfigLogFileManagement(int *daysToKeep, int *filesToKeep, long *maxFileSize,
                                             bool *manageAllFiles);

// Told after the text that followed the size limit has opened a new file and gone into it; also
// after each text that has gone into the full one because no new one could be made. What it dumps
// itself goes everywhere; where that runs over again it is told from inside itself, up to 8 calls
// deep.
class CU_API CCUDumpFileOverrunCallback
{
public:
    // On the thread that dumped the text.
    virtual void OnFileOverrun() = 0;

protected:
    ~CCUDumpFileOverrunCallback() = default;
};

// Told when a log file has been opened, before the text goes into it.
class CU_API CCUDumpNewFileCallback
{
public:
    // What is dumped from inside goes to the debugger only.
    virtual void OnNewFile() = 0;

protected:
    ~CCUDumpNewFileCallback() = default;
};

// Replace the one callback of each kind; null removes it. The objects stay the caller's.
CU_API void CUDumpSetFileOverrunCallback(CCUDumpFileOverrunCallback *pCallback);
CU_API void CUDumpSetNewFileCallback(CCUDumpNewFileCallback *pCallback);
