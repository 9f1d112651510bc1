// Contexts to bodies and back: the only form in which a message crosses from
// its sender to its receiver. Each crossing is shown to the host's trace.
#ifndef HOSTSIM_BODY_H
#define HOSTSIM_BODY_H

#include <memory>

#include "model.h"

namespace hostsim {

// Serialized bytes; shared by the receivers of one notification and freed
// after the last one.
struct Body {
    std::shared_ptr<const uint8_t> bytes;
    uint32_t length = 0;
    explicit operator bool() const { return bool(bytes); }
};

// The sender's context becomes a body, and ends in the free callback either
// way. An empty body (counted as a failure) if the serialize callback refused.
Body pack(const Table &t, uint32_t index, uint32_t bodyType, void *ctx, const User *from,
          const User *to);

// The receiver's own context, rebuilt from the body alone; null (counted as a
// failure) if the unserialize callback refused, its code then in *refusal.
void *unpack(const Table &t, uint32_t index, uint32_t bodyType, const Body &body, const User *from,
             const User *to, uint32_t *refusal = nullptr);

}  // namespace hostsim

#endif  // HOSTSIM_BODY_H
