#include "Picture/Quantise.h"

#include <limits.h>
#include <math.h>

#include <algorithm>

namespace {

const int BIN_BITS = 6;
const size_t BIN_COUNT = size_t(1) << 3 * BIN_BITS;
const int ROUNDS = 6;

// Of a bin in CNearestColor: nobody asked yet; one of the colours is in it, which another one must
// not stand for.
const short UNKNOWN = -1;
const short CROWDED = -2;

typedef CColorCount::Bin CBin;

size_t BinOf(UINT nRed, UINT nGreen, UINT nBlue)
{
    const int nShift = 8 - BIN_BITS;
    return (nRed >> nShift) << 2 * BIN_BITS | (nGreen >> nShift) << BIN_BITS | nBlue >> nShift;
}

double Mean(const CBin &bin, int nChannel)
{
    return bin.m_sum[nChannel] / bin.m_nCount;
}

int RoundMean(const CBin &bin, int nChannel)
{
    return static_cast<int>(lround(Mean(bin, nChannel)));
}

void AddBin(CBin &sum, const CBin &bin)
{
    sum.m_nCount += bin.m_nCount;
    for (int i = 0; i < 3; ++i)
        sum.m_sum[i] += bin.m_sum[i];
}

DWORD MeanPixel(const CBin &bin)
{
    UINT channels[3];
    for (int i = 0; i < 3; ++i)
        channels[i] = static_cast<UINT>(RoundMean(bin, i));
    return MakePixel(channels[0], channels[1], channels[2]);
}

// Neighbouring bins that will share a colour.
struct CBox
{
    size_t m_nFirst;
    size_t m_nEnd;
    double m_nError;  // of drawing them all in their mean, along the worst channel
    int m_nChannel;   // that one
};

// How well the three channels are told apart by the eye.
const double WEIGHTS[] = {0.30, 0.59, 0.11};

CBox MakeBox(const std::vector<CBin> &bins, size_t nFirst, size_t nEnd)
{
    CBin sum = {};
    double squares[3] = {};
    for (size_t i = nFirst; i < nEnd; ++i) {
        AddBin(sum, bins[i]);
        for (int n = 0; n < 3; ++n)
            squares[n] += bins[i].m_sum[n] * Mean(bins[i], n);
    }
    CBox box = {nFirst, nEnd, -1, 0};
    for (int n = 0; n < 3; ++n) {
        const double nError = WEIGHTS[n] * (squares[n] - sum.m_sum[n] * Mean(sum, n));
        if (nError > box.m_nError) {
            box.m_nError = nError;
            box.m_nChannel = n;
        }
    }
    return box;
}

// At the mean of its worst channel; neither half is empty.
size_t Cut(std::vector<CBin> &bins, const CBox &box)
{
    CBin sum = {};
    for (size_t i = box.m_nFirst; i < box.m_nEnd; ++i)
        AddBin(sum, bins[i]);
    const int nChannel = box.m_nChannel;
    const double nMiddle = Mean(sum, nChannel);
    const auto first = bins.begin() + static_cast<ptrdiff_t>(box.m_nFirst);
    const auto middle = std::partition(
        first, bins.begin() + static_cast<ptrdiff_t>(box.m_nEnd),
        [nChannel, nMiddle](const CBin &bin) { return Mean(bin, nChannel) < nMiddle; });
    const size_t nCut = static_cast<size_t>(middle - bins.begin());
    return std::min(std::max(nCut, box.m_nFirst + 1), box.m_nEnd - 1);
}

bool HasLessError(const CBox &left, const CBox &right)
{
    return left.m_nError < right.m_nError;
}

std::vector<DWORD> MedianCut(std::vector<CBin> bins, size_t nMost)
{
    std::vector<CBox> boxes;
    if (!bins.empty() && nMost > 0)
        boxes.push_back(MakeBox(bins, 0, bins.size()));
    while (!boxes.empty() && boxes.size() < nMost) {
        const auto worst = std::max_element(boxes.begin(), boxes.end(), HasLessError);
        const CBox box = *worst;
        if (box.m_nEnd - box.m_nFirst < 2 || box.m_nError <= 0)
            break;
        const size_t nCut = Cut(bins, box);
        *worst = MakeBox(bins, box.m_nFirst, nCut);
        boxes.push_back(MakeBox(bins, nCut, box.m_nEnd));
    }
    std::vector<DWORD> colors;
    for (const CBox &box : boxes) {
        CBin sum = {};
        for (size_t i = box.m_nFirst; i < box.m_nEnd; ++i)
            AddBin(sum, bins[i]);
        colors.push_back(MeanPixel(sum));
    }
    return colors;
}

// The eye's distance of two colours, squared and scaled.
int Distance(DWORD nColor, int nRed, int nGreen, int nBlue)
{
    const int nR = static_cast<int>(RedOf(nColor)) - nRed;
    const int nG = static_cast<int>(GreenOf(nColor)) - nGreen;
    const int nB = static_cast<int>(BlueOf(nColor)) - nBlue;
    return 30 * nR * nR + 59 * nG * nG + 11 * nB * nB;
}

size_t FindNearest(const std::vector<DWORD> &colors, int nRed, int nGreen, int nBlue)
{
    size_t nNearest = 0;
    int nLeast = LONG_MAX;
    for (size_t i = 0; i < colors.size(); ++i) {
        const int nDistance = Distance(colors[i], nRed, nGreen, nBlue);
        if (nDistance < nLeast) {
            nLeast = nDistance;
            nNearest = i;
        }
    }
    return nNearest;
}

// Each free colour moves to the middle of the bins that are nearest to it. The first `nFixed` stay.
void MoveToMiddles(const std::vector<CBin> &bins, std::vector<DWORD> &colors, size_t nFixed)
{
    std::vector<CBin> sums(colors.size());
    for (const CBin &bin : bins) {
        const size_t nNearest =
            FindNearest(colors, RoundMean(bin, 0), RoundMean(bin, 1), RoundMean(bin, 2));
        AddBin(sums[nNearest], bin);
    }
    for (size_t i = nFixed; i < colors.size(); ++i) {
        if (sums[i].m_nCount > 0)
            colors[i] = MeanPixel(sums[i]);
    }
}

// Colours that a pixel was drawn too dark by, in sixteenths, for the pixels of one row.
typedef std::vector<int> CErrors;

int Clamp(int nValue)
{
    return std::min(std::max(nValue, 0), 255);
}

class CDitherer
{
public:
    CDitherer(CPixels &pixels, const std::vector<DWORD> &colors)
        : m_pixels(pixels),
          m_colors(colors),
          m_nearest(colors),
          m_here(3 * static_cast<size_t>(pixels.m_cx + 2)),
          m_below(m_here.size())
    {
    }
    void Draw()
    {
        for (int y = 0; y < m_pixels.m_cy; ++y) {
            for (int i = 0; i < m_pixels.m_cx; ++i)
                DrawPixel(y % 2 ? m_pixels.m_cx - 1 - i : i, y, y % 2 ? -1 : 1);
            m_here.swap(m_below);
            std::fill(m_below.begin(), m_below.end(), 0);
        }
    }

private:
    void DrawPixel(int x, int y, int nStep)
    {
        DWORD &nPixel = m_pixels.Row(y)[x];
        const int wanted[] = {Wanted(RedOf(nPixel), x, 0), Wanted(GreenOf(nPixel), x, 1),
                              Wanted(BlueOf(nPixel), x, 2)};
        nPixel = m_colors[m_nearest.Find(wanted[0], wanted[1], wanted[2])];
        const UINT drawn[] = {RedOf(nPixel), GreenOf(nPixel), BlueOf(nPixel)};
        for (int n = 0; n < 3; ++n) {
            const int nError = wanted[n] - static_cast<int>(drawn[n]);
            At(m_here, x + nStep, n) += 7 * nError;
            At(m_below, x - nStep, n) += 3 * nError;
            At(m_below, x, n) += 5 * nError;
            At(m_below, x + nStep, n) += nError;
        }
    }
    // With a pixel of room at both ends.
    static int &At(CErrors &errors, int x, int nChannel)
    {
        return errors[static_cast<size_t>(3 * (x + 1) + nChannel)];
    }
    int Wanted(UINT nChannel, int x, int n)
    {
        return Clamp(static_cast<int>(nChannel) + At(m_here, x, n) / 16);
    }

