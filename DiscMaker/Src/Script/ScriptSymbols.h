#pragma once

#include <map>

#include "CU/String.h"

// The names that a script may write for numbers: the launcher's, those of languages, and what
// #define lines say.
class CScriptSymbols
{
public:
    // A name whose meaning is no number is known too, but has no value.
    void Define(const CCUString &sName, const CCUString &sMeaning);
    void Undefine(const CCUString &sName);
    bool IsDefined(const CCUString &sName) const { return Value(sName).m_kind != ValueNone; }
    bool Find(const CCUString &sName, long &nValue) const;
    // The name that begins with a prefix and has a value; empty if there is none.
    CCUString NameOf(const char *pszPrefix, UINT nValue) const;

    // The value of an expression of numbers and names, of the operators of C; `defined` too. False
    // if it is none. With bUnknown a name that is not defined counts as 0, as in #if.
    bool Evaluate(const CCUString &sExpression, bool bUnknown, long &nValue) const;

private:
    enum ValueKind
    {
        ValueNone,
        ValueUnknown,
        ValueNumber
    };
    struct CValue
    {
        ValueKind m_kind;
        long m_nValue;
    };
    CValue Value(const CCUString &sName) const;

    std::map<CCUString, CValue> m_values;  // what the script says itself
};
