/*
 * libIntfWifiap: interface between a Wi-Fi access-point server and its clients.
 *
 * The library describes the interface to the host's service-messaging framework
 * (intfWifiAp_base), builds and checks the contexts of every command and
 * notification, and converts them to and from bodies of big-endian
 * tag-length-value elements. Every call must come from the framework's
 * event-loop thread: the library takes no lock.
 */
#ifndef INTFWIFIAP_H
#define INTFWIFIAP_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(INTFWIFIAP_BUILDING)
#define INTFWIFIAP_API __attribute__((visibility("default")))
#else
#define INTFWIFIAP_API
#endif

/* Opaque framework handles, passed through unchanged. */
#ifndef ISM_HANDLE_TYPES_DEFINED
#define ISM_HANDLE_TYPES_DEFINED
typedef void *ismUser_t;
typedef void *ismCore_t;
typedef void *ismMsg_t;
#endif

/* ------------------------------------------------------------------ */
/* Constants                                                           */
/* ------------------------------------------------------------------ */

#define INTFWIFIAP_MAGIC_BASE 0x13524830u
#define INTFWIFIAP_MAGIC_INTF_CMD 0x13524831u
#define INTFWIFIAP_MAGIC_INTF_NTFY 0x13524832u

#define INTFWIFIAP_STATE_BASE_WAIT_INIT 0u
#define INTFWIFIAP_STATE_BASE_INIT 1u

#define INTFWIFIAP_FLAGS_BASE_REG_CMD 0x01u
#define INTFWIFIAP_FLAGS_BASE_REG_NTFY 0x02u

#define INTFWIFIAP_NUM_NONE 0xFFFFu
#define INTFWIFIAP_MAGIC_FREED 0xDEADBEEFu

/* Lifecycle results besides 0 and the framework's own codes: a table was
 * refused, or the call does not fit the state. */
#define INTFWIFIAP_ERR_TABLE 1
#define INTFWIFIAP_ERR_STATE 3

/* Table selector of the registration functions. */
#define INTFWIFIAP_REG_ALL 0u
#define INTFWIFIAP_REG_CMD 1u
#define INTFWIFIAP_REG_NTFY 2u

/* Record operation status. */
#define INTFWIFIAP_STATUS_OK 0u
#define INTFWIFIAP_STATUS_ENCODING 4u

/* Body callback codes. */
#define INTFWIFIAP_BODY_OK 0u
#define INTFWIFIAP_BODY_TYPE_UNHANDLED 1u
#define INTFWIFIAP_BODY_HEADER 2u
#define INTFWIFIAP_BODY_PAYLOAD 4u
#define INTFWIFIAP_BODY_NOMEM 5u

/* Body types. */
#define INTFWIFIAP_BODY_REQUEST 0u
#define INTFWIFIAP_BODY_RESPONSE 1u

#define INTFWIFIAP_CMD_COUNT 15
#define INTFWIFIAP_NTFY_COUNT 5

/* Command indices (rows of "IntfWifiApCmd"). */
#define INTFWIFIAP_CMD_CONFIGURE 0
#define INTFWIFIAP_CMD_SETBRIDGEANDIPS 1
#define INTFWIFIAP_CMD_SETIPS 2
#define INTFWIFIAP_CMD_CREATE 3
#define INTFWIFIAP_CMD_SSIDINFO 4
#define INTFWIFIAP_CMD_STOP 5
#define INTFWIFIAP_CMD_STARTWPS 6
#define INTFWIFIAP_CMD_STARTPHYSICALWPS 7
#define INTFWIFIAP_CMD_TOOGLEWPS 8
#define INTFWIFIAP_CMD_STOPWPS 9
#define INTFWIFIAP_CMD_GENERATEPINCODEWPS 10
#define INTFWIFIAP_CMD_TOOGLEWIFI 11
#define INTFWIFIAP_CMD_SENDACCOUNTINGREQUEST 12
#define INTFWIFIAP_CMD_GETASSOCDEVSTATS 13
#define INTFWIFIAP_CMD_FORCEAPPLYMACFILTERCHANGE 14

/* Notification indices (rows of "IntfWifiApNtfy"). */
#define INTFWIFIAP_NTFY_ONPROBERECEIVED 0
#define INTFWIFIAP_NTFY_ASSOCDEVACTIVELISTCHANGED 1
#define INTFWIFIAP_NTFY_WPSSTATUS 2
#define INTFWIFIAP_NTFY_ENCRYPTIONSTATUS 3
#define INTFWIFIAP_NTFY_DISASSOCEVENT 4

/* Context magics. Several messages share one value. */
#define INTFWIFIAP_MAGIC_MSGCMD_CONFIGURE 0x20137855u
#define INTFWIFIAP_MAGIC_MSGCMD_SETBRIDGEANDIPS 0x37102445u
#define INTFWIFIAP_MAGIC_MSGCMD_SETIPS 0x37102446u
#define INTFWIFIAP_MAGIC_MSGCMD_CREATE 0x73913232u
#define INTFWIFIAP_MAGIC_MSGCMD_SSIDINFO 0x38192421u
#define INTFWIFIAP_MAGIC_MSGCMD_STOP 0x38192421u
#define INTFWIFIAP_MAGIC_MSGCMD_STARTWPS 0x93251950u
#define INTFWIFIAP_MAGIC_MSGCMD_STARTPHYSICALWPS 0x93251950u
#define INTFWIFIAP_MAGIC_MSGCMD_TOOGLEWPS 0x93251942u
#define INTFWIFIAP_MAGIC_MSGCMD_STOPWPS 0x22110722u
#define INTFWIFIAP_MAGIC_MSGCMD_GENERATEPINCODEWPS 0x93251872u
#define INTFWIFIAP_MAGIC_MSGCMD_TOOGLEWIFI 0x93251942u
#define INTFWIFIAP_MAGIC_MSGCMD_SENDACCOUNTINGREQUEST 0x57102423u
#define INTFWIFIAP_MAGIC_MSGCMD_GETASSOCDEVSTATS 0x57102427u
#define INTFWIFIAP_MAGIC_MSGCMD_FORCEAPPLYMACFILTERCHANGE 0x57102428u

#define INTFWIFIAP_MAGIC_MSGNTFY_ONPROBERECEIVED 0x20179026u
#define INTFWIFIAP_MAGIC_MSGNTFY_ASSOCDEVACTIVELISTCHANGED 0x13531940u
#define INTFWIFIAP_MAGIC_MSGNTFY_WPSSTATUS 0x13531941u
#define INTFWIFIAP_MAGIC_MSGNTFY_ENCRYPTIONSTATUS 0x13531942u
#define INTFWIFIAP_MAGIC_MSGNTFY_DISASSOCEVENT 0x13531943u

