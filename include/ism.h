/*
 * The service-messaging framework and event loop, as the host provides them:
 * libIntfWifiap's contract with its host. The library declares and calls
 * these functions but never defines them; the host process (or the project's
 * stand-in, hostsim) does.
 */
#ifndef ISM_H
#define ISM_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifndef ISM_HANDLE_TYPES_DEFINED
#define ISM_HANDLE_TYPES_DEFINED
typedef void *ismUser_t; /* a registered framework user */
typedef void *ismCore_t; /* the core handle of a user */
typedef void *ismMsg_t;  /* one message in flight */
#endif

/* The block that ismCore_getBase_msgMngt hands out for a table of `count`
 * rows, ISM_BLOCK_WORDS(count) pointer-sized words: the table's name, its
 * unregister callback, a word of the framework's own, then ISM_ROW_WORDS
 * words per row from ISM_BLOCK_ROWS on. */
enum { ISM_BLOCK_NAME = 0, ISM_BLOCK_UNREG = 1, ISM_BLOCK_ROWS = 3, ISM_ROW_WORDS = 6 };
enum {
    ISM_ROW_RESERVED,
    ISM_ROW_NAME,
    ISM_ROW_FREE,
    ISM_ROW_SERIALIZE,
    ISM_ROW_UNSERIALIZE,
    ISM_ROW_LOG
};
#define ISM_BLOCK_WORDS(count) (ISM_BLOCK_ROWS + ISM_ROW_WORDS * (count))

/* Values the library passes: "any" for a message's sub-index and the
 * registration's, the flags of every send, and the status of a context handed
 * back because nobody handles it. */
#define ISM_ANY 0xFFFFu
#define ISM_SEND_FLAGS 18u
#define ISM_STATUS_NO_HANDLER 20u

/* A response handler receives the framework's message record, whose first two
 * pointer-sized words are the client callback and the client reference. */
typedef void (*ismResHandler_t)(void *first, ismMsg_t msg, void *ctx);

int32_t evlp_addEvtBase(void (*cb)(void *ctx, int32_t event), void *ctx);
uint16_t ismCore_getBase_msgMngt(const char *tableName, uintptr_t **block, uint32_t count);
int32_t ismCore_putBase_msgMngt(uint16_t num, uint32_t zero);
int32_t ismIntf_regUser_msgMngt(ismUser_t user, void *param, void *ref, uint16_t num, uint16_t any,
                                uint32_t zero);
int32_t ismIntf_unregUser_msgMngt(ismUser_t user, uint16_t num, uint16_t any, uint32_t zero);
int32_t ismIntf_findSrvMthdNtfyUser(void *a, void *b, const char *intfName, uint16_t c, void *d);
ismCore_t ismIntf_getCore_user(ismUser_t user);
uint32_t ismCore_sendMsgReq_toNameUser(ismCore_t core, void *ctx, ismResHandler_t resHandler,
                                       void *callback, uintptr_t cbRef, const char *busName,
                                       const char *userName, uint16_t num, uint32_t index,
                                       uint32_t any, uint32_t flags);
int32_t ismCore_isMsg_needRes(ismMsg_t msg);
int32_t ismCore_sendMsgRes(ismMsg_t msg, void *ctx, uint32_t status, uint32_t flags);
int32_t ismIntf_modSrv_mthd(ismUser_t user, void *v1, void *v2, void *v3, uint32_t dispatchMagic,
                            const char *intfName, const void *cmdTable, const void *ntfyTable,
                            uint32_t index, uint32_t any1, uint32_t any2);
int32_t ismIntf_modCliNtfyUser_mthd(ismUser_t user, void *v1, void *v2, void *v3,
                                    uint32_t dispatchMagic, const char *busName,
                                    const char *userName, const char *intfName,
                                    const void *cmdTable, const void *ntfyTable, uint32_t index);
int32_t ismIntf_modSrv_ntfy_needUpdate(ismUser_t user, void *v1, void *v2, void *v3,
                                       const char *intfName, const void *cmdTable,
                                       const void *ntfyTable, uint32_t index);
int32_t ismIntf_sendReq_ntfy(ismUser_t user, void *ctx, void *zero1, void *zero2, uintptr_t zero3,
                             const char *busName, const char *userName, const char *intfName,
                             uint32_t num, uint32_t index, uint32_t zero4, uint32_t zero5,
                             uint32_t flags);

#ifdef __cplusplus
}
#endif

#endif /* ISM_H */
