// Field names, one table per record in the order of its descriptor, and the
// messages of both tables with the payloads their bodies carry.
#include <string.h>
#include <strings.h>

#include "decode.h"

namespace wifiap::tools {

namespace {

namespace c = wifiap::codec;

const char *const kWpsInfo[] = {"value"};
const char *const kPair[] = {"value1", "value2"};
const char *const kAssocDevInfo[] = {"macAddress", "value", "text"};
const char *const kAssocDevList[] = {"assocDevNum", "assocDevs", "text1", "value", "text2"};
const char *const kProbeRequest[] = {"macAddress", "text", "value"};
const char *const kPerRateStats[] = {"value1", "rateStatsNum", "value2", "value3", "rates"};
const char *const kAssocDevStats[] = {
    "value1",  "value2",  "value3", "value4",  "value5",  "value6",  "value7",
    "value8",  "value9",  "text1",  "value10", "value11", "value12", "text2",
    "value13", "value14", "text3",  "value15", "value16", "perRate"};
const char *const kWpsStatusStruct[] = {"value", "macAddress"};
const char *const kAccountingParams[] = {"value1", "value2", "macAddress", "text1",
                                         "text2",  "text3",  "text4"};
const char *const kAccountingResult[] = {"value1", "text", "value2"};
const char *const kAssocDevStatus[] = {
    "macAddress", "value1",  "value2",  "value3",  "value4", "value5", "value6",
    "value7",     "value8",  "value9",  "text1",   "value10", "value11", "value12",
    "value13",    "text2",   "text3",   "value14", "text4",  "text5",  "devStats"};
const char *const kAssocDevInfoFull[] = {"devInfo", "devStatus"};
const char *const kAssocDevStatList[] = {"assocDevNum", "text", "assocDevs"};
const char *const kTexts[] = {"text1", "text2"};
const char *const kCreateRes[] = {"text1", "text2", "result"};
const char *const kBridgeAndIps[] = {"bridge", "ips"};
const char *const kIps[] = {"ips"};
const char *const kText[] = {"text"};
const char *const kResult[] = {"result"};
const char *const kEncStatus[] = {"encStatus"};
const char *const kHeader[] = {"magic", "version"};

const Names kNames[] = {
    {&c::kWpsInfoInDesc, "wpsInfoIn", kWpsInfo},
    {&c::kWpsInfoOutDesc, "wpsInfoOut", kWpsInfo},
    {&c::kConfDesc, "conf", kPair},
    {&c::kRateStatsDesc, "rateStats", kPair},
    {&c::kAssocDevInfoDesc, "assocDevInfo", kAssocDevInfo},
    {&c::kAssocDevListDesc, "assocDevList", kAssocDevList},
    {&c::kProbeRequestDesc, "probeRequest", kProbeRequest},
    {&c::kPerRateStatsDesc, "perRateStats", kPerRateStats},
    {&c::kAssocDevStatsDesc, "assocDevStats", kAssocDevStats},
    {&c::kWpsStatusStructDesc, "wpsStatusStruct", kWpsStatusStruct},
    {&c::kAccountingParamsDesc, "accountingParams", kAccountingParams},
    {&c::kAccountingResultDesc, "accountingResult", kAccountingResult},
    {&c::kAssocDevStatusDesc, "assocDevStatus", kAssocDevStatus},
    {&c::kAssocDevInfoFullDesc, "assocDevInfoFull", kAssocDevInfoFull},
    {&c::kAssocDevStatListDesc, "assocDevStatList", kAssocDevStatList},
    {&c::kCreateReqDesc, "", kTexts},
    {&c::kCreateResDesc, "", kCreateRes},
    {&c::kBridgeAndIpsDesc, "", kBridgeAndIps},
    {&c::kIpsDesc, "", kIps},
    {&c::kSsidTextDesc, "", kText},
    {&c::kResultDesc, "", kResult},
    {&c::kEncStatusDesc, "", kEncStatus},
    {&c::kHeaderDesc, "", kHeader},
};

enum N {
    WpsIn, WpsOut, Conf, RateStats, DevInfo, DevList, Probe, PerRate, DevStats, WpsStatus,
    AcctIn, AcctOut, DevStatus, DevInfoFull, StatList, CreateReq, CreateRes, Bridge, Ips, Ssid,
    Result, EncStatus, None
};
constexpr const Names *n(N i) { return i == None ? nullptr : &kNames[i]; }

constexpr Message cmd(const char *name, uint32_t index, uint32_t magic, uint16_t version,
                      bool twoWay, N req, N res) {
    return Message{name, false, index, magic, version, twoWay, n(req), n(res)};
}
constexpr Message ntfy(const char *name, uint32_t index, uint32_t magic, uint16_t version,
                       N payload) {
    return Message{name, true, index, magic, version, false, n(payload), nullptr};
}

#define CMD(N) INTFWIFIAP_CMD_##N, INTFWIFIAP_MAGIC_MSGCMD_##N
#define NTFY(N) INTFWIFIAP_NTFY_##N, INTFWIFIAP_MAGIC_MSGNTFY_##N

const Message kMessages[] = {
    cmd("Configure", CMD(CONFIGURE), 0, true, Conf, Result),
    cmd("SetBridgeAndIps", CMD(SETBRIDGEANDIPS), 0, false, Bridge, None),
    cmd("SetIps", CMD(SETIPS), 0, false, Ips, None),
    cmd("Create", CMD(CREATE), 1, true, CreateReq, CreateRes),
    cmd("Ssidinfo", CMD(SSIDINFO), 0, true, Ssid, Result),
    cmd("Stop", CMD(STOP), 0, true, None, Result),
    cmd("StartWPS", CMD(STARTWPS), 0, true, WpsIn, WpsOut),
    cmd("StartPhysicalWPS", CMD(STARTPHYSICALWPS), 0, true, WpsIn, WpsOut),
    cmd("ToogleWps", CMD(TOOGLEWPS), 0, false, None, None),
    cmd("StopWps", CMD(STOPWPS), 0, false, None, None),
    cmd("GeneratePinCodeWPS", CMD(GENERATEPINCODEWPS), 0, true, None, Result),
    cmd("ToogleWifi", CMD(TOOGLEWIFI), 0, false, None, None),
    cmd("SendAccountingRequest", CMD(SENDACCOUNTINGREQUEST), 0, true, AcctIn, AcctOut),
    cmd("GetAssocDevStats", CMD(GETASSOCDEVSTATS), 0, true, None, StatList),
    cmd("ForceApplyMacFilterChange", CMD(FORCEAPPLYMACFILTERCHANGE), 0, false, None, None),
    ntfy("OnProbeReceived", NTFY(ONPROBERECEIVED), 0, Probe),
    ntfy("AssocDevActiveListChanged", NTFY(ASSOCDEVACTIVELISTCHANGED), 1, DevList),
    ntfy("WpsStatus", NTFY(WPSSTATUS), 2, WpsStatus),
    ntfy("EncryptionStatus", NTFY(ENCRYPTIONSTATUS), 1, EncStatus),
    ntfy("DisassocEvent", NTFY(DISASSOCEVENT), 1, DevInfo),
};

}  // namespace

std::span<const Names> allNames() { return kNames; }
std::span<const Message> messages() { return kMessages; }

const char *tableName(bool isNtfy) { return isNtfy ? "IntfWifiApNtfy" : "IntfWifiApCmd"; }
const char *sideName(const Message &m, uint32_t bodyType) {
    return m.ntfy ? "notification" : bodyType ? "response" : "request";
}

const Message *findMessage(std::string_view name) {
    for (const Message &m : kMessages)
        if (name.size() == strlen(m.name) && strncasecmp(m.name, name.data(), name.size()) == 0)
            return &m;
    return nullptr;
}

const Message *findMessage(std::string_view table, uint32_t index) {
    for (const Message &m : kMessages)
        if (table == tableName(m.ntfy) && m.index == index) return &m;
    return nullptr;
}

}  // namespace wifiap::tools
