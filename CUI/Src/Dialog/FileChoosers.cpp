// The choosers of files.

#include <string.h>

#include "CUI/Choosers.h"
#include "Dialog/ChooserOwner.h"
#include "Dialog/CommonDialog.h"

#include <cderr.h>

namespace {

// Characters for the names that are chosen. A system that needs more asks for it when the user has
// chosen, and the user must do so again: so the first size is large enough for hundreds of names.
const int FIRST_SIZE = 0x8000;
const int MOST_SIZE = 0x200000;

// The dialog changes the current directory.
class CKeepDirectory
{
public:
    CKeepDirectory() : m_nLength(GetCurrentDirectoryA(sizeof m_szPath, m_szPath)) {}
    ~CKeepDirectory()
    {
        if (m_nLength && m_nLength < sizeof m_szPath)
            SetCurrentDirectoryA(m_szPath);
    }
    CKeepDirectory(const CKeepDirectory &) = delete;
    CKeepDirectory &operator=(const CKeepDirectory &) = delete;

private:
    char m_szPath[MAX_PATH];
    DWORD m_nLength;
};

// The filter as the system wants it: a NUL behind each part, and one more at the end.
CCUString SystemFilter(const char *pszFilter)
{
    // Where a pattern is missing at the end it is an empty one.
    CCUString sFilter = CCUString(pszFilter) + "||";
    char *pch = sFilter.GetBuffer(sFilter.GetLength());
    const int nLength = sFilter.GetLength();
    for (const char *pEnd = pch + nLength; pch < pEnd; pch = CharNextA(pch)) {
        while (*pch == '|')
            *pch++ = '\0';
    }
    sFilter.ReleaseBuffer(nLength);
    return sFilter;
}

// One choice, with as many attempts as it takes.
class CFileChooser
{
public:
    CFileChooser(const char *pszFunction, const char *pszFilter, CCUIFileChoice *pChoice,
                 DWORD nFlags);
    // sNames: what the dialog begins with; then what the system has written.
    int Choose(CCUIWindow *pParent, CCUString &sNames);

private:
    bool CanRetry(DWORD dwCode);

    const char *const m_pszFunction;
    const CCUString m_sFilter;
    CCUIFileChoice *const m_pChoice;
    OPENFILENAMEA m_record;
    CCUString m_sFirst;
    int m_nSize;
};

CFileChooser::CFileChooser(const char *pszFunction, const char *pszFilter, CCUIFileChoice *pChoice,
                           DWORD nFlags)
    : m_pszFunction(pszFunction),
      m_sFilter(SystemFilter(pszFilter)),
      m_pChoice(pChoice),
      m_record(),
      m_nSize(FIRST_SIZE)
{
    m_record.lStructSize = sizeof m_record;
    m_record.lpstrFilter = pszFilter && *pszFilter ? m_sFilter.GetString() : nullptr;
    m_record.nFilterIndex = 1;
    m_record.Flags = OFN_EXPLORER | OFN_HIDEREADONLY | OFN_PATHMUSTEXIST | OFN_NOCHANGEDIR | nFlags;
    if (!pChoice)
        return;
    m_record.nFilterIndex = static_cast<DWORD>(pChoice->nFilter);
    m_record.lpstrTitle = pChoice->pszTitle;
    m_record.lpstrInitialDir = pChoice->pszFolder;
    m_record.lpstrDefExt = pChoice->pszExtension;
    m_record.Flags |= pChoice->nFlags;
}

int CFileChooser::Choose(CCUIWindow *pParent, CCUString &sNames)
{
    m_sFirst = sNames;
    CCUString sBuffer;
    CUICommonResult result;
    {
        const CKeepDirectory keepDirectory;
        const CCUIChooserOwner owner(pParent);
        m_record.hwndOwner = owner;
        do {
            m_record.nMaxFile = static_cast<DWORD>(m_nSize);
            m_record.lpstrFile = sBuffer.GetBuffer(m_nSize);
            memset(m_record.lpstrFile, 0, static_cast<size_t>(m_nSize) + 1);
            lstrcpynA(m_record.lpstrFile, m_sFirst, m_nSize);
            result = CUICommonDialog(m_pszFunction, &m_record);
        } while (!result.bChosen && CanRetry(result.dwCode));
    }
    if (result.bChosen) {
        // Up to the two NULs.
        m_record.lpstrFile[m_nSize - 1] = '\0';
        int nLength = 0;
        while (m_record.lpstrFile[nLength])
            nLength += static_cast<int>(strlen(m_record.lpstrFile + nLength)) + 1;
        sBuffer.ReleaseBuffer(nLength);
        sBuffer.FreeExtra();
        sNames = sBuffer;
        if (m_pChoice)
            m_pChoice->nFilter = static_cast<int>(m_record.nFilterIndex);
    }
    return CUICommonAnswer(m_pszFunction, result);
}

// Whether it is worth another attempt, in which something is different.
bool CFileChooser::CanRetry(DWORD dwCode)
{
    switch (dwCode) {
    case CDERR_STRUCTSIZE:
        // Windows 95, 98 and NT 4 know a shorter record.
        if (m_record.lStructSize == OPENFILENAME_SIZE_VERSION_400A)
            return false;
        m_record.lStructSize = OPENFILENAME_SIZE_VERSION_400A;
        return true;
    case FNERR_INVALIDFILENAME:
        if (m_sFirst.IsEmpty())
            return false;
        m_sFirst.Empty();
        return true;
    case FNERR_BUFFERTOOSMALL:
        if (m_nSize >= MOST_SIZE)
            return false;
        m_nSize *= 8;
        return true;
    default: return false;
    }
}

int ChooseFile(const char *pszFunction, CCUIWindow *pParent, CCUString &sPath,
               const char *pszFilter, CCUIFileChoice *pChoice, DWORD nFlags)
{
    CCUString sNames = sPath;
    if (!CFileChooser(pszFunction, pszFilter, pChoice, nFlags).Choose(pParent, sNames))
        return 0;
    sPath = sNames.GetString();
    return 1;
}

bool IsWholePath(const char *psz)
{
    return psz[0] == '\\' || (psz[0] && psz[1] == ':');
}

bool EndsWithBackslash(const char *psz)
{
    bool bLast = false;
    for (; *psz; psz = CharNextA(psz))
        bLast = *psz == '\\';
    return bLast;
}

}  // namespace

