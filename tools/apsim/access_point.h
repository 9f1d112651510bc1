// A simulated access point: the state a server keeps, taken in and given out
// as the records of intfWifiAp.h. It knows no bus: whoever runs it answers
// with what a command returns and publishes what takeEvents() hands over.
#pragma once

#include <stdint.h>
#include <stdio.h>

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "intfWifiAp.h"

namespace wifiap::tools {

// A text into a record's field, cut to its capacity.
template <size_t N>
void setText(char (&dst)[N], const std::string &src) {
    snprintf(dst, N, "%s", src.c_str());
}

struct Station {
    std::string mac, host;
    uint8_t band;  // 2 or 5 GHz
    int rssi;
    uint64_t rxBytes, txBytes, rxPackets, txPackets;
};

enum WpsState : uint32_t { kWpsDisabled = 0, kWpsIdle = 1, kWpsRunning = 2, kWpsSuccess = 3 };

struct EncryptionStatus {
    uint32_t value;
};

// What a notification carries; the alternatives are in notification table
// order, so index() is the notification's row.
using Event = std::variant<probeRequest, assocDevList, wpsStatusStruct, EncryptionStatus,
                           assocDevInfo>;
static_assert(std::variant_size_v<Event> == INTFWIFIAP_NTFY_COUNT);

struct Created {
    std::string ifname, bssid;
    uint32_t result;
};

class AccessPoint {
public:
    // The same seed makes the same stations, statistics and PINs.
    explicit AccessPoint(uint32_t seed = 20240601) : seed_(seed) {}

    // The commands, in table order: each applies its request and returns
    // what its response carries. Results are 0 for done, 1 for refused.
    uint32_t configure(const conf &c);
    void setBridgeAndIps(const char *bridge, const char *ips);
    void setIps(const char *ips);
    Created create(const char *ssid, const char *passphrase);
    uint32_t ssidInfo(const char *ssid) const;
    uint32_t stop();
    wpsInfoOut startWps(const wpsInfoIn &in);
    wpsInfoOut startPhysicalWps(const wpsInfoIn &in);
    void toggleWps();
    void stopWps();
    uint32_t generatePin();  // eight digits, the last a checksum
    void toggleWifi();
    accountingResult accounting(const accountingParams &p) const;
    std::unique_ptr<assocDevStatList> stationStats();
    void forceApplyMacFilter();

    // What happens on the air.
    Station makeStation(uint32_t n);  // the n-th station this access point could see
    void preload(uint32_t count);     // stations already there when the server starts
    void probe(const std::string &mac, const std::string &ssid, int rssi);
    void join(const Station &s);
    void leave(size_t i, uint8_t reason);
    bool wpsEnrolled(const std::string &peer);  // false unless WPS runs
    void banMac(const std::string &mac);

    // The state as a notification carries it, for a client that asks
    // (need-update); none for DisassocEvent, which is no state.
    std::optional<Event> current(uint32_t ntfy) const;
    // What changed since the last call, oldest first.
    std::vector<Event> takeEvents();

    bool created() const { return created_; }
    bool radioOn() const { return radioOn_; }
    const std::string &ssid() const { return ssid_; }
    const std::string &bridge() const { return bridge_; }
    const std::string &ips() const { return ips_; }
    WpsState wps() const { return wps_; }
    const std::vector<Station> &stations() const { return stations_; }

private:
    uint32_t draw();
    void setWps(WpsState s, const std::string &peer = "");
    assocDevList stationList() const;
    wpsStatusStruct wpsStatus() const;
    void fillStats(assocDevInfoFull &f, const Station &s);

    bool created_ = false, radioOn_ = true;
    std::string ssid_, bridge_ = "br-lan", ips_ = "0.0.0.0/0", ifname_ = "wlan0",
                bssid_ = "02:5a:00:00:ff:01";
    uint32_t channel_ = 1, encryption_ = 0;
    WpsState wps_ = kWpsIdle;
    std::string wpsPeer_;
    uint32_t seed_;
    std::vector<Station> stations_;
    std::vector<std::string> macFilter_;
    probeRequest lastProbe_{};
    std::vector<Event> events_;
};

}  // namespace wifiap::tools
