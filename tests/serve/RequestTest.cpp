// What a scraper or a page asks for in its headers and arguments, and where
// `--listen` points the exporter.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>

#include <cstring>
#include <string>

#include "Exposition.h"
#include "ListenAddress.h"
#include "Request.h"
#include "Site.h"
#include "ToolError.h"

using namespace voractl;

namespace {

TEST(Request, MetricsFormatFollowsTheScrapersRanking) {
    const struct {
        const char* accept;
        MetricsFormat format;
    } cases[] = {
        {nullptr, MetricsFormat::Text},
        {"", MetricsFormat::Text},
        {"*/*", MetricsFormat::Text},
        {"application/json", MetricsFormat::Text},
        // Prometheus 2 and 3 as they send it.
        {"application/openmetrics-text;version=1.0.0,application/openmetrics-text;version=0.0.1;"
         "q=0.75,text/plain;version=0.0.4;q=0.5,*/*;q=0.1",
         MetricsFormat::OpenMetrics},
        {"application/openmetrics-text;version=1.0.0;escaping=allow-utf-8;q=0.6,"
         "text/plain;version=1.0.0;escaping=allow-utf-8;q=0.5,*/*;q=0.1",
         MetricsFormat::OpenMetrics},
        // Names in any case, spaces around the parts.
        {" Application/OpenMetrics-Text ; Q = 0.9 , text/plain;q=0.1", MetricsFormat::OpenMetrics},
        // The text format ranked higher, or first among equals.
        {"text/plain;q=1,application/openmetrics-text;q=0.5", MetricsFormat::Text},
        {"text/plain,application/openmetrics-text", MetricsFormat::Text},
        {"application/openmetrics-text;q=0.5,*/*;q=0.8", MetricsFormat::Text},
        // Refused with q=0, or with a q-value that is none.
        {"application/openmetrics-text;q=0", MetricsFormat::Text},
        {"application/openmetrics-text;q=0.000, text/plain;q=0.1", MetricsFormat::Text},
        {"application/openmetrics-text;q=high, text/plain;q=0.1", MetricsFormat::Text},
        {"application/openmetrics-text;q=2, text/plain;q=0.1", MetricsFormat::Text},
        // Only the media type counts, not a longer one that starts like it.
        {"application/openmetrics-textual", MetricsFormat::Text},
        {",,application/openmetrics-text;;version=1.0.0", MetricsFormat::OpenMetrics},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(PreferredFormat(c.accept), c.format) << (c.accept ? c.accept : "(none)");
    }
}

// How long a scrape waits for the board: Prometheus's timeout less a
// margin, never the whole of it nor less than half; a header that is no
// positive number (or none) the default's.
TEST(Request, ScrapeBudgetStaysWithinTheScrapersTimeout) {
    const struct {
        const char* header;
        double seconds;
    } cases[] = {
        {nullptr, 9.5}, {"", 9.5}, {"10", 9.5}, {"15", 14.5}, {"1", 0.5}, {"0.5", 0.25},
        {"0.001", 0.0005}, {"1e9", 119.5}, {" 2", 1.5},
        {"0", 9.5}, {"-1", 9.5}, {"abc", 9.5}, {"nan", 9.5}, {"inf", 9.5}, {"1e999", 9.5},
        {"2s", 9.5}, {"1,5", 9.5},
    };
    for (const auto& c : cases) {
        EXPECT_DOUBLE_EQ(ScrapeBudget(c.header), c.seconds) << (c.header ? c.header : "(none)");
    }
}

TEST(Request, GzipOnlyWhereTheClientTakesIt) {
    const struct {
        const char* header;
        bool gzip;
    } cases[] = {
        {nullptr, false},
        {"", false},
        {"gzip", true},
        {"GZip", true},
        {"x-gzip", true},
        {"deflate, gzip;q=0.5", true},
        {"gzip;q=0", false},
        {"gzip; q=0.0, deflate", false},
        {"*", true},
        {"*;q=0", false},
        {"gzip;q=0, *", false},  // named outright, the wildcard does not override it
        {"identity", false},
        {"gzipped", false},
        {"br, zstd", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(AcceptsGzip(c.header), c.gzip) << (c.header ? c.header : "(none)");
    }
}

TEST(Request, SinceIsADecimalSequenceNumber) {
    EXPECT_EQ(SinceArgument(nullptr), 0u);
    EXPECT_EQ(SinceArgument("0"), 0u);
    EXPECT_EQ(SinceArgument("42"), 42u);
    EXPECT_EQ(SinceArgument("18446744073709551615"), UINT64_MAX);
    for (const char* bad : {"", "-1", "+1", " 1", "1 ", "0x10", "abc", "18446744073709551616"}) {
        EXPECT_FALSE(SinceArgument(bad).has_value()) << '"' << bad << '"';
    }
}

struct Listen {
    int family;
    std::string host;
    unsigned port;
};

Listen Parsed(const std::string& text) {
    const ListenAddress listen = ParseListenAddress(text);
    char host[INET6_ADDRSTRLEN] = "";
    if (listen.address.ss_family == AF_INET) {
        const auto* v4 = reinterpret_cast<const sockaddr_in*>(&listen.address);
        EXPECT_EQ(listen.length, sizeof(sockaddr_in));
        inet_ntop(AF_INET, &v4->sin_addr, host, sizeof host);
        return {AF_INET, host, ntohs(v4->sin_port)};
    }
    const auto* v6 = reinterpret_cast<const sockaddr_in6*>(&listen.address);
    EXPECT_EQ(listen.length, sizeof(sockaddr_in6));
    inet_ntop(AF_INET6, &v6->sin6_addr, host, sizeof host);
    return {listen.address.ss_family, host, ntohs(v6->sin6_port)};
}

TEST(ListenAddress, TakesEveryKindOfAddress) {
    const struct {
        const char* text;
        int family;
        const char* host;
        unsigned port;
    } cases[] = {
        {"127.0.0.1:19719", AF_INET, "127.0.0.1", 19719},
        {"0.0.0.0:0", AF_INET, "0.0.0.0", 0},
        {"localhost:9", AF_INET, "127.0.0.1", 9},
        {"[::1]:65535", AF_INET6, "::1", 65535},
        {"[fe80::1]:80", AF_INET6, "fe80::1", 80},
        {":19719", AF_INET6, "::", 19719},
        {"[::]:1", AF_INET6, "::", 1},
    };
    for (const auto& c : cases) {
        const Listen got = Parsed(c.text);
        EXPECT_EQ(got.family, c.family) << c.text;
        EXPECT_EQ(got.host, c.host) << c.text;
        EXPECT_EQ(got.port, c.port) << c.text;
    }
}

TEST(ListenAddress, RefusesWhatIsNoAddress) {
    const struct {
        const char* text;
        const char* says;
    } cases[] = {
        {"127.0.0.1", "needs ADDRESS:PORT"},
        {"", "needs ADDRESS:PORT"},
        {"127.0.0.1:", "the port must be a number from 0 to 65535, not \"\""},
        {"127.0.0.1:65536", "not \"65536\""},
        {"127.0.0.1:-1", "not \"-1\""},
        {"127.0.0.1:80x", "not \"80x\""},
        {"127.0.0.1:99999999999999999999", "not \"99999999999999999999\""},
        {"example.net:80", "\"example.net\" is not an IPv4 address"},
        {"[127.0.0.1]:80", "\"127.0.0.1\" is not an IPv4 address"},
        {"[::1:80", "is not an IPv4 address"},
        {"256.0.0.1:80", "\"256.0.0.1\" is not"},
    };
    for (const auto& c : cases) {
        try {
            ParseListenAddress(c.text);
            ADD_FAILURE() << c.text << " was taken";
        } catch (const ToolError& e) {
            EXPECT_TRUE(e.usage()) << c.text;
            EXPECT_NE(std::strstr(e.what(), c.says), nullptr) << c.text << ": " << e.what();
        }
    }
}

}  // namespace
