// Type something: the text, backwards and in capitals, and how many words it has.

#include "CU/String.h"
#include "CUI/Window.h"

//! [words]
static int CountWords(const CCUString &sText)
{
    int nWords = 0;
    CCUString sRest = sText;
    for (sRest.TrimLeft(); !sRest.IsEmpty(); sRest.TrimLeft()) {
        ++nWords;
        sRest = sRest.Mid(sRest.SpanExcluding(" ").GetLength());
    }
    return nWords;
}
//! [words]

class CTextWindow : public CCUIWindow
{
protected:
    //! [typing]
    void OnChar(UINT nChar, UINT, UINT) override
    {
        if (nChar == VK_BACK)
            m_sText = m_sText.Left(m_sText.GetLength() - 1);
        else if (nChar >= ' ')
            m_sText += static_cast<char>(nChar);
        Invalidate();
    }
    //! [typing]

    void OnPaint(HDC) override
    {
        PAINTSTRUCT paint;
        BeginPaint(*this, &paint);
        //! [sharing]
        CCUString sBackwards = m_sText;  // the same characters, one more owner
        sBackwards.MakeReverse();        // a copy of its own, made here
        CCUString sCapitals = m_sText;
        sCapitals.MakeUpper();
        //! [sharing]
        //! [format]
        CCUString sCount;
        sCount.Format("%d words, %d characters", CountWords(m_sText), m_sText.GetLength());
        //! [format]
        const CCUString lines[] = {"> " + m_sText + "_", sBackwards, sCapitals, sCount};
        for (int i = 0; i < 4; ++i)
            TextOutA(paint.hdc, 20, 20 + 30 * i, lines[i], lines[i].GetLength());
        EndPaint(*this, &paint);
    }

    void OnDestroy() override
    {
        CCUIWindow::OnDestroy();
        PostQuitMessage(0);
    }

private:
    CCUString m_sText;
};

int main()
{
    CTextWindow window;
    const RECT place = {40, 40, 360, 240};
    if (!window.Create(nullptr, "Strings", WS_OVERLAPPEDWINDOW | WS_VISIBLE, place, nullptr, 0))
        return 1;
    return CCUIWindow::RunLoop();
}