/* ------------------------------------------------------------------ */
/* Records: fixed-layout structures exchanged by address (ABI).        */
/* Text capacities count the terminating NUL.                         */
/* ------------------------------------------------------------------ */
/*
 * Every record R has the same five functions:
 *   intfWifiAp_R_copy          copies src into dst, texts cut to their capacity;
 *                              returns a status (INTFWIFIAP_STATUS_*)
 *   intfWifiAp_R_clean         a record owns nothing, so this releases nothing;
 *                              a null record is accepted
 *   intfWifiAp_R_serialize_lg  the number of bytes serialize writes
 *   intfWifiAp_R_serialize     writes at *cursor into zero-filled memory of at
 *                              least serialize_lg bytes, and moves the cursor on
 *   intfWifiAp_R_unserialize   reads at *cursor and moves it on; returns
 *                              INTFWIFIAP_STATUS_ENCODING on a refused element
 * unserialize trusts its input (it takes no end): it is for bytes the caller
 * wrote or already checked. Bodies received from the framework are read by the
 * body callbacks, which bound every read.
 */

#define INTFWIFIAP_MAC_LEN 18
#define INTFWIFIAP_ASSOCDEVLIST_MAX 32
#define INTFWIFIAP_RATESTATS_MAX 312
#define INTFWIFIAP_ASSOCDEVSTATLIST_MAX 100

/* Request of StartWPS and StartPhysicalWPS. */
typedef struct wpsInfoIn {
    uint32_t value;
} wpsInfoIn;
INTFWIFIAP_API uint32_t intfWifiAp_wpsInfoIn_copy(wpsInfoIn *dst, const wpsInfoIn *src);
INTFWIFIAP_API void intfWifiAp_wpsInfoIn_clean(wpsInfoIn *rec);
INTFWIFIAP_API uint32_t intfWifiAp_wpsInfoIn_serialize_lg(const wpsInfoIn *rec);
INTFWIFIAP_API uint32_t intfWifiAp_wpsInfoIn_serialize(const wpsInfoIn *rec, uint8_t **cursor);
INTFWIFIAP_API uint32_t intfWifiAp_wpsInfoIn_unserialize(wpsInfoIn *rec, const uint8_t **cursor);

/* Response of StartWPS and StartPhysicalWPS. */
typedef struct wpsInfoOut {
    uint32_t value;
} wpsInfoOut;
INTFWIFIAP_API uint32_t intfWifiAp_wpsInfoOut_copy(wpsInfoOut *dst, const wpsInfoOut *src);
INTFWIFIAP_API void intfWifiAp_wpsInfoOut_clean(wpsInfoOut *rec);
INTFWIFIAP_API uint32_t intfWifiAp_wpsInfoOut_serialize_lg(const wpsInfoOut *rec);
INTFWIFIAP_API uint32_t intfWifiAp_wpsInfoOut_serialize(const wpsInfoOut *rec, uint8_t **cursor);
INTFWIFIAP_API uint32_t intfWifiAp_wpsInfoOut_unserialize(wpsInfoOut *rec, const uint8_t **cursor);

/* Request of Configure. */
typedef struct conf {
    uint32_t value1;
    uint32_t value2;
} conf;
INTFWIFIAP_API uint32_t intfWifiAp_conf_copy(conf *dst, const conf *src);
INTFWIFIAP_API void intfWifiAp_conf_clean(conf *rec);
INTFWIFIAP_API uint32_t intfWifiAp_conf_serialize_lg(const conf *rec);
INTFWIFIAP_API uint32_t intfWifiAp_conf_serialize(const conf *rec, uint8_t **cursor);
INTFWIFIAP_API uint32_t intfWifiAp_conf_unserialize(conf *rec, const uint8_t **cursor);

/* One rate of a station, an item of perRateStats. */
typedef struct rateStats {
    uint32_t value1;
    uint32_t value2;
} rateStats;
INTFWIFIAP_API uint32_t intfWifiAp_rateStats_copy(rateStats *dst, const rateStats *src);
INTFWIFIAP_API void intfWifiAp_rateStats_clean(rateStats *rec);
INTFWIFIAP_API uint32_t intfWifiAp_rateStats_serialize_lg(const rateStats *rec);
INTFWIFIAP_API uint32_t intfWifiAp_rateStats_serialize(const rateStats *rec, uint8_t **cursor);
INTFWIFIAP_API uint32_t intfWifiAp_rateStats_unserialize(rateStats *rec, const uint8_t **cursor);

/* A station: item of assocDevList, payload of DisassocEvent. */
typedef struct assocDevInfo {
    char macAddress[INTFWIFIAP_MAC_LEN];
    uint8_t value;
    char text[150];
} assocDevInfo;
INTFWIFIAP_API uint32_t intfWifiAp_assocDevInfo_copy(assocDevInfo *dst, const assocDevInfo *src);
INTFWIFIAP_API void intfWifiAp_assocDevInfo_clean(assocDevInfo *rec);
INTFWIFIAP_API uint32_t intfWifiAp_assocDevInfo_serialize_lg(const assocDevInfo *rec);
INTFWIFIAP_API uint32_t intfWifiAp_assocDevInfo_serialize(const assocDevInfo *rec,
                                                          uint8_t **cursor);
INTFWIFIAP_API uint32_t intfWifiAp_assocDevInfo_unserialize(assocDevInfo *rec,
                                                            const uint8_t **cursor);

/* Payload of AssocDevActiveListChanged: the associated stations. */
typedef struct assocDevList {
    uint32_t assocDevNum; /* valid items in assocDevs; may exceed the capacity */
    assocDevInfo assocDevs[INTFWIFIAP_ASSOCDEVLIST_MAX];
    char text1[80];
    uint32_t value;
    char text2[72];
} assocDevList;
INTFWIFIAP_API uint32_t intfWifiAp_assocDevList_copy(assocDevList *dst, const assocDevList *src);
INTFWIFIAP_API void intfWifiAp_assocDevList_clean(assocDevList *rec);
INTFWIFIAP_API uint32_t intfWifiAp_assocDevList_serialize_lg(const assocDevList *rec);
INTFWIFIAP_API uint32_t intfWifiAp_assocDevList_serialize(const assocDevList *rec,
                                                          uint8_t **cursor);
INTFWIFIAP_API uint32_t intfWifiAp_assocDevList_unserialize(assocDevList *rec,
                                                            const uint8_t **cursor);

/* Payload of OnProbeReceived. */
typedef struct probeRequest {
    char macAddress[INTFWIFIAP_MAC_LEN];
    char text[128];
    uint32_t value;
} probeRequest;
INTFWIFIAP_API uint32_t intfWifiAp_probeRequest_copy(probeRequest *dst, const probeRequest *src);
INTFWIFIAP_API void intfWifiAp_probeRequest_clean(probeRequest *rec);
INTFWIFIAP_API uint32_t intfWifiAp_probeRequest_serialize_lg(const probeRequest *rec);
INTFWIFIAP_API uint32_t intfWifiAp_probeRequest_serialize(const probeRequest *rec,
                                                          uint8_t **cursor);
INTFWIFIAP_API uint32_t intfWifiAp_probeRequest_unserialize(probeRequest *rec,
                                                            const uint8_t **cursor);

