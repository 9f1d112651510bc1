// What records look like on the wire: every field kind, byte for byte.
#include <gtest/gtest.h>

#include "codec_testing.h"

namespace {

using namespace ct;

Bytes rep(const Bytes &b, int n) { return n ? b + rep(b, n - 1) : Bytes{}; }

struct Wire {
    const char *what, *record;
    void (*setup)(void *rec);
    size_t at;  // where `expected` starts in the encoding
    Bytes expected;
    uint32_t size;
};
void PrintTo(const Wire &c, std::ostream *os) { *os << c.what; }

const Wire kWire[] = {
    {"u64 words, a nested record and its list", "assocDevStats",
     [](void *v) {
         auto *r = static_cast<assocDevStats *>(v);
         r->value1 = 0x0102030405060708ull, r->value13 = 200;
         r->perRate.rateStatsNum = 2, r->perRate.rates[0] = {1, 2}, r->perRate.rates[1] = {3, 4};
     },
     0,
     Bytes{0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0, 0, 0, 0, 0, 8, 1, 2, 3, 4, 5, 6, 7, 8} + wide(4, 0) +
         wide(5, 0) + wide(6, 0) + zeros(7, 11) + text(12, "") + zeros(13, 15) + text(16, "") +
         scalar(17, 200) + zeros(18, 18) + text(19, "") + zeros(20, 21) + zeros(3, 3) +
         scalar(4, 2) + zeros(5, 6) + scalar(3, 1) + scalar(4, 2) + scalar(3, 3) + scalar(4, 4),
     372},
    {"signed fields sign-extended", "assocDevStatus",
     [](void *v) {
         auto *r = static_cast<assocDevStatus *>(v);
         r->value1 = 255, r->value5 = -2, r->value8 = -128, r->value10 = 200, r->value13 = -1;
     },
     12,
     scalar(4, 0xFF) + zeros(5, 7) + scalar(8, 0xFFFFFFFE) + zeros(9, 10) + scalar(11, 0xFFFFFF80) +
         zeros(12, 12) + text(13, "") + scalar(14, 0xC8) + zeros(15, 16) + scalar(17, 0xFFFFFFFF),
     564},
    // A count above capacity travels as it is, with only the items that fit.
    {"sized items past capacity", "assocDevList",
     [](void *r) { static_cast<assocDevList *>(r)->assocDevNum = 40; }, 0,
     scalar(3, 40) + rep(text(3, "") + zeros(4, 4) + text(5, ""), 32) + text(5, "") + zeros(6, 6) +
         text(7, ""),
     12 + 32 * 36 + 36},
};

class WireBytes : public testing::TestWithParam<Wire> {};

TEST_P(WireBytes, SerializeWritesThem) {
    const Wire &w = GetParam();
    const RecordApi &r = record(w.record);
    auto rec = blob(r.ops->bytes);
    w.setup(rec.get());
    Bytes out(r.lg(rec.get()));
    uint8_t *cur = out.data();
    ASSERT_EQ(r.ser(rec.get(), &cur), 0u);
    ASSERT_EQ(cur, out.data() + w.size);
    ASSERT_GE(out.size(), w.at + w.expected.size());
    EXPECT_EQ(Bytes(out.begin() + w.at, out.begin() + w.at + w.expected.size()), w.expected);
}
INSTANTIATE_TEST_SUITE_P(Codec, WireBytes, testing::ValuesIn(kWire));

}  // namespace
