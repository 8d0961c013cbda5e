#include "CU/ProberClient.h"

#include <string.h>

#include "CU/CU.h"
#include "Probe/ProberProtocol.h"

namespace {

// Another asker may get in between an answer and its reading: then it is asked for again. So that
// many do not get into each other's way for ever each waits for a while of chance, up to 1 ms at
// first, which is doubled until it is 256 ms.
const int MOST_TRIES = 32;
const int MOST_DOUBLINGS = 8;
// Numbers in a request for values: as many as an answer has room for.
const int MOST_READ = 5000;
// What no program has.
const DWORD MOST_ENTRIES = 1000000;

void WaitToTryAgain(int nTry)
{
    const int nBits = nTry < MOST_DOUBLINGS ? nTry : MOST_DOUBLINGS;
    LARGE_INTEGER chance = {};
    QueryPerformanceCounter(&chance);
    chance.LowPart ^= GetCurrentThreadId() + GetTickCount();
    Sleep((chance.LowPart * 2654435769U) >> (32 - nBits));  // 2^32 by the golden ratio
}

bool IsKind(DWORD nKind)
{
    return nKind <= CU_PROBER_FLAG;
}

// Steps over a text that must end before pEnd; null where it does not.
const char *TakeText(const char *p, const char *pEnd, CCUString &sText)
{
    const char *pNul = p;
    while (pNul < pEnd && *pNul)
        ++pNul;
    if (pNul == pEnd)
        return nullptr;
    sText = p;
    return pNul + 1;
}

// A value out of an answer of nSize bytes.
bool TakeValue(const CUProberItem &item, const char *pAnswer, DWORD nSize, CUProberValue &value)
{
    const DWORD nResult = item.nState & 0xFF, nKind = item.nState >> 8;
    if (nResult > CU_PROBER_GONE || !IsKind(nKind))
        return false;
    value.nResult = static_cast<CUProberResult>(nResult);
    value.nKind = static_cast<CUProberKind>(nKind);
    if (nResult == CU_PROBER_GONE)
        return true;
    if (value.nKind == CU_PROBER_DOUBLE) {
        memcpy(&value.fDouble, &item.nLow, sizeof value.fDouble);
    } else if (value.nKind != CU_PROBER_TEXT) {
        value.nLong = static_cast<long>(item.nLow);
    } else {
        if (item.nLow > nSize || item.nHigh > nSize - item.nLow)
            return false;
        value.sText = CCUString(pAnswer + item.nLow, static_cast<int>(item.nHigh));
    }
    return true;
}

}  // namespace

HWND CCUProberClient::GetNextProgram(HWND hProgram)
{
    return FindWindowExA(nullptr, hProgram, CU_MESSAGE_WINDOW_CLASS, nullptr);
}

CCUProberClient::CCUProberClient()
    : m_hProgram(nullptr),
      m_nTimeout(0),
      m_nProcess(0),
      m_hSection(nullptr),
      m_pSection(nullptr),
      m_pAnswer(nullptr),
      m_nAnswerSize(0),
      m_nTree(0),
      m_nCount(0),
      m_nListedTree(0),
      m_pEntries(nullptr),
      m_nEntries(0),
      m_nRoom(0)
{
}

CCUProberClient::~CCUProberClient()
{
    Disconnect();
}

void CCUProberClient::Forget()
{
    delete[] m_pEntries;
    m_pEntries = nullptr;
    m_nEntries = m_nRoom = 0;
}

void CCUProberClient::Disconnect()
{
    Forget();
    delete[] m_pAnswer;
    m_pAnswer = nullptr;
    if (m_pSection)
        UnmapViewOfFile(m_pSection);
    if (m_hSection)
        CloseHandle(m_hSection);
    m_pSection = nullptr;
    m_hSection = nullptr;
    m_hProgram = nullptr;
    m_nProcess = 0;
    m_sProgram.Empty();
}

