// A gallery of effects: all kinds, and what can be set. "Effects.exe 50" shows them standing still
// at 50 per cent.

#include <stdlib.h>

#include "CUI/Button.h"
#include "CUI/ComboBox.h"
#include "CUI/FrameWindow.h"
#include "CUI/LayoutWindow.h"
#include "CUI/Static.h"
#include "CUI/TrackBar.h"
#include "Stage.h"

// What the settings are made of calls Use when the user has changed something.
class CUser
{
public:
    virtual void Use() = 0;
    virtual void ShowAt(int nPercent) = 0;

protected:
    ~CUser() = default;
};

class CChoice : public CCUIComboBox
{
public:
    CChoice(CUser &user, const char *pszName) : m_user(user), m_pszName(pszName) {}
    template <int COUNT>
    void Make(HWND hParent, const char *const (&texts)[COUNT], int nChosen)
    {
        m_label.SetFixedSize(0);  // as high as its text
        m_label.SetLayoutFlags(CUI_PLACE_FILL | CUI_PLACE_FIT);
        m_label.CreateControl(hParent, 0, m_pszName);
        CreateControl(hParent, 0);
        for (const char *pszText : texts)
            AddString(pszText);
        SetCurSel(nChosen);
        SetLayoutFlags(CUI_PLACE_FILL | CUI_PLACE_FIT);
    }

protected:
    int OnSelChange() override { return m_user.Use(), 1; }

private:
    CUser &m_user;
    const char *m_pszName;
    CCUIStatic m_label;
};

class CSwitch : public CCUIButton
{
public:
    CSwitch(CUser &user, CUIButtonKind kind) : CCUIButton(kind), m_user(user) {}
    void Make(HWND hParent, const char *pszText)
    {
        SetLayoutFlags(CUI_PLACE_FIT);
        CreateControl(hParent, 0, pszText);
    }
    bool IsOn() const { return GetCheck() == BST_CHECKED; }

protected:
    void OnClick() override { m_user.Use(); }

private:
    CUser &m_user;
};

class CProgress : public CCUITrackBar
{
public:
    explicit CProgress(CUser &user) : m_user(user) {}

protected:
    int OnChange(int nPos, bool) override { return m_user.ShowAt(nPos), 1; }

private:
    CUser &m_user;
};

class CGallery : public CCUIFrameWindow, private CUser
{
public:
    CGallery()
    {
        m_background = MakePicture(192, 112, true, true);
        m_scroll.SetPicture(CUIEffectPicture(MakePicture(96, 72, false, false), SKY_KEY));
        m_scroll.SetGap(30);
        m_text.SetText("Effects are pictures that change with time.  *  ", nullptr,
                       CUIGetWinData()->crSys[COLOR_WINDOWTEXT]);
        m_shrink.SetPicture(CUIEffectPicture(MakePicture(192, 112, false, false), SKY_KEY));
        m_blink.SetBlinks(2);
        for (int i = 0; i < 6; ++i)
            m_reveals[i].SetShape(static_cast<CCUIRevealEffect::Shape>(i));
        for (CCUITransitionEffect *const pEffect : m_transitions)
            pEffect->SetPictures(MakePicture(192, 112, false, true),
                                 MakePicture(192, 112, true, true));
    }

    void ShowAt(int nPercent) override
    {
        for (CStage &stage : m_stages)
            stage.Show(nPercent / 100.);
        m_progress.SetPos(nPercent);
    }

protected:
    int OnCreate(CREATESTRUCTA *pCreate) override
    {
        m_outer.Create(nullptr, "", WS_CHILD | WS_VISIBLE, {}, *this, 1);
        m_outer.SetMargins({8, 8, 8, 8});
        m_outer.SetGap(8);
        MakeSettings();
        m_rows.SetGap(4);
        m_rows.SetLayoutFlags(CUI_PLACE_FILL | CUIPlaceWeight(1));
        m_rows.Create(nullptr, "", WS_CHILD | WS_VISIBLE, {}, m_outer, 2);
        for (int i = 0; i < 11; ++i) {
            CCUILayoutWindow &row = m_row[i / 4];
            if (i % 4 == 0) {
                row.SetGap(8);
                row.SetLayoutFlags(CUI_PLACE_FILL | CUIPlaceWeight(1));
                row.Create(nullptr, "", WS_CHILD | WS_VISIBLE, {}, m_rows, 3);
            }
            m_stages[i].Create(nullptr, "", WS_CHILD | WS_VISIBLE, {}, row, 4);
        }
        SetClient(&m_outer);
        Use();
        return CCUIFrameWindow::OnCreate(pCreate);
    }

private:
    void MakeSettings()
    {
        static const char *const DIRECTIONS[] = {"Right", "Right and down", "Down", "Left and down",
                                                 "Left",  "Left and up",    "Up",   "Right and up"};
        static const char *const EASINGS[] = {"None", "Slow at first", "Slow at last", "Both"};
        static const char *const REPEATS[] = {"Once", "Repeated", "To and fro"};
        static const char *const DURATIONS[] = {"1 second", "2 seconds", "4 seconds", "8 seconds"};
        m_settings.SetFixedSize(ToScreen(150));
        m_settings.SetGap(5);
        m_settings.SetLayoutFlags(CUI_PLACE_FILL);
        m_settings.Create(nullptr, "", WS_CHILD | WS_VISIBLE, {}, m_outer, 5);
        m_direction.Make(m_settings, DIRECTIONS, 0);
        m_easing.Make(m_settings, EASINGS, 3);
        m_repeat.Make(m_settings, REPEATS, 2);
        m_duration.Make(m_settings, DURATIONS, 1);
        m_backwards.Make(m_settings, "&Backwards");
        m_soft.Make(m_settings, "&Soft edge");
        m_soft.SetCheck(BST_CHECKED);
        m_colour.Make(m_settings, "One &colour behind");
        m_again.Make(m_settings, "&Run");
        m_progress.SetLayoutFlags(CUI_PLACE_FILL | CUI_PLACE_FIT);
        m_progress.CreateControl(m_settings, 0);
        m_progress.SetTicFreq(25);
    }

