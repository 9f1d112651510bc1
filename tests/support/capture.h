// Test hooks on the library's objects: every syslog line, every heap call.
// Test binaries link the library's objects with --wrap for syslog, malloc,
// calloc and free, so these see exactly what the library does.
#pragma once

#include <stdint.h>

#include <ostream>
#include <string>
#include <vector>

namespace cap {

struct Line {
    int prio;
    std::string fn;    // the function name of the line's prefix
    std::string text;  // what follows "fn(line): ", line feed included
    std::string raw;   // the whole line, as syslog would have it
};

inline void PrintTo(const Line &l, std::ostream *os) { *os << l.prio << " " << l.fn << ": " << l.text; }

// Lines logged since the last reset(), prefix parsed. A line without the
// library's prefix fails the test that logged it.
const std::vector<Line> &lines();
// "fn: text" per line, the form most tests compare against.
std::vector<std::string> texts();
void reset();

// What the capture holds at a point, and a return to it: what a statement
// did in a child process never reaches the parent.
struct Mark { size_t lines; long allocs, live; uint32_t lastFreed; };
Mark mark();
void rewind(const Mark &m);

// printf into a std::string, for expected lines that carry pointers.
std::string fmt(const char *f, ...) __attribute__((format(printf, 1, 2)));

// Makes the nth heap allocation from now fail (0: the next one); -1 disarms.
void failAlloc(int nth);
// Allocations made and blocks not yet freed, counted since reset().
long allocations();
long liveBlocks();
// First 32-bit word of the last block freed, read just before it was freed.
uint32_t lastFreedWord();

}  // namespace cap
