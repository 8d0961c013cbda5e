#include "Command/PictureCommand.h"

#include "Base/GdiGuards.h"
#include "Canvas/FacePicture.h"
#include "Canvas/SkinFace.h"
#include "File/FileSet.h"
#include "File/PictureFile.h"
#include "Picture/DibWriter.h"
#include "Picture/PngWriter.h"

namespace {

bool Fail(CProblems &problems, const CCUString &sPath, const CCUString &sWhat)
{
    problems.push_back({ProblemError, 0, sPath, sWhat, "There is no picture."});
    return false;
}

// The pixels of a drawn face; false when there is no memory for them.
bool ReadPixels(const CFacePicture &face, CPixels &pixels)
{
    if (!face.GetDC() || !pixels.Create(face.Size().cx, face.Size().cy))
        return false;
    BITMAPINFO info = pixels.Info();
    void *pBits = nullptr;
    const CCUIOwned<HBITMAP> section(
        CreateDIBSection(face.GetDC(), &info, DIB_RGB_COLORS, &pBits, nullptr, 0));
    const CCUIMemoryDC hDC(face.GetDC());
    const CCUISelect select(hDC, section);
    if (!select || !BitBlt(hDC, 0, 0, pixels.m_cx, pixels.m_cy, face.GetDC(), 0, 0, SRCCOPY))
        return false;
    GdiFlush();
    const DWORD *const pPixels = static_cast<const DWORD *>(pBits);
    for (size_t i = 0; i < pixels.m_pixels.size(); ++i)
        pixels.m_pixels[i] = pPixels[i] | OPAQUE_PIXEL;
    return true;
}

}  // namespace

bool WriteFacePicture(const CSkin &skin, const CCUString &sPath, CProblems &problems)
{
    const bool bBmp = sPath.Right(4).CompareNoCase(".bmp") == 0;
    // Not over a launcher, say, that was named by mistake.
    if (!bBmp && sPath.Right(4).CompareNoCase(".png") != 0)
        return Fail(problems, sPath, "The name of a picture ends in .png or .bmp.");
    CDocument document;
    document.Start(skin);
    CSkinFace face(document);
    face.ReadAll();
    if (!face.Face().Background() || skin.m_texts.empty())
        return Fail(problems, "",
                    "Without a background that can be read the launcher's window has no size.");
    CFacePicture picture;
    picture.Draw(face.Face(), HotSpotNone);
    CPixels pixels;
    if (!ReadPixels(picture, pixels))
        return Fail(problems, "", "The window cannot be drawn: there is too little memory.");
    CFileSet files;
    files.Add(sPath, bBmp ? MakeBmpFile(WriteDib(pixels)) : WritePng(pixels));
    return files.Commit(problems);
}
