// The framework's functions (ism.h), as the library calls them: arguments
// checked and resolved to tables, users and messages, the rest left to the
// core.
#include <string.h>

#include "delivery.h"
#include "transport.h"

namespace hostsim {
namespace {

constexpr uint32_t kMaxRows = 4096;  // keeps a bad count from exhausting memory

// The table a send goes on, or null if it carries no traffic; the refused
// context still ends through its free callback if the table was ever known.
Table *sendTable(uint32_t num, uint32_t index, void *ctx) {
    Table *t = liveTable(num);
    if (t && index < t->count) return t;
    if (Table *known = knownTable(num, index)) known->freeContext(index, kRequestBody, ctx);
    failed();
    return nullptr;
}

// The library's dispatch of the message being delivered: checked against it,
// then the row's method called behind the table header the library passed.
int32_t dispatchRow(uint32_t kind, void *user, void *v1, void *v2, void *v3,
                    uint32_t dispatchMagic, const void *table, uint32_t index) {
    Msg *m = msgOf(v1);
    const auto *hdr = static_cast<const intfWifiAp_tableHdr *>(table);
    if (!m || m->kind != kind || user != m->receiver || !m->held || !hdr || index >= hdr->count ||
        index != m->index || hdr->num != m->table->num)
        return 1;
    // The framework's convention: a dispatch carries its context's magic plus one.
    uint32_t magic;
    memcpy(&magic, m->held, sizeof magic);
    if (dispatchMagic != magic + 1) return 2;
    const auto *rows = reinterpret_cast<const intfWifiAp_msgEntry *>(hdr + 1);
    if (!rows[index].method) return 3;
    rows[index].method(v1, m->held, v2, reinterpret_cast<uintptr_t>(v3));
    return 0;
}

}  // namespace
}  // namespace hostsim

using namespace hostsim;

// Exported: the rest of the stand-in is hidden (CMakeLists.txt).
#pragma GCC visibility push(default)
extern "C" {

int32_t evlp_addEvtBase(void (*cb)(void *ctx, int32_t event), void *ctx) {
    if (!cb) return 1;
    world().bases.emplace_back(cb, ctx);
    return 0;
}

uint16_t ismCore_getBase_msgMngt(const char *tableName, uintptr_t **block, uint32_t count) {
    World &w = world();
    if (!tableName || !block || count > kMaxRows || w.nextNum == INTFWIFIAP_NUM_NONE)
        return INTFWIFIAP_NUM_NONE;
    auto t = std::make_unique<Table>();
    t->num = w.nextNum++;
    t->count = count;
    t->block = std::make_unique<uintptr_t[]>(ISM_BLOCK_WORDS(size_t{count}));
    t->block[ISM_BLOCK_UNREG + 1] = t->num;  // the framework's own word
    *block = t->block.get();
    w.tables.push_back(std::move(t));
    return w.tables.back()->num;
}

int32_t ismCore_putBase_msgMngt(uint16_t num, uint32_t) {
    Table *t = liveTable(num);
    if (!t) return 1;
    t->live = false;
    return 0;
}

int32_t ismIntf_regUser_msgMngt(ismUser_t user, void *param, void *ref, uint16_t num, uint16_t,
                                uint32_t) {
    User *u = userOf(user);
    if (!u || !liveTable(num)) return 1;
    u->regs[num] = {reinterpret_cast<hs_dispatch_t>(param), ref};
    return 0;
}

int32_t ismIntf_unregUser_msgMngt(ismUser_t user, uint16_t num, uint16_t, uint32_t) {
    User *u = userOf(user);
    return u && u->regs.erase(num) ? 0 : 1;
}

int32_t ismIntf_findSrvMthdNtfyUser(void *a, void *b, const char *, uint16_t, void *) {
    return lookUp(static_cast<const char *>(a), static_cast<const char *>(b)) ? 0 : 1;
}

ismCore_t ismIntf_getCore_user(ismUser_t user) {
    User *u = userOf(user);
    return u ? &u->core : nullptr;
}

uint32_t ismCore_sendMsgReq_toNameUser(ismCore_t core, void *ctx, ismResHandler_t resHandler,
                                       void *callback, uintptr_t cbRef, const char *busName,
                                       const char *userName, uint16_t num, uint32_t index, uint32_t,
                                       uint32_t) {
    Table *t = sendTable(num, index, ctx);
    if (!t) return 0;
    return sendRequest(*t, index, ctx, {resHandler, callback, cbRef}, userOfCore(core),
                       lookUp(busName, userName));
}

int32_t ismCore_isMsg_needRes(ismMsg_t msg) {
    Msg *m = msgOf(msg);
    return m && owesAnswer(*m) ? 0 : 1;
}

int32_t ismCore_sendMsgRes(ismMsg_t msg, void *ctx, uint32_t status, uint32_t) {
    Msg *m = msgOf(msg);
    if (!m || (status != 0 && status != ISM_STATUS_NO_HANDLER)) {  // whose context is unknown
        failed();
        return 1;
    }
    return status == 0 ? answer(*m, ctx) : handBack(*m, ctx);
}

int32_t ismIntf_modSrv_mthd(ismUser_t user, void *v1, void *v2, void *v3, uint32_t dispatchMagic,
                            const char *, const void *cmdTable, const void *, uint32_t index,
                            uint32_t, uint32_t) {
    return dispatchRow(HS_REQUEST, user, v1, v2, v3, dispatchMagic, cmdTable, index);
}

int32_t ismIntf_modCliNtfyUser_mthd(ismUser_t user, void *v1, void *v2, void *v3,
                                    uint32_t dispatchMagic, const char *, const char *,
                                    const char *, const void *, const void *ntfyTable,
                                    uint32_t index) {
    return dispatchRow(HS_NOTIFICATION, user, v1, v2, v3, dispatchMagic, ntfyTable, index);
}

int32_t ismIntf_modSrv_ntfy_needUpdate(ismUser_t user, void *, void *v2, void *v3, const char *,
                                       const void *, const void *ntfyTable, uint32_t index) {
    const auto *hdr = static_cast<const intfWifiAp_tableHdr *>(ntfyTable);
    if (!userOf(user) || !hdr || index >= hdr->count) return 1;
    if (v2)
        reinterpret_cast<void (*)(uintptr_t, uint32_t)>(v2)(reinterpret_cast<uintptr_t>(v3), index);
    return 0;
}

int32_t ismIntf_sendReq_ntfy(ismUser_t user, void *ctx, void *, void *, uintptr_t, const char *,
                             const char *userName, const char *, uint32_t num, uint32_t index,
                             uint32_t, uint32_t, uint32_t) {
    Table *t = sendTable(num, index, ctx);
    if (!t) return 1;
    return publish(*t, index, ctx, userOf(user), userName && *userName ? userName : nullptr);
}

}  // extern "C"
#pragma GCC visibility pop
