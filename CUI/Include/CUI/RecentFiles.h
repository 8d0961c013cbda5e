#pragma once

/// @file
/// The files that were opened last, in a menu.

#include "CU/String.h"
#include "CUI/CommandHandler.h"

class CCUIFrameWindow;

/// A list of files, the latest first, which the settings keep (CUI/Settings.h) and a menu offers: a
/// block of commands, one a file. A menu resource has one item with the first identifier; its text
/// is shown, disabled, while there are no files. When the menu opens there is an item for each
/// file, "&1 C:\...\letter.txt": its path, shortened to some 40 characters, with its number as
/// mnemonic; the help text is the whole path.
///
/// Several runs of the program share the list: it is read anew for every change and when the menu
/// opens. Where the settings cannot be written it lasts as long as the object.
class CCUIRecentFiles : public CCUICommandHandler
{
public:
    /// Serves nMost commands (1 to 16) from nFirstID on; that many files are kept, in that section
    /// of the settings. The frame's menus show them and the frame opens them; a frame shows the
    /// list that was made for it last. Null: FillMenu and OnOpen are the program's. The frame may
    /// go first.
    CUI_API CCUIRecentFiles(CCUIFrameWindow *pFrame, unsigned int nFirstID, int nMost = 8,
                            const char *pszSection = "Recent Files");
    CUI_API ~CCUIRecentFiles();

    /// Puts a file first, as one that was opened or saved does. A relative path is completed; the
    /// last file goes when there are too many.
    CUI_API void Add(const char *pszPath);
    /// Takes a file out of the list.
    CUI_API void Remove(const char *pszPath);

    int GetCount() const { return m_nFiles; }  ///< as of the last change or opening of the menu
    /// The nIndex-th file, 0 the latest; "" where there is none.
    CUI_API CCUString GetFile(int nIndex) const;

    /// Gives a menu that has an item of this block one for each file; any other menu is left alone.
    /// Their texts come from the handler, as CCUICommandMap::UpdateMenu sets them.
    CUI_API void FillMenu(HMENU hMenu);

    /// Opens the file; where it is gone, OnGone is told and it leaves the list.
    CUI_API void HandleCommand(unsigned int nID) override;
    CUI_API unsigned short GetState(unsigned int nID) override;
    CUI_API CCUString GetShortTT(unsigned int nID) override;
    CUI_API CCUString GetLongTT(unsigned int nID) override;

protected:
    /// Asks the frame to open the file (CCUIFrameWindow::OnOpenFile).
    CUI_API virtual void OnOpen(const CCUString &sPath);
    /// Tells the user that there is no such file any more, with nError, the system's reason.
    CUI_API virtual void OnGone(const CCUString &sPath, DWORD nError);

private:
    friend class CCUIFrameWindow;
    enum
    {
        MOST_FILES = 16
    };

    int Find(const char *pszPath) const;
    bool Load();
    void Save();
    void Drop(int nIndex);

    CCUIFrameWindow *m_pFrame;
    CCUString m_sSection;
    CCUString m_sNone;  // what the menu says where there are no files
    CCUString m_files[MOST_FILES];
    int m_nFiles;
    bool m_bKept;  // the settings have what is here
};
