// Bodies as a firmware engineer wants to read them: every element with the
// name of the field it carries. The walk follows the library's own record
// tables and message list, names included.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "records.h"

namespace wifiap::tools {

// A message of one of the two tables, as its bodies are shaped.
struct Message {
    const char *name;  // the row's name: "Configure"
    bool ntfy;
    uint32_t index;
    uint32_t magic;
    uint16_t version;
    const codec::Desc *req;  // payload of the request or notification
    const codec::Desc *res;  // payload of the response; null: the message has none
};
std::span<const Message> messages();
const char *tableName(bool ntfy);
// By row name, case ignored; null if none.
const Message *findMessage(std::string_view name);
// By table name and row index; null if none.
const Message *findMessage(std::string_view table, uint32_t index);
// Bytes a table's fields reach in memory: room enough to read it into.
size_t extent(const codec::Desc &d);
// Which side a body type is, in words: request, response or notification.
const char *sideName(const Message &m, uint32_t bodyType);

// A message and a body type that a body could be.
struct Candidate {
    const Message *msg;
    uint32_t bodyType;
};
// Every message whose magic and body version the body's header carries.
// Empty when the header cannot be read or its magic is unknown.
std::vector<Candidate> candidates(const uint8_t *body, size_t length);

struct Style {
    uint32_t maxItems = 0;  // items printed per list, the rest counted; 0: all
    int indent = 2;         // spaces before the first level
};

// Appends the body's elements, named as `m` on side `bodyType` names them.
// False when the bytes do not have that shape: the text then says where.
bool decode(std::string &out, const Message &m, uint32_t bodyType, const uint8_t *body,
            size_t length, const Style &style = {});
// Where each element of a body lies, as the library's walk finds them, in
// order; the walk stops where the library's does.
struct Element {
    size_t at;        // offset of its header in the body
    uint32_t header;  // 8, or 16 for a 64-bit element
    uint32_t length;  // its stated length (the low half of a 64-bit one)
    bool text;
    uint32_t capacity;  // a text's field, NUL included
};
std::vector<Element> elements(const Message &m, uint32_t bodyType, const uint8_t *body,
                              size_t length);
// Appends a walk of elements whose message is unknown: tag, length, value.
bool walk(std::string &out, const uint8_t *body, size_t length, const Style &style = {});
// Appends a hex dump, 16 bytes a line.
void hexDump(std::string &out, const uint8_t *body, size_t length, int indent = 2);

}  // namespace wifiap::tools
