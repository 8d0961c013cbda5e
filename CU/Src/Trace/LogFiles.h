#pragma once

#include <stdio.h>

#include "Base/Array.h"
#include "CU/Dump.h"
#include "CU/String.h"

// The log files of the debug trace: the current one and the pruning of the older ones. Used under
// the trace's lock only. Private to the layer.
class CCULogFiles
{
public:
    struct CSettings
    {
        int nDaysToKeep;
        int nFilesToKeep;
        long nMaxFileSize;  // bytes; 0: no limit
        bool bManageAllFiles;
    };

    CCULogFiles();
    ~CCULogFiles();
    CCULogFiles(const CCULogFiles &) = delete;
    CCULogFiles &operator=(const CCULogFiles &) = delete;

    const CSettings &GetSettings() const { return m_settings; }
    // Prunes at once.
    void Configure(const CSettings &settings);
    void SetNewFileCallback(CCUDumpNewFileCallback *pCallback) { m_pNewFileCallback = pCallback; }

    // Writes the text to the current file, opening or replacing it first where needed. True when
    // the file was full, whether or not it could be replaced.
    bool Write(const CCUString &sText);

private:
    bool NeedsNewFile(bool &bOverrun) const;
    void OpenNewFile();
    long FirstTimeForName(const CCUString &sTempDir, long nNow) const;
    void BeginFile(FILE *file, const CCUString &sName);

    void Prune(const CCUString &sTempDir, bool bMakeRoom);
    void ListFiles(const CCUString &sTempDir);
    int CountOlderThanDaysToKeep() const;
    void DeleteOldest(const CCUString &sTempDir, int nCount);

    CSettings m_settings;
    FILE *m_file;  // null: none is open
    CCUString m_sName;
    long m_nTimeOfName;  // the second that the file is named after
    long m_nTimeMade;    // and the one in which it was made
    DWORD m_nStartTime;  // milliseconds
    unsigned long m_nWritten;
    CCUArray<CCUString> m_knownFiles;  // bare names, the oldest first
    CCUDumpNewFileCallback *m_pNewFileCallback;
};
