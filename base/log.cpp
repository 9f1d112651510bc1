#include "log.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>

namespace wifiap {

namespace {

// Long enough for every line the library writes; a longer one (a huge bus
// name) is cut rather than dropped.
constexpr int kLineMax = 512;

void vlog(int prio, const Who &who, int line, const char *fmt, va_list ap) {
    char buf[kLineMax];
    int n = snprintf(buf, sizeof buf, "[INTFWIFIAP] -> %s%s%s%s(%d): ", who.p0, who.p1, who.p2,
                     who.p3, line);
    if (n < 0) return;
    if (n < kLineMax) vsnprintf(buf + n, sizeof buf - n, fmt, ap);
    syslog(prio, "%s", buf);
}

}  // namespace

void logAt(int prio, const Who &who, int line, const char *fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    vlog(prio, who, line, fmt, ap);
    va_end(ap);
}

void magicFailed(const Who &who, int line, bool check, const char *magicName, uint32_t magic,
                 const void *ctx, uint32_t found) {
    logAt(LOG_EMERG, who, line, check ? TXT_CHECK_MAGIC : TXT_MAGIC, magicName, magic, ctx, found,
          "");
    abort();
}

}  // namespace wifiap
