#include <roots/files/BryPerfMonitor.h>

#include <roots/files/BryWinMessage.h>
#include <roots/platform/Win32.h>

namespace {

int now() { return static_cast<int>(crt::clock()); }

}  // namespace

BryPerfMonitor::BryPerfMonitor(const BryString& logName) : BryLogfile(logName) {}

void BryPerfMonitor::start(const BryString& label) {
    m_start = now();
    BryString entry;
    appendWithSave(entry.format(L"Start = %s : %d", label.getStringW(), m_start));
}

void BryPerfMonitor::end(const BryString& label) {
    m_end = now();
    appendWithSave(readings(L"End = ", label));
}

void BryPerfMonitor::endWithMessageBox(const BryString& label) {
    end(label);
    BryWinMessage::messageBox(readings(L"", label));
}

BryString BryPerfMonitor::readings(const wchar_t* before, const BryString& label) const {
    const int difference = static_cast<int>(static_cast<unsigned>(m_end) - static_cast<unsigned>(m_start));
    BryString text;
    return text.format(L"%s%s : %d -> %d (Diff = %d)", before, label.getStringW(), m_start, m_end, difference);
}
