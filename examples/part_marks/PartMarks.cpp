#include "PartMarks.h"

#include <roots/numbering/BryNumberCreator.h>

#include <algorithm>
#include <cmath>
#include <set>

namespace {

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

}  // namespace

bool MarkSettings::isStartValid() const { return makeCreator(*this).setNumberingStart(start) == eCodeSet; }

double MarkedPart::weight() const {
    return std::round(part.length * part.weightPerMetre * static_cast<double>(quantity) / 10) / 100;
}

void PartMarks::add(const NcPart& part, const BryString& file) {
    const auto place = m_byContent.emplace(part.content, m_parts.size());
    if (place.second) {
        m_parts.emplace_back();
        m_parts.back().part = part;
    }
    MarkedPart& same = m_parts[place.first->second];
    same.quantity += part.quantity;
    same.files.push_back(file);
}

std::vector<MarkedPart> PartMarks::mark(const MarkSettings& settings) const {
    std::vector<MarkedPart> marked = m_parts;
    Creators creators(settings);
    for (MarkedPart& part : marked) {
        const auto prefix = settings.prefix.find(part.part.code);
        part.prefix = prefix == settings.prefix.end() ? part.part.code : prefix->second;
        part.mark = creators.nextMark(part.prefix);
    }
    std::stable_sort(marked.begin(), marked.end(),
                     [](const MarkedPart& a, const MarkedPart& b) { return a.prefix < b.prefix; });
    return marked;
}
