// wifiap-demo: a host that loads the interface library the way the real one
// does (dlopen, every function found by name), runs an access-point server
// and its clients over the framework stand-in, and shows every body that
// crosses, decoded.
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>

#include <string>

#include "demo.h"
#include "scenario.h"

namespace {

struct Options {
    bool hex = false;
    uint32_t stations = 4;
    std::string capture, library;
};

int usage() {
    fprintf(stderr,
            "usage: wifiap-demo [--hex] [--stations N] [--capture FILE] [--library PATH]\n"
            "  --hex           add a hex dump of every body\n"
            "  --stations N    stations associated with the access point, 0..100 (4)\n"
            "  --capture FILE  write every body sent to FILE (see wifiap-decode); pcapng\n"
            "                  if FILE ends in .pcapng\n"
            "  --library PATH  the interface library to load\n");
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
        } else {
            return false;
        }
    }
    return true;
}

}  // namespace

int main(int argc, char **argv) {
    using namespace wifiap::demo;
    Options opt;
    if (!parse(argc, argv, opt)) return usage();
    Demo d;
    d.trace.hex = opt.hex;
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
    scenario(d, opt.stations);
    d.trace.print();
    const hs_stats st = hs_getStats();
    hs_raiseBaseEvent(0);  // the framework stops: the library gives its tables back
    hs_reset();
    dlclose(lib);
    printf("\nmessages %u, bytes %llu, failures %u%s\n", st.messages,
           static_cast<unsigned long long>(st.bytes), st.failures + d.problems,
           d.problems ? " (demo checks included)" : "");
    return st.failures + d.problems ? 1 : 0;
}
