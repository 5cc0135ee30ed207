// voractl export: SenML after RFC 8428, the Prometheus text format as
// promtool and node_exporter's textfile collector read it, and atomic files.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <ctime>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "Exposition.h"
#include "RunTool.h"
#include "SimHarness.h"
#include "VoractlRun.h"

using vtest::ToolResult;
using vtest::Voractl;

namespace {

std::string FileText(const std::string& path) {
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

// A fresh directory of this test process, removed at exit.
std::string TempDir() {
    char path[] = "/tmp/vtest-export-XXXXXX";
    static std::string dir = mkdtemp(path);
    static const bool once = [] {
        std::atexit([] { vtest::RunTool("/bin/rm", {"-rf", dir}); });
        return true;
    }();
    (void)once;
    return dir;
}

// promtool's verdict on an exposition file: "" when it accepts it.
std::string PromtoolProblems(const std::string& promtool, const std::string& file) {
    const ToolResult r =
        vtest::RunTool("/bin/sh", {"-c", "\"$0\" check metrics < \"$1\"", promtool, file});
    return r.status == 0 && r.out.empty() && r.err.empty() ? "" : r.out + r.err;
}

}  // namespace

TEST(VoractlExport, PrometheusNamesFollowTheHardwareMonitorConventions) {
    const ToolResult r = Voractl({"--sim", "export", "--format", "prometheus"});
    ASSERT_EQ(0, r.status) << r.err;
    EXPECT_EQ("", vtest::ExpositionProblems(r.out));
    for (const char* line : {
             "# TYPE voradrv_temperature_celsius gauge\n"
             "voradrv_temperature_celsius{sensor=\"CPU\"} 48.5\n",
             "\nvoradrv_voltage_volts{sensor=\"VCORE\"} 1.05\n",
             "\nvoradrv_voltage_volts{sensor=\"V12\"} 12.096\n",
             "\nvoradrv_fan_rpm{sensor=\"CPU\"} 2400\n",
             "\nvoradrv_current_amperes{sensor=\"Input\"} 1.25\n",
             "\nvoradrv_case_open{sensor=\"Chassis intrusion\"} 0\n",
             "\nvoradrv_gpio_level{pin=\"DO1\"} 1\n",
             "\nvoradrv_gpio_direction{pin=\"DO1\",direction=\"in\"} 0\n"
             "voradrv_gpio_direction{pin=\"DO1\",direction=\"out\"} 1\n",
             "\nvoradrv_backlight_brightness{panel=\"LVDS\"} 80\n",
             "\nvoradrv_backlight_frequency_hertz{panel=\"LVDS\"} 200\n",
             "\nvoradrv_backlight_enabled{panel=\"eDP\"} 1\n",
             "# TYPE voradrv_boots_total counter\nvoradrv_boots_total 1342\n",
             "\nvoradrv_running_seconds_total 67557600\n",
             "\nvoradrv_oob_network_status{group=\"OOBNetwork0\"} 3\n",
             "\nvoradrv_unreadable_items 0\n"}) {
        EXPECT_NE(std::string::npos, r.out.find(line)) << line;
    }
    const std::smatch info = [&] {
        std::smatch m;
        std::regex_search(r.out, m, std::regex("\nvoradrv_board_info\\{(.*)\\} 1\n"));
        return m;
    }();
    ASSERT_FALSE(info.empty());
    for (const char* label : {"board_name=\"VB-4410\"", "board_serial_number=\"VB4410-2291-00417\"",
                              "bios_revision=\"4.10.R07\"", "asset_tag=\"LINE3-CELL7\"",
                              "driver_version=\"4.0.12\""}) {
        EXPECT_NE(std::string::npos, info[1].str().find(label)) << label;
    }
    EXPECT_NE(std::string::npos,
              r.out.find("mac_address=\"00:0B:AB:12:34:5F\"")) << "the network's texts";
}

TEST(VoractlExport, PrometheusLabelsSurviveAnyBoardText) {
    // Quotes, backslashes and line ends in board texts; two sensors of one name.
    const std::string profile = vtest::WriteTempFile(R"({
        "board": {"name": "Bench \"B\" \\ 2", "manufacturer": "Line\nbreak"},
        "sensors": {"temperature": [{"index": 0, "name": "CPU", "value": 40},
                                    {"index": 1, "name": "CPU", "value": 41}]}})");
    const ToolResult r = Voractl({"--sim=" + profile, "export", "--format", "prometheus"});
    ASSERT_EQ(0, r.status) << r.err;
    EXPECT_EQ("", vtest::ExpositionProblems(r.out));
    EXPECT_NE(std::string::npos, r.out.find("board_name=\"Bench \\\"B\\\" \\\\ 2\""));
    EXPECT_NE(std::string::npos, r.out.find("board_manufacturer=\"Line\\nbreak\""));
    EXPECT_NE(std::string::npos, r.out.find("voradrv_temperature_celsius{sensor=\"CPU\"} 40\n"));
    EXPECT_NE(std::string::npos,
              r.out.find("voradrv_temperature_celsius{sensor=\"CPU\",id=\"0x1020102\"} 41\n"));
    const std::string promtool = vtest::FindProgram("promtool");
    if (!promtool.empty()) {
        const std::string file = TempDir() + "/odd.prom";
        std::ofstream(file) << r.out;
        EXPECT_EQ("", PromtoolProblems(promtool, file));
    }
}

