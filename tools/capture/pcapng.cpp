#include "pcapng.h"

#include <math.h>
#include <string.h>

#include <algorithm>

#include "decode.h"

namespace wifiap::tools {

namespace {

namespace field {
#define WIFIAP_PACKET_ENUM(name, bytes) name,
enum : size_t { WIFIAP_PACKET_HEADER(WIFIAP_PACKET_ENUM) count };
#undef WIFIAP_PACKET_ENUM
}  // namespace field

// Blocks are written in the host's byte order: readers tell it from the section header.
void u32(std::string &out, uint32_t v) { out.append(reinterpret_cast<const char *>(&v), 4); }
void u16(std::string &out, uint16_t v) { out.append(reinterpret_cast<const char *>(&v), 2); }

// A block: its type, its length before and after, the contents padded to 32 bits.
std::string block(uint32_t type, const std::string &contents) {
    const uint32_t padded = uint32_t((contents.size() + 3) & ~size_t(3));
    std::string b;
    u32(b, type);
    u32(b, 12 + padded);
    b += contents;
    b.append(padded - contents.size(), '\0');
    u32(b, 12 + padded);
    return b;
}

uint32_t tableByte(const std::string &table) {
    for (bool ntfy : {false, true})
        if (table == tableName(ntfy)) return ntfy;
    return kNoTable;
}

}  // namespace

std::string pcapngStart() {
    std::string shb;
    u32(shb, 0x1A2B3C4D);  // byte-order magic
    u16(shb, 1);
    u16(shb, 0);
    u32(shb, 0xFFFFFFFF);  // section length unknown
    u32(shb, 0xFFFFFFFF);
    std::string idb;
    u16(idb, uint16_t(kLinkType));
    u16(idb, 0);
    u32(idb, kMaxPacket);  // time in microseconds, the default
    return block(0x0A0D0D0A, shb) + block(1, idb);
}

std::string pcapngPacket(const Crossing &c) {
    const std::string sender = c.sender.substr(0, 0xFFFF), receiver = c.receiver.substr(0, 0xFFFF);
    uint32_t v[field::count];
    v[field::format] = kPacketFormat;
    v[field::table] = tableByte(c.table);
    v[field::index] = c.index;
    v[field::bodyType] = c.bodyType;
    v[field::senderLength] = uint32_t(sender.size());
    v[field::receiverLength] = uint32_t(receiver.size());
    std::string data;
    for (size_t i = 0; i < field::count; ++i) {
        // Out of range (a damaged capture's row, say): the field's largest value.
        const uint32_t bytes = kPacketHeader[i].bytes;
        const uint64_t x = std::min<uint64_t>(v[i], (uint64_t(1) << 8 * bytes) - 1);
        for (uint32_t k = bytes; k-- > 0;) data += char(x >> (8 * k));
    }
    data += sender + receiver;
    data.append(c.body.begin(), c.body.end());

    const uint64_t us = c.seconds > 0 ? uint64_t(llround(c.seconds * 1e6)) : 0;
    std::string epb;
    u32(epb, 0);  // the interface
    u32(epb, uint32_t(us >> 32));
    u32(epb, uint32_t(us));
    const size_t kept = std::min<size_t>(data.size(), kMaxPacket);
    u32(epb, uint32_t(kept));
    u32(epb, uint32_t(data.size()));
    epb.append(data, 0, kept);
    return block(6, epb);
}

}  // namespace wifiap::tools
