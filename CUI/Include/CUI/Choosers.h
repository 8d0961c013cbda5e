#pragma once

/// @file
/// The system's dialogs to choose files, a folder, a colour or a font, as one function each.
///
///     CCUString sPath;
///     if (CUIChooseOpenFile(&frame, sPath, "Pictures|*.bmp;*.dib|All files|*.*"))
///         Open(sPath);
///
/// All return 1 when the user has chosen. Else they return 0, change nothing that they were given
/// but what is said below, and GetLastError tells why: ERROR_CANCELLED, that the user cancelled (or
/// that the program closed the dialog); anything else, a failure, which is traced too.
///
/// The parent (may be null, else one of this thread) is restored if it is minimised and disabled
/// meanwhile, as for CCUIDialog::DoModal. The system runs the message loop of these dialogs: timers
/// (CCUTimer) and paints go on, but there are no idle passes, and PreTranslateMessage is not asked.
/// comdlg32.dll, shell32.dll and ole32.dll are loaded from the system's folder by the first call
/// that needs them and stay; where one is missing its choosers fail, but that of folders does with
/// its older form without ole32.dll. For the user-interface thread.

#include "CU/String.h"
#include "CUI/Platform.h"

class CCUIWindow;

/// What a file chooser may be told beside the filter.
struct CCUIFileChoice
{
    const char *pszTitle = nullptr;   ///< null: the system's, in the user's language
    const char *pszFolder = nullptr;  ///< where to begin, unless the path has a folder; null: the
                                      ///< system knows
    const char *pszExtension = nullptr;  ///< for a name that is typed without one, such as "bmp"
    int nFilter = 1;                     ///< the filter shown, from 1; then the one that was chosen
    unsigned long nFlags = 0;            ///< further OFN_ flags of commdlg.h
};

/// The files that were chosen in one folder.
class CCUIChosenFiles
{
public:
    /// How many; 0 at first.
    CUI_API int GetCount() const;
    /// The whole path of one of them, from 0; empty for an index outside.
    CUI_API CCUString GetPath(int nIndex) const;

private:
    friend CUI_API int CUIChooseOpenFiles(CCUIWindow *pParent, CCUIChosenFiles &files,
                                          const char *pszFilter, CCUIFileChoice *pChoice);
    CCUString m_sNames;  // a path; or a folder and names: a NUL behind each
};

/// Choose a file to open, which must exist; several; or one to save to, after a question if it
/// exists. sPath: the path or name that the dialog begins with, may be empty; then the whole path
/// of the file. The filter is pairs of a text and of patterns, all with "|" between; null: all
/// files. The current directory of the process stays.
/// @{
CUI_API int CUIChooseOpenFile(CCUIWindow *pParent, CCUString &sPath,
                              const char *pszFilter = nullptr, CCUIFileChoice *pChoice = nullptr);
CUI_API int CUIChooseOpenFiles(CCUIWindow *pParent, CCUIChosenFiles &files,
                               const char *pszFilter = nullptr, CCUIFileChoice *pChoice = nullptr);
CUI_API int CUIChooseSaveFile(CCUIWindow *pParent, CCUString &sPath,
                              const char *pszFilter = nullptr, CCUIFileChoice *pChoice = nullptr);
/// @}

/// Chooses a folder of the file system. sPath: the one that is marked at first, may be empty; then
/// the one chosen. pszText (null: none) stands above the tree.
CUI_API int CUIChooseFolder(CCUIWindow *pParent, CCUString &sPath, const char *pszText = nullptr);

/// Chooses a colour; cr is the first one, also one that CUIData::ResolveColor takes. nFlags: CC_
/// flags of the system's commdlg.h, such as CC_FULLOPEN. The user's own colours are kept in the
/// program's settings (CUI/Settings.h), also when the dialog is cancelled.
CUI_API int CUIChooseColor(CCUIWindow *pParent, COLORREF &cr, unsigned long nFlags = 0);

/// Chooses a screen font; `font` is the first one, unless its face is empty. With a colour (null:
/// none) that is chosen too, and underline and strike-out. nFlags: further CF_ flags of the system.
CUI_API int CUIChooseFont(CCUIWindow *pParent, LOGFONTA &font, COLORREF *pColor = nullptr,
                          unsigned long nFlags = 0);
