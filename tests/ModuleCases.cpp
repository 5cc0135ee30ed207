// The module's cases: every file in tests/cases/ holds a JSON array of
// cases, and each case runs here as a test of its own. A case puts simulated
// board libraries where the module probes (or none), then drives the module
// through its entry points step by step; each step says what the module must
// answer, what it must print (nothing, unless "prints" says otherwise) and
// what reaches the board library. tests/cases/README.md describes the steps.
#include <dirent.h>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <sstream>

#include "BoardLibraries.h"
#include "Harness.h"
#include "HeapUse.h"

using namespace vtest;

namespace {

struct Case {
    std::string file;  // "vora4.json"
    std::string name;  // "value texts and their edges"
    std::shared_ptr<json_t> spec;
};

std::string CamelCase(const std::string& text) {
    std::string out;
    bool upper = true;
    for (char c : text) {
        if (std::isalnum(static_cast<unsigned char>(c)) == 0) {
            upper = true;
        } else {
            out += upper ? static_cast<char>(std::toupper(static_cast<unsigned char>(c))) : c;
            upper = false;
        }
    }
    return out;
}

std::vector<Case> LoadCases() {
    const std::string dir = std::string(VTEST_SOURCE_DIR) + "/tests/cases";
    std::vector<std::string> files;
    if (DIR* d = opendir(dir.c_str())) {
        while (const dirent* entry = readdir(d)) {
            const std::string file = entry->d_name;
            if (file.size() > 5 && file.compare(file.size() - 5, 5, ".json") == 0) {
                files.push_back(file);
            }
        }
        closedir(d);
    }
    std::sort(files.begin(), files.end());
    std::vector<Case> cases;
    for (const std::string& file : files) {
        json_error_t error;
        json_t* list = json_load_file((dir + "/" + file).c_str(), 0, &error);
        if (!json_is_array(list)) {
            std::fprintf(stderr, "%s/%s:%d: %s\n", dir.c_str(), file.c_str(), error.line,
                         list == nullptr ? error.text : "not an array of cases");
            std::exit(1);
        }
        size_t i;
        json_t* spec;
        json_array_foreach(list, i, spec) {
            const char* name = json_string_value(json_object_get(spec, "name"));
            cases.push_back({file, name != nullptr ? name : std::to_string(i),
                             std::shared_ptr<json_t>(json_incref(spec), &json_decref)});
        }
        json_decref(list);
    }
    return cases;
}

uint32_t Number(const json_t* value) {
    if (json_is_string(value)) {
        return static_cast<uint32_t>(std::stoul(json_string_value(value), nullptr, 0));
    }
    return static_cast<uint32_t>(json_integer_value(value));
}

std::string Text(const json_t* object, const char* key, const std::string& otherwise = "") {
    const json_t* value = json_object_get(object, key);
    return json_is_string(value) ? json_string_value(value) : otherwise;
}

// Two JSON values alike, reals within a hair of each other.
bool Alike(const json_t* expected, const json_t* actual) {
    if (json_is_number(expected) && json_is_real(actual)) {
        const double want = json_number_value(expected);
        const double have = json_real_value(actual);
        return want == have || std::fabs(want - have) <= 1e-9 * std::fabs(want);
    }
    return json_equal(expected, actual) && Dump(expected) == Dump(actual);
}

// The host's value for a get: "as" names its type (or a null pointer),
// else it has the type the document publishes for the item.
JsonPtr ReadInto(const json_t* step, const std::vector<Item>& items, uint32_t id) {
    const std::string as = Text(step, "as");
    if (as == "real") return Own(Sentinel(JSON_REAL));
    if (as == "integer") return Own(Sentinel(JSON_INTEGER));
    if (as == "string") return Own(Sentinel(JSON_STRING));
    for (const Item& item : items) {
        if (as.empty() && item.id == id) {
            return Own(Sentinel(item.type));
        }
    }
    return Own(nullptr);
}

// The element with item id `id` below `node`, or null.
const json_t* FindElement(const json_t* node, uint32_t id) {
    size_t i;
    const json_t* element;
    json_array_foreach(json_object_get(node, "e"), i, element) {
        if (Number(json_object_get(element, "id")) == id) {
            return element;
        }
    }
    const char* key;
    json_t* member;
    json_object_foreach(const_cast<json_t*>(node), key, member) {
        if (const json_t* found = json_is_object(member) ? FindElement(member, id) : nullptr) {
            return found;
        }
    }
    return nullptr;
}

// "Block/Group" names a member path; "#0x1020201" an element.
const json_t* At(const json_t* document, const std::string& path) {
    if (!path.empty() && path[0] == '#') {
        return FindElement(document, static_cast<uint32_t>(std::stoul(path.substr(1), nullptr, 0)));
    }
    const json_t* node = document;
    std::istringstream parts(path);
    for (std::string part; node != nullptr && std::getline(parts, part, '/');) {
        node = json_object_get(node, part.c_str());
    }
    return node;
}

// The "n" of every element below `node`, in document order.
std::string Names(const json_t* node) {
    std::string names;
    size_t i;
    const json_t* element;
    json_array_foreach(json_object_get(node, "e"), i, element) {
        names += (names.empty() ? "" : ",") + Text(element, "n", "?");
    }
    const char* key;
    json_t* member;
    json_object_foreach(const_cast<json_t*>(node), key, member) {
        if (json_is_object(member)) {
            const std::string more = Names(member);
            names += (names.empty() || more.empty() ? "" : ",") + more;
        }
    }
    return names;
}

std::string Keys(const json_t* object) {
    std::string keys;
    const char* key;
    json_t* member;
    json_object_foreach(const_cast<json_t*>(object), key, member) {
        keys += (keys.empty() ? "" : ",") + std::string(key);
    }
    return keys;
}

// Counts the lines of `log` that start with `prefix`.
int Count(const std::string& log, const std::string& prefix) {
    int n = 0;
    for (const std::string& line : Lines(log)) {
        n += line.compare(0, prefix.size(), prefix) == 0 ? 1 : 0;
    }
    return n;
}

class Runner {
public:
    explicit Runner(const json_t* spec) : spec_(spec) {}

