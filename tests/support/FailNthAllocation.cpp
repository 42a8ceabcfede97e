#include "FailNthAllocation.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

std::atomic<long> g_live{0};
std::atomic<long> g_untilFailure{0};  // 0: no failure is due
std::atomic<bool> g_happened{false};
std::atomic<bool> g_watching{false};
WatchReleases::Watcher g_watcher;

std::size_t blockSize(void* block) {
#ifdef _WIN32
    return _msize(block);
#else
    return malloc_usable_size(block);
#endif
}

void* allocate(std::size_t size) noexcept {
    if (g_untilFailure > 0 && --g_untilFailure == 0) {
        g_happened = true;
        return nullptr;
    }
    void* block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) return nullptr;
    std::memset(block, 0xCD, blockSize(block));
    ++g_live;
    return block;
}

void release(void* block) noexcept {
    if (block == nullptr) return;
    // The watcher may allocate and release on its own account; it is not asked about that.
    if (g_watching.exchange(false)) {
        g_watcher(block, blockSize(block));
        g_watching = true;
    }
    --g_live;
    std::free(block);
}

}  // namespace

FailNthAllocation::FailNthAllocation(long nth) {
    g_happened = false;
    g_untilFailure = nth;
}

FailNthAllocation::~FailNthAllocation() { g_untilFailure = 0; }

bool FailNthAllocation::happened() const { return g_happened; }

long liveAllocations() {
    // The test framework's list of traces grows here, not while somebody counts.
    SCOPED_TRACE(1);
    SCOPED_TRACE(2);
    SCOPED_TRACE(3);
    return g_live;
}

WatchReleases::WatchReleases(Watcher watcher) {
    g_watcher = std::move(watcher);
    g_watching = true;
}

WatchReleases::~WatchReleases() {
    g_watching = false;
    g_watcher = nullptr;
}

void* operator new(std::size_t size) {
    void* block = allocate(size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, std::size_t) noexcept { release(block); }
void operator delete[](void* block, std::size_t) noexcept { release(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { release(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { release(block); }
