// The D-Bus transport: users of other processes, reached through a bus with
// sd-bus. Each user of this process owns org.wifiap.<bus>.<user>; the other
// processes' users are stand-ins (via this transport) whose names the bus
// gives: a request's sender from its unique name, a publisher from its match.
// A caller that is no framework user gets a stand-in of its own, named by its
// unique name, for as long as that name lives.
#include <errno.h>
#include <poll.h>
#include <stdlib.h>
#include <string.h>
#include <systemd/sd-bus.h>
#include <time.h>

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "delivery.h"
#include "transport.h"

namespace hostsim {
namespace {

constexpr const char *kPrefix = "org.wifiap.";
constexpr const char *kRoot = "/org/wifiap";
constexpr const char *kPathPattern = "/org/wifiap/%/%";
constexpr const char *kInterface = "org.wifiap.IntfWifiAp1";
constexpr const char *kNeedUpdate = "NeedUpdate";
constexpr const char *kNotHandled = "org.wifiap.Error.NotHandled";
constexpr const char *kRefused = "org.wifiap.Error.Refused";
// The bus of the stand-ins of callers that are no framework user.
constexpr const char *kCallerBus = "dbus";
constexpr uint32_t kMaxBody = 64u << 20;  // dbus-daemon drops a sender past it
// Every notification's receivers in other processes, as one user.
constexpr const char *kEveryone = "org.freedesktop.DBus";

// A bus-name element of any text: '_' first, and '_' plus two hex digits for
// each byte that is not a letter or digit.
std::string escape(const std::string &s) {
    std::string out = "_";
    for (unsigned char c : s) {
        if (isalnum(c)) {
            out += char(c);
            continue;
        }
        char hex[4];
        snprintf(hex, sizeof hex, "_%02x", c);
        out += hex;
    }
    return out;
}

bool unescape(const std::string &e, std::string &out) {
    if (e.empty() || e[0] != '_') return false;
    out.clear();
    for (size_t i = 1; i < e.size(); ++i) {
        if (e[i] != '_') {
            out += e[i];
            continue;
        }
        if (i + 2 >= e.size()) return false;
        out += char(strtoul(e.substr(i + 1, 2).c_str(), nullptr, 16));
        i += 2;
    }
    return true;
}

std::string wellKnown(const User &u) { return kPrefix + escape(u.bus) + "." + escape(u.name); }

bool fromWellKnown(const char *name, std::string &bus, std::string &user) {
    size_t n = strlen(kPrefix);
    if (!name || strncmp(name, kPrefix, n)) return false;
    std::string rest = name + n;
    size_t dot = rest.find('.');
    return dot != std::string::npos && unescape(rest.substr(0, dot), bus) &&
           unescape(rest.substr(dot + 1), user);
}

// A copy of the bytes an `ay` argument holds, as a body.
Body readBody(sd_bus_message *m) {
    const void *p = nullptr;
    size_t n = 0;
    if (sd_bus_message_read_array(m, 'y', &p, &n) < 0 || n == 0 || n > kMaxBody) return {};
    auto *bytes = static_cast<uint8_t *>(malloc(n));
    if (!bytes) return {};
    memcpy(bytes, p, n);
    return {{bytes, [](const uint8_t *b) { free(const_cast<uint8_t *>(b)); }}, uint32_t(n)};
}

// The framework's calls mark no table as commands or notifications; the
// library names its notification table so.
bool notifies(const Table &t) {
    const char *n = t.name();
    size_t len = n ? strlen(n) : 0;
    return len >= 4 && !strcmp(n + len - 4, "Ntfy");
}

// The live row of that name, among notifications or commands.
Table *rowNamed(const char *member, bool notification, uint32_t &index) {
    if (!member) return nullptr;
    for (auto &t : world().tables)
        for (uint32_t i = 0; t->live && notifies(*t) == notification && i < t->count; ++i)
            if (t->rowName(i) && !strcmp(t->rowName(i), member)) return index = i, t.get();
    return nullptr;
}

class Dbus final : public Transport {
public:
    sd_bus *bus = nullptr;
    uint64_t timeout = 5'000'000;

