// Records are described by constant tables of fields; one engine, instantiated
// per table, copies, sizes, writes and reads them. The instantiation lets the
// compiler see every tag, offset and width as a constant, so a record compiles
// to straight code; only the failure paths walk a table at run time.
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

struct Desc;

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
consteval Desc makeDesc(const char *name, const Field (&fields)[N], uint32_t firstTag = 3) {
    for (size_t i = 1; i < N; ++i)
        if (fields[i].off <= fields[i - 1].off) fieldsOutOfDeclarationOrder();
    return Desc{name, fields, N, firstTag};
}

constexpr bool isScalar(Kind k) { return k <= Kind::U32; }
constexpr bool hasElement(Kind k) { return k != Kind::Nested && k != Kind::List; }

// Encoded size of a record of 32-bit or narrower words alone, the only records
// whose size does not depend on their contents; -1 for any other.
constexpr int64_t fixedSize(const Desc &d) {
    for (uint32_t i = 0; i < d.count; ++i)
        if (!isScalar(d.fields[i].kind)) return -1;
    return int64_t(d.count) * kScalarSize;
}

// Where a read stands: the cursor and the bytes left before the end. A caller
// that trusts its buffer reads unbounded: `left` starts at SIZE_MAX, so it is
// never the limit. Texts are read alike either way: inside their element.
struct Reader {
    const uint8_t *p;
    size_t left;
};

// Failure paths, shared by every record. Each logs the reason (if the field
// has one of its own) and the "Error Before" lines of the fields after `idx`.
// Plain arguments, so that the hot path can keep its reader in registers.
[[gnu::cold]] void failElement(const Desc &d, uint32_t idx, const uint8_t *p, size_t left,
                               const uint8_t *start, const ReadLog *log);
[[gnu::cold]] void failText(const Desc &d, uint32_t idx, const uint8_t *p, const uint8_t *start,
                            const ReadLog *log);
[[gnu::cold]] void failAfter(const Desc &d, uint32_t idx, const uint8_t *start,
                             const ReadLog *log);
[[gnu::cold]] void copyFailed(const Desc &d, const Field &f, uint32_t status);

template <const Desc *D>
struct Rec {
    static constexpr uint32_t kCount = D->count;
    static constexpr int64_t kFixed = fixedSize(*D);

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

    static uint32_t items(const uint8_t *rec, const Field &f) {
        uint32_t n;
        memcpy(&n, rec + f.countOff, sizeof n);
        return n < f.cap ? n : f.cap;
    }

    static uint32_t copy(uint8_t *dst, const uint8_t *src) {
        uint32_t st = 0;
        all([&](auto i) __attribute__((always_inline)) { return (st = copyField<i>(dst, src)) == 0; });
        return st;
    }

    static void clean(uint8_t *rec) {
        if (!rec) return;
        all([&](auto i) __attribute__((always_inline)) {
            constexpr Field f = kF<i>;
            if constexpr (f.kind == Kind::Nested) {
                Rec<f.sub>::clean(rec + f.off);
            } else if constexpr (f.kind == Kind::List) {
                for (uint32_t k = 0, n = items(rec, f); k < n; ++k)
                    Rec<f.sub>::clean(rec + f.off + k * f.stride);
            }
            return true;
        });
    }

    static uint32_t size(const uint8_t *rec) {
        if constexpr (kFixed >= 0) {
            return uint32_t(kFixed);
        } else {
            uint32_t sum = 0;
            all([&](auto i) __attribute__((always_inline)) {
                sum += fieldSize<i>(rec);
                return true;
            });
            return sum;
        }
    }

    // The cursor goes by value: a cursor in memory could alias the bytes written.
    static uint8_t *write(const uint8_t *rec, uint8_t *p) {
        all([&](auto i) __attribute__((always_inline)) {
            p = writeField<i>(rec, p);
            return true;
        });
        return p;
    }

    // A bare payload from the sender's arguments, one address per field.
    static void fill(uint8_t *rec, const void *const *args) {
        all([&](auto i) __attribute__((always_inline)) {
            constexpr Field f = kF<i>;
            static_assert(f.kind == Kind::Text || f.kind == Kind::U32, "bare fields only");
            if constexpr (f.kind == Kind::Text)
                copyText(reinterpret_cast<char *>(rec + f.off), static_cast<const char *>(args[i]),
                         f.cap);
            else
                memcpy(rec + f.off, args[i], sizeof(uint32_t));
            return true;
        });
    }

