#include "Profile.h"

#include <jansson.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <memory>

#include "record/Calls.h"

namespace vorasim {

namespace {

using JsonPtr = std::unique_ptr<json_t, decltype(&json_decref)>;

// One JSON value and where it stands in the profile, for error messages.
class Node {
public:
    Node(json_t* json, std::string path) : json_(json), path_(std::move(path)) {}

    json_t* json() const { return json_; }
    const std::string& path() const { return path_; }

    [[noreturn]] void fail(const std::string& what) const {
        throw ProfileError((path_.empty() ? std::string("profile") : path_) + ": " + what);
    }

    Node member(const char* key) const {
        return Node(json_object_get(json_, key), path_.empty() ? key : path_ + "." + key);
    }
    Node element(size_t i) const {
        return Node(json_array_get(json_, i), path_ + "[" + std::to_string(i) + "]");
    }
    bool present() const { return json_ != nullptr; }

    // Requires an object whose keys are all among `allowed`.
    void object(std::initializer_list<const char*> allowed) const {
        if (!json_is_object(json_)) {
            fail("expected an object");
        }
        const char* key;
        json_t* value;
        json_object_foreach(json_, key, value) {
            bool known = false;
            for (const char* a : allowed) {
                known = known || std::string(a) == key;
            }
            if (!known) {
                fail("unknown key " + vorarec::Quoted(key));
            }
        }
    }

    size_t arraySize() const {
        if (!json_is_array(json_)) {
            fail("expected an array");
        }
        return json_array_size(json_);
    }

    // A 32-bit number: a JSON integer (negative ones wrap, as a library's
    // signed raw values do) or a text in decimal or 0x-hexadecimal.
    uint32_t u32() const {
        long long v = 0;
        if (json_is_integer(json_)) {
            v = json_integer_value(json_);
        } else if (json_is_string(json_)) {
            const char* text = json_string_value(json_);
            char* end = nullptr;
            v = std::strtoll(text, &end, 0);
            if (*text == '\0' || *end != '\0') {
                fail("expected a number, got " + vorarec::Quoted(text));
            }
        } else {
            fail("expected an integer or a number in a string");
        }
        if (v < -2147483648LL || v > 0xFFFFFFFFLL) {
            fail("number out of the 32-bit range");
        }
        return static_cast<uint32_t>(v);
    }

    double number() const {
        if (!json_is_number(json_)) {
            fail("expected a number");
        }
        return json_number_value(json_);
    }

    std::string text() const {
        if (!json_is_string(json_)) {
            fail("expected a string");
        }
        return json_string_value(json_);
    }

