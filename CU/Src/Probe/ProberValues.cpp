#include "Probe/ProberValues.h"

#include "CU/DebugSwitch.h"
#include "Probe/ProberList.h"
#include "Probe/ProberText.h"

namespace {

template <typename Value>
Value Call(void (*function)(), void *pArgument)
{
    return reinterpret_cast<Value (*)(void *)>(function)(pArgument);
}

}  // namespace

CCUString CCUProberValues::DefaultOf(const CCUProberVariable &variable)
{
    if (variable.m_bComputed)
        return CCUString();
    CUProberValue value;
    value.nKind = variable.m_nKind;
    switch (variable.m_nKind) {
    case CU_PROBER_LONG:
        value.nLong = static_cast<const CCUProberLong &>(variable).m_nDefault;
        break;
    case CU_PROBER_DOUBLE:
        value.fDouble = static_cast<const CCUProberDouble &>(variable).m_fDefault;
        break;
    case CU_PROBER_TEXT:
        value.sText = static_cast<const CCUProberText &>(variable).m_pszDefault;
        break;
    case CU_PROBER_FLAG:
        value.nLong = static_cast<const CCUProberFlag &>(variable).m_bDefault;
        break;
    }
    return value.ToText();
}

bool CCUProberValues::Describe(unsigned long nID, CUProberEntry &entry)
{
    const CCULockGuard guard(CCUProberList::s_lock);
    const CCUProberVariable *const pVariable = CCUProberList::Lookup(nID);
    if (!pVariable)
        return false;
    entry.nID = nID;
    entry.nKind = pVariable->m_nKind;
    entry.bComputed = pVariable->m_bComputed;
    entry.bOpen = pVariable->m_bOpen && !entry.bComputed;
    entry.sPath = pVariable->m_pszPath;
    entry.sName = pVariable->m_pszName;
    entry.sDescription = pVariable->m_pszDescription;
    entry.sUnit = pVariable->m_pszUnit;
    entry.sDefault = DefaultOf(*pVariable);
    return true;
}

// --- Reading ---

void CCUProberValues::Read(const CCUProberVariable &variable, CUProberValue &value)
{
    switch (variable.m_nKind) {
    case CU_PROBER_LONG: {
        const auto &number = static_cast<const CCUProberLong &>(variable);
        value.nLong = variable.m_nNotice & CCUProberVariable::UNREAD
                          ? static_cast<const CCUDebugSwitch &>(number).Get()
                          : number.m_nValue;
        break;
    }
    case CU_PROBER_DOUBLE:
        value.fDouble = static_cast<const CCUProberDouble &>(variable).Get();
        break;
    case CU_PROBER_TEXT: value.sText = static_cast<const CCUProberText &>(variable).m_sValue; break;
    case CU_PROBER_FLAG: value.nLong = static_cast<const CCUProberFlag &>(variable).m_bValue; break;
    }
}

void CCUProberValues::Compute(const CCUProberFunction &variable, CUProberValue &value)
{
    void (*const function)() = variable.m_function;
    void *const pArgument = variable.m_pArgument;
    const CCUProberList::CReading reading(variable);
    if (value.nKind == CU_PROBER_LONG)
        value.nLong = Call<long>(function, pArgument);
    else if (value.nKind == CU_PROBER_DOUBLE)
        value.fDouble = Call<double>(function, pArgument);
    else
        value.sText = Call<CCUString>(function, pArgument);
}

void CCUProberValues::GetLocked(unsigned long nID, CUProberValue &value)
{
    const CCUProberVariable *const pVariable = CCUProberList::Lookup(nID);
    value.nResult = pVariable ? CU_PROBER_DONE : CU_PROBER_GONE;
    if (!pVariable)
        return;
    value.nKind = pVariable->m_nKind;
    if (pVariable->m_bComputed)
        Compute(static_cast<const CCUProberFunction &>(*pVariable), value);
    else
        Read(*pVariable, value);
}

// --- Setting ---

bool CCUProberValues::Store(CCUProberVariable &variable, const char *pszText)
{
    switch (variable.m_nKind) {
    case CU_PROBER_LONG: {
        auto &number = static_cast<CCUProberLong &>(variable);
        long nValue = number.m_nDefault;
        if (pszText && !CUParseProberLong(pszText, nValue))
            return false;
        number.Set(nValue);
        return true;
    }
    case CU_PROBER_DOUBLE: {
        auto &number = static_cast<CCUProberDouble &>(variable);
        double fValue = number.m_fDefault;
        if (pszText && !CUParseProberDouble(pszText, fValue))
            return false;
        number.Set(fValue);
        return true;
    }
    case CU_PROBER_FLAG: {
        auto &flag = static_cast<CCUProberFlag &>(variable);
        bool bValue = flag.m_bDefault;
        if (pszText && !CUParseProberFlag(pszText, bValue))
            return false;
        flag.Set(bValue);
        return true;
    }
    case CU_PROBER_TEXT: break;
    }
    auto &text = static_cast<CCUProberText &>(variable);
    text.Set(pszText ? pszText : text.m_pszDefault);
    return true;
}

CUProberResult CCUProberValues::Set(unsigned long nID, const char *pszText, bool bOutside)
{
    const CCULockGuard guard(CCUProberList::s_lock);
    CCUProberVariable *const pVariable = CCUProberList::Lookup(nID);
    if (!pVariable)
        return CU_PROBER_GONE;
    if (pVariable->m_bComputed || (bOutside && !pVariable->m_bOpen))
        return CU_PROBER_REFUSED;
    return Store(*pVariable, pszText) ? CU_PROBER_DONE : CU_PROBER_NOT_PARSED;
}