/* A station's statistics per rate, inside assocDevStats. */
typedef struct perRateStats {
    uint32_t value1;
    uint32_t rateStatsNum; /* valid items in rates; may exceed the capacity */
    uint32_t value2;
    uint32_t value3;
    rateStats rates[INTFWIFIAP_RATESTATS_MAX];
} perRateStats;
INTFWIFIAP_API uint32_t intfWifiAp_perRateStats_copy(perRateStats *dst, const perRateStats *src);
INTFWIFIAP_API void intfWifiAp_perRateStats_clean(perRateStats *rec);
INTFWIFIAP_API uint32_t intfWifiAp_perRateStats_serialize_lg(const perRateStats *rec);
INTFWIFIAP_API uint32_t intfWifiAp_perRateStats_serialize(const perRateStats *rec,
                                                          uint8_t **cursor);
INTFWIFIAP_API uint32_t intfWifiAp_perRateStats_unserialize(perRateStats *rec,
                                                            const uint8_t **cursor);

/* A station's counters, inside assocDevStatus. */
typedef struct assocDevStats {
    uint64_t value1;
    uint64_t value2;
    uint64_t value3;
    uint64_t value4;
    uint32_t value5;
    uint32_t value6;
    uint32_t value7;
    uint32_t value8;
    uint32_t value9;
    char text1[48];
    uint32_t value10;
    uint32_t value11;
    uint32_t value12;
    char text2[15];
    uint8_t value13;
    uint8_t value14;
    char text3[15];
    uint8_t value15;
    uint8_t value16;
    perRateStats perRate;
} assocDevStats;
INTFWIFIAP_API uint32_t intfWifiAp_assocDevStats_copy(assocDevStats *dst, const assocDevStats *src);
INTFWIFIAP_API void intfWifiAp_assocDevStats_clean(assocDevStats *rec);
INTFWIFIAP_API uint32_t intfWifiAp_assocDevStats_serialize_lg(const assocDevStats *rec);
INTFWIFIAP_API uint32_t intfWifiAp_assocDevStats_serialize(const assocDevStats *rec,
                                                           uint8_t **cursor);
INTFWIFIAP_API uint32_t intfWifiAp_assocDevStats_unserialize(assocDevStats *rec,
                                                             const uint8_t **cursor);

/* Payload of WpsStatus. */
typedef struct wpsStatusStruct {
    uint32_t value;
    char macAddress[INTFWIFIAP_MAC_LEN];
} wpsStatusStruct;
INTFWIFIAP_API uint32_t intfWifiAp_wpsStatusStruct_copy(wpsStatusStruct *dst,
                                                        const wpsStatusStruct *src);
INTFWIFIAP_API void intfWifiAp_wpsStatusStruct_clean(wpsStatusStruct *rec);
INTFWIFIAP_API uint32_t intfWifiAp_wpsStatusStruct_serialize_lg(const wpsStatusStruct *rec);
INTFWIFIAP_API uint32_t intfWifiAp_wpsStatusStruct_serialize(const wpsStatusStruct *rec,
                                                             uint8_t **cursor);
INTFWIFIAP_API uint32_t intfWifiAp_wpsStatusStruct_unserialize(wpsStatusStruct *rec,
                                                               const uint8_t **cursor);

/* Request of SendAccountingRequest. */
typedef struct accountingParams {
    uint32_t value1;
    uint32_t value2;
    char macAddress[INTFWIFIAP_MAC_LEN];
    char text1[16];
    char text2[16];
    char text3[64];
    char text4[64];
} accountingParams;
INTFWIFIAP_API uint32_t intfWifiAp_accountingParams_copy(accountingParams *dst,
                                                         const accountingParams *src);
INTFWIFIAP_API void intfWifiAp_accountingParams_clean(accountingParams *rec);
INTFWIFIAP_API uint32_t intfWifiAp_accountingParams_serialize_lg(const accountingParams *rec);
INTFWIFIAP_API uint32_t intfWifiAp_accountingParams_serialize(const accountingParams *rec,
                                                              uint8_t **cursor);
INTFWIFIAP_API uint32_t intfWifiAp_accountingParams_unserialize(accountingParams *rec,
                                                                const uint8_t **cursor);

/* Response of SendAccountingRequest. */
typedef struct accountingResult {
    uint32_t value1;
    char text[64];
    uint32_t value2;
} accountingResult;
INTFWIFIAP_API uint32_t intfWifiAp_accountingResult_copy(accountingResult *dst,
                                                         const accountingResult *src);
INTFWIFIAP_API void intfWifiAp_accountingResult_clean(accountingResult *rec);
INTFWIFIAP_API uint32_t intfWifiAp_accountingResult_serialize_lg(const accountingResult *rec);
INTFWIFIAP_API uint32_t intfWifiAp_accountingResult_serialize(const accountingResult *rec,
                                                              uint8_t **cursor);
INTFWIFIAP_API uint32_t intfWifiAp_accountingResult_unserialize(accountingResult *rec,
                                                                const uint8_t **cursor);

/* A station's state and counters, inside assocDevInfoFull. */
typedef struct assocDevStatus {
    char macAddress[INTFWIFIAP_MAC_LEN];
    uint8_t value1;
    uint8_t value2;
    uint32_t value3;
    uint32_t value4;
    int16_t value5;
    int16_t value6;
    uint32_t value7;
    int8_t value8;
    int8_t value9;
    char text1[8];
    uint8_t value10;
    uint8_t value11;
    uint8_t value12;
    int8_t value13;
    char text2[30];
    char text3[30];
    uint32_t value14;
    char text4[15];
    char text5[15];
    assocDevStats devStats;
} assocDevStatus;
INTFWIFIAP_API uint32_t intfWifiAp_assocDevStatus_copy(assocDevStatus *dst,
                                                       const assocDevStatus *src);
INTFWIFIAP_API void intfWifiAp_assocDevStatus_clean(assocDevStatus *rec);
INTFWIFIAP_API uint32_t intfWifiAp_assocDevStatus_serialize_lg(const assocDevStatus *rec);
INTFWIFIAP_API uint32_t intfWifiAp_assocDevStatus_serialize(const assocDevStatus *rec,
                                                            uint8_t **cursor);
INTFWIFIAP_API uint32_t intfWifiAp_assocDevStatus_unserialize(assocDevStatus *rec,
                                                              const uint8_t **cursor);

/* One station with its status, an item of assocDevStatList. */
typedef struct assocDevInfoFull {
    assocDevInfo devInfo;
    assocDevStatus devStatus;
} assocDevInfoFull;
INTFWIFIAP_API uint32_t intfWifiAp_assocDevInfoFull_copy(assocDevInfoFull *dst,
                                                         const assocDevInfoFull *src);
INTFWIFIAP_API void intfWifiAp_assocDevInfoFull_clean(assocDevInfoFull *rec);
INTFWIFIAP_API uint32_t intfWifiAp_assocDevInfoFull_serialize_lg(const assocDevInfoFull *rec);
INTFWIFIAP_API uint32_t intfWifiAp_assocDevInfoFull_serialize(const assocDevInfoFull *rec,
                                                              uint8_t **cursor);
