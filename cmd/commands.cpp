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


using ResultCb = intfWifiAp_resCb_result_t;
using VoidMthd = intfWifiAp_mthd_void_t;

// Response handlers: the client's callback gets a result, or a record by address.
template <const Desc &D>
void resultAnswer(void *, ismMsg_t msg, void *ctx) {
    if (Answer a = recvRes(D, msg, ctx); a.cb) as<ResultCb>(a.cb)(msg, a.ref, resultOf(a.payload));
}
template <const Desc &D, typename Cb, typename R>
void recordAnswer(void *, ismMsg_t msg, void *ctx) {
    if (Answer a = recvRes(D, msg, ctx); a.cb)
        as<Cb>(a.cb)(msg, a.ref, static_cast<const R *>(a.payload));
}

}  // namespace

// What every command has, whatever its payloads.
#define COMMON(D, s)                                                                             \
    INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_##s(ismUser_t u, void *v1, void *v2,        \
                                                         void *v3) {                             \
        return modSrvRecvMsg(D, u, v1, v2, v3);                                                  \
    }                                                                                            \
    WIFIAP_BODY_CALLBACKS(D, msgCmd, s)

// The server's method of a request without a payload, or with a record R.
#define RECV_VOID(D, s)                                                                          \
    INTFWIFIAP_API void intfWifiAp_recvReq_##s(ismMsg_t msg, void *ctx, void *m, uintptr_t ref) { \
        if (recvReq(D, msg, ctx, m)) as<VoidMthd>(m)(msg, ref);                                  \
    }
#define RECV_RECORD(D, s, R)                                                                     \
    INTFWIFIAP_API void intfWifiAp_recvReq_##s(ismMsg_t msg, void *ctx, void *m, uintptr_t ref) { \
        if (const void *p = recvReq(D, msg, ctx, m))                                             \
            as<intfWifiAp_mthd_##R##_t>(m)(msg, ref, static_cast<const R *>(p));                 \
    }

// A command without a payload either way.
#define ONE_WAY_VOID(D, s)                                                                       \
    RECV_VOID(D, s)                                                                              \
    INTFWIFIAP_API uint32_t intfWifiAp_sendReq_##s(ismUser_t u, const char *bus,                 \
                                                   const char *name) {                           \
        return sendReq(D, nullptr, u, nullptr, 0, bus, name, {});                           \
    }

// The server's answer of a command answered by a result alone.
#define SEND_RESULT(D, s)                                                                        \
    INTFWIFIAP_API void intfWifiAp_sendRes_##s(ismMsg_t msg, uint32_t r) { sendRes(D, msg, {&r}); }

// A command whose request and response are records.
#define RECORD_TO_RECORD(D, s, Req, Res)                                                         \
    RECV_RECORD(D, s, Req)                                                                       \
    INTFWIFIAP_API uint32_t intfWifiAp_sendReq_##s(ismUser_t u, intfWifiAp_resCb_##Res##_t cb,   \
                                                   uintptr_t ref, const char *bus,               \
                                                   const char *name, const Req *req) {           \
        return sendReq(D, recordAnswer<D, intfWifiAp_resCb_##Res##_t, Res>, u, fn(cb), ref, bus, \
                       name, {req});                                                             \
    }                                                                                            \
    INTFWIFIAP_API void intfWifiAp_sendRes_##s(ismMsg_t msg, const Res *res) {                   \
        sendRes(D, msg, {res});                                                                  \
    }

// A command without a payload, answered by a result.
#define VOID_TO_RESULT(D, s)                                                                     \
    RECV_VOID(D, s)                                                                              \
    INTFWIFIAP_API uint32_t intfWifiAp_sendReq_##s(ismUser_t u, ResultCb cb, uintptr_t ref,      \
                                                   const char *bus, const char *name) {          \
        return sendReq(D, resultAnswer<D>, u, fn(cb), ref, bus, name, {});                  \
    }                                                                                            \
    SEND_RESULT(D, s)

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

