#include "Program.h"

#include "MarksFile.h"
#include "Options.h"
#include "PartFiles.h"
#include "Printing.h"
#include "RunLog.h"
#include "Settings.h"
#include "Summary.h"
#include "Tracked.h"
#include "Utf8.h"

#include <roots/Version.h>
#include <roots/files/BryFileAccess.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

namespace fs = std::filesystem;

namespace {

constexpr int allDone = 0;
constexpr int someFailed = 1;
constexpr int failed = 2;

int usageError(std::FILE* errors, const BryString& error) {
    print(errors, "part_marks: " + stringToUtf8(error) + "\nTry: part_marks --help\n");
    return failed;
}

// As the library takes the name: a backslash for a slash, points and blanks at its end for nothing.
BryString fileName(BryString name) {
    name.replace(BryString(L"\\"), L"/");
    while (name.length() > 1 && (name.right(1) == L"." || name.right(1) == L" ")) name = name.left(name.length() - 1);
    return name;
}

BryString outputFile(BryString output) {
    if (output.isEmpty()) return L"marks.csv";
    output.replace(BryString(L"\\"), L"/");
    std::error_code error;
    if (fs::is_directory(toPath(output), error)) return toText(toPath(output) / "marks.csv");
    return fileName(output);
}

bool isSameFile(const BryString& file, const BryString& other) {
    std::error_code error;
    return fs::equivalent(toPath(file), toPath(other), error);
}

bool exists(const BryString& file) {
    std::error_code error;
    return fs::exists(toPath(file), error);
}

bool isOneOf(const std::vector<BryString>& files, const BryString& file) {
    const auto isSame = [&file](const BryString& other) { return isSameFile(file, other); };
    return exists(file) && std::any_of(files.begin(), files.end(), isSame);
}

void removeBehindLinks(const BryString& file) {
    std::error_code error;
    fs::remove(fs::canonical(toPath(file), error), error);
}

// Anything else, such as a pipe, might never end, or keep nothing.
bool mayBeFile(const BryString& file) {
    std::error_code error;
    return !exists(file) || fs::is_regular_file(toPath(file), error);
}

// The status where all that was printed has reached its place.
int flushed(std::FILE* output, std::FILE* errors, int status) {
    if (isFlushed(output)) return status;
    print(errors, "part_marks: not all could be shown (is the disk full?)\n");
    return failed;
}

// A run with options that fit each other.
class Run {
public:
    Run(const Options& options, std::FILE* output, std::FILE* errors)
        : m_options(options), m_output(output), m_errors(errors) {}

    int run() {
        m_marksFile = outputFile(m_options.output);
        m_logFile = fileName(m_options.log);
        m_modulesFile = fileName(m_options.modules);
        m_files = findPartFiles(m_options.inputs, m_options.withSubfolders, m_problems);
        BryString clash = clashWithParts();
        if (clash.isEmpty()) clash = clashOfWritten();
        if (clash.isEmpty()) clash = makeFiles();
        if (!clash.isEmpty()) return usageError(m_errors, clash);

        const int status = markParts();
        listModules();
        if (!m_log.finish()) lack(m_logFile, L"the log is not complete (is the disk full?)");
        return flushed(m_output, m_errors, status == allDone && m_lacksFile ? someFailed : status);
    }

private:
    // The files that are written, by their options. An empty name is that of no file.
    std::vector<std::pair<BryString, BryString>> written() const {
        return {{L"--output", m_marksFile}, {L"--log", m_logFile}, {L"--modules", m_modulesFile}};
    }

    BryString clashWithParts() const {
        for (const auto& [option, file] : written())
            if (isOneOf(m_files, file)) return option + L" names a part file that is read";
        return BryString();
    }

    BryString clashOfWritten() const {
        const auto all = written();
        for (std::size_t i = 1; i < all.size(); ++i)
            for (std::size_t j = 0; j < i; ++j)
                if (isSameFile(all[i].second, all[j].second))
                    return all[i].first + L" names the same file as " + all[j].first;
        return BryString();
    }

    // The files beside the list, made now: whether two names are of one file is certain only where it is there. After
    // a clash what was made is gone again.
    BryString makeFiles() {
        std::vector<BryString> added = {m_logFile, m_modulesFile};
        added.erase(std::remove_if(added.begin(), added.end(), exists), added.end());
        openLog();
        openModules();
        const BryString clash = clashOfWritten();
        if (!clash.isEmpty())
            for (const BryString& file : added) removeBehindLinks(file);
        return clash;
    }

