#include <gtest/gtest.h>

#include <fstream>
#include <random>

#include "File/PictureFile.h"
#include "Picture/DibReader.h"
#include "Picture/DibWriter.h"
#include "Picture/Flatten.h"
#include "Picture/Import.h"
#include "Picture/Palette.h"
#include "Support/BmpBytes.h"
#include "Support/TemporaryDirectory.h"

namespace {

// What GDI shows of the bytes, and what we read of them.
void ExpectAsGdi(const CBmpBytes &bmp)
{
    const std::vector<BYTE> file = bmp.File();
    CPixels pixels;
    ASSERT_EQ(nullptr, ReadBmp(file.data(), file.size(), pixels));
    const CPixelMap gdi = bmp.Picture();
    for (int y = 0; y < pixels.m_cy; ++y) {
        for (int x = 0; x < pixels.m_cx; ++x)
            ASSERT_EQ(gdi.At(x, y), RGB(RedOf(pixels.Row(y)[x]), GreenOf(pixels.Row(y)[x]),
                                        BlueOf(pixels.Row(y)[x])));
    }
}

CPixels Gradient(int cx, int cy)
{
    CPixels pixels;
    pixels.Create(cx, cy);
    for (int i = 0; i < cx * cy; ++i)
        pixels.Row(i / cx)[i % cx] =
            MakePixel(UINT(i % cx * 255 / cx), UINT(i / cx * 255 / cy), 120);
    return pixels;
}

}  // namespace

TEST(Picture, ReadsEveryBitmapAsTheSystemDoes)
{
    for (const int nBits : {1, 4, 8, 16, 24, 32}) {
        ExpectAsGdi(CBmpBytes(37, 11, nBits));
        ExpectAsGdi(CBmpBytes(5, -7, nBits));
    }
    ExpectAsGdi(CBmpBytes(9, 6, 8, 40, BI_RGB, 13));
    ExpectAsGdi(CBmpBytes(9, 6, 8, 40, BI_RLE8));
    ExpectAsGdi(CBmpBytes(9, 6, 16, 40, BI_BITFIELDS));
    ExpectAsGdi(CBmpBytes(9, 6, 32, 40, BI_BITFIELDS));
    ExpectAsGdi(CBmpBytes(9, 6, 24, 108));
    ExpectAsGdi(CBmpBytes(9, 6, 8, 124));
}

// Runs, literal runs, ends of lines and jumps in 4 bits; an OS/2 header.
TEST(Picture, ReadsOldKinds)
{
    CBmpBytes runs(5, 3, 4, 40, BI_RLE4);
    runs.m_pixels = {3, 0x12, 0, 0, 0, 5, 0x45, 0x60, 0x10, 0, 0, 0, 0, 2, 4, 0, 1, 0x77, 0, 1};
    runs.m_info.biSizeImage = runs.m_pixels.size();
    const std::vector<BYTE> dib = runs.Packed(0);
    CPixels pixels;
    ASSERT_EQ(nullptr, ReadDib(dib.data(), dib.size(), 0, pixels));
    const int expected[3][5] = {{-1, -1, -1, -1, 7}, {4, 5, 6, 0, 1}, {1, 2, 1, -1, -1}};
    for (int i = 0; i < 15; ++i) {
        const int nIndex = expected[i / 5][i % 5];
        const RGBQUAD quad = nIndex < 0 ? RGBQUAD() : runs.m_table[static_cast<size_t>(nIndex)];
        EXPECT_EQ(MakePixel(quad.rgbRed, quad.rgbGreen, quad.rgbBlue), pixels.m_pixels[size_t(i)])
            << i;
    }
    const BYTE core[] = {12, 0, 0, 0, 2, 0, 1, 0, 1, 0, 1, 0, 9, 8, 7, 3, 2, 1, 0x40, 0, 0, 0};
    ASSERT_EQ(nullptr, ReadDib(core, sizeof core, 0, pixels));
    EXPECT_EQ((std::vector<DWORD>{0xFF070809, 0xFF010203}), pixels.m_pixels);
}

// Whatever the bytes say, nothing behind their end is read, and what is taken is whole.
TEST(Picture, SurvivesHostileBytes)
{
    std::mt19937 random(1);
    const DWORD odd[] = {0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 12, 16, 40, 56, 108, 3, 6};
    const CBmpBytes seeds[] = {{9, 6, 8, 40, BI_RLE8}, {7, 5, 4},   {7, 5, 16, 40, BI_BITFIELDS},
                               {7, 5, 32, 124},        {7, -5, 24}, {8, 4, 1}};
    // Each ends right before a page that nobody may touch.
    const size_t ROOM = 0x10000;
    BYTE *const room =
        static_cast<BYTE *>(VirtualAlloc(nullptr, ROOM + 1, MEM_RESERVE, PAGE_NOACCESS));
    ASSERT_TRUE(VirtualAlloc(room, ROOM, MEM_COMMIT, PAGE_READWRITE));
    for (int i = 0; i < 20000; ++i) {
        std::vector<BYTE> dib = seeds[random() % 6].Packed(0);
        dib.resize(dib.size() - random() % 3 * (random() % dib.size()) / 2);
        for (unsigned n = random() % 4; n > 0 && dib.size() > 44; --n)
            memcpy(&dib[random() % 11 * 4], random() % 2 ? &odd[random() % 12] : &odd[5], 4);
        if (!dib.empty())
            dib[random() % dib.size()] = static_cast<BYTE>(random());
        BYTE *const p = room + ROOM - dib.size();
        std::copy(dib.begin(), dib.end(), p);
        CPixels pixels;
        const bool bTaken = !ReadDib(p, dib.size(), random() % 8 ? 0 : random() % 99, pixels);
        EXPECT_TRUE(!bTaken || WriteDib(pixels));
    }
}

