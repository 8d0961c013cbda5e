// The choosers of colours and fonts.

#include <string.h>

#include "CU/Dump.h"
#include "CUI/Choosers.h"
#include "CUI/Data.h"
#include "CUI/Settings.h"
#include "Dialog/ChooserOwner.h"
#include "Dialog/CommonDialog.h"

namespace {

const char SECTION[] = "Choosers";
const char CUSTOM_COLORS[] = "CustomColors";

// The user's own colours, white at first. They are read each time, for another program that runs
// may have changed them; what the registry does not take stays here.
const int CUSTOM_COUNT = 16;
COLORREF s_custom[CUSTOM_COUNT];
bool s_bCustomMade = false;

void ReadCustomColors()
{
    for (COLORREF &cr : s_custom)
        cr = s_bCustomMade ? cr : RGB(255, 255, 255);
    s_bCustomMade = true;
    COLORREF kept[CUSTOM_COUNT];
    DWORD nSize = sizeof kept;
    CCURegistry registry;
    if (!CUIOpenSettings(registry, SECTION) || !registry.GetBinary(CUSTOM_COLORS, kept, nSize) ||
        nSize != sizeof kept)
        return;
    for (int i = 0; i < CUSTOM_COUNT; ++i)
        s_custom[i] = kept[i] & 0xFFFFFF;
}

void WriteCustomColors()
{
    CCURegistry registry;
    if (CUIOpenSettings(registry, SECTION, false) &&
        !registry.SetBinary(CUSTOM_COLORS, s_custom, sizeof s_custom))
        CUDump("Unable to keep the user's colours, gle: %lu\n", GetLastError());
}

CUICommonResult ShowColors(CCUIWindow *pParent, CHOOSECOLORA &record)
{
    const CCUIChooserOwner owner(pParent);
    record.hwndOwner = owner;
    return CUICommonDialog("ChooseColorA", &record);
}

CUICommonResult ShowFonts(CCUIWindow *pParent, CHOOSEFONTA &record)
{
    const CCUIChooserOwner owner(pParent);
    record.hwndOwner = owner;
    return CUICommonDialog("ChooseFontA", &record);
}

}  // namespace

int CUIChooseColor(CCUIWindow *pParent, COLORREF &cr, unsigned long nFlags)
{
    ReadCustomColors();
    COLORREF before[CUSTOM_COUNT];
    memcpy(before, s_custom, sizeof before);
    CHOOSECOLORA record = {};
    record.lStructSize = sizeof record;
    record.rgbResult = CUIGetWinData()->ResolveColor(cr);
    record.lpCustColors = s_custom;
    record.Flags = CC_RGBINIT | CC_ANYCOLOR | nFlags;
    const CUICommonResult result = ShowColors(pParent, record);
    if (memcmp(before, s_custom, sizeof before) != 0)
        WriteCustomColors();
    if (result.bChosen)
        cr = record.rgbResult;
    return CUICommonAnswer("ChooseColorA", result);
}

int CUIChooseFont(CCUIWindow *pParent, LOGFONTA &font, COLORREF *pColor, unsigned long nFlags)
{
    LOGFONTA chosen = font;
    CHOOSEFONTA record = {};
    record.lStructSize = sizeof record;
    record.lpLogFont = &chosen;
    record.rgbColors = pColor ? CUIGetWinData()->ResolveColor(*pColor) : 0;
    record.Flags = CF_SCREENFONTS | (*font.lfFaceName ? CF_INITTOLOGFONTSTRUCT : 0) |
                   (pColor ? CF_EFFECTS : 0) | nFlags;
    const CUICommonResult result = ShowFonts(pParent, record);
    if (result.bChosen) {
        font = chosen;
        if (pColor)
            *pColor = record.rgbColors;
    }
    return CUICommonAnswer("ChooseFontA", result);
}
