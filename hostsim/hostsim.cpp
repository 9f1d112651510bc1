// The framework stand-in: tables and users kept in one place, and a queue of
// deliveries that carries bytes only, never the sender's context.
#include "hostsim.h"

#include <stddef.h>
#include <stdlib.h>
#include <string.h>

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "intfWifiAp.h"

namespace {

constexpr uint16_t kNoNum = INTFWIFIAP_NUM_NONE;
constexpr uint32_t kRequestBody = 0;
constexpr uint32_t kResponseBody = 1;
constexpr uint32_t kHandBack = ISM_STATUS_NO_HANDLER;
constexpr uint32_t kMaxRows = 4096;  // keeps a bad count from exhausting memory

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
    const char *rowName(uint32_t row) const { return reinterpret_cast<const char *>(word(row, ISM_ROW_NAME)); }
    intfWifiAp_freeBody_t freeBody(uint32_t row) const {
        return reinterpret_cast<intfWifiAp_freeBody_t>(word(row, ISM_ROW_FREE));
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
    void release(uint32_t row, uint32_t bodyType, void *ctx) const {
        if (intfWifiAp_freeBody_t f = freeBody(row)) f(bodyType, ctx);
    }
};

struct Registration {
    hs_dispatch_t dispatch;
    void *ref;
};

struct User;
struct Core {
    User *user;
};

struct User {
    std::string bus, name;
    Core core{this};
    std::map<uint16_t, Registration> regs;
    std::map<std::pair<uint32_t, uint32_t>, std::pair<void *, uintptr_t>> methods;

