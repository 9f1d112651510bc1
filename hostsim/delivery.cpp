// The lifetime of a message, whole:
//   queued    sendRequest and publish make it as its body leaves;
//   held      on arrival its receiver's fresh context is held while one
//             callback runs with it (busy), and freed after it unless
//             handed back meanwhile;
//   answered  a two-way request's response has left, during its dispatch or
//             later: until then the request outlives its dispatch;
//   ended     handed back, or its answer could not leave: nothing is owed;
//   released  its record goes once nothing more can happen to it (settle),
//             or when its response has arrived.
// A reset frees what is held and drops what is in transit.
#include "delivery.h"

#include "body.h"
#include "transport.h"

namespace hostsim {
namespace {

using Cargo = Parcel::Cargo;

void settle(Msg &m) {
    if (!m.busy && !m.answered && !owesAnswer(m)) release(m);
}

void end(Msg &m) {
    m.ended = true;
    settle(m);
}

// A parcel the transport cannot take fails, and ends its message as a
// receiver's refusal would.
bool post(Parcel p) {
    Msg *m = p.msg;
    bool away = p.to->via != &inProcess() && p.cargo == Cargo::Message && !m->twoWay;
    if (p.to->via->carry(std::move(p))) {
        if (away) release(*m);  // nothing of it comes back to this process
        return true;
    }
    failed();
    if (m) end(*m);
    return false;
}

uint32_t nextSeq() {
    World &w = world();
    if (++w.seq == 0) ++w.seq;
    return w.seq;
}

template <typename Call>
void hold(Msg &m, void *ctx, uint32_t bodyType, Call call) {
    m.held = ctx;
    m.heldType = bodyType;
    m.busy = true;
    call();
    m.busy = false;
    if (m.held) m.table->freeContext(m.index, m.heldType, m.held);
    m.held = nullptr;
}

void callDispatch(const Registration &r, User &u, uint32_t kind, uint32_t index, Msg *m,
                  const User *named) {
    Method method = u.method(kind, index);
    if (r.dispatch(r.ref, &u, kind, index, m, method.fn, reinterpret_cast<void *>(method.ref),
                   busOf(named), nameOf(named)) != 0)
        failed();
}

void arriveMessage(Msg &m, const Body &body) {
    const Registration *reg = registration(*m.receiver, m.table->num);
    if (!m.table->live || !reg) {
        failed();
        end(m);
        return;
    }
    Registration r = *reg;  // the dispatch may unregister
    void *ctx = unpack(*m.table, m.index, kRequestBody, body, m.sender, m.receiver, &m.refused);
    if (!ctx) {
        end(m);
        return;
    }
    hold(m, ctx, kRequestBody,
         [&] { callDispatch(r, *m.receiver, m.kind, m.index, &m, m.sender); });
    settle(m);
}

void arriveResponse(Msg &m, const Body &body) {
    if (!m.table->live)
        failed();
    else if (void *ctx = unpack(*m.table, m.index, kResponseBody, body, m.receiver, m.sender))
        hold(m, ctx, kResponseBody, [&] { m.resHandler(m.sender, &m, ctx); });
    release(m);
}

void arriveNeedUpdate(const Parcel &p) {
    const Registration *reg = registration(*p.to, p.table->num);
    if (!p.table->live || !reg) {
        failed();
        return;
    }
    callDispatch(*reg, *p.to, HS_NEED_UPDATE, p.index, nullptr, p.to);
}

void resetNow() {
    World &w = world();
    for (auto &[handle, m] : w.msgs)
        if (m->held) m->table->freeContext(m->index, m->heldType, m->held);
    for (Transport *t : transports()) t->clear();  // their parcels point into the world
    w = World{};
}

}  // namespace

uint32_t sendRequest(Table &t, uint32_t index, void *ctx, const Caller &c, User *from, User *to) {
    Body body = pack(t, index, kRequestBody, ctx, from, to);
    if (!body) return 0;
    if (!from || !to || !listens(*to, t.num)) {
        failed();
        return 0;
    }
    Msg &m = newMsg(HS_REQUEST, t, index, from, to);
    m.callback = c.callback;
    m.cbRef = c.cbRef;
    m.resHandler = c.resHandler;
    m.twoWay = c.resHandler != nullptr;
    return post({Cargo::Message, &m, to, &t, index, std::move(body)}) ? nextSeq() : 0;
}

int32_t publish(Table &t, uint32_t index, void *ctx, User *from, const char *onlyUser) {
    Body body = pack(t, index, kRequestBody, ctx, from,
                     onlyUser ? userNamed(nullptr, onlyUser) : nullptr);
    if (!body) return 1;
    if (!from) {
        failed();
        return 1;
    }
    bool reached = false;
    for (auto &u : world().users) {
        if (u.get() == from || !listens(*u, t.num) || (onlyUser && u->name != onlyUser))
            continue;
        Msg &m = newMsg(HS_NOTIFICATION, t, index, from, u.get());
        reached |= post({Cargo::Message, &m, u.get(), &t, index, body});
    }
    if (onlyUser && !reached) {
        failed();
        return 1;
    }
    return 0;
}

bool owesAnswer(const Msg &m) { return m.twoWay && !m.answered && !m.ended; }

int32_t answer(Msg &m, void *ctx) {
    if (!owesAnswer(m) || !m.table->live) {
        m.table->freeContext(m.index, kResponseBody, ctx);
        failed();
        return 1;
    }
    Body body = pack(*m.table, m.index, kResponseBody, ctx, m.receiver, m.sender);
    if (!body) {
        end(m);
        return 1;
    }
    bool away = m.sender->via != &inProcess();
    if (!post({Cargo::Response, &m, m.sender, m.table, m.index, std::move(body)})) return 1;
    if (away)
        end(m);  // its response arrives in another process
    else
        m.answered = true;
    return 0;
}

int32_t handBack(Msg &m, void *ctx) {
    if (!ctx || ctx != m.held) {
        failed();
        return 1;
    }
    m.table->freeContext(m.index, m.heldType, ctx);
    m.held = nullptr;
    failed();  // nobody handled it
    end(m);
    return 0;
}

void abandon(Msg &m) { end(m); }

void askNeedUpdate(User &server, Table &t, uint32_t index) {
    post({Cargo::NeedUpdate, nullptr, &server, &t, index, {}});
}

void arrive(Parcel &p) {
    switch (p.cargo) {
    case Cargo::Message:
        return arriveMessage(*p.msg, p.body);
    case Cargo::Response:
        return arriveResponse(*p.msg, p.body);
    case Cargo::NeedUpdate:
        return arriveNeedUpdate(p);
    }
}

size_t run() {
    World &w = world();
    if (w.running) return 0;
    w.running = true;
    size_t n = 0;
    auto receiveNext = [] {
        for (Transport *t : transports())
            if (t->receiveNext()) return true;
        return false;
    };
    while (!w.resetPending && receiveNext()) ++n;
    w.running = false;
    if (w.resetPending) resetNow();
    return n;
}

void reset() {
    if (world().running)
        world().resetPending = true;  // the delivery under way still uses what it holds
    else
        resetNow();
}

}  // namespace hostsim
