// voractl on the third-generation and Embedded API boards: every command
// against each simulated library.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "Exposition.h"
#include "RunTool.h"
#include "SimHarness.h"
#include "VoractlRun.h"

using vtest::ToolResult;

namespace {

class OtherGenerations : public ::testing::TestWithParam<const char*> {
protected:
    ToolResult run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"--sim", "--sim-generation", GetParam()});
        return vtest::Voractl(arguments);
    }
};

const char* const kBlocks[] = {"Platform Information", "Hardware Monitor", "GPIO", "Backlight"};

}  // namespace

TEST_P(OtherGenerations, CapsAndListShowTheFourBlocksWithoutTheNetwork) {
    ToolResult r = run({"caps"});
    ASSERT_EQ(0, r.status) << r.err;
    auto document = vtest::Parse(r.out);
    for (const char* block : kBlocks) {
        EXPECT_TRUE(json_is_object(json_object_get(document.get(), block))) << block;
    }
    EXPECT_EQ(nullptr, json_object_get(document.get(), "OOB-Network"));

    r = run({"list"});
    ASSERT_EQ(0, r.status) << r.err;
    for (const char* block : kBlocks) {
        EXPECT_NE(std::string::npos, ("\n" + r.out).find(std::string("\n") + block + "\n"))
            << block;
    }
    EXPECT_EQ(0u, r.out.find("Platform Information\n"));
    EXPECT_EQ(std::string::npos, r.out.find("OOB-Network"));
    EXPECT_EQ(std::string::npos, r.out.find("N/A")) << r.out;

    r = run({"list", "--json"});
    ASSERT_EQ(0, r.status);
    EXPECT_GT(json_array_size(vtest::Parse(r.out).get()), 5u);
}

TEST_P(OtherGenerations, GetAndSetByPath) {
    ToolResult r = run({"get", "Platform Information/Board name"});
    ASSERT_EQ(0, r.status) << r.err;
    EXPECT_FALSE(r.out.empty());
    // The level of every output pin takes a new value and reads it back.
    auto items = vtest::Parse(run({"list", "--json"}).out);
    std::set<std::string> outputs;  // pins whose direction reads "out" (0)
    size_t i;
    json_t* item;
    json_array_foreach(items.get(), i, item) {
        if (std::string(json_string_value(json_object_get(item, "name"))) == "Dir" &&
            std::string(json_string_value(json_object_get(item, "block"))) == "GPIO" &&
            json_integer_value(json_object_get(item, "value")) == 0) {
            outputs.insert(json_string_value(json_object_get(item, "group")));
        }
    }
    int written = 0;
    json_array_foreach(items.get(), i, item) {
        const std::string path = json_string_value(json_object_get(item, "path"));
        if (outputs.count(json_string_value(json_object_get(item, "group"))) == 0 ||
            std::string(json_string_value(json_object_get(item, "name"))) != "Level" ||
            std::string(json_string_value(json_object_get(item, "access"))) != "rw") {
            continue;
        }
        const json_int_t now = json_integer_value(json_object_get(item, "value"));
        const std::string next = now == 0 ? "1" : "0";
        r = run({"set", path, next});
        EXPECT_EQ(0, r.status) << path << ": " << r.err;
        EXPECT_EQ(now == 0 ? "high\n" : "low\n", run({"get", path}).out) << path;
        ++written;
    }
    EXPECT_GT(written, 0) << "no output pin";
}

TEST_P(OtherGenerations, WatchFollowsTheHardwareMonitor) {
    const ToolResult r = run({"watch", "--count", "2", "--interval", "0.05"});
    ASSERT_EQ(0, r.status) << r.err;
    const auto lines = vtest::Lines(r.out);
    ASSERT_EQ(2u, lines.size());
    EXPECT_NE(std::string::npos, lines[0].find("  Voltage/")) << lines[0];
    EXPECT_NE(std::string::npos, lines[0].find("  Temperature/")) << lines[0];
}

TEST_P(OtherGenerations, ExportsInBothFormats) {
    ToolResult r = run({"export", "--format", "prometheus"});
    ASSERT_EQ(0, r.status) << r.err;
    EXPECT_EQ("", vtest::ExpositionProblems(r.out));
    EXPECT_NE(std::string::npos, r.out.find("\nvoradrv_board_info{"));
    EXPECT_NE(std::string::npos, r.out.find("\nvoradrv_voltage_volts{sensor=\""));
    EXPECT_NE(std::string::npos, r.out.find("\nvoradrv_unreadable_items 0\n"));
    const std::string promtool = vtest::FindProgram("promtool");
    if (!promtool.empty()) {
        const ToolResult check = vtest::RunTool(
            "/bin/sh", {"-c", "printf '%s' \"$1\" | \"$0\" check metrics", promtool, r.out});
        EXPECT_EQ(0, check.status) << check.out << check.err;
        EXPECT_EQ("", check.out + check.err);
    }

    r = run({"export", "--format", "senml"});
    ASSERT_EQ(0, r.status) << r.err;
    auto pack = vtest::Parse(r.out);
    ASSERT_TRUE(json_is_array(pack.get()));
    EXPECT_TRUE(json_is_string(json_object_get(json_array_get(pack.get(), 0), "bn")));
}

INSTANTIATE_TEST_SUITE_P(Voractl, OtherGenerations, ::testing::Values("3", "eapi"),
                         [](const ::testing::TestParamInfo<const char*>& info) {
                             return std::string(info.param) == "3" ? "Vora3" : "EApi";
                         });
