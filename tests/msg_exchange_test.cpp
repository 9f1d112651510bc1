// The exchange engine through every message's own functions, against the
// scripted framework: bodies, refusals, log lines, frees and allocations.
#include <stdlib.h>
#include <syslog.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "capture.h"
#include "fake_framework.h"
#include "ism.h"
#include "messages.h"

using ::testing::ElementsAre;
using mt::MsgRecord;
using ::testing::IsEmpty;
using mt::Bytes;
using mt::Message;
using ct::operator+;

namespace {

ismUser_t const kUser = reinterpret_cast<ismUser_t>(0x1000);
const char kBus[] = "bus", kDest[] = "apd";

class Msg : public ::testing::TestWithParam<Message> {
protected:
    void SetUp() override {
        intfWifiAp_base.cmdHdr.num = fake::kCmdNum;
        intfWifiAp_base.ntfyHdr.num = fake::kNtfyNum;
        cap::reset();
        fake::reset();
        mt::g_method = {};
        mt::g_callback = {};
    }
    void TearDown() override {
        EXPECT_EQ(cap::liveBlocks(), 0) << "every context and body is released";
        intfWifiAp_base.cmdHdr.num = INTFWIFIAP_NUM_NONE;
        intfWifiAp_base.ntfyHdr.num = INTFWIFIAP_NUM_NONE;
    }

    const Message &m() const { return GetParam(); }

