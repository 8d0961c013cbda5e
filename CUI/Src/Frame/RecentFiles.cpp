#include "CUI/RecentFiles.h"

#include "Base/GdiGuards.h"
#include "CU/Dump.h"
#include "CUI/Data.h"
#include "CUI/FrameWindow.h"
#include "CUI/MessageBox.h"
#include "CUI/Settings.h"
#include "Frame/Paths.h"

namespace {

// How long a path in a menu may be, in average characters of the menu's font.
const int MOST_CHARACTERS = 40;
// What the system needs behind a text for the dots that it writes into it.
const int ROOM_FOR_DOTS = 4;
// The first nine files have a digit as mnemonic, the tenth 0.
const int TEN = 10;

// The path as a menu shows it: folders in the middle give way to dots where it is long.
CCUString Shortened(const CCUString &sPath)
{
    const CCUIMemoryDC dc(nullptr);
    const CCUISelect font(dc, CUIGetWinData()->hMenuFont);
    TEXTMETRICA metrics = {};
    GetTextMetricsA(dc, &metrics);
    RECT rect = {0, 0, metrics.tmAveCharWidth * MOST_CHARACTERS, metrics.tmHeight};
    CCUString sText = sPath;
    DrawTextA(dc, sText.GetBuffer(sPath.GetLength() + ROOM_FOR_DOTS), -1, &rect,
              DT_PATH_ELLIPSIS | DT_MODIFYSTRING | DT_NOPREFIX | DT_SINGLELINE);
    sText.ReleaseBuffer();
    return sText;
}

// In menus '&' marks the next character; twice it is one.
CCUString Literal(const CCUString &sText)
{
    CCUString sResult;
    const char *pszFrom = sText;
    for (const char *psz = pszFrom; *psz; psz = CharNextA(psz)) {
        if (*psz == '&') {
            sResult += CCUString(pszFrom, static_cast<int>(psz - pszFrom)) + "&&";
            pszFrom = psz + 1;
        }
    }
    return sResult + pszFrom;
}

CCUString ValueName(int nIndex)
{
    CCUString sName;
    sName.Format("%d", nIndex + 1);
    return sName;
}

// The first of the menu's items whose identifier is in the block; -1: none.
int FindItem(HMENU hMenu, UINT nFirst, UINT nEnd)
{
    const int nItems = GetMenuItemCount(hMenu);
    for (int i = 0; i < nItems; ++i) {
        const UINT nID = GetMenuItemID(hMenu, i);
        if (nID >= nFirst && nID < nEnd)
            return i;
    }
    return -1;
}

}  // namespace

CCUIRecentFiles::CCUIRecentFiles(CCUIFrameWindow *pFrame, unsigned int nFirstID, int nMost,
                                 const char *pszSection)
    : CCUICommandHandler(nFirstID, static_cast<unsigned int>(nMost < 1            ? 1
                                                             : nMost > MOST_FILES ? MOST_FILES
                                                                                  : nMost)),
      m_pFrame(pFrame),
      m_sSection(pszSection),
      m_nFiles(0),
      m_bKept(true)
{
    if (!pFrame)
        return;
    if (pFrame->m_pRecentFiles)
        pFrame->m_pRecentFiles->m_pFrame = nullptr;
    pFrame->m_pRecentFiles = this;
}

CCUIRecentFiles::~CCUIRecentFiles()
{
    if (m_pFrame)
        m_pFrame->m_pRecentFiles = nullptr;
}

// --- The list ---

CCUString CCUIRecentFiles::GetFile(int nIndex) const
{
    return nIndex >= 0 && nIndex < m_nFiles ? m_files[nIndex] : CCUString();
}

int CCUIRecentFiles::Find(const char *pszPath) const
{
    for (int i = 0; i < m_nFiles; ++i) {
        if (lstrcmpiA(m_files[i], pszPath) == 0)
            return i;
    }
    return -1;
}

void CCUIRecentFiles::Drop(int nIndex)
{
    --m_nFiles;
    for (int i = nIndex; i < m_nFiles; ++i)
        m_files[i] = m_files[i + 1];
    m_files[m_nFiles].Empty();
}

void CCUIRecentFiles::Add(const char *pszPath)
{
    const CCUString sPath = CUIFullPath(pszPath ? pszPath : "", "");
    if (sPath.IsEmpty())
        return;
    const bool bRead = Load();
    const int nOld = Find(sPath);
    if (bRead && nOld == 0 && m_files[0] == sPath)
        return;  // programs add what they open, most often the same again: nothing to write
    if (nOld >= 0)
        Drop(nOld);
    else if (m_nFiles == static_cast<int>(m_nIDRange))
        Drop(m_nFiles - 1);
    for (int i = m_nFiles++; i > 0; --i)
        m_files[i] = m_files[i - 1];
    m_files[0] = sPath;
    Save();
}

