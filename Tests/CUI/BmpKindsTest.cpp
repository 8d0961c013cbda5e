// The kinds of DIBs that there are, through every loader: the right picture or none.
#include <gtest/gtest.h>

#include "CU/String.h"
#include "CUI/BmpLoad.h"
#include "Support/BmpBytes.h"
#include "Support/FailingCall.h"
#include "Support/FakeResource.h"
#include "Support/Reports.h"

namespace {

// As much of each colour as a picture of 5 bits a channel keeps.
CPixelMap Coarse(CPixelMap map)
{
    for (COLORREF &cr : map.pixels)
        cr &= 0xF8F8F8;
    return map;
}

// What the system itself shows of a DIB.
CPixelMap Truth(const std::vector<BYTE> &dib, size_t nPixels, int cx, int cy)
{
    CTestSurface surface(0, CPixelMap(cx, cy));
    StretchDIBits(surface, 0, 0, cx, cy, 0, 0, cx, cy, &dib[nPixels],
                  reinterpret_cast<const BITMAPINFO *>(dib.data()), DIB_RGB_COLORS, SRCCOPY);
    return Coarse(surface.Read());
}

// The same picture in runs of one pixel.
void Compress(CBmpBytes &bmp)
{
    const size_t nRow = bmp.m_pixels.size() / static_cast<size_t>(bmp.m_info.biHeight);
    std::vector<BYTE> runs;
    for (size_t nAt = 0; nAt < bmp.m_pixels.size(); nAt += nRow) {
        for (int x = 0; x < bmp.m_info.biWidth; ++x) {
            const BYTE b = bmp.m_pixels[nAt + static_cast<size_t>(x * bmp.m_info.biBitCount / 8)];
            runs.push_back(1);
            runs.push_back(bmp.m_info.biBitCount == 4 && x % 2 ? static_cast<BYTE>(b << 4) : b);
        }
        runs.insert(runs.end(), {0, 0});
    }
    bmp.m_pixels = runs;
    bmp.m_info.biSizeImage = static_cast<DWORD>(runs.size());
}

struct CKind
{
    const char *m_name;
    int m_nBits;
    DWORD m_nHeader, m_nCompression, m_nUsed;
    // Who shows it: a resource with Palette and in System colours; the same of a File, p and s;
    // Load; Create. The others give nothing.
    const char *m_who;
    size_t m_nColors;  // of the palettes of P and p
};

CBmpBytes Make(const CKind &kind)
{
    CBmpBytes bmp(13, 6, kind.m_nBits);
    bmp.SetHeader(kind.m_nHeader, kind.m_nCompression);
    bmp.m_info.biClrUsed = kind.m_nUsed;
    if (kind.m_nUsed)
        bmp.m_table.resize(kind.m_nUsed);
    bmp.m_file.bfOffBits = static_cast<DWORD>(
        sizeof bmp.m_file + bmp.Packed(bmp.m_table.size()).size() - bmp.m_pixels.size());
    if (kind.m_nCompression == BI_BITFIELDS && kind.m_nBits == 32)
        std::swap(bmp.m_rest[0], bmp.m_rest[2]), std::swap(bmp.m_rest[8], bmp.m_rest[10]);
    if (kind.m_nCompression == BI_RLE8 || kind.m_nCompression == BI_RLE4)
        Compress(bmp);
    return bmp;
}

}  // namespace

