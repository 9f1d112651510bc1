// Fixture of the frame suites: a fresh descriptor, log and framework per test.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "capture.h"
#include "death.h"
#include "fake_framework.h"
#include "intfWifiAp.h"
#include "ism.h"

using Words = std::vector<uintptr_t>;
template <typename P>
uintptr_t w(P p) { return reinterpret_cast<uintptr_t>(p); }
inline ismUser_t const kUser = reinterpret_cast<ismUser_t>(0x1000);

class Frame : public ::testing::Test {
public:
    void SetUp() override { restore(); }
    void TearDown() override { restore(); }

    static void restore() {
        intfWifiAp_base.magic = INTFWIFIAP_MAGIC_BASE;
        intfWifiAp_base.cmdHdr.num = INTFWIFIAP_NUM_NONE;
        intfWifiAp_base.ntfyHdr.num = INTFWIFIAP_NUM_NONE;
        intfWifiAp_base.state = INTFWIFIAP_STATE_BASE_WAIT_INIT;
        intfWifiAp_base.flags = 0;
        intfWifiAp_base.debug = 0;
        cap::reset();
        fake::reset();
    }

    static std::string base() { return cap::fmt("%p", (void *)&intfWifiAp_base); }

    // Adds the base (a failure shows in what the test expects next) and
    // forgets what that logged and called.
    static void added() {
        intfWifiAp_addBase();
        cap::reset();
        fake::reset();
    }
};
