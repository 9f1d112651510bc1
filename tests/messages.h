// Every message as the message suites see it: its identity, a sample request
// and response with their payload elements, and methods that record them.
#pragma once

#include <ctype.h>

#include <functional>
#include <string>
#include <vector>

#include "codec_testing.h"
#include "intfWifiAp.h"

namespace mt {

using ct::Bytes, ct::operator+;

// The reference a two-way command's sample request is sent with.
inline constexpr uintptr_t kRef = 0x5EF;

// How a sample is sent: as it is, without the client's callback, or with a
// null pointer for every payload argument.
enum Mode { kSample, kNoCallback, kNull };

struct Message {
    std::string name;  // callback suffix: "configure", "wpsStatus"
    bool ntfy = false;
    // Dispatch: a command's server side, a notification's client and need-update.
    int32_t (*modSrv)(ismUser_t, void *, void *, void *) = nullptr;
    int32_t (*modCli)(ismUser_t, void *, void *, void *, const char *, const char *) = nullptr;
    int32_t (*needUpdate)(ismUser_t, void *, void *, void *) = nullptr;
    uint32_t magic;
    uint16_t version = 0;
    void *method;  // records what it receives in g_method
    // Sends the sample request (a two-way command's callback records the
    // response in g_callback) or publishes the sample notification.
    std::function<uint32_t(ismUser_t, const char *bus, const char *user, Mode)> sendWith;
    Bytes request = {};        // its payload elements
    std::string nullReq = "";  // the argument a null payload is refused for ("": none)
    std::function<void(ismMsg_t, Mode)> answerWith = {};  // two-way: sends the sample response
    Bytes response = {};
    std::string nullRes = "";
    bool twoWay = false;
    uint32_t index = 0;  // row in its table

    uint32_t send(ismUser_t u, const char *bus, const char *user, Mode mode = kSample) const {
        return sendWith(u, bus, user, mode);
    }
    void answer(ismMsg_t msg, Mode mode = kSample) const { answerWith(msg, mode); }
    const intfWifiAp_msgEntry &row() const {
        return ntfy ? intfWifiAp_base.ntfy[index] : intfWifiAp_base.cmd[index];
    }
    std::string upper(size_t n) const {  // the name, its first n letters in capitals
        std::string s = name;
        for (size_t i = 0; i < n && i < s.size(); ++i) s[i] = char(toupper(s[i]));
        return s;
    }
    std::string typedSfx() const { return ntfy ? "ntfy" + upper(1) : name; }
    std::string magicName() const {
        return (ntfy ? "INTFWIFIAP_MAGIC_MSGNTFY_" : "INTFWIFIAP_MAGIC_MSGCMD_") + upper(-1);
    }
    // A body callback's log name: op "free", side "Req", "Res" or "".
    std::string cb(const char *op, const char *side) const {
        return std::string("intfWifiAp_cbEvtMsgMngt_") + op + "Body_" +
               (ntfy ? "msgNtfy" : "msgCmd") + side + "_" + name;
    }
    Bytes header() const { return ct::scalar(0, magic) + ct::scalar(1, version); }
    Bytes body(uint32_t type) const { return header() + (type ? response : request); }
};
inline void PrintTo(const Message &m, std::ostream *os) { *os << m.name; }

// In row order: the commands, then the notifications.
const std::vector<Message> &messages();
std::vector<Message> commands();
std::vector<Message> notifications();

// What the last method or callback received, its payload as elements.
struct Seen {
    int calls = 0;
    ismMsg_t msg = nullptr;
    uintptr_t ref = 0;
    Bytes payload;
};
extern Seen g_method, g_callback;
// When set, a server method answers with the sample response; its reference
// must then be the Message.
extern bool g_answerInMethod;

}  // namespace mt
