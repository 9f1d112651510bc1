// Packing and unpacking through a row's body callbacks, and the trace hook.
#include "body.h"

#include <stdlib.h>

namespace hostsim {
namespace {

void emit(uint32_t stage, const Table &t, uint32_t index, uint32_t bodyType, const uint8_t *bytes,
          uint32_t length, const User *from, const User *to, uint32_t code) {
    World &w = world();
    if (!w.trace) return;
    char *text = nullptr;
    if (intfWifiAp_logBody_t log = t.logBody(index)) log(nullptr, nullptr, nullptr, &text);
    hs_trace tr{stage, t.name(),    t.rowName(index), index,     bodyType,   bytes, length,
                text,  busOf(from), nameOf(from),     busOf(to), nameOf(to), code};
    w.trace(w.traceRef, &tr);
    free(text);
}

}  // namespace

Body pack(const Table &t, uint32_t index, uint32_t bodyType, void *ctx, const User *from,
          const User *to) {
    uint8_t *raw = nullptr;
    uint32_t length = 0;
    intfWifiAp_serializeBody_t ser = t.serialize(index);
    uint32_t code = ser ? ser(bodyType, ctx, &raw, &length) : UINT32_MAX;
    t.freeContext(index, bodyType, ctx);
    Body body;
    if (code == 0 && raw)
        body = {{raw, [](const uint8_t *p) { free(const_cast<uint8_t *>(p)); }}, length};
    else
        free(raw);
    emit(HS_TRACE_SENT, t, index, bodyType, body.bytes.get(), body.length, from, to, code);
    if (!body) failed();
    return body;
}

void *unpack(const Table &t, uint32_t index, uint32_t bodyType, const Body &body, const User *from,
             const User *to, uint32_t *refusal) {
    World &w = world();
    void *ctx = nullptr;
    uint32_t size = body.length;  // how the callback learns what it may read
    intfWifiAp_unserializeBody_t un = t.unserialize(index);
    uint32_t code = un ? un(bodyType, body.bytes.get(), &ctx, &size) : UINT32_MAX;
    ++w.stats.messages;
    w.stats.bytes += body.length;
    emit(HS_TRACE_RECEIVED, t, index, bodyType, body.bytes.get(), body.length, from, to, code);
    if (code == 0 && ctx) return ctx;
    if (refusal) *refusal = code ? code : UINT32_MAX;
    failed();
    return nullptr;
}

}  // namespace hostsim
