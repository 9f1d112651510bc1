/*
 * hostsim: an in-process stand-in for the service-messaging framework.
 *
 * It defines the functions of ism.h as a bus with an event loop, and offers a
 * host (the demo, the tests) the few calls below to drive it. Everything runs
 * on the caller's thread; none of these calls may be made from another.
 *
 * Dispatch: when a message reaches a user, the stand-in calls the dispatch
 * function that user registered (the `param` of ismIntf_regUser_msgMngt, its
 * `ref` coming back as the first argument) with:
 *   kind HS_REQUEST       v1 the message, v2/v3 the user's HS_REQUEST method
 *                         for that index and its reference; names: the sender.
 *                         Hand v1..v3 to intfWifiAp_modSrv_recvMsg_<cmd>.
 *   kind HS_NOTIFICATION  v1 the message, v2/v3 the HS_NOTIFICATION method and
 *                         reference; names: the publisher. Hand them and the
 *                         names to intfWifiAp_modCliNtfyUser_recvMsg_<name>.
 *   kind HS_NEED_UPDATE   v1 NULL, v2/v3 the HS_NEED_UPDATE method and
 *                         reference. Hand them to
 *                         intfWifiAp_modSrv_needUpdate_ntfy<Name>.
 * The dispatch returns what that library call returned; non-zero is counted as
 * a failure. A need-update method is called as method(ref, index).
 */
#ifndef HOSTSIM_H
#define HOSTSIM_H

#include <stddef.h>
#include <stdint.h>

#include "ism.h"

