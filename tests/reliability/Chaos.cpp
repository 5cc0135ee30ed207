// Allocation chaos: a host's pass (initialise, capability, read every item,
// uninitialise) with each allocation the module makes failing in turn, first
// through jansson (a JSON allocation answering null), then through C++ (an
// operator new throwing std::bad_alloc inside the module). Every entry point
// must answer with a status, no exception may reach the host, the module
// prints only its own lines, the memory in use does not grow over a
// failing pass, and a pass without failures afterwards answers as before.
#include <dlfcn.h>
#include <execinfo.h>
#include <gtest/gtest.h>
#include <link.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "AllocationWatch.h"
#include "Harness.h"

using vtest::Generation;

namespace {

// While true, the module is running (an entry point was called).
thread_local bool inModule = false;

// Code of the simulated board libraries: their allocations never fail, as
// the fault under test is the module's, not the library's.
std::vector<std::pair<uintptr_t, uintptr_t>> libraryCode;

void FindLibraryCode() {
    libraryCode.clear();
    dl_iterate_phdr(
        [](dl_phdr_info* info, size_t, void*) {
            const std::string name = info->dlpi_name != nullptr ? info->dlpi_name : "";
            const bool simulator = name.find("/sim/lib") != std::string::npos;
            for (int i = 0; simulator && i < info->dlpi_phnum; ++i) {
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

// The allocation (counted from 0 over a pass) that fails; -1: none. Through
// jansson, it and every JSON allocation after it answer null; through
// operator new, the module's allocation with that number throws.
long failAt = -1;
long counted = 0;

bool JsonAllocationFails() { return failAt >= 0 && counted++ >= failAt; }

bool ModuleAllocationFails() {
    if (!inModule || failAt < 0) {
        return false;
    }
    inModule = false;  // the unwinder may allocate
    const bool library = CalledFromLibrary();
    inModule = true;
    return !library && counted++ == failAt;
}

// The values in a JSON tree, counted without allocating.
size_t Nodes(json_t* json) {
    size_t count = 1;
    const char* key;
    json_t* member;
    json_object_foreach(json, key, member) { count += Nodes(member); }
    size_t i;
    json_array_foreach(json, i, member) { count += Nodes(member); }
    return count;
}

// One host pass, each entry point called with the module flag set and
// standard output captured. Returns each call's status; `printed` receives
// what the module printed, `escaped` the entry points an exception left,
// `nodes` the size of the capability document.
std::vector<uint32_t> HostPass(const std::vector<vtest::Item>& items, std::string& printed,
                               std::vector<std::string>& escaped, size_t& nodes) {
    std::vector<uint32_t> statuses;
    auto module = [&](const char* name, const std::function<uint32_t()>& call) {
        uint32_t status = 0xDEADBEEF;
        inModule = true;
        try {
            status = call();
        } catch (...) {
            inModule = false;
            escaped.push_back(name);
        }
        inModule = false;
        statuses.push_back(status);
    };
    vtest::StdoutCapture out;
    auto& host = vtest::Module();
    module("VoraIoTInitialize", [&] { return host.initialize(); });
    json_t* document = json_object();
    module("VoraIoTGetMDCapability", [&] { return host.capability(document); });
    nodes = document != nullptr ? Nodes(document) : 0;
    json_decref(document);
    for (const vtest::Item& item : items) {
        json_t* value = vtest::Sentinel(item.type);
        module("VoraIoTGetMDValue", [&] { return host.get(item.id, value); });
        json_decref(value);
    }
    module("VoraIoTUninitialize", [&] { return host.uninitialize(); });
    printed = out.finish();
    return statuses;
}

// Runs passes with allocation n = 0, 1, ... failing until a pass makes
// fewer allocations than n. For JSON, every distinct line the module
// printed over them is compared with golden file chaos-<library>.txt, so
// that a message the module must give when jansson fails is never lost.
void EachFailureInTurn(Generation generation, bool json) {
    vtest::UseSimulator(generation);
    vtest::SimControl sim(generation);
    FindLibraryCode();
    std::vector<vtest::Item> items;
    {
        vtest::StdoutCapture quiet;
        ASSERT_EQ(0u, vtest::Module().initialize());
        json_t* document = json_object();
        vtest::Module().capability(document);
        items = vtest::Items(document);
        json_decref(document);
        vtest::Module().uninitialize();
    }
    if (json) {
        vtest::alloc::SetJsonFailure(JsonAllocationFails);
    } else {
        vtest::alloc::SetNewFailure(ModuleAllocationFails);
    }
    std::string printed;
    std::vector<std::string> escaped;
    size_t cleanNodes = 0, nodes = 0;
    std::set<std::string> said;
    const std::vector<uint32_t> clean = HostPass(items, printed, escaped, cleanNodes);

    // Memory in use must be the same before and after a failing pass. When it
    // is not, the pass runs again: what the first run set up for good (caches
    // of the test's own tools, say) is there before the second, over which
    // it must not grow.
    long n = 0;
    auto failingPass = [&] {
        counted = 0;
        failAt = n;
        const std::vector<uint32_t> statuses = HostPass(items, printed, escaped, nodes);
        const bool done = counted <= n;
        failAt = -1;
        EXPECT_EQ(std::vector<std::string>{}, escaped) << "exceptions left (failure " << n << ")";
        escaped.clear();
        for (const std::string& line : vtest::Lines(printed)) {
            said.insert(line);
            EXPECT_TRUE(line.rfind("VORADrv", 0) == 0 || line.rfind("VORADRV", 0) == 0 ||
                        line.rfind("[VORADrv]", 0) == 0)
                << "not the module's line: " << line << " (failure " << n << ")";
        }
        EXPECT_TRUE(statuses.front() == 0 || statuses.front() == VORADRV_STATUS_ERROR)
            << "initialise answered " << statuses.front() << " (failure " << n << ")";
        if (done) {
            EXPECT_EQ(clean, statuses) << "the pass without failure";
        } else if (json && (statuses != clean || (nodes != cleanNodes && nodes != 0))) {
            // What a JSON allocation failure costs the host (a status, a
            // part of the document) the module says on standard output.
            EXPECT_NE(printed, "") << "a failure that changed the answers said nothing (failure "
                                   << n << ")";
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
        EXPECT_EQ(clean, HostPass(items, printed, escaped, nodes)) << "a pass after failure " << n;
        if (::testing::Test::HasFailure()) {
            break;  // one failure's report is enough
        }
    }
    std::printf("%ld allocations made to fail in turn\n", n);
    if (json && !::testing::Test::HasFailure()) {
        std::string lines;
        for (const std::string& line : said) {
            lines += line + "\n";
        }
        EXPECT_EQ("", vtest::GoldenDifference(
                          lines, std::string("chaos-") + vtest::LibraryName(generation) + ".txt"));
    }
}

}  // namespace

TEST(AllocationChaos, JsonOnTheFourthGeneration) { EachFailureInTurn(Generation::Vora4, true); }
TEST(AllocationChaos, JsonOnTheThirdGeneration) { EachFailureInTurn(Generation::Vora3, true); }
TEST(AllocationChaos, JsonOnTheEApiLibrary) { EachFailureInTurn(Generation::EApi, true); }
TEST(AllocationChaos, CxxOnTheFourthGeneration) { EachFailureInTurn(Generation::Vora4, false); }
TEST(AllocationChaos, CxxOnTheThirdGeneration) { EachFailureInTurn(Generation::Vora3, false); }
TEST(AllocationChaos, CxxOnTheEApiLibrary) { EachFailureInTurn(Generation::EApi, false); }
