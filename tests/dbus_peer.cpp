// One end of a two-process exchange over D-Bus (tests/dbus/two_process.sh):
//   server        serves every command and publishes on need-update;
//   client        sends every command, asks every notification, checks what
//                 came back is what the in-process run delivers;
//   stalled       a server that never answers, printing "inflight";
//   fault-client  one request to it, which must fail at once when it is killed;
//   apd-client N  Configure and GetAssocDevStats to wifiap-apd, whose access
//                 point is not created yet and has N stations;
//   publisher     serves until SIGTERM, then no stand-in of a plain caller
//                 (busctl) may outlive its name;
//   subscriber    one notification, then again from the server's successor;
//   sample N T    prints message N's sample body of type T as busctl's `ay`.
// Exits 0 when every body received is the sample's and nothing leaked.
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <algorithm>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "capture.h"
#include "hostsim.h"
#include "dispatch.h"
#include "messages.h"

using mt::Bytes;
using mt::Message;

namespace {

std::vector<Bytes> g_received;
bool g_stalled = false;
std::set<std::string> g_plainCallers;
volatile sig_atomic_t g_term = 0;

void trace(void *, const hs_trace *t) {
    if (t->stage != HS_TRACE_RECEIVED) return;
    if (t->senderBus && !strcmp(t->senderBus, "dbus")) g_plainCallers.insert(t->sender);
    g_received.emplace_back(t->body, t->body + t->length);
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

bool pump(const std::function<bool()> &done, double seconds) {
    for (double end = now() + seconds; now() < end; hs_waitBus(50)) {
        hs_run();
        if (done()) return true;
    }
    return false;
}

int fail(const char *what) {
    fprintf(stderr, "dbus_peer: %s\n", what);
    return 1;
}

ismUser_t start(const char *bus, const char *name) {
    if (hs_connectBus(nullptr) != 0 || intfWifiap_initialize() != 0) return nullptr;
    ismUser_t u = hs_newUser(bus, name);
    if (u) intfWifiAp_regUser_msgMngt(u, reinterpret_cast<void *>(mt::dispatch), nullptr, INTFWIFIAP_REG_ALL);
    hs_setTrace(trace, nullptr);
    return u;
}

enum class Serving { Checked, Stalled, Publisher };

int serve(Serving how) {
    bool stalled = how == Serving::Stalled;
    g_server = start("ap", "apd");
    if (!g_server) return fail("server did not start");
    g_stalled = stalled;
    mt::g_answerInMethod = !stalled;
    for (const Message &m : mt::messages())
        hs_setMethod(g_server, m.ntfy ? HS_NEED_UPDATE : HS_REQUEST, m.index,
                     m.ntfy ? reinterpret_cast<void *>(publish) : m.method,
                     reinterpret_cast<uintptr_t>(&m));
    printf("ready\n"), fflush(stdout);
    if (how == Serving::Publisher) {
        signal(SIGTERM, [](int) { g_term = 1; });
        if (!pump([] { return g_term != 0; }, 60)) return fail("never stopped");
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
    std::vector<Bytes> expected;
    for (const Message &m : mt::commands()) expected.push_back(m.body(0));
    if (!pump([&] { return g_received.size() >= expected.size(); }, stalled ? 60 : 20))
        return fail("not every command arrived");
    pump([] { return false; }, 0.5);  // lets the last notifications leave
    return g_received != expected ? fail("a command's body differs from the sample") : 0;
}

int client() {
    ismUser_t me = start("ui", "web");
    ismUser_t server = hs_findUser("ap", "apd");
    if (!me || !server) return fail("client did not start");
    std::vector<Bytes> expected;
    for (const Message &m : mt::commands()) {
        int before = mt::g_callback.calls;
        m.send(me, "ap", "apd");
        if (!m.twoWay) continue;
        if (!pump([&] { return mt::g_callback.calls > before; }, 10) ||
            mt::g_callback.payload != m.response)
            return fail(("no or another response to " + m.name).c_str());
        expected.push_back(m.body(1));
    }
    for (const Message &m : mt::notifications()) {
        hs_setMethod(me, HS_NOTIFICATION, m.index, m.method, 0x5A);
        int before = mt::g_method.calls;
        hs_needUpdate(server, intfWifiAp_base.ntfyHdr.num, m.index);
        if (!pump([&] { return mt::g_method.calls > before; }, 10) ||
            mt::g_method.payload != m.request)
            return fail(("no or another notification " + m.name).c_str());
        expected.push_back(m.body(0));
    }
    if (g_received != expected) return fail("a body differs from the sample");
    return hs_getStats().failures ? fail("failures counted") : 0;
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

int faultClient() {
    ismUser_t me = start("ui", "web");
    if (!me) return fail("client did not start");
    hs_setCallTimeout(30'000'000);
    const Message &get = mt::messages()[INTFWIFIAP_CMD_CONFIGURE];
    double sent = now();
    if (!get.send(me, "ap", "apd")) return fail("not sent");
    if (!pump([] { return hs_getStats().failures > 0; }, 20)) return fail("the request never failed");
    if (now() - sent > 5) return fail("the request failed only after its timeout");
    return mt::g_callback.calls ? fail("a callback for a failed request") : 0;
}

uint32_t g_result = UINT32_MAX;
int64_t g_stations = -1;
bool g_macsDistinct = false;

void onResult(ismMsg_t, uintptr_t, uint32_t result) { g_result = result; }
void onStats(ismMsg_t, uintptr_t, const assocDevStatList *l) {
    g_stations = l->assocDevNum;
    std::vector<std::string> macs;
    for (uint32_t i = 0; i < l->assocDevNum && i < INTFWIFIAP_ASSOCDEVSTATLIST_MAX; ++i)
        if (*l->assocDevs[i].devInfo.macAddress) macs.push_back(l->assocDevs[i].devInfo.macAddress);
    std::sort(macs.begin(), macs.end());
    g_macsDistinct = std::unique(macs.begin(), macs.end()) == macs.end() && macs.size() == l->assocDevNum;
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
    if (!pump([] { return g_stations >= 0; }, 10)) return fail("no answer to GetAssocDevStats");
    if (g_stations != atoi(stations) || !g_macsDistinct) return fail("other stations than started");
    return hs_getStats().failures ? fail("failures counted") : 0;
}

}  // namespace

int main(int argc, char **argv) {
    cap::reset();
    const char *role = argc > 1 ? argv[1] : "";
    if (!strcmp(role, "sample")) return sample(argc, argv);
    int rc = !strcmp(role, "server")         ? serve(Serving::Checked)
             : !strcmp(role, "stalled")      ? serve(Serving::Stalled)
             : !strcmp(role, "publisher")    ? serve(Serving::Publisher)
             : !strcmp(role, "client")       ? client()
             : !strcmp(role, "subscriber")   ? subscriber()
             : !strcmp(role, "fault-client") ? faultClient()
             : !strcmp(role, "apd-client")   ? apdClient(argc > 2 ? argv[2] : "0")
                                             : fail("unknown role");
    hs_disconnectBus();
    hs_raiseBaseEvent(0);
    hs_reset();
    if (cap::liveBlocks()) rc = fail("a context or body was not released");
    return rc;
}
