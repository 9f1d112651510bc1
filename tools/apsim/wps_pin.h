// WPS PINs: seven digits and a checksum digit that makes the digits' weighted
// sum (3, 1, 3, ... from the first) a multiple of ten.
#pragma once

#include <stdint.h>

namespace wifiap::tools {

constexpr uint32_t wpsChecksum(uint32_t pin7) {
    uint32_t sum = 0;
    for (int i = 0; i < 7; ++i, pin7 /= 10) sum += (i % 2 ? 1 : 3) * (pin7 % 10);
    return (10 - sum % 10) % 10;
}

constexpr bool wpsPinValid(uint32_t pin8) {
    return pin8 < 100000000u && pin8 % 10 == wpsChecksum(pin8 / 10);
}

}  // namespace wifiap::tools
