// voractl end to end: the built program against the simulated board.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "RunTool.h"
#include "SimHarness.h"

using vtest::RunTool;
using vtest::ToolResult;

namespace {

// Runs voractl with a simulated board of its own: the board kept between
// runs lives in a file of this test process alone.
ToolResult Voractl(const std::vector<std::string>& arguments) {
    static const std::string state = "/tmp/vtest-board-" + std::to_string(getpid()) + ".json";
    static const bool once = [] {
        unlink(state.c_str());
        std::atexit([] { unlink(state.c_str()); });
        return true;
    }();
    (void)once;
    setenv("VORA_SIM_STATE", state.c_str(), 1);
    setenv("VORA_SIM_TIME", "0", 1);
    return RunTool(VTEST_VORACTL, arguments);
}

}  // namespace

TEST(Voractl, ListShowsEveryItemWithItsValue) {
    const ToolResult r = Voractl({"--sim", "list"});
    EXPECT_EQ(0, r.status) << r.err;
    EXPECT_EQ("", r.err);
    EXPECT_EQ(0u, r.out.find("ID         BLOCK                 GROUP"));
    // Columns are as wide as their widest entry, so look at the row alone.
    const size_t row = r.out.find("\n0x1010402  Platform Information  -  ");
    ASSERT_NE(std::string::npos, row);
    const std::string line = r.out.substr(row, r.out.find('\n', row + 1) - row);
    EXPECT_NE(std::string::npos, line.find("Board name"));
    EXPECT_NE(std::string::npos, r.out.find("VB-4410"));
    EXPECT_NE(std::string::npos, r.out.find("1342 times"));
    EXPECT_NE(std::string::npos, r.out.find("Asset tag"));
}

TEST(Voractl, GetByPathAndById) {
    ToolResult r = Voractl({"--sim", "get", "Platform Information/Board name"});
    EXPECT_EQ(0, r.status);
    EXPECT_EQ("VB-4410\n", r.out);
    r = Voractl({"--sim", "get", "0x1010102", "Platform Information/Driver version"});
    EXPECT_EQ(0, r.status);
    EXPECT_EQ(
        "Platform Information/Boot up times: 1342 times\n"
        "Platform Information/Driver version: 4.0.12\n",
        r.out);
}

TEST(Voractl, JsonOutputStaysWholeWhenAReadFails) {
    const ToolResult r = Voractl({"--sim", "get", "--json", "--type", "int", "0x1010777"});
    EXPECT_EQ(1, r.status);
    auto json = vtest::Parse(r.out);
    EXPECT_TRUE(json_is_null(json_object_get(json.get(), "value")));
    EXPECT_STREQ("not found (0xFFFFFBFF)", json_string_value(json_object_get(json.get(), "error")));
    // The module's own diagnostics went to standard error.
    EXPECT_NE(std::string::npos, r.err.find("VORADrv Info Get Value: id not found"));
    EXPECT_NE(std::string::npos, r.err.find("voractl: cannot read 0x1010777"));

    const ToolResult list = Voractl({"--sim", "list", "--json"});
    EXPECT_EQ(0, list.status);
    auto items = vtest::Parse(list.out);
    ASSERT_TRUE(json_is_array(items.get()));
    EXPECT_GE(json_array_size(items.get()), 22u);
}

TEST(Voractl, NetworkItemsAreListedAsTextAndSetByPath) {
    ToolResult r = Voractl({"--sim", "list"});
    EXPECT_EQ(0, r.status) << r.err;
    // The texts show without their "HEX" and "DEC" hints.
    for (const char* row : {"Network MAC address             00:0B:AB:12:34:5F  ",
                            "Modified device IP              192.168.10.20  ",
                            "Server IP/Port                  192.168.10.5:623  ",
                            "Network host name               vb4410-bmc  "}) {
        EXPECT_NE(std::string::npos, r.out.find(row)) << row;
    }
    EXPECT_NE(std::string::npos, r.out.find("0x10B0004  OOB-Network           OOBNetwork0  "));

    for (const auto& [item, value] : {
             std::pair{"OOB-Network/OOBNetwork0/Modified device IP", "192.168.1.20"},
             std::pair{"OOB-Network/OOBNetwork0/Network MAC address", "00:0b:ab:00:00:01"},
             std::pair{"OOB-Network/OOBNetwork0/Network host name", "line3-bmc"}}) {
        r = Voractl({"--sim", "set", item, value});
        EXPECT_EQ(0, r.status) << item << ": " << r.err;
        EXPECT_EQ("", r.out + r.err);
    }
    r = Voractl({"--sim", "set", "OOB-Network/OOBNetwork0/Modified device IP", "192.168.1"});
    EXPECT_EQ(1, r.status);
    EXPECT_EQ("voractl: cannot set OOB-Network/OOBNetwork0/Modified device IP to 192.168.1: "
              "error (0xFFFFF0FF)\n",
              r.err);
    EXPECT_EQ("VORADrv set value: function:OOB-Network set value failed\n", r.out);
}

