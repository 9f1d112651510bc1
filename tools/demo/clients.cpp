#include "clients.h"

#include "hostsim.h"
#include "trace.h"

namespace wifiap::demo {
namespace {

Answers &of(uintptr_t ref) { return *reinterpret_cast<Answers *>(ref); }

template <uint32_t Index, typename Payload>
void counted(ismMsg_t, uintptr_t ref, Payload) {
    ++of(ref).ntfyCalls[Index];
}

void *const kMethods[INTFWIFIAP_NTFY_COUNT] = {
    fn(counted<INTFWIFIAP_NTFY_ONPROBERECEIVED, const probeRequest *>),
    fn(counted<INTFWIFIAP_NTFY_ASSOCDEVACTIVELISTCHANGED, const assocDevList *>),
    fn(counted<INTFWIFIAP_NTFY_WPSSTATUS, const wpsStatusStruct *>),
    fn(counted<INTFWIFIAP_NTFY_ENCRYPTIONSTATUS, uint32_t>),
    fn(counted<INTFWIFIAP_NTFY_DISASSOCEVENT, const assocDevInfo *>)};

}  // namespace

void Answers::onResult(ismMsg_t, uintptr_t ref, uint32_t result) {
    Answers &a = of(ref);
    ++a.results;
    a.lastResult = result;
}
void Answers::onCreate(ismMsg_t msg, uintptr_t ref, const char *ifname, const char *bssid,
                       uint32_t result) {
    onResult(msg, ref, result);
    of(ref).created = std::string(ifname) + " " + bssid;
}
void Answers::onPin(ismMsg_t, uintptr_t ref, uint32_t pin) {
    ++of(ref).results;
    of(ref).pin = pin;
}
void Answers::onWps(ismMsg_t, uintptr_t ref, const wpsInfoOut *out) {
    ++of(ref).results;
    of(ref).walkTime = out->value;
}
void Answers::onAccounting(ismMsg_t msg, uintptr_t ref, const accountingResult *r) {
    onResult(msg, ref, r->value1);
}
void Answers::onStats(ismMsg_t, uintptr_t ref, const assocDevStatList *l) {
    Answers &a = of(ref);
    a.statsAt = now();
    ++a.results;
    a.stations = l->assocDevNum;
}

ismUser_t newClient(Api &api, Answers &answers, const char *name) {
    ismUser_t u = hs_newUser("ui", name);
    registerUser(api, u);
    for (uint32_t i = 0; i < INTFWIFIAP_NTFY_COUNT; ++i)
        hs_setMethod(u, HS_NOTIFICATION, i, kMethods[i], answers.ref());
    return u;
}

}  // namespace wifiap::demo
