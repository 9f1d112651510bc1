// What the library itself makes of a body: the message's own unserialize
// callback (from its row of intfWifiAp_base) with the body's length, and the
// lines it logs. Needs the library's objects linked in, with syslog wrapped
// (-Wl,--wrap=vsyslog) so that the lines come here.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <string>
#include <vector>

#include "decode.h"

namespace wifiap::tools {

struct Verdict {
    uint32_t code = 0;               // the unserialize callback's result
    std::vector<std::string> lines;  // "function: text", as logged meanwhile
    std::vector<uint8_t> again;      // accepted: the context serialized again
};

Verdict check(const Message &m, uint32_t bodyType, const uint8_t *body, size_t length);

// "refused (code 4, payload)" and the lines, or "accepted by the library".
std::string describe(const Verdict &v);

}  // namespace wifiap::tools