INTFWIFIAP_API uint32_t intfWifiAp_assocDevInfoFull_unserialize(assocDevInfoFull *rec,
                                                                const uint8_t **cursor);

/* Response of GetAssocDevStats: up to 100 stations with their statistics. */
typedef struct assocDevStatList {
    uint32_t assocDevNum; /* valid items in assocDevs; may exceed the capacity */
    char text[36];
    assocDevInfoFull assocDevs[INTFWIFIAP_ASSOCDEVSTATLIST_MAX];
} assocDevStatList;
INTFWIFIAP_API uint32_t intfWifiAp_assocDevStatList_copy(assocDevStatList *dst,
                                                         const assocDevStatList *src);
INTFWIFIAP_API void intfWifiAp_assocDevStatList_clean(assocDevStatList *rec);
INTFWIFIAP_API uint32_t intfWifiAp_assocDevStatList_serialize_lg(const assocDevStatList *rec);
INTFWIFIAP_API uint32_t intfWifiAp_assocDevStatList_serialize(const assocDevStatList *rec,
                                                              uint8_t **cursor);
INTFWIFIAP_API uint32_t intfWifiAp_assocDevStatList_unserialize(assocDevStatList *rec,
                                                                const uint8_t **cursor);

/* ------------------------------------------------------------------ */
/* Interface descriptor                                                */
/* ------------------------------------------------------------------ */

/* Body callbacks, called by the framework through a table's block. */
typedef void (*intfWifiAp_freeBody_t)(uint32_t bodyType, void *ctx);
typedef uint32_t (*intfWifiAp_serializeBody_t)(uint32_t bodyType, void *ctx, uint8_t **body,
                                               uint32_t *bodyLg);
/* On entry *ctxSize holds the received body's length; on success, the context's size. */
typedef uint32_t (*intfWifiAp_unserializeBody_t)(uint32_t bodyType, const uint8_t *body,
                                                 void **ctx, uint32_t *ctxSize);
typedef void (*intfWifiAp_logBody_t)(void *a, void *b, void *c, char **text);

/* Request handler of a row: (message, context, receiver's method or null, its reference). */
typedef void (*intfWifiAp_method_t)(ismMsg_t msg, void *ctx, void *method, uintptr_t ref);
typedef void (*intfWifiAp_unreg_t)(uint16_t num);

typedef struct intfWifiAp_tableHdr {
    uint32_t magic;
    const char *name;
    intfWifiAp_unreg_t unreg;
    uint16_t num; /* message-management number, INTFWIFIAP_NUM_NONE when not held */
    uint16_t count;
} intfWifiAp_tableHdr;

/* One row of a table; the entries follow their header in memory. */
typedef struct intfWifiAp_msgEntry {
    intfWifiAp_method_t method;
    uintptr_t reserved;
    const char *name;
    intfWifiAp_freeBody_t freeBody;
    intfWifiAp_serializeBody_t serializeBody;
    intfWifiAp_unserializeBody_t unserializeBody;
    intfWifiAp_logBody_t logBody;
    uintptr_t index;
} intfWifiAp_msgEntry;

typedef struct intfWifiAp_desc {
    uint32_t magic;
    const char *name;
    intfWifiAp_tableHdr cmdHdr;
    intfWifiAp_msgEntry cmd[INTFWIFIAP_CMD_COUNT];
    intfWifiAp_tableHdr ntfyHdr;
    intfWifiAp_msgEntry ntfy[INTFWIFIAP_NTFY_COUNT];
    uint32_t debug;
    uint8_t state;
    uint8_t flags;
} intfWifiAp_desc;

INTFWIFIAP_API extern intfWifiAp_desc intfWifiAp_base;

/* ------------------------------------------------------------------ */
/* Lifecycle and registration                                          */
/* ------------------------------------------------------------------ */

/* The host's first call after loading the library: intfWifiAp_addBase, with
 * its failure logged. */
INTFWIFIAP_API int32_t intfWifiap_initialize(void);

/* addBase hands both tables to the framework and registers intfWifiAp_cbEvtBase;
 * delBase gives the tables back. Each returns 0, INTFWIFIAP_ERR_STATE out of
 * turn, INTFWIFIAP_ERR_TABLE for a refused table, or the framework's code. */
INTFWIFIAP_API int32_t intfWifiAp_addBase(void);
INTFWIFIAP_API int32_t intfWifiAp_delBase(void);

/* Called by the framework: event 0 (it stops) gives the tables back. */
INTFWIFIAP_API void intfWifiAp_cbEvtBase(void *ctx, int32_t event);

/* Called by the framework on a message error: ignored. */
INTFWIFIAP_API void intfWifiAp_cbEvtMsgError(void *a, void *b, void *c, void *d);

/* Called by the framework, through a table header's unreg, when it drops the table. */
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_unreg_msgCmd(uint16_t num);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_unreg_msgNtfy(uint16_t num);

/* Sets intfWifiAp_base.debug. */
INTFWIFIAP_API void intfWifiAp_modDebug(uint32_t level);

/* A table's number from the framework, INTFWIFIAP_NUM_NONE while it holds none. */
INTFWIFIAP_API uint16_t intfWifiAp_getCmdIntfNum(void);
INTFWIFIAP_API uint16_t intfWifiAp_getNtfyIntfNum(void);

/* Register or unregister a framework user with the tables `which` selects
 * (INTFWIFIAP_REG_*); the first failure stops it with the framework's code. */
INTFWIFIAP_API int32_t intfWifiAp_regUser_msgMngt(ismUser_t user, void *param, void *ref,
                                                  uint32_t which);
INTFWIFIAP_API int32_t intfWifiAp_unregUser_msgMngt(ismUser_t user, uint32_t which);

/* The framework's look-up of a user's method, with this interface's name. */
INTFWIFIAP_API int32_t intfWifiAp_findSrvMthdNtfyUser(void *a, void *b, uint16_t c, void *d);

/* ------------------------------------------------------------------ */
/* Commands                                                            */
/* ------------------------------------------------------------------ */
/*
 * One block per command, in table order. Client: intfWifiAp_sendReq_<c> hands
 * a request to the framework and returns its result (0 when the user name or
 * a payload argument is null, or memory is short); a two-way command's
 * callback later receives the response. Server: the framework's dispatch
 * values go to intfWifiAp_modSrv_recvMsg_<c>, which leads to the server's
 * method; a two-way command is answered with intfWifiAp_sendRes_<c> on the
 * method's message handle. Framework: intfWifiAp_recvReq_<c> and the four
 * body callbacks are the command's row in intfWifiAp_base, which the
 * framework calls; hosts need not. Payload pointers handed to methods and
 * callbacks point into framework-owned contexts: valid during the call only.
 */

/* Client callbacks of two-way commands. */
typedef void (*intfWifiAp_resCb_result_t)(ismMsg_t msg, uintptr_t ref, uint32_t result);
typedef void (*intfWifiAp_resCb_create_t)(ismMsg_t msg, uintptr_t ref, const char *text1,
                                          const char *text2, uint32_t result);
