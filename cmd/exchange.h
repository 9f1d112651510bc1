// The exchange engine: every command and notification is a descriptor made
// from its row of the message list, and these functions do all that the
// messages have in common. Only the typed ends (send arguments, the method's
// and the callback's calls) are written per message.
#pragma once

#include <initializer_list>

#include "codec.h"
#include "internal.h"
#include "messages.h"

namespace wifiap::msg {

struct Row {
    const char *name;      // the row's name: "Configure"
    const char *sfx;       // callback suffix: "configure", "wpsStatus"
    const char *typedSfx;  // sendReq/recvReq suffix: "configure", "ntfyWpsStatus"
    uint32_t index;        // row in its table
    uint32_t magic;
    const char *magicName;
    uint16_t version;       // body version, compared in its low 16 bits
    bool ntfy;              // a notification: one body type, hold word tested first
    const codec::Ops *req;  // payload of the request or notification
    const codec::Ops *res;  // payload of the response; null: the message has none

    bool twoWay() const { return res != nullptr; }
};

// The rows of the two tables, in index order.
extern const Row kCmds[INTFWIFIAP_CMD_COUNT];
extern const Row kNtfys[INTFWIFIAP_NTFY_COUNT];

// What the sender passed for the payload: a record's address, or one address
// per bare field. Read only once the early tests have passed.
using Args = std::initializer_list<const void *>;

// Body callbacks.
void freeBody(const Row &d, uint32_t type, void *ctx);
uint32_t serializeBody(const Row &d, uint32_t type, void *ctx, uint8_t **body, uint32_t *len);
uint32_t unserializeBody(const Row &d, uint32_t type, const uint8_t *body, void **ctx,
                         uint32_t *size);
void logBody(const Row &d, char **text);

// Client: a request (two-way when cb is given), or a notification from the server.
uint32_t sendReq(const Row &d, ismResHandler_t handler, ismUser_t user, void *cb, uintptr_t ref,
                 const char *bus, const char *name, Args args);
void sendNtfy(const Row &d, ismUser_t user, const char *bus, const char *name, Args args);
// Server: the response to `msg`, unless the framework needs none.
void sendRes(const Row &d, ismMsg_t msg, Args args);

int32_t modSrvRecvMsg(const Row &d, ismUser_t user, void *v1, void *v2, void *v3);
int32_t modCliNtfyRecvMsg(const Row &d, ismUser_t user, void *v1, void *v2, void *v3,
                          const char *bus, const char *name);
int32_t needUpdate(const Row &d, ismUser_t user, void *v1, void *v2, void *v3);

// Checks a received request or notification context; returns its payload when
// the method is to be called, null when the context was null or handed back.
const void *recvReq(const Row &d, ismMsg_t msg, void *ctx, void *method);

// Checks a response context; returns its payload and the client's callback and
// reference when the callback is to be called.
struct Answer {
    const void *payload;
    void *cb;
    uintptr_t ref;
};
Answer recvRes(const Row &d, ismMsg_t msg, void *ctx);

// A method or callback as the framework carries it, and back to its type.
template <typename F>
void *fn(F f) {
    return reinterpret_cast<void *>(f);
}
template <typename F>
F as(void *f) {
    return reinterpret_cast<F>(f);
}

}  // namespace wifiap::msg
