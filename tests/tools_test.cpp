// The tools against the library: what wifiap-decode makes of bodies, the
// simulated access point's WPS. (wifiap-differential holds the decoder's and
// the dissector's fields and verdicts to the library's; the demo's capture
// test, on every target, the wire format.)
#include <gtest/gtest.h>

#include "access_point.h"
#include "decode_cli.h"
#include "wps_pin.h"
#include "support/elements.h"

using namespace wifiap::tools;
using ct::operator+;

namespace {

// Bodies in hex, as wifiap-decode reads them.
std::string hex(const ct::Bytes &b) {
    std::string s;
    for (uint8_t c : b) s += "0123456789abcdef"[c >> 4], s += "0123456789abcdef"[c & 15];
    return s;
}
ct::Bytes hdr(uint32_t magic) { return ct::scalar(0, magic) + ct::scalar(1, 0); }

struct Case {
    const char *name;
    std::vector<std::string> args;
    std::string body;
    int status;
    std::vector<std::string> said;  // in the output, in this order
};

void PrintTo(const Case &c, std::ostream *os) { *os << c.name; }

class Decode : public ::testing::TestWithParam<Case> {};

TEST_P(Decode, SaysWhatTheLibrarySays) {
    const Case &c = GetParam();
    std::string out, err;
    EXPECT_EQ(runDecode(c.args, [&] { return c.body; }, out, err), c.status) << out << err;
    size_t at = 0;
    for (const std::string &s : c.said) {
        size_t found = out.find(s, at);
        EXPECT_NE(found, std::string::npos) << "\"" << s << "\" not in\n" << out;
        at = found == std::string::npos ? at : found;
    }
}

const uint32_t kConf = INTFWIFIAP_MAGIC_MSGCMD_CONFIGURE;
const std::vector<std::string> kConfigureReq{"--msg", "configure", "--request"};

INSTANTIATE_TEST_SUITE_P(
    Bodies, Decode,
    ::testing::Values(
        Case{"WrongPayloadTag", kConfigureReq,
             hex(hdr(kConf) + ct::scalar(3, 1) + ct::scalar(5, 2)), 1,
             {"value1 = 1", "!! offset 36", "code 4", "intfWifiAp_conf_unserialize: pBody(",
              "Tl(5-4) expectded(4)"}},
        Case{"UnknownMagic", {}, hex(hdr(0x11111111) + ct::text(3, "Hi")), 1,
             {"no message has this header", "3 (4 bytes) 1214840832 (0x48690000) or \"Hi\""}},
        Case{"SharedMagicListsEveryCandidate", {},
             hex(hdr(INTFWIFIAP_MAGIC_MSGCMD_STOP) + ct::text(3, "HomeNet")), 0,
             {"fits 4 messages: Ssidinfo request, Ssidinfo response, Stop request, Stop response",
              "text = \"HomeNet\"", "accepted"}},
        // Hex as words is a body, not a capture line; a scalar stating
        // length 0 is read as its next 4 bytes, as the library reads it.
        Case{"HexWordsAndAShortScalar", kConfigureReq,
             "00000000 00000004 20137855 00000001 00000004 00000000 00000003 "
             "00000000 00000004 00000004 00000003",
             0, {"value1 = 4", "value2 = 3", "accepted"}}));

TEST(WpsPin, ChecksumDigitOfKnownPins) {
    for (uint32_t pin : {12345670u, 0u, 87654325u, 11111115u}) EXPECT_TRUE(wpsPinValid(pin)) << pin;
    for (uint32_t pin : {12345671u, 87654320u, 100000000u}) EXPECT_FALSE(wpsPinValid(pin)) << pin;
}

// The simulated access point's WPS state machine: each command from each
// state, and a WpsStatus published for a change and for nothing else.
enum class Wps { Pin, Button, OtherMethod, Physical, Toggle, Stop, Enroll };

uint32_t apply(AccessPoint &ap, Wps a) {  // the walk time a start answers, else 0
    switch (a) {
    case Wps::Pin:
    case Wps::Button:
    case Wps::OtherMethod: return ap.startWps({uint32_t(a)}).value;  // the method's number
    case Wps::Physical: return ap.startPhysicalWps({0}).value;
    case Wps::Toggle: ap.toggleWps(); return 0;
    case Wps::Stop: ap.stopWps(); return 0;
    case Wps::Enroll: ap.wpsEnrolled("02:5a:00:00:00:09"); return 0;
    }
    return 0;
}

TEST(AccessPoint, WpsTransitions) {
    const std::vector<Wps> idle, disabled{Wps::Toggle}, running{Wps::Pin};
    struct Row {
        std::vector<Wps> before;
        Wps action;
        WpsState after;
        uint32_t walkTime;
    } rows[] = {
        {idle, Wps::Pin, kWpsRunning, 120},          {idle, Wps::Button, kWpsRunning, 120},
        {idle, Wps::OtherMethod, kWpsIdle, 120},     {idle, Wps::Physical, kWpsRunning, 120},
        {disabled, Wps::Pin, kWpsDisabled, 0},       {disabled, Wps::Physical, kWpsDisabled, 0},
        {disabled, Wps::Toggle, kWpsIdle, 0},        {running, Wps::Toggle, kWpsDisabled, 0},
        {running, Wps::Stop, kWpsIdle, 0},           {idle, Wps::Stop, kWpsIdle, 0},
        {running, Wps::Enroll, kWpsSuccess, 0},      {idle, Wps::Enroll, kWpsIdle, 0},
    };
    for (const Row &r : rows) {
        SCOPED_TRACE(::testing::Message() << "row " << &r - rows);
        AccessPoint ap;
        for (Wps a : r.before) apply(ap, a);
        const WpsState before = ap.wps();
        ap.takeEvents();
        EXPECT_EQ(apply(ap, r.action), r.walkTime);
        EXPECT_EQ(ap.wps(), r.after);
        const std::vector<Event> events = ap.takeEvents();
        ASSERT_EQ(events.size(), r.after == before ? 0u : 1u);
        for (const Event &e : events) EXPECT_EQ(std::get<wpsStatusStruct>(e).value, r.after);
    }
}

}  // namespace
