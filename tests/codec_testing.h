// Helpers of the codec suite: body builders and a table of every record.
#pragma once

#include <stdint.h>
#include <string.h>

#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "capture.h"
#include "codec.h"
#include "engine.h"
#include "intfWifiAp.h"

namespace ct {

using Bytes = std::vector<uint8_t>;

inline void be(Bytes &b, uint64_t v, int n) {
    for (int i = n - 1; i >= 0; --i) b.push_back(uint8_t(v >> (8 * i)));
}
inline uint32_t rd32(const uint8_t *p) {
    return uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | p[3];
}

// Element builders: the encodings written out by hand, independent of the codec.
inline Bytes scalar(uint32_t tag, uint32_t v, uint32_t len = 4) {
    Bytes b;
    be(b, tag, 4), be(b, len, 4), be(b, v, 4);
    b.resize(8 + (len > 4 ? len : 4));
    return b;
}
inline Bytes text(uint32_t tag, const std::string &s) {
    Bytes b;
    uint32_t len = uint32_t(s.size()) + 5 - uint32_t((s.size() + 1) % 4);
    be(b, tag, 4), be(b, len, 4);
    b.insert(b.end(), s.begin(), s.end());
    b.resize(8 + len);
    return b;
}
inline Bytes operator+(Bytes a, const Bytes &b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

// A record in a zero-filled, suitably aligned heap block.
struct Blob {
    std::unique_ptr<uint64_t[]> mem;
    size_t size;
    explicit Blob(size_t n) : mem(new uint64_t[(n + 7) / 8]()), size(n) {}
    uint8_t *p() const { return reinterpret_cast<uint8_t *>(mem.get()); }
    template <class T>
    T *as() const { return reinterpret_cast<T *>(mem.get()); }
};

// The exported functions of a record, with the record type erased.
struct RecordApi {
    const char *name;
    const wifiap::codec::Ops *ops;
    const wifiap::codec::Desc *desc;
    uint32_t (*copy)(void *, const void *);
    void (*clean)(void *);
    uint32_t (*lg)(const void *);
    uint32_t (*ser)(const void *, uint8_t **);
    uint32_t (*unser)(void *, const uint8_t **);
};

inline void PrintTo(const RecordApi &r, std::ostream *os) { *os << r.name; }

const std::vector<RecordApi> &records();
const RecordApi &record(const std::string &name);

// Fills a zero-filled record with random valid contents (texts NUL-padded,
// counts sometimes above capacity).
void randomFill(const RecordApi &r, void *rec, std::mt19937 &rng, uint32_t maxItems = UINT32_MAX);

// Serializes with the exported functions into a buffer of exactly serialize_lg bytes.
Bytes encode(const RecordApi &r, const void *rec);

// Expected log lines: "{+N}" stands for the pointer base + N, "{B}" for `other`.
std::vector<std::string> expand(const std::vector<std::string> &lines, const uint8_t *base,
                                const void *other = nullptr);

inline Bytes wide(uint64_t tag, uint64_t v, uint64_t len = 8) {
    Bytes b;
    be(b, tag, 8), be(b, len, 8), be(b, v, 8);
    return b;
}
inline Bytes raw(std::initializer_list<uint8_t> v) { return Bytes(v); }

}  // namespace ct
