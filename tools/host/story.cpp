#include "story.h"

namespace wifiap::host {

void playStory(Server &srv, const uint32_t n) {
    srv.ap.preload(n ? n - 1 : 0);
    srv.air = [&srv, n, newcomer = srv.ap.makeStation(n ? n - 1 : 0)](uint32_t cmd, bool after) {
        tools::AccessPoint &ap = srv.ap;
        if (after && cmd == INTFWIFIAP_CMD_SETIPS) {
            ap.probe(newcomer.mac, ap.ssid(), newcomer.rssi);
        } else if (after && cmd == INTFWIFIAP_CMD_STARTWPS) {
            if (!ap.wpsEnrolled(newcomer.mac)) srv.problem("WPS was not running");
            if (n) ap.join(newcomer);
        } else if (!after && cmd == INTFWIFIAP_CMD_FORCEAPPLYMACFILTERCHANGE) {
            if (!ap.stations().empty()) ap.banMac(ap.stations().front().mac);
        }
        srv.publish();
    };
}

}  // namespace wifiap::host
