// Bare payloads and the body header: read and written by the same engine as
// the records, logged as part of the body that holds them.
#include "records.h"

namespace wifiap::codec {

constinit const Ops kCreateReq = bareOps<CreateReq, &kCreateReqDesc>();
constinit const Ops kCreateRes = bareOps<CreateRes, &kCreateResDesc>();
constinit const Ops kBridgeAndIps = bareOps<BridgeAndIps, &kBridgeAndIpsDesc>();
constinit const Ops kIps = bareOps<Ips, &kIpsDesc>();
constinit const Ops kSsidText = bareOps<SsidText, &kSsidTextDesc>();
constinit const Ops kResult = bareOps<Result, &kResultDesc>();
constinit const Ops kEncStatus = bareOps<EncStatus, &kEncStatusDesc>();
constinit const Ops kHeader = bareOps<Header, &kHeaderDesc>();
constinit const Ops kNone = bareOps<CtxHead, &kNoneDesc>();

}  // namespace wifiap::codec
