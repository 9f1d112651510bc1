// The story: a client creates and runs the access point, stations come and
// go, a second client catches up; every command and notification crosses.
#pragma once

#include <stdint.h>

#include <functional>

#include "demo.h"

namespace wifiap::demo {

// The whole story in this process: the server and both clients.
void scenario(Demo &d, uint32_t stations);

// One client's part, the server being another process on the bus: "web"
// sets the access point up, calls `between` (where "cli" plays), and stops
// it; "cli" catches up and reads the statistics. False for another name.
bool clientPart(Demo &d, const char *client, const std::function<void()> &between);

}  // namespace wifiap::demo
