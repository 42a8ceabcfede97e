#include "Options.h"

#include "FileAges.h"
#include "Settings.h"

#include <roots/numeric/BryRegExWrapper.h>

const char* const helpText =
    R"(Usage: part_marks [options] FOLDER|FILE...

Reads DSTV NC part files, finds the parts that are physically the same, gives
each distinct part one mark, and writes the list of marks to marks.csv.

Options
  -o, --output FILE|FOLDER  where the list goes; unless given, marks.csv in the
                            saved folder, or here where none is saved
      --type numeric|letter marks count 1, 2, 3 ... (the default) or A, B, C ...
      --start VALUE         the first number or letters of every prefix: 1 or A
                            unless given; 001 gives 001, 002 ...
      --prefix CODE=TEXT    what marks of the profile code CODE begin with; may
                            be given for several codes. Unless given it is what
                            was saved for the code, or the code: I1, I2, U1 ...
      --counter             the same marks, made by the library's incremental
                            counter, which the next two options need
      --exclude CHARS       digits and letters A to Z that marks lack: with IO,
                            or I,O, H is followed by J. Prefixes may have them,
                            --start must not. May be given several times
      --max N               at most N marks a prefix, from 1 to 2147483647; the
                            parts beyond have no mark
      --save                keeps the --type, --start, --prefix and --output
                            (a folder) of this command line for later ones that
                            do not give them. FOLDER|FILE may be left out
      --no-settings         as if nothing had been saved
      --match REGEX         only parts whose file name or profile is all of the
                            regular expression: --match "b1.*|IPE ?200"
      --tolerance MM        lengths, and the numbers of the blocks, are the same
                            if they round to the same multiple of MM
      --since TIME          also says which files are newer or older, by how
                            much: 2026-05-31 or "2026-05-31 14:30:05"
      --dialog              shows the progress in the library's dialog
      --no-subfolders       only the files of the folders themselves
      --log FILE            what is read, what is wrong with it and what comes
                            out of it, also into this file
      --timing              the log also says how many milliseconds reading,
                            marking and writing took; needs --log
      --modules FILE        the program and the libraries that it has loaded,
                            each with address, size, version and path
  -h, --help                this text
      --                    what follows are files and folders

Files
  From a folder, all files *.nc and *.nc1, in any letter case, its subfolders
  included. Files are read in the order of their names; one that is named twice
  counts once. The texts are in the ANSI code page, or in UTF-8 or UTF-16 where
  a file begins with the mark of one of these. On Windows name the folder: its
  command line does not expand *.nc. A name that Windows could not have (with
  \ * ? " < > |, a drive's colon, or a point or blank at its end) is not opened.

Same parts
  Two parts are the same if all that their files say is the same, but for
  comments, order, drawing, phase, piece identification, quantity and text
  lines.
  - Marking texts (block SI) count: a part that is stamped with its own name
    differs from one that is stamped with another.
  - Blanks do not count, unless they keep two numbers or two words apart: "1 0"
    is not "10". Within a marking text a run of blanks counts as one.
  - Numbers count as they are written: 10.0 and 10.00 differ.

Marks
  Each prefix counts for itself, in the order of the files. The list is in the
  order of the marks: by prefix, then as counted, so I2 stands before I10.
  Parts that --max leaves without a mark come last within their prefix; their
  mark is empty, and a line on the error stream counts them.

marks.csv
  UTF-8, commas, one line a part: mark, profile, code, steel, length (mm),
  quantity (of all its files), weight (kg: length x weight per metre x quantity,
  as the files have them) and the files, joined by "; ". It is written
  completely or not at all.

Log and modules
  Both files begin anew with each run. Each line of the log begins with the time
  of day, and all of it is on the disk at any time. A character beyond U+00FF is
  a ? in both. Neither may be a file that is read or written otherwise; if one
  cannot be written, a line on the error stream says so and the rest is done.

Settings
  What --save keeps is in the registry: below current user, the key
  Software\Ozmira\Norrab\2009\Data\PartMarks has Type, Start and, in its key
  Prefixes, a value for each profile code; the folder is the value DataPath of
  Software\Ozmira\Norrab\2009\Environment, which the local machine may have for
  all users. A saved start counts only for the type it was saved with.

Exit status
  0  all done
  1  done, but some files or folders could not be read or are no part files;
     each is named on the error stream as FILE:LINE: REASON. Or --max has left
     parts without a mark, the log or the list of modules is not complete, or
     Ctrl-C has canceled the reading, and the list is of what was read until then
  2  wrong usage, no part was read, or the list could not be written (marks.csv
     is then as it was); or this program's own text could not be written
)";

