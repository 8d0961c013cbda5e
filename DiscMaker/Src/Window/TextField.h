#pragma once

#include "CUI/Edit.h"

// A field for a text of a skin. What would lose characters when it is pasted is asked first: fields
// hold characters of this system's code page alone.
class CTextField : public CCUIEdit
{
public:
    ~CTextField() override;

protected:
    long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
};
