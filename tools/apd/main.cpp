// wifiap-apd: the simulated access point as a server process on a D-Bus bus.
// It answers every command, publishes what the access point has to tell,
// and lets stations probe, join and leave on a timer.
#include <dlfcn.h>
#include <errno.h>
#include <poll.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/signalfd.h>
#include <syslog.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "hostsim.h"
#include "server.h"
#include "story.h"
#include "text_capture.h"

namespace {

using wifiap::host::Api;
using wifiap::host::Server;

struct Options {
    std::string address, bus = "ap", user = "apd", library, capture;
    uint32_t stations = 4;
    long interval = 1000;
    bool toStderr = false, story = false;
};

bool g_stderr = false;
FILE *g_capture = nullptr;
uint64_t g_start = 0;

__attribute__((format(printf, 2, 3))) void say(int priority, const char *fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    if (g_stderr) {
        fputs("wifiap-apd: ", stderr);
        vfprintf(stderr, fmt, ap);
        fputc('\n', stderr);
    } else {
        vsyslog(priority, fmt, ap);
    }
    va_end(ap);
}

int usage(FILE *to, int status) {
    fprintf(to,
            "usage: wifiap-apd [--address ADDR] [--bus NAME] [--user NAME] [--stations N]\n"
            "                  [--interval MS] [--story] [--capture FILE] [--stderr]\n"
            "                  [--library PATH]\n"
            "  --address ADDR  the D-Bus bus to serve on (DBUS_SESSION_BUS_ADDRESS; never\n"
            "                  the system bus)\n"
            "  --bus NAME      the framework bus of the server user (ap)\n"
            "  --user NAME     the server user's name (apd)\n"
            "  --stations N    stations associated at the start, 0..100 (4)\n"
            "  --interval MS   every MS milliseconds a station probes, joins or leaves (1000)\n"
            "  --story         no timer: the air plays wifiap-demo's story as its commands\n"
            "                  come (scripts/demo-bus.sh); N stations once the newcomer joins\n"
            "  --capture FILE  write every body this server sends to FILE (wifiap-decode)\n"
            "  --stderr        log to standard error instead of syslog\n"
            "  --library PATH  the interface library to load\n"
            "Stops on SIGTERM or SIGINT, exit status 0.\n");
    return status;
}

bool number(const char *s, long lo, long hi, long &out) {
    char *end = nullptr;
    errno = 0;
    out = strtol(s, &end, 10);
    return *s && !*end && !errno && out >= lo && out <= hi;
}

// 0: parsed; 1: --help; -1: not understood.
int parse(int argc, char **argv, Options &opt) {
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        const char *value = i + 1 < argc ? argv[i + 1] : nullptr;
        long v = 0;
        if (a == "--help") return 1;
        if (a == "--stderr" || a == "--story") {
            (a == "--story" ? opt.story : opt.toStderr) = true;
            continue;
        }
        if (!value) return -1;
        ++i;
        if (a == "--address") opt.address = value;
        else if (a == "--bus") opt.bus = value;
        else if (a == "--user") opt.user = value;
        else if (a == "--library") opt.library = value;
        else if (a == "--capture") opt.capture = value;
        else if (a == "--stations" && number(value, 0, INTFWIFIAP_ASSOCDEVSTATLIST_MAX, v))
            opt.stations = uint32_t(v);
        else if (a == "--interval" && number(value, 1, 3'600'000, v)) opt.interval = v;
        else return -1;
    }
    return 0;
}

uint64_t nowUs() {
    timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return uint64_t(t.tv_sec) * 1'000'000u + uint64_t(t.tv_nsec) / 1000u;
}

void logTrace(void *, const hs_trace *t) {
    const bool ntfy = !strcmp(t->table, "IntfWifiApNtfy");
    if (g_capture && t->stage == HS_TRACE_SENT && t->body) {
        const wifiap::tools::Crossing c{double(nowUs() - g_start) / 1e6, t->table, t->index,
                                        t->bodyType, {t->body, t->body + t->length}, {}, {}};
        fprintf(g_capture, "%s\n", wifiap::tools::captureLine(c).c_str());
    }
    if (t->stage == HS_TRACE_RECEIVED && !ntfy && t->bodyType == 0)
        say(LOG_INFO, "command %s from %s/%s, %u bytes%s", t->message, t->senderBus, t->sender,
            t->length, t->code ? " (refused)" : "");
    else if (t->stage == HS_TRACE_SENT && ntfy)
        say(t->body ? LOG_INFO : LOG_ERR, "published %s, %u bytes%s", t->message, t->length,
            t->body ? "" : " (not serialized)");
}

// The air around the access point, one step a tick: a newcomer probes, then
// joins (enrolling if WPS runs), then the longest-associated station leaves
// while more than `target` are there.
struct Air {
    wifiap::tools::AccessPoint &ap;
    uint32_t target, next, phase = 0;
    wifiap::tools::Station newcomer{};

