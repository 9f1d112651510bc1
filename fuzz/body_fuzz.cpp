// Feeds arbitrary bodies to every message's unserialize callback, with the
// received length, and round-trips what it accepts. Built with clang's
// libFuzzer and AddressSanitizer: any read past a body, leak or crash fails.
#include <stdarg.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include "intfWifiAp.h"
#include "messages.h"

extern "C" void __wrap_vsyslog(int, const char *, va_list) {}

// Magic and body version of each row, so that most inputs reach the payload.
#define WIFIAP_CMD_HEADER(N, s, U, version, ...) {INTFWIFIAP_MAGIC_MSGCMD_##U, version},
#define WIFIAP_NTFY_HEADER(N, s, U, version, ...) {INTFWIFIAP_MAGIC_MSGNTFY_##U, version},
const struct {
    uint32_t magic, version;
} kHeaders[] = {WIFIAP_MESSAGES(WIFIAP_CMD_HEADER, WIFIAP_NTFY_HEADER)};

void put(uint8_t *p, uint32_t v) {
    for (int i = 0; i < 4; ++i) p[i] = uint8_t(v >> (24 - 8 * i));
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size < 2) return 0;
    const uint32_t rows = INTFWIFIAP_CMD_COUNT + INTFWIFIAP_NTFY_COUNT;
    const uint32_t row = data[0] % rows, type = data[1] % 3;
    // Second byte even: the body gets a valid header before the fuzzed payload.
    const bool header = data[1] % 2 == 0;
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
    free(body);
    return 0;
}