    bool boolean() const {
        if (!json_is_boolean(json_)) {
            fail("expected true or false");
        }
        return json_is_true(json_);
    }

private:
    json_t* json_;
    std::string path_;
};

// "1.2" -> major << 24 | minor << 16, "1.2.3" -> ... | 3; or a plain number.
uint32_t PackedVersion(const Node& n, bool withPatch) {
    if (!json_is_string(n.json()) || std::string(n.text()).find('.') == std::string::npos) {
        return n.u32();
    }
    const std::string text = n.text();
    unsigned a = 0, b = 0, c = 0;
    int used = 0;
    const int fields = withPatch ? std::sscanf(text.c_str(), "%u.%u.%u%n", &a, &b, &c, &used)
                                 : std::sscanf(text.c_str(), "%u.%u%n", &a, &b, &used);
    if (fields != (withPatch ? 3 : 2) || static_cast<size_t>(used) != text.size() || a > 255 ||
        b > 255 || c > 0xFFFF) {
        n.fail(withPatch ? "expected \"major.minor.patch\"" : "expected \"major.minor\"");
    }
    return a << 24 | b << 16 | c;
}

// {"vendor": "VOR", "product": 0x441} in the libraries' compressed form.
uint32_t PackedPnpId(const Node& n) {
    if (!json_is_object(n.json())) {
        return n.u32();
    }
    n.object({"vendor", "product"});
    const std::string vendor = n.member("vendor").text();
    const uint32_t product = n.member("product").u32();
    if (vendor.size() != 3 || product > 0xFFF) {
        n.fail("expected a three-letter vendor and a product up to 0xFFF");
    }
    const uint32_t c1 = static_cast<unsigned char>(vendor[0]) - 0x40u;
    const uint32_t c2 = static_cast<unsigned char>(vendor[1]) - 0x40u;
    const uint32_t c3 = static_cast<unsigned char>(vendor[2]) - 0x40u;
    if (c1 > 0x3F || c2 > 0x1F || c3 > 0x1F) {
        n.fail("vendor letters must be upper-case A to Z");
    }
    return (c1 << 14) | ((c2 >> 3) << 12) | ((c2 & 7) << 25) | (c3 << 20) | product;
}

std::vector<uint32_t> IpWords(const Node& n, bool withPort) {
    const std::string text = n.text();
    unsigned w[5] = {};
    int used = 0;
    const int fields = withPort ? std::sscanf(text.c_str(), "%u.%u.%u.%u:%u%n", &w[0], &w[1], &w[2],
                                              &w[3], &w[4], &used)
                                : std::sscanf(text.c_str(), "%u.%u.%u.%u%n", &w[0], &w[1], &w[2],
                                              &w[3], &used);
    const int expected = withPort ? 5 : 4;
    if (fields != expected || static_cast<size_t>(used) != text.size() || w[0] > 255 ||
        w[1] > 255 || w[2] > 255 || w[3] > 255 || w[4] > 65535) {
        n.fail(withPort ? "expected \"a.b.c.d:port\"" : "expected a dotted IPv4 address");
    }
    return std::vector<uint32_t>(w, w + expected);
}

std::vector<uint32_t> MacWords(const Node& n) {
    const std::string text = n.text();
    unsigned w[6] = {};
    int used = 0;
    if (std::sscanf(text.c_str(), "%2x:%2x:%2x:%2x:%2x:%2x%n", &w[0], &w[1], &w[2], &w[3], &w[4],
                    &w[5], &used) != 6 ||
        used != 17) {
        n.fail("expected a MAC address such as 00:0B:AB:12:34:5F");
    }
    return std::vector<uint32_t>(w, w + 6);
}

std::vector<uint32_t> TextWords(const Node& n, size_t words) {
    const std::string text = n.text();
    if (text.size() > words) {
        n.fail("text longer than " + std::to_string(words) + " characters");
    }
    std::vector<uint32_t> out(words, 0);
    for (size_t i = 0; i < text.size(); ++i) {
        out[i] = static_cast<unsigned char>(text[i]);
    }
    return out;
}


void ParseBoard(const Node& n, Board& board) {
    n.object({"manufacturer", "name", "revision", "serial_number", "bios_revision",
              "hardware_revision", "platform_type", "firmware_name", "bios_name", "spec_version",
              "boot_count", "running_hours", "pnp_id", "platform_revision",
              "last_shutdown_status", "last_shutdown_event", "driver_version", "library_version",
              "firmware_version", "customer_strings"});
    for (const char* key : kStringKeys) {
        if (n.member(key).present()) {
            board.strings[key] = n.member(key).text();
        }
    }
    for (const char* key : {"boot_count", "running_hours", "last_shutdown_status",
                            "last_shutdown_event"}) {
        if (n.member(key).present()) {
            board.values[key] = n.member(key).u32();
        }
    }
    for (const char* key : {"spec_version", "platform_revision"}) {
        if (n.member(key).present()) {
            board.values[key] = PackedVersion(n.member(key), false);
        }
    }
    for (const char* key : {"driver_version", "library_version", "firmware_version"}) {
        if (n.member(key).present()) {
            board.values[key] = PackedVersion(n.member(key), true);
        }
    }
    if (n.member("pnp_id").present()) {
        board.values["pnp_id"] = PackedPnpId(n.member("pnp_id"));
    }
    const Node customer = n.member("customer_strings");
    if (customer.present()) {
        for (size_t i = 0; i < customer.arraySize(); ++i) {
            const Node c = customer.element(i);
            c.object({"label", "value"});
            board.customer.push_back({c.member("label").text(), c.member("value").text()});
        }
        if (board.customer.size() > 3) {
            customer.fail("at most three customer strings");
        }
    }
}

void ParseSensors(const Node& n, Board& board) {
    static const char* const kKinds[kSensorKinds] = {"temperature", "voltage", "fan", "current",
                                                     "case_open"};
    n.object({"temperature", "voltage", "fan", "current", "case_open"});
    for (int kind = 0; kind < kSensorKinds; ++kind) {
        const Node list = n.member(kKinds[kind]);
        if (!list.present()) {
            continue;
        }
        for (size_t i = 0; i < list.arraySize(); ++i) {
            const Node s = list.element(i);
            s.object({"index", "name", "value", "raw", "wave"});
            Sensor sensor;
            if (!s.member("index").present()) {
                s.fail("missing \"index\"");
            }
            sensor.index = s.member("index").u32();
            if (board.sensor(static_cast<SensorKind>(kind), sensor.index) != nullptr) {
                s.fail("index " + std::to_string(sensor.index) + " given twice");
            }
            if (s.member("name").present()) {
                sensor.name = s.member("name").text();
            }
            if (s.member("raw").present()) {
                sensor.raw = s.member("raw").u32();
            } else if (s.member("value").present()) {
                sensor.value = s.member("value").number();
            } else {
                s.fail("needs \"value\" or \"raw\"");
            }
            const Node wave = s.member("wave");
            if (wave.present()) {
                wave.object({"amplitude", "period"});
                sensor.amplitude = wave.member("amplitude").number();
                sensor.period = wave.member("period").number();
                if (sensor.period <= 0.0) {
                    wave.fail("period must be positive");
                }
            }
            board.sensors[kind].push_back(sensor);
        }
    }
}

void ParseGpio(const Node& n, Board& board) {
    for (size_t i = 0; i < n.arraySize(); ++i) {
        const Node p = n.element(i);
        p.object({"pin", "name", "input", "output", "direction", "level"});
        Pin pin;
        if (!p.member("pin").present()) {
            p.fail("missing \"pin\"");
        }
        pin.pin = p.member("pin").u32();
        if (pin.pin > 255 || board.pin(pin.pin) != nullptr) {
            p.fail("pin numbers run from 0 to 255, each once");
        }
        if (p.member("name").present()) {
            pin.name = p.member("name").text();
        }
        pin.input = p.member("input").present() ? p.member("input").boolean() : true;
        pin.output = p.member("output").present() ? p.member("output").boolean() : true;
        if (!pin.input && !pin.output) {
            p.fail("a pin must be an input, an output or both");
        }
        pin.direction = pin.input ? 1 : 0;
        if (p.member("direction").present()) {
            const std::string d = p.member("direction").text();
            if ((d != "in" && d != "out") || (d == "in" && !pin.input) ||
                (d == "out" && !pin.output)) {
                p.member("direction").fail("expected \"in\" or \"out\" within the pin's abilities");
            }
            pin.direction = d == "in" ? 1 : 0;
        }
        pin.level = p.member("level").present() ? p.member("level").u32() & 1 : 0;
        board.pins.push_back(pin);
    }
}

void ParseBacklight(const Node& n, Board& board) {
    for (size_t i = 0; i < n.arraySize(); ++i) {
        const Node p = n.element(i);
        p.object({"panel", "name", "brightness", "min", "max", "step", "frequency", "polarity",
                  "enable"});
        Panel panel;
        if (!p.member("panel").present()) {
            p.fail("missing \"panel\"");
        }
        panel.panel = p.member("panel").u32();
        if (panel.panel > 255 || board.panel(panel.panel) != nullptr) {
            p.fail("panel numbers run from 0 to 255, each once");
        }
        if (p.member("name").present()) {
            panel.name = p.member("name").text();
        }
        if (p.member("brightness").present()) {
            panel.brightness = p.member("brightness").u32();
        }
        if (p.member("min").present()) {
            panel.minimum = p.member("min").u32();
        }
        if (p.member("max").present()) {
            panel.maximum = p.member("max").u32();
        }
        if (p.member("step").present()) {
            panel.step = p.member("step").u32();
        }
        if (p.member("frequency").present()) {
            panel.frequency = p.member("frequency").u32();
        }
        if (p.member("polarity").present()) {
            panel.polarity = p.member("polarity").u32();
        }
        if (p.member("enable").present()) {
            panel.enable = p.member("enable").boolean();
        }
        board.panels.push_back(panel);
    }
}

void ParseAddresses(const Node& n, uint32_t firstId, Board& board) {
    n.object({"ip", "mask", "dns", "gateway"});
    const char* const keys[] = {"ip", "mask", "dns", "gateway"};
    for (uint32_t i = 0; i < 4; ++i) {
        if (n.member(keys[i]).present()) {
            board.network[firstId + i] = IpWords(n.member(keys[i]), false);
        }
    }
}

void ParseNetwork(const Node& n, Board& board) {
    n.object({"control", "status", "host_name", "mac", "modified", "current", "error_code",
              "server_type", "server_domain_name", "server", "words"});
    const struct {
        const char* key;
        uint32_t id;
    } numbers[] = {{"control", 0x12000}, {"status", 0x12001}, {"error_code", 0x1200C},
                   {"server_type", 0x1200D}};
    for (const auto& number : numbers) {
        if (n.member(number.key).present()) {
            board.network[number.id] = {n.member(number.key).u32()};
        }
    }
    if (n.member("host_name").present()) {
        board.network[0x12002] = TextWords(n.member("host_name"), 32);
    }
    if (n.member("mac").present()) {
        board.network[0x12003] = MacWords(n.member("mac"));
    }
    if (n.member("modified").present()) {
        ParseAddresses(n.member("modified"), 0x12004, board);
    }
    if (n.member("current").present()) {
        ParseAddresses(n.member("current"), 0x12008, board);
    }
    if (n.member("server_domain_name").present()) {
        board.network[0x1200E] = TextWords(n.member("server_domain_name"), 64);
    }
    if (n.member("server").present()) {
        board.network[0x1200F] = IpWords(n.member("server"), true);
    }
    // Raw word arrays by board value id, for boards no text form describes.
    const Node words = n.member("words");
    if (!words.present()) {
        return;
    }
    if (!json_is_object(words.json())) {
        words.fail("expected an object of word arrays by board value id");
    }
    const char* key;
    json_t* value;
    json_object_foreach(words.json(), key, value) {
        const JsonPtr idText(json_string(key), &json_decref);
        const uint32_t id = Node(idText.get(), words.path() + "." + key).u32();
        const Node list(value, words.path() + "." + key);
        // A caller's buffer holds the largest value, 64 words; a library
        // answering more would overrun it.
        if (list.arraySize() > 64) {
            list.fail("at most 64 words");
        }
        std::vector<uint32_t> out;
        for (size_t i = 0; i < list.arraySize(); ++i) {
            out.push_back(list.element(i).u32());
        }
        board.network[id] = out;
    }
}

// A fault's time in milliseconds: from 0 to an hour.
double Milliseconds(const Node& n) {
    const double ms = n.number();
    if (!(ms >= 0.0 && ms <= 3600000.0)) {
        n.fail("expected milliseconds from 0 to 3600000");
    }
    return ms;
}

Fault ParseFaultNode(const Node& f) {
    f.object({"function", "arg", "status", "value", "length", "unterminated", "latency_ms",
              "jitter_ms", "hang", "times", "after"});
    Fault fault;
    if (!f.member("function").present()) {
        f.fail("missing \"function\"");
    }
    fault.function = f.member("function").text();
    if (f.member("arg").present()) {
        fault.arg = f.member("arg").u32();
    }
    if (f.member("status").present()) {
        fault.status = f.member("status").u32();
    }
    if (f.member("value").present()) {
        fault.value = f.member("value").u32();
    }
    if (f.member("length").present()) {
        fault.length = f.member("length").u32();
    }
    if (f.member("unterminated").present()) {
        fault.unterminated = f.member("unterminated").boolean();
    }
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
        fault.times = f.member("times").u32();
    }
    if (f.member("after").present()) {
        fault.after = f.member("after").u32();
    }
    if (!fault.status && !fault.value && !fault.length && !fault.unterminated && !fault.delays()) {
        f.fail("a fault needs \"status\", \"value\", \"length\", \"unterminated\", \"latency_ms\", "
               "\"jitter_ms\" or \"hang\"");
    }
    return fault;
}

JsonPtr Load(const std::string& text) {
    json_error_t error;
    json_t* root = json_loadb(text.data(), text.size(), 0, &error);
    if (root == nullptr) {
        throw ProfileError("line " + std::to_string(error.line) + ", column " +
                           std::to_string(error.column) + ": " + error.text);
    }
    return JsonPtr(root, &json_decref);
}

}  // namespace

Profile ParseProfile(const std::string& text) {
    const JsonPtr root = Load(text);
    const Node n(root.get(), "");
    n.object({"description", "generation", "board", "sensors", "gpio", "backlight", "network",
              "faults"});
    Profile profile;
    if (n.member("board").present()) {
        ParseBoard(n.member("board"), profile.board);
    }
    if (n.member("sensors").present()) {
        ParseSensors(n.member("sensors"), profile.board);
    }
    if (n.member("gpio").present()) {
        ParseGpio(n.member("gpio"), profile.board);
    }
    if (n.member("backlight").present()) {
        ParseBacklight(n.member("backlight"), profile.board);
    }
    if (n.member("network").present()) {
        ParseNetwork(n.member("network"), profile.board);
    }
    const Node faults = n.member("faults");
    if (faults.present()) {
        for (size_t i = 0; i < faults.arraySize(); ++i) {
            profile.faults.push_back(ParseFaultNode(faults.element(i)));
        }
    }
    return profile;
}

Fault ParseFault(const std::string& text) {
    const JsonPtr root = Load(text);
    return ParseFaultNode(Node(root.get(), "fault"));
}

}  // namespace vorasim
