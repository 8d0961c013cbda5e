// The chooser of folders.

#include "Base/Lifetime.h"
#include "CUI/Choosers.h"
#include "Dialog/ChooserLibrary.h"
#include "Dialog/ChooserOwner.h"

#include <shlobj.h>

namespace {

struct CShellLibrary : CCUILibrary<CShellLibrary>
{
    static constexpr const char *NAME = "shell32.dll";
};
struct COleLibrary : CCUILibrary<COleLibrary>
{
    static constexpr const char *NAME = "ole32.dll";
};

CCUShared<CShellLibrary> s_shell;
CCUShared<COleLibrary> s_ole;

// OLE on this thread, which the larger form of the dialog wants.
class COle
{
public:
    COle()
    {
        auto *const pInitialize = s_ole.Get().Find<HRESULT WINAPI(void *)>("OleInitialize");
        m_pUninitialize = s_ole.Get().Find<void WINAPI()>("OleUninitialize");
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
    auto *const pGetMalloc = s_shell.Get().Find<HRESULT WINAPI(IMalloc **)>("SHGetMalloc");
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
        s_shell.Get().Find<LPITEMIDLIST WINAPI(BROWSEINFOA *)>("SHBrowseForFolderA");
    auto *const pGetPath =
        s_shell.Get().Find<BOOL WINAPI(LPCITEMIDLIST, char *)>("SHGetPathFromIDListA");
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
