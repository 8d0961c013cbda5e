#pragma once

#include <map>
#include <memory>
#include <vector>

#include "Model/WideText.h"

// Bytes that nobody changes any more, shared by all that hold them: copies of a skin and steps that
// can be undone cost a pointer. Null: there are none.
typedef std::shared_ptr<const std::vector<BYTE>> CBlob;

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
