// The fifteen commands: a descriptor each, and the typed ends that differ.
#include <string.h>

#include "exchange.h"

using namespace wifiap;
using namespace wifiap::msg;
namespace c = wifiap::codec;

namespace {

#define MAGIC(N) INTFWIFIAP_MAGIC_MSGCMD_##N, "INTFWIFIAP_MAGIC_MSGCMD_" #N

// sfx, index, magic and its name, version, two-way, request and response payloads.
constexpr Desc cmd(const char *sfx, uint32_t index, uint32_t magic, const char *magicName,
                   uint16_t version, bool twoWay, const c::Ops *req, const c::Ops *res) {
    return Desc{sfx, sfx, index, magic, magicName, version, false, twoWay, req, res};
}

const Desc kConfigure = cmd("configure", 0, MAGIC(CONFIGURE), 0, true, &c::kConf, &c::kResult);
const Desc kSetBridgeAndIps =
    cmd("setBridgeAndIps", 1, MAGIC(SETBRIDGEANDIPS), 0, false, &c::kBridgeAndIps, nullptr);
const Desc kSetIps = cmd("setIps", 2, MAGIC(SETIPS), 0, false, &c::kIps, nullptr);
const Desc kCreate = cmd("create", 3, MAGIC(CREATE), 1, true, &c::kCreateReq, &c::kCreateRes);
const Desc kSsidinfo = cmd("ssidinfo", 4, MAGIC(SSIDINFO), 0, true, &c::kSsidText, &c::kResult);
const Desc kStop = cmd("stop", 5, MAGIC(STOP), 0, true, nullptr, &c::kResult);
const Desc kStartWPS =
    cmd("startWPS", 6, MAGIC(STARTWPS), 0, true, &c::kWpsInfoIn, &c::kWpsInfoOut);
const Desc kStartPhysicalWPS = cmd("startPhysicalWPS", 7, MAGIC(STARTPHYSICALWPS), 0, true,
                                   &c::kWpsInfoIn, &c::kWpsInfoOut);
const Desc kToogleWps = cmd("toogleWps", 8, MAGIC(TOOGLEWPS), 0, false, nullptr, nullptr);
const Desc kStopWps = cmd("stopWps", 9, MAGIC(STOPWPS), 0, false, nullptr, nullptr);
const Desc kGeneratePinCodeWPS =
    cmd("generatePinCodeWPS", 10, MAGIC(GENERATEPINCODEWPS), 0, true, nullptr, &c::kResult);
const Desc kToogleWifi = cmd("toogleWifi", 11, MAGIC(TOOGLEWIFI), 0, false, nullptr, nullptr);
const Desc kSendAccountingRequest =
    cmd("sendAccountingRequest", 12, MAGIC(SENDACCOUNTINGREQUEST), 0, true,
        &c::kAccountingParams, &c::kAccountingResult);
const Desc kGetAssocDevStats = cmd("getAssocDevStats", 13, MAGIC(GETASSOCDEVSTATS), 0, true,
                                   nullptr, &c::kAssocDevStatList);
const Desc kForceApplyMacFilterChange = cmd("forceApplyMacFilterChange", 14,
                                            MAGIC(FORCEAPPLYMACFILTERCHANGE), 0, false, nullptr,
                                            nullptr);

// A method or callback as the framework carries it, and back to its type.
template <typename F>
void *fn(F f) {
    return reinterpret_cast<void *>(f);
}
template <typename M>
M as(void *f) {
    return reinterpret_cast<M>(f);
}

uint32_t resultOf(const void *p) { return static_cast<const c::Result *>(p)->result; }

void sendResult(const Desc &d, ismMsg_t msg, uint32_t r) {
    const c::Result res{r};
    sendRes(d, msg, &res);
}

using ResultCb = intfWifiAp_resCb_result_t;
using VoidMthd = intfWifiAp_mthd_void_t;

}  // namespace

