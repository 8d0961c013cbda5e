#pragma once

// Signed 32-bit arithmetic that wraps, for values that nobody checks.

inline long WrapAdd(long a, long b)
{
    return static_cast<long>(static_cast<unsigned long>(a) + static_cast<unsigned long>(b));
}

inline long WrapSub(long a, long b)
{
    return static_cast<long>(static_cast<unsigned long>(a) - static_cast<unsigned long>(b));
}

inline long WrapMul(long a, long b)
{
    return static_cast<long>(static_cast<unsigned long>(a) * static_cast<unsigned long>(b));
}