    int connect(const char *address);
    void disconnect();

    bool carry(Parcel p) override;
    bool receiveNext() override {
        if (!bus) return false;
        declare();
        int r = sd_bus_process(bus, nullptr);
        if (r < 0) failed();
        return r > 0;
    }
    void clear() override {
        for (auto &[m, slot] : pending_) sd_bus_slot_unref(slot);
        for (auto &[m, call] : calls_) sd_bus_message_unref(call);
        for (auto &[u, slot] : matches_) sd_bus_slot_unref(slot);
        pending_.clear(), calls_.clear(), matches_.clear();
        callers_.clear(), leaving_.clear(), asked_.clear();
        vtable_ = sd_bus_slot_unref(vtable_);
        if (bus)
            for (auto &u : world().users)
                if (u->via != this) sd_bus_release_name_async(bus, nullptr, wellKnown(*u).c_str(), nullptr, nullptr);
    }
    void added(User &u) override {
        if (!bus || u.via == this) return;
        if (sd_bus_request_name(bus, wellKnown(u).c_str(), 0) < 0) failed();
        proxy("", kEveryone);
        declare();
    }
    User *reach(const char *busName, const char *name) override {
        if (!bus || !name) return nullptr;
        User *u = proxy(busName ? busName : "", name);
        subscribe(*u);
        return u;
    }
    void released(Msg &m) override {
        if (auto it = pending_.find(&m); it != pending_.end()) {
            sd_bus_slot_unref(it->second);
            pending_.erase(it);
        }
        if (auto it = calls_.find(&m); it != calls_.end()) {  // ended with no answer
            if (m.refused)
                sd_bus_reply_method_errorf(it->second, kRefused, "code %u", m.refused);
            else
                sd_bus_reply_method_errorf(it->second, kNotHandled, "no answer");
            sd_bus_message_unref(it->second);
            calls_.erase(it);
        }
        for (User *u : {m.sender, m.receiver})
            if (leaving_.count(u) && !usedBesides(*u, &m)) forget(u);
    }

private:
    std::map<Msg *, sd_bus_slot *> pending_;      // requests awaiting their reply
    std::map<Msg *, sd_bus_message *> calls_;     // calls awaiting this process's answer
    std::map<User *, sd_bus_slot *> matches_;     // the notifications of a publisher
    std::map<std::string, std::string> owners_;  // unique name to well-known name
    std::weak_ptr<const uint8_t> lastSignal_;    // the body of the last signal to everyone
    std::map<std::string, User *> callers_;      // by unique name: callers of no framework user
    std::set<User *> leaving_;                   // callers gone, still named by a message
    std::set<std::pair<User *, std::string>> asked_;  // need-updates asked, asked again on return
    sd_bus_slot *vtable_ = nullptr;
    std::vector<uint16_t> declared_;  // the live tables vtable_ lists
    std::vector<std::string> members_;
    std::vector<sd_bus_vtable> rows_;

