/* A host in C: one server and one client over the framework stand-in. The
 * client configures the access point; the server answers and publishes the
 * new encryption to its clients. Exits 0 when both arrived. */
#include <stdio.h>

#include "hostsim.h"
#include "intfWifiAp.h"

static ismUser_t server;
static int answered, notified;

/* The host's half of dispatch: the framework's values go to the library
 * function of the message's row. */
static int32_t dispatch(void *ref, ismUser_t user, uint32_t kind, uint32_t index, void *v1,
                        void *v2, void *v3, const char *bus, const char *name) {
    (void)ref;
    if (kind == HS_REQUEST && index == INTFWIFIAP_CMD_CONFIGURE)
        return intfWifiAp_modSrv_recvMsg_configure(user, v1, v2, v3);
    if (kind == HS_NOTIFICATION && index == INTFWIFIAP_NTFY_ENCRYPTIONSTATUS)
        return intfWifiAp_modCliNtfyUser_recvMsg_encryptionStatus(user, v1, v2, v3, bus, name);
    return -1;
}

/* Server method: publish, then answer on the request's message handle. */
static void onConfigure(ismMsg_t msg, uintptr_t ref, const conf *req) {
    (void)ref;
    intfWifiAp_sendReq_ntfyEncryptionStatus(server, "ui", NULL, req->value2);
    intfWifiAp_sendRes_configure(msg, 0);
}

/* Client: the response callback and the notification method. */
static void onResult(ismMsg_t msg, uintptr_t ref, uint32_t result) {
    (void)msg;
    answered = ref == 7 && result == 0;
}
static void onEncryption(ismMsg_t msg, uintptr_t ref, uint32_t encStatus) {
    (void)msg, (void)ref;
    notified = encStatus == 3;
}

int main(void) {
    const conf req = {36, 3};
    ismUser_t client;

    if (intfWifiap_initialize() != 0) return 1;
    server = hs_newUser("ap", "apd");
    client = hs_newUser("ui", "web");
    intfWifiAp_regUser_msgMngt(server, (void *)dispatch, NULL, INTFWIFIAP_REG_ALL);
    intfWifiAp_regUser_msgMngt(client, (void *)dispatch, NULL, INTFWIFIAP_REG_ALL);
    hs_setMethod(server, HS_REQUEST, INTFWIFIAP_CMD_CONFIGURE, (void *)onConfigure, 0);
    hs_setMethod(client, HS_NOTIFICATION, INTFWIFIAP_NTFY_ENCRYPTIONSTATUS, (void *)onEncryption,
                 0);

    intfWifiAp_sendReq_configure(client, onResult, 7, "ap", "apd", &req);
    hs_run();

    hs_raiseBaseEvent(0); /* the framework stops: the library gives its tables back */
    hs_reset();
    printf("answered %d, notified %d\n", answered, notified);
    return answered && notified ? 0 : 1;
}
