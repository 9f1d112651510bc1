// WPS status and accounting.
#include "records.h"

namespace wifiap::codec {

WIFIAP_RECORD(wpsStatusStruct, kWpsStatusStruct, kWpsStatusStructDesc)
WIFIAP_RECORD(accountingParams, kAccountingParams, kAccountingParamsDesc)
WIFIAP_RECORD(accountingResult, kAccountingResult, kAccountingResultDesc)

}  // namespace wifiap::codec
