// The comparisons of strings, all by CCUString::Compare.

#include "CU/String.h"

// NOLINTBEGIN(bugprone-macro-parentheses): an operator cannot stand in them.
#define CU_COMPARISON(op)                                      \
    bool operator op(const CCUString &s1, const CCUString &s2) \
    {                                                          \
        return s1.Compare(s2) op 0;                            \
    }                                                          \
    bool operator op(const CCUString &s1, const char *s2)      \
    {                                                          \
        return s1.Compare(s2) op 0;                            \
    }                                                          \
    bool operator op(const char *s1, const CCUString &s2)      \
    {                                                          \
        return 0 op s2.Compare(s1);                            \
    }
// NOLINTEND(bugprone-macro-parentheses)

CU_COMPARISON(==)
CU_COMPARISON(!=)
CU_COMPARISON(<)
CU_COMPARISON(>)
CU_COMPARISON(<=)
CU_COMPARISON(>=)
