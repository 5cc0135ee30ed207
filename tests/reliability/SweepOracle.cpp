#include "SweepOracle.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <tuple>

#include "ModuleMessages.h"
#include "HostRules.h"
#include "voradrv.h"

namespace sweep {

namespace {

constexpr uint32_t kFailure = 0xFFFFF4FF;  // used by nothing else in the system
constexpr uint32_t kMoreData = 0xFFFFF9FF;
constexpr uint32_t kAlreadyInitialised = 0xFFFFFFFE;
constexpr uint32_t kAbsurd = 0xFFFFFFFF;
// No text the module hands a host is longer than its largest buffer (4 KiB);
// the JSON form may escape every character.
constexpr size_t kLongestOutput = 6 * 4096 + 2;

using Function = std::pair<const char*, unsigned>;

const Function kVora4[] = {
    {"VoraLibInitialize", kInit},
    {"VoraLibUninitialize", kUninit},
    {"VoraBoardGetStringA", kText},
    {"VoraBoardGetValue", kNumber},
    {"VoraBoardSetValue", kWrite},
    {"VoraGPIOGetCaps", kNumber},
    {"VoraGPIOGetDirection", kNumber},
    {"VoraGPIOSetDirection", kWrite},
    {"VoraGPIOGetLevel", kNumber},
    {"VoraGPIOSetLevel", kWrite},
    {"VoraVgaGetCaps", kNumber},
    {"VoraVgaGetFrequency", kNumber},
    {"VoraVgaSetFrequency", kWrite},
    {"VoraVgaGetPolarity", kNumber},
    {"VoraVgaSetPolarity", kWrite},
    {"VoraVgaGetBacklightEnable", kNumber},
    {"VoraVgaSetBacklightEnable", kWrite},
    {"VoraVgaGetBacklightBrightness", kNumber},
    {"VoraVgaSetBacklightBrightness", kWrite},
};

// The text calls' length query (a null buffer) answers through a numeric
// output, so they take absurd values too.
const Function kVora3[] = {
    {"VoraDllInit", kInit},
    {"VoraDllUnInit", kUninit},
    {"VoraCoreGetPlatformName", kText | kNumber},
    {"VoraCoreGetBIOSVersion", kText | kNumber},
    {"VoraDllGetVersion", kNumber},
    {"VoraHWMGetVoltage", kNumber},
    {"VoraHWMGetFanSpeed", kNumber},
    {"VoraHWMGetTemperature", kNumber},
    {"VoraIOQueryMask", kNumber},
    {"VoraIOCountEx", kNumber},
    {"VoraIOReadEx", kNumber},
    {"VoraIOWriteEx", kWrite},
    {"VoraIOSetDirection", kWrite | kNumber},
    {"VoraVCGetBrightRange", kNumber},
    {"VoraVCGetBright", kNumber},
    {"VoraVCScreenOn", kWrite},
    {"VoraVCScreenOff", kWrite},
    {"VoraVCSetBright", kWrite},
};

const Function kEApi[] = {
    {"EApiLibInitialize", kInit},
    {"EApiLibUnInitialize", kUninit},
    {"EApiBoardGetStringA", kText},
    {"EApiBoardGetValue", kNumber},
    {"EApiHWMGetCaps", kNumber},
    {"EApiGPIOGetDirectionCaps", kNumber},
    {"EApiGPIOGetDirection", kNumber},
    {"EApiGPIOGetLevel", kNumber},
    {"EApiGPIOSetDirection", kWrite},
    {"EApiGPIOSetLevel", kWrite},
    {"EApiVgaGetBacklightBrightness", kNumber},
    {"EApiVgaSetBacklightBrightness", kWrite},
    {"EApiVgaGetBacklightEnable", kNumber},
    {"EApiVgaSetBacklightEnable", kWrite},
};

const char* const kKindNames[] = {
    "failure",      "failure-zero",  "more-data",   "already-initialised",
    "absurd-value", "absurd-length", "unterminated"};

bool Matches(const Call& call, const Fault& fault) {
    return call.function == fault.call.function && (!fault.call.key || call.key == fault.call.key);
}

// The status a step must answer when the failing call ran during it and
// answered `injected` (the module's rule for a failed library call there).
uint32_t FailedCallStatus(Generation generation, const vtest::Step& step, unsigned traits,
                          uint32_t injected, uint32_t clean) {
    if (step.op == "init") {
        if ((traits & kInit) == 0) {
            return 0;  // a failure while discovering the board only drops items
        }
        // A third-generation initialise answering 0 is reported and then taken
        // for success: the module goes on with no library and an empty document.
        return generation == Generation::Vora3 && injected == 0 ? VORADRV_STATUS_ERROR : injected;
    }
    if (step.op == "uninit") {
        return (traits & kUninit) != 0 ? injected : clean;
    }
    if (step.op == "set") {
        return injected;  // passed back; the third generation maps only 1 to 0
    }
    switch (step.id & VORADRV_ID_CLASS_MASK) {
        case VORADRV_CLASS_INFO:
            return injected;
        case VORADRV_CLASS_HWM:
            return generation == Generation::Vora3 ? 0 : VORADRV_STATUS_ERROR;
        case VORADRV_CLASS_NETWORK:
            return step.type == JSON_STRING ? VORADRV_STATUS_READ_ERROR : VORADRV_STATUS_ERROR;
        default:
            return VORADRV_STATUS_ERROR;
    }
}

const char* LibraryTag(Generation generation) {
    return generation == Generation::Vora4   ? "VORA4"
           : generation == Generation::Vora3 ? "VORA3"
                                             : "ECTL2";
}

// Statuses and messages of one step.
// `boardChanged`: an earlier write put another value on the board than the
// clean pass did, so a write's outcome may differ from the clean pass's.
void CheckStatus(Generation generation, const vtest::Step& step,
                 const std::map<std::string, uint32_t>& clean, const std::optional<Fault>& fault,
                 bool initFailed, bool boardChanged, std::vector<std::string>& problems) {
    const auto cleanStatus = clean.find(step.key());
    const bool touched =
        fault && std::any_of(step.calls.begin(), step.calls.end(), [&](const std::string& line) {
            return Matches(ParseCall(line), *fault);
        });
    uint32_t answered = 0;
    const bool injected = fault && InjectedStatus(fault->kind, answered);
    std::optional<uint32_t> expected;
    if (touched && injected) {
        expected = FailedCallStatus(generation, step, Traits(generation, fault->call.function),
                                    answered, cleanStatus != clean.end() ? cleanStatus->second : 0);
    } else if (initFailed && step.op == "uninit") {
        expected = VORADRV_STATUS_UNSUPPORTED;  // no library came up
    } else if (initFailed && step.op == "caps") {
        if (step.status == 0) {
            problems.push_back("capability answered 0 after a failed initialise");
        }
    } else if (cleanStatus != clean.end() && !(boardChanged && step.op == "set")) {
        expected = cleanStatus->second;
    }
    if (expected && step.status != *expected) {
        problems.push_back(step.key() + ": status " + vtest::Hex(step.status) + ", expected " +
                           vtest::Hex(*expected));
    }

    const std::string block = vtest::BlockName(step.id & VORADRV_ID_CLASS_MASK);
    if (step.op == "get" || step.op == "set") {
        const std::string line = step.op == "get" ? vtest::GetFailedLine(block, step.status)
                                                  : vtest::SetFailedLine(block);
        const bool printed =
            step.printed.size() >= line.size() &&
            step.printed.compare(step.printed.size() - line.size(), line.size(), line) == 0;
        if (printed != (step.status != 0)) {
            problems.push_back(step.key() + ": status " + vtest::Hex(step.status) +
                               " but the entry point printed \"" + step.printed + "\"");
        }
    }
    // A library's initialise that fails is reported, except for "already
    // initialised" where the probe stops at once.
    if (step.op == "init" && touched && injected && step.status != 0 &&
        !(generation != Generation::Vora3 && answered == kAlreadyInitialised)) {
        const std::string line = std::string("[VORADrv] ") + LibraryTag(generation) +
                                 " can not load (" + vtest::Hex(answered) + ")\n";
        if (step.printed.find(line) == std::string::npos) {
            problems.push_back("init: no \"" + line.substr(0, line.size() - 1) + "\" message");
        }
    }
}

// Writes of one step, and what a failed read left in the host's value.
void CheckBoard(Generation generation, const vtest::Step& step,
                std::vector<std::string>& problems) {
    const std::vector<std::string> writes = vtest::WriteCalls(step.calls);
    if (step.op != "set") {
        if (!writes.empty()) {
            problems.push_back(step.key() + ": wrote to the board: " + writes.front());
        }
        if (step.op == "get") {
            vtest::JsonPtr sentinel = vtest::Own(vtest::Sentinel(step.type));
            if (step.status != 0 && step.output != vtest::Dump(sentinel.get())) {
                problems.push_back(step.key() + ": failed, yet changed the value to " +
                                   step.output);
            }
            if (step.output.size() > kLongestOutput) {
                problems.push_back(step.key() + ": a value of " +
                                   std::to_string(step.output.size()) + " bytes");
            }
        }
        return;
    }
    json_error_t error;
    vtest::JsonPtr value = vtest::Own(json_loads(step.input.c_str(), JSON_DECODE_ANY, &error));
    const vtest::SetExpectation rule = vtest::ExpectSet(generation, step.id, value.get(), true);
    switch (rule.rule) {
        case vtest::WriteRule::Refused:
        case vtest::WriteRule::NoEffect:
            if (!writes.empty()) {
                problems.push_back(step.key() + ": a value the module refuses reached the board: " +
                                   writes.front());
            }
            if (step.status != rule.status) {
                problems.push_back(step.key() + ": refused with " + vtest::Hex(step.status) +
                                   ", expected " + vtest::Hex(rule.status));
            }
            break;
        case vtest::WriteRule::Written:
        case vtest::WriteRule::WrittenIfChanged:
            if (writes.size() > 1) {
                problems.push_back(step.key() + ": " + std::to_string(writes.size()) + " writes");
            }
            if (!writes.empty() && !rule.words.empty() &&
                !vtest::WroteWords(writes.front(), rule.words)) {
                problems.push_back(step.key() + ": wrote other words: " + writes.front());
            }
            break;
    }
}

}  // namespace

bool Call::operator<(const Call& other) const {
    return std::tie(function, key) < std::tie(other.function, other.key);
}

Call ParseCall(const std::string& line) {
    Call call;
    const size_t space = line.find(' ');
    call.function = line.substr(0, space);
    if (space != std::string::npos && line.compare(space + 1, 2, "0x") == 0) {
        call.key = static_cast<uint32_t>(std::strtoul(line.c_str() + space + 1, nullptr, 16));
    }
    return call;
}

std::vector<std::pair<std::string, unsigned>> LibraryFunctions(Generation generation) {
    auto list = [](const auto& table) {
        return std::vector<std::pair<std::string, unsigned>>(std::begin(table), std::end(table));
    };
    return generation == Generation::Vora4   ? list(kVora4)
           : generation == Generation::Vora3 ? list(kVora3)
                                             : list(kEApi);
}

unsigned Traits(Generation generation, const std::string& function) {
    for (const auto& [name, traits] : LibraryFunctions(generation)) {
        if (name == function) {
            return traits;
        }
    }
    return 0;
}

const char* KindName(Kind kind) { return kKindNames[static_cast<int>(kind)]; }

std::optional<Kind> KindNamed(const std::string& name) {
    for (int k = 0; k < static_cast<int>(std::size(kKindNames)); ++k) {
        if (name == kKindNames[k]) {
            return static_cast<Kind>(k);
        }
    }
    return std::nullopt;
}

std::vector<Kind> KindsFor(Generation generation, unsigned traits) {
    std::vector<Kind> kinds{Kind::Failure};
    if (generation == Generation::Vora3) {
        kinds.push_back(Kind::FailureZero);
    }
    if ((traits & kInit) != 0) {
        kinds.push_back(Kind::AlreadyInitialised);
    }
    if ((traits & kNumber) != 0) {
        kinds.push_back(Kind::AbsurdValue);
    }
    if ((traits & kText) != 0) {
        kinds.insert(kinds.end(), {Kind::MoreData, Kind::AbsurdLength, Kind::Unterminated});
    }
    return kinds;
}

bool InjectedStatus(Kind kind, uint32_t& status) {
    switch (kind) {
        case Kind::Failure:
            status = kFailure;
            return true;
        case Kind::FailureZero:
            status = 0;
            return true;
        case Kind::MoreData:
            status = kMoreData;
            return true;
        case Kind::AlreadyInitialised:
            status = kAlreadyInitialised;
            return true;
        default:
            return false;
    }
}

std::string FaultJson(const Fault& fault) {
    std::string json = "{\"function\": \"" + fault.call.function + "\"";
    if (fault.call.key) {
        json += ", \"arg\": \"" + vtest::Hex(*fault.call.key) + "\"";
    }
    if (uint32_t status = 0; InjectedStatus(fault.kind, status)) {
        json += ", \"status\": \"" + vtest::Hex(status) + "\"";
    } else if (fault.kind == Kind::AbsurdValue) {
        json += ", \"value\": \"" + vtest::Hex(kAbsurd) + "\"";
    } else if (fault.kind == Kind::AbsurdLength) {
        json += ", \"length\": \"" + vtest::Hex(kAbsurd) + "\"";
    } else {
        json += ", \"unterminated\": true";
    }
    return json + "}";
}

std::vector<std::string> CheckRun(Generation generation, const std::vector<vtest::Step>& steps,
                                  const std::map<std::string, uint32_t>& clean,
                                  const std::optional<Fault>& fault) {
    std::vector<std::string> problems;
    const bool initFailed = !steps.empty() && steps.front().status != 0;
    bool boardChanged = false;
    for (const vtest::Step& step : steps) {
        const std::string unknown = vtest::UnknownOutput(step.printed);
        if (!unknown.empty()) {
            problems.push_back(step.key() + ": printed \"" + unknown + "\"");
        }
        CheckStatus(generation, step, clean, fault, initFailed, boardChanged, problems);
        CheckBoard(generation, step, problems);
        if (step.op == "set" && fault && clean.count(step.key()) == 0) {
            boardChanged = true;
        }
    }
    return problems;
}

}  // namespace sweep
