#include "check.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <memory>

#include "intfWifiAp.h"
#include "logline.h"

namespace {
std::vector<std::string> g_lines;
}

// The library's lines come here, as "name: text", rather than to the system log.
extern "C" void __wrap_vsyslog(int, const char *fmt, va_list ap) {
    wifiap::tools::LogLine l = wifiap::tools::splitLogLine(wifiap::tools::vformat(fmt, ap));
    std::string s = l.prefixed ? l.name + ": " + l.text : l.text;
    while (!s.empty() && s.back() == '\n') s.pop_back();
    g_lines.push_back(std::move(s));
}

namespace wifiap::tools {

Verdict check(const Message &m, uint32_t bodyType, const uint8_t *body, size_t length) {
    const intfWifiAp_msgEntry &row = m.ntfy ? intfWifiAp_base.ntfy[m.index]
                                            : intfWifiAp_base.cmd[m.index];
    // An exact-size copy: a read past the end would be the library's fault.
    std::unique_ptr<uint8_t[]> copy(new uint8_t[length ? length : 1]);
    if (length) memcpy(copy.get(), body, length);
    g_lines.clear();
    Verdict v;
    void *ctx = nullptr;
    uint32_t size = uint32_t(length);
    v.code = row.unserializeBody(bodyType, copy.get(), &ctx, &size);
    if (v.code == INTFWIFIAP_BODY_OK) {
        uint8_t *again = nullptr;
        uint32_t n = 0;
        if (row.serializeBody(bodyType, ctx, &again, &n) == INTFWIFIAP_BODY_OK) {
            v.again.assign(again, again + n);
            free(again);
        }
        row.freeBody(bodyType, ctx);
    }
    v.lines = std::move(g_lines);
    g_lines.clear();
    return v;
}

std::string describe(const Verdict &v) {
    static const char *const kWhat[] = {"", "body type not handled", "header", "", "payload",
                                        "memory"};
    if (v.code == INTFWIFIAP_BODY_OK) return "accepted by the library\n";
    char head[96];
    snprintf(head, sizeof head, "refused by the library: code %u (%s)\n", unsigned(v.code),
             v.code < 6 ? kWhat[v.code] : "record");
    std::string s(head);
    for (const std::string &l : v.lines) s += "  " + l + "\n";
    return s;
}

}  // namespace wifiap::tools
