// A board with only an Embedded API library, seen through the module.
#include <gtest/gtest.h>

#include "SimHarness.h"
#include "module/ModuleState.h"
#include "module/Status.h"
#include "voradrv.h"

using vtest::Generation;
using vtest::Own;

TEST(EApiModule, FourBlocksAndNoNetwork) {
    vtest::UseSimulator(Generation::EApi);
    vtest::SimControl sim(Generation::EApi);
    sim.startLog();
    vtest::StdoutCapture out;
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ("", out.finish());
    ASSERT_EQ(5u, functions.size());
    EXPECT_EQ(nullptr, functions[4]);
    auto document = vtest::ModuleCapability();
    const char* key;
    json_t* block;
    std::string blocks;
    json_object_foreach(document.get(), key, block) { blocks += std::string(key) + ";"; }
    EXPECT_EQ("Platform Information;Hardware Monitor;GPIO;Backlight;", blocks);

    vtest::StdoutCapture quiet;
    EXPECT_EQ(STATUS_UNSUPPORTED, VoraIoTGetMDValue(0x10B0101, Own(json_integer(0)).get()));
    EXPECT_EQ("VORADrv get value: function id not found\n", quiet.finish());

    // Every block and package goes once, twice over (the sanitizers check).
    EXPECT_EQ(0u, VoraIoTUninitialize());
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ(0u, VoraIoTUninitialize());
    EXPECT_EQ(2, sim.count("EApiLibUnInitialize"));
    EXPECT_STREQ("GPIO", json_string_value(json_object_get(json_object_get(document.get(), "GPIO"), "bn")));
}
