// The patterns and texts that are matched, in ASCII.
#pragma once

#include <string>
#include <vector>

struct RegExWork {
    const char* name;
    std::string pattern, text;
};

inline std::vector<RegExWork> regExWorks() {
    std::string lines;
    for (int i = 0; i < 500; ++i) lines += "HEA200;1234,5;S235JR;";
    return {
        {"match, short pattern", "(\\d+)-(\\d+)", "12-345"},
        {"match, long pattern", "(HEA|HEB|IPE|UNP)\\s*(\\d{2,4})(x\\d+)?;(\\d+),(\\d+);(S\\d{3}[A-Z]*)( [a-z]+=\\w+)*",
         "HEA 200;1234,5;S235JR a=12 b=c"},
        {"match, long literal", std::string(2000, 'a'), std::string(2000, 'a')},
        {"match, long text", "(?:[A-Z]+\\d+;\\d+,\\d+;S\\d+[A-Z]*;)*", lines},
        {"match, one class", "[A-Za-z0-9;,]*", lines}};
}
