#include "frame_support.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

using Words = std::vector<uintptr_t>;

ismUser_t const kUser = reinterpret_cast<ismUser_t>(0x1000);
void *const kParam = reinterpret_cast<void *>(0x2000);
void *const kRef = reinterpret_cast<void *>(0x3000);

struct Selection {
    uint32_t which;
    std::vector<uint16_t> nums;  // tables asked, in order
};

void PrintTo(const Selection &s, std::ostream *os) { *os << "which " << s.which; }

class Registration : public Frame, public ::testing::WithParamInterface<Selection> {};

TEST_P(Registration, AsksTheSelectedTablesInOrder) {
    added();
    const Selection &s = GetParam();
    EXPECT_EQ(intfWifiAp_regUser_msgMngt(kUser, kParam, kRef, s.which), 0);
    EXPECT_EQ(intfWifiAp_unregUser_msgMngt(kUser, s.which), 0);
    std::vector<Words> expected;
    for (uint16_t n : s.nums)
        expected.push_back({(uintptr_t)kUser, (uintptr_t)kParam, (uintptr_t)kRef, n, 0xFFFF, 0});
    for (uint16_t n : s.nums) expected.push_back({(uintptr_t)kUser, n, 0xFFFF, 0});
    std::vector<Words> got;
    for (const fake::Call &c : fake::calls()) got.push_back(c.args);
    EXPECT_EQ(got, expected);
    EXPECT_THAT(cap::lines(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Which, Registration,
                         ::testing::Values(Selection{0, {fake::kCmdNum, fake::kNtfyNum}},
                                           Selection{1, {fake::kCmdNum}},
                                           Selection{2, {fake::kNtfyNum}}, Selection{3, {}}));

TEST_F(Frame, NothingHeldNothingAsked) {
    for (uint32_t which : {0u, 1u, 2u}) {
        EXPECT_EQ(intfWifiAp_regUser_msgMngt(kUser, kParam, kRef, which), 0);
        EXPECT_EQ(intfWifiAp_unregUser_msgMngt(kUser, which), 0);
    }
    EXPECT_THAT(fake::calls(), IsEmpty());
}

TEST_F(Frame, OnlyTheHeldTableIsAsked) {
    intfWifiAp_base.ntfyHdr.num = fake::kNtfyNum;
    EXPECT_EQ(intfWifiAp_regUser_msgMngt(kUser, kParam, kRef, 0), 0);
    ASSERT_EQ(fake::calls().size(), 1u);
    EXPECT_EQ(fake::calls()[0].args[3], fake::kNtfyNum);
}

TEST_F(Frame, CommandFailureStopsBeforeNotifications) {
    added();
    fake::answer("ismIntf_regUser_msgMngt", {5});
    fake::answer("ismIntf_unregUser_msgMngt", {6});
    EXPECT_EQ(intfWifiAp_regUser_msgMngt(kUser, kParam, kRef, 0), 5);
    EXPECT_EQ(intfWifiAp_unregUser_msgMngt(kUser, 0), 6);
    EXPECT_EQ(fake::calls().size(), 2u);
    EXPECT_THAT(cap::texts(),
                ElementsAre(cap::fmt("intfWifiAp_regUser_msgMngt: user(%p): regUser message "
                                     "management failed(5) -> num(33) ref(%p)\n",
                                     kUser, kRef),
                            cap::fmt("intfWifiAp_unregUser_msgMngt: user(%p): unregUser message "
                                     "management failed(6) -> num(33)\n",
                                     kUser)));
}

TEST_F(Frame, NotificationFailureKeepsTheCommandRegistration) {
    added();
    fake::answer("ismIntf_regUser_msgMngt", {0, 9});
    EXPECT_EQ(intfWifiAp_regUser_msgMngt(kUser, kParam, kRef, 0), 9);
    EXPECT_EQ(fake::calls().size(), 2u);
    EXPECT_THAT(cap::texts(),
                ElementsAre(cap::fmt("intfWifiAp_regUser_msgMngt: user(%p): regUser message "
                                     "management failed(9) -> num(34) ref(%p)\n",
                                     kUser, kRef)));
}

TEST_F(Frame, DroppedTableKeepsItsNumberForUsers) {
    added();
    intfWifiAp_cbEvtMsgMngt_unreg_msgCmd(fake::kCmdNum);
    EXPECT_EQ(intfWifiAp_regUser_msgMngt(kUser, kParam, kRef, 1), 0);
    ASSERT_EQ(fake::calls().size(), 1u);
    EXPECT_EQ(fake::calls()[0].args[3], fake::kCmdNum);
}

TEST_F(Frame, FindPassesTheInterfaceName) {
    fake::answer("ismIntf_findSrvMthdNtfyUser", {-4});
    EXPECT_EQ(intfWifiAp_findSrvMthdNtfyUser(kUser, kParam, 0xBEEF, kRef), -4);
    ASSERT_EQ(fake::calls().size(), 1u);
    const Words &a = fake::calls()[0].args;
    EXPECT_EQ(a, (Words{(uintptr_t)kUser, (uintptr_t)kParam, (uintptr_t)intfWifiAp_base.name,
                        0xBEEF, (uintptr_t)kRef}));
    EXPECT_STREQ(intfWifiAp_base.name, "IntfWifiAp");
}

}  // namespace
