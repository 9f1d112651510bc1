// Every message's functions against the scripted framework: the calls made,
// the lines logged, the codes returned, and every block released.
#include <stdlib.h>
#include <string.h>
#include <syslog.h>

#include <algorithm>
#include <tuple>

#include <gtest/gtest.h>

#include "capture.h"
#include "death.h"
#include "fake_framework.h"
#include "ism.h"
#include "messages.h"

using mt::Bytes;
using mt::Message;
using namespace ct;

namespace {

using Args = std::vector<uintptr_t>;
using Lines = std::vector<std::string>;
using Types = std::vector<uint32_t>;
ismUser_t const kUser = reinterpret_cast<ismUser_t>(0x1000);
ismMsg_t const kMsg = reinterpret_cast<ismMsg_t>(0x77);
const char kBus[] = "bus", kDest[] = "apd";
const uintptr_t kFlags = ISM_SEND_FLAGS, kNoHandler = ISM_STATUS_NO_HANDLER;

uintptr_t w(const void *p) { return reinterpret_cast<uintptr_t>(p); }
auto seen(const mt::Seen &s) { return std::tuple(s.calls, s.msg, s.ref, s.payload); }

// The lines logged since the last call, as "fn: text", led by the priority
// when it is not LOG_ERR. (A reset of the capture would hide leaks.)
size_t g_logged = 0;
Lines logged() {
    Lines v;
    for (const cap::Line &l : std::vector(cap::lines().begin() + g_logged, cap::lines().end()))
        v.push_back((l.prio == LOG_ERR ? "" : std::to_string(l.prio) + " ") + l.fn + ": " + l.text);
    g_logged = cap::lines().size();
    return v;
}

class Clean : public ::testing::Test {
protected:
    void SetUp() override {
        intfWifiAp_base.cmdHdr.num = fake::kCmdNum, intfWifiAp_base.ntfyHdr.num = fake::kNtfyNum;
        cap::reset(), fake::reset(), mt::g_method = mt::g_callback = {}, g_logged = 0;
    }
    void TearDown() override {
        EXPECT_EQ(cap::liveBlocks(), 0) << "every context and body is released";
        EXPECT_EQ(logged(), Lines{}) << "every line is expected";
        intfWifiAp_base.cmdHdr.num = intfWifiAp_base.ntfyHdr.num = INTFWIFIAP_NUM_NONE;
    }
};

class Msg : public Clean, public ::testing::WithParamInterface<Message> {
protected:
    const Message &m() const { return GetParam(); }
    const intfWifiAp_msgEntry &row() const { return m().row(); }
    std::vector<uint32_t> types() const { return m().twoWay ? Types{0, 1} : Types{0}; }
    void *context(uint32_t type) {  // as handed to the framework
        type ? m().answer(kMsg) : void(m().send(kUser, kBus, kDest));
        const auto &c = fake::calls();
        return c.empty() || c.back().args.size() < 2 ? nullptr : (void *)c.back().args[1];
    }
    std::string cb(const char *op, uint32_t type) const { return m().cb(op, type ? "Res" : "Req"); }
};

// Commands go to the named user through its core, notifications to every
// client, responses back on their message when the framework needs one; a
// failed allocation or a missing name sends nothing. A request goes to the
// method, or back without one; a response to the client's callback found in
// the framework's record (callback, reference), or back without one.
TEST_P(Msg, Exchange) {
    void *ctx = context(0);
    Args a = fake::calls().back().args;
    const uintptr_t two = m().twoWay;
    if (m().ntfy) {
        EXPECT_EQ(fake::names(), Lines{"ismIntf_sendReq_ntfy"});
        EXPECT_EQ(a, (Args{w(kUser), w(ctx), 0, 0, 0, w(kBus), w(kDest), w(intfWifiAp_base.name),
                           fake::kNtfyNum, m().index, 0, 0, kFlags}));
    } else {
        EXPECT_EQ(fake::names(), (Lines{"ismIntf_getCore_user", "ismCore_sendMsgReq_toNameUser"}));
        EXPECT_EQ((Args{a[2] != 0, a[3] != 0}), (Args{two, two})) << "handler and callback";
        EXPECT_EQ(a, (Args{w(kUser) + 1, w(ctx), a[2], a[3], two * mt::kRef, w(kBus), w(kDest),
                           fake::kCmdNum, m().index, ISM_ANY, kFlags}));
        m().send(kUser, kBus, kDest, mt::kNoCallback);
        const Args b = fake::calls().back().args;
        EXPECT_EQ((Args{b[2], b[3]}), (Args{0, 0})) << "no callback, no handler";
        row().freeBody(0, reinterpret_cast<void *>(b[1]));
    }
    row().method(kMsg, ctx, m().method, 0x99);
    row().method(kMsg, ctx, nullptr, 0x99);
    EXPECT_EQ(fake::calls().back().args, (Args{w(kMsg), w(ctx), kNoHandler, kFlags}));
    row().freeBody(0, ctx);
    row().method(kMsg, nullptr, m().method, 0);
    EXPECT_EQ(seen(mt::g_method), std::tuple(1, kMsg, uintptr_t(0x99), m().request));
    Lines lines{"intfWifiAp_recvReq_" + m().typedSfx() + ": Ctx[NULL] text[]\n"};
    if (m().twoWay) {
        void *res = context(1);
        EXPECT_EQ(fake::calls().back().args, (Args{w(kMsg), w(res), 0, kFlags}));
        auto handler = reinterpret_cast<ismResHandler_t>(a[2]);
        void *with[2] = {reinterpret_cast<void *>(a[3]), (void *)mt::kRef}, *without[2] = {};
        handler(nullptr, with, res);
        handler(nullptr, without, res);
        EXPECT_EQ(fake::calls().back().args, (Args{w(without), w(res), kNoHandler, kFlags}));
        row().freeBody(1, res);
        handler(nullptr, with, nullptr);
        EXPECT_EQ(seen(mt::g_callback), std::tuple(1, ismMsg_t(with), mt::kRef, m().response));
        lines.push_back("intfWifiAp_recvRes_" + m().name + ": Ctx[NULL] text[]\n");
    }
    EXPECT_EQ(logged(), lines);

    const long allocs = cap::allocations();
    const std::string req = "intfWifiAp_sendReq_", user = cap::fmt(": user(%p): ", kUser),
                      res = "intfWifiAp_sendRes_" + m().name + ": ";
    fake::reset(), cap::failAlloc(0);
    EXPECT_EQ(m().send(kUser, kBus, kDest), 0u);
    lines = {req + m().typedSfx() + ": Allocating Memory Ctx[]\n"};
    // The user name is tested, and a response's need, before any argument is read.
    if (!m().ntfy) {
        EXPECT_EQ(m().send(kUser, kBus, nullptr, mt::kNull), 0u);
        lines.push_back(req + m().name + user + "UserName Null\n");
    }
    if (!m().nullReq.empty()) {
        EXPECT_EQ(m().send(kUser, kBus, kDest, mt::kNull), 0u);
        lines.push_back(req + m().typedSfx() + user + m().nullReq + " Null\n");
    }
    if (m().twoWay) {
        fake::answer("ismCore_isMsg_needRes", {1});
        m().answer(kMsg, mt::kNull);
        cap::failAlloc(0);
        m().answer(kMsg);
        lines.push_back(res + "Allocating Memory Ctx[]\n");
        if (!m().nullRes.empty())
            m().answer(kMsg, mt::kNull),
                lines.push_back(res + cap::fmt("msg(%p): ", kMsg) + m().nullRes + " Null\n");
    }
    EXPECT_EQ(cap::allocations(), allocs);
    EXPECT_EQ(fake::names(), Lines((2 + !m().nullRes.empty()) * two, "ismCore_isMsg_needRes"));
    EXPECT_EQ(logged(), lines);
}

// Dispatch hands the framework the dispatch magic, the interface name and both
// table headers; a failure is logged.
TEST_P(Msg, Dispatch) {
    void *const v1 = (void *)1, *const v2 = (void *)2, *const v3 = (void *)3;
    const uintptr_t intf = w(intfWifiAp_base.name), cmdHdr = w(&intfWifiAp_base.cmdHdr),
                    ntfyHdr = w(&intfWifiAp_base.ntfyHdr), magic = m().magic + 1;
    const std::string bus(600, 'b');  // its line is not cut
    auto dispatch = [&] {
        return m().ntfy ? m().modCli(kUser, v1, v2, v3, bus.c_str(), kDest)
                        : m().modSrv(kUser, v1, v2, v3);
    };
    fake::answer(m().ntfy ? "ismIntf_modCliNtfyUser_mthd" : "ismIntf_modSrv_mthd", {0, 6});
    EXPECT_EQ(dispatch(), 0);
    EXPECT_EQ(dispatch(), 6);
    EXPECT_EQ(fake::calls().back().args,
              (m().ntfy ? Args{w(kUser), 1, 2, 3, magic, w(bus.c_str()), w(kDest), intf, cmdHdr,
                               ntfyHdr, m().index}
                        : Args{w(kUser), 1, 2, 3, magic, intf, cmdHdr, ntfyHdr, m().index, ISM_ANY,
                               ISM_ANY}));
    const std::string user = cap::fmt("_%s: user(%p)", m().name.c_str(), kUser);
    Lines lines{m().ntfy ? "intfWifiAp_modCliNtfyUser_recvMsg" + user + " bus name(" + bus +
                               cap::fmt(") user name(%p): ModCliNtfyUser\n", (const void *)kDest)
                         : "intfWifiAp_modSrv_recvMsg" + user + ": ModCliNtfyUser failed(6)\n"};
    ASSERT_EQ(m().needUpdate == nullptr, !m().ntfy || m().name == "disassocEvent");
    if (m().needUpdate) {
        fake::answer("ismIntf_modSrv_ntfy_needUpdate", {-3});
        EXPECT_EQ(m().needUpdate(kUser, v1, v2, v3), -3);
        EXPECT_EQ(fake::calls().back().args,
                  (Args{w(kUser), 1, 2, 3, intf, cmdHdr, ntfyHdr, m().index}));
        lines.push_back(cap::fmt("intfWifiAp_modSrv_needUpdate_%s: user(%p): ModSrv failed(-3)\n",
                                 m().typedSfx().c_str(), kUser));
    }
    EXPECT_EQ(logged(), lines);
}

// Body callbacks refuse unknown types, a response the message lacks, a null
// context and a failed allocation, with their lines and nothing left. A body is
// read within its length alone: every prefix, each in an exact heap block, is
// refused (2 in the header, 4 in the payload). A header of another version or
// magic is refused silently, a malformed one with its lines; elements after the
// payload are left unread.
TEST_P(Msg, BodyCallbacks) {
    uint8_t *out = nullptr;
    uint32_t n = 0, dummy[2] = {};
    void *ctx = nullptr;
    for (uint32_t type : m().twoWay ? Types{7} : Types{7, 1}) {
        const long allocs = cap::allocations();
        EXPECT_EQ(row().serializeBody(type, dummy, &out, &n), 1u);
        EXPECT_EQ(row().unserializeBody(type, (const uint8_t *)dummy, &ctx, &n), 1u);
        row().freeBody(type, dummy);
        auto line = [&](const char *op, const char *no, const char *end) {
            return m().cb(op, "") + (type == 1 ? cap::fmt(": No %s response process\n", no)
                                               : cap::fmt(": Type(%u) unknown%s", type, end));
        };
        EXPECT_EQ(logged(), (Lines{line("serialize", "Serialize", "\n"),
                                   line("unserialize", "Unserialize", "\n"), line("free", "free body", "")}));
        EXPECT_EQ(cap::allocations(), allocs);
    }
    for (uint32_t type : types()) {
        const Bytes good = m().body(type);
        Bytes body = good;  // read where it lies: its address is in the lines
        const std::string ser = cb("serialize", type) + ": ", uns = cb("unserialize", type) + ": ",
                          who = uns + cap::fmt("pBody(%p): ", body.data());
        EXPECT_EQ(row().serializeBody(type, nullptr, &out, &n), 4u);
        row().freeBody(type, nullptr);
        void *sent = context(type);
        cap::failAlloc(0);
        EXPECT_EQ(row().serializeBody(type, sent, &out, &n), 5u);
        row().freeBody(type, sent);
        cap::failAlloc(0);
        EXPECT_EQ(row().unserializeBody(type, body.data(), &ctx, &(n = body.size())), 5u);
        EXPECT_EQ(logged(), (Lines{ser + "Ctx[NULL] text[]\n",
                                   cb("free", type) + ": Ctx[NULL] text[]\n",
                                   ser + "Allocating Memory N Ctx[]\n",
                                   uns + "Allocating Memory Ctx[]\n"}));
        const std::tuple<size_t, uint8_t, Lines> cases[] = {  // at, value, lines
            {23, uint8_t(good[23] ^ 1), {}},
            {11, uint8_t(good[11] ^ 0x10), {}},
            {3, 5, {who + "Tl(5-4) expectded(0)\n", who + "Type(1) -> Error Before\n"}},
            {15, 2, {who + "Tl(2-4) expectded(1)\n"}},
        };
        for (const auto &[at, value, lines] : cases) {
            body[at] = value;
            EXPECT_EQ(row().unserializeBody(type, body.data(), &ctx, &(n = body.size())), 2u);
            EXPECT_EQ(logged(), lines) << "byte " << at;
            body[at] = good[at];
        }
        for (size_t len = 0; len < good.size(); ++len) {
            Bytes prefix(good.begin(), good.begin() + len);
            EXPECT_EQ(row().unserializeBody(type, prefix.data(), &ctx, &(n = len)),
                      len < 24 ? 2u : 4u) << "type " << type << " length " << len;
        }
        logged();  // the codec's lines, tested with it
        EXPECT_EQ(out, nullptr);
        EXPECT_EQ(ctx, nullptr);
        body = good + scalar(3, 9);
        body[20] = 0xAB, body[21] = 0xCD;  // only the version's low 16 bits count
        ASSERT_EQ(row().unserializeBody(type, body.data(), &ctx, &(n = body.size())), 0u);
        row().freeBody(type, ctx);
        ctx = nullptr;
    }
    cap::failAlloc(0);
    char *text = reinterpret_cast<char *>(1);
    row().logBody(nullptr, nullptr, nullptr, &text);
    EXPECT_EQ(text, nullptr);
    row().logBody(nullptr, nullptr, nullptr, nullptr);
    const std::string log = m().cb("log", "") + ": ";
    EXPECT_EQ(logged(), (Lines{log + "Allocating Memory N Ctx[]\n", log + "Invalid parameter\n"}));
    row().logBody(nullptr, nullptr, nullptr, &text);  // no field described: empty
    EXPECT_STREQ(text, "");
    free(text);
}

// A held context is left alone, then released poisoned. A command request's
// magic is checked before its hold word, a response's and a notification's
// after it. Another message's context aborts every check with an EMERG line.
TEST_P(Msg, HoldWordAndMagic) {
    const std::string check =
        "\\([0-9]+\\): Check Magic\\[" + m().magicName() +
        cap::fmt("-%X\\] Ctx\\[ptr\\(0x[0-9a-f]+\\) magic\\(BADBAD0\\)", m().magic);
    for (uint32_t type : types()) {
        void *ctx = context(type);
        auto *words = static_cast<uint16_t *>(ctx);
        words[2] = 1;  // the hold word follows the 32-bit magic
        *static_cast<uint32_t *>(ctx) = 0x0BADBAD0;
        if (type == 0 && !m().ntfy)
            WIFIAP_EXPECT_DEATH(row().freeBody(type, ctx), cb("free", type) + check);
        else
            row().freeBody(type, ctx);
        *static_cast<uint32_t *>(ctx) = m().magic;
        row().freeBody(type, ctx);
        EXPECT_EQ(cap::liveBlocks(), 1) << "held: not released";
        words[2] = 0;
        row().freeBody(type, ctx);
        EXPECT_EQ(cap::lastFreedWord(), INTFWIFIAP_MAGIC_FREED);
    }
    uint32_t foreign[16] = {0x0BADBAD0}, n = 0;
    uint8_t *body = nullptr;
    WIFIAP_EXPECT_DEATH(row().serializeBody(0, foreign, &body, &n), cb("serialize", 0) + check);
    WIFIAP_EXPECT_DEATH(row().method(kMsg, foreign, m().method, 0),
                 "intfWifiAp_recvReq_" + m().typedSfx() + check);
    if (!m().twoWay) return;
    row().freeBody(0, context(0));
    const Args a = fake::calls().back().args;
    void *record[2] = {reinterpret_cast<void *>(a[3]), nullptr};
    WIFIAP_EXPECT_DEATH(reinterpret_cast<ismResHandler_t>(a[2])(nullptr, record, foreign),
                 "intfWifiAp_recvRes_" + m().name + check);
}

INSTANTIATE_TEST_SUITE_P(All, Msg, ::testing::ValuesIn(mt::messages()),
                         [](const auto &i) { return i.param.name; });

const Message &msg(const std::string &name) {
    auto is = [&](const Message &m) { return m.name == name; };
    return *std::find_if(mt::messages().begin(), mt::messages().end(), is);
}

using Bodies = Clean;

// A bare payload's refusal is logged by the body callback of its side from the
// body's start; a record's under its own name from its own start.
TEST_F(Bodies, PayloadRefusals) {
    for (const char *record : {"", "wpsInfoOut"}) {
        const Message &m = msg(*record ? "startWPS" : "configure");
        Bytes body = m.header() + scalar(4, 7);
        void *ctx = nullptr;
        uint32_t n = uint32_t(body.size());
        EXPECT_EQ(m.row().unserializeBody(1, body.data(), &ctx, &n), 4u) << m.name;
        EXPECT_EQ(logged(), Lines{(*record ? cap::fmt("intfWifiAp_%s_unserialize", record)
                                           : m.cb("unserialize", "Res")) +
                                  cap::fmt(": pBody(%p): Tl(4-4) expectded(3)\n",
                                           body.data() + (*record ? 24 : 0))});
    }
}

// Bare fields follow the hold word, each at its own alignment with no record
// around them: the context's size and what lies at each field's offset (the
// typed ends read them through the same structures).
TEST_F(Bodies, BareFieldsFollowTheHoldWord) {
    using At = std::pair<size_t, bool>;  // offset, text
    const std::tuple<const char *, uint32_t, uint32_t, std::vector<At>> cases[] = {
        {"create", 0, 168, {{6, true}, {86, true}}},
        {"create", 1, 52, {{6, true}, {26, true}, {48, false}}},
        {"setBridgeAndIps", 0, 104, {{6, true}, {86, true}}},
        {"setIps", 0, 24, {{6, true}}},
        {"ssidinfo", 0, 88, {{6, true}}},
        {"ssidinfo", 1, 12, {{8, false}}},
        {"encryptionStatus", 0, 12, {{8, false}}},
        {"stop", 0, 8, {}},
    };
    for (const auto &[name, type, size, fields] : cases) {
        const Message &m = msg(name);
        Bytes body = m.body(type);
        void *ctx = nullptr;
        uint32_t n = uint32_t(body.size());
        ASSERT_EQ(m.row().unserializeBody(type, body.data(), &ctx, &n), 0u) << name;
        EXPECT_EQ(n, size) << name;
        const auto *at = static_cast<const uint8_t *>(ctx);
        Bytes found;
        for (uint32_t i = 0; i < fields.size(); ++i) {
            uint32_t word;
            memcpy(&word, at + fields[i].first, sizeof word);
            found = found + (fields[i].second ? text(3 + i, (const char *)at + fields[i].first)
                                              : scalar(3 + i, word));
        }
        EXPECT_EQ(found, type ? m.response : m.request) << name << " " << type;
        m.row().freeBody(type, ctx);
    }
}

}  // namespace
