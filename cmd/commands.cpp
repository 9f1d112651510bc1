// The fifteen commands' typed ends, a section each: the client's send and the
// handler that brings the response to its callback, the server's dispatch,
// the call of its method, and its answer. Everything else a command has, its
// four body callbacks included, comes from its row of the message list.
#include "exchange.h"

using namespace wifiap::msg;
namespace c = wifiap::codec;

namespace {

using ResultCb = intfWifiAp_resCb_result_t;
using VoidMthd = intfWifiAp_mthd_void_t;

template <class P>
const P *request(const Row &d, ismMsg_t msg, void *ctx, void *method) {
    return static_cast<const P *>(recvReq(d, msg, ctx, method));
}

// Response handlers: the client's callback gets the result, or the record by address.
template <uint32_t I>
void answerResult(void *, ismMsg_t msg, void *ctx) {
    if (Answer a = recvRes(kCmds[I], msg, ctx); a.cb)
        as<ResultCb>(a.cb)(msg, a.ref, static_cast<const c::Result *>(a.payload)->result);
}
template <uint32_t I, class R, class Cb>
void answerRecord(void *, ismMsg_t msg, void *ctx) {
    if (Answer a = recvRes(kCmds[I], msg, ctx); a.cb)
        as<Cb>(a.cb)(msg, a.ref, static_cast<const R *>(a.payload));
}

}  // namespace

