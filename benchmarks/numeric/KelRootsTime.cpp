// Differences and sums of times.

#include <benchmarks/support/Measure.h>
#include <benchmarks/support/Texts.h>

#include <roots/numeric/BryTimeUtilities.h>
#include <roots/platform/Win32.h>

namespace {

Carousel<SYSTEMTIME> times() {
    return Carousel<SYSTEMTIME>([](std::uint32_t n) {
        SYSTEMTIME time = {2000, 1, 0, 1, 0, 0, 0, 0};
        BryTimeUtilities::addTime(time, static_cast<int>(n % 200000), time);
        return time;
    });
}

using Difference = int (*)(const SYSTEMTIME&, const SYSTEMTIME&, int&);

void difference(const char* work, Difference between) {
    measure(work, "KelRoots", {0}, [between](std::size_t) {
        return [first = times(), second = times(), between]() mutable {
            int difference = 0;
            between(first.next(), second.next(), difference);
            return difference;
        };
    });
}

const int registered = [] {
    measure("addTime", "KelRoots", {0}, [](std::size_t) {
        return [start = times(), hours = 0]() mutable {
            SYSTEMTIME result;
            BryTimeUtilities::addTime(start.next(), ++hours & 0xFFFF, result);
            return result;
        };
    });
    difference("difference of times in seconds", BryTimeUtilities::getDifferenceBetweenTimesInSeconds);
    difference("difference of times in days", BryTimeUtilities::getDifferenceBetweenTimesInDays);
    return 0;
}();

}  // namespace
