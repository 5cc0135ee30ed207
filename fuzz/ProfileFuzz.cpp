// Fuzz target: the simulator's board profiles. Any text is either refused
// with a ProfileError naming the place and what was expected (or where the
// JSON itself breaks), or read into a board and faults that the profile
// writer puts back into text which reads back to the same board and faults
// (the writer's text, read and written again, is the same text). The
// sanitizers watch for crashes and leaks.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "core/Profile.h"

namespace {

// "line 3, column 7: ...", or "PLACE: expected ..., found ..." (or an
// unknown key at its place).
bool Names(const std::string& refusal) {
    return refusal.rfind("line ", 0) == 0 ||
           (refusal.find(": ") != std::string::npos &&
            ((refusal.find("expected ") != std::string::npos && refusal.find(", found ") != std::string::npos) ||
             refusal.find(": unknown key ") != std::string::npos));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    vorasim::Profile profile;
    try {
        profile = vorasim::ParseProfile(std::string(reinterpret_cast<const char*>(data), size));
    } catch (const vorasim::ProfileError& e) {
        if (!Names(e.what())) {
            std::fprintf(stderr, "fuzz_profile: a refusal that names no place or expectation: %s\n", e.what());
            std::abort();
        }
        return 0;
    }
    const std::string written = vorasim::FormatProfile(profile.board, profile.faults);
    std::string again;
    try {
        const vorasim::Profile read = vorasim::ParseProfile(written);
        again = vorasim::FormatProfile(read.board, read.faults);
    } catch (const vorasim::ProfileError& e) {
        std::fprintf(stderr, "fuzz_profile: the written profile is refused: %s\n%s\n", e.what(),
                     written.c_str());
        std::abort();
    }
    if (again != written) {
        std::fprintf(stderr, "fuzz_profile: the board changed on the way back\n%s\n---\n%s\n",
                     written.c_str(), again.c_str());
        std::abort();
    }
    return 0;
}
