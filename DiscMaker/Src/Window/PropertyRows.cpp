#include "Window/PropertyRows.h"

#include <ctype.h>
#include <stdlib.h>

#include "Canvas/PictureBitmap.h"
#include "Model/EntryText.h"
#include "Model/Problem.h"
#include "Problems/SkinStrings.h"
#include "Resource.h"

namespace {

struct Group
{
    const char *m_pszHeading;
    UINT m_entries[8];  // 0: no more
};

const Group GROUPS[] = {
    {"Window", {IDS_CAPTION}},
    {"Title", {IDS_TITLE, IDS_TITLE_FONT, IDS_TITLE_POS}},
    {"Learn line", {IDS_HELP, IDS_HELP_COMMAND, IDS_HELP_POS, IDS_HELP_ICON_POS}},
    {"Run line", {IDS_RUN, IDS_RUN_COMMAND, IDS_RUN_POS, IDS_RUN_ICON_POS}},
    {"Install line", {IDS_SETUP, IDS_SETUP_COMMAND, IDS_SETUP_POS, IDS_SETUP_ICON_POS}},
    {"Exit line", {IDS_EXIT, IDS_EXIT_POS, IDS_EXIT_ICON_POS}},
    {"All lines", {IDS_ITEM_FONT, IDS_HIGHLIGHT_COLOR}},
    {"Description", {IDS_ABOUT, IDS_ABOUT_FONT, IDS_ABOUT_RECT}},
};

const char *const VERSION_NAMES[] = {"ProductName",    "FileDescription", "CompanyName",
                                     "LegalCopyright", "FileVersion",     "ProductVersion"};

const char *const PICTURE_NAMES[PictureCount] = {"Background", "Product picture", "Bullet"};

// Inside of its group an entry need not say what it belongs to: "Title, font".
CCUString ShortCaption(const SkinEntry &entry)
{
    const CCUString sCaption = entry.m_pszCaption;
    const int nComma = sCaption.Find(", ");
    if (nComma < 0)
        return entry.m_kind == EntryText ? "Text" : sCaption;
    CCUString sShort = sCaption.Mid(nComma + 2);
    sShort.SetAt(0, static_cast<char>(toupper(sShort[0])));
    return sShort;
}

CCUString PictureText(const CBlob &picture)
{
    if (!picture)
        return "(none)";
    const BITMAPINFOHEADER *const pHeader = HeaderOfPicture(picture);
    if (!pHeader)
        return "(cannot be shown)";
    const int nBits = pHeader->biBitCount;
    CCUString sText;
    sText.Format(nBits > 8 ? "%ld x %ld, %d bits" : "%ld x %ld, %d colours", pHeader->biWidth,
                 labs(pHeader->biHeight), nBits > 8 ? nBits : 1 << nBits);
    return sText;
}

CCUString IconText(const CBlob &icon)
{
    if (!icon || icon->size() < 6)
        return "(none)";
    CCUString sText;
    const unsigned nPictures = (*icon)[4] + 256U * (*icon)[5];
    sText.Format(nPictures == 1 ? "1 picture" : "%u pictures", nPictures);
    return sText;
}

bool HasVersion(const std::vector<PropertyRow> &rows, const CCUString &sName)
{
    for (const PropertyRow &row : rows) {
        if (row.m_kind == PropertyRow::Version && row.m_sCaption == sName)
            return true;
    }
    return false;
}

}  // namespace

std::vector<PropertyRow> MakePropertyRows(const CSkin &skin)
{
    std::vector<PropertyRow> rows;
    rows.push_back({PropertyRow::Heading, 0, "Disc"});
    rows.push_back({PropertyRow::Entry, IDS_DISC_LABEL, "Label"});
    rows.push_back({PropertyRow::Icon, 0, "Icon"});
    if (skin.m_texts.size() > 1)
        rows.push_back({PropertyRow::Language, 0, "Language"});
    rows.push_back({PropertyRow::Heading, 0, "Pictures"});
    for (UINT i = 0; i < PictureCount; ++i) {
        rows.push_back({PropertyRow::Picture, i, PICTURE_NAMES[i]});
        if (i == PictureProduct)
            rows.push_back({PropertyRow::Entry, IDS_PRODUCT_POS, "Place"});
    }
    for (const Group &group : GROUPS) {
        rows.push_back({PropertyRow::Heading, 0, group.m_pszHeading});
        for (const UINT nID : group.m_entries) {
            if (nID)
                rows.push_back({PropertyRow::Entry, nID, ShortCaption(*FindSkinEntry(nID))});
        }
    }
    rows.push_back({PropertyRow::Heading, 0, "Version information"});
    for (const char *const pszName : VERSION_NAMES)
        rows.push_back({PropertyRow::Version, 0, pszName});
    for (const auto &text : skin.m_version) {
        const CCUString sName = text.first.ToCodePage(CP_ACP);
        if (!HasVersion(rows, sName))
            rows.push_back({PropertyRow::Version, 0, sName});
    }
    return rows;
}