    User *proxy(const std::string &busName, const std::string &name) {
        if (User *u = userNamed(busName.c_str(), name.c_str())) return u;
        auto u = std::make_unique<User>();
        u->bus = busName;
        u->name = name;
        u->via = this;
        world().users.push_back(std::move(u));
        return world().users.back().get();
    }
    // The user in this process an object path is for.
    static User *addressed(const char *path) {
        char *b = nullptr, *n = nullptr;
        User *u = nullptr;
        if (sd_bus_path_decode_many(path, kPathPattern, &b, &n) > 0) u = userNamed(b, n);
        free(b), free(n);
        return u && u->via == &inProcess() ? u : nullptr;
    }
    User *senderOf(sd_bus_message *m) {
        const char *unique = sd_bus_message_get_sender(m);
        if (!unique) return nullptr;
        std::string b, n;
        if (auto it = owners_.find(unique);
            it != owners_.end() && fromWellKnown(it->second.c_str(), b, n))
            return proxy(b, n);
        auto [it, fresh] = callers_.try_emplace(unique, nullptr);
        if (fresh) it->second = proxy(kCallerBus, unique);
        return it->second;
    }
    bool isCaller(const User &u) const {
        auto it = callers_.find(u.name);
        return it != callers_.end() && it->second == &u;
    }
    // Where a user's calls and unicast signals go.
    std::string address(const User &u) const { return isCaller(u) ? u.name : wellKnown(u); }
    static bool usedBesides(const User &u, const Msg *m) {
        for (auto &[h, other] : world().msgs)
            if (other.get() != m && (other->sender == &u || other->receiver == &u)) return true;
        return false;
    }
    void forget(User *u) {
        leaving_.erase(u);
        callers_.erase(u->name);
        if (auto it = matches_.find(u); it != matches_.end()) {
            sd_bus_slot_unref(it->second);
            matches_.erase(it);
        }
        std::erase_if(asked_, [u](auto &a) { return a.first == u; });
        std::erase_if(world().users, [u](auto &p) { return p.get() == u; });
    }
    // Introspection lists the live tables' rows: commands as methods,
    // notifications as signals. Rebuilt when the tables change.
    void declare() {
        std::vector<uint16_t> live;
        for (auto &t : world().tables)
            if (t->live) live.push_back(t->num);
        if (vtable_ && live == declared_) return;
        vtable_ = sd_bus_slot_unref(vtable_);
        declared_ = live;
        members_.clear(), rows_.clear();
        std::vector<std::pair<const Table *, uint32_t>> listed;
        for (auto &t : world().tables)
            for (uint32_t i = 0; t->live && i < t->count; ++i) {
                const char *name = t->rowName(i);
                if (!name || !strcmp(name, kNeedUpdate) ||
                    std::find(members_.begin(), members_.end(), name) != members_.end())
                    continue;
                members_.emplace_back(name);
                listed.emplace_back(t.get(), i);
            }
        rows_.push_back(SD_BUS_VTABLE_START(0));
        for (size_t i = 0; i < listed.size(); ++i) {
            const char *name = members_[i].c_str();
            if (notifies(*listed[i].first))
                rows_.push_back(SD_BUS_SIGNAL(name, "ay", 0));
            else
                rows_.push_back(SD_BUS_METHOD(name, "ay", "ay", onCall, SD_BUS_VTABLE_UNPRIVILEGED));
        }
        rows_.push_back(SD_BUS_METHOD(kNeedUpdate, "s", "", onNeedUpdate, SD_BUS_VTABLE_UNPRIVILEGED));
        rows_.push_back(SD_BUS_VTABLE_END);
        if (sd_bus_add_fallback_vtable(bus, &vtable_, kRoot, kInterface, rows_.data(), find, this) < 0)
            failed();
    }
    static int find(sd_bus *, const char *path, const char *, void *, void **found, sd_bus_error *) {
        User *u = addressed(path);
        return u ? (*found = u, 1) : 0;
    }
    // Match before asking, so that the answer cannot come first.
    bool askNeedUpdate(User &server, const std::string &row) {
        subscribe(server);
        asked_.emplace(&server, row);
        sd_bus_message *m = newCall(server, kNeedUpdate);
        bool ok = m && sd_bus_message_append(m, "s", row.c_str()) >= 0 &&
                  sd_bus_message_set_expect_reply(m, 0) >= 0 && sd_bus_send(bus, m, nullptr) >= 0;
        sd_bus_message_unref(m);
        return ok;
    }
    // A publisher has a new owner: the match renewed, its need-updates asked again.
    void returned(const char *name) {
        std::string b, n;
        User *u = fromWellKnown(name, b, n) ? userNamed(b.c_str(), n.c_str()) : nullptr;
        auto it = u && u->via == this ? matches_.find(u) : matches_.end();
        if (it == matches_.end()) return;
        sd_bus_slot *old = it->second;  // dropped once the new one is in place
        matches_.erase(it);
        subscribe(*u);
        sd_bus_slot_unref(old);
        std::vector<std::string> rows;
        for (auto &[pub, row] : asked_)
            if (pub == u) rows.push_back(row);
        for (auto &row : rows)
            if (!askNeedUpdate(*u, row)) failed();
    }
    void subscribe(User &u) {
        if (u.via != this || matches_.count(&u)) return;
        std::string rule = "type='signal',sender='" + wellKnown(u) + "',interface='" + kInterface + "'";
        sd_bus_slot *slot = nullptr;
        if (sd_bus_add_match_async(bus, &slot, rule.c_str(), onSignal, nullptr, &u) >= 0)
            matches_[&u] = slot;
    }
    sd_bus_message *newCall(const User &to, const char *member) {
        char *path = nullptr;
        sd_bus_message *m = nullptr;
        if (sd_bus_path_encode_many(&path, kPathPattern, to.bus.c_str(), to.name.c_str()) < 0)
            return nullptr;
        sd_bus_message_new_method_call(bus, &m, address(to).c_str(), path, kInterface, member);
        free(path);
        return m;
    }
    bool sendMessage(Parcel &p, sd_bus_message *m);

