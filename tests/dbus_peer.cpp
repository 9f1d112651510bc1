// The test program of the D-Bus transport, one role per process (main lists
// them; tests/dbus/*.sh start them). A server prints "ready" once its name is
// on the bus, "inflight" as a request it will not answer arrives. Exits 0 when
// every body received is the sample's (or the role's own) and nothing leaked.
#include <errno.h>
#include <fcntl.h>
#include <malloc.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <systemd/sd-bus.h>
#include <time.h>
#include <unistd.h>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "capture.h"
#include "hostsim.h"
#include "dispatch.h"
#include "messages.h"

using ct::operator+;
using mt::Bytes;
using mt::Message;

namespace {

bool g_stalled = false;
std::set<std::string> g_plainCallers;
volatile sig_atomic_t g_term = 0;
bool g_gone = false;  // the bus connection ended

// Live heap bytes: ASan's count, or glibc's in a plain build.
extern "C" size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));
size_t heapInUse() {
    if (__sanitizer_get_current_allocated_bytes) return __sanitizer_get_current_allocated_bytes();
    struct mallinfo2 mi = mallinfo2();
    return mi.uordblks + mi.hblkhd;
}
long g_loadTotal = 0, g_served = 0;
size_t g_heapAt[2];

void trace(void *, const hs_trace *t) {
    if (t->stage != HS_TRACE_RECEIVED) return;
    if (g_loadTotal) {  // nothing kept, so that the heap shows the stand-in's own growth
        if (++g_served == 1000 || g_served == g_loadTotal) g_heapAt[g_served != 1000] = heapInUse();
        return;
    }
    if (t->senderBus && !strcmp(t->senderBus, "dbus")) g_plainCallers.insert(t->sender);
    if (g_stalled) printf("inflight\n"), fflush(stdout);
}

ismUser_t g_server;
void publish(uintptr_t ref, uint32_t) {
    reinterpret_cast<const Message *>(ref)->send(g_server, "ap", nullptr);
}

double now() {
    timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return double(t.tv_sec) + double(t.tv_nsec) / 1e9;
}

// Until done, the time is up or the bus goes (g_gone).
bool pump(const std::function<bool()> &done, double seconds) {
    for (double end = now() + seconds; now() < end;) {
        hs_run();
        if (done()) return true;
        if (hs_waitBus(50) == -ENOTCONN) return g_gone = true, hs_run(), done();
    }
    return false;
}

int fail(const char *what) { return fprintf(stderr, "dbus_peer: %s\n", what), 1; }

ismUser_t start(const char *bus, const char *name) {
    if (hs_connectBus(nullptr) != 0 || intfWifiap_initialize() != 0) return nullptr;
    ismUser_t u = hs_newUser(bus, name);
    if (u) intfWifiAp_regUser_msgMngt(u, reinterpret_cast<void *>(mt::dispatch), nullptr, INTFWIFIAP_REG_ALL);
    hs_setTrace(trace, nullptr);
    return u;
}

std::map<ismMsg_t, double> g_held;  // Configure requests the holder has not answered
void hold(ismMsg_t msg, uintptr_t, const conf *) {
    g_held[msg] = now();
    printf("inflight\n"), fflush(stdout);
}
void answerHeld() {
    std::erase_if(g_held, [](const auto &held) {
        bool owed = ismCore_isMsg_needRes(held.first) == 0;
        if (owed && now() - held.second < 2) return false;
        if (owed) intfWifiAp_sendRes_configure(held.first, 7);
        return printf(owed ? "answered\n" : "dropped\n"), fflush(stdout), true;
    });
}

// 100 stations of 312 rates: a body large enough to cross as a memfd.
assocDevStatList g_list;
void fillList() {
    g_list.assocDevNum = INTFWIFIAP_ASSOCDEVSTATLIST_MAX;
    for (uint32_t i = 0; i < g_list.assocDevNum; ++i) {
        perRateStats &p = g_list.assocDevs[i].devStatus.devStats.perRate;
        p.rateStatsNum = INTFWIFIAP_RATESTATS_MAX;
        for (uint32_t r = 0; r < p.rateStatsNum; ++r) p.rates[r] = rateStats{i, r};
    }
}

