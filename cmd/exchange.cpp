#include "exchange.h"

#include <stdlib.h>

namespace wifiap::msg {

namespace {

constexpr uint32_t kAnyIndex = 0xFFFF;

enum Side { kRequest, kResponse, kPlain };

// The piece of a body callback's log name that tells the side.
const char *const kCmdSide[] = {"msgCmdReq_", "msgCmdRes_", "msgCmd_"};
const char *const kNtfySide[] = {"msgNtfyReq_", "msgNtfyRes_", "msgNtfy_"};

Who cbWho(const Desc &d, const char *op, Side side) {
    return Who{"intfWifiAp_cbEvtMsgMngt_", op, (d.ntfy ? kNtfySide : kCmdSide)[side], d.sfx};
}

size_t ctxSize(const codec::Ops *ops) { return ops ? ops->ctxBytes : sizeof(CtxHead); }

// The side a body type selects. Unknown types and the response side of a
// message that has none are logged here; `lf` is false for the free callback,
// whose "unknown" line has no line feed.
bool sideOf(const Desc &d, uint32_t type, const char *op, const char *noResponse, bool lf,
            Side *side, const codec::Ops **ops) {
    if (type == INTFWIFIAP_BODY_REQUEST) {
        *side = kRequest;
        *ops = d.req;
        return true;
    }
    Who plain = cbWho(d, op, kPlain);
    if (type != INTFWIFIAP_BODY_RESPONSE) {
        WLOG_ERR(plain, lf ? TXT_TYPE_UNKNOWN : TXT_TYPE_UNKNOWN_NOLF, type);
        return false;
    }
    if (!d.twoWay) {
        WLOG_ERR(plain, "%s", noResponse);
        return false;
    }
    *side = kResponse;
    *ops = d.res;
    return true;
}

// A null payload argument is refused before anything is allocated: sending
// a zeroed record in its place would hide the caller's mistake.
bool argsMissing(const codec::Ops *ops, Args args, const Who &who, const char *handle,
                 const void *h) {
    const char *arg = ops ? ops->missing(args.begin()) : nullptr;
    if (arg) WLOG_ERR(who, "%s(%p): %s Null\n", handle, h, arg);
    return arg != nullptr;
}

// A new zero-filled context with its magic and the sender's payload.
void *newCtx(const Desc &d, const codec::Ops *ops, Args args, const Who &who) {
    void *ctx = calloc(1, ctxSize(ops));
    if (!ctx) {
        WLOG_ERR(who, TXT_ALLOC_CTX, "");
        return nullptr;
    }
    static_cast<CtxHead *>(ctx)->magic = d.magic;
    // Only records' copies can fail, and only through a nested record's copy.
    if (ops && ops->fill(payloadOf(ctx, ops), args.begin()) != 0)
        WLOG_ERR(who, TXT_COPY_FAILED, ops->name);
    return ctx;
}

const intfWifiAp_desc &B() { return intfWifiAp_base; }

}  // namespace

void freeBody(const Desc &d, uint32_t type, void *ctx) {
    Side side;
    const codec::Ops *ops;
    if (!sideOf(d, type, "freeBody_", "No free body response process\n", false, &side, &ops))
        return;
    Who who = cbWho(d, "freeBody_", side);
    if (!ctx) {
        WLOG_ERR(who, TXT_CTX_NULL, "");
        return;
    }
    auto *head = static_cast<CtxHead *>(ctx);
    // A command request is checked before its hold word; the other sides test
    // the hold word first and leave a held context alone, magic unseen.
    bool holdFirst = d.ntfy || side == kResponse;
    if (holdFirst && head->hold != 0) return;
    CHECK_MAGIC(who, d.magicName, d.magic, ctx);
    if (!holdFirst && head->hold != 0) return;
    if (ops) ops->clean(payloadOf(ctx, ops));
    // Through volatile: a store just before free() is otherwise optimised away.
    *static_cast<volatile uint32_t *>(&head->magic) = INTFWIFIAP_MAGIC_FREED;
    free(ctx);
}

uint32_t serializeBody(const Desc &d, uint32_t type, void *ctx, uint8_t **body, uint32_t *len) {
    Side side;
    const codec::Ops *ops;
    if (!sideOf(d, type, "serializeBody_", "No Serialize response process\n", true, &side, &ops))
        return INTFWIFIAP_BODY_TYPE_UNHANDLED;
    Who who = cbWho(d, "serializeBody_", side);
    if (!ctx) {
        WLOG_ERR(who, TXT_CTX_NULL, "");
        return INTFWIFIAP_BODY_PAYLOAD;
    }
    CHECK_MAGIC(who, d.magicName, d.magic, ctx);
    const void *payload = ops ? payloadOf(ctx, ops) : nullptr;
    const codec::Header header{static_cast<CtxHead *>(ctx)->magic, d.version};
    uint32_t n = codec::kHeader.size(&header) + (ops ? ops->size(payload) : 0);
    auto *buf = static_cast<uint8_t *>(calloc(1, n));
    if (!buf) {
        WLOG_ERR(who, TXT_ALLOC_N, "");
        return INTFWIFIAP_BODY_NOMEM;
    }
    uint8_t *cur = buf;
    codec::kHeader.write(&header, &cur);
    if (ops) {
        uint32_t rc = ops->write(payload, &cur);
        if (rc != 0) {
            WLOG_ERR(who,
                     side == kRequest ? "BodyReq(%p): On serialize failed(%d)\n"
                                      : "pBodyReq(%p): On serialize failed(%d)\n",
                     buf, rc);
            free(buf);
            return rc;
        }
    }
    *body = buf;
    *len = n;
    return INTFWIFIAP_BODY_OK;
}

uint32_t unserializeBody(const Desc &d, uint32_t type, const uint8_t *body, void **out,
                         uint32_t *size) {
    Side side;
    const codec::Ops *ops;
    if (!sideOf(d, type, "unserializeBody_", "No Unserialize response process\n", true, &side,
                &ops))
        return INTFWIFIAP_BODY_TYPE_UNHANDLED;
    Who who = cbWho(d, "unserializeBody_", side);
    const size_t received = *size;
    const size_t n = ctxSize(ops);
    void *ctx = calloc(1, n);
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
    } else if (ops) {
        // Records log their own lines; bare fields log as part of the body.
        rc = ops->read(payloadOf(ctx, ops), &cur, received - static_cast<size_t>(cur - body),
                       ops->name[0] ? codec::ReadLog{} : bodyLog);
    }
    if (rc != INTFWIFIAP_BODY_OK) {
        free(ctx);
        return rc;
    }
    static_cast<CtxHead *>(ctx)->magic = header.magic;
    *out = ctx;
    *size = static_cast<uint32_t>(n);
    return INTFWIFIAP_BODY_OK;
}

