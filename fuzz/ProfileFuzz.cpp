// Fuzz target: the simulator's board profiles. Any text is either refused
// with a ProfileError naming the place, or read into a board that the
// profile writer puts back into text which reads back to the same board
// (the writer's text, read and written again, is the same text). The
// sanitizers watch for crashes and leaks.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "core/Profile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    vorasim::Profile profile;
    try {
        profile = vorasim::ParseProfile(std::string(reinterpret_cast<const char*>(data), size));
    } catch (const vorasim::ProfileError& e) {
        if (e.what()[0] == '\0') {
            std::fprintf(stderr, "fuzz_profile: a refusal that says nothing\n");
            std::abort();
        }
        return 0;
    }
    const std::string written = vorasim::FormatProfile(profile.board);
    std::string again;
    try {
        again = vorasim::FormatProfile(vorasim::ParseProfile(written).board);
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
