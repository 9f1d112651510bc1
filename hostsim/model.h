// What the stand-in knows: the tables the library handed over, the users, the
// messages on their way, and the lookups the rest of it shares. Nothing here
// sends or delivers.
#ifndef HOSTSIM_MODEL_H
#define HOSTSIM_MODEL_H

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "hostsim.h"
#include "intfWifiAp.h"

namespace hostsim {

class Transport;

// The bodyType of the body callbacks.
constexpr uint32_t kRequestBody = 0;  // a notification's too
constexpr uint32_t kResponseBody = 1;

// A table the library handed over, read through its block.
struct Table {
    uint16_t num;
    uint32_t count;
    std::unique_ptr<uintptr_t[]> block;
    // Put back or dropped: no new traffic, but contexts still end through it.
    bool live = true;

    uintptr_t word(uint32_t row, uint32_t field) const {
        return block[ISM_BLOCK_ROWS + ISM_ROW_WORDS * row + field];
    }
    const char *name() const { return reinterpret_cast<const char *>(block[ISM_BLOCK_NAME]); }
    const char *rowName(uint32_t row) const {
        return reinterpret_cast<const char *>(word(row, ISM_ROW_NAME));
    }
    intfWifiAp_serializeBody_t serialize(uint32_t row) const {
        return reinterpret_cast<intfWifiAp_serializeBody_t>(word(row, ISM_ROW_SERIALIZE));
    }
    intfWifiAp_unserializeBody_t unserialize(uint32_t row) const {
        return reinterpret_cast<intfWifiAp_unserializeBody_t>(word(row, ISM_ROW_UNSERIALIZE));
    }
    intfWifiAp_logBody_t logBody(uint32_t row) const {
        return reinterpret_cast<intfWifiAp_logBody_t>(word(row, ISM_ROW_LOG));
    }
    // Ends a context through the row's free callback.
    void freeContext(uint32_t row, uint32_t bodyType, void *ctx) const {
        auto f = reinterpret_cast<intfWifiAp_freeBody_t>(word(row, ISM_ROW_FREE));
        if (f) f(bodyType, ctx);
    }
};

struct Registration {
    hs_dispatch_t dispatch;
    void *ref;
};

struct Method {
    void *fn;
    uintptr_t ref;
};

struct User;
// What ismIntf_getCore_user hands out: a handle distinct from the user's.
struct Core {
    User *user;
};

struct User {
    std::string bus, name;
    Transport *via;  // the transport that reaches it
    Core core{this};
    std::map<uint16_t, Registration> regs;                     // by table number
    std::map<std::pair<uint32_t, uint32_t>, Method> methods;  // by kind and index

    Method method(uint32_t kind, uint32_t index) const {
        auto it = methods.find({kind, index});
        return it == methods.end() ? Method{} : it->second;
    }
};

// What a message handle points to. Its sender's end first: the library reads
// the client's callback and reference as the handle's first two words.
// delivery.cpp alone moves a message through its lifetime.
struct Msg {
    void *callback;
    uintptr_t cbRef;
    ismResHandler_t resHandler;
    uint32_t kind;  // HS_REQUEST or HS_NOTIFICATION
    bool twoWay;    // its receiver owes an answer
    Table *table;
    uint32_t index;
    User *sender, *receiver;
    void *held;         // the receiver's context while a callback runs with it
    uint32_t heldType;  // that context's bodyType
    bool busy;          // a callback runs with it
    bool answered;      // its response has left
    bool ended;         // handed back, or its answer failed: nothing more is owed
    uint32_t refused;   // the unserialize code that refused its body, 0 if none did
};
static_assert(offsetof(Msg, callback) == 0 && offsetof(Msg, cbRef) == sizeof(void *));

// All the stand-in holds between calls; hs_reset puts back a fresh one.
struct World {
    std::vector<std::unique_ptr<Table>> tables;
    std::vector<std::unique_ptr<User>> users;  // in creation order, the order of fan-out
    std::map<const void *, std::unique_ptr<Msg>> msgs;  // by handle
    std::vector<std::pair<void (*)(void *, int32_t), void *>> bases;
    void (*trace)(void *, const hs_trace *) = nullptr;
    void *traceRef = nullptr;
    hs_stats stats{};
    uint16_t nextNum = 1;
    uint32_t seq = 0;  // of the last request; 0 is never one
    bool running = false;
    bool resetPending = false;
};

World &world();
void failed();

Table *liveTable(uint32_t num);
// Live or not: a table whose rows can still end a context.
Table *knownTable(uint32_t num, uint32_t index);
User *userOf(const void *handle);
User *userOfCore(const void *core);
User *userNamed(const char *bus, const char *name);  // a null bus matches any
// Whether messages of the table may go to the user: registered with it, or in
// another process, whose users the bus alone knows.
bool listens(const User &u, uint16_t num);
// Null if the user lacks a dispatch for the table.
const Registration *registration(const User &u, uint16_t num);
const char *busOf(const User *u);
const char *nameOf(const User *u);

Msg *msgOf(const void *handle);
Msg &newMsg(uint32_t kind, Table &t, uint32_t index, User *from, User *to);
void release(Msg &m);

}  // namespace hostsim

#endif  // HOSTSIM_MODEL_H
