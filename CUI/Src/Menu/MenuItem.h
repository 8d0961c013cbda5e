#pragma once

#include "CU/Platform.h"
#include "CU/String.h"

struct CCUIMenuRecord;

// One item of a menu, read and written back. The one place that knows where the systems keep the
// text of an item that a CCUIMenu draws: Windows 98 and 2000 beside its type, older ones nowhere.
class CUIMenuItem
{
public:
    // False when the menu has no such item.
    bool Read(HMENU hMenu, UINT nItem);
    // The system's to draw again.
    void GiveBack();
    // What has been changed: the state alone, or type and text as well.
    void WriteState(HMENU hMenu, UINT nItem) const;
    void Write(HMENU hMenu, UINT nItem) const;

    // Whether it shows a text, drawn by the system or by a CCUIMenu.
    bool HasText() const { return m_bText; }

    UINT m_nID = 0;
    bool m_bSubmenu = false;
    UINT m_nType = 0;   // MFT_
    UINT m_nState = 0;  // MFS_
    CCUString m_sText;
    // Of the CCUIMenu that draws the item; null: the system does, or somebody else.
    CCUIMenuRecord *m_pRecord = nullptr;

private:
    bool m_bText = false;
    ULONG_PTR m_dwData = 0;
};
