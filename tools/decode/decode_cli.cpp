#include "decode_cli.h"

#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>

#include <fstream>
#include <iterator>
#include <sstream>

#include "text_capture.h"
#include "check.h"
#include "pcapng.h"

namespace wifiap::tools {

namespace {

const char kUsage[] =
    "usage: wifiap-decode [--msg NAME] [--request|--response] [--binary] [--hex]\n"
    "                     [--items N] [--pcapng OUT] [FILE|-]\n"
    "Decodes a body (hex text or, with --binary or when not hex, raw bytes) or a\n"
    "capture file. Without --msg the message is found from the header's magic.\n"
    "--pcapng OUT also writes a capture file's bodies to OUT, for Wireshark.\n";

struct Opts {
    const Message *msg = nullptr;
    int bodyType = -1;  // -1: either side the message has
    bool binary = false, hex = false;
    Style style;
    std::string file, pcapng;
};

bool parse(const std::vector<std::string> &args, Opts &o, std::string &err) {
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string &a = args[i];
        const bool hasValue = i + 1 < args.size();
        if (a == "--msg" && hasValue) {
            o.msg = findMessage(args[++i]);
            if (!o.msg) {
                err += "wifiap-decode: no message \"" + args[i] + "\"; one of:";
                for (const Message &m : messages()) err += std::string(" ") + m.name;
                err += "\n";
                return false;
            }
        } else if (a == "--request") {
            o.bodyType = INTFWIFIAP_BODY_REQUEST;
        } else if (a == "--response") {
            o.bodyType = INTFWIFIAP_BODY_RESPONSE;
        } else if (a == "--binary") {
            o.binary = true;
        } else if (a == "--hex") {
            o.hex = true;
        } else if (a == "--pcapng" && hasValue) {
            o.pcapng = args[++i];
        } else if (a == "--items" && hasValue) {
            o.style.maxItems = uint32_t(strtoul(args[++i].c_str(), nullptr, 10));
        } else if ((a.empty() || a[0] != '-' || a == "-") && o.file.empty()) {
            o.file = a;
        } else {
            err += kUsage;
            return false;
        }
    }
    return true;
}

// One body as one candidate: its elements, then the library's verdict.
bool show(std::string &out, const Candidate &c, const uint8_t *body, size_t n, const Opts &o) {
    char head[160];
    snprintf(head, sizeof head, "%s %s (%s %" PRIu32 "), %zu bytes\n", c.msg->name,
             sideName(*c.msg, c.bodyType), tableName(c.msg->ntfy), c.msg->index, n);
    out += head;
    decode(out, *c.msg, c.bodyType, body, n, o.style);
    Verdict v = check(*c.msg, c.bodyType, body, n);
    out += "  " + describe(v);
    return v.code == INTFWIFIAP_BODY_OK;
}

// A body whose message is not given: every message its header fits.
bool showAny(std::string &out, const uint8_t *body, size_t n, const Opts &o) {
    std::vector<Candidate> cs = candidates(body, n);
    if (o.msg) {
        cs.clear();
        for (uint32_t t = 0; t <= (o.msg->res ? 1u : 0u); ++t)
            if (o.bodyType < 0 || uint32_t(o.bodyType) == t) cs.push_back({o.msg, t});
        if (cs.empty()) {
            out += std::string(o.msg->name) + " has no response\n";
            return false;
        }
    } else if (o.bodyType >= 0) {
        std::erase_if(cs, [&](const Candidate &c) { return c.bodyType != uint32_t(o.bodyType); });
    }
    if (cs.empty()) {
        out += "no message has this header; its elements:\n";
        walk(out, body, n, o.style);
        return false;
    }
    if (cs.size() > 1) {
        out += "the header fits " + std::to_string(cs.size()) + " messages:";
        for (const Candidate &c : cs)
            out += std::string(" ") + c.msg->name + " " + sideName(*c.msg, c.bodyType) + ",";
        out.back() = '\n';
    }
    bool any = false;
    for (const Candidate &c : cs) {
        if (cs.size() > 1) out += "\n";
        any |= show(out, c, body, n, o);
    }
    return any;
}

// `pcapng`, if not null, receives a packet for every crossing.
bool showCapture(std::string &out, std::string &err, std::string_view text, const Opts &o,
                 std::string *pcapng) {
    bool ok = true;
    size_t number = 0, lineNo = 0;
    while (!text.empty()) {
        size_t eol = text.find('\n');
        std::string_view line = text.substr(0, eol);
        text.remove_prefix(eol == std::string_view::npos ? text.size() : eol + 1);
        ++lineNo;
        Crossing c;
        std::string why;
        if (!parseCaptureLine(line, c, why)) {
            if (!why.empty()) {
                err += "line " + std::to_string(lineNo) + ": " + why + "\n";
                ok = false;
            }
            continue;
        }
        if (pcapng) *pcapng += pcapngPacket(c);
        const Message *m = findMessage(c.table, c.index);
        char head[96];
        snprintf(head, sizeof head, "#%zu %.6f ", ++number, c.seconds);
        out += head;
        if (!m) {
            out += c.table + " " + std::to_string(c.index) + ": no such message\n";
            walk(out, c.body.data(), c.body.size(), o.style);
            ok = false;
            continue;
        }
        ok &= show(out, {m, c.bodyType}, c.body.data(), c.body.size(), o);
        if (o.hex) hexDump(out, c.body.data(), c.body.size());
    }
    return ok;
}

bool looksLikeCapture(std::string_view text) {
    while (!text.empty()) {
        size_t eol = text.find('\n');
        Crossing c;
        std::string why;
        if (parseCaptureLine(text.substr(0, eol), c, why)) return true;
        if (!why.empty() || eol == std::string_view::npos) return false;
        text.remove_prefix(eol + 1);
    }
    return false;
}

}  // namespace

