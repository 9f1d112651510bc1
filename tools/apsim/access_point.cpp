#include "access_point.h"

#include <algorithm>
#include <utility>

#include "wps_pin.h"

namespace wifiap::tools {
namespace {

constexpr uint32_t kWalkTime = 120;  // seconds a WPS run waits for an enrollee

std::string macOf(uint32_t n) {
    char buf[INTFWIFIAP_MAC_LEN];
    snprintf(buf, sizeof buf, "02:5a:%02x:%02x:%02x:%02x", (n >> 24) & 0xFF, (n >> 16) & 0xFF,
             (n >> 8) & 0xFF, n & 0xFF);
    return buf;
}

}  // namespace

uint32_t AccessPoint::draw() {
    seed_ = seed_ * 1103515245u + 12345u;
    return seed_ >> 8;
}

// ---------------------------------------------------------------- commands

uint32_t AccessPoint::configure(const conf &c) {
    channel_ = c.value1;
    encryption_ = c.value2;
    events_.push_back(EncryptionStatus{encryption_});
    return created_ ? 0 : 1;
}

void AccessPoint::setBridgeAndIps(const char *bridge, const char *ips) {
    bridge_ = bridge;
    ips_ = ips;
}

void AccessPoint::setIps(const char *ips) { ips_ = ips; }

Created AccessPoint::create(const char *ssid, const char *) {
    ssid_ = ssid;
    created_ = true;
    return {ifname_, bssid_, 0};
}

uint32_t AccessPoint::ssidInfo(const char *ssid) const { return ssid_ == ssid ? 0 : 1; }

uint32_t AccessPoint::stop() {
    const uint32_t result = created_ ? 0 : 1;
    created_ = false;
    return result;
}

wpsInfoOut AccessPoint::startWps(const wpsInfoIn &in) {
    if (wps_ == kWpsDisabled) return {0};
    if (in.value <= 1) setWps(kWpsRunning);  // 0 PIN, 1 push button
    return {kWalkTime};
}

wpsInfoOut AccessPoint::startPhysicalWps(const wpsInfoIn &) {
    if (wps_ == kWpsDisabled) return {0};
    setWps(kWpsRunning);
    return {kWalkTime};
}

void AccessPoint::toggleWps() { setWps(wps_ == kWpsDisabled ? kWpsIdle : kWpsDisabled); }

void AccessPoint::stopWps() {
    if (wps_ == kWpsRunning) setWps(kWpsIdle);
}

uint32_t AccessPoint::generatePin() {
    const uint32_t pin = draw() % 10000000u;
    return pin * 10 + wpsChecksum(pin);
}

void AccessPoint::toggleWifi() {
    radioOn_ = !radioOn_;
    if (!radioOn_ && !stations_.empty()) {
        stations_.clear();  // the radio is off: nobody stays associated
        events_.push_back(stationList());
    }
}

accountingResult AccessPoint::accounting(const accountingParams &p) const {
    accountingResult r{};
    const bool known = std::any_of(stations_.begin(), stations_.end(),
                                   [&](const Station &s) { return s.mac == p.macAddress; });
    r.value1 = known ? 0 : 1;
    setText(r.text, known ? std::string("Accounting-Response ") + p.text4 : "unknown station");
    r.value2 = 600;  // interim interval
    return r;
}

std::unique_ptr<assocDevStatList> AccessPoint::stationStats() {
    std::unique_ptr<assocDevStatList> l(new assocDevStatList{});  // ~ 300 kB: not on the stack
    l->assocDevNum = uint32_t(stations_.size());
    setText(l->text, ssid_);
    for (size_t i = 0; i < stations_.size() && i < INTFWIFIAP_ASSOCDEVSTATLIST_MAX; ++i)
        fillStats(l->assocDevs[i], stations_[i]);
    return l;
}

void AccessPoint::forceApplyMacFilter() {
    for (size_t i = stations_.size(); i-- > 0;)
        if (std::find(macFilter_.begin(), macFilter_.end(), stations_[i].mac) != macFilter_.end())
            leave(i, 8);  // deauthenticated: left the BSS
}

// ---------------------------------------------------------------- the air

Station AccessPoint::makeStation(uint32_t n) {
    Station s{macOf(n + 1), "host-" + std::to_string(n + 1), uint8_t(n % 3 ? 5 : 2),
              -40 - int(draw() % 45), 0, 0, 0, 0};
    s.rxPackets = 1000 + draw() % 900000;
    s.txPackets = 1000 + draw() % 900000;
    s.rxBytes = s.rxPackets * (64 + draw() % 1400);
    s.txBytes = s.txPackets * (64 + draw() % 1400);
    return s;
}

void AccessPoint::preload(uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) stations_.push_back(makeStation(i));
}

