// The access point's server over the stand-in: commands come in through the
// library's dispatch, answers and notifications go out through its sends.
#pragma once

#include <stdint.h>

#include <functional>

#include "access_point.h"
#include "hostsim.h"
#include "loader.h"

namespace wifiap::host {

struct Server {
    // Registers user bus/name and its command methods, which find this
    // server through their reference: it must not move. `user` is NULL if
    // the stand-in refused the name.
    Server(Api &api, const char *bus, const char *name,
           std::function<void(const char *)> problem);
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    // Publishes to every client what the access point has to tell.
    void publish();
    // From now on `to`'s need-update of notification `index` is answered
    // with the current state; NULL `to` answers every client.
    void answerNeedUpdate(uint32_t index, const char *to);

    Api &api;
    // Called with a command's row before (false) and after (true) the
    // library hands it to its method: what happens on the air meanwhile.
    std::function<void(uint32_t command, bool after)> air;
    std::function<void(const char *)> problem;
    ismUser_t user;
    tools::AccessPoint ap;
    const char *updateTo = nullptr;
};

}  // namespace wifiap::host
