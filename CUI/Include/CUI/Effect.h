#pragma once

/// @file
/// Pictures that change with time.

#include "CUI/Window.h"

/// A picture that changes with time in a rectangle of a window: the clock, the runs, the window.
/// What it shows is a derived class's: see CUI/Effects.h, or override Render.
///
/// An effect that was started has its rectangle, in which it alone draws, until it is stopped: it
/// paints there before the window does, while it runs, pauses and when it has ended. So its picture
/// must not be transparent to what the window paints, and the window may be any that is bound to an
/// object. The picture depends on the progress alone, from 0 to 1, and the progress on the
/// framework's clock (CUGetTime): frames that come late are dropped, never caught up with.
///
/// While nothing of the rectangle can be seen, because the window is hidden, minimised or covered,
/// nothing is drawn and no timer runs, but for one that tells the end of a run that has one. Turns
/// meanwhile are told as one.
///
/// An effect belongs to the thread of its window. It may be deleted at any time but in Render; so
/// may the window and its object, which ends the effect. Where the user wants no animation
/// (IsAnimationWanted), the last picture is shown at once.
class CUI_API CCUITimeBasedEffect : public CCUTimer, private CCUIWindowHook
{
public:
    /// How the progress goes from 0 to 1 while time t does.
    enum Easing
    {
        Linear,   ///< evenly: t
        EaseIn,   ///< slowly at first: t * t
        EaseOut,  ///< slowly at last: 1 - (1 - t) * (1 - t)
        EaseBoth  ///< both: 2 * t * t up to the middle, then 1 - 2 * (1 - t) * (1 - t)
    };
    /// What follows when the duration is over.
    enum Repeat
    {
        Once,      ///< the end
        Repeated,  ///< the same again
        ToAndFro   ///< the way back, then the same again
    };
    /// See GetState.
    enum State
    {
        Stopped,  ///< without a window
        Running,  ///< the clock counts
        Paused,   ///< the clock stands
        Finished  ///< the last picture is shown
    };
    /// The ways in which something can go.
    enum Direction
    {
        Right,      ///< to the right
        RightDown,  ///< to the lower right corner
        Down,       ///< down
        LeftDown,   ///< to the lower left corner
        Left,       ///< to the left
        LeftUp,     ///< to the upper left corner
        Up,         ///< up
        RightUp     ///< to the upper right corner
    };

    ~CCUITimeBasedEffect() override;

    /// Begins at the start, in place of what ran before; the first picture comes with the next turn
    /// of the message loop. `rect` is in client pixels. 1, or 0, reported as "pWindow &&
    /// pWindow->GetHandle()", without a window.
    int Start(CCUIWindow *pWindow, const RECT &rect);
    /// Stops the clock, and lets it go on. Without effect on what does not run, or does not pause.
    /// @{
    void Pause();
    void Resume();
    /// @}
    /// Lets go of the window and of all memory, without a call of OnEnd. What was drawn stays until
    /// the window paints there.
    void Stop();
    /// Goes on in another rectangle; to be called in the window's OnSize. What was drawn at the old
    /// place is the window's, which paints it anew.
    void Move(const RECT &rect);

    /// Settings, which count at once. The duration is that of one pass, 1,000 milliseconds at
    /// first; frames are at least the frame time apart, 16 milliseconds at first. Both are 1 at
    /// least and 2^30 - 1 (12 days) at most.
    /// @{
    void SetDuration(long nMilliseconds)
    {
        m_nDuration = ToSpan(nMilliseconds);
        Changed();
    }
    void SetFrameTime(long nMilliseconds)
    {
        m_nFrameTime = ToSpan(nMilliseconds);
        Changed();
    }
    void SetEasing(Easing easing)
    {
        m_easing = easing;
        Changed();
    }
    /// From 1 to 0, and 1 is shown at first.
    void SetBackwards(bool bBackwards)
    {
        m_bBackwards = bBackwards;
        Changed();
    }
    /// nPasses: how many there are, each way being one; 0 and less: no end. Once always means 1.
    void SetRepeat(Repeat repeat, long nPasses = 0)
    {
        m_repeat = repeat;
        m_nPasses = repeat == Once ? 1 : nPasses;
        Changed();
    }
    /// @}

