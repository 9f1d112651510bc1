// wifiap-luagen: prints a Wireshark dissector (Lua) for the packets that the
// pcapng writer makes. Its tables come from the library's message list and
// record tables, and the packet header from pcapng.h; the walk after them
// follows the decoder's and words its refusals alike.
#include <inttypes.h>
#include <stdio.h>
#include <string.h>

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
                 "\", first = " + std::to_string(d->firstTag) + ", fields = {\n";
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
                std::string("wifiap.") + (*d.name ? std::string(d.name) + "." : "") + f.name;
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

// The walk: the same checks, in the same order and words, as the decoder's.
const char kWalk[] = R"lua(
local f_tag = ProtoField.uint32("wifiap.tag", "Tag")
local f_length = ProtoField.uint32("wifiap.length", "Length")
local f_message = ProtoField.string("wifiap.message", "Message")
local f_sender = ProtoField.string("wifiap.sender", "Sender")
local f_receiver = ProtoField.string("wifiap.receiver", "Receiver")
local f_record = ProtoField.none("wifiap.record", "Record")
local f_element = ProtoField.bytes("wifiap.element", "Element")
local e_refused = ProtoExpert.new("wifiap.refused", "The library refuses this body",
                                  expert.group.PROTOCOL, expert.severity.ERROR)
local e_packet = ProtoExpert.new("wifiap.packet", "Not a packet of this format",
                                 expert.group.PROTOCOL, expert.severity.ERROR)
local e_extra = ProtoExpert.new("wifiap.extra", "Bytes after the payload",
                                expert.group.PROTOCOL, expert.severity.NOTE)
local e_cut = ProtoExpert.new("wifiap.cut", "The capture holds the body in part",
                              expert.group.UNDECODED, expert.severity.WARN)