    std::pair<void *, uintptr_t> method(uint32_t kind, uint32_t index) const {
        auto it = methods.find({kind, index});
        return it == methods.end() ? std::pair<void *, uintptr_t>{nullptr, 0} : it->second;
    }
};

enum class Kind { Request, Notification };

// What a message handle points to. The library reads the first two words.
struct Msg {
    void *callback;
    uintptr_t cbRef;
    ismResHandler_t resHandler;
    Kind kind;
    Table *table;
    uint32_t index;
    User *sender, *receiver;
    void *held = nullptr;  // the context owned while a callback runs
    uint32_t heldType = 0;
    bool busy = false;      // being delivered: erased by hs_run afterwards
    bool answered = false;  // a response is queued
    bool ended = false;
};
static_assert(offsetof(Msg, callback) == 0 && offsetof(Msg, cbRef) == sizeof(void *));

// Shared by the receivers of one notification, freed after the last one.
using Body = std::shared_ptr<const uint8_t>;

struct Delivery {
    enum What { Request, Response, Notification, NeedUpdate } what;
    Msg *msg;
    Body body;
    uint32_t length;
    User *user;  // need-update only, with num and index
    uint16_t num;
    uint32_t index;
};

struct World {
    std::vector<std::unique_ptr<Table>> tables;
    std::vector<std::unique_ptr<User>> users;
    std::map<const void *, std::unique_ptr<Msg>> msgs;
    std::deque<Delivery> queue;
    std::vector<std::pair<void (*)(void *, int32_t), void *>> bases;
    void (*trace)(void *, const hs_trace *) = nullptr;
    void *traceRef = nullptr;
    hs_stats stats{};
    uint16_t nextNum = 1;
    uint32_t seq = 0;  // of the last request; 0 is never one
    bool running = false;
    bool resetPending = false;
};

// Never destroyed: hosts may still call in while static objects go away.
World &world() {
    static World *w = new World;
    return *w;
}

void failed() { ++world().stats.failures; }

Table *liveTable(uint32_t num) {
    for (auto &t : world().tables)
        if (t->live && t->num == num) return t.get();
    return nullptr;
}

// A send on a table that no longer carries traffic: the context still ends
// through the table's free callback, if the table was ever known.
void refuseSend(uint32_t num, uint32_t index, void *ctx) {
    for (auto &t : world().tables)
        if (t->num == num && index < t->count) {
            t->release(index, kRequestBody, ctx);
            break;
        }
    failed();
}

User *userOf(const void *handle) {
    for (auto &u : world().users)
        if (u.get() == handle) return u.get();
    return nullptr;
}

User *userOfCore(const void *core) {
    for (auto &u : world().users)
        if (&u->core == core) return u.get();
    return nullptr;
}

// A null bus matches any bus.
User *userNamed(const char *bus, const char *name) {
    if (!name) return nullptr;
    for (auto &u : world().users)
        if (u->name == name && (!bus || u->bus == bus)) return u.get();
    return nullptr;
}

Msg *msgOf(const void *handle) {
    auto it = world().msgs.find(handle);
    return it == world().msgs.end() ? nullptr : it->second.get();
}

void erase(Msg &m) { world().msgs.erase(&m); }

Msg &newMsg(Kind kind, Table &t, uint32_t index, User *from, User *to) {
    auto m = std::make_unique<Msg>();
    m->kind = kind;
    m->table = &t;
    m->index = index;
    m->sender = from;
    m->receiver = to;
    Msg &ref = *m;
    world().msgs.emplace(&ref, std::move(m));
    return ref;
}

void end(Msg &m) {
    m.ended = true;
    if (!m.busy && !m.answered) erase(m);
}

const char *busOf(const User *u) { return u ? u->bus.c_str() : nullptr; }
const char *nameOf(const User *u) { return u ? u->name.c_str() : nullptr; }

void emit(uint32_t stage, const Table &t, uint32_t index, uint32_t bodyType, const uint8_t *body,
          uint32_t length, const User *from, const User *to, uint32_t code) {
    World &w = world();
    if (!w.trace) return;
    char *text = nullptr;
    if (intfWifiAp_logBody_t log = t.logBody(index)) log(nullptr, nullptr, nullptr, &text);
    hs_trace tr{stage, t.name(),    t.rowName(index), index,     bodyType,   body, length,
                text,  busOf(from), nameOf(from),     busOf(to), nameOf(to), code};
    w.trace(w.traceRef, &tr);
    free(text);
}

// The sender's context becomes bytes and ends in the free callback either way.
Body pack(const Table &t, uint32_t index, uint32_t bodyType, void *ctx, uint32_t &length,
          const User *from, const User *to) {
    uint8_t *raw = nullptr;
    length = 0;
    intfWifiAp_serializeBody_t ser = t.serialize(index);
    uint32_t code = ser ? ser(bodyType, ctx, &raw, &length) : UINT32_MAX;
    t.release(index, bodyType, ctx);
    Body body;
    if (code == 0 && raw)
        body = Body(raw, [](const uint8_t *p) { free(const_cast<uint8_t *>(p)); });
    else
        free(raw);
    emit(HS_TRACE_SENT, t, index, bodyType, body.get(), body ? length : 0, from, to, code);
    if (!body) failed();
    return body;
}

// The receiver's own context, rebuilt from the bytes alone.
void *unpack(const Delivery &d, const Msg &m, uint32_t bodyType, const User *from, const User *to) {
    World &w = world();
    const Table &t = *m.table;
    void *ctx = nullptr;
    uint32_t size = d.length;  // how the callback learns what it may read
    intfWifiAp_unserializeBody_t un = t.unserialize(m.index);
    uint32_t code = un ? un(bodyType, d.body.get(), &ctx, &size) : UINT32_MAX;
    ++w.stats.messages;
    w.stats.bytes += d.length;
    emit(HS_TRACE_RECEIVED, t, m.index, bodyType, d.body.get(), d.length, from, to, code);
    if (code == 0 && ctx) return ctx;
    failed();
    return nullptr;
}

// Runs one callback with the message's context held, then ends the context
// unless it was handed back meanwhile.
template <typename Call>
void withContext(Msg &m, void *ctx, uint32_t bodyType, Call call) {
    m.held = ctx;
    m.heldType = bodyType;
    m.busy = true;
    call();
    m.busy = false;
    if (m.held) m.table->release(m.index, m.heldType, m.held);
    m.held = nullptr;
}

// A request or a notification reaching its receiver's dispatch.
void deliverToUser(Delivery &d, uint32_t kind) {
    Msg &m = *d.msg;
    auto reg = m.receiver->regs.find(m.table->num);
    if (!m.table->live || reg == m.receiver->regs.end() || !reg->second.dispatch) {
        failed();
        erase(m);
        return;
    }
    Registration r = reg->second;  // the dispatch may unregister
    void *ctx = unpack(d, m, kRequestBody, m.sender, m.receiver);
    if (!ctx) {
        erase(m);
        return;
    }
    const auto target = m.receiver->method(kind, m.index);
    void *method = target.first;
    uintptr_t ref = target.second;
    withContext(m, ctx, kRequestBody, [&] {
        if (r.dispatch(r.ref, m.receiver, kind, m.index, &m, method, reinterpret_cast<void *>(ref),
                       busOf(m.sender), nameOf(m.sender)) != 0)
            failed();
    });
    bool awaited = m.kind == Kind::Request && m.resHandler && !m.ended;
    if (!m.answered && !awaited) erase(m);
}

void deliverResponse(Delivery &d) {
    Msg &m = *d.msg;
    void *ctx = m.table->live ? unpack(d, m, kResponseBody, m.receiver, m.sender) : nullptr;
    if (ctx)
        withContext(m, ctx, kResponseBody, [&] { m.resHandler(m.sender, &m, ctx); });
    else if (!m.table->live)
        failed();
    erase(m);
}

void deliverNeedUpdate(const Delivery &d) {
    auto reg = d.user->regs.find(d.num);
    Table *t = liveTable(d.num);
    if (!t || reg == d.user->regs.end() || !reg->second.dispatch) {
        failed();
        return;
    }
    auto [method, ref] = d.user->method(HS_NEED_UPDATE, d.index);
    if (reg->second.dispatch(reg->second.ref, d.user, HS_NEED_UPDATE, d.index, nullptr, method,
                             reinterpret_cast<void *>(ref), busOf(d.user), nameOf(d.user)) != 0)
        failed();
}

void deliver(Delivery &d) {
    switch (d.what) {
    case Delivery::Request:
        deliverToUser(d, HS_REQUEST);
        break;
    case Delivery::Notification:
        deliverToUser(d, HS_NOTIFICATION);
        break;
    case Delivery::Response:
        deliverResponse(d);
        break;
    case Delivery::NeedUpdate:
        deliverNeedUpdate(d);
        break;
    }
}

void resetNow() {
    World &w = world();
    for (auto &[handle, m] : w.msgs)
        if (m->held) m->table->release(m->index, m->heldType, m->held);
    w.queue.clear();  // frees the bodies before the tables go
    w = World{};
}

// Checks a library dispatch against the delivered message, then calls the
// row's method behind the table header the library passed.
int32_t dispatchRow(Kind kind, void *user, void *v1, void *v2, void *v3, uint32_t dispatchMagic,
                    const void *table, uint32_t index) {
    Msg *m = msgOf(v1);
    const auto *hdr = static_cast<const intfWifiAp_tableHdr *>(table);
    if (!m || m->kind != kind || user != m->receiver || !m->held || !hdr || index >= hdr->count ||
        index != m->index || hdr->num != m->table->num)
        return 1;
    uint32_t magic;
    memcpy(&magic, m->held, sizeof magic);
    if (dispatchMagic != magic + 1) return 2;
    const auto *rows = reinterpret_cast<const intfWifiAp_msgEntry *>(hdr + 1);
    if (!rows[index].method) return 3;
    rows[index].method(v1, m->held, v2, reinterpret_cast<uintptr_t>(v3));
    return 0;
}

}  // namespace