    void tick() {
        switch (phase++ % 3) {
        case 0:
            newcomer = ap.makeStation(next++);
            if (ap.radioOn()) ap.probe(newcomer.mac, "", newcomer.rssi);  // a wildcard probe
            break;
        case 1:
            if (!ap.radioOn() || ap.stations().size() >= INTFWIFIAP_ASSOCDEVSTATLIST_MAX) break;
            ap.wpsEnrolled(newcomer.mac);
            ap.join(newcomer);
            break;
        default:
            if (ap.stations().size() > target) ap.leave(0, 8);  // left the BSS
        }
    }
};

// Serves until a signal arrives on `sigfd`; false on a bus failure.
bool serve(Server &srv, Air &air, int sigfd, uint64_t intervalUs) {
    uint64_t tick = nowUs() + intervalUs;
    for (;;) {
        uint64_t due = intervalUs ? tick : UINT64_MAX, busDue = UINT64_MAX;
        if (hs_busTimeout(&busDue) >= 0) due = std::min(due, busDue);
        const uint64_t now = nowUs();
        const int wait = due <= now ? 0 : int(std::min<uint64_t>((due - now + 999) / 1000, 60'000));
        pollfd fds[2] = {{hs_busFd(), short(hs_busEvents()), 0}, {sigfd, POLLIN, 0}};
        if (poll(fds, 2, wait) < 0 && errno != EINTR) return say(LOG_ERR, "poll: %m"), false;
        if (fds[1].revents & POLLIN) {
            signalfd_siginfo si;
            if (read(sigfd, &si, sizeof si) == ssize_t(sizeof si))
                say(LOG_NOTICE, "stopping on %s", strsignal(int(si.ssi_signo)));
            return true;
        }
        if (fds[0].revents & (POLLERR | POLLHUP | POLLNVAL))
            return say(LOG_ERR, "the bus connection is gone"), false;
        if (intervalUs && nowUs() >= tick) {
            air.tick();
            srv.publish();
            tick += intervalUs;
        }
        hs_run();
    }
}

}  // namespace

int main(int argc, char **argv) {
    Options opt;
    if (int rc = parse(argc, argv, opt)) return rc > 0 ? usage(stdout, 0) : usage(stderr, 2);
    g_stderr = opt.toStderr;
    openlog("wifiap-apd", LOG_PID, LOG_DAEMON);

    // Blocked before anything else runs, so no signal is lost to a default
    // action before the loop reads it.
    sigset_t stop;
    sigemptyset(&stop);
    sigaddset(&stop, SIGTERM);
    sigaddset(&stop, SIGINT);
    const int sigfd = sigprocmask(SIG_BLOCK, &stop, nullptr) == 0
                          ? signalfd(-1, &stop, SFD_CLOEXEC | SFD_NONBLOCK)
                          : -1;
    if (sigfd < 0) return say(LOG_ERR, "signalfd: %m"), 1;

    if (!opt.capture.empty()) {
        g_capture = fopen(opt.capture.c_str(), "w");
        if (!g_capture) return say(LOG_ERR, "%s: %m", opt.capture.c_str()), 1;
        setvbuf(g_capture, nullptr, _IOLBF, 0);  // whole lines for a reader while it runs
        fprintf(g_capture, "# wifiap-apd: every body sent\n");
        g_start = nowUs();
    }
    int status = 1;
    Api api{};
    void *lib = nullptr;
    if (std::string err = wifiap::host::load(api, opt.library, &lib); !err.empty()) {
        say(LOG_ERR, "cannot load the library: %s", err.c_str());
    } else if (hs_reset(); api.intfWifiap_initialize() != 0) {
        say(LOG_ERR, "intfWifiap_initialize failed");
    } else if (int rc = hs_connectBus(opt.address.empty() ? nullptr : opt.address.c_str())) {
        say(LOG_ERR, "cannot connect to the bus: %s", strerror(-rc));
    } else {
        Server srv(api, opt.bus.c_str(), opt.user.c_str(),
                   [](const char *what) { say(LOG_WARNING, "%s", what); });
        if (!srv.user) {
            say(LOG_ERR, "user %s/%s refused (name taken?)", opt.bus.c_str(), opt.user.c_str());
        } else {
            hs_setTrace(logTrace, nullptr);
            for (uint32_t i = 0; i < INTFWIFIAP_NTFY_COUNT; ++i)
                if (api.needUpdate[i]) srv.answerNeedUpdate(i, nullptr);
            if (opt.story) wifiap::host::playStory(srv, opt.stations);
            else srv.ap.preload(opt.stations);
            Air air{srv.ap, opt.stations, opt.stations};
            say(LOG_NOTICE, "ready: %s/%s, %u stations", opt.bus.c_str(), opt.user.c_str(),
                opt.stations);
            const uint64_t interval = opt.story ? 0 : uint64_t(opt.interval) * 1000u;
            status = serve(srv, air, sigfd, interval) ? 0 : 1;
            hs_setTrace(nullptr, nullptr);
        }
        hs_disconnectBus();
    }
    if (lib) {
        hs_raiseBaseEvent(0);  // the library gives its tables back
        hs_reset();
        dlclose(lib);
    }
    close(sigfd);
    if (g_capture) fclose(g_capture);
    closelog();
    return status;
}
