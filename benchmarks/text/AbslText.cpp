// Texts split into tokens, done by Abseil, which splits 8-bit text.

#include <benchmarks/support/Measure.h>
#include <benchmarks/support/Texts.h>

#include <absl/strings/str_split.h>

namespace {

const int registered = [] {
    measure("getTokens", "Abseil", {1000, 1000000}, [](std::size_t count) {
        return [text = narrow(sentence(count))] {
            return std::vector<std::string>(absl::StrSplit(text, ' ', absl::SkipEmpty()));
        };
    });
    return 0;
}();

}  // namespace
