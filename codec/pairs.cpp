// Lists of two-word items with 16-byte byte shuffles, on x86 CPUs that have
// them (SSSE3). Two items are 48 bytes on the wire, three vector stores: a
// third of the stores of the word-by-word writer, which is what bounds a list
// of them; the reader compares all twelve header words at once.
#include "engine.h"

#if WIFIAP_VECTOR_PAIRS

#include <cpuid.h>
#include <tmmintrin.h>

#include <array>

namespace wifiap::codec {

namespace {

bool detect() {
    unsigned a, b, c, d;
    return __get_cpuid(1, &a, &b, &c, &d) && (c & bit_SSSE3);
}

// cpuid may trap to a hypervisor: asked once, then remembered (1 yes, 2 no).
bool haveShuffles() {
    static uint8_t known;
    uint8_t k = __atomic_load_n(&known, __ATOMIC_RELAXED);
    if (!k) __atomic_store_n(&known, k = detect() ? 1 : 2, __ATOMIC_RELAXED);
    return k == 1;
}

// Two items a, b and c, d are twelve big-endian words on the wire,
//   tag len a  tag+1 len b  tag len c  tag+1 len d
// every third a value: word w is lane w % 4 of vector w / 4.
constexpr bool isValue(int w) { return w % 3 == 2; }
constexpr char kZero = char(0x80);  // a shuffle index that gives 0

using Mask = std::array<char, 16>;
struct Masks {
    Mask put[3];   // the items' bytes to vector j's value lanes, swapped
    Mask take[3];  // vector j's value lanes to the items' bytes, swapped
    Mask value[3]; // all ones in vector j's value lanes
};
constexpr Masks masks() {
    Masks m{};
    for (int j = 0; j < 3; ++j)
        for (int b = 0; b < 16; ++b) {
            int w = 4 * j + b / 4, item = 3 * (b / 4) + 2;  // the word at b; where item word b/4 goes
            m.put[j][b] = isValue(w) ? char(4 * (w / 3) + 3 - b % 4) : kZero;
            m.take[j][b] = item / 4 == j ? char(4 * (item % 4) + 3 - b % 4) : kZero;
            m.value[j][b] = isValue(w) ? char(-1) : 0;
        }
    return m;
}
constexpr Masks kMasks = masks();

__attribute__((target("ssse3"))) __m128i vec(const Mask &m) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(m.data()));
}

// The header words of vector j, 0 in its value lanes.
__attribute__((target("ssse3"))) __m128i headers(int j, uint32_t tag) {
    alignas(16) uint32_t h[4];
    for (int l = 0; l < 4; ++l) {
        int w = 4 * j + l;
        h[l] = isValue(w) ? 0 : be32(w % 3 == 1 ? 4 : tag + w / 3 % 2);
    }
    return _mm_load_si128(reinterpret_cast<const __m128i *>(h));
}

__attribute__((target("ssse3"))) size_t writeVec(const uint8_t *items, size_t n, uint32_t tag,
                                                 uint8_t *p) {
    const __m128i h0 = headers(0, tag), h1 = headers(1, tag), h2 = headers(2, tag);
    const __m128i s0 = vec(kMasks.put[0]), s1 = vec(kMasks.put[1]), s2 = vec(kMasks.put[2]);
    const uint8_t *end = items + n / 2 * 16;
    for (; items != end; items += 16, p += 48) {
        __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(items));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(p), _mm_or_si128(_mm_shuffle_epi8(v, s0), h0));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(p + 16),
                         _mm_or_si128(_mm_shuffle_epi8(v, s1), h1));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(p + 32),
                         _mm_or_si128(_mm_shuffle_epi8(v, s2), h2));
    }
    return n / 2 * 2;
}

// Stops before the first two items whose headers are not exactly the list's.
__attribute__((target("ssse3"))) size_t takeVec(uint8_t *items, size_t n, uint32_t tag,
                                                const uint8_t *p) {
    const __m128i h0 = headers(0, tag), h1 = headers(1, tag), h2 = headers(2, tag);
    const __m128i m0 = vec(kMasks.value[0]), m1 = vec(kMasks.value[1]), m2 = vec(kMasks.value[2]);
    const __m128i g0 = vec(kMasks.take[0]), g1 = vec(kMasks.take[1]), g2 = vec(kMasks.take[2]);
    const uint8_t *start = p, *end = p + n / 2 * 48;
    for (; p != end; items += 16, p += 48) {
        const __m128i v0 = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p)),
                      v1 = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p + 16)),
                      v2 = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p + 32));
        __m128i ok = _mm_and_si128(_mm_or_si128(_mm_cmpeq_epi32(v0, h0), m0),
                                   _mm_or_si128(_mm_cmpeq_epi32(v1, h1), m1));
        ok = _mm_and_si128(ok, _mm_or_si128(_mm_cmpeq_epi32(v2, h2), m2));
        if (_mm_movemask_epi8(ok) != 0xFFFF) break;
        __m128i w = _mm_or_si128(_mm_shuffle_epi8(v0, g0), _mm_shuffle_epi8(v1, g1));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(items), _mm_or_si128(w, _mm_shuffle_epi8(v2, g2)));
    }
    return size_t(p - start) / 24;
}

}  // namespace

size_t writePairs(const uint8_t *items, size_t n, uint32_t tag, uint8_t *p) {
    return haveShuffles() ? writeVec(items, n, tag, p) : 0;
}

size_t takePairs(uint8_t *items, size_t n, uint32_t tag, const uint8_t *p) {
    return haveShuffles() ? takeVec(items, n, tag, p) : 0;
}

}  // namespace wifiap::codec

#endif
