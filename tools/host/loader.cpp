#include "loader.h"

#include <dlfcn.h>
#include <string.h>

#include <utility>
#include <vector>

#include "hostsim.h"
#include "messages.h"

namespace wifiap::host {

std::string load(Api &api, const std::string &given, void **handle) {
    std::vector<std::string> paths;
    if (!given.empty()) paths.push_back(given);
#ifdef WIFIAP_BUILD_LIBRARY
    paths.push_back(WIFIAP_BUILD_LIBRARY);
#endif
    paths.push_back("libIntfWifiap.so.1");
    std::string err;
    for (const std::string &p : paths) {
        if ((*handle = dlopen(p.c_str(), RTLD_NOW))) break;
        err += std::string(dlerror()) + "\n";
    }
    if (!*handle) return err;
    // Where each function goes once found; DisassocEvent has no need-update
    // function and leaves its slot empty.
    std::vector<std::pair<const char *, void *>> table = {
#define ENTRY(n) {#n, &api.n},
        HOST_FUNCTIONS(ENTRY)
#undef ENTRY
#define CMD_ENTRY(N, s, U, ...) {"intfWifiAp_modSrv_recvMsg_" #s, &api.modSrv[INTFWIFIAP_CMD_##U]},
#define NTFY_ENTRY(N, s, U, version, Payload, update)                                         \
    {"intfWifiAp_modCliNtfyUser_recvMsg_" #s, &api.modCli[INTFWIFIAP_NTFY_##U]},               \
    {update ? "intfWifiAp_modSrv_needUpdate_ntfy" #N : nullptr,                               \
     &api.needUpdate[INTFWIFIAP_NTFY_##U]},
        WIFIAP_MESSAGES(CMD_ENTRY, NTFY_ENTRY)
#undef CMD_ENTRY
#undef NTFY_ENTRY
    };
    for (auto &[name, slot] : table) {
        if (!name) continue;
        void *sym = dlsym(*handle, name);
        if (!sym) return std::string("missing ") + name + "\n";
        memcpy(slot, &sym, sizeof sym);  // every slot is a function pointer
    }
    return {};
}

int32_t dispatch(void *ref, ismUser_t user, uint32_t kind, uint32_t index, void *v1, void *v2,
                 void *v3, const char *bus, const char *name) {
    const Api &api = *static_cast<const Api *>(ref);
    if (kind == HS_REQUEST && index < INTFWIFIAP_CMD_COUNT)
        return api.modSrv[index](user, v1, v2, v3);
    if (kind == HS_NOTIFICATION && index < INTFWIFIAP_NTFY_COUNT)
        return api.modCli[index](user, v1, v2, v3, bus, name);
    if (kind == HS_NEED_UPDATE && index < INTFWIFIAP_NTFY_COUNT && api.needUpdate[index])
        return api.needUpdate[index](user, v1, v2, v3);
    return -1;
}

void registerUser(Api &api, ismUser_t user) {
    api.intfWifiAp_regUser_msgMngt(user, fn(dispatch), &api, INTFWIFIAP_REG_ALL);
}

}  // namespace wifiap::host
