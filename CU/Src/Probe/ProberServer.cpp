#include "Probe/ProberServer.h"

#include <string.h>

#include "Base/KeepLastError.h"
#include "Base/SystemLibrary.h"
#include "CU/CU.h"
#include "CU/Dump.h"
#include "Probe/ProberList.h"
#include "Probe/ProberProtocol.h"
#include "Probe/ProberValues.h"
#include "Text/StringBlock.h"
#include "Trace/DumpCount.h"

namespace {

// Windows' own values, which the records of Windows 95 and NT 4 do not have.
const DWORD ALLOW_MESSAGE = 1;  // MSGFLT_ALLOW

HWND s_hWnd = nullptr;
HANDLE s_hSection = nullptr;
CUProberAnswer *s_pAnswer = nullptr;
LONG s_nAnswer = 0;
UINT s_uSetMessage = 0;
bool s_bBusy = false;   // with a request; a function that computes a value may look for others
bool s_bEnded = false;  // meanwhile

// A text that was laid aside to be set.
struct CStaged
{
    LONG nStaged = 0;  // 0: none
    unsigned long nID = 0;
    CCUString sText;
};
CStaged *s_pStaged = nullptr;  // CU_PROBER_STAGED, each at the place of its number

long KeptStringBlocks(void *)
{
    return CUCountKeptStringBlocks();
}
CCUProberFunction s_keptBlocks("\\CU\\Strings", "KeptBlocks", KeptStringBlocks,
                               "blocks that are kept for the next strings");

long TraceTexts(void *)
{
    return CUCountDumps();
}
CCUProberFunction s_traceTexts("\\CU\\Trace", "Texts", TraceTexts, "texts written to the trace");

// What is laid into the section: refuses what does not fit.
class CWriter
{
public:
    CWriter() : m_pData(reinterpret_cast<char *>(s_pAnswer + 1)), m_nSize(0) {}

    DWORD Size() const { return m_nSize; }
    bool Fits(DWORD nSize) const { return nSize <= CU_PROBER_ROOM - m_nSize; }
    void Put(const void *pData, DWORD nSize)
    {
        memcpy(m_pData + m_nSize, pData, nSize);
        m_nSize += nSize;
    }
    void Put(DWORD nValue) { Put(&nValue, sizeof nValue); }
    // Room for something that is written later.
    char *Reserve(DWORD nSize)
    {
        char *const pRoom = m_pData + m_nSize;
        m_nSize += nSize;
        return pRoom;
    }

private:
    char *m_pData;
    DWORD m_nSize;
};

DWORD CutLength(const CCUString &sText)
{
    const auto nLength = static_cast<DWORD>(sText.GetLength());
    return nLength < CU_PROBER_LONGEST_TEXT ? nLength : CU_PROBER_LONGEST_TEXT;
}

bool OpenSection()
{
    if (s_pAnswer)
        return true;
    char szName[32];
    wsprintfA(szName, CU_PROBER_SECTION, reinterpret_cast<ULONG_PTR>(s_hWnd));
    s_hSection = CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                    CU_PROBER_SECTION_SIZE, szName);
    const DWORD nError = GetLastError();
    // One that is there already is somebody else's, and of any size.
    if (s_hSection && nError != ERROR_ALREADY_EXISTS)
        s_pAnswer = static_cast<CUProberAnswer *>(
            MapViewOfFile(s_hSection, FILE_MAP_WRITE, 0, 0, CU_PROBER_SECTION_SIZE));
    if (s_pAnswer)
        return true;
    CUDump("Unable to make section %s for probers, gle: %lu\n", szName, nError);
    if (s_hSection)
        CloseHandle(s_hSection);
    s_hSection = nullptr;
    return false;
}

void SayHello(CWriter &writer)
{
    writer.Put(GetCurrentProcessId());
    char szPath[MAX_PATH];
    DWORD nLength = GetModuleFileNameA(nullptr, szPath, MAX_PATH);
    if (nLength >= MAX_PATH)
        nLength = MAX_PATH - 1;
    szPath[nLength] = '\0';
    writer.Put(szPath, nLength + 1);
}