    // 0, or 4 once a field failed (logged, cursor at the failure).
    static uint32_t read(uint8_t *rec, Reader &at, const ReadLog *log) {
        Reader rd = at;  // a local the stores into `rec` cannot alias
        const uint8_t *start = rd.p;
        bool ok = all([&](auto i) __attribute__((always_inline)) { return readField<i>(rec, rd, start, log); });
        at = rd;
        return ok ? INTFWIFIAP_STATUS_OK : INTFWIFIAP_STATUS_ENCODING;
    }

private:
    template <size_t I>
    static uint32_t copyField(uint8_t *dst, const uint8_t *src) {
        constexpr Field f = kF<I>;
        if constexpr (f.kind == Kind::Text) {
            copyText(reinterpret_cast<char *>(dst + f.off),
                     reinterpret_cast<const char *>(src + f.off), f.cap);
        } else if constexpr (f.kind == Kind::Nested) {
            uint32_t st = Rec<f.sub>::copy(dst + f.off, src + f.off);
            if (st) [[unlikely]] {
                copyFailed(*D, f, st);
                return st;
            }
        } else if constexpr (f.kind == Kind::List) {
            for (uint32_t k = 0, n = items(src, f); k < n; ++k) {
                uint32_t st = Rec<f.sub>::copy(dst + f.off + k * f.stride,
                                               src + f.off + k * f.stride);
                if (st) [[unlikely]] {
                    copyFailed(*D, f, st);
                    return st;
                }
            }
        } else {
            memcpy(dst + f.off, src + f.off, width(f.kind));
        }
        return 0;
    }

    template <size_t I>
    static uint32_t fieldSize(const uint8_t *rec) {
        constexpr Field f = kF<I>;
        if constexpr (isScalar(f.kind)) {
            return kScalarSize;
        } else if constexpr (f.kind == Kind::U64) {
            return kWideSize;
        } else if constexpr (f.kind == Kind::Text) {
            return 8 + textValueLen(strnlen(reinterpret_cast<const char *>(rec + f.off), f.cap));
        } else if constexpr (f.kind == Kind::Nested) {
            return Rec<f.sub>::size(rec + f.off);
        } else {
            using Item = Rec<f.sub>;
            uint32_t n = items(rec, f);
            if constexpr (Item::kFixed >= 0) {
                return n * uint32_t(Item::kFixed);
            } else {
                uint32_t sum = 0;
                for (uint32_t k = 0; k < n; ++k) sum += Item::size(rec + f.off + k * f.stride);
                return sum;
            }
        }
    }

    template <size_t I>
    [[gnu::always_inline]] static uint8_t *writeField(const uint8_t *rec, uint8_t *p) {
        constexpr Field f = kF<I>;
        constexpr uint32_t tag = kTag<I>;
        if constexpr (isScalar(f.kind)) {
            put64(p, uint64_t(tag) << 32 | 4);  // one store for tag and length
            put32(p + 8, loadWidened<f.kind>(rec + f.off));
            return p + kScalarSize;
        } else if constexpr (f.kind == Kind::U64) {
            uint64_t v;
            memcpy(&v, rec + f.off, sizeof v);
            put64(p, tag);
            put64(p + 8, 8);
            put64(p + 16, v);
            return p + kWideSize;
        } else if constexpr (f.kind == Kind::Text) {
            const char *s = reinterpret_cast<const char *>(rec + f.off);
            uint32_t n = strnlen(s, f.cap);
            uint32_t len = textValueLen(n);
            put32(p, tag);
            put32(p + 4, len);
            memcpy(p + 8, s, n);
            p[8 + n] = 0;  // the pad bytes after it are the caller's zeros
            return p + 8 + len;
        } else if constexpr (f.kind == Kind::Nested) {
            return Rec<f.sub>::write(rec + f.off, p);
        } else {
            for (uint32_t k = 0, n = items(rec, f); k < n; ++k)
                p = Rec<f.sub>::write(rec + f.off + k * f.stride, p);
            return p;
        }
    }

