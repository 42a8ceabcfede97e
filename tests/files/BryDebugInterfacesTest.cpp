#include <gtest/gtest.h>
#include <roots/files/BryDebugInterfaces.h>
#include <roots/files/BryWinMessage.h>

#include "tests/support/Printers.h"

namespace {

using Tracker = BryDebugInterfaces;

void* at(int address) { return reinterpret_cast<void*>(static_cast<std::intptr_t>(address)); }

}  // namespace

TEST(BryDebugInterfacesTest, ReportsTheObjectsOfAnActivityThatAreStillAlive) {
    const auto make = Tracker::objectConstructed, destroy = Tracker::objectDestroied;
    const auto begin = Tracker::setCurrentContextInitiator, end = Tracker::contextInitiatorEnd;
    Tracker::clearAllDebugInfo(nullptr);
    make(L"Beam", at(0x10)), begin(at(1)), make(L"Bolt", at(0x20)), make(L"Bolt", at(0x20));
    begin(at(2)), make(L"Plate", at(0x30)), end(at(1)), make(L"Weld", at(0x40));  // the end of what is not on top
    end(at(2)), end(at(1)), end(at(1)), make(L"Nut", at(0xC0FFEE));               // and of what has ended
    destroy(L"Bolt", at(0x20)), destroy(L"Bolts", at(0x20)), destroy(L"Beam", at(0x11));  // the first Bolt only
    EXPECT_EQ(Tracker::entriesNumber(), 6);

    const BryString heading = L"\n Coclasses not destructed:",
                    rest = L"\n 3 [3] 00000030 Plate\n 4 [4] 00000040 Weld\n 5 [5] 00c0ffee Nut";
    EXPECT_EQ(Tracker::getResults(nullptr), heading + L"\n 0 [0] 00000010 Beam\n 2 [2] 00000020 Bolt" + rest);
    EXPECT_EQ(Tracker::getResults(at(1)), heading + L"\n 2 [1] 00000020 Bolt");
    EXPECT_EQ(Tracker::getResults(at(2)), heading + L"\n 3 [0] 00000030 Plate\n 4 [1] 00000040 Weld");
    destroy(L"Bolt", at(0x20));
    EXPECT_EQ(Tracker::getResults(at(1)), L"");
    Tracker::clearAllDebugInfo(at(1));
    Tracker::clearAllDebugInfo(at(3));
    EXPECT_EQ(Tracker::entriesNumber(), 4);
    EXPECT_EQ(Tracker::getResults(at(2)), heading + L"\n 1 [0] 00000030 Plate\n 2 [1] 00000040 Weld");

    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    Tracker::showResults(nullptr);
    BryOutputDebugString(L"text");
    EXPECT_EQ(testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr(), "") << "none of its own";
    Tracker::clearAllDebugInfo(nullptr);
    EXPECT_EQ(Tracker::entriesNumber(), 0);
}
