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

#define INTFWIFIAP_MAC_LEN 18
#define INTFWIFIAP_ASSOCDEVLIST_MAX 32
#define INTFWIFIAP_RATESTATS_MAX 312
#define INTFWIFIAP_ASSOCDEVSTATLIST_MAX 100

typedef struct wpsInfoIn {
    uint32_t value;
} wpsInfoIn;

typedef struct wpsInfoOut {
    uint32_t value;
} wpsInfoOut;

typedef struct conf {
    uint32_t value1;
    uint32_t value2;
} conf;

typedef struct rateStats {
    uint32_t value1;
    uint32_t value2;
} rateStats;

typedef struct assocDevInfo {
    char macAddress[INTFWIFIAP_MAC_LEN];
    uint8_t value;
    char text[150];
} assocDevInfo;

typedef struct assocDevList {
    uint32_t assocDevNum; /* valid items in assocDevs; may exceed the capacity */
    assocDevInfo assocDevs[INTFWIFIAP_ASSOCDEVLIST_MAX];
    char text1[80];
    uint32_t value;
    char text2[72];
} assocDevList;

typedef struct probeRequest {
    char macAddress[INTFWIFIAP_MAC_LEN];
    char text[128];
    uint32_t value;
} probeRequest;

typedef struct perRateStats {
    uint32_t value1;
    uint32_t rateStatsNum; /* valid items in rates; may exceed the capacity */
    uint32_t value2;
    uint32_t value3;
    rateStats rates[INTFWIFIAP_RATESTATS_MAX];
} perRateStats;

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

typedef struct wpsStatusStruct {
    uint32_t value;
    char macAddress[INTFWIFIAP_MAC_LEN];
} wpsStatusStruct;

typedef struct accountingParams {
    uint32_t value1;
    uint32_t value2;
    char macAddress[INTFWIFIAP_MAC_LEN];
    char text1[16];
    char text2[16];
    char text3[64];
    char text4[64];
} accountingParams;

typedef struct accountingResult {
    uint32_t value1;
    char text[64];
    uint32_t value2;
} accountingResult;

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

typedef struct assocDevInfoFull {
    assocDevInfo devInfo;
    assocDevStatus devStatus;
} assocDevInfoFull;

typedef struct assocDevStatList {
    uint32_t assocDevNum; /* valid items in assocDevs; may exceed the capacity */
    char text[36];
    assocDevInfoFull assocDevs[INTFWIFIAP_ASSOCDEVSTATLIST_MAX];
} assocDevStatList;

/*
 * Five operations per record R:
 *   uint32_t intfWifiAp_R_copy(R *dst, const R *src);        status
 *   void     intfWifiAp_R_clean(R *rec);                     null accepted
 *   uint32_t intfWifiAp_R_serialize_lg(const R *rec);        bytes serialize writes
 *   uint32_t intfWifiAp_R_serialize(const R *rec, uint8_t **cursor);
 *   uint32_t intfWifiAp_R_unserialize(R *rec, const uint8_t **cursor);
 * serialize writes into a zero-filled buffer of at least serialize_lg bytes;
 * unserialize trusts its input (it has no end): bodies received from the
 * framework are read by the body callbacks, which bound every read.
 */
#define INTFWIFIAP_RECORD_API(R)                                                   \
    INTFWIFIAP_API uint32_t intfWifiAp_##R##_copy(R *dst, const R *src);          \
    INTFWIFIAP_API void intfWifiAp_##R##_clean(R *rec);                           \
    INTFWIFIAP_API uint32_t intfWifiAp_##R##_serialize_lg(const R *rec);          \
    INTFWIFIAP_API uint32_t intfWifiAp_##R##_serialize(const R *rec, uint8_t **cursor); \
    INTFWIFIAP_API uint32_t intfWifiAp_##R##_unserialize(R *rec, const uint8_t **cursor);

