#include "Summary.h"

#include "Utf8.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr std::size_t shownMarks = 20;
constexpr int shownLength = 40;

BryString shortened(const BryString& cell) {
    if (cell.length() <= shownLength) return cell;
    const wchar_t last = cell[shownLength - 4];
    const bool cutsPair = last >= 0xD800 && last <= 0xDBFF;
    return cell.left(shownLength - (cutsPair ? 4 : 3)) + L"...";
}

// Columns as wide as their widest cell, which is cut where it is long, two blanks between them.
class Table {
public:
    // One letter for each column: l flush left, r flush right.
    explicit Table(std::string columns) : m_columns(std::move(columns)), m_widths(m_columns.size(), 0) {}

    void add(const std::vector<BryString>& cells) {
        m_rows.emplace_back();
        for (std::size_t i = 0; i < cells.size(); ++i) {
            m_rows.back().push_back(shortened(cells[i]));
            m_widths[i] = std::max(m_widths[i], width(m_rows.back()[i]));
        }
    }

    // A rule stands below the heading, and above the last row where that is a total.
    std::string text(bool endsWithTotal) const {
        std::string text;
        for (std::size_t i = 0; i < m_rows.size(); ++i) {
            if (i == 1 || (endsWithTotal && i > 1 && i + 1 == m_rows.size())) text += rule();
            text += row(m_rows[i]);
        }
        return text + "\n";
    }

private:
    static std::size_t width(const BryString& cell) { return static_cast<std::size_t>(cell.length()); }

    std::string row(const std::vector<BryString>& cells) const {
        std::string line;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const std::string padding(m_widths[i] - width(cells[i]), ' ');
            const std::string cell = stringToUtf8(cells[i]);
            line += "  " + (m_columns[i] == 'r' ? padding + cell : cell + padding);
        }
        return line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }

    std::string rule() const {
        std::string line;
        for (const std::size_t columnWidth : m_widths) line += "  " + std::string(columnWidth, '-');
        return line + "\n";
    }

    std::string m_columns;
    std::vector<std::size_t> m_widths;
    std::vector<std::vector<BryString>> m_rows;
};

std::string marksTable(const std::vector<MarkedPart>& parts) {
    Table table("lllrrrr");
    table.add({L"Mark", L"Profile", L"Steel", L"Length mm", L"Pieces", L"Weight kg", L"Files"});
    const std::size_t shown = std::min(parts.size(), shownMarks);
    for (std::size_t i = 0; i < shown; ++i) {
        const MarkedPart& part = parts[i];
        table.add({part.mark, part.part.profile, part.part.steel, hundredthsText(part.part.length),
                   countText(part.quantity), hundredthsText(part.weight()),
                   countText(static_cast<std::int64_t>(part.files.size()))});
    }
    std::string text = table.text(false);
    if (shown < parts.size()) text += "  ... and " + std::to_string(parts.size() - shown) + " more\n\n";
    return text;
}

struct Totals {
    std::int64_t parts = 0;
    std::int64_t pieces = 0;
    double weight = 0;

    void add(const MarkedPart& part) {
        ++parts;
        pieces += part.quantity;
        weight += part.weight();  // of the rounded weights: what the lines of the table add up to
    }
    std::vector<BryString> row(const BryString& name) const {
        return {name, countText(parts), countText(pieces), hundredthsText(weight)};
    }
};

std::string totalsTable(const std::vector<MarkedPart>& parts) {
    std::map<BryString, Totals> byCode;
    Totals all;
    for (const MarkedPart& part : parts) {
        byCode[part.part.section.getProftypeString()].add(part);
        all.add(part);
    }
    Table table("lrrr");
    table.add({L"Code", L"Parts", L"Pieces", L"Weight kg"});
    for (const auto& code : byCode) table.add(code.second.row(code.first));
    table.add(all.row(L"Total"));
    return table.text(true);
}

// Plates whose weight per metre weighs as steel of their thickness does on a square metre. Where the plate is a metre
// wide both are the same.
std::size_t countWeightsPerSquareMetre(const std::vector<MarkedPart>& parts) {
    const auto isPerSquareMetre = [](const MarkedPart& marked) {
        constexpr double steel = 7.85;  // kg for a square metre of 1 mm
        const NcPart& part = marked.part;
        const double perSquareMetre = part.section.getTG() * steel;
        return part.section.getDSTVType() == BryProfTypeDSTVValues::eDSTV_B &&
               std::abs(part.weightPerMetre - perSquareMetre) < 0.05 * perSquareMetre &&
               std::abs(part.section.getH1() - 1000) > 100;
    };
    return static_cast<std::size_t>(std::count_if(parts.begin(), parts.end(), isPerSquareMetre));
}

std::string counted(std::size_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

}  // namespace

BryString hundredthsText(double value) {
    BryString text;
    text.format(L"%.0f", std::round(std::abs(value) * 100));
    while (text.length() < 3) text = BryString(L"0") + text;
    return BryString(value < 0 ? L"-" : L"") + text.left(text.length() - 2) + L"." + text.right(2);
}

BryString countText(std::int64_t count) { return BryString(std::to_string(count).c_str()); }

std::string countsText(const std::vector<MarkedPart>& parts, std::size_t errors) {
    std::size_t filesRead = 0;
    for (const MarkedPart& part : parts) filesRead += part.files.size();
    return counted(filesRead, "file", "files") + " read, " +
           counted(parts.size(), "different part", "different parts") + ", " + counted(errors, "error", "errors");
}

std::string summaryText(const std::vector<MarkedPart>& parts, std::size_t errors) {
    std::size_t unmarked = 0;
    for (const MarkedPart& part : parts) unmarked += part.mark.isEmpty() ? 1 : 0;
    std::string text = "\n" + marksTable(parts) + totalsTable(parts) + "  " + countsText(parts, errors) + "\n";
    if (unmarked > 0) text += "  " + counted(unmarked, "part has", "parts have") + " no mark.\n";
    const std::size_t plates = countWeightsPerSquareMetre(parts);
    if (plates > 0)
        text += "  Note: the weight per metre of " + counted(plates, "plate", "plates") +
                " looks like one per square metre; it counts as written.\n";
    return text;
}

std::string limitsText(const std::vector<MarkedPart>& parts, int limit) {
    std::map<BryString, std::size_t> unmarked;
    for (const MarkedPart& part : parts)
        if (part.mark.isEmpty()) ++unmarked[part.prefix];
    std::string text;
    for (const auto& [prefix, count] : unmarked)
        text += "part_marks: --max " + std::to_string(limit) + " reached: prefix " +
                (prefix.isEmpty() ? "\"\"" : stringToUtf8(prefix)) + ": " + counted(count, "part has", "parts have") +
                " no mark\n";
    return text;
}
