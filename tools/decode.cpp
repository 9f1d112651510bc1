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

#define WIFIAP_CMD_ROW(N, s, U, version, Req, Res)                                    \
    {#N, false, INTFWIFIAP_CMD_##U, INTFWIFIAP_MAGIC_MSGCMD_##U, version, &c::k##Req##Desc, \
     c::k##Res##Desc.count ? &c::k##Res##Desc : nullptr},
#define WIFIAP_NTFY_ROW(N, s, U, version, Payload, update)                                 \
    {#N,     true, INTFWIFIAP_NTFY_##U, INTFWIFIAP_MAGIC_MSGNTFY_##U, version, &c::k##Payload##Desc, \
     nullptr},
constexpr Message kMessages[] = {WIFIAP_MESSAGES(WIFIAP_CMD_ROW, WIFIAP_NTFY_ROW)};

// One body being walked. Printing stops beyond a list's shown items, the
// walk does not: later fields still have to be found.
struct Walker {
    std::string &out;
    const uint8_t *body;
    size_t length;
    const Style &style;
    size_t pos = 0;
    int quiet = 0;

    size_t left() const { return length - pos; }

    void line(int depth, const char *fmt, ...) __attribute__((format(printf, 3, 4))) {
        if (quiet) return;
        out.append(size_t(style.indent + 4 * depth), ' ');
        char buf[256];
        va_list ap;
        va_start(ap, fmt);
        vsnprintf(buf, sizeof buf, fmt, ap);
        va_end(ap);
        out += buf;
    }

    bool fail(int depth, const char *what, uint32_t tag, const char *name) {
        quiet = 0;
        line(depth, "!! offset %zu: %s (tag %" PRIu32 " %s expected)\n", pos, what, tag, name);
        return false;
    }

    // Reads the element of field `f` at pos; `value` gets an integer's bits.
    bool field(int depth, const c::Field &f, uint32_t tag, const char *name, uint64_t &value) {
        const bool wide = f.kind == Kind::U64;
        const size_t head = wide ? 16 : 8;
        if (left() < head) return fail(depth, "the body ends", tag, name);
        const uint64_t found = wide ? c::get64(body + pos) : c::get32(body + pos);
        const uint64_t len = wide ? c::get64(body + pos + 8) : c::get32(body + pos + 4);
        const size_t valueLen = size_t(uint32_t(len));
        if (found != tag) {
            char what[64];
            snprintf(what, sizeof what, "tag %" PRIu64 " length %" PRIu64, found, len);
            return fail(depth, what, tag, name);
        }
        const uint8_t *v = body + pos + head;
        if (left() - head < valueLen) return fail(depth, "the value overruns the body", tag, name);
        if (f.kind == Kind::Text) {
            const uint8_t *nul = static_cast<const uint8_t *>(memchr(v, 0, valueLen));
            if (!nul) return fail(depth, "a text without its NUL", tag, name);
            const size_t n = size_t(nul - v);
            if (n + 1 > f.cap) {
                char what[64];
                snprintf(what, sizeof what, "a text of %zu bytes for a field of %" PRIu32, n + 1,
                         f.cap);
                return fail(depth, what, tag, name);
            }
            if (!quiet) {
                line(depth, "%2" PRIu32 " %s = ", tag, name);
                quoted(out, v, n);
                out += '\n';
            }
        } else {
            const size_t need = wide ? 8 : 4;
            if (valueLen < need) return fail(depth, "a value too short", tag, name);
            value = wide ? c::get64(v) : c::get32(v);
            const uint32_t w = uint32_t(value);
            switch (f.kind) {
            case Kind::U8: value = uint8_t(w); line(depth, "%2" PRIu32 " %s = %u\n", tag, name, unsigned(value)); break;
            case Kind::S8: line(depth, "%2" PRIu32 " %s = %d\n", tag, name, int(int8_t(w))); break;
            case Kind::S16: line(depth, "%2" PRIu32 " %s = %d\n", tag, name, int(int16_t(w))); break;
            case Kind::U64: line(depth, "%2" PRIu32 " %s = %" PRIu64 "\n", tag, name, value); break;
            default:
                if (strcmp(name, "magic") == 0) line(depth, "%2" PRIu32 " %s = 0x%08" PRIX32 "\n", tag, name, w);
                else line(depth, "%2" PRIu32 " %s = %" PRIu32 "\n", tag, name, w);
                break;
            }
        }
        pos += head + valueLen;
        return true;
    }

    // `values` (one per field) receives the integers read; null: kept here.
    bool record(int depth, const c::Desc &d, uint64_t *values = nullptr) {
        uint64_t own[32] = {};
        if (!values) values = own;
        for (uint32_t i = 0; i < d.count; ++i) {
            const c::Field &f = d.fields[i];
            const uint32_t tag = d.firstTag + i;
            const char *name = f.name;
            if (f.kind == Kind::Nested) {
                line(depth, "   %s: %s\n", name, f.sub->name);
                if (!record(depth + 1, *f.sub)) return false;
            } else if (f.kind == Kind::List) {
                if (!list(depth, d, f, name, values)) return false;
            } else if (!field(depth, f, tag, name, values[i])) {
                return false;
            }
        }
        return true;
    }

    bool list(int depth, const c::Desc &d, const c::Field &f, const char *name,
              const uint64_t *values) {
        uint64_t count = 0;
        for (uint32_t i = 0; i < d.count; ++i)
            if (d.fields[i].off == f.countOff) count = values[i];
        const uint64_t items = std::min<uint64_t>(count, f.cap);
        const uint64_t shown =
            style.maxItems ? std::min<uint64_t>(items, style.maxItems) : items;
        for (uint64_t i = 0; i < items; ++i) {
            if (i == shown) ++quiet;
            line(depth, "   %s[%" PRIu64 "]: %s\n", name, i, f.sub->name);
            if (!record(depth + 1, *f.sub)) return false;
        }
        if (shown < items) {
            --quiet;
            line(depth, "   %s: %" PRIu64 " more items not shown\n", name, items - shown);
        }
        return true;
    }
};

}  // namespace

