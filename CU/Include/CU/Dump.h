#pragma once

/// @file
/// The debug trace: one call brings a text to the log file in the temporary directory, to the
/// registered windows, to the registered callbacks and to the debugger, in this order. Any thread
/// may call; one critical section serialises everything here, callbacks included, so a callback
/// must not wait for a thread that dumps. No failure is told to the caller: an output that does not
/// work is left out. The thread's last error is kept. All this works from the first constructor of
/// a global object to the last destructor. What is dumped later at process exit goes to the
/// debugger only, and settings and registrations do nothing then.

#include "CU/Platform.h"

class CCUString;

/// Formats as printf does and dumps the text. A text of 2048 characters or more is reported with
/// "nLength < DumpBufferSize" and cut to 2047; CUDumpString takes any length.
CU_API void CUDump(const char *format, ...) CU_PRINTF(1, 2);

/// Does not compile: an object is among the arguments. Of a CCUString give GetString().
template <typename... Args, typename = typename CUIfObject<CUHasObject<Args...>::VALUE>::Type>
inline void CUDump(const char *, const Args &...)
{
    static_assert(!CUHasObject<Args...>::VALUE, "a format takes no object: give GetString()");
}

/// Dumps `length` characters of `text`; a negative length means up to the NUL. A null text is an
/// empty one. From inside a callback the text goes to the debugger only.
CU_API void CUDumpString(const char *text, int length);

/// Receives every dumped text, on the thread that dumps.
class CU_API CCUDumpCallback
{
public:
    /// The whole text, with no end of line but its own.
    virtual void OnDump(const CCUString &sText) = 0;

protected:
    ~CCUDumpCallback() = default;
};

/// Adds a callback; it is called once for each time that it was added, in that order. The object
/// stays the caller's and must be removed before it goes. Null is reported with
/// "pCallback != NULL" and not added.
CU_API void CUDumpRegister(CCUDumpCallback *pCallback);
/// Takes one registration back; a callback that is not registered is ignored. Both may be called
/// from inside a callback: one added there is called from the next text on.
CU_API void CUDumpUnRegister(CCUDumpCallback *pCallback);

/// Posts every dumped text to a window, as `message` with wParam 0 and lParam a CCUString * that
/// the receiver owns and deletes. Where a post fails the text is deleted here. Nothing is removed
/// when the window goes. A null window may be registered and is passed over.
CU_API void CUDumpRegisterWindow(HWND hWnd, unsigned int message);
/// Takes one registration of that window with that message back, if there is one.
CU_API void CUDumpUnRegisterWindow(HWND hWnd, unsigned int message);

/// Log files are "ZELLog-YYYY-MM-DD-hh-mm-ss.txt" in the temporary directory, named after the local
/// time at which they are made. A name that is taken, by this process or another, moves on by a
/// second until one is free, so that it may lie in the future; the process's next file follows it
/// even where pruning has freed earlier names, unless the clock was set back meanwhile. The files
/// are text files: "\n" takes two bytes, "\r\n".
///
/// The first text opens a file, which begins with the time zone and the seconds since the system
/// was started. The first text after more than 24 hours, or once more than maxFileSize bytes of
/// texts were written, opens another; the end of the one and the beginning of the other name each
/// other, with two backslashes before the name. These lines of the trace's own do not count, and
/// "\n" counts as one byte. Where no file can be made the old one goes on, if there is one, and the
/// next text tries again.
///
/// Opening a file, and calling this, prunes the directory. First by days, of which only those count
/// that have files: the files of the daysToKeep newest days stay, and of the day before them the
/// newest file; with 0 or less, that is the newest file of all. Then by number: of those left, the
/// oldest go until there are filesToKeep (below 0: 0), a file that is being opened included, though
/// that one is made in any case. With manageAllFiles false (the default) the second step looks only
/// at some of the newest files, whoever made them: at as many as the pruning before left of those
/// that it looked at, and one more for the file opened since. Unless manageAllFiles was true
/// before, that is no more than this process has opened. A file that cannot be deleted is passed
/// over.
///
/// CUDumpSetLogFile puts another folder and beginning in the place of the temporary directory and
/// "ZELLog", and only files of that folder with that beginning are pruned then.
///
/// Defaults: 30 days, 50 files, 0 bytes, false. A maxFileSize of 0 or less is no limit. Returns 1.
CU_API int CUDumpConfigLogFileManagement(int daysToKeep, int filesToKeep, long maxFileSize,
                                         bool manageAllFiles);
/// Reads the four settings; a null pointer is passed over. Once the trace has ended nothing is
/// filled in.
CU_API void CUDumpGetConfigLogFileManagement(int *daysToKeep, int *filesToKeep, long *maxFileSize,
                                             bool *manageAllFiles);

/// Chooses the folder of the log files and how their names begin: CUDumpSetLogFile("C:/Logs", "My")
/// makes "My-YYYY-MM-DD-hh-mm-ss.txt" there. Best called before the first text; a file that is open
/// is continued there by the next one. The folder, a relative one from the present directory on, is
/// created where it is missing. Null or "": the temporary directory, "ZELLog".
///
/// Returns 1; 0 with nothing changed when the prefix has more than 100 characters or one that names
/// cannot have, or the folder's path is too long; and 0, traced, when the folder is not there and
/// cannot be created. Whenever no file can be made in the folder, the trace goes to the temporary
/// directory until the next call, and its first file there says so: "No log file can be made in "
/// with the folder.
CU_API int CUDumpSetLogFile(const char *folder, const char *prefix);

/// Called when a log file has passed its size limit: after the next text has opened a new file and
/// gone into it, and also after each text that has gone into the full file because no new one could
/// be made. What the callback dumps goes to all outputs. If that passes the limit again, the
/// callback is called from inside itself, up to 8 calls deep.
class CU_API CCUDumpFileOverrunCallback
{
public:
    /// Called on the thread that dumped the text.
    virtual void OnFileOverrun() = 0;

protected:
    ~CCUDumpFileOverrunCallback() = default;
};

/// Called when a log file has been opened, before the text goes into it.
class CU_API CCUDumpNewFileCallback
{
public:
    /// What is dumped from inside goes to the debugger only.
    virtual void OnNewFile() = 0;

protected:
    ~CCUDumpNewFileCallback() = default;
};

/// Replace the one callback of each kind; null removes it. The objects stay the caller's.
/// @{
CU_API void CUDumpSetFileOverrunCallback(CCUDumpFileOverrunCallback *pCallback);
CU_API void CUDumpSetNewFileCallback(CCUDumpNewFileCallback *pCallback);
/// @}
