// A picture viewer: open pictures, drop them, or name them in the command line.

#include "CU/Dump.h"
#include "CUI/Choosers.h"
#include "CUI/ControlBar.h"
#include "CUI/Data.h"
#include "CUI/FrameWindow.h"
#include "CUI/LayoutWindow.h"
#include "CUI/Menu.h"
#include "CUI/MessageBox.h"
#include "CUI/NotifyIcon.h"
#include "CUI/RecentFiles.h"
#include "CUI/ResourceCommands.h"
#include "CUI/SingleInstance.h"
#include "CUI/StatusBar.h"
#include "FolderList.h"
#include "Options.h"
#include "PictureLoader.h"
#include "PictureView.h"

class CViewer : public CCUIFrameWindow, private CCUIResourceCommands, private CCUDumpCallback
{
public:
    CViewer() : CCUIResourceCommands(ID_OPEN, ID_LOADED - ID_OPEN + 1) { m_options.Keep(false); }

    void OnOpenFile(const CCUString &sPath) override
    {
        m_list.SelectPath(sPath);
        m_recent.Add(sPath);
        m_loader.Load(sPath);
    }

private:
    int OnCreate(CREATESTRUCTA *pCreate) override
    {
        CUDumpRegister(this);
        static const unsigned TOOLS[] = {ID_OPEN,        0,      ID_PREVIOUS, ID_NEXT,
                                         ID_SLIDE_SHOW,  0,      ID_ZOOM_IN,  ID_ZOOM_OUT,
                                         ID_ACTUAL_SIZE, ID_FIT, 0,           ID_FULL_SCREEN};
        const bool bLarge = CUIGetWinData()->cyPixelsPerInch >= 120;
        const CCUIBitmap strip(bLarge ? IDB_LARGE_TOOLS : IDB_TOOLS, CUIBMP_SYSCOLORS, m_hInstance);
        const int nDpi = bLarge ? 144 : 96;  // that they were drawn for
        m_menu.SetPictures(strip, TOOLS, ARRAYSIZE(TOOLS), nDpi);
        SetMenu(m_menu);
        SetAccelerators(m_hInstance, MAKEINTRESOURCE(IDR_VIEWER));
        AcceptFiles(true);

        m_bar.SetPictures(strip, strip.Height(), nDpi);
        m_bar.CreateBar(*this, 1, "Tools");
        m_bar.SetButtons(TOOLS);
        AddBar(&m_bar);
        m_status.AddPane(CUI_PANE_FIT, 0);
        m_status.CreateBar(*this, 2);
        SetStatusBar(&m_status);

        m_row.Create(nullptr, "", WS_CHILD | WS_VISIBLE, {}, *this, 3);
        m_list.SetFixedSize(m_options.m_cxList);
        m_list.SetLayoutFlags(CUI_PLACE_FILL | CUI_PLACE_SPLITTER);
        m_list.CreateControl(m_row, 1, nullptr, CFolderList::STYLE | LBS_SORT);
        m_view.SetWindowColor(CUIGetWinData()->crSys[COLOR_APPWORKSPACE]);
        m_view.SetLayoutFlags(CUI_PLACE_FILL | CUIPlaceWeight(1));
        m_view.CreateControl(m_row, 2, "");
        SetClient(&m_row);
        OnFullScreen(false);

        m_icon.SetCommandTarget(*this);
        m_icon.SetContextMenu(&m_iconMenu);
        m_icon.SetDefaultCommand(ID_TO_FRONT);
        UseOptions();
        return CCUIFrameWindow::OnCreate(pCreate);
    }
    void OnDestroy() override
    {
        m_options.m_cxList = m_list.GetFixedSize();
        m_options.Keep(true);
        CUDumpUnRegister(this);
        CCUIFrameWindow::OnDestroy();
    }
    void OnFullScreen(bool bFull) override { m_list.Show(m_options.m_bList && !bFull); }
    void TimeOut(long) override { PlaySlides(m_list.Step(1, m_options.m_bRepeat != 0)); }
    void OnDump(const CCUString &sText) override { m_sLog = (m_sLog + sText).Right(20000); }

