// The in-process transport: every user lives in this process, so carrying a
// parcel is queueing it until the event loop takes it.
#include <deque>

#include "transport.h"

namespace hostsim {
namespace {

class InProcess final : public Transport {
public:
    bool carry(Parcel p) override {
        queue_.push_back(std::move(p));
        return true;
    }
    bool receiveNext() override {
        if (queue_.empty()) return false;
        Parcel p = std::move(queue_.front());  // what arrive() queues goes behind it
        queue_.pop_front();
        arrive(p);
        return true;
    }
    void clear() override { queue_.clear(); }

private:
    std::deque<Parcel> queue_;
};

}  // namespace

// Never destroyed, like the world whose users point at it.
Transport &inProcess() {
    static Transport *t = new InProcess;
    return *t;
}

std::span<Transport *const> transports() {
#ifdef WIFIAP_DBUS
    static Transport *const all[] = {&inProcess(), &dbus()};
#else
    static Transport *const all[] = {&inProcess()};
#endif
    return all;
}

}  // namespace hostsim
