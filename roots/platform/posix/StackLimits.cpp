#include <pthread.h>
#include <roots/platform/Win32.h>

namespace {

struct Limits {
    ULONG_PTR low = 0, high = 0;
};

Limits limitsOfThisThread() {
    Limits limits;
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) return limits;
    void* low = nullptr;
    std::size_t size = 0, guard = 0;
    pthread_attr_getstack(&attributes, &low, &size);
    pthread_attr_getguardsize(&attributes, &guard);
    pthread_attr_destroy(&attributes);
    limits.low = reinterpret_cast<ULONG_PTR>(low) + guard;  // where the guard is not a part of it, all the better
    limits.high = reinterpret_cast<ULONG_PTR>(low) + size;
    return limits;
}

}  // namespace

// Asked once a thread: for the first one the C library reads a file.
void GetCurrentThreadStackLimits(ULONG_PTR* low, ULONG_PTR* high) {
    static thread_local const Limits limits = limitsOfThisThread();
    *low = limits.low;
    *high = limits.high;
}
