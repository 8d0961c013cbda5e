#pragma once

#include "CU/Platform.h"
#include "CU/String.h"
#include "CUI/Accelerators.h"

struct CCUIMenuPictures;

// What a menu keeps of an item that it draws; dwItemData is its address. It begins with the record
// that the system's accessibility looks for there (MSAAMENUINFO), to read the item out.
struct CCUIMenuRecord
{
    DWORD dwSignature = 0xAA0DF00D;
    DWORD cchAccessible = 0;
    wchar_t *pszAccessible = nullptr;  // owned

    CCUString m_sText;        // as the menu has it, with its mnemonic and what stands behind a tab
    CCUString m_sKey;         // what its shortcut key is called
    ACCEL m_key = {};         // of which that was made; a command of 0: none
    UINT m_nType = 0;         // MFT_
    bool m_bDrawn = false;    // by us: the item has a text
    bool m_bDefault = false;  // bold
    bool m_bSubmenu = false;  // leads to one
    const CCUIMenuPictures *m_pPictures = nullptr;  // where its picture is; null: it has none
    int m_nPicture = 0;
    int m_cxText = -1;  // pixels; -1: not yet measured
    int m_cxKey = 0;
    int m_cxColumn = 0;     // of all texts in its column
    int m_cxKeyColumn = 0;  // of all shortcuts there

    CCUIMenuRecord() = default;
    ~CCUIMenuRecord() { delete[] pszAccessible; }
    CCUIMenuRecord(const CCUIMenuRecord &) = delete;
    CCUIMenuRecord &operator=(const CCUIMenuRecord &) = delete;

    // The text without the shortcut, and the shortcut: what stands behind the tab, else the key's
    // name. As places in the strings.
    int LabelLength() const;
    const char *Shortcut() const;
    void SetAccessible();
};
