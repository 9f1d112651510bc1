// Every record through its five operations, every prefix of its encoding
// refused, and copy's cutting rules.
#include <gtest/gtest.h>

#include "codec_testing.h"
#include "page_end.h"

namespace {

using namespace ct;

class RoundTrip : public testing::TestWithParam<RecordApi> {};

TEST_P(RoundTrip, ComesBackEqualAndEveryPrefixIsRefused) {
    const RecordApi &r = GetParam();
    const size_t bytes = r.ops->bytes;
    std::mt19937 rng(1234);
    for (int round = 0; round < 4; ++round) {
        auto src = blob(bytes), copied = blob(bytes);
        randomFill(r, src.get(), rng, round ? UINT32_MAX : 2);
        cap::reset();
        uint32_t lg = r.lg(src.get());
        // Exactly serialize_lg bytes: writing one more is a heap overflow.
        std::unique_ptr<uint8_t[]> body(new uint8_t[lg]());
        uint8_t *w = body.get();
        ASSERT_EQ(r.ser(src.get(), &w), 0u);
        ASSERT_EQ(w, body.get() + lg);
        for (bool bounded : {false, true}) {
            auto out = blob(bytes);
            const uint8_t *c = body.get();
            ASSERT_EQ(bounded ? r.ops->read(out.get(), &c, lg, {}) : r.unser(out.get(), &c), 0u);
            EXPECT_EQ(c, body.get() + lg);
            EXPECT_EQ(memcmp(out.get(), src.get(), bytes), 0) << (bounded ? "bounded" : "trusted");
        }
        ASSERT_EQ(r.copy(copied.get(), src.get()), 0u);
        r.clean(copied.get()), r.clean(nullptr);
        EXPECT_EQ(memcmp(copied.get(), src.get(), bytes), 0);
        EXPECT_TRUE(cap::lines().empty());
        EXPECT_EQ(cap::allocations(), 0);
        // Each cut in an exactly sized buffer: refused, logged, cursor inside it.
        for (size_t k = 0; round == 0 && k < lg; ++k) {
            std::unique_ptr<uint8_t[]> cut(new uint8_t[k]);
            std::copy(body.get(), body.get() + k, cut.get());
            cap::reset();
            const uint8_t *c = cut.get();
            ASSERT_EQ(r.ops->read(copied.get(), &c, k, {}), 4u) << "cut at " << k;
            ASSERT_TRUE(c >= cut.get() && c <= cut.get() + k) << "cut at " << k;
            ASSERT_FALSE(cap::lines().empty()) << "cut at " << k;
        }
    }
}
// The exported readers take no end. Each word of an encoding changed in turn
// (a tag's, a length's, a value's) and the bytes cut right after its element's
// header: what the rules judge from those bytes alone, the exported reader
// reads the same with an unreadable page after the last byte.
TEST_P(RoundTrip, UnboundedReadsNoFurtherThanTheRules) {
    const RecordApi &r = GetParam();
    auto logged = [] {
        std::string s;
        for (const std::string &l : cap::texts()) s += l;
        cap::reset();
        return s;
    };
    auto rules = [&](void *o, const uint8_t **c, size_t left) { return r.ops->read(o, c, left, {}); };
    std::mt19937 rng(77);
    for (int round = 0; round < 2; ++round) {
        auto src = blob(r.ops->bytes);
        randomFill(r, src.get(), rng, 2);
        Bytes body(r.lg(src.get()));
        uint8_t *w = body.data();
        ASSERT_EQ(r.ser(src.get(), &w), 0u);
        int judged = 0;
        for (size_t at = 0; at < body.size(); at += 4) {
            Bytes bad(body.begin(), body.begin() + std::min(body.size(), at + 8));
            bad[at] ^= 0x80;
            std::string why;
            const auto v = page_end::judge(r.ops->bytes, bad.data(), bad.size(), rules, r.unser,
                                           logged, &why);
            ASSERT_NE(v, page_end::Verdict::Differs) << "word at " << at << "\n" << why;
            judged += v == page_end::Verdict::Same;
        }
        EXPECT_GT(judged, 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Codec, RoundTrip, testing::ValuesIn(records()),
                         [](const auto &i) { return std::string(i.param.name); });

// The station list's reader takes rates in bulk while their headers are exact;
// a rate that is not (either word, either item of a pair, the odd last one)
// must read as the rules read it: same status, lines, cursor and record.
TEST(Codec, StationListReadsUnusualRatesAsTheRules) {
    auto src = std::make_unique<assocDevStatList>();
    src->assocDevNum = 1;
    perRateStats &pr = src->assocDevs[0].devStatus.devStats.perRate;
    pr.rateStatsNum = 5;
    for (uint32_t k = 0; k < 5; ++k) pr.rates[k] = rateStats{0xA0000000u + k, 0xB0000000u + k};
    const RecordApi &r = record("assocDevStatList");
    Bytes body(r.lg(src.get()));
    uint8_t *w = body.data();
    ASSERT_EQ(r.ser(src.get(), &w), 0u);
    const Bytes first = scalar(3, 0xA0000000u);
    const size_t rates = size_t(std::search(body.begin(), body.end(), first.begin(), first.end()) -
                                body.begin());
    ASSERT_LT(rates, body.size());
    // Status, cursor, record and lines, as one text.
    auto read = [&](const Bytes &b, auto reader) {
        auto out = blob(r.ops->bytes);
        const uint8_t *c = b.data();
        cap::reset();
        std::string got = std::to_string(reader(out.get(), &c));
        got += " at " + std::to_string(c - b.data()) + ", record hash ";
        got += std::to_string(std::hash<std::string_view>()(
            std::string_view(reinterpret_cast<const char *>(out.get()), r.ops->bytes)));
        for (const std::string &l : cap::texts()) got += "\n" + l;
        return got;
    };
    // A wrong tag, or a length the rules take but the bulk path does not (read
    // bounded only: a trusted read takes the next value for a length).
    for (size_t at : {3, 7})
        for (size_t item = 0; item < 5; ++item)
            for (size_t word : {0, 1})
                for (bool bounded : {true, false}) {
                    if (!bounded && at == 7) continue;
                    Bytes bad = body;
                    bad[rates + item * 24 + word * 12 + at] = at == 3 ? 9 : 8;
                    const size_t left = bounded ? bad.size() : SIZE_MAX;
                    EXPECT_EQ(read(bad, [&](void *o, const uint8_t **c) {
                                  return bounded ? r.ops->read(o, c, left, {}) : r.unser(o, c);
                              }),
                              read(bad, [&](void *o, const uint8_t **c) {
                                  return wifiap::codec::tableRead(*r.ops->desc, o, c, left, {});
                              }))
                        << "item " << item << " word " << word << " byte " << at
                        << (bounded ? " bounded" : " trusted");
                }
}

// Copy cuts a text to capacity - 1 and copies min(count, capacity) items,
// leaving the rest of the destination as it was.
TEST(Codec, CopyCutsTextsAndItems) {
    auto s = std::make_unique<accountingParams>(), d = std::make_unique<accountingParams>();
    memset(s->text3, 'x', sizeof s->text3), strcpy(s->text4, "tail");
    ASSERT_EQ(intfWifiAp_accountingParams_copy(d.get(), s.get()), 0u);
    EXPECT_EQ(std::string(d->text3), std::string(63, 'x'));
    EXPECT_STREQ(d->text4, "tail");
    auto sr = std::make_unique<perRateStats>(), dr = std::make_unique<perRateStats>();
    memset(dr.get(), 0xEE, sizeof *dr);
    sr->rateStatsNum = 5;
    ASSERT_EQ(intfWifiAp_perRateStats_copy(dr.get(), sr.get()), 0u);
    EXPECT_EQ(dr->rates[4].value1, 0u);
    EXPECT_EQ(dr->rates[5].value1, 0xEEEEEEEEu);
}

}  // namespace
