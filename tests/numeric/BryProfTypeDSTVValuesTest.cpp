#include <gtest/gtest.h>
#include <roots/numeric/BryProfTypeDSTVValues.h>

#include "tests/support/Printers.h"

namespace {

using Values = BryProfTypeDSTVValues;

// clang-format off
#define D(name) {&Values::get##name, &Values::set##name}
const struct { double (Values::*get)() const; Values& (Values::*set)(const double&); } kDimensions[] = {
    D(H1), D(H2), D(H3), D(B1), D(B2), D(B3), D(TS), D(TG), D(T1), D(C), D(R1), D(R2), D(R3), D(K), D(F1), D(F2), D(F3),
    D(ALPHA_S), D(ALPHA_G), D(EY), D(EZ), D(W1), D(W2), D(W3), D(A), D(G), D(GH), D(U)};

const struct { int type; BryString code; } kTypes[] = {
    {Values::eDSTVUndefined, L"SO"}, {Values::eDSTV_I, L"I"}, {Values::eDSTV_L, L"L"}, {Values::eDSTV_U, L"U"},
    {Values::eDSTV_B, L"B"}, {Values::eDSTV_RU, L"RU"}, {Values::eDSTV_RO, L"RO"}, {Values::eDSTV_M, L"M"},
    {Values::eDSTV_C, L"C"}, {Values::eDSTV_T, L"T"}, {Values::eDSTV_Z, L"Z"}, {Values::eDSTV_KA, L"KA"},
    {Values::eDSTV_KF, L"KF"}, {Values::eDSTV_KQ, L"KQ"}, {Values::eDSTV_CCS, L"CCS"}, {Values::eDSTV_PL1, L"PL1"},
    {Values::eDSTV_PL2, L"PL2"}, {Values::eDSTV_SO, L"SO"}, {Values::eDSTV_CSE, L"CSE"}, {18, L"SO"}};
// clang-format on

}  // namespace

TEST(BryProfTypeDSTVValues, KeepsEachDimensionAndTheType) {
    static_assert(sizeof(Values) == 29 * sizeof(double) && sizeof(Values::eDSTVType) == 4);
    Values values, assigned;
    EXPECT_EQ(values.getDSTVType(), Values::eDSTVUndefined);
    for (const auto& dimension : kDimensions) EXPECT_EQ((values.*dimension.get)(), 0.0);
    double next = 5.5;
    for (const auto& dimension : kDimensions) (values.*dimension.set)(next++);
    values.setDSTVType(Values::eDSTV_CCS).setTS(-1);
    assigned = values;
    EXPECT_EQ(assigned.getDSTVType(), Values::eDSTV_CCS);
    next = 5.5;
    for (const auto& dimension : kDimensions) {
        EXPECT_EQ((assigned.*dimension.get)(), dimension.get == &Values::getTS ? -1 : next) << next - 5.5;
        ++next;
    }
}

TEST(BryProfTypeDSTVValues, GivesTheCodeOfTheType) {
    int value = -1;
    for (const auto& row : kTypes) {
        EXPECT_EQ(row.type, value++);
        EXPECT_EQ(Values().setDSTVType(Values::eDSTVType(row.type)).getProftypeString(), row.code) << row.type;
    }
    EXPECT_EQ(Values().setDSTVType(Values::eDSTVType(-2)).getProftypeString(), L"SO");
}
