// Part numbers and counter values handed out one after another, by KelRoots.

#include <benchmarks/support/Measure.h>

#include <roots/numbering/BryIncrementalCounter.h>
#include <roots/numbering/BryNumberCreator.h>

namespace {

void count(const char* work, wchar_t const* start, wchar_t const* first, int range, wchar_t const* excluded) {
    StructIncrementalCounter data;
    data.startValue = start;
    data.initString = first;
    data.charRange = range;
    data.excludedChars = excluded;
    data.maxValues = 9999;
    measure(work, "KelRoots", {0}, [data](std::size_t) {
        BryIncrementalCounter counter;
        counter.setDataFrom(data);
        return [counter]() mutable {
            if (counter.increment() == BryIncrementalCounter::eMaxReached) counter.reset();
            return counter.getCounterString();
        };
    });
}

const int registered = [] {
    measure("getNextNumber", "KelRoots", {0}, [](std::size_t) {
        StructNumberingDataRange digits;
        digits.firstSymbol = L"0";
        digits.symbolCount = 10;
        digits.defaultStart = L"1";
        BryNumberCreator creator;
        creator.overrideDataRange(digits, BryNumberCreator::eNumberingNumeric);
        creator.setNumberingPrefix(L"HEA200-");
        creator.setNumberingSufix(L"/A");
        return [creator]() mutable { return creator.getNextNumber(); };
    });
    count("increment, digits", L"0001", L"0", 10, L"");
    count("increment, letters", L"AAAA", L"A", 26, L"IO");
    return 0;
}();

}  // namespace
