#include "messages.h"

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
void saw(Seen &s, M msg, uintptr_t ref, Bytes p) { s = {s.calls + 1, msg, ref, std::move(p)}; }
void served(M msg, uintptr_t ref, Bytes p) {
    saw(g_method, msg, ref, std::move(p));
    if (g_answerInMethod && reinterpret_cast<const Message *>(ref)->twoWay)
        reinterpret_cast<const Message *>(ref)->answer(msg, kSample);
}

// Server methods (m), client methods and callbacks (rec: into S), by payload.
void mVoid(M m, uintptr_t r) { served(m, r, {}); }
void mText(M m, uintptr_t r, B t) { served(m, r, text(3, t)); }
void mText2(M m, uintptr_t r, B a, B b) { served(m, r, text(3, a) + text(4, b)); }
template <const c::Ops &O, typename R>
void mRec(M m, uintptr_t r, const R *p) { served(m, r, enc(O, p)); }
template <const c::Ops &O, typename R, Seen &S = g_callback>
void rec(M m, uintptr_t r, const R *p) { saw(S, m, r, enc(O, p)); }
void nWord(M m, uintptr_t r, uint32_t v) { saw(g_method, m, r, scalar(3, v)); }
void cbWord(M m, uintptr_t r, uint32_t v) { saw(g_callback, m, r, scalar(3, v)); }
void cbCreate(M m, uintptr_t r, B a, B b, uint32_t v) {
    saw(g_callback, m, r, text(3, a) + text(4, b) + scalar(5, v));
}

// A sample record, alive until the end of the send.
template <typename R> const R *ptr(const R &r) { return &r; }

const assocDevStatList *stats() {
    static auto *s = new assocDevStatList{2, "stats", {}};  // too big for a stack
    return s;
}
// Texts longer than their fields arrive cut to the capacity less one.
const std::string kLong(85, 's');
const assocDevList kDevs{2, {{"01:02:03:04:05:06", 1, "one"}, {"0a:0b:0c:0d:0e:0f", 2, "two"}},
                         "list", 3, "end"};