void logBody(const Desc &d, char **text) {
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

uint32_t sendReq(const Desc &d, ismResHandler_t handler, ismUser_t user, void *cb, uintptr_t ref,
                 const char *bus, const char *name, Args args) {
    Who who{"intfWifiAp_sendReq_", d.typedSfx};
    if (!name) {
        WLOG_ERR(who, "user(%p): UserName Null\n", user);
        return 0;
    }
    if (argsMissing(d.req, args, who, "user", user)) return 0;
    void *ctx = newCtx(d, d.req, args, who);
    if (!ctx) return 0;
    return ismCore_sendMsgReq_toNameUser(ismIntf_getCore_user(user), ctx, cb ? handler : nullptr,
                                         cb, ref, bus, name, B().cmdHdr.num, d.index, kAnyIndex,
                                         kSendFlags);
}

void sendNtfy(const Desc &d, ismUser_t user, const char *bus, const char *name, Args args) {
    Who who{"intfWifiAp_sendReq_", d.typedSfx};
    if (argsMissing(d.req, args, who, "user", user)) return;
    void *ctx = newCtx(d, d.req, args, who);
    if (!ctx) return;
    ismIntf_sendReq_ntfy(user, ctx, nullptr, nullptr, 0, bus, name, B().name, B().ntfyHdr.num,
                         d.index, 0, 0, kSendFlags);
}

void sendRes(const Desc &d, ismMsg_t msg, Args args) {
    if (ismCore_isMsg_needRes(msg) != 0) return;
    Who who{"intfWifiAp_sendRes_", d.typedSfx};
    if (argsMissing(d.res, args, who, "msg", msg)) return;
    void *ctx = newCtx(d, d.res, args, who);
    if (!ctx) return;
    ismCore_sendMsgRes(msg, ctx, INTFWIFIAP_BODY_OK, kSendFlags);
}

int32_t modSrvRecvMsg(const Desc &d, ismUser_t user, void *v1, void *v2, void *v3) {
    int32_t rc = ismIntf_modSrv_mthd(user, v1, v2, v3, d.magic + 1, B().name, &B().cmdHdr,
                                     &B().ntfyHdr, d.index, kAnyIndex, kAnyIndex);
    const Who who{"intfWifiAp_modSrv_recvMsg_", d.sfx};
    if (rc != 0) WLOG_ERR(who, "user(%p): ModCliNtfyUser failed(%d)\n", user, rc);
    return rc;
}

int32_t modCliNtfyRecvMsg(const Desc &d, ismUser_t user, void *v1, void *v2, void *v3,
                          const char *bus, const char *name) {
    int32_t rc = ismIntf_modCliNtfyUser_mthd(user, v1, v2, v3, d.magic + 1, bus, name, B().name,
                                             &B().cmdHdr, &B().ntfyHdr, d.index);
    const Who who{"intfWifiAp_modCliNtfyUser_recvMsg_", d.sfx};
    if (rc != 0)
        WLOG_ERR(who, "user(%p) bus name(%s) user name(%p): ModCliNtfyUser\n", user,
                 bus ? bus : "(null)", static_cast<const void *>(name));
    return rc;
}

int32_t needUpdate(const Desc &d, ismUser_t user, void *v1, void *v2, void *v3) {
    int32_t rc = ismIntf_modSrv_ntfy_needUpdate(user, v1, v2, v3, B().name, &B().cmdHdr,
                                                &B().ntfyHdr, d.index);
    const Who who{"intfWifiAp_modSrv_needUpdate_", d.typedSfx};
    if (rc != 0) WLOG_ERR(who, "user(%p): ModSrv failed(%d)\n", user, rc);
    return rc;
}

const void *recvReq(const Desc &d, ismMsg_t msg, void *ctx, void *method) {
    Who who{"intfWifiAp_recvReq_", d.typedSfx};
    if (!ctx) {
        WLOG_ERR(who, TXT_CTX_NULL, "");
        return nullptr;
    }
    CHECK_MAGIC(who, d.magicName, d.magic, ctx);
    if (!method) {
        ismCore_sendMsgRes(msg, ctx, INTFWIFIAP_STATUS_NO_HANDLER, kSendFlags);
        return nullptr;
    }
    return payloadOf(ctx, d.req);
}

Answer recvRes(const Desc &d, ismMsg_t msg, void *ctx) {
    Who who{"intfWifiAp_recvRes_", d.sfx};
    if (!ctx) {
        WLOG_ERR(who, TXT_CTX_NULL, "");
        return {};
    }
    CHECK_MAGIC(who, d.magicName, d.magic, ctx);
    // The framework's record of the message opens with the client's callback
    // and reference, as given to the request.
    void *const *record = static_cast<void *const *>(msg);
    void *cb = record[0];
    if (!cb) {
        ismCore_sendMsgRes(msg, ctx, INTFWIFIAP_STATUS_NO_HANDLER, kSendFlags);
        return {};
    }
    return {payloadOf(ctx, d.res), cb, reinterpret_cast<uintptr_t>(record[1])};
}

}  // namespace wifiap::msg
