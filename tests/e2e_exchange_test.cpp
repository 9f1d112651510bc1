// Every message end to end through the framework stand-in: only bytes cross
// from sender to receiver, and every context and body is released.
#include <string.h>

#include <utility>

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

INSTANTIATE_TEST_SUITE_P(All, Command, ::testing::ValuesIn(mt::commands()), nameOf);

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

// The largest response: every station slot used, every text and list full.
const assocDevStatList &fullList() {
    static assocDevStatList *list = [] {
        auto *l = new assocDevStatList();
        auto fill = [](char *t, size_t cap, char c) { memset(t, c, cap - 1); };
        l->assocDevNum = INTFWIFIAP_ASSOCDEVSTATLIST_MAX;
        fill(l->text, sizeof l->text, 'L');
        for (uint32_t i = 0; i < l->assocDevNum; ++i) {
            assocDevInfoFull &d = l->assocDevs[i];
            fill(d.devInfo.macAddress, sizeof d.devInfo.macAddress, 'm');
            fill(d.devInfo.text, sizeof d.devInfo.text, 't');
            assocDevStatus &s = d.devStatus;
            for (auto [t, n] : {std::pair{s.macAddress, sizeof s.macAddress}, {s.text1, sizeof s.text1},
                                {s.text2, sizeof s.text2}, {s.text3, sizeof s.text3},
                                {s.text4, sizeof s.text4}, {s.text5, sizeof s.text5},
                                {s.devStats.text1, sizeof s.devStats.text1},
                                {s.devStats.text2, sizeof s.devStats.text2},
                                {s.devStats.text3, sizeof s.devStats.text3}})
                fill(t, n, char('a' + i % 26));
            s.devStats.value1 = 0x0102030405060708ull * (i + 1);
            s.value5 = int16_t(-i);
            perRateStats &r = s.devStats.perRate;
            r.rateStatsNum = INTFWIFIAP_RATESTATS_MAX;
            for (uint32_t k = 0; k < r.rateStatsNum; ++k) r.rates[k] = {i, k};
        }
        return l;
    }();
    return *list;
}

void answerFull(ismMsg_t msg, uintptr_t) { intfWifiAp_sendRes_getAssocDevStats(msg, &fullList()); }
void receivedList(ismMsg_t, uintptr_t, const assocDevStatList *l) {
    mt::g_callback.calls++;
    mt::g_callback.payload.assign(reinterpret_cast<const uint8_t *>(l),
                                  reinterpret_cast<const uint8_t *>(l + 1));
}

TEST_F(EndToEnd, LargestStationStatisticsArriveWhole) {
    hs_setMethod(server, HS_REQUEST, INTFWIFIAP_CMD_GETASSOCDEVSTATS,
                 reinterpret_cast<void *>(answerFull), 0);
    ASSERT_NE(intfWifiAp_sendReq_getAssocDevStats(client, receivedList, 0, "ap", "apd"), 0u);
    hs_run();
    ASSERT_EQ(mt::g_callback.calls, 1);
    const uint8_t *sent = reinterpret_cast<const uint8_t *>(&fullList());
    EXPECT_TRUE(mt::g_callback.payload == Bytes(sent, sent + sizeof(assocDevStatList)))
        << "the client's record equals the server's, byte for byte";
    ASSERT_EQ(bodies(HS_TRACE_SENT).size(), 2u);
    EXPECT_EQ(bodies(HS_TRACE_SENT)[1].size(), 24u + 842860u);
}

// Refusals of the stand-in: a dispatch magic that is not the delivered
// context's magic plus one, unknown users and tables, a dropped table.
int32_t g_dispatched = 0;
int32_t misdispatch(void *, ismUser_t user, uint32_t, uint32_t, void *v1, void *v2, void *v3,
                    const char *, const char *) {
    return g_dispatched = intfWifiAp_modSrv_recvMsg_stop(user, v1, v2, v3);
}

TEST_F(EndToEnd, StandInRefusals) {
    ismUser_t wrong = hs_newUser("ap", "wrong");
    ASSERT_EQ(intfWifiAp_regUser_msgMngt(wrong, reinterpret_cast<void *>(misdispatch), nullptr,
                                         INTFWIFIAP_REG_CMD), 0);
    mt::messages()[INTFWIFIAP_CMD_CONFIGURE].send(client, "ap", "wrong");
    hs_run();
    EXPECT_NE(g_dispatched, 0) << "Stop's dispatch magic on a Configure context";
    EXPECT_EQ(mt::g_method.calls, 0);
    ASSERT_EQ(cap::lines().size(), 1u);
    EXPECT_EQ(cap::lines()[0].text, cap::fmt("user(%p): ModCliNtfyUser failed(%d)\n", wrong,
                                             g_dispatched));
    cap::reset();

    EXPECT_EQ(hs_newUser("ap", "apd"), nullptr) << "name taken";
    EXPECT_NE(hs_needUpdate(server, 0x7777, 0), 0);
    EXPECT_NE(hs_needUpdate(server, intfWifiAp_getNtfyIntfNum(), INTFWIFIAP_NTFY_COUNT), 0);
    EXPECT_EQ(hs_dropTable(intfWifiAp_getCmdIntfNum()), 0);
    EXPECT_EQ(intfWifiAp_base.flags, INTFWIFIAP_FLAGS_BASE_REG_NTFY) << "unregister callback ran";
    EXPECT_EQ(mt::messages()[INTFWIFIAP_CMD_CONFIGURE].send(client, "ap", "apd"), 0u)
        << "a dropped table carries nothing";
    EXPECT_NE(hs_dropTable(intfWifiAp_getCmdIntfNum()), 0);
}

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
