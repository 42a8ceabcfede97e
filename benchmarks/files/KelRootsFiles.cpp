// Log lines and destruction reports, by KelRoots.

#include <benchmarks/support/Measure.h>

#include <roots/files/BryDebugInterfaces.h>
#include <roots/files/BryLogfile.h>

namespace {

constexpr char kLibrary[] = "KelRoots";

// A report on the last of `size` living objects, whose record is made anew each time.
auto destruction(std::size_t size) {
    BryDebugInterfaces::clearAllDebugInfo(nullptr);
    BryString name = L"BryBeam";
    auto at = [](std::size_t i) { return reinterpret_cast<void*>(i * 64); };
    for (std::size_t i = 1; i < size; ++i) BryDebugInterfaces::objectConstructed(name, at(i));
    return [=, activity = 0]() mutable {
        BryDebugInterfaces::setCurrentContextInitiator(&activity);
        BryDebugInterfaces::objectConstructed(name, at(size));
        BryDebugInterfaces::contextInitiatorEnd(&activity);
        BryDebugInterfaces::objectDestroied(name, at(size));
        BryDebugInterfaces::clearAllDebugInfo(&activity);
        return BryDebugInterfaces::entriesNumber();
    };
}

const int registered = [] {
    measure("log line", kLibrary, {100}, [](std::size_t size) {
        BryLogfile::setLogStatus(1);
        BryLogfile log(L"/tmp/kelroots-benchmark.log");
        log.reset();
        return [log, line = BryString(std::string(size, 'x').c_str())]() mutable { return log.appendWithSave(line); };
    });
    measure("construction and destruction reports, living objects", kLibrary, {100, 10000}, destruction);
    return 0;
}();

}  // namespace
