#include "Sampler.h"

#include <jansson.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <memory>
#include <utility>

#include "Format.h"
#include "Reading.h"
#include "ToolError.h"
#include "json/JsonPtr.h"

using vorajson::JsonPtr;
using vorajson::Own;

namespace voractl {

namespace {

// What a sample keeps of a records array: {"<id>": value}, {"<id>": text}
// and [ids in alarm].
struct Taken {
    std::string values, texts, alarms;
};

Taken Take(const json_t* records) {
    JsonPtr values = Own(json_object());
    JsonPtr texts = Own(json_object());
    JsonPtr alarms = Own(json_array());
    size_t i;
    json_t* record;
    json_array_foreach(records, i, record) {
        const json_t* id = json_object_get(record, "id");
        if (!json_is_integer(id)) {
            continue;
        }
        const std::string key = std::to_string(json_integer_value(id));
        const json_t* value = json_object_get(record, "value");
        json_object_set(values.get(), key.c_str(),
                        value != nullptr ? const_cast<json_t*>(value) : json_null());
        if (json_t* text = json_object_get(record, "text")) {
            json_object_set(texts.get(), key.c_str(), text);
        }
        if (json_is_true(json_object_get(record, "alarm"))) {
            json_array_append(alarms.get(), const_cast<json_t*>(id));
        }
    }
    return {JsonText(values.get()), JsonText(texts.get()), JsonText(alarms.get())};
}

}  // namespace

Sampler::Sampler(Read read, double interval, size_t keep, double idleAfter, Busy busy)
    : read_(std::move(read)),
      busy_(std::move(busy)),
      interval_(interval),
      keep_(keep),
      started_(UnixTime()),
      idleAfter_(std::chrono::duration_cast<std::chrono::steady_clock::duration>(
          std::chrono::duration<double>(idleAfter))),
      thread_([this] { run(); }) {}

Sampler::~Sampler() {
    {
        std::lock_guard<std::mutex> lock(mutex_);
        stopping_ = true;
    }
    wake_.notify_all();
    thread_.join();
}

void Sampler::take() noexcept {
    try {
        std::chrono::steady_clock::time_point deadline = std::chrono::steady_clock::time_point::max();
        {
            std::lock_guard<std::mutex> lock(mutex_);
            for (const Asking& asking : asking_) {
                deadline = std::min(deadline, asking.deadline);
            }
        }
        const JsonPtr records = read_(deadline);
        if (records == nullptr) {
            // No reading by the deadline; before it, none to be had at all
            // (the exporter is stopping): every request is answered.
            answer(std::chrono::steady_clock::now() < deadline);
            return;
        }
        std::string items = JsonText(records.get());
        Taken taken = Take(records.get());
        Sample sample{0, UnixTime(), std::move(taken.values)};
        std::lock_guard<std::mutex> lock(mutex_);
        ring_.push_back(std::move(sample));  // the one step that may fail under the lock
        ring_.back().seq = ++seq_;
        items_.swap(items);
        texts_.swap(taken.texts);
        alarms_.swap(taken.alarms);
        while (ring_.size() > keep_) {
            ring_.pop_front();
        }
        taken_.notify_all();
    } catch (...) {
        ReportFailure("cannot sample the board", std::current_exception());
    }
    answer(true);
}

void Sampler::answer(bool all) noexcept {
    std::vector<Asking> due;
    std::string items;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        const auto now = std::chrono::steady_clock::now();
        for (auto it = asking_.begin(); it != asking_.end();) {
            if (all || it->deadline <= now) {
                due.push_back(std::move(*it));
                it = asking_.erase(it);
            } else {
                ++it;
            }
        }
        if (due.empty()) {
            return;
        }
        items = items_;
    }
    for (const Asking& asking : due) {
        try {
            asking.done(items);
        } catch (...) {
            // Each answers for itself.
        }
    }
}

void Sampler::touch() {
    lastRequest_ = std::chrono::steady_clock::now();
    if (idle_) {
        wake_.notify_all();
    }
}

void Sampler::run() noexcept {
    const auto period = std::chrono::duration_cast<std::chrono::steady_clock::duration>(
        std::chrono::duration<double>(interval_));
    for (;;) {
        {
            std::unique_lock<std::mutex> lock(mutex_);
            wake_.wait(lock, [this] {
                idle_ = std::chrono::steady_clock::now() - lastRequest_ > idleAfter_;
                return stopping_ || !idle_;
            });
            if (stopping_) {
                return;
            }
        }
        const auto next = std::chrono::steady_clock::now() + period;
        take();
        std::unique_lock<std::mutex> lock(mutex_);
        if (wake_.wait_until(lock, next, [this] { return stopping_; })) {
            return;
        }
    }
}

void Sampler::items(std::function<void(std::string)> done) {
    std::unique_lock<std::mutex> lock(mutex_);
    const bool wasIdle = idle_;
    touch();
    if (!wasIdle || stopping_) {
        const std::string items = items_;
        lock.unlock();
        done(items);
        return;
    }
    // Not for longer than an interval (a second at least, ten at most): a
    // board that does not answer must not keep the page waiting.
    const std::chrono::duration<double> most(std::min(std::max(interval_, 1.0), 10.0));
    asking_.push_back({std::chrono::steady_clock::now() +
                           std::chrono::duration_cast<std::chrono::steady_clock::duration>(most),
                       std::move(done)});
    wake_.notify_all();
}

std::string Sampler::items() {
    auto answered = std::make_shared<std::promise<std::string>>();
    std::future<std::string> items = answered->get_future();
    this->items([answered](std::string got) { answered->set_value(std::move(got)); });
    return items.get();
}

std::string Sampler::samples(uint64_t since) {
    std::lock_guard<std::mutex> lock(mutex_);
    touch();
    char head[128];
    std::snprintf(head, sizeof head, "{\"interval\":%g,\"started\":%.3f,\"last\":%llu,\"samples\":[",
                  interval_, started_, static_cast<unsigned long long>(seq_));
    std::string out = head;
    const double waiting = busy_ != nullptr ? busy_() : 0;
    if (waiting > interval_) {
        char late[48];
        std::snprintf(late, sizeof late, "\"waiting\":%.3f,", waiting);
        out.insert(1, late);
    }
    bool first = true;
    for (const Sample& sample : ring_) {
        if (sample.seq <= since) {
            continue;
        }
        char fields[96];
        std::snprintf(fields, sizeof fields, "%s{\"seq\":%llu,\"time\":%.3f,\"values\":",
                      first ? "" : ",", static_cast<unsigned long long>(sample.seq), sample.time);
        out += fields + sample.values + "}";
        first = false;
    }
    return out + (first ? "]}" : "],\"texts\":" + texts_ + ",\"alarms\":" + alarms_ + "}");
}

}  // namespace voractl
