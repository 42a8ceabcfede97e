// Whole matches with a pattern compiled for each, by Boost.Xpressive over std::wstring.

#include <benchmarks/numeric/RegExInputs.h>
#include <benchmarks/support/Measure.h>

#include <boost/xpressive/xpressive_dynamic.hpp>

#include <vector>

namespace {

std::wstring wide(const std::string& text) { return std::wstring(text.begin(), text.end()); }

const int registered = [] {
    for (const RegExWork& work : regExWorks()) {
        measure(work.name, "Xpressive", {work.text.size()}, [work](std::size_t) {
            return [pattern = wide(work.pattern), text = wide(work.text)] {
                std::vector<std::wstring> results;
                const auto expression = boost::xpressive::wsregex::compile(pattern);
                boost::xpressive::wsmatch found;
                if (!boost::xpressive::regex_match(text, found, expression)) return results;
                for (const auto& group : found)
                    if (group.length() > 0) results.push_back(group.str());
                return results;
            };
        });
    }
    return 0;
}();

}  // namespace
