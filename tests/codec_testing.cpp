#include "codec_testing.h"

#include <stdexcept>

#include "records.h"

namespace ct {

using namespace wifiap::codec;

// The exported functions behind one signature each, per record.
#define CT_RECORD(R, C)                                                                   \
    RecordApi{#R, &k##C,                                                     \
              [](void *d, const void *s) { return intfWifiAp_##R##_copy((R *)d, (const R *)s); }, \
              [](void *r) { intfWifiAp_##R##_clean((R *)r); },                            \
              [](const void *r) { return intfWifiAp_##R##_serialize_lg((const R *)r); },  \
              [](const void *r, uint8_t **c) { return intfWifiAp_##R##_serialize((const R *)r, c); }, \
              [](void *r, const uint8_t **c) { return intfWifiAp_##R##_unserialize((R *)r, c); }},

const std::vector<RecordApi> &records() {
    static const std::vector<RecordApi> all = {WIFIAP_RECORDS(CT_RECORD)};
    return all;
}

const RecordApi &record(const std::string &name) {
    for (const RecordApi &r : records())
        if (name == r.name) return r;
    throw std::invalid_argument(name);
}

static void fill(const Desc &d, uint8_t *rec, std::mt19937 &rng, uint32_t maxItems) {
    for (uint32_t i = 0; i < d.count; ++i) {
        const Field &f = d.fields[i];
        uint8_t *at = rec + f.off;
        if (f.kind == Kind::Text) {
            // Lengths at the edges of the padding and of the capacity are the interesting ones.
            uint32_t n = maxItems == kFull ? f.cap - 1
                         : rng() % 3 == 0   ? f.cap - 1 - rng() % 4
                                            : rng() % f.cap;
            for (uint32_t k = 0; k < n; ++k) at[k] = uint8_t('a' + rng() % 26);
        } else if (f.kind == Kind::Nested) {
            fill(*f.sub, at, rng, maxItems);
        } else if (f.kind == Kind::List) {
            uint32_t pick = maxItems == kFull ? 1 : rng() % 4;
            uint32_t n = pick == 0 ? f.cap + 1 + rng() % 1000 : pick == 1 ? f.cap : rng() % (f.cap + 1);
            if (n > maxItems && maxItems != kFull) n = maxItems;
            memcpy(rec + f.countOff, &n, sizeof n);
            for (uint32_t k = 0; k < n && k < f.cap; ++k)
                fill(*f.sub, at + k * f.stride, rng, maxItems);
        } else {
            size_t width = f.kind <= Kind::S8 ? 1 : f.kind <= Kind::S16 ? 2 : f.kind == Kind::U32 ? 4 : 8;
            for (size_t k = 0; k < width; ++k) at[k] = uint8_t(rng());
        }
    }
}

void randomFill(const RecordApi &r, void *rec, std::mt19937 &rng, uint32_t maxItems) {
    fill(*r.ops->desc, static_cast<uint8_t *>(rec), rng, maxItems);
}

std::vector<std::string> expand(const std::vector<std::string> &lines, const uint8_t *base,
                                const void *other) {
    std::vector<std::string> out;
    for (std::string l : lines) {
        for (size_t at; (at = l.find('{')) != std::string::npos;) {
            size_t end = l.find('}', at);
            const void *p = l[at + 1] == 'B' ? other : base + std::stoul(l.substr(at + 2, end - at - 2));
            l.replace(at, end - at + 1, cap::fmt("%p", p));
        }
        out.push_back(l + "\n");
    }
    return out;
}

}  // namespace ct
