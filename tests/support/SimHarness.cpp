#include "SimHarness.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <vector>

#include "vorasim.h"

namespace vtest {

namespace {

const char* const kProbeDirs[] = {"/usr/lib", "/usr/lib64"};
const char* const kLibraries[] = {"libVORA-4.00", "libVORA-3.02", "libEApi"};

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

const char* LibraryName(Generation generation) {
    return kLibraries[static_cast<int>(generation)];
}

std::string SimLibraryPath(Generation generation) {
    return std::string(VTEST_SIM_DIR) + "/" + LibraryName(generation) + ".so";
}

void Redirect(std::initializer_list<std::pair<std::string, std::string>> present) {
    std::string list;
    for (const char* library : kLibraries) {
        for (const char* dir : kProbeDirs) {
            const std::string probed = std::string(dir) + "/" + library + ".so";
            std::string target;
            for (const auto& p : present) {
                if (p.first == probed) {
                    target = p.second;
                }
            }
            list += (list.empty() ? "" : ":") + probed + "=" + target;
        }
    }
    ASSERT_EQ(0, ::setenv("VORA_REDIRECT", list.c_str(), 1));
}

void UseSimulator(Generation generation, const std::string& profile, const std::string& dir) {
    Redirect({{dir + "/" + LibraryName(generation) + ".so", SimLibraryPath(generation)}});
    // Sensor waves stand still at their profile values.
    ASSERT_EQ(0, ::setenv("VORA_SIM_TIME", "0", 1));
    if (!profile.empty()) {
        ASSERT_EQ(0, ::setenv("VORA_SIM_BOARD", WriteTempFile(profile).c_str(), 1));
    }
}

std::string LargestBoard(Generation generation) {
    static const char* const kFiles[] = {"vora4-largest.json", "vora3-largest.json",
                                         "eapi-largest.json"};
    std::ifstream in(std::string(VTEST_SOURCE_DIR) + "/sim/profiles/" +
                     kFiles[static_cast<int>(generation)]);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void HideSymbols(const std::string& names) {
    ASSERT_EQ(0, ::setenv("VORA_HIDE_SYMBOLS", names.c_str(), 1));
}

std::string WriteTempFile(const std::string& json) {
    char path[] = "/tmp/voradrv-test-XXXXXX";
    const int fd = ::mkstemp(path);
    EXPECT_GE(fd, 0);
    if (fd >= 0) {
        EXPECT_EQ(static_cast<ssize_t>(json.size()), ::write(fd, json.data(), json.size()));
        ::close(fd);
        TempFiles().push_back(path);
    }
    return path;
}

SimControl::SimControl(Generation generation)
    : handle_(::dlopen(SimLibraryPath(generation).c_str(), RTLD_LAZY | RTLD_GLOBAL)) {
    if (handle_ == nullptr) {
        ADD_FAILURE() << "cannot load the simulator: " << ::dlerror();
    }
}

void* SimControl::symbol(const char* name) const {
    void* address = handle_ == nullptr ? nullptr : ::dlsym(handle_, name);
    if (address == nullptr) {
        ADD_FAILURE() << "simulator lacks " << name;
    }
    return address;
}

std::string SimControl::loadProfileError(const std::string& json) {
    auto load = reinterpret_cast<decltype(&vorasim_load_profile)>(symbol("vorasim_load_profile"));
    auto error = reinterpret_cast<decltype(&vorasim_last_error)>(symbol("vorasim_last_error"));
    if (load == nullptr || error == nullptr) {
        return "no simulator";
    }
    return load(json.c_str()) == 0 ? "" : error();
}

void SimControl::loadProfile(const std::string& json) {
    const std::string error = loadProfileError(json);
    EXPECT_EQ("", error) << "profile refused";
}

void SimControl::addFault(const std::string& json) {
    auto add = reinterpret_cast<decltype(&vorasim_add_fault)>(symbol("vorasim_add_fault"));
    auto error = reinterpret_cast<decltype(&vorasim_last_error)>(symbol("vorasim_last_error"));
    if (add != nullptr && add(json.c_str()) != 0) {
        ADD_FAILURE() << "fault refused: " << error();
    }
}

void SimControl::clearFaults() {
    auto clear = reinterpret_cast<decltype(&vorasim_clear_faults)>(symbol("vorasim_clear_faults"));
    if (clear != nullptr) {
        clear();
    }
}

void SimControl::startLog() {
    auto enable = reinterpret_cast<decltype(&vorasim_log_enable)>(symbol("vorasim_log_enable"));
    if (enable != nullptr) {
        enable(1);
    }
}

std::string SimControl::log() {
    auto text = reinterpret_cast<decltype(&vorasim_call_log)>(symbol("vorasim_call_log"));
    return text == nullptr ? "" : text();
}

void SimControl::clearLog() {
    auto clear = reinterpret_cast<decltype(&vorasim_clear_log)>(symbol("vorasim_clear_log"));
    if (clear != nullptr) {
        clear();
    }
}

int SimControl::count(const std::string& prefix) {
    const std::string text = log();
    int n = 0;
    size_t start = 0;
    while (start < text.size()) {
        const size_t end = text.find('\n', start);
        if (text.compare(start, prefix.size(), prefix) == 0) {
            ++n;
        }
        start = end == std::string::npos ? text.size() : end + 1;
    }
    return n;
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

std::string StdoutCapture::finish() {
    if (saved_ < 0) {
        return "";
    }
    std::fflush(stdout);
    ::dup2(saved_, 1);
    ::close(saved_);
    saved_ = -1;
    std::string text;
    char chunk[4096];
    ::lseek(file_, 0, SEEK_SET);
    ssize_t n;
    while ((n = ::read(file_, chunk, sizeof chunk)) > 0) {
        text.append(chunk, static_cast<size_t>(n));
    }
    ::close(file_);
    file_ = -1;
    return text;
}

}  // namespace vtest

namespace vtest {

JsonPtr Parse(const std::string& text) {
    json_error_t error;
    json_t* json = json_loads(text.c_str(), 0, &error);
    EXPECT_NE(nullptr, json) << error.text << " in " << text;
    return Own(json);
}

std::string Dump(const json_t* json) {
    char* text = json_dumps(json, JSON_COMPACT | JSON_ENCODE_ANY);
    std::string result = text == nullptr ? "<null>" : text;
    std::free(text);
    return result;
}

void ExpectGolden(const json_t* actual, const std::string& name) {
    const std::string path = std::string(VTEST_SOURCE_DIR) + "/tests/data/golden/" + name;
    const char* update = std::getenv("VTEST_UPDATE_GOLDEN");
    if (update != nullptr && std::strcmp(update, "1") == 0) {
        EXPECT_EQ(0, json_dump_file(actual, path.c_str(), JSON_INDENT(2) | JSON_ENSURE_ASCII));
        return;
    }
    json_error_t error;
    JsonPtr expected = Own(json_load_file(path.c_str(), 0, &error));
    ASSERT_NE(nullptr, expected) << path << ": " << error.text;
    EXPECT_TRUE(json_equal(expected.get(), actual))
        << "differs from " << path << " (VTEST_UPDATE_GOLDEN=1 rewrites it)\nactual: "
        << Dump(actual);
}

}  // namespace vtest

#include "voradrv.h"

namespace vtest {

JsonPtr ModuleCapability() {
    JsonPtr document = Own(json_object());
    EXPECT_EQ(0u, VoraIoTGetMDCapability(document.get()));
    return document;
}

const json_t* FindElement(const json_t* block, uint32_t id) {
    const json_t* elements = json_object_get(block, "e");
    size_t i;
    const json_t* element;
    json_array_foreach(elements, i, element) {
        if (static_cast<uint32_t>(json_integer_value(json_object_get(element, "id"))) == id) {
            return element;
        }
    }
    const char* key;
    json_t* member;
    json_object_foreach(const_cast<json_t*>(block), key, member) {
        if (json_is_object(member)) {
            if (const json_t* found = FindElement(member, id)) {
                return found;
            }
        }
    }
    return nullptr;
}

JsonPtr ReadItem(uint32_t id, json_type type, uint32_t* status) {
    JsonPtr value = Own(type == JSON_REAL     ? json_real(-12345.0)
                        : type == JSON_STRING ? json_string("")
                                              : json_integer(-12345));
    const uint32_t result = VoraIoTGetMDValue(id, value.get());
    if (status != nullptr) {
        *status = result;
    } else {
        EXPECT_EQ(0u, result) << "reading 0x" << std::hex << id;
    }
    return value;
}

}  // namespace vtest
