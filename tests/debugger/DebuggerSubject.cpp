// Values for check_views.py to look at, at the call of lookHere(). Compiled without access control.
#include <roots/containers/BryArray.h>
#include <roots/text/BryString.h>

#include <cstdlib>
#include <cstring>

extern "C" void lookHere() {}

int main() {
    BryString mark(L"HEA200"), shared(mark), empty, special(L"a\"\n\x20AC\xD83D\xDE00\xD800"), converted(L"abc");
    converted.getStringA();
    BryArray<double> numbers, none;
    numbers.append(1.5);
    numbers.append(-2);
    BryArray<BryString> texts;
    texts.append(mark);
    texts.append(empty);
    BryArray<wchar_t> units;
    units.append(L'x');

    // What a debugger meets besides live values: never made, destroyed, overwritten.
    BryString& unmade = *static_cast<BryString*>(std::memset(std::malloc(sizeof(BryString)), 0x10, sizeof(BryString)));
    void* const unmadeBytes = std::memset(std::malloc(sizeof none), 0xCD, sizeof none);
    BryArray<double>& unmadeArray = *static_cast<BryArray<double>*>(unmadeBytes);
    BryString& destroyed = *new BryString(L"abc");
    destroyed.~BryString();
    BryArray<BryString>& astray = *new BryArray<BryString>(texts);
    astray.m_storage = reinterpret_cast<BryString*>(0x10);

    lookHere();
    return unmade.m_ansi == nullptr || unmadeArray.isEmpty() || destroyed.m_ansi != nullptr || astray.isEmpty();
}