    State GetState() const { return m_state; }           ///< what the effect does
    const RECT &GetRect() const { return m_rect; }       ///< the one given last
    CCUIWindow *GetWindow() const { return m_pWindow; }  ///< null: stopped
    long GetDuration() const { return m_nDuration; }     ///< milliseconds
    /// The progress now, from 0 to 1, with easing and direction.
    double GetProgress() const;

    /// Draws the picture at that progress (taken as 0 below, as 1 above), which depends on nothing
    /// else, into any DC with a mapping of one unit to a pixel. Where it needs several layers they
    /// are put together in CUIGetOSDC, so that nothing flickers.
    void Draw(HDC hDC, const RECT &rect, double fProgress);
    /// Draws what is shown now, at the effect's place: for a window that paints into another DC
    /// than its own.
    void Paint(HDC hDC);

    /// The easing by itself; fTime from 0 to 1.
    static double Ease(Easing easing, double fTime);
    /// What the user has set in the system: SPI_GETCLIENTAREAANIMATION or, before Windows Vista,
    /// SPI_GETUIEFFECTS; true on systems that have neither.
    static bool IsAnimationWanted();

protected:
    /// Stopped.
    CCUITimeBasedEffect() = default;

    /// The run is over, with its last picture shown (bFinished), or with the window lost before. No
    /// function of the effect has anything to do afterwards: it may be started anew, or deleted.
    virtual void OnEnd(bool bFinished) { static_cast<void>(bFinished); }
    /// Another pass has begun, the nPass-th behind the first. The effect may be deleted.
    virtual void OnTurn(long nPass) { static_cast<void>(nPass); }
    /// Draws all of `rect`, which is not empty, at a progress from 0 to 1.
    virtual void Render(HDC hDC, const RECT &rect, double fProgress) = 0;
    /// Whether Render draws over what it has drawn in the same frame, so that it must draw into
    /// memory. The base answers true.
    virtual bool IsLayered() const { return true; }
    /// Whether there is nothing to be drawn anew from one progress to the other. The base compares
    /// the two.
    virtual bool LooksSame(double fFrom, double fTo) const { return fFrom == fTo; }
    /// Forgets what was made of the settings, the system's colours and the screen's depth. A
    /// setting that the picture depends on calls it, and the base's with it: the picture is drawn
    /// anew.
    virtual void Discard();

private:
    static const long LONGEST_SPAN = (1 << 30) - 1;  // the longest delay of a CCUTimer

    static long ToSpan(long n) { return n < 1 ? 1 : n < LONGEST_SPAN ? n : LONGEST_SPAN; }
    void Changed();
    void TimeOut(long nNow) override;
    int OnHookMessage(UINT message, WPARAM wParam, LPARAM lParam, long &result) override;
    void OnUnbound() override;
    void LetGo();
    unsigned long Elapsed(unsigned long uNow) const;
    bool IsBehindEnd(long nPass) const;
    bool Advance(unsigned long uNow);
    double ProgressAt(unsigned long uNow) const;
    bool Show(unsigned long uNow);
    void Invalidate(bool bErase);
    void Repaint();
    void SetStill();
    void Sleep(unsigned long uNow);
    void Schedule(unsigned long uNow);

    CCUIWindow *m_pWindow = nullptr;
    RECT m_rect = {};
    State m_state = Stopped;
    Easing m_easing = Linear;
    Repeat m_repeat = Once;
    long m_nPasses = 1;  // 0 and less: no end
    long m_nPass = 0;    // the one that m_uStart is the start of
    long m_nDuration = 1000;
    long m_nFrameTime = 16;
    unsigned long m_uStart = 0;    // CUGetTime
    unsigned long m_uElapsed = 0;  // of the pass, while it pauses
    double m_fShown = 0;           // what was drawn last, if m_bShown
    bool m_bShown = false;
    bool m_bBackwards = false;
    bool m_bAsleep = false;  // runs, but nothing can be seen
    bool m_bStill = false;   // the last picture is wanted at once
};
