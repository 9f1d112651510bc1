// Large bodies between two stand-ins (tests/dbus/memfd.sh):
//   server   answers Configure and GetAssocDevStats (100 stations) until SIGTERM;
//   standin  fetches the list as a stand-in; prints the body's length, then
//            the request as busctl's `ay`;
//   raw      as raw sd-bus: a peer's call is answered by a sealed memfd, a
//            plain call by `ay`, both the stand-in's bytes; a request fd that
//            is no sealed memfd is refused with an error reply, and a sealed
//            one is served after them.
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "hostsim.h"
#include "intfWifiAp.h"

namespace {

using Bytes = std::vector<uint8_t>;
constexpr const char *kPath = "/org/wifiap/ap/apd";
constexpr int kAllSeals = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL;

int fail(const char *what) {
    fprintf(stderr, "dbus_memfd: %s\n", what);
    return 1;
}

std::map<std::pair<uint32_t, uint32_t>, Bytes> g_bodies;  // (index, bodyType)
void trace(void *, const hs_trace *t) {
    if (t->body) g_bodies[{t->index, t->bodyType}].assign(t->body, t->body + t->length);
}

int32_t dispatch(void *, ismUser_t u, uint32_t kind, uint32_t index, void *v1, void *v2, void *v3,
                 const char *, const char *) {
    if (kind == HS_REQUEST && index == INTFWIFIAP_CMD_CONFIGURE)
        return intfWifiAp_modSrv_recvMsg_configure(u, v1, v2, v3);
    return intfWifiAp_modSrv_recvMsg_getAssocDevStats(u, v1, v2, v3);
}

ismUser_t start(const char *bus, const char *name) {
    if (hs_connectBus(nullptr) != 0 || intfWifiap_initialize() != 0) return nullptr;
    ismUser_t u = hs_newUser(bus, name);
    if (u) intfWifiAp_regUser_msgMngt(u, reinterpret_cast<void *>(dispatch), nullptr, INTFWIFIAP_REG_ALL);
    hs_setTrace(trace, nullptr);
    return u;
}

bool pump(bool (*done)()) {
    for (int i = 0; i < 200 && !done(); ++i) hs_waitBus(50), hs_run();
    return done();
}

assocDevStatList g_list;
volatile sig_atomic_t g_term = 0;

int server() {
    g_list.assocDevNum = INTFWIFIAP_ASSOCDEVSTATLIST_MAX;
    for (uint32_t i = 0; i < g_list.assocDevNum; ++i) {
        perRateStats &p = g_list.assocDevs[i].devStatus.devStats.perRate;
        p.rateStatsNum = INTFWIFIAP_RATESTATS_MAX;
        for (uint32_t r = 0; r < p.rateStatsNum; ++r) p.rates[r] = rateStats{i, r};
        snprintf(g_list.assocDevs[i].devInfo.macAddress, INTFWIFIAP_MAC_LEN, "02:00:00:00:00:%02x", i & 0xFFu);
    }
    ismUser_t me = start("ap", "apd");
    if (!me) return fail("server did not start");
    hs_setMethod(me, HS_REQUEST, INTFWIFIAP_CMD_CONFIGURE,
                 reinterpret_cast<void *>(+[](ismMsg_t m, uintptr_t, const conf *c) {
                     intfWifiAp_sendRes_configure(m, c->value1);
                 }), 0);
    hs_setMethod(me, HS_REQUEST, INTFWIFIAP_CMD_GETASSOCDEVSTATS,
                 reinterpret_cast<void *>(+[](ismMsg_t m, uintptr_t) {
                     intfWifiAp_sendRes_getAssocDevStats(m, &g_list);
                 }), 0);
    signal(SIGTERM, [](int) { g_term = 1; });
    printf("ready\n"), fflush(stdout);
    while (!g_term) hs_waitBus(100), hs_run();
    return 0;
}

int g_answers = 0;
int standIn() {
    ismUser_t me = start("ui", "web");
    if (!me || !hs_findUser("ap", "apd")) return fail("client did not start");
    auto onStats = [](ismMsg_t, uintptr_t, const assocDevStatList *l) {
        g_answers += l->assocDevNum == INTFWIFIAP_ASSOCDEVSTATLIST_MAX &&
                     l->assocDevs[99].devStatus.devStats.perRate.rates[311].value2 == 311;
    };
    if (!intfWifiAp_sendReq_getAssocDevStats(me, onStats, 0, "ap", "apd") || !pump([] { return g_answers > 0; }))
        return fail("no or another station list");
    printf("%zu\n", g_bodies[{INTFWIFIAP_CMD_GETASSOCDEVSTATS, 1}].size());
    const Bytes &req = g_bodies[{INTFWIFIAP_CMD_GETASSOCDEVSTATS, 0}];
    printf("%zu", req.size());
    for (uint8_t c : req) printf(" %u", c);
    printf("\n");
    return hs_getStats().failures ? fail("failures counted") : 0;
}

// A call to ap/apd whose argument `fill` appends; the reply's body, or the
// error's name in `error`.
Bytes call(sd_bus *b, const char *iface, const char *member, const std::function<int(sd_bus_message *)> &fill,
           std::string &sig, std::string &error) {
    sd_bus_message *m = nullptr, *reply = nullptr;
    sd_bus_error e = SD_BUS_ERROR_NULL;
    Bytes out;
    sig.clear(), error.clear();
    int r = sd_bus_message_new_method_call(b, &m, "org.wifiap._ap._apd", kPath, iface, member);
    if (r >= 0) r = fill(m);
    if (r >= 0 && sd_bus_call(b, m, 5'000'000, &e, &reply) < 0) error = e.name ? e.name : "?";
    if (reply) {
        sig = sd_bus_message_get_signature(reply, 1);
        const void *p = nullptr;
        size_t n = 0;
        int fd = -1;
        struct stat st;
        if (sig == "ay" && sd_bus_message_read_array(reply, 'y', &p, &n) >= 0) {
            out.assign(static_cast<const uint8_t *>(p), static_cast<const uint8_t *>(p) + n);
        } else if (sig == "h" && sd_bus_message_read(reply, "h", &fd) >= 0 && fstat(fd, &st) >= 0) {
            if (fcntl(fd, F_GET_SEALS) != kAllSeals) sig = "h, not sealed";
            out.resize(size_t(st.st_size));
            if (pread(fd, out.data(), out.size(), 0) != ssize_t(out.size())) out.clear();
        }
    }
    sd_bus_error_free(&e);
    sd_bus_message_unref(reply), sd_bus_message_unref(m);
    return out;
}

int memfd(const Bytes &b, int seals) {
    int fd = memfd_create("hostile", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    if (fd < 0 || write(fd, b.data(), b.size()) != ssize_t(b.size()) || (seals && fcntl(fd, F_ADD_SEALS, seals) < 0))
        return -1;
    return fd;
}

int raw() {
    // The stand-in's own bodies first: the requests and responses to compare.
    ismUser_t me = start("ui", "raw");
    const conf c{36, 3};
    if (!me || !hs_findUser("ap", "apd") ||
        !intfWifiAp_sendReq_configure(me, [](ismMsg_t, uintptr_t, uint32_t) { ++g_answers; }, 0, "ap", "apd", &c) ||
        !intfWifiAp_sendReq_getAssocDevStats(me, [](ismMsg_t, uintptr_t, const assocDevStatList *) { ++g_answers; },
                                             0, "ap", "apd") ||
        !pump([] { return g_answers == 2; }))
        return fail("no answers to the stand-in");
    const Bytes confReq = g_bodies[{0, 0}], confRes = g_bodies[{0, 1}];
    const Bytes statsReq = g_bodies[{INTFWIFIAP_CMD_GETASSOCDEVSTATS, 0}], list = g_bodies[{INTFWIFIAP_CMD_GETASSOCDEVSTATS, 1}];
    sd_bus *b = nullptr;
    const char *address = getenv("DBUS_SESSION_BUS_ADDRESS");  // the test's own bus
    if (!address || sd_bus_new(&b) < 0 || sd_bus_set_address(b, address) < 0 ||
        sd_bus_set_bus_client(b, 1) < 0 || sd_bus_start(b) < 0)
        return fail("no raw connection");
    std::string sig, error;
    auto bytes = [](const Bytes &v) { return [&v](sd_bus_message *m) { return sd_bus_message_append_array(m, 'y', v.data(), v.size()); }; };
    int status = 0;
    struct Way {
        const char *iface, *sig;
    } ways[] = {{"org.wifiap.IntfWifiAp1.Peer", "h"}, {"org.wifiap.IntfWifiAp1", "ay"}};
    for (const Way &w : ways)
        if (call(b, w.iface, "GetAssocDevStats", bytes(statsReq), sig, error) != list || sig != w.sig)
            status = fail((std::string(w.iface) + ": the list as '" + sig + "', not as " + w.sig).c_str());
    // A request fd the sender could still change, or no memfd at all.
    int pipeFds[2] = {-1, -1};
    if (pipe(pipeFds) < 0 || write(pipeFds[1], confReq.data(), confReq.size()) != ssize_t(confReq.size()))
        return fail("pipe");
    struct Hostile {
        const char *what;
        int fd;
    } hostile[] = {{"unsealed memfd", memfd(confReq, 0)},
                   {"memfd still writable", memfd(confReq, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL)},
                   {"pipe", pipeFds[0]}};
    for (const Hostile &h : hostile) {
        Bytes got = call(b, "org.wifiap.IntfWifiAp1.Peer", "Configure",
                         [&](sd_bus_message *m) { return sd_bus_message_append(m, "h", h.fd); }, sig, error);
        if (error != "org.wifiap.Error.Refused") status = fail((std::string(h.what) + " not refused: " + error).c_str());
        close(h.fd);
    }
    int good = memfd(confReq, kAllSeals);
    if (call(b, "org.wifiap.IntfWifiAp1.Peer", "Configure",
             [&](sd_bus_message *m) { return sd_bus_message_append(m, "h", good); }, sig, error) != confRes)
        status = fail(("a sealed memfd request not served: " + error).c_str());
    close(good), close(pipeFds[1]);
    sd_bus_flush_close_unref(b);
    return status;
}

}  // namespace

int main(int argc, char **argv) {
    std::string role = argc > 1 ? argv[1] : "";
    int rc = role == "server" ? server() : role == "standin" ? standIn() : role == "raw" ? raw()
                                                                          : fail("server | standin | raw");
    hs_disconnectBus();
    hs_raiseBaseEvent(0);
    hs_reset();
    return rc;
}
