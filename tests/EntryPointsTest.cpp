// The module's entry points: probing the board library, the registry and the
// capability document, and each generation's default board against its
// golden files. Calls out of order and hostile arguments are the
// hostile-input checks' (tests/reliability/).
#include <gtest/gtest.h>

#include <map>

#include "SimHarness.h"
#include "binding/ECTL2Handle.h"
#include "binding/VORA3Handle.h"
#include "function/Function.h"
#include "module/ModuleState.h"
#include "module/Status.h"
#include "voradrv.h"

using namespace vtest;

namespace {

// A board with only platform information on it.
const char kInfoOnly[] = R"({"board": {"name": "VB-1"}})";

std::string FailingInit(const char* function, const char* status) {
    return std::string(R"({"board": {"name": "VB-1"}, "faults": [{"function": ")") + function +
           R"(", "status": ")" + status + R"("}]})";
}

// The default board of `generation`: initialise prints nothing, the network
// block has its place only on the fourth generation, the document holds the
// blocks in order, each as its golden file <prefix>-<block>.json, the host's
// block objects outlive the module's, and uninitialise answers `uninit`.
void ExpectGoldenDocument(Generation generation, const std::string& prefix, uint32_t uninit) {
    static const std::map<std::string, std::string> kFiles = {
        {"Platform Information", "info"}, {"Hardware Monitor", "hwm"}, {"GPIO", "gpio"},
        {"Backlight", "backlight"},       {"OOB-Network", "network"}};
    const bool network = generation == Generation::Vora4;
    UseSimulator(generation);
    StdoutCapture out;
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ("", out.take());
    ASSERT_EQ(5u, functions.size());
    EXPECT_EQ(network, functions[4] != nullptr);
    const JsonPtr document = ModuleCapability();
    std::string blocks;
    const char* key;
    json_t* block;
    json_object_foreach(document.get(), key, block) {
        blocks += std::string(key) + ";";
        ExpectGolden(block, prefix + "-" + kFiles.at(key) + ".json");
    }
    EXPECT_EQ(std::string("Platform Information;Hardware Monitor;GPIO;Backlight;") +
                  (network ? "OOB-Network;" : ""),
              blocks);
    EXPECT_EQ(uninit, VoraIoTUninitialize());
    json_object_foreach(document.get(), key, block) {
        EXPECT_STREQ(key, json_string_value(json_object_get(block, "bn")));
    }
}

}  // namespace

TEST(GoldenCapability, Vora4) { ExpectGoldenDocument(Generation::Vora4, "vora4", 0); }
TEST(GoldenCapability, Vora3) { ExpectGoldenDocument(Generation::Vora3, "vora3", 1); }
TEST(GoldenCapability, EApi) { ExpectGoldenDocument(Generation::EApi, "eapi", 0); }

TEST(Probe, NoLibraryFileAnywhere) {
    Redirect();
    StdoutCapture out;
    EXPECT_EQ(STATUS_UNSUPPORTED, VoraIoTInitialize());
    EXPECT_EQ("", out.finish());
    EXPECT_TRUE(functions.empty());
    EXPECT_EQ(1u, VoraIoTGetModuleID());
}

TEST(Probe, FourthGenerationFileOnlyUnderUsrLib64IsTriedByEveryStep) {
    UseSimulator(Generation::Vora4, FailingInit("VoraLibInitialize", "0xFFFFF0FF"), "/usr/lib64");
    StdoutCapture out;
    EXPECT_EQ(STATUS_SYMBOL_MISSING, VoraIoTInitialize());
    EXPECT_EQ(
        "[VORADrv] VORA4 can not load (0xFFFFF0FF)\n"
        "[VORADrv] VORA3 can not load (0xF0000000)\n"
        "[VORADrv] ECTL2 can not load (0xF0000000)\n",
        out.finish());
    EXPECT_TRUE(functions.empty());
}

TEST(Probe, AlreadyInitialisedEndsTheProbeAtOnce) {
    setenv("VORA_SIM_BOARD",
           WriteTempFile(FailingInit("VoraLibInitialize", "0xFFFFFFFE")).c_str(), 1);
    Redirect({{"/usr/lib/libVORA-4.00.so", SimLibraryPath(Generation::Vora4)},
              {"/usr/lib/libVORA-3.02.so", SimLibraryPath(Generation::Vora3)}});
    StdoutCapture out;
    EXPECT_EQ(STATUS_ALREADY_INITIALIZED, VoraIoTInitialize());
    EXPECT_EQ("", out.finish());
    EXPECT_FALSE(VORA3Handle::instance()->Avaliable());
    EXPECT_TRUE(functions.empty());
}

