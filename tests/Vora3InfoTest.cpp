// Platform information on the third-generation library.
#include <gtest/gtest.h>

#include "SimHarness.h"
#include "binding/VORA3Handle.h"
#include "info/Vora3INFO.h"
#include "module/Status.h"
#include "voradrv.h"

using vtest::Dump;
using vtest::Generation;
using vtest::Own;

namespace {

// The block's item array in the module's document.
std::string Items() {
    auto document = vtest::ModuleCapability();
    return Dump(json_object_get(json_object_get(document.get(), "Platform Information"), "e"));
}

std::string ReadText(uint32_t id) {
    auto value = Own(json_string("unchanged"));
    EXPECT_EQ(0u, VoraIoTGetMDValue(id, value.get())) << std::hex << id;
    return json_string_value(value.get());
}

}  // namespace

TEST(Vora3Info, DefaultBoardCapabilityMatchesTheGoldenFile) {
    vtest::UseSimulator(Generation::Vora3);
    ASSERT_EQ(0u, VoraIoTInitialize());
    auto document = vtest::ModuleCapability();
    vtest::ExpectGolden(json_object_get(document.get(), "Platform Information"),
                        "vora3-info.json");
}

TEST(Vora3Info, OneLengthVariableServesBothTexts) {
    // The BIOS query answers 1 without giving a length: its buffer is twice
    // what the board name left (3), so the revision is cut to 5 characters.
    vtest::UseSimulator(Generation::Vora3, R"({"board": {"name": "AB", "bios_revision": "3.20.R14"},
        "faults": [{"function": "VoraCoreGetBIOSVersion", "status": 1, "times": 1}]})");
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ("3.20.", ReadText(0x1010405));
}

TEST(Vora3Info, LengthAnswersCannotOverrunOrUnboundTheBuffers) {
    // The name fills its whole buffer (twice its length) without a
    // terminator and claims 100000 bytes; the BIOS query claims 4 GiB. Both
    // texts still come from bounded buffers (ASan checks the reads).
    vtest::UseSimulator(Generation::Vora3, R"({"board": {"name": "VB-3200", "bios_revision": "R14"},
        "faults": [{"function": "VoraCoreGetPlatformName", "unterminated": true, "length": 100000},
                   {"function": "VoraCoreGetBIOSVersion", "value": "0xFFFFFFFF"}]})");
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ("VB-3200VB-3200VB", ReadText(0x1010402));
    EXPECT_EQ("R14", ReadText(0x1010405));
}

TEST(Vora3Info, WithoutTextsOrVersionOnlyTheVersionZeroIsPublished) {
    vtest::UseSimulator(Generation::Vora3, R"({"board": {"name": "VB-3200", "bios_revision": "R14"},
        "faults": [{"function": "VoraCoreGetPlatformName", "status": 0},
                   {"function": "VoraCoreGetBIOSVersion", "status": "0xF0000000"}]})");
    vtest::HideSymbols("VoraDllGetVersion");
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ(R"([{"n":"Driver version","sv":"0.0","asm":"r","id":16843265}])", Items());
    EXPECT_EQ("", ReadText(0x1010402));
}

TEST(Vora3Info, ReadsAnswerTheTextsKeptAtBuildTime) {
    vtest::UseSimulator(Generation::Vora3);
    vtest::SimControl sim(Generation::Vora3);
    ASSERT_EQ(0u, VoraIoTInitialize());
    sim.loadProfile(R"({"board": {"name": "Other", "bios_revision": "X"}})");
    sim.startLog();
    EXPECT_EQ("VB-3200", ReadText(0x1010402));
    EXPECT_EQ("3.2", ReadText(0x1010201));
    EXPECT_EQ("", sim.log());

    vtest::StdoutCapture out;
    EXPECT_EQ(STATUS_INVALID_VALUE, VoraIoTGetMDValue(0x1010402, Own(json_integer(0)).get()));
    EXPECT_EQ(STATUS_NOT_FOUND, VoraIoTGetMDValue(0x1010101, Own(json_string("")).get()));
    EXPECT_EQ(STATUS_UNSUPPORTED, VoraIoTSetMDValue(0x1010402, Own(json_string("")).get()));
    EXPECT_EQ(0u, out.finish().rfind("VORADRV Info Get Value: not a json string\n", 0));
}

TEST(Vora3Info, AFailingItemEndsTheBuild) {
    // The name's buffer ends inside a two-byte character: not UTF-8, so the
    // entry cannot be packed and neither later item is built.
    vtest::UseSimulator(Generation::Vora3, "{\"board\": {\"name\": \"a\\u00e9\"}, \"faults\": ["
                                           "{\"function\": \"VoraCoreGetPlatformName\", "
                                           "\"unterminated\": true}]}");
    vtest::SimControl sim(Generation::Vora3);
    ASSERT_EQ(1u, VORA3Handle::instance()->mVoraDllInit());
    sim.startLog();
    Vora3INFO block;
    vtest::StdoutCapture out;
    EXPECT_EQ(STATUS_ERROR, block.VoraIoTInitialize());
    EXPECT_EQ(
        "VORADrv Info get platform name: json_pack array failed"
        "VORADrv Info init: json_pack array failed\n",
        out.finish());
    EXPECT_EQ(0, sim.count("VoraCoreGetBIOSVersion"));
    EXPECT_EQ(0, sim.count("VoraDllGetVersion"));
    // The text was kept before its entry failed; a JSON string cannot carry it.
    EXPECT_EQ(STATUS_ERROR, block.VoraIoTGetMDValue(0x1010402, Own(json_string("")).get()));
}