    void openLog() {
        if (m_logFile.isEmpty()) return;
        if (!mayBeFile(m_logFile) || !m_log.open(m_logFile, m_options.withTimes))
            return lack(m_logFile, L"the log cannot be written here");
        m_log.add(std::string("part_marks with KelRoots ") + bryVersion());
    }

    void openModules() {
        if (m_modulesFile.isEmpty()) return;
        if (mayBeFile(m_modulesFile) && BryFileAccess(m_modulesFile, L"w", BryFileAccess::encodeANSI).isOpen()) return;
        lack(m_modulesFile, L"the list of modules cannot be written here");
        m_modulesFile.empty();
    }

    int markParts() {
        PartMarks read;
        m_log.start(L"reading");
        readParts(read);
        m_log.end(L"reading");
        m_log.start(L"marking");
        const std::vector<MarkedPart> parts = read.mark(withSavedPrefixes(read.codes()));
        m_log.end(L"marking");

        for (const FileProblem& problem : m_problems) tell(problemText(problem));
        const std::string limits = limitsText(parts, m_options.marks.limit);
        tell(limits);
        if (parts.empty()) {
            tell("part_marks: no part was read, nothing is written\n");
            return failed;
        }
        if (!writeMarks(parts)) return failed;
        m_log.add(countsText(parts, m_problems.size()));
        print(m_output, summaryText(parts, m_problems.size()));
        print(m_output, "  Written: " + stringToUtf8(m_marksFile) + "\n\n");
        return m_problems.empty() && limits.empty() ? allDone : someFailed;
    }

    // What is wrong with one is added to the problems, the others are done all the same.
    void readParts(PartMarks& parts) {
        for (const BryString& file : m_files) {
            m_log.add("reads " + stringToUtf8(file));
            NcPart part;
            NcError error;
            if (readPartFile(file, part, error))
                parts.add(part, file);
            else
                m_problems.push_back({file, error.line, error.reason});
        }
    }

    MarkSettings withSavedPrefixes(const std::set<BryString>& codes) const {
        MarkSettings marks = m_options.marks;
        BryString prefix;
        for (const BryString& code : codes)
            if (m_options.withSettings && marks.prefix.count(code) == 0 && savedPrefix(code, prefix))
                marks.prefix[code] = prefix;
        return marks;
    }

    bool writeMarks(const std::vector<MarkedPart>& parts) {
        BryString error;
        m_log.start(L"writing");
        const bool isWritten = writeMarksFile(m_marksFile, parts, error);
        m_log.end(L"writing");
        if (isWritten)
            m_log.add("has written " + stringToUtf8(m_marksFile));
        else
            tell(problemText({m_marksFile, 0, error}));
        return isWritten;
    }

    // A line that is cut off, or none at all, is what a full disk leaves.
    void listModules() {
        if (m_modulesFile.isEmpty()) return;
        BryLogfile::listModules(m_modulesFile);
        const BryFileAccess list(m_modulesFile, L"rb", BryFileAccess::encodeANSI);
        char last = 0;
        list.seek(-1, SEEK_END);
        if (list.read(&last, 1, 1) == 1 && last == '\n')
            m_log.add("has written " + stringToUtf8(m_modulesFile));
        else
            lack(m_modulesFile, L"the list of modules is not complete (is the disk full?)");
    }

    void lack(const BryString& file, const wchar_t* reason) {
        m_lacksFile = true;
        tell(problemText({file, 0, reason}));
    }

    void tell(const std::string& text) {
        print(m_errors, text);
        m_log.add(text);
    }

    const Options& m_options;
    std::FILE* m_output;
    std::FILE* m_errors;
    BryString m_marksFile, m_logFile, m_modulesFile;
    std::vector<BryString> m_files;
    std::vector<FileProblem> m_problems;
    RunLog m_log;
    bool m_lacksFile = false;  // the log or the list of modules, or a part of it
};

}  // namespace

int runProgram(const std::vector<BryString>& arguments, std::FILE* output, std::FILE* errors) {
    Options options;
    BryString error;
    if (!parseOptions(arguments, options, error)) return usageError(errors, error);
    if (options.help) {
        print(output, helpText);
        return flushed(output, errors, allDone);
    }
    if (options.save) {
        if (!saveOptions(options, error)) return usageError(errors, error);
        if (options.inputs.empty()) return allDone;
    }
    TrackedRun tracked;
    const int status = Run(options, output, errors).run();
    print(errors, tracked.living());
    return status;
}