    template <size_t I>
    [[gnu::always_inline]] static bool readField(uint8_t *rec, Reader &rd, const uint8_t *start,
                                                 const ReadLog *log) {
        constexpr Field f = kF<I>;
        constexpr uint32_t tag = kTag<I>;
        // Elements nearly always carry the length their field needs: that case
        // is one compare of the whole header and a constant step, so the next
        // element's address does not wait for this one's length to load.
        if constexpr (isScalar(f.kind)) {
            if (rd.left < kScalarSize) [[unlikely]]
                return failElement(*D, I, rd.p, rd.left, start, log), false;
            size_t step = kScalarSize;
            if (load64(rd.p) != be64(uint64_t(tag) << 32 | 4)) [[unlikely]] {
                uint32_t len = get32(rd.p + 4);
                if (get32(rd.p) != tag || len > rd.left - 8)
                    return failElement(*D, I, rd.p, rd.left, start, log), false;
                step = 8 + size_t(len);
            }
            storeNarrowed<f.kind>(rec + f.off, get32(rd.p + 8));
            rd.p += step;
            rd.left -= step;
        } else if constexpr (f.kind == Kind::U64) {
            if (rd.left < kWideSize) [[unlikely]]
                return failElement(*D, I, rd.p, rd.left, start, log), false;
            size_t step = kWideSize;
            if (load64(rd.p) != be64(tag) || load64(rd.p + 8) != be64(8)) [[unlikely]] {
                // The whole 64-bit tag must match; only the low half of the length counts.
                uint32_t len = uint32_t(get64(rd.p + 8));
                if (get64(rd.p) != tag || len > rd.left - 16)
                    return failElement(*D, I, rd.p, rd.left, start, log), false;
                step = 16 + size_t(len);
            }
            uint64_t v = get64(rd.p + 16);
            memcpy(rec + f.off, &v, sizeof v);
            rd.p += step;
            rd.left -= step;
        } else if constexpr (f.kind == Kind::Text) {
            if (rd.left < 8) [[unlikely]]
                return failElement(*D, I, rd.p, rd.left, start, log), false;
            uint32_t len = get32(rd.p + 4);
            if (get32(rd.p) != tag || len > rd.left - 8) [[unlikely]]
                return failElement(*D, I, rd.p, rd.left, start, log), false;
            // The NUL must lie inside the element and the field.
            const char *v = reinterpret_cast<const char *>(rd.p + 8);
            size_t limit = len < f.cap ? len : f.cap;
            size_t n = strnlen(v, limit);
            if (n == limit) [[unlikely]]
                return failText(*D, I, rd.p, start, log), false;
            memcpy(rec + f.off, v, n + 1);
            rd.p += 8 + size_t(len);
            rd.left -= 8 + size_t(len);
        } else if constexpr (f.kind == Kind::Nested) {
            Reader sub = rd;
            uint32_t st = Rec<f.sub>::read(rec + f.off, sub, nullptr);
            rd = sub;
            if (st) [[unlikely]]
                return failAfter(*D, I, start, log), false;
        } else {
            Reader sub = rd;
            for (uint32_t k = 0, n = items(rec, f); k < n; ++k) {
                if (Rec<f.sub>::read(rec + f.off + k * f.stride, sub, nullptr)) [[unlikely]] {
                    rd = sub;
                    return failAfter(*D, I, start, log), false;
                }
            }
            rd = sub;
        }
        return true;
    }

    static constexpr size_t width(Kind k) {
        return k == Kind::U8 || k == Kind::S8 ? 1 : k == Kind::S16 ? 2 : k == Kind::U32 ? 4 : 8;
    }

    template <Kind K>
    static uint32_t loadWidened(const uint8_t *src) {
        if constexpr (K == Kind::U8) return *src;
        else if constexpr (K == Kind::S8) return uint32_t(int32_t(int8_t(*src)));
        else {
            std::conditional_t<K == Kind::U32, uint32_t, int16_t> v;
            memcpy(&v, src, sizeof v);
            return uint32_t(int32_t(v));
        }
    }

    template <Kind K>
    static void storeNarrowed(uint8_t *dst, uint32_t v) {
        if constexpr (K == Kind::U8 || K == Kind::S8) {
            *dst = uint8_t(v);
        } else if constexpr (K == Kind::S16) {
            uint16_t w = uint16_t(v);
            memcpy(dst, &w, sizeof w);
        } else {
            memcpy(dst, &v, sizeof v);
        }
    }
};

