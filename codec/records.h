// The field tables of every record and bare payload, each in one block: its
// fields in tag order, with their names, then its descriptor. A table is the
// single source of what a record looks like on the wire and of what its
// fields are called wherever they are printed.
#pragma once

#include "engine.h"

namespace wifiap::codec {

inline constexpr Field kWpsInfoInFields[] = {
    WF_INT(::wpsInfoIn, value),
};
inline constexpr Desc kWpsInfoInDesc = makeDesc("wpsInfoIn", kWpsInfoInFields);

inline constexpr Field kWpsInfoOutFields[] = {
    WF_INT(::wpsInfoOut, value),
};
inline constexpr Desc kWpsInfoOutDesc = makeDesc("wpsInfoOut", kWpsInfoOutFields);

inline constexpr Field kConfFields[] = {
    WF_INT(::conf, value1),
    WF_INT(::conf, value2),
};
inline constexpr Desc kConfDesc = makeDesc("conf", kConfFields);

inline constexpr Field kRateStatsFields[] = {
    WF_INT(::rateStats, value1),
    WF_INT(::rateStats, value2),
};
inline constexpr Desc kRateStatsDesc = makeDesc("rateStats", kRateStatsFields);

inline constexpr Field kAssocDevInfoFields[] = {
    WF_TEXT(::assocDevInfo, macAddress),
    WF_INT(::assocDevInfo, value),
    WF_TEXT(::assocDevInfo, text),
};
inline constexpr Desc kAssocDevInfoDesc = makeDesc("assocDevInfo", kAssocDevInfoFields);

inline constexpr Field kAssocDevListFields[] = {
    WF_INT(::assocDevList, assocDevNum),
    WF_LIST(::assocDevList, assocDevs, assocDevNum, kAssocDevInfoDesc),
    WF_TEXT(::assocDevList, text1),
    WF_INT(::assocDevList, value),
    WF_TEXT(::assocDevList, text2),
};
inline constexpr Desc kAssocDevListDesc = makeDesc("assocDevList", kAssocDevListFields);

inline constexpr Field kProbeRequestFields[] = {
    WF_TEXT(::probeRequest, macAddress),
    WF_TEXT(::probeRequest, text),
    WF_INT(::probeRequest, value),
};
inline constexpr Desc kProbeRequestDesc = makeDesc("probeRequest", kProbeRequestFields);

inline constexpr Field kPerRateStatsFields[] = {
    WF_INT(::perRateStats, value1),
    WF_INT(::perRateStats, rateStatsNum),
    WF_INT(::perRateStats, value2),
    WF_INT(::perRateStats, value3),
    WF_LIST(::perRateStats, rates, rateStatsNum, kRateStatsDesc),
};
inline constexpr Desc kPerRateStatsDesc = makeDesc("perRateStats", kPerRateStatsFields);

inline constexpr Field kAssocDevStatsFields[] = {
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
inline constexpr Desc kAssocDevStatsDesc = makeDesc("assocDevStats", kAssocDevStatsFields);

inline constexpr Field kWpsStatusStructFields[] = {
    WF_INT(::wpsStatusStruct, value),
    WF_TEXT(::wpsStatusStruct, macAddress),
};
inline constexpr Desc kWpsStatusStructDesc = makeDesc("wpsStatusStruct", kWpsStatusStructFields);

inline constexpr Field kAccountingParamsFields[] = {
    WF_INT(::accountingParams, value1),
    WF_INT(::accountingParams, value2),
    WF_TEXT(::accountingParams, macAddress),
    WF_TEXT(::accountingParams, text1),
    WF_TEXT(::accountingParams, text2),
    WF_TEXT(::accountingParams, text3),
    WF_TEXT(::accountingParams, text4),
};
inline constexpr Desc kAccountingParamsDesc = makeDesc("accountingParams", kAccountingParamsFields);

inline constexpr Field kAccountingResultFields[] = {
    WF_INT(::accountingResult, value1),
    WF_TEXT(::accountingResult, text),
    WF_INT(::accountingResult, value2),
};
inline constexpr Desc kAccountingResultDesc = makeDesc("accountingResult", kAccountingResultFields);

inline constexpr Field kAssocDevStatusFields[] = {
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
inline constexpr Desc kAssocDevStatusDesc = makeDesc("assocDevStatus", kAssocDevStatusFields);

inline constexpr Field kAssocDevInfoFullFields[] = {
    WF_NESTED(::assocDevInfoFull, devInfo, kAssocDevInfoDesc),
    WF_NESTED(::assocDevInfoFull, devStatus, kAssocDevStatusDesc),
};
inline constexpr Desc kAssocDevInfoFullDesc = makeDesc("assocDevInfoFull", kAssocDevInfoFullFields);

inline constexpr Field kAssocDevStatListFields[] = {
    WF_INT(::assocDevStatList, assocDevNum),
    WF_TEXT(::assocDevStatList, text),
    WF_LIST(::assocDevStatList, assocDevs, assocDevNum, kAssocDevInfoFullDesc),
};
inline constexpr Desc kAssocDevStatListDesc = makeDesc("assocDevStatList", kAssocDevStatListFields);

// Bare payloads: their fields are numbered from 3 like a record's, and lie in
// place in their message contexts (codec.h).
inline constexpr Field kCreateReqFields[] = {
    WF_TEXT(CreateReq, text1),
    WF_TEXT(CreateReq, text2),
};
inline constexpr Desc kCreateReqDesc = makeBare(kCreateReqFields);

inline constexpr Field kCreateResFields[] = {
    WF_TEXT(CreateRes, text1),
    WF_TEXT(CreateRes, text2),
    WF_INT(CreateRes, result),
};
inline constexpr Desc kCreateResDesc = makeBare(kCreateResFields);

inline constexpr Field kBridgeAndIpsFields[] = {
    WF_TEXT(BridgeAndIps, bridge),
    WF_TEXT(BridgeAndIps, ips),
};
inline constexpr Desc kBridgeAndIpsDesc = makeBare(kBridgeAndIpsFields);

inline constexpr Field kIpsFields[] = {
    WF_TEXT(Ips, ips),
};
inline constexpr Desc kIpsDesc = makeBare(kIpsFields);

inline constexpr Field kSsidTextFields[] = {
    WF_TEXT(SsidText, text),
};
inline constexpr Desc kSsidTextDesc = makeBare(kSsidTextFields);

inline constexpr Field kResultFields[] = {
    WF_INT(Result, result),
};
inline constexpr Desc kResultDesc = makeBare(kResultFields);

inline constexpr Field kEncStatusFields[] = {
    WF_INT(EncStatus, encStatus),
};
inline constexpr Desc kEncStatusDesc = makeBare(kEncStatusFields);

// A body of header elements alone.
inline constexpr Desc kNoneDesc = {"", nullptr, 0, 3, true};

// The body header: tag 0 the magic, tag 1 the version.
inline constexpr Field kHeaderFields[] = {WF_INT(Header, magic), WF_INT(Header, version)};
inline constexpr Desc kHeaderDesc = makeBare(kHeaderFields, 0);

}  // namespace wifiap::codec
