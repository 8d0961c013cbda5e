#pragma once

// The win32 thread model has no std::mutex, and GoogleTest uses it in one class only, which tests
// of its own need. Declaring the class as provided keeps the rest (on Win32's own primitives).
#define GTEST_HAS_NOTIFICATION_ 1
#if defined(__cplusplus)
namespace testing {
namespace internal {
class Notification
{
public:
    void Notify() {}
    void WaitForNotification() {}
};
}  // namespace internal
}  // namespace testing
#endif
