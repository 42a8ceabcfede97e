#include "Options.h"

#include "KeyName.h"

#include <algorithm>

const char* const helpText =
    R"(Usage: norrab-registry get KEY [NAME]
       norrab-registry set KEY NAME VALUE [--type TYPE]
       norrab-registry list KEY [--recursive]
       norrab-registry delete KEY [NAME]
       norrab-registry import FILE...
       norrab-registry export KEY [FILE] [--utf8]

Reads and writes the registry: that of Windows there, elsewhere the one of
Norrab's programs, in the file KELROOTS_REGISTRY.

Commands
  get      writes a value, without NAME the default value: a text as it is, the
           texts of a multi line by line, numbers in decimal digits, else bytes
  set      stores a value; the key is made where it is missing
  list     writes the values of a key and the names of the keys in it, or with
           --recursive all that is in these too
  delete   deletes a value, or without NAME the key with all that is in it
  import   does what registry files say. All files are read before the first
           change is made: one that is damaged changes nothing
  export   writes a key with all that is in it as a registry file, or without
           FILE to the output, in UTF-8

Options
      --type TYPE    what VALUE is: string (the default), expand (a text with
                     %VARIABLES%), dword or qword (a number of 32 or 64 bits in
                     decimal digits, or hexadecimal ones behind 0x), multi (texts,
                     each an argument of its own) or hex (bytes: 01,02 or 0102)
  -r, --recursive    list the keys in KEY with all that is in them
      --utf8         export a file in UTF-8, not in UTF-16, which is what the
                     registry editor of Windows reads
  -h, --help         this text
      --             what follows are no options: set KEY NAME -- -1

Names
  KEY begins with HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER or HKEY_CLASSES_ROOT, for
  short HKLM, HKCU or HKCR, and has backslashes, which most shells want in
  quotes: 'HKCU\Software\Ozmira'. Names are found in any letter case. The
  default value of a key has the empty NAME, which is written "".

Registry files
  What registry editors write: "Windows Registry Editor Version 5.00" in UTF-16,
  or in UTF-8, and REGEDIT4 in the ANSI code page. FILE.reg may also delete:
  [-KEY] deletes a key, "NAME"=- a value.

Exit status
  0  all done
  1  a key or value is not there, or the registry or a file refuses; what is
     wrong with a file is on the error stream as FILE:LINE: REASON
  2  wrong usage
)";

namespace {

const struct {
    DWORD type;
    const wchar_t* word;
} types[] = {
    {REG_SZ, L"string"},   {REG_EXPAND_SZ, L"expand"}, {REG_DWORD, L"dword"},
    {REG_QWORD, L"qword"}, {REG_MULTI_SZ, L"multi"},   {REG_BINARY, L"hex"},
};

int digitOf(wchar_t c) {
    if (c >= L'0' && c <= L'9') return c - L'0';
    const int letter = (c | 0x20) - L'a';
    return letter >= 0 && letter < 6 ? letter + 10 : 36;
}

// The number of up to so many bytes, the low one first.
bool appendNumber(BryString text, std::size_t bytes, std::vector<BYTE>& data) {
    const bool isHex = BryString::compareNoCase(text, L"0x", 2) == 0;
    if (isHex) text >>= 2;
    const std::uint64_t radix = isHex ? 16 : 10, highest = UINT64_MAX >> (64 - 8 * bytes);
    std::uint64_t number = 0;
    for (const wchar_t* c = text.getStringW(); *c != 0; ++c) {
        const auto digit = static_cast<std::uint64_t>(digitOf(*c));
        if (digit >= radix || number > (highest - digit) / radix) return false;
        number = number * radix + digit;
    }
    for (std::size_t i = 0; i < bytes; ++i) data.push_back(static_cast<BYTE>(number >> (8 * i)));
    return !text.isEmpty();
}

bool appendBytes(const BryString& text, std::vector<BYTE>& data) {
    for (const wchar_t* c = text.getStringW(); *c != 0;) {
        const int high = digitOf(c[0]), low = high < 16 ? digitOf(c[1]) : 36;
        if (low >= 16) return false;
        data.push_back(static_cast<BYTE>(high << 4 | low));
        c += 2;
        if (*c == L',' && c[1] != 0) ++c;
    }
    return true;
}

class Parser {
public:
    Parser(const std::vector<BryString>& arguments, Options& options, BryString& error)
        : m_arguments(arguments), m_options(options), m_error(error) {}

    bool parse() {
        for (m_next = 0; m_next < m_arguments.size() && !m_help;)
            if (!takeArgument(m_arguments[m_next++])) return false;
        if (m_help) return true;
        if (m_words.empty()) return fail(L"no command is given");
        return takeCommand(m_words[0]) && takeWords();
    }

private:
    bool takeArgument(const BryString& argument) {
        const bool isOption = !m_onlyWords && argument[0] == L'-' && argument != L"-";
        if (!isOption) {
            m_words.push_back(argument);
        } else if (argument == L"--type" || argument.left(7) == L"--type=") {
            return takeType(argument);
        } else if (argument == L"--") {
            m_onlyWords = true;
        } else if (argument == L"--help" || argument == L"-h") {
            m_help = true;
        } else if (argument == L"--recursive" || argument == L"-r") {
            m_options.recursive = true;
        } else if (argument == L"--utf8") {
            m_options.utf8 = true;
        } else {
            return fail(BryString(L"unknown option: ") + argument);
        }
        return true;
    }