#define CMD(s) .name = #s, .modSrv = intfWifiAp_modSrv_recvMsg_##s
#define NTFY(s) .name = #s, .ntfy = true, .modCli = intfWifiAp_modCliNtfyUser_recvMsg_##s
#define UPDATE(S) .needUpdate = intfWifiAp_modSrv_needUpdate_ntfy##S
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
        {CMD(configure), .magic = 0x20137855, .method = FN((mRec<c::kConf, conf>)),
         .sendWith = SEND(configure(u, CB(cbWord), kRef, b, n, P(ptr(conf{1, 2})))),
         .request = scalar(3, 1) + scalar(4, 2), .nullReq = "conf",
         .answerWith = ANSWER(configure(msg, 7)), .response = scalar(3, 7)},
        {CMD(setBridgeAndIps), .magic = 0x37102445, .method = FN(mText2),
         .sendWith = SEND(setBridgeAndIps(u, b, n, P("br-lan"), P("192.168.1.1"))),
         .request = text(3, "br-lan") + text(4, "192.168.1.1"), .nullReq = "bridge"},
        {CMD(setIps), .magic = 0x37102446, .method = FN(mText),
         .sendWith = SEND(setIps(u, b, n, P("192.168.100.200/24"))),
         .request = text(3, "192.168.100.200"), .nullReq = "ips"},
        {CMD(create), .magic = 0x73913232, .version = 1, .method = FN(mText2),
         .sendWith = SEND(create(u, CB(cbCreate), kRef, b, n, P(kLong.c_str()), P("secret"))),
         .request = text(3, kLong.substr(0, 79)) + text(4, "secret"), .nullReq = "text1",
         .answerWith = ANSWER(create(msg, P("ap0"), P("wlan0-1-with-a-long-name"), 9)),
         .response = text(3, "ap0") + text(4, "wlan0-1-with-a-long") + scalar(5, 9),
         .nullRes = "text1"},
        {CMD(ssidinfo), .magic = 0x38192421, .method = FN(mText),
         .sendWith = SEND(ssidinfo(u, CB(cbWord), kRef, b, n, P("guest"))),
         .request = text(3, "guest"), .nullReq = "text", .answerWith = ANSWER(ssidinfo(msg, 4)),
         .response = scalar(3, 4)},
        {CMD(stop), .magic = 0x38192421, .method = FN(mVoid),
         .sendWith = SEND(stop(u, CB(cbWord), kRef, b, n)),
         .answerWith = ANSWER(stop(msg, 0x11)), .response = scalar(3, 0x11)},
        {CMD(startWPS), .magic = 0x93251950, .method = FN((mRec<c::kWpsInfoIn, wpsInfoIn>)),
         .sendWith = SEND(startWPS(u, CB((rec<c::kWpsInfoOut, wpsInfoOut>)), kRef, b, n,
                                   P(ptr(wpsInfoIn{5})))),
         .request = scalar(3, 5), .nullReq = "wpsInfoIn",
         .answerWith = ANSWER(startWPS(msg, P(ptr(wpsInfoOut{6})))), .response = scalar(3, 6),
         .nullRes = "wpsInfoOut"},
        {CMD(startPhysicalWPS), .magic = 0x93251950, .method = FN((mRec<c::kWpsInfoIn, wpsInfoIn>)),
         .sendWith = SEND(startPhysicalWPS(u, CB((rec<c::kWpsInfoOut, wpsInfoOut>)), kRef, b, n,
                                           P(ptr(wpsInfoIn{8})))),
         .request = scalar(3, 8), .nullReq = "wpsInfoIn",
         .answerWith = ANSWER(startPhysicalWPS(msg, P(ptr(wpsInfoOut{9})))),
         .response = scalar(3, 9), .nullRes = "wpsInfoOut"},
        {CMD(toogleWps), .magic = 0x93251942, .method = FN(mVoid), .sendWith = SEND(toogleWps(u, b, n))},
        {CMD(stopWps), .magic = 0x22110722, .method = FN(mVoid), .sendWith = SEND(stopWps(u, b, n))},
        {CMD(generatePinCodeWPS), .magic = 0x93251872, .method = FN(mVoid),
         .sendWith = SEND(generatePinCodeWPS(u, CB(cbWord), kRef, b, n)),
         .answerWith = ANSWER(generatePinCodeWPS(msg, 12345670)), .response = scalar(3, 12345670)},
        {CMD(toogleWifi), .magic = 0x93251942, .method = FN(mVoid),
         .sendWith = SEND(toogleWifi(u, b, n))},
        {CMD(sendAccountingRequest), .magic = 0x57102423,
         .method = FN((mRec<c::kAccountingParams, accountingParams>)),
         .sendWith = SEND(sendAccountingRequest(
             u, CB((rec<c::kAccountingResult, accountingResult>)), kRef, b, n,
             P(ptr(accountingParams{1, 2, "00:11:22:33:44:55", "acct", "radius", "user@example",
                                    "id-7"})))),
         .request = scalar(3, 1) + scalar(4, 2) + text(5, "00:11:22:33:44:55") + text(6, "acct") +
                    text(7, "radius") + text(8, "user@example") + text(9, "id-7"),
         .nullReq = "accountingParams",
         .answerWith = ANSWER(sendAccountingRequest(msg, P(ptr(accountingResult{7, "accepted", 8})))),
         .response = scalar(3, 7) + text(4, "accepted") + scalar(5, 8),
         .nullRes = "accountingResult"},
        {CMD(getAssocDevStats), .magic = 0x57102427, .method = FN(mVoid),
         .sendWith = SEND(getAssocDevStats(u, CB((rec<c::kAssocDevStatList, assocDevStatList>)), kRef, b, n)),
         .answerWith = ANSWER(getAssocDevStats(msg, P(stats()))),
         .response = enc(c::kAssocDevStatList, stats()), .nullRes = "assocDevStatList"},
        {CMD(forceApplyMacFilterChange), .magic = 0x57102428, .method = FN(mVoid),
         .sendWith = SEND(forceApplyMacFilterChange(u, b, n))},
        {NTFY(onProbeReceived), UPDATE(OnProbeReceived), .magic = 0x20179026,
         .method = FN((rec<c::kProbeRequest, probeRequest, g_method>)),
         .sendWith = PUBLISH(OnProbeReceived(u, b, n, P(ptr(probeRequest{"00:11:22:33:44:55", "ssid", 42})))),
         .request = text(3, "00:11:22:33:44:55") + text(4, "ssid") + scalar(5, 42),
         .nullReq = "probeRequest"},
        {NTFY(assocDevActiveListChanged), UPDATE(AssocDevActiveListChanged), .magic = 0x13531940,
         .version = 1, .method = FN((rec<c::kAssocDevList, assocDevList, g_method>)),
         .sendWith = PUBLISH(AssocDevActiveListChanged(u, b, n, P(&kDevs))),
         .request = enc(c::kAssocDevList, &kDevs), .nullReq = "assocDevList"},
        {NTFY(wpsStatus), UPDATE(WpsStatus), .magic = 0x13531941, .version = 2,
         .method = FN((rec<c::kWpsStatusStruct, wpsStatusStruct, g_method>)),
         .sendWith = PUBLISH(WpsStatus(u, b, n, P(ptr(wpsStatusStruct{3, "aa:bb"})))),
         .request = scalar(3, 3) + text(4, "aa:bb"), .nullReq = "wpsStatusStruct"},
        {NTFY(encryptionStatus), UPDATE(EncryptionStatus), .magic = 0x13531942, .version = 1,
         .method = FN(nWord), .sendWith = PUBLISH(EncryptionStatus(u, b, n, 7)),
         .request = scalar(3, 7)},
        {NTFY(disassocEvent), .magic = 0x13531943, .version = 1,
         .method = FN((rec<c::kAssocDevInfo, assocDevInfo, g_method>)),
         .sendWith = PUBLISH(DisassocEvent(u, b, n, P(ptr(assocDevInfo{"66:55", 255, "left"})))),
         .request = text(3, "66:55") + scalar(4, 255) + text(5, "left"), .nullReq = "assocDevInfo"},
    };
    uint32_t rows[2] = {0, 0};
    for (Message &m : v) m.twoWay = bool(m.answerWith), m.index = rows[m.ntfy]++;
    return v;
}

}  // namespace

const std::vector<Message> &messages() {
    static const std::vector<Message> v = build();
    return v;
}
std::vector<Message> commands() { return {messages().begin(), messages().begin() + INTFWIFIAP_CMD_COUNT}; }
std::vector<Message> notifications() { return {messages().begin() + INTFWIFIAP_CMD_COUNT, messages().end()}; }

}  // namespace mt