// What every command has, whatever its payloads.
#define COMMON(D, s)                                                                             \
    INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_##s(ismUser_t u, void *v1, void *v2,        \
                                                         void *v3) {                             \
        return modSrvRecvMsg(D, u, v1, v2, v3);                                                  \
    }                                                                                            \
    WIFIAP_BODY_CALLBACKS(D, msgCmd, s)

extern "C" {

COMMON(kConfigure, configure)
COMMON(kSetBridgeAndIps, setBridgeAndIps)
COMMON(kSetIps, setIps)
COMMON(kCreate, create)
COMMON(kSsidinfo, ssidinfo)
COMMON(kStop, stop)
COMMON(kStartWPS, startWPS)
COMMON(kStartPhysicalWPS, startPhysicalWPS)
COMMON(kToogleWps, toogleWps)
COMMON(kStopWps, stopWps)
COMMON(kGeneratePinCodeWPS, generatePinCodeWPS)
COMMON(kToogleWifi, toogleWifi)
COMMON(kSendAccountingRequest, sendAccountingRequest)
COMMON(kGetAssocDevStats, getAssocDevStats)
COMMON(kForceApplyMacFilterChange, forceApplyMacFilterChange)

// ---- Configure: conf -> result

INTFWIFIAP_API void intfWifiAp_recvReq_configure(ismMsg_t msg, void *ctx, void *m, uintptr_t ref) {
    if (const void *p = recvReq(kConfigure, msg, ctx, m))
        as<intfWifiAp_mthd_conf_t>(m)(msg, ref, static_cast<const conf *>(p));
}
static void recvRes_configure(void *, ismMsg_t msg, void *ctx) {
    if (Answer a = recvRes(kConfigure, msg, ctx); a.cb)
        as<ResultCb>(a.cb)(msg, a.ref, resultOf(a.payload));
}
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_configure(ismUser_t u, ResultCb cb, uintptr_t ref,
                                                     const char *bus, const char *name,
                                                     const conf *req) {
    return sendReq(kConfigure, recvRes_configure, u, fn(cb), ref, bus, name, req);
}
INTFWIFIAP_API void intfWifiAp_sendRes_configure(ismMsg_t msg, uint32_t r) {
    sendResult(kConfigure, msg, r);
}

// ---- SetBridgeAndIps: bridge, ips (one-way)

INTFWIFIAP_API void intfWifiAp_recvReq_setBridgeAndIps(ismMsg_t msg, void *ctx, void *m,
                                                       uintptr_t ref) {
    if (auto *p = static_cast<const c::BridgeAndIps *>(recvReq(kSetBridgeAndIps, msg, ctx, m)))
        as<intfWifiAp_mthd_text2_t>(m)(msg, ref, p->bridge, p->ips);
}
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_setBridgeAndIps(ismUser_t u, const char *bus,
                                                           const char *name, const char *bridge,
                                                           const char *ips) {
    c::BridgeAndIps t;
    c::copyText(t.bridge, bridge, sizeof t.bridge);
    c::copyText(t.ips, ips, sizeof t.ips);
    return sendReq(kSetBridgeAndIps, nullptr, u, nullptr, 0, bus, name, &t);
}

// ---- SetIps: ips (one-way)

INTFWIFIAP_API void intfWifiAp_recvReq_setIps(ismMsg_t msg, void *ctx, void *m, uintptr_t ref) {
    if (auto *p = static_cast<const c::Ips *>(recvReq(kSetIps, msg, ctx, m)))
        as<intfWifiAp_mthd_text_t>(m)(msg, ref, p->ips);
}
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_setIps(ismUser_t u, const char *bus, const char *name,
                                                  const char *ips) {
    c::Ips t;
    c::copyText(t.ips, ips, sizeof t.ips);
    return sendReq(kSetIps, nullptr, u, nullptr, 0, bus, name, &t);
}

// ---- Create: text1, text2 -> text1, text2, result

INTFWIFIAP_API void intfWifiAp_recvReq_create(ismMsg_t msg, void *ctx, void *m, uintptr_t ref) {
    if (auto *p = static_cast<const c::CreateReq *>(recvReq(kCreate, msg, ctx, m)))
        as<intfWifiAp_mthd_text2_t>(m)(msg, ref, p->text1, p->text2);
}
static void recvRes_create(void *, ismMsg_t msg, void *ctx) {
    if (Answer a = recvRes(kCreate, msg, ctx); a.cb) {
        auto *p = static_cast<const c::CreateRes *>(a.payload);
        as<intfWifiAp_resCb_create_t>(a.cb)(msg, a.ref, p->text1, p->text2, p->result);
    }
}
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_create(ismUser_t u, intfWifiAp_resCb_create_t cb,
                                                  uintptr_t ref, const char *bus,
                                                  const char *name, const char *text1,
                                                  const char *text2) {
    c::CreateReq t;
    c::copyText(t.text1, text1, sizeof t.text1);
    c::copyText(t.text2, text2, sizeof t.text2);
    return sendReq(kCreate, recvRes_create, u, fn(cb), ref, bus, name, &t);
}
INTFWIFIAP_API void intfWifiAp_sendRes_create(ismMsg_t msg, const char *text1, const char *text2,
                                              uint32_t r) {
    c::CreateRes t;
    c::copyText(t.text1, text1, sizeof t.text1);
    c::copyText(t.text2, text2, sizeof t.text2);
    t.result = r;
    sendRes(kCreate, msg, &t);
}

// ---- Ssidinfo: text -> result

INTFWIFIAP_API void intfWifiAp_recvReq_ssidinfo(ismMsg_t msg, void *ctx, void *m, uintptr_t ref) {
    if (auto *p = static_cast<const c::SsidText *>(recvReq(kSsidinfo, msg, ctx, m)))
        as<intfWifiAp_mthd_text_t>(m)(msg, ref, p->text);
}
static void recvRes_ssidinfo(void *, ismMsg_t msg, void *ctx) {
    if (Answer a = recvRes(kSsidinfo, msg, ctx); a.cb)
        as<ResultCb>(a.cb)(msg, a.ref, resultOf(a.payload));
}
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_ssidinfo(ismUser_t u, ResultCb cb, uintptr_t ref,
                                                    const char *bus, const char *name,
                                                    const char *text) {
    c::SsidText t;
    c::copyText(t.text, text, sizeof t.text);
    return sendReq(kSsidinfo, recvRes_ssidinfo, u, fn(cb), ref, bus, name, &t);
}
INTFWIFIAP_API void intfWifiAp_sendRes_ssidinfo(ismMsg_t msg, uint32_t r) {
    sendResult(kSsidinfo, msg, r);
}

// ---- Stop: nothing -> result

INTFWIFIAP_API void intfWifiAp_recvReq_stop(ismMsg_t msg, void *ctx, void *m, uintptr_t ref) {
    if (recvReq(kStop, msg, ctx, m)) as<VoidMthd>(m)(msg, ref);
}
static void recvRes_stop(void *, ismMsg_t msg, void *ctx) {
    if (Answer a = recvRes(kStop, msg, ctx); a.cb)
        as<ResultCb>(a.cb)(msg, a.ref, resultOf(a.payload));
}
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_stop(ismUser_t u, ResultCb cb, uintptr_t ref,
                                                const char *bus, const char *name) {
    return sendReq(kStop, recvRes_stop, u, fn(cb), ref, bus, name, nullptr);
}
INTFWIFIAP_API void intfWifiAp_sendRes_stop(ismMsg_t msg, uint32_t r) { sendResult(kStop, msg, r); }

// ---- StartWPS and StartPhysicalWPS: wpsInfoIn -> wpsInfoOut

INTFWIFIAP_API void intfWifiAp_recvReq_startWPS(ismMsg_t msg, void *ctx, void *m, uintptr_t ref) {
    if (const void *p = recvReq(kStartWPS, msg, ctx, m))
        as<intfWifiAp_mthd_wpsInfoIn_t>(m)(msg, ref, static_cast<const wpsInfoIn *>(p));
}
static void recvRes_startWPS(void *, ismMsg_t msg, void *ctx) {
    if (Answer a = recvRes(kStartWPS, msg, ctx); a.cb)
        as<intfWifiAp_resCb_wpsInfoOut_t>(a.cb)(msg, a.ref,
                                                static_cast<const wpsInfoOut *>(a.payload));
}
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_startWPS(ismUser_t u, intfWifiAp_resCb_wpsInfoOut_t cb,
                                                    uintptr_t ref, const char *bus,
                                                    const char *name, const wpsInfoIn *req) {
    return sendReq(kStartWPS, recvRes_startWPS, u, fn(cb), ref, bus, name, req);
}
INTFWIFIAP_API void intfWifiAp_sendRes_startWPS(ismMsg_t msg, const wpsInfoOut *res) {
    sendRes(kStartWPS, msg, res);
}

INTFWIFIAP_API void intfWifiAp_recvReq_startPhysicalWPS(ismMsg_t msg, void *ctx, void *m,
                                                        uintptr_t ref) {
    if (const void *p = recvReq(kStartPhysicalWPS, msg, ctx, m))
        as<intfWifiAp_mthd_wpsInfoIn_t>(m)(msg, ref, static_cast<const wpsInfoIn *>(p));
}
static void recvRes_startPhysicalWPS(void *, ismMsg_t msg, void *ctx) {
    if (Answer a = recvRes(kStartPhysicalWPS, msg, ctx); a.cb)
        as<intfWifiAp_resCb_wpsInfoOut_t>(a.cb)(msg, a.ref,
                                                static_cast<const wpsInfoOut *>(a.payload));
}
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_startPhysicalWPS(ismUser_t u,
                                                            intfWifiAp_resCb_wpsInfoOut_t cb,
                                                            uintptr_t ref, const char *bus,
                                                            const char *name,
                                                            const wpsInfoIn *req) {
    return sendReq(kStartPhysicalWPS, recvRes_startPhysicalWPS, u, fn(cb), ref, bus, name, req);
}
INTFWIFIAP_API void intfWifiAp_sendRes_startPhysicalWPS(ismMsg_t msg, const wpsInfoOut *res) {
    sendRes(kStartPhysicalWPS, msg, res);
}

// ---- GeneratePinCodeWPS: nothing -> result

INTFWIFIAP_API void intfWifiAp_recvReq_generatePinCodeWPS(ismMsg_t msg, void *ctx, void *m,
                                                          uintptr_t ref) {
    if (recvReq(kGeneratePinCodeWPS, msg, ctx, m)) as<VoidMthd>(m)(msg, ref);
}
static void recvRes_generatePinCodeWPS(void *, ismMsg_t msg, void *ctx) {
    if (Answer a = recvRes(kGeneratePinCodeWPS, msg, ctx); a.cb)
        as<ResultCb>(a.cb)(msg, a.ref, resultOf(a.payload));
}
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_generatePinCodeWPS(ismUser_t u, ResultCb cb,
                                                              uintptr_t ref, const char *bus,
                                                              const char *name) {
    return sendReq(kGeneratePinCodeWPS, recvRes_generatePinCodeWPS, u, fn(cb), ref, bus, name,
                   nullptr);
}
INTFWIFIAP_API void intfWifiAp_sendRes_generatePinCodeWPS(ismMsg_t msg, uint32_t r) {
    sendResult(kGeneratePinCodeWPS, msg, r);
}

// ---- SendAccountingRequest: accountingParams -> accountingResult

INTFWIFIAP_API void intfWifiAp_recvReq_sendAccountingRequest(ismMsg_t msg, void *ctx, void *m,
                                                             uintptr_t ref) {
    if (const void *p = recvReq(kSendAccountingRequest, msg, ctx, m))
        as<intfWifiAp_mthd_accountingParams_t>(m)(msg, ref,
                                                  static_cast<const accountingParams *>(p));
}
static void recvRes_sendAccountingRequest(void *, ismMsg_t msg, void *ctx) {
    if (Answer a = recvRes(kSendAccountingRequest, msg, ctx); a.cb)
        as<intfWifiAp_resCb_accountingResult_t>(a.cb)(
            msg, a.ref, static_cast<const accountingResult *>(a.payload));
}
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_sendAccountingRequest(
    ismUser_t u, intfWifiAp_resCb_accountingResult_t cb, uintptr_t ref, const char *bus,
    const char *name, const accountingParams *req) {
    return sendReq(kSendAccountingRequest, recvRes_sendAccountingRequest, u, fn(cb), ref, bus,
                   name, req);
}
INTFWIFIAP_API void intfWifiAp_sendRes_sendAccountingRequest(ismMsg_t msg,
                                                             const accountingResult *res) {
    sendRes(kSendAccountingRequest, msg, res);
}

// ---- GetAssocDevStats: nothing -> assocDevStatList

INTFWIFIAP_API void intfWifiAp_recvReq_getAssocDevStats(ismMsg_t msg, void *ctx, void *m,
                                                        uintptr_t ref) {
    if (recvReq(kGetAssocDevStats, msg, ctx, m)) as<VoidMthd>(m)(msg, ref);
}
static void recvRes_getAssocDevStats(void *, ismMsg_t msg, void *ctx) {
    if (Answer a = recvRes(kGetAssocDevStats, msg, ctx); a.cb)
        as<intfWifiAp_resCb_assocDevStatList_t>(a.cb)(
            msg, a.ref, static_cast<const assocDevStatList *>(a.payload));
}
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_getAssocDevStats(ismUser_t u,
                                                            intfWifiAp_resCb_assocDevStatList_t cb,
                                                            uintptr_t ref, const char *bus,
                                                            const char *name) {
    return sendReq(kGetAssocDevStats, recvRes_getAssocDevStats, u, fn(cb), ref, bus, name,
                   nullptr);
}
INTFWIFIAP_API void intfWifiAp_sendRes_getAssocDevStats(ismMsg_t msg, const assocDevStatList *res) {
    sendRes(kGetAssocDevStats, msg, res);
}

// ---- One-way commands without a payload

INTFWIFIAP_API void intfWifiAp_recvReq_toogleWps(ismMsg_t msg, void *ctx, void *m, uintptr_t ref) {
    if (recvReq(kToogleWps, msg, ctx, m)) as<VoidMthd>(m)(msg, ref);
}
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_toogleWps(ismUser_t u, const char *bus,
                                                     const char *name) {
    return sendReq(kToogleWps, nullptr, u, nullptr, 0, bus, name, nullptr);
}

INTFWIFIAP_API void intfWifiAp_recvReq_stopWps(ismMsg_t msg, void *ctx, void *m, uintptr_t ref) {
    if (recvReq(kStopWps, msg, ctx, m)) as<VoidMthd>(m)(msg, ref);
}
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_stopWps(ismUser_t u, const char *bus, const char *name) {
    return sendReq(kStopWps, nullptr, u, nullptr, 0, bus, name, nullptr);
}

INTFWIFIAP_API void intfWifiAp_recvReq_toogleWifi(ismMsg_t msg, void *ctx, void *m,
                                                  uintptr_t ref) {
    if (recvReq(kToogleWifi, msg, ctx, m)) as<VoidMthd>(m)(msg, ref);
}
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_toogleWifi(ismUser_t u, const char *bus,
                                                      const char *name) {
    return sendReq(kToogleWifi, nullptr, u, nullptr, 0, bus, name, nullptr);
}

INTFWIFIAP_API void intfWifiAp_recvReq_forceApplyMacFilterChange(ismMsg_t msg, void *ctx, void *m,
                                                                 uintptr_t ref) {
    if (recvReq(kForceApplyMacFilterChange, msg, ctx, m)) as<VoidMthd>(m)(msg, ref);
}
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_forceApplyMacFilterChange(ismUser_t u, const char *bus,
                                                                     const char *name) {
    return sendReq(kForceApplyMacFilterChange, nullptr, u, nullptr, 0, bus, name, nullptr);
}

}  // extern "C"
