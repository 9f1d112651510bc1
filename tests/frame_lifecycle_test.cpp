#include <syslog.h>

#include "frame_support.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

// Block of a table: name, unreg callback, word 2 untouched, six words a row.
void expectBlock(const std::string &table, const intfWifiAp_tableHdr &hdr,
                 const intfWifiAp_msgEntry *rows, const std::vector<std::string> &names) {
    const Words &b = fake::block(table);
    ASSERT_EQ(b.size(), ISM_BLOCK_WORDS(names.size()));
    EXPECT_EQ(b[ISM_BLOCK_NAME], w(hdr.name));
    EXPECT_STREQ(hdr.name, table.c_str());
    EXPECT_EQ(b[ISM_BLOCK_UNREG], w(hdr.unreg));
    EXPECT_EQ(b[ISM_BLOCK_UNREG + 1], fake::kUntouched);
    for (size_t i = 0; i < names.size(); ++i) {
        const intfWifiAp_msgEntry &e = rows[i];
        EXPECT_EQ(e.index, i);
        EXPECT_STREQ(e.name, names[i].c_str());
        const auto row = b.begin() + ISM_BLOCK_ROWS + ISM_ROW_WORDS * i;
        EXPECT_EQ(Words(row, row + ISM_ROW_WORDS),
                  (Words{0, w(e.name), w(e.freeBody), w(e.serializeBody),
                         w(e.unserializeBody), w(e.logBody)}))
            << table << " row " << i;
    }
}

// Both tables are handed over, every row in its block, then given back.
TEST_F(Frame, AddHandsOverBothTablesThenDeleteGivesThemBack) {
    EXPECT_EQ(intfWifiAp_getCmdIntfNum(), INTFWIFIAP_NUM_NONE);
    EXPECT_EQ(intfWifiAp_getNtfyIntfNum(), INTFWIFIAP_NUM_NONE);

    ASSERT_EQ(intfWifiap_initialize(), 0);
    EXPECT_EQ(fake::names(), (std::vector<std::string>{"ismCore_getBase_msgMngt",
                                                       "ismCore_getBase_msgMngt", "evlp_addEvtBase"}));
    EXPECT_EQ(fake::calls()[2].args, (Words{w(intfWifiAp_cbEvtBase), w(&intfWifiAp_base)}));
    expectBlock("IntfWifiApCmd", intfWifiAp_base.cmdHdr, intfWifiAp_base.cmd,
                {"Configure", "SetBridgeAndIps", "SetIps", "Create", "Ssidinfo", "Stop",
                 "StartWPS", "StartPhysicalWPS", "ToogleWps", "StopWps", "GeneratePinCodeWPS",
                 "ToogleWifi", "SendAccountingRequest", "GetAssocDevStats",
                 "ForceApplyMacFilterChange"});
    expectBlock("IntfWifiApNtfy", intfWifiAp_base.ntfyHdr, intfWifiAp_base.ntfy,
                {"OnProbeReceived", "AssocDevActiveListChanged", "WpsStatus", "EncryptionStatus",
                 "DisassocEvent"});
    EXPECT_EQ(intfWifiAp_getCmdIntfNum(), fake::kCmdNum);
    EXPECT_EQ(intfWifiAp_getNtfyIntfNum(), fake::kNtfyNum);
    EXPECT_EQ(intfWifiAp_base.state, INTFWIFIAP_STATE_BASE_INIT);
    EXPECT_EQ(intfWifiAp_base.flags, INTFWIFIAP_FLAGS_BASE_REG_CMD | INTFWIFIAP_FLAGS_BASE_REG_NTFY);

    fake::reset();
    intfWifiAp_cbEvtBase(nullptr, 0);
    ASSERT_EQ(fake::calls().size(), 2u);
    EXPECT_EQ(fake::calls()[0].args, (Words{fake::kCmdNum, 0}));
    EXPECT_EQ(fake::calls()[1].args, (Words{fake::kNtfyNum, 0}));
    EXPECT_EQ(intfWifiAp_getCmdIntfNum(), INTFWIFIAP_NUM_NONE);
    EXPECT_EQ(intfWifiAp_getNtfyIntfNum(), INTFWIFIAP_NUM_NONE);
    EXPECT_EQ(intfWifiAp_base.state, INTFWIFIAP_STATE_BASE_WAIT_INIT);
    EXPECT_EQ(intfWifiAp_base.flags, 0);
    EXPECT_THAT(cap::lines(), IsEmpty());

    EXPECT_EQ(intfWifiAp_addBase(), 0) << "a deleted base can be added again";
}

