// Registration of framework users with the two tables.
#include "internal.h"

using namespace wifiap;

namespace {

// The tables a selector names, in the order they are handled.
struct Selection {
    bool cmd;
    bool ntfy;
};

Selection select(uint32_t which) {
    return {which == INTFWIFIAP_REG_ALL || which == INTFWIFIAP_REG_CMD,
            which == INTFWIFIAP_REG_ALL || which == INTFWIFIAP_REG_NTFY};
}

// Runs `call` on each selected table that holds a number; the first failure ends it.
template <typename Call>
int32_t forTables(uint32_t which, Call call) {
    Selection s = select(which);
    const uint16_t nums[] = {s.cmd ? intfWifiAp_base.cmdHdr.num : kNumNone,
                             s.ntfy ? intfWifiAp_base.ntfyHdr.num : kNumNone};
    for (uint16_t num : nums) {
        if (num == kNumNone) continue;
        int32_t rc = call(num);
        if (rc != 0) return rc;
    }
    return 0;
}

}  // namespace

extern "C" {

INTFWIFIAP_API int32_t intfWifiAp_regUser_msgMngt(ismUser_t user, void *param, void *ref,
                                                  uint32_t which) {
    return forTables(which, [&](uint16_t num) {
        int32_t rc = ismIntf_regUser_msgMngt(user, param, ref, num, kNumNone, 0);
        if (rc != 0)
            WLOG_ERR(Who{"intfWifiAp_regUser_msgMngt"},
                     "user(%p): regUser message management failed(%d) -> num(%d) ref(%p)\n", user,
                     rc, num, ref);
        return rc;
    });
}

INTFWIFIAP_API int32_t intfWifiAp_unregUser_msgMngt(ismUser_t user, uint32_t which) {
    return forTables(which, [&](uint16_t num) {
        int32_t rc = ismIntf_unregUser_msgMngt(user, num, kNumNone, 0);
        if (rc != 0)
            WLOG_ERR(Who{"intfWifiAp_unregUser_msgMngt"},
                     "user(%p): unregUser message management failed(%d) -> num(%d)\n", user, rc,
                     num);
        return rc;
    });
}

INTFWIFIAP_API int32_t intfWifiAp_findSrvMthdNtfyUser(void *a, void *b, uint16_t c, void *d) {
    return ismIntf_findSrvMthdNtfyUser(a, b, intfWifiAp_base.name, c, d);
}

}  // extern "C"
