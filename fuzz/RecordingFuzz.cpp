// Fuzz target: recordings, as the simulators replay them and as a customer
// may hand-edit them. Any text is either refused with a message naming the
// place and what was expected (or where the JSON itself breaks), or read
// into a recording whose text reads back to the same text, so that it
// replays the same answers in the same order; redacted, it still reads
// back, with as many answers. The sanitizers watch for crashes and leaks.
#include <jansson.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "record/Recording.h"

namespace {

[[noreturn]] void Fail(const std::string& what, const std::string& text) {
    std::fprintf(stderr, "fuzz_recording: %s\n%s\n", what.c_str(), text.c_str());
    std::abort();
}

bool Names(const std::string& refusal) {
    return refusal.rfind("line ", 0) == 0 ||
           (refusal.find(": ") != std::string::npos &&
            ((refusal.find("expected ") != std::string::npos && refusal.find(", found ") != std::string::npos) ||
             refusal.find(": unknown key ") != std::string::npos));
}

// Every answer a recording's text gives, each run counted as often as it is
// given.
json_int_t Answers(const std::string& text) {
    json_t* document = json_loads(text.c_str(), 0, nullptr);
    json_int_t count = 0;
    size_t i;
    json_t* call;
    json_array_foreach(json_object_get(document, "calls"), i, call) {
        const json_t* answers = json_object_get(call, "answers");
        size_t j;
        json_t* answer;
        json_array_foreach(answers, j, answer) {
            const json_t* times = json_object_get(answer, "times");
            count += times != nullptr ? json_integer_value(times) : 1;
        }
        count += answers == nullptr ? 1 : 0;
    }
    json_decref(document);
    return count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    std::string error;
    vorarec::Recording recording;
    if (!recording.load(input, error)) {
        if (!Names(error)) {
            Fail("a refusal that names no place or expectation: " + error, input);
        }
        return 0;
    }
    const std::string text = recording.text();
    vorarec::Recording again;
    if (!again.load(text, error)) {
        Fail("its own text is refused: " + error, text);
    }
    if (again.text() != text) {
        Fail("the text changed on the way back", again.text());
    }
    again.redact();
    const std::string redacted = again.text();
    vorarec::Recording shared;
    if (!shared.load(redacted, error)) {
        Fail("the redacted text is refused: " + error, redacted);
    }
    if (Answers(redacted) != Answers(text)) {
        Fail("redaction changed the number of answers", redacted);
    }
    return 0;
}
