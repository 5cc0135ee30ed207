// voractl watch: samples, change marks, item selection, terminal redraw and
// a clean end on a signal or a closed pipe.
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <regex>

#include "RunTool.h"
#include "SimHarness.h"
#include "VoractlRun.h"

using vtest::Lines;
using vtest::ToolResult;
using vtest::Voractl;

namespace {

const std::regex kTimestamp(R"(^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}[+-]\d\d:\d\d  )");

// Arguments that load the stand-in module, which logs initialise and
// uninitialise calls to the returned file.
std::vector<std::string> StandIn(std::string& log) {
    log = vtest::WriteTempFile("");  // removed at exit
    return vtest::StandIn("", log);
}

}  // namespace

TEST(VoractlWatch, PrintsOneTimestampedLinePerSampleOfEverySensor) {
    const ToolResult r = Voractl({"--sim", "watch", "--count", "3", "--interval", "0.05"});
    ASSERT_EQ(0, r.status) << r.err;
    EXPECT_EQ("", r.err);
    const auto lines = Lines(r.out);
    ASSERT_EQ(3u, lines.size()) << r.out;
    for (const std::string& line : lines) {
        EXPECT_TRUE(std::regex_search(line, kTimestamp)) << line;
        for (const char* reading :
             {"  Voltage/VCORE=1.050 V  ", "  Temperature/CPU=+48.5 °C  ", "  Fan Speed/CPU=2400 RPM  ",
              "  Current/Input=1.250 A  ", "  Case Open/Chassis intrusion=off"}) {
            EXPECT_NE(std::string::npos, line.find(reading)) << reading;
        }
        // Only the hardware monitor, and with the clock frozen nothing changes.
        EXPECT_EQ(std::string::npos, line.find("Board name"));
        EXPECT_EQ(std::string::npos, line.find('*')) << line;
    }
}

TEST(VoractlWatch, MarksValuesThatChangeBetweenSamples) {
    const std::string profile = vtest::WriteTempFile(R"({"board": {"name": "Bench"}, "sensors": {
        "temperature": [{"index": 0, "name": "CPU", "value": 50, "wave": {"amplitude": 20, "period": 2}},
                        {"index": 1, "name": "Steady", "value": 30}]}})");
    vtest::UseOwnSimulatedBoard();
    unsetenv("VORA_SIM_TIME");  // the wave moves with the clock
    const ToolResult r = vtest::RunTool(vtest::VoractlPath(),
                                        {"--sim=" + profile, "watch", "Hardware Monitor/Temperature",
                                         "--count", "4", "--interval", "0.3"});
    ASSERT_EQ(0, r.status) << r.err;
    const auto lines = Lines(r.out);
    ASSERT_EQ(4u, lines.size()) << r.out;
    EXPECT_EQ(std::string::npos, lines[0].find('*')) << "nothing to compare the first with";
    int marked = 0;
    for (size_t i = 1; i < lines.size(); ++i) {
        marked += std::regex_search(lines[i], std::regex(R"(Temperature/CPU=\+\d+\.\d °C\*)")) ? 1 : 0;
        EXPECT_NE(std::string::npos, lines[i].find("Temperature/Steady=+30.0 °C")) << lines[i];
        EXPECT_EQ(std::string::npos, lines[i].find("Steady=+30.0 °C*")) << lines[i];
    }
    EXPECT_GE(marked, 2) << r.out;
}

TEST(VoractlWatch, WatchesNamedItemsAndGroups) {
    ToolResult r = Voractl({"--sim", "watch", "--count", "1", "GPIO/DO1", "0x1020206",
                            "Backlight/LVDS/Brightness"});
    ASSERT_EQ(0, r.status) << r.err;
    const auto lines = Lines(r.out);
    ASSERT_EQ(1u, lines.size());
    // Document order, each item once.
    EXPECT_NE(std::string::npos,
              lines[0].find("  Voltage/V12=12.096 V  DO1/Dir=out  DO1/Level=high  "
                            "LVDS/Brightness=80"))
        << lines[0];

    // A trailing slash names the group too; an item named twice shows once.
    r = Voractl({"--sim", "watch", "--count", "1", "Hardware Monitor/Fan Speed/",
                 "Hardware Monitor/Fan Speed/CPU"});
    ASSERT_EQ(0, r.status) << r.err;
    EXPECT_TRUE(std::regex_search(r.out, std::regex(R"(  Fan Speed/CPU=2400 RPM  Fan Speed/System=1850 RPM\n$)")))
        << r.out;
}

TEST(VoractlWatch, RefusesWhatItCannotWatch) {
    ToolResult r = Voractl({"--sim", "watch", "--count", "1", "Hardware Monitor/Nothing"});
    EXPECT_EQ(2, r.status);
    EXPECT_EQ("voractl: no item or group \"Hardware Monitor/Nothing\" (see voractl list)\n", r.err);
    EXPECT_EQ(2, Voractl({"--sim", "watch", "--count", "1", "Hardware"}).status)
        << "a group is a whole path part";
    EXPECT_EQ(2, Voractl({"--sim", "watch", "--count", "1", "0x1020299"}).status);
    for (const char* interval : {"0", "-1", "abc", "1e9", "nan"}) {
        r = Voractl({"--sim", "watch", "--interval", interval});
        EXPECT_EQ(2, r.status) << interval;
        EXPECT_EQ(0u, r.err.find("voractl: --interval must be")) << r.err;
    }
    for (const char* count : {"0", "-3", "2x"}) {
        EXPECT_EQ(2, Voractl({"--sim", "watch", "--count", count}).status) << count;
    }
    EXPECT_EQ(2, Voractl({"--sim", "watch", "--format", "senml"}).status);
}

