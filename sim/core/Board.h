// The simulated board: what a board profile describes, in physical units.
// Each simulated library presents it in its own library's units and
// conventions.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vorasim {

enum SensorKind { kTemperature, kVoltage, kFan, kCurrent, kCaseOpen, kSensorKinds };

struct Sensor {
    unsigned index = 0;
    std::optional<std::string> name;
    double value = 0.0;             // °C, V, RPM, A, or 0/1 for the case switch
    std::optional<uint32_t> raw;    // the library's raw answer, used as it stands
    double amplitude = 0.0;         // optional slow wave around `value`
    double period = 0.0;            // seconds
};

struct Pin {
    unsigned pin = 0;
    std::optional<std::string> name;
    bool input = false;             // can be an input
    bool output = false;            // can be an output
    unsigned direction = 1;         // 1 input, 0 output
    unsigned level = 0;
};

struct Panel {
    unsigned panel = 0;
    std::optional<std::string> name;
    std::optional<uint32_t> brightness;
    uint32_t minimum = 0;
    uint32_t maximum = 100;
    uint32_t step = 1;
    std::optional<uint32_t> frequency;
    std::optional<uint32_t> polarity;
    std::optional<bool> enable;
};

struct CustomerString {
    std::string label;
    std::string value;
};

// Board value keys by position, as the fourth-generation and Embedded API
// libraries number them.
constexpr const char* kValueKeys[] = {"spec_version",         "boot_count",
                                      "running_hours",        "pnp_id",
                                      "platform_revision",    "last_shutdown_status",
                                      "last_shutdown_event"};
constexpr const char* kVersionKeys[] = {"driver_version", "library_version", "firmware_version"};
constexpr const char* kStringKeys[] = {"manufacturer",  "name",          "revision",
                                       "serial_number", "bios_revision", "hardware_revision",
                                       "platform_type", "firmware_name", "bios_name"};

struct Board {
    // Board texts by key: "manufacturer", "name", "revision", "serial_number",
    // "bios_revision", "hardware_revision", "platform_type", "firmware_name",
    // "bios_name".
    std::map<std::string, std::string> strings;
    // Board values by key, already in the libraries' packed form:
    // "spec_version", "boot_count", "running_hours", "pnp_id",
    // "platform_revision", "last_shutdown_status", "last_shutdown_event",
    // "driver_version", "library_version", "firmware_version".
    std::map<std::string, uint32_t> values;
    std::vector<CustomerString> customer;
    std::array<std::vector<Sensor>, kSensorKinds> sensors;
    std::vector<Pin> pins;
    std::vector<Panel> panels;
    // Management network values by board value id (0x12000..0x1200F), as the
    // library's word arrays.
    std::map<uint32_t, std::vector<uint32_t>> network;

    const Sensor* sensor(SensorKind kind, unsigned index) const;
    Pin* pin(unsigned number);
    Panel* panel(unsigned number);
    const std::string* text(const std::string& key) const;
    const uint32_t* value(const std::string& key) const;
};

// A fault: calls of `function` (a function of one of the board libraries,
// with key argument `arg`, when given) answer differently from the model.
struct Fault {
    std::string function;
    std::optional<uint32_t> arg;
    std::optional<uint32_t> status;    // returned instead of the normal result
    std::optional<uint32_t> value;     // written to every numeric output
    std::optional<uint32_t> length;    // reported as a text's length
    bool unterminated = false;         // text fills the buffer without a terminator
    double latencyMs = 0.0;            // the call takes this long before it answers
    double jitterMs = 0.0;             // and up to this much longer, at random
    bool hang = false;                 // the call never returns
    std::optional<unsigned> times;     // fires this many times, then is gone
    unsigned after = 0;                // lets this many matching calls pass first

    // True when the fault only changes the status: the call then returns it
    // at once and leaves the board and every output alone.
    bool statusOnly() const { return status && !value && !length && !unterminated; }
    // True when the fault makes the call slow, or never return.
    bool delays() const { return hang || latencyMs > 0.0 || jitterMs > 0.0; }
};

}  // namespace vorasim
