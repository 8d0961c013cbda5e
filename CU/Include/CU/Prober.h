#pragma once

/// @file
/// Values that can be watched while the program runs.
///
///     CCUProberLong s_loaded("\\Viewer\\Pictures", "Loaded", 0, "pictures that were loaded");
///     ...
///     s_loaded.Add(1);
///
/// All variables of a process make a tree, which the program itself asks through CCUProber and
/// another process, such as the sample Prober, through CCUProberClient (ProberClient.h). Others
/// reach a program that has made its message window: call CUGetWindow (CU.h) once, on the thread of
/// its windows.

#include <string.h>

#include <atomic>

#include "CU/Platform.h"
#include "CU/String.h"

struct CUProberNode;

/// What a value is.
enum CUProberKind : int
{
    CU_PROBER_LONG,    ///< a 32-bit number
    CU_PROBER_DOUBLE,  ///< a number with a fraction
    CU_PROBER_TEXT,    ///< a text
    CU_PROBER_FLAG     ///< yes or no
};

/// What became of a reading or setting.
enum CUProberResult : int
{
    CU_PROBER_DONE,        ///< it succeeded
    CU_PROBER_GONE,        ///< there is no such variable, or not any more
    CU_PROBER_REFUSED,     ///< the value is computed, or not open to other processes
    CU_PROBER_NOT_PARSED,  ///< the text is no such value, or one out of range
    CU_PROBER_NO_ANSWER    ///< the other process has not answered
};

/// A value that was read.
struct CUProberValue
{
    CUProberResult nResult;  ///< the rest holds for CU_PROBER_DONE alone
    CUProberKind nKind;      ///< which of the following has the value
    long nLong;              ///< CU_PROBER_LONG; CU_PROBER_FLAG: 0 or 1
    double fDouble;          ///< CU_PROBER_DOUBLE
    CCUString sText;         ///< CU_PROBER_TEXT

    /// Nothing read yet.
    CUProberValue() : nResult(CU_PROBER_GONE), nKind(CU_PROBER_LONG), nLong(0), fDouble(0) {}
    /// The value as Set takes it: decimal numbers, "true" or "false", the text itself.
    CU_API CCUString ToText() const;
};

/// What is known of a variable besides its value.
struct CUProberEntry
{
    unsigned long nID;       ///< its number, which no other variable of this run gets
    CUProberKind nKind;      ///< what its value is
    bool bComputed;          ///< a function makes the value; it cannot be set
    bool bOpen;              ///< other processes may set it
    CCUString sPath;         ///< such as "\Debug\Timer"
    CCUString sName;         ///< such as "TimerDebug"
    CCUString sDescription;  ///< for people; may be empty
    CCUString sUnit;         ///< such as "ms"; may be empty
    CCUString sDefault;      ///< the first value, as text
};

/// What variables of all kinds have. Static objects, in modules too, or made at run time; any
/// thread. All texts are kept as pointers, and must outlive the object without a change.
///
/// A variable is listed from the end of its construction to the beginning of its destruction, which
/// waits for functions of its own that compute its value on another thread. Until a static one is
/// constructed it reads as 0 or "". Of several with the same path and name the latest is found, and
/// the one before it again when that is gone; each can be read by its number. The case of the
/// letters A to Z makes no difference.
class CCUProberVariable
{
public:
    CCUProberVariable(const CCUProberVariable &) = delete;
    CCUProberVariable &operator=(const CCUProberVariable &) = delete;

    /// The pointers that were given to the constructor; "" for null.
    /// @{
    const char *GetPath() const { return m_pszPath; }
    const char *GetName() const { return m_pszName; }
    const char *GetDescription() const { return m_pszDescription; }
    const char *GetUnit() const { return m_pszUnit; }
    /// @}
    /// Its number in the tree.
    unsigned long GetID() const { return m_nID; }
    /// Lets other processes of the user's desktop set the value, or not any more. At first they may
    /// not.
    void SetOpen(bool bOpen) { m_bOpen = bOpen; }

protected:
    /// Of m_nNotice: the user's setting for this debug switch is still to be read.
    static const LONG UNREAD = static_cast<LONG>(0x80000000);

    /// Not listed yet.
    CU_API CCUProberVariable(CUProberKind nKind, bool bComputed, const char *pszPath,
                             const char *pszName, const char *pszDescription, const char *pszUnit);
    ~CCUProberVariable() = default;
    /// What every class calls last in its constructor, and first in its destructor.
    /// @{
    CU_API void List();
    CU_API void Unlist();
    /// @}
    CU_API void Changed();  ///< tells the watches that the value was set

