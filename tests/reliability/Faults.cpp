#include "Faults.h"

#define VORADRV_TABLES_ONLY
#include "binding/EApiLibrary.h"
#include "binding/Vora3Library.h"
#include "binding/Vora4Library.h"

namespace vtest {

namespace {

struct Row {
    const char* name;
    const char* parameters;
    bool init;
};
#define VTEST_INIT_ROW(result, name, parameters, arguments) {#name, #parameters, true},
#define VTEST_ROW(result, name, parameters, arguments) {#name, #parameters, false},
const Row kVora4[] = {VORA4_LIBRARY(VTEST_INIT_ROW, VTEST_ROW)};
const Row kVora3[] = {VORA3_LIBRARY(VTEST_INIT_ROW, VTEST_ROW)};
const Row kEApi[] = {EAPI_LIBRARY(VTEST_INIT_ROW, VTEST_ROW)};

const char* const kKindNames[] = {"failure",      "failure-zero",  "more-data",   "already-initialised",
                                  "absurd-value", "absurd-length", "unterminated"};

template <size_t N>
std::vector<LibraryFunction> FromTable(const Row (&rows)[N]) {
    std::vector<LibraryFunction> functions;
    for (const Row& row : rows) {
        // The tables name a text's buffer "buffer"; every other pointer
        // carries numbers, an input one included.
        const std::string parameters = row.parameters;
        LibraryFunction f{row.name, row.init};
        f.text = parameters.find("char* buffer") != std::string::npos;
        size_t pointers = 0;
        for (char c : parameters) {
            pointers += c == '*' ? 1 : 0;
        }
        f.numbers = pointers > (f.text ? 1u : 0u);
        f.writes = f.name.find("Set") != std::string::npos ||
                   f.name.find("Write") != std::string::npos ||
                   f.name.find("Screen") != std::string::npos;
        functions.push_back(f);
    }
    return functions;
}

}  // namespace

const char* KindName(Kind kind) { return kKindNames[static_cast<int>(kind)]; }

std::optional<Kind> KindNamed(const std::string& name) {
    for (int i = 0; i < 7; ++i) {
        if (name == kKindNames[i]) {
            return static_cast<Kind>(i);
        }
    }
    return std::nullopt;
}

std::vector<LibraryFunction> LibraryFunctions(Generation generation) {
    switch (generation) {
        case Generation::Vora4: return FromTable(kVora4);
        case Generation::Vora3: return FromTable(kVora3);
        default: return FromTable(kEApi);
    }
}

const LibraryFunction* FunctionNamed(Generation generation, const std::string& name) {
    static const std::vector<LibraryFunction> all[] = {LibraryFunctions(Generation::Vora4),
                                                       LibraryFunctions(Generation::Vora3),
                                                       LibraryFunctions(Generation::EApi)};
    for (const LibraryFunction& f : all[static_cast<int>(generation)]) {
        if (f.name == name) {
            return &f;
        }
    }
    return nullptr;
}

std::vector<Kind> KindsFor(Generation generation, const LibraryFunction& function) {
    std::vector<Kind> kinds{Kind::Failure};
    if (generation == Generation::Vora3) {
        kinds.push_back(Kind::FailureZero);
    }
    if (function.init) {
        kinds.push_back(Kind::AlreadyInitialised);
    }
    if (function.numbers) {
        kinds.push_back(Kind::AbsurdValue);
    }
    if (function.text) {
        kinds.insert(kinds.end(), {Kind::MoreData, Kind::AbsurdLength, Kind::Unterminated});
    }
    return kinds;
}

std::string FaultJson(const std::string& call, Kind kind) {
    const size_t space = call.find(' ');
    std::string json = "{\"function\": \"" + call.substr(0, space) + "\"";
    if (space != std::string::npos) {
        json += ", \"arg\": \"" + call.substr(space + 1) + "\"";
    }
    switch (kind) {
        case Kind::Failure: return json + ", \"status\": \"0xFFFFF4FF\"}";
        case Kind::FailureZero: return json + ", \"status\": 0}";
        case Kind::MoreData: return json + ", \"status\": \"0xFFFFF9FF\"}";
        case Kind::AlreadyInitialised: return json + ", \"status\": \"0xFFFFFFFE\"}";
        case Kind::AbsurdValue: return json + ", \"value\": \"0xFFFFFFFF\"}";
        case Kind::AbsurdLength: return json + ", \"length\": \"0xFFFFFFFF\"}";
        default: return json + ", \"unterminated\": true}";
    }
}

}  // namespace vtest