// What one failing add or delete leaves behind.
struct Refusal {
    const char *name;
    void (*script)();
    int32_t (*op)();
    int32_t rc;
    std::vector<std::string> calls;
    std::vector<std::string> lines;  // %s stands for the descriptor's address
    uint16_t cmdNum, ntfyNum;
    uint8_t flags, state;
};

const std::string kGet = "ismCore_getBase_msgMngt", kPut = "ismCore_putBase_msgMngt",
                  kLoop = "evlp_addEvtBase", kAdd = "intfWifiAp_addBase: ",
                  kDel = "intfWifiAp_delBase: ";
const std::string kStateWait =
    "Check State[INTFWIFIAP_STATE_BASE_WAIT_INIT-0] Ctx[ptr(%s) state(1)] text[]\n";
const std::string kStateInit =
    "Check State[INTFWIFIAP_STATE_BASE_INIT-1] Ctx[ptr(%s) state(0)] text[]\n";
constexpr uint8_t kBoth = INTFWIFIAP_FLAGS_BASE_REG_CMD | INTFWIFIAP_FLAGS_BASE_REG_NTFY;
constexpr uint8_t kWait = INTFWIFIAP_STATE_BASE_WAIT_INIT, kInit = INTFWIFIAP_STATE_BASE_INIT;
constexpr uint16_t kNone = INTFWIFIAP_NUM_NONE, kCmd = fake::kCmdNum, kNtfy = fake::kNtfyNum;
constexpr int32_t kTable = INTFWIFIAP_ERR_TABLE, kState = INTFWIFIAP_ERR_STATE;
void refuseLoop() { fake::answer(kLoop, {-7}); }

const Refusal kRefusals[] = {
    {"cmdTableRefused", [] { fake::answer(kGet, {kNone}); }, intfWifiAp_addBase, kTable, {kGet},
     {kAdd + "Add command message management failed\n"}, kNone, kNone, 0, kWait},
    {"cmdBlockMissing", fake::noBlock, intfWifiAp_addBase, kTable, {kGet},
     {kAdd + "Add command message management failed\n"}, kCmd, kNone, 0, kWait},
    {"ntfyTableRefused", [] { fake::answer(kGet, {kCmd, kNone}); }, intfWifiAp_addBase, kTable,
     {kGet, kGet}, {kAdd + "Add notification message management failed\n"}, kCmd, kNone,
     INTFWIFIAP_FLAGS_BASE_REG_CMD, kWait},
    {"loopRefused", refuseLoop, intfWifiAp_addBase, -7, {kGet, kGet, kLoop},
     {kAdd + "Add event base failed(-7)\n"}, kCmd, kNtfy, kBoth, kWait},
    {"initializeReportsAddFailure", refuseLoop, intfWifiap_initialize, -7, {kGet, kGet, kLoop},
     {kAdd + "Add event base failed(-7)\n", "intfWifiap_initialize: Add Base failed(-7)\n"},
     kCmd, kNtfy, kBoth, kWait},
    // A retry asks for both tables again, their flags cleared first: no warning.
    {"retryAfterLoopRefused", [] { refuseLoop(), Frame::added(); }, intfWifiAp_addBase, 0,
     {kGet, kGet, kLoop}, {}, kCmd, kNtfy, kBoth, kInit},
    {"addTwice", Frame::added, intfWifiAp_addBase, kState, {}, {kAdd + kStateWait}, kCmd, kNtfy,
     kBoth, kInit},
    {"deleteBeforeAdd", [] {}, intfWifiAp_delBase, kState, {}, {kDel + kStateInit}, kNone, kNone,
     0, kWait},
    {"cmdGiveBackRefused", [] { Frame::added(), fake::answer(kPut, {9}); }, intfWifiAp_delBase,
     9, {kPut}, {kDel + "Put command message management(33) failed(9)\n"}, kCmd, kNtfy, kBoth,
     kInit},
    {"ntfyGiveBackRefused", [] { Frame::added(), fake::answer(kPut, {0, 9}); },
     intfWifiAp_delBase, 9, {kPut, kPut},
     {kDel + "Put notification message management(34) failed(9)\n"}, kNone, kNtfy,
     INTFWIFIAP_FLAGS_BASE_REG_NTFY, kInit},
};

