#include "Canvas/SkinFace.h"

#include "Canvas/PictureBitmap.h"
#include "Model/SkinEntry.h"
#include "Resource.h"
#include "SkinTable.h"

CCUIBitmap CSkinFace::ReadBitmap(UINT nID) const
{
    const SkinPicture picture = nID == IDB_BACKGROUND ? PictureBackground
                                : nID == IDB_PRODUCT  ? PictureProduct
                                                      : PictureBullet;
    return BitmapOfPicture(m_document.Skin().m_pictures[picture]);
}

void CSkinFace::ReadAll()
{
    m_face.ReadBitmaps(*this);
    m_face.ReadTexts(CSkinTable(*this));
    ReadFontsAndColors();
    ReadPlaces();
}

// Fonts and colours that do not parse take what the one before them has, so all are read.
void CSkinFace::ReadFontsAndColors()
{
    CSkinTable table(*this);
    m_face.ReadFonts(table);
    m_face.ReadColors(table);
    m_face.ForgetSizes();
}

void CSkinFace::ReadPlaces()
{
    m_face.ForgetPoints();
    m_face.ReadPoints(CSkinTable(*this));
}

void CSkinFace::Read(const SkinPart &part)
{
    if (part.m_kind == SkinPart::Picture)
        m_face.ReadBitmaps(*this);
    const SkinEntry *const pEntry =
        part.m_kind == SkinPart::Entry ? FindSkinEntry(part.m_nID) : nullptr;
    if (!pEntry)
        return;
    switch (pEntry->m_kind) {
    case EntryPoint:
    case EntryRect: ReadPlaces(); break;
    case EntryFont:
    case EntryColor: ReadFontsAndColors(); break;
    case EntryText:
        m_face.ReadTexts(CSkinTable(*this));
        m_face.ForgetSizes();
        break;
    case EntryCommand: break;
    }
}
