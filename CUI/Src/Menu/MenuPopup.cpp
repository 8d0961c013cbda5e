#include "Menu/MenuPopup.h"

#include <string.h>

#include "Base/GdiGuards.h"
#include "Base/Wrap.h"
#include "CUI/Data.h"
#include "Menu/MenuItem.h"
#include "Menu/MenuPictures.h"
#include "Window/MnemonicText.h"

namespace {

bool IsSame(const ACCEL &key1, const ACCEL &key2)
{
    return key1.cmd == key2.cmd && key1.key == key2.key && key1.fVirt == key2.fVirt;
}

// Where a character leads among the items of a menu.
struct CMatches
{
    int m_nCount = 0;
    int m_nFirst = -1;
    int m_nNext = -1;         // behind the item that is highlighted
    bool m_bEnabled = false;  // that of the last

    void Add(int nItem, bool bEnabled)
    {
        ++m_nCount;
        if (m_nFirst < 0)
            m_nFirst = nItem;
        if (m_nNext < 0)
            m_nNext = nItem;
        m_bEnabled = bEnabled;
    }
    // As the system does with its own: a single one is carried out, several are gone through.
    long Answer() const
    {
        const bool bExecute = m_nCount == 1 && m_bEnabled;
        return MAKELONG(m_nNext < 0 ? m_nFirst : m_nNext, bExecute ? MNC_EXECUTE : MNC_SELECT);
    }
};

}  // namespace

int CCUIMenuRecord::LabelLength() const
{
    const int nTab = m_sText.Find('\t');
    return nTab < 0 ? m_sText.GetLength() : nTab;
}

const char *CCUIMenuRecord::Shortcut() const
{
    const int nTab = m_sText.Find('\t');
    return nTab < 0 ? m_sKey.GetString() : m_sText.GetString() + nTab + 1;
}

void CCUIMenuRecord::SetAccessible()
{
    CCUString sText = m_sText;
    if (!m_sKey.IsEmpty())
        sText += '\t' + m_sKey;
    delete[] pszAccessible;
    const int nSize = sText.GetLength() + 1;
    pszAccessible = new wchar_t[static_cast<unsigned>(nSize)];
    const int nWide = MultiByteToWideChar(CP_ACP, 0, sText, nSize, pszAccessible, nSize);
    cchAccessible = nWide > 0 ? static_cast<DWORD>(nWide - 1) : 0;
}

CCUIMenuRecord *CCUIMenuPopup::Record(ULONG_PTR dwItemData) const
{
    const ULONG_PTR dwOffset = dwItemData - reinterpret_cast<ULONG_PTR>(m_pRecords);
    const bool bOurs = m_pRecords && dwOffset % sizeof *m_pRecords == 0 &&
                       dwOffset / sizeof *m_pRecords < static_cast<unsigned>(m_nItems);
    return bOurs ? reinterpret_cast<CCUIMenuRecord *>(dwItemData) : nullptr;
}

// Whether all items must be shown anew, since the settings or the keys' names are others.
bool CCUIMenuPopup::TakeSettings()
{
    const HKL hOld = m_hLayout;
    m_hLayout = GetKeyboardLayout(0);
    return m_metrics.Refresh() || m_hLayout != hOld;
}

void CCUIMenuPopup::Prepare(const CCUIMenuPictures *pPictures, const CCUIAccelerators &keys)
{
    const int nItems = CUILarger(GetMenuItemCount(m_hMenu), 0);
    // First read them all: their texts may be in records that other items are about to get.
    auto *const items = new CUIMenuItem[static_cast<unsigned>(nItems)];
    for (int i = 0; i < nItems; ++i)
        items[i].Read(m_hMenu, static_cast<UINT>(i));
    CCUIMenuRecord *const pOld = m_pRecords;
    if (nItems > m_nRecords) {
        m_nRecords = nItems + nItems / 4;
        m_pRecords = new CCUIMenuRecord[static_cast<unsigned>(m_nRecords)];
    }
    m_nItems = nItems;
    const bool bAll = TakeSettings();
    m_cxPicture = m_cyPicture = 0;
    for (int i = 0; i < nItems; ++i) {
        CCUIMenuRecord &record = m_pRecords[i];
        const bool bChanged = Take(record, items[i], pPictures, keys) || bAll;
        if (items[i].HasText() && (bChanged || items[i].m_pRecord != &record))
            Give(record, items[i], static_cast<UINT>(i));
    }
    delete[] items;
    if (pOld != m_pRecords)
        delete[] pOld;
    MeasureTexts();
    MeasureColumns();
}

// Makes the item one that is drawn from the record. The system asks anew how large an item is only
// when that has been set again.
void CCUIMenuPopup::Give(CCUIMenuRecord &record, CUIMenuItem &item, UINT nItem) const
{
    item.m_pRecord = &record;
    item.Write(m_hMenu, nItem);
    record.m_sKey = record.m_key.cmd ? CCUIAccelerators::KeyText(record.m_key) : CCUString();
    record.SetAccessible();
}