extern "C" {

// ---- Configure: conf -> result

INTFWIFIAP_API uint32_t intfWifiAp_sendReq_configure(ismUser_t u, ResultCb cb, uintptr_t ref,
                                                     const char *bus, const char *name,
                                                     const conf *req) {
    constexpr uint32_t I = INTFWIFIAP_CMD_CONFIGURE;
    return sendReq(kCmds[I], answerResult<I>, u, fn(cb), ref, bus, name, {req});
}
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_configure(ismUser_t u, void *v1, void *v2,
                                                           void *v3) {
    return modSrvRecvMsg(kCmds[INTFWIFIAP_CMD_CONFIGURE], u, v1, v2, v3);
}
INTFWIFIAP_API void intfWifiAp_recvReq_configure(ismMsg_t msg, void *ctx, void *m, uintptr_t ref) {
    if (auto *p = request<conf>(kCmds[INTFWIFIAP_CMD_CONFIGURE], msg, ctx, m))
        as<intfWifiAp_mthd_conf_t>(m)(msg, ref, p);
}
INTFWIFIAP_API void intfWifiAp_sendRes_configure(ismMsg_t msg, uint32_t result) {
    sendRes(kCmds[INTFWIFIAP_CMD_CONFIGURE], msg, {&result});
}

// ---- SetBridgeAndIps: bridge, ips (one-way)

INTFWIFIAP_API uint32_t intfWifiAp_sendReq_setBridgeAndIps(ismUser_t u, const char *bus,
                                                           const char *name, const char *bridge,
                                                           const char *ips) {
    return sendReq(kCmds[INTFWIFIAP_CMD_SETBRIDGEANDIPS], nullptr, u, nullptr, 0, bus, name,
                   {bridge, ips});
}
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_setBridgeAndIps(ismUser_t u, void *v1, void *v2,
                                                                 void *v3) {
    return modSrvRecvMsg(kCmds[INTFWIFIAP_CMD_SETBRIDGEANDIPS], u, v1, v2, v3);
}
INTFWIFIAP_API void intfWifiAp_recvReq_setBridgeAndIps(ismMsg_t msg, void *ctx, void *m,
                                                       uintptr_t ref) {
    if (auto *p = request<c::BridgeAndIps>(kCmds[INTFWIFIAP_CMD_SETBRIDGEANDIPS], msg, ctx, m))
        as<intfWifiAp_mthd_text2_t>(m)(msg, ref, p->bridge, p->ips);
}

// ---- SetIps: ips (one-way)

INTFWIFIAP_API uint32_t intfWifiAp_sendReq_setIps(ismUser_t u, const char *bus, const char *name,
                                                  const char *ips) {
    return sendReq(kCmds[INTFWIFIAP_CMD_SETIPS], nullptr, u, nullptr, 0, bus, name, {ips});
}
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_setIps(ismUser_t u, void *v1, void *v2,
                                                        void *v3) {
    return modSrvRecvMsg(kCmds[INTFWIFIAP_CMD_SETIPS], u, v1, v2, v3);
}
INTFWIFIAP_API void intfWifiAp_recvReq_setIps(ismMsg_t msg, void *ctx, void *m, uintptr_t ref) {
    if (auto *p = request<c::Ips>(kCmds[INTFWIFIAP_CMD_SETIPS], msg, ctx, m))
        as<intfWifiAp_mthd_text_t>(m)(msg, ref, p->ips);
}

// ---- Create: text1, text2 -> text1, text2, result

static void answerCreate(void *, ismMsg_t msg, void *ctx) {
    if (Answer a = recvRes(kCmds[INTFWIFIAP_CMD_CREATE], msg, ctx); a.cb) {
        auto *p = static_cast<const c::CreateRes *>(a.payload);
        as<intfWifiAp_resCb_create_t>(a.cb)(msg, a.ref, p->text1, p->text2, p->result);
    }
}
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_create(ismUser_t u, intfWifiAp_resCb_create_t cb,
                                                  uintptr_t ref, const char *bus,
                                                  const char *name, const char *text1,
                                                  const char *text2) {
    return sendReq(kCmds[INTFWIFIAP_CMD_CREATE], answerCreate, u, fn(cb), ref, bus, name,
                   {text1, text2});
}
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_create(ismUser_t u, void *v1, void *v2,
                                                        void *v3) {
    return modSrvRecvMsg(kCmds[INTFWIFIAP_CMD_CREATE], u, v1, v2, v3);
}
INTFWIFIAP_API void intfWifiAp_recvReq_create(ismMsg_t msg, void *ctx, void *m, uintptr_t ref) {
    if (auto *p = request<c::CreateReq>(kCmds[INTFWIFIAP_CMD_CREATE], msg, ctx, m))
        as<intfWifiAp_mthd_text2_t>(m)(msg, ref, p->text1, p->text2);
}
INTFWIFIAP_API void intfWifiAp_sendRes_create(ismMsg_t msg, const char *text1, const char *text2,
                                              uint32_t result) {
    sendRes(kCmds[INTFWIFIAP_CMD_CREATE], msg, {text1, text2, &result});
}

// ---- Ssidinfo: text -> result

INTFWIFIAP_API uint32_t intfWifiAp_sendReq_ssidinfo(ismUser_t u, ResultCb cb, uintptr_t ref,
                                                    const char *bus, const char *name,
                                                    const char *text) {
    constexpr uint32_t I = INTFWIFIAP_CMD_SSIDINFO;
    return sendReq(kCmds[I], answerResult<I>, u, fn(cb), ref, bus, name, {text});
}
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_ssidinfo(ismUser_t u, void *v1, void *v2,
                                                          void *v3) {
    return modSrvRecvMsg(kCmds[INTFWIFIAP_CMD_SSIDINFO], u, v1, v2, v3);
}
INTFWIFIAP_API void intfWifiAp_recvReq_ssidinfo(ismMsg_t msg, void *ctx, void *m, uintptr_t ref) {
    if (auto *p = request<c::SsidText>(kCmds[INTFWIFIAP_CMD_SSIDINFO], msg, ctx, m))
        as<intfWifiAp_mthd_text_t>(m)(msg, ref, p->text);
}
INTFWIFIAP_API void intfWifiAp_sendRes_ssidinfo(ismMsg_t msg, uint32_t result) {
    sendRes(kCmds[INTFWIFIAP_CMD_SSIDINFO], msg, {&result});
}

// ---- Stop: nothing -> result

INTFWIFIAP_API uint32_t intfWifiAp_sendReq_stop(ismUser_t u, ResultCb cb, uintptr_t ref,
                                                const char *bus, const char *name) {
    constexpr uint32_t I = INTFWIFIAP_CMD_STOP;
    return sendReq(kCmds[I], answerResult<I>, u, fn(cb), ref, bus, name, {});
}
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_stop(ismUser_t u, void *v1, void *v2, void *v3) {
    return modSrvRecvMsg(kCmds[INTFWIFIAP_CMD_STOP], u, v1, v2, v3);
}
INTFWIFIAP_API void intfWifiAp_recvReq_stop(ismMsg_t msg, void *ctx, void *m, uintptr_t ref) {
    if (recvReq(kCmds[INTFWIFIAP_CMD_STOP], msg, ctx, m)) as<VoidMthd>(m)(msg, ref);
}
INTFWIFIAP_API void intfWifiAp_sendRes_stop(ismMsg_t msg, uint32_t result) {
    sendRes(kCmds[INTFWIFIAP_CMD_STOP], msg, {&result});
}

// ---- StartWPS: wpsInfoIn -> wpsInfoOut

INTFWIFIAP_API uint32_t intfWifiAp_sendReq_startWPS(ismUser_t u, intfWifiAp_resCb_wpsInfoOut_t cb,
                                                    uintptr_t ref, const char *bus,
                                                    const char *name, const wpsInfoIn *req) {
    constexpr uint32_t I = INTFWIFIAP_CMD_STARTWPS;
    return sendReq(kCmds[I], answerRecord<I, wpsInfoOut, intfWifiAp_resCb_wpsInfoOut_t>, u, fn(cb),
                   ref, bus, name, {req});
}
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_startWPS(ismUser_t u, void *v1, void *v2,
                                                          void *v3) {
    return modSrvRecvMsg(kCmds[INTFWIFIAP_CMD_STARTWPS], u, v1, v2, v3);
}
INTFWIFIAP_API void intfWifiAp_recvReq_startWPS(ismMsg_t msg, void *ctx, void *m, uintptr_t ref) {
    if (auto *p = request<wpsInfoIn>(kCmds[INTFWIFIAP_CMD_STARTWPS], msg, ctx, m))
        as<intfWifiAp_mthd_wpsInfoIn_t>(m)(msg, ref, p);
}
INTFWIFIAP_API void intfWifiAp_sendRes_startWPS(ismMsg_t msg, const wpsInfoOut *res) {
    sendRes(kCmds[INTFWIFIAP_CMD_STARTWPS], msg, {res});
}

// ---- StartPhysicalWPS: wpsInfoIn -> wpsInfoOut

INTFWIFIAP_API uint32_t intfWifiAp_sendReq_startPhysicalWPS(ismUser_t u,
                                                            intfWifiAp_resCb_wpsInfoOut_t cb,
                                                            uintptr_t ref, const char *bus,
                                                            const char *name,
                                                            const wpsInfoIn *req) {
    constexpr uint32_t I = INTFWIFIAP_CMD_STARTPHYSICALWPS;
    return sendReq(kCmds[I], answerRecord<I, wpsInfoOut, intfWifiAp_resCb_wpsInfoOut_t>, u, fn(cb),
                   ref, bus, name, {req});
}
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_startPhysicalWPS(ismUser_t u, void *v1, void *v2,
                                                                  void *v3) {
    return modSrvRecvMsg(kCmds[INTFWIFIAP_CMD_STARTPHYSICALWPS], u, v1, v2, v3);
}
INTFWIFIAP_API void intfWifiAp_recvReq_startPhysicalWPS(ismMsg_t msg, void *ctx, void *m,
                                                        uintptr_t ref) {
    if (auto *p = request<wpsInfoIn>(kCmds[INTFWIFIAP_CMD_STARTPHYSICALWPS], msg, ctx, m))
        as<intfWifiAp_mthd_wpsInfoIn_t>(m)(msg, ref, p);
}
INTFWIFIAP_API void intfWifiAp_sendRes_startPhysicalWPS(ismMsg_t msg, const wpsInfoOut *res) {
    sendRes(kCmds[INTFWIFIAP_CMD_STARTPHYSICALWPS], msg, {res});
}

// ---- ToogleWps (one-way, no payload)

INTFWIFIAP_API uint32_t intfWifiAp_sendReq_toogleWps(ismUser_t u, const char *bus,
                                                     const char *name) {
    return sendReq(kCmds[INTFWIFIAP_CMD_TOOGLEWPS], nullptr, u, nullptr, 0, bus, name, {});
}
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_toogleWps(ismUser_t u, void *v1, void *v2,
                                                           void *v3) {
    return modSrvRecvMsg(kCmds[INTFWIFIAP_CMD_TOOGLEWPS], u, v1, v2, v3);
}
INTFWIFIAP_API void intfWifiAp_recvReq_toogleWps(ismMsg_t msg, void *ctx, void *m, uintptr_t ref) {
    if (recvReq(kCmds[INTFWIFIAP_CMD_TOOGLEWPS], msg, ctx, m)) as<VoidMthd>(m)(msg, ref);
}

// ---- StopWps (one-way, no payload)

INTFWIFIAP_API uint32_t intfWifiAp_sendReq_stopWps(ismUser_t u, const char *bus,
                                                   const char *name) {
    return sendReq(kCmds[INTFWIFIAP_CMD_STOPWPS], nullptr, u, nullptr, 0, bus, name, {});
}
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_stopWps(ismUser_t u, void *v1, void *v2,
                                                         void *v3) {
    return modSrvRecvMsg(kCmds[INTFWIFIAP_CMD_STOPWPS], u, v1, v2, v3);
}
INTFWIFIAP_API void intfWifiAp_recvReq_stopWps(ismMsg_t msg, void *ctx, void *m, uintptr_t ref) {
    if (recvReq(kCmds[INTFWIFIAP_CMD_STOPWPS], msg, ctx, m)) as<VoidMthd>(m)(msg, ref);
}

// ---- GeneratePinCodeWPS: nothing -> result

INTFWIFIAP_API uint32_t intfWifiAp_sendReq_generatePinCodeWPS(ismUser_t u, ResultCb cb,
                                                              uintptr_t ref, const char *bus,
                                                              const char *name) {
    constexpr uint32_t I = INTFWIFIAP_CMD_GENERATEPINCODEWPS;
    return sendReq(kCmds[I], answerResult<I>, u, fn(cb), ref, bus, name, {});
}
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_generatePinCodeWPS(ismUser_t u, void *v1,
                                                                    void *v2, void *v3) {
    return modSrvRecvMsg(kCmds[INTFWIFIAP_CMD_GENERATEPINCODEWPS], u, v1, v2, v3);
}
INTFWIFIAP_API void intfWifiAp_recvReq_generatePinCodeWPS(ismMsg_t msg, void *ctx, void *m,
                                                          uintptr_t ref) {
    if (recvReq(kCmds[INTFWIFIAP_CMD_GENERATEPINCODEWPS], msg, ctx, m)) as<VoidMthd>(m)(msg, ref);
}
INTFWIFIAP_API void intfWifiAp_sendRes_generatePinCodeWPS(ismMsg_t msg, uint32_t result) {
    sendRes(kCmds[INTFWIFIAP_CMD_GENERATEPINCODEWPS], msg, {&result});
}

// ---- ToogleWifi (one-way, no payload)

INTFWIFIAP_API uint32_t intfWifiAp_sendReq_toogleWifi(ismUser_t u, const char *bus,
                                                      const char *name) {
    return sendReq(kCmds[INTFWIFIAP_CMD_TOOGLEWIFI], nullptr, u, nullptr, 0, bus, name, {});
}
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_toogleWifi(ismUser_t u, void *v1, void *v2,
                                                            void *v3) {
    return modSrvRecvMsg(kCmds[INTFWIFIAP_CMD_TOOGLEWIFI], u, v1, v2, v3);
}
INTFWIFIAP_API void intfWifiAp_recvReq_toogleWifi(ismMsg_t msg, void *ctx, void *m,
                                                  uintptr_t ref) {
    if (recvReq(kCmds[INTFWIFIAP_CMD_TOOGLEWIFI], msg, ctx, m)) as<VoidMthd>(m)(msg, ref);
}

// ---- SendAccountingRequest: accountingParams -> accountingResult

INTFWIFIAP_API uint32_t intfWifiAp_sendReq_sendAccountingRequest(
    ismUser_t u, intfWifiAp_resCb_accountingResult_t cb, uintptr_t ref, const char *bus,
    const char *name, const accountingParams *req) {
    constexpr uint32_t I = INTFWIFIAP_CMD_SENDACCOUNTINGREQUEST;
    return sendReq(kCmds[I],
                   answerRecord<I, accountingResult, intfWifiAp_resCb_accountingResult_t>, u,
                   fn(cb), ref, bus, name, {req});
}
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_sendAccountingRequest(ismUser_t u, void *v1,
                                                                       void *v2, void *v3) {
    return modSrvRecvMsg(kCmds[INTFWIFIAP_CMD_SENDACCOUNTINGREQUEST], u, v1, v2, v3);
}
INTFWIFIAP_API void intfWifiAp_recvReq_sendAccountingRequest(ismMsg_t msg, void *ctx, void *m,
                                                             uintptr_t ref) {
    if (auto *p =
            request<accountingParams>(kCmds[INTFWIFIAP_CMD_SENDACCOUNTINGREQUEST], msg, ctx, m))
        as<intfWifiAp_mthd_accountingParams_t>(m)(msg, ref, p);
}
INTFWIFIAP_API void intfWifiAp_sendRes_sendAccountingRequest(ismMsg_t msg,
                                                             const accountingResult *res) {
    sendRes(kCmds[INTFWIFIAP_CMD_SENDACCOUNTINGREQUEST], msg, {res});
}

// ---- GetAssocDevStats: nothing -> assocDevStatList

INTFWIFIAP_API uint32_t intfWifiAp_sendReq_getAssocDevStats(ismUser_t u,
                                                            intfWifiAp_resCb_assocDevStatList_t cb,
                                                            uintptr_t ref, const char *bus,
                                                            const char *name) {
    constexpr uint32_t I = INTFWIFIAP_CMD_GETASSOCDEVSTATS;
    return sendReq(kCmds[I],
                   answerRecord<I, assocDevStatList, intfWifiAp_resCb_assocDevStatList_t>, u,
                   fn(cb), ref, bus, name, {});
}
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_getAssocDevStats(ismUser_t u, void *v1, void *v2,
                                                                  void *v3) {
    return modSrvRecvMsg(kCmds[INTFWIFIAP_CMD_GETASSOCDEVSTATS], u, v1, v2, v3);
}
INTFWIFIAP_API void intfWifiAp_recvReq_getAssocDevStats(ismMsg_t msg, void *ctx, void *m,
                                                        uintptr_t ref) {
    if (recvReq(kCmds[INTFWIFIAP_CMD_GETASSOCDEVSTATS], msg, ctx, m)) as<VoidMthd>(m)(msg, ref);
}
INTFWIFIAP_API void intfWifiAp_sendRes_getAssocDevStats(ismMsg_t msg, const assocDevStatList *res) {
    sendRes(kCmds[INTFWIFIAP_CMD_GETASSOCDEVSTATS], msg, {res});
}

// ---- ForceApplyMacFilterChange (one-way, no payload)

INTFWIFIAP_API uint32_t intfWifiAp_sendReq_forceApplyMacFilterChange(ismUser_t u, const char *bus,
                                                                     const char *name) {
    return sendReq(kCmds[INTFWIFIAP_CMD_FORCEAPPLYMACFILTERCHANGE], nullptr, u, nullptr, 0, bus,
                   name, {});
}
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_forceApplyMacFilterChange(ismUser_t u, void *v1,
                                                                           void *v2, void *v3) {
    return modSrvRecvMsg(kCmds[INTFWIFIAP_CMD_FORCEAPPLYMACFILTERCHANGE], u, v1, v2, v3);
}
INTFWIFIAP_API void intfWifiAp_recvReq_forceApplyMacFilterChange(ismMsg_t msg, void *ctx, void *m,
                                                                 uintptr_t ref) {
    if (recvReq(kCmds[INTFWIFIAP_CMD_FORCEAPPLYMACFILTERCHANGE], msg, ctx, m))
        as<VoidMthd>(m)(msg, ref);
}

}  // extern "C"
