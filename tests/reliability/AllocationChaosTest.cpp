// Allocation chaos: a host's pass (initialise, capability, read every item,
// uninitialise) with each allocation the module makes failing in turn, first
// through jansson (a JSON allocation answering null), then through C++ (an
// operator new throwing std::bad_alloc inside the module). Every entry point
// must answer with a status, no exception may reach the host, the module
// prints only its own messages, the memory in use does not grow over a
// failing pass, and a pass without failures afterwards answers as before.
#include <dlfcn.h>
#include <execinfo.h>
#include <gtest/gtest.h>
#include <link.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "AllocationWatch.h"
#include "ModuleMessages.h"
#include "SimHarness.h"
#include "voradrv.h"

using vtest::Generation;
using vtest::JsonPtr;
using vtest::Own;

namespace {

// While true, the module is running (an entry point was called).
thread_local bool inModule = false;
// The module's allocation (counted from 0) that fails; -1: none.
long failAt = -1;
long counted = 0;

// Code of the simulated board libraries: their allocations never fail, as
// the fault under test is the module's, not the library's.
std::vector<std::pair<uintptr_t, uintptr_t>> libraryCode;

void FindLibraryCode() {
    libraryCode.clear();
    dl_iterate_phdr(
        [](dl_phdr_info* info, size_t, void*) {
            const std::string name = info->dlpi_name != nullptr ? info->dlpi_name : "";
            if (name.find("/sim/lib") == std::string::npos) {
                return 0;
            }
            for (int i = 0; i < info->dlpi_phnum; ++i) {
                const ElfW(Phdr)& segment = info->dlpi_phdr[i];
                if (segment.p_type == PT_LOAD && (segment.p_flags & PF_X) != 0) {
                    const uintptr_t start = info->dlpi_addr + segment.p_vaddr;
                    libraryCode.emplace_back(start, start + segment.p_memsz);
                }
            }
            return 0;
        },
        nullptr);
    void* frames[1];
    backtrace(frames, 1);  // loads the unwinder now, not inside operator new
}

bool CalledFromLibrary() {
    void* frames[64];
    const int n = backtrace(frames, 64);
    for (int i = 0; i < n; ++i) {
        const auto pc = reinterpret_cast<uintptr_t>(frames[i]);
        for (const auto& [start, end] : libraryCode) {
            if (pc >= start && pc < end) {
                return true;
            }
        }
    }
    return false;
}

// Asked before each allocation through operator new: true when it is the
// module's allocation that is to fail.
bool ModuleAllocationFails() {
    if (!inModule || failAt < 0) {
        return false;
    }
    inModule = false;  // the unwinder may allocate
    const bool library = CalledFromLibrary();
    inModule = true;
    return !library && counted++ == failAt;
}

// JSON allocations fail once `jsonLeft` reaches 0; -1: never.
long jsonLeft = -1;

bool JsonAllocationFails() {
    if (jsonLeft == 0) {
        return true;
    }
    if (jsonLeft > 0) {
        --jsonLeft;
    }
    return false;
}

struct Item {
    uint32_t id;
    json_type type;
};

// One host pass; each entry point runs with the module flag set and
// standard output captured. Returns what the module printed; `statuses`
// receives each call's status.
class HostPass {
public:
    explicit HostPass(std::vector<Item> items) : items_(std::move(items)) {}

    std::string run(std::vector<uint32_t>& statuses) {
        statuses.clear();
        vtest::StdoutCapture out;
        statuses.push_back(Module("VoraIoTInitialize", [] { return VoraIoTInitialize(); }));
        json_t* document = json_object();
        statuses.push_back(
            Module("VoraIoTGetMDCapability", [&] { return VoraIoTGetMDCapability(document); }));
        json_decref(document);
        for (const Item& item : items_) {
            json_t* value = item.type == JSON_REAL     ? json_real(0)
                            : item.type == JSON_STRING ? json_string("")
                                                       : json_integer(0);
            statuses.push_back(
                Module("VoraIoTGetMDValue", [&] { return VoraIoTGetMDValue(item.id, value); }));
            json_decref(value);
        }
        statuses.push_back(Module("VoraIoTUninitialize", [] { return VoraIoTUninitialize(); }));
        return out.finish();
    }

    std::vector<std::string> escaped;  // entry points an exception left

private:
    template <typename Call>
    uint32_t Module(const char* name, Call call) {
        inModule = true;
        uint32_t status = 0xDEADBEEF;
        try {
            status = call();
        } catch (...) {
            escaped.push_back(name);
        }
        inModule = false;
        return status;
    }