    void run() {
        setUp();
        size_t i;
        const json_t* step;
        json_array_foreach(json_object_get(spec_, "steps"), i, step) {
            where_ = "step " + std::to_string(i + 1) + " " + Dump(step);
            this->step(step);
            if (::testing::Test::HasFatalFailure()) {
                return;
            }
        }
        checkNoDecoy();
    }

private:
    void setUp() {
        const std::string generation = Text(spec_, "generation", "4");
        generation_ = *GenerationNamed(generation);
        const json_t* profile = json_object_get(spec_, "profile");
        const std::string board = json_is_string(profile) ? LargestBoard(generation_)
                                  : profile != nullptr    ? Dump(profile)
                                                          : "";
        UseSimulator(generation_, board, Text(spec_, "under", "/usr/lib"));
        if (const json_t* paths = json_object_get(spec_, "paths")) {
            // Named files in place of the simulator: a generation's
            // simulated library, or any path.
            std::vector<std::pair<std::string, std::string>> present;
            const char* path;
            json_t* file;
            json_object_foreach(const_cast<json_t*>(paths), path, file) {
                const auto named = GenerationNamed(json_string_value(file));
                present.emplace_back(path, named ? SimLibraryPath(*named) : json_string_value(file));
            }
            Redirect(present);
        }
        if (const char* hide = json_string_value(json_object_get(spec_, "hide"))) {
            ::setenv("VORA_HIDE_SYMBOLS", hide, 1);
        }
        // The simulated libraries log their calls from their first one; the
        // control interface is loaded only when a step needs it, so that a
        // case without a library at the probed places loads none.
        ::setenv("VORA_SIM_LOG", "1", 1);
    }

    SimControl& sim() {
        if (!sim_) {
            sim_ = std::make_unique<SimControl>(generation_);
        }
        return *sim_;
    }

    // The step's expected status: "status", 0 when absent.
    static uint32_t Status(const json_t* step) {
        const json_t* status = json_object_get(step, "status");
        return status == nullptr ? 0 : Number(status);
    }

    // Runs `call` with standard output captured, then holds what it printed
    // to the step's "prints".
    template <typename Call>
    auto printing(const json_t* step, Call call) {
        StdoutCapture out;
        auto result = call();
        const std::string printed = out.finish();
        EXPECT_EQ(Text(step, "prints"), printed) << where_;
        return result;
    }

    JsonPtr document() {
        StdoutCapture quiet;
        JsonPtr document = Own(json_object());
        Module().capability(document.get());
        return document;
    }

