// Payloads by their fields' names, in JSON: the record tables give every
// name, kind, text capacity, list size and offset, so a message or field added
// to the tables needs nothing here. A payload in memory is laid out as the
// library lays it out: a record, or a bare payload's whole context.
#pragma once

#include <json-c/json.h>
#include <stdint.h>

#include <string>
#include <vector>

#include "decode.h"

namespace wifiap::cli {

using codec::Desc;

// Zeroed memory for a payload of table `d`, aligned as any record.
struct Memory {
    explicit Memory(const Desc &d) : words(tools::extent(d) / 8 + 1) {}
    uint8_t *at() { return reinterpret_cast<uint8_t *>(words.data()); }
    std::vector<uint64_t> words;
};

// PATH=VALUE into `obj`, the path's objects and arrays made as needed: a field
// name, a nested record's fields after a dot, a list's items by index
// (`assocDevs[0].macAddress=02:00:00:00:00:01`); the value typed by the
// field's kind (a record or list may take JSON). False, with the reason, for a
// field the table has not or a value that is not of its kind.
bool assign(const Desc &d, json_object *obj, const std::string &arg, std::string &why);

// The object's fields into memory: false, with the reason, for a name the
// table has not, a value of the wrong kind or out of its field's range, or a
// list longer than its field. Texts are cut as the library cuts them (to
// their capacity less the NUL); `notes` says which were.
bool fromJson(const Desc &d, json_object *obj, uint8_t *mem, std::string &why, std::string &notes);

// The payload in memory as a JSON object (a new reference).
json_object *toJson(const Desc &d, const uint8_t *mem);

// Reads a body's header and payload into memory with the library's rules;
// false where they refuse it.
bool readBody(const Desc &d, const uint8_t *body, size_t length, uint8_t *mem);

// " path=value" for every leaf of a JSON value, texts quoted.
void flatten(json_object *v, const std::string &path, std::string &out);

// What a table holds: names and kinds as text lines, or as JSON.
void describe(const Desc &d, int depth, std::string &out);
json_object *kinds(const Desc &d);

// Every leaf's "path=" (a list's first item), for completion.
void paths(const Desc &d, const std::string &prefix, std::vector<std::string> &out);

}  // namespace wifiap::cli
