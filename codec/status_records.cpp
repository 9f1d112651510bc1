// Station status and the full station list.
#include "records.h"

namespace wifiap::codec {

WIFIAP_RECORD(assocDevStatus, kAssocDevStatus, kAssocDevStatusDesc)
WIFIAP_RECORD(assocDevInfoFull, kAssocDevInfoFull, kAssocDevInfoFullDesc)
WIFIAP_RECORD(assocDevStatList, kAssocDevStatList, kAssocDevStatListDesc)

}  // namespace wifiap::codec