enum class Serving { Stalled, Publisher, Holder, Orphan, Load };

int serve(Serving how) {
    bool stalled = how == Serving::Stalled || how == Serving::Orphan;
    g_server = start("ap", "apd");
    if (!g_server) return fail("server did not start");
    g_stalled = stalled;
    mt::g_answerInMethod = !stalled;
    for (const Message &m : mt::messages())
        hs_setMethod(g_server, m.ntfy ? HS_NEED_UPDATE : HS_REQUEST, m.index,
                     m.ntfy ? reinterpret_cast<void *>(publish) : m.method,
                     reinterpret_cast<uintptr_t>(&m));
    if (how == Serving::Holder)
        hs_setMethod(g_server, HS_REQUEST, INTFWIFIAP_CMD_CONFIGURE, reinterpret_cast<void *>(hold), 0);
    if (how == Serving::Publisher)
        fillList(), hs_setMethod(g_server, HS_REQUEST, INTFWIFIAP_CMD_GETASSOCDEVSTATS,
                                 reinterpret_cast<void *>(+[](ismMsg_t m, uintptr_t) {
                                     intfWifiAp_sendRes_getAssocDevStats(m, &g_list);
                                 }), 0);
    printf("ready\n"), fflush(stdout);
    if (how == Serving::Orphan)
        return pump([] { return false; }, 20), g_gone ? 0 : fail("the bus went unnoticed");
    if (how == Serving::Stalled) return pump([] { return false; }, 60), 0;  // killed before
    signal(SIGTERM, [](int) { g_term = 1; });
    if (!pump([] { return answerHeld(), g_term != 0; }, 300)) return fail("never stopped");
    if (how == Serving::Load) {
        long growth = long(g_heapAt[1]) - long(g_heapAt[0]);
        printf("served %ld, live heap %+ld bytes from the 1,000th\n", g_served, growth);
        if (g_served != g_loadTotal) return fail("not every request came, or more came");
        if (growth > 256 << 10) return fail("the server's heap grew");
    }
    pump([] { return false; }, 0.3);  // the callers' names going
    // A notification to a user that is gone fails.
    const Message ntfy = mt::notifications()[0];  // notifications() is a copy
    for (const std::string &caller : g_plainCallers) {
        uint32_t before = hs_getStats().failures;
        ntfy.send(g_server, "dbus", caller.c_str());
        if (hs_getStats().failures == before) return fail("a caller outlived its name");
    }
    return 0;
}

int subscriber() {
    ismUser_t me = start("ui", "web");
    ismUser_t server = hs_findUser("ap", "apd");
    if (!me || !server) return fail("subscriber did not start");
    const Message m = mt::notifications()[0];
    hs_setMethod(me, HS_NOTIFICATION, m.index, m.method, 0x5A);
    hs_needUpdate(server, intfWifiAp_base.ntfyHdr.num, m.index);
    for (const char *when : {"first", "again"}) {
        int before = mt::g_method.calls;
        if (!pump([&] { return mt::g_method.calls > before; }, 20) || mt::g_method.payload != m.request)
            return fail((std::string("no notification ") + when).c_str());
        printf("received\n"), fflush(stdout);
    }
    return 0;
}

int sample(int argc, char **argv) {
    size_t n = argc > 3 ? strtoul(argv[2], nullptr, 10) : SIZE_MAX;
    if (n >= mt::messages().size()) return fail("sample N TYPE");
    Bytes b = mt::messages()[n].body(uint32_t(atoi(argv[3])));
    printf("%zu", b.size());
    for (uint8_t c : b) printf(" %u", c);
    return printf("\n"), 0;
}