    std::vector<Item> items_;
};

// The items of the board's document, by the type of their value.
std::vector<Item> Items(const json_t* node) {
    std::vector<Item> items;
    size_t i;
    const json_t* element;
    json_array_foreach(json_object_get(node, "e"), i, element) {
        const auto id = static_cast<uint32_t>(json_integer_value(json_object_get(element, "id")));
        if (const json_t* v = json_object_get(element, "v")) {
            items.push_back({id, json_is_real(v) ? JSON_REAL : JSON_INTEGER});
        } else if (json_object_get(element, "sv") != nullptr) {
            items.push_back({id, JSON_STRING});
        } else {
            items.push_back({id, JSON_INTEGER});
        }
    }
    const char* key;
    json_t* member;
    json_object_foreach(const_cast<json_t*>(node), key, member) {
        if (json_is_object(member)) {
            for (const Item& item : Items(member)) {
                items.push_back(item);
            }
        }
    }
    return items;
}

std::vector<Item> BoardItems() {
    vtest::StdoutCapture quiet;
    if (VoraIoTInitialize() != 0) {
        return {};
    }
    JsonPtr document = Own(json_object());
    VoraIoTGetMDCapability(document.get());
    std::vector<Item> items = Items(document.get());
    document.reset();
    VoraIoTUninitialize();
    return items;
}

// Runs passes with failure number n = 0, 1, ... armed by `arm` until a pass
// completes without reaching it (`reached` tells).
template <typename Arm, typename Disarm, typename Reached>
void EachFailureInTurn(Generation generation, Arm arm, Disarm disarm, Reached reached) {
    vtest::UseSimulator(generation);
    vtest::SimControl sim(generation);
    FindLibraryCode();
    const std::vector<Item> items = BoardItems();
    ASSERT_FALSE(items.empty());
    HostPass pass(items);
    std::vector<uint32_t> clean;
    pass.run(clean);

    // Memory in use must be the same before and after a failing pass. When it
    // is not, the pass runs again: what the first run set up for good (caches
    // of the test's own tools, say) is there before the second, over which
    // it must not grow.
    long n = 0;
    auto failingPass = [&] {
        std::vector<uint32_t> statuses;
        arm(n);
        const std::string printed = pass.run(statuses);
        const bool done = !reached(n);
        disarm();
        EXPECT_TRUE(pass.escaped.empty())
            << "an exception left " << pass.escaped.front() << " (failure " << n << ")";
        pass.escaped.clear();
        EXPECT_EQ("", vtest::UnknownOutput(printed)) << "failure " << n;
        EXPECT_TRUE(statuses.front() == 0 || statuses.front() == VORADRV_STATUS_ERROR)
            << "initialise answered " << statuses.front() << " (failure " << n << ")";
        if (done) {
            EXPECT_EQ(clean, statuses) << "the pass without failure";
        }
        return done;
    };
    for (;; ++n) {
        ASSERT_LT(n, 200000) << "no end to the allocations";
        long before = vtest::alloc::LiveBytes();
        bool done = failingPass();
        if (vtest::alloc::LiveBytes() != before) {
            before = vtest::alloc::LiveBytes();
            done = failingPass();
        }
        EXPECT_EQ(before, vtest::alloc::LiveBytes()) << "bytes in use over failure " << n;
        if (done) {
            break;
        }
        {
            std::vector<uint32_t> after;
            pass.run(after);
            EXPECT_EQ(clean, after) << "a pass after failure " << n;
        }
        if (::testing::Test::HasFailure()) {
            break;  // one failure's report is enough
        }
    }
    std::printf("%ld allocations made to fail in turn\n", n);
}

void JsonAllocationsFailInTurn(Generation generation) {
    EachFailureInTurn(
        generation,
        [](long n) {
            jsonLeft = n;
            vtest::alloc::SetJsonFailure(JsonAllocationFails);
        },
        [] {
            jsonLeft = -1;
            vtest::alloc::SetJsonFailure(nullptr);
        },
        [](long) { return jsonLeft == 0; });
}

void CxxAllocationsThrowInTurn(Generation generation) {
    EachFailureInTurn(
        generation,
        [](long n) {
            counted = 0;
            failAt = n;
            vtest::alloc::SetNewFailure(ModuleAllocationFails);
        },
        [] {
            failAt = -1;
            vtest::alloc::SetNewFailure(nullptr);
        },
        [](long n) { return counted > n; });
}

}  // namespace

TEST(AllocationChaos, JsonOnTheFourthGeneration) { JsonAllocationsFailInTurn(Generation::Vora4); }
TEST(AllocationChaos, JsonOnTheThirdGeneration) { JsonAllocationsFailInTurn(Generation::Vora3); }
TEST(AllocationChaos, JsonOnTheEApiLibrary) { JsonAllocationsFailInTurn(Generation::EApi); }
TEST(AllocationChaos, CxxOnTheFourthGeneration) { CxxAllocationsThrowInTurn(Generation::Vora4); }
TEST(AllocationChaos, CxxOnTheThirdGeneration) { CxxAllocationsThrowInTurn(Generation::Vora3); }
TEST(AllocationChaos, CxxOnTheEApiLibrary) { CxxAllocationsThrowInTurn(Generation::EApi); }
