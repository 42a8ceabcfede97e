// One part as its DSTV NC file describes it: the header (block ST) and the blocks that say how it is worked.
#pragma once

#include <roots/text/BryString.h>

struct NcPart {
    BryString profile;  // as written, without the blanks around it
    BryString code;     // the profile code: I, U, L, B, ...
    BryString steel;
    int quantity = 0;
    double length = 0;          // mm; the first number where a saw length follows
    double height = 0;          // mm, of the profile; the width of a plate
    double thickness = 0;       // mm, of the flange; the thickness of a plate
    double weightPerMetre = 0;  // kg/m

    // All that makes the part what it is; parts are the same if these texts are equal. Comments, order, drawing, phase,
    // piece identification, quantity and the text lines are not in it. Numbers count as they are written (10.0 and
    // 10.00 differ). Blanks do not count, but for those that keep two numbers or two words apart; in marking texts
    // (what follows the four numbers of a line in blocks SI and S0 to S9) a run of blanks counts as one.
    BryString content;
};

struct NcError {
    int line = 0;  // from 1; 0 where the file as a whole is meant
    BryString reason;
};

// Lines end with LF, CR LF or, in a text without any LF, CR; a Ctrl-Z ends the text. The header must go on at least to
// the weight per metre; its texts may be empty, but for profile and profile code. Where the header has numbers
// or its last texts, the known code of a block ends it; elsewhere such a word is a text. The blocks are not
// interpreted, but each line must be text, and the file must end with EN.
bool readPartText(const BryString& text, NcPart& part, NcError& error);

// The text is in the ANSI code page, or in UTF-8 or UTF-16 where the file begins with the mark of one of these. A file
// above 32 MB is refused.
bool readPartFile(const BryString& path, NcPart& part, NcError& error);
