#include "exchange.h"

#include <stdlib.h>

#include "records.h"

namespace wifiap::msg {

#define WIFIAP_CMD_ROW(N, s, U, version, Req, Res)                                            \
    {#N,                                                                                        \
     #s,                                                                                        \
     #s,                                                                                        \
     INTFWIFIAP_CMD_##U,                                                                        \
     INTFWIFIAP_MAGIC_MSGCMD_##U,                                                               \
     "INTFWIFIAP_MAGIC_MSGCMD_" #U,                                                             \
     version,                                                                                   \
     false,                                                                                     \
     &codec::k##Req,                                                                            \
     codec::k##Res##Desc.count ? &codec::k##Res : nullptr},
#define WIFIAP_NTFY_ROW(N, s, U, version, Payload, update)                                    \
    {#N,      #s,    "ntfy" #N, INTFWIFIAP_NTFY_##U, INTFWIFIAP_MAGIC_MSGNTFY_##U,             \
     "INTFWIFIAP_MAGIC_MSGNTFY_" #U, version, true, &codec::k##Payload, nullptr},
#define WIFIAP_SKIP(...)

constinit const Row kCmds[] = {WIFIAP_MESSAGES(WIFIAP_CMD_ROW, WIFIAP_SKIP)};
constinit const Row kNtfys[] = {WIFIAP_MESSAGES(WIFIAP_SKIP, WIFIAP_NTFY_ROW)};

namespace {

enum Side { kRequest, kResponse, kPlain };

// The piece of a body callback's log name that tells the side.
const char *const kCmdSide[] = {"msgCmdReq_", "msgCmdRes_", "msgCmd_"};
const char *const kNtfySide[] = {"msgNtfyReq_", "msgNtfyRes_", "msgNtfy_"};

Who cbWho(const Row &d, const char *op, Side side) {
    return Who{"intfWifiAp_cbEvtMsgMngt_", op, (d.ntfy ? kNtfySide : kCmdSide)[side], d.sfx};
}

// The side a body type selects. Unknown types and the response side of a
// message that has none are logged here; `lf` is false for the free callback,
// whose "unknown" line has no line feed.
const codec::Ops *sideOf(const Row &d, uint32_t type, const char *op, const char *noResponse,
                         bool lf, Side *side) {
    if (type == INTFWIFIAP_BODY_REQUEST) {
        *side = kRequest;
        return d.req;
    }
    Who plain = cbWho(d, op, kPlain);
    if (type != INTFWIFIAP_BODY_RESPONSE) {
        WLOG_ERR(plain, lf ? TXT_TYPE_UNKNOWN : TXT_TYPE_UNKNOWN_NOLF, type);
        return nullptr;
    }
    if (!d.twoWay()) {
        WLOG_ERR(plain, "%s", noResponse);
        return nullptr;
    }
    *side = kResponse;
    return d.res;
}

// A context about to be used: a null one is logged and skipped, a foreign one
// is fatal.
bool present(const Row &d, void *ctx, const Who &who) {
    if (!ctx) {
        WLOG_ERR(who, TXT_CTX_NULL, "");
        return false;
    }
    CHECK_MAGIC(who, d.magicName, d.magic, ctx);
    return true;
}

// A null payload argument is refused before anything is allocated: sending
// a zeroed record in its place would hide the caller's mistake.
bool argsMissing(const codec::Ops &ops, Args args, const Who &who, const char *handle,
                 const void *h) {
    const char *arg = ops.missing(args.begin());
    if (arg) WLOG_ERR(who, "%s(%p): %s Null\n", handle, h, arg);
    return arg != nullptr;
}

// A new zero-filled context with its magic and the sender's payload.
void *newCtx(const Row &d, const codec::Ops &ops, Args args, const Who &who) {
    void *ctx = calloc(1, ops.ctxBytes);
    if (!ctx) {
        WLOG_ERR(who, TXT_ALLOC_CTX, "");
        return nullptr;
    }
    static_cast<codec::CtxHead *>(ctx)->magic = d.magic;
    // Copies fail only through a nested record's copy, which no record can
    // make fail today; the line stays for the day one can.
    if (ops.fill(static_cast<uint8_t *>(ctx) + ops.at, args.begin()) != 0)
        WLOG_ERR(who, TXT_COPY_FAILED, ops.name);
    return ctx;
}

// The framework's dispatch is keyed by the context's magic plus one: its own
// convention, which keeps a dispatch key from ever being taken for a context's
// magic (the row's index tells apart the messages that share a magic).
uint32_t dispatchMagic(const Row &d) { return d.magic + 1; }

}  // namespace

[[gnu::noinline]]
void freeBody(const Row &d, uint32_t type, void *ctx) {
    Side side;
    const codec::Ops *ops =
        sideOf(d, type, "freeBody_", "No free body response process\n", false, &side);
    if (!ops) return;
    Who who = cbWho(d, "freeBody_", side);
    auto *head = static_cast<codec::CtxHead *>(ctx);
    // A command request is checked before its hold word; the other sides test
    // the hold word first and leave a held context alone, magic unseen.
    const bool holdFirst = d.ntfy || side == kResponse;
    if (holdFirst && head && head->hold != 0) return;
    if (!present(d, ctx, who)) return;
    if (!holdFirst && head->hold != 0) return;
    ops->clean(static_cast<uint8_t *>(ctx) + ops->at);
    // Through volatile: a store just before free() is otherwise optimised away.
    *static_cast<volatile uint32_t *>(&head->magic) = INTFWIFIAP_MAGIC_FREED;
    free(ctx);
}

[[gnu::noinline]]
uint32_t serializeBody(const Row &d, uint32_t type, void *ctx, uint8_t **body, uint32_t *len) {
    Side side;
    const codec::Ops *ops =
        sideOf(d, type, "serializeBody_", "No Serialize response process\n", true, &side);
    if (!ops) return INTFWIFIAP_BODY_TYPE_UNHANDLED;
    Who who = cbWho(d, "serializeBody_", side);
    if (!present(d, ctx, who)) return INTFWIFIAP_BODY_PAYLOAD;
    const void *payload = static_cast<uint8_t *>(ctx) + ops->at;
    const codec::Header header{static_cast<codec::CtxHead *>(ctx)->magic, d.version};
    uint32_t n = codec::kHeader.size(&header) + ops->size(payload);
    auto *buf = static_cast<uint8_t *>(calloc(1, n));
    if (!buf) {
        WLOG_ERR(who, TXT_ALLOC_N, "");
        return INTFWIFIAP_BODY_NOMEM;
    }
    uint8_t *cur = buf;
    codec::kHeader.write(&header, &cur);
    // No writer fails today (they write into a buffer sized beforehand); the
    // line is there for a record operation that can.
    if (uint32_t rc = ops->write(payload, &cur); rc != 0) {
        WLOG_ERR(who, side == kRequest ? "BodyReq(%p): On serialize failed(%d)\n"
                                       : "pBodyReq(%p): On serialize failed(%d)\n",
                 buf, rc);
        free(buf);
        return rc;
    }
    *body = buf;
    *len = n;
    return INTFWIFIAP_BODY_OK;
}

[[gnu::noinline]]
uint32_t unserializeBody(const Row &d, uint32_t type, const uint8_t *body, void **out,
                         uint32_t *size) {
    Side side;
    const codec::Ops *ops =
        sideOf(d, type, "unserializeBody_", "No Unserialize response process\n", true, &side);
    if (!ops) return INTFWIFIAP_BODY_TYPE_UNHANDLED;
    Who who = cbWho(d, "unserializeBody_", side);
    const size_t received = *size;
    void *ctx = calloc(1, ops->ctxBytes);
    if (!ctx) {
        WLOG_ERR(who, TXT_ALLOC_CTX, "");
        return INTFWIFIAP_BODY_NOMEM;
    }
    const codec::ReadLog bodyLog{&who, body};
    const uint8_t *cur = body;
    codec::Header header{};
    uint32_t rc = INTFWIFIAP_BODY_OK;
    if (codec::kHeader.read(&header, &cur, received, bodyLog) != 0) {
        rc = INTFWIFIAP_BODY_HEADER;
    } else if ((header.version & 0xFFFF) != d.version || header.magic != d.magic) {
        // Another message's body (or a forged one) is refused here rather
        // than left to abort at the next magic check.
        rc = INTFWIFIAP_BODY_HEADER;
    } else {
        // Records log their own lines; bare fields log as part of the body.
        rc = ops->read(static_cast<uint8_t *>(ctx) + ops->at, &cur,
                       received - static_cast<size_t>(cur - body),
                       ops->desc->bare ? bodyLog : codec::ReadLog{});
    }
    if (rc != INTFWIFIAP_BODY_OK) {
        free(ctx);
        return rc;
    }
    static_cast<codec::CtxHead *>(ctx)->magic = header.magic;
    *out = ctx;
    *size = ops->ctxBytes;
    return INTFWIFIAP_BODY_OK;
}

[[gnu::noinline]]
void logBody(const Row &d, char **text) {
    Who who = cbWho(d, "logBody_", kPlain);
    if (!text) {
        WLOG_ERR(who, "Invalid parameter\n");
        return;
    }
    // No field is described: every message answers with an empty text.
    *text = static_cast<char *>(malloc(1));
    if (!*text) {
        WLOG_ERR(who, TXT_ALLOC_N, "");
        return;
    }
    **text = '\0';
}

[[gnu::noinline]]
uint32_t sendReq(const Row &d, ismResHandler_t handler, ismUser_t user, void *cb, uintptr_t ref,
                 const char *bus, const char *name, Args args) {
    Who who{"intfWifiAp_sendReq_", d.typedSfx};
    if (!name) {
        WLOG_ERR(who, "user(%p): UserName Null\n", user);
        return 0;
    }
    if (argsMissing(*d.req, args, who, "user", user)) return 0;
    void *ctx = newCtx(d, *d.req, args, who);
    if (!ctx) return 0;
    return ismCore_sendMsgReq_toNameUser(ismIntf_getCore_user(user), ctx, cb ? handler : nullptr,
                                         cb, ref, bus, name, intfWifiAp_base.cmdHdr.num, d.index, ISM_ANY,
                                         ISM_SEND_FLAGS);
}

[[gnu::noinline]]
void sendNtfy(const Row &d, ismUser_t user, const char *bus, const char *name, Args args) {
    Who who{"intfWifiAp_sendReq_", d.typedSfx};
    if (argsMissing(*d.req, args, who, "user", user)) return;
    void *ctx = newCtx(d, *d.req, args, who);
    if (!ctx) return;
    ismIntf_sendReq_ntfy(user, ctx, nullptr, nullptr, 0, bus, name, intfWifiAp_base.name, intfWifiAp_base.ntfyHdr.num,
                         d.index, 0, 0, ISM_SEND_FLAGS);
}

[[gnu::noinline]]
void sendRes(const Row &d, ismMsg_t msg, Args args) {
    if (ismCore_isMsg_needRes(msg) != 0) return;
    Who who{"intfWifiAp_sendRes_", d.typedSfx};
    if (argsMissing(*d.res, args, who, "msg", msg)) return;
    void *ctx = newCtx(d, *d.res, args, who);
    if (!ctx) return;
    ismCore_sendMsgRes(msg, ctx, INTFWIFIAP_BODY_OK, ISM_SEND_FLAGS);
}

[[gnu::noinline]]
int32_t modSrvRecvMsg(const Row &d, ismUser_t user, void *v1, void *v2, void *v3) {
    int32_t rc = ismIntf_modSrv_mthd(user, v1, v2, v3, dispatchMagic(d), intfWifiAp_base.name, &intfWifiAp_base.cmdHdr,
                                     &intfWifiAp_base.ntfyHdr, d.index, ISM_ANY, ISM_ANY);
    const Who who{"intfWifiAp_modSrv_recvMsg_", d.sfx};
    if (rc != 0) WLOG_ERR(who, "user(%p): ModCliNtfyUser failed(%d)\n", user, rc);
    return rc;
}

[[gnu::noinline]]
int32_t modCliNtfyRecvMsg(const Row &d, ismUser_t user, void *v1, void *v2, void *v3,
                          const char *bus, const char *name) {
    int32_t rc = ismIntf_modCliNtfyUser_mthd(user, v1, v2, v3, dispatchMagic(d), bus, name, intfWifiAp_base.name,
                                             &intfWifiAp_base.cmdHdr, &intfWifiAp_base.ntfyHdr, d.index);
    const Who who{"intfWifiAp_modCliNtfyUser_recvMsg_", d.sfx};
    if (rc != 0)
        WLOG_ERR(who, "user(%p) bus name(%s) user name(%p): ModCliNtfyUser\n", user,
                 bus ? bus : "(null)", static_cast<const void *>(name));
    return rc;
}

[[gnu::noinline]]
int32_t needUpdate(const Row &d, ismUser_t user, void *v1, void *v2, void *v3) {
    int32_t rc = ismIntf_modSrv_ntfy_needUpdate(user, v1, v2, v3, intfWifiAp_base.name, &intfWifiAp_base.cmdHdr,
                                                &intfWifiAp_base.ntfyHdr, d.index);
    const Who who{"intfWifiAp_modSrv_needUpdate_", d.typedSfx};
    if (rc != 0) WLOG_ERR(who, "user(%p): ModSrv failed(%d)\n", user, rc);
    return rc;
}

[[gnu::noinline]]
const void *recvReq(const Row &d, ismMsg_t msg, void *ctx, void *method) {
    if (!present(d, ctx, Who{"intfWifiAp_recvReq_", d.typedSfx})) return nullptr;
    if (!method) {
        ismCore_sendMsgRes(msg, ctx, ISM_STATUS_NO_HANDLER, ISM_SEND_FLAGS);
        return nullptr;
    }
    return static_cast<uint8_t *>(ctx) + d.req->at;
}

[[gnu::noinline]]
Answer recvRes(const Row &d, ismMsg_t msg, void *ctx) {
    if (!present(d, ctx, Who{"intfWifiAp_recvRes_", d.sfx})) return {};
    // The framework's record of the message opens with the client's callback
    // and reference, as given to the request.
    void *const *record = static_cast<void *const *>(msg);
    void *cb = record[0];
    if (!cb) {
        ismCore_sendMsgRes(msg, ctx, ISM_STATUS_NO_HANDLER, ISM_SEND_FLAGS);
        return {};
    }
    return {static_cast<uint8_t *>(ctx) + d.res->at, cb, reinterpret_cast<uintptr_t>(record[1])};
}

}  // namespace wifiap::msg

// The four body callbacks of every row, named after its table and message.
#define WIFIAP_BODY_CALLBACKS(D, table, s)                                                       \
    INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_##table##_##s(uint32_t t, void *x) {    \
        wifiap::msg::freeBody(D, t, x);                                                          \
    }                                                                                            \
    INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_##table##_##s(                 \
        uint32_t t, void *x, uint8_t **b, uint32_t *n) {                                         \
        return wifiap::msg::serializeBody(D, t, x, b, n);                                        \
    }                                                                                            \
    INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_##table##_##s(               \
        uint32_t t, const uint8_t *b, void **x, uint32_t *n) {                                   \
        return wifiap::msg::unserializeBody(D, t, b, x, n);                                      \
    }                                                                                            \
    INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_##table##_##s(void *, void *, void *,    \
                                                                      char **text) {             \
        wifiap::msg::logBody(D, text);                                                           \
    }
#define WIFIAP_CMD_CALLBACKS(N, s, U, ...) \
    WIFIAP_BODY_CALLBACKS(wifiap::msg::kCmds[INTFWIFIAP_CMD_##U], msgCmd, s)
#define WIFIAP_NTFY_CALLBACKS(N, s, U, ...) \
    WIFIAP_BODY_CALLBACKS(wifiap::msg::kNtfys[INTFWIFIAP_NTFY_##U], msgNtfy, s)

extern "C" {
WIFIAP_MESSAGES(WIFIAP_CMD_CALLBACKS, WIFIAP_NTFY_CALLBACKS)
}
