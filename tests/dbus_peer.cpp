// One end of a two-process exchange over D-Bus (tests/dbus/two_process.sh):
//   server        serves every command and publishes on need-update;
//   client        sends every command, asks every notification, checks what
//                 came back is what the in-process run delivers;
//   stalled       a server that never answers, printing "inflight";
//   fault-client  one request to it, which must fail at once when it is killed.
// Exits 0 when every body received is the sample's and nothing leaked.
#include <stdio.h>
#include <string.h>
#include <time.h>

#include <functional>

#include "capture.h"
#include "hostsim.h"
#include "messages.h"

using mt::Bytes;
using mt::Message;

namespace {

std::vector<Bytes> g_received;
bool g_stalled = false;

void trace(void *, const hs_trace *t) {
    if (t->stage != HS_TRACE_RECEIVED) return;
    g_received.emplace_back(t->body, t->body + t->length);
    if (g_stalled) printf("inflight\n"), fflush(stdout);
}

int32_t dispatch(void *, ismUser_t user, uint32_t kind, uint32_t index, void *v1, void *v2,
                 void *v3, const char *bus, const char *name) {
    for (const Message &m : mt::messages()) {
        if (m.index != index || m.ntfy != (kind != HS_REQUEST)) continue;
        if (kind == HS_REQUEST) return m.modSrv(user, v1, v2, v3);
        if (kind == HS_NOTIFICATION) return m.modCli(user, v1, v2, v3, bus, name);
        if (m.needUpdate) return m.needUpdate(user, v1, v2, v3);
        reinterpret_cast<void (*)(uintptr_t, uint32_t)>(v2)(uintptr_t(v3), index);  // no call of its own
        return 0;
    }
    return -1;
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
    if (u) intfWifiAp_regUser_msgMngt(u, reinterpret_cast<void *>(dispatch), nullptr, INTFWIFIAP_REG_ALL);
    hs_setTrace(trace, nullptr);
    return u;
}

int serve(bool stalled) {
    g_server = start("ap", "apd");
    if (!g_server) return fail("server did not start");
    g_stalled = stalled;
    mt::g_answerInMethod = !stalled;
    for (const Message &m : mt::messages())
        hs_setMethod(g_server, m.ntfy ? HS_NEED_UPDATE : HS_REQUEST, m.index,
                     m.ntfy ? reinterpret_cast<void *>(publish) : m.method,
                     reinterpret_cast<uintptr_t>(&m));
    printf("ready\n"), fflush(stdout);
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

}  // namespace

int main(int argc, char **argv) {
    cap::reset();
    const char *role = argc > 1 ? argv[1] : "";
    int rc = !strcmp(role, "server")         ? serve(false)
             : !strcmp(role, "stalled")      ? serve(true)
             : !strcmp(role, "client")       ? client()
             : !strcmp(role, "fault-client") ? faultClient()
                                             : fail("unknown role");
    hs_disconnectBus();
    hs_raiseBaseEvent(0);
    hs_reset();
    if (cap::liveBlocks()) rc = fail("a context or body was not released");
    return rc;
}
