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

// "_celsius": the unit's base unit as a metric's suffix, "" for none.
std::string Suffix(const UnitKind& kind) {
    return *kind.exported.metric != '\0' ? std::string("_") + kind.exported.metric : "";
}

// ", in degrees Celsius": the base unit for a help text, "" for none.
std::string InWords(const UnitKind& kind) {
    return *kind.exported.words != '\0' ? std::string(", in ") + kind.exported.words : "";
}

// "1 on, 0 off": what the samples of a two-state item say.
std::string StateNumbers(const TwoStateKind& states) {
    return std::string("1 ") + states.shown(1) + ", 0 " + states.shown(0);
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

// A sensor as node_exporter names its kind's families, with its published
// limits beside it; any other item by its group.
Metric HardwareMonitorMetric(const Item& item) {
    const UnitKind& kind = item.kind();
    if (kind.sensor.family != nullptr) {
        const std::string family = std::string("voradrv_") + kind.sensor.family;
        return {family + Suffix(kind), kind.sensor.help + InWords(kind) + ".", "gauge",
                kind.exported.scale, family + "_max" + Suffix(kind), family + "_min" + Suffix(kind)};
    }
    const TwoStateKind* states = kind.twoState();
    return {"voradrv_" + LabelName(item.group) + Suffix(kind),
            "Hardware monitor: " + item.group + (states != nullptr ? ", " + StateNumbers(*states) : "") +
                ".",
            "gauge", kind.exported.scale};
}

// The board's counters as counters; any other value by its name.
Metric PlatformMetric(const Item& item) {
    const UnitKind& kind = item.kind();
    if (item.is(Quantity::Count)) {
        return {"voradrv_boots_total", "Times the board has started (" + item.name + ").", "counter"};
    }
    if (item.is(Quantity::Duration)) {
        return {"voradrv_running" + Suffix(kind) + "_total",
                std::string("Time the board has run, in ") + kind.exported.words + " (" + item.name + ").",
                "counter", kind.exported.scale};
    }
    return {"voradrv_platform_" + LabelName(item.name) + Suffix(kind),
            "Platform information: " + item.name + ".", "gauge", kind.exported.scale};
}

Metric GpioMetric(const Item& item) {
    const UnitKind& kind = item.kind();
    if (item.is(Quantity::Level)) {
        return {"voradrv_gpio_level", "GPIO pin level: " + StateNumbers(kind.states) + "."};
    }
    return {"voradrv_gpio_" + LabelName(item.name) + Suffix(kind), "GPIO pin: " + item.name + ".",
            "gauge", kind.exported.scale};
}

Metric BacklightMetric(const Item& item) {
    const UnitKind& kind = item.kind();
    if (item.panelSwitch()) {
        return {"voradrv_backlight_enabled", "Backlight: " + StateNumbers(kind.states) + "."};
    }
    return {"voradrv_backlight_" + LabelName(item.name) + Suffix(kind),
            "Backlight " + item.name + InWords(kind) + ".", "gauge", kind.exported.scale};
}

// An item of any other block, by its block and name.
Metric BlockMetric(const Item& item) {
    const UnitKind& kind = item.kind();
    const std::string prefix = "voradrv_" + LabelName(item.block);
    return {prefix + "_" + WithoutRepeat(prefix, LabelName(item.name)) + Suffix(kind),
            item.block + ": " + item.name + ".", "gauge", kind.exported.scale};
}

// Where a numeric reading goes, by its block: each names its items its own way.
Metric NumericMetric(const Item& item) {
    static const std::pair<Block, Metric (*)(const Item&)> kBlocks[] = {
        {Block::HardwareMonitor, HardwareMonitorMetric},
        {Block::Platform, PlatformMetric},
        {Block::Gpio, GpioMetric},
        {Block::Backlight, BacklightMetric}};
    for (const auto& [block, metric] : kBlocks) {
        if (item.in(block)) {
            return metric(item);
        }
    }
    return BlockMetric(item);
}

// The label that tells the groups of a block apart.
std::string GroupLabel(const Item& item) {
    return item.in(Block::Gpio) ? "pin" : item.in(Block::Backlight) ? "panel" : "group";
}

class Families {
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

// The labels of a numeric item's samples.
std::string SampleLabels(const Item& item) {
    if (item.in(Block::HardwareMonitor)) {
        return Label("sensor", item.name);
    }
    return item.group.empty() ? "" : Label(GroupLabel(item), item.group);
}

// The metrics of one reading of the board, added reading by reading.
class Exposition {
public:
    void add(const Reading& reading) {
        const Item& item = *reading.item;
        if (published_.empty() || published_.back().first != item.block) {
            published_.emplace_back(item.block, 0);
        }
        ++published_.back().second;
        const json_t* value = reading.value.get();
        if (value == nullptr) {
            ++unreadable_;
        } else if (json_is_string(value)) {
            addText(item, json_string_value(value));
        } else if (json_is_number(value) && item.in(Block::Gpio) && item.is(Quantity::Direction)) {
            addDirection(item, json_number_value(value));
        } else if (json_is_number(value)) {
            addNumber(item, json_number_value(value));
        }
    }

    // With the board's texts, the counts of what was read and published,
    // and voractl's version after the readings.
    std::string text() {
        if (!board_.text().empty()) {
            families_.add("voradrv_board_info", "Board strings of the platform information.", "gauge",
                          board_.text(), "1", 0);
        }
        for (const auto& [first, labels] : groupInfo_) {
            families_.add("voradrv_" + LabelName(first->block) + "_info",
                          first->block + " texts, per " + GroupLabel(*first) + ".", "gauge",
                          labels.text(), "1", first->id);
        }
        families_.add("voradrv_unreadable_items", "Items of the board that could not be read.",
                      "gauge", "", std::to_string(unreadable_), 0);
        // The module publishes only the items that answered when it started,
        // so an item that failed then is missing for its whole life: a drop
        // against the board's history is how it shows.
        for (const auto& [block, count] : published_) {
            families_.add("voradrv_published_items",
                          "Items the module published for a block when it was initialised.",
                          "gauge", Label("block", block), std::to_string(count), 0);
        }
        families_.add("voradrv_build_info",
                      "The version of voractl that wrote these metrics; value 1.", "gauge",
                      Label("version", VORACTL_VERSION), "1", 0);
        return families_.text();
    }

private:
    // A text becomes a label of the board's info metric, or of its block's
    // per group.
    void addText(const Item& item, const std::string& text) {
        if (item.in(Block::Platform)) {
            board_.add(LabelName(item.name), text);
            return;
        }
        if (groupInfo_.empty() || groupInfo_.back().first->block != item.block ||
            groupInfo_.back().first->group != item.group) {
            groupInfo_.emplace_back(&item, InfoLabels{});
            groupInfo_.back().second.add(GroupLabel(item), item.group);
        }
        const std::string prefix = "voradrv_" + LabelName(item.block);
        groupInfo_.back().second.add(WithoutRepeat(prefix, LabelName(item.name)), text);
    }

    // A pin's direction as a state set: one sample per state, 1 for the pin's.
    void addDirection(const Item& item, double number) {
        for (const int state : {1, 0}) {
            families_.add("voradrv_gpio_direction",
                          "GPIO pin direction: 1 for the pin's direction, 0 for the other.", "gauge",
                          Label("pin", item.group) + "," + Label("direction", item.kind().states.shown(state)),
                          number == state ? "1" : "0", item.id);
        }
    }

    void addNumber(const Item& item, double number) {
        const Metric metric = NumericMetric(item);
        const std::string labels = SampleLabels(item);
        families_.add(metric.name, metric.help, metric.type, labels, Number(number * metric.scale),
                      item.id);
        if (!metric.maximum.empty() && item.maximum) {
            families_.add(metric.maximum, "The sensor's published maximum.", "gauge", labels,
                          Number(*item.maximum), item.id);
        }
        if (!metric.minimum.empty() && item.minimum) {
            families_.add(metric.minimum, "The sensor's published minimum.", "gauge", labels,
                          Number(*item.minimum), item.id);
        }
    }

    Families families_;
    InfoLabels board_;
    std::vector<std::pair<const Item*, InfoLabels>> groupInfo_;  // per block and group, in order
    int unreadable_ = 0;
    std::vector<std::pair<std::string, int>> published_;  // items per block, in order
};

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
    for (const Reading& reading : readings) {
        exposition.add(reading);
    }
    return exposition.text();
}

}  // namespace voractl
