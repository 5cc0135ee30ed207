// Fuzz target: voractl serve's web configuration. Any file is either
// refused with a message naming the file, or read into a configuration
// whose every user has a bcrypt hash. The sanitizers watch for crashes and
// leaks in the walk over libyaml's document.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "ToolError.h"
#include "WebConfig.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    // Certificate and key files named in the input are looked for beside
    // this name, where there are none; an input that names a device or a
    // kernel file (which could be endless) is not what is fuzzed here.
    const std::string path = "/nonexistent/web.yml";
    for (const char* place : {"/dev", "/proc", "/sys"}) {
        if (text.find(place) != std::string::npos) {
            return 0;
        }
    }
    try {
        const voractl::WebConfig config = voractl::ParseWebConfig(path, text);
        for (const auto& [user, hash] : config.users) {
            if (hash.size() != 60 || hash.compare(0, 2, "$2") != 0) {
                std::fprintf(stderr, "fuzz_web_config: user %s taken with \"%s\"\n", user.c_str(),
                             hash.c_str());
                std::abort();
            }
        }
    } catch (const voractl::ToolError& e) {
        const char* what = e.what();
        if (std::strncmp(what, "web configuration /nonexistent/web.yml: ", 40) != 0 &&
            std::strncmp(what, "cannot read the TLS ", 20) != 0) {
            std::fprintf(stderr, "fuzz_web_config: a refusal that names no file: %s\n", what);
            std::abort();
        }
    }
    return 0;
}
