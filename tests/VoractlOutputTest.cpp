// voractl's output for people and for scripts: colour only where it belongs,
// and --json whole on every command, also when an item cannot be read.
#include <gtest/gtest.h>
#include <stdlib.h>

#include "RunTool.h"
#include "SimHarness.h"
#include "VoractlRun.h"

using vtest::ToolResult;
using vtest::Voractl;

namespace {

bool Coloured(const std::string& text) { return text.find("\033[") != std::string::npos; }

// `args` with reads of `id` failing (through the stand-in module).
std::vector<std::string> FailingRead(const char* id, std::vector<std::string> args) {
    const std::vector<std::string> standIn = vtest::StandIn(id);
    args.insert(args.begin(), standIn.begin(), standIn.end());
    return args;
}

}  // namespace

TEST(VoractlOutput, ColourOnlyOnATerminalOrWhenAskedAndNeverWithNoColor) {
    unsetenv("NO_COLOR");
    setenv("TERM", "xterm", 1);
    ToolResult r = Voractl({"--sim", "list"});
    EXPECT_FALSE(Coloured(r.out)) << "a pipe gets no colour";
    r = Voractl({"--sim", "--color=always", "list"});
    EXPECT_NE(std::string::npos, r.out.find("\033[1mPlatform Information\033[0m\n"));
    EXPECT_NE(std::string::npos, r.out.find("\033[2mread-only\033[0m\n"));
    // The colour codes do not shift the columns.
    EXPECT_NE(std::string::npos, r.out.find("\033[2m0x1010402\033[0m  Board name    "));

    vtest::UseOwnSimulatedBoard();
    r = vtest::RunOnTerminal(vtest::VoractlPath(), {"--sim", "list"});
    EXPECT_EQ(0, r.status);
    EXPECT_TRUE(Coloured(r.out));
    r = vtest::RunOnTerminal(vtest::VoractlPath(), {"--sim", "--color=never", "list"});
    EXPECT_FALSE(Coloured(r.out));
    setenv("TERM", "dumb", 1);
    r = vtest::RunOnTerminal(vtest::VoractlPath(), {"--sim", "list"});
    EXPECT_FALSE(Coloured(r.out));

    setenv("TERM", "xterm", 1);
    for (const char* value : {"1", ""}) {
        setenv("NO_COLOR", value, 1);
        r = vtest::RunOnTerminal(vtest::VoractlPath(), {"--sim", "list"});
        EXPECT_FALSE(Coloured(r.out)) << "NO_COLOR=" << value;
        r = Voractl({"--sim", "--color=always", "list"});
        EXPECT_FALSE(Coloured(r.out)) << "NO_COLOR=" << value;
    }
    EXPECT_EQ(2, Voractl({"--sim", "--color=sometimes", "list"}).status);
}

TEST(VoractlOutput, JsonOnEveryCommand) {
    // A read that fails: the record says why; the module's own diagnostics
    // and the tool's message go to standard error.
    ToolResult r = Voractl({"--sim", "get", "--json", "--type", "int", "0x1010777"});
    EXPECT_EQ(1, r.status);
    auto json = vtest::Parse(r.out);
    EXPECT_TRUE(json_is_null(json_object_get(json.get(), "value")));
    EXPECT_STREQ("not found (0xFFFFFBFF)", json_string_value(json_object_get(json.get(), "error")));
    EXPECT_NE(std::string::npos, r.err.find("VORADrv Info Get Value: id not found"));
    EXPECT_NE(std::string::npos, r.err.find("voractl: cannot read 0x1010777"));

    r = Voractl({"--sim", "caps", "--json"});
    ASSERT_EQ(0, r.status) << r.err;
    EXPECT_TRUE(json_is_object(json_object_get(vtest::Parse(r.out).get(), "GPIO")));

    r = Voractl({"--sim", "set", "--json", "Backlight/LVDS/Brightness", "55"});
    ASSERT_EQ(0, r.status) << r.err;
    auto record = vtest::Parse(r.out);
    EXPECT_STREQ("Backlight/LVDS/Brightness", json_string_value(json_object_get(record.get(), "path")));
    EXPECT_EQ(55, json_integer_value(json_object_get(record.get(), "value")));
    EXPECT_STREQ("rw", json_string_value(json_object_get(record.get(), "access")));

    // A refused write: the record says why, and so does standard error.
    r = Voractl({"--sim", "set", "--json", "Backlight/LVDS/Brightness", "500"});
    EXPECT_EQ(1, r.status);
    record = vtest::Parse(r.out);
    EXPECT_TRUE(json_is_null(json_object_get(record.get(), "value")));
    EXPECT_STREQ("library status (0xFFFFFEFF)",
                 json_string_value(json_object_get(record.get(), "error")));
    EXPECT_NE(std::string::npos, r.err.find("VORADrv set value"))
        << "the module's diagnostics go to standard error";
    EXPECT_NE(std::string::npos, r.err.find("voractl: cannot set Backlight/LVDS/Brightness"));
}

TEST(VoractlOutput, AnUnreadableItemIsShownAsSuchAndTheRestStaysWhole) {
    ToolResult r = Voractl(FailingRead("0x1020201", {"--sim", "list", "--json"}));
    ASSERT_EQ(0, r.status) << r.err;
    auto items = vtest::Parse(r.out);
    size_t failed = 0;
    size_t i;
    json_t* item;
    json_array_foreach(items.get(), i, item) {
        if (json_is_null(json_object_get(item, "value"))) {
            ++failed;
            EXPECT_STREQ("Hardware Monitor/Voltage/VCORE",
                         json_string_value(json_object_get(item, "path")));
            EXPECT_STREQ("read error (0xFFFFFAFF)",
                         json_string_value(json_object_get(item, "error")));
        }
    }
    EXPECT_EQ(1u, failed);
    EXPECT_GE(i, 70u);

    r = Voractl(FailingRead("0x1020201", {"--sim", "list"}));
    EXPECT_EQ(0, r.status);
    EXPECT_NE(std::string::npos, r.out.find("0x1020201  VCORE                           N/A"));

    r = Voractl(FailingRead("0x1020201", {"--sim", "get", "0x1020201", "0x1020204"}));
    EXPECT_EQ(1, r.status);
    EXPECT_EQ("Hardware Monitor/Voltage/VCORE: N/A\nHardware Monitor/Voltage/V3.3: 3.312 V\n", r.out);
    EXPECT_EQ("voractl: cannot read Hardware Monitor/Voltage/VCORE: read error (0xFFFFFAFF)\n",
              r.err);

    r = Voractl(FailingRead("0x1020201", {"--sim", "watch", "--json", "--count", "1",
                                          "Hardware Monitor/Voltage"}));
    EXPECT_EQ(0, r.status);
    auto sample = vtest::Parse(r.out);
    const json_t* first = json_array_get(json_object_get(sample.get(), "items"), 0);
    EXPECT_TRUE(json_is_null(json_object_get(first, "value")));
    EXPECT_TRUE(json_is_string(json_object_get(first, "error")));
}