    void HandleCommand(unsigned nID) override
    {
        switch (nID) {
        case ID_OPEN: ChooseFile(); break;
        case ID_PREVIOUS: m_list.Step(-1, false); break;
        case ID_NEXT: m_list.Step(1, false); break;
        case ID_SLIDE_SHOW: PlaySlides(!m_bPlaying); break;
        case ID_ZOOM_IN: m_view.ZoomBy(1); break;
        case ID_ZOOM_OUT: m_view.ZoomBy(-1); break;
        case ID_ACTUAL_SIZE: m_view.ZoomTo(1); break;
        case ID_FIT: m_view.Fit(); break;
        case ID_FULL_SCREEN: SetFullScreen(!IsFullScreen()); break;
        case ID_FOLDER_LIST: m_list.Show((m_options.m_bList = !m_options.m_bList) != 0); break;
        case ID_OPTIONS:
            m_options.DoModal(this);
            UseOptions();
            break;
        case ID_LOG: CUIMessageBox(this, m_sLog, "Log"); break;
        case ID_TO_FRONT: BringToFront(); break;
        case ID_EXIT: OnClose(); break;
        case ID_SELECTED: m_loader.Load(m_list.GetSelectedPath()); break;
        case ID_LOADING: m_status.SetProgress(0, m_loader.m_nPercent, 100); break;
        case ID_LOADED: ShowPicture(); break;
        }
    }
    unsigned short GetState(unsigned nID) override
    {
        switch (nID) {
        case ID_PREVIOUS: return CUICommandState(m_list.GetCurSel() > 0);
        case ID_NEXT: return CUICommandState(m_list.GetCurSel() + 1 < m_list.GetCount());
        case ID_SLIDE_SHOW: return CUICommandState(m_list.GetCount() > 1, m_bPlaying);
        case ID_FIT: return CUICommandState(true, m_view.IsFitted());
        case ID_FULL_SCREEN: return CUICommandState(true, IsFullScreen());
        case ID_FOLDER_LIST: return CUICommandState(!IsFullScreen(), m_options.m_bList != 0);
        default: return CUI_COMMAND_ACTIVE;
        }
    }
    void HandleUpdate(unsigned nID) override
    {
        if (nID != ID_FIT)
            return;
        const CCUIBitmap &picture = m_view.GetPicture();
        CCUString sText;
        if (picture)
            sText.Format("%d x %d, %d bits, %.0f %%", picture.Width(), picture.Height(),
                         m_loader.m_nBits, 100 * m_view.GetZoom());
        m_status.SetText(1, sText);
        m_status.SetText(0, m_loader.m_sPath + m_loader.m_sReason);
    }

    void ChooseFile()
    {
        CCUString sPath = GetDocument();
        if (CUIChooseOpenFile(this, sPath, "Pictures|*.bmp;*.dib|All files|*.*"))
            OnOpenFile(sPath);
    }
    void ShowPicture()
    {
        CUDump("%s%s\n", m_loader.m_sPath.GetString(), m_loader.m_sReason.GetString());
        m_status.SetProgress(0, 0, 0);
        m_view.SetPicture(m_loader.m_picture);
        SetDocument(m_loader.m_sPath);
        PlaySlides(m_bPlaying);
        // Timers bring no idle pass.
        CCUICommandMap::IdleUpdate();
    }
    void PlaySlides(bool bPlay)
    {
        m_bPlaying = bPlay;
        bPlay ? SetAlarm(m_options.m_nSeconds * 1000L) : KillAlarm();
    }
    void UseOptions()
    {
        if (m_options.m_bNotify)
            m_icon.Add(m_hInstance, MAKEINTRESOURCE(IDI_VIEWER), "Picture Viewer");
        else
            m_icon.Remove();
    }

    CCUString m_sLog;
    COptions m_options;
    CCUIMenu m_menu{m_hInstance, MAKEINTRESOURCE(IDR_VIEWER), CUI_MENU_BAR};
    CCUIMenu m_iconMenu{m_hInstance, MAKEINTRESOURCE(IDR_NOTIFY), 0};
    CCUIRecentFiles m_recent{this, ID_RECENT};
    CCUIControlBar m_bar;
    CCUIStatusBar m_status;
    CCUILayoutWindow m_row{CCUILayoutWindow::Row};
    CFolderList m_list;
    CPictureView m_view;
    CCUINotifyIcon m_icon;
    CPictureLoader m_loader;
    bool m_bPlaying = false;
};

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int nShow)
{
    CUDumpSetLogFile(nullptr, "Viewer");
    CUISetSettingsKey("Software\\Samples\\Viewer");
    CCUISingleInstance instance;
    if (instance.Start("Picture Viewer") == CCUISingleInstance::HandedOver)
        return 0;
    CViewer viewer;
    if (!viewer.CreateFrame("Picture Viewer"))
        return 1;
    viewer.ShowKept("Frame", nShow);
    viewer.OnCommandLine(GetCommandLineA(), "");
    return CCUIWindow::RunLoop();
}
