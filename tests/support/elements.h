// Elements written out by hand, independent of the codec, for the bodies the
// codec, message and decoder tests expect.
#pragma once

#include <stdint.h>

#include <string>
#include <vector>

namespace ct {

using Bytes = std::vector<uint8_t>;

inline void be(Bytes &b, uint64_t v, int n) {
    for (int i = n - 1; i >= 0; --i) b.push_back(uint8_t(v >> (8 * i)));
}
inline Bytes operator+(Bytes a, const Bytes &b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

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

}  // namespace ct
