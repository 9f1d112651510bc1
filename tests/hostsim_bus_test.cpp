// The stand-in driven through a small table of its own: 8-byte bodies
// (magic, value, big-endian) and contexts that record where they came from.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>

#include <string>
#include <vector>

#include "capture.h"
#include "hostsim.h"
#include "intfWifiAp.h"

namespace {

using Strings = std::vector<std::string>;

constexpr uint32_t kMagic = 0x51A70001u;
constexpr int32_t kUnpackable = -1;  // serialize refuses it
constexpr int32_t kUnreadable = -2;  // unserialize refuses it

struct Ctx {
    uint32_t magic;
    uint16_t hold;
    int32_t value;
    bool rebuilt;  // set by unserialize, never carried in the body
};

struct State {
    int made = 0, freed = 0;
    std::vector<uint32_t> lengths;  // as unserialize received them
    uint32_t dispatchMagic = kMagic + 1;
    Strings traces, events;  // events: unregister, base event, need-update
    std::vector<std::vector<uint8_t>> traceBytes;
} g;

template <typename F>
void *fn(F f) {
    return reinterpret_cast<void *>(f);
}
uintptr_t word(const void *p) { return reinterpret_cast<uintptr_t>(p); }

Ctx *newCtx(int32_t value) {
    auto *c = static_cast<Ctx *>(calloc(1, sizeof(Ctx)));
    *c = {kMagic, 0, value, false};
    ++g.made;
    return c;
}

uint32_t get32(const uint8_t *p) { return uint32_t(p[0]) << 24 | p[1] << 16 | p[2] << 8 | p[3]; }

void freeBody(uint32_t, void *ctx) {
    auto *c = static_cast<Ctx *>(ctx);
    if (c->magic != kMagic) ADD_FAILURE() << "context released twice";
    c->magic = INTFWIFIAP_MAGIC_FREED;
    ++g.freed;
    free(c);
}

uint32_t serializeBody(uint32_t, void *ctx, uint8_t **body, uint32_t *lg) {
    auto *c = static_cast<Ctx *>(ctx);
    if (c->value == kUnpackable) return 4;
    *body = static_cast<uint8_t *>(malloc(8));
    for (int i = 0; i < 4; ++i) {
        (*body)[i] = uint8_t(c->magic >> (24 - 8 * i));
        (*body)[4 + i] = uint8_t(uint32_t(c->value) >> (24 - 8 * i));
    }
    *lg = 8;
    return 0;
}

uint32_t unserializeBody(uint32_t, const uint8_t *body, void **ctx, uint32_t *size) {
    g.lengths.push_back(*size);
    if (*size != 8 || int32_t(get32(body + 4)) == kUnreadable) return 2;
    Ctx *c = newCtx(int32_t(get32(body + 4)));
    c->magic = get32(body);
    c->rebuilt = true;
    *ctx = c;
    *size = sizeof(Ctx);
    return 0;
}

void logBody(void *, void *, void *, char **text) {
    *text = static_cast<char *>(malloc(5));
    memcpy(*text, "fake", 5);
}

// Like a library row: the method, or the context handed back without one.
void rowMethod(ismMsg_t msg, void *ctx, void *method, uintptr_t ref) {
    if (!method)
        ismCore_sendMsgRes(msg, ctx, 20, 18);
    else
        reinterpret_cast<void (*)(ismMsg_t, uintptr_t, Ctx *)>(method)(msg, ref, (Ctx *)ctx);
}

void unreg(uint16_t num) { g.events.push_back(cap::fmt("unreg %u", num)); }
void onBase(void *ctx, int32_t event) { g.events.push_back(cap::fmt("%s %d", (char *)ctx, event)); }
void updated(uintptr_t ref, uint32_t i) {
    g.events.push_back(cap::fmt("update %u %u", unsigned(ref), i));
}

struct FakeTable {
    intfWifiAp_tableHdr hdr;
    intfWifiAp_msgEntry rows[2];
};
#define ROW(name, i) \
    { rowMethod, 0, name, freeBody, serializeBody, unserializeBody, logBody, i }
FakeTable cmd{{INTFWIFIAP_MAGIC_INTF_CMD, "TestCmd", unreg, 0xFFFF, 2},
              {ROW("Set", 0), ROW("Get", 1)}};
FakeTable ntfy{{INTFWIFIAP_MAGIC_INTF_NTFY, "TestNtfy", unreg, 0xFFFF, 2},
               {ROW("Ping", 0), ROW("Pong", 1)}};

// Hands the table to the framework the way the library does.
void addTable(FakeTable &t) {
    uintptr_t *block = nullptr;
    t.hdr.num = ismCore_getBase_msgMngt(t.hdr.name, &block, t.hdr.count);
    ASSERT_NE(t.hdr.num, 0xFFFF);
    block[0] = word(t.hdr.name);
    block[1] = word(fn(t.hdr.unreg));
    for (const intfWifiAp_msgEntry &r : t.rows) {
        const uintptr_t words[] = {r.reserved,
                                   word(r.name),
                                   word(fn(r.freeBody)),
                                   word(fn(r.serializeBody)),
                                   word(fn(r.unserializeBody)),
                                   word(fn(r.logBody))};
        memcpy(block + 3 + 6 * r.index, words, sizeof words);
    }
}

// The host's dispatch: straight into the framework, as the library's
// recvMsg and needUpdate functions do.
int32_t host(void *, ismUser_t user, uint32_t kind, uint32_t index, void *v1, void *v2, void *v3,
             const char *bus, const char *name) {
    if (kind == HS_REQUEST)
        return ismIntf_modSrv_mthd(user, v1, v2, v3, g.dispatchMagic, "Test", &cmd.hdr, &ntfy.hdr,
                                   index, 0xFFFF, 0xFFFF);
    if (kind == HS_NOTIFICATION)
        return ismIntf_modCliNtfyUser_mthd(user, v1, v2, v3, g.dispatchMagic, bus, name, "Test",
                                           &cmd.hdr, &ntfy.hdr, index);
    return ismIntf_modSrv_ntfy_needUpdate(user, v1, v2, v3, "Test", &cmd.hdr, &ntfy.hdr, index);
}

// Records "value origin needRes" and answers value + 1 when an answer is awaited.
void serve(ismMsg_t msg, uintptr_t seen, Ctx *c) {
    int32_t needRes = ismCore_isMsg_needRes(msg);
    reinterpret_cast<Strings *>(seen)->push_back(cap::fmt(
        "%d %s %s", c->value, c->rebuilt ? "rebuilt" : "SENDER'S", needRes ? "-" : "await"));
    if (needRes == 0) ismCore_sendMsgRes(msg, newCtx(c->value + 1), 0, 18);
}

// The client callback and its reference are the message record's first two words.
void onResponse(void *, ismMsg_t msg, void *ctx) {
    void *cb = static_cast<void **>(msg)[0];
    if (!cb)
        ismCore_sendMsgRes(msg, ctx, 20, 18);
    else
        reinterpret_cast<void (*)(ismMsg_t, uintptr_t, Ctx *)>(cb)(msg, ((uintptr_t *)msg)[1],
                                                                   (Ctx *)ctx);
}

void onTrace(void *, const hs_trace *t) {
    g.traces.push_back(cap::fmt("%u %s/%s %s %u %u %s>%s", t->stage, t->table, t->message, t->text,
                                t->bodyType, t->code, t->sender, t->receiver));
    g.traceBytes.emplace_back(t->body, t->body + t->length);
}

class Bus : public ::testing::Test {
protected:
    void SetUp() override {
        hs_reset();
        cap::reset();
        g = State{};
        addTable(cmd);
        addTable(ntfy);
        server = hs_newUser("bus", "server");
        client = hs_newUser("bus", "client");
        for (ismUser_t u : {server, client}) join(u);
        hs_setMethod(server, HS_REQUEST, 0, fn(serve), word(&atServer));
    }
    void TearDown() override {
        hs_reset();
        EXPECT_EQ(g.made, g.freed) << "every context ends in the free callback";
        EXPECT_EQ(cap::liveBlocks(), 0);
    }
    static void join(ismUser_t u) {
        for (uint16_t num : {cmd.hdr.num, ntfy.hdr.num})
            ASSERT_EQ(ismIntf_regUser_msgMngt(u, fn(host), nullptr, num, 0xFFFF, 0), 0);
    }
    uint32_t send(Ctx *c, bool handler = true, void *callback = fn(serve),
                  const char *to = "server", uint16_t num = cmd.hdr.num, uint32_t index = 0) {
        return ismCore_sendMsgReq_toNameUser(ismIntf_getCore_user(client), c,
                                             handler ? onResponse : nullptr, callback,
                                             word(&atClient), "bus", to, num, index, 0xFFFF, 18);
    }
    int32_t publish(Ctx *c, const char *to) {
        return ismIntf_sendReq_ntfy(server, c, nullptr, nullptr, 0, "bus", to, "Test", ntfy.hdr.num,
                                    1, 0, 0, 18);
    }
    ismUser_t server = nullptr, client = nullptr;
    Strings atServer, atClient;
};

template <typename P>
std::string named(const ::testing::TestParamInfo<P> &info) {
    return info.param.name;
}

struct Exchange {
    const char *name;
    bool handler, serverMethod, clientCallback;
    Strings atServer, atClient;
    uint32_t bodies, failures;
};

class Exchanges : public Bus, public ::testing::WithParamInterface<Exchange> {};

TEST_P(Exchanges, OnlyBytesCrossAndEveryContextEndsOnce) {
    const Exchange &e = GetParam();
    if (!e.serverMethod) hs_setMethod(server, HS_REQUEST, 0, nullptr, 0);
    ASSERT_NE(send(newCtx(7), e.handler, e.clientCallback ? fn(serve) : nullptr), 0u);
    EXPECT_EQ(g.freed, 1) << "the sender's context ends when it is sent";
    hs_run();
    EXPECT_EQ(atServer, e.atServer);
    EXPECT_EQ(atClient, e.atClient);
    EXPECT_EQ(g.lengths, std::vector<uint32_t>(e.bodies, 8u));
    EXPECT_EQ(hs_getStats().failures, e.failures);
}

INSTANTIATE_TEST_SUITE_P(
    Hostsim, Exchanges,
    ::testing::Values(
        Exchange{"answered", true, true, true, {"7 rebuilt await"}, {"8 rebuilt -"}, 2, 0},
        Exchange{"oneWay", false, true, true, {"7 rebuilt -"}, {}, 1, 0},
        Exchange{"serverWithoutMethod", true, false, true, {}, {}, 1, 1},
        Exchange{"clientWithoutCallback", true, true, false, {"7 rebuilt await"}, {}, 2, 1}),
    named<Exchange>);

struct Refusal {
    const char *name;
    int32_t value;
    const char *to;
    uint16_t num;  // 0: the command table
    uint32_t index, magicShift;
    bool serverLeft, queued;  // a sequence number came back
    int freedAtSend;
};

class Refusals : public Bus, public ::testing::WithParamInterface<Refusal> {};

TEST_P(Refusals, CountedAndNothingServed) {
    const Refusal &r = GetParam();
    g.dispatchMagic += r.magicShift;
    if (r.serverLeft) ismIntf_unregUser_msgMngt(server, cmd.hdr.num, 0xFFFF, 0);
    Ctx *c = newCtx(r.value);
    uint32_t seq = send(c, true, fn(serve), r.to, r.num ? r.num : cmd.hdr.num, r.index);
    EXPECT_EQ(seq != 0, r.queued);
    EXPECT_EQ(g.freed, r.freedAtSend);
    if (!r.freedAtSend) freeBody(0, c);  // refused before the framework took it
    hs_run();
    EXPECT_EQ(atServer, Strings{});
    EXPECT_EQ(hs_getStats().failures, 1u);
}

INSTANTIATE_TEST_SUITE_P(
    Hostsim, Refusals,
    ::testing::Values(Refusal{"unknownTable", 1, "server", 0x7777, 0, 0, false, false, 0},
                      Refusal{"indexOutOfTable", 1, "server", 0, 2, 0, false, false, 0},
                      Refusal{"unknownUser", 1, "nobody", 0, 0, 0, false, false, 1},
                      Refusal{"receiverNotRegistered", 1, "server", 0, 0, 0, true, false, 1},
                      Refusal{"serializeFails", kUnpackable, "server", 0, 0, 0, false, false, 1},
                      Refusal{"unserializeFails", kUnreadable, "server", 0, 0, 0, false, true, 1},
                      Refusal{"wrongDispatchMagic", 1, "server", 0, 0, 1, false, true, 1}),
    named<Refusal>);

struct Publication {
    const char *name, *target;
    Strings atClient, atOther;
    int32_t rc;
};

class Notifications : public Bus, public ::testing::WithParamInterface<Publication> {};

TEST_P(Notifications, EachReceiverRebuildsItsOwnContext) {
    const Publication &p = GetParam();
    ismUser_t other = hs_newUser("bus", "other");
    join(other);
    hs_newUser("bus", "outsider");  // registered with no table
    Strings atOther;
    for (auto [u, seen] : {std::pair{server, &atServer}, {client, &atClient}, {other, &atOther}})
        hs_setMethod(u, HS_NOTIFICATION, 1, fn(serve), word(seen));
    EXPECT_EQ(publish(newCtx(5), p.target), p.rc);
    hs_run();
    EXPECT_EQ(atServer, Strings{}) << "not back to the publisher";
    EXPECT_EQ(atClient, p.atClient);
    EXPECT_EQ(atOther, p.atOther);
}

const Strings kPing{"5 rebuilt -"};
INSTANTIATE_TEST_SUITE_P(Hostsim, Notifications,
                         ::testing::Values(Publication{"broadcast", "", kPing, kPing, 0},
                                           Publication{"nullTarget", nullptr, kPing, kPing, 0},
                                           Publication{"targeted", "other", {}, kPing, 0},
                                           Publication{
                                               "unregisteredTarget", "outsider", {}, {}, 1}),
                         named<Publication>);

TEST_F(Bus, LateAnswerTravelsBack) {
    ismMsg_t kept = nullptr;
    hs_setMethod(server, HS_REQUEST, 0, fn(+[](ismMsg_t m, uintptr_t at, Ctx *) {
                     *reinterpret_cast<ismMsg_t *>(at) = m;
                 }),
                 word(&kept));
    send(newCtx(1));
    hs_run();
    ASSERT_EQ(ismCore_isMsg_needRes(kept), 0) << "still awaited after the dispatch";
    EXPECT_EQ(ismCore_sendMsgRes(kept, newCtx(9), 0, 18), 0);
    EXPECT_NE(ismCore_isMsg_needRes(kept), 0) << "answered";
    hs_run();
    EXPECT_EQ(atClient, Strings{"9 rebuilt -"});
}

TEST_F(Bus, NeedUpdateReachesTheServersMethod) {
    hs_setMethod(server, HS_NEED_UPDATE, 1, fn(updated), 42);
    EXPECT_EQ(hs_needUpdate(server, ntfy.hdr.num, 1), 0);
    EXPECT_EQ(hs_needUpdate(server, ntfy.hdr.num, 0), 0);  // no method there: nothing called
    EXPECT_NE(hs_needUpdate(server, ntfy.hdr.num, 2), 0);
    EXPECT_NE(hs_needUpdate(server, 0x7777, 1), 0);
    EXPECT_EQ(hs_run(), 2u);
    EXPECT_EQ(g.events, Strings{"update 42 1"});
    EXPECT_EQ(hs_getStats().failures, 0u);
}

TEST_F(Bus, TraceSeesEveryBodyWithItsBytes) {
    hs_setTrace(onTrace, nullptr);
    send(newCtx(0x01020304));
    send(newCtx(kUnreadable));
    hs_run();
    EXPECT_EQ(
        g.traces,
        (Strings{"0 TestCmd/Set fake 0 0 client>server", "0 TestCmd/Set fake 0 0 client>server",
                 "1 TestCmd/Set fake 0 0 client>server", "0 TestCmd/Set fake 1 0 server>client",
                 "1 TestCmd/Set fake 0 2 client>server", "1 TestCmd/Set fake 1 0 server>client"}));
    const std::vector<uint8_t> request{0x51, 0xA7, 0, 1, 1, 2, 3, 4};
    EXPECT_EQ(g.traceBytes[0], request);
    EXPECT_EQ(g.traceBytes[2], request);
    EXPECT_EQ(g.traceBytes[5], (std::vector<uint8_t>{0x51, 0xA7, 0, 1, 1, 2, 3, 5}));
    EXPECT_EQ(hs_getStats().messages, 3u);
    EXPECT_EQ(hs_getStats().bytes, 24u);
}

TEST_F(Bus, ResetReleasesQueuedBodiesAndForgetsEverything) {
    ASSERT_NE(send(newCtx(1)), 0u);
    EXPECT_EQ(cap::liveBlocks(), 1) << "the body waits in the queue";
    hs_reset();
    EXPECT_EQ(cap::liveBlocks(), 0);
    EXPECT_EQ(hs_run(), 0u);
    EXPECT_EQ(ismIntf_getCore_user(client), nullptr);
    EXPECT_NE(ismIntf_findSrvMthdNtfyUser((void *)"bus", (void *)"server", "Test", 0, nullptr), 0);
    EXPECT_NE(ismCore_putBase_msgMngt(cmd.hdr.num, 0), 0);
}

TEST_F(Bus, TablesUsersAndBaseEvents) {
    EXPECT_EQ(hs_newUser("bus", "server"), nullptr) << "name taken";
    EXPECT_EQ(ismIntf_findSrvMthdNtfyUser(nullptr, (void *)"client", "Test", 0, nullptr), 0);
    EXPECT_NE(
        ismIntf_findSrvMthdNtfyUser((void *)"elsewhere", (void *)"client", "Test", 0, nullptr), 0);
    EXPECT_EQ(evlp_addEvtBase(onBase, (void *)"base"), 0);
    hs_raiseBaseEvent(5);
    EXPECT_EQ(hs_dropTable(ntfy.hdr.num), 0);
    EXPECT_NE(hs_dropTable(ntfy.hdr.num), 0);
    EXPECT_EQ(g.events, (Strings{"base 5", cap::fmt("unreg %u", ntfy.hdr.num)}));
    Ctx *c = newCtx(1);
    EXPECT_NE(publish(c, ""), 0);
    freeBody(0, c);  // a dropped table has no free callback to end it
    EXPECT_EQ(ismCore_putBase_msgMngt(cmd.hdr.num, 0), 0);
    EXPECT_NE(ismCore_putBase_msgMngt(cmd.hdr.num, 0), 0);
    EXPECT_NE(ismIntf_regUser_msgMngt(client, nullptr, nullptr, cmd.hdr.num, 0xFFFF, 0), 0);
    EXPECT_EQ(ismIntf_unregUser_msgMngt(client, cmd.hdr.num, 0xFFFF, 0), 0)
        << "old number still leaves";
}

}  // namespace
