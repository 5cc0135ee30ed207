// voractl end to end: the built program against the simulated board.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "RunTool.h"
#include "SimHarness.h"
#include "VoractlRun.h"

using vtest::RunTool;
using vtest::ToolResult;

using vtest::Lines;
using vtest::Voractl;

namespace {

// The number of item lines in list's output (headings left out).
long ItemLines(const std::string& out) {
    long n = 0;
    for (const std::string& line : Lines(out)) {
        n += line.rfind("    0x", 0) == 0 ? 1 : 0;
    }
    return n;
}

// The last column of a table line.
std::string Last(const std::string& line) {
    const size_t gap = line.rfind("  ");
    return gap == std::string::npos ? line : line.substr(gap + 2);
}

}  // namespace

TEST(Voractl, ListGroupsItemsByBlockAndGroup) {
    const ToolResult r = Voractl({"--sim", "list"});
    EXPECT_EQ(0, r.status) << r.err;
    EXPECT_EQ("", r.err);
    // Headings for each block and group, in document order, items below.
    EXPECT_EQ(0u, r.out.find("Platform Information\n    0x1010101  Spec version  "));
    size_t at = 0;
    for (const char* heading : {"\nHardware Monitor\n  Voltage\n    0x1020201  VCORE  ",
                                "\n  Temperature\n    0x1020101  CPU  ", "\nGPIO\n  DI0\n",
                                "\nBacklight\n  LVDS\n", "\nOOB-Network\n  OOBNetwork0\n"}) {
        const size_t next = r.out.find(heading, at);
        EXPECT_NE(std::string::npos, next) << heading;
        at = next == std::string::npos ? at : next;
    }
    // Columns line up: every value starts where the board name's does.
    const std::vector<std::string> lines = Lines(r.out);
    const size_t column = r.out.find("VB-4410") - r.out.rfind('\n', r.out.find("VB-4410")) - 1;
    for (const std::string& line : lines) {
        if (line.rfind("    0x", 0) == 0) {
            EXPECT_EQ(' ', line[column - 1]) << line;
            EXPECT_NE(' ', line[column]) << line;
        }
    }
    EXPECT_NE(std::string::npos, r.out.find("1342 times"));
    EXPECT_NE(std::string::npos, r.out.find("Asset tag"));
}

TEST(Voractl, ListMarksReadOnlyItems) {
    const ToolResult r = Voractl({"--sim", "list"});
    ASSERT_EQ(0, r.status) << r.err;
    const std::vector<std::string> lines = Lines(r.out);
    auto lineOf = [&](const char* id) {
        for (const std::string& line : lines) {
            if (line.find(id) != std::string::npos) {
                return line;
            }
        }
        return std::string();
    };
    EXPECT_NE(std::string::npos, lineOf("0x1040201  Dir").find("  in  ")) ;
    EXPECT_EQ("read-only", Last(lineOf("0x1040201")));   // DI0's direction
    EXPECT_EQ("read-only", Last(lineOf("0x1020201")));   // a voltage
    EXPECT_EQ("high", Last(lineOf("0x1040304")));        // DO1's level is settable
    EXPECT_EQ("80", Last(lineOf("0x1050501")));          // brightness too
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
    for (const char* row : {"0x10B0004  Network MAC address             00:0B:AB:12:34:5F\n",
                            "0x10B0005  Modified device IP              192.168.10.20\n",
                            "0x10B0010  Server IP/Port                  192.168.10.5:623  ",
                            "0x10B0003  Network host name               vb4410-bmc\n"}) {
        EXPECT_NE(std::string::npos, r.out.find(row)) << row;
    }

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
    // Readings the way `sensors` shows them; two-state values in words.
    for (const char* text : {"CPU                             +48.5 °C ", " 1.050 V ", " 2400 RPM ",
                             " 1.250 A ", " 12.096 V ", "Chassis intrusion", "18766 hours",
                             "Dir                             in ", "Level                           high",
                             "low", "out", "200 Hz", "Backlight                       on",
                             "  Relay K1 coil driver, 24 V iso*\n"}) {
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
    // 3 information items, 9 sensors, 8 pins of two items, 1 brightness.
    EXPECT_EQ(3 + 9 + 16 + 1, ItemLines(r.out));
    for (const char* text :
         {"Platform Information\n", "    0x1010402  Board name      VB-3200   read-only\n",
          "    0x1010405  BIOS revision   3.20.R14  read-only\n",
          "    0x1010201  Driver version  3.2       read-only\n",
          "\nHardware Monitor\n  Voltage\n",
          "    0x1020203  V3.3            3.304 V   read-only\n",
          "    0x1020208  VBAT            3.041 V   read-only\n",
          "    0x1020103  AUX             +38.0 °C  read-only\n", "+52.3 °C",
          "  Fan Speed\n", "    0x1020302  System          1420 RPM  read-only\n",
          "\nGPIO\n  GPIO0\n    0x1040201  Dir             in        read-only\n",
          "  GPIO3\n    0x1040204  Dir             out       read-only\n"
          "    0x1040304  Level           low\n",
          "    0x1040308  Level           low\n",
          "\nBacklight\n  VGA\n    0x1050501  Brightness      70\n"}) {
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
    // 13 + 9 + 12 + 4 items.
    EXPECT_EQ(38, ItemLines(r.out)) << r.out;
    for (const char* text :
         {"    0x1010402  Board name                  VB-2150              read-only\n",
          "VOR, 0x215", "2.3.9", "    0x1020201  V5                          5.034 V ",
          "12.050 V", "+3189.0 °C", "3100 RPM", "0.840 A", "  GPIO5\n",
          "  Backlight 2\n    0x1050402  Backlight                   on\n"
          "    0x1050502  Brightness                  100\n"}) {
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
