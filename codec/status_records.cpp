// Station status and the full station list.
#include "records.h"

namespace wifiap::codec {

WIFIAP_RECORD(assocDevStatus, kAssocDevStatus, kAssocDevStatusDesc)
WIFIAP_RECORD(assocDevInfoFull, kAssocDevInfoFull, kAssocDevInfoFullDesc)
// The station statistics list: its operations compiled, for the thousands of
// elements a message of it carries.
WIFIAP_RECORD(assocDevStatList, kAssocDevStatList, kAssocDevStatListDesc, true)

}  // namespace wifiap::codec
