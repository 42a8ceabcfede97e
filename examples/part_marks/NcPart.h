// One part as its DSTV NC file describes it: the header (block ST) and the blocks that say how it is worked.
#pragma once

#include <roots/numeric/BryProfTypeDSTVValues.h>
#include <roots/text/BryString.h>

struct NcPart {
    BryString profile;  // as written, without the blanks around it
    BryString steel;
    int quantity = 0;
    double length = 0;          // mm; the first number where a saw length follows
    double weightPerMetre = 0;  // kg/m

    // The type by the profile code, special (SO) where that is none of DSTV's. In mm: H1 the height of the profile, B1
    // the width of the flange, TG and TS the thickness of flange and web, R1 the radius. Of a plate H1 is the width and
    // TG the thickness.
    BryProfTypeDSTVValues section;

    // All that makes the part what it is; parts are the same if these texts are equal. Comments, order, drawing, phase,
    // piece identification, quantity and the text lines are not in it. Numbers count as they are written (10.0 and
    // 10.00 differ), but for those that a tolerance rounds. Blanks do not count, but for those that keep two numbers or
    // two words apart; in marking texts (what follows the four numbers of a line in blocks SI and S0 to S9) a run of
    // blanks counts as one.
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
//
// tolerance: above 0, the lengths of the header and all numbers of the blocks, but for those in marking texts, count as
// the nearest of its multiples, in mm.
bool readPartText(const BryString& text, NcPart& part, NcError& error, double tolerance = 0);

// The text is in the ANSI code page, or in UTF-8 or UTF-16 where the file begins with the mark of one of these. A file
// above 32 MB is refused.
bool readPartFile(const BryString& path, NcPart& part, NcError& error, double tolerance = 0);
