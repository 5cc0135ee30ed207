#include "Harness.h"

#include <dlfcn.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <set>
#include <sstream>

#include "BoardLibraries.h"
#include "vorasim.h"

namespace vtest {

namespace {

using voradrv::host::kBoardLibraries;

std::vector<std::string>& TempFiles() {
    static std::vector<std::string> files;
    static const bool cleanup = [] {
        std::atexit([] {
            for (const std::string& f : TempFiles()) {
                ::unlink(f.c_str());
            }
        });
        return true;
    }();
    (void)cleanup;
    return files;
}

}  // namespace

std::optional<Generation> GenerationNamed(const std::string& name) {
    const voradrv::host::KnownLibrary* library = voradrv::host::LibraryOfGeneration(name);
    if (library == nullptr) return std::nullopt;
    return static_cast<Generation>(library - kBoardLibraries);
}

const char* LibraryName(Generation generation) {
    return kBoardLibraries[static_cast<int>(generation)].name;
}

std::string SimLibraryPath(Generation generation) {
    return std::string(VTEST_SIM_DIR) + "/" + LibraryName(generation) + ".so";
}

void Redirect(const std::vector<std::pair<std::string, std::string>>& present) {
    std::string list;
    for (const voradrv::host::KnownLibrary& library : kBoardLibraries) {
        for (const std::string probed : library.paths) {
            std::string target;
            for (const auto& [path, file] : present) {
                if (path == probed) {
                    target = file;
                }
            }
            list += (list.empty() ? "" : ":") + probed + "=" + target;
        }
    }
    ::setenv("VORA_REDIRECT", list.c_str(), 1);
}

void UseSimulator(Generation generation, const std::string& profile, const std::string& dir) {
    Redirect({{dir + "/" + LibraryName(generation) + ".so", SimLibraryPath(generation)}});
    ::setenv("VORA_SIM_TIME", "0", 1);
    if (!profile.empty()) {
        ::setenv("VORA_SIM_BOARD", WriteTempFile(profile).c_str(), 1);
    }
}

std::string LargestBoard(Generation generation) {
    static const char* const kFiles[] = {"vora4-largest.json", "vora3-largest.json",
                                         "eapi-largest.json"};
    return FileText(std::string(VTEST_SOURCE_DIR) + "/sim/profiles/" +
                    kFiles[static_cast<int>(generation)]);
}

std::string WriteTempFile(const std::string& text) {
    char path[] = "/tmp/voradrv-test-XXXXXX";
    const int fd = ::mkstemp(path);
    if (fd >= 0) {
        const bool whole = ::write(fd, text.data(), text.size()) ==
                           static_cast<ssize_t>(text.size());
        ::close(fd);
        TempFiles().push_back(path);
        if (whole) {
            return path;
        }
    }
    std::perror("vtest: temporary file");
    std::abort();
}

std::string FileText(const std::string& path) {
    std::ifstream in(path);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

voradrv::host::ModuleHost& Module() {
    // Never released: the module stays loaded for the life of the process.
    static auto* module = new voradrv::host::ModuleHost(VTEST_MODULE);
    return *module;
}

SimControl::SimControl(Generation generation)
    : handle_(::dlopen(SimLibraryPath(generation).c_str(), RTLD_LAZY | RTLD_GLOBAL)) {}

void* SimControl::symbol(const char* name) const {
    void* address = handle_ == nullptr ? nullptr : ::dlsym(handle_, name);
    if (address == nullptr) {
        std::fprintf(stderr, "vtest: the simulator lacks %s\n", name);
        std::abort();
    }
    return address;
}

std::string SimControl::loadProfileError(const std::string& json) {
    auto load = reinterpret_cast<decltype(&vorasim_load_profile)>(symbol("vorasim_load_profile"));
    auto error = reinterpret_cast<decltype(&vorasim_last_error)>(symbol("vorasim_last_error"));
    return load(json.c_str()) == 0 ? "" : error();
}

std::string SimControl::addFaultError(const std::string& json) {
    auto add = reinterpret_cast<decltype(&vorasim_add_fault)>(symbol("vorasim_add_fault"));
    auto error = reinterpret_cast<decltype(&vorasim_last_error)>(symbol("vorasim_last_error"));
    return add(json.c_str()) == 0 ? "" : error();
}

void SimControl::clearFaults() {
    reinterpret_cast<decltype(&vorasim_clear_faults)>(symbol("vorasim_clear_faults"))();
}

void SimControl::startLog() {
    reinterpret_cast<decltype(&vorasim_log_enable)>(symbol("vorasim_log_enable"))(1);
}

std::string SimControl::takeLog() {
    std::string text = reinterpret_cast<decltype(&vorasim_call_log)>(symbol("vorasim_call_log"))();
    reinterpret_cast<decltype(&vorasim_clear_log)>(symbol("vorasim_clear_log"))();
    return text;
}

StdoutCapture::StdoutCapture() {
    std::fflush(stdout);
    char path[] = "/tmp/voradrv-stdout-XXXXXX";
    file_ = ::mkstemp(path);
    ::unlink(path);
    saved_ = ::dup(1);
    ::dup2(file_, 1);
}

StdoutCapture::~StdoutCapture() { finish(); }

std::string StdoutCapture::take() {
    std::fflush(stdout);
    std::string text;
    char chunk[4096];
    ssize_t n;
    while (file_ >= 0 && (n = ::pread(file_, chunk, sizeof chunk, offset_)) > 0) {
        text.append(chunk, static_cast<size_t>(n));
        offset_ += n;
    }
    return text;
}

std::string StdoutCapture::finish() {
    if (saved_ < 0) {
        return "";
    }
    std::string text = take();
    ::dup2(saved_, 1);
    ::close(saved_);
    ::close(file_);
    saved_ = file_ = -1;
    return text;
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::string Hex(uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", value);
    return text;
}

JsonPtr Parse(const std::string& text, std::string* error) {
    json_error_t problem;
    json_t* json = json_loads(text.c_str(), JSON_DECODE_ANY, &problem);
    if (json == nullptr && error != nullptr) {
        *error = std::string("line ") + std::to_string(problem.line) + ": " + problem.text;
    }
    return Own(json);
}

std::string Dump(const json_t* json) {
    char* text = json_dumps(json, JSON_COMPACT | JSON_ENCODE_ANY);
    std::string result = text == nullptr ? "<null>" : text;
    std::free(text);
    return result;
}

bool UpdatingGolden() {
    const char* update = std::getenv("VTEST_UPDATE_GOLDEN");
    return update != nullptr && std::strcmp(update, "1") == 0;
}

std::string GoldenPath(const std::string& name) {
    return std::string(VTEST_SOURCE_DIR) + "/tests/data/golden/" + name;
}

std::string GoldenDifference(const std::string& actual, const std::string& name) {
    const std::string path = GoldenPath(name);
    if (UpdatingGolden()) {
        std::ofstream(path) << actual;
        return "";
    }
    const std::vector<std::string> expected = Lines(FileText(path));
    const std::vector<std::string> got = Lines(actual);
    for (size_t i = 0; i < std::max(expected.size(), got.size()); ++i) {
        const std::string want = i < expected.size() ? expected[i] : "(end)";
        const std::string have = i < got.size() ? got[i] : "(end)";
        if (want != have) {
            return path + ":" + std::to_string(i + 1) + ":\n  expected: " + want +
                   "\n  actual:   " + have + "\n(VTEST_UPDATE_GOLDEN=1 rewrites the file)";
        }
    }
    return "";
}

std::vector<Item> Items(const json_t* node) {
    std::vector<Item> items;
    std::set<uint32_t> seen;
    size_t i;
    const json_t* element;
    json_array_foreach(json_object_get(node, "e"), i, element) {
        const auto id = static_cast<uint32_t>(json_integer_value(json_object_get(element, "id")));
        if (!seen.insert(id).second) {
            continue;  // a slot several sensors share is one item
        }
        const json_type type = json_object_get(element, "sv") != nullptr        ? JSON_STRING
                               : json_is_real(json_object_get(element, "v")) ? JSON_REAL
                                                                             : JSON_INTEGER;
        const char* access = json_string_value(json_object_get(element, "asm"));
        items.push_back({id, type, access != nullptr && std::strcmp(access, "rw") == 0});
    }
    const char* key;
    json_t* member;
    json_object_foreach(const_cast<json_t*>(node), key, member) {
        if (json_is_object(member)) {
            for (const Item& item : Items(member)) {
                if (seen.insert(item.id).second) {
                    items.push_back(item);
                }
            }
        }
    }
    return items;
}

json_t* Sentinel(json_type type) {
    return type == JSON_REAL     ? json_real(-12345.0)
           : type == JSON_STRING ? json_string("?")
                                 : json_integer(-12345);
}

}  // namespace vtest
