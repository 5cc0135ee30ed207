// Platform information on the fourth-generation library.
#include <gtest/gtest.h>

#include "SimHarness.h"
#include "binding/VORA4Handle.h"
#include "info/Vora4INFO.h"
#include "module/Status.h"
#include "voradrv.h"

using vtest::Dump;
using vtest::Generation;
using vtest::Own;

namespace {

json_t* InfoCapability(vtest::JsonPtr& host) {
    host = Own(json_object());
    EXPECT_EQ(0u, VoraIoTGetMDCapability(host.get()));
    return json_object_get(host.get(), "Platform Information");
}

std::string ReadText(uint32_t id) {
    auto value = Own(json_string(""));
    EXPECT_EQ(0u, VoraIoTGetMDValue(id, value.get())) << std::hex << id;
    return json_string_value(value.get());
}

const json_t* Entry(const json_t* info, uint32_t id) { return vtest::FindElement(info, id); }

}  // namespace

TEST(Vora4Info, DefaultBoardCapabilityMatchesTheGoldenFile) {
    vtest::UseSimulator(Generation::Vora4);
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::JsonPtr host = Own(nullptr);
    vtest::ExpectGolden(InfoCapability(host), "vora4-info.json");
}

TEST(Vora4Info, ValueTextsAndTheirEdges) {
    vtest::UseSimulator(Generation::Vora4, R"({"board": {
        "spec_version": "0x01020000", "boot_count": "0x80000000", "pnp_id": 0,
        "platform_revision": "0xFFFF0000", "driver_version": "0x01020003",
        "library_version": "0xFFFFFFFF"}})");
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::JsonPtr host = Own(nullptr);
    const json_t* info = InfoCapability(host);
    EXPECT_EQ(R"({"n":"Spec version","sv":"1,2","asm":"r","id":16843009})",
              Dump(Entry(info, 0x1010101)));
    // The "i" conversion shows the counter negative; a read shows it as is.
    EXPECT_EQ(R"({"n":"Boot up times","v":-2147483648,"asm":"r","id":16843010,"u":"times"})",
              Dump(Entry(info, 0x1010102)));
    auto integer = Own(json_integer(0));
    EXPECT_EQ(0u, VoraIoTGetMDValue(0x1010102, integer.get()));
    EXPECT_EQ(2147483648, json_integer_value(integer.get()));
    EXPECT_EQ("@@@, 0x0", ReadText(0x1010104));
    EXPECT_EQ("255,255", ReadText(0x1010105));
    EXPECT_EQ("1.2.3", ReadText(0x1010201));
    EXPECT_EQ("255.255.65535", ReadText(0x1010202));
    // A counter read into a string gives the "%u,%u" text, not its number.
    EXPECT_EQ("128,0", ReadText(0x1010102));
}

TEST(Vora4Info, PlugAndPlayIdDecodesTheLibrariesByteOrder) {
    vtest::UseSimulator(Generation::Vora4,
                        R"({"board": {"pnp_id": {"vendor": "VOR", "product": "0x441"}}})");
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ("VOR, 0x441", ReadText(0x1010104));
}

TEST(Vora4Info, GroupsReportWhatTheyAppended) {
    vtest::UseSimulator(Generation::Vora4, R"({"board": {"manufacturer": "Vora"}})");
    ASSERT_EQ(0u, VORA4Handle::instance()->mVoraLibInitialize());
    Vora4INFO block;
    auto array = Own(json_array());
    EXPECT_EQ(1, block.getValueInfo(array.get()));
    EXPECT_EQ(0, block.getStringInfo(array.get()));
    EXPECT_EQ(1, block.getCustomizeString(array.get()));
    EXPECT_EQ(1, block.getVersion(array.get()));
    EXPECT_EQ(R"([{"n":"Board manufacturer","sv":"Vora","asm":"r","id":16843777}])",
              Dump(array.get()));
}

