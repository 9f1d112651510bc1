// The access point's server over the stand-in: commands come in through the
// library's dispatch, answers and notifications go out through its sends.
#pragma once

#include <stdint.h>

#include "access_point.h"
#include "demo.h"

namespace wifiap::demo {

struct Server {
    // Registers user ap/apd and its command methods, which find this server
    // through their reference: it must not move.
    explicit Server(Demo &d);
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    // Publishes to every client what the access point has to tell.
    void publish();
    // From now on `to`'s need-update of notification `index` is answered
    // with the current state.
    void answerNeedUpdate(uint32_t index, const char *to);

    Demo &demo;
    ismUser_t user;
    tools::AccessPoint ap;
    const char *updateTo = nullptr;
};

}  // namespace wifiap::demo
