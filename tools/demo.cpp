// wifiap-demo: a host that loads the interface library the way the real one
// does (dlopen, every function found by name), runs an access-point server
// and its clients over the framework stand-in, and shows every body that
// crosses, decoded.
#include <dlfcn.h>
#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "capture.h"
#include "decode.h"
#include "pcapng.h"
#include "hostsim.h"
#include "intfWifiAp.h"
#include "messages.h"
#include "wps_pin.h"

namespace {

using namespace wifiap::tools;

// ---------------------------------------------------------------- the library

// The functions the scenario calls by name; the per-message dispatch
// functions are found from the rows of the message list.
#define DEMO_FUNCTIONS(X)                                                                    \
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
    DEMO_FUNCTIONS(MEMBER)
#undef MEMBER
    SrvRecv modSrv[INTFWIFIAP_CMD_COUNT];
    CliRecv modCli[INTFWIFIAP_NTFY_COUNT];
    SrvRecv needUpdate[INTFWIFIAP_NTFY_COUNT];  // DisassocEvent has none
} api;

// Where each row's dispatch function goes once found; DisassocEvent has no
// need-update function and leaves its slot empty.
struct Lookup {
    const char *name;
    void **slot;
};
#define WIFIAP_CMD_LOOKUP(N, s, U, ...)                                                   \
    {"intfWifiAp_modSrv_recvMsg_" #s, reinterpret_cast<void **>(&api.modSrv[INTFWIFIAP_CMD_##U])},
#define WIFIAP_NTFY_LOOKUP(N, s, U, version, Payload, update)                             \
    {"intfWifiAp_modCliNtfyUser_recvMsg_" #s,                                             \
     reinterpret_cast<void **>(&api.modCli[INTFWIFIAP_NTFY_##U])},                        \
    {update ? "intfWifiAp_modSrv_needUpdate_ntfy" #N : nullptr,                           \
     reinterpret_cast<void **>(&api.needUpdate[INTFWIFIAP_NTFY_##U])},
const Lookup kDispatch[] = {WIFIAP_MESSAGES(WIFIAP_CMD_LOOKUP, WIFIAP_NTFY_LOOKUP)};

// Loads the library and fills `api`; an error text, or empty.
std::string load(const std::string &given, void **handle) {
    std::vector<std::string> paths;
    if (!given.empty()) paths.push_back(given);
#ifdef WIFIAP_BUILD_LIBRARY
    paths.push_back(WIFIAP_BUILD_LIBRARY);
#endif
    paths.push_back("libIntfWifiap.so.1");
    std::string err;
    for (const std::string &p : paths) {
        if ((*handle = dlopen(p.c_str(), RTLD_NOW))) break;
        err += std::string(dlerror()) + "\n";
    }
    if (!*handle) return err;
    std::vector<std::pair<std::string, void *>> table = {
#define ENTRY(n) {#n, &api.n},
        DEMO_FUNCTIONS(ENTRY)
#undef ENTRY
    };
    for (const Lookup &l : kDispatch)
        if (l.name) table.push_back({l.name, l.slot});
    for (auto &[name, slot] : table) {
        void *sym = dlsym(*handle, name.c_str());
        if (!sym) return "missing " + name + "\n";
        memcpy(slot, &sym, sizeof sym);  // every slot is a function pointer
    }
    return {};
}

// The host's half of dispatch: the framework's values go to the row's function.
int32_t dispatch(void *, ismUser_t user, uint32_t kind, uint32_t index, void *v1, void *v2,
                 void *v3, const char *bus, const char *name) {
    if (kind == HS_REQUEST && index < INTFWIFIAP_CMD_COUNT)
        return api.modSrv[index](user, v1, v2, v3);
    if (kind == HS_NOTIFICATION && index < INTFWIFIAP_NTFY_COUNT)
        return api.modCli[index](user, v1, v2, v3, bus, name);
    if (kind == HS_NEED_UPDATE && index < INTFWIFIAP_NTFY_COUNT && api.needUpdate[index])
        return api.needUpdate[index](user, v1, v2, v3);
    return -1;
}

template <typename F>
void *fn(F f) {
    return reinterpret_cast<void *>(f);
}

double now() {
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return double(ts.tv_sec) + double(ts.tv_nsec) / 1e9;
}

// ---------------------------------------------------------------- the trace

struct Options {
    bool hex = false;
    uint32_t stations = 4;
    std::string capture, library;
};
Options g_opt;
FILE *g_capture = nullptr;
bool g_pcapng = false;  // the capture's form: pcapng, or text lines
double g_start = 0;
uint32_t g_problems = 0;  // what the demo's own checks found wrong

void problem(const char *what) {
    printf("!! %s\n", what);
    ++g_problems;
}

struct Seen {
    double seconds;
    uint32_t stage, index, bodyType, code;
    std::string table, message, from, to;
    std::vector<uint8_t> body;
    bool hasBody;
};
std::vector<Seen> g_seen;

std::string who(const char *bus, const char *user) {
    return std::string(bus ? bus : "") + "/" + (user ? user : "");
}

// Copies only: decoding and printing wait until the loop is idle, so that a
// timed exchange measures the library and the bus, not the printing.
void onTrace(void *, const hs_trace *t) {
    Seen s{now() - g_start, t->stage, t->index, t->bodyType, t->code, t->table, t->message,
           who(t->senderBus, t->sender), t->receiver ? who(t->receiverBus, t->receiver) : "",
           {}, t->body != nullptr};
    if (t->body) s.body.assign(t->body, t->body + t->length);
    g_seen.push_back(std::move(s));
}

uint32_t g_blocks = 0;

// A body sent, once its receivers are known (a notification's are not when it is sent).
void capture(const Seen &s, const std::string &receivers) {
    if (!g_capture || !s.hasBody) return;
    Crossing c{s.seconds, s.table, s.index, s.bodyType, s.body, s.from, receivers};
    if (g_pcapng) {
        const std::string b = pcapngPacket(c);
        fwrite(b.data(), 1, b.size(), g_capture);
    } else {
        fprintf(g_capture, "%s\n", captureLine(c).c_str());
    }
}

// One block per body sent, with where it arrived. A body received belongs to
// the first one sent alike that has not yet reached that receiver.
void printTrace() {
    std::vector<std::string> to(g_seen.size()), names(g_seen.size());
    for (size_t j = 0; j < g_seen.size(); ++j) {
        const Seen &r = g_seen[j];
        if (r.stage != HS_TRACE_RECEIVED) continue;
        for (size_t i = 0; i < j; ++i) {
            const Seen &s = g_seen[i];
            if (s.stage != HS_TRACE_SENT || s.table != r.table || s.index != r.index ||
                s.bodyType != r.bodyType || s.body != r.body ||
                to[i].find(r.to) != std::string::npos)
                continue;
            to[i] += (to[i].empty() ? "" : ", ") + r.to;
            names[i] += (names[i].empty() ? "" : ", ") + r.to;
            if (r.code) to[i] += " (refused, code " + std::to_string(r.code) + ")";
            break;
        }
    }
    for (size_t i = 0; i < g_seen.size(); ++i) {
        const Seen &s = g_seen[i];
        if (s.stage != HS_TRACE_SENT) continue;
        capture(s, names[i]);
        const Message *m = findMessage(s.table, s.index);
        const bool ntfy = m && m->ntfy;
        const char *dir = ntfy ? "server -> clients" : s.bodyType ? "server -> client"
                                                                  : "client -> server";
        printf("#%u %s  %s %s, %zu bytes  [%s -> %s]\n", ++g_blocks, dir, s.message.c_str(),
               m ? sideName(*m, s.bodyType) : "body", s.body.size(), s.from.c_str(),
               to[i].empty() ? "nobody" : to[i].c_str());
        if (!s.hasBody) {
            printf("  !! not serialized: code %u\n", s.code);
            continue;
        }
        std::string text;
        Style style;
        style.maxItems = 2;
        if (m) decode(text, *m, s.bodyType, s.body.data(), s.body.size(), style);
        else walk(text, s.body.data(), s.body.size(), style);
        if (g_opt.hex) hexDump(text, s.body.data(), s.body.size());
        fwrite(text.data(), 1, text.size(), stdout);
    }
    g_seen.clear();
}

void step(const char *what) {
    printTrace();
    printf("\n== %s\n", what);
}

// Runs the loop until idle, then shows what crossed.
void run() {
    hs_run();
    printTrace();
}

// ---------------------------------------------------------------- the server

struct Station {
    std::string mac, host;
    uint8_t band;  // 2 or 5 GHz
    int rssi;
    uint64_t rxBytes, txBytes, rxPackets, txPackets;
};

std::string macOf(uint32_t n) {
    char buf[INTFWIFIAP_MAC_LEN];
    snprintf(buf, sizeof buf, "02:5a:%02x:%02x:%02x:%02x", (n >> 24) & 0xFF, (n >> 16) & 0xFF,
             (n >> 8) & 0xFF, n & 0xFF);
    return buf;
}

void copyText(char *dst, const std::string &src, size_t cap) {
    snprintf(dst, cap, "%s", src.c_str());
}
#define SET(dst, src) copyText(dst, src, sizeof dst)

enum WpsState : uint32_t { kWpsDisabled = 0, kWpsIdle = 1, kWpsRunning = 2, kWpsSuccess = 3 };

// The access point: what a real server would keep, kept plausible.
struct AccessPoint {
    ismUser_t user = nullptr;
    bool created = false, radioOn = true;
    std::string ssid, bridge = "br-lan", ips = "0.0.0.0/0", ifname = "wlan0",
                bssid = "02:5a:00:00:ff:01";
    uint32_t channel = 1, encryption = 0;
    WpsState wps = kWpsIdle;
    std::string wpsPeer;
    uint32_t seed = 20240601;
    std::vector<Station> stations;
    std::vector<std::string> macFilter;
    probeRequest lastProbe{};

    uint32_t random() {
        seed = seed * 1103515245u + 12345u;
        return seed >> 8;
    }

    Station makeStation(uint32_t n) {
        Station s{macOf(n + 1), "host-" + std::to_string(n + 1), uint8_t(n % 3 ? 5 : 2),
                  -40 - int(random() % 45), 0, 0, 0, 0};
        s.rxPackets = 1000 + random() % 900000;
        s.txPackets = 1000 + random() % 900000;
        s.rxBytes = s.rxPackets * (64 + random() % 1400);
        s.txBytes = s.txPackets * (64 + random() % 1400);
        return s;
    }

    uint32_t newPin() {
        const uint32_t pin = random() % 10000000u;
        return pin * 10 + wpsChecksum(pin);
    }

    // ---- notifications: every change of state is published to all clients
    void publishList(const char *to = nullptr) {
        assocDevList l{};
        l.assocDevNum = uint32_t(stations.size());
        for (size_t i = 0; i < stations.size() && i < INTFWIFIAP_ASSOCDEVLIST_MAX; ++i) {
            SET(l.assocDevs[i].macAddress, stations[i].mac);
            l.assocDevs[i].value = stations[i].band;
            SET(l.assocDevs[i].text, stations[i].host);
        }
        SET(l.text1, ssid);
        l.value = channel;
        SET(l.text2, ifname);
        api.intfWifiAp_sendReq_ntfyAssocDevActiveListChanged(user, "ui", to, &l);
    }
    void publishWps(const char *to = nullptr) {
        wpsStatusStruct w{};
        w.value = wps;
        SET(w.macAddress, wpsPeer);
        api.intfWifiAp_sendReq_ntfyWpsStatus(user, "ui", to, &w);
    }
    void setWps(WpsState s, const std::string &peer = "") {
        wps = s;
        wpsPeer = peer;
        publishWps();
    }
    void probe(const std::string &mac, const std::string &wanted, int rssi) {
        SET(lastProbe.macAddress, mac);
        SET(lastProbe.text, wanted);
        lastProbe.value = uint32_t(std::clamp(2 * (rssi + 100), 0, 100));  // signal quality, %
        api.intfWifiAp_sendReq_ntfyOnProbeReceived(user, "ui", nullptr, &lastProbe);
    }
    void join(const Station &s) {
        stations.push_back(s);
        publishList();
    }
    void leave(size_t i, uint8_t reason) {
        assocDevInfo d{};
        SET(d.macAddress, stations[i].mac);
        d.value = reason;
        SET(d.text, stations[i].host);
        stations.erase(stations.begin() + long(i));
        api.intfWifiAp_sendReq_ntfyDisassocEvent(user, "ui", nullptr, &d);
        publishList();
    }

    void fillStats(assocDevInfoFull &f, const Station &s) {
        SET(f.devInfo.macAddress, s.mac);
        f.devInfo.value = s.band;
        SET(f.devInfo.text, s.host);
        assocDevStatus &st = f.devStatus;
        SET(st.macAddress, s.mac);
        st.value1 = 1;  // authorised
        st.value2 = s.band;
        st.value3 = channel;
        st.value4 = 3600 + random() % 86400;  // seconds associated
        st.value5 = int16_t(s.rssi);
        st.value6 = -95;  // noise floor
        st.value7 = s.band == 5 ? 866700 : 144400;
        st.value8 = int8_t(s.rssi + 2);
        st.value9 = int8_t(s.rssi - 1);
        SET(st.text1, "WPA2");
        st.value10 = 2;  // spatial streams
        st.value11 = s.band == 5 ? 80 : 20;
        st.value12 = 9;
        st.value13 = -1;
        SET(st.text2, s.band == 5 ? "802.11ac" : "802.11n");
        SET(st.text3, "CCMP");
        st.value14 = 0;
        SET(st.text4, "none");
        SET(st.text5, "active");
        assocDevStats &d = st.devStats;
        d.value1 = s.rxBytes;
        d.value2 = s.txBytes;
        d.value3 = s.rxPackets;
        d.value4 = s.txPackets;
        d.value5 = random() % 100;  // retries
        d.value6 = random() % 10;
        d.value7 = 0;
        d.value8 = 0;
        d.value9 = 100 - random() % 5;
        SET(d.text1, s.host + ".lan");
        d.value10 = d.value11 = d.value12 = 0;
        SET(d.text2, "VHT80");
        d.value13 = 1;
        d.value14 = 0;
        SET(d.text3, "SGI");
        d.value15 = 1;
        d.value16 = 0;
        perRateStats &r = d.perRate;
        r.value1 = 1;
        r.rateStatsNum = INTFWIFIAP_RATESTATS_MAX;  // every rate the radio knows
        r.value2 = r.value3 = 0;
        for (uint32_t i = 0; i < INTFWIFIAP_RATESTATS_MAX; ++i)
            r.rates[i] = rateStats{6500 * (i + 1), random() % 5000};
    }
} g_ap;

// Server methods: the reference is unused, the state is g_ap.
void mConfigure(ismMsg_t msg, uintptr_t, const conf *c) {
    g_ap.channel = c->value1;
    g_ap.encryption = c->value2;
    api.intfWifiAp_sendReq_ntfyEncryptionStatus(g_ap.user, "ui", nullptr, g_ap.encryption);
    api.intfWifiAp_sendRes_configure(msg, g_ap.created ? 0 : 1);
}
void mSetBridgeAndIps(ismMsg_t, uintptr_t, const char *bridge, const char *ips) {
    g_ap.bridge = bridge;
    g_ap.ips = ips;
}
void mSetIps(ismMsg_t, uintptr_t, const char *ips) { g_ap.ips = ips; }
void mCreate(ismMsg_t msg, uintptr_t, const char *ssid, const char *) {
    g_ap.ssid = ssid;
    g_ap.created = true;
    api.intfWifiAp_sendRes_create(msg, g_ap.ifname.c_str(), g_ap.bssid.c_str(), 0);
}
void mSsidinfo(ismMsg_t msg, uintptr_t, const char *ssid) {
    api.intfWifiAp_sendRes_ssidinfo(msg, g_ap.ssid == ssid ? 0 : 1);
}
void mStop(ismMsg_t msg, uintptr_t) {
    api.intfWifiAp_sendRes_stop(msg, g_ap.created ? 0 : 1);
    g_ap.created = false;
}
void mStartWps(ismMsg_t msg, uintptr_t, const wpsInfoIn *in) {
    const bool ok = g_ap.wps != kWpsDisabled;
    const wpsInfoOut out{ok ? 120u : 0u};  // walk time in seconds
    api.intfWifiAp_sendRes_startWPS(msg, &out);
    if (ok && in->value <= 1) g_ap.setWps(kWpsRunning);  // 0 PIN, 1 push button
}
void mStartPhysicalWps(ismMsg_t msg, uintptr_t, const wpsInfoIn *) {
    const bool ok = g_ap.wps != kWpsDisabled;
    const wpsInfoOut out{ok ? 120u : 0u};
    api.intfWifiAp_sendRes_startPhysicalWPS(msg, &out);
    if (ok) g_ap.setWps(kWpsRunning);
}
void mToogleWps(ismMsg_t, uintptr_t) {
    g_ap.setWps(g_ap.wps == kWpsDisabled ? kWpsIdle : kWpsDisabled);
}
void mStopWps(ismMsg_t, uintptr_t) {
    if (g_ap.wps == kWpsRunning) g_ap.setWps(kWpsIdle);
}
void mGeneratePin(ismMsg_t msg, uintptr_t) {
    api.intfWifiAp_sendRes_generatePinCodeWPS(msg, g_ap.newPin());
}
void mToogleWifi(ismMsg_t, uintptr_t) {
    g_ap.radioOn = !g_ap.radioOn;
    if (!g_ap.radioOn && !g_ap.stations.empty()) {
        g_ap.stations.clear();  // the radio is off: nobody stays associated
        g_ap.publishList();
    }
}
void mAccounting(ismMsg_t msg, uintptr_t, const accountingParams *p) {
    accountingResult r{};
    bool known = false;
    for (const Station &s : g_ap.stations) known |= s.mac == p->macAddress;
    r.value1 = known ? 0 : 1;
    SET(r.text, known ? std::string("Accounting-Response ") + p->text4 : "unknown station");
    r.value2 = 600;  // interim interval
    api.intfWifiAp_sendRes_sendAccountingRequest(msg, &r);
}
void mGetStats(ismMsg_t msg, uintptr_t) {
    std::unique_ptr<assocDevStatList> l(new assocDevStatList{});  // ~ 300 kB: not on the stack
    l->assocDevNum = uint32_t(g_ap.stations.size());
    SET(l->text, g_ap.ssid);
    for (size_t i = 0; i < g_ap.stations.size() && i < INTFWIFIAP_ASSOCDEVSTATLIST_MAX; ++i)
        g_ap.fillStats(l->assocDevs[i], g_ap.stations[i]);
    api.intfWifiAp_sendRes_getAssocDevStats(msg, l.get());
}
void mForceMacFilter(ismMsg_t, uintptr_t) {
    for (size_t i = g_ap.stations.size(); i-- > 0;)
        for (const std::string &banned : g_ap.macFilter)
            if (g_ap.stations[i].mac == banned) {
                g_ap.leave(i, 8);  // deauthenticated: left the BSS
                break;
            }
}
// A client that registers late asks for the current state of a notification.
void mNeedUpdate(uintptr_t ref, uint32_t index) {
    const char *to = reinterpret_cast<const char *>(ref);
    switch (index) {
    case INTFWIFIAP_NTFY_ONPROBERECEIVED:
        api.intfWifiAp_sendReq_ntfyOnProbeReceived(g_ap.user, "ui", to, &g_ap.lastProbe);
        break;
    case INTFWIFIAP_NTFY_ASSOCDEVACTIVELISTCHANGED: g_ap.publishList(to); break;
    case INTFWIFIAP_NTFY_WPSSTATUS: g_ap.publishWps(to); break;
    case INTFWIFIAP_NTFY_ENCRYPTIONSTATUS:
        api.intfWifiAp_sendReq_ntfyEncryptionStatus(g_ap.user, "ui", to, g_ap.encryption);
        break;
    default: problem("need-update of a notification that has none");
    }
}

// ---------------------------------------------------------------- the clients

struct Answers {
    int results = 0;
    uint32_t lastResult = 0, pin = 0, walkTime = 0, stations = 0;
    std::string created;
    double statsAt = 0;
} g_ans;

void cbResult(ismMsg_t, uintptr_t, uint32_t result) {
    ++g_ans.results;
    g_ans.lastResult = result;
}
void cbCreate(ismMsg_t, uintptr_t, const char *ifname, const char *bssid, uint32_t result) {
    ++g_ans.results;
    g_ans.lastResult = result;
    g_ans.created = std::string(ifname) + " " + bssid;
}
void cbPin(ismMsg_t, uintptr_t, uint32_t pin) {
    ++g_ans.results;
    g_ans.pin = pin;
}
void cbWps(ismMsg_t, uintptr_t, const wpsInfoOut *out) {
    ++g_ans.results;
    g_ans.walkTime = out->value;
}
void cbAccounting(ismMsg_t, uintptr_t, const accountingResult *r) {
    ++g_ans.results;
    g_ans.lastResult = r->value1;
}
void cbStats(ismMsg_t, uintptr_t, const assocDevStatList *l) {
    g_ans.statsAt = now();
    ++g_ans.results;
    g_ans.stations = l->assocDevNum;
}

uint32_t g_ntfyCalls[INTFWIFIAP_NTFY_COUNT];
void nProbe(ismMsg_t, uintptr_t, const probeRequest *) { ++g_ntfyCalls[0]; }
void nList(ismMsg_t, uintptr_t, const assocDevList *) { ++g_ntfyCalls[1]; }
void nWps(ismMsg_t, uintptr_t, const wpsStatusStruct *) { ++g_ntfyCalls[2]; }
void nEnc(ismMsg_t, uintptr_t, uint32_t) { ++g_ntfyCalls[3]; }
void nDisassoc(ismMsg_t, uintptr_t, const assocDevInfo *) { ++g_ntfyCalls[4]; }

void *const kClientMethods[INTFWIFIAP_NTFY_COUNT] = {fn(nProbe), fn(nList), fn(nWps), fn(nEnc),
                                                     fn(nDisassoc)};

ismUser_t newClient(const char *name) {
    ismUser_t u = hs_newUser("ui", name);
    api.intfWifiAp_regUser_msgMngt(u, fn(dispatch), nullptr, INTFWIFIAP_REG_ALL);
    for (uint32_t i = 0; i < INTFWIFIAP_NTFY_COUNT; ++i)
        hs_setMethod(u, HS_NOTIFICATION, i, kClientMethods[i], 0);
    return u;
}

// A sendReq refused by the framework is a failure the stats do not show.
void sent(uint32_t result) {
    if (result == 0) problem("the request was not sent");
}

void expect(bool ok, const char *what) {
    if (!ok) problem(what);
}

// ---------------------------------------------------------------- the story

void scenario() {
    g_ap.user = hs_newUser("ap", "apd");
    api.intfWifiAp_regUser_msgMngt(g_ap.user, fn(dispatch), nullptr, INTFWIFIAP_REG_ALL);
    void *const methods[INTFWIFIAP_CMD_COUNT] = {
        fn(mConfigure), fn(mSetBridgeAndIps), fn(mSetIps),       fn(mCreate),
        fn(mSsidinfo),  fn(mStop),            fn(mStartWps),     fn(mStartPhysicalWps),
        fn(mToogleWps), fn(mStopWps),         fn(mGeneratePin),  fn(mToogleWifi),
        fn(mAccounting), fn(mGetStats),       fn(mForceMacFilter)};
    for (uint32_t i = 0; i < INTFWIFIAP_CMD_COUNT; ++i)
        hs_setMethod(g_ap.user, HS_REQUEST, i, methods[i], 0);
    ismUser_t web = newClient("web");
    const uint32_t n = g_opt.stations;
    for (uint32_t i = 0; n && i < n - 1; ++i) g_ap.stations.push_back(g_ap.makeStation(i));
    const Station newcomer = g_ap.makeStation(n ? n - 1 : 0);

    step("the client creates the access point");
    sent(api.intfWifiAp_sendReq_create(web, cbCreate, 0, "ap", "apd", "HomeNet", "s3cret-pass"));
    run();
    expect(g_ans.created == "wlan0 02:5a:00:00:ff:01", "Create answered wrongly");

    step("it configures channel 36 with WPA2 (the server publishes the encryption)");
    const conf c{36, 3};
    sent(api.intfWifiAp_sendReq_configure(web, cbResult, 0, "ap", "apd", &c));
    run();
    expect(g_ans.lastResult == 0, "Configure refused");

    step("it checks the SSID, sets the bridge and the addresses");
    sent(api.intfWifiAp_sendReq_ssidinfo(web, cbResult, 0, "ap", "apd", "HomeNet"));
    sent(api.intfWifiAp_sendReq_setBridgeAndIps(web, "ap", "apd", "br-lan", "192.168.1.1/24"));
    sent(api.intfWifiAp_sendReq_setIps(web, "ap", "apd", "192.168.1.1/24"));
    run();
    expect(g_ap.ips == "192.168.1.1/24" && g_ap.bridge == "br-lan", "addresses not set");

    step("a probe arrives from a new station");
    g_ap.probe(newcomer.mac, "HomeNet", newcomer.rssi);
    run();

    step("the client has a WPS PIN generated and starts WPS; the station enrolls and joins");
    sent(api.intfWifiAp_sendReq_generatePinCodeWPS(web, cbPin, 0, "ap", "apd"));
    const wpsInfoIn pinMethod{0};
    sent(api.intfWifiAp_sendReq_startWPS(web, cbWps, 0, "ap", "apd", &pinMethod));
    run();
    expect(wpsPinValid(g_ans.pin), "PIN checksum is wrong");
    printf("   (PIN %08u)\n", g_ans.pin);
    g_ap.setWps(kWpsSuccess, newcomer.mac);
    if (n) g_ap.join(newcomer);
    run();

    step("push-button WPS, stopped; then WPS is switched off");
    const wpsInfoIn button{1};
    sent(api.intfWifiAp_sendReq_startPhysicalWPS(web, cbWps, 0, "ap", "apd", &button));
    sent(api.intfWifiAp_sendReq_stopWps(web, "ap", "apd"));
    sent(api.intfWifiAp_sendReq_toogleWps(web, "ap", "apd"));
    run();
    expect(g_ap.wps == kWpsDisabled && g_ans.walkTime == 120, "WPS state machine went astray");

    step("the client sends an accounting start for the new station");
    accountingParams acct{};
    acct.value1 = 1;  // start
    acct.value2 = 0;
    SET(acct.macAddress, newcomer.mac);
    SET(acct.text1, "ap-nas-1");
    SET(acct.text2, "192.168.1.23");
    SET(acct.text3, newcomer.host);
    SET(acct.text4, "session-0001");
    sent(api.intfWifiAp_sendReq_sendAccountingRequest(web, cbAccounting, 0, "ap", "apd", &acct));
    run();
    expect(g_ans.lastResult == (n ? 0u : 1u), "accounting answered wrongly");

    step("a second client registers and asks for the current state (need-update)");
    ismUser_t cli = newClient("cli");
    static const char kCli[] = "cli";
    for (uint32_t i = 0; i < INTFWIFIAP_NTFY_COUNT; ++i)
        if (i != INTFWIFIAP_NTFY_DISASSOCEVENT) {
            hs_setMethod(g_ap.user, HS_NEED_UPDATE, i, fn(mNeedUpdate),
                         reinterpret_cast<uintptr_t>(kCli));
            expect(hs_needUpdate(g_ap.user, api.intfWifiAp_getNtfyIntfNum(), i) == 0,
                   "need-update refused");
        }
    run();

    step("the second client reads the statistics of every station");
    const double t0 = now();
    sent(api.intfWifiAp_sendReq_getAssocDevStats(cli, cbStats, 0, "ap", "apd"));
    hs_run();
    size_t bytes = 0;
    for (const Seen &s : g_seen)
        if (s.stage == HS_TRACE_SENT && s.bodyType == INTFWIFIAP_BODY_RESPONSE) bytes = s.body.size();
    printTrace();
    expect(g_ans.stations == n, "GetAssocDevStats lost stations");
    printf("   GetAssocDevStats: %u stations, %zu-byte response, %.3f ms end to end\n", n, bytes,
           (g_ans.statsAt - t0) * 1e3);

    step("a MAC filter bans one station; the server applies it at once");
    if (!g_ap.stations.empty()) g_ap.macFilter.push_back(g_ap.stations.front().mac);
    sent(api.intfWifiAp_sendReq_forceApplyMacFilterChange(web, "ap", "apd"));
    run();

    step("the radio is switched off, and the access point stopped");
    sent(api.intfWifiAp_sendReq_toogleWifi(web, "ap", "apd"));
    sent(api.intfWifiAp_sendReq_stop(web, cbResult, 0, "ap", "apd"));
    run();
    expect(!g_ap.created && !g_ap.radioOn && g_ap.stations.empty(), "the access point still runs");
    expect(g_ans.results == 9, "a two-way command went unanswered");
    for (uint32_t i = 0; i < INTFWIFIAP_NTFY_COUNT; ++i)
        expect(g_ntfyCalls[i] > 0 || (i == INTFWIFIAP_NTFY_DISASSOCEVENT && n == 0),
               "a notification never reached a client");
}

int usage() {
    fprintf(stderr,
            "usage: wifiap-demo [--hex] [--stations N] [--capture FILE] [--library PATH]\n"
            "  --hex           add a hex dump of every body\n"
            "  --stations N    stations associated with the access point, 0..100 (4)\n"
            "  --capture FILE  write every body sent to FILE (see wifiap-decode); pcapng\n"
            "                  if FILE ends in .pcapng\n"
            "  --library PATH  the interface library to load\n");
    return 2;
}

}  // namespace

int main(int argc, char **argv) {
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        const bool value = i + 1 < argc;
        if (a == "--hex") {
            g_opt.hex = true;
        } else if (a == "--stations" && value) {
            char *end = nullptr;
            long v = strtol(argv[++i], &end, 10);
            if (*end || v < 0 || v > INTFWIFIAP_ASSOCDEVSTATLIST_MAX) return usage();
            g_opt.stations = uint32_t(v);
        } else if (a == "--capture" && value) {
            g_opt.capture = argv[++i];
        } else if (a == "--library" && value) {
            g_opt.library = argv[++i];
        } else {
            return usage();
        }
    }
    void *lib = nullptr;
    if (std::string err = load(g_opt.library, &lib); !err.empty()) {
        fprintf(stderr, "wifiap-demo: cannot load the library:\n%s", err.c_str());
        return 1;
    }
    if (!g_opt.capture.empty()) {
        const std::string &f = g_opt.capture;
        g_pcapng = f.size() > 7 && f.compare(f.size() - 7, 7, ".pcapng") == 0;
        g_capture = fopen(f.c_str(), g_pcapng ? "wb" : "w");
        if (!g_capture) {
            perror(f.c_str());
            return 1;
        }
        if (g_pcapng) {
            const std::string start = pcapngStart();
            fwrite(start.data(), 1, start.size(), g_capture);
        } else {
            fprintf(g_capture,
                    "# wifiap-demo --stations %u: every body sent\n"
                    "# <seconds.micros> <table> <index> <bodyType> <hex bytes>\n",
                    g_opt.stations);
        }
    }
    g_start = now();
    hs_reset();
    hs_setTrace(onTrace, nullptr);
    if (int32_t rc = api.intfWifiap_initialize(); rc != 0) {
        fprintf(stderr, "wifiap-demo: intfWifiap_initialize failed (%d)\n", rc);
        return 1;
    }
    scenario();
    printTrace();
    const hs_stats st = hs_getStats();
    hs_raiseBaseEvent(0);  // the framework stops: the library gives its tables back
    hs_reset();
    if (g_capture) fclose(g_capture);
    dlclose(lib);
    printf("\nmessages %u, bytes %llu, failures %u%s\n", st.messages,
           static_cast<unsigned long long>(st.bytes), st.failures + g_problems,
           g_problems ? " (demo checks included)" : "");
    return st.failures + g_problems ? 1 : 0;
}
