#include "SimHarness.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <set>
#include <sstream>

#include "voradrv.h"
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

bool UpdatingGolden() {
    const char* update = std::getenv("VTEST_UPDATE_GOLDEN");
    return update != nullptr && std::strcmp(update, "1") == 0;
}

std::string GoldenPath(const std::string& name) {
    return std::string(VTEST_SOURCE_DIR) + "/tests/data/golden/" + name;
}

}  // namespace

std::optional<Generation> GenerationNamed(const std::string& name) {
    if (name == "4") return Generation::Vora4;
    if (name == "3") return Generation::Vora3;
    if (name == "eapi") return Generation::EApi;
    return std::nullopt;
}

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
    return FileText(std::string(VTEST_SOURCE_DIR) + "/sim/profiles/" +
                    kFiles[static_cast<int>(generation)]);
}

void HideSymbols(const std::string& names) {
    ASSERT_EQ(0, ::setenv("VORA_HIDE_SYMBOLS", names.c_str(), 1));
}

std::string WriteTempFile(const std::string& text) {
    char path[] = "/tmp/voradrv-test-XXXXXX";
    const int fd = ::mkstemp(path);
    EXPECT_GE(fd, 0);
    if (fd >= 0) {
        EXPECT_EQ(static_cast<ssize_t>(text.size()), ::write(fd, text.data(), text.size()));
        ::close(fd);
        TempFiles().push_back(path);
    }
    return path;
}

std::string FileText(const std::string& path) {
    std::ifstream in(path);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
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
    auto load = function<decltype(vorasim_load_profile)>("vorasim_load_profile");
    auto error = function<decltype(vorasim_last_error)>("vorasim_last_error");
    if (load == nullptr || error == nullptr) {
        return "no simulator";
    }
    return load(json.c_str()) == 0 ? "" : error();
}

void SimControl::loadProfile(const std::string& json) {
    EXPECT_EQ("", loadProfileError(json)) << "profile refused";
}

void SimControl::addFault(const std::string& json) {
    auto add = function<decltype(vorasim_add_fault)>("vorasim_add_fault");
    auto error = function<decltype(vorasim_last_error)>("vorasim_last_error");
    if (add != nullptr && add(json.c_str()) != 0) {
        ADD_FAILURE() << "fault refused: " << error();
    }
}

void SimControl::clearFaults() {
    if (auto clear = function<decltype(vorasim_clear_faults)>("vorasim_clear_faults")) {
        clear();
    }
}

void SimControl::startLog() {
    if (auto enable = function<decltype(vorasim_log_enable)>("vorasim_log_enable")) {
        enable(1);
    }
}

std::string SimControl::log() {
    auto text = function<decltype(vorasim_call_log)>("vorasim_call_log");
    return text == nullptr ? "" : text();
}

void SimControl::clearLog() {
    if (auto clear = function<decltype(vorasim_clear_log)>("vorasim_clear_log")) {
        clear();
    }
}

int SimControl::count(const std::string& prefix) {
    int n = 0;
    for (const std::string& line : Lines(log())) {
        n += line.compare(0, prefix.size(), prefix) == 0 ? 1 : 0;
    }
    return n;
}

SimControl Initialised(Generation generation, const std::string& profile) {
    UseSimulator(generation, profile);
    SimControl sim(generation);
    EXPECT_EQ(0u, VoraIoTInitialize()) << "initialise";
    return sim;
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
    const std::string path = GoldenPath(name);
    if (UpdatingGolden()) {
        EXPECT_EQ(0, json_dump_file(actual, path.c_str(), JSON_INDENT(2) | JSON_ENSURE_ASCII));
        return;
    }
    json_error_t error;
    JsonPtr expected = Own(json_load_file(path.c_str(), 0, &error));
    ASSERT_NE(nullptr, expected) << path << ": " << error.text;
    // Compared as text, so that the order of every object's keys counts.
    EXPECT_EQ(Dump(expected.get()), Dump(actual))
        << "differs from " << path << " (VTEST_UPDATE_GOLDEN=1 rewrites it)";
}

