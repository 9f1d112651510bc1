// Particular bodies: published examples byte for byte, payload refusals with
// their lines, texts cut on sending and refused on reading, shared magics.
#include <stdlib.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "capture.h"
#include "fake_framework.h"
#include "messages.h"

using ::testing::ElementsAre;
using mt::Bytes;
using mt::Message;
using namespace ct;

namespace {

const Message &msg(const std::string &name) {
    for (const Message &m : mt::messages())
        if (m.name == name) return m;
    throw std::runtime_error(name);
}

Bytes hex(const char *s) {
    Bytes b;
    for (; *s; ++s) {
        if (*s == ' ' || *s == ',') continue;
        b.push_back(uint8_t(std::stoul(std::string(s, 2), nullptr, 16)));
        ++s;
    }
    return b;
}

class Bodies : public ::testing::Test {
protected:
    void SetUp() override {
        cap::reset();
        fake::reset();
        intfWifiAp_base.cmdHdr.num = fake::kCmdNum;
        intfWifiAp_base.ntfyHdr.num = fake::kNtfyNum;
    }
    void TearDown() override {
        EXPECT_EQ(cap::liveBlocks(), 0);
        intfWifiAp_base.cmdHdr.num = intfWifiAp_base.ntfyHdr.num = INTFWIFIAP_NUM_NONE;
    }
};

// The sample messages are the published examples: the table's expected bodies
// (which the exchange tests compare the library against) are these bytes.
TEST_F(Bodies, PublishedExamples) {
    const struct {
        const char *msg;
        uint32_t type;
        const char *hex;
    } cases[] = {
        {"configure", 0, "00000000 00000004 20137855 00000001 00000004 00000000 00000003 00000004 "
                         "00000001 00000004 00000004 00000002"},
        {"configure", 1, "00000000 00000004 20137855 00000001 00000004 00000000 00000003 00000004 "
                         "00000007"},
        {"setIps", 0, "00000000 00000004 37102446 00000001 00000004 00000000 00000003 00000008 "
                      "61626300 00000000"},
        {"stop", 0, "00000000 00000004 38192421 00000001 00000004 00000000"},
        {"startWPS", 0, "00000000 00000004 93251950 00000001 00000004 00000000 00000003 00000004 "
                        "00000005"},
        {"stopWps", 0, "00000000 00000004 22110722 00000001 00000004 00000000"},
        {"encryptionStatus", 0, "00000000 00000004 13531942 00000001 00000004 00000001 "
                                "00000003 00000004 00000007"},
    };
    for (const auto &c : cases) EXPECT_EQ(msg(c.msg).body(c.type), hex(c.hex)) << c.msg;
}

// Payload elements that do not fit: the lines of the field and of every later
// one, then the code; no context is left.
TEST_F(Bodies, PayloadRefusals) {
    const std::string t80(80, 'x'), t20(20, 'y'), t16(16, 'z');
    const struct {
        const char *msg;
        uint32_t type;
        Bytes payload;
        uint32_t code;
        std::vector<std::string> lines;  // {B}: the body, {+24}: the payload
    } cases[] = {
        {"configure", 1, scalar(4, 7), 4, {"R: pBody({B}): Tl(4-4) expectded(3)"}},
        {"generatePinCodeWPS", 1, scalar(4, 7), 4, {"R: pBody({B}): Tl(4-4) expectded(3)"}},
        {"encryptionStatus", 0, scalar(4, 7), 4, {"R: pBody({B}): Tl(4-4) expectded(3)"}},
        {"create", 0, text(3, t80) + text(4, "a"), 4,
         {"R: lgChainIn(81) lgMaxChainOut(80)", "R: pBody({B}): Type(4) -> Error Before"}},
        {"create", 1, text(3, "a") + text(4, t20) + scalar(5, 1), 4,
         {"R: lgChainIn(21) lgMaxChainOut(20)", "R: pBody({B}): Type(5) -> Error Before"}},
        {"create", 1, text(3, "a") + text(5, "b") + scalar(5, 1), 4,
         {"R: pBody({B}): Tl(5-4) expectded(4)", "R: pBody({B}): Type(5) -> Error Before"}},
        {"setIps", 0, text(3, t16), 4, {"R: lgChainIn(17) lgMaxChainOut(16)"}},
        {"setBridgeAndIps", 0, text(4, "br") + text(4, "ip"), 4,
         {"R: pBody({B}): Tl(4-4) expectded(3)", "R: pBody({B}): Type(4) -> Error Before"}},
        // A record logs under its own name with its own start.
        {"startWPS", 1, scalar(4, 7), 4,
         {"intfWifiAp_wpsInfoOut_unserialize: pBody({+24}): Tl(4-4) expectded(3)"}},
        {"sendAccountingRequest", 1, scalar(3, 1) + scalar(5, 2), 4,
         {"intfWifiAp_accountingResult_unserialize: pBody({+24}): Tl(5-4) expectded(4)",
          "intfWifiAp_accountingResult_unserialize: pBody({+24}): Type(5) -> Error Before"}},
    };
    for (const auto &c : cases) {
        cap::reset();
        const Message &m = msg(c.msg);
        Bytes body = mt::header(m.magic, m.version) + c.payload;
        void *ctx = nullptr;
        uint32_t size = static_cast<uint32_t>(body.size());
        EXPECT_EQ(m.row().unserializeBody(c.type, body.data(), &ctx, &size), c.code) << c.msg;
        EXPECT_EQ(ctx, nullptr);
        std::vector<std::string> expected;
        const std::string side = m.cb("unserialize", m.ntfy || c.type == 0 ? "Req" : "Res");
        for (std::string l : c.lines) {
            if (l.rfind("R: ", 0) == 0) l = side + ": " + l.substr(3);
            expected.push_back(l);
        }
        EXPECT_EQ(cap::texts(), ct::expand(expected, body.data(), body.data())) << c.msg;
    }
}

// Texts longer than their field are cut to capacity - 1 when sending.
TEST_F(Bodies, LongTextsAreCutWhenSent) {
    const std::string t80(80, 'a'), t79(79, 'a'), t25(25, 'b'), t19(19, 'b');
    intfWifiAp_sendReq_create(nullptr, nullptr, 0, "bus", "ap", t80.c_str(), t79.c_str());
    void *ctx = reinterpret_cast<void *>(fake::calls().back().args[1]);
    Bytes body;
    ASSERT_EQ(mt::serialize(msg("create"), 0, ctx, &body), 0u);
    EXPECT_EQ(body, mt::header(INTFWIFIAP_MAGIC_MSGCMD_CREATE, 1) + text(3, t79) + text(4, t79));
    msg("create").row().freeBody(0, ctx);

    intfWifiAp_sendRes_create(nullptr, t25.c_str(), "", 3);
    ctx = reinterpret_cast<void *>(fake::calls().back().args[1]);
    ASSERT_EQ(mt::serialize(msg("create"), 1, ctx, &body), 0u);
    EXPECT_EQ(body, mt::header(INTFWIFIAP_MAGIC_MSGCMD_CREATE, 1) + text(3, t19) + text(4, "") +
                        scalar(5, 3));
    msg("create").row().freeBody(1, ctx);
}

// Messages that share a magic read each other's bodies; the elements after
// the last expected one are never read.
TEST_F(Bodies, SharedMagicsAndExtraElements) {
    const struct {
        const char *from, *to;
        uint32_t type;
    } cases[] = {
        {"ssidinfo", "stop", 0},       {"startWPS", "startPhysicalWPS", 0},
        {"startPhysicalWPS", "startWPS", 1}, {"toogleWps", "toogleWifi", 0},
        {"toogleWifi", "toogleWps", 0},
    };
    for (const auto &c : cases) {
        void *ctx = nullptr;
        EXPECT_EQ(mt::unserialize(msg(c.to), c.type, msg(c.from).body(c.type), &ctx), 0u)
            << c.from << " read as " << c.to;
        msg(c.to).row().freeBody(c.type, ctx);
    }
    void *ctx = nullptr;
    uint32_t size = 0;
    EXPECT_EQ(mt::unserialize(msg("generatePinCodeWPS"), 0,
                              msg("generatePinCodeWPS").body(0) + scalar(3, 9), &ctx, &size),
              0u);
    EXPECT_EQ(size, 8u) << "magic and hold word only";
    msg("generatePinCodeWPS").row().freeBody(0, ctx);
    EXPECT_EQ(msg("toogleWps").body(0), msg("toogleWifi").body(0));
}

}  // namespace
