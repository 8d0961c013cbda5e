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
    // Where the next file is made, and how its name begins; a file that is open is continued there.
    // Empty: the temporary directory, "ZELLog".
    void SetPlace(const CCUString &sFolder, const CCUString &sPrefix);
    void SetNewFileCallback(CCUDumpNewFileCallback *pCallback) { m_pNewFileCallback = pCallback; }

    // Writes the text to the current file, opening or replacing it first where needed. True when
    // the file was full, whether or not it could be replaced.
    bool Write(const CCUString &sText);

private:
    bool NeedsNewFile(bool &bOverrun) const;
    void OpenNewFile();
    bool OpenIn(const CCUString &sFolder, const CCUString &sLostFolder);
    bool FindFolder(CCUString &sFolder) const;
    CCUString NameStart(const CCUString &sFolder) const { return sFolder + '\\' + m_sPrefix; }
    long FirstTimeForName(const CCUString &sFolder, long nNow) const;
    FILE *CreateNamedByTime(const CCUString &sFolder, long &nTime, CCUString &sName) const;
    void BeginFile(FILE *file, const CCUString &sName);

    void Prune(const CCUString &sFolder, bool bMakeRoom);
    void ListFiles(const CCUString &sFolder);
    int CountOlderThanDaysToKeep() const;
    void DeleteOldest(const CCUString &sFolder, int nCount);

    CSettings m_settings;
    CCUString m_sFolder;  // without a backslash at its end; empty: the temporary directory
    CCUString m_sPrefix;
    bool m_bMoved;  // since the file was opened
    FILE *m_file;   // null: none is open
    CCUString m_sName;
    long m_nTimeOfName;  // the second that the file is named after
    long m_nTimeMade;    // and the one in which it was made
    DWORD m_nStartTime;  // milliseconds
    unsigned long m_nWritten;
    CCUArray<CCUString> m_knownFiles;  // bare names, the oldest first
    CCUDumpNewFileCallback *m_pNewFileCallback;
};
