// What a change of the system's colours and settings means for the framework: the system tells
// every top-level window, the first of them refreshes the shared data, each tells the windows in
// it.

#include <string.h>

#include "CU/Time.h"
#include "CUI/Data.h"
#include "CUI/Window.h"

namespace {

// All of Windows XP; earlier systems answer 0 for those that they do not have.
const int WATCHED_COLORS = 31;
// SM_CYFRAME has the highest number of those that CUIData keeps.
const int WATCHED_METRICS = SM_CYFRAME + 1;

struct CColors
{
    DWORD cr[WATCHED_COLORS];

    void Read()
    {
        for (int i = 0; i < WATCHED_COLORS; ++i)
            cr[i] = GetSysColor(i);
    }
};

struct CMetrics
{
    int n[WATCHED_METRICS];
    NONCLIENTMETRICSA nonClient;
    ICONMETRICSA icons;

    void Read()
    {
        for (int i = 0; i < WATCHED_METRICS; ++i)
            n[i] = GetSystemMetrics(i);
        nonClient.cbSize = sizeof nonClient;
        SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof nonClient, &nonClient, 0);
        icons.cbSize = sizeof icons;
        SystemParametersInfoA(SPI_GETICONMETRICS, sizeof icons, &icons, 0);
    }
};

// Whether the system answers otherwise than at the last call; the first call answers yes.
template <typename Settings>
bool HaveChanged()
{
    static Settings s_known;
    Settings now;
    memset(&now, 0, sizeof now);
    now.Read();
    if (memcmp(&now, &s_known, sizeof now) == 0)
        return false;
    memcpy(&s_known, &now, sizeof now);
    return true;
}

bool IsTopLevel(HWND hWnd)
{
    return !(GetWindowLongA(hWnd, GWL_STYLE) & WS_CHILD);
}

}  // namespace

void CCUIWindow::OnSysColorChange()
{
    CWatch watch(this);
    if (IsTopLevel(m_hWnd)) {
        if (HaveChanged<CColors>())
            CUIGetWinData()->UpdateSysColors();
        SendMessageToDescendants(m_hWnd, WM_SYSCOLORCHANGE, 0, 0, nullptr);
    }
    if (!watch.IsGone())
        Default();
}

void CCUIWindow::OnWinIniChange(WPARAM nAction, const char *section)
{
    CWatch watch(this);
    if (IsTopLevel(m_hWnd)) {
        CCUTime::TimeFormatChanged(true);
        if (HaveChanged<CMetrics>())
            CUIGetWinData()->UpdateWinIni();
        SendMessageToDescendants(m_hWnd, WM_WININICHANGE, nAction,
                                 reinterpret_cast<LPARAM>(section), nullptr);
    }
    if (!watch.IsGone())
        Default();
}