int CUIChooseOpenFile(CCUIWindow *pParent, CCUString &sPath, const char *pszFilter,
                      CCUIFileChoice *pChoice)
{
    return ChooseFile("GetOpenFileNameA", pParent, sPath, pszFilter, pChoice, OFN_FILEMUSTEXIST);
}

int CUIChooseOpenFiles(CCUIWindow *pParent, CCUIChosenFiles &files, const char *pszFilter,
                       CCUIFileChoice *pChoice)
{
    CFileChooser chooser("GetOpenFileNameA", pszFilter, pChoice,
                         OFN_FILEMUSTEXIST | OFN_ALLOWMULTISELECT);
    CCUString sNames;
    if (!chooser.Choose(pParent, sNames))
        return 0;
    files.m_sNames = sNames;
    return 1;
}

int CUIChooseSaveFile(CCUIWindow *pParent, CCUString &sPath, const char *pszFilter,
                      CCUIFileChoice *pChoice)
{
    return ChooseFile("GetSaveFileNameA", pParent, sPath, pszFilter, pChoice,
                      OFN_OVERWRITEPROMPT | OFN_NOREADONLYRETURN);
}

int CCUIChosenFiles::GetCount() const
{
    int nParts = 0;
    const char *const pEnd = m_sNames.GetString() + m_sNames.GetLength();
    for (const char *psz = m_sNames; psz < pEnd; psz += strlen(psz) + 1)
        ++nParts;
    // A folder comes before the names, unless there is one file alone.
    return nParts > 1 ? nParts - 1 : nParts;
}

CCUString CCUIChosenFiles::GetPath(int nIndex) const
{
    const int nCount = GetCount();
    if (nIndex < 0 || nIndex >= nCount)
        return CCUString();
    const char *const pszFolder = m_sNames;
    if (nCount == 1 && strlen(pszFolder) + 1 == static_cast<size_t>(m_sNames.GetLength()))
        return CCUString(pszFolder);
    const char *pszName = pszFolder;
    for (int i = 0; i <= nIndex; ++i)
        pszName += strlen(pszName) + 1;
    if (IsWholePath(pszName))
        return CCUString(pszName);
    return CCUString(pszFolder) + (EndsWithBackslash(pszFolder) ? "" : "\\") + pszName;
}