void CCUIRecentFiles::Remove(const char *pszPath)
{
    const CCUString sPath = CUIFullPath(pszPath ? pszPath : "", "");
    Load();
    const int nIndex = Find(sPath);
    if (nIndex < 0)
        return;
    Drop(nIndex);
    Save();
}

// What another run may have added comes along. What could not be written stays here.
bool CCUIRecentFiles::Load()
{
    CCURegistry registry;
    if (!m_bKept || !CUIOpenSettings(registry, m_sSection))
        return false;
    m_nFiles = 0;
    CCUString sPath;
    for (int i = 0; i < static_cast<int>(m_nIDRange); ++i) {
        if (registry.GetString(ValueName(i), sPath) && !sPath.IsEmpty() && Find(sPath) < 0)
            m_files[m_nFiles++] = sPath;
    }
    return true;
}

void CCUIRecentFiles::Save()
{
    CCURegistry registry;
    m_bKept = CUIOpenSettings(registry, m_sSection, false);
    for (int i = 0; m_bKept && i < static_cast<int>(m_nIDRange); ++i) {
        if (i < m_nFiles)
            m_bKept = registry.SetString(ValueName(i), m_files[i]);
        else
            registry.DeleteValue(ValueName(i));
        if (!m_bKept)
            CUDump("Unable to keep file %s, gle: %lu\n", m_files[i].GetString(), GetLastError());
    }
}

// --- The menu ---

void CCUIRecentFiles::FillMenu(HMENU hMenu)
{
    const int nAt = FindItem(hMenu, m_nID, m_nID + m_nIDRange);
    if (nAt < 0)
        return;
    const auto nFirst = static_cast<UINT>(nAt);
    if (m_sNone.IsEmpty()) {
        char szText[128] = "";
        GetMenuStringA(hMenu, nFirst, szText, sizeof szText, MF_BYPOSITION);
        m_sNone = szText;
    }
    Load();
    // Those there are keep their look: an owner-drawn one stays one.
    UINT nItems = 1;
    const UINT nWanted = m_nFiles > 0 ? static_cast<UINT>(m_nFiles) : 1;
    while (FindItem(hMenu, m_nID + nItems, m_nID + m_nIDRange) == nAt + static_cast<int>(nItems))
        ++nItems;
    for (; nItems > nWanted; --nItems)
        DeleteMenu(hMenu, nFirst + nItems - 1, MF_BYPOSITION);
    for (; nItems < nWanted; ++nItems)
        InsertMenuA(hMenu, nFirst + nItems, MF_BYPOSITION | MF_STRING, m_nID + nItems, "");
}

unsigned short CCUIRecentFiles::GetState(unsigned int nID)
{
    if (!GetFile(static_cast<int>(nID - m_nID)).IsEmpty())
        return CUI_COMMAND_MENU | CUI_COMMAND_ACTIVE | CUI_COMMAND_TEXT;
    return m_sNone.IsEmpty() ? CUI_COMMAND_MENU : CUI_COMMAND_MENU | CUI_COMMAND_TEXT;
}

CCUString CCUIRecentFiles::GetShortTT(unsigned int nID)
{
    const int nIndex = static_cast<int>(nID - m_nID);
    const CCUString sPath = GetFile(nIndex);
    if (sPath.IsEmpty())
        return m_sNone;
    const int nNumber = nIndex + 1;
    CCUString sNumber;
    sNumber.Format(nNumber < TEN ? "&%d " : nNumber == TEN ? "1&0 " : "%d ", nNumber);
    return sNumber + Literal(Shortened(sPath));
}

CCUString CCUIRecentFiles::GetLongTT(unsigned int nID)
{
    return GetFile(static_cast<int>(nID - m_nID));
}

// --- Opening ---

void CCUIRecentFiles::HandleCommand(unsigned int nID)
{
    const CCUString sPath = GetFile(static_cast<int>((nID ? nID : m_nID) - m_nID));
    if (sPath.IsEmpty())
        return;
    if (GetFileAttributesA(sPath) != INVALID_FILE_ATTRIBUTES) {
        OnOpen(sPath);
        return;
    }
    const DWORD nError = GetLastError();
    Remove(sPath);
    OnGone(sPath, nError);
}

void CCUIRecentFiles::OnOpen(const CCUString &sPath)
{
    if (m_pFrame)
        m_pFrame->OnOpenFile(sPath);
}

void CCUIRecentFiles::OnGone(const CCUString &sPath, DWORD nError)
{
    char szReason[256] = "";
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, nError, 0,
                   szReason, sizeof szReason, nullptr);
    CUIMessageBox(m_pFrame, sPath + "\n\n" + szReason, CUIFileName(sPath), MB_ICONEXCLAMATION);
}
