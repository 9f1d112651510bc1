// The host's calls (hostsim.h): users and their methods, the event loop, the
// framework's own events, the trace and the counters.
#include <errno.h>

#include "delivery.h"
#include "transport.h"

using namespace hostsim;

// Exported: the rest of the stand-in is hidden (CMakeLists.txt).
#pragma GCC visibility push(default)
extern "C" {

void hs_reset(void) { reset(); }

ismUser_t hs_newUser(const char *busName, const char *userName) {
    if (!userName) return nullptr;
    const char *bus = busName ? busName : "";
    if (userNamed(bus, userName)) return nullptr;
    auto u = std::make_unique<User>();
    u->bus = bus;
    u->name = userName;
    u->via = &inProcess();
    world().users.push_back(std::move(u));
    User &added = *world().users.back();
    for (Transport *t : transports()) t->added(added);
    return &added;
}

void hs_setMethod(ismUser_t user, uint32_t kind, uint32_t index, void *method, uintptr_t ref) {
    User *u = userOf(user);
    if (!u) return;
    if (method)
        u->methods[{kind, index}] = {method, ref};
    else
        u->methods.erase({kind, index});
}

size_t hs_run(void) { return run(); }

void hs_raiseBaseEvent(int32_t event) {
    auto bases = world().bases;  // a callback may add another
    for (auto &[cb, ctx] : bases) cb(ctx, event);
}

int32_t hs_dropTable(uint16_t num) {
    Table *t = liveTable(num);
    if (!t) return 1;
    t->live = false;
    if (auto unreg = reinterpret_cast<intfWifiAp_unreg_t>(t->block[ISM_BLOCK_UNREG])) unreg(num);
    return 0;
}

int32_t hs_needUpdate(ismUser_t server, uint16_t num, uint32_t index) {
    User *u = userOf(server);
    Table *t = liveTable(num);
    if (!u || !t || index >= t->count) return 1;
    askNeedUpdate(*u, *t, index);
    return 0;
}

void hs_setTrace(void (*fn)(void *ref, const hs_trace *t), void *ref) {
    world().trace = fn;
    world().traceRef = ref;
}

hs_stats hs_getStats(void) { return world().stats; }

ismUser_t hs_findUser(const char *busName, const char *userName) {
    return lookUp(busName ? busName : "", userName);
}

#ifndef WIFIAP_DBUS
// Built without a bus: hosts call the same functions and learn there is none.
int hs_connectBus(const char *) { return -EPROTONOSUPPORT; }
void hs_disconnectBus(void) {}
int hs_busFd(void) { return -1; }
int hs_busEvents(void) { return 0; }
int hs_busTimeout(uint64_t *) { return -ENOTCONN; }
int hs_waitBus(int) { return -ENOTCONN; }
void hs_setCallTimeout(uint64_t) {}
void hs_setBusFdMin(uint32_t) {}
int hs_busUsers(void (*)(void *, const char *, const char *), void *) { return -ENOTCONN; }
int hs_monitorBus(const char *, void (*)(void *, const hs_trace *), void *) {
    return -EPROTONOSUPPORT;
}
int hs_monitorRun(void) { return -ENOTCONN; }
void hs_monitorStop(void) {}
#endif

}  // extern "C"
#pragma GCC visibility pop
