#pragma once

#include "File/FileSet.h"
#include "File/SkinFile.h"
#include "Script/SkinScript.h"

#define SKIN_SCRIPT_NAME "Skin.rc"

class CScriptEditor;

// A skin as sources: a resource script and the files that it names.
class CSkinFolder : public CSkinFile
{
public:
    // The script's path. Null when it cannot be read, or a resource compiler would refuse it.
    static std::unique_ptr<CSkinFolder> Read(const CCUString &sScript, CProblems &problems);

    bool IsFolder() const override { return true; }
    // The path is that of a folder or of a script in one. What is not changed is not written. In
    // another folder all that belongs to the skin is written, over what has these names there.
    bool Save(const CSkin &skin, const CCUString &sPath, CProblems &problems) override;
    bool SaveCopy(const CSkin &skin, const CCUString &sPath, CProblems &problems) const override;
    bool IsWhole(const CSkin &skin, CProblems &problems) const override;

    // A skin as a new folder, for the launcher's build. False when it has a script already.
    static bool Export(const CSkin &skin, const CCUString &sFolder, CProblems &problems);

protected:
    CSums Sums() const override;

private:
    // The pictures and, behind them, the icon.
    static const int FILE_COUNT = PictureCount + 1;
    struct CPictureFile
    {
        CCUString m_sName;   // as the script has it; empty: it has none
        CBlob m_bytes;       // null: it is not there
        CProblems m_unread;  // why it could not be read, when that is so
    };

    CSkinFolder() {}
    bool ReadScript(const CBlob &bytes, const CCUString &sFolder, CProblems &problems);
    void ReadPicture(int nFile);
    CCUString PathOf(const CCUString &sName) const;
    bool HasChanged(CProblems &problems) const;
    bool Write(const CSkin &skin, const CCUString &sScript, CProblems &problems) const;
    void AddPicture(int nFile, const CBlob &picture, const CCUString &sFolder,
                    CScriptEditor &editor, CFileSet &files) const;
    CCUString NameFor(int nFile, const CCUString &sFolder) const;
    bool Check(const std::vector<BYTE> &script, const CSkin &skin, CProblems &problems) const;

    CBlob m_bytes;
    CSkinScript m_script;
    CPictureFile m_files[FILE_COUNT];
};
