// What the parts of the demo share: the library, the trace, and what the
// demo's own checks found wrong.
#pragma once

#include <stdint.h>
#include <stdio.h>

#include <functional>

#include "hostsim.h"
#include "loader.h"
#include "trace.h"

namespace wifiap::demo {

using host::Api;
using host::fn;
using host::registerUser;

struct Demo {
    Api api{};
    Trace trace;
    uint32_t stations = 4;
    bool overBus = false;  // the server is another process: answers take a while
    uint32_t problems = 0;

    void problem(const char *what) {
        printf("!! %s\n", what);
        ++problems;
    }
    void expect(bool ok, const char *what) {
        if (!ok) problem(what);
    }
    // Shows what crossed so far, then names the next step.
    void step(const char *what) {
        trace.print();
        printf("\n== %s\n", what);
    }
    // Runs the loop until `done` (in this process: until idle); over a bus
    // then until it has been quiet a while, for what follows an answer.
    void wait(const std::function<bool()> &done);
    // Waits, then shows what crossed.
    void run(const std::function<bool()> &done) {
        wait(done);
        trace.print();
    }
};

}  // namespace wifiap::demo
