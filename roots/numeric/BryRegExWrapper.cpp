#include "BryRegExWrapper.h"

#include <roots/platform/Win32.h>

#include "WideRegEx.h"

namespace {

// What a host is taken to have left of a stack that is not the one of the thread, or of one that is unknown.
constexpr std::uintptr_t kForeignStack = 0x20000;

std::uintptr_t lowestStack() {
    ULONG_PTR low = 0, high = 0;
    GetCurrentThreadStackLimits(&low, &high);
    const auto here = reinterpret_cast<ULONG_PTR>(__builtin_frame_address(0));
    return here > low && here < high ? low : here - kForeignStack;
}

constexpr std::uint64_t kMostSteps = 20000000, kMostStepsPerUnit = 16;

regex::Text unitsOf(const BryString& text) {
    return {text.getStringWAsUnsignedShort(), static_cast<std::size_t>(text.length())};
}

}  // namespace

BryRegExWrapper::BryRegExWrapper() = default;
BryRegExWrapper::BryRegExWrapper(const BryRegExWrapper& other) = default;
BryRegExWrapper& BryRegExWrapper::operator=(const BryRegExWrapper& other) = default;
BryRegExWrapper::~BryRegExWrapper() = default;

void BryRegExWrapper::setRegularExpression(const BryString& expression) { m_expression = expression; }

bool BryRegExWrapper::match(
    const BryString& text,
    BryArray<BryString, BryArrayObjectCopyReallocator<BryString>, BryArrayMemoryController<BryString>>& results) const {
    struct Found {
        const BryString text;  // a share of its own: the array may move its elements
        BryArray<BryString>& results;

        static void take(void* found, std::size_t start, std::size_t length) {
            Found& to = *static_cast<Found*>(found);
            to.results.append(to.text.mid(static_cast<int>(start), static_cast<int>(length)));
        }
    } found = {text, results};

    try {
        const regex::Text units = unitsOf(found.text);
        const regex::Bounds bounds = {lowestStack(), kMostSteps + kMostStepsPerUnit * units.length};
        return regex::matchWhole(unitsOf(m_expression), units, bounds, Found::take, &found);
    } catch (...) {  // whatever a pattern may raise
        return false;
    }
}
