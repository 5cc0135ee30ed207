#include "Recording.h"

#include <time.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "Calls.h"
#include "Check.h"
#include "Libraries.h"
#include "Redaction.h"
#include "files/Read.h"

namespace vorarec {

namespace {

constexpr const char* kFormat = "voradrv-recording";
constexpr int kVersion = 2;
// What a call's line holds besides its function, inputs and outputs, at
// most: the keys, and of each answer a status, a count and a time, each of
// up to ten digits.
constexpr size_t kCallBytes = 36;
constexpr size_t kAnswerBytes = 72;
// The most times one run of an answer may count; the next is a run of its own.
constexpr uint64_t kMostTimes = 0xFFFFFFFF;
// Room kept for the header below the most bytes a recording may be.
constexpr size_t kHeaderBytes = 64 << 10;

std::string Now() {
    const time_t now = time(nullptr);
    struct tm utc {};
    gmtime_r(&now, &utc);
    char text[32];
    strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc);
    return text;
}

std::string Dump(const json_t* json) {
    char* dumped = json != nullptr ? json_dumps(json, JSON_COMPACT | JSON_SORT_KEYS | JSON_ENCODE_ANY) : nullptr;
    std::string text = dumped != nullptr ? dumped : "";
    std::free(dumped);
    return text;
}

bool Same(const json_t* a, const json_t* b) {
    return a == b || (a != nullptr && b != nullptr && json_equal(a, b) != 0);
}

// A call that took about as long as a run's calls: within a millisecond or
// half the run's mean, whichever is more. A slow call among quick ones is
// kept apart, so that a replay at the recorded speed is slow there too.
bool Close(double seconds, uint64_t times, double total) {
    const double mean = total / static_cast<double>(times);
    return std::fabs(seconds - mean) <= std::max(0.001, 0.5 * mean);
}

// The objects in a JSON text, strings left out: each answer is at least
// three less one shared with its call's (the call, what went in, what came
// out), so this bounds the answers before jansson spends memory on them.
size_t Objects(const std::string& text) {
    size_t objects = 0;
    bool quoted = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quoted) {
            i += c == '\\' ? 1 : 0;
            quoted = c != '"';
        } else {
            quoted = c == '"';
            objects += c == '{' ? 1 : 0;
        }
    }
    return objects;
}

JsonPtr Held(const json_t* json) { return JsonPtr(json_incref(const_cast<json_t*>(json))); }

const std::string& TooMany() {
    static const std::string text =
        "calls: expected at most " + std::to_string(kMostAnswers) + " answers, found more";
    return text;
}

}  // namespace

bool IsRecording(const std::string& text) {
    return text.substr(0, 255).find(std::string("\"") + kFormat + "\"") != std::string::npos;
}

std::string ReadBoardFile(const std::string& path) {
    std::string text = vorafiles::Read(path, vorafiles::kRecordingLimit);
    if (!IsRecording(text)) {
        vorafiles::Within(text.size(), vorafiles::kProfileLimit);
    }
    return text;
}

std::string Recording::Key(const std::string& function, const json_t* in) {
    return function + "\x1f" + Dump(in);
}

void Recording::loadHeader(const Node& root) {
    if (!json_is_object(root.json())) {
        root.fail("an object");
    }
    if (root.member("format").text() != kFormat) {
        root.member("format").fail(std::string("\"") + kFormat + "\"");
    }
    root.member("version").integer(1, kVersion, "1 or 2, the versions this simulator reads");
    root.object({"format", "version", "library", "recorded", "redacted", "full", "calls"});
    const Node library = root.member("library");
    library.object({"name", "generation", "path"});
    generation_ = library.member("generation").text();
    const Library* known = LibraryOf(generation_);
    if (known == nullptr) {
        library.member("generation").fail("\"4\", \"3\" or \"eapi\"");
    }
    name_ = library.member("name").present() ? library.member("name").text() : known->name;
    if (name_ != known->name) {
        library.member("name").fail(std::string("\"") + known->name + "\", the library of that generation");
    }
    path_ = library.member("path").present() ? library.member("path").text() : "";
    recorded_ = root.member("recorded").present() ? root.member("recorded").text() : "";
    redacted_ = root.member("redacted").present() && root.member("redacted").boolean();
    full_ = root.member("full").present() && root.member("full").boolean();
    root.member("calls").arraySize();
}

