// The D-Bus transport: users of other processes, reached through a bus with
// sd-bus. Each user of this process owns org.wifiap.<bus>.<user>; the other
// processes' users are stand-ins (via this transport) whose names the bus
// gives: a request's sender from its unique name, a publisher from its match.
// A caller that is no framework user gets a stand-in of its own, named by its
// unique name, for as long as that name lives.
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>  // memfd_create
#include <sys/stat.h>
#include <systemd/sd-bus.h>
#include <time.h>
#include <unistd.h>

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
// The same commands called by another stand-in: the body `ay` or, large, a
// sealed memfd (`h`), and so may the reply be. Plain clients never see it.
constexpr const char *kPeerInterface = "org.wifiap.IntfWifiAp1.Peer";
constexpr int kSeals = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL;
constexpr const char *kNeedUpdate = "NeedUpdate";
constexpr const char *kNotHandled = "org.wifiap.Error.NotHandled";
constexpr const char *kRefused = "org.wifiap.Error.Refused";
// The bus of the stand-ins of callers that are no framework user.
constexpr const char *kCallerBus = "dbus";
constexpr uint32_t kMaxBody = 64u << 20;  // dbus-daemon drops a sender past it
// dbus-daemon's message size unless configured (the system bus's): a larger
// `ay` drops the sender too. Room left for the header.
constexpr uint32_t kMaxInline = (32u << 20) - 4096;
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

Body owned(uint8_t *bytes, size_t n) {
    return {{bytes, [](const uint8_t *b) { free(const_cast<uint8_t *>(b)); }}, uint32_t(n)};
}

// The buffer of the last large body received, taken again once nobody holds
// it: a fresh one costs a page fault per 4 KiB on every message, and faults
// are dear on VMs (an 842 KB body's took longer than its copy).
constexpr size_t kKeptBuffer = 64u << 10, kKeptAtMost = 4u << 20;  // the largest body is 843 KB
std::shared_ptr<uint8_t> g_kept;
size_t g_keptSize = 0;

// n bytes to fill: body.bytes is set, null if out of memory.
uint8_t *bodyBuffer(size_t n, Body &body) {
    body.length = uint32_t(n);
    if (n >= kKeptBuffer && g_kept.use_count() == 1 && g_keptSize >= n) {
        body.bytes = g_kept;
        return g_kept.get();
    }
    auto *bytes = static_cast<uint8_t *>(malloc(n));
    if (!bytes) return nullptr;
    body = owned(bytes, n);
    if (n >= kKeptBuffer && n <= kKeptAtMost && n >= g_keptSize && g_kept.use_count() <= 1) {
        g_kept = std::const_pointer_cast<uint8_t>(body.bytes);
        g_keptSize = n;
    }
    return bytes;
}

// The sender is not trusted: only a memfd sealed against any change is read
// (so its size cannot move under pread), and its size is fstat's.
Body readSealed(int fd) {
    struct stat st;
    int seals = fcntl(fd, F_GET_SEALS);
    if (seals < 0 || (seals & kSeals) != kSeals || fstat(fd, &st) < 0 || !S_ISREG(st.st_mode) ||
        st.st_size <= 0 || uint64_t(st.st_size) > kMaxBody)
        return {};
    // pread, not mmap: a mapping's page-table work costs more than the copy.
    size_t n = size_t(st.st_size);
    Body body;
    uint8_t *bytes = bodyBuffer(n, body);
    for (size_t got = 0; bytes && got < n;) {  // pread: other receivers share the offset
        ssize_t r = pread(fd, bytes + got, n - got, off_t(got));
        if (r < 0 && errno == EINTR) continue;
        if (r <= 0) return {};
        got += size_t(r);
    }
    return bytes ? body : Body{};
}

// A copy of the body an `ay` or `h` argument carries. The fd is the
// message's, read before it goes.
Body readBody(sd_bus_message *m) {
    const char *sig = sd_bus_message_get_signature(m, 1);
    int fd = -1;
    if (sig && !strcmp(sig, "h"))
        return sd_bus_message_read(m, "h", &fd) < 0 ? Body{} : readSealed(fd);
    const void *p = nullptr;
    size_t n = 0;
    if (sd_bus_message_read_array(m, 'y', &p, &n) < 0 || n == 0 || n > kMaxBody) return {};
    Body body;
    uint8_t *bytes = bodyBuffer(n, body);
    if (!bytes) return {};
    memcpy(bytes, p, n);
    return body;
}