int runDecode(const std::vector<std::string> &args, const std::function<std::string()> &readInput, std::string &out,
              std::string &err) {
    Opts o;
    if (!parse(args, o, err)) return 2;
    std::string data;
    if (!o.file.empty() && o.file != "-") {
        std::ifstream f(o.file, std::ios::binary);
        if (!f) {
            err += "wifiap-decode: cannot read " + o.file + "\n";
            return 2;
        }
        data.assign(std::istreambuf_iterator<char>(f), {});
    } else {
        data = readInput();
    }
    const std::string_view input = data;
    if (!o.pcapng.empty()) {
        if (o.binary || !looksLikeCapture(input)) {
            err += "wifiap-decode: --pcapng converts a capture file, and this is none\n";
            return 2;
        }
        std::string pcap = pcapngStart();
        const bool ok = showCapture(out, err, input, o, &pcap);
        std::ofstream f(o.pcapng, std::ios::binary);
        if (!f.write(pcap.data(), std::streamsize(pcap.size())) || !f.flush()) {
            err += "wifiap-decode: cannot write " + o.pcapng + "\n";
            return 2;
        }
        return ok ? 0 : 1;
    }
    if (!o.binary && looksLikeCapture(input)) return showCapture(out, err, input, o, nullptr) ? 0 : 1;
    std::vector<uint8_t> body;
    if (o.binary || !parseHex(input, body)) {
        // Hex digits alone that do not pair up are a typing slip, not binary.
        if (!o.binary && input.find_first_not_of("0123456789abcdefABCDEF \t\r\n") ==
                             std::string_view::npos) {
            err += "wifiap-decode: an odd number of hex digits\n";
            return 2;
        }
        body.assign(input.begin(), input.end());
    }
    const bool ok = showAny(out, body.data(), body.size(), o);
    if (o.hex) hexDump(out, body.data(), body.size());
    return ok ? 0 : 1;
}

}  // namespace wifiap::tools
