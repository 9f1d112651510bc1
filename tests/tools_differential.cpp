// The library, wifiap-decode and the Wireshark dissector must say the same of
// every body: the same verdict and code, the same fields, the same refusal at
// the same place. The bodies: the committed capture's, the fuzz seeds', and
// variants of each with every element's tag, stated length and text bytes
// changed in turn, and each cut right after an element's header.
//
//   wifiap-differential DECODE TSHARK LUA CAPTURE CORPUS_DIR WORK_DIR
#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "decode.h"
#include "text_capture.h"
#include "wire.h"

namespace {

using namespace wifiap::tools;
namespace fs = std::filesystem;

std::string slurp(const fs::path &p) {
    std::ifstream f(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(f), {}};
}

std::string run(const std::string &command) {
    std::string out;
    FILE *f = popen(command.c_str(), "r");
    if (!f) return out;
    char buf[65536];
    for (size_t n; (n = fread(buf, 1, sizeof buf, f)) > 0;) out.append(buf, n);
    const int st = pclose(f);
    if (!WIFEXITED(st) || WEXITSTATUS(st) > 1) {
        fprintf(stderr, "%s: status %d\n", command.c_str(), st);
        exit(1);
    }
    return out;
}

void put32(std::vector<uint8_t> &b, size_t at, uint32_t v) { wifiap::codec::put32(&b[at], v); }
uint32_t get32(const std::vector<uint8_t> &b, size_t at) { return wifiap::codec::get32(&b[at]); }

// A fuzz seed: the row, a selector (body type modulo 3; even: a valid header
// goes before the rest), the body.
bool fromSeed(const std::string &seed, Crossing &c) {
    const auto all = messages();
    if (seed.size() < 2) return false;
    const Message &m = all[uint8_t(seed[0]) % all.size()];
    const uint32_t type = uint8_t(seed[1]) % 3;
    if (type > 1 || (type == 1 && !m.res)) return false;
    c = {0, tableName(m.ntfy), m.index, type, {}, "", ""};
    if (uint8_t(seed[1]) % 2 == 0) {
        c.body.resize(24);
        const uint32_t words[] = {0, 4, m.magic, 1, 4, m.version};
        for (int i = 0; i < 6; ++i) put32(c.body, 4 * size_t(i), words[i]);
    }
    c.body.insert(c.body.end(), seed.begin() + 2, seed.end());
    return true;
}

// Every element of the body damaged in turn, as the library's walk finds them.
void variants(const Crossing &base, std::vector<Crossing> &out) {
    out.push_back(base);
    const Message *m = findMessage(base.table, base.index);
    if (!m) return;
    // A station list has thousands of elements, alike: a hundred spread over it.
    const auto found = elements(*m, base.bodyType, base.body.data(), base.body.size());
    const size_t step = (found.size() + 99) / 100;
    for (size_t k = 0; k < found.size(); k += step) {
        const Element &e = found[k];
        const size_t tag = e.at + e.header / 2 - 4, len = e.at + e.header - 4;
        auto with = [&](auto change) {
            Crossing c = base;
            change(c.body);
            out.push_back(std::move(c));
        };
        with([&](auto &b) { put32(b, tag, get32(b, tag) + 1); });
        for (uint32_t l : {0u, e.length - 1, e.length + 4, 0xFFFFFFF0u})
            with([&](auto &b) { put32(b, len, l); });
        with([&](auto &b) { b.resize(e.at + e.header); });
        with([&](auto &b) { put32(b, len, 0), b.resize(e.at + e.header); });
        if (!e.text) continue;
        with([&](auto &b) {
            for (size_t i = e.at + 8; i < e.at + 8 + e.length && i < b.size(); ++i)
                if (b[i] == 0) b[i] = 'A';
        });
        // Texts at their field's capacity and one past it, padded as written.
        for (uint32_t n : {e.capacity - 1, e.capacity})
            with([&](auto &b) {
                std::vector<uint8_t> v(((n + 1) & ~3u) + 4, 0);
                std::fill(v.begin(), v.begin() + n, 'A');
                put32(b, len, uint32_t(v.size()));
                const size_t from = e.at + 8, to = std::min(b.size(), from + e.length);
                b.erase(b.begin() + long(from), b.begin() + long(to));
                b.insert(b.begin() + long(from), v.begin(), v.end());
            });
    }
}

// "3 value1 = 36" (tag, name, value), "assocDevs[0]: assocDevInfoFull" (a
// nested record or list item): the fields both outputs show.
bool isField(const std::string &l) {
    const size_t sp = l.find(' '), eq = l.find(" = "), colon = l.find(": ");
    if (!l.empty() && isdigit(uint8_t(l[0])) && sp != l.npos && eq != l.npos)
        return l.find_first_not_of("0123456789") == sp && l.find(' ', sp + 1) == eq;
    return !l.empty() && islower(uint8_t(l[0])) && colon != l.npos && sp == colon + 1 &&
           l.find(' ', colon + 2) == l.npos;
}

// The lines both outputs share, in one form, one packet a block.
std::vector<std::string> normalize(const std::string &text) {
    std::vector<std::string> packets;
    auto add = [&](const std::string &l) {
        if (!packets.empty()) packets.back() += l + "\n";
    };
    std::istringstream in(text);
    for (std::string l; std::getline(in, l);) {
        l.erase(0, l.find_first_not_of(' '));
        const bool frame = l.rfind("Frame ", 0) == 0 && l.size() > 6 && isdigit(uint8_t(l[6]));
        if (frame || (l.size() > 1 && l[0] == '#' && isdigit(uint8_t(l[1])))) {
            packets.emplace_back();
            if (l[0] == '#') add("packet " + l.substr(l.find(' ', l.find(' ') + 1) + 1));
        } else if (l.rfind("IntfWifiAp, ", 0) == 0) {
            add("packet " + l.substr(12));
        } else if (l.rfind("!! ", 0) == 0) {
            add("refused " + l.substr(3));
        } else if (l.rfind("[Expert Info (Error/Protocol): ", 0) == 0) {
            add("refused " + l.substr(31, l.size() - 32));
        } else if (l.rfind("(", 0) == 0 && l.find("more bytes after the payload") != l.npos) {
            add("note " + l.substr(1, l.size() - 2));
        } else if (l.rfind("[Expert Info (Note/Protocol): ", 0) == 0) {
            add("note " + l.substr(30, l.size() - 31));
        } else if (l.rfind("accepted by the library", 0) == 0 ||
                   l.rfind("refused by the library: ", 0) == 0) {
            add("verdict " + l);
        } else if (isField(l)) {
            add(l);
        }
    }
    return packets;
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 7) {
        fprintf(stderr, "usage: %s DECODE TSHARK LUA CAPTURE CORPUS_DIR WORK_DIR\n", argv[0]);
        return 2;
    }
    const std::string decode = argv[1], tshark = argv[2], lua = argv[3];
    const fs::path work = argv[6];
    fs::create_directories(work);

