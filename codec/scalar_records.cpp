// Records of 32-bit words alone.
#include "records.h"

namespace wifiap::codec {

WIFIAP_RECORD(wpsInfoIn, kWpsInfoIn, kWpsInfoInDesc)
WIFIAP_RECORD(wpsInfoOut, kWpsInfoOut, kWpsInfoOutDesc)
WIFIAP_RECORD(conf, kConf, kConfDesc)
WIFIAP_RECORD(rateStats, kRateStats, kRateStatsDesc)

}  // namespace wifiap::codec
