// Every message end to end through the framework stand-in: only bytes cross
// from sender to receiver, and every context and body is released.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "capture.h"
#include "hostsim.h"
#include "messages.h"

using ::testing::IsEmpty;
using mt::Bytes;
using mt::Message;

namespace {

using SrvRecv = int32_t (*)(ismUser_t, void *, void *, void *);
using CliRecv = int32_t (*)(ismUser_t, void *, void *, void *, const char *, const char *);

// The host's side of dispatch: the framework's values go to the library
// function of the message's row.
int32_t dispatch(void *, ismUser_t user, uint32_t kind, uint32_t index, void *v1, void *v2,
                 void *v3, const char *bus, const char *name) {
    for (const Message &m : mt::messages()) {
        if (m.index != index || m.ntfy != (kind != HS_REQUEST)) continue;
        if (kind == HS_REQUEST) return m.modSrv(user, v1, v2, v3);
        if (kind == HS_NOTIFICATION) return m.modCli(user, v1, v2, v3, bus, name);
        return m.needUpdate ? m.needUpdate(user, v1, v2, v3) : -1;
    }
    return -1;
}

struct Crossing {
    uint32_t stage, bodyType;
    std::string message;
    Bytes body;
};
std::vector<Crossing> g_crossings;

void trace(void *, const hs_trace *t) {
    g_crossings.push_back({t->stage, t->bodyType, t->message,
                           t->body ? Bytes(t->body, t->body + t->length) : Bytes{}});
}

std::vector<uint32_t> g_updates;
void updated(uintptr_t ref, uint32_t index) { g_updates.push_back(static_cast<uint32_t>(ref) + index); }

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
            ASSERT_EQ(intfWifiAp_regUser_msgMngt(u, reinterpret_cast<void *>(dispatch), nullptr,
                                                 INTFWIFIAP_REG_ALL),
                      0);
        mt::g_method = {};
        mt::g_callback = {};
        mt::g_answerInMethod = true;
        g_crossings.clear();
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
    std::vector<Bytes> bodies(uint32_t stage) const {
        std::vector<Bytes> v;
        for (const Crossing &c : g_crossings)
            if (c.stage == stage) v.push_back(c.body);
        return v;
    }
};

std::string nameOf(const ::testing::TestParamInfo<Message> &i) { return i.param.name; }

using Command = EndToEnd;

TEST_P(Command, ReachesTheServerAndAnswersTheClient) {
    serve();
    EXPECT_NE(m().send(client, "ap", "apd"), 0u);
    EXPECT_GT(hs_run(), 0u);
    EXPECT_EQ(mt::g_method.calls, 1);
    EXPECT_EQ(mt::g_method.payload, m().request) << "the server sees what the client sent";
    std::vector<Bytes> expected{m().body(0)};
    if (m().twoWay) {
        EXPECT_EQ(mt::g_callback.calls, 1);
        EXPECT_EQ(mt::g_callback.payload, m().response) << "the client sees what the server sent";
        expected.push_back(m().body(1));
    } else {
        EXPECT_EQ(mt::g_callback.calls, 0);
    }
    EXPECT_EQ(bodies(HS_TRACE_SENT), expected);
    EXPECT_EQ(bodies(HS_TRACE_RECEIVED), expected);
    EXPECT_EQ(hs_getStats().failures, 0u);
}

TEST_P(Command, WithoutAServerMethodTheRequestIsHandedBack) {
    EXPECT_NE(m().send(client, "ap", "apd"), 0u);
    hs_run();
    EXPECT_EQ(mt::g_method.calls, 0);
    EXPECT_EQ(mt::g_callback.calls, 0);
    EXPECT_EQ(hs_getStats().failures, 1u);
}

TEST_P(Command, AnUnknownDestinationIsRefused) {
    EXPECT_EQ(m().send(client, "ap", "nobody"), 0u);
    EXPECT_EQ(hs_run(), 0u);
}

INSTANTIATE_TEST_SUITE_P(All, Command, ::testing::ValuesIn(mt::commands()), nameOf);

using Notification = EndToEnd;

TEST_P(Notification, ReachesEveryClient) {
    for (ismUser_t u : {client, other})
        hs_setMethod(u, HS_NOTIFICATION, m().index, m().method, 0x5A);
    m().send(server, "ap", nullptr);
    hs_run();
    EXPECT_EQ(mt::g_method.calls, 2);
    EXPECT_EQ(mt::g_method.ref, 0x5Au);
    EXPECT_EQ(mt::g_method.payload, m().request);
    EXPECT_EQ(bodies(HS_TRACE_RECEIVED), (std::vector<Bytes>{m().body(0), m().body(0)}));
}

TEST_P(Notification, NeedUpdateReachesTheServer) {
    if (!m().needUpdate) {
        EXPECT_EQ(m().name, "disassocEvent");
        return;
    }
    g_updates.clear();
    hs_setMethod(server, HS_NEED_UPDATE, m().index, reinterpret_cast<void *>(updated), 100);
    ASSERT_EQ(hs_needUpdate(server, intfWifiAp_getNtfyIntfNum(), m().index), 0);
    hs_run();
    EXPECT_EQ(g_updates, std::vector<uint32_t>{100 + m().index});
}

INSTANTIATE_TEST_SUITE_P(All, Notification, ::testing::ValuesIn(mt::notifications()), nameOf);

}  // namespace
