// A recording of a board library: every distinct call the module made (the
// function and what went in) with the library's answer (its status and
// every output). A recording is a board: the simulated library of its
// generation answers from it (Replay.h). The file:
//
//   {"format": "voradrv-recording", "version": 1,
//    "library": {"name": "libVORA-4.00", "generation": "4", "path": "..."},
//    "recorded": "2026-11-24T10:11:12Z", "redacted": false,
//    "calls": [{"function": "VoraBoardGetValue", "in": {"id": 135168},
//               "status": 0, "out": {"words": [1050]}}, ...]}
#pragma once

#include <jansson.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vorarec {

class Recording {
public:
    Recording() = default;
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;
    ~Recording();

    // Reads a recording; on a problem returns false with `error` naming its
    // place ("calls[3].status: expected a number"). One of more than
    // kMostCalls calls is refused before it is parsed.
    bool load(const std::string& text, std::string& error);

    // The library recorded, from now on.
    void setLibrary(const std::string& name, const std::string& generation, const std::string& path);
    // Adds a call's answer unless a call with the same inputs is there
    // already; takes over `in` and `out` (and `status`, which may be null
    // for a function without a result).
    void add(const std::string& function, json_t* in, json_t* status, json_t* out);

    struct Answer {
        const json_t* status;  // null for a function without a result
        const json_t* out;
    };
    // The recorded answer to `function` with `in`, if there is one.
    std::optional<Answer> find(const std::string& function, const json_t* in) const;

    const std::string& generation() const { return generation_; }

    // Replaces every text but those that identify no board or site, and
    // every word of the management network's values, with placeholders of
    // the same length and form (see Recording.cpp).
    void redact();

    // The recording as text, calls in the order first made.
    std::string text() const;

private:
    static std::string Key(const std::string& function, const json_t* in);

    json_t* calls_ = json_array();
    std::map<std::string, size_t> index_;
    std::string name_;
    std::string generation_;
    std::string path_;
    std::string recorded_;  // when the library was recorded, as the file says it
    bool redacted_ = false;
};

// The most calls a recording may hold; files/Read.h says the most bytes.
// The largest board's recording holds under 600.
constexpr size_t kMostCalls = 100000;

// True when `text` looks like a recording rather than a board profile: it
// names the recording format near its start.
bool IsRecording(const std::string& text);

// The text of a file that holds a board: a recording, or a board profile,
// each held to the limit of its kind. Throws vorafiles::FileError.
std::string ReadBoardFile(const std::string& path);

}  // namespace vorarec
