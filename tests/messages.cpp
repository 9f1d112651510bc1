#include "messages.h"

#include <map>

#include "codec.h"

namespace mt {

Seen g_method, g_callback;
bool g_answerInMethod = false;

namespace {

namespace c = wifiap::codec;
using ct::scalar;
using ct::text;
using U = ismUser_t;
using B = const char *;
using M = ismMsg_t;

// Records are compared as the codec writes them.
Bytes enc(const c::Ops &ops, const void *p) {
    Bytes b(ops.size(p));
    uint8_t *cur = b.data();
    ops.write(p, &cur);
    return b;
}
void saw(Seen &s, M msg, uintptr_t ref, Bytes p, const void *at = nullptr) {
    s = {s.calls + 1, msg, ref, std::move(p), at};
}
void served(M msg, uintptr_t ref, Bytes p, const void *at = nullptr) {
    saw(g_method, msg, ref, std::move(p), at);
    if (g_answerInMethod && reinterpret_cast<const Message *>(ref)->twoWay)
        reinterpret_cast<const Message *>(ref)->answer(msg, kSample);
}

// Server methods (m), client methods and callbacks (rec: into S), by payload.
void mVoid(M m, uintptr_t r) { served(m, r, {}); }
void mText(M m, uintptr_t r, B t) { served(m, r, text(3, t), t); }
void mText2(M m, uintptr_t r, B a, B b) { served(m, r, text(3, a) + text(4, b), a); }
template <const c::Ops &O, typename R>
void mRec(M m, uintptr_t r, const R *p) { served(m, r, enc(O, p), p); }
template <const c::Ops &O, typename R, Seen &S = g_callback>
void rec(M m, uintptr_t r, const R *p) { saw(S, m, r, enc(O, p), p); }
void nWord(M m, uintptr_t r, uint32_t v) { saw(g_method, m, r, scalar(3, v)); }
void cbWord(M m, uintptr_t r, uint32_t v) { saw(g_callback, m, r, scalar(3, v)); }
void cbCreate(M m, uintptr_t r, B a, B b, uint32_t v) {
    saw(g_callback, m, r, text(3, a) + text(4, b) + scalar(5, v), a);
}

// A sample record, alive until the end of the send.
template <typename R>
const R *ptr(const R &r) { return &r; }

const assocDevStatList *stats() {
    static auto *s = new assocDevStatList{2, "stats", {}};  // too big for a stack
    return s;
}
const assocDevList kDevs{2, {{"01:02:03:04:05:06", 1, "one"}, {"0a:0b:0c:0d:0e:0f", 2, "two"}},
                         "list", 3, "end"};

#define CMD(s, ...) \
    Message{#s, false, intfWifiAp_modSrv_recvMsg_##s, nullptr, nullptr, __VA_ARGS__}
#define NTFY(s, update, ...) \
    Message{#s, true, nullptr, intfWifiAp_modCliNtfyUser_recvMsg_##s, update, __VA_ARGS__}
#define UPDATE(S) intfWifiAp_modSrv_needUpdate_ntfy##S
#define SEND(call) [](U u, B b, B n, [[maybe_unused]] Mode mode) -> uint32_t { return intfWifiAp_sendReq_##call; }
#define PUBLISH(call) \
    [](U u, B b, B n, [[maybe_unused]] Mode mode) -> uint32_t { intfWifiAp_sendReq_ntfy##call; return 0; }
#define ANSWER(call) [](M msg, [[maybe_unused]] Mode mode) { intfWifiAp_sendRes_##call; }
// The client's callback, and a payload argument, as the mode has them.
#define CB(f) (mode == kNoCallback ? nullptr : (f))
#define P(p) (mode == kNull ? nullptr : (p))
#define FN(f) reinterpret_cast<void *>(f)

// Magics written out, not taken from the public header.
std::vector<Message> build() {
    std::vector<Message> v{
        CMD(configure, 0x20137855, 0, FN((mRec<c::kConf, conf>)),
            SEND(configure(u, CB(cbWord), kRef, b, n, P(ptr(conf{1, 2})))), scalar(3, 1) + scalar(4, 2),
            ANSWER(configure(msg, 7)), scalar(3, 7)),
        CMD(setBridgeAndIps, 0x37102445, 0, FN(mText2),
            SEND(setBridgeAndIps(u, b, n, P("br-lan"), P("192.168.1.1"))),
            text(3, "br-lan") + text(4, "192.168.1.1")),
        CMD(setIps, 0x37102446, 0, FN(mText), SEND(setIps(u, b, n, P("abc"))), text(3, "abc")),
        CMD(create, 0x73913232, 1, FN(mText2),
            SEND(create(u, CB(cbCreate), kRef, b, n, P("MySsid"), P("secret"))),
            text(3, "MySsid") + text(4, "secret"), ANSWER(create(msg, P("ap0"), P("wlan0-1"), 9)),
            text(3, "ap0") + text(4, "wlan0-1") + scalar(5, 9)),
        CMD(ssidinfo, 0x38192421, 0, FN(mText), SEND(ssidinfo(u, CB(cbWord), kRef, b, n, P("guest"))),
            text(3, "guest"), ANSWER(ssidinfo(msg, 4)), scalar(3, 4)),
        CMD(stop, 0x38192421, 0, FN(mVoid), SEND(stop(u, CB(cbWord), kRef, b, n)), {},
            ANSWER(stop(msg, 0x11)), scalar(3, 0x11)),
        CMD(startWPS, 0x93251950, 0, FN((mRec<c::kWpsInfoIn, wpsInfoIn>)),
            SEND(startWPS(u, CB((rec<c::kWpsInfoOut, wpsInfoOut>)), kRef, b, n, P(ptr(wpsInfoIn{5})))), scalar(3, 5),
            ANSWER(startWPS(msg, P(ptr(wpsInfoOut{6})))), scalar(3, 6)),
        CMD(startPhysicalWPS, 0x93251950, 0, FN((mRec<c::kWpsInfoIn, wpsInfoIn>)),
            SEND(startPhysicalWPS(u, CB((rec<c::kWpsInfoOut, wpsInfoOut>)), kRef, b, n,
                                  P(ptr(wpsInfoIn{5})))),
            scalar(3, 5), ANSWER(startPhysicalWPS(msg, P(ptr(wpsInfoOut{6})))), scalar(3, 6)),
        CMD(toogleWps, 0x93251942, 0, FN(mVoid), SEND(toogleWps(u, b, n)), {}),
        CMD(stopWps, 0x22110722, 0, FN(mVoid), SEND(stopWps(u, b, n)), {}),
        CMD(generatePinCodeWPS, 0x93251872, 0, FN(mVoid),
            SEND(generatePinCodeWPS(u, CB(cbWord), kRef, b, n)), {},
            ANSWER(generatePinCodeWPS(msg, 12345670)), scalar(3, 12345670)),
        CMD(toogleWifi, 0x93251942, 0, FN(mVoid), SEND(toogleWifi(u, b, n)), {}),
        CMD(sendAccountingRequest, 0x57102423, 0,
            FN((mRec<c::kAccountingParams, accountingParams>)),
            SEND(sendAccountingRequest(u, CB((rec<c::kAccountingResult, accountingResult>)), kRef,
                                       b, n,
                                       P(ptr(accountingParams{1, 2, "00:11:22:33:44:55", "acct",
                                                              "radius", "user@example",
                                                              "id-7"})))),
            scalar(3, 1) + scalar(4, 2) + text(5, "00:11:22:33:44:55") + text(6, "acct") +
                text(7, "radius") + text(8, "user@example") + text(9, "id-7"),
            ANSWER(sendAccountingRequest(msg, P(ptr(accountingResult{7, "accepted", 8})))),
            scalar(3, 7) + text(4, "accepted") + scalar(5, 8)),
        CMD(getAssocDevStats, 0x57102427, 0, FN(mVoid),
            SEND(getAssocDevStats(u, CB((rec<c::kAssocDevStatList, assocDevStatList>)), kRef, b, n)), {},
            ANSWER(getAssocDevStats(msg, P(stats()))), enc(c::kAssocDevStatList, stats())),
        CMD(forceApplyMacFilterChange, 0x57102428, 0, FN(mVoid),
            SEND(forceApplyMacFilterChange(u, b, n)), {}),
        NTFY(onProbeReceived, UPDATE(OnProbeReceived), 0x20179026, 0,
             FN((rec<c::kProbeRequest, probeRequest, g_method>)),
             PUBLISH(OnProbeReceived(u, b, n, P(ptr(probeRequest{"00:11:22:33:44:55", "ssid", 42})))),
             text(3, "00:11:22:33:44:55") + text(4, "ssid") + scalar(5, 42)),
        NTFY(assocDevActiveListChanged, UPDATE(AssocDevActiveListChanged), 0x13531940, 1,
             FN((rec<c::kAssocDevList, assocDevList, g_method>)),
             PUBLISH(AssocDevActiveListChanged(u, b, n, P(&kDevs))), enc(c::kAssocDevList, &kDevs)),
        NTFY(wpsStatus, UPDATE(WpsStatus), 0x13531941, 2,
             FN((rec<c::kWpsStatusStruct, wpsStatusStruct, g_method>)),
             PUBLISH(WpsStatus(u, b, n, P(ptr(wpsStatusStruct{3, "aa:bb"})))),
             scalar(3, 3) + text(4, "aa:bb")),
        NTFY(encryptionStatus, UPDATE(EncryptionStatus), 0x13531942, 1, FN(nWord),
             PUBLISH(EncryptionStatus(u, b, n, 7)), scalar(3, 7)),
        NTFY(disassocEvent, nullptr, 0x13531943, 1,
             FN((rec<c::kAssocDevInfo, assocDevInfo, g_method>)),
             PUBLISH(DisassocEvent(u, b, n, P(ptr(assocDevInfo{"66:55", 255, "left"})))),
             text(3, "66:55") + scalar(4, 255) + text(5, "left")),
    };
    uint32_t rows[2] = {0, 0};
    for (Message &m : v) m.twoWay = bool(m.answerWith), m.index = rows[m.ntfy]++;
    const std::map<std::string, std::pair<const char *, const char *>> nulls = {
        {"configure", {"conf", ""}},
        {"setBridgeAndIps", {"bridge", ""}},
        {"setIps", {"ips", ""}},
        {"create", {"text1", "text1"}},
        {"ssidinfo", {"text", ""}},
        {"startWPS", {"wpsInfoIn", "wpsInfoOut"}},
        {"startPhysicalWPS", {"wpsInfoIn", "wpsInfoOut"}},
        {"sendAccountingRequest", {"accountingParams", "accountingResult"}},
        {"getAssocDevStats", {"", "assocDevStatList"}},
        {"onProbeReceived", {"probeRequest", ""}},
        {"assocDevActiveListChanged", {"assocDevList", ""}},
        {"wpsStatus", {"wpsStatusStruct", ""}},
        {"disassocEvent", {"assocDevInfo", ""}},
    };
    for (Message &m : v)
        if (auto it = nulls.find(m.name); it != nulls.end())
            m.nullReq = it->second.first, m.nullRes = it->second.second;
    return v;
}

}  // namespace

const std::vector<Message> &messages() {
    static const std::vector<Message> v = build();
    return v;
}
std::vector<Message> commands() {
    return {messages().begin(), messages().begin() + INTFWIFIAP_CMD_COUNT};
}
std::vector<Message> notifications() {
    return {messages().begin() + INTFWIFIAP_CMD_COUNT, messages().end()};
}

}  // namespace mt
