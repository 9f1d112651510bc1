// The walk of a body along the record tables, and the generic walk.
#include "decode.h"

#include <inttypes.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include <algorithm>

#include <strings.h>

#include "messages.h"
#include "wire.h"

namespace wifiap::tools {

namespace {

namespace c = wifiap::codec;
using c::Kind;

void appendf(std::string &out, const char *fmt, ...) __attribute__((format(printf, 2, 3)));
void appendf(std::string &out, const char *fmt, ...) {
    char buf[256];
    va_list ap;
    va_start(ap, fmt);
    int n = vsnprintf(buf, sizeof buf, fmt, ap);
    va_end(ap);
    out.append(buf, n < 0 ? 0 : std::min<size_t>(size_t(n), sizeof buf - 1));
}

void quoted(std::string &out, const uint8_t *p, size_t n) {
    out += '"';
    for (size_t i = 0; i < n; ++i) {
        if (p[i] == '"' || p[i] == '\\') out += '\\';
        if (p[i] >= 0x20 && p[i] < 0x7F) out += char(p[i]);
        else appendf(out, "\\x%02x", p[i]);
    }
    out += '"';
}

#define WIFIAP_CMD_ROW(N, s, U, version, Req, Res)                                        \
    {#N, false, INTFWIFIAP_CMD_##U, INTFWIFIAP_MAGIC_MSGCMD_##U, version, &c::k##Req##Desc,     \
     c::k##Res##Desc.count ? &c::k##Res##Desc : nullptr},
#define WIFIAP_NTFY_ROW(N, s, U, version, Payload, update)                                   \
    {#N, true, INTFWIFIAP_NTFY_##U, INTFWIFIAP_MAGIC_MSGNTFY_##U, version, &c::k##Payload##Desc, \
     nullptr},
constexpr Message kMessages[] = {WIFIAP_MESSAGES(WIFIAP_CMD_ROW, WIFIAP_NTFY_ROW)};

// Where a body's description goes, shared by every level of the walk.
struct Out {
    std::string &text;
    const uint8_t *body;
    const Style &style;
    std::vector<Element> *found = nullptr;  // where the elements read lie, if wanted

    void line(int depth, const char *fmt, ...) __attribute__((format(printf, 3, 4))) {
        text.append(size_t(style.indent + 4 * depth), ' ');
        va_list ap;
        va_start(ap, fmt);
        char buf[256];
        vsnprintf(buf, sizeof buf, fmt, ap);
        va_end(ap);
        text += buf;
    }
};

// The library's own walk, told to describe: every element it reads, every
// nested record and list item it enters, and where and why it stops. What it
// accepts and refuses is the library's, since the rules are the same code.
struct Describe {
    static constexpr bool kExactOnly = false;
    Out *out;
    int depth = 0;
    bool quiet = false;  // beyond a list's shown items: read, not printed
    const c::Desc *d = nullptr;

    void begin(const c::Desc &desc, const uint8_t *) { d = &desc; }

    bool fail(const c::Reader &rd, uint32_t idx, const char *what) const {
        const c::Field &f = d->fields[idx];
        out->line(depth, "!! offset %zu: %s (tag %" PRIu32 " %s expected)\n",
                  size_t(rd.p - out->body), what, d->firstTag + idx, f.name);
        return false;
    }
    // The rules have refused the element: say what its header holds.
    bool refuse(uint32_t idx, const c::Reader &rd) const {
        const bool wide = d->fields[idx].kind == Kind::U64;
        const size_t head = wide ? 16 : 8;
        if (rd.left < head) return fail(rd, idx, "the body ends");
        const uint64_t tag = wide ? c::get64(rd.p) : c::get32(rd.p);
        const uint64_t len = wide ? c::get64(rd.p + 8) : c::get32(rd.p + 4);
        if (tag != d->firstTag + idx) {
            char what[64];
            snprintf(what, sizeof what, "tag %" PRIu64 " length %" PRIu64, tag, len);
            return fail(rd, idx, what);
        }
        return fail(rd, idx, "the value overruns the body");
    }
    bool refuseText(uint32_t idx, const uint8_t *p) const {
        const uint32_t len = c::get32(p + 4), cap = d->fields[idx].cap;
        const c::Reader at{p, 0};
        if (!memchr(p + 8, 0, len)) return fail(at, idx, "a text without its NUL");
        char what[64];
        snprintf(what, sizeof what, "a text of %zu bytes for a field of %" PRIu32,
                 strnlen(reinterpret_cast<const char *>(p + 8), len) + 1, cap);
        return fail(at, idx, what);
    }
    bool refuseAfter(uint32_t) const { return false; }

    void leaf(uint32_t idx, const uint8_t *at, const uint8_t *rec) const {
        const c::Field &f = d->fields[idx];
        if (out->found) {
            const bool wide = f.kind == Kind::U64;
            out->found->push_back({size_t(at - out->body), wide ? 16u : 8u,
                                   wide ? uint32_t(c::get64(at + 8)) : c::get32(at + 4),
                                   f.kind == Kind::Text, f.cap});
        }
        if (quiet) return;
        const uint32_t tag = d->firstTag + idx;
        const uint8_t *v = rec + f.off;
        int32_t i32 = 0;
        uint32_t u32 = 0;
        uint64_t u64 = 0;
        switch (f.kind) {
        case Kind::Text:
            out->line(depth, "%2" PRIu32 " %s = ", tag, f.name);
            quoted(out->text, v, strlen(reinterpret_cast<const char *>(v)));
            out->text += '\n';
            return;
        case Kind::U8: out->line(depth, "%2" PRIu32 " %s = %u\n", tag, f.name, unsigned(*v)); return;
        case Kind::S8: out->line(depth, "%2" PRIu32 " %s = %d\n", tag, f.name, int(int8_t(*v))); return;
        case Kind::S16: {
            int16_t w;
            memcpy(&w, v, sizeof w);
            i32 = w;
            out->line(depth, "%2" PRIu32 " %s = %" PRId32 "\n", tag, f.name, i32);
            return;
        }
        case Kind::U64:
            memcpy(&u64, v, sizeof u64);
            out->line(depth, "%2" PRIu32 " %s = %" PRIu64 "\n", tag, f.name, u64);
            return;
        default:
            memcpy(&u32, v, sizeof u32);
            if (strcmp(f.name, "magic") == 0)
                out->line(depth, "%2" PRIu32 " %s = 0x%08" PRIX32 "\n", tag, f.name, u32);
            else
                out->line(depth, "%2" PRIu32 " %s = %" PRIu32 "\n", tag, f.name, u32);
            return;
        }
    }

    uint32_t shown(uint32_t n) const {
        return out->style.maxItems ? std::min(n, out->style.maxItems) : n;
    }
    Describe inner(uint32_t idx, uint32_t k, uint32_t n) const {
        const c::Field &f = d->fields[idx];
        Describe in{out, depth + 1, quiet || (f.kind == Kind::List && k >= shown(n))};
        if (in.quiet) return in;
        if (f.kind == Kind::List) out->line(depth, "   %s[%" PRIu32 "]: %s\n", f.name, k, f.sub->name);
        else out->line(depth, "   %s: %s\n", f.name, f.sub->name);
        return in;
    }
    void listed(uint32_t idx, uint32_t n) const {
        const c::Field &f = d->fields[idx];
        if (!quiet && f.kind == Kind::List && shown(n) < n)
            out->line(depth, "   %s: %" PRIu32 " more items not shown\n", f.name, n - shown(n));
    }
};

// Reads the body header with the library's rules; false if they refuse it.
bool readHeader(Out &out, c::Reader &rd, c::Header &h) {
    return c::walkReadWith(c::kHeaderDesc, reinterpret_cast<uint8_t *>(&h), rd, Describe{&out}) == 0;
}

}  // namespace

std::span<const Message> messages() { return kMessages; }

size_t extent(const c::Desc &d) {
    size_t end = 0;
    for (uint32_t i = 0; i < d.count; ++i) {
        const c::Field &f = d.fields[i];
        const size_t width = f.kind == Kind::Text     ? f.cap
                             : f.kind == Kind::Nested ? extent(*f.sub)
                             : f.kind == Kind::List   ? size_t(f.cap) * f.stride
                                                      : 8;
        end = std::max(end, f.off + width);
    }
    return end;
}

const char *tableName(bool isNtfy) { return isNtfy ? "IntfWifiApNtfy" : "IntfWifiApCmd"; }
const char *sideName(const Message &m, uint32_t bodyType) {
    return m.ntfy ? "notification" : bodyType ? "response" : "request";
}

const Message *findMessage(std::string_view name) {
    for (const Message &m : kMessages)
        if (name.size() == strlen(m.name) && strncasecmp(m.name, name.data(), name.size()) == 0)
            return &m;
    return nullptr;
}

const Message *findMessage(std::string_view table, uint32_t index) {
    for (const Message &m : kMessages)
        if (table == tableName(m.ntfy) && m.index == index) return &m;
    return nullptr;
}

std::vector<Candidate> candidates(const uint8_t *body, size_t length) {
    std::vector<Candidate> v;
    std::string ignored;
    const Style quiet;
    Out out{ignored, body, quiet};
    c::Reader rd{body, length};
    c::Header h{};
    if (!readHeader(out, rd, h)) return v;
    for (const Message &m : messages()) {
        if (m.magic != h.magic || m.version != (h.version & 0xFFFF)) continue;
        v.push_back({&m, INTFWIFIAP_BODY_REQUEST});
        if (m.res) v.push_back({&m, INTFWIFIAP_BODY_RESPONSE});
    }
    return v;
}

namespace {
bool decodeTo(Out &out, const Message &m, uint32_t bodyType, size_t length) {
    if (bodyType > 1 || (bodyType == 1 && !m.res)) {
        out.line(0, "!! body type %" PRIu32 ": %s has no such body\n", bodyType, m.name);
        return false;
    }
    c::Reader rd{out.body, length};
    c::Header h{};
    if (!readHeader(out, rd, h)) return false;
    if (h.magic != m.magic) {
        out.line(0, "!! magic 0x%08" PRIX32 " is not %s's 0x%08" PRIX32 "\n", h.magic, m.name,
                 m.magic);
        return false;
    }
    if ((h.version & 0xFFFF) != m.version) {
        out.line(0, "!! version %" PRIu32 " is not %s's %u\n", h.version, m.name, m.version);
        return false;
    }
    if (const c::Desc *payload = bodyType ? m.res : m.req) {
        if (!payload->bare) out.line(0, "   %s:\n", payload->name);
        std::vector<uint64_t> mem((extent(*payload) + 7) / 8);
        if (c::walkReadWith(*payload, reinterpret_cast<uint8_t *>(mem.data()), rd,
                            Describe{&out, payload->bare ? 0 : 1}) != 0)
            return false;
    }
    if (rd.left) out.line(0, "   (%zu more bytes after the payload)\n", rd.left);
    return true;
}
}  // namespace

bool decode(std::string &text, const Message &m, uint32_t bodyType, const uint8_t *body,
            size_t length, const Style &style) {
    Out out{text, body, style};
    return decodeTo(out, m, bodyType, length);
}

std::vector<Element> elements(const Message &m, uint32_t bodyType, const uint8_t *body,
                              size_t length) {
    std::string ignored;
    const Style style;
    std::vector<Element> found;
    Out out{ignored, body, style, &found};
    decodeTo(out, m, bodyType, length);
    return found;
}

bool walk(std::string &out, const uint8_t *body, size_t length, const Style &style) {
    Out w{out, body, style};
    size_t pos = 0;
    auto left = [&] { return length - pos; };
    while (left()) {
        if (left() < 8) {
            w.line(0, "!! offset %zu: %zu bytes, too few for an element\n", pos, left());
            return false;
        }
        const uint32_t tag = c::get32(body + pos), len = c::get32(body + pos + 4);
        const uint8_t *v = body + pos + 8;
        if (left() - 8 < len) {
            w.line(0, "!! offset %zu: tag %" PRIu32 " length %" PRIu32 " overruns the body\n",
                   pos, tag, len);
            return false;
        }
        w.line(0, "%2" PRIu32 " (%" PRIu32 " bytes) ", tag, len);
        const uint8_t *nul = static_cast<const uint8_t *>(memchr(v, 0, len));
        bool text = nul && nul > v;
        for (const uint8_t *p = v; text && p < nul; ++p) text = *p >= 0x20 && *p < 0x7F;
        for (const uint8_t *p = nul; text && p < v + len; ++p) text = *p == 0;
        if (len == 4) {
            appendf(out, "%" PRIu32 " (0x%08" PRIX32 ")", c::get32(v), c::get32(v));
            if (text) {
                out += " or ";
                quoted(out, v, size_t(nul - v));
            }
            out += '\n';
        } else if (text) {
            quoted(out, v, size_t(nul - v));
            out += '\n';
        } else {
            for (uint32_t i = 0; i < len; ++i) appendf(out, "%02x", v[i]);
            out += '\n';
        }
        pos += 8 + len;
    }
    return true;
}

void hexDump(std::string &out, const uint8_t *body, size_t length, int indent) {
    for (size_t i = 0; i < length; i += 16) {
        out.append(size_t(indent), ' ');
        appendf(out, "%06zx ", i);
        for (size_t j = i; j < i + 16 && j < length; ++j) appendf(out, " %02x", body[j]);
        out += '\n';
    }
}

}  // namespace wifiap::tools