TEST(VoractlWatch, JsonIsOneWholeDocumentPerSample) {
    const ToolResult r = Voractl({"--sim", "watch", "--json", "--count", "2", "--interval", "0.05",
                                  "GPIO/DI0"});
    ASSERT_EQ(0, r.status) << r.err;
    const auto lines = Lines(r.out);
    ASSERT_EQ(2u, lines.size()) << r.out;
    for (const std::string& line : lines) {
        auto sample = vtest::Parse(line);
        EXPECT_TRUE(json_is_string(json_object_get(sample.get(), "time")));
        const json_t* items = json_object_get(sample.get(), "items");
        ASSERT_EQ(2u, json_array_size(items));
        const json_t* level = json_array_get(items, 1);
        EXPECT_STREQ("GPIO/DI0/Level", json_string_value(json_object_get(level, "path")));
        EXPECT_EQ(1, json_integer_value(json_object_get(level, "value")));
        EXPECT_TRUE(json_is_false(json_object_get(level, "changed")));
    }
}

TEST(VoractlWatch, EndsCleanlyOnSigintAndSigterm) {
    for (int signal : {SIGINT, SIGTERM}) {
        std::string log;
        std::vector<std::string> args = StandIn(log);
        vtest::UseOwnSimulatedBoard();
        for (const char* a : {"--sim", "watch", "--interval", "0.1"}) {
            args.push_back(a);
        }
        vtest::RunningTool watch(vtest::VoractlPath(), args);
        ASSERT_TRUE(watch.waitForOutput("Voltage/VCORE=")) << "no sample came";
        watch.kill(signal);
        const ToolResult r = watch.finish();
        EXPECT_EQ(0, r.signal) << strsignal(signal);
        EXPECT_EQ(0, r.status) << strsignal(signal) << ": " << r.err;
        EXPECT_EQ("VoraIoTInitialize 0x0\nVoraIoTUninitialize 0x0\n", vtest::FileText(log))
            << strsignal(signal);
        // The last sample line is whole.
        EXPECT_EQ('\n', r.out.back());
    }
}

TEST(VoractlWatch, EndsCleanlyWhenTheReaderGoesAway) {
    std::string log;
    const std::vector<std::string> args = StandIn(log);
    vtest::UseOwnSimulatedBoard();
    const ToolResult r = vtest::RunTool(
        "/bin/sh", {"-c", "\"$0\" " + args[0] + " \"$1\" --sim watch --interval 0.02 | head -n 2",
                    vtest::VoractlPath(), args[1]});
    EXPECT_EQ(0, r.status) << r.err;
    EXPECT_EQ(2u, Lines(r.out).size());
    EXPECT_EQ("", r.err);
    EXPECT_EQ("VoraIoTInitialize 0x0\nVoraIoTUninitialize 0x0\n", vtest::FileText(log));
}

TEST(VoractlWatch, RedrawsInPlaceOnATerminal) {
    vtest::UseOwnSimulatedBoard();
    setenv("TERM", "xterm", 1);
    unsetenv("NO_COLOR");
    ToolResult r = vtest::RunOnTerminal(vtest::VoractlPath(),
                                        {"--sim", "watch", "--count", "3", "--interval", "0.05"});
    ASSERT_EQ(0, r.status) << r.out;
    // Cleared once, then each sample drawn from the top over the one before.
    EXPECT_EQ(0u, r.out.find("\033[?25l\033[H\033[2J"));
    size_t homes = 0;
    for (size_t at = 0; (at = r.out.find("\033[H", at)) != std::string::npos; ++at) {
        ++homes;
    }
    EXPECT_EQ(3u, homes);
    EXPECT_NE(std::string::npos, r.out.find("Every 0.05s"));
    EXPECT_NE(std::string::npos, r.out.find("  \033[1;36mVoltage\033[0m\033[K\r\n"));
    EXPECT_TRUE(std::regex_search(r.out, std::regex("\n    CPU +\\+48\\.5 °C\033\\[K")));
    // The cursor is given back at the end.
    EXPECT_EQ(r.out.size() - 6, r.out.rfind("\033[?25h"));

    // NO_COLOR: still redrawn, without colour.
    setenv("NO_COLOR", "1", 1);
    r = vtest::RunOnTerminal(vtest::VoractlPath(), {"--sim", "watch", "--count", "2", "--interval",
                                                    "0.05"});
    ASSERT_EQ(0, r.status) << r.out;
    EXPECT_NE(std::string::npos, r.out.find("\033[H"));
    EXPECT_EQ(std::string::npos, r.out.find("\033[0m"));
}

TEST(VoractlWatch, CutsATableTallerThanTheTerminal) {
    vtest::UseOwnSimulatedBoard();
    setenv("NO_COLOR", "1", 1);
    // Every block: far more lines than the 40 rows of the test's terminal.
    const ToolResult r = vtest::RunOnTerminal(
        vtest::VoractlPath(), {"--sim", "watch", "--count", "1", "Platform Information",
                               "Hardware Monitor", "GPIO", "Backlight", "OOB-Network"});
    ASSERT_EQ(0, r.status) << r.out;
    size_t lines = 0;
    for (size_t at = 0; (at = r.out.find('\n', at)) != std::string::npos; ++at) {
        ++lines;
    }
    EXPECT_LE(lines, 39u) << "the screen would scroll";
    EXPECT_TRUE(std::regex_search(r.out, std::regex(R"(\.\.\. \d+ more lines)"))) << r.out;
}