    bool m_bSwitch;           ///< it is a CCUDebugSwitch
    volatile LONG m_nNotice;  ///< not 0: who sets the value has more to do; a bit for each watch

private:
    friend class CCUProberList;
    friend class CCUProberValues;
    friend class CCUProberIndex;

    const char *m_pszPath;
    const char *m_pszName;
    const char *m_pszDescription;
    const char *m_pszUnit;
    CUProberKind m_nKind;
    bool m_bComputed;
    volatile bool m_bOpen;
    unsigned long m_nID;  // 0: not listed
    LONG m_nPending;      // a bit for each watch that is to be told
    CCUProberVariable *m_pPrevious;
    CCUProberVariable *m_pNext;
    CCUProberVariable *m_pNextOfID;  // in the index, as the next one
    CUProberNode *m_pNode;
};

/// A 32-bit number. To read it costs what a volatile variable costs.
class CCUProberLong : public CCUProberVariable
{
public:
    /// With its default, which is its first value.
    CU_API CCUProberLong(const char *pszPath, const char *pszName, long nDefault = 0,
                         const char *pszDescription = "", const char *pszUnit = "");
    ~CCUProberLong() { Unlist(); }

    /// The value.
    /// @{
    long Get() const { return m_nValue; }
    operator long() const { return m_nValue; }
    /// @}
    /// Gives it another value.
    void Set(long nValue)
    {
        if (m_nNotice)
            SetNoticed(nValue);
        else
            m_nValue = nValue;
    }
    /// Adds in one step; other threads may do so at the same time.
    void Add(long nMore)
    {
        InterlockedExchangeAdd(&m_nValue, nMore);
        if (m_nNotice)
            Changed();
    }

protected:
    struct CSwitch  ///< tells this constructor from the other one
    {
    };
    /// A debug switch, which CCUDebugSwitch makes.
    CU_API CCUProberLong(CSwitch, const char *pszPath, const char *pszName,
                         const char *pszDescription, const char *pszUnit);

    volatile LONG m_nValue;  ///< the value

private:
    friend class CCUProberValues;
    CU_API void SetNoticed(long nValue);

    long m_nDefault;
};

/// A number with a fraction.
class CCUProberDouble : public CCUProberVariable
{
public:
    /// With its default, which is its first value.
    CU_API CCUProberDouble(const char *pszPath, const char *pszName, double fDefault = 0,
                           const char *pszDescription = "", const char *pszUnit = "");
    ~CCUProberDouble() { Unlist(); }

    /// The value, never half of one and half of another.
    /// @{
    double Get() const
    {
        const long long nBits = m_nBits.load(std::memory_order_relaxed);
        double fValue;
        memcpy(&fValue, &nBits, sizeof fValue);
        return fValue;
    }
    operator double() const { return Get(); }
    /// @}
    /// Gives it another value.
    void Set(double fValue)
    {
        long long nBits;
        memcpy(&nBits, &fValue, sizeof nBits);
        m_nBits.store(nBits, std::memory_order_relaxed);
        if (m_nNotice)
            Changed();
    }

private:
    friend class CCUProberValues;

    std::atomic<long long> m_nBits;
    double m_fDefault;
};

/// Yes or no.
class CCUProberFlag : public CCUProberVariable
{
public:
    /// With its default, which is its first value.
    CU_API CCUProberFlag(const char *pszPath, const char *pszName, bool bDefault = false,
                         const char *pszDescription = "", const char *pszUnit = "");
    ~CCUProberFlag() { Unlist(); }

    /// The value.
    /// @{
    bool Get() const { return m_bValue; }
    operator bool() const { return m_bValue; }
    /// @}
    /// Gives it another value.
    void Set(bool bValue)
    {
        m_bValue = bValue;
        if (m_nNotice)
            Changed();
    }

private:
    friend class CCUProberValues;

    volatile bool m_bValue;
    bool m_bDefault;
};

/// A text. Reading it takes the tree's lock.
class CCUProberText : public CCUProberVariable
{
public:
    /// With its default, which is its first value.
    CU_API CCUProberText(const char *pszPath, const char *pszName, const char *pszDefault = "",
                         const char *pszDescription = "", const char *pszUnit = "");
    ~CCUProberText() { Unlist(); }

    CU_API CCUString Get() const;              ///< the value
    CU_API void Set(const CCUString &sValue);  ///< gives it another value

private:
    friend class CCUProberValues;

    CCUString m_sValue;
    const char *m_pszDefault;
};

