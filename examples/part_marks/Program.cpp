#include "Program.h"

#include "FileAges.h"
#include "FileNames.h"
#include "MarksFile.h"
#include "Options.h"
#include "PartFiles.h"
#include "Printing.h"
#include "Progress.h"
#include "ProgressDialog.h"
#include "ProgressLine.h"
#include "RunLog.h"
#include "Settings.h"
#include "Summary.h"
#include "Tracked.h"
#include "Utf8.h"

#include <roots/Version.h>
#include <roots/files/BryFileAccess.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <set>

namespace {

constexpr int allDone = 0;
constexpr int someFailed = 1;
constexpr int failed = 2;

int usageError(std::FILE* errors, const BryString& error) {
    print(errors, "part_marks: " + stringToUtf8(error) + "\nTry: part_marks --help\n");
    return failed;
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

        showSteps();
        const int status = tellResults();
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

    // A step that is shown, with its times in the log.
    class Step : public Progress::Step {
    public:
        Step(Run& run, const wchar_t* name, int from, int to)
            : Progress::Step(*run.m_progress, name, from, to), m_log(run.m_log), m_name(name) {
            m_log.start(m_name);
        }
        ~Step() { m_log.end(m_name); }

    private:
        RunLog& m_log;
        const wchar_t* m_name;
    };

    // Nothing else is written to the terminal meanwhile.
    void showSteps() {
        if (m_options.withDialog) {
            ProgressDialog dialog;
            const ShownOn shown(dialog);
            doSteps();
        } else {
            Terminal terminal(m_errors);
            ProgressLine line(terminal);
            const ShownOn shown(line);
            doSteps();
        }
    }

    void doSteps() {
        m_progress.emplace(L"part_marks");
        readParts();
        markParts();
        if (!m_parts.empty()) writeMarks();
        m_progress.reset();
    }

    // What is wrong with one is added to the problems, the others are done all the same.
    void readParts() {
        Step step(*this, L"reading", 0, 80);
        for (std::size_t i = 0; i < m_files.size() && step.advance(i, m_files.size()); ++i) {
            const BryString& file = m_files[i];
            m_log.add("reads " + stringToUtf8(file));
            ++m_readCount;
            NcPart part;
            NcError error;
            if (!readPartFile(file, part, error, m_options.tolerance))
                m_problems.push_back({file, error.line, error.reason});
            else if (isWanted(file, part))
                m_read.emplace_back(part, file);
            else
                m_hasUnwanted = true;
        }
    }

    bool isWanted(const BryString& file, const NcPart& part) const {
        return m_options.match.isEmpty() || matches(m_options.match, toText(toPath(file).filename())) ||
               matches(m_options.match, part.profile);
    }

    void markParts() {
        PartMarks marks;
        {
            Step step(*this, L"comparing", 80, 85);
            for (std::size_t i = 0; i < m_read.size(); step.advance(++i, m_read.size()))
                marks.add(m_read[i].first, m_read[i].second);
        }
        const Step step(*this, L"marking", 85, 95);
        m_parts = marks.mark(withSavedPrefixes(marks.codes()));
    }

    MarkSettings withSavedPrefixes(const std::set<BryString>& codes) const {
        MarkSettings marks = m_options.marks;
        BryString prefix;
        for (const BryString& code : codes)
            if (m_options.withSettings && marks.prefix.count(code) == 0 && savedPrefix(code, prefix))
                marks.prefix[code] = prefix;
        return marks;
    }

    void writeMarks() {
        m_progress->completeInAnyCase();
        const Step step(*this, L"writing", 95, 100);
        m_isWritten = writeMarksFile(m_marksFile, m_parts, m_writeError);
    }

    int tellResults() {
        for (const FileProblem& problem : m_problems) tell(problemText(problem));
        const std::string limits = limitsText(m_parts, m_options.marks.limit);
        tell(limits);
        const bool isCanceled = m_readCount < m_files.size();
        if (isCanceled)
            tell("part_marks: canceled when " + std::to_string(m_readCount) + " of " + std::to_string(m_files.size()) +
                 " files were read\n");
        if (m_parts.empty()) {
            tell(m_hasUnwanted ? "part_marks: no part matches --match, nothing is written\n"
                               : "part_marks: no part was read, nothing is written\n");
            return failed;
        }
        if (!m_isWritten) {
            tell(problemText({m_marksFile, 0, m_writeError}));
            return failed;
        }
        m_log.add("has written " + stringToUtf8(m_marksFile));
        m_log.add(countsText(m_parts, m_problems.size()));
        print(m_output, summaryText(m_parts, m_problems.size()));
        if (m_options.hasSince) showAges();
        print(m_output, "  Written: " + stringToUtf8(m_marksFile) + "\n\n");
        return m_problems.empty() && limits.empty() && !isCanceled ? allDone : someFailed;
    }

    void showAges() {
        std::vector<BryString> files;
        for (const auto& read : m_read) files.push_back(read.second);
        const std::string ages =
            "  Since " + stringToUtf8(m_options.sinceText) + "\n" + agesText(files, m_options.since);
        print(m_output, ages + "\n");
        m_log.add(ages);
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

    std::optional<Progress> m_progress;  // while the steps are done
    std::size_t m_readCount = 0;         // of the files, those that are no parts too
    std::vector<std::pair<NcPart, BryString>> m_read;
    bool m_hasUnwanted = false;
    std::vector<MarkedPart> m_parts;
    bool m_isWritten = false;
    BryString m_writeError;
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