typedef void (*intfWifiAp_resCb_wpsInfoOut_t)(ismMsg_t msg, uintptr_t ref, const wpsInfoOut *res);
typedef void (*intfWifiAp_resCb_accountingResult_t)(ismMsg_t msg, uintptr_t ref,
                                                    const accountingResult *res);
typedef void (*intfWifiAp_resCb_assocDevStatList_t)(ismMsg_t msg, uintptr_t ref,
                                                    const assocDevStatList *res);

/* Server methods. */
typedef void (*intfWifiAp_mthd_void_t)(ismMsg_t msg, uintptr_t ref);
typedef void (*intfWifiAp_mthd_text_t)(ismMsg_t msg, uintptr_t ref, const char *text);
typedef void (*intfWifiAp_mthd_text2_t)(ismMsg_t msg, uintptr_t ref, const char *text1,
                                        const char *text2);
typedef void (*intfWifiAp_mthd_conf_t)(ismMsg_t msg, uintptr_t ref, const conf *req);
typedef void (*intfWifiAp_mthd_wpsInfoIn_t)(ismMsg_t msg, uintptr_t ref, const wpsInfoIn *req);
typedef void (*intfWifiAp_mthd_accountingParams_t)(ismMsg_t msg, uintptr_t ref,
                                                   const accountingParams *req);

/* ---- Configure: conf -> result
 * client:    sendReq; the response comes to cb
 * server:    modSrv_recvMsg on dispatch, to an intfWifiAp_mthd_conf_t; sendRes answers
 * framework: recvReq, body callbacks */
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_configure(
    ismUser_t user, intfWifiAp_resCb_result_t cb, uintptr_t ref, const char *busName,
    const char *userName, const conf *req);
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_configure(ismUser_t user, void *v1, void *v2,
                                                           void *v3);
INTFWIFIAP_API void intfWifiAp_sendRes_configure(ismMsg_t msg, uint32_t result);
INTFWIFIAP_API void intfWifiAp_recvReq_configure(ismMsg_t msg, void *ctx, void *method,
                                                 uintptr_t ref);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_msgCmd_configure(uint32_t bodyType, void *ctx);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_msgCmd_configure(
    uint32_t bodyType, void *ctx, uint8_t **body, uint32_t *bodyLg);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_msgCmd_configure(
    uint32_t bodyType, const uint8_t *body, void **ctx, uint32_t *ctxSize);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_msgCmd_configure(void *a, void *b, void *c,
                                                                     char **text);

/* ---- SetBridgeAndIps: bridge, ips; one-way
 * client:    sendReq
 * server:    modSrv_recvMsg on dispatch, to an intfWifiAp_mthd_text2_t
 * framework: recvReq, body callbacks */
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_setBridgeAndIps(
    ismUser_t user, const char *busName, const char *userName, const char *bridge, const char *ips);
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_setBridgeAndIps(ismUser_t user, void *v1, void *v2,
                                                                 void *v3);
INTFWIFIAP_API void intfWifiAp_recvReq_setBridgeAndIps(ismMsg_t msg, void *ctx, void *method,
                                                       uintptr_t ref);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_msgCmd_setBridgeAndIps(uint32_t bodyType,
                                                                            void *ctx);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_msgCmd_setBridgeAndIps(
    uint32_t bodyType, void *ctx, uint8_t **body, uint32_t *bodyLg);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_msgCmd_setBridgeAndIps(
    uint32_t bodyType, const uint8_t *body, void **ctx, uint32_t *ctxSize);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_msgCmd_setBridgeAndIps(void *a, void *b,
                                                                           void *c, char **text);

/* ---- SetIps: ips; one-way
 * client:    sendReq
 * server:    modSrv_recvMsg on dispatch, to an intfWifiAp_mthd_text_t
 * framework: recvReq, body callbacks */
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_setIps(ismUser_t user, const char *busName,
                                                  const char *userName, const char *ips);
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_setIps(ismUser_t user, void *v1, void *v2,
                                                        void *v3);
INTFWIFIAP_API void intfWifiAp_recvReq_setIps(ismMsg_t msg, void *ctx, void *method, uintptr_t ref);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_msgCmd_setIps(uint32_t bodyType, void *ctx);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_msgCmd_setIps(
    uint32_t bodyType, void *ctx, uint8_t **body, uint32_t *bodyLg);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_msgCmd_setIps(
    uint32_t bodyType, const uint8_t *body, void **ctx, uint32_t *ctxSize);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_msgCmd_setIps(void *a, void *b, void *c,
                                                                  char **text);

/* ---- Create: text1, text2 -> text1, text2, result
 * client:    sendReq; the response comes to cb
 * server:    modSrv_recvMsg on dispatch, to an intfWifiAp_mthd_text2_t; sendRes answers
 * framework: recvReq, body callbacks */
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_create(
    ismUser_t user, intfWifiAp_resCb_create_t cb, uintptr_t ref, const char *busName,
    const char *userName, const char *text1, const char *text2);
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_create(ismUser_t user, void *v1, void *v2,
                                                        void *v3);
INTFWIFIAP_API void intfWifiAp_sendRes_create(ismMsg_t msg, const char *text1, const char *text2,
                                              uint32_t result);
INTFWIFIAP_API void intfWifiAp_recvReq_create(ismMsg_t msg, void *ctx, void *method, uintptr_t ref);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_msgCmd_create(uint32_t bodyType, void *ctx);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_msgCmd_create(
    uint32_t bodyType, void *ctx, uint8_t **body, uint32_t *bodyLg);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_msgCmd_create(
    uint32_t bodyType, const uint8_t *body, void **ctx, uint32_t *ctxSize);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_msgCmd_create(void *a, void *b, void *c,
                                                                  char **text);

/* ---- Ssidinfo: text -> result
 * client:    sendReq; the response comes to cb
 * server:    modSrv_recvMsg on dispatch, to an intfWifiAp_mthd_text_t; sendRes answers
 * framework: recvReq, body callbacks */
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_ssidinfo(
    ismUser_t user, intfWifiAp_resCb_result_t cb, uintptr_t ref, const char *busName,
    const char *userName, const char *text);
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_ssidinfo(ismUser_t user, void *v1, void *v2,
                                                          void *v3);
INTFWIFIAP_API void intfWifiAp_sendRes_ssidinfo(ismMsg_t msg, uint32_t result);
INTFWIFIAP_API void intfWifiAp_recvReq_ssidinfo(ismMsg_t msg, void *ctx, void *method,
                                                uintptr_t ref);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_msgCmd_ssidinfo(uint32_t bodyType, void *ctx);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_msgCmd_ssidinfo(
    uint32_t bodyType, void *ctx, uint8_t **body, uint32_t *bodyLg);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_msgCmd_ssidinfo(
    uint32_t bodyType, const uint8_t *body, void **ctx, uint32_t *ctxSize);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_msgCmd_ssidinfo(void *a, void *b, void *c,
                                                                    char **text);

