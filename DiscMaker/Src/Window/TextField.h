#pragma once

#include "CUI/Edit.h"

// A field for a text of a skin. Fields hold characters of this system's code page alone: one that
// it lacks is not typed, and what would lose some when it is pasted is asked first.
class CTextField : public CCUIEdit
{
public:
    ~CTextField() override;

protected:
    long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    void RefuseCharacter();

    bool m_bNextLost = false;  // the character that the field gets next stands for another one
    bool m_bRefusing = false;  // the user is being told
};
