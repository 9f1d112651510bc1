// The largest station statistics list: 100 stations x 312 rates, every text
// at full length.
#pragma once

#include <string.h>

#include <memory>

#include "intfWifiAp.h"

namespace bench {

template <size_t N>
void fillText(char (&t)[N], char c) {
    memset(t, c, N - 1);
    t[N - 1] = '\0';
}

inline std::unique_ptr<assocDevStatList> fullList() {
    auto l = std::make_unique<assocDevStatList>();
    memset(l.get(), 0, sizeof *l);
    l->assocDevNum = INTFWIFIAP_ASSOCDEVSTATLIST_MAX;
    fillText(l->text, 'l');
    uint32_t v = 1;
    for (assocDevInfoFull &d : l->assocDevs) {
        fillText(d.devInfo.macAddress, 'm'), fillText(d.devInfo.text, 't');
        d.devInfo.value = uint8_t(v++);
        assocDevStatus &s = d.devStatus;
        fillText(s.macAddress, 'm'), fillText(s.text1, '1'), fillText(s.text2, '2');
        fillText(s.text3, '3'), fillText(s.text4, '4'), fillText(s.text5, '5');
        s.value3 = v++, s.value5 = -int16_t(v & 0xFF), s.value8 = -3;
        assocDevStats &st = s.devStats;
        st.value1 = 0x0102030405060708ull * v++;
        fillText(st.text1, 'a'), fillText(st.text2, 'b'), fillText(st.text3, 'c');
        st.perRate.rateStatsNum = INTFWIFIAP_RATESTATS_MAX;
        for (rateStats &r : st.perRate.rates) r = rateStats{v, v + 1}, v += 2;
    }
    return l;
}

}  // namespace bench
