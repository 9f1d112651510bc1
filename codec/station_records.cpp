// Station identity: one device, the active list, a probe request.
#include "records.h"

namespace wifiap::codec {

WIFIAP_RECORD(assocDevInfo, kAssocDevInfo, kAssocDevInfoDesc)
WIFIAP_RECORD(assocDevList, kAssocDevList, kAssocDevListDesc)
WIFIAP_RECORD(probeRequest, kProbeRequest, kProbeRequestDesc)

}  // namespace wifiap::codec