INTFWIFIAP_RECORD_API(wpsInfoIn)
INTFWIFIAP_RECORD_API(wpsInfoOut)
INTFWIFIAP_RECORD_API(conf)
INTFWIFIAP_RECORD_API(rateStats)
INTFWIFIAP_RECORD_API(assocDevInfo)
INTFWIFIAP_RECORD_API(assocDevList)
INTFWIFIAP_RECORD_API(probeRequest)
INTFWIFIAP_RECORD_API(perRateStats)
INTFWIFIAP_RECORD_API(assocDevStats)
INTFWIFIAP_RECORD_API(wpsStatusStruct)
INTFWIFIAP_RECORD_API(accountingParams)
INTFWIFIAP_RECORD_API(accountingResult)
INTFWIFIAP_RECORD_API(assocDevStatus)
INTFWIFIAP_RECORD_API(assocDevInfoFull)
INTFWIFIAP_RECORD_API(assocDevStatList)

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

INTFWIFIAP_API int32_t intfWifiap_initialize(void);
INTFWIFIAP_API int32_t intfWifiAp_addBase(void);
INTFWIFIAP_API int32_t intfWifiAp_delBase(void);
INTFWIFIAP_API void intfWifiAp_cbEvtBase(void *ctx, int32_t event);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgError(void *a, void *b, void *c, void *d);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_unreg_msgCmd(uint16_t num);
INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_unreg_msgNtfy(uint16_t num);
INTFWIFIAP_API void intfWifiAp_modDebug(uint32_t level);
INTFWIFIAP_API uint16_t intfWifiAp_getCmdIntfNum(void);
INTFWIFIAP_API uint16_t intfWifiAp_getNtfyIntfNum(void);

INTFWIFIAP_API int32_t intfWifiAp_regUser_msgMngt(ismUser_t user, void *param, void *ref,
                                                  uint32_t which);
INTFWIFIAP_API int32_t intfWifiAp_unregUser_msgMngt(ismUser_t user, uint32_t which);
INTFWIFIAP_API int32_t intfWifiAp_findSrvMthdNtfyUser(void *a, void *b, uint16_t c, void *d);


/* ------------------------------------------------------------------ */
/* Commands                                                            */
/* ------------------------------------------------------------------ */
/*
 * Client: intfWifiAp_sendReq_<c> hands a request to the framework and returns
 * its result (0 when the user name is null or memory is short); a two-way
 * command's callback later receives the response. Server: the framework's
 * dispatch values go to intfWifiAp_modSrv_recvMsg_<c>, which leads to the
 * server's method; a two-way command is answered with intfWifiAp_sendRes_<c>
 * on the method's message handle. Payload pointers handed to methods and
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

/* The functions every command has: server dispatch, request handler, body callbacks. */
#define INTFWIFIAP_CMD_API(c)                                                                   \
    INTFWIFIAP_API int32_t intfWifiAp_modSrv_recvMsg_##c(ismUser_t user, void *v1, void *v2,    \
                                                         void *v3);                             \
    INTFWIFIAP_API void intfWifiAp_recvReq_##c(ismMsg_t msg, void *ctx, void *method,          \
                                               uintptr_t ref);                                  \
    INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_msgCmd_##c(uint32_t bodyType, void *ctx); \
    INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_msgCmd_##c(                   \
        uint32_t bodyType, void *ctx, uint8_t **body, uint32_t *bodyLg);                        \
    INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_msgCmd_##c(                 \
        uint32_t bodyType, const uint8_t *body, void **ctx, uint32_t *ctxSize);                 \
    INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_msgCmd_##c(void *a, void *b, void *c_,  \
                                                                   char **text);

INTFWIFIAP_CMD_API(configure)
INTFWIFIAP_CMD_API(setBridgeAndIps)
INTFWIFIAP_CMD_API(setIps)
INTFWIFIAP_CMD_API(create)
INTFWIFIAP_CMD_API(ssidinfo)
INTFWIFIAP_CMD_API(stop)
INTFWIFIAP_CMD_API(startWPS)
INTFWIFIAP_CMD_API(startPhysicalWPS)
INTFWIFIAP_CMD_API(toogleWps)
INTFWIFIAP_CMD_API(stopWps)
INTFWIFIAP_CMD_API(generatePinCodeWPS)
INTFWIFIAP_CMD_API(toogleWifi)
INTFWIFIAP_CMD_API(sendAccountingRequest)
INTFWIFIAP_CMD_API(getAssocDevStats)
INTFWIFIAP_CMD_API(forceApplyMacFilterChange)

