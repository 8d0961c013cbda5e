#include "File/PictureFile.h"

#include "File/ByteView.h"
#include "Model/Blob.h"

namespace {

const WORD BMP_MARK = 0x4D42;
const size_t BMP_HEAD_SIZE = 14;
const DWORD CORE_HEADER_SIZE = 12;
const DWORD INFO_HEADER_SIZE = 40;
const DWORD ALPHA_BIT_FIELDS = 6;

// What is in front of a packed DIB's bits: header, masks, colours. Huge for none that is sound.
DWORD BitsOffset(const CByteView &dib)
{
    const DWORD nHeader = dib.Dword(0);
    const bool bCore = nHeader == CORE_HEADER_SIZE;
    const UINT nBits = dib.Word(bCore ? 10 : 14);
    const DWORD nCompression = bCore ? BI_RGB : dib.Dword(16);
    DWORD nColors = bCore ? 0 : dib.Dword(32);
    if (nColors == 0 && nBits <= 8)
        nColors = 1U << nBits;
    DWORD nMasks = 0;
    if (nHeader == INFO_HEADER_SIZE && nCompression == BI_BITFIELDS)
        nMasks = 3;
    else if (nHeader == INFO_HEADER_SIZE && nCompression == ALPHA_BIT_FIELDS)
        nMasks = 4;
    return nHeader + nMasks * sizeof(DWORD) +
           nColors * (bCore ? sizeof(RGBTRIPLE) : sizeof(RGBQUAD));
}

bool BeginsWith(const CByteView &file, const char *psz, size_t nLength)
{
    return file.Has(0, nLength) && memcmp(file.Data(), psz, nLength) == 0;
}

}  // namespace

CBlob ReadBmpFile(const CBlob &file)
{
    const CByteView bytes(*file);
    if (bytes.Word(0) != BMP_MARK || bytes.Size() <= BMP_HEAD_SIZE + CORE_HEADER_SIZE)
        return nullptr;
    return MakeBlob(bytes.From(BMP_HEAD_SIZE).Copy());
}

CBlob MakeBmpFile(const CBlob &picture)
{
    std::vector<BYTE> file;
    const size_t nSize = BMP_HEAD_SIZE + picture->size();
    file.reserve(nSize);
    AppendWord(file, BMP_MARK);
    AppendDword(file, static_cast<DWORD>(nSize));
    AppendDword(file, 0);
    AppendDword(file, BMP_HEAD_SIZE + BitsOffset(CByteView(*picture)));
    Append(file, CByteView(*picture));
    return MakeBlob(std::move(file));
}

CCUString PictureKind(const CBlob &file)
{
    const CByteView bytes(*file);
    if (BeginsWith(bytes, "\x89PNG", 4))
        return "a PNG picture";
    if (BeginsWith(bytes, "\xFF\xD8\xFF", 3))
        return "a JPEG picture";
    if (BeginsWith(bytes, "GIF8", 4))
        return "a GIF picture";
    if (bytes.Word(0) == BMP_MARK)
        return "a bitmap";
    if (BeginsWith(bytes, "\0\0\1\0", 4))
        return "an icon";
    return bytes.Size() == 0 ? "empty" : "";
}
