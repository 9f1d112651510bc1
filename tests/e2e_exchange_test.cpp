// Every message end to end through the framework stand-in: only bytes cross
// from sender to receiver, and every context and body is released.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "capture.h"
#include "hostsim.h"
#include "dispatch.h"
#include "messages.h"

using ::testing::IsEmpty;
using mt::Bytes;
using mt::Message;

namespace {

// The bodies that crossed, by stage.
std::vector<Bytes> g_bodies[2];
void trace(void *, const hs_trace *t) {
    g_bodies[t->stage].push_back(t->body ? Bytes(t->body, t->body + t->length) : Bytes{});
}

class EndToEnd : public ::testing::TestWithParam<Message> {
protected:
    ismUser_t server = nullptr, client = nullptr, other = nullptr;

    void SetUp() override {
        hs_reset();
        cap::reset();
        ASSERT_EQ(intfWifiap_initialize(), 0);
        server = hs_newUser("ap", "apd");
        client = hs_newUser("ui", "web");
        other = hs_newUser("ui", "cli");
        for (ismUser_t u : {server, client, other})
            ASSERT_EQ(intfWifiAp_regUser_msgMngt(u, reinterpret_cast<void *>(mt::dispatch), nullptr,
                                                 INTFWIFIAP_REG_ALL),
                      0);
        mt::g_method = {};
        mt::g_callback = {};
        mt::g_answerInMethod = true;
        g_bodies[0].clear(), g_bodies[1].clear();
        hs_setTrace(trace, nullptr);
    }
    void TearDown() override {
        hs_raiseBaseEvent(0);
        EXPECT_EQ(intfWifiAp_base.state, INTFWIFIAP_STATE_BASE_WAIT_INIT);
        hs_reset();
        EXPECT_EQ(cap::liveBlocks(), 0) << "a context or body was not released";
        EXPECT_THAT(cap::lines(), IsEmpty());
    }
    const Message &m() const { return GetParam(); }
    void serve() {
        for (uint32_t i = 0; i < INTFWIFIAP_CMD_COUNT; ++i) {
            const Message &c = mt::messages()[i];
            hs_setMethod(server, HS_REQUEST, c.index, c.method, reinterpret_cast<uintptr_t>(&c));
        }
    }
};

std::string nameOf(const ::testing::TestParamInfo<Message> &i) { return i.param.name; }

// A command reaches the server and its answer the client; a notification
// every client. What crosses are the bodies the message's sample gives.
TEST_P(EndToEnd, ReachesItsReceivers) {
    serve();
    for (ismUser_t u : {client, other})
        hs_setMethod(u, HS_NOTIFICATION, m().index, m().method, 0x5A);
    const bool ntfy = m().ntfy, two = m().twoWay;
    EXPECT_NE(ntfy ? m().send(server, "ap", nullptr) + 1 : m().send(client, "ap", "apd"), 0u);
    hs_run();
    EXPECT_EQ(mt::g_method.calls, ntfy ? 2 : 1);
    EXPECT_EQ(mt::g_method.payload, m().request) << "the receiver sees what was sent";
    EXPECT_EQ(mt::g_callback.calls, int(two));
    EXPECT_EQ(mt::g_callback.payload, two ? m().response : Bytes{}) << "and so does the client";
    std::vector<Bytes> sent{m().body(0)}, received(ntfy ? 2 : 1, m().body(0));
    if (two) sent.push_back(m().body(1)), received.push_back(m().body(1));
    EXPECT_EQ(g_bodies[HS_TRACE_SENT], sent);
    EXPECT_EQ(g_bodies[HS_TRACE_RECEIVED], received);
    EXPECT_EQ(hs_getStats().failures, 0u);
}

INSTANTIATE_TEST_SUITE_P(All, EndToEnd, ::testing::ValuesIn(mt::messages()), nameOf);

// Each crossing costs one context and one body; no other allocation.
TEST_F(EndToEnd, ConfigureRoundTripAllocatesSixBlocks) {
    serve();
    hs_setTrace(nullptr, nullptr);  // the trace asks for log texts
    cap::reset();
    const Message &configure = mt::messages()[INTFWIFIAP_CMD_CONFIGURE];
    configure.send(client, "ap", "apd");
    hs_run();
    ASSERT_EQ(mt::g_callback.calls, 1);
    EXPECT_EQ(cap::allocations(), 6);
    EXPECT_EQ(cap::liveBlocks(), 0);
}

}  // namespace
