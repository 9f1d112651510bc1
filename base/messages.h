// The twenty messages, each in one row; whatever enumerates messages (the
// framework tables, the exchange descriptors, the decoder, the fuzzer, the
// demo) expands this list. Include it after intfWifiAp.h.
//
// A command's row: its name as the table has it, that name as function names
// spell it and in capitals (its constants' suffix), the body version, the
// request payload and the response payload. A notification's row: the same,
// with its payload and whether it has a need-update function. Payloads are
// the codec's names; None is a body of header elements alone. A command whose
// response is None has no response: it is one-way. Row order is table order.
#pragma once

#define WIFIAP_MESSAGES(CMD, NTFY)                                                              \
    CMD(Configure, configure, CONFIGURE, 0, Conf, Result)                                      \
    CMD(SetBridgeAndIps, setBridgeAndIps, SETBRIDGEANDIPS, 0, BridgeAndIps, None)              \
    CMD(SetIps, setIps, SETIPS, 0, Ips, None)                                                  \
    CMD(Create, create, CREATE, 1, CreateReq, CreateRes)                                       \
    CMD(Ssidinfo, ssidinfo, SSIDINFO, 0, SsidText, Result)                                     \
    CMD(Stop, stop, STOP, 0, None, Result)                                                     \
    CMD(StartWPS, startWPS, STARTWPS, 0, WpsInfoIn, WpsInfoOut)                                \
    CMD(StartPhysicalWPS, startPhysicalWPS, STARTPHYSICALWPS, 0, WpsInfoIn, WpsInfoOut)        \
    CMD(ToogleWps, toogleWps, TOOGLEWPS, 0, None, None)                                        \
    CMD(StopWps, stopWps, STOPWPS, 0, None, None)                                              \
    CMD(GeneratePinCodeWPS, generatePinCodeWPS, GENERATEPINCODEWPS, 0, None, Result)           \
    CMD(ToogleWifi, toogleWifi, TOOGLEWIFI, 0, None, None)                                     \
    CMD(SendAccountingRequest, sendAccountingRequest, SENDACCOUNTINGREQUEST, 0,                \
        AccountingParams, AccountingResult)                                                    \
    CMD(GetAssocDevStats, getAssocDevStats, GETASSOCDEVSTATS, 0, None, AssocDevStatList)       \
    CMD(ForceApplyMacFilterChange, forceApplyMacFilterChange, FORCEAPPLYMACFILTERCHANGE, 0,    \
        None, None)                                                                            \
    NTFY(OnProbeReceived, onProbeReceived, ONPROBERECEIVED, 0, ProbeRequest, true)             \
    NTFY(AssocDevActiveListChanged, assocDevActiveListChanged, ASSOCDEVACTIVELISTCHANGED, 1,   \
         AssocDevList, true)                                                                   \
    NTFY(WpsStatus, wpsStatus, WPSSTATUS, 2, WpsStatusStruct, true)                            \
    NTFY(EncryptionStatus, encryptionStatus, ENCRYPTIONSTATUS, 1, EncStatus, true)             \
    NTFY(DisassocEvent, disassocEvent, DISASSOCEVENT, 1, AssocDevInfo, false)

// Rows in table order, as many as the public header counts: a row missing or
// out of place does not compile.
namespace wifiap::messages_check {
#define WIFIAP_CHECK_CMD(N, s, U, ...) INTFWIFIAP_CMD_##U,
#define WIFIAP_CHECK_NTFY(N, s, U, ...) INTFWIFIAP_NTFY_##U,
#define WIFIAP_SKIP(...)
inline constexpr int kCmd[] = {WIFIAP_MESSAGES(WIFIAP_CHECK_CMD, WIFIAP_SKIP)};
inline constexpr int kNtfy[] = {WIFIAP_MESSAGES(WIFIAP_SKIP, WIFIAP_CHECK_NTFY)};
#undef WIFIAP_CHECK_CMD
#undef WIFIAP_CHECK_NTFY
#undef WIFIAP_SKIP
template <size_t N>
constexpr bool inOrder(const int (&rows)[N]) {
    for (size_t i = 0; i < N; ++i)
        if (rows[i] != int(i)) return false;
    return true;
}
static_assert(sizeof kCmd / sizeof kCmd[0] == INTFWIFIAP_CMD_COUNT && inOrder(kCmd));
static_assert(sizeof kNtfy / sizeof kNtfy[0] == INTFWIFIAP_NTFY_COUNT && inOrder(kNtfy));
}  // namespace wifiap::messages_check
