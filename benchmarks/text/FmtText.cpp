// Texts made of numbers, done by {fmt}, which makes 8-bit text and 16-bit text.

#include <benchmarks/support/Measure.h>
#include <benchmarks/support/Texts.h>

#include <fmt/format.h>
#include <fmt/xchar.h>

namespace {

constexpr char kLibrary[] = "fmt";

void conversion() {
    measure("format %s-%d-%08x", kLibrary, {0}, [](std::size_t) {
        return [name = std::string("HEA200"), numbers = integers()]() mutable {
            return fmt::format("{}-{}-{:08x}", name, numbers.next(), static_cast<unsigned>(numbers.next()));
        };
    });
    measure("integer to text", kLibrary, {0}, [](std::size_t) {
        return [numbers = integers()]() mutable { return fmt::format(u"{}", numbers.next()); };
    });
    measure("integer to 8-bit text of the peers", kLibrary, {0},
            [](std::size_t) { return [numbers = integers()]() mutable { return fmt::to_string(numbers.next()); }; });
    measure("double to text, digits", kLibrary, {6, 15}, [](std::size_t digits) {
        return [numbers = lengths(), n = static_cast<int>(digits)]() mutable {
            return fmt::format("{:.{}g}", numbers.next(), n);
        };
    });
}

const int registered = (conversion(), 0);

}  // namespace