bool CCUProberClient::Connect(HWND hProgram, DWORD nTimeout)
{
    Disconnect();
    m_hProgram = hProgram;
    m_nTimeout = nTimeout;
    m_pAnswer = new char[CU_PROBER_ROOM];
    const bool bAnswered = Ask(CU_PROBER_HELLO, 0, nullptr, 0) && m_nAnswerSize > sizeof m_nProcess;
    if (!bAnswered ||
        !TakeText(m_pAnswer + sizeof m_nProcess, m_pAnswer + m_nAnswerSize, m_sProgram)) {
        const DWORD nError = GetLastError();
        Disconnect();
        SetLastError(nError);
        return false;
    }
    memcpy(&m_nProcess, m_pAnswer, sizeof m_nProcess);
    m_nListedTree = m_nTree;
    return true;
}

// --- Requests ---

// The message's result; 0 where it has not arrived.
LRESULT CCUProberClient::Send(UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    DWORD_PTR nResult = 0;
    if (!SendMessageTimeoutA(m_hProgram, uMessage, wParam, lParam, SMTO_ABORTIFHUNG, m_nTimeout,
                             &nResult))
        return 0;
    return static_cast<LRESULT>(nResult);
}

LRESULT CCUProberClient::Post(DWORD nWhat, DWORD nArgument, const void *pData, DWORD nSize)
{
    const CUProberRequest request = {nWhat, nArgument};
    char *const pRequest = new char[sizeof request + nSize];
    memcpy(pRequest, &request, sizeof request);
    if (nSize)
        memcpy(pRequest + sizeof request, pData, nSize);
    COPYDATASTRUCT data = {CU_PROBER_ASK, sizeof request + nSize, pRequest};
    const LRESULT result = Send(WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
    delete[] pRequest;
    return result;
}

// The program makes its section with its first answer.
bool CCUProberClient::Open()
{
    if (m_pSection)
        return true;
    char szName[32];
    wsprintfA(szName, CU_PROBER_SECTION, reinterpret_cast<ULONG_PTR>(m_hProgram));
    m_hSection = OpenFileMappingA(FILE_MAP_READ, FALSE, szName);
    // Of one that is smaller there is no such view.
    if (m_hSection)
        m_pSection = MapViewOfFile(m_hSection, FILE_MAP_READ, 0, 0, CU_PROBER_SECTION_SIZE);
    return m_pSection &&
           static_cast<const CUProberAnswer *>(m_pSection)->nVersion == CU_PROBER_VERSION;
}

// Copies the answer. False when it is not that one any more.
bool CCUProberClient::TakeAnswer(LONG nAnswer)
{
    const auto &answer = *static_cast<const CUProberAnswer *>(m_pSection);
    const DWORD nSize = answer.nSize;
    if (answer.nAnswer != nAnswer || answer.nVersion != CU_PROBER_VERSION || nSize > CU_PROBER_ROOM)
        return false;
    m_nTree = answer.nTree;
    m_nCount = answer.nCount;
    m_nAnswerSize = nSize;
    memcpy(m_pAnswer, &answer + 1, nSize);
    return answer.nAnswer == nAnswer;
}

bool CCUProberClient::Ask(DWORD nWhat, DWORD nArgument, const void *pData, DWORD nSize)
{
    if (!m_pAnswer)
        return false;
    for (int i = 0; i < MOST_TRIES; ++i) {
        const LRESULT nAnswer = Post(nWhat, nArgument, pData, nSize);
        if (nAnswer == 0)
            return false;
        if (nAnswer != CU_PROBER_BUSY) {
            if (!Open())
                return false;
            if (TakeAnswer(nAnswer))
                return true;
        }
        WaitToTryAgain(i + 1);
    }
    return false;
}

// --- Variables ---

// The entry at the beginning of nRoom bytes.
bool CCUProberClient::AddEntry(const char *pEntry, DWORD nRoom, DWORD &nSize)
{
    CUProberListed listed;
    if (nRoom < sizeof listed)
        return false;
    memcpy(&listed, pEntry, sizeof listed);
    if (listed.nSize < sizeof listed || listed.nSize > nRoom || !IsKind(listed.nKind & 0xFF))
        return false;
    CUProberEntry &entry = m_pEntries[m_nEntries];
    entry.nID = listed.nID;
    entry.nKind = static_cast<CUProberKind>(listed.nKind & 0xFF);
    entry.bComputed = (listed.nKind & CU_PROBER_COMPUTED_BIT) != 0;
    entry.bOpen = (listed.nKind & CU_PROBER_OPEN_BIT) != 0;
    CCUString *const texts[CU_PROBER_TEXTS] = {&entry.sPath, &entry.sName, &entry.sDescription,
                                               &entry.sUnit, &entry.sDefault};
    const char *p = pEntry + sizeof listed;
    for (CCUString *const pText : texts) {
        p = TakeText(p, pEntry + listed.nSize, *pText);
        if (!p)
            return false;
    }
    ++m_nEntries;
    nSize = listed.nSize;
    return true;
}

int CCUProberClient::List()
{
    Forget();
    unsigned long nLast = 0;
    for (;;) {
        if (!Ask(CU_PROBER_LIST, nLast, nullptr, 0))
            return -1;
        if (nLast == 0) {
            m_nListedTree = m_nTree;
            m_nRoom = static_cast<int>(m_nCount < MOST_ENTRIES ? m_nCount : MOST_ENTRIES);
            m_pEntries = new CUProberEntry[static_cast<unsigned>(m_nRoom)];
        }
        // What has come meanwhile is for the next time.
        if (m_nAnswerSize == 0 || m_nEntries == m_nRoom)
            return m_nEntries;
        DWORD nSize = 0;
        for (DWORD nPlace = 0; nPlace < m_nAnswerSize && m_nEntries < m_nRoom; nPlace += nSize) {
            // Numbers grow, or this would never end.
            if (!AddEntry(m_pAnswer + nPlace, m_nAnswerSize - nPlace, nSize) ||
                m_pEntries[m_nEntries - 1].nID <= nLast)
                return -1;
            nLast = m_pEntries[m_nEntries - 1].nID;
        }
    }
}

// How many were answered; 0: none.
int CCUProberClient::ReadSome(const unsigned long *pIDs, CUProberValue *pValues, int nCount)
{
    const DWORD nSize = static_cast<DWORD>(nCount) * sizeof *pIDs;
    DWORD nAnswered;
    if (!Ask(CU_PROBER_READ, 0, pIDs, nSize) || m_nAnswerSize < sizeof nAnswered)
        return 0;
    memcpy(&nAnswered, m_pAnswer, sizeof nAnswered);
    if (nAnswered > static_cast<DWORD>(nCount) ||
        nAnswered > (m_nAnswerSize - sizeof nAnswered) / sizeof(CUProberItem))
        return 0;
    for (DWORD i = 0; i < nAnswered; ++i) {
        CUProberItem item;
        memcpy(&item, m_pAnswer + sizeof nAnswered + i * sizeof item, sizeof item);
        if (!TakeValue(item, m_pAnswer, m_nAnswerSize, pValues[i]))
            return static_cast<int>(i);
    }
    return static_cast<int>(nAnswered);
}

bool CCUProberClient::Read(const unsigned long *pIDs, CUProberValue *pValues, int nCount)
{
    while (nCount > 0) {
        const int nRead = ReadSome(pIDs, pValues, nCount < MOST_READ ? nCount : MOST_READ);
        if (nRead == 0)
            break;
        pIDs += nRead;
        pValues += nRead;
        nCount -= nRead;
    }
    for (int i = 0; i < nCount; ++i)
        pValues[i].nResult = CU_PROBER_NO_ANSWER;
    return nCount <= 0;
}

CUProberResult CCUProberClient::Set(unsigned long nID, const char *pszText)
{
    if (!m_pAnswer)
        return CU_PROBER_NO_ANSWER;
    const UINT uMessage = CURegisterMessageId(CU_PROBER_SET_MESSAGE);
    for (int i = 0; i < MOST_TRIES; ++i) {
        const LRESULT nStaged = Post(CU_PROBER_STAGE, nID, pszText, strlen(pszText) + 1);
        if (nStaged == 0)
            break;
        const LRESULT nResult =
            nStaged == CU_PROBER_BUSY ? 0 : Send(uMessage, static_cast<WPARAM>(nStaged), 0);
        if (nResult > 0 && nResult <= CU_PROBER_NOT_PARSED + 1)
            return static_cast<CUProberResult>(nResult - 1);
        WaitToTryAgain(i + 1);
    }
    return CU_PROBER_NO_ANSWER;
}
