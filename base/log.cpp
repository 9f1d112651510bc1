#include "log.h"

#include <alloca.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>

namespace wifiap {

namespace {

// The prefix, the function name and the source line become part of the
// format, so that syslog formats the arguments itself and no line is cut,
// however long a bus name in it is. The pieces are the library's own
// constant names: none holds a '%'.
void vlog(int prio, const Who &who, int line, const char *fmt, va_list ap) {
    static const char kFormat[] = "[INTFWIFIAP] -> %s%s%s%s(%d): %s";
    int n = snprintf(nullptr, 0, kFormat, who.p0, who.p1, who.p2, who.p3, line, fmt);
    if (n < 0) return;
    char *format = static_cast<char *>(alloca(size_t(n) + 1));
    snprintf(format, size_t(n) + 1, kFormat, who.p0, who.p1, who.p2, who.p3, line, fmt);
    vsyslog(prio, format, ap);
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
