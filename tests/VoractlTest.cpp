// voractl end to end: the built program against the simulated board of each
// generation. list is held to a golden file per generation, caps to the
// golden capability documents; get, set, watch and export run on all three.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <map>
#include <string>
#include <vector>

#include "Exposition.h"
#include "RunTool.h"
#include "SimHarness.h"
#include "VoractlRun.h"

using namespace vtest;

namespace {

class Generations : public ::testing::TestWithParam<std::string> {
protected:
    // voractl with --sim on this generation's default board.
    ToolResult run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"--sim", "--sim-generation", GetParam()});
        return Voractl(arguments);
    }
    // The golden files' name of the generation.
    std::string prefix() const { return GetParam() == "eapi" ? "eapi" : "vora" + GetParam(); }
};

// Items written by path and read back: before, the value written, after.
struct RoundTrip {
    std::string generation;
    std::string path;
    std::string before;
    std::string value;
    std::string after;
};

const RoundTrip kRoundTrips[] = {
    {"4", "GPIO/DO1/Level", "high", "0", "low"},
    {"4", "Backlight/LVDS/Brightness", "80", "50", "50"},
    {"4", "Backlight/eDP/Backlight", "on", "0", "off"},
    {"4", "OOB-Network/OOBNetwork0/Modified device IP", "192.168.10.20", "192.168.1.20",
     "192.168.1.20"},
    {"4", "OOB-Network/OOBNetwork0/Network MAC address", "00:0B:AB:12:34:5F",
     "00:0b:ab:00:00:01", "00:0B:AB:00:00:01"},
    {"4", "OOB-Network/OOBNetwork0/Network host name", "vb4410-bmc", "line3-bmc", "line3-bmc"},
    {"3", "GPIO/GPIO3/Level", "low", "1", "high"},
    {"3", "Backlight/VGA/Brightness", "70", "120", "120"},
    {"eapi", "GPIO/GPIO5/Level", "high", "0", "low"},
    {"eapi", "GPIO/GPIO4/Dir", "in", "0", "out"},
    {"eapi", "Backlight/Backlight 1/Brightness", "60", "35", "35"},
    // Writing 1 turns the backlight on, which this library reads back as 0.
    {"eapi", "Backlight/Backlight 2/Backlight", "on", "1", "off"},
};

}  // namespace

TEST_P(Generations, ListMatchesTheGoldenFile) {
    const ToolResult r = run({"list"});
    EXPECT_EQ(0, r.status);
    EXPECT_EQ("", r.err);
    ExpectGoldenText(r.out, "voractl-list-" + prefix() + ".txt");
    // The same items for scripts.
    size_t items = 0;
    for (const std::string& line : Lines(r.out)) {
        items += line.rfind("    0x", 0) == 0;
    }
    EXPECT_EQ(items, json_array_size(Parse(run({"list", "--json"}).out).get()));
}

TEST_P(Generations, CapsPrintsTheGoldenDocument) {
    static const std::map<std::string, std::string> kFiles = {
        {"Platform Information", "info"}, {"Hardware Monitor", "hwm"}, {"GPIO", "gpio"},
        {"Backlight", "backlight"},       {"OOB-Network", "network"}};
    const ToolResult r = run({"caps"});
    ASSERT_EQ(0, r.status) << r.err;
    const JsonPtr document = Parse(r.out);
    EXPECT_EQ(GetParam() == "4" ? 5u : 4u, json_object_size(document.get()));
    const char* key;
    json_t* block;
    json_object_foreach(document.get(), key, block) {
        ExpectGolden(block, prefix() + "-" + kFiles.at(key) + ".json");
    }
}

TEST_P(Generations, SetThenGetRoundTripsByPath) {
    const RoundTrip* first = nullptr;
    for (const RoundTrip& t : kRoundTrips) {
        if (t.generation != GetParam()) {
            continue;
        }
        first = first != nullptr ? first : &t;
        EXPECT_EQ(t.before + "\n", run({"get", t.path}).out) << t.path;
        const ToolResult set = run({"set", t.path, t.value});
        EXPECT_EQ(0, set.status) << t.path;
        EXPECT_EQ("", set.out + set.err) << t.path;
        EXPECT_EQ(t.after + "\n", run({"get", t.path}).out) << t.path;
    }
    // --sim-reset starts again from the profile.
    ASSERT_NE(nullptr, first);
    EXPECT_EQ(first->before + "\n", run({"--sim-reset", "get", first->path}).out);
}

TEST_P(Generations, WatchFollowsTheHardwareMonitor) {
    const ToolResult r = run({"watch", "--count", "2", "--interval", "0.05"});
    ASSERT_EQ(0, r.status) << r.err;
    const std::vector<std::string> lines = Lines(r.out);
    ASSERT_EQ(2u, lines.size());
    EXPECT_NE(std::string::npos, lines[0].find("  Voltage/")) << lines[0];
    EXPECT_NE(std::string::npos, lines[0].find("  Temperature/")) << lines[0];
}

// Metric names and labels after node_exporter's hwmon conventions, an info
// metric with the board's texts; SenML records without the time of the
// export.
TEST_P(Generations, ExportMatchesTheGoldenFiles) {
    ToolResult r = run({"export", "--format", "prometheus"});
    ASSERT_EQ(0, r.status) << r.err;
    EXPECT_EQ("", ExpositionProblems(r.out));
    EXPECT_EQ("", PromtoolProblems(r.out));
    ExpectGoldenText(r.out, "voractl-export-" + prefix() + ".prom");
    r = run({"export", "--format", "senml"});
    ASSERT_EQ(0, r.status) << r.err;
    const JsonPtr pack = Parse(r.out);
    EXPECT_EQ(0, json_object_del(json_array_get(pack.get(), 0), "bt"));
    ExpectGolden(pack.get(), "voractl-export-" + prefix() + ".senml.json");
    EXPECT_EQ(json_array_size(Parse(run({"list", "--json"}).out).get()),
              json_array_size(pack.get()))
        << "a record per item";
}

