#include "Profile.h"

#include <cstdio>

#include "ProfileNetwork.h"
#include "record/JsonPath.h"
#include "record/Libraries.h"

namespace vorasim {

namespace {

using vorarec::Node;

// "1.2" -> major << 24 | minor << 16, "1.2.3" -> ... | 3; or a plain number.
uint32_t PackedVersion(const Node& n, bool withPatch) {
    if (!json_is_string(n.json()) || n.text().find('.') == std::string::npos) {
        return n.u32();
    }
    const std::string text = n.text();
    unsigned a = 0, b = 0, c = 0;
    int used = 0;
    const int fields = withPatch ? std::sscanf(text.c_str(), "%u.%u.%u%n", &a, &b, &c, &used)
                                 : std::sscanf(text.c_str(), "%u.%u%n", &a, &b, &used);
    if (fields != (withPatch ? 3 : 2) || static_cast<size_t>(used) != text.size() || a > 255 ||
        b > 255 || c > 0xFFFF) {
        n.fail(withPatch ? "\"major.minor.patch\" (up to 255.255.65535)" : "\"major.minor\" (up to 255.255)");
    }
    return a << 24 | b << 16 | c;
}

// {"vendor": "VOR", "product": 0x441} in the libraries' compressed form.
uint32_t PackedPnpId(const Node& n) {
    if (!json_is_object(n.json())) {
        return n.u32();
    }
    n.object({"vendor", "product"});
    const Node vendor = n.member("vendor");
    const std::string letters = vendor.text();
    const uint32_t product = n.member("product").u32(0, 0xFFF);
    const auto letter = [&](size_t i, uint32_t most) {
        const uint32_t c = static_cast<unsigned char>(letters[i]) - 0x40u;
        return c >= 1 && c <= most;
    };
    if (letters.size() != 3 || !letter(0, 26) || !letter(1, 26) || !letter(2, 26)) {
        vendor.fail("three upper-case letters A to Z");
    }
    const uint32_t c1 = letters[0] - 0x40u, c2 = letters[1] - 0x40u, c3 = letters[2] - 0x40u;
    return (c1 << 14) | ((c2 >> 3) << 12) | ((c2 & 7) << 25) | (c3 << 20) | product;
}

void ParseTexts(const Node& n, Board& board) {
    for (const char* key : kStringKeys) {
        if (n.member(key).present()) {
            board.strings[key] = n.member(key).text();
        }
    }
    for (const char* key : {"boot_count", "running_hours", "last_shutdown_status", "last_shutdown_event"}) {
        if (n.member(key).present()) {
            board.values[key] = n.member(key).u32();
        }
    }
    for (const char* key : {"spec_version", "platform_revision"}) {
        if (n.member(key).present()) {
            board.values[key] = PackedVersion(n.member(key), false);
        }
    }
    for (const char* key : kVersionKeys) {
        if (n.member(key).present()) {
            board.values[key] = PackedVersion(n.member(key), true);
        }
    }
    if (n.member("pnp_id").present()) {
        board.values["pnp_id"] = PackedPnpId(n.member("pnp_id"));
    }
}

void ParseBoard(const Node& n, Board& board) {
    n.object({"manufacturer", "name", "revision", "serial_number", "bios_revision",
              "hardware_revision", "platform_type", "firmware_name", "bios_name", "spec_version",
              "boot_count", "running_hours", "pnp_id", "platform_revision",
              "last_shutdown_status", "last_shutdown_event", "driver_version", "library_version",
              "firmware_version", "customer_strings"});
    ParseTexts(n, board);
    const Node customer = n.member("customer_strings");
    if (!customer.present()) {
        return;
    }
    if (customer.arraySize() > 3) {
        customer.fail("at most three customer strings");
    }
    for (size_t i = 0; i < customer.arraySize(); ++i) {
        const Node c = customer.element(i);
        c.object({"label", "value"});
        board.customer.push_back({c.member("label").text(), c.member("value").text()});
    }
}

Sensor ParseSensor(const Node& s, SensorKind kind, const Board& board) {
    s.object({"index", "name", "value", "raw", "wave"});
    Sensor sensor;
    // The index is the low twelve bits of the sensor's library id.
    sensor.index = s.member("index").u32(0, 0xFFF);
    if (board.sensor(kind, sensor.index) != nullptr) {
        s.member("index").fail("an index not given before in this list");
    }
    if (s.member("name").present()) {
        sensor.name = s.member("name").text();
    }
    if (s.member("raw").present()) {
        sensor.raw = s.member("raw").u32();
    } else {
        sensor.value = s.member("value").number();
    }
    const Node wave = s.member("wave");
    if (wave.present()) {
        wave.object({"amplitude", "period"});
        sensor.amplitude = wave.member("amplitude").number();
        sensor.period = wave.member("period").number();
        if (!(sensor.period > 0.0)) {
            wave.member("period").fail("a number of seconds above 0");
        }
    }
    return sensor;
}

void ParseSensors(const Node& n, Board& board) {
    static const char* const kKinds[kSensorKinds] = {"temperature", "voltage", "fan", "current",
                                                     "case_open"};
    n.object({"temperature", "voltage", "fan", "current", "case_open"});
    for (int kind = 0; kind < kSensorKinds; ++kind) {
        const Node list = n.member(kKinds[kind]);
        for (size_t i = 0; list.present() && i < list.arraySize(); ++i) {
            board.sensors[kind].push_back(ParseSensor(list.element(i), static_cast<SensorKind>(kind), board));
        }
    }
}

Pin ParsePin(const Node& p, Board& board) {
    p.object({"pin", "name", "input", "output", "direction", "level"});
    Pin pin;
    pin.pin = p.member("pin").u32(0, 255);
    if (board.pin(pin.pin) != nullptr) {
        p.member("pin").fail("a pin number not given before");
    }
    if (p.member("name").present()) {
        pin.name = p.member("name").text();
    }
    pin.input = p.member("input").present() ? p.member("input").boolean() : true;
    pin.output = p.member("output").present() ? p.member("output").boolean() : true;
    if (!pin.input && !pin.output) {
        p.refuse("expected a pin that can be an input, an output or both, found neither");
    }
    pin.direction = pin.input ? 1 : 0;
    const Node direction = p.member("direction");
    if (direction.present()) {
        const std::string d = direction.text();
        if ((d != "in" && d != "out") || (d == "in" && !pin.input) || (d == "out" && !pin.output)) {
            direction.fail(pin.input && pin.output ? "\"in\" or \"out\""
                           : pin.input             ? "\"in\", the only direction of this pin"
                                                   : "\"out\", the only direction of this pin");
        }
        pin.direction = d == "in" ? 1 : 0;
    }
    pin.level = p.member("level").present() ? p.member("level").u32(0, 1) : 0;
    return pin;
}

void ParseGpio(const Node& n, Board& board) {
    for (size_t i = 0; i < n.arraySize(); ++i) {
        board.pins.push_back(ParsePin(n.element(i), board));
    }
}

void Optional(const Node& n, const char* key, std::optional<uint32_t>& value) {
    if (n.member(key).present()) {
        value = n.member(key).u32();
    }
}

Panel ParsePanel(const Node& p, Board& board) {
    p.object({"panel", "name", "brightness", "min", "max", "step", "frequency", "polarity", "enable"});
    Panel panel;
    panel.panel = p.member("panel").u32(0, 255);
    if (board.panel(panel.panel) != nullptr) {
        p.member("panel").fail("a panel number not given before");
    }
    if (p.member("name").present()) {
        panel.name = p.member("name").text();
    }
    std::optional<uint32_t> minimum, maximum, step;
    Optional(p, "brightness", panel.brightness);
    Optional(p, "min", minimum);
    Optional(p, "max", maximum);
    Optional(p, "step", step);
    Optional(p, "frequency", panel.frequency);
    Optional(p, "polarity", panel.polarity);
    panel.minimum = minimum.value_or(panel.minimum);
    panel.maximum = maximum.value_or(panel.maximum);
    panel.step = step.value_or(panel.step);
    if (p.member("enable").present()) {
        panel.enable = p.member("enable").boolean();
    }
    return panel;
}

void ParseBacklight(const Node& n, Board& board) {
    for (size_t i = 0; i < n.arraySize(); ++i) {
        board.panels.push_back(ParsePanel(n.element(i), board));
    }
}

// A fault's time in milliseconds: from 0 to an hour.
double Milliseconds(const Node& n) { return n.number(0.0, 3600000.0); }

void ParseFaultTime(const Node& f, Fault& fault) {
    if (f.member("latency_ms").present()) {
        fault.latencyMs = Milliseconds(f.member("latency_ms"));
    }
    if (f.member("jitter_ms").present()) {
        fault.jitterMs = Milliseconds(f.member("jitter_ms"));
    }
    if (f.member("hang").present()) {
        fault.hang = f.member("hang").boolean();
    }
    if (f.member("times").present()) {
        fault.times = f.member("times").u32(1, 0xFFFFFFFF);
    }
    if (f.member("after").present()) {
        fault.after = f.member("after").u32();
    }
}

Fault ParseFaultNode(const Node& f) {
    f.object({"function", "arg", "status", "value", "length", "unterminated", "latency_ms",
              "jitter_ms", "hang", "times", "after"});
    Fault fault;
    fault.function = f.member("function").text();
    if (!vorarec::LibraryOf("4")->find(fault.function) && !vorarec::LibraryOf("3")->find(fault.function) &&
        !vorarec::LibraryOf("eapi")->find(fault.function)) {
        f.member("function").fail("a function of a board library");
    }
    const auto number = [&](const char* key, std::optional<uint32_t>& value) {
        if (f.member(key).present()) {
            value = f.member(key).u32();
        }
    };
    number("arg", fault.arg);
    number("status", fault.status);
    number("value", fault.value);
    number("length", fault.length);
    if (f.member("unterminated").present()) {
        fault.unterminated = f.member("unterminated").boolean();
    }
    ParseFaultTime(f, fault);
    if (!fault.status && !fault.value && !fault.length && !fault.unterminated && !fault.delays()) {
        f.refuse("expected \"status\", \"value\", \"length\", \"unterminated\", \"latency_ms\", "
                 "\"jitter_ms\" or \"hang\", found none of them");
    }
    return fault;
}

}  // namespace

Profile ParseProfile(const std::string& text) {
    const vorarec::JsonPtr root = vorarec::ParseJson(text);
    const Node n(root.get(), "", "profile");
    n.object({"description", "generation", "board", "sensors", "gpio", "backlight", "network",
              "faults"});
    if (n.member("description").present()) {
        n.member("description").text();
    }
    if (n.member("generation").present()) {
        const std::string generation = n.member("generation").text();
        if (generation != "4" && generation != "3" && generation != "eapi") {
            n.member("generation").fail("\"4\", \"3\" or \"eapi\"");
        }
    }
    Profile profile;
    const struct {
        const char* key;
        void (*parse)(const Node&, Board&);
    } kParts[] = {{"board", ParseBoard},       {"sensors", ParseSensors}, {"gpio", ParseGpio},
                  {"backlight", ParseBacklight}, {"network", ParseNetwork}};
    for (const auto& part : kParts) {
        if (n.member(part.key).present()) {
            part.parse(n.member(part.key), profile.board);
        }
    }
    const Node faults = n.member("faults");
    for (size_t i = 0; faults.present() && i < faults.arraySize(); ++i) {
        profile.faults.push_back(ParseFaultNode(faults.element(i)));
    }
    return profile;
}

Fault ParseFault(const std::string& text) {
    const vorarec::JsonPtr root = vorarec::ParseJson(text);
    return ParseFaultNode(Node(root.get(), "fault"));
}

}  // namespace vorasim