namespace {

class Parser {
public:
    Parser(const std::vector<BryString>& arguments, Options& options, BryString& error)
        : m_arguments(arguments), m_options(options), m_error(error) {}

    bool parse() {
        for (m_next = 0; m_next < m_arguments.size() && !m_options.help;)
            if (!takeArgument(m_arguments[m_next++])) return false;
        if (m_options.help) return true;
        if (m_options.withTimes && m_options.log.isEmpty()) return fail(L"--timing needs --log");
        if (m_options.withSettings && !addSavedOptions(m_options, m_error)) return false;
        if (!checkMarks()) return false;
        if (m_options.save) return checkSave();
        return !m_options.inputs.empty() || fail(L"no folder and no file is given");
    }

private:
    bool takeArgument(const BryString& argument) {
        if (m_onlyInputs || argument[0] != L'-' || argument == L"-") return takeInput(argument);
        BryString name = argument;
        const int equals = argument.left(2) == L"--" ? argument.find(L"=") : -1;
        m_hasValue = equals >= 0;
        if (m_hasValue) {
            name = argument.left(equals);
            m_value = argument.mid(equals + 1);
        }
        return takeOption(name);
    }

    bool takeInput(const BryString& argument) {
        if (argument.isEmpty()) return fail(L"a file name is empty");
        m_options.inputs.push_back(argument);
        return true;
    }

    bool takeOption(const BryString& name) {
        if (name == L"--output" || name == L"-o") return takeValue(name) && takeOutput();
        if (name == L"--type") return takeValue(name) && takeType();
        if (name == L"--start") return takeValue(name) && takeStart();
        if (name == L"--prefix") return takeValue(name) && takePrefix();
        if (name == L"--exclude") return takeValue(name) && takeExclude();
        if (name == L"--max") return takeValue(name) && takeMax();
        if (name == L"--match") return takeValue(name) && takeMatch();
        if (name == L"--tolerance") return takeValue(name) && takeTolerance();
        if (name == L"--since") return takeValue(name) && takeSince();
        if (name == L"--log") return takeValue(name) && takeFile(name, m_options.log);
        if (name == L"--modules") return takeValue(name) && takeFile(name, m_options.modules);
        if (m_hasValue) return fail(BryString(L"unknown option, or one that takes no value: ") + name);
        if (name == L"--no-subfolders") return takeFlag(m_options.withSubfolders, false);
        if (name == L"--dialog") return takeFlag(m_options.withDialog, true);
        if (name == L"--save") return takeFlag(m_options.save, true);
        if (name == L"--no-settings") return takeFlag(m_options.withSettings, false);
        if (name == L"--timing") return takeFlag(m_options.withTimes, true);
        if (name == L"--counter") return takeFlag(m_options.marks.withCounter, true);
        if (name == L"--help" || name == L"-h") return takeFlag(m_options.help, true);
        if (name == L"--") return takeFlag(m_onlyInputs, true);
        return fail(BryString(L"unknown option: ") + name);
    }

    static bool takeFlag(bool& flag, bool value) {
        flag = value;
        return true;
    }

    // The text behind "=" or else the next argument.
    bool takeValue(const BryString& name) {
        if (m_hasValue) return true;
        if (m_next == m_arguments.size()) return fail(name + L" needs a value");
        m_value = m_arguments[m_next++];
        return true;
    }

    bool takeOutput() {
        m_options.output = m_value;
        m_options.hasOutput = true;
        return !m_value.isEmpty() || fail(L"--output needs a file or a folder");
    }

    // The library cuts longer names of logs.
    bool takeFile(const BryString& name, BryString& file) {
        file = m_value;
        if (m_value.isEmpty()) return fail(name + L" needs a file");
        return m_value.length() <= 255 || fail(name + L": the name has more than 255 characters");
    }

    bool takeType() {
        m_options.marks.letters = m_value == L"letter";
        m_options.hasType = true;
        return m_options.marks.letters || m_value == L"numeric" || fail(L"--type is numeric or letter");
    }

