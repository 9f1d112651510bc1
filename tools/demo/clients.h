// The clients: what their callbacks were given, and how one registers.
#pragma once

#include <stdint.h>

#include <string>

#include "demo.h"

namespace wifiap::demo {

struct Answers {
    int results = 0;
    uint32_t lastResult = 0, pin = 0, walkTime = 0, stations = 0;
    std::string created;
    double statsAt = 0;
    uint32_t ntfyCalls[INTFWIFIAP_NTFY_COUNT] = {};

    // The reference to give a request, for its callback to find these answers.
    uintptr_t ref() { return reinterpret_cast<uintptr_t>(this); }

    static void onResult(ismMsg_t, uintptr_t ref, uint32_t result);
    static void onCreate(ismMsg_t, uintptr_t ref, const char *ifname, const char *bssid,
                         uint32_t result);
    static void onPin(ismMsg_t, uintptr_t ref, uint32_t pin);
    static void onWps(ismMsg_t, uintptr_t ref, const wpsInfoOut *out);
    static void onAccounting(ismMsg_t, uintptr_t ref, const accountingResult *r);
    static void onStats(ismMsg_t, uintptr_t ref, const assocDevStatList *l);
};

// A new user ui/<name>, registered, whose notifications count into `answers`.
ismUser_t newClient(Api &api, Answers &answers, const char *name);

}  // namespace wifiap::demo
