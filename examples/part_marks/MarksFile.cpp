#include "MarksFile.h"

#include "Summary.h"
#include "TextFile.h"
#include "Utf8.h"

#include <string>

namespace {

BryString joined(const std::vector<BryString>& files) {
    std::string text;
    for (const BryString& file : files) text += (text.empty() ? "" : "; ") + stringToUtf8(file);
    return utf8ToString(text);
}

BryString csvLine(const MarkedPart& marked) {
    const NcPart& part = marked.part;
    BryString line;
    line.format(L"%s,%s,%s,%s,%s,%s,%s,%s\n", csvField(marked.mark).getStringW(), csvField(part.profile).getStringW(),
                csvField(part.section.getProftypeString()).getStringW(), csvField(part.steel).getStringW(),
                hundredthsText(part.length).getStringW(), countText(marked.quantity).getStringW(),
                hundredthsText(marked.weight()).getStringW(), csvField(joined(marked.files)).getStringW());
    return line;
}

}  // namespace

BryString csvField(const BryString& text) {
    const int last = text.length() - 1;
    const bool hasBlankAtAnEnd = last >= 0 && (text[0] == L' ' || text[last] == L' ');
    bool hasSpecial = false;
    for (const wchar_t special : {L',', L'"', L'\n', L'\r'}) hasSpecial |= text.find_last_of(special) >= 0;
    if (!hasSpecial && !hasBlankAtAnEnd) return text;
    BryString inner = text;
    inner.replace(BryString(L"\""), L"\"\"");
    return BryString(L"\"") + inner + L"\"";
}

bool writeMarksFile(const BryString& output, const std::vector<MarkedPart>& parts, BryString& reason) {
    std::vector<BryString> lines = {L"mark,profile,code,steel,length,quantity,weight,files\n"};
    for (const MarkedPart& part : parts) lines.push_back(csvLine(part));
    return writeTextFile(output, BryFileAccess::encodeUTF8, lines, reason);
}
