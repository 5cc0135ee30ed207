// Fuzz target: recordings, as the simulators replay them and as a customer
// may hand-edit them. Any text is either refused with a message naming the
// place, or read into a recording whose text reads back to the same text;
// redacted, it still reads back, with as many calls. The sanitizers watch
// for crashes and leaks.
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

size_t Calls(const std::string& text) {
    size_t count = 0;
    for (size_t at = text.find("\"function\""); at != std::string::npos;
         at = text.find("\"function\"", at + 1)) {
        ++count;
    }
    return count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    std::string error;
    vorarec::Recording recording;
    if (!recording.load(input, error)) {
        if (error.empty()) {
            Fail("a refusal that says nothing", input);
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
    if (Calls(redacted) != Calls(text)) {
        Fail("redaction changed the number of calls", redacted);
    }
    return 0;
}
