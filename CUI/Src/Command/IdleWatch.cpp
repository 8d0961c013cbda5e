#include "Command/IdleWatch.h"

#include "Base/Lifetime.h"

typedef CCUCallbackList<CCUIIdleWatch> CIdleWatches;

static CCUShared<CIdleWatches> s_watches;

CCUIIdleWatch::CCUIIdleWatch()
{
    s_watches.Get().Add(this);
}

CCUIIdleWatch::~CCUIIdleWatch()
{
    if (CIdleWatches *const pWatches = s_watches.IfMade())
        pWatches->Remove(this);
}

void CUITellIdleWatches()
{
    CIdleWatches *const pWatches = s_watches.IfMade();
    if (!pWatches)
        return;
    CIdleWatches::CWalk walk(*pWatches);
    while (CCUIIdleWatch *const pWatch = walk.Next())
        pWatch->AfterIdleUpdate();
}