void List(CWriter &writer, unsigned long nID)
{
    CUProberEntry entry;
    while ((nID = CCUProberList::Next(nID, nullptr)) != 0) {
        if (!CCUProberValues::Describe(nID, entry))
            continue;
        const CCUString *const texts[CU_PROBER_TEXTS] = {
            &entry.sPath, &entry.sName, &entry.sDescription, &entry.sUnit, &entry.sDefault};
        CUProberListed listed = {sizeof listed, nID, static_cast<DWORD>(entry.nKind)};
        listed.nKind |=
            (entry.bComputed ? CU_PROBER_COMPUTED_BIT : 0) | (entry.bOpen ? CU_PROBER_OPEN_BIT : 0);
        for (const CCUString *const pText : texts)
            listed.nSize += CutLength(*pText) + 1;
        const DWORD nPadding = (0 - listed.nSize) % 4;
        listed.nSize += nPadding;
        if (!writer.Fits(listed.nSize))
            return;
        writer.Put(&listed, sizeof listed);
        for (const CCUString *const pText : texts) {
            writer.Put(*pText, CutLength(*pText));
            writer.Put("", 1);
        }
        writer.Put("\0\0", nPadding);
    }
}

// As many values as there is room for, at least one: the asker comes back for the rest. Numbers
// that are not read yet lie in the message, which the system keeps until it is answered.
void Read(CWriter &writer, const char *pIDs, DWORD nCount)
{
    const DWORD nMost =
        (CU_PROBER_ROOM - CU_PROBER_LONGEST_TEXT - sizeof(DWORD)) / sizeof(CUProberItem);
    nCount = nCount < nMost ? nCount : nMost;
    char *const pCount = writer.Reserve(sizeof(DWORD));
    char *const pItems = writer.Reserve(nCount * sizeof(CUProberItem));
    CUProberValue value;
    DWORD nRead = 0;
    const CCULockGuard guard(CCUProberList::s_lock);
    for (; nRead < nCount; ++nRead) {
        unsigned long nID;
        memcpy(&nID, pIDs + nRead * sizeof nID, sizeof nID);
        value.nLong = 0;
        CCUProberValues::GetLocked(nID, value);
        CUProberItem item = {static_cast<DWORD>(value.nResult), static_cast<DWORD>(value.nLong), 0};
        item.nState |= static_cast<DWORD>(value.nKind) << 8;
        if (value.nKind == CU_PROBER_DOUBLE) {
            memcpy(&item.nLow, &value.fDouble, sizeof value.fDouble);
        } else if (value.nKind == CU_PROBER_TEXT && value.nResult == CU_PROBER_DONE) {
            item.nLow = writer.Size();
            item.nHigh = CutLength(value.sText);
            if (!writer.Fits(item.nHigh))
                break;
            writer.Put(value.sText, item.nHigh);
        }
        memcpy(pItems + nRead * sizeof item, &item, sizeof item);
    }
    memcpy(pCount, &nRead, sizeof nRead);
}

// The result that names the text, 0 where it is none.
LRESULT Stage(unsigned long nID, const char *pText, DWORD nSize)
{
    if (nSize == 0 || nSize > CU_PROBER_LONGEST_TEXT + 1 || pText[nSize - 1] ||
        strlen(pText) + 1 != nSize)
        return 0;
    if (!s_pStaged)
        s_pStaged = new CStaged[CU_PROBER_STAGED];
    s_nAnswer = s_nAnswer % MAXLONG + 1;
    CStaged &staged = s_pStaged[s_nAnswer % CU_PROBER_STAGED];
    staged.nStaged = s_nAnswer;
    staged.nID = nID;
    staged.sText = pText;
    return s_nAnswer;
}

LRESULT SetStaged(WPARAM wParam)
{
    if (!s_pStaged || !wParam)
        return 0;
    CStaged &staged = s_pStaged[wParam % CU_PROBER_STAGED];
    if (wParam != static_cast<WPARAM>(staged.nStaged))
        return 0;
    staged.nStaged = 0;
    return CCUProberValues::Set(staged.nID, staged.sText, true) + 1;
}