/* ---- Stop: nothing -> result
 * client:    sendReq; the response comes to cb
 * server:    modSrv_recvMsg on dispatch, to an intfWifiAp_mthd_void_t; sendRes answers
 * framework: recvReq, body callbacks */
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_stop(
    ismUser_t user, intfWifiAp_resCb_result_t cb, uintptr_t ref, const char *busName,
    const char *userName);
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_stop(ismUser_t user, void *v1, void *v2, void *v3);
INTFWIFIAP_API void intfWifiAp_sendRes_stop(ismMsg_t msg, uint32_t result);
INTFWIFIAP_API void intfWifiAp_recvReq_stop(ismMsg_t msg, void *ctx, void *method, uintptr_t ref);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_msgCmd_stop(uint32_t bodyType, void *ctx);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_msgCmd_stop(
    uint32_t bodyType, void *ctx, uint8_t **body, uint32_t *bodyLg);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_msgCmd_stop(
    uint32_t bodyType, const uint8_t *body, void **ctx, uint32_t *ctxSize);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_msgCmd_stop(void *a, void *b, void *c,
                                                                char **text);

/* ---- StartWPS: wpsInfoIn -> wpsInfoOut
 * client:    sendReq; the response comes to cb
 * server:    modSrv_recvMsg on dispatch, to an intfWifiAp_mthd_wpsInfoIn_t; sendRes answers
 * framework: recvReq, body callbacks */
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_startWPS(
    ismUser_t user, intfWifiAp_resCb_wpsInfoOut_t cb, uintptr_t ref, const char *busName,
    const char *userName, const wpsInfoIn *req);
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_startWPS(ismUser_t user, void *v1, void *v2,
                                                          void *v3);
INTFWIFIAP_API void intfWifiAp_sendRes_startWPS(ismMsg_t msg, const wpsInfoOut *res);
INTFWIFIAP_API void intfWifiAp_recvReq_startWPS(ismMsg_t msg, void *ctx, void *method,
                                                uintptr_t ref);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_msgCmd_startWPS(uint32_t bodyType, void *ctx);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_msgCmd_startWPS(
    uint32_t bodyType, void *ctx, uint8_t **body, uint32_t *bodyLg);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_msgCmd_startWPS(
    uint32_t bodyType, const uint8_t *body, void **ctx, uint32_t *ctxSize);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_msgCmd_startWPS(void *a, void *b, void *c,
                                                                    char **text);

/* ---- StartPhysicalWPS: wpsInfoIn -> wpsInfoOut
 * client:    sendReq; the response comes to cb
 * server:    modSrv_recvMsg on dispatch, to an intfWifiAp_mthd_wpsInfoIn_t; sendRes answers
 * framework: recvReq, body callbacks */
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_startPhysicalWPS(
    ismUser_t user, intfWifiAp_resCb_wpsInfoOut_t cb, uintptr_t ref, const char *busName,
    const char *userName, const wpsInfoIn *req);
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_startPhysicalWPS(ismUser_t user, void *v1,
                                                                  void *v2, void *v3);
INTFWIFIAP_API void intfWifiAp_sendRes_startPhysicalWPS(ismMsg_t msg, const wpsInfoOut *res);
INTFWIFIAP_API void intfWifiAp_recvReq_startPhysicalWPS(ismMsg_t msg, void *ctx, void *method,
                                                        uintptr_t ref);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_msgCmd_startPhysicalWPS(uint32_t bodyType,
                                                                             void *ctx);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_msgCmd_startPhysicalWPS(
    uint32_t bodyType, void *ctx, uint8_t **body, uint32_t *bodyLg);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_msgCmd_startPhysicalWPS(
    uint32_t bodyType, const uint8_t *body, void **ctx, uint32_t *ctxSize);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_msgCmd_startPhysicalWPS(void *a, void *b,
                                                                            void *c, char **text);

/* ---- ToogleWps: no payload; one-way
 * client:    sendReq
 * server:    modSrv_recvMsg on dispatch, to an intfWifiAp_mthd_void_t
 * framework: recvReq, body callbacks */
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_toogleWps(ismUser_t user, const char *busName,
                                                     const char *userName);
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_toogleWps(ismUser_t user, void *v1, void *v2,
                                                           void *v3);
INTFWIFIAP_API void intfWifiAp_recvReq_toogleWps(ismMsg_t msg, void *ctx, void *method,
                                                 uintptr_t ref);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_msgCmd_toogleWps(uint32_t bodyType, void *ctx);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_msgCmd_toogleWps(
    uint32_t bodyType, void *ctx, uint8_t **body, uint32_t *bodyLg);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_msgCmd_toogleWps(
    uint32_t bodyType, const uint8_t *body, void **ctx, uint32_t *ctxSize);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_msgCmd_toogleWps(void *a, void *b, void *c,
                                                                     char **text);

/* ---- StopWps: no payload; one-way
 * client:    sendReq
 * server:    modSrv_recvMsg on dispatch, to an intfWifiAp_mthd_void_t
 * framework: recvReq, body callbacks */
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_stopWps(ismUser_t user, const char *busName,
                                                   const char *userName);
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_stopWps(ismUser_t user, void *v1, void *v2,
                                                         void *v3);
INTFWIFIAP_API void intfWifiAp_recvReq_stopWps(ismMsg_t msg, void *ctx, void *method,
                                               uintptr_t ref);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_msgCmd_stopWps(uint32_t bodyType, void *ctx);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_msgCmd_stopWps(
    uint32_t bodyType, void *ctx, uint8_t **body, uint32_t *bodyLg);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_msgCmd_stopWps(
    uint32_t bodyType, const uint8_t *body, void **ctx, uint32_t *ctxSize);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_msgCmd_stopWps(void *a, void *b, void *c,
                                                                   char **text);

/* ---- GeneratePinCodeWPS: nothing -> result
 * client:    sendReq; the response comes to cb
 * server:    modSrv_recvMsg on dispatch, to an intfWifiAp_mthd_void_t; sendRes answers
 * framework: recvReq, body callbacks */
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_generatePinCodeWPS(
    ismUser_t user, intfWifiAp_resCb_result_t cb, uintptr_t ref, const char *busName,
    const char *userName);
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_generatePinCodeWPS(ismUser_t user, void *v1,
                                                                    void *v2, void *v3);
INTFWIFIAP_API void intfWifiAp_sendRes_generatePinCodeWPS(ismMsg_t msg, uint32_t result);
INTFWIFIAP_API void intfWifiAp_recvReq_generatePinCodeWPS(ismMsg_t msg, void *ctx, void *method,
                                                          uintptr_t ref);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_msgCmd_generatePinCodeWPS(uint32_t bodyType,
                                                                               void *ctx);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_msgCmd_generatePinCodeWPS(
    uint32_t bodyType, void *ctx, uint8_t **body, uint32_t *bodyLg);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_msgCmd_generatePinCodeWPS(
    uint32_t bodyType, const uint8_t *body, void **ctx, uint32_t *ctxSize);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_msgCmd_generatePinCodeWPS(void *a, void *b,
                                                                              void *c, char **text);