TEST(Voractl, CapsPrintsTheDocument) {
    const ToolResult r = Voractl({"--sim", "caps"});
    EXPECT_EQ(0, r.status);
    auto document = vtest::Parse(r.out);
    EXPECT_TRUE(json_is_object(json_object_get(document.get(), "Platform Information")));
}

TEST(Voractl, FailuresAndUsageErrorsHaveTheirExitStatus) {
    ToolResult r = Voractl({"--sim", "set", "Platform Information/Board name", "X"});
    EXPECT_EQ(1, r.status);
    EXPECT_EQ("voractl: cannot set Platform Information/Board name to X: unsupported (0xFFFFFCFF)\n",
              r.err);
    EXPECT_EQ("VORADrv set value: function:Platform Information set value failed\n", r.out);

    r = Voractl({"--sim", "get", "Platform Information/Nothing"});
    EXPECT_EQ(2, r.status);
    EXPECT_EQ("voractl: no item \"Platform Information/Nothing\" (see voractl list)\n", r.err);
    r = Voractl({"--sim", "get", "0x1010777"});
    EXPECT_EQ(2, r.status);
    EXPECT_EQ(2, Voractl({}).status);
    EXPECT_EQ(2, Voractl({"--bogus", "list"}).status);
    EXPECT_EQ(2, Voractl({"--sim", "frobnicate"}).status);
    EXPECT_EQ(2, Voractl({"--sim", "set", "0x1010402"}).status);
    EXPECT_EQ(2, Voractl({"--sim", "get", "--type", "bool", "0x1010402"}).status);
    r = Voractl({"--help"});
    EXPECT_EQ(0, r.status);
    EXPECT_EQ(0u, r.out.find("Usage: voractl"));
    r = Voractl({"get", "--help"});
    EXPECT_EQ(0, r.status);
    EXPECT_EQ(0u, r.out.find("Usage: voractl get"));
}

TEST(Voractl, ProfileAndModuleOptions) {
    const std::string profile =
        vtest::WriteTempFile(R"({"board": {"name": "Bench board", "boot_count": 3}})");
    ToolResult r = Voractl({"--sim=" + profile, "get", "Platform Information/Board name"});
    EXPECT_EQ(0, r.status) << r.err;
    EXPECT_EQ("Bench board\n", r.out);

    r = Voractl({"--module", "/nonexistent/libVORADrv.so", "--sim", "list"});
    EXPECT_EQ(1, r.status);
    EXPECT_EQ(0u, r.err.find("voractl: cannot load the module /nonexistent/libVORADrv.so"));

    // Without a board library the module cannot come up.
    r = RunTool(VTEST_VORACTL, {"--sim=/nonexistent.json", "list"});
    EXPECT_EQ(1, r.status);
    EXPECT_EQ(0u, r.err.find("voractl: cannot read the board profile /nonexistent.json"));
}

TEST(Voractl, ListShowsUnitsAndStatesInWords) {
    const ToolResult r = Voractl({"--sim", "list"});
    EXPECT_EQ(0, r.status) << r.err;
    for (const char* text : {"Hardware Monitor      Temperature", "48.5 °C", "1.05 V", "2400 RPM",
                             "1.25 A", "Chassis intrusion", "DI0", "high", "low", "in ", "out",
                             "200 Hz", "on ", "Relay K1 coil driver, 24 V iso*"}) {
        EXPECT_NE(std::string::npos, r.out.find(text)) << text;
    }
}

TEST(Voractl, SetThenGetRoundTripsOnTheSimulatedBoard) {
    EXPECT_EQ("high\n", Voractl({"--sim", "get", "GPIO/DO1/Level"}).out);
    EXPECT_EQ(0, Voractl({"--sim", "set", "GPIO/DO1/Level", "0"}).status);
    EXPECT_EQ("low\n", Voractl({"--sim", "get", "GPIO/DO1/Level"}).out);
    EXPECT_EQ(0, Voractl({"--sim", "set", "Backlight/LVDS/Brightness", "50"}).status);
    EXPECT_EQ("50\n", Voractl({"--sim", "get", "Backlight/LVDS/Brightness"}).out);
    EXPECT_EQ(0, Voractl({"--sim", "set", "Backlight/eDP/Backlight", "0"}).status);
    EXPECT_EQ("off\n", Voractl({"--sim", "get", "Backlight/eDP/Backlight"}).out);

    const ToolResult refused = Voractl({"--sim", "set", "Backlight/LVDS/Brightness", "500"});
    EXPECT_EQ(1, refused.status);
    EXPECT_EQ("voractl: cannot set Backlight/LVDS/Brightness to 500: library status (0xFFFFFEFF)\n",
              refused.err);
    EXPECT_EQ("50\n", Voractl({"--sim", "get", "Backlight/LVDS/Brightness"}).out);

    // --sim-reset starts again from the profile.
    EXPECT_EQ("80\n", Voractl({"--sim", "--sim-reset", "get", "Backlight/LVDS/Brightness"}).out);
    EXPECT_EQ("high\n", Voractl({"--sim", "get", "GPIO/DO1/Level"}).out);
}