TEST(BmpKinds, ComeOutRightOrNotAtAll)
{
    const CKind kinds[] = {{"16 bits", 16, 40, BI_RGB, 0, "PpLC", 0},
                           {"5-6-5", 16, 40, BI_BITFIELDS, 0, "PLC", 0},
                           {"5-6-5 with colours", 16, 40, BI_BITFIELDS, 3, "PpLC", 0},
                           {"32-bit masks", 32, 40, BI_BITFIELDS, 0, "PLC", 0},
                           {"32-bit masks with few colours", 32, 40, BI_BITFIELDS, 2, "PLC", 0},
                           {"32-bit masks with colours", 32, 40, BI_BITFIELDS, 4, "PpLC", 0},
                           {"24 bits with colours", 24, 40, BI_RGB, 5, "PpLC", 5},
                           {"8 bits", 8, 40, BI_RGB, 0, "PSpsLC", 256},
                           {"8 bits, part of the table", 8, 40, BI_RGB, 100, "PpLC", 100},
                           {"8 bits, too many colours", 8, 40, BI_RGB, 300, "PpLC", 300},
                           {"runs of 8", 8, 40, BI_RLE8, 0, "PSpsLC", 256},
                           {"runs of 4", 4, 40, BI_RLE4, 0, "PSpsLC", 16},
                           {"V4, 1 bit", 1, 108, BI_RGB, 0, "PLC", 0},
                           {"V4, 8 bits", 8, 108, BI_RGB, 0, "PLC", 0},
                           {"V5, 4 bits", 4, 124, BI_RGB, 0, "PLC", 0},
                           {"V5, 8 bits", 8, 124, BI_RGB, 0, "PLC", 0},
                           {"V5, runs", 8, 124, BI_RLE8, 0, "PLC", 0},
                           {"V5, 24 bits", 24, 124, BI_RGB, 0, "PLC", 0},
                           {"V4, 5-6-5", 16, 108, BI_BITFIELDS, 0, "PLC", 0},
                           {"V5, 32-bit masks", 32, 124, BI_BITFIELDS, 0, "PLC", 0},
                           {"masks of 8 bits", 8, 40, BI_BITFIELDS, 0, "", 0},
                           {"masks of 24 bits", 24, 40, BI_BITFIELDS, 0, "", 0},
                           {"runs of 8 in 4 bits", 4, 40, BI_RLE8, 0, "", 0},
                           {"a picture of its own", 8, 40, 4, 0, "", 0}};
    const CReports reports;
    const CDumped trace;
    const std::string path = reports.Directory().Path() + "\\kind.bmp";
    for (const CKind &kind : kinds) {
        const CBmpBytes bmp = Make(kind);
        const std::vector<BYTE> dib = bmp.Packed(bmp.m_table.size());
        const size_t nPixels = dib.size() - bmp.m_pixels.size();
        const CPixelMap truth = Truth(dib, nPixels, 13, 6);
        const auto expect = [&](char who, HBITMAP hBitmap) {
            const bool bShown = strchr(kind.m_who, who) != nullptr;
            EXPECT_EQ(bShown ? truth : CPixelMap(), Coarse(TakePixels(hBitmap)))
                << kind.m_name << ' ' << who;
        };
        const auto expectPalette = [&](char who, HPALETTE hPal) {
            const bool bShown = strchr(kind.m_who, who) != nullptr;
            const std::vector<COLORREF> colors = TakeEntries(hPal);
            EXPECT_EQ(bShown ? kind.m_nColors : 0, colors.size()) << kind.m_name << ' ' << who;
            if (!colors.empty()) {
                EXPECT_EQ(bmp.TableColor(3), colors[3]) << kind.m_name;
            }
        };
        HPALETTE hPal = nullptr;
        {
            const CFakeResource resource(dib);
            expect('P', CUIBmpLoadBitmapPalette(nullptr, "", hPal));
            expectPalette('P', hPal);
            expect('S', CUIBmpLoadBitmap(nullptr, ""));
        }
        EXPECT_TRUE(WriteBytes(path, bmp.File()));
        expect('p', CUIBmpLoadBitmapFilePalette(path.c_str(), hPal));
        expectPalette('p', hPal);
        expect('s', CUIBmpLoadBitmapFile(path.c_str(), FALSE));
        expect('L', CUIBmpLoad(nullptr, path.c_str(), nullptr, false, nullptr, nullptr, 0));
        // Room for 256 colours, which here are also taken for some that are to be replaced.
        std::vector<BYTE> full(dib.begin(), dib.begin() + static_cast<ptrdiff_t>(nPixels));
        full.resize(kind.m_nHeader + 1024);
        full.insert(full.end(), bmp.m_pixels.begin(), bmp.m_pixels.end());
        CGuardedBuffer buffer(full.size());
        memcpy(buffer.Data(), full.data(), full.size());
        DWORD from[] = {0x0000FF}, to[] = {0x123456};
        expect('C', CUIBmpCreateBitmap(reinterpret_cast<BITMAPINFOHEADER *>(buffer.Data()), nullptr,
                                       true, from, to, 1));
    }
}

