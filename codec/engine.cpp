#include "engine.h"

namespace wifiap::codec {

namespace {

// Who a refusal's lines name and the address they give: a bare payload and
// the body header log as the body; a record as itself, from its own start.
struct LineOf {
    Who who;
    const void *pBody;
};

LineOf lineOf(const LogSink &s) {
    LineOf l{Who{"intfWifiAp_", s.d->name, "_unserialize"}, s.start};
    if (s.log && s.log->who) l.who = *s.log->who;
    if (s.log && s.log->pBody) l.pBody = s.log->pBody;
    return l;
}

// The fields after `idx` that would have had an element are named as not read.
bool errorBefore(const LogSink &s, uint32_t idx, const LineOf &l) {
    const Desc &d = *s.d;
    for (uint32_t i = idx + 1; i < d.count; ++i)
        if (hasElement(d.fields[i].kind))
            WLOG_ERR(l.who, TXT_ERROR_BEFORE, l.pBody, int(d.firstTag + i));
    return false;
}

// n bytes at p + at as a big-endian number, the bytes past the end taken as 0.
uint64_t peek(const uint8_t *p, size_t left, size_t at, size_t n) {
    uint64_t v = 0;
    for (size_t i = 0; i < n; ++i) v = v << 8 | (at + i < left ? p[at + i] : 0);
    return v;
}

// Bounded text copy into a field of `cap` bytes: strncpy, then the last byte
// forced to NUL, so a longer text is cut, never refused.
void copyText(char *dst, const char *src, size_t cap) {
    strncpy(dst, src, cap);
    dst[cap - 1] = '\0';
}

size_t width(Kind k) { return k == Kind::U8 || k == Kind::S8 ? 1 : k == Kind::S16 ? 2 : 4; }

}  // namespace

bool LogSink::refuse(uint32_t idx, const Reader &rd) const {
    const LineOf l = lineOf(*this);
    const uint8_t *p = rd.p;
    const size_t left = rd.left;
    unsigned expected = d->firstTag + idx;
    if (d->fields[idx].kind == Kind::U64)
        WLOG_ERR(l.who, TXT_TL64, l.pBody, (unsigned long long)peek(p, left, 0, 8),
                 (unsigned long long)peek(p, left, 8, 8), expected);
    else
        WLOG_ERR(l.who, TXT_TL, l.pBody, unsigned(peek(p, left, 0, 4)),
                 unsigned(peek(p, left, 4, 4)), expected);
    return errorBefore(*this, idx, l);
}

bool LogSink::refuseText(uint32_t idx, const uint8_t *p) const {
    // The text is what precedes the element's first NUL, or the whole value
    // when it holds none; it would have fit in neither more than the field
    // nor more than the element.
    const size_t cap = d->fields[idx].cap, len = get32(p + 4);
    const size_t chainIn = strnlen(reinterpret_cast<const char *>(p + 8), len) + 1;
    const LineOf l = lineOf(*this);
    WLOG_ERR(l.who, TXT_CHAIN, int(chainIn), int(len < cap ? len : cap));
    return errorBefore(*this, idx, l);
}

bool LogSink::refuseAfter(uint32_t idx) const { return errorBefore(*this, idx, lineOf(*this)); }

uint32_t walkSize(const Desc &d, const uint8_t *rec) {
    uint32_t sum = 0;
    for (uint32_t i = 0; i < d.count; ++i) {
        const Field &f = d.fields[i];
        if (hasElement(f.kind)) {
            sum += leafSize(f, rec);
        } else if (f.kind == Kind::Nested) {
            sum += walkSize(*f.sub, rec + f.off);
        } else {
            for (uint32_t k = 0, n = items(rec, f); k < n; ++k)
                sum += walkSize(*f.sub, rec + f.off + k * f.stride);
        }
    }
    return sum;
}

uint8_t *walkWrite(const Desc &d, const uint8_t *rec, uint8_t *p) {
    for (uint32_t i = 0; i < d.count; ++i) {
        const Field &f = d.fields[i];
        if (hasElement(f.kind)) {
            p = writeLeaf(f, d.firstTag + i, rec, p);
        } else if (f.kind == Kind::Nested) {
            p = walkWrite(*f.sub, rec + f.off, p);
        } else {
            for (uint32_t k = 0, n = items(rec, f); k < n; ++k)
                p = walkWrite(*f.sub, rec + f.off + k * f.stride, p);
        }
    }
    return p;
}

// Items of words alone that fill their slot: the walk would copy every byte
// of them, so one memcpy of the whole list does. The station list's 31,200
// rates took 450 µs walked one by one.
static bool wordsFillSlot(const Desc &d, uint32_t stride) {
    uint32_t sum = 0;
    for (uint32_t i = 0; i < d.count; ++i) {
        Kind k = d.fields[i].kind;
        if (!isScalar(k) && k != Kind::U64) return false;
        sum += k == Kind::U64 ? 8 : uint32_t(width(k));
    }
    return sum == stride;
}

uint32_t walkCopy(const Desc &d, uint8_t *dst, const uint8_t *src) {
    for (uint32_t i = 0; i < d.count; ++i) {
        const Field &f = d.fields[i];
        if (f.kind == Kind::Text) {
            copyText(reinterpret_cast<char *>(dst + f.off),
                     reinterpret_cast<const char *>(src + f.off), f.cap);
        } else if (hasElement(f.kind)) {
            memcpy(dst + f.off, src + f.off, f.kind == Kind::U64 ? 8 : width(f.kind));
        } else if (f.kind == Kind::List && wordsFillSlot(*f.sub, f.stride)) {
            memcpy(dst + f.off, src + f.off, size_t(items(src, f)) * f.stride);
        } else {
            const uint32_t n = f.kind == Kind::Nested ? 1 : items(src, f);
            for (uint32_t k = 0; k < n; ++k) {
                const uint32_t at = f.off + k * f.stride;
                // No copy fails (texts are cut, not refused); the lines stay for
                // a record whose copy one day can.
                if (uint32_t st = walkCopy(*f.sub, dst + at, src + at)) {
                    Who who{"intfWifiAp_", d.name, "_copy"};
                    if (f.kind == Kind::List) WLOG_ERR(who, TXT_COPY_FAILED_U, f.sub->name, st);
                    else WLOG_ERR(who, TXT_COPY_FAILED_D, f.sub->name, int(st));
                    return st;
                }
            }
        }
    }
    return INTFWIFIAP_STATUS_OK;
}

// Records own nothing: cleaning one releases nothing, in it or its items.
void walkClean(const Desc &, uint8_t *) {}

uint32_t tableSize(const Desc &d, const void *rec) {
    return walkSize(d, static_cast<const uint8_t *>(rec));
}
uint8_t *tableWrite(const Desc &d, const void *rec, uint8_t *cursor) {
    return walkWrite(d, static_cast<const uint8_t *>(rec), cursor);
}
uint32_t tableRead(const Desc &d, void *rec, const uint8_t **cursor, size_t left,
                   const ReadLog &log) {
    Reader rd{*cursor, left};
    uint32_t st = walkReadWith(d, static_cast<uint8_t *>(rec), rd, LogSink{&log});
    *cursor = rd.p;
    return st;
}


}  // namespace wifiap::codec

using namespace wifiap::codec;

uint32_t Ops::copy(void *dst, const void *src) const {
    return walkCopy(*desc, static_cast<uint8_t *>(dst), static_cast<const uint8_t *>(src));
}

void Ops::clean(void *rec) const { walkClean(*desc, static_cast<uint8_t *>(rec)); }

// A record comes as one address; bare fields as one each.
const char *Ops::missing(const void *const *args) const {
    if (!desc->bare) return args[0] ? nullptr : name;
    for (uint32_t i = 0; i < desc->count; ++i)
        if (!args[i]) return desc->fields[i].name;
    return nullptr;
}

uint32_t Ops::fill(void *payload, const void *const *args) const {
    if (!desc->bare) return copy(payload, args[0]);
    for (uint32_t i = 0; i < desc->count; ++i) {
        const Field &f = desc->fields[i];
        auto *at = static_cast<uint8_t *>(payload) + f.off;
        if (f.kind == Kind::Text)
            copyText(reinterpret_cast<char *>(at), static_cast<const char *>(args[i]), f.cap);
        else
            memcpy(at, args[i], sizeof(uint32_t));  // bare words are 32-bit
    }
    return INTFWIFIAP_STATUS_OK;
}
