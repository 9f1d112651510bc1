// The exported record readers take no end: they may read what the rules read
// and nothing more. An input the rules judge from its own bytes (they accept
// it, or refuse it for a reason inside it: a wrong tag, a text too long) is
// read by them the same whatever follows it; read unbounded with nothing
// readable after it, it must give the same outcome. Shared by the codec suite
// and the fuzzer; header-only, since the fuzzer is built without the suites.
#pragma once

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace page_end {

// Room for bytes whose last one is the last readable byte before a page that
// is not, kept from call to call (a mapping per read is dear).
inline uint8_t *placed(const uint8_t *in, size_t n) {
    static uint8_t *base;
    static size_t readable;
    const size_t page = size_t(sysconf(_SC_PAGESIZE));
    if (!base || readable < n) {
        if (base) munmap(base, readable + page);
        readable = (n / page + 1) * page;
        void *m = mmap(nullptr, readable + page, PROT_READ | PROT_WRITE,
                       MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (m == MAP_FAILED) abort();
        base = static_cast<uint8_t *>(m);
        if (mprotect(base + readable, page, PROT_NONE) != 0) abort();
    }
    if (n) memcpy(base + readable - n, in, n);
    return base + readable - n;
}

// What one read did: status, cursor, the record as read, the lines logged.
struct Outcome {
    uint32_t status;
    ptrdiff_t at;
    std::string_view record;  // in memory kept from call to call: fresh memory faults
    std::string lines;
    bool operator==(const Outcome &) const = default;
};

// A refusal for a reason inside the bytes: a text that does not fit, or an
// element whose tag is not its field's. An element of the right tag that the
// end cuts short is refused for the end: read unbounded, its stated length is
// believed, and what follows it is read.
inline bool refusedInside(const Outcome &o) {
    if (o.status == 0 || o.lines.find("lgChainIn(") != std::string::npos) return true;
    const size_t at = o.lines.find("Tl(");
    unsigned long long tag = 0, len = 0;
    unsigned expected = 0;
    return at != std::string::npos &&
           sscanf(o.lines.c_str() + at, "Tl(%llu-%llu) expectded(%u)", &tag, &len, &expected) == 3 &&
           tag != expected;
}

enum class Verdict { EndMatters, Same, Differs };

// bounded(record, &cursor, left) is the rules; unbounded(record, &cursor) the
// exported reader; logged() returns what was logged since its last call. On
// Differs, `why` says what each read. Where the rules refuse for a reason
// inside, `refusedAt` gets the offset of the element.
template <class Bounded, class Unbounded, class Logged>
Verdict judge(size_t recordBytes, const uint8_t *in, size_t n, Bounded bounded,
              Unbounded unbounded, Logged logged, std::string *why = nullptr,
              ptrdiff_t *refusedAt = nullptr) {
    static std::vector<uint64_t> slots[5];
    int slot = 0;
    auto read = [&](const uint8_t *p, auto &&how) {
        std::vector<uint64_t> &mem = slots[slot++];
        mem.assign((recordBytes + 7) / 8, 0);
        const uint8_t *c = p;
        logged();
        const uint32_t st = how(mem.data(), &c);
        return Outcome{st, c - p, {reinterpret_cast<const char *>(mem.data()), recordBytes},
                       logged()};
    };
    // The same bytes followed by two different tails, read with the end after
    // the tail: if neither changes the outcome, the end did not cut an element.
    constexpr size_t kTail = 64;
    std::vector<uint8_t> buf(n + kTail);
    if (n) memcpy(buf.data(), in, n);
    auto upTo = [&](size_t left) {
        return [&, left](void *r, const uint8_t **c) { return bounded(r, c, left); };
    };
    const Outcome rules = read(buf.data(), upTo(n));
    if (!refusedInside(rules)) return Verdict::EndMatters;
    for (uint8_t fill : {0x00, 0xFF}) {
        memset(buf.data() + n, fill, kTail);
        if (!(read(buf.data(), upTo(n + kTail)) == rules)) return Verdict::EndMatters;
    }
    if (refusedAt && rules.status != 0) *refusedAt = rules.at;
    // At the end of the page, the rules and the exported reader alike.
    const uint8_t *at = placed(in, n);
    const Outcome want = read(at, upTo(n)), got = read(at, unbounded);
    if (got == want) return Verdict::Same;
    if (why) {
        char head[96];
        snprintf(head, sizeof head, "rules: status %u at %td; unbounded: status %u at %td\n",
                 unsigned(want.status), want.at, unsigned(got.status), got.at);
        *why = head + want.lines + "--\n" + got.lines;
    }
    return Verdict::Differs;
}

// The input, and where the rules refuse it for a reason inside, the input cut
// right after the refused element's header (of a 32-bit or a 64-bit element):
// what a reader loads past that header before checking it is then unreadable.
template <class Bounded, class Unbounded, class Logged>
Verdict judgeCuts(size_t recordBytes, const uint8_t *in, size_t n, Bounded bounded,
                  Unbounded unbounded, Logged logged, std::string *why) {
    ptrdiff_t at = -1;
    Verdict v = judge(recordBytes, in, n, bounded, unbounded, logged, why, &at);
    for (size_t header : {8, 16})
        if (v != Verdict::Differs && at >= 0 && size_t(at) + header < n)
            v = judge(recordBytes, in, size_t(at) + header, bounded, unbounded, logged, why);
    return v == Verdict::Differs ? v : Verdict::Same;
}

}  // namespace page_end
