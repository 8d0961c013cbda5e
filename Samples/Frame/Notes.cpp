// An editor for small texts: drop one, or name it in the command line.

#include "CU/File.h"
#include "CUI/CommandHandler.h"
#include "CUI/ControlBar.h"
#include "CUI/FrameWindow.h"
#include "CUI/MessageBox.h"
#include "CUI/RecentFiles.h"
#include "CUI/SingleInstance.h"
#include "CUI/StatusBar.h"
#include "Resource.h"

class CNotes : public CCUIFrameWindow, private CCUICommandHandler
{
public:
    CNotes() : CCUICommandHandler(ID_FIRST, ID_COMMANDS), m_recent(this, ID_RECENT) {}

    void OnOpenFile(const CCUString &sPath) override
    {
        CCUFile file;
        if (!QueryClose() || !file.Open(sPath, CCUFile::modeRead))
            return;
        CCUString sText;
        const unsigned nLength = file.GetLength();
        char *const psz = sText.GetBuffer(static_cast<int>(nLength));
        sText.ReleaseBuffer(static_cast<int>(file.Read(psz, nLength)));
        m_edit.SetText(sText);
        m_recent.Add(sPath);
        SetDocument(sPath);
        SetModified(false);
    }

protected:
    int OnCreate(CREATESTRUCTA *pCreate) override
    {
        const HINSTANCE hInstance = GetModuleHandle(nullptr);
        m_edit.Create("EDIT", "", WS_CHILD | WS_VISIBLE | WS_VSCROLL | ES_MULTILINE, {}, *this, 1);
        SetClient(&m_edit);
        const unsigned buttons[] = {ID_SAVE, 0, ID_FULL_SCREEN};
        m_bar.CreateBar(*this, 2, "Commands");
        m_bar.SetButtons(buttons, 3);
        AddBar(&m_bar);
        m_status.CreateBar(*this, 3);
        SetStatusBar(&m_status);
        SetMenu(hInstance, MAKEINTRESOURCE(IDR_NOTES));
        SetAccelerators(hInstance, MAKEINTRESOURCE(IDR_NOTES));
        AcceptFiles(true);
        SetDocument("Untitled.txt");
        return CCUIFrameWindow::OnCreate(pCreate);
    }

    void OnCommand(UINT nCode, UINT nID, HWND hControl) override
    {
        if (nCode == EN_CHANGE && hControl == m_edit)
            SetModified(true);
        else
            CCUIFrameWindow::OnCommand(nCode, nID, hControl);
    }

    bool QueryClose() override
    {
        const int nAnswer = IsModified() ? CUIMessageBox(this, "Save the text?", "Notes",
                                                         MB_YESNOCANCEL | MB_ICONQUESTION)
                                         : IDNO;
        return nAnswer == IDNO || (nAnswer == IDYES && Save());
    }

private:
    void HandleCommand(unsigned nID) override
    {
        if (nID == ID_SAVE)
            Save();
        else if (nID == ID_FULL_SCREEN)
            SetFullScreen(!IsFullScreen());
        else
            SendMessageA(*this, WM_CLOSE, 0, 0);
    }
    unsigned short GetState(unsigned nID) override
    {
        return nID == ID_SAVE && !IsModified() ? 0 : CUI_COMMAND_ACTIVE;
    }
    CCUString GetShortTT(unsigned nID) override
    {
        return nID == ID_SAVE ? "&Save\tCtrl+S" : "&Full screen\tF11";
    }
    CCUString GetLongTT(unsigned nID) override
    {
        return nID == ID_SAVE          ? "Writes the text to its file"
               : nID == ID_FULL_SCREEN ? "Shows the text alone, or all again"
                                       : "Closes the program";
    }

    bool Save()
    {
        CCUFile file;
        const CCUString sText = m_edit.GetText();
        if (!file.Open(GetDocument(), CCUFile::modeWrite | CCUFile::modeCreate))
            return false;
        file.Write(sText, static_cast<unsigned>(sText.GetLength()));
        m_recent.Add(GetDocument());
        SetModified(false);
        return true;
    }

    CCUIWindow m_edit;
    CCUIControlBar m_bar;
    CCUIStatusBar m_status;
    CCUIRecentFiles m_recent;
};

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int nShow)
{
    CCUISingleInstance instance;
    if (instance.Start("Notes") == CCUISingleInstance::HandedOver)
        return 0;
    CNotes notes;
    if (!notes.CreateFrame("Notes"))
        return 1;
    notes.ShowKept("Frame", nShow);
    notes.OnCommandLine(GetCommandLineA(), "");
    return CCUIWindow::RunLoop();
}
