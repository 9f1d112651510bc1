#include "fake_framework.h"

#include "ism.h"

namespace fake {
namespace {
std::vector<Call> g_calls;
std::map<std::string, std::deque<intptr_t>> g_answers;
std::map<std::string, std::vector<uintptr_t>> g_blocks;
bool g_noBlock = false;
}  // namespace

template <typename... A>
intptr_t called(const char *fn, intptr_t def, A... args) {
    g_calls.push_back({fn, {(uintptr_t)(args)...}});
    auto &q = g_answers[fn];
    if (q.empty()) return def;
    intptr_t r = q.front();
    q.pop_front();
    return r;
}

const std::vector<Call> &calls() { return g_calls; }

std::vector<std::string> names() {
    std::vector<std::string> out;
    for (const Call &c : g_calls) out.push_back(c.fn);
    return out;
}

void reset() {
    g_calls.clear(), g_answers.clear(), g_blocks.clear();
    g_noBlock = false;
}

void answer(const std::string &fn, std::vector<intptr_t> results) {
    g_answers[fn].insert(g_answers[fn].end(), results.begin(), results.end());
}

void noBlock() { g_noBlock = true; }

const std::vector<uintptr_t> &block(const std::string &tableName) { return g_blocks[tableName]; }

}  // namespace fake

#define RECORDED(R, fn, def, params, ...) \
    R fn params { return (R)fake::called(#fn, (intptr_t)(def), __VA_ARGS__); }

extern "C" {

RECORDED(int32_t, evlp_addEvtBase, 0, (void (*cb)(void *, int32_t), void *ctx), cb, ctx)
RECORDED(int32_t, ismCore_putBase_msgMngt, 0, (uint16_t num, uint32_t zero), num, zero)
RECORDED(int32_t, ismIntf_regUser_msgMngt, 0,
         (ismUser_t u, void *param, void *ref, uint16_t num, uint16_t any, uint32_t zero), u,
         param, ref, num, any, zero)
RECORDED(int32_t, ismIntf_unregUser_msgMngt, 0,
         (ismUser_t u, uint16_t num, uint16_t any, uint32_t zero), u, num, any, zero)
RECORDED(int32_t, ismIntf_findSrvMthdNtfyUser, 0,
         (void *a, void *b, const char *intf, uint16_t c, void *d), a, b, intf, c, d)
RECORDED(ismCore_t, ismIntf_getCore_user, (intptr_t)user + 1, (ismUser_t user), user)
RECORDED(uint32_t, ismCore_sendMsgReq_toNameUser, 0,
         (ismCore_t core, void *ctx, ismResHandler_t h, void *cb, uintptr_t ref, const char *bus,
          const char *name, uint16_t num, uint32_t index, uint32_t any, uint32_t flags),
         core, ctx, h, cb, ref, bus, name, num, index, any, flags)
RECORDED(int32_t, ismCore_isMsg_needRes, 0, (ismMsg_t msg), msg)
RECORDED(int32_t, ismCore_sendMsgRes, 0, (ismMsg_t msg, void *ctx, uint32_t st, uint32_t flags),
         msg, ctx, st, flags)
RECORDED(int32_t, ismIntf_modSrv_mthd, 0,
         (ismUser_t u, void *v1, void *v2, void *v3, uint32_t magic, const char *intf,
          const void *cmd, const void *ntfy, uint32_t index, uint32_t a1, uint32_t a2),
         u, v1, v2, v3, magic, intf, cmd, ntfy, index, a1, a2)
RECORDED(int32_t, ismIntf_modCliNtfyUser_mthd, 0,
         (ismUser_t u, void *v1, void *v2, void *v3, uint32_t magic, const char *bus,
          const char *name, const char *intf, const void *cmd, const void *ntfy, uint32_t index),
         u, v1, v2, v3, magic, bus, name, intf, cmd, ntfy, index)
RECORDED(int32_t, ismIntf_modSrv_ntfy_needUpdate, 0,
         (ismUser_t u, void *v1, void *v2, void *v3, const char *intf, const void *cmd,
          const void *ntfy, uint32_t index),
         u, v1, v2, v3, intf, cmd, ntfy, index)
RECORDED(int32_t, ismIntf_sendReq_ntfy, 0,
         (ismUser_t u, void *ctx, void *z1, void *z2, uintptr_t z3, const char *bus,
          const char *name, const char *intf, uint32_t num, uint32_t index, uint32_t z4,
          uint32_t z5, uint32_t flags),
         u, ctx, z1, z2, z3, bus, name, intf, num, index, z4, z5, flags)

// The table request also hands out a block, as the framework does.
uint16_t ismCore_getBase_msgMngt(const char *tableName, uintptr_t **block, uint32_t count) {
    std::string name(tableName);
    auto num = (uint16_t)fake::called("ismCore_getBase_msgMngt",
                                      name == "IntfWifiApCmd" ? fake::kCmdNum : fake::kNtfyNum,
                                      tableName, block, count);
    if (!fake::g_noBlock) {
        auto &b = fake::g_blocks[name];
        b.assign(ISM_BLOCK_WORDS(count), fake::kUntouched);
        *block = b.data();
    }
    fake::g_noBlock = false;
    return num;
}

}  // extern "C"
