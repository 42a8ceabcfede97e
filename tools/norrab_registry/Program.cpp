#include "Program.h"

#include "Options.h"
#include "Printing.h"
#include "Registry.h"
#include "TextFile.h"
#include "Utf8.h"

#include <algorithm>

namespace {

constexpr int done = 0;
constexpr int failed = 1;
constexpr int wrongUsage = 2;

// ---- values as the terminal shows them ------------------------------------------------------------------------------

BryString bytesText(const std::vector<BYTE>& data, std::size_t most) {
    std::string text;
    for (std::size_t i = 0; i < std::min(data.size(), most); ++i) {
        constexpr char digits[] = "0123456789abcdef";
        if (i > 0) text += ',';
        text += {digits[data[i] >> 4], digits[data[i] & 15]};
    }
    if (data.size() > most) text += " ... (" + std::to_string(data.size()) + " bytes)";
    return text.c_str();
}

BryString numberText(const std::vector<BYTE>& data) {
    std::uint64_t number = 0;
    for (std::size_t i = data.size(); i-- > 0;) number = number << 8 | data[i];
    return std::to_string(number).c_str();
}

BryString textsText(const std::vector<BYTE>& data, const wchar_t* separator) {
    const std::vector<wchar_t> units = unitsOf(data);
    BryString text;
    for (const wchar_t* next = units.data(); *next != 0 && next < units.data() + units.size();) {
        const BryString one = next;
        text += (text.isEmpty() ? BryString() : BryString(separator)) + one;
        next += one.length() + 1;
    }
    return text;
}

// A text up to its first zero. Bytes beyond most are only counted.
BryString valueText(const RegEntry& value, const wchar_t* separator, std::size_t most) {
    switch (value.type) {
        case REG_SZ:
        case REG_EXPAND_SZ: return BryString(unitsOf(value.data).data());
        case REG_MULTI_SZ: return textsText(value.data, separator);
        case REG_DWORD:
            if (value.data.size() == 4) return numberText(value.data);
            break;
        case REG_QWORD:
            if (value.data.size() == 8) return numberText(value.data);
            break;
    }
    return bytesText(value.data, most);
}

// On one line, whatever is in it.
std::string shown(const BryString& text) {
    std::string line = stringToUtf8(text);
    std::replace_if(
        line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, ' ');
    return line;
}

std::string typeText(DWORD type) {
    if (const wchar_t* word = typeWord(type)) return stringToUtf8(word);
    return "hex(" + stringToUtf8(BryString::integerToString(static_cast<int>(type), 16)) + ")";
}

std::string padded(std::string text, int width) {
    text.resize(std::max(text.size(), static_cast<std::size_t>(width)), ' ');
    return text;
}

// ---- commands -------------------------------------------------------------------------------------------------------

class Program {
public:
    Program(const Options& options, std::FILE* output, std::FILE* errors)
        : m_options(options), m_output(output), m_errors(errors) {}

    int run() {
        switch (m_options.command) {
            case Options::help: print(m_output, helpText); return done;
            case Options::get: return get();
            case Options::set: return set();
            case Options::list: return list();
            case Options::remove: return remove();
            case Options::import: return import();
            case Options::exportKey: return exportKey();
        }
        return wrongUsage;
    }

private:
    int get() {
        RegEntry value;
        const LSTATUS error = readValue(m_options.key, m_options.value.name, value);
        if (error != ERROR_SUCCESS) return refused(error);
        print(m_output, stringToUtf8(valueText(value, L"\n", SIZE_MAX)) + "\n");
        return done;
    }

    int set() {
        std::size_t count;
        const LSTATUS error = writeEntries({RegEntry::makeKey(m_options.key), m_options.value}, count);
        return error == ERROR_SUCCESS ? done : refused(error);
    }

    int list() {
        std::vector<RegEntry> entries;
        const LSTATUS error = readKey(m_options.key, m_options.recursive ? Subkeys::read : Subkeys::named, entries);
        if (error != ERROR_SUCCESS) return refused(error);
        int width = 0;
        for (const RegEntry& entry : entries)
            if (entry.kind == RegEntry::value) width = std::max(width, std::min(entry.name.length(), 30));
        for (const RegEntry& entry : entries)
            print(m_output, entry.kind == RegEntry::key ? shown(entry.name) + "\n" : valueLine(entry, width));
        return done;
    }

