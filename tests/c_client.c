/* A C99 client of the public header: it must compile with -pedantic and link. */
#include <stddef.h>
#include <stdio.h>

#include "intfWifiAp.h"

static int failures;

static void expect(int ok, const char *what) {
    if (!ok) {
        printf("FAILED: %s\n", what);
        ++failures;
    }
}

/* 64-bit fields align as the target's C ABI puts them in a struct. */
struct probe {
    char c;
    uint64_t v;
};
#define ALIGN64 offsetof(struct probe, v)
#define UP(n) (((n) + ALIGN64 - 1) / ALIGN64 * ALIGN64)
#define STATS UP(148 + 2512)
#define STATUS (UP(146) + STATS)
#define FULL (UP(169) + STATUS)

/* The records' layout is the ABI that servers and clients are built against. */
static const struct {
    const char *what;
    size_t got, want;
} layout[] = {
    {"assocDevInfo", sizeof(assocDevInfo), 169},
    {"assocDevInfo.text", offsetof(assocDevInfo, text), 19},
    {"assocDevList", sizeof(assocDevList), 5568},
    {"assocDevList.value", offsetof(assocDevList, value), 5492},
    {"probeRequest.value", offsetof(probeRequest, value), 148},
    {"perRateStats", sizeof(perRateStats), 2512},
    {"assocDevStats.perRate", offsetof(assocDevStats, perRate), 148},
    {"assocDevStats", sizeof(assocDevStats), STATS},
    {"assocDevStatus.value3", offsetof(assocDevStatus, value3), 20},
    {"assocDevStatus.value14", offsetof(assocDevStatus, value14), 112},
    {"assocDevStatus.devStats", offsetof(assocDevStatus, devStats), UP(146)},
    {"assocDevStatus", sizeof(assocDevStatus), STATUS},
    {"assocDevInfoFull.devStatus", offsetof(assocDevInfoFull, devStatus), UP(169)},
    {"assocDevInfoFull", sizeof(assocDevInfoFull), FULL},
    {"assocDevStatList.assocDevs", offsetof(assocDevStatList, assocDevs), 40},
    {"assocDevStatList", sizeof(assocDevStatList), UP(40 + 100 * FULL)},
    {"accountingParams", sizeof(accountingParams), 188},
    {"accountingResult.value2", offsetof(accountingResult, value2), 68},
    {"wpsStatusStruct", sizeof(wpsStatusStruct), 24},
};

int main(void) {
    int32_t rc;
    size_t i;
    for (i = 0; i < sizeof layout / sizeof layout[0]; ++i)
        if (layout[i].got != layout[i].want) {
            printf("FAILED: %s is %u, not %u\n", layout[i].what, (unsigned)layout[i].got,
                   (unsigned)layout[i].want);
            ++failures;
        }
    expect(intfWifiAp_getCmdIntfNum() == INTFWIFIAP_NUM_NONE, "no command table before start");
    rc = intfWifiap_initialize();
    expect(rc == 0, "initialize");
    expect(intfWifiAp_base.state == INTFWIFIAP_STATE_BASE_INIT, "state after start");
    expect(intfWifiAp_getCmdIntfNum() != INTFWIFIAP_NUM_NONE, "command table held");
    expect(intfWifiAp_regUser_msgMngt((ismUser_t)&rc, NULL, NULL, INTFWIFIAP_REG_ALL) == 0,
           "register");
    intfWifiAp_cbEvtBase(NULL, 0);
    expect(intfWifiAp_base.state == INTFWIFIAP_STATE_BASE_WAIT_INIT, "state after stop");
    printf("%d failed\n", failures);
    return failures != 0;
}
