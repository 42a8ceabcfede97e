#include <gtest/gtest.h>
#include <roots/files/BryDebugInterfaces.h>
#include <roots/files/BryWinMessage.h>

#include "tests/support/Printers.h"

namespace {

using Tracker = BryDebugInterfaces;

void* at(int address) { return reinterpret_cast<void*>(static_cast<std::intptr_t>(address)); }

class BryDebugInterfacesTest : public testing::Test {
protected:
    BryDebugInterfacesTest() { Tracker::clearAllDebugInfo(nullptr); }
    ~BryDebugInterfacesTest() override { Tracker::clearAllDebugInfo(nullptr); }
};

}  // namespace

TEST_F(BryDebugInterfacesTest, ReportsTheObjectsOfAnActivityThatAreStillAlive) {
    Tracker::objectConstructed(L"Beam", at(0x10));
    Tracker::setCurrentContextInitiator(at(1));
    Tracker::objectConstructed(L"Bolt", at(0x20));
    Tracker::objectConstructed(L"Bolt", at(0x20));
    Tracker::setCurrentContextInitiator(at(2));
    Tracker::objectConstructed(L"Plate", at(0x30));
    Tracker::contextInitiatorEnd(at(1));  // not on top
    Tracker::objectConstructed(L"Weld", at(0x40));
    Tracker::contextInitiatorEnd(at(2));
    Tracker::contextInitiatorEnd(at(1));
    Tracker::contextInitiatorEnd(at(1));  // none left
    Tracker::objectConstructed(L"Nut", at(0xC0FFEE));
    Tracker::objectDestroied(L"Bolt", at(0x20));   // the first of the two
    Tracker::objectDestroied(L"Bolts", at(0x20));  // another name
    Tracker::objectDestroied(L"Beam", at(0x11));
    EXPECT_EQ(Tracker::entriesNumber(), 6);

    const BryString heading = L"\n Coclasses not destructed:", ofOne = heading + L"\n 2 [1] 00000020 Bolt",
                    ofTwo = heading + L"\n 3 [0] 00000030 Plate\n 4 [1] 00000040 Weld";
    EXPECT_EQ(Tracker::getResults(at(1)), ofOne);
    EXPECT_EQ(Tracker::getResults(at(2)), ofTwo);
    EXPECT_EQ(Tracker::getResults(nullptr), heading +
                                                L"\n 0 [0] 00000010 Beam\n 2 [2] 00000020 Bolt"
                                                L"\n 3 [3] 00000030 Plate\n 4 [4] 00000040 Weld"
                                                L"\n 5 [5] 00c0ffee Nut");
    Tracker::objectDestroied(L"Bolt", at(0x20));
    EXPECT_EQ(Tracker::getResults(at(1)), L"");
    Tracker::clearAllDebugInfo(at(1));
    EXPECT_EQ(Tracker::entriesNumber(), 4);
    EXPECT_EQ(Tracker::getResults(at(2)), heading + L"\n 1 [0] 00000030 Plate\n 2 [1] 00000040 Weld");
    Tracker::clearAllDebugInfo(at(3));
    EXPECT_EQ(Tracker::entriesNumber(), 4);
    Tracker::clearAllDebugInfo(nullptr);
    EXPECT_EQ(Tracker::entriesNumber(), 0);
}

TEST_F(BryDebugInterfacesTest, ProducesNoOutputOfItsOwn) {
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    Tracker::objectConstructed(L"Beam", at(0x10));
    Tracker::showResults(nullptr);
    BryOutputDebugString(L"text");
    EXPECT_EQ(testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr(), "");
}
