// A Z-clipping setting: a mode and the limits between which something is shown.
#pragma once

#include <roots/Export.h>

// A plain record. Nothing is checked: the upper limit may lie below the lower one.
class KELROOTS_API BryZClipping {
public:
    // 32 bits. What a mode means is up to the code that clips; it gives the modes above 0 their names and converts.
    enum eZClip : int { eZClipInitial = 0 };

    // The limits that new settings start with. Anybody may change them; settings made before keep theirs.
    static double kClipUpperDefault;  // 20.0
    static double kClipLowerDefault;  // -20.0

    // Mode 0 and the limits that are the defaults at this moment.
    BryZClipping() = default;

    BryZClipping(eZClip mode, double upper, double lower) : m_eClip(mode), m_clipUpper(upper), m_clipLower(lower) {}

    // 1 when the modes and both limits are equal, to the last bit, else 0. A setting with a limit that is not a number
    // is unequal to every other, its own copies included.
    int operator==(const BryZClipping& other) const {
        return m_eClip == other.m_eClip && m_clipUpper == other.m_clipUpper && m_clipLower == other.m_clipLower;
    }
    int operator!=(const BryZClipping& other) const { return !(*this == other); }

    eZClip m_eClip = eZClipInitial;
    double m_clipUpper = kClipUpperDefault;
    double m_clipLower = kClipLowerDefault;
};
