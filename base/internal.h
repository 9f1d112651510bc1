// Declarations shared inside the library.
#pragma once

#include "intfWifiAp.h"
#include "ism.h"
#include "log.h"

namespace wifiap {

inline constexpr uint16_t kNumNone = INTFWIFIAP_NUM_NONE;


}  // namespace wifiap
