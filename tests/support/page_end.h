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

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace page_end {

// Bytes placed so that the last one is the last readable byte of a page.
class Region {
public:
    explicit Region(size_t n) {
        const size_t page = size_t(sysconf(_SC_PAGESIZE));
        readable_ = (n + page - 1) / page * page;
        if (readable_ == 0) readable_ = page;
        size_ = readable_ + page;
        void *m = mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (m == MAP_FAILED) abort();
        base_ = static_cast<uint8_t *>(m);
        if (mprotect(base_ + readable_, page, PROT_NONE) != 0) abort();
    }
    ~Region() { munmap(base_, size_); }
    size_t capacity() const { return readable_; }
    Region(const Region &) = delete;
    Region &operator=(const Region &) = delete;

    const uint8_t *place(const uint8_t *in, size_t n) {
        uint8_t *at = base_ + readable_ - n;
        if (n) memcpy(at, in, n);
        return at;
    }

private:
    uint8_t *base_;
    size_t readable_, size_;
};

// What one read did: status, cursor and record as read, lines logged, with
// addresses inside the input written as offsets from its start.
struct Outcome {
    uint32_t status;
    ptrdiff_t at;
    std::string_view record;
    std::string lines;
    bool operator==(const Outcome &o) const {
        return status == o.status && at == o.at && record.size() == o.record.size() &&
               memcmp(record.data(), o.record.data(), record.size()) == 0 && lines == o.lines;
    }
};

inline std::string offsets(const std::string &lines, const uint8_t *in, size_t n) {
    std::string out;
    for (size_t i = 0; i < lines.size();) {
        if (lines.compare(i, 2, "0x") == 0) {
            char *end;
            const uintptr_t v = strtoull(lines.c_str() + i, &end, 16);
            const uintptr_t b = reinterpret_cast<uintptr_t>(in);
            if (v >= b && v <= b + n) {
                out += '@';
                out += std::to_string(v - b);
                i = size_t(end - lines.c_str());
                continue;
            }
        }
        out += lines[i++];
    }
    return out;
}

// read(record, &cursor, left) reads the input into `rec`, zeroed first;
// logged() returns what was logged since its last call. `left` is the end the
// read is given.
template <class Read, class Logged>
Outcome run(std::string_view rec, const uint8_t *in, size_t n, size_t left, Read read,
            Logged logged) {
    const uint8_t *c = in;
    logged();
    memset(const_cast<char *>(rec.data()), 0, rec.size());
    const uint32_t st = read(const_cast<char *>(rec.data()), &c, left);
    return {st, c - in, rec, offsets(logged(), in, n)};
}

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
// exported reader. On Differs, `why` holds both outcomes. Where the rules
// refuse for a reason inside, `refusedAt` gets the offset of the element.
template <class Bounded, class Unbounded, class Logged>
Verdict judge(size_t recordBytes, const uint8_t *in, size_t n, Bounded bounded,
              Unbounded unbounded, Logged logged, std::string *why = nullptr,
              ptrdiff_t *refusedAt = nullptr) {
    // The same bytes followed by two different tails, read with the end after
    // the tail: if neither changes the outcome, the end did not cut an element.
    constexpr size_t kTail = 64;
    std::vector<uint8_t> buf(n + kTail);
    if (n) memcpy(buf.data(), in, n);
    // Records kept from call to call, as the page is: fresh memory costs a
    // fault a page. The rules' record, and the one each other read makes.
    static std::vector<uint64_t> mine, other;
    const size_t words = (recordBytes + 7) / 8;
    if (mine.size() < words) mine.resize(words), other.resize(words);
    auto view = [&](std::vector<uint64_t> &m) {
        return std::string_view(reinterpret_cast<const char *>(m.data()), recordBytes);
    };
    const Outcome rules = run(view(mine), buf.data(), n, n, bounded, logged);
    if (!refusedInside(rules)) return Verdict::EndMatters;
    if (refusedAt && rules.status != 0) *refusedAt = rules.at;
    for (uint8_t fill : {0x00, 0xFF}) {
        memset(buf.data() + n, fill, kTail);
        if (!(run(view(other), buf.data(), n, n + kTail, bounded, logged) == rules))
            return Verdict::EndMatters;
    }
    static std::unique_ptr<Region> region;
    if (!region || region->capacity() < n) region = std::make_unique<Region>(n);
    const uint8_t *at = region->place(in, n);
    const Outcome got = run(view(other), at, n, n, [&](void *r, const uint8_t **c, size_t) {
        return unbounded(r, c);
    }, logged);
    if (got == rules) return Verdict::Same;
    if (why) {
        char head[96];
        snprintf(head, sizeof head, "rules: status %u at %td; unbounded: status %u at %td\n",
                 unsigned(rules.status), rules.at, unsigned(got.status), got.at);
        *why = head + rules.lines + "--\n" + got.lines;
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
