#include <stdlib.h>
#include <string.h>

#include "Base/Lock.h"
#include "Base/CallbackList.h"
#include "Base/Module.h"
#include "CU/CU.h"

namespace {

struct CProcessInfo : CCURegistered
{
    void (*volatile handler)();
    char name[1];
};

CCULazyLock s_lock;
CCURegistered *volatile s_first = nullptr;
volatile LONG s_nLastOrder = 0;

// Of that name, registered or taken back.
CProcessInfo *Find(const char *name)
{
    CCURegistered *item = s_first;
    while (item && strcmp(static_cast<CProcessInfo *>(item)->name, name) != 0)
        item = item->next;
    return static_cast<CProcessInfo *>(item);
}

CProcessInfo *Add(const char *name)
{
    const size_t nLength = strlen(name);
    CProcessInfo *info = static_cast<CProcessInfo *>(malloc(sizeof *info + nLength));
    if (!info)
        return nullptr;
    info->next = s_first;
    info->nOrder = 0;
    memcpy(info->name, name, nLength + 1);
    s_first = info;
    return info;
}

}  // namespace

bool CURegisterProcessInfoHandler(const char *name, void (*handler)())
{
    if (!name || !handler)
        return false;
    CCULockGuard guard(s_lock);
    CProcessInfo *info = Find(name);
    if (!info)
        info = Add(name);
    if (!info)
        return false;
    info->handler = handler;
    if (info->nOrder == 0)
        info->nOrder = InterlockedIncrement(&s_nLastOrder);
    return true;
}

void CUUnregisterProcessInfoHandler(const char *name)
{
    CCULockGuard guard(s_lock);
    CProcessInfo *info = name ? Find(name) : nullptr;
    if (info)
        info->nOrder = 0;
}

int CURunProcessInfoHandlers(const char *name)
{
    const LONG nLast = s_nLastOrder;
    int nCount = 0;
    LONG nOrder = 0;
    while (CCURegistered *item = CUNextRegistered(s_first, nOrder, nLast)) {
        const CProcessInfo *info = static_cast<CProcessInfo *>(item);
        if (name && strcmp(info->name, name) != 0)
            continue;
        info->handler();
        ++nCount;
    }
    return nCount;
}

void CUUnloadProcessInfo()
{
    while (CCURegistered *const item = s_first) {
        s_first = item->next;
        free(static_cast<CProcessInfo *>(item));
    }
}
