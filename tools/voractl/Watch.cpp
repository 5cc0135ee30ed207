#include "Watch.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <signal.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <csignal>
#include <ctime>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>

#include "Format.h"
#include "Pace.h"
#include "Printable.h"
#include "Reading.h"
#include "Table.h"
#include "ToolError.h"
#include "json/JsonPtr.h"

using vorajson::JsonPtr;
using vorajson::Own;

namespace voractl {

namespace {

// A terminal that can move its cursor: not one whose TERM is "dumb".
bool Terminal(std::FILE* out) {
    const char* term = std::getenv("TERM");
    return isatty(fileno(out)) == 1 && (term == nullptr || std::strcmp(term, "dumb") != 0);
}

// "2025-11-21T14:02:03.250+01:00", local time.
std::string Timestamp() {
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    struct tm local {};
    localtime_r(&now.tv_sec, &local);
    char date[32];
    char zone[8];
    std::strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S", &local);
    std::strftime(zone, sizeof zone, "%z", &local);  // "+0100"
    char text[64];
    std::snprintf(text, sizeof text, "%s.%03ld%.3s:%s", date, now.tv_nsec / 1000000, zone,
                  zone + 3);
    return text;
}

// How each item is named on a sample line: "Group/Name" where that is
// unique among the watched items, else its whole path.
std::vector<std::string> Labels(const std::vector<Item>& items) {
    auto shortName = [](const Item& item) {
        return item.group.empty() ? item.path() : item.group + "/" + item.name;
    };
    std::map<std::string, int> uses;
    for (const Item& item : items) {
        ++uses[shortName(item)];
    }
    std::vector<std::string> labels;
    for (const Item& item : items) {
        labels.push_back(Printable(uses[shortName(item)] == 1 ? shortName(item) : item.path()));
    }
    return labels;
}

bool Differs(const Reading& now, const Reading* before) {
    if (before == nullptr) {
        return false;
    }
    if (!now.value || !before->value) {
        return !now.value != !before->value;
    }
    return !json_equal(now.value.get(), before->value.get());
}

// "rising" or "falling" for a level that went high or low, else "changed".
const char* Edge(const Reading& now, const Reading& before) {
    if (now.item->is(Quantity::Level) && now.value && before.value && json_is_integer(now.value.get())) {
        const json_int_t level = json_integer_value(now.value.get());
        return level == 1 ? "rising" : level == 0 ? "falling" : "changed";
    }
    return "changed";
}

// Takes the samples and shows them.
class Watcher {
public:
    Watcher(Context& context, std::vector<Item> items)
        : context_(context), items_(std::move(items)), labels_(Labels(items_)),
          interval_(context.options.interval),
          redraw_(!context.options.json && !context.options.changes && Terminal(context.out)) {}

    // Draws one sample; false when the output is gone.
    bool sample() {
        std::vector<Reading> readings = context_.session.readAll(items_);
        for (const Reading& reading : readings) {
            // Each unreadable item is named once, the first time.
            if (!reading.value && unreadable_.insert(reading.item->path()).second) {
                std::fprintf(stderr, "voractl: cannot read %s: %s\n", Printable(reading.item->path()).c_str(),
                             StatusText(reading.status).c_str());
            }
        }
        std::vector<bool> changed;
        for (size_t i = 0; i < readings.size(); ++i) {
            changed.push_back(Differs(readings[i], previous_.empty() ? nullptr : &previous_[i]));
        }
        if (context_.options.changes) {
            printChanges(readings, changed);
        } else if (context_.options.json) {
            printJson(readings, changed);
        } else if (redraw_) {
            printScreen(readings, changed);
        } else {
            printLine(readings, changed);
        }
        previous_ = std::move(readings);
        return flush();
    }

    // 1 when an item could not be read in a sample, else 0.
    int exitStatus() const { return unreadable_.empty() ? 0 : 1; }

    // Leaves the terminal as it was found.
    void finish() {
        if (redraw_) {
            std::fputs("\033[?25h", context_.out);
            flush();
        }
    }

private:
    void printJson(const std::vector<Reading>& readings, const std::vector<bool>& changed) {
        JsonPtr items = Own(json_array());
        for (size_t i = 0; i < readings.size(); ++i) {
            json_t* record = ReadingJson(readings[i]);
            json_object_set_new(record, "changed", json_boolean(changed[i]));
            json_array_append_new(items.get(), record);  // the array takes the record
        }
        JsonPtr sample = Own(json_pack("{s:s, s:O}", "time", Timestamp().c_str(), "items",
                                       items.get()));
        json_dumpf(sample.get(), context_.out, JSON_COMPACT | JSON_REAL_PRECISION(15));
        std::fputc('\n', context_.out);
    }