TEST(Vora4Info, AbsentAndEmptyStringsAreNotPublished) {
    vtest::UseSimulator(Generation::Vora4,
                        R"({"board": {"manufacturer": "Vora", "name": "", "revision": "A"}})");
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::JsonPtr host = Own(nullptr);
    const json_t* info = InfoCapability(host);
    EXPECT_EQ(2u, json_array_size(json_object_get(info, "e")));
    EXPECT_EQ(nullptr, Entry(info, 0x1010402));
    auto value = Own(json_string("unchanged"));
    vtest::StdoutCapture out;
    EXPECT_EQ(STATUS_NOT_FOUND, VoraIoTGetMDValue(0x1010402, value.get()));
    EXPECT_EQ(
        "VORADrv Info Get Value: id not found\n"
        "VORADrv get value: function:Platform Information get value failed fffffbff\n",
        out.finish());
    EXPECT_STREQ("unchanged", json_string_value(value.get()));
}

TEST(Vora4Info, CustomerStringsTakeTheirLabelsFromTheLibrary) {
    vtest::UseSimulator(Generation::Vora4, R"({"board": {"customer_strings": [
        {"label": "Asset tag", "value": "LINE3"}, {"label": "Site", "value": ""},
        {"label": "Owner", "value": "Ops"}]}, "faults": [
        {"function": "VoraBoardGetStringA", "arg": "0x90000012", "status": "0xFFFFF0FF"}]})");
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::JsonPtr host = Own(nullptr);
    const json_t* info = InfoCapability(host);
    EXPECT_EQ(R"({"n":"Asset tag","sv":"LINE3","asm":"r","id":16843793})",
              Dump(Entry(info, 0x1010411)));
    EXPECT_EQ(nullptr, Entry(info, 0x1010412));
    // A label the library cannot give is published empty.
    EXPECT_EQ(R"({"n":"","sv":"Ops","asm":"r","id":16843795})", Dump(Entry(info, 0x1010413)));
    EXPECT_EQ("LINE3", ReadText(0x1010411));
}

TEST(Vora4Info, ReadsCheckTheValueTypeAndPassLibraryStatusesOn) {
    vtest::UseSimulator(Generation::Vora4);
    vtest::SimControl sim(Generation::Vora4);
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::StdoutCapture out;
    auto real = Own(json_real(1.5));
    EXPECT_EQ(STATUS_ERROR, VoraIoTGetMDValue(0x1010102, real.get()));
    EXPECT_EQ(STATUS_ERROR, VoraIoTGetMDValue(0x1010102, nullptr));
    EXPECT_EQ(
        "VORADrv Info Get Value: not a json integer or string\n"
        "VORADrv get value: function:Platform Information get value failed fffff0ff\n"
        "VORADrv Info Get Value: not a json integer or string\n"
        "VORADrv get value: function:Platform Information get value failed fffff0ff\n",
        out.finish());
    EXPECT_DOUBLE_EQ(1.5, json_real_value(real.get()));

    sim.addFault(R"({"function": "VoraBoardGetValue", "arg": 1, "status": "0x12345678"})");
    sim.addFault(R"({"function": "VoraBoardGetStringA", "arg": 1, "status": "0x87654321"})");
    auto integer = Own(json_integer(7));
    auto text = Own(json_string("unchanged"));
    vtest::StdoutCapture quiet;
    EXPECT_EQ(0x12345678u, VoraIoTGetMDValue(0x1010102, integer.get()));
    EXPECT_EQ(0x87654321u, VoraIoTGetMDValue(0x1010402, text.get()));
    quiet.finish();
    EXPECT_EQ(7, json_integer_value(integer.get()));
    EXPECT_STREQ("unchanged", json_string_value(text.get()));
    // Any item reads into an integer as its board value: a board string's id
    // asks the board value of the same position.
    EXPECT_EQ(0u, VoraIoTGetMDValue(0x1010403, integer.get()));
    EXPECT_EQ(18766, json_integer_value(integer.get()));
}

TEST(Vora4Info, NothingIsWritable) {
    vtest::UseSimulator(Generation::Vora4);
    ASSERT_EQ(0u, VORA4Handle::instance()->mVoraLibInitialize());
    Vora4INFO block;
    auto value = Own(json_string("x"));
    EXPECT_EQ(STATUS_UNSUPPORTED, block.VoraIoTSetMDValue(0x1010402, value.get()));
    EXPECT_EQ(STATUS_UNSUPPORTED, block.VoraIoTSetMDValue(0xFFFFFFFF, nullptr));
}
