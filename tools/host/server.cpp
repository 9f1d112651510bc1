#include "server.h"

#include <optional>
#include <utility>
#include <variant>

namespace wifiap::host {
namespace {

using tools::AccessPoint;
using tools::Event;

template <typename... F>
struct Overloaded : F... {
    using F::operator()...;
};

Server &of(uintptr_t ref) { return *reinterpret_cast<Server *>(ref); }

void notify(Server &s, const Event &e, const char *to) {
    const Api &api = s.api;
    std::visit(Overloaded{
                   [&](const probeRequest &p) {
                       api.intfWifiAp_sendReq_ntfyOnProbeReceived(s.user, "ui", to, &p);
                   },
                   [&](const assocDevList &l) {
                       api.intfWifiAp_sendReq_ntfyAssocDevActiveListChanged(s.user, "ui", to, &l);
                   },
                   [&](const wpsStatusStruct &w) {
                       api.intfWifiAp_sendReq_ntfyWpsStatus(s.user, "ui", to, &w);
                   },
                   [&](const tools::EncryptionStatus &x) {
                       api.intfWifiAp_sendReq_ntfyEncryptionStatus(s.user, "ui", to, x.value);
                   },
                   [&](const assocDevInfo &d) {
                       api.intfWifiAp_sendReq_ntfyDisassocEvent(s.user, "ui", to, &d);
                   },
               },
               e);
}

// The methods, each finding its server through the reference.
void mConfigure(ismMsg_t msg, uintptr_t ref, const conf *c) {
    Server &s = of(ref);
    const uint32_t result = s.ap.configure(*c);
    s.publish();  // clients hear of the new encryption before the answer
    s.api.intfWifiAp_sendRes_configure(msg, result);
}
void mSetBridgeAndIps(ismMsg_t, uintptr_t ref, const char *bridge, const char *ips) {
    of(ref).ap.setBridgeAndIps(bridge, ips);
}
void mSetIps(ismMsg_t, uintptr_t ref, const char *ips) { of(ref).ap.setIps(ips); }
void mCreate(ismMsg_t msg, uintptr_t ref, const char *ssid, const char *passphrase) {
    Server &s = of(ref);
    const tools::Created c = s.ap.create(ssid, passphrase);
    s.api.intfWifiAp_sendRes_create(msg, c.ifname.c_str(), c.bssid.c_str(), c.result);
}
void mSsidinfo(ismMsg_t msg, uintptr_t ref, const char *ssid) {
    Server &s = of(ref);
    s.api.intfWifiAp_sendRes_ssidinfo(msg, s.ap.ssidInfo(ssid));
}
void mStop(ismMsg_t msg, uintptr_t ref) {
    Server &s = of(ref);
    s.api.intfWifiAp_sendRes_stop(msg, s.ap.stop());
}
// A WPS run starts once the client has its walk time.
template <wpsInfoOut (AccessPoint::*Start)(const wpsInfoIn &), auto Answer>
void mStartWps(ismMsg_t msg, uintptr_t ref, const wpsInfoIn *in) {
    Server &s = of(ref);
    const wpsInfoOut out = (s.ap.*Start)(*in);
    (s.api.*Answer)(msg, &out);
    s.publish();
}
void mGeneratePin(ismMsg_t msg, uintptr_t ref) {
    Server &s = of(ref);
    s.api.intfWifiAp_sendRes_generatePinCodeWPS(msg, s.ap.generatePin());
}
void mAccounting(ismMsg_t msg, uintptr_t ref, const accountingParams *p) {
    Server &s = of(ref);
    const accountingResult r = s.ap.accounting(*p);
    s.api.intfWifiAp_sendRes_sendAccountingRequest(msg, &r);
}
void mGetStats(ismMsg_t msg, uintptr_t ref) {
    Server &s = of(ref);
    s.api.intfWifiAp_sendRes_getAssocDevStats(msg, s.ap.stationStats().get());
}
// A command without an answer, only what it changes published.
template <void (AccessPoint::*Apply)()>
void mPublishing(ismMsg_t, uintptr_t ref) {
    Server &s = of(ref);
    (s.ap.*Apply)();
    s.publish();
}

void mNeedUpdate(uintptr_t ref, uint32_t index) {
    Server &s = of(ref);
    if (std::optional<Event> e = s.ap.current(index)) notify(s, *e, s.updateTo);
    else s.problem("need-update of a notification that has none");
}

// The library's dispatch, with the air around each command.
int32_t dispatchAired(void *ref, ismUser_t user, uint32_t kind, uint32_t index, void *v1,
                      void *v2, void *v3, const char *bus, const char *name) {
    Server &s = *static_cast<Server *>(ref);
    const bool aired = kind == HS_REQUEST && s.air;
    if (aired) s.air(index, false);
    const int32_t rc = dispatch(&s.api, user, kind, index, v1, v2, v3, bus, name);
    if (aired) s.air(index, true);
    return rc;
}

}  // namespace

Server::Server(Api &a, const char *bus, const char *name,
               std::function<void(const char *)> p)
    : api(a), problem(std::move(p)), user(hs_newUser(bus, name)) {
    if (!user) return;
    api.intfWifiAp_regUser_msgMngt(user, fn(dispatchAired), this, INTFWIFIAP_REG_ALL);
    void *const methods[INTFWIFIAP_CMD_COUNT] = {
        fn(mConfigure),
        fn(mSetBridgeAndIps),
        fn(mSetIps),
        fn(mCreate),
        fn(mSsidinfo),
        fn(mStop),
        fn(mStartWps<&AccessPoint::startWps, &Api::intfWifiAp_sendRes_startWPS>),
        fn(mStartWps<&AccessPoint::startPhysicalWps, &Api::intfWifiAp_sendRes_startPhysicalWPS>),
        fn(mPublishing<&AccessPoint::toggleWps>),
        fn(mPublishing<&AccessPoint::stopWps>),
        fn(mGeneratePin),
        fn(mPublishing<&AccessPoint::toggleWifi>),
        fn(mAccounting),
        fn(mGetStats),
        fn(mPublishing<&AccessPoint::forceApplyMacFilter>)};
    for (uint32_t i = 0; i < INTFWIFIAP_CMD_COUNT; ++i)
        hs_setMethod(user, HS_REQUEST, i, methods[i], reinterpret_cast<uintptr_t>(this));
}

void Server::publish() {
    for (const Event &e : ap.takeEvents()) notify(*this, e, nullptr);
}

void Server::answerNeedUpdate(uint32_t index, const char *to) {
    updateTo = to;
    hs_setMethod(user, HS_NEED_UPDATE, index, fn(mNeedUpdate), reinterpret_cast<uintptr_t>(this));
}

}  // namespace wifiap::host
