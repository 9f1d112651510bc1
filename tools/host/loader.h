// The library as a host sees it: opened by name, every function found by name.
#pragma once

#include <stdint.h>

#include <string>

#include "intfWifiAp.h"

namespace wifiap::host {

// The functions a host calls by name; the per-message dispatch
// functions are found from the rows of the message list.
#define HOST_FUNCTIONS(X)                                                                    \
    X(intfWifiap_initialize) X(intfWifiAp_regUser_msgMngt) X(intfWifiAp_getNtfyIntfNum)      \
    X(intfWifiAp_sendReq_configure) X(intfWifiAp_sendRes_configure)                          \
    X(intfWifiAp_sendReq_setBridgeAndIps) X(intfWifiAp_sendReq_setIps)                       \
    X(intfWifiAp_sendReq_create) X(intfWifiAp_sendRes_create)                                \
    X(intfWifiAp_sendReq_ssidinfo) X(intfWifiAp_sendRes_ssidinfo)                            \
    X(intfWifiAp_sendReq_stop) X(intfWifiAp_sendRes_stop)                                    \
    X(intfWifiAp_sendReq_startWPS) X(intfWifiAp_sendRes_startWPS)                            \
    X(intfWifiAp_sendReq_startPhysicalWPS) X(intfWifiAp_sendRes_startPhysicalWPS)            \
    X(intfWifiAp_sendReq_toogleWps) X(intfWifiAp_sendReq_stopWps)                            \
    X(intfWifiAp_sendReq_generatePinCodeWPS) X(intfWifiAp_sendRes_generatePinCodeWPS)        \
    X(intfWifiAp_sendReq_toogleWifi) X(intfWifiAp_sendReq_forceApplyMacFilterChange)         \
    X(intfWifiAp_sendReq_sendAccountingRequest) X(intfWifiAp_sendRes_sendAccountingRequest)  \
    X(intfWifiAp_sendReq_getAssocDevStats) X(intfWifiAp_sendRes_getAssocDevStats)            \
    X(intfWifiAp_sendReq_ntfyOnProbeReceived) X(intfWifiAp_sendReq_ntfyAssocDevActiveListChanged) \
    X(intfWifiAp_sendReq_ntfyWpsStatus) X(intfWifiAp_sendReq_ntfyEncryptionStatus)           \
    X(intfWifiAp_sendReq_ntfyDisassocEvent)

using SrvRecv = int32_t (*)(ismUser_t, void *, void *, void *);
using CliRecv = int32_t (*)(ismUser_t, void *, void *, void *, const char *, const char *);

struct Api {
#define MEMBER(n) decltype(&::n) n;
    HOST_FUNCTIONS(MEMBER)
#undef MEMBER
    SrvRecv modSrv[INTFWIFIAP_CMD_COUNT];
    CliRecv modCli[INTFWIFIAP_NTFY_COUNT];
    SrvRecv needUpdate[INTFWIFIAP_NTFY_COUNT];  // DisassocEvent has none
};

// Opens the library (`given` first, if any) and fills `api`; an error text,
// or empty.
std::string load(Api &api, const std::string &given, void **handle);

// The host's half of dispatch, registered with the Api as its reference: the
// framework's values go to the row's function.
int32_t dispatch(void *api, ismUser_t user, uint32_t kind, uint32_t index, void *v1, void *v2,
                 void *v3, const char *bus, const char *name);

// Registers `user` with the library, with `dispatch` for its messages.
void registerUser(Api &api, ismUser_t user);

// A function as the framework takes it: an untyped pointer.
template <typename F>
void *fn(F f) {
    return reinterpret_cast<void *>(f);
}

}  // namespace wifiap::host
