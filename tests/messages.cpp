#include "messages.h"

#include <stdlib.h>
#include <string.h>

#include <random>

#include "codec.h"

namespace mt {

Seen g_method, g_callback;
bool g_answerInMethod = false;

namespace {

namespace c = wifiap::codec;
using ct::scalar;
using ct::text;

Bytes enc(const c::Ops &ops, const void *p) {
    Bytes b(ops.size(p));
    uint8_t *cur = b.data();
    ops.write(p, &cur);
    return b;
}

void saw(Seen &s, ismMsg_t msg, uintptr_t ref, Bytes payload) {
    ++s.calls;
    s.msg = msg;
    s.ref = ref;
    s.payload = std::move(payload);
}

// A server method records its request, then answers when asked to.
void served(ismMsg_t msg, uintptr_t ref, Bytes payload) {
    saw(g_method, msg, ref, std::move(payload));
    const Message *m = reinterpret_cast<const Message *>(ref);
    if (g_answerInMethod && m->twoWay) m->answer(msg);
}

// Server methods, by payload.
void mVoid(ismMsg_t m, uintptr_t r) { served(m, r, {}); }
void mText(ismMsg_t m, uintptr_t r, const char *t) { served(m, r, text(3, t)); }
void mText2(ismMsg_t m, uintptr_t r, const char *a, const char *b) {
    served(m, r, text(3, a) + text(4, b));
}
template <const c::Ops &O, typename R>
void mRecord(ismMsg_t m, uintptr_t r, const R *p) {
    served(m, r, enc(O, p));
}

// Client callbacks of two-way commands, and client methods of notifications.
void cbResult(ismMsg_t m, uintptr_t r, uint32_t v) { saw(g_callback, m, r, scalar(3, v)); }
void cbCreate(ismMsg_t m, uintptr_t r, const char *a, const char *b, uint32_t v) {
    saw(g_callback, m, r, text(3, a) + text(4, b) + scalar(5, v));
}
template <const c::Ops &O, typename R>
void cbRecord(ismMsg_t m, uintptr_t r, const R *p) {
    saw(g_callback, m, r, enc(O, p));
}
template <const c::Ops &O, typename R>
void nRecord(ismMsg_t m, uintptr_t r, const R *p) {
    saw(g_method, m, r, enc(O, p));
}
void nEnc(ismMsg_t m, uintptr_t r, uint32_t v) { saw(g_method, m, r, scalar(3, v)); }

template <typename F>
void *fn(F f) {
    return reinterpret_cast<void *>(f);
}

// Sample records.
const conf kConfSample{1, 2};
const wpsInfoIn kWpsIn{5};
const wpsInfoOut kWpsOut{6};
const accountingParams kAcctIn{1, 2, "00:11:22:33:44:55", "acct", "radius", "user@example",
                               "session-7"};
const accountingResult kAcctOut{7, "accepted", 8};
const probeRequest kProbe{"00:11:22:33:44:55", "probe-ssid", 42};
const wpsStatusStruct kWpsStatus{3, "aa:bb:cc:dd:ee:ff"};
const assocDevInfo kDisassoc{"66:55:44:33:22:11", 255, "left"};

// Large samples, filled once with random valid contents.
template <typename R>
const R &randomRecord(const char *name, uint32_t items) {
    static R *r = [&] {
        R *p = new R();
        std::mt19937 rng(7);
        ct::randomFill(ct::record(name), p, rng, items);
        return p;
    }();
    return *r;
}
const assocDevStatList &stats() { return randomRecord<assocDevStatList>("assocDevStatList", 2); }
const assocDevList &devList() { return randomRecord<assocDevList>("assocDevList", 3); }

std::vector<Message> build() {
    using U = ismUser_t;
    using B = const char *;
    std::vector<Message> v;
    auto cmd = [&](std::string name, uint32_t index, uint32_t magic, std::string magicName,
                   uint16_t version, bool twoWay) -> Message & {
        v.push_back(Message{name, name, false, index, magic, "INTFWIFIAP_MAGIC_MSGCMD_" + magicName,
                            version, twoWay, {}, {}, {}, {}, nullptr});
        return v.back();
    };
    auto ntfy = [&](std::string name, std::string Name, uint32_t index, uint32_t magic,
                    std::string magicName, uint16_t version) -> Message & {
        v.push_back(Message{name, "ntfy" + Name, true, index, magic,
                            "INTFWIFIAP_MAGIC_MSGNTFY_" + magicName, version, false, {}, {}, {},
                            {}, nullptr});
        return v.back();
    };

    Message *m = &cmd("configure", 0, INTFWIFIAP_MAGIC_MSGCMD_CONFIGURE, "CONFIGURE", 0, true);
    m->modSrv = intfWifiAp_modSrv_recvMsg_configure;
    m->send = [](U u, B b, B n) { return intfWifiAp_sendReq_configure(u, cbResult, 0, b, n, &kConfSample); };
    m->answer = [](ismMsg_t msg) { intfWifiAp_sendRes_configure(msg, 7); };
    m->request = scalar(3, 1) + scalar(4, 2);
    m->response = scalar(3, 7);
    m->method = fn(mRecord<c::kConf, conf>);

    m = &cmd("setBridgeAndIps", 1, INTFWIFIAP_MAGIC_MSGCMD_SETBRIDGEANDIPS, "SETBRIDGEANDIPS", 0, false);
    m->modSrv = intfWifiAp_modSrv_recvMsg_setBridgeAndIps;
    m->send = [](U u, B b, B n) { return intfWifiAp_sendReq_setBridgeAndIps(u, b, n, "br-lan", "192.168.1.1"); };
    m->request = text(3, "br-lan") + text(4, "192.168.1.1");
    m->method = fn(mText2);

    m = &cmd("setIps", 2, INTFWIFIAP_MAGIC_MSGCMD_SETIPS, "SETIPS", 0, false);
    m->modSrv = intfWifiAp_modSrv_recvMsg_setIps;
    m->send = [](U u, B b, B n) { return intfWifiAp_sendReq_setIps(u, b, n, "abc"); };
    m->request = text(3, "abc");
    m->method = fn(mText);

    m = &cmd("create", 3, INTFWIFIAP_MAGIC_MSGCMD_CREATE, "CREATE", 1, true);
    m->modSrv = intfWifiAp_modSrv_recvMsg_create;
    m->send = [](U u, B b, B n) { return intfWifiAp_sendReq_create(u, cbCreate, 0, b, n, "MySsid", "secret"); };
    m->answer = [](ismMsg_t msg) { intfWifiAp_sendRes_create(msg, "ap0", "wlan0-1", 9); };
    m->request = text(3, "MySsid") + text(4, "secret");
    m->response = text(3, "ap0") + text(4, "wlan0-1") + scalar(5, 9);
    m->method = fn(mText2);

    m = &cmd("ssidinfo", 4, INTFWIFIAP_MAGIC_MSGCMD_SSIDINFO, "SSIDINFO", 0, true);
    m->modSrv = intfWifiAp_modSrv_recvMsg_ssidinfo;
    m->send = [](U u, B b, B n) { return intfWifiAp_sendReq_ssidinfo(u, cbResult, 0, b, n, "guest"); };
    m->answer = [](ismMsg_t msg) { intfWifiAp_sendRes_ssidinfo(msg, 4); };
    m->request = text(3, "guest");
    m->response = scalar(3, 4);
    m->method = fn(mText);

    m = &cmd("stop", 5, INTFWIFIAP_MAGIC_MSGCMD_STOP, "STOP", 0, true);
    m->modSrv = intfWifiAp_modSrv_recvMsg_stop;
    m->send = [](U u, B b, B n) { return intfWifiAp_sendReq_stop(u, cbResult, 0, b, n); };
    m->answer = [](ismMsg_t msg) { intfWifiAp_sendRes_stop(msg, 0x11); };
    m->response = scalar(3, 0x11);
    m->method = fn(mVoid);

    m = &cmd("startWPS", 6, INTFWIFIAP_MAGIC_MSGCMD_STARTWPS, "STARTWPS", 0, true);
    m->modSrv = intfWifiAp_modSrv_recvMsg_startWPS;
    m->send = [](U u, B b, B n) { return intfWifiAp_sendReq_startWPS(u, cbRecord<c::kWpsInfoOut, wpsInfoOut>, 0, b, n, &kWpsIn); };
    m->answer = [](ismMsg_t msg) { intfWifiAp_sendRes_startWPS(msg, &kWpsOut); };
    m->request = scalar(3, 5);
    m->response = scalar(3, 6);
    m->method = fn(mRecord<c::kWpsInfoIn, wpsInfoIn>);

    m = &cmd("startPhysicalWPS", 7, INTFWIFIAP_MAGIC_MSGCMD_STARTPHYSICALWPS, "STARTPHYSICALWPS", 0, true);
    m->modSrv = intfWifiAp_modSrv_recvMsg_startPhysicalWPS;
    m->send = [](U u, B b, B n) { return intfWifiAp_sendReq_startPhysicalWPS(u, cbRecord<c::kWpsInfoOut, wpsInfoOut>, 0, b, n, &kWpsIn); };
    m->answer = [](ismMsg_t msg) { intfWifiAp_sendRes_startPhysicalWPS(msg, &kWpsOut); };
    m->request = scalar(3, 5);
    m->response = scalar(3, 6);
    m->method = fn(mRecord<c::kWpsInfoIn, wpsInfoIn>);

    m = &cmd("toogleWps", 8, INTFWIFIAP_MAGIC_MSGCMD_TOOGLEWPS, "TOOGLEWPS", 0, false);
    m->modSrv = intfWifiAp_modSrv_recvMsg_toogleWps;
    m->send = [](U u, B b, B n) { return intfWifiAp_sendReq_toogleWps(u, b, n); };
    m->method = fn(mVoid);

    m = &cmd("stopWps", 9, INTFWIFIAP_MAGIC_MSGCMD_STOPWPS, "STOPWPS", 0, false);
    m->modSrv = intfWifiAp_modSrv_recvMsg_stopWps;
    m->send = [](U u, B b, B n) { return intfWifiAp_sendReq_stopWps(u, b, n); };
    m->method = fn(mVoid);

    m = &cmd("generatePinCodeWPS", 10, INTFWIFIAP_MAGIC_MSGCMD_GENERATEPINCODEWPS, "GENERATEPINCODEWPS", 0, true);
    m->modSrv = intfWifiAp_modSrv_recvMsg_generatePinCodeWPS;
    m->send = [](U u, B b, B n) { return intfWifiAp_sendReq_generatePinCodeWPS(u, cbResult, 0, b, n); };
    m->answer = [](ismMsg_t msg) { intfWifiAp_sendRes_generatePinCodeWPS(msg, 12345670); };
    m->response = scalar(3, 12345670);
    m->method = fn(mVoid);

    m = &cmd("toogleWifi", 11, INTFWIFIAP_MAGIC_MSGCMD_TOOGLEWIFI, "TOOGLEWIFI", 0, false);
    m->modSrv = intfWifiAp_modSrv_recvMsg_toogleWifi;
    m->send = [](U u, B b, B n) { return intfWifiAp_sendReq_toogleWifi(u, b, n); };
    m->method = fn(mVoid);

    m = &cmd("sendAccountingRequest", 12, INTFWIFIAP_MAGIC_MSGCMD_SENDACCOUNTINGREQUEST, "SENDACCOUNTINGREQUEST", 0, true);
    m->modSrv = intfWifiAp_modSrv_recvMsg_sendAccountingRequest;
    m->send = [](U u, B b, B n) { return intfWifiAp_sendReq_sendAccountingRequest(u, cbRecord<c::kAccountingResult, accountingResult>, 0, b, n, &kAcctIn); };
    m->answer = [](ismMsg_t msg) { intfWifiAp_sendRes_sendAccountingRequest(msg, &kAcctOut); };
    m->request = scalar(3, 1) + scalar(4, 2) + text(5, "00:11:22:33:44:55") + text(6, "acct") +
                 text(7, "radius") + text(8, "user@example") + text(9, "session-7");
    m->response = scalar(3, 7) + text(4, "accepted") + scalar(5, 8);
    m->method = fn(mRecord<c::kAccountingParams, accountingParams>);

    m = &cmd("getAssocDevStats", 13, INTFWIFIAP_MAGIC_MSGCMD_GETASSOCDEVSTATS, "GETASSOCDEVSTATS", 0, true);
    m->modSrv = intfWifiAp_modSrv_recvMsg_getAssocDevStats;
    m->send = [](U u, B b, B n) { return intfWifiAp_sendReq_getAssocDevStats(u, cbRecord<c::kAssocDevStatList, assocDevStatList>, 0, b, n); };
    m->answer = [](ismMsg_t msg) { intfWifiAp_sendRes_getAssocDevStats(msg, &stats()); };
    m->response = enc(c::kAssocDevStatList, &stats());
    m->method = fn(mVoid);

    m = &cmd("forceApplyMacFilterChange", 14, INTFWIFIAP_MAGIC_MSGCMD_FORCEAPPLYMACFILTERCHANGE, "FORCEAPPLYMACFILTERCHANGE", 0, false);
    m->modSrv = intfWifiAp_modSrv_recvMsg_forceApplyMacFilterChange;
    m->send = [](U u, B b, B n) { return intfWifiAp_sendReq_forceApplyMacFilterChange(u, b, n); };
    m->method = fn(mVoid);

    m = &ntfy("onProbeReceived", "OnProbeReceived", 0, INTFWIFIAP_MAGIC_MSGNTFY_ONPROBERECEIVED, "ONPROBERECEIVED", 0);
    m->modCli = intfWifiAp_modCliNtfyUser_recvMsg_onProbeReceived;
    m->needUpdate = intfWifiAp_modSrv_needUpdate_ntfyOnProbeReceived;
    m->send = [](U u, B b, B n) { intfWifiAp_sendReq_ntfyOnProbeReceived(u, b, n, &kProbe); return 0u; };
    m->request = text(3, "00:11:22:33:44:55") + text(4, "probe-ssid") + scalar(5, 42);
    m->method = fn(nRecord<c::kProbeRequest, probeRequest>);

    m = &ntfy("assocDevActiveListChanged", "AssocDevActiveListChanged", 1, INTFWIFIAP_MAGIC_MSGNTFY_ASSOCDEVACTIVELISTCHANGED, "ASSOCDEVACTIVELISTCHANGED", 1);
    m->modCli = intfWifiAp_modCliNtfyUser_recvMsg_assocDevActiveListChanged;
    m->needUpdate = intfWifiAp_modSrv_needUpdate_ntfyAssocDevActiveListChanged;
    m->send = [](U u, B b, B n) { intfWifiAp_sendReq_ntfyAssocDevActiveListChanged(u, b, n, &devList()); return 0u; };
    m->request = enc(c::kAssocDevList, &devList());
    m->method = fn(nRecord<c::kAssocDevList, assocDevList>);

    m = &ntfy("wpsStatus", "WpsStatus", 2, INTFWIFIAP_MAGIC_MSGNTFY_WPSSTATUS, "WPSSTATUS", 2);
    m->modCli = intfWifiAp_modCliNtfyUser_recvMsg_wpsStatus;
    m->needUpdate = intfWifiAp_modSrv_needUpdate_ntfyWpsStatus;
    m->send = [](U u, B b, B n) { intfWifiAp_sendReq_ntfyWpsStatus(u, b, n, &kWpsStatus); return 0u; };
    m->request = scalar(3, 3) + text(4, "aa:bb:cc:dd:ee:ff");
    m->method = fn(nRecord<c::kWpsStatusStruct, wpsStatusStruct>);

    m = &ntfy("encryptionStatus", "EncryptionStatus", 3, INTFWIFIAP_MAGIC_MSGNTFY_ENCRYPTIONSTATUS, "ENCRYPTIONSTATUS", 1);
    m->modCli = intfWifiAp_modCliNtfyUser_recvMsg_encryptionStatus;
    m->needUpdate = intfWifiAp_modSrv_needUpdate_ntfyEncryptionStatus;
    m->send = [](U u, B b, B n) { intfWifiAp_sendReq_ntfyEncryptionStatus(u, b, n, 7); return 0u; };
    m->request = scalar(3, 7);
    m->method = fn(nEnc);

    m = &ntfy("disassocEvent", "DisassocEvent", 4, INTFWIFIAP_MAGIC_MSGNTFY_DISASSOCEVENT, "DISASSOCEVENT", 1);
    m->modCli = intfWifiAp_modCliNtfyUser_recvMsg_disassocEvent;
    m->send = [](U u, B b, B n) { intfWifiAp_sendReq_ntfyDisassocEvent(u, b, n, &kDisassoc); return 0u; };
    m->request = text(3, "66:55:44:33:22:11") + scalar(4, 255) + text(5, "left");
    m->method = fn(nRecord<c::kAssocDevInfo, assocDevInfo>);
    return v;
}

}  // namespace

Bytes Message::body(uint32_t type) const {
    return ct::scalar(0, magic) + ct::scalar(1, version) + (type ? response : request);
}

const std::vector<Message> &messages() {
    static const std::vector<Message> v = build();
    return v;
}

std::vector<Message> commands() {
    std::vector<Message> v;
    for (const Message &m : messages())
        if (!m.ntfy) v.push_back(m);
    return v;
}

std::vector<Message> notifications() {
    std::vector<Message> v;
    for (const Message &m : messages())
        if (m.ntfy) v.push_back(m);
    return v;
}

std::vector<Message> twoWay() {
    std::vector<Message> v;
    for (const Message &m : messages())
        if (m.twoWay) v.push_back(m);
    return v;
}

uint32_t serialize(const Message &m, uint32_t type, void *ctx, Bytes *body) {
    uint8_t *b = nullptr;
    uint32_t n = 0;
    uint32_t rc = m.row().serializeBody(type, ctx, &b, &n);
    if (rc == 0) {
        body->assign(b, b + n);
        free(b);
    }
    return rc;
}

uint32_t unserialize(const Message &m, uint32_t type, const Bytes &body, void **ctx,
                     uint32_t *ctxSize) {
    // An exact copy, so that any read past its end is an over-read.
    uint8_t *copy = new uint8_t[body.size() ? body.size() : 1];
    if (!body.empty()) memcpy(copy, body.data(), body.size());
    uint32_t size = static_cast<uint32_t>(body.size());
    uint32_t rc = m.row().unserializeBody(type, copy, ctx, &size);
    delete[] copy;
    if (ctxSize) *ctxSize = size;
    return rc;
}

}  // namespace mt