/* ---- ToogleWifi: no payload; one-way
 * client:    sendReq
 * server:    modSrv_recvMsg on dispatch, to an intfWifiAp_mthd_void_t
 * framework: recvReq, body callbacks */
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_toogleWifi(ismUser_t user, const char *busName,
                                                      const char *userName);
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_toogleWifi(ismUser_t user, void *v1, void *v2,
                                                            void *v3);
INTFWIFIAP_API void intfWifiAp_recvReq_toogleWifi(ismMsg_t msg, void *ctx, void *method,
                                                  uintptr_t ref);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_msgCmd_toogleWifi(uint32_t bodyType,
                                                                       void *ctx);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_msgCmd_toogleWifi(
    uint32_t bodyType, void *ctx, uint8_t **body, uint32_t *bodyLg);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_msgCmd_toogleWifi(
    uint32_t bodyType, const uint8_t *body, void **ctx, uint32_t *ctxSize);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_msgCmd_toogleWifi(void *a, void *b, void *c,
                                                                      char **text);

/* ---- SendAccountingRequest: accountingParams -> accountingResult
 * client:    sendReq; the response comes to cb
 * server:    modSrv_recvMsg on dispatch, to an intfWifiAp_mthd_accountingParams_t;
 *            sendRes answers
 * framework: recvReq, body callbacks */
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_sendAccountingRequest(
    ismUser_t user, intfWifiAp_resCb_accountingResult_t cb, uintptr_t ref, const char *busName,
    const char *userName, const accountingParams *req);
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_sendAccountingRequest(ismUser_t user, void *v1,
                                                                       void *v2, void *v3);
INTFWIFIAP_API void intfWifiAp_sendRes_sendAccountingRequest(ismMsg_t msg,
                                                             const accountingResult *res);
INTFWIFIAP_API void intfWifiAp_recvReq_sendAccountingRequest(ismMsg_t msg, void *ctx, void *method,
                                                             uintptr_t ref);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_msgCmd_sendAccountingRequest(uint32_t bodyType,
                                                                                  void *ctx);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_msgCmd_sendAccountingRequest(
    uint32_t bodyType, void *ctx, uint8_t **body, uint32_t *bodyLg);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_msgCmd_sendAccountingRequest(
    uint32_t bodyType, const uint8_t *body, void **ctx, uint32_t *ctxSize);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_msgCmd_sendAccountingRequest(
    void *a, void *b, void *c, char **text);

/* ---- GetAssocDevStats: nothing -> assocDevStatList
 * client:    sendReq; the response comes to cb
 * server:    modSrv_recvMsg on dispatch, to an intfWifiAp_mthd_void_t; sendRes answers
 * framework: recvReq, body callbacks */
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_getAssocDevStats(
    ismUser_t user, intfWifiAp_resCb_assocDevStatList_t cb, uintptr_t ref, const char *busName,
    const char *userName);
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_getAssocDevStats(ismUser_t user, void *v1,
                                                                  void *v2, void *v3);
INTFWIFIAP_API void intfWifiAp_sendRes_getAssocDevStats(ismMsg_t msg, const assocDevStatList *res);
INTFWIFIAP_API void intfWifiAp_recvReq_getAssocDevStats(ismMsg_t msg, void *ctx, void *method,
                                                        uintptr_t ref);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_msgCmd_getAssocDevStats(uint32_t bodyType,
                                                                             void *ctx);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_msgCmd_getAssocDevStats(
    uint32_t bodyType, void *ctx, uint8_t **body, uint32_t *bodyLg);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_msgCmd_getAssocDevStats(
    uint32_t bodyType, const uint8_t *body, void **ctx, uint32_t *ctxSize);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_msgCmd_getAssocDevStats(void *a, void *b,
                                                                            void *c, char **text);

/* ---- ForceApplyMacFilterChange: no payload; one-way
 * client:    sendReq
 * server:    modSrv_recvMsg on dispatch, to an intfWifiAp_mthd_void_t
 * framework: recvReq, body callbacks */
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_forceApplyMacFilterChange(
    ismUser_t user, const char *busName, const char *userName);
INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_forceApplyMacFilterChange(ismUser_t user, void *v1,
                                                                           void *v2, void *v3);
INTFWIFIAP_API void intfWifiAp_recvReq_forceApplyMacFilterChange(ismMsg_t msg, void *ctx,
                                                                 void *method, uintptr_t ref);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_msgCmd_forceApplyMacFilterChange(
    uint32_t bodyType, void *ctx);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_msgCmd_forceApplyMacFilterChange(
    uint32_t bodyType, void *ctx, uint8_t **body, uint32_t *bodyLg);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_msgCmd_forceApplyMacFilterChange(
    uint32_t bodyType, const uint8_t *body, void **ctx, uint32_t *ctxSize);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_msgCmd_forceApplyMacFilterChange(
    void *a, void *b, void *c, char **text);

/* ------------------------------------------------------------------ */
/* Notifications                                                       */
/* ------------------------------------------------------------------ */
/*
 * One block per notification, in table order. Server:
 * intfWifiAp_sendReq_ntfy<Name> publishes; the framework's need-update
 * dispatch (a client asks for the current state) goes to
 * intfWifiAp_modSrv_needUpdate_ntfy<Name>. Client: the framework's dispatch
 * values go to intfWifiAp_modCliNtfyUser_recvMsg_<name>, which leads to the
 * client's method. Framework: intfWifiAp_recvReq_ntfy<Name> and the four body
 * callbacks are the notification's row in intfWifiAp_base.
 */
typedef void (*intfWifiAp_ntfyMthd_probeRequest_t)(ismMsg_t msg, uintptr_t ref,
                                                   const probeRequest *ntfy);
typedef void (*intfWifiAp_ntfyMthd_assocDevList_t)(ismMsg_t msg, uintptr_t ref,
                                                   const assocDevList *ntfy);
typedef void (*intfWifiAp_ntfyMthd_wpsStatusStruct_t)(ismMsg_t msg, uintptr_t ref,
                                                      const wpsStatusStruct *ntfy);
typedef void (*intfWifiAp_ntfyMthd_encStatus_t)(ismMsg_t msg, uintptr_t ref, uint32_t encStatus);
typedef void (*intfWifiAp_ntfyMthd_assocDevInfo_t)(ismMsg_t msg, uintptr_t ref,
                                                   const assocDevInfo *ntfy);

/* ---- OnProbeReceived: probeRequest
 * server:    sendReq_ntfy publishes; modSrv_needUpdate on need-update dispatch
 * client:    modCliNtfyUser_recvMsg on dispatch, to an intfWifiAp_ntfyMthd_probeRequest_t
 * framework: recvReq_ntfy, body callbacks */
INTFWIFIAP_API void intfWifiAp_sendReq_ntfyOnProbeReceived(
    ismUser_t user, const char *busName, const char *userName, const probeRequest *ntfy);
INTFWIFIAP_API int32_t intfWifiAp_modSrv_needUpdate_ntfyOnProbeReceived(ismUser_t user, void *v1,
                                                                        void *v2, void *v3);