    static int onCall(sd_bus_message *m, void *to, sd_bus_error *);
    static int onNeedUpdate(sd_bus_message *m, void *to, sd_bus_error *);
    static int onGone(sd_bus_message *m, void *self, sd_bus_error *);
    static int onSignal(sd_bus_message *m, void *user, sd_bus_error *);
    static int onReply(sd_bus_message *m, void *msg, sd_bus_error *);
    static int onOwner(sd_bus_message *m, void *self, sd_bus_error *);
};

Dbus &self() { return static_cast<Dbus &>(dbus()); }

int Dbus::connect(const char *address) {
    if (bus) return -EALREADY;
    if (!address) address = getenv("DBUS_SESSION_BUS_ADDRESS");
    if (!address) return -ENOENT;
    int r = sd_bus_new(&bus);
    if (r >= 0) r = sd_bus_set_address(bus, address);
    if (r >= 0) r = sd_bus_set_bus_client(bus, 1);
    if (r >= 0) r = sd_bus_start(bus);
    if (r >= 0)
        r = sd_bus_add_match(bus, nullptr,
                             "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',"
                             "arg0namespace='org.wifiap'",
                             onOwner, this);
    // Every name that goes: a caller's stand-in goes with its unique name.
    if (r >= 0)
        r = sd_bus_add_match(bus, nullptr,
                             "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',"
                             "arg2=''",
                             onGone, this);
    char **names = nullptr;
    if (r >= 0) r = sd_bus_list_names(bus, &names, nullptr);
    for (char **n = names; n && *n; ++n) {
        sd_bus_creds *c = nullptr;
        const char *unique = nullptr;
        if (!strncmp(*n, kPrefix, strlen(kPrefix)) &&
            sd_bus_get_name_creds(bus, *n, SD_BUS_CREDS_UNIQUE_NAME, &c) >= 0 &&
            sd_bus_creds_get_unique_name(c, &unique) >= 0)
            owners_[unique] = *n;
        sd_bus_creds_unref(c);
    }
    for (char **n = names; n && *n; ++n) free(*n);
    free(names);
    if (r < 0) {
        disconnect();
        return r;
    }
    for (size_t i = 0; i < world().users.size(); ++i) added(*world().users[i]);
    return 0;
}

void Dbus::disconnect() {
    clear();
    bus = sd_bus_flush_close_unref(bus);
    owners_.clear();
}

bool Dbus::sendMessage(Parcel &p, sd_bus_message *m) {
    bool ok = m && sd_bus_message_append_array(m, 'y', p.body.bytes.get(), p.body.length) >= 0;
    if (ok && p.cargo == Parcel::Cargo::Message && p.msg->twoWay) {
        sd_bus_slot *slot = nullptr;
        ok = sd_bus_call_async(bus, &slot, m, onReply, p.msg, timeout) >= 0;
        if (ok) pending_[p.msg] = slot;
    } else if (ok) {
        ok = sd_bus_send(bus, m, nullptr) >= 0;  // a call sent so expects no reply
    }
    sd_bus_message_unref(m);
    return ok;
}

bool Dbus::carry(Parcel p) {
    if (!bus || p.body.length > kMaxBody) return false;
    const char *member = p.table->rowName(p.index);
    switch (p.cargo) {
    case Parcel::Cargo::NeedUpdate:
        return member && askNeedUpdate(*p.to, member);
    case Parcel::Cargo::Response: {
        auto it = calls_.find(p.msg);
        if (it == calls_.end()) return false;
        sd_bus_message *r = nullptr;
        sd_bus_message_new_method_return(it->second, &r);
        sd_bus_message_unref(it->second);
        calls_.erase(it);
        return sendMessage(p, r);
    }
    case Parcel::Cargo::Message:
        if (p.msg->kind == HS_REQUEST) return sendMessage(p, newCall(*p.to, member));
        // One signal per notification: to everyone, or to the one user named.
        if (p.to->name == kEveryone || lastSignal_.expired() ||
            lastSignal_.lock() != p.body.bytes) {
            if (p.to->name == kEveryone) lastSignal_ = p.body.bytes;
            char *path = nullptr;
            sd_bus_message *m = nullptr;
            const User *from = p.msg->sender;
            if (sd_bus_path_encode_many(&path, kPathPattern, from->bus.c_str(), from->name.c_str()) >= 0)
                sd_bus_message_new_signal(bus, &m, path, kInterface, member);
            free(path);
            if (m && p.to->name != kEveryone) sd_bus_message_set_destination(m, address(*p.to).c_str());
            return sendMessage(p, m);
        }
        return true;
    }
    return false;
}

// The vtable has checked the signature; `to` is the user its path names.
int Dbus::onCall(sd_bus_message *m, void *to, sd_bus_error *) {
    Dbus &d = self();
    uint32_t index = 0;
    Table *t = rowNamed(sd_bus_message_get_member(m), false, index);
    User *from = d.senderOf(m);
    Body body = t && from ? readBody(m) : Body{};
    if (!body) {
        failed();
        return sd_bus_reply_method_errorf(m, kRefused, "no command, or an empty body"), 1;
    }
    Msg &msg = newMsg(HS_REQUEST, *t, index, from, static_cast<User *>(to));
    msg.twoWay = sd_bus_message_get_expect_reply(m);
    if (msg.twoWay) d.calls_[&msg] = sd_bus_message_ref(m);
    Parcel p{Parcel::Cargo::Message, &msg, msg.receiver, t, index, std::move(body)};
    arrive(p);
    return 1;
}

int Dbus::onNeedUpdate(sd_bus_message *m, void *to, sd_bus_error *) {
    const char *row = nullptr;
    uint32_t index = 0;
    Table *t = sd_bus_message_read(m, "s", &row) >= 0 ? rowNamed(row, true, index) : nullptr;
    if (!t) {
        failed();
        return sd_bus_reply_method_errorf(m, kRefused, "no notification %s", row ? row : ""), 1;
    }
    Parcel p{Parcel::Cargo::NeedUpdate, nullptr, static_cast<User *>(to), t, index, {}};
    arrive(p);
    return sd_bus_reply_method_return(m, ""), 1;  // sent only if the caller waits for it
}

int Dbus::onGone(sd_bus_message *m, void *, sd_bus_error *) {
    Dbus &d = self();
    const char *name = nullptr;
    if (sd_bus_message_read(m, "s", &name) < 0) return 0;
    auto it = d.callers_.find(name);
    if (it == d.callers_.end()) return 0;
    User *u = it->second;
    // A one-way command called with a reply expected is owed forever.
    std::vector<Msg *> owed;
    for (auto &[h, msg] : world().msgs)
        if (msg->sender == u) owed.push_back(msg.get());
    d.leaving_.insert(u);  // forgotten with the last message naming it
    for (Msg *msg : owed) abandon(*msg);
    if (d.leaving_.count(u) && !usedBesides(*u, nullptr)) d.forget(u);
    return 0;
}

int Dbus::onSignal(sd_bus_message *m, void *publisher, sd_bus_error *) {
    uint32_t index = 0;
    Table *t = rowNamed(sd_bus_message_get_member(m), true, index);
    Body body = t ? readBody(m) : Body{};
    if (!body) return failed(), 0;
    auto *from = static_cast<User *>(publisher);
    std::vector<User *> to;  // a dispatch may add users
    for (auto &u : world().users)
        if (u->via == &inProcess() && registration(*u, t->num)) to.push_back(u.get());
    for (User *u : to) {
        Parcel p{Parcel::Cargo::Message, &newMsg(HS_NOTIFICATION, *t, index, from, u), u, t, index,
                 body};
        arrive(p);
    }
    return 0;
}

int Dbus::onReply(sd_bus_message *m, void *msg, sd_bus_error *) {
    Dbus &d = self();
    Msg &req = *static_cast<Msg *>(msg);
    sd_bus_slot *slot = d.pending_[&req];
    d.pending_.erase(&req);
    Body body = sd_bus_message_is_method_error(m, nullptr) ? Body{} : readBody(m);
    if (body) {
        Parcel p{Parcel::Cargo::Response, &req, req.sender, req.table, req.index, std::move(body)};
        arrive(p);
    } else {  // NoReply, ServiceUnknown, an error reply: the request fails
        failed();
        release(req);
    }
    sd_bus_slot_unref(slot);
    return 0;
}

int Dbus::onOwner(sd_bus_message *m, void *, sd_bus_error *) {
    Dbus &d = self();
    const char *name, *before, *after;
    if (sd_bus_message_read(m, "sss", &name, &before, &after) < 0) return 0;
    if (auto it = d.owners_.find(before); it != d.owners_.end() && it->second == name)
        d.owners_.erase(it);
    if (*after) {
        d.owners_[after] = name;
        d.returned(name);
    }
    return 0;
}

}  // namespace

Transport &dbus() {
    static Transport *t = new Dbus;
    return *t;
}

}  // namespace hostsim

