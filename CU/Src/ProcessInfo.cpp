#include <stdlib.h>
#include <string.h>

#include "CU/CU.h"
#include "LazyLock.h"

namespace {

// A handler that is taken back stays in the list without a function, so that the list can be walked
// while handlers run and change it.
struct CProcessInfo
{
    CProcessInfo *volatile next;
    void (*volatile handler)();
    char name[1];
};

CCULazyLock s_lock;
CProcessInfo *volatile s_first = nullptr;

CProcessInfo *Find(const char *name)
{
    CProcessInfo *info = s_first;
    while (info && strcmp(info->name, name) != 0)
        info = info->next;
    return info;
}

bool Append(const char *name, void (*handler)())
{
    const size_t nLength = strlen(name);
    CProcessInfo *info = static_cast<CProcessInfo *>(malloc(sizeof *info + nLength));
    if (!info)
        return false;
    info->next = nullptr;
    info->handler = handler;
    memcpy(info->name, name, nLength + 1);
    CProcessInfo *volatile *link = &s_first;
    while (*link)
        link = &(*link)->next;
    *link = info;
    return true;
}

}  // namespace

bool CURegisterProcessInfoHandler(const char *name, void (*handler)())
{
    if (!name || !handler)
        return false;
    CCULockGuard guard(s_lock);
    CProcessInfo *info = Find(name);
    if (!info)
        return Append(name, handler);
    info->handler = handler;
    return true;
}

void CUUnregisterProcessInfoHandler(const char *name)
{
    CCULockGuard guard(s_lock);
    CProcessInfo *info = name ? Find(name) : nullptr;
    if (info)
        info->handler = nullptr;
}

int CURunProcessInfoHandlers(const char *name)
{
    int nCount = 0;
    for (CProcessInfo *info = s_first; info; info = info->next) {
        void (*const handler)() = info->handler;
        if (!handler || (name && strcmp(info->name, name) != 0))
            continue;
        handler();
        ++nCount;
    }
    return nCount;
}