// A body as a sealed memfd, -1 if that fails (the body then goes as `ay`).
// write(), not mmap: page faults on a fresh mapping cost more on small VMs;
// its pages allocated at once first, which took the write of 842 KB from
// 230 µs to 85 µs there.
int sealedCopy(const Body &b) {
    int fd = memfd_create("wifiap-body", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    if (fd >= 0) fallocate(fd, 0, 0, off_t(b.length));  // only ahead of time: write() allocates too
    for (size_t done = 0; fd >= 0 && done < b.length;) {
        ssize_t w = write(fd, b.bytes.get() + done, b.length - done);
        if (w < 0 && errno == EINTR) continue;
        if (w <= 0) close(fd), fd = -1;
        else done += size_t(w);
    }
    if (fd >= 0 && fcntl(fd, F_ADD_SEALS, kSeals) < 0) close(fd), fd = -1;
    return fd;
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
    // The smallest body sent to another stand-in as a memfd; 0: none, and
    // this process calls as a plain client.
    uint32_t fdMin = 64u << 10;

    int connect(const char *address);
    void disconnect();

    bool carry(Parcel p) override;
    bool receiveNext() override {
        if (!bus) return false;
        declare();
        int r = sd_bus_process(bus, nullptr);
        if (r < 0 && r != -ECONNRESET && r != -ENOTCONN) failed();  // a bus gone: hs_waitBus says so
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
    std::map<std::string, std::string> ownerOf_;  // and back: a process may own several
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
    sd_bus_message *newCall(const User &to, const char *member, const char *interface = kInterface) {
        char *path = nullptr;
        sd_bus_message *m = nullptr;
        if (sd_bus_path_encode_many(&path, kPathPattern, to.bus.c_str(), to.name.c_str()) < 0)
            return nullptr;
        sd_bus_message_new_method_call(bus, &m, address(to).c_str(), path, interface, member);
        free(path);
        return m;
    }
    // Servers are stand-ins (their names are), so a request may go the peer way.
    bool callsAsPeer() const { return fdMin && sd_bus_can_send(bus, SD_BUS_TYPE_UNIX_FD) > 0; }
    bool sendMessage(Parcel &p, sd_bus_message *m, bool peer = false);

    static int onCall(sd_bus_message *m, void *to, sd_bus_error *);
    static int onPeerCall(sd_bus_message *m, void *, sd_bus_error *);
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
    if (r >= 0) r = sd_bus_add_fallback(bus, nullptr, kRoot, onPeerCall, this);
    char **names = nullptr;
    if (r >= 0) r = sd_bus_list_names(bus, &names, nullptr);
    for (char **n = names; n && *n; ++n) {
        sd_bus_creds *c = nullptr;
        const char *unique = nullptr;
        if (!strncmp(*n, kPrefix, strlen(kPrefix)) &&
            sd_bus_get_name_creds(bus, *n, SD_BUS_CREDS_UNIQUE_NAME, &c) >= 0 &&
            sd_bus_creds_get_unique_name(c, &unique) >= 0)
            owners_[unique] = *n, ownerOf_[*n] = unique;
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
    owners_.clear(), ownerOf_.clear();
    g_kept.reset(), g_keptSize = 0;
}

bool Dbus::sendMessage(Parcel &p, sd_bus_message *m, bool peer) {
    int fd = peer && fdMin && p.body.length >= fdMin ? sealedCopy(p.body) : -1;
    bool ok = m && (fd >= 0                        ? sd_bus_message_append(m, "h", fd)
                    : p.body.length > kMaxInline ? -EMSGSIZE
                                                 : sd_bus_message_append_array(m, 'y', p.body.bytes.get(), p.body.length)) >= 0;
    if (fd >= 0) close(fd);  // the message holds its own duplicate
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
        bool peer = sd_bus_message_is_method_call(it->second, kPeerInterface, nullptr) > 0;
        sd_bus_message_unref(it->second);
        calls_.erase(it);
        return sendMessage(p, r, peer);
    }
    case Parcel::Cargo::Message:
        if (p.msg->kind == HS_REQUEST) {
            bool peer = callsAsPeer();
            return sendMessage(p, newCall(*p.to, member, peer ? kPeerInterface : kInterface), peer);
        }
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

// Ahead of the vtable, which would refuse `h`; other calls go on to it.
int Dbus::onPeerCall(sd_bus_message *m, void *, sd_bus_error *e) {
    if (sd_bus_message_is_method_call(m, kPeerInterface, nullptr) <= 0) return 0;
    User *to = addressed(sd_bus_message_get_path(m));
    const char *sig = sd_bus_message_get_signature(m, 1);
    if (!to || !sig || (strcmp(sig, "ay") && strcmp(sig, "h"))) return 0;  // the bus's error
    return onCall(m, to, e);
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
    // Its calls are owed no more, a framework user's as a plain caller's (a
    // one-way command called with a reply expected would be owed forever).
    std::vector<Msg *> owed;
    for (auto &[msg, call] : d.calls_)
        if (const char *s = sd_bus_message_get_sender(call); s && !strcmp(s, name)) owed.push_back(msg);
    auto it = d.callers_.find(name);
    User *u = it == d.callers_.end() ? nullptr : it->second;
    if (u) d.leaving_.insert(u);  // forgotten with the last message naming it
    for (Msg *msg : owed) abandon(*msg);
    if (u && d.leaving_.count(u) && !usedBesides(*u, nullptr)) d.forget(u);
    return 0;
}

int Dbus::onSignal(sd_bus_message *m, void *publisher, sd_bus_error *) {
    uint32_t index = 0;
    Table *t = rowNamed(sd_bus_message_get_member(m), true, index);
    Body body = t ? readBody(m) : Body{};
    if (!body) return failed(), 0;
    auto *from = static_cast<User *>(publisher);
    // sd-bus leaves a match's well-known sender to the bus, which checks it on
    // broadcasts only: a signal sent here directly may come from anyone.
    const char *sender = sd_bus_message_get_sender(m);
    auto owner = self().ownerOf_.find(wellKnown(*from));
    if (!sender || owner == self().ownerOf_.end() || owner->second != sender) return 0;
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
    d.ownerOf_.erase(name);
    if (*after) {
        d.owners_[after] = name, d.ownerOf_[name] = after;
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

void hs_setBusFdMin(uint32_t bytes) { self().fdMin = bytes; }

int hs_waitBus(int timeoutMs) {
    Dbus &d = self();
    if (!d.bus || sd_bus_get_fd(d.bus) < 0) return -ENOTCONN;  // never or no longer connected
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

// ---- What a host sees of the bus: its users, and a monitor of every body.
namespace hostsim {
namespace {

struct Monitor {
    sd_bus *bus = nullptr;
    void (*fn)(void *, const hs_trace *) = nullptr;
    void *ref = nullptr;
    std::map<std::string, std::pair<std::string, std::string>> users;  // unique name to bus, user
    struct Call {
        Table *table;
        uint32_t index;
        std::pair<std::string, std::string> from, to;
    };
    std::map<std::pair<std::string, uint64_t>, Call> calls;  // by caller and serial

    // Whose a bus name is: a user's well-known name, one seen owning it, or a
    // plain caller's unique name (the stand-in's own naming).
    std::pair<std::string, std::string> who(const char *name) {
        std::pair<std::string, std::string> u;
        if (fromWellKnown(name, u.first, u.second)) return u;
        auto it = name ? users.find(name) : users.end();
        return it != users.end() ? it->second : std::pair<std::string, std::string>{kCallerBus, name ? name : ""};
    }
    static std::pair<std::string, std::string> object(sd_bus_message *m) {
        char *b = nullptr, *n = nullptr;
        std::pair<std::string, std::string> u;
        if (sd_bus_path_decode_many(sd_bus_message_get_path(m), kPathPattern, &b, &n) > 0) u = {b, n};
        free(b), free(n);
        return u;
    }
    void show(Table &t, uint32_t index, uint32_t type, sd_bus_message *m,
              const std::pair<std::string, std::string> &from,
              const std::pair<std::string, std::string> *to) {
        Body body = readBody(m);
        if (!body) return;
        hs_trace tr{HS_TRACE_SENT, t.name(), t.rowName(index), index, type, body.bytes.get(), body.length,
                    nullptr, from.first.c_str(), from.second.c_str(),
                    to ? to->first.c_str() : nullptr, to ? to->second.c_str() : nullptr, 0};
        fn(ref, &tr);
    }
    void seen(sd_bus_message *m) {
        uint8_t type = 0;
        uint64_t serial = 0;
        sd_bus_message_get_type(m, &type);
        const char *sender = sd_bus_message_get_sender(m), *dest = sd_bus_message_get_destination(m);
        const char *member = sd_bus_message_get_member(m);
        uint32_t index = 0;
        if (type == SD_BUS_MESSAGE_SIGNAL && sd_bus_message_is_signal(m, "org.freedesktop.DBus", "NameOwnerChanged")) {
            const char *name, *before, *after;
            std::pair<std::string, std::string> u;
            if (sd_bus_message_read(m, "sss", &name, &before, &after) >= 0 && fromWellKnown(name, u.first, u.second)) {
                users.erase(before);
                if (*after) users[after] = u;
            }
        } else if (type == SD_BUS_MESSAGE_SIGNAL) {
            Table *t = rowNamed(member, true, index);
            std::pair<std::string, std::string> to = who(dest);
            if (t) show(*t, index, 0, m, object(m), dest ? &to : nullptr);
        } else if (type == SD_BUS_MESSAGE_METHOD_CALL) {
            Table *t = rowNamed(member, false, index);
            if (!t) return;
            Call c{t, index, who(sender), object(m)};
            if (sd_bus_message_get_expect_reply(m) && sd_bus_message_get_cookie(m, &serial) >= 0)
                calls[{sender ? sender : "", serial}] = c;
            show(*t, index, 0, m, c.from, &c.to);
        } else if (sd_bus_message_get_reply_cookie(m, &serial) >= 0) {
            auto it = calls.find({dest ? dest : "", serial});
            if (it == calls.end()) return;
            Call c = it->second;
            calls.erase(it);
            if (type == SD_BUS_MESSAGE_METHOD_RETURN) show(*c.table, c.index, 1, m, c.to, &c.from);
        }
    }
    // The users there are, then every call, reply and signal of the stand-in.
    int start(const char *address) {
        static const char *const kRules[] = {
            "type='method_call',path_namespace='/org/wifiap'", "type='signal',path_namespace='/org/wifiap'",
            "type='method_return'", "type='error'",
            "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged'",
            nullptr};  // a strv ends in NULL
        if (!address) address = getenv("DBUS_SESSION_BUS_ADDRESS");
        if (!address) return -ENOENT;
        sd_bus_message *call = nullptr;
        char **names = nullptr;
        int r = sd_bus_new(&bus);
        if (r >= 0) r = sd_bus_set_address(bus, address);
        if (r >= 0) r = sd_bus_set_bus_client(bus, 1);
        if (r >= 0) r = sd_bus_set_monitor(bus, 1);
        if (r >= 0) r = sd_bus_negotiate_fds(bus, 1);
        if (r >= 0) r = sd_bus_start(bus);
        if (r >= 0) r = sd_bus_list_names(bus, &names, nullptr);
        for (char **n = names; n && *n; free(*n++)) {
            const char *unique = nullptr;
            sd_bus_creds *creds = nullptr;
            if (strncmp(*n, kPrefix, strlen(kPrefix)) == 0 &&
                sd_bus_get_name_creds(bus, *n, SD_BUS_CREDS_UNIQUE_NAME, &creds) >= 0 &&
                sd_bus_creds_get_unique_name(creds, &unique) >= 0)
                users[unique] = who(*n);
            sd_bus_creds_unref(creds);
        }
        free(names);
        if (r >= 0)
            r = sd_bus_message_new_method_call(bus, &call, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                               "org.freedesktop.DBus.Monitoring", "BecomeMonitor");
        if (r >= 0) r = sd_bus_message_append_strv(call, const_cast<char **>(kRules));
        if (r >= 0) r = sd_bus_message_append(call, "u", 0u);
        if (r >= 0) r = sd_bus_call(bus, call, 0, nullptr, nullptr);
        sd_bus_message_unref(call);
        if (r < 0) stop();
        return r < 0 ? r : sd_bus_get_fd(bus);
    }
    void stop() {
        bus = sd_bus_flush_close_unref(bus);
        users.clear(), calls.clear();
    }
};

Monitor &monitor() {
    static Monitor *m = new Monitor;
    return *m;
}

}  // namespace
}  // namespace hostsim

#pragma GCC visibility push(default)
extern "C" {

int hs_busUsers(void (*fn)(void *ref, const char *busName, const char *userName), void *ref) {
    char **names = nullptr;
    int r = self().bus ? sd_bus_list_names(self().bus, &names, nullptr) : -ENOTCONN, n = 0;
    for (char **p = names; p && *p; free(*p++)) {
        std::string b, u;
        if (r >= 0 && fromWellKnown(*p, b, u)) fn(ref, b.c_str(), u.c_str()), ++n;
    }
    free(names);
    return r < 0 ? r : n;
}

int hs_monitorBus(const char *address, void (*fn)(void *ref, const hs_trace *t), void *ref) {
    Monitor &m = monitor();
    if (m.bus) return -EALREADY;
    m.fn = fn, m.ref = ref;
    return fn ? m.start(address) : -EINVAL;
}

int hs_monitorRun(void) {
    Monitor &m = monitor();
    int n = 0, r = m.bus ? 1 : -ENOTCONN;
    while (r > 0) {
        sd_bus_message *msg = nullptr;
        r = sd_bus_process(m.bus, &msg);
        if (msg) m.seen(msg), ++n;
        sd_bus_message_unref(msg);
    }
    return r < 0 ? r : n;
}

void hs_monitorStop(void) { monitor().stop(); }

}  // extern "C"
#pragma GCC visibility pop
