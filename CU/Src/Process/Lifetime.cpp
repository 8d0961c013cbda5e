// The start and the end of what the process shares: see Base/Lifetime.h.

#include "Base/Lifetime.h"

#include <stdlib.h>

#include "Base/Sections.h"
#include "CU/CU.h"

CUModuleEnd g_moduleEnd = CUModuleStays;

namespace {

CCULastCall *volatile s_pLastCalls = nullptr;
CCUInitializer *volatile s_pFirstInitializer = nullptr;

CCULastCall *TakeLastCalls()
{
    return static_cast<CCULastCall *>(InterlockedExchangePointer(
        reinterpret_cast<void *volatile *>(const_cast<CCULastCall **>(&s_pLastCalls)), nullptr));
}

void RunLastCalls()
{
    if (g_moduleEnd == CUModuleEndsWithProcess)
        return;
    // A last call may use what an earlier one has given back, which is named again then.
    while (CCULastCall *pCall = TakeLastCalls()) {
        while (pCall) {
            CCULastCall &call = *pCall;
            pCall = call.next;
            const auto function = call.function;
            call.function = nullptr;
            function(call);
        }
    }
}

// The first function to be registered is called behind the destructors of all statics.
void RegisterLastCalls()
{
    atexit(RunLastCalls);
}

}  // namespace

CU_BEFORE_STATICS(g_CURegisterLastCalls, RegisterLastCalls)

void CUAtLast(CCULastCall &call, void (*function)(CCULastCall &call))
{
    if (call.function)
        return;
    call.function = function;
    CUPushFront(s_pLastCalls, &call, &CCULastCall::next);
}

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
