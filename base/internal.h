// Declarations shared inside the library.
#pragma once

#include "intfWifiAp.h"
#include "ism.h"
#include "log.h"

namespace wifiap {

inline constexpr uint16_t kNumNone = INTFWIFIAP_NUM_NONE;
// The last argument of every send call to the framework.
inline constexpr uint32_t kSendFlags = 18;

inline intfWifiAp_desc &base() { return intfWifiAp_base; }

}  // namespace wifiap
