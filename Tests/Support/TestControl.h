#pragma once

#include "CUI/LayoutWindow.h"
#include "Support/TestWindow.h"

const DWORD SHOWN = WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_TABSTOP;

// A control of the framework, for others to lay out.
struct CTestControl : CScripted<CCUIControlWindow>
{
    explicit CTestControl(HWND hParent, int nSize = 20, unsigned long nFlags = CUI_PLACE_FILL,
                          DWORD nStyle = SHOWN)
    {
        SetFixedSize(nSize);
        SetLayoutFlags(nFlags);
        Create(nullptr, "", nStyle, {0, 0, 9, 7}, hParent, 1);
    }
};