void PrintTo(const Refusal &r, std::ostream *os) { *os << r.name; }

class Refusals : public Frame, public ::testing::WithParamInterface<Refusal> {};

TEST_P(Refusals, LeaveWhatTheyObtained) {
    const Refusal &r = GetParam();
    r.script();
    EXPECT_EQ(r.op(), r.rc);
    EXPECT_EQ(fake::names(), r.calls);
    std::vector<std::string> expected;
    for (const std::string &l : r.lines) expected.push_back(cap::fmt(l.c_str(), base().c_str()));
    EXPECT_EQ(cap::texts(), expected);
    for (const cap::Line &l : cap::lines()) EXPECT_EQ(l.prio, LOG_ERR);
    EXPECT_EQ(intfWifiAp_getCmdIntfNum(), r.cmdNum);
    EXPECT_EQ(intfWifiAp_getNtfyIntfNum(), r.ntfyNum);
    EXPECT_EQ(intfWifiAp_base.flags, r.flags);
    EXPECT_EQ(intfWifiAp_base.state, r.state);
}

INSTANTIATE_TEST_SUITE_P(Lifecycle, Refusals, ::testing::ValuesIn(kRefusals),
                         [](const auto &info) { return std::string(info.param.name); });

TEST_F(Frame, BaseEvents) {
    intfWifiAp_cbEvtBase(nullptr, 5);
    intfWifiAp_cbEvtBase(nullptr, 0);  // nothing to delete yet
    EXPECT_THAT(fake::calls(), IsEmpty());
    EXPECT_THAT(cap::texts(), ElementsAre("intfWifiAp_cbEvtBase: Unknown event(5)\n",
                                          "intfWifiAp_delBase: " + cap::fmt(kStateInit.c_str(),
                                                                            base().c_str()),
                                          "intfWifiAp_cbEvtBase: Delete Base\n"));
}

TEST_F(Frame, UnregisterCallbacksClearOnlyTheirFlag) {
    added();
    intfWifiAp_cbEvtMsgMngt_unreg_msgCmd(fake::kNtfyNum);
    EXPECT_THAT(cap::texts(),
                ElementsAre("intfWifiAp_cbEvtMsgMngt_unreg_msgCmd: Message management(34) unknown\n"));
    EXPECT_EQ(intfWifiAp_base.flags, kBoth);

    cap::reset();
    intfWifiAp_cbEvtMsgMngt_unreg_msgNtfy(fake::kNtfyNum);
    EXPECT_EQ(intfWifiAp_base.flags, INTFWIFIAP_FLAGS_BASE_REG_CMD);
    EXPECT_EQ(intfWifiAp_getNtfyIntfNum(), fake::kNtfyNum) << "the number is kept";
    EXPECT_EQ(intfWifiAp_base.state, kInit);
    EXPECT_THAT(cap::lines(), IsEmpty());

    intfWifiAp_cbEvtMsgMngt_unreg_msgNtfy(fake::kNtfyNum);
    ASSERT_EQ(cap::lines().size(), 1u);
    EXPECT_EQ(cap::lines()[0].prio, LOG_WARNING);
    EXPECT_EQ(cap::texts()[0],
              "intfWifiAp_cbEvtMsgMngt_unreg_msgNtfy: " +
                  cap::fmt("Unset Flag[INTFWIFIAP_FLAGS_BASE_REG_NTFY-2] in ctx(%p) not set[1] "
                           "text[]\n",
                           (void *)&intfWifiAp_base));

    EXPECT_EQ(intfWifiAp_delBase(), 0);
    EXPECT_EQ(fake::names(), (std::vector<std::string>{kPut})) << "a dropped table is not put";
    EXPECT_EQ(fake::calls()[0].args[0], fake::kCmdNum);
}

using FrameDeath = Frame;

TEST_F(FrameDeath, WrongDescriptorMagicAborts) {
    WIFIAP_EXPECT_DEATH(
        {
            intfWifiAp_base.magic = 0x1234;
            intfWifiAp_addBase();
        },
        "intfWifiAp_addBase\\([0-9]+\\): Magic\\[INTFWIFIAP_MAGIC_BASE-13524830\\] "
        "Ctx\\[ptr\\(0x[0-9a-f]+\\) magic\\(1234\\)\\] text\\[\\]");
}

}  // namespace