// As many jumps to the right as 32 bits hold, and one pixel that has no place then.
TEST(Picture, StaysInTheRowHoweverManyJumpsThereAre)
{
    CBmpBytes runs(200, 1, 8, 40, BI_RLE8);
    runs.m_pixels.clear();
    std::vector<BYTE> dib = runs.Packed(0);
    const BYTE jump[] = {0, 2, 255, 0};
    const size_t nJumps = 0x80000000 / 255 + 1;
    dib.reserve(dib.size() + nJumps * sizeof jump + 2);
    for (size_t i = 0; i < nJumps; ++i)
        dib.insert(dib.end(), jump, jump + sizeof jump);
    dib.insert(dib.end(), {1, 7});
    CPixels pixels;
    ASSERT_EQ(nullptr, ReadDib(dib.data(), dib.size(), 0, pixels));
    EXPECT_EQ(std::vector<DWORD>(200, OPAQUE_PIXEL), pixels.m_pixels);
}

TEST(Picture, ComesBackAsItWasWritten)
{
    for (CPixels picture : {Gradient(13, 5), Gradient(3, 3)}) {
        if (picture.m_cx == 3) {
            for (const DWORD n : picture.m_pixels)
                picture.m_colors.push_back({BYTE(BlueOf(n)), BYTE(GreenOf(n)), BYTE(RedOf(n)), 0});
        }
        const CBlob file = MakeBmpFile(WriteDib(picture));
        CPixels back;
        ASSERT_EQ(nullptr, ReadBmp(file->data(), file->size(), back));
        EXPECT_EQ(picture.m_pixels, back.m_pixels);
        EXPECT_EQ(picture.m_colors.size(), back.m_colors.size());
    }
}

TEST(Picture, ShowsWhatIsUnderTransparency)
{
    CPixels picture;
    picture.Create(2, 1);
    picture.m_pixels = {0x80FF0000, 0x00123456};
    Flatten(picture, Gradient(4, 4), {3, 2});
    EXPECT_EQ(MakePixel((255 * 128 + 191 * 127 + 127) / 255, 63, 60), picture.m_pixels[0]);
    EXPECT_EQ(0xFFFFFFFF, picture.m_pixels[1]);  // beside the background
}

// By the system, and under any name; what is none is told.
TEST(Picture, ImportsPng)
{
    const CTemporaryDirectory folder;
    const CCUString sPath = (folder.Path() + "\\a.bmp").c_str();
    const BYTE png[] = {137, 80,  78,  71,  13,  10,  26,  10, 0,  0,  0,   13,  73,  72, 68,
                        82,  0,   0,   0,   2,   0,   0,   0,  1,  8,  6,   0,   0,   0,  244,
                        34,  127, 138, 0,   0,   0,   17,  73, 68, 65, 84,  120, 218, 99, 224,
                        18,  145, 251, 207, 200, 196, 204, 0,  0,  6,  164, 1,   66,  67, 0,
                        65,  202, 0,   0,   0,   0,   73,  69, 78, 68, 174, 66,  96,  130};
    CProblems problems;
    WriteBytes(sPath.GetString(), std::vector<BYTE>(png, png + sizeof png));
    const CBlob dib = ImportPicture(sPath, problems);
    ASSERT_TRUE(dib && problems.empty());
    CPixels pixels;
    ASSERT_EQ(nullptr, ReadDib(dib->data(), dib->size(), 0, pixels));
    EXPECT_EQ((std::vector<DWORD>{0xFF0A141E, 0xFFFFFFFF}), pixels.m_pixels);
    for (const size_t nCut : {sizeof png / 2, sizeof png - 30, size_t(3), size_t(0)}) {
        WriteBytes(sPath.GetString(), std::vector<BYTE>(png, png + nCut));
        EXPECT_FALSE(ImportPicture(sPath, problems)) << nCut;
    }
    EXPECT_EQ(4U, problems.size());
    EXPECT_FALSE(ImportPicture(folder.Path().c_str(), problems));
    EXPECT_TRUE(strstr(ProblemLine(problems[4]), "cannot be read: it is a folder."));
}

// Few colours stay exactly as they are; many come near, and the system's stand at the ends.
TEST(Picture, SharesColours)
{
    CSkin skin;
    skin.m_pictures[PictureBackground] = WriteDib(Gradient(200, 150));
    skin.m_pictures[PictureBullet] = WriteDib(Gradient(10, 10));
    EXPECT_FALSE(HaveSharedColours(skin));
    ASSERT_TRUE(ShareColours(skin));
    EXPECT_TRUE(HaveSharedColours(skin));
    EXPECT_FALSE(skin.m_pictures[PictureProduct]);
    CPixels back;
    ReadDib(skin.m_pictures[0]->data(), skin.m_pictures[0]->size(), 0, back);
    ASSERT_EQ(256U, back.m_colors.size());
    EXPECT_EQ(0x80, back.m_colors[7].rgbRed == 0xC0 ? back.m_colors[248].rgbRed : 0);
    const CPixels gradient = Gradient(200, 150);
    int nError = 0;
    for (size_t i = 0; i < back.m_pixels.size(); ++i)
        nError += abs(int(RedOf(back.m_pixels[i])) - int(RedOf(gradient.m_pixels[i])));
    EXPECT_LT(nError / int(back.m_pixels.size()), 8);

    CSkin few;
    few.m_pictures[PictureProduct] = WriteDib(Gradient(15, 15));
    ASSERT_TRUE(ShareColours(few));
    ReadDib(few.m_pictures[1]->data(), few.m_pictures[1]->size(), 0, back);
    EXPECT_EQ(Gradient(15, 15).m_pixels, back.m_pixels);
}