    bool takeStart() {
        m_options.marks.start = m_value;
        m_options.hasStart = true;
        return !m_value.isEmpty() || fail(L"--start needs a number or letters");
    }

    bool takePrefix() {
        const int equals = m_value.find(L"=");
        if (equals < 1) return fail(L"--prefix needs a profile code and a text: --prefix I=BEAM");
        m_options.marks.prefix[m_value.left(equals)] = m_value.mid(equals + 1);
        return true;
    }

    // A list is a set of characters all the same.
    bool takeExclude() {
        BryArray<BryString> tokens;
        BryString::getTokens(m_value, tokens, L", ");
        BryString characters;
        for (long i = 0; i < tokens.length(); ++i) characters += tokens[i];
        for (const wchar_t* c = characters.getStringW(); *c; ++c)
            if (!(*c >= L'0' && *c <= L'9') && !(*c >= L'A' && *c <= L'Z'))
                return fail(BryString(L"--exclude ") + m_value + L": only digits and letters A to Z can be excluded");
        m_options.marks.excluded += characters;
        return !characters.isEmpty() || fail(L"--exclude needs digits or letters: --exclude IO");
    }

    bool takeMax() {
        m_value.TrimLeft(L"0");
        m_options.marks.limit = m_value.toInteger();
        const bool isTaken =
            m_options.marks.limit > 0 && m_value == BryString::integerToString(m_options.marks.limit, 10);
        return isTaken || fail(L"--max needs a whole number from 1 to 2147483647");
    }

    // The empty text is matched by what stands before the bar, if what stands behind it is an expression.
    bool takeMatch() {
        m_options.match = m_value;
        return (!m_value.isEmpty() && matches(BryString(L"|") + m_value, L"")) ||
               fail(BryString(L"--match ") + m_value + L": no regular expression");
    }

    bool takeTolerance() {
        m_options.tolerance = m_value.toDouble();
        return (matches(L"[0-9]+(\\.[0-9]+)?", m_value) && m_options.tolerance >= 0.001 &&
                m_options.tolerance <= 1000) ||
               fail(L"--tolerance needs a length in mm, from 0.001 to 1000");
    }

    bool takeSince() {
        m_options.hasSince = true;
        m_options.sinceText = m_value;
        return parseTime(m_value, m_options.since) ||
               fail(L"--since needs a time: 2026-05-31 or \"2026-05-31 14:30:05\"");
    }

    bool checkMarks() {
        const MarkSettings& marks = m_options.marks;
        if (!marks.withCounter && !marks.excluded.isEmpty()) return fail(L"--exclude needs --counter");
        if (!marks.withCounter && marks.limit >= 0) return fail(L"--max needs --counter");
        if (!marks.leavesSymbols())
            return fail(marks.letters ? L"--exclude leaves no letter" : L"--exclude leaves no digit from 1 to 9");
        const BryString start = BryString(m_options.hasStart ? L"--start " : L"the saved start ") + marks.start;
        if (!marks.isStartValid())
            return fail(start + (marks.letters ? L": letters are A to Z" : L": a number has digits only"));
        return !marks.hasExcluded(marks.start) || fail(start + L": --exclude leaves out one of its characters");
    }

    bool checkSave() {
        return m_options.hasOutput || m_options.hasType || m_options.hasStart || !m_options.marks.prefix.empty() ||
               fail(L"--save needs --output, --type, --start or --prefix");
    }

    bool fail(const BryString& error) {
        m_error = error;
        return false;
    }

    const std::vector<BryString>& m_arguments;
    Options& m_options;
    BryString& m_error;
    std::size_t m_next = 0;
    bool m_onlyInputs = false;
    bool m_hasValue = false;
    BryString m_value;
};

}  // namespace

bool matches(const BryString& expression, const BryString& text) {
    BryRegExWrapper wrapper;
    BryArray<BryString, BryArrayObjectCopyReallocator<BryString>, BryArrayMemoryController<BryString>> texts;
    wrapper.setRegularExpression(expression);
    return wrapper.match(text, texts);
}

bool parseOptions(const std::vector<BryString>& arguments, Options& options, BryString& error) {
    return Parser(arguments, options, error).parse();
}
