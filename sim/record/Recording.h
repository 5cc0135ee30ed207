// A recording of a board library: every distinct call the module made (the
// function and what went in) with the library's answers to it (each a
// status, every output and how long the call took), in the order the
// library gave them. A recording is a board: the simulated library of its
// generation answers from it (Replay.h), each call's answers in their order
// and then the last one again. The file, one call a line:
//
//   {"format": "voradrv-recording", "version": 2,
//    "library": {"name": "libVORA-4.00", "generation": "4", "path": "..."},
//    "recorded": "2026-11-24T10:11:12Z", "redacted": false,
//    "calls": [
//    {"function": "VoraBoardGetValue", "in": {"id": 135168}, "status": 0,
//     "out": {"words": [1050]}, "took_us": 3},
//    {"function": "VoraBoardGetValue", "in": {"id": 139264}, "answers": [
//      {"status": 0, "out": {"words": [2400]}, "times": 2, "took_us": 3},
//      {"status": 4294963455, "out": {}, "took_us": 2}, ...]}, ...]}
//
// An answer given several times in a row, each time about as quickly (within
// a millisecond or half their mean), is kept once with its "times", so the
// recording of a steady board does not grow as it is read again; its
// "took_us" is the mean. Version 1 (one answer a call, no times) is read too.
#pragma once

#include <jansson.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "JsonPath.h"

namespace vorarec {

// The most answers a recording may hold; files/Read.h says the most bytes.
// The largest board's recording holds under 600.
constexpr size_t kMostAnswers = 100000;

class Recording {
public:
    // Reads a recording; on a problem returns false with `error` naming its
    // place, what was expected and what was found ("calls[3].status:
    // expected a status from 0 to 4294967295, found the text \"0\""). One of
    // more than kMostAnswers answers is refused before it is parsed.
    bool load(const std::string& text, std::string& error);

    // The library recorded, from now on.
    void setLibrary(const std::string& name, const std::string& generation, const std::string& path);
    // Adds the answer to a call of `function` with `in` that took `seconds`
    // (`status` null for a function without a result); takes over `in`,
    // `status` and `out`. False, keeping nothing, once the recording is
    // full: it then holds kMostAnswers answers or nearly the most bytes a
    // recording may be, and no later call is added.
    bool add(const std::string& function, json_t* in, json_t* status, json_t* out, double seconds);
    bool full() const { return full_; }

    struct Answer {
        const json_t* status;  // null for a function without a result
        const json_t* out;
        double seconds;        // how long the call took
    };
    // The next answer to `function` with `in`, in the order recorded, the
    // last one again once all have been given; none for a call not recorded.
    std::optional<Answer> next(const std::string& function, const json_t* in);

    const std::string& name() const { return name_; }
    const std::string& generation() const { return generation_; }
    const std::string& path() const { return path_; }
    const std::string& recorded() const { return recorded_; }
    bool redacted() const { return redacted_; }
    // The answers it holds, each run of one answer counted once.
    size_t answers() const { return answers_; }

    // Replaces every text but those that identify no board or site, and
    // every word of the management network's values, with placeholders of
    // the same length and form (Redaction.h).
    void redact();

    // The recording as text, calls in the order first made.
    std::string text() const;

    // What tells one call from another: its function and what went in.
    static std::string Key(const std::string& function, const json_t* in);

private:
    struct Run {
        JsonPtr status;
        JsonPtr out;
        uint64_t times = 1;
        double seconds = 0.0;  // of all the times together
    };
    struct Call {
        std::string function;
        JsonPtr in;
        std::vector<Run> runs;
        size_t at = 0;      // the run the next answer comes from
        uint64_t used = 0;  // of that run's times
    };

    void loadHeader(const Node& root);
    void loadCall(const Node& node, const std::string& function);
    bool room(size_t bytes);
    void index();
    static json_t* CallJson(const Call& call);

    std::vector<Call> calls_;
    std::map<std::string, size_t> index_;
    std::string name_;
    std::string generation_;
    std::string path_;
    std::string recorded_;  // when the library was recorded, as the file says it
    bool redacted_ = false;
    bool full_ = false;
    size_t answers_ = 0;
    size_t bytes_ = 0;  // about the length of text()
};

// True when `text` looks like a recording rather than a board profile: it
// names the recording format near its start.
bool IsRecording(const std::string& text);

// The text of a file that holds a board: a recording, or a board profile,
// each held to the limit of its kind. Throws vorafiles::FileError.
std::string ReadBoardFile(const std::string& path);

}  // namespace vorarec
