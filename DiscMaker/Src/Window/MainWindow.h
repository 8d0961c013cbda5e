#pragma once

#include "CUI/ControlBar.h"
#include "CUI/FrameWindow.h"
#include "CUI/LayoutWindow.h"
#include "CUI/Menu.h"
#include "CUI/RecentFiles.h"
#include "CUI/ResourceCommands.h"
#include "CUI/StatusBar.h"
#include "Canvas/Canvas.h"
#include "File/SkinFile.h"
#include "Model/Recovery.h"
#include "Window/Ids.h"
#include "Window/NotePane.h"
#include "Window/Preview.h"
#include "Window/ProblemList.h"
#include "Window/PropertyGrid.h"

// Disc Maker's window: the canvas, properties beside it, problems below.
class CMainWindow : public CCUIFrameWindow,
                    private CCUIResourceCommands,
                    private CDocumentWatcher,
                    private CCanvasHost,
                    private CPropertyHost,
                    private CProblemHost,
                    private CCUIIdleCallback
{
public:
    CMainWindow();
    ~CMainWindow() override;

    void OnOpenFile(const CCUString &sPath) override;
    // Begins with the looks of the launcher beside this program, as a disc without a name.
    void Begin();
    // Offers what a crash has left behind, if there is anything.
    void OfferRecovery();

    // For tests.
    CDocument &Document() { return m_document; }
    CCanvas &Canvas() { return m_canvas; }
    CPropertyGrid &Properties() { return m_grid; }

    void TimeOut(long nNow) override;
    void OnIdle() override;

protected:
    int OnCreate(CREATESTRUCTA *pCreate) override;
    void OnDestroy() override;
    bool QueryClose() override;
    // Pictures go to what they are dropped on, other files are opened.
    void OnFilesDropped(const CCUString *pFiles, int nFiles, const POINT &point) override;
    void OnSysColorChange() override;
    void OnDisplayChange(UINT nBitsPerPixel, int cx, int cy) override;
    long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    void CreateParts();
    void KeepSettings(bool bSave);

    // What the commands are.
    void HandleCommand(unsigned int nID) override;
    unsigned short GetState(unsigned int nID) override;
    bool HandleFileCommand(unsigned int nID);
    bool HandleEditCommand(unsigned int nID);
    bool HandleViewCommand(unsigned int nID);
    bool HandleDiscCommand(unsigned int nID);

    // Files; see MainFile.cpp.
    void NewFrom();
    void ChooseFile();
    void ChooseFolder();
    bool OpenPath(const CCUString &sPath, bool bUntitled);
    bool Save();
    bool SaveAsLauncher();
    bool SaveAsFolder();
    bool MayReplaceFiles(const CCUString &sFolder);
    bool SaveTo(std::unique_ptr<CSkinFile> &file, const CCUString &sPath);
    void Saved(const CProblems &problems);
    void ShowName();
    void ShowProblems(const char *pszText, const CProblems &problems);
    std::unique_ptr<CSkinFile> OpenLauncher(bool bAsk);
    bool IsWhole(const char *pszText);
    void KeepForCrash();
    void LeaveOrForget();

    // Editing; see MainEdit.cpp.
    void Copy(bool bSkin);
    void Paste();
    void EditText(const PropertyRow &row);
    void PickFont(const PropertyRow &row);
    void PickColor(const PropertyRow &row);
    void ChooseProgram(const PropertyRow &row);
    void ChoosePicture(const PropertyRow &row);
    void TakePicture(const CCUString &sPath, SkinPicture picture);
    void ChooseIcon();
    void TakeIcon(const CCUString &sPath);
    bool TakeDropped(const CCUString &sPath, const POINT &point);
    void ChooseLanguage();
    void ShareAllColors();
    static bool IsTyping();
    bool SendToEdit(UINT message, WPARAM wParam, LPARAM lParam);

    // The disc; see MainDisc.cpp.
    void ChooseContents();
    void Preview();
    void MakeDiscNow();
    void ShowHelpPage();

    void OnSkinChanged(const SkinPart *pPart) override;
    void OnCanvasSelection() override;
    void OnCanvasActivate(FaceItem item) override;
    void OnCanvasZoom() override;
    void OnPropertyRow(const PropertyRow &row, bool bChosen) override;
    void OnPropertyButton(const PropertyRow &row) override;
    void OnProblem(const CProblem &problem) override;
    void ShowPlace();
    CCUString FaultOf(const PropertyRow &row) const;

    CDocument m_document;
    CRecovery m_recovery;
    CPreview m_preview;
    std::unique_ptr<CSkinFile> m_file;  // null: the skin began with no file
    bool m_bUntitled = true;            // m_file is only where the skin began
    CProblems m_fileProblems;           // of reading it
    CProblems m_keepProblems;           // of keeping what a crash would lose
    CCUString m_sContents;              // of the disc; empty: none chosen

    CCUIMenu m_menu;
    CCUIMenu m_canvasMenu;
    CCUIRecentFiles m_recent;
    CCUIControlBar m_bar;
    CCUIStatusBar m_status;
    CCUILayoutWindow m_column;
    CCUILayoutWindow m_row;
    CCUILayoutWindow m_side;
    CCanvas m_canvas;
    CPropertyGrid m_grid;
    CNotePane m_note;
    CProblemList m_list;
    int m_cxSide;
    int m_cyList;
    unsigned m_nChecked = 0;    // revision whose problems are shown
    unsigned m_nKept = 0;       // revision that is kept in case of a crash
    unsigned m_nDiscarded = 0;  // revision that the user does not want; 0: none
    bool m_bOffering = false;   // asks about what a crash has left behind
    bool m_bCheck = true;
    bool m_bRealizing = false;  // the screen gets the background's colours
    bool m_bFollowing = false;  // canvas and properties just select what the other has
};
