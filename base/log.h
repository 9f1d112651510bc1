// One way to write a line: syslog, "[INTFWIFIAP] -> name(line): text".
#pragma once

#include <stdint.h>
#include <syslog.h>

namespace wifiap {

// A function name as it appears in log lines, built from up to four pieces so
// that the hundreds of per-message names are never spelled out in full.
struct Who {
    const char *p0;
    const char *p1 = "";
    const char *p2 = "";
    const char *p3 = "";
};

void logAt(int prio, const Who &who, int line, const char *fmt, ...)
    __attribute__((format(printf, 4, 5)));

// Fatal magic check: LOG_EMERG, then abort. `check` selects the context form
// ("Check Magic[...") over the descriptor's ("Magic[...").
[[noreturn]] void magicFailed(const Who &who, int line, bool check, const char *magicName,
                              uint32_t magic, const void *ctx, uint32_t found);

inline void checkMagic(const Who &who, int line, const char *magicName, uint32_t magic,
                       const void *ctx) {
    uint32_t found = *static_cast<const uint32_t *>(ctx);
    if (found != magic) magicFailed(who, line, true, magicName, magic, ctx, found);
}

}  // namespace wifiap

#define WLOG(prio, who, ...) ::wifiap::logAt(prio, who, __LINE__, __VA_ARGS__)
#define WLOG_ERR(who, ...) WLOG(LOG_ERR, who, __VA_ARGS__)
#define CHECK_MAGIC(who, name, magic, ctx) ::wifiap::checkMagic(who, __LINE__, name, magic, ctx)

// Log texts, each written once. Most end in a line feed; the free callbacks'
// "Type unknown" line is the one that does not.
#define TXT_CHECK_MAGIC "Check Magic[%s-%X] Ctx[ptr(%p) magic(%X)] text[%s]\n"
#define TXT_MAGIC "Magic[%s-%X] Ctx[ptr(%p) magic(%X)] text[%s]\n"
#define TXT_CHECK_STATE "Check State[%s-%X] Ctx[ptr(%p) state(%X)] text[%s]\n"
#define TXT_SET_FLAG "Set Flag[%s-%X] in ctx(%p) already set[%X] text[%s]\n"
#define TXT_UNSET_FLAG "Unset Flag[%s-%X] in ctx(%p) not set[%X] text[%s]\n"
#define TXT_SET_STATE "Set State[%s-%d] in ctx(%p) already set\n"
#define TXT_CTX_NULL "Ctx[NULL] text[%s]\n"
#define TXT_ALLOC_CTX "Allocating Memory Ctx[%s]\n"
#define TXT_ALLOC_N "Allocating Memory N Ctx[%s]\n"
#define TXT_TYPE_UNKNOWN "Type(%d) unknown\n"
#define TXT_TYPE_UNKNOWN_NOLF "Type(%d) unknown"
#define TXT_TL "pBody(%p): Tl(%u-%u) expectded(%u)\n"
#define TXT_TL64 "pBody(%p): Tl(%llu-%llu) expectded(%u)\n"
#define TXT_CHAIN "lgChainIn(%d) lgMaxChainOut(%d)\n"
#define TXT_ERROR_BEFORE "pBody(%p): Type(%d) -> Error Before\n"
#define TXT_COPY_FAILED_U "Copy %s failed(%u)\n"
#define TXT_COPY_FAILED_D "Copy %s failed(%d)\n"
#define TXT_COPY_FAILED "Copy %s failed\n"
