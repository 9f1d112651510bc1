#include "frame_support.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

void *const kParam = reinterpret_cast<void *>(0x2000);
void *const kRef = reinterpret_cast<void *>(0x3000);

// Which tables a registration asks, in order, given what the descriptor holds.
struct Selection {
    const char *name;
    uint32_t which;
    void (*held)();
    std::vector<uint16_t> nums;
};

void PrintTo(const Selection &s, std::ostream *os) { *os << s.name; }

void cmdDropped() {
    Frame::added();
    intfWifiAp_cbEvtMsgMngt_unreg_msgCmd(fake::kCmdNum);  // its number is kept for users
}

class Registration : public Frame, public ::testing::WithParamInterface<Selection> {};

TEST_P(Registration, AsksTheSelectedTablesInOrder) {
    const Selection &s = GetParam();
    s.held();
    EXPECT_EQ(intfWifiAp_regUser_msgMngt(kUser, kParam, kRef, s.which), 0);
    EXPECT_EQ(intfWifiAp_unregUser_msgMngt(kUser, s.which), 0);
    std::vector<Words> expected;
    for (uint16_t n : s.nums) expected.push_back({w(kUser), w(kParam), w(kRef), n, ISM_ANY, 0});
    for (uint16_t n : s.nums) expected.push_back({w(kUser), n, ISM_ANY, 0});
    std::vector<Words> got;
    for (const fake::Call &c : fake::calls()) got.push_back(c.args);
    EXPECT_EQ(got, expected);
    EXPECT_THAT(cap::lines(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Which, Registration,
    ::testing::Values(
        Selection{"all", 0, Frame::added, {fake::kCmdNum, fake::kNtfyNum}},
        Selection{"cmd", 1, Frame::added, {fake::kCmdNum}},
        Selection{"ntfy", 2, Frame::added, {fake::kNtfyNum}},
        Selection{"unknownSelection", 3, Frame::added, {}}, Selection{"nothingHeld", 0, [] {}, {}},
        Selection{"onlyNtfyHeld", 0, [] { intfWifiAp_base.ntfyHdr.num = fake::kNtfyNum; },
                  {fake::kNtfyNum}},
        Selection{"droppedCmd", 1, cmdDropped, {fake::kCmdNum}}),
    [](const auto &info) { return std::string(info.param.name); });

// A failure on the command table stops before the notification table; one on
// the notification table keeps the command registration made.
TEST_F(Frame, FailuresAreLoggedWithTheTablesNumber) {
    added();
    fake::answer("ismIntf_regUser_msgMngt", {5, 0, 9});
    fake::answer("ismIntf_unregUser_msgMngt", {6});
    EXPECT_EQ(intfWifiAp_regUser_msgMngt(kUser, kParam, kRef, 0), 5);
    EXPECT_EQ(intfWifiAp_unregUser_msgMngt(kUser, 0), 6);
    EXPECT_EQ(intfWifiAp_regUser_msgMngt(kUser, kParam, kRef, 0), 9);
    EXPECT_EQ(fake::calls().size(), 4u);
    const char *reg = "intfWifiAp_regUser_msgMngt: user(%p): regUser message management failed(%d)"
                      " -> num(%d) ref(%p)\n";
    EXPECT_THAT(cap::texts(),
                ElementsAre(cap::fmt(reg, kUser, 5, fake::kCmdNum, kRef),
                            cap::fmt("intfWifiAp_unregUser_msgMngt: user(%p): unregUser message "
                                     "management failed(6) -> num(33)\n",
                                     kUser),
                            cap::fmt(reg, kUser, 9, fake::kNtfyNum, kRef)));
}

TEST_F(Frame, FindPassesTheInterfaceName) {
    fake::answer("ismIntf_findSrvMthdNtfyUser", {-4});
    EXPECT_EQ(intfWifiAp_findSrvMthdNtfyUser(kUser, kParam, 0xBEEF, kRef), -4);
    ASSERT_EQ(fake::calls().size(), 1u);
    const Words &a = fake::calls()[0].args;
    EXPECT_EQ(a, (Words{w(kUser), w(kParam), w(intfWifiAp_base.name),
                        0xBEEF, w(kRef)}));
    EXPECT_STREQ(intfWifiAp_base.name, "IntfWifiAp");
}

}  // namespace
