// Feeds arbitrary bodies to every message's unserialize callback, with the
// received length, and round-trips what it accepts. Then reads the payload
// with its record's exported reader, which takes no end, placed before an
// unreadable page: where the rules judge the bytes alone, it must read them
// as the rules do and touch nothing after them. Built with clang's libFuzzer
// and AddressSanitizer: any read past a body, leak or crash fails.
#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <utility>

#include "exchange.h"
#include "intfWifiAp.h"
#include "logline.h"
#include "messages.h"
#include "page_end.h"

namespace {
std::string g_logged;
}

extern "C" void __wrap_vsyslog(int, const char *f, va_list ap) {
    g_logged += wifiap::tools::vformat(f, ap);
}

namespace {

// Magic and body version of each row, so that most inputs reach the payload.
#define WIFIAP_CMD_HEADER(N, s, U, version, ...) {INTFWIFIAP_MAGIC_MSGCMD_##U, version},
#define WIFIAP_NTFY_HEADER(N, s, U, version, ...) {INTFWIFIAP_MAGIC_MSGNTFY_##U, version},
const struct {
    uint32_t magic, version;
} kHeaders[] = {WIFIAP_MESSAGES(WIFIAP_CMD_HEADER, WIFIAP_NTFY_HEADER)};

// Every record's exported reader, beside the rules it must agree with.
#define WIFIAP_RECORD_READER(R, C)                                          \
    {&wifiap::codec::k##C, [](void *r, const uint8_t **c) {                  \
         return intfWifiAp_##R##_unserialize(static_cast<R *>(r), c);        \
     }},
const struct {
    const wifiap::codec::Ops *ops;
    uint32_t (*unserialize)(void *, const uint8_t **);
} kRecords[] = {WIFIAP_RECORDS(WIFIAP_RECORD_READER)};
constexpr size_t kRecordCount = sizeof kRecords / sizeof kRecords[0];
static_assert(kRecordCount == 15);

void put(uint8_t *p, uint32_t v) {
    for (int i = 0; i < 4; ++i) p[i] = uint8_t(v >> (24 - 8 * i));
}

void checkRecord(size_t which, const uint8_t *p, size_t n) {
    const auto &r = kRecords[which];
    auto rules = [&](void *rec, const uint8_t **c, size_t left) {
        return r.ops->read(rec, c, left, {});
    };
    auto logged = [] { return std::exchange(g_logged, std::string()); };
    std::string why;
    if (page_end::judgeCuts(r.ops->bytes, p, n, rules, r.unserialize, logged, &why) ==
        page_end::Verdict::Differs) {
        fprintf(stderr, "intfWifiAp_%s_unserialize reads otherwise than the rules:\n%s\n",
                r.ops->name, why.c_str());
        abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size < 2) return 0;
    const uint32_t rows = INTFWIFIAP_CMD_COUNT + INTFWIFIAP_NTFY_COUNT;
    const uint32_t row = data[0] % rows, type = data[1] % 3;
    // Second byte even: the body gets a valid header before the fuzzed payload.
    const bool header = data[1] % 2 == 0;
    const uint8_t selector = data[0];
    data += 2, size -= 2;
    const intfWifiAp_msgEntry &e = row < INTFWIFIAP_CMD_COUNT
                                       ? intfWifiAp_base.cmd[row]
                                       : intfWifiAp_base.ntfy[row - INTFWIFIAP_CMD_COUNT];
    // An exact copy, so that any read past its end is caught.
    const size_t n = size + (header ? 24 : 0);
    uint8_t *body = static_cast<uint8_t *>(malloc(n ? n : 1));
    if (header) {
        const uint32_t words[] = {0, 4, kHeaders[row].magic, 1, 4, kHeaders[row].version};
        for (int i = 0; i < 6; ++i) put(body + 4 * i, words[i]);
    }
    memcpy(body + (header ? 24 : 0), data, size);
    void *ctx = nullptr;
    uint32_t ctxSize = static_cast<uint32_t>(n);
    if (e.unserializeBody(type, body, &ctx, &ctxSize) == 0) {
        uint8_t *out = nullptr;
        uint32_t len = 0;
        if (e.serializeBody(type, ctx, &out, &len) != 0) abort();  // accepted must be writable
        free(out);
        e.freeBody(type, ctx);
    } else if (ctx) {
        abort();  // a refusal leaves no context
    }
    // The record readers: a message's payload record after the body's header,
    // or (body type 2, which no message has) any record, chosen by the first byte.
    const wifiap::msg::Row &d = row < INTFWIFIAP_CMD_COUNT
                                     ? wifiap::msg::kCmds[row]
                                     : wifiap::msg::kNtfys[row - INTFWIFIAP_CMD_COUNT];
    const wifiap::codec::Ops *payload = type == 0 ? d.req : type == 1 ? d.res : nullptr;
    for (size_t i = 0; i < kRecordCount; ++i)
        if (type == 2 ? i == selector % kRecordCount : kRecords[i].ops == payload)
            type == 2 ? checkRecord(i, data, size)
                      : n >= 24 ? checkRecord(i, body + 24, n - 24) : void();
    free(body);
    g_logged.clear();
    return 0;
}