#ifdef __cplusplus
extern "C" {
#endif

enum { HS_REQUEST = 0, HS_NOTIFICATION = 1, HS_NEED_UPDATE = 2 };

typedef int32_t (*hs_dispatch_t)(void *ref, ismUser_t user, uint32_t kind, uint32_t index, void *v1,
                                 void *v2, void *v3, const char *busName, const char *userName);

/* Back to an empty framework: users, tables, event callbacks, queued and
 * pending messages, trace hook and counters go; bodies and contexts still held
 * are released. Called from a callback, it waits for the delivery under way to
 * end, and hs_run then returns. */
void hs_reset(void);

/* A new user; NULL if userName is NULL or (busName, userName) is taken.
 * A NULL busName is the empty bus. The handle lives until hs_reset. */
ismUser_t hs_newUser(const char *busName, const char *userName);

/* The method (and its reference) handed to `user`'s dispatch as v2/v3 for
 * messages of `kind` and `index`. A NULL method removes it. */
void hs_setMethod(ismUser_t user, uint32_t kind, uint32_t index, void *method, uintptr_t ref);

/* The event loop: delivers queued work, including work queued meanwhile, until
 * idle. Returns the number of deliveries made (failed ones included). */
size_t hs_run(void);

/* Calls every callback given to evlp_addEvtBase, with its context. */
void hs_raiseBaseEvent(int32_t event);

/* The framework drops table `num`: calls its unregister callback (word 1 of the
 * block) with `num` and stops carrying its messages. 0, non-zero if unknown. */
int32_t hs_dropTable(uint16_t num);

/* Queues a need-update dispatch to `server` on its registration with table
 * `num` (the notification table). 0, non-zero if the user or table is unknown
 * or the index is out of the table. */
int32_t hs_needUpdate(ismUser_t server, uint16_t num, uint32_t index);

enum { HS_TRACE_SENT = 0, HS_TRACE_RECEIVED = 1 };

/* One body crossing: SENT after the serialize callback (body NULL if it
 * failed), RECEIVED after each receiver's unserialize callback. Every pointer
 * is valid during the hook only. */
typedef struct hs_trace {
    uint32_t stage;      /* HS_TRACE_SENT or HS_TRACE_RECEIVED */
    const char *table;   /* word 0 of the table's block */
    const char *message; /* the row's name in the block */
    uint32_t index;
    uint32_t bodyType; /* 0 request or notification, 1 response */
    const uint8_t *body;
    uint32_t length;
    const char *text; /* the row's log callback text, NULL if none */
    const char *senderBus, *sender;
    const char *receiverBus, *receiver; /* NULL for a notification when SENT */
    uint32_t code;                      /* the body callback's result */
} hs_trace;

void hs_setTrace(void (*fn)(void *ref, const hs_trace *t), void *ref);

typedef struct hs_stats {
    uint32_t messages; /* bodies that reached a receiver's unserialize callback */
    uint64_t bytes;    /* their length */
    uint32_t failures; /* refused sends, failed callbacks, hand-backs, failed dispatches */
} hs_stats;

hs_stats hs_getStats(void);

/* Users in other processes, over a D-Bus bus (builds with WIFIAP_DBUS; in
 * others hs_connectBus returns -EPROTONOSUPPORT).
 *
 * Each user of this process owns the name org.wifiap._<bus>._<user>, its
 * names escaped ('_' plus two hex digits for each byte but letters and
 * digits), at the object /org/wifiap/<bus>/<user> (sd_bus_path_encode). A
 * command is a call of interface org.wifiap.IntfWifiAp1 named as its row, its
 * body as the one argument (ay), its response the reply (ay); a notification a
 * signal of that name from the publisher's object; need-update a call
 * "NeedUpdate" with the notification's row name (s). Users of one process
 * still reach each other in it. */

/* Connects to the bus at `address` (NULL: DBUS_SESSION_BUS_ADDRESS; never the
 * system bus) and claims the names of the users there are. 0, or -errno. */
int hs_connectBus(const char *address);

/* Flushes, closes the connection and forgets what is on its way. */
void hs_disconnectBus(void);

/* What a host's poll needs: the fd (-1 unconnected), its poll events, and the
 * CLOCK_MONOTONIC time in µs by which hs_run must run (UINT64_MAX: none).
 * hs_run then processes what arrived; it never blocks. */
int hs_busFd(void);
int hs_busEvents(void);
int hs_busTimeout(uint64_t *usec);

/* Polls the connection for at most timeoutMs (-1: until its own timeout):
 * >0 when hs_run has work, 0 on timeout, -errno; -ENOTCONN once the bus has
 * gone, its pending requests failed by then. For hosts with no loop. */
int hs_waitBus(int timeoutMs);

/* How long a command waits for its reply (µs, default 5 s). Past it, or on an
 * error reply or the server's end, the request fails: counted in failures,
 * the client's callback not called. */
void hs_setCallTimeout(uint64_t usec);

/* Between two stand-ins a body of at least `bytes` (default 65536) crosses as
 * a sealed memfd passed with the message, out of dbus-daemon's buffers: such a
 * process calls servers on interface org.wifiap.IntfWifiAp1.Peer (body `ay`
 * or `h`), and a server answers those calls alike; plain callers keep `ay`.
 * 0: no memfd, and this process calls as a plain client. */
void hs_setBusFdMin(uint32_t bytes);

/* The user of those names: in this process or, connected, in another (its
 * notifications are subscribed to). NULL if neither. */
ismUser_t hs_findUser(const char *busName, const char *userName);

/* Calls fn for every user on the bus, this process's included. The number of
 * users, or -errno. */
int hs_busUsers(void (*fn)(void *ref, const char *busName, const char *userName), void *ref);

/* A second connection to the bus at `address` (NULL as for hs_connectBus)
 * that sees every body crossing it (BecomeMonitor). hs_monitorRun hands each
 * one, read so far, to fn as an hs_trace of stage HS_TRACE_SENT (receiver
 * NULL for a notification to all, text NULL), while the library's tables are
 * given; it never blocks. hs_monitorBus returns the fd to poll for input, or
 * -errno; hs_monitorRun the number of messages read, or -errno once the
 * connection is lost; hs_monitorStop closes it. */
int hs_monitorBus(const char *address, void (*fn)(void *ref, const hs_trace *t), void *ref);
int hs_monitorRun(void);
void hs_monitorStop(void);

#ifdef __cplusplus
}
#endif

#endif /* HOSTSIM_H */
