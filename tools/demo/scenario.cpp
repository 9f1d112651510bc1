#include "scenario.h"

#include "clients.h"
#include "server.h"
#include "wps_pin.h"

namespace wifiap::demo {

using tools::setText;

void scenario(Demo &d, const uint32_t n) {
    const Api &api = d.api;
    host::Server srv(d.api, "ap", "apd", [&d](const char *what) { d.problem(what); });
    tools::AccessPoint &ap = srv.ap;
    Answers ans;
    const uintptr_t ref = ans.ref();
    // A sendReq refused by the framework is a failure the stats do not show.
    auto sent = [&](uint32_t result) { d.expect(result != 0, "the request was not sent"); };

    ismUser_t web = newClient(d.api, ans, "web");
    ap.preload(n ? n - 1 : 0);
    const tools::Station newcomer = ap.makeStation(n ? n - 1 : 0);

    d.step("the client creates the access point");
    sent(api.intfWifiAp_sendReq_create(web, Answers::onCreate, ref, "ap", "apd", "HomeNet",
                                       "s3cret-pass"));
    d.run();
    d.expect(ans.created == "wlan0 02:5a:00:00:ff:01", "Create answered wrongly");

    d.step("it configures channel 36 with WPA2 (the server publishes the encryption)");
    const conf c{36, 3};
    sent(api.intfWifiAp_sendReq_configure(web, Answers::onResult, ref, "ap", "apd", &c));
    d.run();
    d.expect(ans.lastResult == 0, "Configure refused");

    d.step("it checks the SSID, sets the bridge and the addresses");
    sent(api.intfWifiAp_sendReq_ssidinfo(web, Answers::onResult, ref, "ap", "apd", "HomeNet"));
    sent(api.intfWifiAp_sendReq_setBridgeAndIps(web, "ap", "apd", "br-lan", "192.168.1.1/24"));
    sent(api.intfWifiAp_sendReq_setIps(web, "ap", "apd", "192.168.1.1/24"));
    d.run();
    d.expect(ap.ips() == "192.168.1.1/24" && ap.bridge() == "br-lan", "addresses not set");

    d.step("a probe arrives from a new station");
    ap.probe(newcomer.mac, "HomeNet", newcomer.rssi);
    srv.publish();
    d.run();

    d.step("the client has a WPS PIN generated and starts WPS; the station enrolls and joins");
    sent(api.intfWifiAp_sendReq_generatePinCodeWPS(web, Answers::onPin, ref, "ap", "apd"));
    const wpsInfoIn pinMethod{0};
    sent(api.intfWifiAp_sendReq_startWPS(web, Answers::onWps, ref, "ap", "apd", &pinMethod));
    d.run();
    d.expect(tools::wpsPinValid(ans.pin), "PIN checksum is wrong");
    printf("   (PIN %08u)\n", ans.pin);
    d.expect(ap.wpsEnrolled(newcomer.mac), "WPS was not running");
    if (n) ap.join(newcomer);
    srv.publish();
    d.run();

    d.step("push-button WPS, stopped; then WPS is switched off");
    const wpsInfoIn button{1};
    sent(api.intfWifiAp_sendReq_startPhysicalWPS(web, Answers::onWps, ref, "ap", "apd", &button));
    sent(api.intfWifiAp_sendReq_stopWps(web, "ap", "apd"));
    sent(api.intfWifiAp_sendReq_toogleWps(web, "ap", "apd"));
    d.run();
    d.expect(ap.wps() == tools::kWpsDisabled && ans.walkTime == 120,
             "WPS state machine went astray");

    d.step("the client sends an accounting start for the new station");
    accountingParams acct{};
    acct.value1 = 1;  // start
    acct.value2 = 0;
    setText(acct.macAddress, newcomer.mac);
    setText(acct.text1, "ap-nas-1");
    setText(acct.text2, "192.168.1.23");
    setText(acct.text3, newcomer.host);
    setText(acct.text4, "session-0001");
    sent(api.intfWifiAp_sendReq_sendAccountingRequest(web, Answers::onAccounting, ref, "ap",
                                                      "apd", &acct));
    d.run();
    d.expect(ans.lastResult == (n ? 0u : 1u), "accounting answered wrongly");

    d.step("a second client registers and asks for the current state (need-update)");
    ismUser_t cli = newClient(d.api, ans, "cli");
    for (uint32_t i = 0; i < INTFWIFIAP_NTFY_COUNT; ++i)
        if (i != INTFWIFIAP_NTFY_DISASSOCEVENT) {
            srv.answerNeedUpdate(i, "cli");
            d.expect(hs_needUpdate(srv.user, api.intfWifiAp_getNtfyIntfNum(), i) == 0,
                     "need-update refused");
        }
    d.run();

    d.step("the second client reads the statistics of every station");
    const double t0 = now();
    sent(api.intfWifiAp_sendReq_getAssocDevStats(cli, Answers::onStats, ref, "ap", "apd"));
    hs_run();
    const size_t bytes = d.trace.pendingResponseSize();
    d.trace.print();
    d.expect(ans.stations == n, "GetAssocDevStats lost stations");
    printf("   GetAssocDevStats: %u stations, %zu-byte response, %.3f ms end to end\n", n, bytes,
           (ans.statsAt - t0) * 1e3);

    d.step("a MAC filter bans one station; the server applies it at once");
    if (!ap.stations().empty()) ap.banMac(ap.stations().front().mac);
    sent(api.intfWifiAp_sendReq_forceApplyMacFilterChange(web, "ap", "apd"));
    d.run();

    d.step("the radio is switched off, and the access point stopped");
    sent(api.intfWifiAp_sendReq_toogleWifi(web, "ap", "apd"));
    sent(api.intfWifiAp_sendReq_stop(web, Answers::onResult, ref, "ap", "apd"));
    d.run();
    d.expect(!ap.created() && !ap.radioOn() && ap.stations().empty(),
             "the access point still runs");
    d.expect(ans.results == 9, "a two-way command went unanswered");
    for (uint32_t i = 0; i < INTFWIFIAP_NTFY_COUNT; ++i)
        d.expect(ans.ntfyCalls[i] > 0 || (i == INTFWIFIAP_NTFY_DISASSOCEVENT && n == 0),
                 "a notification never reached a client");
}

}  // namespace wifiap::demo
