// Round trips over a private dbus-daemon, through the library and the
// stand-in against raw sd-bus carrying the same bytes, interleaved so that the
// VM's noise falls on every kind alike:
//   Configure        stand-in (48-byte request, 36-byte response) / raw `ay`
//   stats ay         GetAssocDevStats, 100 stations: stand-in as a plain
//                    client (hs_setBusFdMin(0)) / raw `ay`
//   stats memfd      the same between two stand-ins (memfd) / raw memfd
// The program starts its own bus (tests/dbus/session.conf unless --config) and
// re-executes itself as the server (`--serve ADDRESS`: the stand-in's ap/apd
// and a raw sd-bus object in one process); both stop with it.
//   dbus_bench [--rounds N] [--pause US] [--config FILE] [--sweep]
// Each round trip starts after a pause (500 µs unless --pause), so that none
// pays for the frees of the one before; every process then wakes from poll.
// --sweep adds raw `ay` against raw memfd for bodies of 1 KiB to 256 KiB,
// where the memfd threshold comes from.
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "hostsim.h"
#include "intfWifiAp.h"
#include "station_list.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr const char *kRawName = "org.wifiap.bench.Raw";
constexpr const char *kRawPath = "/raw";
constexpr const char *kRawIface = "org.wifiap.bench.Raw1";
constexpr uint64_t kTimeout = 5'000'000;

[[noreturn]] void die(const char *what, int r = 0) {
    fprintf(stderr, "dbus_bench: %s%s%s\n", what, r ? ": " : "", r ? strerror(-r) : "");
    exit(2);
}

double now() {
    timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return double(t.tv_sec) * 1e6 + double(t.tv_nsec) / 1e3;
}

// ---- the stand-in's side, in both processes

std::unique_ptr<assocDevStatList> g_list = bench::fullList();
std::map<std::pair<uint32_t, uint32_t>, Bytes> g_bodies;  // (index, bodyType): last seen

void traceBodies(void *, const hs_trace *t) {
    if (t->body) g_bodies[{t->index, t->bodyType}].assign(t->body, t->body + t->length);
}

void configured(ismMsg_t m, uintptr_t, const conf *c) { intfWifiAp_sendRes_configure(m, c->value1); }
void statsAsked(ismMsg_t m, uintptr_t) { intfWifiAp_sendRes_getAssocDevStats(m, g_list.get()); }

int32_t dispatch(void *, ismUser_t u, uint32_t kind, uint32_t index, void *v1, void *v2, void *v3,
                 const char *, const char *) {
    if (kind == HS_REQUEST && index == INTFWIFIAP_CMD_CONFIGURE)
        return intfWifiAp_modSrv_recvMsg_configure(u, v1, v2, v3);
    if (kind == HS_REQUEST && index == INTFWIFIAP_CMD_GETASSOCDEVSTATS)
        return intfWifiAp_modSrv_recvMsg_getAssocDevStats(u, v1, v2, v3);
    return -1;
}

ismUser_t newUser(const char *bus, const char *name) {
    ismUser_t u = hs_newUser(bus, name);
    if (!u) die("no user");
    intfWifiAp_regUser_msgMngt(u, reinterpret_cast<void *>(dispatch), nullptr, INTFWIFIAP_REG_ALL);
    return u;
}

// A round trip ends as the response reaches the client's callback.
int g_answers = 0;
double g_answeredAt = 0;
const conf kConf{36, 3};
void onResult(ismMsg_t, uintptr_t, uint32_t) { g_answeredAt = now(), ++g_answers; }
void onStats(ismMsg_t, uintptr_t, const assocDevStatList *l) {
    g_answeredAt = now();
    if (l->assocDevNum == INTFWIFIAP_ASSOCDEVSTATLIST_MAX) ++g_answers;
}

