// The five notifications: a descriptor each, and the typed ends that differ.
#include "exchange.h"

using namespace wifiap;
using namespace wifiap::msg;
namespace c = wifiap::codec;

namespace {

#define MAGIC(N) INTFWIFIAP_MAGIC_MSGNTFY_##N, "INTFWIFIAP_MAGIC_MSGNTFY_" #N

constexpr Desc ntfy(const char *sfx, const char *typedSfx, uint32_t index, uint32_t magic,
                    const char *magicName, uint16_t version, const c::Ops *payload) {
    return Desc{sfx, typedSfx, index, magic, magicName, version, true, false, payload, nullptr};
}

const Desc kOnProbeReceived = ntfy("onProbeReceived", "ntfyOnProbeReceived", 0,
                                   MAGIC(ONPROBERECEIVED), 0, &c::kProbeRequest);
const Desc kAssocDevActiveListChanged =
    ntfy("assocDevActiveListChanged", "ntfyAssocDevActiveListChanged", 1,
         MAGIC(ASSOCDEVACTIVELISTCHANGED), 1, &c::kAssocDevList);
const Desc kWpsStatus =
    ntfy("wpsStatus", "ntfyWpsStatus", 2, MAGIC(WPSSTATUS), 2, &c::kWpsStatusStruct);
const Desc kEncryptionStatus = ntfy("encryptionStatus", "ntfyEncryptionStatus", 3,
                                    MAGIC(ENCRYPTIONSTATUS), 1, &c::kEncStatus);
const Desc kDisassocEvent =
    ntfy("disassocEvent", "ntfyDisassocEvent", 4, MAGIC(DISASSOCEVENT), 1, &c::kAssocDevInfo);

template <typename M>
M as(void *f) {
    return reinterpret_cast<M>(f);
}

}  // namespace

// Everything a notification has but its publishing and its client method's call.
#define NTFY_COMMON(D, Name, name)                                                               \
    INTFWIFIAP_API int32_t intfWifiAp_modCliNtfyUser_recvMsg_##name(                             \
        ismUser_t u, void *v1, void *v2, void *v3, const char *bus, const char *user) {          \
        return modCliNtfyRecvMsg(D, u, v1, v2, v3, bus, user);                                   \
    }                                                                                            \
    WIFIAP_BODY_CALLBACKS(D, msgNtfy, name)

// A notification whose payload is a record: published and received by address.
#define NTFY_RECORD(D, Name, name, R)                                                            \
    NTFY_COMMON(D, Name, name)                                                                   \
    INTFWIFIAP_API void intfWifiAp_sendReq_ntfy##Name(ismUser_t u, const char *bus,              \
                                                      const char *user, const R *rec) {          \
        sendNtfy(D, u, bus, user, {rec});                                                        \
    }                                                                                            \
    INTFWIFIAP_API void intfWifiAp_recvReq_ntfy##Name(ismMsg_t msg, void *ctx, void *m,         \
                                                      uintptr_t ref) {                           \
        if (const void *p = recvReq(D, msg, ctx, m))                                             \
            as<intfWifiAp_ntfyMthd_##R##_t>(m)(msg, ref, static_cast<const R *>(p));             \
    }

#define NEED_UPDATE(D, Name)                                                                     \
    INTFWIFIAP_API int32_t intfWifiAp_modSrv_needUpdate_ntfy##Name(ismUser_t u, void *v1,        \
                                                                   void *v2, void *v3) {         \
        return needUpdate(D, u, v1, v2, v3);                                                     \
    }

extern "C" {

NTFY_RECORD(kOnProbeReceived, OnProbeReceived, onProbeReceived, probeRequest)
NTFY_RECORD(kAssocDevActiveListChanged, AssocDevActiveListChanged, assocDevActiveListChanged,
            assocDevList)
NTFY_RECORD(kWpsStatus, WpsStatus, wpsStatus, wpsStatusStruct)
NTFY_RECORD(kDisassocEvent, DisassocEvent, disassocEvent, assocDevInfo)
NTFY_COMMON(kEncryptionStatus, EncryptionStatus, encryptionStatus)

NEED_UPDATE(kOnProbeReceived, OnProbeReceived)
NEED_UPDATE(kAssocDevActiveListChanged, AssocDevActiveListChanged)
NEED_UPDATE(kWpsStatus, WpsStatus)
NEED_UPDATE(kEncryptionStatus, EncryptionStatus)

// EncryptionStatus carries a bare word instead of a record.
INTFWIFIAP_API void intfWifiAp_sendReq_ntfyEncryptionStatus(ismUser_t u, const char *bus,
                                                            const char *user, uint32_t encStatus) {
    sendNtfy(kEncryptionStatus, u, bus, user, {&encStatus});
}
INTFWIFIAP_API void intfWifiAp_recvReq_ntfyEncryptionStatus(ismMsg_t msg, void *ctx, void *m,
                                                            uintptr_t ref) {
    if (const void *p = recvReq(kEncryptionStatus, msg, ctx, m))
        as<intfWifiAp_ntfyMthd_encStatus_t>(m)(msg, ref,
                                               static_cast<const c::EncStatus *>(p)->encStatus);
}

}  // extern "C"
