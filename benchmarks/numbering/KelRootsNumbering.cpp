// Part numbers handed out one after another, by KelRoots.

#include <benchmarks/support/Measure.h>

#include <roots/numbering/BryNumberCreator.h>

namespace {

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
    return 0;
}();

}  // namespace