// One request of the stand-in's client to ap/apd, until its answer.
double standIn(ismUser_t me, bool stats) {
    uint32_t failures = hs_getStats().failures;
    int before = g_answers;
    double t0 = now();
    if (!(stats ? intfWifiAp_sendReq_getAssocDevStats(me, onStats, 0, "ap", "apd")
                : intfWifiAp_sendReq_configure(me, onResult, 0, "ap", "apd", &kConf)))
        die("not sent");
    while (g_answers == before && hs_getStats().failures == failures) {
        hs_waitBus(-1);
        hs_run();
    }
    if (g_answers == before) die("a stand-in request failed");
    return g_answeredAt - t0;
}

// ---- raw sd-bus

sd_bus *rawConnect(const char *address) {
    sd_bus *b = nullptr;
    int r = sd_bus_new(&b);
    if (r >= 0) r = sd_bus_set_address(b, address);
    if (r >= 0) r = sd_bus_set_bus_client(b, 1);
    if (r >= 0) r = sd_bus_start(b);
    if (r < 0) die("raw connection", r);
    return b;
}

// As the stand-in does it: pages allocated first, write(), sealed.
int sealedFd(const uint8_t *p, size_t n) {
    int fd = memfd_create("bench-body", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    if (fd >= 0) fallocate(fd, 0, 0, off_t(n));
    for (size_t done = 0; fd >= 0 && done < n;) {
        ssize_t w = write(fd, p + done, n - done);
        if (w <= 0) die("memfd write");
        done += size_t(w);
    }
    if (fd < 0 || fcntl(fd, F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL) < 0)
        die("memfd");
    return fd;
}

// The raw server's answers: the bytes the stand-in's server sends, and for
// the sweep a body of the size asked.
struct RawServer {
    Bytes confReq, confRes, statsReq, statsRes;
};

int replyBytes(sd_bus_message *m, const uint8_t *p, size_t n, bool asFd) {
    sd_bus_message *r = nullptr;
    int rc = sd_bus_message_new_method_return(m, &r);
    if (rc >= 0 && asFd) {
        int fd = sealedFd(p, n);
        rc = sd_bus_message_append(r, "h", fd);
        close(fd);
    } else if (rc >= 0) {
        rc = sd_bus_message_append_array(r, 'y', p, n);
    }
    if (rc >= 0) rc = sd_bus_send(nullptr, r, nullptr);
    sd_bus_message_unref(r);
    return rc < 0 ? rc : 1;
}

int onRaw(sd_bus_message *m, void *server, sd_bus_error *) {
    auto &s = *static_cast<RawServer *>(server);
    const char *member = sd_bus_message_get_member(m);
    if (!sd_bus_message_is_method_call(m, kRawIface, nullptr)) return 0;
    if (!strcmp(member, "Sized")) {
        uint32_t n = 0;
        int asFd = 0;
        if (sd_bus_message_read(m, "ub", &n, &asFd) < 0 || n > s.statsRes.size()) return -EINVAL;
        return replyBytes(m, s.statsRes.data(), n, asFd);
    }
    const void *p = nullptr;
    size_t n = 0;
    if (sd_bus_message_read_array(m, 'y', &p, &n) < 0) return -EINVAL;
    bool conf = !strcmp(member, "Configure");
    const Bytes &want = conf ? s.confReq : s.statsReq;
    if (n != want.size() || memcmp(p, want.data(), n)) return -EBADMSG;  // not the same bytes
    const Bytes &res = conf ? s.confRes : s.statsRes;
    return replyBytes(m, res.data(), res.size(), !strcmp(member, "StatsFd"));
}

// The body of a raw reply, copied as the stand-in copies it: into a buffer
// kept from one reply to the next.
size_t rawCall(sd_bus *b, const char *member, const Bytes &req, Bytes &out, uint32_t sized = 0,
               bool sizedFd = false) {
    sd_bus_message *m = nullptr, *reply = nullptr;
    sd_bus_error e = SD_BUS_ERROR_NULL;
    int r = sd_bus_message_new_method_call(b, &m, kRawName, kRawPath, kRawIface, member);
    if (r >= 0)
        r = strcmp(member, "Sized") ? sd_bus_message_append_array(m, 'y', req.data(), req.size())
                                    : sd_bus_message_append(m, "ub", sized, int(sizedFd));
    if (r >= 0) r = sd_bus_call(b, m, kTimeout, &e, &reply);
    if (r < 0) die(e.message ? e.message : "raw call", e.message ? 0 : r);
    size_t n = 0;
    const char *sig = sd_bus_message_get_signature(reply, 1);
    if (!strcmp(sig, "h")) {
        int fd = -1;
        struct stat st;
        if (sd_bus_message_read(reply, "h", &fd) < 0 || fstat(fd, &st) < 0) die("raw fd");
        if (fcntl(fd, F_GET_SEALS) < 0) die("raw fd not sealed");
        n = size_t(st.st_size);
        if (out.size() < n) out.resize(n);
        if (pread(fd, out.data(), n, 0) != ssize_t(n)) die("raw pread");
    } else {
        const void *p = nullptr;
        if (sd_bus_message_read_array(reply, 'y', &p, &n) < 0) die("raw reply");
        if (out.size() < n) out.resize(n);
        memcpy(out.data(), p, n);
    }
    sd_bus_message_unref(reply);
    sd_bus_message_unref(m);
    return n;
}

Bytes rawBody(sd_bus *b, const char *member, const Bytes &req) {
    Bytes out;
    out.resize(rawCall(b, member, req, out));
    return out;
}

// ---- the server process

volatile sig_atomic_t g_stop = 0;

int serve(const char *address) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    signal(SIGTERM, [](int) { g_stop = 1; });
    if (intfWifiap_initialize() != 0) die("initialize");
    ismUser_t apd = newUser("ap", "apd");
    hs_setMethod(apd, HS_REQUEST, INTFWIFIAP_CMD_CONFIGURE, reinterpret_cast<void *>(configured), 0);
    hs_setMethod(apd, HS_REQUEST, INTFWIFIAP_CMD_GETASSOCDEVSTATS, reinterpret_cast<void *>(statsAsked), 0);
    // The raw answers are what the stand-in's server sends: one exchange in
    // this process before the bus.
    ismUser_t local = newUser("bench", "local");
    hs_setTrace(traceBodies, nullptr);
    intfWifiAp_sendReq_configure(local, onResult, 0, "ap", "apd", &kConf);
    intfWifiAp_sendReq_getAssocDevStats(local, onStats, 0, "ap", "apd");
    hs_run();
    hs_setTrace(nullptr, nullptr);
    RawServer raw{g_bodies[{INTFWIFIAP_CMD_CONFIGURE, 0}], g_bodies[{INTFWIFIAP_CMD_CONFIGURE, 1}],
                  g_bodies[{INTFWIFIAP_CMD_GETASSOCDEVSTATS, 0}],
                  g_bodies[{INTFWIFIAP_CMD_GETASSOCDEVSTATS, 1}]};
    if (g_answers != 2 || raw.statsRes.empty()) die("no in-process exchange");

    int r = hs_connectBus(address);
    if (r < 0) die("stand-in connection", r);
    sd_bus *b = rawConnect(address);
    if ((r = sd_bus_add_object(b, nullptr, kRawPath, onRaw, &raw)) < 0 ||
        (r = sd_bus_request_name(b, kRawName, 0)) < 0)
        die("raw object", r);
    printf("ready\n"), fflush(stdout);
    // Only the connection that woke the loop is processed first, so that
    // neither kind of call waits for the other's empty read.
    for (bool standInWoke = true, rawWoke = true;
         !g_stop && sd_bus_is_open(b) > 0 && hs_busFd() >= 0;) {
        if (standInWoke) hs_run();
        if (rawWoke)
            while (sd_bus_process(b, nullptr) > 0) {}
        uint64_t a = UINT64_MAX, c = UINT64_MAX;
        hs_busTimeout(&a), sd_bus_get_timeout(b, &c);
        pollfd p[2] = {{hs_busFd(), short(hs_busEvents()), 0}, {sd_bus_get_fd(b), short(sd_bus_get_events(b)), 0}};
        uint64_t until = std::min(a, c), at = uint64_t(now());
        int ms = until == UINT64_MAX ? 1000 : until <= at ? 0 : int(std::min<uint64_t>((until - at) / 1000 + 1, 1000));
        bool any = poll(p, 2, ms) > 0;
        standInWoke = !any || p[0].revents, rawWoke = !any || p[1].revents;
    }
    sd_bus_flush_close_unref(b);
    hs_disconnectBus();
    return 0;
}

