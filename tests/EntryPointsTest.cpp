// The module's entry points: probing the board library, the registry, routing
// and the capability document.
#include <gtest/gtest.h>

#include "SimHarness.h"
#include "binding/ECTL2Handle.h"
#include "binding/VORA3Handle.h"
#include "function/Function.h"
#include "module/ModuleState.h"
#include "module/Status.h"
#include "voradrv.h"

using vtest::Generation;
using vtest::Own;
using vtest::SimLibraryPath;

namespace {

// A board with only platform information on it.
const char kInfoOnly[] = R"({"board": {"name": "VB-1"}})";

std::string FailingInit(const char* function, const char* status) {
    return std::string(R"({"board": {"name": "VB-1"}, "faults": [{"function": ")") + function +
           R"(", "status": ")" + status + R"("}]})";
}

}  // namespace

TEST(Probe, NoLibraryFileAnywhere) {
    vtest::Redirect();
    vtest::StdoutCapture out;
    EXPECT_EQ(STATUS_UNSUPPORTED, VoraIoTInitialize());
    EXPECT_EQ("", out.finish());
    EXPECT_TRUE(functions.empty());
    EXPECT_EQ(1u, VoraIoTGetModuleID());
}

TEST(Probe, FourthGenerationFileOnlyUnderUsrLib64IsTriedByEveryStep) {
    vtest::UseSimulator(Generation::Vora4, FailingInit("VoraLibInitialize", "0xFFFFF0FF"),
                        "/usr/lib64");
    vtest::StdoutCapture out;
    EXPECT_EQ(STATUS_SYMBOL_MISSING, VoraIoTInitialize());
    EXPECT_EQ(
        "[VORADrv] VORA4 can not load (0xFFFFF0FF)\n"
        "[VORADrv] VORA3 can not load (0xF0000000)\n"
        "[VORADrv] ECTL2 can not load (0xF0000000)\n",
        out.finish());
    EXPECT_TRUE(functions.empty());
}

TEST(Probe, AlreadyInitialisedEndsTheProbeAtOnce) {
    const std::string profile = vtest::WriteTempFile(FailingInit("VoraLibInitialize", "0xFFFFFFFE"));
    setenv("VORA_SIM_BOARD", profile.c_str(), 1);
    vtest::Redirect({{"/usr/lib/libVORA-4.00.so", SimLibraryPath(Generation::Vora4)},
                     {"/usr/lib/libVORA-3.02.so", SimLibraryPath(Generation::Vora3)}});
    vtest::StdoutCapture out;
    EXPECT_EQ(STATUS_ALREADY_INITIALIZED, VoraIoTInitialize());
    EXPECT_EQ("", out.finish());
    EXPECT_FALSE(VORA3Handle::instance()->Avaliable());
    EXPECT_TRUE(functions.empty());
}

TEST(Probe, ThirdGenerationCountsOnlyOneAsSuccess) {
    const std::string profile = vtest::WriteTempFile(FailingInit("VoraDllInit", "0"));
    setenv("VORA_SIM_BOARD", profile.c_str(), 1);
    vtest::Redirect({{"/usr/lib/libVORA-3.02.so", SimLibraryPath(Generation::Vora3)},
                     {"/usr/lib/libEApi.so", SimLibraryPath(Generation::EApi)}});
    vtest::StdoutCapture out;
    VoraIoTInitialize();
    EXPECT_EQ(0u, out.finish().rfind("[VORADrv] VORA3 can not load (0x00000000)\n", 0));
    EXPECT_FALSE(VORA3Handle::instance()->Avaliable());
    EXPECT_TRUE(ECTL2Handle::instance()->Avaliable());
}

TEST(Probe, ThirdGenerationOnlyBoardIsServedInFull) {
    vtest::UseSimulator(Generation::Vora3);
    vtest::StdoutCapture out;
    ASSERT_EQ(0u, VoraIoTInitialize());
    // No probe message: no fourth-generation file, so no initialise failed.
    EXPECT_EQ("", out.finish());
    // Five places; the network block exists only with the fourth generation.
    ASSERT_EQ(5u, functions.size());
    EXPECT_EQ(nullptr, functions[4]);
    auto document = vtest::ModuleCapability();
    std::string blocks;
    const char* key;
    json_t* block;
    json_object_foreach(document.get(), key, block) { blocks += std::string(key) + ";"; }
    EXPECT_EQ("Platform Information;Hardware Monitor;GPIO;Backlight;", blocks);
    EXPECT_EQ(1u, VoraIoTUninitialize());  // the library's own result, passed back
}

