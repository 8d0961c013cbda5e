#pragma once

/// @file
/// Files, and the paths that lead to them.

#include "CU/Platform.h"
#include "CU/String.h"

/// An open binary file over the system's file calls, closed with the object. Each transfer is one
/// call of the system; short ones are returned as they are. The thread's last error after a failure
/// is the system's. For one thread at a time.
class CU_API CCUFile
{
public:
    /// One access, one sharing, and any of the others.
    enum OpenFlags : unsigned int
    {
        modeRead = 0x0,           ///< access
        modeWrite = 0x1,          ///< access
        modeReadWrite = 0x2,      ///< access
        shareExclusive = 0x10,    ///< others may not open it; 0 means the same
        shareDenyWrite = 0x20,    ///< others may read
        shareDenyRead = 0x30,     ///< others may write
        shareDenyNone = 0x40,     ///< others may read and write
        modeNoInherit = 0x80,     ///< child processes do not get the handle
        modeCreate = 0x1000,      ///< create, or empty what is there; otherwise the file must exist
        modeNoTruncate = 0x2000,  ///< with modeCreate: create, or open what is there
        typeText = 0x4000,        ///< not supported: reported and ignored
        typeBinary = 0x8000       ///< how every file is opened
    };
    /// Where Seek counts from.
    enum SeekOrigins : unsigned int
    {
        begin = 0,    ///< the file's first byte
        current = 1,  ///< the position
        end = 2       ///< behind the last byte
    };

    /// Nothing is open.
    CCUFile();
    ~CCUFile();
    CCUFile(const CCUFile &) = delete;
    CCUFile &operator=(const CCUFile &) = delete;

    /// Opens a file. Returns 1, or 0 when the file cannot be opened; the name is kept either way. A
    /// file that is still open is closed first. Access or sharing bits that are not in the list
    /// above are reported with "0" and fail, typeText is reported with "(nOpenFlags & typeText) ==
    /// 0".
    int Open(const char *name, unsigned int nOpenFlags);
    /// Whether the last Open succeeded and nothing has closed the file since.
    bool isOpen() const;  // NOLINT(readability-identifier-naming): callers know it so
    /// The name given to Open, empty after Close.
    CCUString GetFileName() const;

    /// Returns the bytes moved; 0 for a count of 0, and when the call fails. No open file is
    /// reported with "m_hFile != 0", a null buffer with "lpBuf != 0".
    /// @{
    virtual unsigned int Read(void *lpBuf, unsigned int nCount);
    virtual unsigned int Write(const void *lpBuf, unsigned int nCount);
    /// @}
    /// Moves the position. Returns the new one in bytes from the start, or -1, reported with "0".
    /// No open file is reported with "m_hFile != 0" before, an origin that is none with "nFrom ==
    /// begin || nFrom == end || nFrom == current". Files of 2 GiB and more are beyond it.
    virtual long Seek(long lOff, unsigned int nFrom);

    /// In bytes from the start; 0xFFFFFFFF on failure. Goes through Seek and its reports.
    unsigned long GetPosition() const;
    /// In bytes; 0xFFFFFFFF on failure. Goes through Seek and its reports. The position stays;
    /// where it cannot be restored "dwCur == (DWORD)pFile->Seek(dwCur, begin)" is reported.
    unsigned long GetLength() const;
    /// Brings what was written to the disk; without effect when nothing is open. A failure is
    /// reported with "0", always so on a file that was opened for reading alone.
    void Flush();
    /// Without effect when nothing is open. A failure is reported with "0" and the object is closed
    /// all the same.
    void Close();

private:
    HANDLE m_hFile;  // 0 when there is none
    CCUString m_sFileName;
};

/// Creates the directories of a path that are missing, and where pathEndsInFileName is 0 also the
/// one it ends with. The path is read as CUTranslateFileName gives it; of a network path the server
/// is left alone, and the share is the first that is looked at. Returns 1, or 0 for an empty path
/// or when a directory cannot be created, which is traced as "CreateDirectory %s error\n"; those
/// created before stay. A file that stands where a directory should counts as present.
CU_API int CCUFileCreateDirs(CCUString path, int pathEndsInFileName);

/// The name with every "/" turned into "\", cut to 500 characters; empty for null.
CU_API CCUString CUTranslateFileName(const char *name);