TEST(Probe, AlreadyInitialisedEApiLibraryIsNoFailure) {
    setenv("VORA_SIM_BOARD",
           WriteTempFile(FailingInit("EApiLibInitialize", "0xFFFFFFFE")).c_str(), 1);
    Redirect({{"/usr/lib/libEApi.so", SimLibraryPath(Generation::EApi)}});
    StdoutCapture out;
    EXPECT_EQ(STATUS_ALREADY_INITIALIZED, VoraIoTInitialize());
    EXPECT_EQ("", out.finish());
    EXPECT_TRUE(functions.empty());
}

TEST(Probe, ThirdGenerationCountsOnlyOneAsSuccess) {
    setenv("VORA_SIM_BOARD", WriteTempFile(FailingInit("VoraDllInit", "0")).c_str(), 1);
    Redirect({{"/usr/lib/libVORA-3.02.so", SimLibraryPath(Generation::Vora3)},
              {"/usr/lib/libEApi.so", SimLibraryPath(Generation::EApi)}});
    StdoutCapture out;
    VoraIoTInitialize();
    EXPECT_EQ(0u, out.finish().rfind("[VORADrv] VORA3 can not load (0x00000000)\n", 0));
    EXPECT_FALSE(VORA3Handle::instance()->Avaliable());
    EXPECT_TRUE(ECTL2Handle::instance()->Avaliable());
}

TEST(Probe, EApiFailureIsReportedAndReturned) {
    UseSimulator(Generation::EApi, FailingInit("EApiLibInitialize", "0xFFFFFCFF"));
    StdoutCapture out;
    EXPECT_EQ(STATUS_UNSUPPORTED, VoraIoTInitialize());
    EXPECT_EQ("[VORADrv] ECTL2 can not load (0xFFFFFCFF)\n", out.finish());
}

TEST(Lifecycle, InitialiseBuildsRegistryAndMap) {
    Initialised(Generation::Vora4, kInfoOnly);
    // Five places in fixed order; blocks with nothing to offer are present
    // but have no member in the document.
    ASSERT_EQ(5u, functions.size());
    ASSERT_NE(nullptr, functions[0]);
    EXPECT_EQ("Platform Information", functions[0]->getName());
    EXPECT_EQ(0u, dispatchIDMap.at(0x10000));
    EXPECT_EQ(1u, json_object_size(ModuleCapability().get()));
    EXPECT_EQ(0u, VoraIoTSetMDEventHandler(nullptr));
    EXPECT_EQ(1u, VoraIoTGetModuleID());
}

TEST(Lifecycle, UninitialiseLetsGoOfEverythingUntilTheNextInitialise) {
    UseSimulator(Generation::Vora4, kInfoOnly);
    SimControl sim(Generation::Vora4);
    sim.startLog();
    ASSERT_EQ(0u, VoraIoTInitialize());
    const JsonPtr document = ModuleCapability();
    EXPECT_EQ(0u, VoraIoTUninitialize());
    EXPECT_EQ(1, sim.count("VoraLibUninitialize"));
    EXPECT_TRUE(functions.empty());
    EXPECT_EQ(nullptr, jasonCapabilityPackage);
    // The host's object outlives the module's document.
    EXPECT_TRUE(json_is_object(json_object_get(document.get(), "Platform Information")));
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ("VB-1", ReadText(0x1010402));
}

TEST(Lifecycle, SecondInitialiseThatFailsKeepsTheFirst) {
    SimControl sim = Initialised(Generation::Vora4, kInfoOnly);
    sim.addFault(R"({"function": "VoraLibInitialize", "status": "0xFFFFFFFE"})");
    EXPECT_EQ(STATUS_ALREADY_INITIALIZED, VoraIoTInitialize());
    EXPECT_EQ("VB-1", ReadText(0x1010402));
    EXPECT_EQ(0u, VoraIoTUninitialize());
}

TEST(Lifecycle, BlockInitialiseFailureStopsInitialise) {
    // No platform information at all: the information block fails.
    UseSimulator(Generation::Vora4, "{}");
    StdoutCapture out;
    EXPECT_EQ(STATUS_ERROR, VoraIoTInitialize());
    EXPECT_EQ("VORADrv Info init: json_pack array failed\nVORADrvnInit: module Init failed\n",
              out.finish());
    EXPECT_EQ(nullptr, jasonCapabilityPackage);
    EXPECT_EQ(0u, VoraIoTUninitialize());
}