TEST(VoractlExport, PromtoolAcceptsTheExport) {
    const std::string promtool = vtest::FindProgram("promtool");
    if (promtool.empty()) {
        GTEST_SKIP() << "promtool is not installed (Debian package prometheus; "
                        "scripts/install-deps.sh installs it)";
    }
    const std::string file = TempDir() + "/voradrv.prom";
    const ToolResult r = Voractl({"--sim", "export", "--format", "prometheus", "--output", file});
    ASSERT_EQ(0, r.status) << r.err;
    EXPECT_EQ("", PromtoolProblems(promtool, file));
}

TEST(VoractlExport, NodeExporterTextfileCollectorServesTheExport) {
    const std::string exporter = vtest::FindProgram("prometheus-node-exporter");
    if (exporter.empty()) {
        GTEST_SKIP() << "prometheus-node-exporter is not installed (Debian package "
                        "prometheus-node-exporter; scripts/install-deps.sh installs it)";
    }
    const std::string dir = TempDir();
    ASSERT_EQ(0, Voractl({"--sim", "export", "--format", "prometheus", "--output",
                          dir + "/voradrv.prom"}).status);
    const int port = vtest::FreeLoopbackPort();
    ASSERT_GT(port, 0);
    vtest::RunningTool server(exporter, {"--web.listen-address=127.0.0.1:" + std::to_string(port),
                                         "--collector.disable-defaults", "--collector.textfile",
                                         "--collector.textfile.directory=" + dir});
    std::string metrics;
    for (int attempt = 0; attempt < 100 && metrics.empty(); ++attempt) {
        usleep(100000);
        metrics = vtest::HttpGet(port, "/metrics");
    }
    const ToolResult log = server.finish(0);
    ASSERT_FALSE(metrics.empty()) << "no answer from node_exporter: " << log.err;
    EXPECT_NE(std::string::npos, metrics.find("voradrv_temperature_celsius{sensor=\"CPU\"} 48.5"));
    EXPECT_NE(std::string::npos, metrics.find("voradrv_gpio_level{pin=\"DO1\"} 1"));
    EXPECT_NE(std::string::npos, metrics.find("voradrv_board_info{"));
    EXPECT_NE(std::string::npos, metrics.find("node_textfile_scrape_error 0")) << metrics;
}

