/* A C99 client of the public header: it must compile with -pedantic and link. */
#include <stdio.h>

#include "intfWifiAp.h"

static int failures;

static void expect(int ok, const char *what) {
    if (!ok) {
        printf("FAILED: %s\n", what);
        ++failures;
    }
}

int main(void) {
    int32_t rc;
    expect(intfWifiAp_getCmdIntfNum() == INTFWIFIAP_NUM_NONE, "no command table before start");
    rc = intfWifiap_initialize();
    expect(rc == 0, "initialize");
    expect(intfWifiAp_base.state == INTFWIFIAP_STATE_BASE_INIT, "state after start");
    expect(intfWifiAp_getCmdIntfNum() != INTFWIFIAP_NUM_NONE, "command table held");
    expect(intfWifiAp_regUser_msgMngt((ismUser_t)&rc, NULL, NULL, INTFWIFIAP_REG_ALL) == 0,
           "register");
    intfWifiAp_cbEvtBase(NULL, 0);
    expect(intfWifiAp_base.state == INTFWIFIAP_STATE_BASE_WAIT_INIT, "state after stop");
    printf("%d passed, %d failed\n", 5 - failures, failures);
    return failures != 0;
}
