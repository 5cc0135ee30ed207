// What the exporter keeps of a reading and of a login: a reading's forms,
// each built once and shared; OpenMetrics as Prometheus reads it; the
// bcrypt hashes a web configuration may give; the verdicts basic auth keeps.
#include <gtest/gtest.h>
#include <zlib.h>

#include <cstring>
#include <future>
#include <map>
#include <memory>
#include <string>

#include "Exposition.h"
#include "Login.h"
#include "ToolError.h"
#include "WebConfig.h"

using namespace voractl;

namespace {

std::string Gunzip(const std::string& packed) {
    z_stream stream{};
    inflateInit2(&stream, 15 + 16);
    std::string out(1 << 16, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    const int result = inflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    inflateEnd(&stream);
    return result == Z_STREAM_END ? out : "(not gzip)";
}

TEST(Exposition, OpenMetricsCounterFamilies) {
    const struct {
        const char* text;
        const char* open;
    } cases[] = {
        {"# HELP a_total Boots.\n# TYPE a_total counter\na_total 3\n",
         "# HELP a Boots.\n# TYPE a counter\na_total 3\n# EOF\n"},
        // Samples and labels keep their names; other families are left alone.
        {"# TYPE t gauge\nt{sensor=\"x_total\"} 1\n", "# TYPE t gauge\nt{sensor=\"x_total\"} 1\n# EOF\n"},
        {"# TYPE x_totals gauge\n# HELP b_total\n", "# TYPE x_totals gauge\n# HELP b_total\n# EOF\n"},
        {"", "# EOF\n"},
        {"a 1", "a 1\n# EOF\n"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(OpenMetricsText(c.text), c.open) << c.text;
    }
}

TEST(Exposition, EachFormBuiltOnceAndShared) {
    const std::string text = "# TYPE a_total counter\na_total 1\n";
    auto reading = std::make_shared<const Exposition>(text);
    for (const MetricsFormat format : {MetricsFormat::Text, MetricsFormat::OpenMetrics}) {
        const std::string plain = format == MetricsFormat::Text ? text : OpenMetricsText(text);
        for (const bool gzip : {false, true}) {
            const auto form = reading->form(format, gzip);
            EXPECT_EQ(form.get(), reading->form(format, gzip).get());
            EXPECT_EQ(gzip ? Gunzip(*form) : *form, plain);
        }
    }
    const auto kept = reading->form(MetricsFormat::OpenMetrics, true);
    reading.reset();
    EXPECT_EQ(Gunzip(*kept), OpenMetricsText(text));
}

TEST(WebConfig, TakesOnlyHashesBcryptCanHaveWritten) {
    const std::string good = "$2b$10$0MAwyrQ7Llxs4zKPYrI64Ozv282ZHFQ714frgIjs2CUMC.jW2mpHe";
    const auto with = [&](size_t at, const char* text) {
        return std::string(good).replace(at, std::strlen(text), text);
    };
    const struct {
        std::string hash;
        bool taken;
    } cases[] = {
        {good, true},
        {with(2, "a"), true},
        {with(2, "y"), true},
        {with(4, "04"), true},
        {with(4, "31"), true},
        {with(59, "i"), true},  // the hash's last character carries 4 bits
        {with(2, "x"), false},
        {with(4, "03"), false},
        {with(4, "32"), false},
        {with(4, "1a"), false},
        {with(6, "x"), false},
        {with(28, "P"), false},  // the salt's last character carries 2 bits
        {with(59, "f"), false},
        {with(40, "!"), false},
        {good + "e", false},
        {"$2y$10$short", false},
        {"", false},
    };
    for (const auto& c : cases) {
        bool taken = true;
        try {
            ParseWebConfig("web.yml", "basic_auth_users:\n  prometheus: '" + c.hash + "'\n");
        } catch (const ToolError&) {
            taken = false;
        }
        EXPECT_EQ(taken, c.taken) << c.hash;
    }
}

// Cost 4: a millisecond a check. The password is "right".
const char kHash[] = "$2b$04$0MAwyrQ7Llxs4zKPYrI64Oue7NZUVGej1D4vkg9mJ0DiJmkM0yYeS";

bool Check(Login& login, const std::string& user, const std::string& password) {
    std::promise<bool> verdict;
    EXPECT_TRUE(login.check(user, password, [&](bool allowed) { verdict.set_value(allowed); }));
    return verdict.get_future().get();
}

TEST(Login, ChecksOnceAndKeepsTheVerdict) {
    Login login(std::map<std::string, std::string>{{"prometheus", kHash}});
    const std::string huge(300, 'x');
    const struct {
        std::string user, password;
        bool allowed, kept;
    } cases[] = {
        {"prometheus", "right", true, true},
        {"prometheus", "wrong", false, true},
        {"prometheus", "", false, true},
        {"Prometheus", "right", false, true},
        {"nobody", "right", false, true},
        {"prometheus", "right" + huge, false, false},
        {huge, "right", false, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(login.known(c.user, c.password), Login::Verdict::Unchecked) << c.user;
        EXPECT_EQ(Check(login, c.user, c.password), c.allowed) << c.user << ":" << c.password;
        const Login::Verdict kept = !c.kept       ? Login::Verdict::Unchecked
                                    : c.allowed ? Login::Verdict::Allowed
                                                : Login::Verdict::Refused;
        EXPECT_EQ(login.known(c.user, c.password), kept) << c.user << ":" << c.password;
    }
    // Wrong passwords push out the oldest refusals, never a password that
    // let a client in.
    for (int i = 0; i < 300; ++i) {
        Check(login, "prometheus", "guess" + std::to_string(i));
    }
    EXPECT_EQ(login.known("prometheus", "wrong"), Login::Verdict::Unchecked);
    EXPECT_EQ(login.known("prometheus", "guess299"), Login::Verdict::Refused);
    EXPECT_EQ(login.known("prometheus", "right"), Login::Verdict::Allowed);
}

}  // namespace
