#pragma once

/// @file
/// The variables of other programs (Prober.h).

#include "CU/Platform.h"
#include "CU/Prober.h"
#include "CU/String.h"

/// Reads the variables of a running program of the same user and desktop, and sets those that it
/// has opened.
///
///     for (HWND hProgram = nullptr; (hProgram = CCUProberClient::GetNextProgram(hProgram));) {
///         CCUProberClient client;
///         if (client.Connect(hProgram) && client.List() >= 0)
///             Show(client.GetProgram(), client.GetEntry(0));
///     }
///
/// Programs are found from Windows 95 on; those that are more privileged than the one that asks can
/// be read from Windows 7 on, but not set. A program serves requests where it looks for messages.
/// One that hangs is waited for as long as Connect was told, and then no more; one that others ask
/// at the same moment, again and again for some five seconds. One object is for one thread at a
/// time.
class CCUProberClient
{
public:
    /// The message window (CUGetWindow) of the program behind that one; null: of the first, and at
    /// the end. What comes or goes meanwhile may be missed.
    CU_API static HWND GetNextProgram(HWND hProgram);

    /// Connected to none.
    CU_API CCUProberClient();
    CU_API ~CCUProberClient();
    CCUProberClient(const CCUProberClient &) = delete;
    CCUProberClient &operator=(const CCUProberClient &) = delete;

    /// Asks a program who it is. Every request waits nTimeout milliseconds at most. False where it
    /// does not answer as it should; the last error tells why the system has not brought the
    /// request there, such as ERROR_ACCESS_DENIED.
    CU_API bool Connect(HWND hProgram, DWORD nTimeout = 1000);
    /// Forgets all.
    CU_API void Disconnect();
    /// The full path of the program's file; "" while there is none.
    const CCUString &GetProgram() const { return m_sProgram; }
    /// The identifier of its process.
    DWORD GetProcessID() const { return m_nProcess; }

    /// Fetches what is known of all variables, in the order in which they were listed, and answers
    /// how many there are; -1 when the program has not answered. Texts are cut after 4,000
    /// characters, those of values too.
    CU_API int List();
    /// One of them: 0 to List()'s answer less 1.
    const CUProberEntry &GetEntry(int nIndex) const { return m_pEntries[nIndex]; }
    /// Whether variables have come or gone between the last List and the last answer.
    bool IsTreeChanged() const { return m_nTree != m_nListedTree; }

    /// Reads many variables, some 5,000 with one request, each of which gets a result of its own.
    /// False, with CU_PROBER_NO_ANSWER for those that are left, when the program has not answered.
    CU_API bool Read(const unsigned long *pIDs, CUProberValue *pValues, int nCount);
    /// Sets one that the program has opened; see CCUProber::Set. The text is not null.
    CU_API CUProberResult Set(unsigned long nID, const char *pszText);

private:
    LRESULT Send(UINT uMessage, WPARAM wParam, LPARAM lParam);
    LRESULT Post(DWORD nWhat, DWORD nArgument, const void *pData, DWORD nSize);
    bool Ask(DWORD nWhat, DWORD nArgument, const void *pData, DWORD nSize);
    bool TakeAnswer(LONG nAnswer);
    bool Open();
    bool AddEntry(const char *pEntry, DWORD nRoom, DWORD &nSize);
    int ReadSome(const unsigned long *pIDs, CUProberValue *pValues, int nCount);
    void Forget();

    HWND m_hProgram;
    DWORD m_nTimeout;
    DWORD m_nProcess;
    CCUString m_sProgram;
    HANDLE m_hSection;
    const void *m_pSection;
    char *m_pAnswer;  // a copy of the last one
    DWORD m_nAnswerSize;
    unsigned long m_nTree;
    unsigned long m_nCount;  // of variables, when it answered last
    unsigned long m_nListedTree;
    CUProberEntry *m_pEntries;
    int m_nEntries;
    int m_nRoom;
};