    // What changed since the sample before, a line (or JSON record) each, as
    // gpiomon reports a line's edges:
    //   2026-11-21T14:16:55.832+00:00  rising   DI0/Level=high
    void printChanges(const std::vector<Reading>& readings, const std::vector<bool>& changed) {
        const std::string time = Timestamp();
        for (size_t i = 0; i < readings.size(); ++i) {
            if (!changed[i]) {
                continue;
            }
            const char* edge = Edge(readings[i], previous_[i]);
            if (context_.options.json) {
                JsonPtr record = Own(ReadingJson(readings[i]));
                json_object_set_new(record.get(), "time", json_string(time.c_str()));
                json_object_set_new(record.get(), "edge", json_string(edge));
                json_dumpf(record.get(), context_.out, JSON_COMPACT | JSON_REAL_PRECISION(15));
                std::fputc('\n', context_.out);
            } else {
                std::fprintf(context_.out, "%s  %-7s  %s=%s%s\n", time.c_str(), edge, labels_[i].c_str(),
                             ShownValue(readings[i]).c_str(), readings[i].alarm ? " ALARM" : "");
            }
        }
    }

    void printLine(const std::vector<Reading>& readings, const std::vector<bool>& changed) {
        std::string line = Timestamp();
        for (size_t i = 0; i < readings.size(); ++i) {
            line += "  " + labels_[i] + "=" + ShownValue(readings[i]) + (changed[i] ? "*" : "") +
                    (readings[i].alarm ? " ALARM" : "");
        }
        std::fprintf(context_.out, "%s\n", line.c_str());
    }

    void printScreen(const std::vector<Reading>& readings, const std::vector<bool>& changed) {
        std::vector<TableRow> rows;
        for (size_t i = 0; i < readings.size(); ++i) {
            rows.push_back(TableRow{readings[i].item, ShownValue(readings[i]),
                                    !readings[i].value, changed[i], readings[i].alarm});
        }
        char every[64];
        std::snprintf(every, sizeof every, "Every %gs", interval_);
        // Home, draw each line over the old one, clear what is left below.
        std::string screen = first_ ? "\033[?25l\033[H\033[2J" : "\033[H";
        first_ = false;
        screen += context_.style.heading(every) + "  " + Timestamp() +
                  "  (Ctrl-C ends)\033[K\n\033[K\n";
        const TableColumns columns{false, true, false};
        std::vector<std::string> lines = ItemTable(rows, columns, context_.style);
        // A table taller than the terminal would scroll, and the next
        // sample would be drawn over the wrong lines: it is cut to fit.
        winsize size{};
        const size_t room = ioctl(fileno(context_.out), TIOCGWINSZ, &size) == 0 && size.ws_row > 3
                                ? size.ws_row - 3u
                                : lines.size();
        if (lines.size() > room) {
            const size_t more = lines.size() - room + 1;
            lines.resize(room - 1);
            lines.push_back(context_.style.dim("... " + std::to_string(more) +
                                               " more lines (a taller terminal, or fewer items)"));
        }
        for (const std::string& line : lines) {
            screen += line + "\033[K\n";
        }
        screen += "\033[J";
        std::fputs(screen.c_str(), context_.out);
    }

    bool flush() {
        if (std::fflush(context_.out) == 0 && !std::ferror(context_.out)) {
            return true;
        }
        if (errno == EPIPE) {
            return false;
        }
        throw ToolError(std::string("cannot write the output: ") + std::strerror(errno));
    }

    Context& context_;
    const std::vector<Item> items_;
    const std::vector<std::string> labels_;
    const double interval_;
    const bool redraw_;
    bool first_ = true;
    std::vector<Reading> previous_;
    std::set<std::string> unreadable_;
};


// The items the selectors name; without any, the hardware monitor's.
std::vector<Item> Watched(Context& context) {
    const std::vector<std::string>& selectors = context.options.arguments;
    if (!selectors.empty()) {
        return SelectAll(context.session.items(), selectors);
    }
    std::vector<Item> items;
    for (const Item& item : context.session.items()) {
        if (item.in(Block::HardwareMonitor)) {
            items.push_back(item);
        }
    }
    if (items.empty()) {
        throw ToolError("the board has no hardware-monitor sensors; name the items to watch");
    }
    return items;
}

}  // namespace

int Watch(Context& context) {
    const double interval = context.options.interval;
    const long count = context.options.count;
    StopSignals signals;
    Watcher sampler(context, Watched(context));
    Pace pace(interval);
    for (long n = 0; (count == 0 || n < count) && !StopSignals::stopped(); ++n) {
        if ((n > 0 && !pace.wait()) || !sampler.sample()) {
            break;
        }
    }
    sampler.finish();
    return sampler.exitStatus();
}

}  // namespace voractl