/* Two-way commands: the client's request, */
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_configure(ismUser_t user, intfWifiAp_resCb_result_t cb,
                                                     uintptr_t ref, const char *busName,
                                                     const char *userName, const conf *req);
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_create(ismUser_t user, intfWifiAp_resCb_create_t cb,
                                                  uintptr_t ref, const char *busName,
                                                  const char *userName, const char *text1,
                                                  const char *text2);
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_ssidinfo(ismUser_t user, intfWifiAp_resCb_result_t cb,
                                                    uintptr_t ref, const char *busName,
                                                    const char *userName, const char *text);
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_stop(ismUser_t user, intfWifiAp_resCb_result_t cb,
                                                uintptr_t ref, const char *busName,
                                                const char *userName);
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_startWPS(ismUser_t user,
                                                    intfWifiAp_resCb_wpsInfoOut_t cb,
                                                    uintptr_t ref, const char *busName,
                                                    const char *userName, const wpsInfoIn *req);
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_startPhysicalWPS(ismUser_t user,
                                                            intfWifiAp_resCb_wpsInfoOut_t cb,
                                                            uintptr_t ref, const char *busName,
                                                            const char *userName,
                                                            const wpsInfoIn *req);
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_generatePinCodeWPS(ismUser_t user,
                                                              intfWifiAp_resCb_result_t cb,
                                                              uintptr_t ref, const char *busName,
                                                              const char *userName);
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_sendAccountingRequest(
    ismUser_t user, intfWifiAp_resCb_accountingResult_t cb, uintptr_t ref, const char *busName,
    const char *userName, const accountingParams *req);
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_getAssocDevStats(ismUser_t user,
                                                            intfWifiAp_resCb_assocDevStatList_t cb,
                                                            uintptr_t ref, const char *busName,
                                                            const char *userName);

/* and the server's answer (the server method's type in brackets). */
INTFWIFIAP_API void intfWifiAp_sendRes_configure(ismMsg_t msg, uint32_t result); /* mthd_conf */
INTFWIFIAP_API void intfWifiAp_sendRes_create(ismMsg_t msg, const char *text1, const char *text2,
                                              uint32_t result); /* mthd_text2 */
INTFWIFIAP_API void intfWifiAp_sendRes_ssidinfo(ismMsg_t msg, uint32_t result); /* mthd_text */
INTFWIFIAP_API void intfWifiAp_sendRes_stop(ismMsg_t msg, uint32_t result); /* mthd_void */
INTFWIFIAP_API void intfWifiAp_sendRes_startWPS(ismMsg_t msg,
                                                const wpsInfoOut *res); /* mthd_wpsInfoIn */
INTFWIFIAP_API void intfWifiAp_sendRes_startPhysicalWPS(ismMsg_t msg,
                                                        const wpsInfoOut *res); /* mthd_wpsInfoIn */
INTFWIFIAP_API void intfWifiAp_sendRes_generatePinCodeWPS(ismMsg_t msg,
                                                          uint32_t result); /* mthd_void */
INTFWIFIAP_API void intfWifiAp_sendRes_sendAccountingRequest(
    ismMsg_t msg, const accountingResult *res); /* mthd_accountingParams */
INTFWIFIAP_API void intfWifiAp_sendRes_getAssocDevStats(ismMsg_t msg,
                                                        const assocDevStatList *res); /* mthd_void */

/* One-way commands. */
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_setBridgeAndIps(ismUser_t user, const char *busName,
                                                           const char *userName,
                                                           const char *bridge,
                                                           const char *ips); /* mthd_text2 */
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_setIps(ismUser_t user, const char *busName,
                                                  const char *userName,
                                                  const char *ips); /* mthd_text */
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_toogleWps(ismUser_t user, const char *busName,
                                                     const char *userName); /* mthd_void */
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_stopWps(ismUser_t user, const char *busName,
                                                   const char *userName); /* mthd_void */
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_toogleWifi(ismUser_t user, const char *busName,
                                                      const char *userName); /* mthd_void */