std::span<const Message> messages() { return kMessages; }

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
    uint64_t h[2];
    std::string ignored;
    Walker w{ignored, body, length, Style{}};
    if (!w.record(0, c::kHeaderDesc, h)) return v;
    const uint32_t magic = uint32_t(h[0]), version = uint32_t(h[1]) & 0xFFFF;
    for (const Message &m : messages()) {
        if (m.magic != magic || m.version != version) continue;
        v.push_back({&m, INTFWIFIAP_BODY_REQUEST});
        if (m.res) v.push_back({&m, INTFWIFIAP_BODY_RESPONSE});
    }
    return v;
}

bool decode(std::string &out, const Message &m, uint32_t bodyType, const uint8_t *body,
            size_t length, const Style &style) {
    Walker w{out, body, length, style};
    uint64_t h[2];
    if (!w.record(0, c::kHeaderDesc, h)) return false;
    const uint32_t magic = uint32_t(h[0]), version = uint32_t(h[1]);
    if (magic != m.magic) {
        w.line(0, "!! magic 0x%08" PRIX32 " is not %s's 0x%08" PRIX32 "\n", magic, m.name, m.magic);
        return false;
    }
    if ((version & 0xFFFF) != m.version) {
        w.line(0, "!! version %" PRIu32 " is not %s's %u\n", version, m.name, m.version);
        return false;
    }
    const c::Desc *payload = bodyType ? m.res : m.req;
    if (payload && *payload->name) w.line(0, "   %s:\n", payload->name);
    if (payload && !w.record(*payload->name ? 1 : 0, *payload)) return false;
    if (w.left()) w.line(0, "   (%zu more bytes after the payload)\n", w.left());
    return true;
}

bool walk(std::string &out, const uint8_t *body, size_t length, const Style &style) {
    Walker w{out, body, length, style};
    while (w.left()) {
        if (w.left() < 8) {
            w.line(0, "!! offset %zu: %zu bytes, too few for an element\n", w.pos, w.left());
            return false;
        }
        const uint32_t tag = c::get32(body + w.pos), len = c::get32(body + w.pos + 4);
        const uint8_t *v = body + w.pos + 8;
        if (w.left() - 8 < len) {
            w.line(0, "!! offset %zu: tag %" PRIu32 " length %" PRIu32 " overruns the body\n",
                   w.pos, tag, len);
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
        w.pos += 8 + len;
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
