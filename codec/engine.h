// Records are described by constant tables of fields. The rule for each kind of
// field is written once, below; two drivers apply the rules to a table: a walker
// that loops over the table at run time (every record, compact), and a compiled
// one instantiated per table, which lets the compiler see every tag, offset and
// width as a constant, for the station statistics list that a message carries
// tens of thousands of elements of.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include <type_traits>
#include <utility>

#include "codec.h"
#include "wire.h"

namespace wifiap::codec {

enum class Kind : uint8_t { U8, S8, S16, U32, U64, Text, Nested, List };

struct Field {
    const char *name;
    Kind kind;
    uint32_t off;
    uint32_t cap = 0;           // text: bytes, NUL included; list: slots
    const Desc *sub = nullptr;  // nested record, or list item
    uint32_t countOff = 0;      // list: its count field, an earlier 32-bit field
    uint32_t stride = 0;        // list: bytes per slot
};

struct Desc {
    const char *name;  // as in the exported names; "" for bare payloads
    const Field *fields;
    uint32_t count;
    uint32_t firstTag;
    bool bare;  // fields in place in a message context, logged as its body's
};

template <class T>
constexpr Field intField(const char *name, uint32_t off) {
    static_assert(std::is_integral_v<T> && sizeof(T) <= 8);
    // The records hold no unsigned 16-bit field, so the engine has no path for one.
    static_assert(sizeof(T) != 2 || std::is_signed_v<T>);
    constexpr bool s = std::is_signed_v<T>;
    constexpr Kind k = sizeof(T) == 1   ? (s ? Kind::S8 : Kind::U8)
                       : sizeof(T) == 2 ? Kind::S16
                       : sizeof(T) == 4 ? Kind::U32
                                        : Kind::U64;
    return Field{name, k, off};
}

// Field makers, so that a table names each member once.
#define WF_INT(R, f) ::wifiap::codec::intField<decltype(R::f)>(#f, offsetof(R, f))
#define WF_TEXT(R, f) \
    ::wifiap::codec::Field{#f, ::wifiap::codec::Kind::Text, offsetof(R, f), sizeof(R::f)}
#define WF_NESTED(R, f, D) \
    ::wifiap::codec::Field{#f, ::wifiap::codec::Kind::Nested, offsetof(R, f), 0, &(D)}
#define WF_LIST(R, f, n, D)                                                                    \
    ::wifiap::codec::Field {                                                                   \
        #f, ::wifiap::codec::Kind::List, offsetof(R, f), sizeof(R::f) / sizeof(R::f[0]), &(D), \
            offsetof(R, n), sizeof(R::f[0])                                                    \
    }

// Called only where a table's order disagrees with its structure's: tags go
// in declaration order, so a table with two fields swapped does not compile.
void fieldsOutOfDeclarationOrder();

template <size_t N>
consteval Desc makeDesc(const char *name, const Field (&fields)[N], uint32_t firstTag = 3,
                        bool bare = false) {
    for (size_t i = 1; i < N; ++i)
        if (fields[i].off <= fields[i - 1].off) fieldsOutOfDeclarationOrder();
    return Desc{name, fields, N, firstTag, bare};
}
template <size_t N>
consteval Desc makeBare(const Field (&fields)[N], uint32_t firstTag = 3) {
    return makeDesc("", fields, firstTag, true);
}

constexpr bool isScalar(Kind k) { return k <= Kind::U32; }
constexpr bool hasElement(Kind k) { return k != Kind::Nested && k != Kind::List; }

// Encoded size of a record of 32-bit or narrower words alone, the only records
// whose size does not depend on their contents; 0 for any other.
constexpr uint32_t fixedSize(const Desc &d) {
    for (uint32_t i = 0; i < d.count; ++i)
        if (!isScalar(d.fields[i].kind)) return 0;
    return d.count * kScalarSize;
}

// Where a read stands: the cursor and the bytes left before the end. A caller
// that trusts its buffer reads unbounded: `left` starts at kUnbounded, so it
// is never the limit. Texts are read alike either way: inside their element.
inline constexpr size_t kUnbounded = SIZE_MAX;
struct Reader {
    Reader(const uint8_t *at, size_t n) : p(at), left(n), bounded(n != kUnbounded) {}
    const uint8_t *p;
    size_t left;
    bool bounded;  // the end is known, not merely far
};

// What a read tells as it goes, one type per reader. A sink is told of each
// refusal (and returns false for it), of each element read, and of each nested
// record or list item before it is read; it says whether an element whose
// header is not exactly its field's may still be taken. The library's walker
// logs refusals with the rules' lines (LogSink); the compiled reader says
// nothing and takes exact headers only (Silent), leaving the rest to the
// walker; the decoder describes every element with the same walk.
struct LogSink {
    static constexpr bool kExactOnly = false;
    const ReadLog *log;  // null: a nested record or item, which logs as itself
    const Desc *d = nullptr;
    const uint8_t *start = nullptr;  // where the record's read began

    void begin(const Desc &desc, const uint8_t *at) { d = &desc, start = at; }
    bool refuse(uint32_t idx, const Reader &rd) const;
    bool refuseText(uint32_t idx, const uint8_t *p) const;
    bool refuseAfter(uint32_t idx) const;
    void leaf(uint32_t, const uint8_t *, const uint8_t *) const {}
    LogSink inner(uint32_t, uint32_t, uint32_t) const { return LogSink{nullptr}; }
    void listed(uint32_t, uint32_t) const {}
};

struct Silent {
    static constexpr bool kExactOnly = true;
    bool refuse(uint32_t, const Reader &) const { return false; }
    bool refuseText(uint32_t, const uint8_t *) const { return false; }
};

// ---- The rules of the leaf fields: integers and texts. Forced inline, so that
// with a constant field they compile to its straight code.

[[gnu::always_inline]] inline uint32_t widen(Kind k, const uint8_t *src) {
    switch (k) {
    case Kind::U8: return *src;
    case Kind::S8: return uint32_t(int32_t(int8_t(*src)));
    case Kind::S16: {
        int16_t v;
        memcpy(&v, src, sizeof v);
        return uint32_t(int32_t(v));
    }
    default: {
        uint32_t v;
        memcpy(&v, src, sizeof v);
        return v;
    }
    }
}

[[gnu::always_inline]] inline void narrow(Kind k, uint8_t *dst, uint32_t v) {
    if (k == Kind::U8 || k == Kind::S8) {
        *dst = uint8_t(v);
    } else if (k == Kind::S16) {
        uint16_t w = uint16_t(v);
        memcpy(dst, &w, sizeof w);
    } else {
        memcpy(dst, &v, sizeof v);
    }
}

[[gnu::always_inline]] inline uint32_t leafSize(const Field &f, const uint8_t *rec) {
    if (isScalar(f.kind)) return kScalarSize;
    if (f.kind == Kind::U64) return kWideSize;
    return 8 + textValueLen(strnlen(reinterpret_cast<const char *>(rec + f.off), f.cap));
}

[[gnu::always_inline]] inline uint8_t *writeLeaf(const Field &f, uint32_t tag, const uint8_t *rec,
                                                 uint8_t *p) {
    if (isScalar(f.kind)) {
        put64(p, uint64_t(tag) << 32 | 4);  // one store for tag and length
        put32(p + 8, widen(f.kind, rec + f.off));
        return p + kScalarSize;
    }
    if (f.kind == Kind::U64) {
        uint64_t v;
        memcpy(&v, rec + f.off, sizeof v);
        put64(p, tag);
        put64(p + 8, 8);
        put64(p + 16, v);
        return p + kWideSize;
    }
    const char *s = reinterpret_cast<const char *>(rec + f.off);
    uint32_t n = strnlen(s, f.cap), len = textValueLen(n);
    put32(p, tag);
    put32(p + 4, len);
    memcpy(p + 8, s, n);
    p[8 + n] = 0;  // the pad bytes after it are the caller's zeros
    return p + 8 + len;
}

// Reads the element of a leaf field at the cursor; on failure returns what
// the sink's refusal returns (false), the cursor at the element.
template <class Sink>
[[gnu::always_inline]] inline bool readLeaf(Sink &s, uint32_t idx, const Field &f, uint32_t tag,
                                            uint8_t *rec, Reader &rd) {
    // Elements nearly always carry the length their field needs: that case is
    // one compare of the whole header and a constant step, so the next
    // element's address does not wait for this one's length to load.
    if (isScalar(f.kind)) {
        if (rd.left < kScalarSize) [[unlikely]]
            return s.refuse(idx, rd);
        size_t step = kScalarSize;
        if (load64(rd.p) != be64(uint64_t(tag) << 32 | 4)) [[unlikely]] {
            if constexpr (Sink::kExactOnly) return false;
            uint32_t len = get32(rd.p + 4);
            if (get32(rd.p) != tag || len > rd.left - 8) return s.refuse(idx, rd);
            step = 8 + size_t(len);
        }
        narrow(f.kind, rec + f.off, get32(rd.p + 8));  // the first 4 bytes, whatever the length
        rd.p += step;
        rd.left -= step;
    } else if (f.kind == Kind::U64) {
        if (rd.left < kWideSize) [[unlikely]]
            return s.refuse(idx, rd);
        size_t step = kWideSize;
        if (load64(rd.p) != be64(tag) || load64(rd.p + 8) != be64(8)) [[unlikely]] {
            if constexpr (Sink::kExactOnly) return false;
            // The whole 64-bit tag must match; only the low half of the length counts.
            uint32_t len = uint32_t(get64(rd.p + 8));
            if (get64(rd.p) != tag || len > rd.left - 16) return s.refuse(idx, rd);
            step = 16 + size_t(len);
        }
        uint64_t v = get64(rd.p + 16);
        memcpy(rec + f.off, &v, sizeof v);
        rd.p += step;
        rd.left -= step;
    } else {
        if (rd.left < 8) [[unlikely]]
            return s.refuse(idx, rd);
        uint32_t len = get32(rd.p + 4);
        if (get32(rd.p) != tag || len > rd.left - 8) [[unlikely]]
            return s.refuse(idx, rd);
        // The NUL must lie inside the element and the field.
        const char *v = reinterpret_cast<const char *>(rd.p + 8);
        size_t limit = len < f.cap ? len : f.cap;
        size_t n = strnlen(v, limit);
        if (n == limit) [[unlikely]]
            return s.refuseText(idx, rd.p);
        memcpy(rec + f.off, v, n + 1);
        rd.p += 8 + size_t(len);
        rd.left -= 8 + size_t(len);
    }
    return true;
}

inline uint32_t items(const uint8_t *rec, const Field &f) {
    uint32_t n;
    memcpy(&n, rec + f.countOff, sizeof n);
    return n < f.cap ? n : f.cap;
}

// The rules applied to a table, field by field: 0, or 4 once a field failed
// (the sink told, the cursor at the failure).
template <class Sink>
uint32_t walkReadWith(const Desc &d, uint8_t *rec, Reader &rd, Sink s) {
    s.begin(d, rd.p);
    for (uint32_t i = 0; i < d.count; ++i) {
        const Field &f = d.fields[i];
        if (hasElement(f.kind)) {
            const uint8_t *at = rd.p;
            if (!readLeaf(s, i, f, d.firstTag + i, rec, rd)) return INTFWIFIAP_STATUS_ENCODING;
            s.leaf(i, at, rec);
            continue;
        }
        const uint32_t n = f.kind == Kind::Nested ? 1 : items(rec, f);
        for (uint32_t k = 0; k < n; ++k)
            if (walkReadWith(*f.sub, rec + f.off + k * f.stride, rd, s.inner(i, k, n)))
                return s.refuseAfter(i), INTFWIFIAP_STATUS_ENCODING;
        s.listed(i, n);
    }
    return INTFWIFIAP_STATUS_OK;
}

// ---- The table walker: every record, one loop.

uint32_t walkSize(const Desc &d, const uint8_t *rec);
uint8_t *walkWrite(const Desc &d, const uint8_t *rec, uint8_t *p);
uint32_t walkCopy(const Desc &d, uint8_t *dst, const uint8_t *src);
void walkClean(const Desc &d, uint8_t *rec);

// ---- The compiled driver, for the station statistics list.

// x86 CPUs with byte shuffles move lists of two 32-bit words per item (tags
// `tag` and `tag` + 1) 16 bytes at a time. Each returns how many items it
// took: an even number, 0 on a CPU without them; the reader stops before the
// first two whose headers are not exactly theirs.
#if defined(__x86_64__) || defined(__i386__)
#define WIFIAP_VECTOR_PAIRS 1
#else
#define WIFIAP_VECTOR_PAIRS 0
#endif
size_t writePairs(const uint8_t *items, size_t n, uint32_t tag, uint8_t *p);
size_t takePairs(uint8_t *items, size_t n, uint32_t tag, const uint8_t *p);

// A list those can take: items of two 32-bit words and nothing else.
constexpr bool vectorPairs(const Field &list) {
    const Desc &d = *list.sub;
    return WIFIAP_VECTOR_PAIRS && list.stride == 8 && d.count == 2 &&
           d.fields[0].kind == Kind::U32 && d.fields[0].off == 0 &&
           d.fields[1].kind == Kind::U32 && d.fields[1].off == 4;
}

template <const Desc *D>
struct Rec {
    static constexpr uint32_t kCount = D->count;
    static constexpr uint32_t kFixed = fixedSize(*D);

    template <size_t I>
    static constexpr Field kF = D->fields[I];
    template <size_t I>
    static constexpr uint32_t kTag = D->firstTag + I;

    // Calls fn(field index) in field order while it returns true. Everything
    // here is forced inline so the walk leaves no trace in the generated code.
    template <class Fn>
    [[gnu::always_inline]] static constexpr bool all(Fn &&fn) {
        return [&]<size_t... I>(std::index_sequence<I...>) __attribute__((always_inline)) {
            return (fn(std::integral_constant<size_t, I>{}) && ...);
        }(std::make_index_sequence<kCount>{});
    }

    static uint32_t size(const uint8_t *rec) {
        if constexpr (kFixed > 0) {
            return kFixed;
        } else {
            uint32_t sum = 0;
            all([&](auto i) __attribute__((always_inline)) {
                constexpr Field f = kF<i>;
                if constexpr (hasElement(f.kind)) {
                    sum += leafSize(f, rec);
                } else if constexpr (f.kind == Kind::Nested) {
                    sum += Rec<f.sub>::size(rec + f.off);
                } else if constexpr (Rec<f.sub>::kFixed > 0) {
                    sum += items(rec, f) * Rec<f.sub>::kFixed;
                } else {
                    for (uint32_t k = 0, n = items(rec, f); k < n; ++k)
                        sum += Rec<f.sub>::size(rec + f.off + k * f.stride);
                }
                return true;
            });
            return sum;
        }
    }

    // The cursor goes by value: a cursor in memory could alias the bytes written.
    static uint8_t *write(const uint8_t *rec, uint8_t *p) {
        all([&](auto i) __attribute__((always_inline)) {
            constexpr Field f = kF<i>;
            if constexpr (hasElement(f.kind)) {
                p = writeLeaf(f, kTag<i>, rec, p);
            } else if constexpr (f.kind == Kind::Nested) {
                p = Rec<f.sub>::write(rec + f.off, p);
            } else {
                uint32_t k = 0, n = items(rec, f);
                if constexpr (vectorPairs(f)) {
                    k = uint32_t(writePairs(rec + f.off, n, f.sub->firstTag, p));
                    p += k * Rec<f.sub>::kFixed;
                }
                for (; k < n; ++k) p = Rec<f.sub>::write(rec + f.off + k * f.stride, p);
            }
            return true;
        });
        return p;
    }

    // A record of words alone, as a list holds thousands of them, read with one
    // test of all its headers (false: one differs, and the rules must read it).
    static bool takeWords(uint8_t *rec, const uint8_t *p) {
        uint64_t diff = 0;
        all([&](auto i) __attribute__((always_inline)) {
            diff |= load64(p + kScalarSize * i) ^ be64(uint64_t(kTag<i>) << 32 | 4);
            return true;
        });
        if (diff) return false;
        all([&](auto i) __attribute__((always_inline)) {
            narrow(kF<i>.kind, rec + kF<i>.off, get32(p + kScalarSize * i + 8));
            return true;
        });
        return true;
    }

    // False as soon as a field fails, saying nothing: the walker then reads
    // the record again, to log and stop where the rules say.
    static bool read(uint8_t *rec, Reader &at) {
        Reader rd = at;  // a local the stores into `rec` cannot alias
        Silent quiet;
        bool ok = all([&](auto i) __attribute__((always_inline)) {
            constexpr Field f = kF<i>;
            if constexpr (hasElement(f.kind)) {
                return readLeaf(quiet, i, f, kTag<i>, rec, rd);
            } else if constexpr (f.kind == Kind::Nested) {
                return Rec<f.sub>::read(rec + f.off, rd);
            } else {
                using Item = Rec<f.sub>;
                uint32_t k = 0, n = items(rec, f);
                if constexpr (Item::kFixed > 0) {
                    // Items of words alone, the whole list there: one bounds test
                    // for all; from an item whose headers differ, the rules take over.
                    // Items are loaded whole before their headers are compared, so
                    // only where the end is known: unbounded, the bytes after a
                    // wrong header may not exist, and the rules stop at it.
                    if (rd.bounded && rd.left / Item::kFixed >= n) {
                        const uint8_t *p = rd.p;
                        if constexpr (vectorPairs(f)) {
                            k = uint32_t(takePairs(rec + f.off, n, f.sub->firstTag, p));
                            p += k * Item::kFixed;
                        }
                        for (; k < n && Item::takeWords(rec + f.off + k * f.stride, p); ++k)
                            p += Item::kFixed;
                        rd.left -= size_t(p - rd.p);
                        rd.p = p;
                    }
                }
                for (; k < n; ++k)
                    if (!Item::read(rec + f.off + k * f.stride, rd)) [[unlikely]]
                        return false;
                return true;
            }
        });
        at = rd;
        return ok;
    }
};

// ---- Operations in the shapes of Ops, each compiled once, out of line.

uint32_t tableSize(const Desc &d, const void *rec);
uint8_t *tableWrite(const Desc &d, const void *rec, uint8_t *cursor);
uint32_t tableRead(const Desc &d, void *rec, const uint8_t **cursor, size_t left,
                   const ReadLog &log);

template <const Desc *D>
[[gnu::noinline]] uint32_t compiledSize(const Desc &, const void *rec) {
    return Rec<D>::size(static_cast<const uint8_t *>(rec));
}
template <const Desc *D>
[[gnu::noinline]] uint8_t *compiledWrite(const Desc &, const void *rec, uint8_t *cursor) {
    return Rec<D>::write(static_cast<const uint8_t *>(rec), cursor);
}
template <const Desc *D>
[[gnu::noinline]] uint32_t compiledRead(const Desc &d, void *rec, const uint8_t **cursor,
                                        size_t left, const ReadLog &log) {
    Reader rd{*cursor, left};
    if (!Rec<D>::read(static_cast<uint8_t *>(rec), rd)) [[unlikely]]
        return tableRead(d, rec, cursor, left, log);  // the same rules, with their lines
    *cursor = rd.p;
    return INTFWIFIAP_STATUS_OK;
}

// A record travels in a context of its own after the hold word; bare fields
// are described in place in theirs.
template <class R, const Desc *D>
constexpr Ops recordOps(bool compiled = false) {
    return Ops{D->name,
               D,
               sizeof(R),
               offsetof(RecordCtx<R>, payload),
               sizeof(RecordCtx<R>),
               compiled ? compiledSize<D> : tableSize,
               compiled ? compiledWrite<D> : tableWrite,
               compiled ? compiledRead<D> : tableRead};
}
template <class Ctx, const Desc *D>
constexpr Ops bareOps() {
    return Ops{D->name, D, sizeof(Ctx), 0, sizeof(Ctx), tableSize, tableWrite, tableRead};
}

}  // namespace wifiap::codec

// A record R described by D: its Ops, and its five exported functions. The
// list's records give `true` to compile what the list needs.
#define WIFIAP_RECORD(R, OPS, D, ...)                                                      \
    constinit const ::wifiap::codec::Ops OPS = ::wifiap::codec::recordOps<R, &D>(__VA_ARGS__); \
    extern "C" INTFWIFIAP_API uint32_t intfWifiAp_##R##_copy(R *dst, const R *src) {       \
        return OPS.copy(dst, src);                                                         \
    }                                                                                      \
    extern "C" INTFWIFIAP_API void intfWifiAp_##R##_clean(R *rec) { OPS.clean(rec); }      \
    extern "C" INTFWIFIAP_API uint32_t intfWifiAp_##R##_serialize_lg(const R *rec) {       \
        return OPS.size(rec);                                                              \
    }                                                                                      \
    extern "C" INTFWIFIAP_API uint32_t intfWifiAp_##R##_serialize(const R *rec,            \
                                                                  uint8_t **cursor) {      \
        return OPS.write(rec, cursor);                                                     \
    }                                                                                      \
    extern "C" INTFWIFIAP_API uint32_t intfWifiAp_##R##_unserialize(R *rec,                \
                                                                    const uint8_t **cursor) { \
        /* The caller vouches for its buffer, so no end limits the read. */                \
        return OPS.read(rec, cursor, ::wifiap::codec::kUnbounded,                          \
                        ::wifiap::codec::ReadLog{});                                       \
    }