    void step(const json_t* step) {
        const auto has = [&](const char* key) { return json_object_get(step, key) != nullptr; };
        if (has("init")) {
            EXPECT_EQ(Hex(Number(json_object_get(step, "init"))),
                      Hex(printing(step, [] { return Module().initialize(); })))
                << where_;
        } else if (has("uninit")) {
            EXPECT_EQ(Hex(Number(json_object_get(step, "uninit"))),
                      Hex(printing(step, [] { return Module().uninitialize(); })))
                << where_;
        } else if (has("event")) {
            EXPECT_EQ(Hex(Number(json_object_get(step, "event"))),
                      Hex(printing(step, [] { return Module().setEventHandler(nullptr); })))
                << where_;
        } else if (has("module_id")) {
            EXPECT_EQ(Number(json_object_get(step, "module_id")), Module().moduleId()) << where_;
        } else if (has("get")) {
            get(step);
        } else if (has("set")) {
            set(step);
        } else if (has("caps")) {
            capability(step);
        } else if (has("doc")) {
            checkDocument(step);
        } else if (has("golden")) {
            golden(Text(step, "golden"));
        } else if (has("fault")) {
            ASSERT_EQ("", sim().addFaultError(Dump(json_object_get(step, "fault")))) << where_;
        } else if (has("clear_faults")) {
            sim().clearFaults();
        } else if (has("load")) {
            EXPECT_EQ(Text(step, "error"), sim().loadProfileError(Dump(json_object_get(step, "load"))))
                << where_;
        } else if (has("hide")) {
            ::setenv("VORA_HIDE_SYMBOLS", Text(step, "hide").c_str(), 1);
        } else if (has("log")) {
            EXPECT_EQ(Text(step, "log"), sim().takeLog()) << where_;
        } else if (has("log_count")) {
            const std::string log = sim().takeLog();
            const char* prefix;
            json_t* count;
            json_object_foreach(json_object_get(step, "log_count"), prefix, count) {
                EXPECT_EQ(json_integer_value(count), Count(log, prefix)) << where_ << " " << prefix;
            }
        } else if (has("heap_flat")) {
            heapFlat(step);
        } else if (has("board_library")) {
            const auto loaded = voradrv::host::LoadedBoardLibrary();
            EXPECT_EQ(Text(step, "board_library", "none"), loaded ? loaded->generation : "none")
                << where_;
        } else {
            FAIL() << "unknown step: " << where_;
        }
    }

    void get(const json_t* step) {
        const uint32_t id = Number(json_object_get(step, "get"));
        JsonPtr value = ReadInto(step, Items(document().get()), id);
        const std::string before = Dump(value.get());
        sim().takeLog();
        const uint32_t status = printing(step, [&] { return Module().get(id, value.get()); });
        EXPECT_EQ(Hex(Status(step)), Hex(status)) << where_;
        if (status != 0) {
            EXPECT_EQ(before, Dump(value.get())) << "a failed read changed the value, " << where_;
        } else if (const json_t* expected = json_object_get(step, "value")) {
            EXPECT_TRUE(Alike(expected, value.get())) << where_ << " read " << Dump(value.get());
        }
        expectLog(step);
    }

    void set(const json_t* step) {
        const uint32_t id = Number(json_object_get(step, "set"));
        // The value sent; without one, a null pointer.
        const json_t* sent = json_object_get(step, "value");
        JsonPtr value = Own(sent == nullptr ? nullptr : json_deep_copy(sent));
        sim().takeLog();
        const uint32_t status = printing(step, [&] { return Module().set(id, value.get()); });
        EXPECT_EQ(Hex(Status(step)), Hex(status)) << where_;
        expectLog(step);
    }

    // The steps of "heap_flat" once, to settle what lives as long as the
    // process, then "times" more: the heap in use must not have grown. The
    // simulator's call log is emptied after each round. Under memcheck,
    // whose allocator answers no figures, Valgrind counts the leaks itself.
    void heapFlat(const json_t* step) {
        const auto round = [&] {
            size_t i;
            const json_t* inner;
            json_array_foreach(json_object_get(step, "heap_flat"), i, inner) { this->step(inner); }
            sim().takeLog();
        };
        round();
        const size_t settled = HeapInUse();
        for (json_int_t n = json_integer_value(json_object_get(step, "times")); n > 0; --n) {
            round();
        }
        const size_t after = HeapInUse();
        EXPECT_TRUE(after <= settled || UnderMemcheck())
            << "the heap in use grew by " << after - settled << " bytes, " << where_;
    }

    // "calls": the library calls the step made, when given.
    void expectLog(const json_t* step) {
        if (const json_t* calls = json_object_get(step, "calls")) {
            EXPECT_EQ(json_string_value(calls), sim().takeLog()) << where_;
        }
    }