TEST(VoractlExport, SenmlFollowsRfc8428) {
    const std::time_t before = std::time(nullptr);
    const ToolResult r = Voractl({"--sim", "export", "--format", "senml"});
    ASSERT_EQ(0, r.status) << r.err;
    auto pack = vtest::Parse(r.out);
    ASSERT_TRUE(json_is_array(pack.get()));
    const json_t* first = json_array_get(pack.get(), 0);
    EXPECT_STREQ("voradrv:VB-4410:VB4410-2291-00417/",
                 json_string_value(json_object_get(first, "bn")));
    const double bt = json_number_value(json_object_get(first, "bt"));
    EXPECT_LE(std::fabs(bt - static_cast<double>(before)), 5.0);

    const std::regex kName("[A-Za-z0-9][A-Za-z0-9:./_-]*");
    std::set<std::string> names;
    std::map<std::string, const json_t*> byName;
    size_t i;
    json_t* record;
    json_array_foreach(pack.get(), i, record) {
        const std::string name = json_string_value(json_object_get(record, "n"));
        EXPECT_TRUE(std::regex_match("voradrv:VB-4410:VB4410-2291-00417/" + name, kName)) << name;
        EXPECT_TRUE(names.insert(name).second) << "two records named " << name;
        int values = 0;
        for (const char* key : {"v", "vs", "vb"}) {
            values += json_object_get(record, key) != nullptr ? 1 : 0;
        }
        EXPECT_EQ(1, values) << name;
        // RFC 8428 labels only; the older draft's "sv" and "bv" would be misread.
        EXPECT_EQ(nullptr, json_object_get(record, "sv"));
        EXPECT_EQ(nullptr, json_object_get(record, "bv"));
        byName[name] = record;
    }
    // One record per item: every item of the simulated board is readable.
    auto listed = vtest::Parse(Voractl({"--sim", "list", "--json"}).out);
    EXPECT_EQ(json_array_size(listed.get()), json_array_size(pack.get()));

    auto expect = [&](const char* name, const char* json) {
        ASSERT_TRUE(byName.count(name)) << name;
        json_t* copy = json_deep_copy(byName[name]);
        json_object_del(copy, "n");
        json_object_del(copy, "bn");
        json_object_del(copy, "bt");
        EXPECT_EQ(vtest::Dump(vtest::Parse(json).get()), vtest::Dump(copy)) << name;
        json_decref(copy);
    };
    expect("Platform_Information/Spec_version", R"({"vs": "1,2"})");
    expect("Platform_Information/Running_time_hours", R"({"u": "s", "v": 67557600.0})");
    expect("Hardware_Monitor/Temperature/CPU", R"({"u": "Cel", "v": 48.5})");
    expect("Hardware_Monitor/Voltage/VCORE", R"({"u": "V", "v": 1.05})");
    expect("Hardware_Monitor/Fan_Speed/CPU", R"({"u": "1/min", "v": 2400.0})");
    expect("Hardware_Monitor/Case_Open/Chassis_intrusion", R"({"vb": false})");
    expect("GPIO/DO1/Dir", R"({"vs": "out"})");
    expect("GPIO/DO1/Level", R"({"vb": true})");
    expect("GPIO/Relay_K1_coil_driver_24_V_iso/Level", R"({"vb": false})");
    expect("Backlight/LVDS/Frequency", R"({"u": "Hz", "v": 200.0})");
    expect("Backlight/LVDS/Brightness", R"({"v": 80})");
    expect("OOB-Network/OOBNetwork0/Network_MAC_address", R"({"vs": "00:0B:AB:12:34:5F"})");
}

TEST(VoractlExport, UnreadableItemsAreLeftOutCountedAndNamed) {
    setenv("VTEST_REAL_MODULE", VTEST_MODULE, 1);
    setenv("VTEST_FAIL_READ", "0x1020101", 1);
    for (const char* format : {"prometheus", "senml"}) {
        const ToolResult r =
            Voractl({"--module", VTEST_STANDIN_MODULE, "--sim", "export", "--format", format});
        EXPECT_EQ(1, r.status) << format;
        EXPECT_EQ("voractl: cannot read Hardware Monitor/Temperature/CPU: read error (0xFFFFFAFF)\n",
                  r.err);
        EXPECT_EQ(std::string::npos, r.out.find("sensor=\"CPU\"} 48.5")) << format;
        EXPECT_EQ(std::string::npos, r.out.find("Temperature/CPU\"")) << format;
        if (std::string(format) == "prometheus") {
            EXPECT_EQ("", vtest::ExpositionProblems(r.out));
            EXPECT_NE(std::string::npos, r.out.find("\nvoradrv_unreadable_items 1\n"));
        } else {
            EXPECT_TRUE(json_is_array(vtest::Parse(r.out).get()));
        }
    }
}

TEST(VoractlExport, OutputFileIsReplacedAtomically) {
    const std::string dir = TempDir();
    const std::string file = dir + "/voradrv.prom";
    std::ofstream(file) << "old\n";
    struct stat old {};
    ASSERT_EQ(0, stat(file.c_str(), &old));
    const mode_t mask = umask(027);
    ToolResult r = Voractl({"--sim", "export", "--format", "prometheus", "--output", file});
    umask(mask);
    ASSERT_EQ(0, r.status) << r.err;
    EXPECT_EQ("", r.out + r.err);
    struct stat now {};
    ASSERT_EQ(0, stat(file.c_str(), &now));
    EXPECT_NE(old.st_ino, now.st_ino) << "a new file renamed over the old one";
    EXPECT_EQ(0640u, now.st_mode & 0777u) << "0666 less the umask";
    EXPECT_EQ(Voractl({"--sim", "export", "--format", "prometheus"}).out, FileText(file));
    // No temporary file is left behind.
    const ToolResult listing = vtest::RunTool("/bin/ls", {"-A", dir});
    EXPECT_EQ("voradrv.prom\n", listing.out);

    // A directory it cannot write to: an error, the old file untouched.
    r = Voractl({"--sim", "export", "--format", "senml", "--output", dir + "/none/x.json"});
    EXPECT_EQ(1, r.status);
    EXPECT_EQ(0u, r.err.find("voractl: cannot write " + dir + "/none/x.json: ")) << r.err;
    EXPECT_EQ(2, Voractl({"--sim", "export", "--format", "csv"}).status);
    EXPECT_EQ(2, Voractl({"--sim", "export"}).status);
}
