#include "fake_framework.h"

#include "ism.h"

namespace fake {
namespace {
std::vector<Call> g_calls;
std::map<std::string, std::deque<intptr_t>> g_answers;
std::map<std::string, std::vector<uintptr_t>> g_blocks;
bool g_noBlock = false;

template <typename... A>
intptr_t called(const char *fn, intptr_t def, A... args) {
    g_calls.push_back({fn, {(uintptr_t)(args)...}});
    auto &q = g_answers[fn];
    if (q.empty()) return def;
    intptr_t r = q.front();
    q.pop_front();
    return r;
}
}  // namespace

const std::vector<Call> &calls() { return g_calls; }

std::vector<std::string> names() {
    std::vector<std::string> out;
    for (const Call &c : g_calls) out.push_back(c.fn);
    return out;
}

void reset() {
    g_calls.clear();
    g_answers.clear();
    g_blocks.clear();
    g_noBlock = false;
}

void answer(const std::string &fn, std::vector<intptr_t> results) {
    g_answers[fn].insert(g_answers[fn].end(), results.begin(), results.end());
}

void noBlock() { g_noBlock = true; }

const std::vector<uintptr_t> &block(const std::string &tableName) { return g_blocks[tableName]; }

}  // namespace fake

using fake::called;

extern "C" {

int32_t evlp_addEvtBase(void (*cb)(void *, int32_t), void *ctx) {
    return (int32_t)called("evlp_addEvtBase", 0, cb, ctx);
}

uint16_t ismCore_getBase_msgMngt(const char *tableName, uintptr_t **block, uint32_t count) {
    std::string name(tableName);
    uint16_t num = (uint16_t)called("ismCore_getBase_msgMngt",
                                    name == "IntfWifiApCmd" ? fake::kCmdNum : fake::kNtfyNum,
                                    tableName, block, count);
    if (fake::g_noBlock) {
        fake::g_noBlock = false;
        return num;
    }
    auto &b = fake::g_blocks[name];
    b.assign(3 + 6 * count, fake::kUntouched);
    *block = b.data();
    return num;
}

int32_t ismCore_putBase_msgMngt(uint16_t num, uint32_t zero) {
    return (int32_t)called("ismCore_putBase_msgMngt", 0, num, zero);
}

int32_t ismIntf_regUser_msgMngt(ismUser_t user, void *param, void *ref, uint16_t num, uint16_t any,
                                uint32_t zero) {
    return (int32_t)called("ismIntf_regUser_msgMngt", 0, user, param, ref, num, any, zero);
}

int32_t ismIntf_unregUser_msgMngt(ismUser_t user, uint16_t num, uint16_t any, uint32_t zero) {
    return (int32_t)called("ismIntf_unregUser_msgMngt", 0, user, num, any, zero);
}

int32_t ismIntf_findSrvMthdNtfyUser(void *a, void *b, const char *intfName, uint16_t c, void *d) {
    return (int32_t)called("ismIntf_findSrvMthdNtfyUser", 0, a, b, intfName, c, d);
}

ismCore_t ismIntf_getCore_user(ismUser_t user) {
    return (ismCore_t)called("ismIntf_getCore_user", (intptr_t)user + 1, user);
}

uint32_t ismCore_sendMsgReq_toNameUser(ismCore_t core, void *ctx, ismResHandler_t resHandler,
                                       void *callback, uintptr_t cbRef, const char *busName,
                                       const char *userName, uint16_t num, uint32_t index,
                                       uint32_t any, uint32_t flags) {
    return (uint32_t)called("ismCore_sendMsgReq_toNameUser", 0, core, ctx, resHandler, callback,
                            cbRef, busName, userName, num, index, any, flags);
}

int32_t ismCore_isMsg_needRes(ismMsg_t msg) {
    return (int32_t)called("ismCore_isMsg_needRes", 0, msg);
}

int32_t ismCore_sendMsgRes(ismMsg_t msg, void *ctx, uint32_t status, uint32_t flags) {
    return (int32_t)called("ismCore_sendMsgRes", 0, msg, ctx, status, flags);
}

int32_t ismIntf_modSrv_mthd(ismUser_t user, void *v1, void *v2, void *v3, uint32_t dispatchMagic,
                            const char *intfName, const void *cmdTable, const void *ntfyTable,
                            uint32_t index, uint32_t any1, uint32_t any2) {
    return (int32_t)called("ismIntf_modSrv_mthd", 0, user, v1, v2, v3, dispatchMagic, intfName,
                           cmdTable, ntfyTable, index, any1, any2);
}

int32_t ismIntf_modCliNtfyUser_mthd(ismUser_t user, void *v1, void *v2, void *v3,
                                    uint32_t dispatchMagic, const char *busName,
                                    const char *userName, const char *intfName,
                                    const void *cmdTable, const void *ntfyTable, uint32_t index) {
    return (int32_t)called("ismIntf_modCliNtfyUser_mthd", 0, user, v1, v2, v3, dispatchMagic,
                           busName, userName, intfName, cmdTable, ntfyTable, index);
}

int32_t ismIntf_modSrv_ntfy_needUpdate(ismUser_t user, void *v1, void *v2, void *v3,
                                       const char *intfName, const void *cmdTable,
                                       const void *ntfyTable, uint32_t index) {
    return (int32_t)called("ismIntf_modSrv_ntfy_needUpdate", 0, user, v1, v2, v3, intfName,
                           cmdTable, ntfyTable, index);
}

int32_t ismIntf_sendReq_ntfy(ismUser_t user, void *ctx, void *zero1, void *zero2, uintptr_t zero3,
                             const char *busName, const char *userName, const char *intfName,
                             uint32_t num, uint32_t index, uint32_t zero4, uint32_t zero5,
                             uint32_t flags) {
    return (int32_t)called("ismIntf_sendReq_ntfy", 0, user, ctx, zero1, zero2, zero3, busName,
                           userName, intfName, num, index, zero4, zero5, flags);
}

}  // extern "C"