void AccessPoint::probe(const std::string &mac, const std::string &ssid, int rssi) {
    setText(lastProbe_.macAddress, mac);
    setText(lastProbe_.text, ssid);
    lastProbe_.value = uint32_t(std::clamp(2 * (rssi + 100), 0, 100));  // signal quality, %
    events_.push_back(lastProbe_);
}

void AccessPoint::join(const Station &s) {
    stations_.push_back(s);
    events_.push_back(stationList());
}

void AccessPoint::leave(size_t i, uint8_t reason) {
    assocDevInfo d{};
    setText(d.macAddress, stations_[i].mac);
    d.value = reason;
    setText(d.text, stations_[i].host);
    stations_.erase(stations_.begin() + long(i));
    events_.push_back(d);
    events_.push_back(stationList());
}

bool AccessPoint::wpsEnrolled(const std::string &peer) {
    if (wps_ != kWpsRunning) return false;
    setWps(kWpsSuccess, peer);
    return true;
}

void AccessPoint::banMac(const std::string &mac) { macFilter_.push_back(mac); }

// ---------------------------------------------------------------- state

std::optional<Event> AccessPoint::current(uint32_t ntfy) const {
    switch (ntfy) {
    case INTFWIFIAP_NTFY_ONPROBERECEIVED: return lastProbe_;
    case INTFWIFIAP_NTFY_ASSOCDEVACTIVELISTCHANGED: return stationList();
    case INTFWIFIAP_NTFY_WPSSTATUS: return wpsStatus();
    case INTFWIFIAP_NTFY_ENCRYPTIONSTATUS: return EncryptionStatus{encryption_};
    default: return std::nullopt;
    }
}

std::vector<Event> AccessPoint::takeEvents() { return std::exchange(events_, {}); }

void AccessPoint::setWps(WpsState s, const std::string &peer) {
    wps_ = s;
    wpsPeer_ = peer;
    events_.push_back(wpsStatus());
}

assocDevList AccessPoint::stationList() const {
    assocDevList l{};
    l.assocDevNum = uint32_t(stations_.size());
    for (size_t i = 0; i < stations_.size() && i < INTFWIFIAP_ASSOCDEVLIST_MAX; ++i) {
        setText(l.assocDevs[i].macAddress, stations_[i].mac);
        l.assocDevs[i].value = stations_[i].band;
        setText(l.assocDevs[i].text, stations_[i].host);
    }
    setText(l.text1, ssid_);
    l.value = channel_;
    setText(l.text2, ifname_);
    return l;
}

wpsStatusStruct AccessPoint::wpsStatus() const {
    wpsStatusStruct w{};
    w.value = wps_;
    setText(w.macAddress, wpsPeer_);
    return w;
}

void AccessPoint::fillStats(assocDevInfoFull &f, const Station &s) {
    setText(f.devInfo.macAddress, s.mac);
    f.devInfo.value = s.band;
    setText(f.devInfo.text, s.host);
    assocDevStatus &st = f.devStatus;
    setText(st.macAddress, s.mac);
    st.value1 = 1;  // authorised
    st.value2 = s.band;
    st.value3 = channel_;
    st.value4 = 3600 + draw() % 86400;  // seconds associated
    st.value5 = int16_t(s.rssi);
    st.value6 = -95;  // noise floor
    st.value7 = s.band == 5 ? 866700 : 144400;
    st.value8 = int8_t(s.rssi + 2);
    st.value9 = int8_t(s.rssi - 1);
    setText(st.text1, "WPA2");
    st.value10 = 2;  // spatial streams
    st.value11 = s.band == 5 ? 80 : 20;
    st.value12 = 9;
    st.value13 = -1;
    setText(st.text2, s.band == 5 ? "802.11ac" : "802.11n");
    setText(st.text3, "CCMP");
    st.value14 = 0;
    setText(st.text4, "none");
    setText(st.text5, "active");
    assocDevStats &d = st.devStats;
    d.value1 = s.rxBytes;
    d.value2 = s.txBytes;
    d.value3 = s.rxPackets;
    d.value4 = s.txPackets;
    d.value5 = draw() % 100;  // retries
    d.value6 = draw() % 10;
    d.value7 = 0;
    d.value8 = 0;
    d.value9 = 100 - draw() % 5;
    setText(d.text1, s.host + ".lan");
    d.value10 = d.value11 = d.value12 = 0;
    setText(d.text2, "VHT80");
    d.value13 = 1;
    d.value14 = 0;
    setText(d.text3, "SGI");
    d.value15 = 1;
    d.value16 = 0;
    perRateStats &r = d.perRate;
    r.value1 = 1;
    r.rateStatsNum = INTFWIFIAP_RATESTATS_MAX;  // every rate the radio knows
    r.value2 = r.value3 = 0;
    for (uint32_t i = 0; i < INTFWIFIAP_RATESTATS_MAX; ++i)
        r.rates[i] = rateStats{6500 * (i + 1), draw() % 5000};
}

}  // namespace wifiap::tools
