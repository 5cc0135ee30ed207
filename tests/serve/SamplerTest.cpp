// The board page's sampler: it reads the board only while pages ask, at its
// interval whatever the number of requests, keeps a bounded ring, and lets
// a page fetch only what it has not seen.
#include <gtest/gtest.h>
#include <jansson.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>

#include "Sampler.h"

using namespace voractl;
using vorajson::JsonPtr;
using vorajson::Own;
using namespace std::chrono_literals;

namespace {

// A board whose every reading is numbered: item 1 reads the reading's
// number, item 2 is unreadable, and a record without a numeric id (which
// the page cannot chart) is left out of the samples.
struct CountingBoard {
    std::atomic<int> readings{0};
    std::atomic<bool> failing{false};

    Sampler::Read read() {
        return [this](std::chrono::steady_clock::time_point) {
            if (failing) {
                throw std::runtime_error("the board library stopped answering");
            }
            const int n = ++readings;
            return Own(json_pack("[{s:i, s:i}, {s:i}, {s:s, s:i}]", "id", 1, "value", n, "id", 2,
                                 "id", "x", "value", 0));
        };
    }
};

struct Samples {
    JsonPtr json;
    uint64_t last() const { return json_integer_value(json_object_get(json.get(), "last")); }
    const json_t* list() const { return json_object_get(json.get(), "samples"); }
    size_t size() const { return json_array_size(list()); }
    uint64_t seq(size_t i) const {
        return json_integer_value(json_object_get(json_array_get(list(), i), "seq"));
    }
};

Samples Fetch(Sampler& sampler, uint64_t since) {
    json_error_t error;
    JsonPtr json = Own(json_loads(sampler.samples(since).c_str(), 0, &error));
    EXPECT_NE(json, nullptr) << error.text;
    return Samples{std::move(json)};
}

// Asks (as a page does) until `done` holds; false after 20 s.
template <typename Done>
bool AskUntil(Sampler& sampler, Done done) {
    const auto deadline = std::chrono::steady_clock::now() + 20s;
    while (std::chrono::steady_clock::now() < deadline) {
        if (done(Fetch(sampler, 0))) {
            return true;
        }
        std::this_thread::sleep_for(10ms);
    }
    return false;
}

TEST(Sampler, ReadsOnlyOnceAPageAsks) {
    CountingBoard board;
    Sampler sampler(board.read(), 0.01, 10, 60);
    std::this_thread::sleep_for(100ms);
    EXPECT_EQ(board.readings, 0);

    // Asked while idle, items() waits for a reading rather than answering
    // the empty list it started with.
    json_error_t error;
    const JsonPtr items = Own(json_loads(sampler.items().c_str(), 0, &error));
    ASSERT_NE(items, nullptr) << error.text;
    ASSERT_EQ(json_array_size(items.get()), 3u);
    EXPECT_GE(json_integer_value(json_object_get(json_array_get(items.get(), 0), "value")), 1);
}

TEST(Sampler, HandsOutOnlySamplesNotSeen) {
    CountingBoard board;
    Sampler sampler(board.read(), 0.01, 3, 60);
    ASSERT_TRUE(AskUntil(sampler, [](const Samples& s) { return s.last() >= 6; }));

    const Samples all = Fetch(sampler, 0);
    ASSERT_EQ(all.size(), 3u);
    const uint64_t last = all.last();
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(all.seq(i), last - 2 + i);
    }
    EXPECT_EQ(json_real_value(json_object_get(all.json.get(), "interval")), 0.01);

    // A sample's values: the item's true value, null for an unreadable one,
    // nothing for a record without a numeric id.
    const json_t* sample = json_array_get(all.list(), 2);
    EXPECT_GT(json_real_value(json_object_get(sample, "time")), 1.7e9);
    const json_t* values = json_object_get(sample, "values");
    EXPECT_EQ(json_object_size(values), 2u);
    EXPECT_GE(json_integer_value(json_object_get(values, "1")), 6);
    EXPECT_TRUE(json_is_null(json_object_get(values, "2")));

    const Samples newer = Fetch(sampler, all.seq(1));
    ASSERT_GE(newer.size(), 1u);
    EXPECT_EQ(newer.seq(0), all.seq(2));
    EXPECT_EQ(Fetch(sampler, UINT64_MAX).size(), 0u);
}

TEST(Sampler, StopsAndRestartsWithThePages) {
    CountingBoard board;
    Sampler sampler(board.read(), 0.01, 10, 0.2);
    ASSERT_TRUE(AskUntil(sampler, [](const Samples& s) { return s.last() >= 2; }));

    std::this_thread::sleep_for(500ms);  // idle by now
    const int idle = board.readings;
    std::this_thread::sleep_for(300ms);
    EXPECT_EQ(board.readings, idle);

    const uint64_t before = Fetch(sampler, 0).last();
    ASSERT_TRUE(AskUntil(sampler, [&](const Samples& s) { return s.last() > before + 1; }));
}

TEST(Sampler, AFailedReadingAddsNoSampleAndTheNextOneDoes) {
    CountingBoard board;
    board.failing = true;
    Sampler sampler(board.read(), 0.01, 10, 60);
    std::this_thread::sleep_for(100ms);
    Fetch(sampler, 0);  // wakes it
    std::this_thread::sleep_for(100ms);
    EXPECT_EQ(Fetch(sampler, 0).size(), 0u);
    EXPECT_EQ(sampler.items(), "[]");

    board.failing = false;
    ASSERT_TRUE(AskUntil(sampler, [](const Samples& s) { return s.size() >= 1; }));
    EXPECT_EQ(Fetch(sampler, 0).seq(0), 1u);
}

TEST(Sampler, StopsAtOnceWhateverItsInterval) {
    CountingBoard board;
    const auto start = std::chrono::steady_clock::now();
    {
        Sampler sampler(board.read(), 3600, 10, 7200);
        ASSERT_TRUE(AskUntil(sampler, [](const Samples& s) { return s.last() == 1; }));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, 30s);
}

}  // namespace