    // The sample request (or notification) context, as handed to the framework.
    void *sent() {
        m().send(kUser, kBus, kDest);
        const fake::Call &c = fake::calls().back();
        return reinterpret_cast<void *>(c.args[1]);
    }
    // The sample response context.
    void *answered() {
        m().answer(reinterpret_cast<ismMsg_t>(0x77));
        return reinterpret_cast<void *>(fake::calls().back().args[1]);
    }
    std::vector<uint32_t> types() const {
        return m().twoWay ? std::vector<uint32_t>{0, 1} : std::vector<uint32_t>{0};
    }
    void *contextOf(uint32_t type) { return type ? answered() : sent(); }
    const char *side(uint32_t type) const { return type ? "Res" : "Req"; }
};

std::string nameOf(const ::testing::TestParamInfo<Message> &i) { return i.param.name; }

// Header refusals: code 2, the element's lines, and no context left.
TEST_P(Msg, HeaderRefusals) {
    for (uint32_t type : types()) {
        const Bytes good = m().body(type);
        struct Case {
            Bytes body;
            std::vector<std::string> lines;  // %p: the body
        };
        Bytes badVersion = good, badFirst = good, badSecond = good, otherMagic = good;
        badVersion[23] ^= 1;
        badFirst[3] = 5;
        badSecond[15] = 2;
        otherMagic[11] ^= 0x10;
        const std::string who = m().cb("unserialize", side(type)) + ": ";
        const Case cases[] = {
            {badVersion, {}},
            {otherMagic, {}},
            {badFirst, {who + "pBody(%p): Tl(5-4) expectded(0)\n", who + "pBody(%p): Type(1) -> Error Before\n"}},
            {badSecond, {who + "pBody(%p): Tl(2-4) expectded(1)\n"}},
        };
        for (const Case &c : cases) {
            cap::reset();
            void *ctx = nullptr;
            // Read in place so that the logged address is known.
            uint32_t size = static_cast<uint32_t>(c.body.size());
            EXPECT_EQ(m().row().unserializeBody(type, c.body.data(), &ctx, &size), 2u);
            EXPECT_EQ(ctx, nullptr);
            std::vector<std::string> expected;
            for (const std::string &l : c.lines)
                expected.push_back(cap::fmt(l.c_str(), (const void *)c.body.data()));
            EXPECT_EQ(cap::texts(), expected) << "body type " << type;
            EXPECT_EQ(cap::liveBlocks(), 0);
        }
    }
}

// Every prefix of a valid body is refused cleanly: 2 inside the header, 4 in
// the payload, never a read past the end.
TEST_P(Msg, TruncatedBodiesAreRefused) {
    for (uint32_t type : types()) {
        const Bytes good = m().body(type);
        for (size_t n = 0; n < good.size(); ++n) {
            void *ctx = nullptr;
            uint32_t rc = mt::unserialize(m(), type, Bytes(good.begin(), good.begin() + n), &ctx);
            if (n >= 24 && (type ? m().response : m().request).empty()) {
                EXPECT_EQ(rc, 0u);  // nothing after the header is read
                m().row().freeBody(type, ctx);
                continue;
            }
            EXPECT_EQ(rc, n < 24 ? 2u : 4u) << "type " << type << " length " << n;
            EXPECT_EQ(ctx, nullptr);
        }
        EXPECT_EQ(cap::liveBlocks(), 0);
    }
}

// Body types a message does not handle.
TEST_P(Msg, UnhandledBodyTypes) {
    const std::string plain = "_" + m().name;
    std::vector<uint32_t> unhandled = {2, 7};
    if (!m().twoWay) unhandled.push_back(1);
    for (uint32_t type : unhandled) {
        cap::reset();
        int dummy = 0;
        uint8_t *body = nullptr;
        uint32_t n = 0;
        void *ctx = nullptr;
        EXPECT_EQ(m().row().serializeBody(type, &dummy, &body, &n), 1u);
        EXPECT_EQ(m().row().unserializeBody(type, reinterpret_cast<const uint8_t *>(&dummy), &ctx, &n), 1u);
        m().row().freeBody(type, &dummy);
        EXPECT_EQ(body, nullptr);
        EXPECT_EQ(ctx, nullptr);
        std::vector<std::string> expected;
        if (type == 1)
            expected = {m().cb("serialize", "") + ": No Serialize response process\n",
                        m().cb("unserialize", "") + ": No Unserialize response process\n",
                        m().cb("free", "") + ": No free body response process\n"};
        else
            expected = {m().cb("serialize", "") + cap::fmt(": Type(%u) unknown\n", type),
                        m().cb("unserialize", "") + cap::fmt(": Type(%u) unknown\n", type),
                        m().cb("free", "") + cap::fmt(": Type(%u) unknown", type)};
        EXPECT_EQ(cap::texts(), expected);
        EXPECT_EQ(cap::allocations(), 0);
    }
}

// Each allocation site failing in turn: its line, its code, nothing leaked.
TEST_P(Msg, AllocationFailures) {
    for (uint32_t type : types()) {
        void *ctx = contextOf(type);
        cap::reset();
        fake::reset();
        cap::failAlloc(0);
        uint8_t *body = nullptr;
        uint32_t n = 0;
        EXPECT_EQ(m().row().serializeBody(type, ctx, &body, &n), 5u);
        EXPECT_THAT(cap::texts(), ElementsAre(m().cb("serialize", side(type)) +
                                              ": Allocating Memory N Ctx[]\n"));
        m().row().freeBody(type, ctx);

        cap::reset();
        cap::failAlloc(0);
        void *back = nullptr;
        EXPECT_EQ(mt::unserialize(m(), type, m().body(type), &back), 5u);
        EXPECT_THAT(cap::texts(), ElementsAre(m().cb("unserialize", side(type)) +
                                              ": Allocating Memory Ctx[]\n"));
        EXPECT_EQ(cap::liveBlocks(), 0);
    }

    cap::reset();
    cap::failAlloc(0);
    m().send(kUser, kBus, kDest);
    EXPECT_THAT(cap::texts(), ElementsAre("intfWifiAp_sendReq_" + m().typedSfx +
                                          ": Allocating Memory Ctx[]\n"));
    EXPECT_THAT(fake::calls(), IsEmpty()) << "nothing is sent";

    if (m().twoWay) {
        cap::reset();
        cap::failAlloc(0);
        m().answer(reinterpret_cast<ismMsg_t>(0x77));
        EXPECT_THAT(cap::texts(), ElementsAre("intfWifiAp_sendRes_" + m().typedSfx +
                                              ": Allocating Memory Ctx[]\n"));
        EXPECT_EQ(fake::names(), std::vector<std::string>{"ismCore_isMsg_needRes"});
    }

    cap::reset();
    cap::failAlloc(0);
    char *text = reinterpret_cast<char *>(1);
    m().row().logBody(nullptr, nullptr, nullptr, &text);
    EXPECT_EQ(text, nullptr);
    m().row().logBody(nullptr, nullptr, nullptr, nullptr);
    const std::string log = m().cb("log", "") + ": ";
    EXPECT_THAT(cap::texts(),
                ElementsAre(log + "Allocating Memory N Ctx[]\n", log + "Invalid parameter\n"));
    m().row().logBody(nullptr, nullptr, nullptr, &text);
    ASSERT_NE(text, nullptr);
    EXPECT_STREQ(text, "");
    free(text);
}

// The values handed to the framework when sending and answering.
TEST_P(Msg, SendArguments) {
    void *ctx = sent();
    const fake::Call &c = fake::calls().back();
    const uintptr_t bus = reinterpret_cast<uintptr_t>(kBus),
                    dest = reinterpret_cast<uintptr_t>(kDest);
    if (m().ntfy) {
        EXPECT_EQ(c.fn, "ismIntf_sendReq_ntfy");
        EXPECT_EQ(c.args, (std::vector<uintptr_t>{(uintptr_t)kUser, (uintptr_t)ctx, 0, 0, 0, bus,
                                                  dest, (uintptr_t)intfWifiAp_base.name,
                                                  fake::kNtfyNum, m().index, 0, 0, 18}));
    } else {
        EXPECT_EQ(fake::names(), (std::vector<std::string>{"ismIntf_getCore_user",
                                                           "ismCore_sendMsgReq_toNameUser"}));
        const std::vector<uintptr_t> &a = c.args;
        EXPECT_EQ(a[0], (uintptr_t)kUser + 1) << "the user's core handle";
        EXPECT_EQ(m().twoWay, a[2] != 0) << "response handler";
        EXPECT_EQ(m().twoWay, a[3] != 0) << "client callback";
        EXPECT_EQ(std::vector<uintptr_t>(a.begin() + 4, a.end()),
                  (std::vector<uintptr_t>{0, bus, dest, fake::kCmdNum, m().index, 0xFFFF, 18}));
    }
    EXPECT_EQ(*static_cast<uint32_t *>(ctx), m().magic);
    m().row().freeBody(0, ctx);

    if (m().ntfy) return;
    cap::reset();
    fake::reset();
    EXPECT_EQ(m().send(kUser, kBus, nullptr), 0u);
    EXPECT_THAT(fake::calls(), IsEmpty());
    EXPECT_EQ(cap::allocations(), 0);
    EXPECT_THAT(cap::texts(), ElementsAre(cap::fmt("intfWifiAp_sendReq_%s: user(%p): UserName Null\n",
                                                   m().typedSfx.c_str(), kUser)));
    if (!m().twoWay) return;
    fake::reset();
    fake::answer("ismCore_isMsg_needRes", {1});
    m().answer(reinterpret_cast<ismMsg_t>(0x77));
    EXPECT_EQ(fake::names(), std::vector<std::string>{"ismCore_isMsg_needRes"});
    EXPECT_EQ(cap::allocations(), 0) << "no response needed: nothing built";
    void *res = answered();
    EXPECT_EQ(fake::calls().back().args,
              (std::vector<uintptr_t>{0x77, (uintptr_t)res, 0, 18}));
    m().row().freeBody(1, res);
}

// Dispatch: the dispatch magic, the interface name and both table headers.
TEST_P(Msg, Dispatch) {
    void *v[3] = {(void *)1, (void *)2, (void *)3};
    const std::string fn = m().ntfy ? "ismIntf_modCliNtfyUser_mthd" : "ismIntf_modSrv_mthd";
    fake::answer(fn, {0, 6});
    auto dispatch = [&]() -> int32_t {
        return m().ntfy ? m().modCli(kUser, v[0], v[1], v[2], kBus, kDest)
                        : m().modSrv(kUser, v[0], v[1], v[2]);
    };
    EXPECT_EQ(dispatch(), 0);
    EXPECT_EQ(dispatch(), 6);
    const uintptr_t cmdHdr = (uintptr_t)&intfWifiAp_base.cmdHdr,
                    ntfyHdr = (uintptr_t)&intfWifiAp_base.ntfyHdr,
                    intf = (uintptr_t)intfWifiAp_base.name;
    std::vector<uintptr_t> expected{(uintptr_t)kUser, 1, 2, 3, m().magic + 1};
    if (m().ntfy)
        expected.insert(expected.end(), {(uintptr_t)kBus, (uintptr_t)kDest, intf, cmdHdr, ntfyHdr,
                                         m().index});
    else
        expected.insert(expected.end(), {intf, cmdHdr, ntfyHdr, m().index, 0xFFFF, 0xFFFF});
    EXPECT_EQ(fake::calls().back().args, expected);
    const std::string line =
        m().ntfy ? cap::fmt("intfWifiAp_modCliNtfyUser_recvMsg_%s: user(%p) bus name(bus) user "
                            "name(%p): ModCliNtfyUser\n",
                            m().name.c_str(), kUser, (const void *)kDest)
                 : cap::fmt("intfWifiAp_modSrv_recvMsg_%s: user(%p): ModCliNtfyUser failed(6)\n",
                            m().name.c_str(), kUser);
    EXPECT_THAT(cap::texts(), ElementsAre(line));

    if (!m().ntfy) return;
    ASSERT_EQ(m().needUpdate == nullptr, m().name == "disassocEvent");
    if (!m().needUpdate) return;
    cap::reset();
    fake::answer("ismIntf_modSrv_ntfy_needUpdate", {-3});
    EXPECT_EQ(m().needUpdate(kUser, v[0], v[1], v[2]), -3);
    EXPECT_EQ(fake::calls().back().args,
              (std::vector<uintptr_t>{(uintptr_t)kUser, 1, 2, 3, intf, cmdHdr, ntfyHdr, m().index}));
    EXPECT_THAT(cap::texts(),
                ElementsAre(cap::fmt("intfWifiAp_modSrv_needUpdate_%s: user(%p): ModSrv failed(-3)\n",
                                     m().typedSfx.c_str(), kUser)));
}

// The request handler calls the method with the payload, hands the context
// back without one, and logs a null context.
TEST_P(Msg, RequestHandler) {
    ismMsg_t msg = reinterpret_cast<ismMsg_t>(0x55);
    void *ctx = sent();
    m().row().method(msg, ctx, m().method, 0x99);
    EXPECT_EQ(mt::g_method.calls, 1);
    EXPECT_EQ(mt::g_method.msg, msg);
    EXPECT_EQ(mt::g_method.ref, 0x99u);
    EXPECT_EQ(mt::g_method.payload, m().request);

    fake::reset();
    m().row().method(msg, ctx, nullptr, 0x99);
    EXPECT_EQ(fake::calls().back().fn, "ismCore_sendMsgRes");
    EXPECT_EQ(fake::calls().back().args, (std::vector<uintptr_t>{0x55, (uintptr_t)ctx, 20, 18}));
    EXPECT_EQ(mt::g_method.calls, 1);
    m().row().freeBody(0, ctx);

    m().row().method(msg, nullptr, m().method, 0);
    EXPECT_THAT(cap::texts(),
                ElementsAre("intfWifiAp_recvReq_" + m().typedSfx + ": Ctx[NULL] text[]\n"));
}

// The response handler registered with a request calls the client's callback
// found in the framework's message record, or hands the context back.
using TwoWay = Msg;

TEST_P(TwoWay, ResponseHandler) {
    m().row().freeBody(0, sent());
    auto handler = reinterpret_cast<ismResHandler_t>(fake::calls().back().args[2]);
    void *cb = reinterpret_cast<void *>(fake::calls().back().args[3]);
    ASSERT_NE(handler, nullptr);

    mt::MsgRecord withCb{cb, 0x42}, without{nullptr, 0x42};
    void *ctx = answered();
    handler(nullptr, &withCb, ctx);
    EXPECT_EQ(mt::g_callback.calls, 1);
    EXPECT_EQ(mt::g_callback.ref, 0x42u);
    EXPECT_EQ(mt::g_callback.payload, m().response);

    fake::reset();
    handler(nullptr, &without, ctx);
    EXPECT_EQ(fake::calls().back().args, (std::vector<uintptr_t>{(uintptr_t)&without, (uintptr_t)ctx, 20, 18}));
    m().row().freeBody(1, ctx);

    handler(nullptr, &withCb, nullptr);
    EXPECT_THAT(cap::texts(), ElementsAre("intfWifiAp_recvRes_" + m().name + ": Ctx[NULL] text[]\n"));
}

// A held context is left alone; a request's magic is checked before its hold
// word, a response's and a notification's after it.
TEST_P(Msg, HoldWord) {
    for (uint32_t type : types()) {
        void *ctx = contextOf(type);
        auto *words = static_cast<uint16_t *>(ctx);
        words[2] = 1;  // the hold word follows the 32-bit magic
        uint32_t magic = *static_cast<uint32_t *>(ctx);
        *static_cast<uint32_t *>(ctx) = 0x0BADBAD0;
        bool checkedFirst = type == 0 && !m().ntfy;
        if (checkedFirst) {
            EXPECT_DEATH(m().row().freeBody(type, ctx),
                         m().cb("free", side(type)) + "\\([0-9]+\\): Check Magic\\[" +
                             m().magicName + cap::fmt("-%X\\] Ctx\\[ptr\\(0x[0-9a-f]+\\) magic\\(BADBAD0\\)\\] text\\[\\]", m().magic));
        } else {
            m().row().freeBody(type, ctx);
            EXPECT_EQ(cap::liveBlocks(), 1) << "held: not released";
        }
        *static_cast<uint32_t *>(ctx) = magic;
        m().row().freeBody(type, ctx);
        EXPECT_EQ(cap::liveBlocks(), 1) << "still held";
        words[2] = 0;
        m().row().freeBody(type, ctx);
        EXPECT_EQ(cap::liveBlocks(), 0);
        EXPECT_EQ(cap::lastFreedWord(), INTFWIFIAP_MAGIC_FREED) << "poisoned before release";
    }
}

// A context of another message aborts every function that checks it.
TEST_P(Msg, ForeignContextAborts) {
    uint32_t foreign[16] = {m().magic ^ 0x100};
    const std::string check = "Check Magic\\[" + m().magicName + "-";
    uint8_t *body = nullptr;
    uint32_t n = 0;
    EXPECT_DEATH(m().row().serializeBody(0, foreign, &body, &n),
                 m().cb("serialize", "Req") + "\\([0-9]+\\): " + check);
    EXPECT_DEATH(m().row().method(nullptr, foreign, m().method, 0),
                 "intfWifiAp_recvReq_" + m().typedSfx + "\\([0-9]+\\): " + check);
}

INSTANTIATE_TEST_SUITE_P(All, Msg, ::testing::ValuesIn(mt::messages()), nameOf);
INSTANTIATE_TEST_SUITE_P(All, TwoWay, ::testing::ValuesIn(mt::twoWay()), nameOf);

}  // namespace
