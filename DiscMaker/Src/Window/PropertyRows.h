#pragma once

#include <vector>

#include "Model/Document.h"

// One line of the table of properties.
struct PropertyRow
{
    enum Kind
    {
        Heading,
        Entry,    // m_nID: its id
        Picture,  // m_nID: a SkinPicture
        Icon,
        Version,  // m_sCaption: its name
        Language
    };
    Kind m_kind;
    UINT m_nID;
    CCUString m_sCaption;
};

std::vector<PropertyRow> MakePropertyRows(const CSkin &skin);

// What the row shows; what it shows while it is edited, and what of an edited text is kept.
CCUString RowText(const CDocument &document, const PropertyRow &row);
CCUString RowEditText(const CDocument &document, const PropertyRow &row);
// The text behind it, with characters that no field can show; null: there is none.
const CWideText *RowOwnText(const CDocument &document, const PropertyRow &row);
void SetRowText(CDocument &document, const PropertyRow &row, const CCUString &sText);
bool IsRowText(const PropertyRow &row);     // can be typed
bool HasRowButton(const PropertyRow &row);  // has something to be chosen
// What is wrong with it, else empty; what it is.
CCUString RowFault(const CDocument &document, const PropertyRow &row);
CCUString RowHelp(const CDocument &document, const PropertyRow &row);
// What problems call what it is about; 0: none is about it.
UINT RowEntry(const PropertyRow &row);
// The part of the skin that it is about.
SkinPart RowPart(const CDocument &document, const PropertyRow &row);
