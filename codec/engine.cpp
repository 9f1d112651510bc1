#include "engine.h"

namespace wifiap::codec {

namespace {

struct Where {
    Who who;
    const void *pBody;
};

// Bare payloads and the body header log as the body; a record as itself.
Where where(const Desc &d, const uint8_t *start, const ReadLog *log) {
    Where w{Who{"intfWifiAp_", d.name, "_unserialize"}, start};
    if (log && log->who) w.who = *log->who;
    if (log && log->pBody) w.pBody = log->pBody;
    return w;
}

// The fields after `idx` that would have had an element are named as not read.
void errorBefore(const Desc &d, uint32_t idx, const Where &w) {
    for (uint32_t i = idx + 1; i < d.count; ++i)
        if (hasElement(d.fields[i].kind))
            WLOG_ERR(w.who, TXT_ERROR_BEFORE, w.pBody, int(d.firstTag + i));
}

// n bytes at p + at as a big-endian number, the bytes past the end taken as 0.
uint64_t peek(const uint8_t *p, size_t left, size_t at, size_t n) {
    uint64_t v = 0;
    for (size_t i = 0; i < n; ++i) v = v << 8 | (at + i < left ? p[at + i] : 0);
    return v;
}

}  // namespace

void failElement(const Desc &d, uint32_t idx, const uint8_t *p, size_t left,
                 const uint8_t *start, const ReadLog *log) {
    Where w = where(d, start, log);
    unsigned expected = d.firstTag + idx;
    if (d.fields[idx].kind == Kind::U64)
        WLOG_ERR(w.who, TXT_TL64, w.pBody, (unsigned long long)peek(p, left, 0, 8),
                 (unsigned long long)peek(p, left, 8, 8), expected);
    else
        WLOG_ERR(w.who, TXT_TL, w.pBody, unsigned(peek(p, left, 0, 4)),
                 unsigned(peek(p, left, 4, 4)), expected);
    errorBefore(d, idx, w);
}

void failText(const Desc &d, uint32_t idx, const uint8_t *p, const uint8_t *start,
              const ReadLog *log) {
    // The text is what precedes the element's first NUL, or the whole value
    // when it holds none; it would have fit in neither more than the field
    // nor more than the element.
    const size_t cap = d.fields[idx].cap, len = get32(p + 4);
    const size_t chainIn = strnlen(reinterpret_cast<const char *>(p + 8), len) + 1;
    Where w = where(d, start, log);
    WLOG_ERR(w.who, TXT_CHAIN, int(chainIn), int(len < cap ? len : cap));
    errorBefore(d, idx, w);
}

void failAfter(const Desc &d, uint32_t idx, const uint8_t *start, const ReadLog *log) {
    errorBefore(d, idx, where(d, start, log));
}

void copyFailed(const Desc &d, const Field &f, uint32_t status) {
    Who who{"intfWifiAp_", d.name, "_copy"};
    if (f.kind == Kind::List)
        WLOG_ERR(who, TXT_COPY_FAILED_U, f.sub->name, status);
    else
        WLOG_ERR(who, TXT_COPY_FAILED_D, f.sub->name, int(status));
}

void copyText(char *dst, const char *src, size_t cap) {
    strncpy(dst, src, cap);
    dst[cap - 1] = '\0';
}

}  // namespace wifiap::codec
