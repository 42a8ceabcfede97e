// Whole matches with a pattern compiled for each, by KelRoots.

#include <benchmarks/numeric/RegExInputs.h>
#include <benchmarks/support/Measure.h>

#include <roots/numeric/BryRegExWrapper.h>

namespace {

const int registered = [] {
    for (const RegExWork& work : regExWorks()) {
        measure(work.name, "KelRoots", {work.text.size()}, [work](std::size_t) {
            BryRegExWrapper expression;
            expression.setRegularExpression(work.pattern.c_str());
            return [expression, text = BryString(work.text.c_str())]() mutable {
                BryArray<BryString> results;
                expression.match(text, results);
                return results;
            };
        });
    }
    return 0;
}();

}  // namespace
