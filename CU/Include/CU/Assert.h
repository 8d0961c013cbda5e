#pragma once

/// @file
/// Checks of contracts, and the report of one that fails.

#include <stdio.h>

#include "CU/Platform.h"

/// Reports one failed check into the day's report file, "/ZELTrace-%Y-%m-%d.txt" in the temporary
/// directory: time, expression, source, line, the thread's last error and stack, and what the
/// report handlers add. Shows nothing and stops nothing. Only the first 10 failed checks of a
/// process are reported; a report that cannot be written is dropped, but counts among the 10. The
/// last error is kept. Returns 0: go on.
CU_API int CUDisplayAssert(const char *expression, const char *file, int line);

/// Adds a function that writes to the open report file at the end of every report, in the order of
/// registration; one that is added twice is called twice. Null is ignored.
CU_API void CURegisterExceptionHandler(void (*handler)(FILE *));
/// Takes one registration back, the earliest of that function. One that is not registered is
/// ignored. Both may be called from inside a handler: one added there is called from the next
/// report on.
CU_API void CUUnregisterExceptionHandler(void (*handler)(FILE *));

/// Checks a contract: evaluates `expression` once and reports it when it does not hold. The value
/// is the report's answer: 0, go on as if nothing had happened; anything else, give up the
/// operation. The source that uses it defines CU_SOURCE, its bare name, such as "String".
#define CU_ASSERT(expression) CU_ASSERT_TEXT(expression, #expression)
/// The same where the reported text differs from the code.
#define CU_ASSERT_TEXT(expression, text) \
    CUAssertHolds(static_cast<bool>(expression), (text), CU_SOURCE, __LINE__)

/// What CU_ASSERT calls: reports `text` when the check does not hold and gives the report's answer.
inline int CUAssertHolds(bool bHolds, const char *text, const char *file, int line)
{
    return bHolds ? 0 : CUDisplayAssert(text, file, line);
}

/// Marks a function as running, for as long as the guard lives, in an int that the function owns
/// (usually a static); reports "*m_nFlag == 0" when it was running already. Not for threads.
class CU_API CCUNoRecur
{
public:
    /// The int, 0 as long as the function does not run, must outlive the guard.
    explicit CCUNoRecur(int *flag);
    /// Guards the same int: of the two, the first that goes unmarks it.
    CCUNoRecur(const CCUNoRecur &other) = default;
    ~CCUNoRecur();
    /// Takes over the other guard's int; the one that it had stays marked.
    CCUNoRecur &operator=(const CCUNoRecur &other);

private:
    int *m_nFlag;
};
