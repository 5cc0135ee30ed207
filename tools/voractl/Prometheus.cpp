#include "Prometheus.h"

#include <cstdio>
#include <map>
#include <set>

#include "Format.h"

namespace voractl {

namespace {

struct Family {
    std::string name;
    std::string help;
    std::string type = "gauge";
    std::vector<std::string> samples;
};

// Where a numeric reading goes: its metric and how its value is scaled.
struct Metric {
    std::string name;
    std::string help;
    std::string type = "gauge";
    double scale = 1.0;
    // The families of the element's published maximum and minimum, for
    // sensors (empty: none), so that an alert can compare a reading with them.
    std::string maximum = "";
    std::string minimum = "";
};

std::string Escaped(const std::string& text) {
    std::string escaped;
    for (char c : text) {
        if (c == '\\' || c == '"') {
            escaped += '\\';
            escaped += c;
        } else if (c == '\n') {
            escaped += "\\n";
        } else {
            escaped += c;
        }
    }
    return escaped;
}

std::string Number(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%.10g", value);
    return text;
}

// The SI suffix of a base unit, as the naming guide writes it.
std::string UnitSuffix(const std::string& unit) {
    static const std::map<std::string, std::string> kSuffixes = {
        {"Cel", "_celsius"}, {"V", "_volts"}, {"A", "_amperes"}, {"RPM", "_rpm"},
        {"Hz", "_hertz"}};
    const auto found = kSuffixes.find(unit);
    return found == kSuffixes.end() ? "" : found->second;
}

// Drops a first word the metric's prefix already says: the network block's
// "Network status" is voradrv_oob_network_status.
std::string WithoutRepeat(const std::string& prefix, std::string name) {
    const std::string last = prefix.substr(prefix.rfind('_') + 1);
    if (name.rfind(last + "_", 0) == 0) {
        name.erase(0, last.size() + 1);
    }
    return name;
}

Metric HardwareMonitorMetric(const Item& item) {
    static const std::map<std::string, Metric> kSensors = {
        {"Cel", {"voradrv_temperature_celsius", "Temperature sensor reading, in degrees Celsius.",
                 "gauge", 1.0, "voradrv_temperature_max_celsius", "voradrv_temperature_min_celsius"}},
        {"V", {"voradrv_voltage_volts", "Voltage sensor reading, in volts.", "gauge", 1.0,
               "voradrv_voltage_max_volts", "voradrv_voltage_min_volts"}},
        {"RPM", {"voradrv_fan_rpm", "Fan speed, in revolutions per minute.", "gauge", 1.0,
                 "voradrv_fan_max_rpm", "voradrv_fan_min_rpm"}},
        {"A", {"voradrv_current_amperes", "Current sensor reading, in amperes.", "gauge", 1.0,
               "voradrv_current_max_amperes", "voradrv_current_min_amperes"}}};
    const auto found = kSensors.find(item.unit);
    if (found != kSensors.end()) {
        return found->second;
    }
    return {"voradrv_" + LabelName(item.group) + UnitSuffix(item.unit),
            "Hardware monitor: " + item.group + (item.unit == "ON/OFF" ? ", 1 on, 0 off." : ".")};
}

Metric NumericMetric(const Item& item) {
    if (item.block == "Hardware Monitor") {
        return HardwareMonitorMetric(item);
    }
    const std::string name = LabelName(item.name);
    if (item.block == "Platform Information") {
        if (item.unit == "times") {
            return {"voradrv_boots_total", "Times the board has started (" + item.name + ").",
                    "counter"};
        }
        if (item.unit == "hour") {
            return {"voradrv_running_seconds_total",
                    "Time the board has run, in seconds (" + item.name + ").", "counter", 3600.0};
        }
        return {"voradrv_platform_" + name, "Platform information: " + item.name + "."};
    }
    if (item.block == "GPIO") {
        if (item.unit == "H/L") {
            return {"voradrv_gpio_level", "GPIO pin level: 1 high, 0 low."};
        }
        return {"voradrv_gpio_" + name + UnitSuffix(item.unit), "GPIO pin: " + item.name + "."};
    }
    if (item.block == "Backlight") {
        if (item.unit == "ON/OFF" && item.name == "Backlight") {
            return {"voradrv_backlight_enabled", "Backlight: 1 on, 0 off."};
        }
        return {"voradrv_backlight_" + name + UnitSuffix(item.unit),
                "Backlight " + item.name + (item.unit == "Hz" ? ", in hertz." : ".")};
    }
    const std::string prefix = "voradrv_" + LabelName(item.block);
    return {prefix + "_" + WithoutRepeat(prefix, name) + UnitSuffix(item.unit),
            item.block + ": " + item.name + "."};
}

// The label that tells the groups of a block apart.
std::string GroupLabel(const Item& item) {
    if (item.block == "GPIO") {
        return "pin";
    }
    if (item.block == "Backlight") {
        return "panel";
    }
    return "group";
}

class Exposition {
public:
    void add(const std::string& name, const std::string& help, const std::string& type,
             std::string labels, const std::string& value, uint32_t id) {
        auto found = index_.find(name);
        if (found == index_.end()) {
            found = index_.emplace(name, families_.size()).first;
            families_.push_back(Family{name, help, type, {}});
        }
        // Two items with the same labels (two sensors of one name, say)
        // stay apart by their ids.
        if (!series_.insert(name + "{" + labels + "}").second) {
            labels += std::string(labels.empty() ? "" : ",") + "id=\"" + IdText(id) + "\"";
        }
        families_[found->second].samples.push_back(
            name + (labels.empty() ? "" : "{" + labels + "}") + " " + value);
    }