    static std::string valueLine(const RegEntry& value, int width) {
        const std::string name = value.name.isEmpty() ? "\"\"" : shown(value.name);
        const int continued = static_cast<int>(name.size()) - value.name.length();  // bytes beyond characters
        return "  " + padded(name, width + (value.name.isEmpty() ? 0 : continued)) + "  " +
               padded(typeText(value.type), 6) + "  " + shown(valueText(value, L" | ", 16)) + "\n";
    }

    int remove() {
        RegEntry entry = m_options.value;
        std::vector<RegEntry> entries;
        const LSTATUS missing = m_options.hasName ? readValue(m_options.key, entry.name, entry)
                                                  : readKey(m_options.key, Subkeys::named, entries);
        if (missing != ERROR_SUCCESS) return refused(missing);
        entries = {RegEntry::makeKey(m_options.key)};
        entries[0].kind = m_options.hasName ? RegEntry::key : RegEntry::deletedKey;
        entry.kind = RegEntry::deletedValue;
        if (m_options.hasName) entries.push_back(entry);
        std::size_t count;
        const LSTATUS error = writeEntries(entries, count);
        return error == ERROR_SUCCESS ? done : refused(error);
    }

    int import() {
        std::vector<std::vector<RegEntry>> entries(m_options.files.size());
        bool isRead = true;
        for (std::size_t i = 0; i < entries.size(); ++i) isRead = readFile(m_options.files[i], entries[i]) && isRead;
        if (!isRead) return failed;
        for (std::size_t i = 0; i < entries.size(); ++i) {
            std::size_t count;
            const LSTATUS error = writeEntries(entries[i], count);
            if (error == ERROR_SUCCESS) continue;
            print(m_errors, problemText({m_options.files[i], entries[i][count].line,
                                         errorText(error) + L"; what stands before it is imported"}));
            return failed;
        }
        return done;
    }

    bool readFile(const BryString& file, std::vector<RegEntry>& entries) {
        int line = 0;
        BryString reason;
        std::string bytes;
        if (readBytes(file, bytes, reason) && parseRegFile(bytes, entries, line, reason)) return true;
        print(m_errors, problemText({file, line, reason}));
        return false;
    }

    static bool readBytes(const BryString& path, std::string& bytes, BryString& reason) {
        BryFileAccess file(path, L"rb", BryFileAccess::encodeANSI);
        const long size = file.getFileLength();
        reason = !file.isOpen() ? L"cannot be opened" : L"not a file, or one of 2 GB and more";
        if (!file.isOpen() || size < 0) return false;
        bytes.resize(static_cast<std::size_t>(size));
        reason = L"cannot be read to its end";
        return file.read(bytes.data(), 1, static_cast<unsigned>(size)) == static_cast<unsigned>(size);
    }

    int exportKey() {
        std::vector<RegEntry> entries;
        std::vector<BryString> lines;
        BryString reason;
        const bool toFile = !m_options.files.empty(), utf8 = m_options.utf8 || !toFile;
        const LSTATUS error = readKey(m_options.key, Subkeys::read, entries);
        if (error != ERROR_SUCCESS) return refused(error);
        if (!makeRegFile(entries, utf8, lines, reason)) return report(m_options.key, reason);
        if (!toFile)
            for (const BryString& line : lines) print(m_output, stringToUtf8(line));
        else if (!writeTextFile(m_options.files[0], utf8 ? BryFileAccess::encodeUTF8 : BryFileAccess::encodeUTF16LE,
                                lines, reason))
            return report(m_options.files[0], reason);
        return done;
    }

    // What is wrong with what the command line names.
    int refused(LSTATUS error) {
        const BryString& name = m_options.value.name;
        return report(m_options.key + (name.isEmpty() ? BryString() : BryString(L", ") + name), errorText(error));
    }
    int report(const BryString& subject, const BryString& reason) {
        print(m_errors, problemText({subject, 0, reason}));
        return failed;
    }

    const Options& m_options;
    std::FILE* m_output;
    std::FILE* m_errors;
};

}  // namespace

int runProgram(const std::vector<BryString>& arguments, std::FILE* output, std::FILE* errors) {
    Options options;
    BryString error;
    if (!parseOptions(arguments, options, error)) {
        print(errors, "norrab-registry: " + stringToUtf8(error) + "\nTry: norrab-registry --help\n");
        return wrongUsage;
    }
    const int status = Program(options, output, errors).run();
    if (isFlushed(output)) return status;
    print(errors, "norrab-registry: not all could be shown (is the disk full?)\n");
    return failed;
}
