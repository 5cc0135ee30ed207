// Writing a board and its faults back as profile text, for the kept board
// state.
#include <jansson.h>

#include <cstdio>
#include <cstdlib>

#include "Profile.h"
#include "json/JsonPtr.h"

namespace vorasim {

namespace {

json_t* Hex(uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", value);
    return json_string(text);
}

void SetOptional(json_t* object, const char* key, const std::optional<uint32_t>& value) {
    if (value) {
        json_object_set_new(object, key, json_integer(*value));
    }
}

json_t* FormatFault(const Fault& fault) {
    json_t* f = json_pack("{s:s}", "function", fault.function.c_str());
    if (fault.arg) {
        json_object_set_new(f, "arg", Hex(*fault.arg));
    }
    if (fault.status) {
        json_object_set_new(f, "status", Hex(*fault.status));
    }
    if (fault.value) {
        json_object_set_new(f, "value", Hex(*fault.value));
    }
    if (fault.length) {
        json_object_set_new(f, "length", Hex(*fault.length));
    }
    if (fault.unterminated) {
        json_object_set_new(f, "unterminated", json_true());
    }
    if (fault.latencyMs > 0.0) {
        json_object_set_new(f, "latency_ms", json_real(fault.latencyMs));
    }
    if (fault.jitterMs > 0.0) {
        json_object_set_new(f, "jitter_ms", json_real(fault.jitterMs));
    }
    if (fault.hang) {
        json_object_set_new(f, "hang", json_true());
    }
    if (fault.times) {
        json_object_set_new(f, "times", json_integer(*fault.times));
    }
    if (fault.after > 0) {
        json_object_set_new(f, "after", json_integer(fault.after));
    }
    return f;
}

json_t* FormatBoard(const Board& board) {
    json_t* b = json_object();
    for (const auto& [key, text] : board.strings) {
        json_object_set_new(b, key.c_str(), json_string(text.c_str()));
    }
    for (const auto& [key, value] : board.values) {
        json_object_set_new(b, key.c_str(), Hex(value));
    }
    json_t* customer = json_array();
    for (const CustomerString& c : board.customer) {
        json_array_append_new(customer, json_pack("{s:s, s:s}", "label", c.label.c_str(), "value",
                                                  c.value.c_str()));
    }
    json_object_set_new(b, "customer_strings", customer);
    return b;
}

json_t* FormatSensor(const Sensor& s) {
    json_t* sensor = json_pack("{s:i}", "index", s.index);
    if (s.name) {
        json_object_set_new(sensor, "name", json_string(s.name->c_str()));
    }
    if (s.raw) {
        json_object_set_new(sensor, "raw", Hex(*s.raw));
    } else {
        json_object_set_new(sensor, "value", json_real(s.value));
    }
    if (s.amplitude != 0.0) {
        json_object_set_new(sensor, "wave", json_pack("{s:f, s:f}", "amplitude", s.amplitude, "period", s.period));
    }
    return sensor;
}

json_t* FormatSensors(const Board& board) {
    static const char* const kKinds[kSensorKinds] = {"temperature", "voltage", "fan", "current",
                                                     "case_open"};
    json_t* sensors = json_object();
    for (int kind = 0; kind < kSensorKinds; ++kind) {
        json_t* list = json_array();
        for (const Sensor& s : board.sensors[kind]) {
            json_array_append_new(list, FormatSensor(s));
        }
        json_object_set_new(sensors, kKinds[kind], list);
    }
    return sensors;
}

json_t* FormatPins(const Board& board) {
    json_t* pins = json_array();
    for (const Pin& p : board.pins) {
        json_t* pin = json_pack("{s:i, s:b, s:b, s:s, s:i}", "pin", p.pin, "input", p.input,
                                "output", p.output, "direction", p.direction == 1 ? "in" : "out",
                                "level", p.level);
        if (p.name) {
            json_object_set_new(pin, "name", json_string(p.name->c_str()));
        }
        json_array_append_new(pins, pin);
    }
    return pins;
}

json_t* FormatPanels(const Board& board) {
    json_t* panels = json_array();
    for (const Panel& p : board.panels) {
        json_t* panel = json_pack("{s:i, s:i, s:i, s:i}", "panel", p.panel, "min", p.minimum, "max",
                                  p.maximum, "step", p.step);
        if (p.name) {
            json_object_set_new(panel, "name", json_string(p.name->c_str()));
        }
        SetOptional(panel, "brightness", p.brightness);
        SetOptional(panel, "frequency", p.frequency);
        SetOptional(panel, "polarity", p.polarity);
        if (p.enable) {
            json_object_set_new(panel, "enable", json_boolean(*p.enable));
        }
        json_array_append_new(panels, panel);
    }
    return panels;
}

json_t* FormatNetwork(const Board& board) {
    json_t* words = json_object();
    for (const auto& [id, values] : board.network) {
        json_t* list = json_array();
        for (uint32_t w : values) {
            json_array_append_new(list, Hex(w));
        }
        char key[16];
        std::snprintf(key, sizeof key, "0x%X", id);
        json_object_set_new(words, key, list);
    }
    return json_pack("{s:o}", "words", words);
}

}  // namespace

std::string FormatProfile(const Board& board, const std::vector<Fault>& faults) {
    const vorajson::JsonPtr root(json_object());
    json_object_set_new(root.get(), "board", FormatBoard(board));
    json_object_set_new(root.get(), "sensors", FormatSensors(board));
    json_object_set_new(root.get(), "gpio", FormatPins(board));
    json_object_set_new(root.get(), "backlight", FormatPanels(board));
    json_object_set_new(root.get(), "network", FormatNetwork(board));
    if (!faults.empty()) {
        json_t* list = json_array();
        for (const Fault& fault : faults) {
            json_array_append_new(list, FormatFault(fault));
        }
        json_object_set_new(root.get(), "faults", list);
    }
    char* text = json_dumps(root.get(), JSON_INDENT(2));
    std::string result = text == nullptr ? "{}" : text;
    std::free(text);
    return result;
}

}  // namespace vorasim
