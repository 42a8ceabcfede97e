// An OLE string is handed out at its text; in front of it stand the byte count and, to keep the text aligned for
// vectors, a gap.
#include <roots/platform/WideText.h>
#include <roots/platform/Win32.h>

#include <climits>
#include <cstdlib>
#include <cstring>

namespace {

using ByteCount = std::uint32_t;

constexpr std::size_t kHead = 16;
constexpr std::size_t kMaxLength = (UINT_MAX - kHead) / sizeof(wchar_t) - 1;  // the byte count has 32 bits

char* headOf(BSTR text) { return reinterpret_cast<char*>(text) - kHead; }

// Zero-filled if there is no text to copy.
BSTR newString(const wchar_t* text, std::size_t length) {
    if (length > kMaxLength) return nullptr;
    const std::size_t size = length * sizeof(wchar_t);
    void* const block =
        text ? std::malloc(kHead + size + sizeof(wchar_t)) : std::calloc(kHead + size + sizeof(wchar_t), 1);
    if (!block) return nullptr;
    char* const at = static_cast<char*>(block) + kHead;
    const ByteCount count = static_cast<ByteCount>(size);
    std::memcpy(at - sizeof count, &count, sizeof count);
    BSTR const string = reinterpret_cast<BSTR>(at);
    if (text) wide::copy(string, text, length);
    string[length] = 0;
    return string;
}

}  // namespace

BSTR SysAllocString(const wchar_t* text) { return text ? newString(text, wide::length(text)) : nullptr; }

BSTR SysAllocStringLen(const wchar_t* text, UINT length) { return newString(text, length); }

UINT SysStringLen(BSTR text) {
    if (!text) return 0;
    ByteCount count;
    std::memcpy(&count, reinterpret_cast<const char*>(text) - sizeof count, sizeof count);
    return count / static_cast<UINT>(sizeof(wchar_t));
}

void SysFreeString(BSTR text) {
    if (text) std::free(headOf(text));
}
