#include "scenario.h"

#include <string.h>

#include "clients.h"
#include "story.h"
#include "wps_pin.h"

namespace wifiap::demo {
namespace {

using tools::setText;

// The clients' side of the story. `ap` is the server's state when the server
// is in this process, for checks no answer shows; null when it is not.
struct Story {
    Demo &d;
    const uint32_t n;  // stations once the newcomer has joined
    const tools::AccessPoint *ap;
    Answers ans;
    ismUser_t web = nullptr, cli = nullptr;

    uintptr_t ref() { return ans.ref(); }
    // A sendReq refused by the framework is a failure the stats do not show.
    void sent(uint32_t result) { d.expect(result != 0, "the request was not sent"); }
    // Runs until `results` answers in all have come.
    void answered(int results) {
        d.run([this, results] { return ans.results >= results; });
    }
    void webSetsUp();
    void cliCatchesUp();
    void webStops();
};

void Story::webSetsUp() {
    const Api &api = d.api;
    d.step("the client creates the access point");
    sent(api.intfWifiAp_sendReq_create(web, Answers::onCreate, ref(), "ap", "apd", "HomeNet",
                                       "s3cret-pass"));
    answered(1);
    d.expect(ans.created == "wlan0 02:5a:00:00:ff:01", "Create answered wrongly");

    d.step("it configures channel 36 with WPA2 (the server publishes the encryption)");
    const conf c{36, 3};
    sent(api.intfWifiAp_sendReq_configure(web, Answers::onResult, ref(), "ap", "apd", &c));
    answered(2);
    d.expect(ans.lastResult == 0, "Configure refused");

    d.step("it checks the SSID, sets the bridge and the addresses; a new station probes");
    sent(api.intfWifiAp_sendReq_ssidinfo(web, Answers::onResult, ref(), "ap", "apd", "HomeNet"));
    sent(api.intfWifiAp_sendReq_setBridgeAndIps(web, "ap", "apd", "br-lan", "192.168.1.1/24"));
    sent(api.intfWifiAp_sendReq_setIps(web, "ap", "apd", "192.168.1.1/24"));
    d.run([this] { return ans.results >= 3 && ans.ntfyCalls[INTFWIFIAP_NTFY_ONPROBERECEIVED] > 0; });
    d.expect(!ap || (ap->ips() == "192.168.1.1/24" && ap->bridge() == "br-lan"),
             "addresses not set");

    d.step("the client has a WPS PIN generated and starts WPS; the station enrolls and joins");
    sent(api.intfWifiAp_sendReq_generatePinCodeWPS(web, Answers::onPin, ref(), "ap", "apd"));
    const wpsInfoIn pinMethod{0};
    sent(api.intfWifiAp_sendReq_startWPS(web, Answers::onWps, ref(), "ap", "apd", &pinMethod));
    answered(5);
    d.expect(tools::wpsPinValid(ans.pin), "PIN checksum is wrong");
    printf("   (PIN %08u)\n", ans.pin);

    d.step("push-button WPS, stopped; then WPS is switched off");
    const wpsInfoIn button{1};
    sent(api.intfWifiAp_sendReq_startPhysicalWPS(web, Answers::onWps, ref(), "ap", "apd",
                                                 &button));
    sent(api.intfWifiAp_sendReq_stopWps(web, "ap", "apd"));
    sent(api.intfWifiAp_sendReq_toogleWps(web, "ap", "apd"));
    answered(6);
    d.expect(ans.walkTime == 120 && (!ap || ap->wps() == tools::kWpsDisabled),
             "WPS state machine went astray");

    d.step("the client sends an accounting start for the new station");
    accountingParams acct{};
    acct.value1 = 1;  // start
    acct.value2 = 0;
    // A station's address and name follow from its number alone.
    const tools::Station newcomer = tools::AccessPoint().makeStation(n ? n - 1 : 0);
    setText(acct.macAddress, newcomer.mac);
    setText(acct.text1, "ap-nas-1");
    setText(acct.text2, "192.168.1.23");
    setText(acct.text3, newcomer.host);
    setText(acct.text4, "session-0001");
    sent(api.intfWifiAp_sendReq_sendAccountingRequest(web, Answers::onAccounting, ref(), "ap",
                                                      "apd", &acct));
    answered(7);
    d.expect(ans.lastResult == (n ? 0u : 1u), "accounting answered wrongly");
}

void Story::cliCatchesUp() {
    const Api &api = d.api;
    d.step("a second client registers and asks for the current state (need-update)");
    cli = newClient(d.api, ans, "cli");
    ismUser_t server = hs_findUser("ap", "apd");
    for (uint32_t i = 0; i < INTFWIFIAP_NTFY_COUNT; ++i)
        if (i != INTFWIFIAP_NTFY_DISASSOCEVENT)
            d.expect(hs_needUpdate(server, api.intfWifiAp_getNtfyIntfNum(), i) == 0,
                     "need-update refused");
    auto caughtUp = [this] {
        for (uint32_t i = 0; i < INTFWIFIAP_NTFY_COUNT; ++i)
            if (i != INTFWIFIAP_NTFY_DISASSOCEVENT && !ans.ntfyCalls[i]) return false;
        return true;
    };
    d.run(caughtUp);
    d.expect(caughtUp(), "a need-update went unanswered");

    d.step("the second client reads the statistics of every station");
    const int before = ans.results;
    const double t0 = now();
    sent(api.intfWifiAp_sendReq_getAssocDevStats(cli, Answers::onStats, ref(), "ap", "apd"));
    d.wait([this, before] { return ans.results > before; });
    const size_t bytes = d.trace.pendingResponseSize();
    d.trace.print();
    d.expect(ans.stations == n, "GetAssocDevStats lost stations");
    printf("   GetAssocDevStats: %u stations, %zu-byte response, %.3f ms end to end\n", n, bytes,
           (ans.statsAt - t0) * 1e3);
}

void Story::webStops() {
    const Api &api = d.api;
    const int before = ans.results;
    d.step("a MAC filter bans one station; the server applies it at once");
    sent(api.intfWifiAp_sendReq_forceApplyMacFilterChange(web, "ap", "apd"));
    d.run([] { return true; });

    d.step("the radio is switched off, and the access point stopped");
    sent(api.intfWifiAp_sendReq_toogleWifi(web, "ap", "apd"));
    sent(api.intfWifiAp_sendReq_stop(web, Answers::onResult, ref(), "ap", "apd"));
    answered(before + 1);
    d.expect(!ap || (!ap->created() && !ap->radioOn() && ap->stations().empty()),
             "the access point still runs");
    for (uint32_t i = 0; i < INTFWIFIAP_NTFY_COUNT; ++i)
        d.expect(ans.ntfyCalls[i] > 0 || (i == INTFWIFIAP_NTFY_DISASSOCEVENT && n == 0),
                 "a notification never reached a client");
}

}  // namespace

void scenario(Demo &d, const uint32_t n) {
    host::Server srv(d.api, "ap", "apd", [&d](const char *what) { d.problem(what); });
    host::playStory(srv, n);
    for (uint32_t i = 0; i < INTFWIFIAP_NTFY_COUNT; ++i)
        if (i != INTFWIFIAP_NTFY_DISASSOCEVENT) srv.answerNeedUpdate(i, "cli");
    Story s{d, n, &srv.ap, {}};
    s.web = newClient(d.api, s.ans, "web");
    s.webSetsUp();
    s.cliCatchesUp();
    s.webStops();
    d.expect(s.ans.results == 9, "a two-way command went unanswered");
}

bool clientPart(Demo &d, const char *client, const std::function<void()> &between) {
    Story s{d, d.stations, nullptr, {}};
    if (!strcmp(client, "web")) {
        s.web = newClient(d.api, s.ans, "web");
        s.webSetsUp();
        d.trace.print();
        between();
        s.webStops();
        d.expect(s.ans.results == 8, "a two-way command went unanswered");
    } else if (!strcmp(client, "cli")) {
        s.cliCatchesUp();
    } else {
        return false;
    }
    return true;
}

}  // namespace wifiap::demo
