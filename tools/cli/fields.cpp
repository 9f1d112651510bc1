// One engine for every payload: names, kinds, capacities and offsets all
// come from the record tables.
#include "fields.h"

#include <errno.h>
#include <inttypes.h>
#include <stdlib.h>
#include <string.h>

#include "engine.h"

namespace wifiap::cli {

namespace {

using codec::Field;
using codec::Kind;

const char *tableOf(const Desc &d) { return *d.name ? d.name : "the payload"; }

const Field *find(const Desc &d, std::string_view name) {
    for (uint32_t i = 0; i < d.count; ++i)
        if (name == d.fields[i].name) return &d.fields[i];
    return nullptr;
}

bool noField(const Desc &d, std::string_view name, std::string &why) {
    why = "no field \"" + std::string(name) + "\" in " + tableOf(d) + "; its fields:";
    for (uint32_t i = 0; i < d.count; ++i) why += std::string(" ") + d.fields[i].name;
    if (!d.count) why = std::string(tableOf(d)) + " has no fields";
    return false;
}

std::string kindName(const Field &f) {
    switch (f.kind) {
    case Kind::U8: return "u8";
    case Kind::S8: return "s8";
    case Kind::S16: return "s16";
    case Kind::U32: return "u32";
    case Kind::U64: return "u64";
    case Kind::Text: return "text[" + std::to_string(f.cap) + "]";
    case Kind::Nested: return f.sub->name;
    case Kind::List: return std::string(f.sub->name) + "[" + std::to_string(f.cap) + "]";
    }
    return "?";
}

// What a 32-bit field holds may be signed or not: both ranges are taken.
bool inRange(Kind k, int64_t s, uint64_t u) {
    switch (k) {
    case Kind::U8: return s >= 0 && u <= UINT8_MAX;
    case Kind::S8: return s >= INT8_MIN && s <= INT8_MAX;
    case Kind::S16: return s >= INT16_MIN && s <= INT16_MAX;
    case Kind::U32: return s >= INT32_MIN && (s < 0 || u <= UINT32_MAX);
    default: return s >= 0;
    }
}

template <class T>
void store(uint8_t *at, uint64_t bits) {
    const T v = T(bits);
    memcpy(at, &v, sizeof v);
}

bool setLeaf(const Field &f, json_object *v, uint8_t *at, const std::string &path,
             std::string &why, std::string &notes) {
    if (f.kind == Kind::Text) {
        if (!json_object_is_type(v, json_type_string)) return why = path + ": a text is due", false;
        const char *s = json_object_get_string(v);
        if (strlen(s) >= f.cap)
            notes += path + " cut to " + std::to_string(f.cap - 1) + " bytes\n";
        strncpy(reinterpret_cast<char *>(at), s, f.cap);  // as the library's copy
        at[f.cap - 1] = 0;
        return true;
    }
    if (!json_object_is_type(v, json_type_int)) return why = path + ": a number is due", false;
    const int64_t s = json_object_get_int64(v);
    const uint64_t u = s >= 0 ? json_object_get_uint64(v) : uint64_t(s);
    if (!inRange(f.kind, s, u))
        return why = path + ": " + json_object_get_string(v) + " does not fit a " + kindName(f), false;
    switch (f.kind) {
    case Kind::U8:
    case Kind::S8: store<uint8_t>(at, u); break;
    case Kind::S16: store<uint16_t>(at, u); break;
    case Kind::U32: store<uint32_t>(at, u); break;
    default: store<uint64_t>(at, u);
    }
    return true;
}

bool fill(const Desc &d, json_object *obj, uint8_t *mem, const std::string &path,
          std::string &why, std::string &notes) {
    if (!json_object_is_type(obj, json_type_object))
        return why = (path.empty() ? std::string("the payload") : path) + ": an object is due", false;
    const std::string dot = path.empty() ? "" : path + ".";
    json_object_object_foreach(obj, key, v) {
        const Field *f = find(d, key);
        if (!f) return noField(d, key, why);
        const std::string name = dot + key;
        uint8_t *at = mem + f->off;
        if (f->kind == Kind::Nested) {
            if (!fill(*f->sub, v, at, name, why, notes)) return false;
        } else if (f->kind == Kind::List) {
            if (!json_object_is_type(v, json_type_array)) return why = name + ": a list is due", false;
            const size_t n = json_object_array_length(v);
            if (n > f->cap)
                return why = name + ": " + std::to_string(n) + " items, at most " +
                             std::to_string(f->cap),
                       false;
            for (size_t k = 0; k < n; ++k)
                if (json_object *item = json_object_array_get_idx(v, k);
                    item && !fill(*f->sub, item, at + k * f->stride, name + "[" + std::to_string(k) + "]", why, notes))
                    return false;
        } else if (!setLeaf(*f, v, at, name, why, notes)) {
            return false;
        }
    }
    // A list given sets its count, which, given too, must agree.
    for (uint32_t i = 0; i < d.count; ++i) {
        const Field &f = d.fields[i];
        json_object *list = nullptr, *count = nullptr;
        if (f.kind != Kind::List || !json_object_object_get_ex(obj, f.name, &list)) continue;
        const uint32_t n = uint32_t(json_object_array_length(list));
        for (uint32_t j = 0; j < i; ++j)
            if (d.fields[j].off == f.countOff && json_object_object_get_ex(obj, d.fields[j].name, &count) &&
                json_object_get_int64(count) != int64_t(n))
                return why = dot + d.fields[j].name + " is " + json_object_get_string(count) + " but " +
                             dot + f.name + " has " + std::to_string(n) + " items",
                       false;
        memcpy(mem + f.countOff, &n, sizeof n);
    }
    return true;
}

// A value in text as the field's kind takes it.
json_object *parse(const Field &f, const std::string &text, const std::string &path, std::string &why) {
    if (f.kind == Kind::Text) return json_object_new_string(text.c_str());
    if (f.kind == Kind::Nested || f.kind == Kind::List) {
        json_object *v = json_tokener_parse(text.c_str());
        if (!v) why = path + ": a " + kindName(f) + " is due, as JSON";
        return v;
    }
    char *end = nullptr;
    errno = 0;
    const bool negative = text.find('-') == 0;
    const int64_t s = negative ? strtoll(text.c_str(), &end, 0) : 0;
    const uint64_t u = negative ? 0 : strtoull(text.c_str(), &end, 0);
    if (text.empty() || *end || errno || (!negative && text.find('-') != std::string::npos)) {
        why = path + ": \"" + text + "\" is not a " + kindName(f);
        return nullptr;
    }
    return negative ? json_object_new_int64(s) : json_object_new_uint64(u);
}

// The member `name` of obj, made as `type` if it is not there yet.
json_object *member(json_object *obj, const char *name, json_type type) {
    json_object *v = nullptr;
    if (json_object_object_get_ex(obj, name, &v) && json_object_is_type(v, type)) return v;
    v = type == json_type_array ? json_object_new_array() : json_object_new_object();
    json_object_object_add(obj, name, v);
    return v;
}

void quote(std::string &out, const char *s) {
    out += '"';
    for (; *s; ++s) {
        const unsigned char c = static_cast<unsigned char>(*s);
        if (c == '"' || c == '\\') out += '\\';
        if (c >= 0x20 && c < 0x7F) {
            out += char(c);
        } else {
            char hex[8];
            snprintf(hex, sizeof hex, "\\x%02x", c);
            out += hex;
        }
    }
    out += '"';
}

// The library's walk, told nothing: the reader for memory wanted, not words.
struct Quiet {
    static constexpr bool kExactOnly = false;
    void begin(const Desc &, const uint8_t *) {}
    bool refuse(uint32_t, const codec::Reader &) const { return false; }
    bool refuseText(uint32_t, const uint8_t *) const { return false; }
    bool refuseAfter(uint32_t) const { return false; }
    void leaf(uint32_t, const uint8_t *, const uint8_t *) const {}
    Quiet inner(uint32_t, uint32_t, uint32_t) const { return {}; }
    void listed(uint32_t, uint32_t) const {}
};

}  // namespace

bool assign(const Desc &top, json_object *obj, const std::string &arg, std::string &why) {
    const size_t eq = arg.find('=');
    if (eq == std::string::npos || eq == 0) return why = "\"" + arg + "\": FIELD=VALUE expected", false;
    const std::string path = arg.substr(0, eq);
    const Desc *d = &top;
    for (size_t pos = 0;;) {
        const size_t dot = path.find('.', pos);
        std::string name = path.substr(pos, dot == std::string::npos ? std::string::npos : dot - pos);
        const size_t bracket = name.find('[');
        long item = -1;
        if (bracket != std::string::npos) {
            char *end = nullptr;
            item = strtol(name.c_str() + bracket + 1, &end, 10);
            if (item < 0 || end == name.c_str() + bracket + 1 || strcmp(end, "]") != 0)
                return why = path + ": an item is name[N]", false;
            name.resize(bracket);
        }
        const Field *f = find(*d, name);
        if (!f) return noField(*d, name, why);
        const std::string at = path.substr(0, dot);
        if (item >= 0 && f->kind != Kind::List) return why = at + ": " + name + " is no list", false;
        if (item >= long(f->cap))
            return why = at + ": " + name + " holds at most " + std::to_string(f->cap) + " items", false;
        json_object *next = nullptr;
        if (item >= 0) {  // the list's item, made up to its index
            json_object *list = member(obj, f->name, json_type_array);
            while (json_object_array_length(list) <= size_t(item))
                json_object_array_add(list, json_object_new_object());
            next = json_object_array_get_idx(list, size_t(item));
        }
        if (dot == std::string::npos) {
            json_object *v = parse(item >= 0 ? codec::Field{f->name, Kind::Nested, 0, 0, f->sub} : *f,
                                   arg.substr(eq + 1), path, why);
            if (!v) return false;
            if (item >= 0) return json_object_array_put_idx(member(obj, f->name, json_type_array), size_t(item), v) == 0;
            json_object_object_add(obj, f->name, v);
            return true;
        }
        if (item < 0 && f->kind != Kind::Nested) return why = at + ": " + name + " has no fields", false;
        obj = item >= 0 ? next : member(obj, f->name, json_type_object);
        d = f->sub;
        pos = dot + 1;
    }
}

bool fromJson(const Desc &d, json_object *obj, uint8_t *mem, std::string &why, std::string &notes) {
    return fill(d, obj, mem, "", why, notes);
}

json_object *toJson(const Desc &d, const uint8_t *mem) {
    json_object *obj = json_object_new_object();
    for (uint32_t i = 0; i < d.count; ++i) {
        const Field &f = d.fields[i];
        const uint8_t *at = mem + f.off;
        json_object *v = nullptr;
        if (f.kind == Kind::Text) {
            v = json_object_new_string_len(reinterpret_cast<const char *>(at),
                                           int(strnlen(reinterpret_cast<const char *>(at), f.cap)));
        } else if (f.kind == Kind::Nested) {
            v = toJson(*f.sub, at);
        } else if (f.kind == Kind::List) {
            v = json_object_new_array();
            for (uint32_t k = 0, n = codec::items(mem, f); k < n; ++k)
                json_object_array_add(v, toJson(*f.sub, at + k * f.stride));
        } else if (f.kind == Kind::U64) {
            uint64_t w;
            memcpy(&w, at, sizeof w);
            v = json_object_new_uint64(w);
        } else {
            v = json_object_new_int64(f.kind == Kind::U32 ? int64_t(codec::widen(f.kind, at))
                                                          : int64_t(int32_t(codec::widen(f.kind, at))));
        }
        json_object_object_add(obj, f.name, v);
    }
    return obj;
}

bool readBody(const Desc &d, const uint8_t *body, size_t length, uint8_t *mem) {
    codec::Reader rd{body, length};
    codec::Header h{};
    return codec::walkReadWith(codec::kHeaderDesc, reinterpret_cast<uint8_t *>(&h), rd, Quiet{}) == 0 &&
           codec::walkReadWith(d, mem, rd, Quiet{}) == 0;
}

void flatten(json_object *v, const std::string &path, std::string &out) {
    if (json_object_is_type(v, json_type_object)) {
        json_object_object_foreach(v, key, sub) flatten(sub, path.empty() ? key : path + "." + key, out);
    } else if (json_object_is_type(v, json_type_array)) {
        for (size_t k = 0, n = json_object_array_length(v); k < n; ++k)
            flatten(json_object_array_get_idx(v, k), path + "[" + std::to_string(k) + "]", out);
    } else {
        out += " " + path + "=";
        if (json_object_is_type(v, json_type_string)) quote(out, json_object_get_string(v));
        else out += json_object_get_string(v);
    }
}

void describe(const Desc &d, int depth, std::string &out) {
    for (uint32_t i = 0; i < d.count; ++i) {
        const Field &f = d.fields[i];
        out.append(size_t(2 * depth), ' ');
        out += std::string(f.name) + ": " + kindName(f);
        if (f.kind == Kind::List)
            for (uint32_t j = 0; j < i; ++j)
                if (d.fields[j].off == f.countOff) out += std::string(", counted by ") + d.fields[j].name;
        out += '\n';
        if (f.sub) describe(*f.sub, depth + 1, out);
    }
}

json_object *kinds(const Desc &d) {
    json_object *obj = json_object_new_object();
    for (uint32_t i = 0; i < d.count; ++i) {
        const Field &f = d.fields[i];
        json_object *v = f.sub ? kinds(*f.sub) : json_object_new_string(kindName(f).c_str());
        if (f.kind == Kind::List) {
            json_object *list = json_object_new_object();
            json_object_object_add(list, "items", v);
            json_object_object_add(list, "max", json_object_new_int64(f.cap));
            v = list;
        }
        json_object_object_add(obj, f.name, v);
    }
    return obj;
}

void paths(const Desc &d, const std::string &prefix, std::vector<std::string> &out) {
    for (uint32_t i = 0; i < d.count; ++i) {
        const Field &f = d.fields[i];
        if (f.kind == Kind::Nested) paths(*f.sub, prefix + f.name + ".", out);
        else if (f.kind == Kind::List) paths(*f.sub, prefix + f.name + "[0].", out);
        else out.push_back(prefix + f.name + "=");
    }
}

}  // namespace wifiap::cli