    CPixels &m_pixels;
    const std::vector<DWORD> &m_colors;
    CNearestColor m_nearest;
    CErrors m_here;
    CErrors m_below;
};

}  // namespace

void CColorCount::Add(const CPixels &pixels)
{
    m_bins.resize(BIN_COUNT);
    for (const DWORD nPixel : pixels.m_pixels) {
        Bin &bin = m_bins[BinOf(RedOf(nPixel), GreenOf(nPixel), BlueOf(nPixel))];
        AddBin(bin, {1, {double(RedOf(nPixel)), double(GreenOf(nPixel)), double(BlueOf(nPixel))}});
    }
}

std::vector<DWORD> CColorCount::FindColors(size_t nMost, const std::vector<DWORD> &fixed) const
{
    std::vector<Bin> used;
    for (const Bin &bin : m_bins) {
        if (bin.m_nCount > 0)
            used.push_back(bin);
    }
    std::vector<DWORD> colors = fixed;
    const std::vector<DWORD> cut = MedianCut(used, nMost);
    colors.insert(colors.end(), cut.begin(), cut.end());
    for (int i = 0; i < ROUNDS; ++i)
        MoveToMiddles(used, colors, fixed.size());
    return std::vector<DWORD>(colors.begin() + static_cast<ptrdiff_t>(fixed.size()), colors.end());
}

CNearestColor::CNearestColor(const std::vector<DWORD> &colors)
    : m_colors(colors), m_known(BIN_COUNT, UNKNOWN)
{
    for (const DWORD nColor : colors)
        m_known[BinOf(RedOf(nColor), GreenOf(nColor), BlueOf(nColor))] = CROWDED;
}

size_t CNearestColor::Find(int nRed, int nGreen, int nBlue)
{
    short &nKnown = m_known[BinOf(static_cast<UINT>(nRed), static_cast<UINT>(nGreen),
                                  static_cast<UINT>(nBlue))];
    if (nKnown >= 0)
        return static_cast<size_t>(nKnown);
    const size_t nNearest = FindNearest(m_colors, nRed, nGreen, nBlue);
    if (nKnown == UNKNOWN)
        nKnown = static_cast<short>(nNearest);
    return nNearest;
}

void Dither(CPixels &pixels, const std::vector<DWORD> &colors)
{
    CDitherer(pixels, colors).Draw();
}
