// The host's side of dispatch, for the programs that run on the stand-in: the
// framework's values go to the library function of the message's row; a
// need-update of a row without one (DisassocEvent) goes to the server's method.
#pragma once

#include "hostsim.h"
#include "messages.h"

namespace mt {

inline int32_t dispatch(void *, ismUser_t user, uint32_t kind, uint32_t index, void *v1,
                        void *v2, void *v3, const char *bus, const char *name) {
    for (const Message &m : messages()) {
        if (m.index != index || m.ntfy != (kind != HS_REQUEST)) continue;
        if (kind == HS_REQUEST) return m.modSrv(user, v1, v2, v3);
        if (kind == HS_NOTIFICATION) return m.modCli(user, v1, v2, v3, bus, name);
        if (m.needUpdate) return m.needUpdate(user, v1, v2, v3);
        reinterpret_cast<void (*)(uintptr_t, uint32_t)>(v2)(uintptr_t(v3), index);
        return 0;
    }
    return -1;
}

}  // namespace mt
