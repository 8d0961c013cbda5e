#pragma once

#include "Model/Skin.h"
#include "Picture/DibWriter.h"
#include "Resource.h"

inline CBlob TestPictureBlob(int cx, int cy, DWORD nPixel)
{
    CPixels pixels;
    pixels.Create(cx, cy);
    pixels.m_pixels.assign(pixels.m_pixels.size(), nPixel);
    return WriteDib(pixels);
}

// A skin with which nothing is wrong.
inline CSkin GoodSkin()
{
    const struct
    {
        UINT m_nID;
        const char *m_pszText;
    } texts[] = {{IDS_CAPTION, "Setup"},
                 {IDS_TITLE, "Product"},
                 {IDS_TITLE_POS, "13,20"},
                 {IDS_TITLE_FONT, "26,1,0,Arial"},
                 {IDS_PRODUCT_POS, "302,10"},
                 {IDS_PRODUCT_ICON_POS, "0,0"},
                 {IDS_ITEM_FONT, "15,0,0,Arial"},
                 {IDS_HIGHLIGHT_COLOR, "212,0,0"},
                 {IDS_SPARE_COLOR, "0,0,0"},
                 {IDS_HELP, "Learn"},
                 {IDS_HELP_POS, "46,100"},
                 {IDS_HELP_ICON_POS, "15,104"},
                 {IDS_HELP_COMMAND, "Learn.exe"},
                 {IDS_RUN, "Run"},
                 {IDS_RUN_POS, "46,140"},
                 {IDS_RUN_ICON_POS, "15,144"},
                 {IDS_RUN_COMMAND, "Tools\\Run.exe /x"},
                 {IDS_SETUP, "Install"},
                 {IDS_SETUP_POS, "46,180"},
                 {IDS_SETUP_ICON_POS, "15,184"},
                 {IDS_SETUP_COMMAND, "\"My Setup.exe\" \"a b\""},
                 {IDS_EXIT, "Exit"},
                 {IDS_EXIT_POS, "46,220"},
                 {IDS_EXIT_ICON_POS, "15,224"},
                 {IDS_ABOUT, "First line,\nsecond && last."},
                 {IDS_ABOUT_RECT, "13,260,400,310"},
                 {IDS_ABOUT_FONT, "11,0,0,Arial"},
                 {IDS_DISC_LABEL, "PRODUCT 1.0"}};
    CSkin skin;
    skin.m_texts.push_back({LANG_NEUTRAL, {}});
    for (const auto &text : texts)
        skin.m_texts[0].m_entries[text.m_nID] = CWideText(text.m_pszText, 1252);
    skin.m_pictures[PictureBackground] = TestPictureBlob(514, 345, MakePixel(240, 240, 220));
    skin.m_pictures[PictureProduct] = TestPictureBlob(100, 50, MakePixel(250, 240, 250));
    skin.m_pictures[PictureBullet] = TestPictureBlob(16, 16, MakePixel(0, 0, 99));
    skin.m_icon = MakeBlob({0, 0, 1, 0, 0, 0});
    return skin;
}