    std::vector<Crossing> bases, all;
    std::istringstream capture(slurp(argv[4]));
    for (std::string l, why; std::getline(capture, l);)
        if (Crossing c; parseCaptureLine(l, c, why)) bases.push_back(std::move(c));
    const size_t fromCapture = bases.size();
    for (const auto &entry : fs::directory_iterator(argv[5])) {
        Crossing c;
        if (fromSeed(slurp(entry.path()), c)) bases.push_back(std::move(c));
    }
    for (const Crossing &b : bases) variants(b, all);
    std::string lines;
    for (size_t i = 0; i < all.size(); ++i) {
        all[i].seconds = double(i) / 1000;
        lines += captureLine(all[i]) + "\n";
    }
    std::ofstream(work / "variants.capture") << lines;

    const std::string pcapng = (work / "variants.pcapng").string();
    const auto decoded = normalize(run(decode + " --pcapng " + pcapng + " " +
                                       (work / "variants.capture").string()));
    const std::string shown = run(tshark + " -n -V -X lua_script:" + lua + " -r " + pcapng + " 2>&1");
    for (const char *bug : {"Lua Error", "Malformed Packet", "Dissector bug"})
        if (shown.find(bug) != std::string::npos) {
            fprintf(stderr, "tshark says \"%s\"\n", bug);
            return 1;
        }
    const auto dissected = normalize(shown);
    size_t differ = 0, accepted = 0;
    for (size_t i = 0; i < all.size(); ++i) {
        const std::string want = i < decoded.size() ? decoded[i] : "(none)\n";
        const std::string got = i < dissected.size() ? dissected[i] : "(none)\n";
        accepted += want.find("verdict accepted") != std::string::npos;
        if (want.find("verdict ") == std::string::npos && want.find("no such message") == want.npos)
            fprintf(stderr, "body %zu: wifiap-decode gave no verdict\n", i), ++differ;
        else if (want != got && differ++ < 5)
            fprintf(stderr, "body %zu: %s\n--- wifiap-decode\n%s--- tshark\n%s\n", i,
                    captureLine(all[i]).c_str(), want.c_str(), got.c_str());
    }
    printf("%zu bodies (%zu base bodies, %zu from the capture), %zu accepted; %zu packets "
           "decoded, %zu dissected; %zu disagree\n",
           all.size(), bases.size(), fromCapture, accepted, decoded.size(), dissected.size(),
           differ);
    return differ || decoded.size() != all.size() || dissected.size() != all.size();
}
