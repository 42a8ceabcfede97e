// What a test may know and decide about memory: which allocation fails, how many blocks are alive, and what a block
// holds at the moment it is released. Linking FailNthAllocation.cpp replaces operator new and delete of the whole
// process. On Windows each DLL, the C++ runtime's and the library's, keeps its own, so that blocks obtained in one and
// released in another are counted wrongly: tests that need any of this say SKIP_UNLESS_LIBRARY_MEMORY_IS_SEEN().
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <new>

#include "Platform.h"

#define SKIP_UNLESS_LIBRARY_MEMORY_IS_SEEN() \
    if (onWindows) GTEST_SKIP() << "each DLL has an operator new of its own, which the test cannot replace"

// While it lives, the nth operator new from now on (counted from 1) throws std::bad_alloc; the others succeed.
class FailNthAllocation {
public:
    explicit FailNthAllocation(long nth);
    ~FailNthAllocation();
    FailNthAllocation(const FailNthAllocation&) = delete;
    FailNthAllocation& operator=(const FailNthAllocation&) = delete;

    // Whether that allocation came and failed.
    bool happened() const;
};

// Blocks from operator new that are not released yet.
long liveAllocations();

// While it lives, watcher sees every block right before it is released. The size may exceed what was asked for; fresh
// blocks are filled with 0xCD, so nothing of earlier owners is in the rest. One at a time.
class WatchReleases {
public:
    using Watcher = std::function<void(const void* block, std::size_t size)>;
    explicit WatchReleases(Watcher watcher);
    ~WatchReleases();
    WatchReleases(const WatchReleases&) = delete;
    WatchReleases& operator=(const WatchReleases&) = delete;
};

// Runs action with its first allocation failing, then with its second, and so on until none fails any more; check runs
// after each failed one. Returns how many failed.
template <class Action, class Check>
long failEachAllocation(Action action, Check check) {
    for (long nth = 1;; ++nth) {
        bool failed = false;
        {
            FailNthAllocation failing(nth);
            try {
                action();
            } catch (const std::bad_alloc&) {
                failed = true;
            }
            if (!failing.happened()) return nth - 1;
        }
        EXPECT_TRUE(failed) << "the failure of allocation " << nth << " was swallowed";
        SCOPED_TRACE(nth);
        check();
    }
}
