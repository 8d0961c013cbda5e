#pragma once

#include "File/PeImage.h"
#include "File/SkinFile.h"

// A skin in a launcher. What no skin has in it (the dialog, the manifest, code) stays as it is.
class CLauncherFile : public CSkinFile
{
public:
    // Of the file's bytes. Null when they are no launcher: why is among the problems.
    static std::unique_ptr<CLauncherFile> Read(const CCUString &sPath, const CBlob &bytes,
                                               CProblems &problems);

    bool IsFolder() const override { return false; }
    bool Save(const CSkin &skin, const CCUString &sPath, CProblems &problems) override;
    bool SaveCopy(const CSkin &skin, const CCUString &sPath, CProblems &problems) const override;
    // The launcher with these looks, as a file. Null when they cannot be put into it.
    CBlob WithSkin(const CSkin &skin, CProblems &problems) const;
    // Whether the file, as it was read, holds just these looks: what was written is what was meant.
    bool HasSkin(const CSkin &skin) const;

protected:
    CSums Sums() const override { return {{m_sPath, SumOf(m_bytes)}}; }

private:
    CLauncherFile() {}
    bool ReadBytes(const CBlob &bytes, CProblems &problems);
    void ReadTexts(CProblems &problems);
    void ReadPictures(CProblems &problems);
    void ReadVersion(CProblems &problems);
    // Whether anything changed. The skin gets the launcher's own version where that stays.
    bool PutSkin(CResourceTree &tree, CSkin &skin, CProblems &problems) const;
    // WithSkin, as it is read from its bytes.
    std::unique_ptr<CLauncherFile> Changed(const CSkin &skin, CProblems &problems) const;

    CBlob m_bytes;
    CPeImage m_image;
    CResourceTree m_resources;
};