    void Use() override
    {
        const auto direction = static_cast<CCUITimeBasedEffect::Direction>(m_direction.GetCurSel());
        const auto side = static_cast<CCUITimeBasedEffect::Direction>(direction & ~1);
        m_scroll.SetDirection(side);
        m_text.SetDirection(side);
        m_wipe.SetDirection(direction);
        m_wipe.SetEdgeWidth(m_soft.IsOn() ? 48 : 0);
        m_shrink.SetEdge(direction);
        const CUIEffectPicture colour = CUIGetWinData()->crSys[COLOR_WINDOW];
        for (CCUIPictureEffect *const pEffect : m_moving)
            pEffect->SetBackground(m_colour.IsOn() ? colour : CUIEffectPicture(m_background));
        m_text.SetBackground(colour);
        for (int i = 0; i < 11; ++i) {
            CCUIPictureEffect &effect = *m_effects[i];
            effect.SetEasing(static_cast<CCUITimeBasedEffect::Easing>(m_easing.GetCurSel()));
            effect.SetRepeat(static_cast<CCUITimeBasedEffect::Repeat>(m_repeat.GetCurSel()));
            effect.SetDuration(1000 << m_duration.GetCurSel());
            effect.SetBackwards(m_backwards.IsOn());
            m_stages[i].Begin();
        }
    }

    CCUIScrollEffect m_scroll, m_text;
    CCUIShrinkEffect m_shrink;
    CCUIBlinkEffect m_blink;
    CCUIWipeEffect m_wipe;
    CCUIRevealEffect m_reveals[6];
    CCUIPictureEffect *const m_moving[2] = {&m_scroll, &m_shrink};
    CCUITransitionEffect *const m_transitions[8] = {&m_blink,      &m_wipe,       m_reveals,
                                                    m_reveals + 1, m_reveals + 2, m_reveals + 3,
                                                    m_reveals + 4, m_reveals + 5};
    CCUIPictureEffect *const m_effects[11] = {
        &m_scroll,     &m_text,       &m_shrink,     &m_blink,      &m_wipe,      m_reveals,
        m_reveals + 1, m_reveals + 2, m_reveals + 3, m_reveals + 4, m_reveals + 5};
    CCUIBitmap m_background;

    CCUILayoutWindow m_outer{CCUILayoutWindow::Row}, m_settings, m_rows;
    struct CRow : CCUILayoutWindow
    {
        CRow() : CCUILayoutWindow(Row) {}
    } m_row[3];
    CChoice m_direction{*this, "Direction:"}, m_easing{*this, "Easing:"};
    CChoice m_repeat{*this, "Repeat:"}, m_duration{*this, "Duration of a pass:"};
    CSwitch m_backwards{*this, CUI_BUTTON_CHECK}, m_soft{*this, CUI_BUTTON_CHECK};
    CSwitch m_colour{*this, CUI_BUTTON_CHECK}, m_again{*this, CUI_BUTTON_PUSH};
    CProgress m_progress{*this};
    CStage m_stages[11] = {
        {"Scrolling picture", m_scroll}, {"Scrolling text", m_text}, {"Shrinking", m_shrink},
        {"Blinking", m_blink},           {"Wipe", m_wipe},           {"Blinds", m_reveals[0]},
        {"Blinds down", m_reveals[1]},   {"Box", m_reveals[2]},      {"Box closing", m_reveals[3]},
        {"Circle", m_reveals[4]},        {"Tiles", m_reveals[5]}};
};

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR pszArguments, int nShow)
{
    CGallery gallery;
    if (!gallery.CreateFrame("Effects"))
        return 1;
    SetWindowPos(gallery, nullptr, 0, 0, ToScreen(780), ToScreen(480), SWP_NOZORDER);
    ShowWindow(gallery, nShow);
    if (*pszArguments)
        gallery.ShowAt(atoi(pszArguments));
    return CCUIWindow::RunLoop();
}
