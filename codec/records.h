// The field tables of every record and bare payload, in field (tag) order.
// A table is the single source of what a record looks like on the wire.
#pragma once

#include "engine.h"

namespace wifiap::codec {

namespace fields {
using namespace ::wifiap::codec;

inline constexpr Field wpsInfoIn[] = {WF_INT(::wpsInfoIn, value)};
inline constexpr Field wpsInfoOut[] = {WF_INT(::wpsInfoOut, value)};
inline constexpr Field conf[] = {WF_INT(::conf, value1), WF_INT(::conf, value2)};
inline constexpr Field rateStats[] = {WF_INT(::rateStats, value1), WF_INT(::rateStats, value2)};

inline constexpr Field assocDevInfo[] = {
    WF_TEXT(::assocDevInfo, macAddress),
    WF_INT(::assocDevInfo, value),
    WF_TEXT(::assocDevInfo, text),
};
}  // namespace fields

inline constexpr Desc kWpsInfoInDesc = makeDesc("wpsInfoIn", fields::wpsInfoIn);
inline constexpr Desc kWpsInfoOutDesc = makeDesc("wpsInfoOut", fields::wpsInfoOut);
inline constexpr Desc kConfDesc = makeDesc("conf", fields::conf);
inline constexpr Desc kRateStatsDesc = makeDesc("rateStats", fields::rateStats);
inline constexpr Desc kAssocDevInfoDesc = makeDesc("assocDevInfo", fields::assocDevInfo);

namespace fields {
inline constexpr Field assocDevList[] = {
    WF_INT(::assocDevList, assocDevNum),
    WF_LIST(::assocDevList, assocDevs, assocDevNum, kAssocDevInfoDesc),
    WF_TEXT(::assocDevList, text1),
    WF_INT(::assocDevList, value),
    WF_TEXT(::assocDevList, text2),
};
inline constexpr Field probeRequest[] = {
    WF_TEXT(::probeRequest, macAddress),
    WF_TEXT(::probeRequest, text),
    WF_INT(::probeRequest, value),
};
inline constexpr Field perRateStats[] = {
    WF_INT(::perRateStats, value1),
    WF_INT(::perRateStats, rateStatsNum),
    WF_INT(::perRateStats, value2),
    WF_INT(::perRateStats, value3),
    WF_LIST(::perRateStats, rates, rateStatsNum, kRateStatsDesc),
};
}  // namespace fields

inline constexpr Desc kAssocDevListDesc = makeDesc("assocDevList", fields::assocDevList);
inline constexpr Desc kProbeRequestDesc = makeDesc("probeRequest", fields::probeRequest);
inline constexpr Desc kPerRateStatsDesc = makeDesc("perRateStats", fields::perRateStats);

namespace fields {
inline constexpr Field assocDevStats[] = {
    WF_INT(::assocDevStats, value1),
    WF_INT(::assocDevStats, value2),
    WF_INT(::assocDevStats, value3),
    WF_INT(::assocDevStats, value4),
    WF_INT(::assocDevStats, value5),
    WF_INT(::assocDevStats, value6),
    WF_INT(::assocDevStats, value7),
    WF_INT(::assocDevStats, value8),
    WF_INT(::assocDevStats, value9),
    WF_TEXT(::assocDevStats, text1),
    WF_INT(::assocDevStats, value10),
    WF_INT(::assocDevStats, value11),
    WF_INT(::assocDevStats, value12),
    WF_TEXT(::assocDevStats, text2),
    WF_INT(::assocDevStats, value13),
    WF_INT(::assocDevStats, value14),
    WF_TEXT(::assocDevStats, text3),
    WF_INT(::assocDevStats, value15),
    WF_INT(::assocDevStats, value16),
    WF_NESTED(::assocDevStats, perRate, kPerRateStatsDesc),
};
inline constexpr Field wpsStatusStruct[] = {
    WF_INT(::wpsStatusStruct, value),
    WF_TEXT(::wpsStatusStruct, macAddress),
};
inline constexpr Field accountingParams[] = {
    WF_INT(::accountingParams, value1),
    WF_INT(::accountingParams, value2),
    WF_TEXT(::accountingParams, macAddress),
    WF_TEXT(::accountingParams, text1),
    WF_TEXT(::accountingParams, text2),
    WF_TEXT(::accountingParams, text3),
    WF_TEXT(::accountingParams, text4),
};
inline constexpr Field accountingResult[] = {
    WF_INT(::accountingResult, value1),
    WF_TEXT(::accountingResult, text),
    WF_INT(::accountingResult, value2),
};
}  // namespace fields

inline constexpr Desc kAssocDevStatsDesc = makeDesc("assocDevStats", fields::assocDevStats);
inline constexpr Desc kWpsStatusStructDesc = makeDesc("wpsStatusStruct", fields::wpsStatusStruct);
inline constexpr Desc kAccountingParamsDesc =
    makeDesc("accountingParams", fields::accountingParams);
inline constexpr Desc kAccountingResultDesc =
    makeDesc("accountingResult", fields::accountingResult);

namespace fields {
inline constexpr Field assocDevStatus[] = {
    WF_TEXT(::assocDevStatus, macAddress),
    WF_INT(::assocDevStatus, value1),
    WF_INT(::assocDevStatus, value2),
    WF_INT(::assocDevStatus, value3),
    WF_INT(::assocDevStatus, value4),
    WF_INT(::assocDevStatus, value5),
    WF_INT(::assocDevStatus, value6),
    WF_INT(::assocDevStatus, value7),
    WF_INT(::assocDevStatus, value8),
    WF_INT(::assocDevStatus, value9),
    WF_TEXT(::assocDevStatus, text1),
    WF_INT(::assocDevStatus, value10),
    WF_INT(::assocDevStatus, value11),
    WF_INT(::assocDevStatus, value12),
    WF_INT(::assocDevStatus, value13),
    WF_TEXT(::assocDevStatus, text2),
    WF_TEXT(::assocDevStatus, text3),
    WF_INT(::assocDevStatus, value14),
    WF_TEXT(::assocDevStatus, text4),
    WF_TEXT(::assocDevStatus, text5),
    WF_NESTED(::assocDevStatus, devStats, kAssocDevStatsDesc),
};
}  // namespace fields

inline constexpr Desc kAssocDevStatusDesc = makeDesc("assocDevStatus", fields::assocDevStatus);

namespace fields {
inline constexpr Field assocDevInfoFull[] = {
    WF_NESTED(::assocDevInfoFull, devInfo, kAssocDevInfoDesc),
    WF_NESTED(::assocDevInfoFull, devStatus, kAssocDevStatusDesc),
};
}  // namespace fields

inline constexpr Desc kAssocDevInfoFullDesc =
    makeDesc("assocDevInfoFull", fields::assocDevInfoFull);

namespace fields {
inline constexpr Field assocDevStatList[] = {
    WF_INT(::assocDevStatList, assocDevNum),
    WF_TEXT(::assocDevStatList, text),
    WF_LIST(::assocDevStatList, assocDevs, assocDevNum, kAssocDevInfoFullDesc),
};

// Bare payloads: their fields are numbered from 3 like a record's.
inline constexpr Field createReq[] = {WF_TEXT(CreateReq, text1), WF_TEXT(CreateReq, text2)};
inline constexpr Field createRes[] = {
    WF_TEXT(CreateRes, text1),
    WF_TEXT(CreateRes, text2),
    WF_INT(CreateRes, result),
};
inline constexpr Field bridgeAndIps[] = {WF_TEXT(BridgeAndIps, bridge), WF_TEXT(BridgeAndIps, ips)};
inline constexpr Field ips[] = {WF_TEXT(Ips, ips)};
inline constexpr Field ssidText[] = {WF_TEXT(SsidText, text)};
inline constexpr Field result[] = {WF_INT(Result, result)};
inline constexpr Field encStatus[] = {WF_INT(EncStatus, encStatus)};
inline constexpr Field header[] = {WF_INT(Header, magic), WF_INT(Header, version)};
}  // namespace fields

inline constexpr Desc kAssocDevStatListDesc =
    makeDesc("assocDevStatList", fields::assocDevStatList);

inline constexpr Desc kCreateReqDesc = makeDesc("", fields::createReq);
inline constexpr Desc kCreateResDesc = makeDesc("", fields::createRes);
inline constexpr Desc kBridgeAndIpsDesc = makeDesc("", fields::bridgeAndIps);
inline constexpr Desc kIpsDesc = makeDesc("", fields::ips);
inline constexpr Desc kSsidTextDesc = makeDesc("", fields::ssidText);
inline constexpr Desc kResultDesc = makeDesc("", fields::result);
inline constexpr Desc kEncStatusDesc = makeDesc("", fields::encStatus);
// The body header: tag 0 the magic, tag 1 the version.
inline constexpr Desc kHeaderDesc = makeDesc("", fields::header, 0);

}  // namespace wifiap::codec