    std::string text() const {
        std::string text;
        for (const Family& family : families_) {
            text += "# HELP " + family.name + " " + family.help + "\n";
            text += "# TYPE " + family.name + " " + family.type + "\n";
            for (const std::string& sample : family.samples) {
                text += sample + "\n";
            }
        }
        return text;
    }

private:
    std::vector<Family> families_;
    std::map<std::string, size_t> index_;
    std::set<std::string> series_;
};

// The labels of one info metric, each name once.
class InfoLabels {
public:
    void add(const std::string& name, const std::string& value) {
        std::string label = name;
        for (int n = 2; !names_.insert(label).second; ++n) {
            label = name + "_" + std::to_string(n);
        }
        text_ += (text_.empty() ? "" : ",") + label + "=\"" + Escaped(value) + "\"";
    }
    const std::string& text() const { return text_; }

private:
    std::set<std::string> names_;
    std::string text_;
};

std::string Label(const std::string& name, const std::string& value) {
    return name + "=\"" + Escaped(value) + "\"";
}

}  // namespace

std::string LabelName(const std::string& name) {
    std::string label;
    for (unsigned char c : name) {
        const bool keep = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        if (keep) {
            label += static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
        } else if (!label.empty() && label.back() != '_') {
            label += '_';
        }
    }
    while (!label.empty() && label.back() == '_') {
        label.pop_back();
    }
    if (label.empty() || (label[0] >= '0' && label[0] <= '9')) {
        label = "n" + label;
    }
    return label;
}

std::string PrometheusText(const std::vector<Reading>& readings) {
    Exposition exposition;
    InfoLabels board;
    std::vector<std::pair<const Item*, InfoLabels>> groupInfo;  // per block and group, in order
    int unreadable = 0;
    std::vector<std::pair<std::string, int>> published;  // items per block, in order
    for (const Reading& reading : readings) {
        const Item& item = *reading.item;
        if (published.empty() || published.back().first != item.block) {
            published.emplace_back(item.block, 0);
        }
        ++published.back().second;
        if (!reading.value) {
            ++unreadable;
            continue;
        }
        const json_t* value = reading.value.get();
        if (json_is_string(value)) {
            if (item.block == "Platform Information") {
                board.add(LabelName(item.name), json_string_value(value));
                continue;
            }
            if (groupInfo.empty() || groupInfo.back().first->block != item.block ||
                groupInfo.back().first->group != item.group) {
                groupInfo.emplace_back(&item, InfoLabels{});
                groupInfo.back().second.add(GroupLabel(item), item.group);
            }
            const std::string prefix = "voradrv_" + LabelName(item.block);
            groupInfo.back().second.add(WithoutRepeat(prefix, LabelName(item.name)),
                                        json_string_value(value));
            continue;
        }
        if (!json_is_number(value)) {
            continue;
        }
        const double number = json_number_value(value);
        if (item.block == "GPIO" && item.unit == "I/O") {
            // The direction as a state set: one sample per state, 1 for the pin's.
            for (const auto& [state, one] : {std::pair{"in", 1.0}, std::pair{"out", 0.0}}) {
                exposition.add("voradrv_gpio_direction",
                               "GPIO pin direction: 1 for the pin's direction, 0 for the other.",
                               "gauge", Label("pin", item.group) + "," + Label("direction", state),
                               number == one ? "1" : "0", item.id);
            }
            continue;
        }
        const Metric metric = NumericMetric(item);
        const std::string labels = item.block == "Hardware Monitor" ? Label("sensor", item.name)
                                   : item.group.empty()             ? ""
                                                        : Label(GroupLabel(item), item.group);
        exposition.add(metric.name, metric.help, metric.type, labels,
                       Number(number * metric.scale), item.id);
        if (!metric.maximum.empty() && item.maximum) {
            exposition.add(metric.maximum, "The sensor's published maximum.", "gauge", labels,
                           Number(*item.maximum), item.id);
        }
        if (!metric.minimum.empty() && item.minimum) {
            exposition.add(metric.minimum, "The sensor's published minimum.", "gauge", labels,
                           Number(*item.minimum), item.id);
        }
    }
    if (!board.text().empty()) {
        exposition.add("voradrv_board_info", "Board strings of the platform information.",
                       "gauge", board.text(), "1", 0);
    }
    for (const auto& [first, labels] : groupInfo) {
        const std::string name = "voradrv_" + LabelName(first->block) + "_info";
        exposition.add(name, first->block + " texts, per " + GroupLabel(*first) + ".", "gauge",
                       labels.text(), "1", first->id);
    }
    exposition.add("voradrv_unreadable_items", "Items of the board that could not be read.",
                   "gauge", "", std::to_string(unreadable), 0);
    // The module publishes only the items that answered when it started, so
    // an item that failed then is missing for its whole life: a drop against
    // the board's history is how it shows.
    for (const auto& [block, count] : published) {
        exposition.add("voradrv_published_items",
                       "Items the module published for a block when it was initialised.", "gauge",
                       Label("block", block), std::to_string(count), 0);
    }
    exposition.add("voradrv_build_info", "The version of voractl that wrote these metrics; value 1.",
                   "gauge", Label("version", VORACTL_VERSION), "1", 0);
    return exposition.text();
}

}  // namespace voractl