void Recording::loadCall(const Node& node, const std::string& function) {
    Call call{function, Held(node.member("in").json()), {}};
    const Node answers = node.member("answers");
    for (size_t i = 0; i < (answers.present() ? answers.arraySize() : 1); ++i) {
        const Node answer = answers.present() ? answers.element(i) : node;
        const json_t* times = answer.member("times").json();
        Run run{Held(answer.member("status").json()), Held(answer.member("out").json())};
        run.times = times != nullptr ? static_cast<uint64_t>(json_integer_value(times)) : 1;
        run.seconds = static_cast<double>(json_integer_value(answer.member("took_us").json())) / 1e6 * run.times;
        call.runs.push_back(std::move(run));
    }
    const auto [at, added] = index_.emplace(Key(function, call.in.get()), calls_.size());
    if (added) {
        answers_ += call.runs.size();
        calls_.push_back(std::move(call));
        return;
    }
    const std::vector<Run>& before = calls_[at->second].runs;
    bool same = before.size() == call.runs.size();
    for (size_t i = 0; same && i < before.size(); ++i) {
        same = Same(before[i].status.get(), call.runs[i].status.get()) &&
               Same(before[i].out.get(), call.runs[i].out.get()) && before[i].times == call.runs[i].times;
    }
    if (!same) {
        node.refuse("expected each call once, its answers in order in \"answers\", found " + function +
                    " " + Dump(call.in.get()) + " again with other answers");
    }
}

bool Recording::load(const std::string& text, std::string& error) {
    *this = Recording();
    try {
        if (Objects(text) > 3 * kMostAnswers + 3) {
            throw JsonError(TooMany());
        }
        const JsonPtr root = ParseJson(text);
        const Node n(root.get(), "", "recording");
        loadHeader(n);
        const Library& library = *LibraryOf(generation_);
        const Node calls = n.member("calls");
        for (size_t i = 0; i < calls.arraySize(); ++i) {
            loadCall(calls.element(i), CheckCall(calls.element(i), library).function);
        }
        if (answers_ > kMostAnswers) {
            throw JsonError(TooMany());
        }
        return true;
    } catch (const JsonError& e) {
        error = e.what();
        *this = Recording();
        return false;
    }
}

void Recording::setLibrary(const std::string& name, const std::string& generation, const std::string& path) {
    name_ = name;
    generation_ = generation;
    path_ = path;
    recorded_ = Now();
}

bool Recording::room(size_t bytes) {
    if (!full_ && answers_ < kMostAnswers &&
        bytes_ + bytes <= vorafiles::kRecordingLimit.bytes - kHeaderBytes) {
        bytes_ += bytes;
        ++answers_;
        return true;
    }
    full_ = true;
    return false;
}

bool Recording::add(const std::string& function, json_t* in, json_t* status, json_t* out, double seconds) {
    JsonPtr inHeld(in);
    Run run{JsonPtr(status), JsonPtr(out), 1, seconds};
    if (full_) {
        return false;
    }
    const std::string key = Key(function, in);
    const auto found = index_.find(key);
    if (found == index_.end()) {
        if (!room(kCallBytes + key.size() + kAnswerBytes + Dump(out).size())) {
            return false;
        }
        index_.emplace(key, calls_.size());
        calls_.push_back(Call{function, std::move(inHeld), {}});
        calls_.back().runs.push_back(std::move(run));
        return true;
    }
    Run& last = calls_[found->second].runs.back();
    if (Same(last.status.get(), status) && Same(last.out.get(), out) && Close(seconds, last.times, last.seconds) &&
        last.times < kMostTimes) {
        ++last.times;
        last.seconds += seconds;
        return true;
    }
    if (!room(kAnswerBytes + Dump(out).size())) {
        return false;
    }
    calls_[found->second].runs.push_back(std::move(run));
    return true;
}

