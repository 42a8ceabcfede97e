// Matching of whole texts with regular expressions.
#pragma once

#include <roots/Export.h>
#include <roots/containers/BryArray.h>
#include <roots/text/BryString.h>

// A regular expression in the syntax of ECMAScript, with case:
//
//   BryRegExWrapper section;
//   section.setRegularExpression(L"([A-Z]+) ?(\\d+)");
//   BryArray<BryString> parts;
//   section.match(L"HEA 200", parts);  // HEA 200, HEA and 200
//
// - Besides ECMAScript it has (?i) (?s) (?m) (?x), (?>...), (?<=...) (?<!...), (?P<name>...) (?P=name), (?R), \Q...\E,
//   [[:alpha:]] and the like, \A \Z and \< \>. The point takes line feeds too; ^ and $ match at them.
// - Characters are 16-bit units: the point takes one half of a surrogate pair. A pair that stands in the pattern as it
//   is takes the same pair; in brackets it is two characters. \u00E4 names a unit.
// - Which characters are letters, blanks and so on is told by the global C++ locale (std::locale::global) at the time.
//   In the classic one it is ASCII alone on Linux, while the C runtime of Windows adds the letters of other scripts.
// - A count in braces is taken modulo 2^32.
//
// The pattern is compiled for each match. The wrapper keeps nothing but its text.
class KELROOTS_API BryRegExWrapper {
public:
    // The empty pattern, which only the empty text matches.
    BryRegExWrapper();
    BryRegExWrapper(const BryRegExWrapper& other);
    BryRegExWrapper& operator=(const BryRegExWrapper& other);
    ~BryRegExWrapper();

    // The pattern is not looked at before match().
    void setRegularExpression(const BryString& expression);

    // Whether the whole of text matches. If it does, the match and then the groups, in the order of their opening
    // parentheses, are appended to results; those that are empty or took no part are left out, so that a position in
    // results is no group's number. What results has before stays. text may be an element of results.
    //
    // Nothing is thrown or reported. False, and results unchanged, is also the answer
    // - for a pattern that is refused: a parenthesis or bracket left open, nothing to repeat, one of * + ? in a comment
    //   (?#...), and so on, and where the match comes to a reference to a group that does not exist;
    // - where the stack of the thread might not suffice. A group that repeats takes some 250 bytes of it a time,
    //   parentheses in parentheses some 900, and 64 kB stay free: (a|b)* gets through some 30,000 characters with 8 MB,
    //   through some 2,500 with 1 MB. Besides, there must be 512 bytes for each of .^$|()[\*+?{ in the pattern;
    //   a stack that the host has made itself (makecontext) is taken to have 128 kB left;
    // - after 20 million steps and 16 a character of text, which take a tenth of a second to two: (a+)+b would try for
    //   ages to match 60 times a;
    // - where memory is out. Only here may some texts have been appended.
    bool match(const BryString& text,
               BryArray<BryString, BryArrayObjectCopyReallocator<BryString>, BryArrayMemoryController<BryString>>&
                   results) const;

private:
    BryString m_expression;
};
