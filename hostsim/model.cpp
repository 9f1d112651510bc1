// The lookups over the stand-in's tables, users and messages.
#include "model.h"

#include "transport.h"

namespace hostsim {

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

Table *knownTable(uint32_t num, uint32_t index) {
    for (auto &t : world().tables)
        if (t->num == num) return index < t->count ? t.get() : nullptr;
    return nullptr;
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

User *userNamed(const char *bus, const char *name) {
    if (!name) return nullptr;
    for (auto &u : world().users)
        if (u->name == name && (!bus || u->bus == bus)) return u.get();
    return nullptr;
}

bool listens(const User &u, uint16_t num) { return u.via != &inProcess() || u.regs.count(num); }

User *lookUp(const char *bus, const char *name) {
    if (User *u = userNamed(bus, name)) return u;
    for (Transport *t : transports())
        if (User *u = t->reach(bus, name)) return u;
    return nullptr;
}

const Registration *registration(const User &u, uint16_t num) {
    auto it = u.regs.find(num);
    return it != u.regs.end() && it->second.dispatch ? &it->second : nullptr;
}

const char *busOf(const User *u) { return u ? u->bus.c_str() : nullptr; }
const char *nameOf(const User *u) { return u ? u->name.c_str() : nullptr; }

Msg *msgOf(const void *handle) {
    auto it = world().msgs.find(handle);
    return it == world().msgs.end() ? nullptr : it->second.get();
}

Msg &newMsg(uint32_t kind, Table &t, uint32_t index, User *from, User *to) {
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

void release(Msg &m) {
    for (Transport *t : transports()) t->released(m);
    world().msgs.erase(&m);
}

}  // namespace hostsim
