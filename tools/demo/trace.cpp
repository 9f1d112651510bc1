#include "trace.h"

#include <time.h>

#include "decode.h"
#include "pcapng.h"
#include "text_capture.h"

namespace wifiap::demo {
namespace {

using namespace wifiap::tools;

std::string who(const char *bus, const char *user) {
    return std::string(bus ? bus : "") + "/" + (user ? user : "");
}

}  // namespace

double now() {
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return double(ts.tv_sec) + double(ts.tv_nsec) / 1e9;
}

Trace::~Trace() {
    if (capture_) fclose(capture_);
}

bool Trace::openCapture(const std::string &f, uint32_t stations) {
    pcapng_ = f.size() > 7 && f.compare(f.size() - 7, 7, ".pcapng") == 0;
    capture_ = fopen(f.c_str(), pcapng_ ? "wb" : "w");
    if (!capture_) return false;
    if (pcapng_) {
        const std::string start = pcapngStart();
        fwrite(start.data(), 1, start.size(), capture_);
    } else {
        fprintf(capture_,
                "# wifiap-demo --stations %u: every body sent\n"
                "# <seconds.micros> <table> <index> <bodyType> <hex bytes>\n",
                stations);
    }
    return true;
}

void Trace::listen() {
    start_ = now();
    hs_setTrace(onTrace, this);
}

// Copies only: decoding and printing wait until the loop is idle, so that a
// timed exchange measures the library and the bus, not the printing.
void Trace::onTrace(void *self, const hs_trace *t) {
    Trace &tr = *static_cast<Trace *>(self);
    Seen s{now() - tr.start_, t->stage, t->index, t->bodyType, t->code, t->table, t->message,
           who(t->senderBus, t->sender), t->receiver ? who(t->receiverBus, t->receiver) : "",
           {}, t->body != nullptr};
    if (t->body) s.body.assign(t->body, t->body + t->length);
    tr.seen_.push_back(std::move(s));
}

size_t Trace::pendingResponseSize() const {
    size_t bytes = 0;
    for (const Seen &s : seen_)
        if (s.bodyType == INTFWIFIAP_BODY_RESPONSE)
            bytes = s.body.size();
    return bytes;
}

// A body sent, once its receivers are known (a notification's are not when it is sent).
void Trace::capture(const Seen &s, const std::string &receivers) {
    if (!capture_ || !s.hasBody) return;
    Crossing c{s.seconds, s.table, s.index, s.bodyType, s.body, s.from, receivers};
    if (pcapng_) {
        const std::string b = pcapngPacket(c);
        fwrite(b.data(), 1, b.size(), capture_);
    } else {
        fprintf(capture_, "%s\n", captureLine(c).c_str());
    }
}

// One block per body sent, with where it arrived. A body received belongs to
// the first one sent alike that has not yet reached that receiver; one sent
// by another process has a block of its own.
void Trace::print() {
    std::vector<std::string> to(seen_.size()), names(seen_.size());
    std::vector<bool> merged(seen_.size());
    for (size_t j = 0; j < seen_.size(); ++j) {
        const Seen &r = seen_[j];
        if (r.stage != HS_TRACE_RECEIVED) continue;
        merged[j] = true;
        for (size_t i = 0;; ++i) {
            if (i == j) {
                merged[j] = false;
                to[j] = r.to + (r.code ? " (refused, code " + std::to_string(r.code) + ")" : "");
                break;
            }
            const Seen &s = seen_[i];
            if (s.stage != HS_TRACE_SENT || s.table != r.table || s.index != r.index ||
                s.bodyType != r.bodyType || s.body != r.body ||
                to[i].find(r.to) != std::string::npos)
                continue;
            to[i] += (to[i].empty() ? "" : ", ") + r.to;
            names[i] += (names[i].empty() ? "" : ", ") + r.to;
            if (r.code) to[i] += " (refused, code " + std::to_string(r.code) + ")";
            break;
        }
    }
    for (size_t i = 0; i < seen_.size(); ++i) {
        const Seen &s = seen_[i];
        if (merged[i]) continue;
        if (s.stage == HS_TRACE_SENT) capture(s, names[i]);
        if (to[i].empty()) to[i] = s.to;
        const Message *m = findMessage(s.table, s.index);
        const bool ntfy = m && m->ntfy;
        const char *dir = ntfy ? "server -> clients" : s.bodyType ? "server -> client"
                                                                  : "client -> server";
        printf("#%u %s  %s %s, %zu bytes  [%s -> %s]\n", ++blocks_, dir, s.message.c_str(),
               m ? sideName(*m, s.bodyType) : "body", s.body.size(), s.from.c_str(),
               to[i].empty() ? "nobody" : to[i].c_str());
        if (!s.hasBody) {
            printf("  !! not serialized: code %u\n", s.code);
            continue;
        }
        std::string text;
        Style style;
        style.maxItems = 2;
        if (m) decode(text, *m, s.bodyType, s.body.data(), s.body.size(), style);
        else walk(text, s.body.data(), s.body.size(), style);
        if (hex) hexDump(text, s.body.data(), s.body.size());
        fwrite(text.data(), 1, text.size(), stdout);
    }
    seen_.clear();
}

}  // namespace wifiap::demo
