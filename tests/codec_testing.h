// Helpers of the codec suite: a table of every record, random contents.
#pragma once

#include <stdint.h>
#include <string.h>

#include <memory>
#include <random>

#include "capture.h"
#include "elements.h"
#include "codec.h"
#include "engine.h"
#include "intfWifiAp.h"

namespace ct {

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