local all = {f_tag, f_length, f_message, f_sender, f_receiver, f_record, f_element}
for _, f in pairs(F) do all[#all + 1] = f end
for _, h in ipairs(PACKET) do
    h.hf = ProtoField.uint32("wifiap.packet." .. h.name, (h.name:gsub("^%l", string.upper)))
    all[#all + 1] = h.hf
end
p.fields = all
p.experts = {e_refused, e_packet, e_extra, e_cut}

local function quoted(s)
    local out = {'"'}
    for i = 1, #s do
        local b = s:byte(i)
        if b == 34 or b == 92 then out[#out + 1] = "\\" end
        if b >= 0x20 and b < 0x7F then out[#out + 1] = string.char(b)
        else out[#out + 1] = string.format("\\x%02x", b) end
    end
    out[#out + 1] = '"'
    return table.concat(out)
end

-- One body being walked: every read below is of bytes the checks before it
-- found captured, so hostile bytes end in expert info, never an error. The
-- body's whole length judges it; what was captured of it bounds the reads.
local W = {}
W.__index = W

function W.new(tvb, base, length, whole)
    return setmetatable({tvb = tvb, base = base, length = length, whole = whole, pos = 0}, W)
end
function W:left() return self.length - self.pos end
function W:rest() return self.whole - self.pos end
function W:range(at, n) return self.tvb(self.base + at, n) end
function W:u32(at) return self.tvb(self.base + at, 4):uint() end

function W:fail(tree, what, tag, name)
    tree:add_tvb_expert_info(e_refused, self:range(self.pos, self:left()),
        string.format("offset %d: %s (tag %d %s expected)", self.pos, what, tag, name))
    return false
end

function W:cut(tree)
    tree:add_proto_expert_info(e_cut, string.format("offset %d: the capture ends, %d bytes of the body not in it",
                                                    self.pos, self:rest()))
    return false
end

-- The element of field f at pos; returns true and its integer, if any.
function W:field(tree, f, tag)
    local wide = f.kind == "u64"
    local word = wide and 8 or 4
    local head = 2 * word
    if self:rest() < head then return self:fail(tree, "the body ends", tag, f.name) end
    if self:left() < head then return self:cut(tree) end
    local at = self.pos
    local found, len, valueLen
    if wide then
        found = self:range(at, 8):uint64()
        len = self:range(at + 8, 8):uint64()
        valueLen = self:u32(at + 12)
        if self:u32(at) ~= 0 or self:u32(at + 4) ~= tag then
            return self:fail(tree, string.format("tag %s length %s", tostring(found), tostring(len)),
                             tag, f.name)
        end
    else
        found = self:u32(at)
        valueLen = self:u32(at + 4)
        if found ~= tag then
            return self:fail(tree, string.format("tag %d length %d", found, valueLen), tag, f.name)
        end
    end
    if self:rest() - head < valueLen then
        return self:fail(tree, "the value overruns the body", tag, f.name)
    end
    if self:left() - head < valueLen then return self:cut(tree) end
    local v = at + head
    local value, shown, number
    if f.kind == "text" then
        local raw = valueLen > 0 and self.tvb:raw(self.base + v, valueLen) or ""
        local nul = raw:find("\0", 1, true)
        if not nul then return self:fail(tree, "a text without its NUL", tag, f.name) end
        if nul > f.cap then
            return self:fail(tree, string.format("a text of %d bytes for a field of %d", nul, f.cap),
                             tag, f.name)
        end
        value = raw:sub(1, nul - 1)
        shown = quoted(value)
    else
        if valueLen < word then return self:fail(tree, "a value too short", tag, f.name) end
        if wide then
            value = self:range(v, 8):uint64()
            shown = tostring(value)
        else
            local w = self:u32(v)
            number = w
            if f.kind == "u8" then
                number = w % 256
                value, shown = number, string.format("%d", number)
            elseif f.kind == "s8" or f.kind == "s16" then
                local m = f.kind == "s8" and 256 or 65536
                value = w % m
                if value >= m / 2 then value = value - m end
                shown = string.format("%d", value)
            elseif f.name == "magic" then
                value, shown = w, string.format("0x%08X", w)
            else
                value, shown = w, string.format("%d", w)
            end
        end
    end
    local item = tree:add(f.hf, self:range(at, head + valueLen), value)
    item:set_text(string.format("%d %s = %s", tag, f.name, shown))
    item:add(f_tag, self:range(at, word), tag)
    item:add(f_length, self:range(at + word, word), valueLen)
    self.pos = v + valueLen
    return true, number
end

function W:subtree(tree, label)
    return tree:add(f_record, self:range(self.pos, 0)):set_text(label)
end
function W:close(item, from) item:set_len(self.pos - from) end

function W:record(tree, d)
    local values = {}
    for i, f in ipairs(d.fields) do
        local tag = d.first + i - 1
        if f.kind == "nested" then
            local from, sub = self.pos, self:subtree(tree, f.name .. ": " .. f.sub.name)
            local ok = self:record(sub, f.sub)
            self:close(sub, from)
            if not ok then return false end
        elseif f.kind == "list" then
            local items = math.min(values[f.count] or 0, f.cap)
            for k = 0, items - 1 do
                local from = self.pos
                local sub = self:subtree(tree, string.format("%s[%d]: %s", f.name, k, f.sub.name))
                local ok = self:record(sub, f.sub)
                self:close(sub, from)
                if not ok then return false end
            end
        else
            local ok, number = self:field(tree, f, tag)
            if not ok then return false end
            values[i] = number
        end
    end
    return true
end

-- Elements of a message unknown: tag, length, and the value as a number, text or bytes.
function W:walk(tree)
    while self:rest() > 0 do
        if self:rest() < 8 then
            tree:add_tvb_expert_info(e_refused, self:range(self.pos, self:left()),
                string.format("offset %d: %d bytes, too few for an element", self.pos, self:rest()))
            return
        end
        if self:left() < 8 then return self:cut(tree) end
        local tag, len = self:u32(self.pos), self:u32(self.pos + 4)
        if self:rest() - 8 < len then
            tree:add_tvb_expert_info(e_refused, self:range(self.pos, self:left()),
                string.format("offset %d: tag %d length %d overruns the body", self.pos, tag, len))
            return
        end
        if self:left() - 8 < len then return self:cut(tree) end
        local shown
        if len == 4 then shown = string.format("%d (0x%08X)", self:u32(self.pos + 8), self:u32(self.pos + 8))
        elseif len > 0 then shown = tostring(self:range(self.pos + 8, len):bytes())
        else shown = "" end
        local item = tree:add(f_element, self:range(self.pos, 8 + len))
        item:set_text(string.format("%d (%d bytes) %s", tag, len, shown))
        item:add(f_tag, self:range(self.pos, 4), tag)
        item:add(f_length, self:range(self.pos + 4, 4), len)
        self.pos = self.pos + 8 + len
    end
end

local PACKET_BYTES = 0
for _, h in ipairs(PACKET) do PACKET_BYTES = PACKET_BYTES + h.bytes end

function p.dissector(tvb, pinfo, tree)
    local n = tvb:len()
    pinfo.cols.protocol = p.description
    local root = tree:add(p, tvb(0, n))
    if n < PACKET_BYTES then
        root:add_tvb_expert_info(e_packet, tvb(0, n),
            string.format("%d bytes, too few for the packet header", n))
        return
    end
    local h, at = {}, 0
    local ht = root:add(f_record, tvb(0, PACKET_BYTES)):set_text("Packet header")
    for _, f in ipairs(PACKET) do
        h[f.name] = tvb(at, f.bytes):uint()
        ht:add(f.hf, tvb(at, f.bytes), h[f.name])
        at = at + f.bytes
    end
    if h.format ~= FORMAT then
        root:add_tvb_expert_info(e_packet, tvb(0, 1),
            string.format("packet format %d, not %d", h.format, FORMAT))
        return
    end
    if n - at < h.senderLength + h.receiverLength then
        root:add_tvb_expert_info(e_packet, tvb(at, n - at), "the names overrun the packet")
        return
    end
    local sender = tvb(at, h.senderLength):string()
    ht:add(f_sender, tvb(at, h.senderLength))
    at = at + h.senderLength
    local receiver = tvb(at, h.receiverLength):string()
    ht:add(f_receiver, tvb(at, h.receiverLength))
    at = at + h.receiverLength
    local length = tvb:reported_len() - at
    local w = W.new(tvb, at, n - at, length)

    local tname = TABLES[h.table] or string.format("table %d", h.table)
    local m = MESSAGES[h.table] and MESSAGES[h.table][h.index]
    if not m then
        local what = string.format("%s %d: no such message", tname, h.index)
        root:set_text(p.description .. ", " .. what)
        pinfo.cols.info = what
        root:add_proto_expert_info(e_refused, what)
        w:walk(root)
        return
    end
    local side = m.ntfy and "notification" or (h.bodyType ~= 0 and "response" or "request")
    local heading = string.format("%s %s (%s %d), %d bytes", m.name, side, tname, h.index, length)
    root:set_text(p.description .. ", " .. heading)
    root:add(f_message, tvb(0, 0), m.name .. " " .. side)
    if sender ~= "" then pinfo.cols.src = sender end
    if receiver ~= "" then pinfo.cols.dst = receiver end
    pinfo.cols.info = m.name .. " " .. side

    local hv = {}
    for i, f in ipairs(HEADER.fields) do
        local ok, number = w:field(root, f, HEADER.first + i - 1)
        if not ok then return end
        hv[i] = number
    end
    if hv[1] ~= m.magic then
        root:add_tvb_expert_info(e_refused, w:range(0, 12),
            string.format("magic 0x%08X is not %s's 0x%08X", hv[1], m.name, m.magic))
        return
    end
    if hv[2] % 65536 ~= m.version then
        root:add_tvb_expert_info(e_refused, w:range(12, 12),
            string.format("version %d is not %s's %d", hv[2], m.name, m.version))
        return
    end
    local payload = m.req
    if h.bodyType ~= 0 then payload = m.res end
    if payload then
        local tree = root
        if payload.name ~= "" then tree = w:subtree(root, "Payload: " .. payload.name) end
        local from, ok = w.pos, w:record(tree, payload)
        if tree ~= root then w:close(tree, from) end
        if not ok then return end
    end
    if w:rest() > 0 then
        root:add_tvb_expert_info(e_extra, w:range(w.pos, w:left()),
            string.format("%d more bytes after the payload", w:rest()))
    end
end

DissectorTable.get("wtap_encap"):add(wtap.USER0, p)
)lua";

}  // namespace

int main() {
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

    printf("-- IntfWifiAp bodies in Wireshark. Made by wifiap-luagen from the library's\n"
           "-- message list and record tables: change those, not this file.\n"
           "local p = Proto(\"wifiap\", \"IntfWifiAp\")\n\n"
           "local PACKET = {\n%s}\nlocal FORMAT = %" PRIu32 "\n\n"
           "local TABLES = {[0] = \"%s\", [1] = \"%s\"}\n\n"
           "local F = {}\n%s\n"
           "local D = {}\n%s\n"
           "local HEADER = D[%d]\n"
           "local MESSAGES = {}\n%s%s",
           packet.c_str(), kPacketFormat, tableName(false), tableName(true), g.fields.c_str(),
           g.descs.c_str(), g.id.at(&c::kHeaderDesc), msgs.c_str(), kWalk);
    return 0;
}
