// The seam between the core and what carries bodies between users. A body
// crosses it, never a context: the sender's side packs its context and frees
// it, the receiver's side unpacks a fresh one. A transport takes parcels from
// the core (carry) and hands those that reach this process back to it
// (arrive), from the event loop only.
//
// A transport to users of other processes lists itself in transports(), adds
// the users it reaches (with their registrations) with `via` set to itself,
// and for each parcel it receives builds the receiver's message (newMsg, and
// twoWay as the call says) or finds the request it answers, then calls
// arrive(). In-process, sender and receiver share one message record, and the
// lifetime in delivery.cpp counts on it: where an end is in another process,
// its part of the record has to end when its body leaves.
#ifndef HOSTSIM_TRANSPORT_H
#define HOSTSIM_TRANSPORT_H

#include <span>

#include "body.h"

namespace hostsim {

struct Parcel {
    enum class Cargo {
        Message,     // a request or notification (its kind says which) to its receiver
        Response,    // the answer to a request, back to its sender
        NeedUpdate,  // a server asked to publish a notification; no body
    } cargo;
    Msg *msg;  // null for need-update
    // Where it goes and what row it is, whatever the cargo.
    User *to;
    Table *table;
    uint32_t index;
    Body body;  // empty for need-update
};

class Transport {
public:
    virtual ~Transport() = default;
    // Takes the parcel toward p.to; false if it cannot.
    virtual bool carry(Parcel p) = 0;
    // Hands the next parcel that has arrived to arrive(); false when none waits.
    virtual bool receiveNext() = 0;
    // Drops every parcel in transit.
    virtual void clear() = 0;
    // A user of this process was created.
    virtual void added(User &) {}
    // A user not found in this process, reached through this transport; null if none.
    virtual User *reach(const char * /*bus*/, const char * /*name*/) { return nullptr; }
    // A message record goes: whatever the transport still holds for it ends.
    virtual void released(Msg &) {}
};

// The transport of users in this process: a queue, emptied by the event loop.
Transport &inProcess();
#ifdef WIFIAP_DBUS
// The transport to users of other processes on a D-Bus bus (dbus.cpp).
Transport &dbus();
#endif
// Every transport of this process, in the order the event loop asks them.
std::span<Transport *const> transports();

// The user of that name, in this process or reached through a transport.
User *lookUp(const char *bus, const char *name);

// A parcel has reached its receiver's process: the core delivers it.
void arrive(Parcel &p);

}  // namespace hostsim

#endif  // HOSTSIM_TRANSPORT_H