INSTANTIATE_TEST_SUITE_P(Voractl, Generations, ::testing::Values("4", "3", "eapi"),
                         [](const ::testing::TestParamInfo<std::string>& info) {
                             return info.param == "4"   ? "Vora4"
                                    : info.param == "3" ? "Vora3"
                                                        : "EApi";
                         });

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

TEST(Voractl, FailuresAndUsageErrorsHaveTheirExitStatus) {
    ToolResult r = Voractl({"--sim", "set", "Platform Information/Board name", "X"});
    EXPECT_EQ(1, r.status);
    EXPECT_EQ("voractl: cannot set Platform Information/Board name to X: unsupported (0xFFFFFCFF)\n",
              r.err);
    EXPECT_EQ("VORADrv set value: function:Platform Information set value failed\n", r.out);
    // A malformed address is refused, and nothing written.
    r = Voractl({"--sim", "set", "OOB-Network/OOBNetwork0/Modified device IP", "192.168.1"});
    EXPECT_EQ(1, r.status);
    EXPECT_EQ("voractl: cannot set OOB-Network/OOBNetwork0/Modified device IP to 192.168.1: "
              "error (0xFFFFF0FF)\n",
              r.err);
    EXPECT_EQ("192.168.10.20\n",
              Voractl({"--sim", "get", "OOB-Network/OOBNetwork0/Modified device IP"}).out);
    r = Voractl({"--sim", "set", "Backlight/LVDS/Brightness", "500"});
    EXPECT_EQ(1, r.status);
    EXPECT_EQ("voractl: cannot set Backlight/LVDS/Brightness to 500: library status (0xFFFFFEFF)\n",
              r.err);

    r = Voractl({"--sim", "get", "Platform Information/Nothing"});
    EXPECT_EQ(2, r.status);
    EXPECT_EQ("voractl: no item \"Platform Information/Nothing\" (see voractl list)\n", r.err);
    for (const std::vector<std::string>& usage :
         std::vector<std::vector<std::string>>{{},
                                               {"--bogus", "list"},
                                               {"--sim", "frobnicate"},
                                               {"--sim", "get", "0x1010777"},
                                               {"--sim", "set", "0x1010402"},
                                               {"--sim", "get", "--type", "bool", "0x1010402"}}) {
        EXPECT_EQ(2, Voractl(usage).status) << ::testing::PrintToString(usage);
    }
    r = Voractl({"--help"});
    EXPECT_EQ(0, r.status);
    EXPECT_EQ(0u, r.out.find("Usage: voractl"));
    r = Voractl({"get", "--help"});
    EXPECT_EQ(0, r.status);
    EXPECT_EQ(0u, r.out.find("Usage: voractl get"));
}

TEST(Voractl, ProfileAndModuleOptions) {
    const std::string profile =
        WriteTempFile(R"({"board": {"name": "Bench board", "boot_count": 3}})");
    ToolResult r = Voractl({"--sim=" + profile, "get", "Platform Information/Board name"});
    EXPECT_EQ(0, r.status) << r.err;
    EXPECT_EQ("Bench board\n", r.out);

    r = Voractl({"--module", "/nonexistent/libVORADrv.so", "--sim", "list"});
    EXPECT_EQ(1, r.status);
    EXPECT_EQ(0u, r.err.find("voractl: cannot load the module /nonexistent/libVORADrv.so"));

    // Without a board library the module cannot come up.
    r = RunTool(VoractlPath(), {"--sim=/nonexistent.json", "list"});
    EXPECT_EQ(1, r.status);
    EXPECT_EQ(0u, r.err.find("voractl: cannot read the board profile /nonexistent.json"));
}

TEST(Voractl, RunSimulatedPutsTheSimulatorUnderAnyCommand) {
    const std::string script = std::string(VTEST_SIM_DIR) + "/run-simulated";
    unsetenv("VORA_SIM_STATE");
    ToolResult r = RunTool(script, {"--generation", "4", "--under", "/usr/lib64", "--",
                                    VoractlPath(), "get", "Platform Information/Board name"});
    EXPECT_EQ(0, r.status) << r.err;
    EXPECT_EQ("VB-4410\n", r.out);
    r = RunTool(script, {"--generation", "7", "--", VoractlPath(), "list"});
    EXPECT_EQ(2, r.status);
}

TEST(Voractl, KeepsTheSimulatedBoardInTheUsersRuntimeDirectory) {
    char dir[] = "/tmp/vtest-runtime-XXXXXX";
    ASSERT_NE(nullptr, mkdtemp(dir));
    unsetenv("VORA_SIM_STATE");
    setenv("XDG_RUNTIME_DIR", dir, 1);
    const std::string path = "Backlight/LVDS/Brightness";
    ToolResult r = RunTool(VoractlPath(), {"--sim", "set", path, "33"});
    EXPECT_EQ(0, r.status) << r.err;
    EXPECT_EQ("33\n", RunTool(VoractlPath(), {"--sim", "get", path}).out);
    const ToolResult kept = RunTool("/bin/sh", {"-c", std::string("ls ") + dir});
    EXPECT_EQ(0u, kept.out.find("voractl-sim-4-")) << kept.out;
    EXPECT_EQ("80\n", RunTool(VoractlPath(), {"--sim", "--sim-reset", "get", path}).out);
    RunTool("/bin/rm", {"-rf", dir});
    unsetenv("XDG_RUNTIME_DIR");
}
