// Helpers of the codec suite: element builders and a table of every record.
#pragma once

#include <stdint.h>
#include <string.h>

#include <memory>
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
inline Bytes operator+(Bytes a, const Bytes &b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

// Element builders: the encodings written out by hand, independent of the codec.
inline Bytes scalar(uint32_t tag, uint32_t v, uint32_t len = 4) {
    Bytes b;
    be(b, tag, 4), be(b, len, 4), be(b, v, 4);
    b.resize(8 + (len > 4 ? len : 4));
    return b;
}
inline Bytes wide(uint64_t tag, uint64_t v, uint64_t len = 8) {
    Bytes b;
    be(b, tag, 8), be(b, len, 8), be(b, v, 8);
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
// Zero-valued 32-bit elements of tags from..to.
inline Bytes zeros(uint32_t from, uint32_t to) {
    Bytes b;
    for (uint32_t t = from; t <= to; ++t) b = b + scalar(t, 0);
    return b;
}

// A record in a zero-filled, suitably aligned heap block.
inline std::unique_ptr<uint64_t[]> blob(size_t n) {
    return std::unique_ptr<uint64_t[]>(new uint64_t[(n + 7) / 8]());
}

// The exported functions of a record, with the record type erased.
struct RecordApi {
    const char *name;
    const wifiap::codec::Ops *ops;
    uint32_t (*copy)(void *, const void *);
    void (*clean)(void *);
    uint32_t (*lg)(const void *);
    uint32_t (*ser)(const void *, uint8_t **);
    uint32_t (*unser)(void *, const uint8_t **);
};

const std::vector<RecordApi> &records();
const RecordApi &record(const std::string &name);

// Random valid contents in a zero-filled record (counts sometimes above
// capacity), lists of at most maxItems; kFull: every list and text full.
inline constexpr uint32_t kFull = 0;
void randomFill(const RecordApi &r, void *rec, std::mt19937 &rng, uint32_t maxItems = UINT32_MAX);

// Expected log lines: "{+N}" stands for the pointer base + N, "{B}" for `other`.
std::vector<std::string> expand(const std::vector<std::string> &lines, const uint8_t *base,
                                const void *other = nullptr);

}  // namespace ct