std::optional<Recording::Answer> Recording::next(const std::string& function, const json_t* in) {
    const auto found = index_.find(Key(function, in));
    if (found == index_.end()) {
        return std::nullopt;
    }
    Call& call = calls_[found->second];
    const Run& run = call.runs[call.at];
    const Answer answer{run.status.get(), run.out.get(), run.seconds / static_cast<double>(run.times)};
    if (++call.used >= run.times && call.at + 1 < call.runs.size()) {
        ++call.at;
        call.used = 0;
    }
    return answer;
}

// Every text the allow-list does not name and every word of every
// management network value, in what came out of a call and in what went
// into one (a write of a host name, say).
void Recording::redact() {
    Redactor redactor;
    for (Call& call : calls_) {
        for (Run& run : call.runs) {
            redactor.texts(call.function, call.in.get(), run.out.get());
        }
        redactor.words(call.in.get(), call.in.get());
        for (Run& run : call.runs) {
            redactor.words(call.in.get(), run.out.get());
        }
    }
    index();
    redacted_ = true;
}

// What went in may have changed, and with it what finds a call: calls that
// became one keep their answers in one list, and answers that became the
// same in a row are one run.
void Recording::index() {
    std::vector<Call> calls;
    index_.clear();
    answers_ = 0;
    for (Call& call : calls_) {
        const auto [at, added] = index_.emplace(Key(call.function, call.in.get()), calls.size());
        if (added) {
            calls.push_back(Call{call.function, std::move(call.in), {}});
        }
        std::vector<Run>& runs = calls[at->second].runs;
        for (Run& run : call.runs) {
            if (!runs.empty() && Same(runs.back().status.get(), run.status.get()) &&
                Same(runs.back().out.get(), run.out.get()) &&
                Close(run.seconds / static_cast<double>(run.times), runs.back().times, runs.back().seconds) &&
                runs.back().times + run.times <= kMostTimes) {
                runs.back().times += run.times;
                runs.back().seconds += run.seconds;
            } else {
                runs.push_back(std::move(run));
                ++answers_;
            }
        }
    }
    calls_ = std::move(calls);
}

json_t* Recording::CallJson(const Call& call) {
    json_t* line = json_pack("{s:s, s:O}", "function", call.function.c_str(), "in", call.in.get());
    const bool one = call.runs.size() == 1 && call.runs.front().times == 1;
    json_t* answers = json_array();
    for (const Run& run : call.runs) {
        json_t* answer = one ? line : json_object();
        if (run.status != nullptr) {
            json_object_set(answer, "status", run.status.get());
        }
        json_object_set(answer, "out", run.out.get());
        if (run.times > 1) {
            json_object_set_new(answer, "times", json_integer(static_cast<json_int_t>(run.times)));
        }
        const double mean = std::min(run.seconds / static_cast<double>(run.times), kLongestCall / 1e6);
        json_object_set_new(answer, "took_us", json_integer(static_cast<json_int_t>(std::llround(mean * 1e6))));
        if (!one) {
            json_array_append_new(answers, answer);
        }
    }
    if (one) {
        json_decref(answers);
    } else {
        json_object_set_new(line, "answers", answers);
    }
    return line;
}

std::string Recording::text() const {
    // The header, then one call a line, so that a person can read and edit it.
    JsonPtr header(json_pack("{s:s, s:i, s:{s:s, s:s, s:s}, s:s, s:b}", "format", kFormat, "version",
                             kVersion, "library", "name", name_.c_str(), "generation", generation_.c_str(),
                             "path", path_.c_str(), "recorded",
                             recorded_.empty() ? Now().c_str() : recorded_.c_str(), "redacted", redacted_));
    if (full_) {
        json_object_set_new(header.get(), "full", json_true());
    }
    char* dumped = json_dumps(header.get(), JSON_COMPACT);
    std::string text = dumped != nullptr ? dumped : "{}";
    std::free(dumped);
    text.pop_back();  // the closing brace
    text += ",\n\"calls\": [";
    for (size_t i = 0; i < calls_.size(); ++i) {
        const JsonPtr line(CallJson(calls_[i]));
        dumped = json_dumps(line.get(), JSON_COMPACT | JSON_REAL_PRECISION(17));
        text += std::string(i == 0 ? "\n" : ",\n") + (dumped != nullptr ? dumped : "{}");
        std::free(dumped);
    }
    return text + "\n]}\n";
}

}  // namespace vorarec
