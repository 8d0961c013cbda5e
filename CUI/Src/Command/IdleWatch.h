#pragma once

#include "Base/CallbackList.h"

// Hears of the end of every idle pass, when all handlers have been refreshed. May come, go and die
// in there.
class CCUIIdleWatch
{
public:
    virtual void AfterIdleUpdate() = 0;

protected:
    CCUIIdleWatch();
    ~CCUIIdleWatch();
    CCUIIdleWatch(const CCUIIdleWatch &) = delete;
    CCUIIdleWatch &operator=(const CCUIIdleWatch &) = delete;
};

// Called by the idle pass.
void CUITellIdleWatches();
