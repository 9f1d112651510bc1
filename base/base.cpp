// The interface descriptor and the library's start and stop with the framework.
#include "internal.h"
#include "messages.h"

using namespace wifiap;

// A row: request handler, reserved word, table name, four body callbacks, index.
#define ROW(idx, tableName, handler, kind, sfx)                                            \
    {handler, 0, tableName, intfWifiAp_cbEvtMsgMngt_freeBody_##kind##_##sfx,               \
     intfWifiAp_cbEvtMsgMngt_serializeBody_##kind##_##sfx,                                  \
     intfWifiAp_cbEvtMsgMngt_unserializeBody_##kind##_##sfx,                                \
     intfWifiAp_cbEvtMsgMngt_logBody_##kind##_##sfx, idx}
#define CMD_ROW(N, s, U, ...) ROW(INTFWIFIAP_CMD_##U, #N, intfWifiAp_recvReq_##s, msgCmd, s),
#define NTFY_ROW(N, s, U, ...) ROW(INTFWIFIAP_NTFY_##U, #N, intfWifiAp_recvReq_ntfy##N, msgNtfy, s),
#define SKIP(...)

extern "C" {

INTFWIFIAP_API intfWifiAp_desc intfWifiAp_base = {
    INTFWIFIAP_MAGIC_BASE,
    "IntfWifiAp",
    {INTFWIFIAP_MAGIC_INTF_CMD, "IntfWifiApCmd", intfWifiAp_cbEvtMsgMngt_unreg_msgCmd, kNumNone,
     INTFWIFIAP_CMD_COUNT},
    {WIFIAP_MESSAGES(CMD_ROW, SKIP)},
    {INTFWIFIAP_MAGIC_INTF_NTFY, "IntfWifiApNtfy", intfWifiAp_cbEvtMsgMngt_unreg_msgNtfy, kNumNone,
     INTFWIFIAP_NTFY_COUNT},
    {WIFIAP_MESSAGES(SKIP, NTFY_ROW)},
    0,
    INTFWIFIAP_STATE_BASE_WAIT_INIT,
    0,
};

}  // extern "C"

// The framework finds a table's entries right behind its header.
static_assert(offsetof(intfWifiAp_desc, cmd) ==
              offsetof(intfWifiAp_desc, cmdHdr) + sizeof(intfWifiAp_tableHdr));
static_assert(offsetof(intfWifiAp_desc, ntfy) ==
              offsetof(intfWifiAp_desc, ntfyHdr) + sizeof(intfWifiAp_tableHdr));
static_assert(sizeof(intfWifiAp_msgEntry) == 8 * sizeof(uintptr_t));

namespace {

// One table's part of the descriptor, for the steps that treat both alike.
struct Table {
    intfWifiAp_tableHdr &hdr;
    intfWifiAp_msgEntry *rows;
    uint8_t flag;
    const char *flagName;
    uint32_t count;
};

Table cmdTable() {
    return {intfWifiAp_base.cmdHdr, intfWifiAp_base.cmd, INTFWIFIAP_FLAGS_BASE_REG_CMD,
            "INTFWIFIAP_FLAGS_BASE_REG_CMD", INTFWIFIAP_CMD_COUNT};
}
Table ntfyTable() {
    return {intfWifiAp_base.ntfyHdr, intfWifiAp_base.ntfy, INTFWIFIAP_FLAGS_BASE_REG_NTFY,
            "INTFWIFIAP_FLAGS_BASE_REG_NTFY", INTFWIFIAP_NTFY_COUNT};
}

const char *stateName(uint8_t state) {
    return state == INTFWIFIAP_STATE_BASE_INIT ? "INTFWIFIAP_STATE_BASE_INIT"
                                               : "INTFWIFIAP_STATE_BASE_WAIT_INIT";
}

void setFlag(const Who &who, const Table &t) {
    intfWifiAp_desc &b = intfWifiAp_base;
    if (b.flags & t.flag)
        WLOG(LOG_WARNING, who, TXT_SET_FLAG, t.flagName, t.flag, &b, b.flags, "");
    b.flags |= t.flag;
}

void clearFlag(const Who &who, const Table &t) {
    intfWifiAp_desc &b = intfWifiAp_base;
    if (!(b.flags & t.flag))
        WLOG(LOG_WARNING, who, TXT_UNSET_FLAG, t.flagName, t.flag, &b, b.flags, "");
    b.flags &= static_cast<uint8_t>(~t.flag);
}

void setState(const Who &who, uint8_t state) {
    intfWifiAp_desc &b = intfWifiAp_base;
    if (b.state == state) WLOG(LOG_WARNING, who, TXT_SET_STATE, stateName(state), state, &b);
    b.state = state;
}

bool checkState(const Who &who, uint8_t expected) {
    intfWifiAp_desc &b = intfWifiAp_base;
    if (b.state == expected) return true;
    WLOG_ERR(who, TXT_CHECK_STATE, stateName(expected), expected, &b, b.state, "");
    return false;
}

// Hands one table to the framework and fills the block it returns: name,
// unregister callback, word 2 untouched, then six words per row.
bool handOver(const Table &t) {
    uintptr_t *block = nullptr;
    t.hdr.num = ismCore_getBase_msgMngt(t.hdr.name, &block, t.count);
    if (t.hdr.num == kNumNone || block == nullptr) return false;
    block[ISM_BLOCK_NAME] = reinterpret_cast<uintptr_t>(t.hdr.name);
    block[ISM_BLOCK_UNREG] = reinterpret_cast<uintptr_t>(t.hdr.unreg);
    for (uint32_t i = 0; i < t.count; ++i) {
        const intfWifiAp_msgEntry &e = t.rows[i];
        uintptr_t *w = block + ISM_BLOCK_ROWS + ISM_ROW_WORDS * i;
        w[ISM_ROW_RESERVED] = e.reserved;
        w[ISM_ROW_NAME] = reinterpret_cast<uintptr_t>(e.name);
        w[ISM_ROW_FREE] = reinterpret_cast<uintptr_t>(e.freeBody);
        w[ISM_ROW_SERIALIZE] = reinterpret_cast<uintptr_t>(e.serializeBody);
        w[ISM_ROW_UNSERIALIZE] = reinterpret_cast<uintptr_t>(e.unserializeBody);
        w[ISM_ROW_LOG] = reinterpret_cast<uintptr_t>(e.logBody);
    }
    return true;
}

// Gives a held table back; a refusal stops the delete with the framework's code.
int32_t giveBack(const Who &who, const Table &t, const char *what) {
    if (!(intfWifiAp_base.flags & t.flag)) return 0;
    int32_t rc = ismCore_putBase_msgMngt(t.hdr.num, 0);
    if (rc != 0) {
        WLOG_ERR(who, "Put %s message management(%u) failed(%d)\n", what, t.hdr.num, rc);
        return rc;
    }
    t.hdr.num = kNumNone;
    clearFlag(who, t);
    return 0;
}

void unregistered(const Who &who, const Table &t, uint16_t num) {
    if (num != t.hdr.num) {
        WLOG_ERR(who, "Message management(%d) unknown\n", num);
        return;
    }
    clearFlag(who, t);
}

}  // namespace

extern "C" {

INTFWIFIAP_API int32_t intfWifiap_initialize(void) {
    int32_t rc = intfWifiAp_addBase();
    if (rc != 0) WLOG_ERR(Who{"intfWifiap_initialize"}, "Add Base failed(%d)\n", rc);
    return rc;
}

INTFWIFIAP_API int32_t intfWifiAp_addBase(void) {
    const Who who{"intfWifiAp_addBase"};
    intfWifiAp_desc &b = intfWifiAp_base;
    if (b.magic != INTFWIFIAP_MAGIC_BASE)
        magicFailed(who, __LINE__, false, "INTFWIFIAP_MAGIC_BASE", INTFWIFIAP_MAGIC_BASE, &b,
                    b.magic);
    if (!checkState(who, INTFWIFIAP_STATE_BASE_WAIT_INIT)) return INTFWIFIAP_ERR_STATE;
    b.flags = 0;
    const Table tables[] = {cmdTable(), ntfyTable()};
    const char *const failed[] = {"Add command message management failed\n",
                                  "Add notification message management failed\n"};
    for (int i = 0; i < 2; ++i) {
        if (tables[i].hdr.count == 0) continue;
        if (!handOver(tables[i])) {
            WLOG_ERR(who, "%s", failed[i]);
            return INTFWIFIAP_ERR_TABLE;
        }
        setFlag(who, tables[i]);
    }
    int32_t rc = evlp_addEvtBase(intfWifiAp_cbEvtBase, &b);
    if (rc != 0) {
        WLOG_ERR(who, "Add event base failed(%d)\n", rc);
        return rc;
    }
    setState(who, INTFWIFIAP_STATE_BASE_INIT);
    return 0;
}

INTFWIFIAP_API int32_t intfWifiAp_delBase(void) {
    const Who who{"intfWifiAp_delBase"};
    if (!checkState(who, INTFWIFIAP_STATE_BASE_INIT)) return INTFWIFIAP_ERR_STATE;
    int32_t rc = giveBack(who, cmdTable(), "command");
    if (rc == 0) rc = giveBack(who, ntfyTable(), "notification");
    if (rc != 0) return rc;
    setState(who, INTFWIFIAP_STATE_BASE_WAIT_INIT);
    return 0;
}

INTFWIFIAP_API void intfWifiAp_cbEvtBase(void *, int32_t event) {
    const Who who{"intfWifiAp_cbEvtBase"};
    if (event != 0) {
        WLOG_ERR(who, "Unknown event(%d)\n", event);
        return;
    }
    if (intfWifiAp_delBase() != 0) WLOG_ERR(who, "Delete Base\n");
}

INTFWIFIAP_API void intfWifiAp_cbEvtMsgError(void *, void *, void *, void *) {}

INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_unreg_msgCmd(uint16_t num) {
    unregistered(Who{"intfWifiAp_cbEvtMsgMngt_unreg_msgCmd"}, cmdTable(), num);
}

INTFWIFIAP_API void intfWifiAp_cbEvtMsgMngt_unreg_msgNtfy(uint16_t num) {
    unregistered(Who{"intfWifiAp_cbEvtMsgMngt_unreg_msgNtfy"}, ntfyTable(), num);
}

INTFWIFIAP_API void intfWifiAp_modDebug(uint32_t level) { intfWifiAp_base.debug = level; }

INTFWIFIAP_API uint16_t intfWifiAp_getCmdIntfNum(void) { return intfWifiAp_base.cmdHdr.num; }

INTFWIFIAP_API uint16_t intfWifiAp_getNtfyIntfNum(void) { return intfWifiAp_base.ntfyHdr.num; }

}  // extern "C"
