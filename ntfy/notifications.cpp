// The five notifications' typed ends, a section each: the server's publishing
// and need-update dispatch, the client's dispatch and the call of its method.
// Everything else a notification has, its four body callbacks included, comes
// from its row of the message list.
#include "exchange.h"

using namespace wifiap::msg;
namespace c = wifiap::codec;

extern "C" {

// ---- OnProbeReceived: probeRequest

INTFWIFIAP_API void intfWifiAp_sendReq_ntfyOnProbeReceived(ismUser_t u, const char *bus,
                                                           const char *user,
                                                           const probeRequest *ntfy) {
    sendNtfy(kNtfys[INTFWIFIAP_NTFY_ONPROBERECEIVED], u, bus, user, {ntfy});
}
INTFWIFIAP_API int32_t intfWifiAp_modSrv_needUpdate_ntfyOnProbeReceived(ismUser_t u, void *v1,
                                                                        void *v2, void *v3) {
    return needUpdate(kNtfys[INTFWIFIAP_NTFY_ONPROBERECEIVED], u, v1, v2, v3);
}
INTFWIFIAP_API int32_t intfWifiAp_modCliNtfyUser_recvMsg_onProbeReceived(
    ismUser_t u, void *v1, void *v2, void *v3, const char *bus, const char *user) {
    return modCliNtfyRecvMsg(kNtfys[INTFWIFIAP_NTFY_ONPROBERECEIVED], u, v1, v2, v3, bus, user);
}
INTFWIFIAP_API void intfWifiAp_recvReq_ntfyOnProbeReceived(ismMsg_t msg, void *ctx, void *m,
                                                           uintptr_t ref) {
    if (auto *p = recvReq(kNtfys[INTFWIFIAP_NTFY_ONPROBERECEIVED], msg, ctx, m))
        as<intfWifiAp_ntfyMthd_probeRequest_t>(m)(msg, ref, static_cast<const probeRequest *>(p));
}

// ---- AssocDevActiveListChanged: assocDevList

INTFWIFIAP_API void intfWifiAp_sendReq_ntfyAssocDevActiveListChanged(ismUser_t u,
                                                                     const char *bus,
                                                                     const char *user,
                                                                     const assocDevList *ntfy) {
    sendNtfy(kNtfys[INTFWIFIAP_NTFY_ASSOCDEVACTIVELISTCHANGED], u, bus, user, {ntfy});
}
INTFWIFIAP_API int32_t intfWifiAp_modSrv_needUpdate_ntfyAssocDevActiveListChanged(ismUser_t u,
                                                                                  void *v1,
                                                                                  void *v2,
                                                                                  void *v3) {
    return needUpdate(kNtfys[INTFWIFIAP_NTFY_ASSOCDEVACTIVELISTCHANGED], u, v1, v2, v3);
}
INTFWIFIAP_API int32_t intfWifiAp_modCliNtfyUser_recvMsg_assocDevActiveListChanged(
    ismUser_t u, void *v1, void *v2, void *v3, const char *bus, const char *user) {
    return modCliNtfyRecvMsg(kNtfys[INTFWIFIAP_NTFY_ASSOCDEVACTIVELISTCHANGED], u, v1, v2, v3, bus,
                             user);
}
INTFWIFIAP_API void intfWifiAp_recvReq_ntfyAssocDevActiveListChanged(ismMsg_t msg, void *ctx,
                                                                     void *m, uintptr_t ref) {
    if (auto *p = recvReq(kNtfys[INTFWIFIAP_NTFY_ASSOCDEVACTIVELISTCHANGED], msg, ctx, m))
        as<intfWifiAp_ntfyMthd_assocDevList_t>(m)(msg, ref, static_cast<const assocDevList *>(p));
}

// ---- WpsStatus: wpsStatusStruct

INTFWIFIAP_API void intfWifiAp_sendReq_ntfyWpsStatus(ismUser_t u, const char *bus,
                                                     const char *user,
                                                     const wpsStatusStruct *ntfy) {
    sendNtfy(kNtfys[INTFWIFIAP_NTFY_WPSSTATUS], u, bus, user, {ntfy});
}
INTFWIFIAP_API int32_t intfWifiAp_modSrv_needUpdate_ntfyWpsStatus(ismUser_t u, void *v1,
                                                                  void *v2, void *v3) {
    return needUpdate(kNtfys[INTFWIFIAP_NTFY_WPSSTATUS], u, v1, v2, v3);
}
INTFWIFIAP_API int32_t intfWifiAp_modCliNtfyUser_recvMsg_wpsStatus(
    ismUser_t u, void *v1, void *v2, void *v3, const char *bus, const char *user) {
    return modCliNtfyRecvMsg(kNtfys[INTFWIFIAP_NTFY_WPSSTATUS], u, v1, v2, v3, bus, user);
}
INTFWIFIAP_API void intfWifiAp_recvReq_ntfyWpsStatus(ismMsg_t msg, void *ctx, void *m,
                                                     uintptr_t ref) {
    if (auto *p = recvReq(kNtfys[INTFWIFIAP_NTFY_WPSSTATUS], msg, ctx, m))
        as<intfWifiAp_ntfyMthd_wpsStatusStruct_t>(m)(msg, ref,
                                                     static_cast<const wpsStatusStruct *>(p));
}

// ---- EncryptionStatus: a bare word, by value

INTFWIFIAP_API void intfWifiAp_sendReq_ntfyEncryptionStatus(ismUser_t u, const char *bus,
                                                            const char *user, uint32_t encStatus) {
    sendNtfy(kNtfys[INTFWIFIAP_NTFY_ENCRYPTIONSTATUS], u, bus, user, {&encStatus});
}
INTFWIFIAP_API int32_t intfWifiAp_modSrv_needUpdate_ntfyEncryptionStatus(ismUser_t u, void *v1,
                                                                         void *v2, void *v3) {
    return needUpdate(kNtfys[INTFWIFIAP_NTFY_ENCRYPTIONSTATUS], u, v1, v2, v3);
}
INTFWIFIAP_API int32_t intfWifiAp_modCliNtfyUser_recvMsg_encryptionStatus(
    ismUser_t u, void *v1, void *v2, void *v3, const char *bus, const char *user) {
    return modCliNtfyRecvMsg(kNtfys[INTFWIFIAP_NTFY_ENCRYPTIONSTATUS], u, v1, v2, v3, bus, user);
}
INTFWIFIAP_API void intfWifiAp_recvReq_ntfyEncryptionStatus(ismMsg_t msg, void *ctx, void *m,
                                                            uintptr_t ref) {
    if (auto *p = recvReq(kNtfys[INTFWIFIAP_NTFY_ENCRYPTIONSTATUS], msg, ctx, m))
        as<intfWifiAp_ntfyMthd_encStatus_t>(m)(msg, ref,
                                               static_cast<const c::EncStatus *>(p)->encStatus);
}

// ---- DisassocEvent: assocDevInfo (no need-update)

INTFWIFIAP_API void intfWifiAp_sendReq_ntfyDisassocEvent(ismUser_t u, const char *bus,
                                                         const char *user,
                                                         const assocDevInfo *ntfy) {
    sendNtfy(kNtfys[INTFWIFIAP_NTFY_DISASSOCEVENT], u, bus, user, {ntfy});
}
INTFWIFIAP_API int32_t intfWifiAp_modCliNtfyUser_recvMsg_disassocEvent(
    ismUser_t u, void *v1, void *v2, void *v3, const char *bus, const char *user) {
    return modCliNtfyRecvMsg(kNtfys[INTFWIFIAP_NTFY_DISASSOCEVENT], u, v1, v2, v3, bus, user);
}
INTFWIFIAP_API void intfWifiAp_recvReq_ntfyDisassocEvent(ismMsg_t msg, void *ctx, void *m,
                                                         uintptr_t ref) {
    if (auto *p = recvReq(kNtfys[INTFWIFIAP_NTFY_DISASSOCEVENT], msg, ctx, m))
        as<intfWifiAp_ntfyMthd_assocDevInfo_t>(m)(msg, ref, static_cast<const assocDevInfo *>(p));
}

}  // extern "C"