    bool takeType(const BryString& argument) {
        const bool isNext = argument.length() == 6;
        if (isNext && m_next == m_arguments.size()) return fail(L"--type needs a value");
        const BryString word = isNext ? m_arguments[m_next++] : argument.mid(7);
        m_hasType = true;
        for (const auto& type : types)
            if (word == type.word) {
                m_type = type.type;
                return true;
            }
        return fail(L"--type is string, expand, dword, qword, multi or hex");
    }

    bool takeCommand(const BryString& word) {
        static const struct {
            const wchar_t* word;
            Options::Command command;
            std::size_t least, most;  // words behind it
            const wchar_t* words;
        } commands[] = {
            {L"get", Options::get, 1, 2, L"KEY [NAME]"},
            {L"set", Options::set, 3, SIZE_MAX, L"KEY NAME VALUE"},
            {L"list", Options::list, 1, 1, L"KEY"},
            {L"delete", Options::remove, 1, 2, L"KEY [NAME]"},
            {L"import", Options::import, 1, SIZE_MAX, L"FILE..."},
            {L"export", Options::exportKey, 1, 2, L"KEY [FILE]"},
        };
        const auto* const found = std::find_if(std::begin(commands), std::end(commands),
                                               [&word](const auto& command) { return word == command.word; });
        if (found == std::end(commands)) return fail(BryString(L"unknown command: ") + word);
        m_options.command = found->command;
        const std::size_t count = m_words.size() - 1;
        if (count < found->least || count > found->most)
            return fail(BryString(L"the command is ") + word + L" " + found->words);
        if (m_hasType && found->command != Options::set) return fail(L"--type is for set");
        if (m_options.recursive && found->command != Options::list) return fail(L"--recursive is for list");
        return !m_options.utf8 || found->command == Options::exportKey || fail(L"--utf8 is for export");
    }

    bool takeWords() {
        if (m_options.command == Options::import) {
            m_options.files.assign(m_words.begin() + 1, m_words.end());
            return true;
        }
        BryString reason;
        if (!readKeyName(m_words[1], m_options.key, reason)) return fail(m_words[1] + L": " + reason);
        m_options.hasName = m_options.command != Options::exportKey && m_words.size() > 2;
        if (m_options.hasName) m_options.value.name = m_words[2];
        if (m_options.command == Options::exportKey) m_options.files.assign(m_words.begin() + 2, m_words.end());
        const bool isHive = lengthOfHive(m_options.key) == m_options.key.length();
        if (m_options.command == Options::remove && !m_options.hasName && isHive)
            return fail(L"a whole hive cannot be deleted");
        return m_options.command != Options::set || takeValue();
    }

    bool takeValue() {
        RegEntry& value = m_options.value;
        value.kind = RegEntry::value;
        value.type = m_type;
        if (m_type == REG_MULTI_SZ) return takeTexts();
        const BryString& text = m_words[3];
        if (m_words.size() > 4) return fail(L"set takes one value: texts with blanks need quotes");
        if (m_type == REG_SZ || m_type == REG_EXPAND_SZ) appendText(text, value.data);
        if (m_type == REG_BINARY && !appendBytes(text, value.data))
            return fail(text + L": bytes have two hexadecimal digits: 01,02 or 0102");
        if (m_type == REG_DWORD && !appendNumber(text, 4, value.data))
            return fail(text + L": not a number from 0 to 4294967295 or 0xffffffff");
        if (m_type == REG_QWORD && !appendNumber(text, 8, value.data))
            return fail(text + L": not a number from 0 to 18446744073709551615 or 0xffffffffffffffff");
        return true;
    }

    // A single empty text is the list without texts.
    bool takeTexts() {
        std::vector<BYTE>& data = m_options.value.data;
        const bool isEmpty = m_words.size() == 4 && m_words[3].isEmpty();
        for (std::size_t i = 3; i < m_words.size() && !isEmpty; ++i) {
            if (m_words[i].isEmpty()) return fail(L"an empty text would end the texts of a multi");
            appendText(m_words[i], data);
        }
        data.insert(data.end(), 2, 0);
        return true;
    }

    bool fail(const BryString& error) {
        m_error = error;
        return false;
    }

    const std::vector<BryString>& m_arguments;
    Options& m_options;
    BryString& m_error;
    std::size_t m_next = 0;
    bool m_help = false;
    bool m_onlyWords = false;
    bool m_hasType = false;
    DWORD m_type = REG_SZ;
    std::vector<BryString> m_words;
};

}  // namespace

bool parseOptions(const std::vector<BryString>& arguments, Options& options, BryString& error) {
    return Parser(arguments, options, error).parse();
}

const wchar_t* typeWord(DWORD type) {
    for (const auto& known : types)
        if (known.type == type) return known.word;
    return nullptr;
}
