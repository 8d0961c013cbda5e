#include <string.h>

#include "Picture/DibReader.h"
#include "Picture/Palette.h"
#include "Problems/Check.h"
#include "Problems/Checks.h"
#include "Resource.h"

namespace {

const int WIDEST = 640;
const int HIGHEST = 480;

const struct
{
    UINT m_nID;
    const char *m_pszName;
    const char *m_pszMissing;
} PICTURES[PictureCount] = {
    {IDB_BACKGROUND, "background", "The launcher's window has no size: nobody sees it."},
    {IDB_PRODUCT, "product picture", "Nothing is drawn in its place."},
    {IDB_BULLET, "bullet", "The lines have no bullets."}};

void Add(CProblems &problems, ProblemWeight weight, UINT nID, const CCUString &sWhat,
         const CCUString &sEffect)
{
    problems.push_back({weight, nID, "", sWhat, sEffect});
}

// Nothing in `pixels` when it is missing or cannot be read.
void CheckReadable(const CSkin &skin, int nPicture, CPixels &pixels, CProblems &problems)
{
    const auto &picture = PICTURES[nPicture];
    const CBlob &dib = skin.m_pictures[nPicture];
    const ProblemWeight weight = nPicture == PictureBackground ? ProblemError : ProblemWarning;
    if (!dib || dib->empty()) {
        Add(problems, weight, picture.m_nID, CCUString("The ") + picture.m_pszName + " is missing.",
            picture.m_pszMissing);
        return;
    }
    const char *const pszWhy = ReadDib(dib->data(), dib->size(), 0, pixels);
    if (!pszWhy)
        return;
    pixels = CPixels();
    Add(problems, weight, picture.m_nID,
        CCUString("The ") + picture.m_pszName + " cannot be read: " + pszWhy + ".",
        picture.m_pszMissing);
}

// What today's Windows draws and older ones may not.
void CheckKind(const CSkin &skin, int nPicture, CProblems &problems)
{
    BITMAPINFOHEADER header = {};
    const CBytes &dib = *skin.m_pictures[nPicture];
    memcpy(&header, dib.data(), dib.size() < sizeof header ? dib.size() : sizeof header);
    const bool bCore = header.biSize == sizeof(BITMAPCOREHEADER);
    if (!bCore && (header.biSize != sizeof header || header.biCompression != BI_RGB ||
                   header.biBitCount > 24 || header.biHeight < 0))
        Add(problems, ProblemWarning, PICTURES[nPicture].m_nID,
            CCUString("The ") + PICTURES[nPicture].m_pszName +
                " is not a plain bitmap of 24 bits or less. Import it anew.",
            "Older systems may not show it.");
}

void CheckSize(const CPixels &background, CProblems &problems)
{
    if (background.m_cx <= WIDEST && background.m_cy <= HIGHEST)
        return;
    CCUString sWhat;
    sWhat.Format("The background is %d x %d pixels, more than %d x %d.", background.m_cx,
                 background.m_cy, WIDEST, HIGHEST);
    Add(problems, ProblemWarning, IDB_BACKGROUND, sWhat,
        "On small screens a part of the window, perhaps that with the exit line, is not seen.");
}

bool IsLarger(const CPixels &one, const CPixels &other)
{
    return other.m_cx > 0 && (one.m_cx > other.m_cx || one.m_cy > other.m_cy);
}

void CheckSwapped(const CPixels (&pixels)[PictureCount], CProblems &problems)
{
    const struct
    {
        int m_nSmall;
        int m_nLarge;
    } pairs[] = {{PictureProduct, PictureBackground},
                 {PictureBullet, PictureBackground},
                 {PictureBullet, PictureProduct}};
    for (const auto &pair : pairs) {
        if (IsLarger(pixels[pair.m_nSmall], pixels[pair.m_nLarge]))
            Add(problems, ProblemWarning, PICTURES[pair.m_nSmall].m_nID,
                CCUString("The ") + PICTURES[pair.m_nSmall].m_pszName + " is larger than the " +
                    PICTURES[pair.m_nLarge].m_pszName + ". Were they swapped?",
                "It covers what is under it.");
    }
}

void CheckColors(const CSkin &skin, const CPixels (&pixels)[PictureCount], CProblems &problems)
{
    bool bTables = true;
    for (const CPixels &picture : pixels)
        bTables = bTables && !picture.m_colors.empty();
    if (bTables && !HaveSharedColours(skin))
        Add(problems, ProblemNote, IDB_BACKGROUND, "The pictures have different tables of colours.",
            "On screens of 256 colours some of them have wrong colours. Share the colours.");
}

void CheckIcon(const CSkin &skin, CProblems &problems)
{
    const BYTE start[] = {0, 0, 1, 0};
    if (!skin.m_icon || skin.m_icon->empty())
        Add(problems, ProblemWarning, PROBLEM_ICON, "The icon is missing.",
            "The disc and the launcher are shown with the system's icon for programs.");
    else if (skin.m_icon->size() < 6 || memcmp(skin.m_icon->data(), start, sizeof start) != 0)
        Add(problems, ProblemWarning, PROBLEM_ICON, "The icon is no .ico file.",
            "The disc is shown with the system's icon for programs.");
}

}  // namespace

bool CheckBackground(const CSkin &skin, CProblems &problems)
{
    CPixels pixels;
    CheckReadable(skin, PictureBackground, pixels, problems);
    return pixels.m_cx > 0;
}

void CheckPictures(const CSkin &skin, CProblems &problems)
{
    CPixels pixels[PictureCount];
    for (int i = 0; i < PictureCount; ++i) {
        CheckReadable(skin, i, pixels[i], problems);
        if (pixels[i].m_cx > 0)
            CheckKind(skin, i, problems);
    }
    CheckSize(pixels[PictureBackground], problems);
    CheckSwapped(pixels, problems);
    CheckColors(skin, pixels, problems);
    CheckIcon(skin, problems);
}
