#include "CUI/Accelerators.h"

#include <stdlib.h>
#include <string.h>

#include "CU/Dump.h"

namespace {

struct CKeyName
{
    BYTE nKey;
    bool bExtended;  // of the two keys with this scan code, the one beside the number pad
    char szName[11];
};

// Keys that make no character of their own.
const CKeyName KEY_NAMES[] = {
    {VK_CONTROL, false, "Ctrl"},   {VK_SHIFT, false, "Shift"},       {VK_MENU, false, "Alt"},
    {VK_BACK, false, "Backspace"}, {VK_TAB, false, "Tab"},           {VK_RETURN, false, "Enter"},
    {VK_ESCAPE, false, "Esc"},     {VK_SPACE, false, "Space"},       {VK_PAUSE, false, "Pause"},
    {VK_PRIOR, true, "Page Up"},   {VK_NEXT, true, "Page Down"},     {VK_END, true, "End"},
    {VK_HOME, true, "Home"},       {VK_LEFT, true, "Left"},          {VK_UP, true, "Up"},
    {VK_RIGHT, true, "Right"},     {VK_DOWN, true, "Down"},          {VK_INSERT, true, "Insert"},
    {VK_DELETE, true, "Delete"},   {VK_SNAPSHOT, true, "Prnt Scrn"}, {VK_MULTIPLY, false, "Num *"},
    {VK_ADD, false, "Num +"},      {VK_SUBTRACT, false, "Num -"},    {VK_DIVIDE, true, "Num /"},
    {VK_DECIMAL, false, "Num Del"}};

// In the order in which a name tells them; the bits of a key in a table, and those of VkKeyScan.
const struct
{
    BYTE nFlag, nScanBit, nKey;
} HELD_KEYS[] = {{FCONTROL, 2, VK_CONTROL}, {FSHIFT, 1, VK_SHIFT}, {FALT, 4, VK_MENU}};

// What the keyboard layout calls a key; empty: nothing.
CCUString LayoutName(UINT nKey, bool bExtended)
{
    const LONG EXTENDED = 1 << 24;
    const LONG EITHER_SIDE = 1 << 25;
    char szName[64] = "";
    const UINT nScanCode = MapVirtualKeyA(nKey, 0);
    const LONG nFlags = EITHER_SIDE | (bExtended ? EXTENDED : 0);
    if (nScanCode)
        GetKeyNameTextA(static_cast<LONG>(nScanCode << 16) | nFlags, szName, sizeof szName);
    return szName;
}

// Wine 8 gives the names that the X server has for keys, such as "Control_L": no words.
bool HasLayoutWords()
{
    return LayoutName(VK_CONTROL, false).Find('_') < 0;
}

CCUString Numbered(const char *pszFormat, UINT nNumber)
{
    char szName[16];
    wsprintfA(szName, pszFormat, nNumber);
    return szName;
}

// A key without those that are held with it.
CCUString PlainName(UINT nKey)
{
    if (nKey >= VK_F1 && nKey <= VK_F24)
        return Numbered("F%u", nKey - VK_F1 + 1);
    const CKeyName *pName = nullptr;
    for (const CKeyName &name : KEY_NAMES) {
        if (name.nKey == nKey)
            pName = &name;
    }
    const bool bNumber = nKey >= VK_NUMPAD0 && nKey <= VK_NUMPAD9;
    // The upper half of the answer tells of a dead key.
    const char ch = static_cast<char>(MapVirtualKeyA(nKey, 2));
    if (ch && !pName && !bNumber)
        return CCUString(ch, 1);
    const CCUString sLayout = LayoutName(nKey, pName && pName->bExtended);
    if (!sLayout.IsEmpty() && HasLayoutWords())
        return sLayout;
    if (pName)
        return pName->szName;
    return bNumber ? Numbered("Num %u", nKey - VK_NUMPAD0) : Numbered("Key %u", nKey);
}

// Makes a key of a character's, where that says more: of control characters and of letters, whose
// case counts. False: the character says it itself.
bool MakeKey(ACCEL &key)
{
    const auto ch = static_cast<BYTE>(key.key);
    if (ch >= ' ' && !IsCharAlphaA(static_cast<char>(ch)))
        return false;
    const SHORT nScan = VkKeyScanA(static_cast<char>(ch));
    if (nScan == -1)
        return false;
    key.key = static_cast<WORD>(nScan & 0xFF);
    for (const auto &held : HELD_KEYS) {
        if (nScan >> 8 & held.nScanBit)
            key.fVirt |= held.nFlag;
    }
    return true;
}

}  // namespace

CCUIAccelerators::CCUIAccelerators(HINSTANCE hInstance, const char *name) : CCUIAccelerators()
{
    // The table belongs to the module.
    const HACCEL hTable = LoadAcceleratorsA(hInstance, name);
    if (!hTable)
        CUDump("CCUIAccelerators: no such resource, error %lu\n", GetLastError());
    Add(hTable);
}

CCUIAccelerators::~CCUIAccelerators()
{
    Empty();
}

void CCUIAccelerators::Empty()
{
    free(m_pKeys);
    m_pKeys = nullptr;
    m_nCount = 0;
}

void CCUIAccelerators::Add(const ACCEL *pKeys, int nCount)
{
    if (!pKeys || nCount <= 0)
        return;
    const size_t nSize = static_cast<size_t>(m_nCount + nCount) * sizeof *pKeys;
    auto *const pAll = static_cast<ACCEL *>(malloc(nSize));
    if (!pAll)
        return;
    // The new ones may be the object's own.
    memcpy(pAll + m_nCount, pKeys, static_cast<size_t>(nCount) * sizeof *pKeys);
    if (m_pKeys)
        memcpy(pAll, m_pKeys, static_cast<size_t>(m_nCount) * sizeof *pKeys);
    free(m_pKeys);
    m_pKeys = pAll;
    m_nCount += nCount;
}

void CCUIAccelerators::Add(HACCEL hTable)
{
    const int nCount = hTable ? CopyAcceleratorTableA(hTable, nullptr, 0) : 0;
    if (nCount <= 0)
        return;
    ACCEL few[32];
    ACCEL *const pKeys = nCount <= 32 ? few : new ACCEL[static_cast<unsigned>(nCount)];
    Add(pKeys, CopyAcceleratorTableA(hTable, pKeys, nCount));
    if (pKeys != few)
        delete[] pKeys;
}

const ACCEL *CCUIAccelerators::Find(UINT nID) const
{
    for (int i = 0; i < m_nCount; ++i) {
        if (m_pKeys[i].cmd == nID)
            return m_pKeys + i;
    }
    return nullptr;
}

CCUString CCUIAccelerators::KeyText(const ACCEL &key)
{
    ACCEL plain = key;
    CCUString sName;
    // With a character only Alt counts.
    if (!(key.fVirt & FVIRTKEY)) {
        plain.fVirt &= FALT;
        if (!MakeKey(plain))
            sName = CCUString(static_cast<char>(key.key), 1);
    }
    CCUString sText;
    for (const auto &held : HELD_KEYS) {
        if (plain.fVirt & held.nFlag)
            sText += PlainName(held.nKey) + '+';
    }
    return sText + (sName.IsEmpty() ? PlainName(plain.key) : sName);
}
