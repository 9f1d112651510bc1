// Every record through its five operations, copy's cutting rules, and the
// memory layout that clients compile against.
#include <gtest/gtest.h>

#include "codec_testing.h"

namespace {

using ct::Blob;
using ct::Bytes;

class RoundTrip : public testing::TestWithParam<ct::RecordApi> {};

TEST_P(RoundTrip, RandomRecordsComeBackEqual) {
    const ct::RecordApi &r = GetParam();
    std::mt19937 rng(1234);
    for (int round = 0; round < 4; ++round) {
        Blob src(r.ops->bytes);
        ct::randomFill(r, src.p(), rng);
        cap::reset();
        uint32_t lg = r.lg(src.p());
        ASSERT_EQ(r.ops->size(src.p()), lg);

        // Exactly serialize_lg bytes: writing one more is a heap overflow.
        std::unique_ptr<uint8_t[]> body(new uint8_t[lg]());
        uint8_t *w = body.get();
        ASSERT_EQ(r.ser(src.p(), &w), 0u);
        ASSERT_EQ(w, body.get() + lg);
        Bytes viaOps(lg);
        w = viaOps.data();
        ASSERT_EQ(r.ops->write(src.p(), &w), 0u);
        ASSERT_EQ(memcmp(viaOps.data(), body.get(), lg), 0);

        Blob trusted(r.ops->bytes), bounded(r.ops->bytes), copied(r.ops->bytes);
        const uint8_t *c = body.get();
        ASSERT_EQ(r.unser(trusted.p(), &c), 0u);
        EXPECT_EQ(c, body.get() + lg);
        c = body.get();
        ASSERT_EQ(r.ops->read(bounded.p(), &c, lg, {}), 0u);
        EXPECT_EQ(c, body.get() + lg);
        ASSERT_EQ(r.copy(copied.p(), src.p()), 0u);
        EXPECT_EQ(memcmp(trusted.p(), src.p(), r.ops->bytes), 0) << r.name;
        EXPECT_EQ(memcmp(bounded.p(), src.p(), r.ops->bytes), 0) << r.name;
        EXPECT_EQ(memcmp(copied.p(), src.p(), r.ops->bytes), 0) << r.name;

        r.clean(copied.p());
        r.clean(nullptr);
        EXPECT_EQ(memcmp(copied.p(), src.p(), r.ops->bytes), 0) << r.name;
        EXPECT_TRUE(cap::lines().empty());
        EXPECT_EQ(cap::allocations(), 0);
    }
}
INSTANTIATE_TEST_SUITE_P(Codec, RoundTrip, testing::ValuesIn(ct::records()),
                         [](const testing::TestParamInfo<ct::RecordApi> &i) {
                             return std::string(i.param.name);
                         });

// Copy cuts texts to capacity - 1, NUL-fills the rest of the field, and
// copies min(count, capacity) items; everything else in the destination stays.
struct CopyCase {
    const char *what;
    const char *record;
    void (*setup)(void *src);
    void (*check)(const void *dst);
};
void PrintTo(const CopyCase &c, std::ostream *os) { *os << c.what; }

const CopyCase kCopies[] = {
    {"text overrunning its field is cut", "accountingParams",
     [](void *v) {
         auto *s = static_cast<accountingParams *>(v);
         memset(s->text3, 'x', sizeof s->text3);
         strcpy(s->text4, "tail");
     },
     [](const void *v) {
         auto *d = static_cast<const accountingParams *>(v);
         EXPECT_EQ(std::string(d->text3), std::string(63, 'x'));
         EXPECT_STREQ(d->text4, "tail");
     }},
    {"short text NUL-filled to capacity", "probeRequest",
     [](void *v) { strcpy(static_cast<probeRequest *>(v)->text, "ab"); },
     [](const void *v) {
         auto *d = static_cast<const probeRequest *>(v);
         EXPECT_STREQ(d->text, "ab");
         for (size_t k = 2; k < sizeof d->text; ++k) ASSERT_EQ(d->text[k], 0) << k;
     }},
    {"rate count 5 leaves the other slots", "perRateStats",
     [](void *v) {
         auto *s = static_cast<perRateStats *>(v);
         s->rateStatsNum = 5;
         for (auto &r : s->rates) r = rateStats{1, 2};
     },
     [](const void *v) {
         auto *d = static_cast<const perRateStats *>(v);
         EXPECT_EQ(d->rates[4].value2, 2u);
         EXPECT_EQ(d->rates[5].value1, 0xEEEEEEEEu);
         EXPECT_EQ(d->rates[311].value2, 0xEEEEEEEEu);
     }},
};

class Copy : public testing::TestWithParam<CopyCase> {};

TEST_P(Copy, CutsAndKeeps) {
    const CopyCase &c = GetParam();
    const ct::RecordApi &r = ct::record(c.record);
    Blob src(r.ops->bytes + 64), dst(r.ops->bytes);  // a text may overrun into the slack
    memset(dst.p(), 0xEE, r.ops->bytes);
    c.setup(src.p());
    cap::reset();
    ASSERT_EQ(r.copy(dst.p(), src.p()), 0u);
    c.check(dst.p());
    EXPECT_TRUE(cap::lines().empty());
}
INSTANTIATE_TEST_SUITE_P(Codec, Copy, testing::ValuesIn(kCopies));

// Natural layout: 64-bit fields align as the platform's ABI puts them in a struct.
struct Probe {
    char c;
    uint64_t v;
};
constexpr size_t kA = offsetof(Probe, v);
constexpr size_t up(size_t n) { return (n + kA - 1) / kA * kA; }

TEST(Abi, SizesAndOffsets) {
    const size_t stats = up(148 + 2512), status = up(146) + stats, full = up(169) + status;
    const struct {
        const char *what;
        size_t got, want;
    } cases[] = {
        {"assocDevInfo", sizeof(assocDevInfo), 169},
        {"assocDevInfo.text", offsetof(assocDevInfo, text), 19},
        {"assocDevList", sizeof(assocDevList), 5568},
        {"assocDevList.value", offsetof(assocDevList, value), 5492},
        {"probeRequest.value", offsetof(probeRequest, value), 148},
        {"perRateStats", sizeof(perRateStats), 2512},
        {"assocDevStats.perRate", offsetof(assocDevStats, perRate), 148},
        {"assocDevStats", sizeof(assocDevStats), stats},
        {"assocDevStatus.value3", offsetof(assocDevStatus, value3), 20},
        {"assocDevStatus.value14", offsetof(assocDevStatus, value14), 112},
        {"assocDevStatus.devStats", offsetof(assocDevStatus, devStats), up(146)},
        {"assocDevStatus", sizeof(assocDevStatus), status},
        {"assocDevInfoFull.devStatus", offsetof(assocDevInfoFull, devStatus), up(169)},
        {"assocDevInfoFull", sizeof(assocDevInfoFull), full},
        {"assocDevStatList.assocDevs", offsetof(assocDevStatList, assocDevs), 40},
        {"assocDevStatList", sizeof(assocDevStatList), up(40 + 100 * full)},
        {"accountingParams", sizeof(accountingParams), 188},
        {"accountingResult.value2", offsetof(accountingResult, value2), 68},
        {"wpsStatusStruct", sizeof(wpsStatusStruct), 24},
    };
    for (const auto &c : cases) EXPECT_EQ(c.got, c.want) << c.what;
    for (const ct::RecordApi &r : ct::records()) EXPECT_STREQ(r.ops->name, r.name);
}

}  // namespace
