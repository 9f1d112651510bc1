// wifiap-cli: the access point's commands called by name from a shell, its
// notifications listened to, the bus's traffic watched. It knows messages
// and fields from the message list and the record tables alone; it reaches
// the bus through the framework functions and the stand-in's host API.
#include <dlfcn.h>
#include <errno.h>
#include <getopt.h>
#include <inttypes.h>
#include <math.h>
#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include <editline/readline.h>

#include <functional>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "calls.h"
#include "hostsim.h"
#include "pcapng.h"

namespace wifiap::cli {

namespace {

enum Status : int {
    kOk = 0,
    kFailed = 1,
    kUsage = 64,     // EX_USAGE
    kRefused = 65,   // EX_DATAERR
    kNoUser = 69,    // EX_UNAVAILABLE
    kTimeout = 75,   // EX_TEMPFAIL
    kInterrupted = 130,
};

const char kHelp[] =
    "usage: wifiap-cli [OPTIONS] [COMMAND [ARGS...]]\n"
    "Calls the access point's commands on the bus, listens to its notifications,\n"
    "watches the bus's traffic. Without a command: a prompt with history, Tab\n"
    "completing commands, messages and field names.\n"
    "\n"
    "Options, before the command:\n"
    "  -t, --timeout SECONDS  bounds every wait (call, wait-for: 30; listen,\n"
    "                         monitor: none); 0: no bound\n"
    "  -j, --json             JSON out: an object per answer, a line per event\n"
    "  -a, --address ADDRESS  the D-Bus bus (DBUS_SESSION_BUS_ADDRESS)\n"
    "      --library PATH     the interface library to load\n"
    "  -h, --help             this text\n"
    "\n"
    "Commands:\n"
    "  list [-v]              users on the bus; -v: every message, its fields and kinds\n"
    "  call [--to BUS/USER] COMMAND [FIELD=VALUE...|JSON|-]\n"
    "                         a command to BUS/USER (ap/apd), its fields by name\n"
    "                         (nested.field, list[2].field) or as one JSON object\n"
    "                         (- reads it from standard input); prints the\n"
    "                         response; a one-way command returns when sent\n"
    "  listen [--from BUS/USER] [NOTIFICATION...]\n"
    "                         each notification from BUS/USER (ap/apd), all or\n"
    "                         those named, a line each; asks for the current state\n"
    "                         at the start and whenever the server comes back\n"
    "  monitor [--capture FILE]\n"
    "                         every body crossing the bus, decoded; FILE: pcapng\n"
    "                         for Wireshark with the project's dissector\n"
    "  wait-for BUS/USER      returns once BUS/USER is on the bus\n"
    "\n"
    "Exit status:\n"
    "    0  success; listen and monitor: stopped, or time up after an event\n"
    "    1  another failure: the library, the bus connection, the capture file\n"
    "   64  usage: an unknown option, command, message or notification\n"
    "   65  refused: a field or value the tables refuse, JSON that does not\n"
    "       parse, a body the library or the server refused\n"
    "   69  no such user on the bus, it left during the call, or the bus is gone\n"
    "   75  timeout: no answer, no such user, or no event within -t\n"
    "  130  interrupted\n";

struct Options {
    double timeout = -1;  // -1: the command's own default
    bool json = false;
    std::string address, library;
};

// This process's one client of the library, and what it waits for.
struct Client {
    Options opt;
    host::Api api{};
    void *lib = nullptr;
    ismUser_t user = nullptr;
    std::string bus = "cli", name = "wifiap-cli-" + std::to_string(getpid());
    json_object *response = nullptr;  // the call's, as the library handed it
    std::vector<uint8_t> body;        // the same as it crossed
    std::vector<bool> listening;      // by notification row, while listening
    std::string from;                 // the publisher of the notification dispatched
    size_t events = 0;
    int monitorFd = -1;
    FILE *capture = nullptr;
    double started = 0;
} g;

volatile sig_atomic_t g_interrupted = 0;

double now() {
    timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return double(t.tv_sec) + double(t.tv_nsec) / 1e9;
}

int fail(int status, const std::string &why) {
    fprintf(stderr, "wifiap-cli: %s\n", why.c_str());
    return status;
}

// Written at once; a reader that has gone (`| head`) ends the command, with
// no error: SIGPIPE is ignored.
bool g_unread = false;
void out(const std::string &text) {
    if (fwrite(text.data(), 1, text.size(), stdout) != text.size() || fflush(stdout)) g_unread = true;
}

void printJson(json_object *v, bool oneLine) {
    const int flags = JSON_C_TO_STRING_NOSLASHESCAPE |
                      (oneLine ? JSON_C_TO_STRING_PLAIN : JSON_C_TO_STRING_PRETTY | JSON_C_TO_STRING_SPACED);
    out(std::string(json_object_to_json_string_ext(v, flags)) + "\n");
}

std::string nameOf(const char *bus, const char *user) {
    return std::string(bus ? bus : "") + "/" + (user ? user : "");
}

// BUS/USER, split; false if it is not that.
bool splitUser(const std::string &s, std::string &bus, std::string &user) {
    const size_t slash = s.find('/');
    if (slash == std::string::npos || slash + 1 == s.size()) return false;
    bus = s.substr(0, slash), user = s.substr(slash + 1);
    return true;
}

std::vector<std::string> usersOnBus() {
    std::vector<std::string> users;
    hs_busUsers([](void *ref, const char *b, const char *u) {
        static_cast<std::vector<std::string> *>(ref)->push_back(nameOf(b, u));
    }, &users);
    std::erase(users, nameOf(g.bus.c_str(), g.name.c_str()));
    return users;
}

bool onBus(const std::string &who) {
    const std::vector<std::string> users = usersOnBus();
    return std::find(users.begin(), users.end(), who) != users.end();
}

// A body's first line, as wifiap-decode writes it.
std::string heading(const tools::Message &m, uint32_t bodyType, size_t length) {
    char head[160];
    snprintf(head, sizeof head, "%s %s (%s %" PRIu32 "), %zu bytes", m.name, tools::sideName(m, bodyType),
             tools::tableName(m.ntfy), m.index, length);
    return head;
}

const tools::Message *message(std::string_view name, bool ntfy) {
    const tools::Message *m = tools::findMessage(name);
    return m && m->ntfy == ntfy ? m : nullptr;
}

std::string names(bool ntfy) {
    std::string s;
    for (const tools::Message &m : tools::messages())
        if (m.ntfy == ntfy) s += std::string(" ") + m.name;
    return s;
}

// ---- What comes from the library.

int32_t dispatch(void *api, ismUser_t user, uint32_t kind, uint32_t index, void *v1, void *v2,
                 void *v3, const char *bus, const char *name) {
    if (kind == HS_NOTIFICATION) g.from = nameOf(bus, name);
    return host::dispatch(api, user, kind, index, v1, v2, v3, bus, name);
}

void trace(void *, const hs_trace *t) {
    if (t->stage == HS_TRACE_RECEIVED && t->bodyType == INTFWIFIAP_BODY_RESPONSE && t->body &&
        t->receiver && g.name == t->receiver)
        g.body.assign(t->body, t->body + t->length);
}

}  // namespace

void received(uintptr_t ref, const Desc &d, const uint8_t *mem) {
    const tools::Message &m = *reinterpret_cast<const tools::Message *>(ref);
    json_object *payload = toJson(d, mem);
    if (!m.ntfy) {
        json_object_put(g.response);
        g.response = payload;
        return;
    }
    if (g.listening.empty() || !g.listening[m.index]) return void(json_object_put(payload));
    ++g.events;
    if (g.opt.json) {
        json_object *line = json_object_new_object();
        json_object_object_add(line, "notification", json_object_new_string(m.name));
        json_object_object_add(line, "from", json_object_new_string(g.from.c_str()));
        json_object_object_add(line, "payload", payload);
        printJson(line, true);
        json_object_put(line);
        return;
    }
    std::string line = std::string(m.name) + " from " + g.from + ":";
    flatten(payload, "", line);
    out(line + "\n");
    json_object_put(payload);
}

namespace {

// ---- The bus.

int connect() {
    if (g.lib) return kOk;
    if (std::string err = host::load(g.api, g.opt.library, &g.lib); !err.empty())
        return fail(kFailed, "cannot load the library: " + err);
    hs_reset();
    if (g.api.intfWifiap_initialize() != 0) return fail(kFailed, "intfWifiap_initialize failed");
    if (int rc = hs_connectBus(g.opt.address.empty() ? nullptr : g.opt.address.c_str()))
        return fail(kNoUser, std::string("cannot connect to the bus: ") + strerror(-rc));
    g.user = hs_newUser(g.bus.c_str(), g.name.c_str());
    if (!g.user) return fail(kFailed, "user " + nameOf(g.bus.c_str(), g.name.c_str()) + " refused");
    g.api.intfWifiAp_regUser_msgMngt(g.user, host::fn(dispatch), &g.api, INTFWIFIAP_REG_ALL);
    for (const tools::Message &m : tools::messages())
        if (m.ntfy)
            hs_setMethod(g.user, HS_NOTIFICATION, m.index, kMethod[m.index],
                         reinterpret_cast<uintptr_t>(&m));
    hs_setTrace(trace, nullptr);
    return kOk;
}

void disconnect() {
    if (!g.lib) return;
    hs_setTrace(nullptr, nullptr);
    hs_monitorStop();
    hs_disconnectBus();
    hs_raiseBaseEvent(0);  // the library gives its tables back
    hs_reset();
    dlclose(g.lib);
    g.lib = nullptr;
    json_object_put(g.response);
    g.response = nullptr;
}

enum class Wait { Done, Timeout, Interrupted, Lost, Unread };

// The deadline of a wait: -t, else the command's default; 0 is none.
double deadline(double byDefault) {
    const double t = g.opt.timeout >= 0 ? g.opt.timeout : byDefault;
    return t > 0 ? now() + t : INFINITY;
}

// Runs the bus (and the monitor) until done() or the deadline; stepMs bounds
// each sleep, for conditions that no message announces.
Wait pump(double until, const std::function<bool()> &done, int stepMs = 60'000) {
    for (;;) {
        hs_run();
        if (g.monitorFd >= 0 && hs_monitorRun() < 0) return Wait::Lost;
        if (done()) return Wait::Done;
        if (g_unread) return Wait::Unread;
        if (g_interrupted) return Wait::Interrupted;
        const double left = until - now();
        if (left <= 0) return Wait::Timeout;
        double ms = std::min(left * 1000 + 1, double(stepMs));
        uint64_t due = UINT64_MAX;
        if (hs_busTimeout(&due) >= 0 && due != UINT64_MAX)
            ms = std::min(ms, std::max(0.0, double(due) / 1000 - now() * 1000 + 1));
        // Standard output is watched too: a pipe whose reader has gone (as
        // `| head` leaves it) ends the wait at once, not at the next line.
        pollfd fds[3] = {{hs_busFd(), short(hs_busEvents()), 0}, {STDOUT_FILENO, 0, 0}, {g.monitorFd, POLLIN, 0}};
        if (poll(fds, g.monitorFd >= 0 ? 3 : 2, int(ms)) < 0 && errno != EINTR) return Wait::Lost;
        if (fds[1].revents & POLLERR) g_unread = true;
        for (const pollfd &p : {fds[0], fds[2]})
            if (p.fd >= 0 && (p.revents & (POLLERR | POLLHUP | POLLNVAL))) return Wait::Lost;
    }
}

// The end of a listen or monitor: stopped, or the time up.
int ended(Wait w) {
    if (w == Wait::Lost) return fail(kNoUser, "the bus connection is lost");
    if (w == Wait::Unread) return kOk;  // nobody reads any more
    if (w == Wait::Timeout && !g.events) return fail(kTimeout, "nothing within the time given");
    return kOk;
}

// ---- The commands.

int list(int argc, char **argv) {
    static const option longs[] = {{"verbose", no_argument, nullptr, 'v'}, {}};
    bool verbose = false;
    for (int c; (c = getopt_long(argc, argv, "+v", longs, nullptr)) != -1;)
        if (c == 'v') verbose = true;
        else return kUsage;
    if (optind != argc) return fail(kUsage, "list takes no arguments but -v");
    if (int rc = connect()) return rc;
    const std::vector<std::string> users = usersOnBus();
    json_object *all = json_object_new_object(), *jusers = json_object_new_array(),
                *jmsgs = json_object_new_array();
    std::string text;
    for (const std::string &u : users) {
        json_object_array_add(jusers, json_object_new_string(u.c_str()));
        text += u + "\n";
    }
    json_object_object_add(all, "users", jusers);
    for (const tools::Message &m : tools::messages()) {
        if (!verbose) break;
        json_object *jm = json_object_new_object();
        json_object_object_add(jm, "name", json_object_new_string(m.name));
        json_object_object_add(jm, "kind", json_object_new_string(m.ntfy ? "notification" : "command"));
        text += std::string(m.ntfy ? "notification " : "command ") + m.name +
                (!m.ntfy && !m.res ? " (one-way)\n" : "\n");
        const std::pair<const char *, const Desc *> sides[] = {{m.ntfy ? "payload" : "request", m.req},
                                                               {"response", m.res}};
        for (auto [side, d] : sides) {
            if (!d) continue;
            json_object_object_add(jm, side, kinds(*d));
            text += std::string("  ") + side + ":" + (*d->name ? std::string(" ") + d->name : "") +
                    (d->count ? "\n" : " nothing\n");
            describe(*d, 2, text);
        }
        json_object_array_add(jmsgs, jm);
    }
    if (verbose) json_object_object_add(all, "messages", jmsgs);
    else json_object_put(jmsgs);
    if (g.opt.json) printJson(all, false);
    else out(text);
    json_object_put(all);
    return kOk;
}

// The request's fields: FIELD=VALUE arguments, one JSON object, or - for
// JSON on standard input.
json_object *request(const Desc &d, const std::vector<std::string> &args, std::string &why) {
    if (args.size() == 1 && (args[0] == "-" || args[0][0] == '{')) {
        const std::string text = args[0] == "-" ? std::string(std::istreambuf_iterator<char>(std::cin), {})
                                                : args[0];
        json_tokener_error e = json_tokener_success;
        json_object *v = json_tokener_parse_verbose(text.c_str(), &e);
        if (!v) why = std::string("not JSON: ") + json_tokener_error_desc(e);
        return v;
    }
    json_object *obj = json_object_new_object();
    for (const std::string &a : args)
        if (!assign(d, obj, a, why)) return json_object_put(obj), nullptr;
    return obj;
}

// The option `--NAME BUS/USER` of call and listen: the server, ap/apd
// unless told. False once a usage error is said.
bool peer(int argc, char **argv, const char *name, std::string &who, std::string &bus, std::string &user) {
    const option longs[] = {{name, required_argument, nullptr, 'p'}, {}};
    who = "ap/apd";
    for (int c; (c = getopt_long(argc, argv, "+", longs, nullptr)) != -1;)
        if (c == 'p') who = optarg;
        else return false;
    if (splitUser(who, bus, user)) return true;
    fail(kUsage, std::string("--") + name + " takes BUS/USER, not \"" + who + "\"");
    return false;
}

int call(int argc, char **argv) {
    std::string to, bus, user;
    if (!peer(argc, argv, "to", to, bus, user)) return kUsage;
    if (optind == argc) return fail(kUsage, "call needs a command; one of:" + names(false));
    const tools::Message *m = message(argv[optind], false);
    if (!m) return fail(kUsage, std::string("no command \"") + argv[optind] + "\"; one of:" + names(false));

    std::string why, notes;
    json_object *fields = request(*m->req, {argv + optind + 1, argv + argc}, why);
    Memory payload(*m->req);
    const bool ok = fields && fromJson(*m->req, fields, payload.at(), why, notes);
    json_object_put(fields);
    if (!ok) return fail(kRefused, std::string(m->name) + ": " + why);
    for (size_t at = 0, nl; (nl = notes.find('\n', at)) != std::string::npos; at = nl + 1)
        fprintf(stderr, "wifiap-cli: note: %s\n", notes.substr(at, nl - at).c_str());

    if (int rc = connect()) return rc;
    if (!onBus(to)) return fail(kNoUser, "no user " + to + " on the bus");
    const double until = deadline(30);
    hs_setCallTimeout(isinf(until) ? 86'400'000'000u : uint64_t((until - now() + 1) * 1e6));
    hs_findUser(bus.c_str(), user.c_str());
    json_object_put(g.response);
    g.response = nullptr;
    g.body.clear();
    const uint32_t failures = hs_getStats().failures;
    const Request r{g.user, bus.c_str(), user.c_str(), m->req, payload.at(), reinterpret_cast<uintptr_t>(m)};
    if (!kSend[m->index](g.api, r)) return fail(kRefused, std::string("the library refused to send ") + m->name);
    if (!m->res) return hs_run(), kOk;  // one-way: sent

    switch (pump(until, [&] { return g.response || hs_getStats().failures != failures; })) {
    case Wait::Timeout: return fail(kTimeout, "no answer from " + to + " in time");
    case Wait::Interrupted:
    case Wait::Unread: return kInterrupted;
    case Wait::Lost: return fail(kNoUser, "the bus connection is lost");
    case Wait::Done: break;
    }
    if (!g.response) {
        if (!onBus(to)) return fail(kNoUser, to + " left the bus during the call");
        return fail(kRefused, to + " refused " + m->name + ", or its answer was refused");
    }
    if (g.opt.json) {
        printJson(g.response, false);
    } else if (!g.body.empty()) {
        std::string text = heading(*m, INTFWIFIAP_BODY_RESPONSE, g.body.size()) + "\n";
        tools::decode(text, *m, INTFWIFIAP_BODY_RESPONSE, g.body.data(), g.body.size());
        out(text);
    } else {
        std::string text;
        flatten(g.response, "", text);
        out(text + "\n");
    }
    return kOk;
}

int listen(int argc, char **argv) {
    std::string from, bus, user;
    if (!peer(argc, argv, "from", from, bus, user)) return kUsage;
    std::vector<bool> wanted(INTFWIFIAP_NTFY_COUNT, optind == argc);
    for (int i = optind; i < argc; ++i) {
        const tools::Message *m = message(argv[i], true);
        if (!m) return fail(kUsage, std::string("no notification \"") + argv[i] + "\"; one of:" + names(true));
        wanted[m->index] = true;
    }
    if (int rc = connect()) return rc;
    ismUser_t server = hs_findUser(bus.c_str(), user.c_str());
    g.listening = wanted;
    g.events = 0;
    // The current state now; the stand-in asks again when the server comes back.
    for (uint32_t i = 0; i < INTFWIFIAP_NTFY_COUNT; ++i)
        if (wanted[i] && g.api.needUpdate[i]) hs_needUpdate(server, g.api.intfWifiAp_getNtfyIntfNum(), i);
    const Wait w = pump(deadline(0), [] { return false; });
    g.listening.clear();
    return ended(w);
}

void seen(void *, const hs_trace *t) {
    const tools::Message *m = tools::findMessage(t->table, t->index);
    if (!m) return;
    tools::Crossing c{now() - g.started, t->table, t->index, t->bodyType,
                      {t->body, t->body + t->length}, nameOf(t->senderBus, t->sender),
                      t->receiver ? nameOf(t->receiverBus, t->receiver) : ""};
    if (g.capture) {
        const std::string packet = tools::pcapngPacket(c);
        fwrite(packet.data(), 1, packet.size(), g.capture);
        fflush(g.capture);
    }
    ++g.events;
    const Desc *d = t->bodyType ? m->res : m->req;
    if (g.opt.json) {
        json_object *line = json_object_new_object();
        Memory mem(*d);
        char seconds[32];
        snprintf(seconds, sizeof seconds, "%.6f", c.seconds);
        json_object_object_add(line, "time", json_object_new_double_s(c.seconds, seconds));
        json_object_object_add(line, "message", json_object_new_string(m->name));
        json_object_object_add(line, "side", json_object_new_string(tools::sideName(*m, t->bodyType)));
        json_object_object_add(line, "from", json_object_new_string(c.sender.c_str()));
        json_object_object_add(line, "to", t->receiver ? json_object_new_string(c.receiver.c_str()) : nullptr);
        json_object_object_add(line, "length", json_object_new_int64(t->length));
        json_object_object_add(line, "payload", readBody(*d, t->body, t->length, mem.at()) ? toJson(*d, mem.at()) : nullptr);
        printJson(line, true);
        json_object_put(line);
        return;
    }
    char at[64];
    snprintf(at, sizeof at, "#%zu %.6f ", g.events, c.seconds);
    std::string text = at + heading(*m, t->bodyType, t->length) + "  " + c.sender + " -> " +
                       (t->receiver ? c.receiver : "everyone") + "\n";
    tools::decode(text, *m, t->bodyType, t->body, t->length);
    out(text);
}

int monitor(int argc, char **argv) {
    static const option longs[] = {{"capture", required_argument, nullptr, 'c'}, {}};
    std::string file;
    for (int c; (c = getopt_long(argc, argv, "+", longs, nullptr)) != -1;)
        if (c == 'c') file = optarg;
        else return kUsage;
    if (optind != argc) return fail(kUsage, "monitor takes no arguments but --capture FILE");
    if (int rc = connect()) return rc;
    if (!file.empty()) {
        const std::string start = tools::pcapngStart();
        g.capture = fopen(file.c_str(), "wb");
        if (!g.capture || fwrite(start.data(), 1, start.size(), g.capture) != start.size() || fflush(g.capture))
            return fail(kFailed, "cannot write " + file + ": " + strerror(errno));
    }
    g.monitorFd = hs_monitorBus(g.opt.address.empty() ? nullptr : g.opt.address.c_str(), seen, nullptr);
    int rc = g.monitorFd < 0 ? fail(kFailed, std::string("cannot monitor the bus: ") + strerror(-g.monitorFd)) : kOk;
    if (!rc) {
        g.started = now();
        g.events = 0;
        rc = ended(pump(deadline(0), [] { return false; }));
    }
    hs_monitorStop();
    g.monitorFd = -1;
    if (g.capture) fclose(g.capture);
    g.capture = nullptr;
    return rc;
}

int waitFor(int argc, char **argv) {
    std::string bus, user;
    if (argc != 2 || !splitUser(argv[1], bus, user)) return fail(kUsage, "wait-for takes BUS/USER");
    if (int rc = connect()) return rc;
    switch (pump(deadline(30), [&] { return onBus(argv[1]); }, 100)) {
    case Wait::Done: return kOk;
    case Wait::Timeout: return fail(kTimeout, std::string(argv[1]) + " is not on the bus");
    case Wait::Interrupted:
    case Wait::Unread: return kInterrupted;
    case Wait::Lost: break;
    }
    return fail(kNoUser, "the bus connection is lost");
}

const struct {
    const char *name;
    int (*run)(int, char **);
} kCommands[] = {{"list", list}, {"call", call}, {"listen", listen}, {"monitor", monitor}, {"wait-for", waitFor}};

int interactive();

// One command line, its words as argv has them (the program's name first).
// `prompt`: typed at the prompt, where no command is no error.
int run(std::vector<std::string> words, Options opt, bool prompt) {
    std::vector<char *> argv;
    for (std::string &w : words) argv.push_back(w.data());
    argv.push_back(nullptr);
    const int argc = int(words.size());
    static const option longs[] = {{"timeout", required_argument, nullptr, 't'},
                                   {"json", no_argument, nullptr, 'j'},
                                   {"address", required_argument, nullptr, 'a'},
                                   {"library", required_argument, nullptr, 'l'},
                                   {"help", no_argument, nullptr, 'h'},
                                   {}};
    optind = 0;  // a whole new parse
    for (int c; (c = getopt_long(argc, argv.data(), "+t:ja:h", longs, nullptr)) != -1;) {
        char *end = nullptr;
        switch (c) {
        case 't':
            opt.timeout = strtod(optarg, &end);
            if (*end || !(opt.timeout >= 0) || isinf(opt.timeout))
                return fail(kUsage, std::string("-t takes seconds, not \"") + optarg + "\"");
            break;
        case 'j': opt.json = true; break;
        case 'a': opt.address = optarg; break;
        case 'l': opt.library = optarg; break;
        case 'h': return out(kHelp), kOk;
        default: return fputs(kHelp, stderr), kUsage;
        }
    }
    if (!prompt) g.opt = opt;
    if (optind == argc) return prompt ? kOk : interactive();
    if (g.lib && (opt.address != g.opt.address || opt.library != g.opt.library))
        return fail(kUsage, "the bus and the library are chosen when the prompt starts");
    const Options saved = g.opt;
    g.opt = opt;
    const auto *c = std::find_if(std::begin(kCommands), std::end(kCommands),
                                 [&](const auto &k) { return words[size_t(optind)] == k.name; });
    if (c == std::end(kCommands)) return fail(kUsage, "no command \"" + words[size_t(optind)] + "\"; see --help");
    g_interrupted = 0;
    const int first = optind;
    optind = 0;
    const int rc = c->run(argc - first, argv.data() + first);
    if (prompt) g.opt = saved;
    return rc;
}

// ---- The prompt.

// Words as a shell splits them: blanks between, quotes and backslashes
// keeping them. False on an open quote.
bool split(const std::string &line, std::vector<std::string> &words) {
    std::string word;
    bool in = false;
    char quote = 0;
    for (size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (quote) {
            if (c == quote) quote = 0;
            else if (c == '\\' && quote == '"' && i + 1 < line.size()) word += line[++i];
            else word += c;
        } else if (c == '\'' || c == '"') {
            quote = c, in = true;
        } else if (c == '\\' && i + 1 < line.size()) {
            word += line[++i], in = true;
        } else if (c == ' ' || c == '\t') {
            if (in) words.push_back(word);
            word.clear(), in = false;
        } else {
            word += c, in = true;
        }
    }
    if (in) words.push_back(word);
    return !quote;
}

std::vector<std::string> g_candidates;

char *candidate(const char *text, int state) {
    static size_t next;
    if (!state) next = 0;
    while (next < g_candidates.size()) {
        const std::string &c = g_candidates[next++];
        if (c.compare(0, strlen(text), text) == 0) return strdup(c.c_str());
    }
    return nullptr;
}

// Commands first, then message names, then the named command's fields.
char **complete(const char *text, int start, int) {
    rl_attempted_completion_over = 1;
    rl_completion_append_character = ' ';
    std::vector<std::string> w;
    split(std::string(rl_line_buffer, size_t(start)), w);
    static const std::vector<std::string> valued = {"-t", "-a", "--timeout", "--address", "--library",
                                                    "--to", "--from", "--capture"};
    std::vector<std::string> args;  // the words but options and their values
    for (size_t i = 0; i < w.size(); ++i)
        if (w[i][0] != '-') args.push_back(w[i]);
        else if (std::find(valued.begin(), valued.end(), w[i]) != valued.end()) ++i;
    g_candidates.clear();
    if (args.empty()) {
        for (const auto &c : kCommands) g_candidates.push_back(c.name);
        g_candidates.insert(g_candidates.end(), {"help", "quit"});
    } else if (args[0] == "listen" || (args[0] == "call" && args.size() == 1)) {
        for (const tools::Message &m : tools::messages())
            if (m.ntfy == (args[0] == "listen")) g_candidates.push_back(m.name);
    } else if (const tools::Message *m = args[0] == "call" ? message(args[1], false) : nullptr) {
        paths(*m->req, "", g_candidates);
        rl_completion_append_character = '\0';
    }
    return rl_completion_matches(text, candidate);
}

int interactive() {
    rl_readline_name = "wifiap-cli";
    rl_attempted_completion_function = complete;
    const char *home = getenv("HOME");
    const std::string history = home ? std::string(home) + "/.wifiap-cli_history" : "";
    if (!history.empty()) read_history(history.c_str());
    const Options base = g.opt;
    int rc = kOk;
    for (char *line; (line = readline(isatty(0) ? "wifiap> " : ""));) {
        std::vector<std::string> words{"wifiap-cli"};
        const bool whole = split(line, words);
        if (*line) add_history(line);
        free(line);
        if (!whole) {
            rc = fail(kUsage, "a quote is not closed");
            continue;
        }
        if (words.size() > 1 && (words[1] == "quit" || words[1] == "exit")) break;
        if (words.size() > 1 && words[1] == "help") words[1] = "--help";
        g.opt = base;
        rc = run(words, base, true);
        if (g_interrupted) out("\n");  // the prompt on a line of its own after ^C
        if (rc && isatty(0)) fprintf(stderr, "(exit status %d)\n", rc);
    }
    if (!history.empty()) write_history(history.c_str());
    return rc;
}

}  // namespace

}  // namespace wifiap::cli

int main(int argc, char **argv) {
    using namespace wifiap::cli;
    // Ctrl-C ends a wait, not the program: the bus is left cleanly.
    struct sigaction sa {};
    sa.sa_handler = [](int) { g_interrupted = 1; };
    sigaction(SIGINT, &sa, nullptr);
    signal(SIGPIPE, SIG_IGN);
    const int rc = run({argv, argv + argc}, Options{}, false);
    disconnect();
    return rc;
}
