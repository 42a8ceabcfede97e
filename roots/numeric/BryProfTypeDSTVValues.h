// The cross-section of a steel profile in the terms of the DSTV standard.
#pragma once

#include <roots/Export.h>
#include <roots/text/BryString.h>

// The types of a profile: enumerator, value, DSTV profile code. Hosts may use this list and the next one too, with a
// macro of their own for X.
#define KELROOTS_DSTV_TYPES(X)  \
    X(eDSTVUndefined, -1, "SO") \
    X(eDSTV_I, 0, "I")          \
    X(eDSTV_L, 1, "L")          \
    X(eDSTV_U, 2, "U")          \
    X(eDSTV_B, 3, "B")          \
    X(eDSTV_RU, 4, "RU")        \
    X(eDSTV_RO, 5, "RO")        \
    X(eDSTV_M, 6, "M")          \
    X(eDSTV_C, 7, "C")          \
    X(eDSTV_T, 8, "T")          \
    X(eDSTV_Z, 9, "Z")          \
    X(eDSTV_KA, 10, "KA")       \
    X(eDSTV_KF, 11, "KF")       \
    X(eDSTV_KQ, 12, "KQ")       \
    X(eDSTV_CCS, 13, "CCS")     \
    X(eDSTV_PL1, 14, "PL1")     \
    X(eDSTV_PL2, 15, "PL2")     \
    X(eDSTV_SO, 16, "SO")       \
    X(eDSTV_CSE, 17, "CSE")

// The dimensions, in the order in which they are stored.
// clang-format off
#define KELROOTS_DSTV_DIMENSIONS(X)          \
    X(H1) X(H2) X(H3) X(B1) X(B2) X(B3)      \
    X(TS) X(TG) X(T1) X(C)                   \
    X(R1) X(R2) X(R3) X(K) X(F1) X(F2) X(F3) \
    X(ALPHA_S) X(ALPHA_G) X(EY) X(EZ)        \
    X(W1) X(W2) X(W3) X(A) X(G) X(GH) X(U)
// clang-format on

// A type and 28 dimensions. What a dimension means and its unit are the caller's: it is stored unchanged. Values are
// copied as a whole.
//
// Each dimension has a getter and a setter, getH1() and setH1(value) to getU() and setU(value):
//
//   double getH1() const;
//   BryProfTypeDSTVValues& setH1(const double& value);   // returns this object: values.setH1(200).setB1(100)
class KELROOTS_API BryProfTypeDSTVValues {
public:
    // eDSTV_I and so on, see above. 32 bits; any other number may be converted and is kept.
#define KELROOTS_DSTV_ENUMERATOR(name, value, code) name = (value),
    enum eDSTVType : int { KELROOTS_DSTV_TYPES(KELROOTS_DSTV_ENUMERATOR) };
#undef KELROOTS_DSTV_ENUMERATOR

    // eDSTVUndefined and 0.0 in every dimension.
    BryProfTypeDSTVValues() = default;

    eDSTVType getDSTVType() const { return m_type; }
    BryProfTypeDSTVValues& setDSTVType(const eDSTVType& type) {
        m_type = type;
        return *this;
    }

    // The profile code of the type; "SO" for types that the list above does not have.
    BryString getProftypeString() const;

#define KELROOTS_DSTV_ACCESS(name)                          \
    double get##name() const { return m_##name; }           \
    BryProfTypeDSTVValues& set##name(const double& value) { \
        m_##name = value;                                   \
        return *this;                                       \
    }
    KELROOTS_DSTV_DIMENSIONS(KELROOTS_DSTV_ACCESS)
#undef KELROOTS_DSTV_ACCESS

private:
    eDSTVType m_type = eDSTVUndefined;
#define KELROOTS_DSTV_MEMBER(name) double m_##name = 0;
    KELROOTS_DSTV_DIMENSIONS(KELROOTS_DSTV_MEMBER)
#undef KELROOTS_DSTV_MEMBER
};
