#include "text_capture.h"

#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>

#include <charconv>

namespace wifiap::tools {

namespace {

int nibble(char ch) {
    if (ch >= '0' && ch <= '9') return ch - '0';
    if (ch >= 'a' && ch <= 'f') return ch - 'a' + 10;
    if (ch >= 'A' && ch <= 'F') return ch - 'A' + 10;
    return -1;
}

bool isSpace(char ch) { return ch == ' ' || ch == '\t' || ch == '\n' || ch == '\r'; }

std::string_view word(std::string_view &s) {
    while (!s.empty() && isSpace(s.front())) s.remove_prefix(1);
    size_t n = 0;
    while (n < s.size() && !isSpace(s[n])) ++n;
    std::string_view w = s.substr(0, n);
    s.remove_prefix(n);
    return w;
}

bool number(std::string_view w, uint32_t &v) {
    auto [end, ec] = std::from_chars(w.data(), w.data() + w.size(), v);
    return ec == std::errc() && end == w.data() + w.size();
}

}  // namespace

std::string captureLine(const Crossing &c) {
    char head[96];
    snprintf(head, sizeof head, "%.6f %s %" PRIu32 " %" PRIu32 " ", c.seconds, c.table.c_str(),
             c.index, c.bodyType);
    std::string line(head);
    static const char kHex[] = "0123456789abcdef";
    line.reserve(line.size() + 2 * c.body.size());
    for (uint8_t b : c.body) {
        line += kHex[b >> 4];
        line += kHex[b & 15];
    }
    return line;
}

bool parseCaptureLine(std::string_view line, Crossing &c, std::string &error) {
    error.clear();
    std::string_view rest = line;
    std::string_view time = word(rest);
    if (time.empty() || time.front() == '#') return false;
    std::string t(time);
    char *end = nullptr;
    c.seconds = strtod(t.c_str(), &end);
    uint32_t index = 0, type = 0;
    std::string_view table = word(rest), idx = word(rest), bt = word(rest);
    // A table's name is a word, not hex: hex written as words is a body.
    const bool named = table.find_first_not_of("0123456789abcdefABCDEF") != std::string_view::npos;
    if (*end || !named || !number(idx, index) || !number(bt, type) || type > 1) {
        error = "not <seconds> <table> <index> <bodyType> <hex>";
        return false;
    }
    c.table = std::string(table);
    c.index = index;
    c.bodyType = type;
    if (!parseHex(rest, c.body)) {
        error = "the body is not hex";
        return false;
    }
    return true;
}

bool parseHex(std::string_view text, std::vector<uint8_t> &bytes) {
    bytes.clear();
    bytes.reserve(text.size() / 2);
    for (size_t i = 0; i < text.size();) {
        if (isSpace(text[i])) {
            ++i;
            continue;
        }
        int hi = nibble(text[i]), lo = i + 1 < text.size() ? nibble(text[i + 1]) : -1;
        if (hi < 0 || lo < 0) return false;
        bytes.push_back(uint8_t(hi << 4 | lo));
        i += 2;
    }
    return true;
}

}  // namespace wifiap::tools
