// Rate and station statistics.
#include "records.h"

namespace wifiap::codec {

WIFIAP_RECORD(perRateStats, kPerRateStats, kPerRateStatsDesc)
WIFIAP_RECORD(assocDevStats, kAssocDevStats, kAssocDevStatsDesc)

}  // namespace wifiap::codec
