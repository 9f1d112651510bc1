// What the exchange engines need from the record encoding: the operations of
// each record and bare payload behind one small table of function pointers.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "intfWifiAp.h"
#include "log.h"

namespace wifiap::codec {

// Where a bounded read logs its failure lines. A record (and every nested
// record or list item) logs under its own exported unserialize name with its
// own start as pBody; a bare payload or the body header logs under the body
// callback's side name with the body's start as pBody.
struct ReadLog {
    const Who *who = nullptr;      // null: the record's own unserialize name
    const void *pBody = nullptr;   // null: where this record's read started
};

struct Desc;

// A record or bare payload: its table, where it stands in the message context
// that carries it, and its operations. Size, write and read are compiled for
// the records of the station statistics list, where they pay, and walk the
// table at run time for the others; copy, clean and the sender's arguments
// always walk the table.
struct Ops {
    const char *name;   // record name as log lines spell it ("conf"); "" for bare payloads
    const Desc *desc;
    uint32_t bytes;     // sizeof the record; for bare fields, of their whole context
    uint32_t at;        // offset of the payload in its message context
    uint32_t ctxBytes;  // size of that context
    uint32_t (*sizeFn)(const Desc &d, const void *rec);
    uint8_t *(*writeFn)(const Desc &d, const void *rec, uint8_t *cursor);
    uint32_t (*readFn)(const Desc &d, void *rec, const uint8_t **cursor, size_t left,
                       const ReadLog &log);

    uint32_t size(const void *rec) const { return sizeFn(*desc, rec); }
    // Writes exactly size(rec) bytes at *cursor (into zero-filled memory) and moves it on.
    uint32_t write(const void *rec, uint8_t **cursor) const {
        *cursor = writeFn(*desc, rec, *cursor);
        return INTFWIFIAP_STATUS_OK;
    }
    // Reads at *cursor, never past `left` bytes from there. On failure logs the
    // record's lines (see ReadLog), leaves the cursor where the rules say, returns 4.
    uint32_t read(void *rec, const uint8_t **cursor, size_t left, const ReadLog &log) const {
        return readFn(*desc, rec, cursor, left, log);
    }
    uint32_t copy(void *dst, const void *src) const;
    void clean(void *rec) const;
    // The sender's arguments: a record's address, or one address per bare
    // field (a text, or a 32-bit word). `missing` names the first null one;
    // `fill` copies them into the payload, with copy's status.
    const char *missing(const void *const *args) const;
    uint32_t fill(void *payload, const void *const *args) const;
};

// The fifteen records, as the exported names spell them and as their Ops are
// named; what enumerates records (tests, fuzzer) expands this list.
#define WIFIAP_RECORDS(X)                                                                    \
    X(wpsInfoIn, WpsInfoIn) X(wpsInfoOut, WpsInfoOut) X(conf, Conf) X(rateStats, RateStats) \
    X(assocDevInfo, AssocDevInfo) X(assocDevList, AssocDevList)                             \
    X(probeRequest, ProbeRequest) X(perRateStats, PerRateStats)                             \
    X(assocDevStats, AssocDevStats) X(wpsStatusStruct, WpsStatusStruct)                     \
    X(accountingParams, AccountingParams) X(accountingResult, AccountingResult)             \
    X(assocDevStatus, AssocDevStatus) X(assocDevInfoFull, AssocDevInfoFull)                 \
    X(assocDevStatList, AssocDevStatList)
#define WIFIAP_RECORD_OPS_DECL(r, C) extern const Ops k##C;
WIFIAP_RECORDS(WIFIAP_RECORD_OPS_DECL)
#undef WIFIAP_RECORD_OPS_DECL

// Message context: magic and hold word, then the payload in place.
struct CtxHead {
    uint32_t magic;
    uint16_t hold;
};
template <class R>
struct RecordCtx {
    uint32_t magic;
    uint16_t hold;
    R payload;
};

// Bare payloads: fields numbered from tag 3 like a record's, but read and
// logged as part of the body (ReadLog with the body's start and side name).
// No record holds them: each field follows the hold word at its own
// alignment, so these are whole contexts.
struct CreateReq {
    uint32_t magic;
    uint16_t hold;
    char text1[80];
    char text2[80];
};
struct CreateRes {
    uint32_t magic;
    uint16_t hold;
    char text1[20];
    char text2[20];
    uint32_t result;
};
struct BridgeAndIps {
    uint32_t magic;
    uint16_t hold;
    char bridge[80];
    char ips[16];
};
struct Ips {
    uint32_t magic;
    uint16_t hold;
    char ips[16];
};
struct SsidText {
    uint32_t magic;
    uint16_t hold;
    char text[80];
};
struct Result {  // a bare 32-bit word: results
    uint32_t magic;
    uint16_t hold;
    uint32_t result;
};
struct EncStatus {
    uint32_t magic;
    uint16_t hold;
    uint32_t encStatus;
};
extern const Ops kCreateReq, kCreateRes, kBridgeAndIps, kIps, kSsidText, kResult, kEncStatus;
// No payload: a context of magic and hold word, a body of header elements.
extern const Ops kNone;

// The two header elements of every body: tag 0 the magic, tag 1 the version.
// Read with the same rules; a failure at tag 0 is followed by one
// "Error Before" line for tag 1.
struct Header {
    uint32_t magic;
    uint32_t version;
};
extern const Ops kHeader;

}  // namespace wifiap::codec
