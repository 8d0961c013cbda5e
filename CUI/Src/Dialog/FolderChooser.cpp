// The chooser of folders.

#include "CUI/Choosers.h"
#include "Dialog/ChooserOwner.h"
#include "Window/LoadedLibrary.h"

#include <shlobj.h>

namespace {

// OLE on this thread, which the larger form of the dialog wants.
class COle
{
public:
    COle()
    {
        auto *const pInitialize =
            CUIFindFunction<HRESULT WINAPI(void *)>(CUIOle32, "OleInitialize");
        m_pUninitialize = CUIFindFunction<void WINAPI()>(CUIOle32, "OleUninitialize");
        m_bReady = pInitialize && m_pUninitialize && SUCCEEDED(pInitialize(nullptr));
    }
    ~COle()
    {
        if (m_bReady)
            m_pUninitialize();
    }
    COle(const COle &) = delete;
    COle &operator=(const COle &) = delete;
    bool IsReady() const { return m_bReady; }

private:
    void(WINAPI *m_pUninitialize)();
    bool m_bReady;
};

// The dialog marks the folder to begin with.
int CALLBACK OnBrowse(HWND hDialog, UINT message, LPARAM, LPARAM lParam)
{
    if (message == BFFM_INITIALIZED)
        SendMessageA(hDialog, BFFM_SETSELECTIONA, TRUE, lParam);
    return 0;
}

void FreeShellMemory(void *pMemory)
{
    auto *const pGetMalloc = CUIFindFunction<HRESULT WINAPI(IMalloc **)>(CUIShell32, "SHGetMalloc");
    IMalloc *pMalloc = nullptr;
    if (!pGetMalloc || FAILED(pGetMalloc(&pMalloc)) || !pMalloc)
        return;
    pMalloc->Free(pMemory);
    pMalloc->Release();
}

}  // namespace

int CUIChooseFolder(CCUIWindow *pParent, CCUString &sPath, const char *pszText)
{
    auto *const pBrowse =
        CUIFindFunction<LPITEMIDLIST WINAPI(BROWSEINFOA *)>(CUIShell32, "SHBrowseForFolderA");
    auto *const pGetPath =
        CUIFindFunction<BOOL WINAPI(LPCITEMIDLIST, char *)>(CUIShell32, "SHGetPathFromIDListA");
    if (!pBrowse || !pGetPath)
        return CUIChoiceFailed("SHBrowseForFolderA", 0, GetLastError());
    const COle ole;
    const CCUString sFirst = sPath;
    char szPath[MAX_PATH] = "";
    BROWSEINFOA info = {};
    info.pszDisplayName = szPath;
    info.lpszTitle = pszText;
    info.ulFlags = BIF_RETURNONLYFSDIRS | (ole.IsReady() ? BIF_NEWDIALOGSTYLE : 0);
    info.lpfn = sFirst.IsEmpty() ? nullptr : OnBrowse;
    info.lParam = reinterpret_cast<LPARAM>(sFirst.GetString());
    LPITEMIDLIST pItem;
    {
        const CCUIChooserOwner owner(pParent);
        info.hwndOwner = owner;
        pItem = pBrowse(&info);
    }
    if (!pItem)
        return CUIChoiceCancelled();
    const bool bPath = pGetPath(pItem, szPath) != FALSE;
    FreeShellMemory(pItem);
    if (!bPath)
        return CUIChoiceFailed("SHGetPathFromIDListA", 0, ERROR_PATH_NOT_FOUND);
    sPath = szPath;
    return 1;
}
