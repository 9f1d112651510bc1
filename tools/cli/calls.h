// The library's typed ends, reached from the message list alone: each
// command's intfWifiAp_sendReq_<command> called with a payload in memory, and
// a response callback and notification method for every payload, whose
// argument types are made from the payload's table (so that each is exactly
// the type the public header gives it: a wrong one does not compile).
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include <tuple>
#include <type_traits>
#include <utility>

#include "fields.h"
#include "loader.h"
#include "messages.h"

namespace wifiap::cli {

// Where every response and notification goes: `ref` is the Message it is of,
// `mem` its payload as laid out by table `d`.
void received(uintptr_t ref, const Desc &d, const uint8_t *mem);

// The record type a table describes (void for a bare payload).
template <const Desc *D>
struct RecordOf {
    using type = void;
};
#define WIFIAP_CLI_RECORD(r, C)         \
    template <>                         \
    struct RecordOf<&codec::k##C##Desc> { \
        using type = ::r;               \
    };
WIFIAP_RECORDS(WIFIAP_CLI_RECORD)
#undef WIFIAP_CLI_RECORD

// A bare field as an argument: a text by address, a word by value.
template <codec::Kind K>
auto argOf() {
    if constexpr (K == codec::Kind::Text) return static_cast<const char *>(nullptr);
    else if constexpr (K == codec::Kind::U8) return uint8_t{};
    else if constexpr (K == codec::Kind::S8) return int8_t{};
    else if constexpr (K == codec::Kind::S16) return int16_t{};
    else if constexpr (K == codec::Kind::U64) return uint64_t{};
    else return uint32_t{};
}
template <const Desc *D, size_t I>
using FieldArg = decltype(argOf<D->fields[I].kind>());

template <const Desc *D, class = std::make_index_sequence<D->count>>
struct Bare;
template <const Desc *D, size_t... I>
struct Bare<D, std::index_sequence<I...>> {
    static void fn(ismMsg_t, uintptr_t ref, FieldArg<D, I>... a) {
        Memory m(*D);
        (put(m.at() + D->fields[I].off, D->fields[I].cap, a), ...);
        received(ref, *D, m.at());
    }
    static void put(uint8_t *at, uint32_t cap, const char *s) {
        strncpy(reinterpret_cast<char *>(at), s ? s : "", cap);
        at[cap - 1] = 0;
    }
    template <class T>
    static void put(uint8_t *at, uint32_t, T v) {
        memcpy(at, &v, sizeof v);
    }
};

// The callback or method for payloads of table D: a record by address, or
// the bare fields one by one.
template <const Desc *D, class R = typename RecordOf<D>::type>
struct Typed {
    static void fn(ismMsg_t, uintptr_t ref, const R *rec) {
        received(ref, *D, reinterpret_cast<const uint8_t *>(rec));
    }
};
template <const Desc *D>
struct Typed<D, void> : Bare<D> {};

// One request: who sends it to whom, its payload, and the reference its
// response comes back with.
struct Request {
    ismUser_t user;
    const char *bus, *name;
    const Desc *desc;
    const uint8_t *mem;
    uintptr_t ref;
};

// Argument I of a sendReq function whose payload starts at argument First
// (5 with a callback and its reference, 3 without).
template <const Desc *Res, class T, size_t I, size_t First>
T argument(const Request &r) {
    if constexpr (I == 0) return r.user;
    else if constexpr (First == 5 && I == 1) return &Typed<Res>::fn;
    else if constexpr (First == 5 && I == 2) return r.ref;
    else if constexpr (I == First - 2) return r.bus;
    else if constexpr (I == First - 1) return r.name;
    else if constexpr (std::is_same_v<T, const char *>)
        return reinterpret_cast<const char *>(r.mem + r.desc->fields[I - First].off);
    else if constexpr (std::is_pointer_v<T>) return reinterpret_cast<T>(r.mem);  // the record
    else {
        T v;
        memcpy(&v, r.mem + r.desc->fields[I - First].off, sizeof v);
        return v;
    }
}

template <const Desc *Res, class... A>
uint32_t send(uint32_t (*f)(A...), const Request &r) {
    using Second = std::remove_pointer_t<std::tuple_element_t<1, std::tuple<A...>>>;
    constexpr size_t first = std::is_function_v<Second> ? 5 : 3;
    return [&]<size_t... I>(std::index_sequence<I...>) {
        return f(argument<Res, A, I, first>(r)...);
    }(std::index_sequence_for<A...>{});
}

// Sends the command of row `index` with the library's sendReq; its result.
using Send = uint32_t (*)(const host::Api &, const Request &);
#define WIFIAP_CLI_SEND(N, s, U, version, Req, Res) \
    [](const host::Api &a, const Request &r) { return send<&codec::k##Res##Desc>(a.intfWifiAp_sendReq_##s, r); },
#define WIFIAP_CLI_METHOD(N, s, U, version, Payload, update) host::fn(&Typed<&codec::k##Payload##Desc>::fn),
#define WIFIAP_CLI_SKIP(...)

inline const Send kSend[] = {WIFIAP_MESSAGES(WIFIAP_CLI_SEND, WIFIAP_CLI_SKIP)};
inline void *const kMethod[] = {WIFIAP_MESSAGES(WIFIAP_CLI_SKIP, WIFIAP_CLI_METHOD)};

#undef WIFIAP_CLI_SEND
#undef WIFIAP_CLI_METHOD
#undef WIFIAP_CLI_SKIP

}  // namespace wifiap::cli