    void capability(const json_t* step) {
        const json_t* host = json_object_get(step, "caps");
        JsonPtr object = Own(Text(step, "caps") == "null-pointer" ? nullptr : json_deep_copy(host));
        for (int i = 0; i < json_integer_value(json_object_get(step, "crowd")); ++i) {
            json_object_set_new(object.get(), ("m" + std::to_string(i)).c_str(), json_integer(i));
        }
        const uint32_t status = printing(step, [&] { return Module().capability(object.get()); });
        EXPECT_EQ(Hex(Status(step)), Hex(status)) << where_;
        if (const json_t* keys = json_object_get(step, "keys")) {
            EXPECT_EQ(json_string_value(keys), Keys(object.get())) << where_;
        }
        if (const json_t* size = json_object_get(step, "size")) {
            EXPECT_EQ(json_integer_value(size), json_is_object(object.get())
                                                    ? static_cast<json_int_t>(json_object_size(object.get()))
                                                    : -1)
                << where_;
        }
        if (const json_t* after = json_object_get(step, "host")) {
            EXPECT_EQ(Dump(after), Dump(object.get())) << where_;
        }
    }

    void checkDocument(const json_t* step) {
        const JsonPtr doc = document();
        const json_t* node = At(doc.get(), Text(step, "doc"));
        if (const json_t* is = json_object_get(step, "is")) {
            EXPECT_EQ(Dump(is), node == nullptr ? "null" : Dump(node)) << where_;
        }
        if (const json_t* keys = json_object_get(step, "keys")) {
            EXPECT_EQ(json_string_value(keys), Keys(node)) << where_;
        }
        if (const json_t* names = json_object_get(step, "names")) {
            EXPECT_EQ(json_string_value(names), Names(node)) << where_;
        }
        if (const json_t* expected = json_object_get(step, "has")) {
            // Some members of an element or group, each as given.
            const char* key;
            json_t* value;
            json_object_foreach(const_cast<json_t*>(expected), key, value) {
                const json_t* actual = json_object_get(node, key);
                EXPECT_TRUE(actual != nullptr && Alike(value, actual))
                    << where_ << " \"" << key << "\" is " << Dump(actual);
            }
        }
    }

    // Every block as its golden file <prefix>-<block>.json, in this order.
    void golden(const std::string& prefix) {
        static const std::map<std::string, std::string> kFiles = {
            {"Platform Information", "info"}, {"Hardware Monitor", "hwm"}, {"GPIO", "gpio"},
            {"Backlight", "backlight"},       {"OOB-Network", "network"}};
        const JsonPtr doc = document();
        const char* key;
        json_t* block;
        json_object_foreach(doc.get(), key, block) {
            char* text = json_dumps(block, JSON_INDENT(2) | JSON_ENSURE_ASCII);
            EXPECT_EQ("", GoldenDifference(std::string(text) + "\n",
                                           prefix + "-" + kFiles.at(key) + ".json"))
                << where_;
            std::free(text);
        }
    }

    // No library named like a board library was loaded from anywhere but
    // the probed places (the decoys wait in LD_LIBRARY_PATH).
    void checkNoDecoy() {
        for (const char* name : {"libVORA-4.00", "libVORA-3.02", "libEApi"}) {
            const std::string decoy = std::string(VTEST_DECOY_DIR) + "/" + name + ".so";
            void* handle = dlopen(decoy.c_str(), RTLD_LAZY | RTLD_NOLOAD);
            EXPECT_EQ(nullptr, handle) << "the decoy " << decoy << " was loaded";
            if (handle != nullptr) {
                dlclose(handle);
            }
        }
    }

    const json_t* spec_;
    Generation generation_ = Generation::Vora4;
    std::unique_ptr<SimControl> sim_;
    std::string where_;
};

class ModuleCase : public ::testing::Test {
public:
    explicit ModuleCase(std::shared_ptr<json_t> spec) : spec_(std::move(spec)) {}
    void TestBody() override { Runner(spec_.get()).run(); }

private:
    std::shared_ptr<json_t> spec_;
};

}  // namespace

// module_cases [FILE [CASE]]: the cases of tests/cases/FILE (all files when
// none is named), or only the one named CASE. ctest runs each case by name,
// in a process of its own.
int main(int argc, char** argv) {
    if (!UnderMemcheck()) {
        ExactHeapFigures(argv);  // for the heap_flat steps
    }
    ::testing::InitGoogleTest(&argc, argv);
    const std::string file = argc > 1 ? argv[1] : "";
    const std::string name = argc > 2 ? argv[2] : "";
    for (const Case& c : LoadCases()) {
        if ((file.empty() || c.file == file) && (name.empty() || c.name == name)) {
            ::testing::RegisterTest(CamelCase(c.file).c_str(), CamelCase(c.name).c_str(), nullptr,
                                    nullptr, __FILE__, __LINE__,
                                    [spec = c.spec]() -> ::testing::Test* { return new ModuleCase(spec); });
        }
    }
    return RUN_ALL_TESTS();
}
