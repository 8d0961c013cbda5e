#include "Window/Clipboard.h"

#include <string.h>

#include "Base/Clipboard.h"
#include "CU/Dump.h"
#include "Model/SkinBytes.h"

namespace {

UINT SkinFormat()
{
    static const UINT s_nFormat = RegisterClipboardFormatA("Disc Maker Skin");
    return s_nFormat;
}

class COpenClipboard : public CCUClipboard
{
public:
    explicit COpenClipboard(HWND hWnd) : CCUClipboard(hWnd)
    {
        if (!*this)
            CUDump("DiscMaker: the clipboard is in use: error %lu\n", GetLastError());
    }
};

// What is there in a format, as long as it lives; the clipboard is open.
class CClipboardBytes
{
public:
    explicit CClipboardBytes(UINT nFormat) : m_hBytes(GetClipboardData(nFormat))
    {
        m_pBytes = m_hBytes ? static_cast<const BYTE *>(GlobalLock(m_hBytes)) : nullptr;
    }
    ~CClipboardBytes()
    {
        if (m_pBytes)
            GlobalUnlock(m_hBytes);
    }
    CClipboardBytes(const CClipboardBytes &) = delete;
    CClipboardBytes &operator=(const CClipboardBytes &) = delete;
    const BYTE *Data() const { return m_pBytes; }
    size_t Size() const { return m_pBytes ? GlobalSize(m_hBytes) : 0; }

private:
    HGLOBAL m_hBytes;
    const BYTE *m_pBytes;
};

}  // namespace

bool CopyToClipboard(HWND hWnd, const CCUString &sText, const CSkin *pSkin)
{
    const COpenClipboard clipboard(hWnd);
    if (!clipboard || !EmptyClipboard())
        return false;
    bool bDone = CUPutOnClipboard(CF_TEXT, static_cast<const char *>(sText),
                                  static_cast<size_t>(sText.GetLength()) + 1);
    if (pSkin) {
        // The system may give back more bytes than were put there.
        std::vector<BYTE> bytes = PackSkin(*pSkin);
        const DWORD nSize = static_cast<DWORD>(bytes.size());
        const BYTE *const pSize = reinterpret_cast<const BYTE *>(&nSize);
        bytes.insert(bytes.begin(), pSize, pSize + sizeof nSize);
        bDone = CUPutOnClipboard(SkinFormat(), bytes.data(), bytes.size()) && bDone;
    }
    return bDone;
}

bool SkinFromClipboard(HWND hWnd, CSkin &skin)
{
    const COpenClipboard clipboard(hWnd);
    if (!clipboard)
        return false;
    const CClipboardBytes bytes(SkinFormat());
    DWORD nSize = 0;
    if (bytes.Size() < sizeof nSize)
        return false;
    memcpy(&nSize, bytes.Data(), sizeof nSize);
    return nSize <= bytes.Size() - sizeof nSize &&
           UnpackSkin(bytes.Data() + sizeof nSize, nSize, skin);
}

CCUString TextFromClipboard(HWND hWnd)
{
    const COpenClipboard clipboard(hWnd);
    if (!clipboard)
        return CCUString();
    const CClipboardBytes bytes(CF_TEXT);
    const char *const pText = reinterpret_cast<const char *>(bytes.Data());
    size_t nLength = 0;
    while (nLength < bytes.Size() && pText[nLength])
        ++nLength;
    return pText ? CCUString(pText, static_cast<int>(nLength)) : CCUString();
}

bool LosesCharacters(HWND hWnd)
{
    if (!IsClipboardFormatAvailable(CF_UNICODETEXT))
        return false;  // the system knows no others
    const COpenClipboard clipboard(hWnd);
    if (!clipboard)
        return false;
    const CClipboardBytes bytes(CF_UNICODETEXT);
    const WCHAR *const pText = reinterpret_cast<const WCHAR *>(bytes.Data());
    size_t nLength = 0;
    while (nLength < bytes.Size() / sizeof(WCHAR) && pText[nLength])
        ++nLength;
    bool bLost = false;
    CWideText(pText, nLength).ToCodePage(CP_ACP, &bLost);
    return bLost;
}

bool CanPaste()
{
    return IsClipboardFormatAvailable(SkinFormat()) || IsClipboardFormatAvailable(CF_TEXT);
}
