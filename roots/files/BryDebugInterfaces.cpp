#include <roots/files/BryDebugInterfaces.h>

#include <roots/files/BryWinMessage.h>

#include <cstdint>
#include <vector>

void BryDebugInterfaces::objectConstructed(const BryString& className, void* object) {
    DebugInfo record;
    record.m_pContextInitiator = m_ContextInitiators.isEmpty() ? nullptr : m_ContextInitiators.last();
    record.m_ClassName = className;
    record.m_pObject = object;
    // Steps of the grow length would take time in proportion to the square of many records.
    if (m_Info.length() == m_Info.physicalLength()) m_Info.setPhysicalLength(2 * m_Info.length());
    m_Info.append(record);
}

void BryDebugInterfaces::objectDestroied(const BryString& className, void* object) {
    BryString name(className);
    const int i = getIndexAt(name, object);
    if (i >= 0) m_Info[i].m_bDestroyed = 1;
}

// The names are compared only where the rest fits.
int BryDebugInterfaces::getIndexAt(BryString& className, void* object) {
    const long count = m_Info.length();
    for (long i = 0; i < count; ++i) {
        const DebugInfo& record = m_Info[i];
        if (record.m_pObject == object && !record.m_bDestroyed && record.m_ClassName == className)
            return static_cast<int>(i);
    }
    return -1;
}

void BryDebugInterfaces::setCurrentContextInitiator(void* initiator) { m_ContextInitiators.append(initiator); }

void BryDebugInterfaces::contextInitiatorEnd(void* initiator) {
    if (!m_ContextInitiators.isEmpty() && m_ContextInitiators.last() == initiator) m_ContextInitiators.removeLast();
}

// The records that stay close ranks in one pass; the slots behind them let go of their names.
void BryDebugInterfaces::clearAllDebugInfo(void* initiator) {
    long kept = 0;
    for (long i = 0; i < m_Info.length(); ++i) {
        if (initiator == nullptr || m_Info[i].m_pContextInitiator == initiator) continue;
        if (kept != i) m_Info[kept] = m_Info[i];
        ++kept;
    }
    for (long i = kept; i < m_Info.length(); ++i) m_Info[i] = DebugInfo();
    m_Info.setLogicalLength(kept);
}

int BryDebugInterfaces::entriesNumber() { return static_cast<int>(m_Info.length()); }

BryDebugInterfaces::CleanUp::~CleanUp() {
    m_ContextInitiators.setPhysicalLength(0);
    m_Info.setPhysicalLength(0);
}

template <class Line>
void BryDebugInterfaces::forEachResult(void* initiator, Line line) {
    bool isFirst = true;
    for (int i = 0, n = -1; i < m_Info.length(); ++i) {
        const DebugInfo& record = m_Info[i];
        if (initiator != nullptr && record.m_pContextInitiator != initiator) continue;
        ++n;
        if (record.m_bDestroyed) continue;
        if (isFirst) line(BryString(L"\n Coclasses not destructed:"));
        isFirst = false;
        const unsigned long long address = reinterpret_cast<std::uintptr_t>(record.m_pObject);
        BryString text;
        line(text.format(L"\n %d [%d] %08I64x %s", i, n, address, record.m_ClassName.getStringW()));
    }
}

void BryDebugInterfaces::showResults(void* initiator) {
    forEachResult(initiator, [](const BryString& line) { BryOutputDebugString(line); });
}

BryString BryDebugInterfaces::getResults(void* initiator) {
    std::vector<wchar_t> report;
    forEachResult(initiator, [&report](const BryString& line) {
        report.insert(report.end(), line.getStringW(), line.getStringW() + line.length());
    });
    report.push_back(0);
    return BryString(report.data());
}