// Writes into the record what an item is now; whether anything of that has changed.
bool CCUIMenuPopup::Take(CCUIMenuRecord &record, const CUIMenuItem &item,
                         const CCUIMenuPictures *pPictures, const CCUIAccelerators &keys)
{
    const bool bDefault = (item.m_nState & MFS_DEFAULT) != 0;
    const ACCEL *const pKey = item.m_sText.Find('\t') < 0 ? keys.Find(item.m_nID) : nullptr;
    const ACCEL key = pKey && item.HasText() ? *pKey : ACCEL();
    int nPicture = -1;
    while (pPictures && (nPicture = pPictures->Find(item.m_nID)) < 0)
        pPictures = pPictures->m_pNext;
    const bool bChanged = record.m_cxText < 0 || record.m_bDrawn != item.HasText() ||
                          record.m_nType != item.m_nType || record.m_bDefault != bDefault ||
                          record.m_pPictures != pPictures || record.m_nPicture != nPicture ||
                          !IsSame(record.m_key, key) || record.m_sText != item.m_sText;
    record.m_bDrawn = item.HasText();
    record.m_nType = item.m_nType | (item.HasText() ? MFT_OWNERDRAW : 0);
    record.m_bDefault = bDefault;
    record.m_bSubmenu = item.m_bSubmenu;
    record.m_pPictures = pPictures;
    record.m_nPicture = nPicture;
    record.m_key = key;
    record.m_sText = item.m_sText;
    if (pPictures) {
        m_cxPicture = CUILarger(m_cxPicture, pPictures->Width());
        m_cyPicture = CUILarger(m_cyPicture, pPictures->Height());
    }
    return bChanged;
}

void CCUIMenuPopup::GiveBack() const
{
    const int nItems = GetMenuItemCount(m_hMenu);
    for (int i = 0; i < nItems; ++i) {
        CUIMenuItem item;
        if (!item.Read(m_hMenu, static_cast<UINT>(i)) || !item.m_pRecord)
            continue;
        item.GiveBack();
        item.Write(m_hMenu, static_cast<UINT>(i));
    }
}

void CCUIMenuPopup::MeasureTexts()
{
    bool bNone = true;
    for (int i = 0; i < m_nItems && bNone; ++i)
        bNone = !m_pRecords[i].m_bDrawn || m_pRecords[i].m_cxText >= 0;
    if (bNone)
        return;
    const CUIData &data = *CUIGetWinData();
    const CCUIMemoryDC memory(nullptr);
    const CCUISelect select(memory, data.hMenuFont);
    for (int i = 0; i < m_nItems; ++i) {
        CCUIMenuRecord &record = m_pRecords[i];
        if (!record.m_bDrawn || record.m_cxText >= 0)
            continue;
        const CCUISelect font(memory, record.m_bDefault ? data.hMenuFontBold : data.hMenuFont);
        RECT rect = {0, 0, 0, 0};
        DrawTextA(memory, record.m_sText, record.LabelLength(), &rect, DT_SINGLELINE | DT_CALCRECT);
        record.m_cxText = rect.right;
        const char *const pszShortcut = record.Shortcut();
        SIZE size = {0, 0};
        GetTextExtentPoint32A(memory, pszShortcut, static_cast<int>(strlen(pszShortcut)), &size);
        record.m_cxKey = size.cx;
    }
}

// The shortcuts of a column stand below each other, behind its longest text.
void CCUIMenuPopup::MeasureColumns()
{
    int nNext = 0;
    for (int nFirst = 0; nFirst < m_nItems; nFirst = nNext) {
        int cxText = 0;
        int cxKey = 0;
        for (nNext = nFirst; nNext < m_nItems; ++nNext) {
            const CCUIMenuRecord &record = m_pRecords[nNext];
            if (nNext > nFirst && (record.m_nType & (MFT_MENUBREAK | MFT_MENUBARBREAK)))
                break;
            if (record.m_bDrawn) {
                cxText = CUILarger(cxText, record.m_cxText);
                cxKey = CUILarger(cxKey, record.m_cxKey);
            }
        }
        for (int i = nFirst; i < nNext; ++i) {
            m_pRecords[i].m_cxColumn = cxText;
            m_pRecords[i].m_cxKeyColumn = cxKey;
        }
    }
}

// The system adds two characters' width, where a submenu's arrow has room.
void CCUIMenuPopup::Measure(const CCUIMenuRecord &record, MEASUREITEMSTRUCT &measure) const
{
    int cx = TextLeft() + record.m_cxColumn;
    if (record.m_cxKeyColumn)
        cx += 2 * m_metrics.m_cxChar + record.m_cxKeyColumn;
    measure.itemWidth = static_cast<UINT>(cx);
    measure.itemHeight =
        static_cast<UINT>(CUILarger(m_metrics.m_cyText, m_cyPicture) + m_metrics.m_nGap);
}

// The place of marks and pictures is as wide as the widest of them.
int CCUIMenuPopup::MarkWidth() const
{
    return CUILarger(m_metrics.m_cxCheck, m_cxPicture) + m_metrics.m_nGap;
}

int CCUIMenuPopup::TextLeft() const
{
    return MarkWidth() + m_metrics.m_nGap;
}

long CCUIMenuPopup::Character(UINT nChar) const
{
    const char ch = CUIUpper(static_cast<char>(nChar));
    const int nItems = GetMenuItemCount(m_hMenu);
    CMatches mnemonics;
    CMatches initials;  // of items without mnemonic: they count where no mnemonic fits
    for (int i = 0; i < nItems; ++i) {
        CUIMenuItem item;
        item.Read(m_hMenu, static_cast<UINT>(i));
        const char chMnemonic = CUIMnemonicOf(item.m_sText);
        const char chItem = chMnemonic ? chMnemonic : CUIUpper(item.m_sText[0]);
        if (item.HasText() && chItem == ch)
            (chMnemonic ? mnemonics : initials).Add(i, !(item.m_nState & MFS_DISABLED));
        if (item.m_nState & MFS_HILITE)
            mnemonics.m_nNext = initials.m_nNext = -1;
    }
    const CMatches &matches = mnemonics.m_nCount ? mnemonics : initials;
    return matches.m_nCount ? matches.Answer() : 0;
}