using namespace hostsim;

#pragma GCC visibility push(default)
extern "C" {

int hs_connectBus(const char *address) { return self().connect(address); }

void hs_disconnectBus(void) { self().disconnect(); }

int hs_busFd(void) { return self().bus ? sd_bus_get_fd(self().bus) : -1; }

int hs_busEvents(void) { return self().bus ? sd_bus_get_events(self().bus) : 0; }

int hs_busTimeout(uint64_t *usec) {
    return self().bus ? sd_bus_get_timeout(self().bus, usec) : -ENOTCONN;
}

void hs_setCallTimeout(uint64_t usec) { self().timeout = usec; }

int hs_waitBus(int timeoutMs) {
    Dbus &d = self();
    if (!d.bus) return -ENOTCONN;
    uint64_t until = UINT64_MAX;
    sd_bus_get_timeout(d.bus, &until);
    if (until != UINT64_MAX) {
        timespec now;
        clock_gettime(CLOCK_MONOTONIC, &now);
        uint64_t at = uint64_t(now.tv_sec) * 1000000u + uint64_t(now.tv_nsec) / 1000u;
        int ms = until <= at ? 0 : int((until - at + 999) / 1000);
        if (timeoutMs < 0 || ms < timeoutMs) timeoutMs = ms;
    }
    pollfd p{sd_bus_get_fd(d.bus), short(sd_bus_get_events(d.bus)), 0};
    int r = poll(&p, 1, timeoutMs);
    return r < 0 ? -errno : r;
}

}  // extern "C"
#pragma GCC visibility pop
