// wifiap-luagen: prints a Wireshark dissector (Lua) for the packets that the
// pcapng writer makes. Its tables come from the library's message list and
// record tables, and the packet header from pcapng.h; the walk after them
// (tools/wireshark/wifiap.lua.in) is the library's rules in Lua, worded as the
// decoder words its refusals.
#include <inttypes.h>
#include <stdio.h>
#include <string.h>

#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "decode.h"
#include "pcapng.h"

namespace {

namespace c = wifiap::codec;
using c::Kind;
using namespace wifiap::tools;

const char *kindName(Kind k) {
    switch (k) {
    case Kind::U8: return "u8";
    case Kind::S8: return "s8";
    case Kind::S16: return "s16";
    case Kind::U32: return "u32";
    case Kind::U64: return "u64";
    case Kind::Text: return "text";
    case Kind::Nested: return "nested";
    case Kind::List: return "list";
    }
    return "?";
}

// The field type a kind's value is shown as.
const char *protoType(Kind k) {
    switch (k) {
    case Kind::S8:
    case Kind::S16: return "int32";
    case Kind::U64: return "uint64";
    case Kind::Text: return "string";
    default: return "uint32";
    }
}

struct Gen {
    std::map<const c::Desc *, int> id;  // descriptors in the order printed
    std::map<std::string, std::string> fieldType;  // filter name -> its type
    std::string fields, descs;
    bool ok = true;

    // Each descriptor once, the ones it holds first.
    void visit(const c::Desc *d) {
        if (id.count(d)) return;
        for (uint32_t i = 0; i < d->count; ++i)
            if (d->fields[i].sub) visit(d->fields[i].sub);
        const int n = int(id.size()) + 1;
        id[d] = n;
        descs += "D[" + std::to_string(n) + "] = {name = \"" + d->name +
                 "\", bare = " + (d->bare ? "true" : "false") +
                 ", first = " + std::to_string(d->firstTag) + ", fields = {\n";
        for (uint32_t i = 0; i < d->count; ++i) descs += "    " + field(*d, d->fields[i]) + ",\n";
        descs += "}}\n";
    }

    std::string field(const c::Desc &d, const c::Field &f) {
        std::string s = "{name = \"" + std::string(f.name) + "\", kind = \"" + kindName(f.kind) + "\"";
        if (f.kind == Kind::Text) s += ", cap = " + std::to_string(f.cap);
        if (f.sub) s += ", sub = D[" + std::to_string(id.at(f.sub)) + "]";
        if (f.kind == Kind::List) {
            s += ", cap = " + std::to_string(f.cap);
            uint32_t at = 0;
            for (uint32_t i = 0; i < d.count; ++i)
                if (d.fields[i].off == f.countOff && c::isScalar(d.fields[i].kind)) at = i + 1;
            if (!at) {
                fprintf(stderr, "wifiap-luagen: %s.%s has no count field\n", d.name, f.name);
                ok = false;
            }
            s += ", count = " + std::to_string(at);
        }
        if (c::hasElement(f.kind)) {
            // Filter names: wifiap.<record>.<field>, or wifiap.<field> for bare payloads.
            const std::string abbrev =
                std::string("wifiap.") + (d.bare ? "" : std::string(d.name) + ".") + f.name;
            const std::string type = protoType(f.kind);
            auto [it, added] = fieldType.emplace(abbrev, type);
            if (added) {
                const bool hex = f.kind == Kind::U32 && strcmp(f.name, "magic") == 0;
                fields += "F[\"" + abbrev + "\"] = ProtoField." + type + "(\"" + abbrev + "\", \"" +
                          f.name + "\"" + (hex ? ", base.HEX" : "") + ")\n";
            } else if (it->second != type) {
                fprintf(stderr, "wifiap-luagen: %s is both %s and %s\n", abbrev.c_str(),
                        it->second.c_str(), type.c_str());
                ok = false;
            }
            s += ", hf = F[\"" + abbrev + "\"]";
        }
        return s + "}";
    }
};


}  // namespace

int main(int argc, char **argv) {
    Gen g;
    g.visit(&c::kHeaderDesc);
    for (const Message &m : messages()) {
        g.visit(m.req);
        if (m.res) g.visit(m.res);
    }
    std::string msgs;
    for (bool ntfy : {false, true}) {
        msgs += "MESSAGES[" + std::to_string(ntfy) + "] = {\n";
        for (const Message &m : messages()) {
            if (m.ntfy != ntfy) continue;
            char magic[16];
            snprintf(magic, sizeof magic, "0x%08" PRIX32, m.magic);
            msgs += "    [" + std::to_string(m.index) + "] = {name = \"" + m.name +
                    "\", ntfy = " + (ntfy ? "true" : "false") + ", magic = " + magic +
                    ", version = " + std::to_string(m.version) +
                    ", req = D[" + std::to_string(g.id.at(m.req)) + "]" +
                    (m.res ? ", res = D[" + std::to_string(g.id.at(m.res)) + "]" : "") + "},\n";
        }
        msgs += "}\n";
    }
    if (!g.ok) return 1;

    std::string packet;
    for (const PacketField &f : kPacketHeader)
        packet += "    {name = \"" + std::string(f.name) + "\", bytes = " + std::to_string(f.bytes) + "},\n";

    // The element rules' sizes: header bytes, and bytes the body must hold.
    std::string rules;
    for (Kind k : {Kind::U8, Kind::S8, Kind::S16, Kind::U32, Kind::U64, Kind::Text}) {
        const uint32_t header = k == Kind::U64 ? 16 : 8;
        const uint32_t need = c::isScalar(k) ? c::kScalarSize : k == Kind::U64 ? c::kWideSize : 8;
        rules += std::string("    ") + kindName(k) + " = {header = " + std::to_string(header) +
                 ", need = " + std::to_string(need) + "},\n";
    }
    char magicFormat[16];
    snprintf(magicFormat, sizeof magicFormat, "%" PRIu32, kPacketFormat);
    const std::string tables =
        "local PACKET = {\n" + packet + "}\nlocal FORMAT = " + magicFormat + "\n\n" +
        "local TABLES = {[0] = \"" + tableName(false) + "\", [1] = \"" + tableName(true) +
        "\"}\n\nlocal RULES = {\n" + rules + "}\n\n" +
        "local CODES = {[1] = \"body type not handled\", [2] = \"header\", [4] = \"payload\", " +
        "[5] = \"memory\"}\n\nlocal F = {}\n" + g.fields + "\nlocal D = {}\n" + g.descs +
        "\nlocal HEADER = D[" + std::to_string(g.id.at(&c::kHeaderDesc)) + "]\n" +
        "local MESSAGES = {}\n" + msgs;

    // The template, with the tables where it says.
    if (argc != 2) {
        fprintf(stderr, "usage: wifiap-luagen TEMPLATE.lua.in > wifiap.lua\n");
        return 2;
    }
    std::ifstream in(argv[1]);
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const size_t at = text.find("@TABLES@");
    if (!in || at == std::string::npos) {
        fprintf(stderr, "wifiap-luagen: %s: no @TABLES@ to fill\n", argv[1]);
        return 1;
    }
    text.replace(at, 8, tables);
    fwrite(text.data(), 1, text.size(), stdout);
    return 0;
}