CCUString RowText(const CDocument &document, const PropertyRow &row)
{
    const CSkin &skin = document.Skin();
    const SkinEntry *const pEntry = FindSkinEntry(row.m_nID);
    switch (row.m_kind) {
    case PropertyRow::Entry:
        return pEntry ? EntryInWords(*pEntry, document.Entry(row.m_nID))
                      : document.Entry(row.m_nID);
    case PropertyRow::Picture: return PictureText(skin.m_pictures[row.m_nID]);
    case PropertyRow::Icon: return IconText(skin.m_icon);
    case PropertyRow::Version: return document.Version(row.m_sCaption);
    case PropertyRow::Language:
        return document.Language() < skin.m_texts.size()
                   ? LanguageName(skin.m_texts[document.Language()].m_nLanguage)
                   : CCUString();
    case PropertyRow::Heading: break;
    }
    return CCUString();
}

CCUString RowEditText(const CDocument &document, const PropertyRow &row)
{
    const SkinEntry *const pEntry = FindSkinEntry(row.m_nID);
    return row.m_kind == PropertyRow::Entry && pEntry
               ? EntryToField(*pEntry, document.Entry(row.m_nID))
               : RowText(document, row);
}

const CWideText *RowOwnText(const CDocument &document, const PropertyRow &row)
{
    return IsRowText(row) ? document.Text(RowPart(document, row)) : nullptr;
}

void SetRowText(CDocument &document, const PropertyRow &row, const CCUString &sText)
{
    const SkinEntry *const pEntry = FindSkinEntry(row.m_nID);
    if (row.m_kind == PropertyRow::Entry)
        document.SetEntry(row.m_nID, pEntry ? EntryFromField(*pEntry, sText) : sText);
    else if (row.m_kind == PropertyRow::Version)
        document.SetVersion(row.m_sCaption, sText);
}

bool IsRowText(const PropertyRow &row)
{
    return row.m_kind == PropertyRow::Entry || row.m_kind == PropertyRow::Version;
}

bool HasRowButton(const PropertyRow &row)
{
    if (row.m_kind != PropertyRow::Entry)
        return row.m_kind != PropertyRow::Heading && row.m_kind != PropertyRow::Version;
    const SkinEntry *const pEntry = FindSkinEntry(row.m_nID);
    return pEntry && (pEntry->m_kind == EntryFont || pEntry->m_kind == EntryColor ||
                      pEntry->m_kind == EntryCommand || row.m_nID == IDS_ABOUT);
}

CCUString RowFault(const CDocument &document, const PropertyRow &row)
{
    const SkinEntry *const pEntry = FindSkinEntry(row.m_nID);
    if (row.m_kind == PropertyRow::Entry && pEntry)
        return EntryFault(*pEntry, document.Entry(row.m_nID));
    if (row.m_kind == PropertyRow::Entry && document.Entry(row.m_nID).GetLength() > 32)
        return "A label has 32 characters at the most.";
    if (row.m_kind == PropertyRow::Picture && !document.Skin().m_pictures[row.m_nID])
        return "There is no picture.";
    return CCUString();
}

namespace {

CCUString HelpOf(const PropertyRow &row)
{
    const SkinEntry *const pEntry = FindSkinEntry(row.m_nID);
    switch (row.m_kind) {
    case PropertyRow::Entry:
        return pEntry ? EntryHelp(*pEntry) : "The name of the disc, as Windows shows it.";
    case PropertyRow::Picture:
        return row.m_nID == PictureBackground ? "The window is as large as the background, and has "
                                                "no border but what it shows."
                                              : "Drawn whole, over the background.";
    case PropertyRow::Icon: return "The icon of the launcher, and of the disc.";
    case PropertyRow::Version: return "What Windows shows of the launcher's file.";
    case PropertyRow::Language: return "The language whose texts are shown and edited here.";
    case PropertyRow::Heading: break;
    }
    return CCUString();
}

}  // namespace

CCUString RowHelp(const CDocument &document, const PropertyRow &row)
{
    bool bLost = false;
    if (const CWideText *const pText = RowOwnText(document, row))
        pText->ToCodePage(CP_ACP, &bLost);
    return bLost ? "Some characters cannot be shown in this field. They stay until they are "
                   "overwritten. " +
                       HelpOf(row)
                 : HelpOf(row);
}

UINT RowEntry(const PropertyRow &row)
{
    const UINT pictures[PictureCount] = {IDB_BACKGROUND, IDB_PRODUCT, IDB_BULLET};
    switch (row.m_kind) {
    case PropertyRow::Entry: return row.m_nID;
    case PropertyRow::Picture: return pictures[row.m_nID];
    case PropertyRow::Icon: return PROBLEM_ICON;
    default: return 0;
    }
}

SkinPart RowPart(const CDocument &document, const PropertyRow &row)
{
    SkinPart part;
    switch (row.m_kind) {
    case PropertyRow::Picture:
        part.m_kind = SkinPart::Picture;
        part.m_nID = row.m_nID;
        return part;
    case PropertyRow::Icon: part.m_kind = SkinPart::Icon; return part;
    case PropertyRow::Version: return CDocument::VersionPart(row.m_sCaption);
    default: return document.EntryPart(row.m_nID);
    }
}