TEST(Probe, EApiFailureIsReportedAndReturned) {
    vtest::UseSimulator(Generation::EApi, FailingInit("EApiLibInitialize", "0xFFFFFCFF"));
    vtest::StdoutCapture out;
    EXPECT_EQ(STATUS_UNSUPPORTED, VoraIoTInitialize());
    EXPECT_EQ("[VORADrv] ECTL2 can not load (0xFFFFFCFF)\n", out.finish());
}

TEST(Lifecycle, CallsBeforeInitialise) {
    vtest::Redirect();
    vtest::StdoutCapture out;
    auto host = Own(json_object());
    EXPECT_EQ(STATUS_UNSUPPORTED, VoraIoTGetMDCapability(host.get()));
    auto value = Own(json_integer(0));
    EXPECT_EQ(STATUS_UNSUPPORTED, VoraIoTGetMDValue(0x1020201, value.get()));
    EXPECT_EQ(STATUS_UNSUPPORTED, VoraIoTSetMDValue(0x1020201, value.get()));
    EXPECT_EQ(0u, VoraIoTSetMDEventHandler(nullptr));
    EXPECT_EQ(STATUS_UNSUPPORTED, VoraIoTUninitialize());
    EXPECT_EQ(
        "VORADrv get Cap: jasonCapabilityPackage is null\n"
        "VORADrv get value: function id not found\n"
        "VORADrv set value: function id not found\n",
        out.finish());
    EXPECT_EQ(1u, VoraIoTGetModuleID());
}

TEST(Lifecycle, InitialiseBuildsRegistryMapAndDocument) {
    vtest::UseSimulator(Generation::Vora4, kInfoOnly);
    ASSERT_EQ(0u, VoraIoTInitialize());
    // Five places in fixed order; blocks with nothing to offer are present
    // but have no member in the document.
    ASSERT_EQ(5u, functions.size());
    ASSERT_NE(nullptr, functions[0]);
    EXPECT_EQ("Platform Information", functions[0]->getName());
    EXPECT_EQ(0u, dispatchIDMap.at(0x10000));
    auto host = Own(json_pack("{s:i, s:i}", "Platform Information", 7, "Host", 1));
    EXPECT_EQ(0u, VoraIoTGetMDCapability(host.get()));
    const json_t* info = json_object_get(host.get(), "Platform Information");
    ASSERT_TRUE(json_is_object(info));
    EXPECT_EQ(1, json_integer_value(json_object_get(host.get(), "Host")));
    EXPECT_STREQ("Platform Information", json_string_value(json_object_get(info, "bn")));
    EXPECT_EQ(0u, VoraIoTSetMDEventHandler(nullptr));
    EXPECT_EQ(1u, VoraIoTGetModuleID());
}

TEST(Lifecycle, RoutingUsesOnlyTheClassBits) {
    vtest::UseSimulator(Generation::Vora4, kInfoOnly);
    ASSERT_EQ(0u, VoraIoTInitialize());
    auto text = Own(json_string(""));
    EXPECT_EQ(0u, VoraIoTGetMDValue(0x1010402, text.get()));
    EXPECT_STREQ("VB-1", json_string_value(text.get()));
    vtest::StdoutCapture out;
    EXPECT_EQ(STATUS_NOT_FOUND, VoraIoTGetMDValue(0x10000, text.get()));
    EXPECT_EQ(STATUS_UNSUPPORTED, VoraIoTGetMDValue(0x1030201, text.get()));
    EXPECT_EQ(STATUS_UNSUPPORTED, VoraIoTSetMDValue(0x1010402, text.get()));
    EXPECT_EQ(STATUS_UNSUPPORTED, VoraIoTSetMDValue(0x30000, text.get()));
    EXPECT_EQ(
        "VORADrv Info Get Value: id not found\n"
        "VORADrv get value: function:Platform Information get value failed fffffbff\n"
        "VORADrv get value: function id not found\n"
        "VORADrv set value: function:Platform Information set value failed\n"
        "VORADrv set value: function id not found\n",
        out.finish());
}

