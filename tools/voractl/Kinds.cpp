#include "Kinds.h"

#include <strings.h>

#include <cmath>

namespace voractl {

namespace {

// 0 °C in the Embedded API's tenths of a kelvin.
constexpr double kZeroCelsius = 2731.0;

double FromTenthsOfKelvin(double tenths) { return std::round(tenths - kZeroCelsius) / 10.0; }
double ToTenthsOfKelvin(double celsius) { return std::round(celsius * 10.0 + kZeroCelsius); }

const UnitKind kUnits[] = {
    // Sensor readings, shown as `sensors` shows them and named as
    // node_exporter's hwmon collector names them.
    {"Cel", Quantity::Number, {"°C", 1, true}, {"celsius", "degrees Celsius", "Cel"},
     {"temperature", "Temperature sensor reading"}, {}, {"eapi", FromTenthsOfKelvin, ToTenthsOfKelvin}},
    {"V", Quantity::Number, {"V", 3}, {"volts", "volts", "V"},
     {"voltage", "Voltage sensor reading"}},
    {"A", Quantity::Number, {"A", 3}, {"amperes", "amperes", "A"},
     {"current", "Current sensor reading"}},
    {"RPM", Quantity::Number, {"RPM", 0}, {"rpm", "revolutions per minute", "1/min"},
     {"fan", "Fan speed"}},
    {"Hz", Quantity::Number, {}, {"hertz", "hertz", "Hz"}},
    // The platform's counters.
    {"hour", Quantity::Duration, {"hours"}, {"seconds", "seconds", "s", 3600.0}},
    {"times", Quantity::Count, {}},
    // A brightness step, and the network texts' numbers, which the text
    // shows by itself: nothing to show after the value.
    {"Step", Quantity::Number, {""}},
    {"HEX", Quantity::HexText, {""}},
    {"DEC", Quantity::DecimalText, {""}},
    {"info", Quantity::None, {""}},
    // Two states, each with its own words.
    {"I/O", Quantity::Direction, {}, {}, {}, {"a direction", {"in", nullptr}, {"out", nullptr}, false}},
    {"H/L", Quantity::Level, {}, {}, {}, {"a level", {"high", "active"}, {"low", "inactive"}, true}},
    {"ON/OFF", Quantity::Switch, {}, {}, {}, {"an on/off state", {"on", "true"}, {"off", "false"}, true}},
};

const UnitKind kOther{"", Quantity::Number, {}};

bool Among(const char* const (&words)[2], const char* digit, const std::string& word) {
    if (word == digit) {
        return true;
    }
    for (const char* known : words) {
        if (known != nullptr && strcasecmp(known, word.c_str()) == 0) {
            return true;
        }
    }
    return false;
}

}  // namespace

const TwoStateKind kPlainTwoState = {"a two-state value", {nullptr, nullptr}, {nullptr, nullptr}};

std::optional<int> TwoStateKind::state(const std::string& word) const {
    // strcasecmp stops at a NUL, which a command-line word cannot hold.
    if (Among(one, "1", word)) {
        return 1;
    }
    if (Among(zero, "0", word)) {
        return 0;
    }
    return std::nullopt;
}

std::string TwoStateKind::words() const {
    std::string text;
    for (size_t i = 0; i < 2 && one[i] != nullptr; ++i) {
        text += std::string(one[i]) + "/" + zero[i] + ", ";
    }
    if (!text.empty()) {
        text.replace(text.size() - 2, 2, " or ");
    }
    return text + "1/0";
}

TextForm TextFormOf(const UnitKind& kind, const std::string& name) {
    static const std::pair<const char*, TextForm> kLabels[] = {
        {"Modified sub mask", TextForm::Netmask},
        {"Current sub mask", TextForm::Netmask},
        {"Network host name", TextForm::HostName},
    };
    for (const auto& [label, form] : kLabels) {
        if (name == label) {
            return form;
        }
    }
    return kind.quantity == Quantity::HexText       ? TextForm::Mac
           : kind.quantity == Quantity::DecimalText ? TextForm::Address
                                                    : TextForm::Any;
}

std::string TwoStateWordLines() {
    std::string lines;
    for (const UnitKind& kind : kUnits) {
        if (kind.twoState() == nullptr) {
            continue;
        }
        lines += kind.unit;
        for (const auto* words : {&kind.states.one, &kind.states.zero}) {
            for (const char* word : *words) {
                lines += word != nullptr ? std::string(" ") + word : "";
            }
        }
        lines += "\n";
    }
    return lines;
}

const UnitKind& UnitKindOf(const std::string& unit) {
    for (const UnitKind& kind : kUnits) {
        if (unit == kind.unit) {
            return kind;
        }
    }
    return kOther;
}

}  // namespace voractl