void ExpectGoldenText(const std::string& actual, const std::string& name) {
    const std::string path = GoldenPath(name);
    if (UpdatingGolden()) {
        std::ofstream(path) << actual;
        return;
    }
    EXPECT_EQ(FileText(path), actual)
        << "differs from " << path << " (VTEST_UPDATE_GOLDEN=1 rewrites it)";
}

JsonPtr ModuleCapability() {
    JsonPtr document = Own(json_object());
    EXPECT_EQ(0u, VoraIoTGetMDCapability(document.get()));
    return document;
}

JsonPtr CapabilityOf(const char* block) {
    return Own(json_incref(json_object_get(ModuleCapability().get(), block)));
}

void ForEachElement(const json_t* node, const std::function<void(const json_t*)>& visit) {
    size_t i;
    const json_t* element;
    json_array_foreach(json_object_get(node, "e"), i, element) { visit(element); }
    const char* key;
    json_t* member;
    json_object_foreach(const_cast<json_t*>(node), key, member) {
        if (json_is_object(member)) {
            ForEachElement(member, visit);
        }
    }
}

const json_t* FindElement(const json_t* node, uint32_t id) {
    const json_t* found = nullptr;
    ForEachElement(node, [&](const json_t* element) {
        if (found == nullptr &&
            static_cast<uint32_t>(json_integer_value(json_object_get(element, "id"))) == id) {
            found = element;
        }
    });
    return found;
}

std::string GroupNames(const json_t* block, const char* group) {
    std::string names;
    size_t index = 0;
    const json_t* element = nullptr;
    json_array_foreach(json_object_get(json_object_get(block, group), "e"), index, element) {
        const char* name = json_string_value(json_object_get(element, "n"));
        names += (index == 0 ? "" : ",") + std::string(name != nullptr ? name : "?");
    }
    return names;
}

std::vector<Item> Items(const json_t* node) {
    std::vector<Item> items;
    std::set<uint32_t> seen;
    ForEachElement(node, [&](const json_t* element) {
        const auto id = static_cast<uint32_t>(json_integer_value(json_object_get(element, "id")));
        if (!seen.insert(id).second) {
            return;  // a slot several sensors share is one item
        }
        const json_t* real = json_object_get(element, "v");
        const json_type type = json_object_get(element, "sv") != nullptr ? JSON_STRING
                               : json_is_real(real)                      ? JSON_REAL
                                                                         : JSON_INTEGER;
        const char* access = json_string_value(json_object_get(element, "asm"));
        items.push_back({id, type, access != nullptr && std::strcmp(access, "rw") == 0});
    });
    return items;
}

json_t* Sentinel(json_type type) {
    return type == JSON_REAL     ? json_real(-12345.0)
           : type == JSON_STRING ? json_string("?")
                                 : json_integer(-12345);
}

JsonPtr ReadItem(uint32_t id, json_type type, uint32_t* status) {
    JsonPtr value = Own(Sentinel(type));
    const uint32_t result = VoraIoTGetMDValue(id, value.get());
    if (status != nullptr) {
        *status = result;
    } else {
        EXPECT_EQ(0u, result) << "reading " << Hex(id);
    }
    return value;
}

std::string ReadText(uint32_t id) {
    const JsonPtr value = ReadItem(id, JSON_STRING);
    return json_is_string(value.get()) ? json_string_value(value.get()) : "";
}

double ReadReal(uint32_t id) { return json_real_value(ReadItem(id, JSON_REAL).get()); }

json_int_t ReadInteger(uint32_t id) {
    return json_integer_value(ReadItem(id, JSON_INTEGER).get());
}

uint32_t Write(uint32_t id, json_t* value) {
    JsonPtr owned = Own(value);
    return VoraIoTSetMDValue(id, owned.get());
}

}  // namespace vtest
