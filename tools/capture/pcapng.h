// Captures in pcapng, for Wireshark: a section header, one interface, then
// one packet per body. A packet is a small header of fixed fields, the sender's
// and the receiver's names, then the body as it crossed.
#pragma once

#include <stdint.h>

#include <string>

#include "text_capture.h"

namespace wifiap::tools {

// A link type of the range kept for private use, so that a dissector can
// claim it (Wireshark's encapsulation USER0) without any user setting.
inline constexpr uint32_t kLinkType = 147;

// The packet header: each field big-endian, of the width given, in this order.
// The names' lengths give the bytes of the two names after it; the body fills
// the rest of the packet. The dissector generator reads this same list.
#define WIFIAP_PACKET_HEADER(F)                                       \
    F(format, 1)         /* kPacketFormat: this layout */             \
    F(table, 1)          /* 0 the command table, 1 the notifications */ \
    F(index, 1)          /* the message's row */                      \
    F(bodyType, 1)       /* 0 request or notification, 1 response */  \
    F(senderLength, 2)   /* "bus/user" */                             \
    F(receiverLength, 2) /* "bus/user", several joined by ", " */

struct PacketField {
    const char *name;
    uint32_t bytes;
};
#define WIFIAP_PACKET_FIELD(name, bytes) {#name, bytes},
inline constexpr PacketField kPacketHeader[] = {WIFIAP_PACKET_HEADER(WIFIAP_PACKET_FIELD)};
#undef WIFIAP_PACKET_FIELD

inline constexpr uint32_t kPacketFormat = 1;
// Wireshark reads no longer packet: a longer one keeps its first bytes and
// states its whole length (the largest station statistics are about 800 kB).
inline constexpr uint32_t kMaxPacket = 262144;
// The table byte of a table name that is neither of the two.
inline constexpr uint32_t kNoTable = 0xFF;

// The section header and the interface: the file's first bytes.
std::string pcapngStart();
// One packet block: the crossing with its time, names and body.
std::string pcapngPacket(const Crossing &c);

}  // namespace wifiap::tools
