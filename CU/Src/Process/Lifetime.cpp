#include <stdlib.h>

#include "Base/Atomic.h"
#include "CU/CU.h"

static CCUInitializer *volatile s_pFirstInitializer = nullptr;

bool CURegisterTerminationHandler(void (*handler)())
{
    // The runtime's own list has the order that is wanted, among the statics' destructors too.
    return handler && atexit(handler) == 0;
}

CCUInitializer::CCUInitializer(void (*initialize)(), void (*terminate)())
    : m_pNext(nullptr), m_initialize(initialize), m_terminate(terminate)
{
    CUPushFront(s_pFirstInitializer, this, &CCUInitializer::m_pNext);
}

void CUInitialize()
{
    // Taken off before it runs: it may need another one and call this itself.
    while (CCUInitializer *pInitializer = s_pFirstInitializer) {
        s_pFirstInitializer = pInitializer->m_pNext;
        if (pInitializer->m_initialize)
            pInitializer->m_initialize();
        if (pInitializer->m_terminate)
            CURegisterTerminationHandler(pInitializer->m_terminate);
    }
}