// The operations behind a descriptor, in the shapes the exchange engines and
// the exported functions need.
template <const Desc *D>
uint32_t opCopy(void *dst, const void *src) {
    return Rec<D>::copy(static_cast<uint8_t *>(dst), static_cast<const uint8_t *>(src));
}
template <const Desc *D>
void opClean(void *rec) {
    Rec<D>::clean(static_cast<uint8_t *>(rec));
}
template <const Desc *D>
uint32_t opSize(const void *rec) {
    return Rec<D>::size(static_cast<const uint8_t *>(rec));
}
template <const Desc *D>
uint32_t opWrite(const void *rec, uint8_t **cursor) {
    *cursor = Rec<D>::write(static_cast<const uint8_t *>(rec), *cursor);
    return INTFWIFIAP_STATUS_OK;
}
template <const Desc *D>
uint32_t opRead(void *rec, const uint8_t **cursor, size_t left, const ReadLog &log) {
    Reader rd{*cursor, left};
    uint32_t st = Rec<D>::read(static_cast<uint8_t *>(rec), rd, &log);
    *cursor = rd.p;
    return st;
}
// The exported form: the caller vouches for its buffer.
template <const Desc *D>
uint32_t opReadTrusted(void *rec, const uint8_t **cursor) {
    Reader rd{*cursor, SIZE_MAX};
    uint32_t st = Rec<D>::read(static_cast<uint8_t *>(rec), rd, nullptr);
    *cursor = rd.p;
    return st;
}
template <const Desc *D>
const char *recordMissing(const void *const *args) {
    return args[0] ? nullptr : D->name;
}
template <const Desc *D>
uint32_t recordFill(void *payload, const void *const *args) {
    return opCopy<D>(payload, args[0]);
}
template <const Desc *D>
const char *bareMissing(const void *const *args) {
    for (uint32_t i = 0; i < D->count; ++i)
        if (!args[i]) return D->fields[i].name;
    return nullptr;
}
template <const Desc *D>
uint32_t bareFill(void *payload, const void *const *args) {
    Rec<D>::fill(static_cast<uint8_t *>(payload), args);
    return INTFWIFIAP_STATUS_OK;
}

// A record travels in a context of its own after the hold word; bare fields
// are described in place in theirs.
template <class R, const Desc *D>
constexpr Ops recordOps() {
    return Ops{D->name,       sizeof(R),        offsetof(RecordCtx<R>, payload),
               sizeof(RecordCtx<R>), opCopy<D>, opClean<D>, opSize<D>, opWrite<D>, opRead<D>,
               recordMissing<D>, recordFill<D>};
}
template <class Ctx, const Desc *D>
constexpr Ops bareOps() {
    return Ops{D->name,   sizeof(Ctx), 0,          sizeof(Ctx),      opCopy<D>, opClean<D>,
               opSize<D>, opWrite<D>,  opRead<D>, bareMissing<D>, bareFill<D>};
}

}  // namespace wifiap::codec

// A record R described by D: its Ops, and its five exported functions.
#define WIFIAP_RECORD(R, OPS, D)                                                           \
    constinit const ::wifiap::codec::Ops OPS = ::wifiap::codec::recordOps<R, &D>();          \
    extern "C" INTFWIFIAP_API uint32_t intfWifiAp_##R##_copy(R *dst, const R *src) {       \
        return ::wifiap::codec::opCopy<&D>(dst, src);                                      \
    }                                                                                      \
    extern "C" INTFWIFIAP_API void intfWifiAp_##R##_clean(R *rec) {                        \
        ::wifiap::codec::opClean<&D>(rec);                                                 \
    }                                                                                      \
    extern "C" INTFWIFIAP_API uint32_t intfWifiAp_##R##_serialize_lg(const R *rec) {       \
        return ::wifiap::codec::opSize<&D>(rec);                                           \
    }                                                                                      \
    extern "C" INTFWIFIAP_API uint32_t intfWifiAp_##R##_serialize(const R *rec,            \
                                                                  uint8_t **cursor) {      \
        return ::wifiap::codec::opWrite<&D>(rec, cursor);                                  \
    }                                                                                      \
    extern "C" INTFWIFIAP_API uint32_t intfWifiAp_##R##_unserialize(R *rec,                \
                                                                    const uint8_t **cursor) { \
        return ::wifiap::codec::opReadTrusted<&D>(rec, cursor);                            \
    }
