#include "CUI/ResourceString.h"

#include "Base/Module.h"
#include "CU/Dump.h"
#include "CU/Language.h"
#include "Dialog/FrameworkText.h"

namespace {

const int BLOCK = 256;

// Whether a text of that length may have been cut to the size of the buffer: beside the NUL one
// byte stays free where the next character has two.
bool IsCut(int nLength, int nSize)
{
    return nSize - nLength <= 2;
}

CCUString LongString(HINSTANCE hInst, UINT nID)
{
    CCUString sText;
    int nSize = BLOCK;
    int nLength;
    do {
        nSize += BLOCK;
        nLength = LoadStringA(hInst, nID, sText.GetBuffer(nSize - 1), nSize);
    } while (IsCut(nLength, nSize));
    sText.ReleaseBuffer();
    if (nLength < 1) {
        CUDump("Unable to load resource string - id = %u", nID);
        sText.Format("Resource Not Found - ID = %u", nID);
    }
    return sText;
}

}  // namespace

CCUString CUIResourceString(HINSTANCE hInst, UINT nID, bool bLocalize)
{
    if (bLocalize)
        nID = CUGetLocalizedID(nID);
    char szText[BLOCK] = "";
    const int nLength = LoadStringA(hInst, nID, szText, BLOCK);
    return IsCut(nLength, BLOCK) ? LongString(hInst, nID) : CCUString(szText);
}

CCUString CUIFrameworkText(UINT nID, const char *pszElse)
{
    const CCUString sText = CUIResourceString(CUInstance(), nID, true);
    return sText.IsEmpty() ? CCUString(pszElse) : sText;
}
