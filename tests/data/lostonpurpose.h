#pragma once

#if defined(__SANITIZE_ADDRESS__)
extern "C" void __lsan_disable();
extern "C" void __lsan_enable();
#endif

/// While it lives, what this thread allocates and loses is not reported as a leak.
class LostOnPurpose
{
public:
#if defined(__SANITIZE_ADDRESS__)
    LostOnPurpose()
    {
        __lsan_disable();
    }
    ~LostOnPurpose()
    {
        __lsan_enable();
    }
#else
    LostOnPurpose()
    {
    }
    ~LostOnPurpose()
    {
    }
#endif
    LostOnPurpose(const LostOnPurpose &) = delete;
    LostOnPurpose &operator=(const LostOnPurpose &) = delete;
};
