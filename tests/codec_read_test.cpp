// Reading hostile bodies: the status, the exact lines, where the cursor stops
// and what was stored; a bounded read never looks past the body's end.
#include <gtest/gtest.h>

#include "codec_testing.h"

namespace {

using namespace ct;
using Lines = std::vector<std::string>;

enum Readers { Both, BoundedOnly };

struct Read {
    const char *what, *record;
    Bytes body;
    Lines lines;  // "{+N}": body + N; none when the read succeeds
    size_t cursor;
    Readers readers = Both;  // bodies that lie about their end are read bounded only
    void (*check)(const void *rec) = nullptr;
    Bytes beyond = {};  // bytes after the body's end, there to be read by mistake
};
void PrintTo(const Read &c, std::ostream *os) { *os << c.what; }

// Adds the "Error Before" lines of tags from..to, logged with the record's start.
Lines before(const char *rec, size_t at, uint32_t from, uint32_t to, Lines out = {}) {
    for (uint32_t t = from; t <= to; ++t)
        out.push_back(cap::fmt("intfWifiAp_%s_unserialize: pBody({+%zu}): Type(%u) -> Error Before",
                               rec, at, t));
    return out;
}
// A refused element (%u and %llu print alike below 2^32), then the lines of tags from..to.
Lines tl(const char *rec, size_t at, unsigned long long tag, unsigned long long len, uint32_t want,
         uint32_t from = 1, uint32_t to = 0) {
    return before(rec, at, from, to,
                  {cap::fmt("intfWifiAp_%s_unserialize: pBody({+%zu}): Tl(%llu-%llu) expectded(%u)",
                            rec, at, tag, len, want)});
}
Lines chain(const char *rec, int in, int max, uint32_t from = 1, uint32_t to = 0) {
    return before(rec, 0, from, to,
                  {cap::fmt("intfWifiAp_%s_unserialize: lgChainIn(%d) lgMaxChainOut(%d)", rec, in, max)});
}

const Bytes kAbcd = scalar(3, 1) + Bytes{0, 0, 0, 4, 0, 0, 0, 4, 'a', 'b', 'c', 'd', 0, 0, 0, 0};
const char *const kDs = "assocDevStats", *const kWs = "wpsStatusStruct";

const Read kReads[] = {
    // The failed element's line, then one for every later field that has an
    // element (nested records and lists have none).
    {"wrong first tag", "conf", scalar(4, 1) + scalar(4, 2), tl("conf", 0, 4, 4, 3, 4, 4), 0},
    {"wrong count tag", "assocDevList", scalar(4, 0), tl("assocDevList", 0, 4, 4, 3, 5, 7), 0},
    {"item logs from its own start", "assocDevList",
     scalar(3, 2) + text(3, "a") + scalar(4, 7) + text(5, "") + scalar(9, 0),
     before("assocDevList", 0, 5, 7, tl("assocDevInfo", 48, 9, 4, 3, 4, 5)), 48, Both,
     [](const void *v) { EXPECT_EQ(static_cast<const assocDevList *>(v)->assocDevs[0].value, 7); }},
    {"u64 tag's high half", kDs, wide((1ull << 32) + 3, 0), tl(kDs, 0, (1ull << 32) + 3, 8, 3, 4, 21), 0},
    {"text filling its capacity", kDs,
     wide(3, 1) + wide(4, 2) + wide(5, 3) + wide(6, 4) + zeros(7, 11) + text(12, std::string(48, 't')),
     chain(kDs, 49, 48, 13, 21), 156},
    // Bodies that end early or state lengths past their end.
    {"empty body", "wpsInfoIn", {}, tl("wpsInfoIn", 0, 0, 0, 3), 0, BoundedOnly},
    {"cut header reads 0s", "conf", {0, 0, 0, 3, 0, 0, 4}, tl("conf", 0, 3, 1024, 3, 4, 4), 0, BoundedOnly},
    {"u32 length past the end", "conf", {0, 0, 0, 3, 0xFF, 0xFF, 0xFF, 0xF0, 0, 0, 0, 1},
     tl("conf", 0, 3, 0xFFFFFFF0u, 3, 4, 4), 0, BoundedOnly},
    {"u64 cut off", kDs, Bytes(7, 0) + Bytes{3} + Bytes(7, 0) + Bytes{8, 0, 0, 0, 5},
     tl(kDs, 0, 3, 8, 3, 4, 21), 0, BoundedOnly},
    {"u64 length past the end", kDs, wide(3, 5, 0xFFFFFFF0u), tl(kDs, 0, 3, 0xFFFFFFF0u, 3, 4, 21), 0,
     BoundedOnly},
    {"text length past the end", kWs, scalar(3, 1) + Bytes{0, 0, 0, 4, 0, 0, 0, 100, 'a', 'b', 0, 0},
     tl(kWs, 0, 4, 100, 4), 12, BoundedOnly},
    // A stated length that reaches past the end by less than an element header.
    {"u32 length 4 bytes past the end", "conf", {0, 0, 0, 3, 0, 0, 0, 8, 0, 0, 0, 1},
     tl("conf", 0, 3, 8, 3, 4, 4), 0, BoundedOnly, nullptr, Bytes(4, 0) + scalar(4, 2)},
    {"u64 length 8 bytes past the end", kDs, wide(3, 5, 16), tl(kDs, 0, 3, 16, 3, 4, 21), 0,
     BoundedOnly, nullptr, Bytes(8, 0) + wide(4, 6) + wide(99, 0)},
    {"text length 4 bytes past the end", kWs, scalar(3, 1) + Bytes{0, 0, 0, 4, 0, 0, 0, 8, 'a', 'b', 0, 0},
     tl(kWs, 0, 4, 8, 4), 12, BoundedOnly, nullptr, Bytes(4, 0)},
    // A text ends at its element's first NUL, which the field must hold: the
    // lines give the text's length and the most that element and field hold.
    {"text stated shorter than its text", kWs, kAbcd, chain(kWs, 5, 4), 12},
    {"text without NUL in a long element", kWs, scalar(3, 1) + Bytes{0, 0, 0, 4, 0, 0, 0, 20} + Bytes(20, 'q'),
     chain(kWs, 21, 18), 12},
    {"text header ends the body", kWs, scalar(3, 1) + Bytes{0, 0, 0, 4, 0, 0, 0, 0}, chain(kWs, 1, 0), 12},
    {"count above the items sent", "perRateStats", zeros(3, 3) + scalar(4, 1000000) + zeros(5, 6),
     tl("rateStats", 48, 0, 0, 3, 4, 4), 48, BoundedOnly},
    // Accepted: narrow fields keep their low bits; a stated length only moves the cursor.
    {"u8 keeps the low byte", "assocDevInfo", text(3, "") + scalar(4, 0x102) + text(5, ""), {}, 36, Both,
     [](const void *r) { EXPECT_EQ(static_cast<const assocDevInfo *>(r)->value, 2); }},
    {"u32 stated 8", "conf", scalar(3, 7, 8) + scalar(4, 9), {}, 28, Both,
     [](const void *r) { EXPECT_EQ(static_cast<const conf *>(r)->value2, 9u); }},
    {"u64 stated 16, then a length's high half ignored", kDs,
     wide(3, 5, 16) + Bytes(8, 0) + wide(4, 6, (1ull << 32) | 8), tl(kDs, 0, 0, 0, 5, 6, 21), 56,
     BoundedOnly, [](const void *r) { EXPECT_EQ(static_cast<const assocDevStats *>(r)->value2, 6u); }},
    {"text stated 12", kWs, scalar(3, 1) + Bytes{0, 0, 0, 4, 0, 0, 0, 12, 'a', 'b'} + Bytes(10, 0), {}, 32,
     Both, [](const void *r) { EXPECT_STREQ(static_cast<const wpsStatusStruct *>(r)->macAddress, "ab"); }},
};

class Reading : public testing::TestWithParam<Read> {};

TEST_P(Reading, StatusLinesCursor) {
    const Read &c = GetParam();
    const RecordApi &r = record(c.record);
    for (bool bounded : {true, false}) {
        if (!bounded && c.readers == BoundedOnly) continue;
        SCOPED_TRACE(bounded ? "bounded" : "trusted");
        // Bounded: exactly sized, so that the sanitizer sees a read past the end.
        const Bytes bytes = c.body + c.beyond;
        std::unique_ptr<uint8_t[]> body(new uint8_t[bytes.size() + (bounded ? 0 : 64)]());
        std::copy(bytes.begin(), bytes.end(), body.get());
        auto rec = blob(r.ops->bytes);
        cap::reset();
        const uint8_t *cur = body.get();
        EXPECT_EQ(bounded ? r.ops->read(rec.get(), &cur, c.body.size(), {}) : r.unser(rec.get(), &cur),
                  c.lines.empty() ? 0u : 4u);
        EXPECT_EQ(size_t(cur - body.get()), c.cursor);
        EXPECT_EQ(cap::texts(), expand(c.lines, body.get()));
        for (const cap::Line &l : cap::lines()) EXPECT_EQ(l.prio, LOG_ERR);
        EXPECT_EQ(cap::allocations(), 0);
        if (c.check) c.check(rec.get());
    }
}
INSTANTIATE_TEST_SUITE_P(Codec, Reading, testing::ValuesIn(kReads));

}  // namespace
