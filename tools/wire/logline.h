// The library's log lines as a wrapped vsyslog receives them: formatted whole,
// however long, and split at the prefix "[INTFWIFIAP] -> name(line): ".
#pragma once

#include <stdarg.h>
#include <stdio.h>

#include <string>

namespace wifiap::tools {

inline std::string vformat(const char *fmt, va_list ap) {
    va_list again;
    va_copy(again, ap);
    std::string s(size_t(vsnprintf(nullptr, 0, fmt, ap)) + 1, '\0');
    vsnprintf(s.data(), s.size(), fmt, again);
    va_end(again);
    s.pop_back();
    return s;
}

struct LogLine {
    bool prefixed;     // the library's prefix, a name and a source line
    std::string name;  // the function name of the prefix
    std::string text;  // what follows "name(line): ", line feed included
};

inline LogLine splitLogLine(const std::string &s) {
    static const char kPrefix[] = "[INTFWIFIAP] -> ";
    const size_t from = sizeof kPrefix - 1, open = s.find('(', from);
    const size_t close = open == std::string::npos ? open : s.find("): ", open);
    if (s.rfind(kPrefix, 0) != 0 || close == std::string::npos) return {false, "", s};
    return {true, s.substr(from, open - from), s.substr(close + 3)};
}

}  // namespace wifiap::tools
