// The story: a client creates and runs the access point, stations come and
// go, a second client catches up; every command and notification crosses.
#pragma once

#include <stdint.h>

#include "demo.h"

namespace wifiap::demo {

void scenario(Demo &d, uint32_t stations);

}  // namespace wifiap::demo
