#include "PartMarks.h"

#include <roots/numbering/BryIncrementalCounter.h>
#include <roots/numbering/BryNumberCreator.h>

#include <algorithm>
#include <cmath>
#include <set>

namespace {

// What parts are searched by.
class PartKey : public BryBalancedTreeEntry {
public:
    explicit PartKey(const BryString& content) : m_content(content) {}

    int compare(const BryBalancedTreeEntry& other) const override {
        return BryString::compare(static_cast<const PartKey&>(other).m_content, m_content);
    }

private:
    BryString m_content;
};

// Where the part of a content stands.
class PartPlace : public PartKey, Tracked {
public:
    PartPlace(const BryString& content, std::size_t place) : PartKey(content), Tracked(L"PartPlace"), m_place(place) {}

    std::size_t place() const { return m_place; }

private:
    std::size_t m_place;
};

bool contains(const BryString& characters, wchar_t c) { return characters.find_last_of(c) >= 0; }

BryNumberCreator makeCreator(const MarkSettings& settings) {
    StructNumberingDataRange range;
    range.firstSymbol = settings.letters ? L"A" : L"0";
    range.symbolCount = settings.letters ? 26 : 10;
    range.defaultStart = settings.letters ? L"A" : L"1";
    constexpr auto letters = static_cast<BryNumberCreator::eNumberingType>(1);
    BryNumberCreator creator;
    creator.overrideDataRange(range, settings.letters ? letters : BryNumberCreator::eNumberingNumeric);
    return creator;
}

// The creator of a prefix, made when the prefix first comes up.
class Creators {
public:
    explicit Creators(const MarkSettings& settings) : m_start(makeCreator(settings)) {
        if (settings.start.isEmpty()) return;
        m_start.setNumberingStart(settings.start);
        m_start.reset();
    }

    BryString nextMark(const BryString& prefix) {
        const auto place = m_creators.emplace(prefix, m_start);
        BryNumberCreator& creator = place.first->second;
        if (place.second) creator.setNumberingPrefix(prefix);
        BryString mark = creator.getNextNumber();
        while (!m_given.insert(mark).second) mark = creator.getNextNumber();
        return mark;
    }

private:
    BryNumberCreator m_start;
    std::map<BryString, BryNumberCreator> m_creators;
    std::set<BryString> m_given;
};

// The counter of a prefix, made when the prefix first comes up.
//
// A counter steps over excluded characters, but a position that wraps takes the first symbol even if that is excluded.
// All values from there on have it somewhere, up to the one with the lowest allowed symbol in all these positions: that
// is the next value without excluded characters. It is gone to at once; to count up to it could take for ever.
class Counters {
public:
    explicit Counters(const MarkSettings& settings) {
        StructIncrementalCounter data;
        data.initString = settings.letters ? L"A" : L"0";
        data.charRange = settings.letters ? 26 : 10;
        data.excludedChars = settings.excluded;
        data.maxValues = -1;
        m_unlimited.setDataFrom(data);
        m_first = m_lowest = data.initString[0];
        const BryString afterNone = valueAfter(BryString());  // 1 or A, or what is left behind it
        if (contains(settings.excluded, m_first)) m_lowest = afterNone[0];

        data.startValue = settings.start.isEmpty() ? afterNone : settings.start;
        data.maxValues = settings.limit;
        m_start.setDataFrom(data);
    }

    // Empty where the limit is reached.
    BryString nextMark(const BryString& prefix) {
        const auto place = m_counters.try_emplace(prefix, m_start);
        BryIncrementalCounter& counter = place.first->second;
        if (!place.second && counter.increment() == BryIncrementalCounter::eMaxReached) return BryString();
        BryString value = withoutExcluded(counter.getCounterString());
        while (!m_given.insert(prefix + value).second) value = valueAfter(value);
        counter.setCounterString(value);  // its limit counts on by one a mark, whatever was passed over
        return prefix + value;
    }

private:
    BryString valueAfter(const BryString& value) {
        m_unlimited.setCounterString(value);
        m_unlimited.increment();
        return withoutExcluded(m_unlimited.getCounterString());
    }

    BryString withoutExcluded(BryString value) const {
        value.replace(m_first, m_lowest);
        return value;
    }

    wchar_t m_first;   // symbol
    wchar_t m_lowest;  // symbol that is allowed
    BryIncrementalCounter m_unlimited;
    BryIncrementalCounter m_start;
    std::map<BryString, BryIncrementalCounter> m_counters;
    std::set<BryString> m_given;
};

}  // namespace

bool MarkSettings::isStartValid() const { return makeCreator(*this).setNumberingStart(start) == eCodeSet; }

bool MarkSettings::hasExcluded(const BryString& text) const {
    const wchar_t* const end = text.getStringW() + text.length();
    return std::any_of(text.getStringW(), end, [this](wchar_t c) { return contains(excluded, c); });
}

bool MarkSettings::leavesSymbols() const {
    const wchar_t last = letters ? L'Z' : L'9';
    for (wchar_t symbol = letters ? L'A' : L'1'; symbol <= last; ++symbol)
        if (!contains(excluded, symbol)) return true;
    return false;
}

double MarkedPart::weight() const {
    return std::round(part.length * part.weightPerMetre * static_cast<double>(quantity) / 10) / 100;
}

void PartMarks::add(const NcPart& part, const BryString& file) {
    const auto* found = static_cast<const PartPlace*>(m_byContent.search(PartKey(part.content)));
    if (!found) {
        auto* const added = new PartPlace(part.content, m_parts.size());
        m_byContent.insert(added);
        found = added;
        m_parts.emplace_back();
        m_parts.back().part = part;
    }
    MarkedPart& same = m_parts[found->place()];
    same.quantity += part.quantity;
    same.files.push_back(file);
}

std::set<BryString> PartMarks::codes() const {
    std::set<BryString> codes;
    for (const MarkedPart& part : m_parts) codes.insert(part.part.section.getProftypeString());
    return codes;
}

std::vector<MarkedPart> PartMarks::mark(const MarkSettings& settings) const {
    std::vector<MarkedPart> marked = m_parts;
    Creators creators(settings);
    Counters counters(settings);
    for (MarkedPart& part : marked) {
        const BryString code = part.part.section.getProftypeString();
        const auto prefix = settings.prefix.find(code);
        part.prefix = prefix == settings.prefix.end() ? code : prefix->second;
        part.mark = settings.withCounter ? counters.nextMark(part.prefix) : creators.nextMark(part.prefix);
    }
    std::stable_sort(marked.begin(), marked.end(),
                     [](const MarkedPart& a, const MarkedPart& b) { return a.prefix < b.prefix; });
    return marked;
}
