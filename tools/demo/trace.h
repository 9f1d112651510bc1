// What crossed the bus: every body kept as the stand-in reports it, then
// printed decoded and written to the capture.
#pragma once

#include <stdint.h>
#include <stdio.h>

#include <string>
#include <vector>

#include "hostsim.h"

namespace wifiap::demo {

double now();  // seconds, monotonic

class Trace {
public:
    Trace() = default;
    Trace(const Trace &) = delete;
    Trace &operator=(const Trace &) = delete;
    ~Trace();
    bool hex = false;  // a hex dump under every body

    // Capture to `path`: pcapng if it ends in .pcapng, else text lines.
    // False with errno set if it cannot be opened.
    bool openCapture(const std::string &path, uint32_t stations);
    // Times count from here; the stand-in reports to this trace from here on.
    void listen();
    // Prints (and captures) what crossed since the last call.
    void print();
    // The size of the last response body not yet printed (sent or received), 0 if none.
    size_t pendingResponseSize() const;

private:
    struct Seen {
        double seconds;
        uint32_t stage, index, bodyType, code;
        std::string table, message, from, to;
        std::vector<uint8_t> body;
        bool hasBody;
    };
    static void onTrace(void *self, const hs_trace *t);
    void capture(const Seen &s, const std::string &receivers);

    FILE *capture_ = nullptr;
    bool pcapng_ = false;
    double start_ = 0;
    uint32_t blocks_ = 0;
    std::vector<Seen> seen_;
};

}  // namespace wifiap::demo
