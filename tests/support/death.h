// Death tests that also run where fork() does not: qemu-i386 hangs in it.
// There (CTest sets WIFIAP_DEATH_IN_PLACE), the statement runs in this
// process with SIGABRT caught, and passes when it reaches abort() after an
// EMERG line matching the pattern, the pattern a death test would apply to
// the child's stderr. What it logged is then forgotten, as a child's would be.
#pragma once

#include <string>

#include <gtest/gtest.h>

#include "capture.h"

namespace death {

bool inPlace();

// Runs the statement with SIGABRT caught and judges it.
void inPlace(void (*statement)(void *), void *arg, const std::string &pattern, const char *file,
             int line);

template <class F>
void inPlace(F &&f, const std::string &pattern, const char *file, int line) {
    inPlace([](void *p) { (*static_cast<std::remove_reference_t<F> *>(p))(); }, &f, pattern, file,
            line);
}

}  // namespace death

#define WIFIAP_EXPECT_DEATH(statement, pattern)                                  \
    do {                                                                         \
        if (::death::inPlace())                                                  \
            ::death::inPlace([&] { statement; }, pattern, __FILE__, __LINE__);   \
        else                                                                     \
            EXPECT_DEATH(statement, pattern);                                    \
    } while (0)
