// The core's work on messages: sending, answering, delivering, and the event
// loop. delivery.cpp holds the whole lifetime of a message.
#ifndef HOSTSIM_DELIVERY_H
#define HOSTSIM_DELIVERY_H

#include <stddef.h>

#include "model.h"

namespace hostsim {

// The sender's side of a request, kept for its response.
struct Caller {
    ismResHandler_t resHandler;  // null: one-way
    void *callback;
    uintptr_t cbRef;
};

// Returns the request's sequence number, 0 if it failed.
uint32_t sendRequest(Table &t, uint32_t index, void *ctx, const Caller &c, User *from, User *to);
// To every user registered with the table but the sender, or only to those
// named `onlyUser` (at least one) when it is not null. 0, or 1 if it failed.
int32_t publish(Table &t, uint32_t index, void *ctx, User *from, const char *onlyUser);
bool owesAnswer(const Msg &m);
// The receiver's reply to a request: an answer (its response's context), or
// the request's own context handed back when nobody handles it. 0, or 1 if
// refused.
int32_t answer(Msg &m, void *ctx);
int32_t handBack(Msg &m, void *ctx);
void askNeedUpdate(User &server, Table &t, uint32_t index);
// Its sender is gone: nothing more is owed, and an answer is refused.
void abandon(Msg &m);

// hs_run and hs_reset.
size_t run();
void reset();

}  // namespace hostsim

#endif  // HOSTSIM_DELIVERY_H