TEST(BmpKinds, MayClaimMoreColorsThanTheyHave)
{
    CBmpBytes bmp(13, 6, 8);
    bmp.m_info.biClrUsed = 259;
    const CFakeResource resource(bmp.Packed(256));
    EXPECT_EQ(OnScreen(bmp.Picture()), TakePixels(CUIBmpLoadBitmap(nullptr, "")));
}

TEST(BmpKinds, ThatTheSystemCannotDrawAreNone)
{
    const CFakeResource resource(CBmpBytes(3, 2, 4).Packed(16));
    const CFailingCall<int(HDC, int, int, int, int, int, int, int, int, const void *,
                           const BITMAPINFO *, UINT, DWORD)>
        stretch("StretchDIBits");
    for (const int nFailAt : {0, 1}) {
        CFailPlan::Start(nFailAt);
        const HBITMAP hBitmap = CUIBmpLoadBitmap(nullptr, "");
        EXPECT_EQ(nFailAt == 0, hBitmap != nullptr);
        DeleteObject(hBitmap);
    }
}

TEST(BmpKinds, OfTheOldHeaderAreForTheSystemOnly)
{
    const CReports reports;
    const CDumped trace;
    const std::string path = reports.Directory().Path() + "\\core.bmp";
    for (const int nBits : {1, 4, 8, 24}) {
        CBmpBytes bmp(13, 6, nBits);
        const BITMAPCOREHEADER core = {12, 13, 6, 1, static_cast<WORD>(nBits)};
        const BYTE *pCore = reinterpret_cast<const BYTE *>(&core);
        std::vector<BYTE> dib(pCore, pCore + sizeof core);
        for (const RGBQUAD &color : bmp.m_table)
            dib.insert(dib.end(), {color.rgbBlue, color.rgbGreen, color.rgbRed});
        bmp.m_file.bfOffBits = static_cast<DWORD>(sizeof bmp.m_file + dib.size());
        dib.insert(dib.end(), bmp.m_pixels.begin(), bmp.m_pixels.end());
        HPALETTE hPal = nullptr;
        {
            const CFakeResource resource(dib);
            EXPECT_FALSE(CUIBmpLoadBitmapPalette(nullptr, "", hPal) || hPal) << nBits;
            EXPECT_FALSE(CUIBmpLoadBitmap(nullptr, "")) << nBits;
        }
        const BYTE *pFile = reinterpret_cast<const BYTE *>(&bmp.m_file);
        dib.insert(dib.begin(), pFile, pFile + sizeof bmp.m_file);
        EXPECT_TRUE(WriteBytes(path, dib));
        EXPECT_FALSE(CUIBmpLoadBitmapFilePalette(path.c_str(), hPal) || hPal) << nBits;
        EXPECT_FALSE(CUIBmpLoadBitmapFile(path.c_str(), FALSE)) << nBits;
        // Wine 8 gives the second and third of few colours wrongly.
        const HANDLE hImage = LoadImageA(nullptr, path.c_str(), IMAGE_BITMAP, 0, 0,
                                         LR_LOADFROMFILE | LR_CREATEDIBSECTION);
        EXPECT_EQ(
            OnScreen(TakePixels(static_cast<HBITMAP>(hImage))),
            TakePixels(CUIBmpLoad(nullptr, path.c_str(), nullptr, false, nullptr, nullptr, 0)))
            << nBits;
    }
}