extern "C" {

int32_t evlp_addEvtBase(void (*cb)(void *ctx, int32_t event), void *ctx) {
    if (!cb) return 1;
    world().bases.emplace_back(cb, ctx);
    return 0;
}

uint16_t ismCore_getBase_msgMngt(const char *tableName, uintptr_t **block, uint32_t count) {
    World &w = world();
    if (!tableName || !block || count > kMaxRows || w.nextNum == kNoNum) return kNoNum;
    auto t = std::make_unique<Table>();
    t->num = w.nextNum++;
    t->count = count;
    t->block = std::make_unique<uintptr_t[]>(ISM_BLOCK_WORDS(size_t{count}));
    t->block[ISM_BLOCK_UNREG + 1] = t->num;  // the framework's own word
    *block = t->block.get();
    w.tables.push_back(std::move(t));
    return w.tables.back()->num;
}

int32_t ismCore_putBase_msgMngt(uint16_t num, uint32_t) {
    Table *t = liveTable(num);
    if (!t) return 1;
    t->live = false;
    return 0;
}

int32_t ismIntf_regUser_msgMngt(ismUser_t user, void *param, void *ref, uint16_t num, uint16_t,
                                uint32_t) {
    User *u = userOf(user);
    if (!u || !liveTable(num)) return 1;
    u->regs[num] = {reinterpret_cast<hs_dispatch_t>(param), ref};
    return 0;
}

int32_t ismIntf_unregUser_msgMngt(ismUser_t user, uint16_t num, uint16_t, uint32_t) {
    User *u = userOf(user);
    return u && u->regs.erase(num) ? 0 : 1;
}

int32_t ismIntf_findSrvMthdNtfyUser(void *a, void *b, const char *, uint16_t, void *) {
    return userNamed(static_cast<const char *>(a), static_cast<const char *>(b)) ? 0 : 1;
}

ismCore_t ismIntf_getCore_user(ismUser_t user) {
    User *u = userOf(user);
    return u ? &u->core : nullptr;
}

uint32_t ismCore_sendMsgReq_toNameUser(ismCore_t core, void *ctx, ismResHandler_t resHandler,
                                       void *callback, uintptr_t cbRef, const char *busName,
                                       const char *userName, uint16_t num, uint32_t index, uint32_t,
                                       uint32_t) {
    Table *t = liveTable(num);
    if (!t || index >= t->count) {
        refuseSend(num, index, ctx);
        return 0;
    }
    User *from = userOfCore(core);
    User *to = userNamed(busName, userName);
    uint32_t length;
    Body body = pack(*t, index, kRequestBody, ctx, length, from, to);
    if (!body) return 0;
    if (!from || !to || !to->regs.count(num)) {
        failed();
        return 0;
    }
    Msg &m = newMsg(Kind::Request, *t, index, from, to);
    m.callback = callback;
    m.cbRef = cbRef;
    m.resHandler = resHandler;
    world().queue.push_back({Delivery::Request, &m, std::move(body), length, nullptr, 0, 0});
    World &w = world();
    if (++w.seq == 0) ++w.seq;
    return w.seq;
}

int32_t ismCore_isMsg_needRes(ismMsg_t msg) {
    Msg *m = msgOf(msg);
    return m && m->kind == Kind::Request && m->resHandler && !m->answered && !m->ended ? 0 : 1;
}

int32_t ismCore_sendMsgRes(ismMsg_t msg, void *ctx, uint32_t status, uint32_t) {
    Msg *m = msgOf(msg);
    if (!m || (status != 0 && status != kHandBack)) {  // whose context it is is unknown
        failed();
        return 1;
    }
    if (status == kHandBack) {
        if (!ctx || ctx != m->held) {
            failed();
            return 1;
        }
        m->table->release(m->index, m->heldType, ctx);
        m->held = nullptr;
        failed();
        end(*m);
        return 0;
    }
    if (ismCore_isMsg_needRes(m) != 0 || !m->table->live) {
        m->table->release(m->index, kResponseBody, ctx);
        failed();
        return 1;
    }
    uint32_t length;
    Body body = pack(*m->table, m->index, kResponseBody, ctx, length, m->receiver, m->sender);
    if (!body) {
        end(*m);
        return 1;
    }
    m->answered = true;
    world().queue.push_back({Delivery::Response, m, std::move(body), length, nullptr, 0, 0});
    return 0;
}

int32_t ismIntf_modSrv_mthd(ismUser_t user, void *v1, void *v2, void *v3, uint32_t dispatchMagic,
                            const char *, const void *cmdTable, const void *, uint32_t index,
                            uint32_t, uint32_t) {
    return dispatchRow(Kind::Request, user, v1, v2, v3, dispatchMagic, cmdTable, index);
}

int32_t ismIntf_modCliNtfyUser_mthd(ismUser_t user, void *v1, void *v2, void *v3,
                                    uint32_t dispatchMagic, const char *, const char *,
                                    const char *, const void *, const void *ntfyTable,
                                    uint32_t index) {
    return dispatchRow(Kind::Notification, user, v1, v2, v3, dispatchMagic, ntfyTable, index);
}

int32_t ismIntf_modSrv_ntfy_needUpdate(ismUser_t user, void *, void *v2, void *v3, const char *,
                                       const void *, const void *ntfyTable, uint32_t index) {
    const auto *hdr = static_cast<const intfWifiAp_tableHdr *>(ntfyTable);
    if (!userOf(user) || !hdr || index >= hdr->count) return 1;
    if (v2)
        reinterpret_cast<void (*)(uintptr_t, uint32_t)>(v2)(reinterpret_cast<uintptr_t>(v3), index);
    return 0;
}

int32_t ismIntf_sendReq_ntfy(ismUser_t user, void *ctx, void *, void *, uintptr_t, const char *,
                             const char *userName, const char *, uint32_t num, uint32_t index,
                             uint32_t, uint32_t, uint32_t) {
    World &w = world();
    Table *t = liveTable(num);
    if (!t || index >= t->count) {
        refuseSend(num, index, ctx);
        return 1;
    }
    User *from = userOf(user);
    bool targeted = userName && *userName;
    uint32_t length;
    Body body = pack(*t, index, kRequestBody, ctx, length, from,
                     targeted ? userNamed(nullptr, userName) : nullptr);
    if (!body) return 1;
    if (!from) {
        failed();
        return 1;
    }
    bool reached = false;
    for (auto &u : w.users) {
        if (u.get() == from || !u->regs.count(t->num) || (targeted && u->name != userName))
            continue;
        Msg &m = newMsg(Kind::Notification, *t, index, from, u.get());
        w.queue.push_back({Delivery::Notification, &m, body, length, nullptr, 0, 0});
        reached = true;
    }
    if (targeted && !reached) {
        failed();
        return 1;
    }
    return 0;
}

void hs_reset(void) {
    World &w = world();
    if (w.running)
        w.resetPending = true;  // the delivery under way still uses what it holds
    else
        resetNow();
}

ismUser_t hs_newUser(const char *busName, const char *userName) {
    if (!userName) return nullptr;
    const char *bus = busName ? busName : "";
    if (userNamed(bus, userName)) return nullptr;
    auto u = std::make_unique<User>();
    u->bus = bus;
    u->name = userName;
    world().users.push_back(std::move(u));
    return world().users.back().get();
}

void hs_setMethod(ismUser_t user, uint32_t kind, uint32_t index, void *method, uintptr_t ref) {
    User *u = userOf(user);
    if (!u) return;
    if (method)
        u->methods[{kind, index}] = {method, ref};
    else
        u->methods.erase({kind, index});
}

size_t hs_run(void) {
    World &w = world();
    if (w.running) return 0;
    w.running = true;
    size_t n = 0;
    while (!w.queue.empty() && !w.resetPending) {
        Delivery d = std::move(w.queue.front());
        w.queue.pop_front();
        deliver(d);
        ++n;
    }
    w.running = false;
    if (w.resetPending) resetNow();
    return n;
}

void hs_raiseBaseEvent(int32_t event) {
    auto bases = world().bases;  // a callback may add another
    for (auto &[cb, ctx] : bases) cb(ctx, event);
}

int32_t hs_dropTable(uint16_t num) {
    Table *t = liveTable(num);
    if (!t) return 1;
    t->live = false;
    if (auto unreg = reinterpret_cast<intfWifiAp_unreg_t>(t->block[ISM_BLOCK_UNREG])) unreg(num);
    return 0;
}

int32_t hs_needUpdate(ismUser_t server, uint16_t num, uint32_t index) {
    User *u = userOf(server);
    Table *t = liveTable(num);
    if (!u || !t || index >= t->count) return 1;
    world().queue.push_back({Delivery::NeedUpdate, nullptr, nullptr, 0, u, num, index});
    return 0;
}

void hs_setTrace(void (*fn)(void *ref, const hs_trace *t), void *ref) {
    world().trace = fn;
    world().traceRef = ref;
}

hs_stats hs_getStats(void) { return world().stats; }

}  // extern "C"
