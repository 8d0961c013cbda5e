// The examples of the reference for effects: each is named after its class.

#include "CU/Dump.h"
#include "CUI/Draw.h"
#include "CUI/Effects.h"
#include "CUI/Window.h"

//! [CCUITimeBasedEffect]
// A bar that fills from the left in two seconds.
class CFilling : public CCUITimeBasedEffect
{
public:
    CFilling() { SetDuration(2000); }

protected:
    void Render(HDC hDC, const RECT &rect, double fProgress) override
    {
        RECT part = rect;
        part.right = rect.left + static_cast<int>((rect.right - rect.left) * fProgress);
        CUIDCFillSolidRect(hDC, &rect, RGB(255, 255, 255));
        CUIDCFillSolidRect(hDC, &part, RGB(0, 0, 128));
    }
    void OnEnd(bool bFinished) override
    {
        if (bFinished)
            CUDump("Full\n");
    }
};
//! [CCUITimeBasedEffect]

void ShowPicture(CCUIPictureEffect &effect, CCUIWindow &window, const CCUIBitmap &paper)
{
    //! [CCUIPictureEffect]
    effect.SetBackground(paper);  // what the window itself shows there
    effect.SetRepeat(CCUIPictureEffect::ToAndFro);
    effect.Start(&window, {10, 10, 110, 60});
    //! [CCUIPictureEffect]
}

void ShowScroll(CCUIScrollEffect &news, CCUIWindow &window, HFONT hFont)
{
    //! [CCUIScrollEffect]
    news.SetText("New in this version: scrolling texts.", hFont, RGB(0, 0, 0));
    news.SetDirection(CCUIScrollEffect::Left);
    news.SetDuration(8000);
    news.SetRepeat(CCUIScrollEffect::Repeated);
    news.Start(&window, {0, 0, 300, 20});
    //! [CCUIScrollEffect]
}

void ShowShrink(CCUIShrinkEffect &shrink, CCUIWindow &window, const CCUIBitmap &card)
{
    //! [CCUIShrinkEffect]
    shrink.SetPicture({card, RGB(255, 0, 255)});  // transparent where it is magenta
    shrink.SetPoint(0.5, 0.5);
    shrink.Start(&window, {0, 0, 200, 100});
    //! [CCUIShrinkEffect]
}

void ShowTransition(CCUITransitionEffect &effect, const CCUIBitmap &before, const CCUIBitmap &after)
{
    //! [CCUITransitionEffect]
    effect.SetPictures(before, after);
    effect.SetEasing(CCUITransitionEffect::EaseOut);
    //! [CCUITransitionEffect]
}

void ShowBlink(CCUIBlinkEffect &lamp, CCUIWindow &window)
{
    //! [CCUIBlinkEffect]
    lamp.SetPictures(RGB(128, 0, 0), RGB(255, 0, 0));
    lamp.SetBlinks(5);
    lamp.Start(&window, {4, 4, 20, 20});
    //! [CCUIBlinkEffect]
}

void ShowWipe(CCUIWipeEffect &wipe, const CCUIBitmap &day, const CCUIBitmap &night)
{
    //! [CCUIWipeEffect]
    wipe.SetPictures(day, night);
    wipe.SetDirection(CCUIWipeEffect::RightDown);
    wipe.SetEdgeWidth(48);  // 0: a hard edge
    //! [CCUIWipeEffect]
}

void ShowReveal(CCUIRevealEffect &reveal, const CCUIBitmap &cover, const CCUIBitmap &page)
{
    //! [CCUIRevealEffect]
    reveal.SetPictures(cover, page);
    reveal.SetShape(CCUIRevealEffect::Circle);
    //! [CCUIRevealEffect]
}
