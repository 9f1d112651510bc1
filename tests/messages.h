// Every message of the interface as the message suites see it: its row and
// identity, a sample request and response with their expected payload
// elements, and typed methods and callbacks that record what they receive.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "codec_testing.h"
#include "intfWifiAp.h"

namespace mt {

using ct::Bytes;
using ct::operator+;

struct Message {
    std::string name;      // callback suffix: "configure", "wpsStatus"
    std::string typedSfx;  // "configure", "ntfyWpsStatus"
    bool ntfy;
    uint32_t index;
    uint32_t magic;
    std::string magicName;
    uint16_t version;
    bool twoWay;
    // Sends the sample request (or publishes the sample notification); the
    // client callback, if the message has one, is `recordAnswer`.
    std::function<uint32_t(ismUser_t, const char *bus, const char *user)> send;
    std::function<void(ismMsg_t)> answer;  // two-way: sends the sample response
    Bytes request, response;               // their payload elements
    void *method;                          // server or client method recording its payload
    // The message's dispatch functions: server (commands), client and need-update (notifications).
    int32_t (*modSrv)(ismUser_t, void *, void *, void *) = nullptr;
    int32_t (*modCli)(ismUser_t, void *, void *, void *, const char *, const char *) = nullptr;
    int32_t (*needUpdate)(ismUser_t, void *, void *, void *) = nullptr;

    const intfWifiAp_msgEntry &row() const {
        return ntfy ? intfWifiAp_base.ntfy[index] : intfWifiAp_base.cmd[index];
    }
    // A body callback's log name: op "free", side "Req", "Res" or "".
    std::string cb(const char *op, const char *side) const {
        return std::string("intfWifiAp_cbEvtMsgMngt_") + op + "Body_" +
               (ntfy ? "msgNtfy" : "msgCmd") + side + "_" + name;
    }
    Bytes body(uint32_t type) const;  // header and sample payload
};

// A framework message record: the client's callback and reference come first.
struct MsgRecord {
    void *cb;
    uintptr_t ref;
};

inline Bytes header(uint32_t magic, uint32_t version) {
    return ct::scalar(0, magic) + ct::scalar(1, version);
}

inline void PrintTo(const Message &m, std::ostream *os) { *os << m.name; }

const std::vector<Message> &messages();
std::vector<Message> commands();
std::vector<Message> notifications();
std::vector<Message> twoWay();

// What the last method or callback received: the message handle, its
// reference, and its payload encoded as elements.
struct Seen {
    int calls = 0;
    ismMsg_t msg = nullptr;
    uintptr_t ref = 0;
    Bytes payload;
};
extern Seen g_method, g_callback;
// When set, a server method answers its request with the sample response
// (the method reference being the Message).
extern bool g_answerInMethod;

// Body callbacks run through the message's row.
uint32_t serialize(const Message &m, uint32_t type, void *ctx, Bytes *body);
// Unserializes an exactly-sized heap copy of `body`; the context size is the body's length on entry.
uint32_t unserialize(const Message &m, uint32_t type, const Bytes &body, void **ctx,
                     uint32_t *ctxSize = nullptr);

}  // namespace mt