/// A value that a function computes whenever somebody reads it: on the thread that reads, for other
/// processes that of the message window, and under no lock. The function may do anything but wait
/// for somebody who waits for it; it may even delete the object.
class CCUProberFunction : public CCUProberVariable
{
public:
    /// The function, which is called with pArgument.
    /// @{
    CCUProberFunction(const char *pszPath, const char *pszName, long (*function)(void *),
                      const char *pszDescription = "", const char *pszUnit = "",
                      void *pArgument = nullptr)
        : CCUProberFunction(CU_PROBER_LONG, reinterpret_cast<void (*)()>(function), pszPath,
                            pszName, pszDescription, pszUnit, pArgument)
    {
    }
    CCUProberFunction(const char *pszPath, const char *pszName, double (*function)(void *),
                      const char *pszDescription = "", const char *pszUnit = "",
                      void *pArgument = nullptr)
        : CCUProberFunction(CU_PROBER_DOUBLE, reinterpret_cast<void (*)()>(function), pszPath,
                            pszName, pszDescription, pszUnit, pArgument)
    {
    }
    CCUProberFunction(const char *pszPath, const char *pszName, CCUString (*function)(void *),
                      const char *pszDescription = "", const char *pszUnit = "",
                      void *pArgument = nullptr)
        : CCUProberFunction(CU_PROBER_TEXT, reinterpret_cast<void (*)()>(function), pszPath,
                            pszName, pszDescription, pszUnit, pArgument)
    {
    }
    /// @}
    ~CCUProberFunction() { Unlist(); }

private:
    friend class CCUProberValues;

    CU_API CCUProberFunction(CUProberKind nKind, void (*function)(), const char *pszPath,
                             const char *pszName, const char *pszDescription, const char *pszUnit,
                             void *pArgument);

    void (*m_function)();  // of the kind's type
    void *m_pArgument;
};

/// The tree of this process. Variables are named by their numbers, since another thread may destroy
/// one at any moment; 0 is none. Any thread.
class CCUProber
{
public:
    /// The number of a variable, by its path and name: "\Debug\Timer\TimerDebug". nLength: of the
    /// text, where that is known. 0: there is none.
    CU_API static unsigned long Find(const char *pszPath, int nLength = -1);
    /// The number of the variable listed next after that one (0: of the first) within a subtree
    /// such as "\Debug" (null, "" or "\": all), in the order in which they were listed. 0: no more.
    CU_API static unsigned long GetNext(unsigned long nID, const char *pszSubtree = nullptr);
    /// What is known of a variable. False: it is gone.
    CU_API static bool Describe(unsigned long nID, CUProberEntry &entry);
    /// Its value: CU_PROBER_DONE or CU_PROBER_GONE.
    CU_API static CUProberResult Get(unsigned long nID, CUProberValue &value);
    /// Sets it to what the text says; null: to its default. Numbers are decimal, longs also
    /// hexadecimal after 0x, whose bits are taken; flags are true, on or 1, false, off or 0, in any
    /// case of letters; spaces around them do no harm. A text that is not understood changes
    /// nothing.
    CU_API static CUProberResult Set(unsigned long nID, const char *pszText);
    /// Writes a subtree (see GetNext) to the trace, a line for each variable.
    CU_API static void Dump(const char *pszSubtree = nullptr);
};

/// Tells a window of changes in a subtree (see CCUProber::GetNext): on whatever thread a value is
/// set, the window gets the message once, and no other before Next or IsTreeChanged was called. So
/// a value that changes all the time does not flood its thread. Both words of the message are 0.
/// What functions compute does not change by itself. Created, asked and destroyed by any one thread
/// at a time.
class CCUProberWatch
{
public:
    /// Begins. The window must outlive the object or be its last to get messages: what cannot be
    /// posted is tried again with the next change.
    CU_API CCUProberWatch(const char *pszSubtree, HWND hWnd, unsigned int uMessage);
    CU_API ~CCUProberWatch();
    CCUProberWatch(const CCUProberWatch &) = delete;
    CCUProberWatch &operator=(const CCUProberWatch &) = delete;

    /// Whether it works: at most 31 do in a process at a time.
    bool IsActive() const { return m_nBit != 0; }
    /// The number of a variable that was set since Next named it last; 0: no more. To be called
    /// until then.
    CU_API unsigned long Next();
    /// Whether variables have come or gone since the last call.
    CU_API bool IsTreeChanged();

private:
    friend class CCUProberList;

    CCUString m_sSubtree;
    HWND m_hWnd;
    unsigned int m_uMessage;
    LONG m_nBit;
    bool m_bPosted;
    bool m_bTreeChanged;
    unsigned long m_nLast;
    CCUProberWatch *m_pNext;
};
