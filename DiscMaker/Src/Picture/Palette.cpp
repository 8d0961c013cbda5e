#include "Picture/Palette.h"

#include <set>

#include "Picture/DibReader.h"
#include "Picture/DibWriter.h"
#include "Picture/Quantise.h"

namespace {

const size_t TABLE_SIZE = 256;
const size_t HALF_SYSTEM = 10;
const size_t OWN_COLORS = TABLE_SIZE - 2 * HALF_SYSTEM;

// What screens of 256 colours keep for themselves at either end of their table.
const DWORD SYSTEM_COLORS[2 * HALF_SYSTEM] = {
    0xFF000000, 0xFF800000, 0xFF008000, 0xFF808000, 0xFF000080, 0xFF800080, 0xFF008080,
    0xFFC0C0C0, 0xFFC0DCC0, 0xFFA6CAF0, 0xFFFFFBF0, 0xFFA0A0A4, 0xFF808080, 0xFFFF0000,
    0xFF00FF00, 0xFFFFFF00, 0xFF0000FF, 0xFFFF00FF, 0xFF00FFFF, 0xFFFFFFFF};

bool ReadPicture(const CBlob &dib, CPixels &pixels)
{
    return dib && ReadDib(dib->data(), dib->size(), 0, pixels) == nullptr;
}

// The colours beside the system's if the table has room for all of them; else none.
std::vector<DWORD> ExactColors(const std::vector<CPixels> &pictures)
{
    const std::set<DWORD> system(SYSTEM_COLORS, SYSTEM_COLORS + 2 * HALF_SYSTEM);
    std::set<DWORD> colors;
    for (const CPixels &picture : pictures) {
        for (const DWORD nPixel : picture.m_pixels) {
            if (!system.count(nPixel) && colors.insert(nPixel).second && colors.size() > OWN_COLORS)
                return std::vector<DWORD>();
        }
    }
    return std::vector<DWORD>(colors.begin(), colors.end());
}

std::vector<DWORD> FindOwnColors(const std::vector<CPixels> &pictures)
{
    std::vector<DWORD> exact = ExactColors(pictures);
    if (!exact.empty())
        return exact;
    CColorCount count;
    for (const CPixels &picture : pictures)
        count.Add(picture);
    return count.FindColors(OWN_COLORS,
                            std::vector<DWORD>(SYSTEM_COLORS, SYSTEM_COLORS + 2 * HALF_SYSTEM));
}

std::vector<DWORD> MakeTable(const std::vector<DWORD> &own)
{
    std::vector<DWORD> table(SYSTEM_COLORS, SYSTEM_COLORS + HALF_SYSTEM);
    table.insert(table.end(), own.begin(), own.end());
    table.resize(TABLE_SIZE - HALF_SYSTEM, OPAQUE_PIXEL);
    table.insert(table.end(), SYSTEM_COLORS + HALF_SYSTEM, SYSTEM_COLORS + 2 * HALF_SYSTEM);
    return table;
}

std::vector<RGBQUAD> ToQuads(const std::vector<DWORD> &table)
{
    std::vector<RGBQUAD> quads;
    quads.reserve(table.size());
    for (const DWORD nColor : table)
        quads.push_back({static_cast<BYTE>(BlueOf(nColor)), static_cast<BYTE>(GreenOf(nColor)),
                         static_cast<BYTE>(RedOf(nColor)), 0});
    return quads;
}

bool IsSameColor(const RGBQUAD &left, const RGBQUAD &right)
{
    return left.rgbRed == right.rgbRed && left.rgbGreen == right.rgbGreen &&
           left.rgbBlue == right.rgbBlue;
}

bool HasSameColors(const CPixels &left, const CPixels &right)
{
    if (left.m_colors.size() != right.m_colors.size())
        return false;
    for (size_t i = 0; i < left.m_colors.size(); ++i) {
        if (!IsSameColor(left.m_colors[i], right.m_colors[i]))
            return false;
    }
    return !left.m_colors.empty();
}

}  // namespace

bool ShareColours(CSkin &skin)
{
    std::vector<CPixels> pictures;
    std::vector<CBlob *> blobs;
    for (CBlob &blob : skin.m_pictures) {
        CPixels pixels;
        if (!ReadPicture(blob, pixels))
            continue;
        blobs.push_back(&blob);
        pictures.push_back(std::move(pixels));
    }
    const std::vector<DWORD> table = MakeTable(FindOwnColors(pictures));
    for (size_t i = 0; i < pictures.size(); ++i) {
        Dither(pictures[i], table);
        pictures[i].m_colors = ToQuads(table);
        *blobs[i] = WriteDib(pictures[i]);
    }
    return !pictures.empty();
}

bool HaveSharedColours(const CSkin &skin)
{
    CPixels first;
    for (const CBlob &blob : skin.m_pictures) {
        CPixels pixels;
        if (!ReadPicture(blob, pixels))
            continue;
        if (first.m_cx != 0 && !HasSameColors(first, pixels))
            return false;
        first = std::move(pixels);
    }
    return !first.m_colors.empty();
}