// ---- the driver

pid_t g_children[2] = {0, 0};  // bus, server

void stopChildren() {
    for (pid_t &p : g_children)
        if (p > 0) kill(p, SIGKILL), waitpid(p, nullptr, 0), p = 0;
}

// Starts argv with PR_SET_PDEATHSIG, its fd `outFd` a pipe; returns the pipe's
// first line.
std::string spawn(pid_t &pid, const std::vector<std::string> &args, int outFd) {
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) < 0) die("pipe");
    pid = fork();
    if (pid < 0) die("fork");
    if (pid == 0) {
        if (prctl(PR_SET_PDEATHSIG, SIGKILL) < 0 || getppid() == 1) _exit(127);
        dup2(fds[1], outFd);  // dup2 clears close-on-exec
        std::vector<char *> av;
        for (const std::string &a : args) av.push_back(const_cast<char *>(a.c_str()));
        av.push_back(nullptr);
        execvp(av[0], av.data());
        _exit(127);
    }
    close(fds[1]);
    std::string line;
    char c;
    while (read(fds[0], &c, 1) == 1 && c != '\n') line += c;
    close(fds[0]);
    if (line.empty()) die(("no output from " + args[0]).c_str());
    return line;
}

double median(std::vector<double> v) {
    std::nth_element(v.begin(), v.begin() + long(v.size() / 2), v.end());
    return v[v.size() / 2];
}

