// voractl export: SenML after RFC 8428, the Prometheus text format as
// promtool and node_exporter's textfile collector read it, and atomic files.
// What each generation's default board exports is held to golden files
// (Voractl/Generations.ExportMatchesTheGoldenFiles).
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <ctime>
#include <fstream>
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

}  // namespace

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
    EXPECT_EQ("", vtest::PromtoolProblems(r.out));
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
    EXPECT_EQ("", vtest::PromtoolProblems(vtest::FileText(file)));
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
    }
}

TEST(VoractlExport, UnreadableItemsAreLeftOutCountedAndNamed) {
    const std::vector<std::string> standIn = vtest::StandIn("0x1020101");
    for (const char* format : {"prometheus", "senml"}) {
        const ToolResult r =
            Voractl({standIn[0], standIn[1], "--sim", "export", "--format", format});
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
    EXPECT_EQ(Voractl({"--sim", "export", "--format", "prometheus"}).out, vtest::FileText(file));
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
