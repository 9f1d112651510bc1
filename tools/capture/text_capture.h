// Capture files: one body a line, as text, so that a capture can be committed
// and diffed. A line is
//   <seconds.micros> <table> <index> <bodyType> <hex bytes>
// with the time since the capture began, the table's name (IntfWifiApCmd or
// IntfWifiApNtfy), the row index, 0 (request or notification) or 1
// (response), and the body in lower-case hex. Lines starting with '#' and
// blank lines are comments.
#pragma once

#include <stdint.h>

#include <string>
#include <string_view>
#include <vector>

namespace wifiap::tools {

struct Crossing {
    double seconds = 0;
    std::string table;
    uint32_t index = 0;
    uint32_t bodyType = 0;
    std::vector<uint8_t> body;
    std::string sender, receiver;  // "bus/user"; a text capture has none
};

std::string captureLine(const Crossing &c);  // without the line feed
// False (and `error` says why) if the line is not a crossing; comments are
// not crossings either, with an empty `error`.
bool parseCaptureLine(std::string_view line, Crossing &c, std::string &error);
// Hex digits, white space between byte pairs allowed. False on anything else.
bool parseHex(std::string_view text, std::vector<uint8_t> &bytes);

}  // namespace wifiap::tools
