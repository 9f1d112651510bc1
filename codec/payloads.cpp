// Bare payloads and the body header: read and written by the same engine as
// the records, logged as part of the body that holds them.
#include "records.h"

namespace wifiap::codec {

constinit const Ops kCreateReq = makeOps<CreateReq, &kCreateReqDesc>();
constinit const Ops kCreateRes = makeOps<CreateRes, &kCreateResDesc>();
constinit const Ops kBridgeAndIps = makeOps<BridgeAndIps, &kBridgeAndIpsDesc>();
constinit const Ops kIps = makeOps<Ips, &kIpsDesc>();
constinit const Ops kSsidText = makeOps<SsidText, &kSsidTextDesc>();
constinit const Ops kResult = makeOps<Result, &kResultDesc>();
constinit const Ops kHeader = makeOps<Header, &kHeaderDesc>();

}  // namespace wifiap::codec
