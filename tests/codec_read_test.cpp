// Reading failures: the exact lines, the cursor, what was stored; and bounded
// reads that must stop at the body's end.
#include <gtest/gtest.h>

#include "codec_testing.h"

namespace {

using ct::Blob;
using ct::Bytes;
using ct::operator+;
using ct::raw;
using ct::scalar;
using ct::text;
using ct::wide;

struct ReadFail {
    const char *what;
    const char *record;
    Bytes body;
    std::vector<std::string> lines;  // "{+N}": body + N
    size_t cursor;
    void (*check)(const void *rec) = nullptr;
};

std::string fnOf(const char *rec) { return std::string("intfWifiAp_") + rec + "_unserialize: "; }
std::string tl(const char *rec, size_t at, uint32_t tag, uint32_t len, uint32_t want) {
    return fnOf(rec) + cap::fmt("pBody({+%zu}): Tl(%u-%u) expectded(%u)", at, tag, len, want);
}
std::string tl64(const char *rec, size_t at, unsigned long long tag, unsigned long long len,
                 uint32_t want) {
    return fnOf(rec) + cap::fmt("pBody({+%zu}): Tl(%llu-%llu) expectded(%u)", at, tag, len, want);
}
std::string chain(const char *rec, int in, int max) {
    return fnOf(rec) + cap::fmt("lgChainIn(%d) lgMaxChainOut(%d)", in, max);
}
std::vector<std::string> before(const char *rec, size_t at, uint32_t from, uint32_t to) {
    std::vector<std::string> out;
    for (uint32_t t = from; t <= to; ++t)
        out.push_back(fnOf(rec) + cap::fmt("pBody({+%zu}): Type(%u) -> Error Before", at, t));
    return out;
}
std::vector<std::string> operator+(std::vector<std::string> a, const std::vector<std::string> &b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}
std::vector<std::string> operator+(std::string a, const std::vector<std::string> &b) {
    return std::vector<std::string>{a} + b;
}

Bytes cut(Bytes b, size_t n) {
    b.resize(n);
    return b;
}

Bytes statsHead(int scalars) {  // the four wide elements and some 32-bit ones of assocDevStats
    Bytes b = wide(3, 1) + wide(4, 2) + wide(5, 3) + wide(6, 4);
    for (int t = 7; t < 7 + scalars; ++t) b = b + scalar(t, 0);
    return b;
}

// Two items of a station list, each with two rates, texts empty: 24 + 2 * 648 bytes.
Bytes twoStations() {
    assocDevStatList *l = new assocDevStatList{};
    l->assocDevNum = 2;
    for (auto &d : l->assocDevs) d.devStatus.devStats.perRate.rateStatsNum = 2;
    Bytes b = ct::encode(ct::record("assocDevStatList"), l);
    delete l;
    b[1296 + 3] = 9;  // second rate of the second item
    return b;
}

std::vector<ReadFail> failures() {
    return {
        {"conf first tag 4", "conf", scalar(4, 1) + scalar(4, 2),
         tl("conf", 0, 4, 4, 3) + before("conf", 0, 4, 4), 0,
         [](const void *r) { EXPECT_EQ(static_cast<const conf *>(r)->value1, 0u); }},
        {"conf second tag 5", "conf", scalar(3, 1) + scalar(5, 2), {tl("conf", 0, 5, 4, 4)}, 12,
         [](const void *r) { EXPECT_EQ(static_cast<const conf *>(r)->value1, 1u); }},
        {"assocDevInfo 18-char mac", "assocDevInfo",
         text(3, std::string(18, 'a')) + scalar(4, 0) + text(5, ""),
         chain("assocDevInfo", 19, 18) + before("assocDevInfo", 0, 4, 5), 0},
        {"assocDevList second item", "assocDevList",
         scalar(3, 2) + text(3, "a") + scalar(4, 7) + text(5, "") + scalar(9, 0) + scalar(4, 0),
         tl("assocDevInfo", 48, 9, 4, 3) + before("assocDevInfo", 48, 4, 5) +
             before("assocDevList", 0, 5, 7),
         48,
         [](const void *v) {
             auto *r = static_cast<const assocDevList *>(v);
             EXPECT_EQ(r->assocDevNum, 2u);
             EXPECT_STREQ(r->assocDevs[0].macAddress, "a");
             EXPECT_EQ(r->assocDevs[0].value, 7);
         }},
        {"assocDevList count tag", "assocDevList", scalar(4, 0),
         tl("assocDevList", 0, 4, 4, 3) + before("assocDevList", 0, 5, 7), 0},
        {"perRateStats tag 5", "perRateStats", scalar(3, 1) + scalar(4, 2) + scalar(7, 0),
         tl("perRateStats", 0, 7, 4, 5) + before("perRateStats", 0, 6, 6), 24,
         [](const void *r) { EXPECT_EQ(static_cast<const perRateStats *>(r)->rateStatsNum, 2u); }},
        {"assocDevStats wide tag high half", "assocDevStats", wide((1ull << 32) + 3, 0),
         tl64("assocDevStats", 0, (1ull << 32) + 3, 8, 3) + before("assocDevStats", 0, 4, 21), 0},
        {"assocDevStats 48-char text1", "assocDevStats",
         statsHead(5) + text(12, std::string(48, 't')),
         chain("assocDevStats", 49, 48) + before("assocDevStats", 0, 13, 21), 156},
        {"accountingParams 16-char text2", "accountingParams",
         scalar(3, 0) + scalar(4, 0) + text(5, "") + text(6, "") + text(7, std::string(16, 'x')),
         chain("accountingParams", 17, 16) + before("accountingParams", 0, 8, 9), 48},
        {"accountingResult third tag 6", "accountingResult",
         scalar(3, 1) + text(4, "hi") + scalar(6, 0), {tl("accountingResult", 0, 6, 4, 5)}, 24,
         [](const void *v) { EXPECT_STREQ(static_cast<const accountingResult *>(v)->text, "hi"); }},
        {"accountingResult scalar where a text belongs", "accountingResult",
         scalar(3, 1) + scalar(5, 2),
         tl("accountingResult", 0, 5, 4, 4) + before("accountingResult", 0, 5, 5), 12},
        {"assocDevStatus 18-char mac", "assocDevStatus", text(3, std::string(18, 'm')),
         chain("assocDevStatus", 19, 18) + before("assocDevStatus", 0, 4, 22), 0},
        {"assocDevStatList count tag", "assocDevStatList", scalar(4, 0) + text(4, ""),
         tl("assocDevStatList", 0, 4, 4, 3) + before("assocDevStatList", 0, 4, 4), 0},
        {"assocDevStatList 36-char text", "assocDevStatList",
         scalar(3, 0) + text(4, std::string(36, 's')), {chain("assocDevStatList", 37, 36)}, 12},
        {"assocDevInfoFull devInfo tag", "assocDevInfoFull", scalar(7, 0),
         tl("assocDevInfo", 0, 7, 4, 3) + before("assocDevInfo", 0, 4, 5), 0},
        {"assocDevStatList deep rate item", "assocDevStatList", twoStations(),
         tl("rateStats", 1296, 9, 4, 3) + before("rateStats", 1296, 4, 4), 1296},
    };
}

// Bodies that lie about their lengths or end early: only a reader that knows
// the end can refuse them.
std::vector<ReadFail> lies() {
    return {
        {"scalar length past the end", "conf", raw({0, 0, 0, 3, 0xFF, 0xFF, 0xFF, 0xF0, 0, 0, 0, 1}),
         tl("conf", 0, 3, 0xFFFFFFF0u, 3) + before("conf", 0, 4, 4), 0},
        {"header cut short, missing bytes read as 0", "conf", raw({0, 0, 0, 3, 0, 0, 4}),
         tl("conf", 0, 3, 1024, 3) + before("conf", 0, 4, 4), 0},
        {"empty body", "wpsInfoIn", {}, {tl("wpsInfoIn", 0, 0, 0, 3)}, 0},
        {"scalar value past the end", "wpsInfoIn", raw({0, 0, 0, 3, 0, 0, 0, 0}),
         {tl("wpsInfoIn", 0, 3, 0, 3)}, 0},
        {"text length past the end", "wpsStatusStruct",
         scalar(3, 1) + raw({0, 0, 0, 4, 0, 0, 0, 100, 'a', 'b', 0, 0}),
         {tl("wpsStatusStruct", 0, 4, 100, 4)}, 12},
        {"text without NUL in its element", "wpsStatusStruct",
         scalar(3, 1) + raw({0, 0, 0, 4, 0, 0, 0, 4, 'a', 'b', 'c', 'd', 0, 0, 0, 0}),
         {chain("wpsStatusStruct", 5, 18)}, 12},
        {"long text without NUL in its element", "wpsStatusStruct",
         scalar(3, 1) + raw({0, 0, 0, 4, 0, 0, 0, 20}) + Bytes(20, 'q'),
         {chain("wpsStatusStruct", 21, 18)}, 12},
        {"wide element cut short", "assocDevStats", cut(wide(3, 5), 20),
         tl64("assocDevStats", 0, 3, 8, 3) + before("assocDevStats", 0, 4, 21), 0},
        {"wide length past the end", "assocDevStats", wide(3, 5, 0xFFFFFFF0ull),
         tl64("assocDevStats", 0, 3, 0xFFFFFFF0ull, 3) + before("assocDevStats", 0, 4, 21), 0},
        {"count larger than the items sent", "perRateStats",
         scalar(3, 0) + scalar(4, 1000000) + scalar(5, 0) + scalar(6, 0),
         tl("rateStats", 48, 0, 0, 3) + before("rateStats", 48, 4, 4), 48},
    };
}

void PrintTo(const ReadFail &c, std::ostream *os) { *os << c.what; }

std::string caseName(const testing::TestParamInfo<ReadFail> &i) {
    std::string n;
    for (const char *p = i.param.what; *p; ++p) n += isalnum(uint8_t(*p)) ? *p : '_';
    return n;
}

void expectFailure(const ReadFail &c, const uint8_t *base, const uint8_t *cur, uint32_t st,
                   const void *rec) {
    EXPECT_EQ(st, 4u);
    EXPECT_EQ(cur - base, ptrdiff_t(c.cursor));
    EXPECT_EQ(cap::texts(), ct::expand(c.lines, base));
    for (const cap::Line &l : cap::lines()) EXPECT_EQ(l.prio, LOG_ERR);
    if (c.check) c.check(rec);
}

class TrustedRead : public testing::TestWithParam<ReadFail> {};

TEST_P(TrustedRead, Fails) {
    const ReadFail &c = GetParam();
    const ct::RecordApi &r = ct::record(c.record);
    Blob rec(r.ops->bytes);
    Bytes body = c.body;
    body.resize(body.size() + 64);  // room for the reads of a reader without an end
    cap::reset();
    const uint8_t *cur = body.data();
    uint32_t st = r.unser(rec.p(), &cur);
    expectFailure(c, body.data(), cur, st, rec.p());
}

INSTANTIATE_TEST_SUITE_P(Codec, TrustedRead, testing::ValuesIn(failures()), caseName);

class BoundedRead : public testing::TestWithParam<ReadFail> {};

TEST_P(BoundedRead, Fails) {
    const ReadFail &c = GetParam();
    const ct::RecordApi &r = ct::record(c.record);
    Blob rec(r.ops->bytes);
    // Exactly sized, so that a read past the end is caught by the sanitizer.
    std::unique_ptr<uint8_t[]> body(new uint8_t[c.body.size()]);
    std::copy(c.body.begin(), c.body.end(), body.get());
    cap::reset();
    const uint8_t *cur = body.get();
    uint32_t st = r.ops->read(rec.p(), &cur, c.body.size(), {});
    expectFailure(c, body.get(), cur, st, rec.p());
}
INSTANTIATE_TEST_SUITE_P(Codec, BoundedRead, testing::ValuesIn(failures()), caseName);
INSTANTIATE_TEST_SUITE_P(Lies, BoundedRead, testing::ValuesIn(lies()), caseName);

// Bare payloads and the header log as the body they belong to.
struct BodyFail {
    const wifiap::codec::Ops *ops;
    Bytes payload;
    std::vector<std::string> lines;  // "{B}": the body's start
    size_t cursor;
};

TEST(BodyPayloads, LogUnderTheBodyCallback) {
    using namespace wifiap::codec;
    const std::string fn = "intfWifiAp_cbEvtMsgMngt_unserializeBody_msgCmdRes_create: ";
    const BodyFail cases[] = {
        {&kHeader, scalar(5, 4) + scalar(1, 0),
         {fn + "pBody({B}): Tl(5-4) expectded(0)", fn + "pBody({B}): Type(1) -> Error Before"}, 0},
        {&kHeader, scalar(0, 7) + scalar(2, 0), {fn + "pBody({B}): Tl(2-4) expectded(1)"}, 12},
        {&kCreateRes, text(3, std::string(21, 'c')) + text(4, "") + scalar(5, 0),
         {fn + "lgChainIn(22) lgMaxChainOut(20)", fn + "pBody({B}): Type(4) -> Error Before",
          fn + "pBody({B}): Type(5) -> Error Before"},
         0},
        {&kResult, scalar(4, 4), {fn + "pBody({B}): Tl(4-4) expectded(3)"}, 0},
    };
    wifiap::Who who{"intfWifiAp_cbEvtMsgMngt_unserializeBody_msgCmdRes_", "create"};
    uint8_t bodyStart[24];
    for (const BodyFail &c : cases) {
        std::unique_ptr<uint8_t[]> buf(new uint8_t[c.payload.size()]);
        std::copy(c.payload.begin(), c.payload.end(), buf.get());
        Blob out(c.ops->bytes);
        cap::reset();
        const uint8_t *cur = buf.get();
        EXPECT_EQ(c.ops->read(out.p(), &cur, c.payload.size(), ReadLog{&who, bodyStart}), 4u);
        EXPECT_EQ(cur - buf.get(), ptrdiff_t(c.cursor));
        EXPECT_EQ(cap::texts(), ct::expand(c.lines, buf.get(), bodyStart));
    }
}

// The trusted reader measures a text to its NUL; the bounded one stays in the element.
TEST(TextBounds, TrustedReaderLooksPastTheStatedLength) {
    Bytes body = scalar(3, 1) + raw({0, 0, 0, 4, 0, 0, 0, 4, 'a', 'b', 'c', 'd', 0, 0, 0, 0});
    wpsStatusStruct rec{};
    const uint8_t *cur = body.data();
    EXPECT_EQ(intfWifiAp_wpsStatusStruct_unserialize(&rec, &cur), 0u);
    EXPECT_STREQ(rec.macAddress, "abcd");
    EXPECT_EQ(cur - body.data(), 24);
}

// Every prefix of a valid body is refused, cleanly and inside the prefix.
TEST(Truncation, EveryPrefixFails) {
    std::mt19937 rng(11);
    for (const ct::RecordApi &r : ct::records()) {
        Blob src(r.ops->bytes);
        ct::randomFill(r, src.p(), rng, 2);
        Bytes full = ct::encode(r, src.p());
        Blob dst(r.ops->bytes);
        for (size_t k = 0; k <= full.size(); ++k) {
            std::unique_ptr<uint8_t[]> buf(new uint8_t[k]);
            std::copy(full.begin(), full.begin() + k, buf.get());
            cap::reset();
            const uint8_t *cur = buf.get();
            uint32_t st = r.ops->read(dst.p(), &cur, k, {});
            ASSERT_EQ(st, k == full.size() ? 0u : 4u) << r.name << " cut at " << k;
            ASSERT_GE(cur, buf.get());
            ASSERT_LE(cur, buf.get() + k);
            ASSERT_EQ(cap::lines().empty(), k == full.size()) << r.name << " cut at " << k;
        }
        EXPECT_EQ(memcmp(dst.p(), src.p(), r.ops->bytes), 0) << r.name;
    }
}

}  // namespace
