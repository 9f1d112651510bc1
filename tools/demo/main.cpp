// wifiap-demo: a host that loads the interface library the way the real one
// does (dlopen, every function found by name), runs an access-point server
// and its clients over the framework stand-in, and shows every body that
// crosses, decoded.
#include <dlfcn.h>
#include <poll.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>
#include <stdlib.h>

#include <string>

#include "demo.h"
#include "scenario.h"

namespace {

struct Options {
    bool hex = false;
    uint32_t stations = 4;
    std::string capture, library, bus, client;
};

int usage() {
    fprintf(stderr,
            "usage: wifiap-demo [--hex] [--stations N] [--capture FILE] [--library PATH]\n"
            "                   [--bus ADDRESS --client web|cli]\n"
            "  --hex           add a hex dump of every body\n"
            "  --stations N    stations associated with the access point, 0..100 (4)\n"
            "  --capture FILE  write every body sent to FILE (see wifiap-decode); pcapng\n"
            "                  if FILE ends in .pcapng\n"
            "  --library PATH  the interface library to load\n"
            "  --bus ADDRESS   play one client's part on that D-Bus bus, the server being\n"
            "                  wifiap-apd --story there (scripts/demo-bus.sh); web waits\n"
            "                  for a line on standard input while cli plays\n");
    return 2;
}

// False if the arguments are not understood.
bool parse(int argc, char **argv, Options &opt) {
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        const bool value = i + 1 < argc;
        if (a == "--hex") {
            opt.hex = true;
        } else if (a == "--stations" && value) {
            char *end = nullptr;
            long v = strtol(argv[++i], &end, 10);
            if (*end || v < 0 || v > INTFWIFIAP_ASSOCDEVSTATLIST_MAX) return false;
            opt.stations = uint32_t(v);
        } else if (a == "--capture" && value) {
            opt.capture = argv[++i];
        } else if (a == "--library" && value) {
            opt.library = argv[++i];
        } else if (a == "--bus" && value) {
            opt.bus = argv[++i];
        } else if (a == "--client" && value) {
            opt.client = argv[++i];
        } else {
            return false;
        }
    }
    return opt.bus.empty() == opt.client.empty();
}

// Serves the bus until a line (or the end) comes on standard input.
void awaitLine(wifiap::demo::Demo &d) {
    printf("\n== waiting for the other client (a line on standard input)\n");
    fflush(stdout);
    for (;;) {
        pollfd fds[2] = {{0, POLLIN, 0}, {hs_busFd(), short(hs_busEvents()), 0}};
        if (poll(fds, 2, 100) < 0) break;
        hs_run();
        d.trace.print();
        if (fds[0].revents) {
            char c;
            while (read(0, &c, 1) == 1 && c != '\n') {}
            break;
        }
    }
}

}  // namespace

namespace wifiap::demo {

void Demo::wait(const std::function<bool()> &done) {
    hs_run();
    if (!overBus) return;
    const double deadline = now() + 5;  // the stand-in's own call timeout
    while (!done() && now() < deadline)
        if (hs_waitBus(100) >= 0) hs_run();
    if (!done()) problem("no answer within 5 s");
    while (hs_waitBus(50) > 0) hs_run();  // what follows an answer
}

}  // namespace wifiap::demo

int main(int argc, char **argv) {
    using namespace wifiap::demo;
    Options opt;
    if (!parse(argc, argv, opt)) return usage();
    Demo d;
    d.trace.hex = opt.hex;
    d.stations = opt.stations;
    d.overBus = !opt.bus.empty();
    void *lib = nullptr;
    if (std::string err = wifiap::host::load(d.api, opt.library, &lib); !err.empty()) {
        fprintf(stderr, "wifiap-demo: cannot load the library:\n%s", err.c_str());
        return 1;
    }
    if (!opt.capture.empty() && !d.trace.openCapture(opt.capture, opt.stations)) {
        perror(opt.capture.c_str());
        return 1;
    }
    hs_reset();
    d.trace.listen();
    if (int32_t rc = d.api.intfWifiap_initialize(); rc != 0) {
        fprintf(stderr, "wifiap-demo: intfWifiap_initialize failed (%d)\n", rc);
        return 1;
    }
    if (!d.overBus) {
        scenario(d, opt.stations);
    } else if (int rc = hs_connectBus(opt.bus.c_str())) {
        fprintf(stderr, "wifiap-demo: cannot connect to %s: %s\n", opt.bus.c_str(), strerror(-rc));
        return 1;
    } else if (!clientPart(d, opt.client.c_str(), [&d] { awaitLine(d); })) {
        return usage();
    }
    d.trace.print();
    const hs_stats st = hs_getStats();
    hs_disconnectBus();
    hs_raiseBaseEvent(0);  // the framework stops: the library gives its tables back
    hs_reset();
    dlclose(lib);
    printf("\nmessages %u, bytes %llu, failures %u%s\n", st.messages,
           static_cast<unsigned long long>(st.bytes), st.failures + d.problems,
           d.problems ? " (demo checks included)" : "");
    return st.failures + d.problems ? 1 : 0;
}
