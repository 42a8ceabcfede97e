// Takes the first line for a pattern and the rest for the text, in units of 8 bits. What must hold: whatever the
// pattern, nothing overflows, hangs or is read past its end, and what is found lies in the text and is not empty.
#include <roots/numeric/WideRegEx.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::uint8_t* const line = std::find(bytes, bytes + size, '\n');
    const std::vector<regex::Unit> pattern(bytes, line), text(std::min(line + 1, bytes + size), bytes + size);
    std::size_t length = text.size();
    const auto take = [](void* whole, std::size_t start, std::size_t count) {
        const std::size_t length = *static_cast<std::size_t*>(whole);
        if (count == 0 || start > length || count > length - start) std::abort();
    };
    const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    try {
        regex::matchWhole({pattern.data(), pattern.size()}, {text.data(), text.size()}, {here - 0x400000, 20000}, take,
                          &length);
    } catch (const std::exception&) {  // refused
    }
    return 0;
}