INTFWIFIAP_API uint32_t intfWifiAp_sendReq_forceApplyMacFilterChange(
    ismUser_t user, const char *busName, const char *userName); /* mthd_void */

/* ------------------------------------------------------------------ */
/* Notifications                                                       */
/* ------------------------------------------------------------------ */
/*
 * Server: intfWifiAp_sendReq_ntfy<Name> publishes; the framework's need-update
 * dispatch goes to intfWifiAp_modSrv_needUpdate_ntfy<Name>. Client: the
 * framework's dispatch values go to intfWifiAp_modCliNtfyUser_recvMsg_<name>,
 * which leads to the client's method.
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

#define INTFWIFIAP_NTFY_API(Name, name)                                                         \
    INTFWIFIAP_API int32_t intfWifiAp_modCliNtfyUser_recvMsg_##name(                            \
        ismUser_t user, void *v1, void *v2, void *v3, const char *busName, const char *userName); \
    INTFWIFIAP_API void intfWifiAp_recvReq_ntfy##Name(ismMsg_t msg, void *ctx, void *method,   \
                                                      uintptr_t ref);                           \
    INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_freeBody_msgNtfy_##name(uint32_t bodyType,     \
                                                                        void *ctx);             \
    INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_serializeBody_msgNtfy_##name(               \
        uint32_t bodyType, void *ctx, uint8_t **body, uint32_t *bodyLg);                        \
    INTFWIFIAP_API uint32_t intfWifiAp_cbEvtMsgMngt_unserializeBody_msgNtfy_##name(             \
        uint32_t bodyType, const uint8_t *body, void **ctx, uint32_t *ctxSize);                 \
    INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_logBody_msgNtfy_##name(void *a, void *b,       \
                                                                       void *c, char **text);

INTFWIFIAP_NTFY_API(OnProbeReceived, onProbeReceived)
INTFWIFIAP_NTFY_API(AssocDevActiveListChanged, assocDevActiveListChanged)
INTFWIFIAP_NTFY_API(WpsStatus, wpsStatus)
INTFWIFIAP_NTFY_API(EncryptionStatus, encryptionStatus)
INTFWIFIAP_NTFY_API(DisassocEvent, disassocEvent)

INTFWIFIAP_API void intfWifiAp_sendReq_ntfyOnProbeReceived(ismUser_t user, const char *busName,
                                                           const char *userName,
                                                           const probeRequest *ntfy);
INTFWIFIAP_API void intfWifiAp_sendReq_ntfyAssocDevActiveListChanged(ismUser_t user,
                                                                     const char *busName,
                                                                     const char *userName,
                                                                     const assocDevList *ntfy);
INTFWIFIAP_API void intfWifiAp_sendReq_ntfyWpsStatus(ismUser_t user, const char *busName,
                                                     const char *userName,
                                                     const wpsStatusStruct *ntfy);
INTFWIFIAP_API void intfWifiAp_sendReq_ntfyEncryptionStatus(ismUser_t user, const char *busName,
                                                            const char *userName,
                                                            uint32_t encStatus);
INTFWIFIAP_API void intfWifiAp_sendReq_ntfyDisassocEvent(ismUser_t user, const char *busName,
                                                         const char *userName,
                                                         const assocDevInfo *ntfy);

INTFWIFIAP_API int32_t intfWifiAp_modSrv_needUpdate_ntfyOnProbeReceived(ismUser_t user, void *v1,
                                                                        void *v2, void *v3);
INTFWIFIAP_API int32_t intfWifiAp_modSrv_needUpdate_ntfyAssocDevActiveListChanged(ismUser_t user,
                                                                                  void *v1,
                                                                                  void *v2,
                                                                                  void *v3);
INTFWIFIAP_API int32_t intfWifiAp_modSrv_needUpdate_ntfyWpsStatus(ismUser_t user, void *v1,
                                                                  void *v2, void *v3);
INTFWIFIAP_API int32_t intfWifiAp_modSrv_needUpdate_ntfyEncryptionStatus(ismUser_t user, void *v1,
                                                                         void *v2, void *v3);

#ifdef __cplusplus
}
#endif

#endif /* INTFWIFIAP_H */