void sweep(sd_bus *b, int rounds) {
    Bytes out;
    printf("\nraw sd-bus, body of N bytes as ay and as memfd (median of %d, µs):\n", rounds);
    for (uint32_t n = 1024; n <= 256u << 10; n *= 2) {
        std::vector<double> ay, fd;
        for (int i = 0; i < rounds; ++i)
            for (bool asFd : {false, true}) {
                double t0 = now();
                if (rawCall(b, "Sized", {}, out, n, asFd) != n) die("sweep size");
                (asFd ? fd : ay).push_back(now() - t0);
            }
        printf("  %7u  ay %8.1f  memfd %8.1f  ay/memfd %.2f\n", n, median(ay), median(fd),
               median(ay) / median(fd));
    }
}

}  // namespace

int main(int argc, char **argv) {
    if (argc == 3 && !strcmp(argv[1], "--serve")) return serve(argv[2]);
    int rounds = 1000, pause = 500;
    bool doSweep = false;
    std::string config = WIFIAP_BENCH_BUS_CONFIG;
    for (int i = 1; i < argc; ++i) {
        if (!strcmp(argv[i], "--rounds") && i + 1 < argc) rounds = atoi(argv[++i]);
        else if (!strcmp(argv[i], "--config") && i + 1 < argc) config = argv[++i];
        else if (!strcmp(argv[i], "--pause") && i + 1 < argc) pause = atoi(argv[++i]);
        else if (!strcmp(argv[i], "--sweep")) doSweep = true;
        else die("usage: dbus_bench [--rounds N] [--pause US] [--config FILE] [--sweep]");
    }
    if (rounds < 1) die("--rounds N, N > 0");
    atexit(stopChildren);
    for (int s : {SIGINT, SIGTERM, SIGHUP})
        signal(s, [](int) {
            for (pid_t p : g_children)
                if (p > 0) kill(p, SIGKILL);
            _exit(1);
        });

    std::string address = spawn(g_children[0],
                                {"dbus-daemon", "--config-file=" + config, "--nofork", "--print-address=3"}, 3);
    if (spawn(g_children[1], {"/proc/self/exe", "--serve", address}, 1) != "ready") die("server");

    if (int r = hs_connectBus(address.c_str()); r < 0) die("stand-in connection", r);
    if (intfWifiap_initialize() != 0) die("initialize");
    ismUser_t me = newUser("bench", "driver");
    if (!hs_findUser("ap", "apd")) die("no ap/apd");
    sd_bus *raw = rawConnect(address.c_str());

    // Once each, traced: the raw server checks it gets the stand-in's request
    // bytes, and here its replies are checked to be the stand-in's responses.
    hs_setTrace(traceBodies, nullptr);
    standIn(me, false), standIn(me, true);
    hs_setTrace(nullptr, nullptr);
    const Bytes confReq = g_bodies[{INTFWIFIAP_CMD_CONFIGURE, 0}], statsReq = g_bodies[{INTFWIFIAP_CMD_GETASSOCDEVSTATS, 0}];
    if (rawBody(raw, "Configure", confReq) != g_bodies[{INTFWIFIAP_CMD_CONFIGURE, 1}] ||
        rawBody(raw, "Stats", statsReq) != g_bodies[{INTFWIFIAP_CMD_GETASSOCDEVSTATS, 1}] ||
        rawBody(raw, "StatsFd", statsReq) != g_bodies[{INTFWIFIAP_CMD_GETASSOCDEVSTATS, 1}])
        die("raw bodies differ from the stand-in's");
    printf("bodies: Configure %zu -> %zu bytes, GetAssocDevStats %zu -> %zu bytes\n", confReq.size(),
           g_bodies[{INTFWIFIAP_CMD_CONFIGURE, 1}].size(), statsReq.size(),
           g_bodies[{INTFWIFIAP_CMD_GETASSOCDEVSTATS, 1}].size());

    enum { CONF, CONF_RAW, AY, AY_RAW, FD, FD_RAW, KINDS };
    Bytes out;
    auto measure = [&](int kind) {
        hs_setBusFdMin(kind == AY ? 0 : 64u << 10);  // 0: a plain client, answered `ay`
        if (pause) usleep(pause);  // what the last round trip left (frees, trims) done everywhere
        if (kind == CONF || kind == AY || kind == FD) return standIn(me, kind != CONF);
        double t0 = now();
        rawCall(raw, kind == CONF_RAW ? "Configure" : kind == AY_RAW ? "Stats" : "StatsFd",
                kind == CONF_RAW ? confReq : statsReq, out);
        return now() - t0;
    };
    std::vector<double> t[KINDS];
    for (int i = 0; i < rounds; ++i)
        for (int k = 0; k < KINDS; ++k) {
            int kind = i % 2 ? k ^ 1 : k;  // each pair in both orders
            t[kind].push_back(measure(kind));
        }
    double m[KINDS];
    for (int k = 0; k < KINDS; ++k) m[k] = median(t[k]);
    printf("round trips, median of %d each, interleaved, each after %d µs idle (µs):\n", rounds, pause);
    printf("  Configure         stand-in %9.1f   raw sd-bus %9.1f\n", m[CONF], m[CONF_RAW]);
    printf("  stats as ay       stand-in %9.1f   raw sd-bus %9.1f\n", m[AY], m[AY_RAW]);
    printf("  stats as memfd    stand-in %9.1f   raw sd-bus %9.1f\n", m[FD], m[FD_RAW]);
    printf("ratios of medians:\n");
    printf("  Configure, stand-in / raw ay                 %6.2fx (bound 1.10)\n", m[CONF] / m[CONF_RAW]);
    printf("  stats, stand-in plain client / raw ay        %6.2fx (bound 1.10)\n", m[AY] / m[AY_RAW]);
    printf("  stats stand-in memfd / Configure stand-in    %6.2fx (bound 3)\n", m[FD] / m[CONF]);
    printf("  stats stand-in ay / stats stand-in memfd     %6.2fx (the memfd's gain)\n", m[AY] / m[FD]);
    if (doSweep) sweep(raw, rounds);
    sd_bus_flush_close_unref(raw);
    hs_disconnectBus();
    return 0;
}