TEST(Voractl, ThirdGenerationListShowsEveryItem) {
    const ToolResult r = Voractl({"--sim", "--sim-generation", "3", "list"});
    EXPECT_EQ(0, r.status) << r.err;
    EXPECT_EQ("", r.err);
    // Header, 3 information items, 9 sensors, 8 pins of two items, 1 brightness.
    EXPECT_EQ(1 + 3 + 9 + 16 + 1, std::count(r.out.begin(), r.out.end(), '\n'));
    for (const char* text :
         {"0x1010402  Platform Information  -            Board name      VB-3200",
          "0x1010405  Platform Information  -            BIOS revision   3.20.R14",
          "0x1010201  Platform Information  -            Driver version  3.2",
          "0x1020203  Hardware Monitor      Voltage      V3.3            3.304 V",
          "0x1020208  Hardware Monitor      Voltage      VBAT            3.041 V",
          "0x1020103  Hardware Monitor      Temperature  AUX", "52.3 °C",
          "0x1020302  Hardware Monitor      Fan Speed    System          1420 RPM",
          "0x1040201  GPIO                  GPIO0        Dir             in        r",
          "0x1040304  GPIO                  GPIO3        Level           low       rw",
          "0x1040308  GPIO                  GPIO7        Level           low       rw",
          "0x1050501  Backlight             VGA          Brightness      70        rw"}) {
        EXPECT_NE(std::string::npos, r.out.find(text)) << text;
    }
}

TEST(Voractl, ThirdGenerationSetRoundTripsAPinAndTheBrightness) {
    const std::vector<std::string> sim = {"--sim", "--sim-generation", "3"};
    auto run = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), sim.begin(), sim.end());
        return Voractl(arguments);
    };
    EXPECT_EQ("low\n", run({"get", "GPIO/GPIO3/Level"}).out);
    EXPECT_EQ(0, run({"set", "GPIO/GPIO3/Level", "1"}).status);
    EXPECT_EQ("high\n", run({"get", "GPIO/GPIO3/Level"}).out);
    EXPECT_EQ(0, run({"set", "Backlight/VGA/Brightness", "120"}).status);
    EXPECT_EQ("120\n", run({"get", "Backlight/VGA/Brightness"}).out);
}

TEST(Voractl, RunSimulatedPutsTheSimulatorUnderAnyCommand) {
    const std::string script = std::string(VTEST_SIM_DIR) + "/run-simulated";
    unsetenv("VORA_SIM_STATE");
    ToolResult r = RunTool(script, {"--generation", "4", "--under", "/usr/lib64", "--",
                                    VTEST_VORACTL, "get", "Platform Information/Board name"});
    EXPECT_EQ(0, r.status) << r.err;
    EXPECT_EQ("VB-4410\n", r.out);
    r = RunTool(script, {"--generation", "7", "--", VTEST_VORACTL, "list"});
    EXPECT_EQ(2, r.status);
}

TEST(Voractl, EApiBoardListsEveryItemAndTakesWrites) {
    const ToolResult r = Voractl({"--sim", "--sim-generation", "eapi", "list"});
    EXPECT_EQ(0, r.status) << r.err;
    EXPECT_EQ("", r.err);
    // A header and 13 + 9 + 12 + 4 items.
    EXPECT_EQ(39, std::count(r.out.begin(), r.out.end(), '\n')) << r.out;
    for (const char* text :
         {"0x1010402  Platform Information  -            Board name                  VB-2150  ",
          "VOR, 0x215", "2.3.9", "0x1020201  Hardware Monitor      Voltage      V5", "12.05 V",
          "3189 °C", "3100 RPM", "0.84 A", "GPIO5",
          "Backlight 2  Backlight                   on",
          "Backlight 2  Brightness                  100"}) {
        EXPECT_NE(std::string::npos, r.out.find(text)) << text;
    }
    for (const char* text : {"Unknown", "Board manufacturer", "Board serial number",
                             "OOB-Network", "Case Open", "Frequency"}) {
        EXPECT_EQ(std::string::npos, r.out.find(text)) << text;
    }

    const std::vector<std::string> eapi = {"--sim", "--sim-generation", "eapi"};
    auto run = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), eapi.begin(), eapi.end());
        return Voractl(arguments);
    };
    EXPECT_EQ("high\n", run({"get", "GPIO/GPIO5/Level"}).out);
    EXPECT_EQ(0, run({"set", "GPIO/GPIO5/Level", "0"}).status);
    EXPECT_EQ("low\n", run({"get", "GPIO/GPIO5/Level"}).out);
    EXPECT_EQ(0, run({"set", "GPIO/GPIO4/Dir", "0"}).status);
    EXPECT_EQ("out\n", run({"get", "GPIO/GPIO4/Dir"}).out);
    EXPECT_EQ(0, run({"set", "Backlight/Backlight 1/Brightness", "35"}).status);
    EXPECT_EQ("35\n", run({"get", "Backlight/Backlight 1/Brightness"}).out);
    // Writing 1 turns the backlight on, which this library reads back as 0.
    EXPECT_EQ(0, run({"set", "Backlight/Backlight 2/Backlight", "1"}).status);
    EXPECT_EQ("off\n", run({"get", "Backlight/Backlight 2/Backlight"}).out);
}
