#include "Picture/PngWriter.h"

#include <algorithm>

namespace {

// Of a stored block of the deflate format.
const size_t MAX_BLOCK = 0xFFFF;

typedef std::vector<BYTE> CPngBytes;

void AppendNumber(CPngBytes &bytes, DWORD n)
{
    for (int nShift = 24; nShift >= 0; nShift -= 8)
        bytes.push_back(static_cast<BYTE>(n >> nShift));
}

DWORD Crc(const BYTE *p, size_t nSize)
{
    DWORD nCrc = 0xFFFFFFFF;
    for (; nSize > 0; --nSize) {
        nCrc ^= *p++;
        for (int i = 0; i < 8; ++i)
            nCrc = nCrc >> 1 ^ (nCrc & 1 ? 0xEDB88320 : 0);
    }
    return ~nCrc;
}

void AppendChunk(CPngBytes &bytes, const char *pszType, const CPngBytes &data)
{
    AppendNumber(bytes, static_cast<DWORD>(data.size()));
    const size_t nFrom = bytes.size();
    bytes.insert(bytes.end(), pszType, pszType + 4);
    bytes.insert(bytes.end(), data.begin(), data.end());
    AppendNumber(bytes, Crc(bytes.data() + nFrom, bytes.size() - nFrom));
}

DWORD Adler(const CPngBytes &bytes)
{
    DWORD nSum = 1;
    DWORD nSums = 0;
    for (const BYTE n : bytes) {
        nSum = (nSum + n) % 65521;
        nSums = (nSums + nSum) % 65521;
    }
    return nSums << 16 | nSum;
}

// As a zlib stream of stored blocks.
CPngBytes Store(const CPngBytes &bytes)
{
    CPngBytes stream = {0x78, 0x01};
    for (size_t nAt = 0; nAt < bytes.size(); nAt += MAX_BLOCK) {
        const size_t nSize = std::min(MAX_BLOCK, bytes.size() - nAt);
        stream.push_back(nAt + nSize == bytes.size());
        for (const size_t n : {nSize, ~nSize}) {
            stream.push_back(static_cast<BYTE>(n));
            stream.push_back(static_cast<BYTE>(n >> 8));
        }
        const auto from = bytes.begin() + static_cast<ptrdiff_t>(nAt);
        stream.insert(stream.end(), from, from + static_cast<ptrdiff_t>(nSize));
    }
    AppendNumber(stream, Adler(bytes));
    return stream;
}

CPngBytes Rows(const CPixels &pixels)
{
    CPngBytes rows;
    rows.reserve((3 * static_cast<size_t>(pixels.m_cx) + 1) * static_cast<size_t>(pixels.m_cy));
    for (int y = 0; y < pixels.m_cy; ++y) {
        rows.push_back(0);  // no filter
        for (int x = 0; x < pixels.m_cx; ++x) {
            const DWORD nPixel = pixels.Row(y)[x];
            for (const UINT n : {RedOf(nPixel), GreenOf(nPixel), BlueOf(nPixel)})
                rows.push_back(static_cast<BYTE>(n));
        }
    }
    return rows;
}

}  // namespace

CBlob WritePng(const CPixels &pixels)
{
    CPngBytes bytes = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    CPngBytes header;
    AppendNumber(header, static_cast<DWORD>(pixels.m_cx));
    AppendNumber(header, static_cast<DWORD>(pixels.m_cy));
    header.insert(header.end(), {8, 2, 0, 0, 0});  // 8 bits a channel, RGB
    AppendChunk(bytes, "IHDR", header);
    AppendChunk(bytes, "IDAT", Store(Rows(pixels)));
    AppendChunk(bytes, "IEND", CPngBytes());
    return MakeBlob(std::move(bytes));
}