RECORD_TO_RECORD(kStartWPS, startWPS, wpsInfoIn, wpsInfoOut)
RECORD_TO_RECORD(kStartPhysicalWPS, startPhysicalWPS, wpsInfoIn, wpsInfoOut)
RECORD_TO_RECORD(kSendAccountingRequest, sendAccountingRequest, accountingParams, accountingResult)
VOID_TO_RESULT(kStop, stop)
VOID_TO_RESULT(kGeneratePinCodeWPS, generatePinCodeWPS)
ONE_WAY_VOID(kToogleWps, toogleWps)
ONE_WAY_VOID(kStopWps, stopWps)
ONE_WAY_VOID(kToogleWifi, toogleWifi)
ONE_WAY_VOID(kForceApplyMacFilterChange, forceApplyMacFilterChange)

// ---- Configure: conf -> result

RECV_RECORD(kConfigure, configure, conf)
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_configure(ismUser_t u, ResultCb cb, uintptr_t ref,
                                                     const char *bus, const char *name,
                                                     const conf *req) {
    return sendReq(kConfigure, resultAnswer<kConfigure>, u, fn(cb), ref, bus, name, {req});
}
SEND_RESULT(kConfigure, configure)

// ---- SetBridgeAndIps: bridge, ips (one-way)

INTFWIFIAP_API void intfWifiAp_recvReq_setBridgeAndIps(ismMsg_t msg, void *ctx, void *m,
                                                       uintptr_t ref) {
    if (auto *p = static_cast<const c::BridgeAndIps *>(recvReq(kSetBridgeAndIps, msg, ctx, m)))
        as<intfWifiAp_mthd_text2_t>(m)(msg, ref, p->bridge, p->ips);
}
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_setBridgeAndIps(ismUser_t u, const char *bus,
                                                           const char *name, const char *bridge,
                                                           const char *ips) {
    return sendReq(kSetBridgeAndIps, nullptr, u, nullptr, 0, bus, name, {bridge, ips});
}

// ---- SetIps: ips (one-way)

INTFWIFIAP_API void intfWifiAp_recvReq_setIps(ismMsg_t msg, void *ctx, void *m, uintptr_t ref) {
    if (auto *p = static_cast<const c::Ips *>(recvReq(kSetIps, msg, ctx, m)))
        as<intfWifiAp_mthd_text_t>(m)(msg, ref, p->ips);
}
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_setIps(ismUser_t u, const char *bus, const char *name,
                                                  const char *ips) {
    return sendReq(kSetIps, nullptr, u, nullptr, 0, bus, name, {ips});
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
    return sendReq(kCreate, recvRes_create, u, fn(cb), ref, bus, name, {text1, text2});
}
INTFWIFIAP_API void intfWifiAp_sendRes_create(ismMsg_t msg, const char *text1, const char *text2,
                                              uint32_t r) {
    sendRes(kCreate, msg, {text1, text2, &r});
}

// ---- Ssidinfo: text -> result

INTFWIFIAP_API void intfWifiAp_recvReq_ssidinfo(ismMsg_t msg, void *ctx, void *m, uintptr_t ref) {
    if (auto *p = static_cast<const c::SsidText *>(recvReq(kSsidinfo, msg, ctx, m)))
        as<intfWifiAp_mthd_text_t>(m)(msg, ref, p->text);
}
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_ssidinfo(ismUser_t u, ResultCb cb, uintptr_t ref,
                                                    const char *bus, const char *name,
                                                    const char *text) {
    return sendReq(kSsidinfo, resultAnswer<kSsidinfo>, u, fn(cb), ref, bus, name, {text});
}
SEND_RESULT(kSsidinfo, ssidinfo)

// ---- GetAssocDevStats: nothing -> assocDevStatList

RECV_VOID(kGetAssocDevStats, getAssocDevStats)
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_getAssocDevStats(ismUser_t u,
                                                            intfWifiAp_resCb_assocDevStatList_t cb,
                                                            uintptr_t ref, const char *bus,
                                                            const char *name) {
    return sendReq(kGetAssocDevStats,
                   recordAnswer<kGetAssocDevStats, intfWifiAp_resCb_assocDevStatList_t,
                                assocDevStatList>,
                   u, fn(cb), ref, bus, name, {});
}
INTFWIFIAP_API void intfWifiAp_sendRes_getAssocDevStats(ismMsg_t msg, const assocDevStatList *res) {
    sendRes(kGetAssocDevStats, msg, {res});
}

}  // extern "C"