INTFWIFIAP_API int32_t intfWifiAp_modCliNtfyUser_recvMsg_onProbeReceived(
    ismUser_t user, void *v1, void *v2, void *v3, const char *busName, const char *userName);
INTFWIFIAP_API void intfWifiAp_recvReq_ntfyOnProbeReceived(ismMsg_t msg, void *ctx, void *method,
                                                           uintptr_t ref);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_msgNtfy_onProbeReceived(uint32_t bodyType,
                                                                             void *ctx);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_msgNtfy_onProbeReceived(
    uint32_t bodyType, void *ctx, uint8_t **body, uint32_t *bodyLg);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_msgNtfy_onProbeReceived(
    uint32_t bodyType, const uint8_t *body, void **ctx, uint32_t *ctxSize);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_msgNtfy_onProbeReceived(void *a, void *b,
                                                                            void *c, char **text);

/* ---- AssocDevActiveListChanged: assocDevList
 * server:    sendReq_ntfy publishes; modSrv_needUpdate on need-update dispatch
 * client:    modCliNtfyUser_recvMsg on dispatch, to an intfWifiAp_ntfyMthd_assocDevList_t
 * framework: recvReq_ntfy, body callbacks */
INTFWIFIAP_API void intfWifiAp_sendReq_ntfyAssocDevActiveListChanged(
    ismUser_t user, const char *busName, const char *userName, const assocDevList *ntfy);
INTFWIFIAP_API int32_t intfWifiAp_modSrv_needUpdate_ntfyAssocDevActiveListChanged(
    ismUser_t user, void *v1, void *v2, void *v3);
INTFWIFIAP_API int32_t intfWifiAp_modCliNtfyUser_recvMsg_assocDevActiveListChanged(
    ismUser_t user, void *v1, void *v2, void *v3, const char *busName, const char *userName);
INTFWIFIAP_API void intfWifiAp_recvReq_ntfyAssocDevActiveListChanged(ismMsg_t msg, void *ctx,
                                                                     void *method, uintptr_t ref);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_msgNtfy_assocDevActiveListChanged(
    uint32_t bodyType, void *ctx);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_msgNtfy_assocDevActiveListChanged(
    uint32_t bodyType, void *ctx, uint8_t **body, uint32_t *bodyLg);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_msgNtfy_assocDevActiveListChanged(
    uint32_t bodyType, const uint8_t *body, void **ctx, uint32_t *ctxSize);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_msgNtfy_assocDevActiveListChanged(
    void *a, void *b, void *c, char **text);

/* ---- WpsStatus: wpsStatusStruct
 * server:    sendReq_ntfy publishes; modSrv_needUpdate on need-update dispatch
 * client:    modCliNtfyUser_recvMsg on dispatch, to an intfWifiAp_ntfyMthd_wpsStatusStruct_t
 * framework: recvReq_ntfy, body callbacks */
INTFWIFIAP_API void intfWifiAp_sendReq_ntfyWpsStatus(
    ismUser_t user, const char *busName, const char *userName, const wpsStatusStruct *ntfy);
INTFWIFIAP_API int32_t intfWifiAp_modSrv_needUpdate_ntfyWpsStatus(ismUser_t user, void *v1,
                                                                  void *v2, void *v3);
INTFWIFIAP_API int32_t intfWifiAp_modCliNtfyUser_recvMsg_wpsStatus(
    ismUser_t user, void *v1, void *v2, void *v3, const char *busName, const char *userName);
INTFWIFIAP_API void intfWifiAp_recvReq_ntfyWpsStatus(ismMsg_t msg, void *ctx, void *method,
                                                     uintptr_t ref);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_msgNtfy_wpsStatus(uint32_t bodyType,
                                                                       void *ctx);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_msgNtfy_wpsStatus(
    uint32_t bodyType, void *ctx, uint8_t **body, uint32_t *bodyLg);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_msgNtfy_wpsStatus(
    uint32_t bodyType, const uint8_t *body, void **ctx, uint32_t *ctxSize);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_msgNtfy_wpsStatus(void *a, void *b, void *c,
                                                                      char **text);

/* ---- EncryptionStatus: a word, by value
 * server:    sendReq_ntfy publishes; modSrv_needUpdate on need-update dispatch
 * client:    modCliNtfyUser_recvMsg on dispatch, to an intfWifiAp_ntfyMthd_encStatus_t
 * framework: recvReq_ntfy, body callbacks */
INTFWIFIAP_API void intfWifiAp_sendReq_ntfyEncryptionStatus(
    ismUser_t user, const char *busName, const char *userName, uint32_t encStatus);
INTFWIFIAP_API int32_t intfWifiAp_modSrv_needUpdate_ntfyEncryptionStatus(ismUser_t user, void *v1,
                                                                         void *v2, void *v3);
INTFWIFIAP_API int32_t intfWifiAp_modCliNtfyUser_recvMsg_encryptionStatus(
    ismUser_t user, void *v1, void *v2, void *v3, const char *busName, const char *userName);
INTFWIFIAP_API void intfWifiAp_recvReq_ntfyEncryptionStatus(ismMsg_t msg, void *ctx, void *method,
                                                            uintptr_t ref);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_msgNtfy_encryptionStatus(uint32_t bodyType,
                                                                              void *ctx);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_msgNtfy_encryptionStatus(
    uint32_t bodyType, void *ctx, uint8_t **body, uint32_t *bodyLg);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_msgNtfy_encryptionStatus(
    uint32_t bodyType, const uint8_t *body, void **ctx, uint32_t *ctxSize);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_msgNtfy_encryptionStatus(void *a, void *b,
                                                                             void *c, char **text);

/* ---- DisassocEvent: assocDevInfo
 * server:    sendReq_ntfy publishes (no need-update function)
 * client:    modCliNtfyUser_recvMsg on dispatch, to an intfWifiAp_ntfyMthd_assocDevInfo_t
 * framework: recvReq_ntfy, body callbacks */
INTFWIFIAP_API void intfWifiAp_sendReq_ntfyDisassocEvent(
    ismUser_t user, const char *busName, const char *userName, const assocDevInfo *ntfy);
INTFWIFIAP_API int32_t intfWifiAp_modCliNtfyUser_recvMsg_disassocEvent(
    ismUser_t user, void *v1, void *v2, void *v3, const char *busName, const char *userName);
INTFWIFIAP_API void intfWifiAp_recvReq_ntfyDisassocEvent(ismMsg_t msg, void *ctx, void *method,
                                                         uintptr_t ref);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_msgNtfy_disassocEvent(uint32_t bodyType,
                                                                           void *ctx);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_msgNtfy_disassocEvent(
    uint32_t bodyType, void *ctx, uint8_t **body, uint32_t *bodyLg);
INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_msgNtfy_disassocEvent(
    uint32_t bodyType, const uint8_t *body, void **ctx, uint32_t *ctxSize);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_msgNtfy_disassocEvent(void *a, void *b, void *c,
                                                                          char **text);

#ifdef __cplusplus
}
#endif

#endif /* INTFWIFIAP_H */
