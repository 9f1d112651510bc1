#include "capture.h"

#include "logline.h"

#include <malloc.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <syslog.h>

#include <unordered_set>

#include <gtest/gtest.h>

extern "C" {
void *__real_malloc(size_t);
void *__real_calloc(size_t, size_t);
void __real_free(void *);
}

namespace cap {
namespace {
std::vector<Line> g_lines;
int g_failIn = -1;
long g_allocs = 0;
long g_live = 0;
// Blocks from the wrapped allocators: code linked in (the test framework)
// also frees memory that libc handed out, which must not count.
std::unordered_set<void *> g_blocks;
uint32_t g_lastFreed = 0;

bool shouldFail() { return g_failIn >= 0 && g_failIn-- == 0; }

void record(int prio, const std::string &s) {
    if (prio == LOG_EMERG) fprintf(stderr, "%s", s.c_str());  // visible to death tests
    const wifiap::tools::LogLine l = wifiap::tools::splitLogLine(s);
    if (l.prefixed)
        g_lines.push_back({prio, l.name, l.text, s});
    else
        ADD_FAILURE() << "log line without the prefix: " << s;
}
}  // namespace

const std::vector<Line> &lines() { return g_lines; }

std::vector<std::string> texts() {
    std::vector<std::string> out;
    for (const Line &l : g_lines) out.push_back(l.fn + ": " + l.text);
    return out;
}

void reset() {
    g_lines.clear();
    g_failIn = -1, g_allocs = g_live = 0, g_lastFreed = 0;
}

Mark mark() { return {g_lines.size(), g_allocs, g_live, g_lastFreed}; }

void rewind(const Mark &m) {
    g_lines.resize(m.lines);
    g_allocs = m.allocs, g_live = m.live, g_lastFreed = m.lastFreed;
}

void *track(void *p) {
    if (p) ++g_allocs, ++g_live, g_blocks.insert(p);
    return p;
}

std::string fmt(const char *f, ...) {
    va_list ap;
    va_start(ap, f);
    std::string s = wifiap::tools::vformat(f, ap);
    va_end(ap);
    return s;
}

void failAlloc(int nth) { g_failIn = nth; }
long allocations() { return g_allocs; }
long liveBlocks() { return g_live; }
uint32_t lastFreedWord() { return g_lastFreed; }

}  // namespace cap

extern "C" {

// Formatted whole, however long: a cut line would hide a cut in the library.
void __wrap_vsyslog(int prio, const char *f, va_list ap) {
    cap::record(prio, wifiap::tools::vformat(f, ap));
}

void *__wrap_malloc(size_t n) { return cap::shouldFail() ? nullptr : cap::track(__real_malloc(n)); }
void *__wrap_calloc(size_t n, size_t m) {
    return cap::shouldFail() ? nullptr : cap::track(__real_calloc(n, m));
}

void __wrap_free(void *p) {
    if (p && cap::g_blocks.erase(p)) {
        uint32_t w = 0;
        if (malloc_usable_size(p) >= sizeof w) memcpy(&w, p, sizeof w);
        cap::g_lastFreed = w, --cap::g_live;
    }
    __real_free(p);
}

}  // extern "C"
