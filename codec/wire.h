// Big-endian access to body bytes. A body has no alignment worth trusting, so
// every access goes through memcpy (one unaligned load or store where the CPU
// allows it) and a swap on little-endian hosts.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace wifiap::codec {

#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
constexpr uint32_t be32(uint32_t v) { return v; }
constexpr uint64_t be64(uint64_t v) { return v; }
#else
constexpr uint32_t be32(uint32_t v) { return __builtin_bswap32(v); }
constexpr uint64_t be64(uint64_t v) { return __builtin_bswap64(v); }
#endif

inline uint32_t get32(const uint8_t *p) {
    uint32_t v;
    memcpy(&v, p, sizeof v);
    return be32(v);
}

inline uint64_t get64(const uint8_t *p) {
    uint64_t v;
    memcpy(&v, p, sizeof v);
    return be64(v);
}

// Raw bytes, for comparing a whole header with its expected big-endian form.
inline uint64_t load64(const uint8_t *p) {
    uint64_t v;
    memcpy(&v, p, sizeof v);
    return v;
}

inline void put32(uint8_t *p, uint32_t v) {
    v = be32(v);
    memcpy(p, &v, sizeof v);
}

inline void put64(uint8_t *p, uint64_t v) {
    v = be64(v);
    memcpy(p, &v, sizeof v);
}

// Value length of a string element for a text of n characters: the smallest
// multiple of 4 above n + 1, so the NUL is always followed by 1 to 4 pad bytes.
constexpr uint32_t textValueLen(uint32_t n) { return ((n + 1) & ~3u) + 4; }

// Element sizes on the wire, header included.
inline constexpr uint32_t kScalarSize = 12;
inline constexpr uint32_t kWideSize = 24;

}  // namespace wifiap::codec
