#include "RunLog.h"

#include "Utf8.h"

#include <roots/files/BryFileAccess.h>

#include <algorithm>
#include <system_error>

namespace {

constexpr std::size_t sizeOfTime = sizeof "[09:05:07] " - 1;
constexpr std::size_t sizeOfLineEnd = 2;

}  // namespace

bool RunLog::open(const BryString& file, bool withTimes) {
    BryLogfile::setLogStatus(1);
    m_stopwatch = BryPerfMonitor(file);
    if (!m_stopwatch.reset()) return false;
    m_file = file;
    m_withTimes = withTimes;
    return true;
}

void RunLog::add(const std::string& text) {
    if (m_file.isEmpty()) return;
    for (std::size_t at = 0, end; at < text.size(); at = end + 1) {
        end = std::min(text.find('\n', at), text.size());
        const BryString entry = utf8ToString(text.substr(at, end - at));
        BryLogfile::logToFile(m_file, entry);
        expectGrowth(sizeOfLineEnd + sizeOfTime + static_cast<std::size_t>(entry.length()));
    }
}

void RunLog::start(const wchar_t* step) {
    if (m_file.isEmpty() || !m_withTimes) return;
    beginLine();
    m_stopwatch.start(step);
    expectGrowth(sizeOfTime + sizeof "Start = ");
}

void RunLog::end(const wchar_t* step) {
    if (m_file.isEmpty() || !m_withTimes) return;
    beginLine();
    m_stopwatch.end(step);
    expectGrowth(sizeOfTime + sizeof "End = ");
}

bool RunLog::finish() {
    if (!m_file.isEmpty()) beginLine();
    return m_isComplete;
}

// The stopwatch goes on where the file ends, and a line end in its label would stand before the time.
void RunLog::beginLine() {
    BryFileAccess(m_file, L"a", BryFileAccess::encodeANSI).puts(L"\n");
    expectGrowth(sizeOfLineEnd);
}

// At least a byte for each 16-bit unit, whatever the locale.
void RunLog::expectGrowth(std::size_t bytes) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(toPath(m_file), error);
    m_isComplete = m_isComplete && !error && size >= m_size + bytes;
    m_size = size;
}
