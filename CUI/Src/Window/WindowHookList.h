#pragma once

#include "Base/CallbackList.h"
#include "CUI/Window.h"

// A window's message hooks, in the order of insertion.
class CCUIWindowHookList : public CCUCallbackList<CCUIWindowHook>
{
};
