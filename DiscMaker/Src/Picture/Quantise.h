#pragma once

#include "Picture/Pixels.h"

// Finds the colours that draw pictures best. Colours are counted with 6 bits a channel, which the
// eye cannot tell apart beside dithering; the mean of those that fall together is exact.
class CColorCount
{
public:
    void Add(const CPixels &pixels);
    // At most `nMost` colours that serve all that was added beside the fixed ones: median cut by
    // variance, then each colour moves to the middle of what is nearest to it.
    std::vector<DWORD> FindColors(size_t nMost, const std::vector<DWORD> &fixed) const;

    // Pixels whose channels agree in their upper bits: how many, and the sum of each channel.
    struct Bin
    {
        double m_nCount;
        double m_sum[3];
    };

private:
    std::vector<Bin> m_bins;
};

// Answers which of some colours is nearest to a pixel; remembers what it found.
class CNearestColor
{
public:
    explicit CNearestColor(const std::vector<DWORD> &colors);
    size_t Find(int nRed, int nGreen, int nBlue);

private:
    std::vector<DWORD> m_colors;
    std::vector<short> m_known;
};

// Draws the picture in these colours: Floyd-Steinberg, each second row from the right, so that no
// pattern leans to one side.
void Dither(CPixels &pixels, const std::vector<DWORD> &colors);