TEST(Lifecycle, CapabilityRequestChecksItsArgument) {
    vtest::UseSimulator(Generation::Vora4, kInfoOnly);
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::StdoutCapture out;
    EXPECT_EQ(STATUS_ERROR, VoraIoTGetMDCapability(nullptr));
    auto array = Own(json_array());
    EXPECT_EQ(STATUS_ERROR, VoraIoTGetMDCapability(array.get()));
    EXPECT_EQ(
        "VORADrv get Cap: parameter json is null\n"
        "VORADrv get Cap: unable to update an empty object with an empty object\n",
        out.finish());
}

TEST(Lifecycle, AfterUninitialiseEverythingIsUnsupportedUntilTheNextInitialise) {
    vtest::UseSimulator(Generation::Vora4, kInfoOnly);
    vtest::SimControl sim(Generation::Vora4);
    sim.startLog();
    ASSERT_EQ(0u, VoraIoTInitialize());
    auto host = Own(json_object());
    ASSERT_EQ(0u, VoraIoTGetMDCapability(host.get()));
    EXPECT_EQ(0u, VoraIoTUninitialize());
    EXPECT_EQ(1, sim.count("VoraLibUninitialize"));
    EXPECT_TRUE(functions.empty());
    EXPECT_EQ(nullptr, jasonCapabilityPackage);

    vtest::StdoutCapture out;
    auto value = Own(json_string(""));
    EXPECT_EQ(STATUS_UNSUPPORTED, VoraIoTGetMDValue(0x1010402, value.get()));
    EXPECT_EQ(STATUS_UNSUPPORTED, VoraIoTSetMDValue(0x1010402, value.get()));
    auto again = Own(json_object());
    EXPECT_EQ(STATUS_UNSUPPORTED, VoraIoTGetMDCapability(again.get()));
    EXPECT_EQ(STATUS_UNSUPPORTED, VoraIoTSetMDEventHandler(nullptr));
    out.finish();
    // The host's object outlives the module's document.
    EXPECT_TRUE(json_is_object(json_object_get(host.get(), "Platform Information")));

    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ(0u, VoraIoTGetMDValue(0x1010402, value.get()));
    EXPECT_STREQ("VB-1", json_string_value(value.get()));
}

TEST(Lifecycle, SecondInitialiseStartsAfresh) {
    vtest::UseSimulator(Generation::Vora4, kInfoOnly);
    ASSERT_EQ(0u, VoraIoTInitialize());
    json_t* first = jasonCapabilityPackage;
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ(5u, functions.size());
    EXPECT_NE(nullptr, jasonCapabilityPackage);
    auto value = Own(json_string(""));
    EXPECT_EQ(0u, VoraIoTGetMDValue(0x1010402, value.get()));
    (void)first;  // released by the second initialise (LeakSanitizer checks)
    EXPECT_EQ(0u, VoraIoTUninitialize());
}

TEST(Lifecycle, SecondInitialiseThatFailsKeepsTheFirst) {
    vtest::UseSimulator(Generation::Vora4, kInfoOnly);
    vtest::SimControl sim(Generation::Vora4);
    ASSERT_EQ(0u, VoraIoTInitialize());
    sim.addFault(R"({"function": "VoraLibInitialize", "status": "0xFFFFFFFE"})");
    EXPECT_EQ(STATUS_ALREADY_INITIALIZED, VoraIoTInitialize());
    auto value = Own(json_string(""));
    EXPECT_EQ(0u, VoraIoTGetMDValue(0x1010402, value.get()));
    EXPECT_EQ(0u, VoraIoTUninitialize());
}

TEST(Lifecycle, BlockInitialiseFailureStopsInitialise) {
    // No platform information at all: the information block fails.
    vtest::UseSimulator(Generation::Vora4, "{}");
    vtest::StdoutCapture out;
    EXPECT_EQ(STATUS_ERROR, VoraIoTInitialize());
    EXPECT_EQ("VORADrv Info init: json_pack array failed\nVORADrvnInit: module Init failed\n",
              out.finish());
    EXPECT_EQ(nullptr, jasonCapabilityPackage);
    EXPECT_EQ(0u, VoraIoTUninitialize());
}