// Every byte of the data is what the request says that it is, or there is no answer.
bool Write(CWriter &writer, const CUProberRequest &request, const char *pData, DWORD nSize)
{
    switch (request.nWhat) {
    case CU_PROBER_HELLO:
        if (nSize || request.nArgument)
            return false;
        SayHello(writer);
        return true;
    case CU_PROBER_LIST:
        if (nSize)
            return false;
        List(writer, request.nArgument);
        return true;
    case CU_PROBER_READ:
        if (nSize == 0 || nSize % sizeof(DWORD) || request.nArgument)
            return false;
        Read(writer, pData, nSize / sizeof(DWORD));
        return true;
    default: return false;
    }
}

LRESULT Answer(const CUProberRequest &request, const char *pData, DWORD nSize)
{
    if (request.nWhat == CU_PROBER_STAGE)
        return Stage(request.nArgument, pData, nSize);
    if (!OpenSection())
        return 0;
    CUProberAnswer &answer = *s_pAnswer;
    InterlockedExchange(&answer.nAnswer, 0);
    CWriter writer;
    const bool bWritten = Write(writer, request, pData, nSize);
    if (!bWritten)
        return 0;
    answer.nVersion = CU_PROBER_VERSION;
    answer.nTree = CCUProberList::TreeChanges();
    answer.nCount = CCUProberList::Count();
    answer.nSize = writer.Size();
    s_nAnswer = s_nAnswer % MAXLONG + 1;
    InterlockedExchange(&answer.nAnswer, s_nAnswer);
    return s_nAnswer;
}

LRESULT Receive(const COPYDATASTRUCT *pData)
{
    if (s_bBusy)
        return CU_PROBER_BUSY;
    if (!pData || !pData->lpData || pData->cbData < sizeof(CUProberRequest))
        return 0;
    CUProberRequest request;
    memcpy(&request, pData->lpData, sizeof request);
    const CCUKeepLastError keepLastError;
    s_bBusy = true;
    const LRESULT result =
        Answer(request, static_cast<const char *>(pData->lpData) + sizeof request,
               pData->cbData - sizeof request);
    s_bBusy = false;
    if (s_bEnded)
        CUEndProberServer();
    return result;
}

// Less privileged programs may read, where the system can allow it for this window alone. Windows
// Vista can only do so for the whole process.
void LetRequestsUp(HWND hWnd)
{
    typedef BOOL WINAPI ChangeFilter(HWND, UINT, DWORD, void *);
    const auto change = CUFindFunction<ChangeFilter>("user32.dll", "ChangeWindowMessageFilterEx");
    if (change && !change(hWnd, WM_COPYDATA, ALLOW_MESSAGE, nullptr))
        CUDump("Unable to let requests for probers up, gle: %lu\n", GetLastError());
}

}  // namespace

void CUStartProberServer(HWND hWnd)
{
    s_hWnd = hWnd;
    s_uSetMessage = CURegisterMessageId(CU_PROBER_SET_MESSAGE);
    LetRequestsUp(hWnd);
}

void CUEndProberServer()
{
    s_bEnded = s_bBusy;
    if (s_bBusy)
        return;
    if (s_pAnswer)
        UnmapViewOfFile(s_pAnswer);
    if (s_hSection)
        CloseHandle(s_hSection);
    s_pAnswer = nullptr;
    s_hSection = nullptr;
    delete[] s_pStaged;
    s_pStaged = nullptr;
}

bool CUServeProber(UINT uMessage, WPARAM wParam, LPARAM lParam, LRESULT &result)
{
    if (uMessage == WM_COPYDATA) {
        const auto *const pData = reinterpret_cast<const COPYDATASTRUCT *>(lParam);
        if (pData && pData->dwData != CU_PROBER_ASK)
            return false;
        result = Receive(pData);
        return true;
    }
    if (uMessage != s_uSetMessage || !s_uSetMessage)
        return false;
    result = SetStaged(wParam);
    return true;
}