// how: "" the server is killed, "bus" the bus is, "timeout" neither.
int faultClient(const std::string &how) {
    ismUser_t me = start("ui", "web");
    if (!me) return fail("client did not start");
    hs_setCallTimeout(how == "timeout" ? 300'000 : 30'000'000);
    const Message &get = mt::messages()[INTFWIFIAP_CMD_CONFIGURE];
    double sent = now();
    if (!get.send(me, "ap", "apd")) return fail("not sent");
    if (!pump([] { return hs_getStats().failures > 0; }, 20)) return fail("the request never failed");
    double took = now() - sent;
    printf("failed after %.2f s\n", took);
    if (how == "timeout" ? took < 0.25 || took > 2 : took > 5)
        return fail("the request failed before its timeout, or long after the fault");
    if (how == "bus" && (pump([] { return false; }, 2), !g_gone))
        return fail("the end of the bus not reported");
    if (hs_getStats().failures != 1) return fail("not one failure counted");
    return mt::g_callback.calls ? fail("a callback for a failed request") : 0;
}

std::vector<uint8_t> g_answers;
long g_answered = 0;
bool g_wrong = false;
void onLoad(ismMsg_t, uintptr_t ref, uint32_t result) {
    g_wrong |= ref >= g_answers.size() || result != 7 || g_answers[ref]++;
    ++g_answered;
}

void *g_hugeCtx;
uint32_t g_hugeSize;
// A table of one command whose body is g_hugeSize bytes: more than the
// library ever writes.
uint32_t hugeBody(uint32_t, void *, uint8_t **body, uint32_t *n) {
    *body = static_cast<uint8_t *>(calloc(g_hugeSize, 1));
    return *n = g_hugeSize, *body ? 0 : 1;
}

int huge() {
    ismUser_t me = start("ui", "web");
    if (!me || !hs_findUser("ap", "apd")) return fail("client did not start");
    uintptr_t *block = nullptr;
    uint16_t num = ismCore_getBase_msgMngt("HugeCmd", &block, 1);
    if (num == INTFWIFIAP_NUM_NONE) return fail("no table");
    block[ISM_BLOCK_NAME] = reinterpret_cast<uintptr_t>("HugeCmd");
    uintptr_t *row = block + ISM_BLOCK_ROWS;
    row[ISM_ROW_NAME] = reinterpret_cast<uintptr_t>("Huge");
    row[ISM_ROW_FREE] = reinterpret_cast<uintptr_t>(+[](uint32_t, void *) {});
    row[ISM_ROW_SERIALIZE] = reinterpret_cast<uintptr_t>(hugeBody);
    // Past dbus-daemon's default message size (32 MiB) as `ay`, as a plain client
    // sends it, and past its array length (64 MiB) as a memfd, which has no other limit.
    int sent = 0;
    for (uint32_t mib : {40u, 65u}) {
        g_hugeSize = mib << 20;
        hs_setBusFdMin(mib == 40 ? 0 : 64u << 10);
        uint32_t before = hs_getStats().failures;
        if (ismCore_sendMsgReq_toNameUser(ismIntf_getCore_user(me), &g_hugeCtx, nullptr, nullptr, 0,
                                          "ap", "apd", num, 0, ISM_ANY, ISM_SEND_FLAGS) ||
            hs_getStats().failures != before + 1)
            ++sent, printf("%u MiB sent\n", mib);
        hs_run();
    }
    const conf c{36, 3};
    g_answers.assign(1, 0);
    if (!intfWifiAp_sendReq_configure(me, onLoad, 0, "ap", "apd", &c) ||
        !pump([] { return g_answered > 0; }, 10) || g_wrong)
        return fail("the connection did not survive");
    return sent ? fail("a body over the bus's limit was sent") : 0;
}

int loadClient(long n, const char *who) {
    ismUser_t me = start("ui", (std::string("web") + who).c_str());
    if (!me || !hs_findUser("ap", "apd")) return fail("client did not start");
    g_answers.assign(size_t(n), 0);
    const conf c{36, 3};
    long sent = 0;
    pump([&] {
        while (sent < n && sent - g_answered < 16 && !hs_getStats().failures)
            intfWifiAp_sendReq_configure(me, onLoad, uintptr_t(sent++), "ap", "apd", &c);
        return g_answered >= n || hs_getStats().failures;
    }, 300);
    pump([] { return false; }, 0.2);  // an answer twice would come now
    printf("%ld sent, %ld answered, %u failures\n", sent, g_answered, hs_getStats().failures);
    if (g_answered != n || g_wrong || hs_getStats().failures) return fail("not every request answered once");
    return 0;
}

uint32_t g_result = UINT32_MAX;
int64_t g_stations = -1;

void onResult(ismMsg_t, uintptr_t, uint32_t result) { g_result = result; }
void onStats(ismMsg_t, uintptr_t, const assocDevStatList *l) {
    std::set<std::string> macs;
    for (uint32_t i = 0; i < l->assocDevNum && i < INTFWIFIAP_ASSOCDEVSTATLIST_MAX; ++i)
        if (*l->assocDevs[i].devInfo.macAddress) macs.insert(l->assocDevs[i].devInfo.macAddress);
    g_stations = macs.size() == l->assocDevNum ? l->assocDevNum : -2;  // -2: a MAC missing or twice
}

int apdClient(const char *stations) {
    ismUser_t me = start("ui", "web");
    if (!me || !hs_findUser("ap", "apd")) return fail("client did not start");
    const Message &enc = mt::messages()[INTFWIFIAP_CMD_COUNT + INTFWIFIAP_NTFY_ENCRYPTIONSTATUS];
    hs_setMethod(me, HS_NOTIFICATION, enc.index, enc.method, 0x5A);
    const conf c{36, 3};
    if (!intfWifiAp_sendReq_configure(me, onResult, 0, "ap", "apd", &c)) return fail("not sent");
    if (!pump([] { return g_result != UINT32_MAX && mt::g_method.calls > 0; }, 10))
        return fail("no answer to Configure, or no EncryptionStatus");
    if (g_result != 1) return fail("Configure taken before Create");
    if (!intfWifiAp_sendReq_getAssocDevStats(me, onStats, 0, "ap", "apd")) return fail("not sent");
    if (!pump([] { return g_stations != -1; }, 10)) return fail("no answer to GetAssocDevStats");
    if (g_stations != atoi(stations)) return fail("other stations than started");
    return hs_getStats().failures ? fail("failures counted") : 0;
}

constexpr int kAllSeals = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL;

// A raw sd-bus call to ap/apd, the body as `ay` or, fd >= 0, as `h`: the
// reply's signature ("h" only if sealed) and body in out, or the error's name.
std::string rawCall(sd_bus *b, bool peer, const char *member, const Bytes &body, int fd, Bytes &out) {
    sd_bus_message *m = nullptr, *reply = nullptr;
    sd_bus_error e = SD_BUS_ERROR_NULL;
    std::string got = "not sent";
    out.clear();
    const char *iface = peer ? "org.wifiap.IntfWifiAp1.Peer" : "org.wifiap.IntfWifiAp1";
    int r = sd_bus_message_new_method_call(b, &m, "org.wifiap._ap._apd", "/org/wifiap/ap/apd", iface, member);
    if (r >= 0)
        r = fd >= 0 ? sd_bus_message_append(m, "h", fd) : sd_bus_message_append_array(m, 'y', body.data(), body.size());
    if (r >= 0 && (r = sd_bus_call(b, m, 5'000'000, &e, &reply)) < 0) got = e.name ? e.name : "?";
    if (r >= 0) got = sd_bus_message_get_signature(reply, 1);
    const void *p = nullptr;
    size_t n = 0;
    struct stat st;
    if (got == "ay" && sd_bus_message_read_array(reply, 'y', &p, &n) >= 0) {
        out.assign(static_cast<const uint8_t *>(p), static_cast<const uint8_t *>(p) + n);
    } else if (got == "h" && sd_bus_message_read(reply, "h", &fd) >= 0 && fstat(fd, &st) >= 0) {
        if (fcntl(fd, F_GET_SEALS) != kAllSeals) got = "h, not sealed";
        out.resize(size_t(st.st_size));
        if (pread(fd, out.data(), out.size(), 0) != ssize_t(out.size())) out.clear();
    }
    sd_bus_error_free(&e), sd_bus_message_unref(reply), sd_bus_message_unref(m);
    return got;
}

int memfdOf(const Bytes &b, int seals) {
    int fd = memfd_create("hostile", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    bool ok = fd >= 0 && write(fd, b.data(), b.size()) == ssize_t(b.size());
    if (ok && seals) ok = fcntl(fd, F_ADD_SEALS, seals) >= 0;
    return ok ? fd : (close(fd), -1);
}

// The publisher's list, fetched as a stand-in, then on raw sd-bus: a peer's
// call gets it as a sealed memfd, a plain one as `ay`; a request fd the
// sender could still change, or no memfd at all, is refused, and a sealed
// one served after them.
int memfds() {
    ismUser_t me = start("ui", "web");
    const Message &get = mt::messages()[INTFWIFIAP_CMD_GETASSOCDEVSTATS];
    const Message &cfg = mt::messages()[INTFWIFIAP_CMD_CONFIGURE];
    fillList();
    Bytes list(intfWifiAp_assocDevStatList_serialize_lg(&g_list));
    uint8_t *cur = list.data();
    intfWifiAp_assocDevStatList_serialize(&g_list, &cur);
    if (!me || !hs_findUser("ap", "apd") || !get.send(me, "ap", "apd") ||
        !pump([] { return mt::g_callback.calls > 0; }, 10) || mt::g_callback.payload != list)
        return fail("no or another station list to a stand-in");
    sd_bus *b = nullptr;
    int pipeFds[2] = {-1, -1};
    const Bytes req = cfg.body(0);
    if (!getenv("DBUS_SESSION_BUS_ADDRESS") || sd_bus_open_user(&b) < 0 || pipe(pipeFds) < 0 ||
        write(pipeFds[1], req.data(), req.size()) != ssize_t(req.size()))
        return fail("no raw connection or pipe");
    const char *refused = "org.wifiap.Error.Refused";
    struct { const char *what; bool peer; int fd; std::string sig; Bytes body; } cases[] = {  // fd: Configure
        {"the list to a peer", true, -1, "h", get.header() + list},
        {"the list to a plain caller", false, -1, "ay", get.header() + list},
        {"an unsealed memfd", true, memfdOf(req, 0), refused, {}},
        {"a writable memfd", true, memfdOf(req, kAllSeals & ~F_SEAL_WRITE), refused, {}},
        {"a pipe", true, pipeFds[0], refused, {}},
        {"a sealed memfd", true, memfdOf(req, kAllSeals), "ay", cfg.body(1)}};
    int status = 0;
    for (auto &c : cases) {
        Bytes got;
        std::string sig = rawCall(b, c.peer, c.fd < 0 ? "GetAssocDevStats" : "Configure", get.body(0), c.fd, got);
        if (sig != c.sig || got != c.body)
            status = fail((std::string(c.what) + ": " + sig + ", not " + c.sig + ", or another body").c_str());
        if (c.fd >= 0) close(c.fd);
    }
    close(pipeFds[1]);
    sd_bus_flush_close_unref(b);
    return status;
}

}  // namespace

int main(int argc, char **argv) {
    cap::reset();
    const char *role = argc > 1 ? argv[1] : "";
    if (!strcmp(role, "sample")) return sample(argc, argv);
    int rc = !strcmp(role, "stalled")        ? serve(Serving::Stalled)
             : !strcmp(role, "publisher")    ? serve(Serving::Publisher)
             : !strcmp(role, "subscriber")   ? subscriber()
             : !strcmp(role, "fault-client") ? faultClient(argc > 2 ? argv[2] : "")
             : !strcmp(role, "apd-client")   ? apdClient(argc > 2 ? argv[2] : "0")
             : !strcmp(role, "holder")       ? serve(Serving::Holder)
             : !strcmp(role, "one-client")   ? loadClient(1, "")
             : !strcmp(role, "orphan")       ? serve(Serving::Orphan)
             : !strcmp(role, "huge")         ? huge()
             : !strcmp(role, "memfd")        ? memfds()
             : !strcmp(role, "load-server")  ? (g_loadTotal = argc > 2 ? atol(argv[2]) : 1, serve(Serving::Load))
             : !strcmp(role, "load-client")  ? loadClient(argc > 2 ? atol(argv[2]) : 1, argc > 3 ? argv[3] : "")
                                             : fail("unknown role");
    hs_disconnectBus();
    hs_raiseBaseEvent(0);
    hs_reset();
    if (cap::liveBlocks()) rc = fail("a context or body was not released");
    return rc;
}
