#pragma once

#include <map>
#include <vector>

#include "Model/Blob.h"
#include "Model/WideText.h"

enum SkinPicture
{
    PictureBackground,
    PictureProduct,
    PictureBullet,
    PictureCount
};

// The string table in one language.
struct CSkinTexts
{
    LANGID m_nLanguage;
    std::map<UINT, CWideText> m_entries;  // by id; an empty text is as good as none to the launcher
};

// One launcher's looks, whatever file they are in: what a disc maker edits. A value.
struct CSkin
{
    std::vector<CSkinTexts> m_texts;  // one a language, in the file's order; never empty once read
    CBlob m_pictures[PictureCount];   // as resources: header, masks, colours, bits
    CBlob m_icon;                     // as an .ico file
    std::map<CWideText, CWideText> m_version;  // "ProductName" and so on; empty: the file has none
};
