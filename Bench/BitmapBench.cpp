// Loading and copying bitmaps.
#include <new>
#include <stdio.h>
#include <stdlib.h>

#include "Bench.h"
#include <psapi.h>
#include "CU/String.h"
#include "CUI/Bitmap.h"
#include "CUI/BmpLoad.h"

namespace {

const char *const pszSkin = MAKEINTRESOURCEA(200);

// A section's picture made a DDB from where it lies, the colours asked for.
HBITMAP SectionToBitmap(HBITMAP hSection)
{
    struct
    {
        BITMAPINFOHEADER m_header;
        RGBQUAD m_colors[256];
    } info = {};
    DIBSECTION section;
    GetObjectA(hSection, sizeof section, &section);
    info.m_header = section.dsBmih;
    const HDC hScreen = GetDC(nullptr);
    const HDC hMemory = CreateCompatibleDC(hScreen);
    const HGDIOBJ hOld = SelectObject(hMemory, hSection);
    GetDIBColorTable(hMemory, 0, 256, info.m_colors);
    SelectObject(hMemory, hOld);
    DeleteDC(hMemory);
    const HBITMAP hBitmap = CreateDIBitmap(hScreen, &info.m_header, CBM_INIT, section.dsBm.bmBits,
                                           reinterpret_cast<BITMAPINFO *>(&info), DIB_RGB_COLORS);
    ReleaseDC(nullptr, hScreen);
    return hBitmap;
}

void LoadSkinByHand()
{
    const HBITMAP hSection =
        static_cast<HBITMAP>(LoadImageA(GetModuleHandleA(nullptr), pszSkin, IMAGE_BITMAP, 0, 0,
                                        LR_CREATEDIBSECTION | LR_DEFAULTSIZE));
    const HBITMAP hBitmap = SectionToBitmap(hSection);
    DeleteObject(hSection);
    DeleteObject(hBitmap);
}

const int nWide = 4000;
const int nHigh = 3000;

CCUString BigFile()
{
    char szPath[MAX_PATH] = "";
    GetTempPathA(MAX_PATH, szPath);
    const CCUString sPath = CCUString(szPath) + "bench-big.bmp";
    BITMAPFILEHEADER file = {0x4D42, 54 + nWide * nHigh * 3, 0, 0, 54};
    BITMAPINFOHEADER info = {sizeof info, nWide, nHigh, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    std::vector<char> row(nWide * 3);
    FILE *out = fopen(sPath, "wb");
    if (!out)
        return CCUString();
    fwrite(&file, sizeof file, 1, out);
    fwrite(&info, sizeof info, 1, out);
    for (int y = 0; y < nHigh; ++y) {
        for (size_t i = 0; i < row.size(); ++i)
            row[i] = static_cast<char>(i * 7 + static_cast<size_t>(y));
        fwrite(row.data(), 1, row.size(), out);
    }
    fclose(out);
    return sPath;
}

void LoadFileByHand(const char *pszFile)
{
    const HANDLE hFile = CreateFileA(pszFile, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                     FILE_ATTRIBUTE_NORMAL, nullptr);
    const DWORD nSize = GetFileSize(hFile, nullptr);
    char *pBytes = static_cast<char *>(malloc(nSize));
    DWORD nRead = 0;
    ReadFile(hFile, pBytes, nSize, &nRead, nullptr);
    CloseHandle(hFile);
    const BITMAPINFO *pInfo =
        reinterpret_cast<const BITMAPINFO *>(pBytes + sizeof(BITMAPFILEHEADER));
    const HDC hScreen = GetDC(nullptr);
    const HBITMAP hBitmap = CreateDIBitmap(hScreen, &pInfo->bmiHeader, CBM_INIT, pInfo->bmiColors,
                                           pInfo, DIB_RGB_COLORS);
    ReleaseDC(nullptr, hScreen);
    free(pBytes);
    DeleteObject(hBitmap);
}

double PeakMemory()
{
    PROCESS_MEMORY_COUNTERS counters = {};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return static_cast<double>(counters.PeakWorkingSetSize);
}

// The process's peak only grows: the peer goes first, and what is above its peak is ours.
void ComparePeaks(const CCUString &sFile)
{
    const double before = PeakMemory();
    LoadFileByHand(sFile);
    const double peer = PeakMemory() - before;
    HPALETTE hPal = nullptr;
    DeleteObject(CUIBmpLoadBitmapFilePalette(sFile, hPal));
    const double ours = PeakMemory() - before;
    const CCUIBitmap bitmap(sFile, CUIBMP_FILE, nullptr);
    const double object = PeakMemory() - before;
    BenchAdd({"peak memory, 4000x3000 24-bit file", "bytes", ours, peer,
              "read + CreateDIBitmap by hand", ours / peer, 1.1});
    BenchAdd({"peak memory, 4000x3000 24-bit file, CCUIBitmap", "bytes", object, peer,
              "read + CreateDIBitmap by hand", object / peer, 1.1});
}

}  // namespace

BENCH_GROUP(Bitmap)
{
    const HINSTANCE hInst = GetModuleHandleA(nullptr);
    BenchCompare(
        "load a 514x345 8-bit resource bitmap", [=] { CCUIBitmap bitmap(pszSkin, 0, hInst); },
        "LoadImage + CreateDIBitmap by hand", LoadSkinByHand, 1.1);

    const CCUString sFile = BigFile();
    ComparePeaks(sFile);
    BenchCompare(
        "load a 4000x3000 24-bit file",
        [&] {
            HPALETTE hPal;
            DeleteObject(CUIBmpLoadBitmapFilePalette(sFile, hPal));
        },
        "read + CreateDIBitmap by hand", [&] { LoadFileByHand(sFile); }, 1.1, 11);
    BenchCompare(
        "load a 4000x3000 24-bit file, CCUIBitmap",
        [&] { CCUIBitmap bitmap(sFile, CUIBMP_FILE, nullptr); }, "read + CreateDIBitmap by hand",
        [&] { LoadFileByHand(sFile); }, 0, 11);
    DeleteFileA(sFile);

    // Copies that nobody destroys: only the copying is measured.
    static CCUIBitmap s_bitmap;
    s_bitmap.Load(pszSkin, 0, hInst);
    alignas(CCUIBitmap) static char s_room[sizeof(CCUIBitmap)];
    static LONG s_nCount = 0;
    BenchCompare(
        "copy a CCUIBitmap", [] { BenchKeep(*new (s_room) CCUIBitmap(s_bitmap)); },
        "one interlocked increment", [] { BenchKeep(InterlockedIncrement(&s_nCount)); }, 1.5, 201,
        0.0005);
}
