#include "Picture/Import.h"

#include <string.h>

#include "File/FileBytes.h"
#include "File/FileProblem.h"
#include "Picture/DibReader.h"
#include "Picture/DibWriter.h"
#include "Picture/Flatten.h"
#include "Picture/SystemPicture.h"

namespace {

const size_t MAX_FILE = 128 << 20;
const char *const OLD_STAYS = "The old picture stays.";

enum PictureFormat
{
    FormatBmp,
    FormatPng,
    FormatOfSystem,
    FormatNone
};

bool Begins(const CBytes &file, const char *pszMark)
{
    const size_t nLength = strlen(pszMark);
    return file.size() >= nLength && memcmp(file.data(), pszMark, nLength) == 0;
}

// By what a file holds: its name may say something else.
PictureFormat FormatOf(const CBytes &file)
{
    if (Begins(file, "BM"))
        return FormatBmp;
    if (Begins(file, "\x89PNG"))
        return FormatPng;
    return Begins(file, "\xFF\xD8\xFF") || Begins(file, "GIF8") ? FormatOfSystem : FormatNone;
}

bool Fail(CProblems &problems, const CCUString &sPath, const CCUString &sWhat)
{
    problems.push_back({ProblemError, 0, sPath, sWhat, OLD_STAYS});
    return false;
}

CBlob ReadBytes(const CCUString &sPath, CProblems &problems)
{
    DWORD nError = NO_ERROR;
    CBlob bytes = ReadFileBytes(sPath, &nError);
    if (!bytes && nError != ERROR_FILE_TOO_LARGE) {
        AddFileProblem(problems, sPath, "The file cannot be read", nError);
        problems.back().m_sEffect = OLD_STAYS;
    } else if (!bytes || bytes->empty() || bytes->size() > MAX_FILE) {
        Fail(problems, sPath, "The file is empty or too large for a picture.");
        return nullptr;
    }
    return bytes;
}

}  // namespace

bool ReadPictureFile(const CCUString &sPath, CPixels &pixels, CProblems &problems)
{
    const CBlob bytes = ReadBytes(sPath, problems);
    if (!bytes)
        return false;
    const CBytes &file = *bytes;
    const PictureFormat format = FormatOf(file);
    if (format == FormatBmp) {
        const char *const pszWhy = ReadBmp(file.data(), file.size(), pixels);
        return !pszWhy || Fail(problems, sPath,
                               CCUString("The bitmap cannot be read: ") + pszWhy +
                                   ". Save it anew as a BMP of 24 bits.");
    }
    if (format == FormatNone)
        return Fail(problems, sPath, "This is no picture that can be read. Save it as BMP.");
    if (ReadWithSystem(file, pixels))
        return true;
    if (format == FormatPng)
        return Fail(problems, sPath,
                    "This system cannot read this PNG file. Save the picture as BMP of 24 bits.");
    return Fail(problems, sPath,
                "The picture is damaged, too large, or of a kind that this system "
                "cannot read. Save it as BMP of 24 bits.");
}

CBlob ImportPicture(const CCUString &sPath, CProblems &problems)
{
    return ImportPicture(sPath, CSkin(), PictureBackground, problems);
}

CBlob ImportPicture(const CCUString &sPath, const CSkin &skin, SkinPicture picture,
                    CProblems &problems)
{
    CPixels pixels;
    if (!ReadPictureFile(sPath, pixels, problems))
        return nullptr;
    CPixels under;
    POINT at;
    FindUnder(skin, picture, under, at);
    Flatten(pixels, under, at);
    return WriteDib(pixels);
}
