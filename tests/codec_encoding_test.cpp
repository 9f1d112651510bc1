// What records look like on the wire: golden bytes, sizes, widening, wide elements.
#include <gtest/gtest.h>

#include "codec_testing.h"

namespace {

using ct::Blob;
using ct::Bytes;
using ct::operator+;

struct Golden {
    const char *what;
    const char *record;
    void (*setup)(void *rec);
    size_t at;  // where the expected bytes start in the encoding
    Bytes expected;
};

const Golden kGolden[] = {
    {"conf 1 and 258", "conf",
     [](void *r) { *static_cast<conf *>(r) = conf{1, 258}; }, 0,
     {0, 0, 0, 3, 0, 0, 0, 4, 0, 0, 0, 1, 0, 0, 0, 4, 0, 0, 0, 4, 0, 0, 1, 2}},
    {"text abc with tag 5", "assocDevInfo",
     [](void *r) { strcpy(static_cast<assocDevInfo *>(r)->text, "abc"); }, 24,
     {0, 0, 0, 5, 0, 0, 0, 8, 0x61, 0x62, 0x63, 0, 0, 0, 0, 0}},
    {"empty station list", "assocDevStatList", [](void *) {}, 0,
     {0, 0, 0, 3, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0, 4, 0, 0, 0, 4, 0, 0, 0, 0}},
    {"wide element of tag 3", "assocDevStats",
     [](void *r) { static_cast<assocDevStats *>(r)->value1 = 0x0102030405060708ull; }, 0,
     {0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0, 0, 0, 0, 0, 8, 1, 2, 3, 4, 5, 6, 7, 8}},
    {"u8 255 zero-extended", "assocDevInfo",
     [](void *r) { static_cast<assocDevInfo *>(r)->value = 255; }, 12,
     {0, 0, 0, 4, 0, 0, 0, 4, 0, 0, 0, 0xFF}},
    {"u8 200 of the statistics", "assocDevStats",
     [](void *r) { static_cast<assocDevStats *>(r)->value13 = 200; }, 4 * 24 + 5 * 12 + 12 + 3 * 12 + 12,
     {0, 0, 0, 17, 0, 0, 0, 4, 0, 0, 0, 0xC8}},
    {"list of 40 sends its count", "assocDevList",
     [](void *r) { static_cast<assocDevList *>(r)->assocDevNum = 40; }, 0,
     ct::scalar(3, 40) + ct::text(3, "") + ct::scalar(4, 0)},
};

// Short, stable names in test listings (the default prints raw bytes).
void PrintTo(const Golden &c, std::ostream *os) { *os << c.what; }

class GoldenBytes : public testing::TestWithParam<Golden> {};

TEST_P(GoldenBytes, SerializeWritesThem) {
    const Golden &g = GetParam();
    const ct::RecordApi &r = ct::record(g.record);
    Blob rec(r.ops->bytes);
    g.setup(rec.p());
    Bytes out = ct::encode(r, rec.p());
    ASSERT_GE(out.size(), g.at + g.expected.size());
    EXPECT_EQ(Bytes(out.begin() + g.at, out.begin() + g.at + g.expected.size()), g.expected);
}
INSTANTIATE_TEST_SUITE_P(Codec, GoldenBytes, testing::ValuesIn(kGolden));

// Element lengths of texts, from the padding rule's own table.
TEST(TextElement, LengthAndPadding) {
    const struct { uint32_t n, len; } cases[] = {{0, 4}, {1, 4}, {2, 4}, {3, 8}, {4, 8},
                                                 {17, 20}, {63, 68}, {149, 152}};
    for (auto c : cases) {
        assocDevInfo rec{};
        memset(rec.text, 'x', c.n);
        Bytes out = ct::encode(ct::record("assocDevInfo"), &rec);
        ASSERT_EQ(out.size(), 24 + 8 + c.len) << c.n;
        EXPECT_EQ(ct::rd32(&out[28]), c.len) << c.n;
        for (uint32_t k = c.n; k < c.len; ++k) EXPECT_EQ(out[32 + k], 0) << c.n << " pad " << k;
    }
}

struct SizeCase {
    const char *what;
    const char *record;
    void (*setup)(void *rec);
    uint32_t size;
};

void fillTexts(char *t, size_t cap) { memset(t, 'z', cap - 1); }

const SizeCase kSizes[] = {
    {"assocDevInfo 17-char mac", "assocDevInfo",
     [](void *r) { memset(static_cast<assocDevInfo *>(r)->macAddress, 'm', 17); }, 52},
    {"wpsStatusStruct 17-char mac", "wpsStatusStruct",
     [](void *r) { memset(static_cast<wpsStatusStruct *>(r)->macAddress, 'm', 17); }, 40},
    {"accountingParams empty", "accountingParams", [](void *) {}, 84},
    {"perRateStats 400 counted", "perRateStats",
     [](void *r) { static_cast<perRateStats *>(r)->rateStatsNum = 400; }, 48 + 24 * 312},
    {"assocDevStats empty", "assocDevStats", [](void *) {}, 324},
    {"assocDevStatus empty", "assocDevStatus", [](void *) {}, 564},
    {"assocDevStatus full", "assocDevStatus",
     [](void *v) {
         auto *r = static_cast<assocDevStatus *>(v);
         fillTexts(r->macAddress, 18), fillTexts(r->text1, 8), fillTexts(r->text2, 30);
         fillTexts(r->text3, 30), fillTexts(r->text4, 15), fillTexts(r->text5, 15);
         fillTexts(r->devStats.text1, 48), fillTexts(r->devStats.text2, 15);
         fillTexts(r->devStats.text3, 15);
         r->devStats.perRate.rateStatsNum = 312;
     },
     740 + 24 * 312},
    {"assocDevStatList 150 counted", "assocDevStatList",
     [](void *r) { static_cast<assocDevStatList *>(r)->assocDevNum = 150; }, 24 + 100 * (36 + 564)},
    {"assocDevList 40 counted", "assocDevList",
     [](void *r) { static_cast<assocDevList *>(r)->assocDevNum = 40; }, 12 + 32 * 36 + 36},
};

void PrintTo(const SizeCase &c, std::ostream *os) { *os << c.what; }

class EncodedSize : public testing::TestWithParam<SizeCase> {};

TEST_P(EncodedSize, SizeIsWhatSerializeWrites) {
    const SizeCase &c = GetParam();
    const ct::RecordApi &r = ct::record(c.record);
    Blob rec(r.ops->bytes);
    c.setup(rec.p());
    EXPECT_EQ(r.lg(rec.p()), c.size);
    EXPECT_EQ(r.ops->size(rec.p()), c.size);
    EXPECT_EQ(ct::encode(r, rec.p()).size(), c.size);
}
INSTANTIATE_TEST_SUITE_P(Codec, EncodedSize, testing::ValuesIn(kSizes));

// The element tags of an encoding, walked by hand: the first `wide` are wide.
std::vector<uint64_t> tagsOf(const Bytes &b, int wide) {
    std::vector<uint64_t> tags;
    for (size_t at = 0; at < b.size(); wide = wide > 0 ? wide - 1 : 0) {
        if (wide > 0) {
            tags.push_back(uint64_t(ct::rd32(&b[at])) << 32 | ct::rd32(&b[at + 4]));
            at += 16 + ct::rd32(&b[at + 12]);
        } else {
            tags.push_back(ct::rd32(&b[at]));
            at += 8 + ct::rd32(&b[at + 4]);
        }
    }
    return tags;
}

TEST(TagOrder, StatisticsWithTwoRates) {
    assocDevStats rec{};
    rec.perRate.rateStatsNum = 2;
    std::vector<uint64_t> want;
    for (uint64_t t = 3; t <= 21; ++t) want.push_back(t);
    for (uint64_t t : {3, 4, 5, 6, 3, 4, 3, 4}) want.push_back(t);
    EXPECT_EQ(tagsOf(ct::encode(ct::record("assocDevStats"), &rec), 4), want);
}

// Narrow fields travel widened and come back as their low bits.
struct Narrow {
    uint32_t tag;     // element of assocDevStatus; every one before it is 12 bytes here
    size_t off, width;
    int32_t mem;      // field value (read as signed or not by width/sign below)
    bool isSigned;
    uint32_t wire;
    bool canonical;   // mem -> wire as well as wire -> mem
};

const Narrow kNarrow[] = {
    {4, offsetof(assocDevStatus, value1), 1, 255, false, 0xFF, true},
    {4, offsetof(assocDevStatus, value1), 1, 2, false, 0x102, false},
    {8, offsetof(assocDevStatus, value5), 2, -2, true, 0xFFFFFFFE, true},
    {8, offsetof(assocDevStatus, value5), 2, 5, true, 0x00010005, false},
    {8, offsetof(assocDevStatus, value5), 2, -32768, true, 0xFFFF8000, true},
    {11, offsetof(assocDevStatus, value8), 1, -128, true, 0xFFFFFF80, true},
    {11, offsetof(assocDevStatus, value8), 1, 127, true, 0x7F, true},
    {14, offsetof(assocDevStatus, value10), 1, 200, false, 0xC8, true},
    {17, offsetof(assocDevStatus, value13), 1, -1, true, 0xFFFFFFFF, true},
    {17, offsetof(assocDevStatus, value13), 1, -1, true, 0x000000FF, false},
};

int32_t loadField(const uint8_t *p, const Narrow &n) {
    if (n.width == 1) return n.isSigned ? int32_t(int8_t(*p)) : int32_t(*p);
    uint16_t v;
    memcpy(&v, p, 2);
    return n.isSigned ? int32_t(int16_t(v)) : int32_t(v);
}

void PrintTo(const Narrow &c, std::ostream *os) { *os << "tag " << c.tag << " wire " << c.wire; }

class NarrowFields : public testing::TestWithParam<Narrow> {};

TEST_P(NarrowFields, WidenedOnWriteNarrowedOnRead) {
    const Narrow &n = GetParam();
    const ct::RecordApi &r = ct::record("assocDevStatus");
    size_t valueAt = (n.tag - 3) * 12 + 8;
    Blob src(sizeof(assocDevStatus));
    if (n.width == 1) src.p()[n.off] = uint8_t(n.mem);
    if (n.width == 2) {
        uint16_t v = uint16_t(n.mem);
        memcpy(src.p() + n.off, &v, 2);
    }
    Bytes body = ct::encode(r, src.p());
    ASSERT_EQ(ct::rd32(&body[valueAt - 8]), n.tag);
    if (n.canonical) {
        EXPECT_EQ(ct::rd32(&body[valueAt]), n.wire);
    }
    for (int i = 0; i < 4; ++i) body[valueAt + i] = uint8_t(n.wire >> (24 - 8 * i));
    Blob dst(sizeof(assocDevStatus));
    const uint8_t *cur = body.data();
    ASSERT_EQ(r.unser(dst.p(), &cur), 0u);
    EXPECT_EQ(loadField(dst.p() + n.off, n), n.mem);
}
INSTANTIATE_TEST_SUITE_P(Codec, NarrowFields, testing::ValuesIn(kNarrow));

// Stated lengths decide only where the next element starts.
struct LengthQuirk {
    const char *what;
    const char *record;
    size_t at;            // element whose header is rewritten
    Bytes header;         // its new tag and length bytes
    size_t extra;         // zero bytes inserted after its value
    void (*setup)(void *rec) = [](void *) {};
};

const LengthQuirk kQuirks[] = {
    {"scalar stated 8", "conf", 0, {0, 0, 0, 3, 0, 0, 0, 8}, 4},
    {"wide stated 16", "assocDevStats", 0, {0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0, 0, 0, 0, 0, 16}, 8},
    {"wide length high half ignored", "assocDevStats", 24,
     {0, 0, 0, 0, 0, 0, 0, 4, 0, 0, 0, 1, 0, 0, 0, 8}, 0},
    {"text stated 12", "wpsStatusStruct", 12, {0, 0, 0, 4, 0, 0, 0, 12}, 8,
     [](void *r) { strcpy(static_cast<wpsStatusStruct *>(r)->macAddress, "ab"); }},
};

void PrintTo(const LengthQuirk &c, std::ostream *os) { *os << c.what; }

class LengthQuirks : public testing::TestWithParam<LengthQuirk> {};

TEST_P(LengthQuirks, ReadThroughBothReaders) {
    const LengthQuirk &q = GetParam();
    const ct::RecordApi &r = ct::record(q.record);
    Blob src(r.ops->bytes);
    memset(src.p(), 0x5A, 4);  // values that a misplaced read would not find
    q.setup(src.p());
    Bytes body = ct::encode(r, src.p());
    size_t valueEnd = q.at + q.header.size() + (q.header.size() == 16 ? 8 : 4);
    std::copy(q.header.begin(), q.header.end(), body.begin() + q.at);
    body.insert(body.begin() + valueEnd, q.extra, 0);

    Blob viaExport(r.ops->bytes), viaOps(r.ops->bytes);
    const uint8_t *cur = body.data();
    EXPECT_EQ(r.unser(viaExport.p(), &cur), 0u);
    EXPECT_EQ(cur, body.data() + body.size());
    cur = body.data();
    EXPECT_EQ(r.ops->read(viaOps.p(), &cur, body.size(), {}), 0u);
    EXPECT_EQ(cur, body.data() + body.size());
    EXPECT_EQ(memcmp(viaExport.p(), src.p(), r.ops->bytes), 0);
    EXPECT_EQ(memcmp(viaOps.p(), src.p(), r.ops->bytes), 0);
}
INSTANTIATE_TEST_SUITE_P(Codec, LengthQuirks, testing::ValuesIn(kQuirks));

}  // namespace
