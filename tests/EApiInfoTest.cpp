// Platform information on an Embedded API library.
#include <gtest/gtest.h>

#include "SimHarness.h"
#include "binding/ECTL2Handle.h"
#include "info/eCtl2INFO.h"
#include "module/Status.h"
#include "voradrv.h"

using vtest::Dump;
using vtest::Generation;
using vtest::Own;

namespace {

json_t* InfoCapability(vtest::JsonPtr& host) {
    host = vtest::ModuleCapability();
    return json_object_get(host.get(), "Platform Information");
}

std::string ReadText(uint32_t id) {
    return json_string_value(vtest::ReadItem(id, JSON_STRING).get());
}

// Longer than the 32 bytes a string is built through.
const char kLong[] = "VB2150-0000000000000000000000000000001";

}  // namespace

TEST(EApiInfo, DefaultBoardCapabilityMatchesTheGoldenFile) {
    vtest::UseSimulator(Generation::EApi);
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::JsonPtr host = Own(nullptr);
    vtest::ExpectGolden(InfoCapability(host), "eapi-info.json");
}

TEST(EApiInfo, UnknownLineFeedAndTooLongStringsWhileBuilding) {
    vtest::UseSimulator(Generation::EApi, std::string(R"({"board": {"manufacturer": "Unknown",
        "name": "ABC\n", "revision": "", "serial_number": ")") + kLong + R"(",
        "bios_revision": "Unknown\n", "boot_count": 5}})");
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::JsonPtr host = Own(nullptr);
    const json_t* info = InfoCapability(host);
    EXPECT_EQ(nullptr, vtest::FindElement(info, 0x1010401));  // "Unknown"
    EXPECT_EQ(R"({"n":"Board name","sv":"ABC","asm":"r","id":16843778})",
              Dump(vtest::FindElement(info, 0x1010402)));
    EXPECT_EQ(nullptr, vtest::FindElement(info, 0x1010403));  // empty
    EXPECT_EQ(nullptr, vtest::FindElement(info, 0x1010404));  // too long for 32 bytes
    // "Unknown" is compared before the line feed goes.
    EXPECT_EQ("Unknown", std::string(json_string_value(
                             json_object_get(vtest::FindElement(info, 0x1010405), "sv"))));
    EXPECT_EQ("ABC", ReadText(0x1010402));

    vtest::StdoutCapture out;
    uint32_t status = 0;
    vtest::ReadItem(0x1010401, JSON_STRING, &status);
    EXPECT_EQ(STATUS_NOT_FOUND, status);
    vtest::ReadItem(0x1010411, JSON_STRING, &status);  // no customer strings here
    EXPECT_EQ(STATUS_NOT_FOUND, status);
    EXPECT_EQ(STATUS_UNSUPPORTED, VoraIoTSetMDValue(0x1010402, Own(json_string("X")).get()));
    EXPECT_EQ(0u, out.finish().find("VORADrv Info Get Value: id not found\n"));
}

TEST(EApiInfo, AStringTooLongToPublishStillCounts) {
    vtest::UseSimulator(Generation::EApi,
                        std::string(R"({"board": {"serial_number": ")") + kLong + R"("}})");
    ASSERT_EQ(0u, ECTL2Handle::instance()->mEApiLibInitialize());
    eCtl2INFO block;
    auto array = Own(json_array());
    EXPECT_EQ(0, block.getStringInfo(array.get()));
    EXPECT_EQ(1, block.getValueInfo(array.get()));
    EXPECT_EQ(1, block.getVersion(array.get()));
    EXPECT_EQ(0u, json_array_size(array.get()));

    // "Unknown" and empty strings do not count.
    vtest::SimControl sim(Generation::EApi);
    sim.loadProfile(R"({"board": {"manufacturer": "Unknown", "name": ""}})");
    eCtl2INFO other;
    EXPECT_EQ(1, other.getStringInfo(array.get()));
}

TEST(EApiInfo, ReadsUseTheFullBufferAndKeepUnknown) {
    vtest::UseSimulator(Generation::EApi, R"({"board": {"name": "VB", "revision": "A"}})");
    vtest::SimControl sim(Generation::EApi);
    ASSERT_EQ(0u, VoraIoTInitialize());
    sim.loadProfile(std::string(R"({"board": {"name": ")") + kLong +
                    R"(\n", "revision": "Unknown"}})");
    EXPECT_EQ(kLong, ReadText(0x1010402));
    EXPECT_EQ("Unknown", ReadText(0x1010403));
}

TEST(EApiInfo, LengthsTheLibraryReportsStayWithinTheBuffer) {
    vtest::UseSimulator(Generation::EApi, R"({"board": {"manufacturer": "Vora\n",
        "name": "VB-2150\n", "revision": "C"}, "faults": [
        {"function": "EApiBoardGetStringA", "arg": 0, "length": 100000},
        {"function": "EApiBoardGetStringA", "arg": 1, "length": 0},
        {"function": "EApiBoardGetStringA", "arg": 2, "unterminated": true}]})");
    vtest::SimControl sim(Generation::EApi);
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::JsonPtr host = Own(nullptr);
    const json_t* info = InfoCapability(host);
    auto text = [&](uint32_t id) {
        return std::string(json_string_value(json_object_get(vtest::FindElement(info, id), "sv")));
    };
    // A length outside the buffer (or none) leaves the text as it is.
    EXPECT_EQ("Vora\n", text(0x1010401));
    EXPECT_EQ("VB-2150\n", text(0x1010402));
    // A text that fills the 32 bytes is ended after them.
    EXPECT_EQ(std::string(32, 'C'), text(0x1010403));
    EXPECT_EQ(std::string(64, 'C'), ReadText(0x1010403));
    EXPECT_EQ("Vora\n", ReadText(0x1010401));
}
