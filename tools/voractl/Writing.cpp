#include "Writing.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <algorithm>
#include <optional>

#include "Format.h"
#include "Printable.h"
#include "Reading.h"
#include "TextChecks.h"
#include "ToolError.h"
#include "json/JsonPtr.h"

using vorajson::JsonPtr;
using vorajson::Own;

namespace voractl {

namespace {

// One NAME=VALUE of the command line, as it is to be written.
struct Planned {
    Item item;
    std::string text;                         // the value as given
    JsonPtr value;                            // the true value to write
    std::string refusal;                      // why it may not be written
};

bool ParseInteger(const std::string& text, long long& value) {
    char* end = nullptr;
    errno = 0;
    value = std::strtoll(text.c_str(), &end, 0);
    return !text.empty() && *end == '\0' && errno == 0;
}

std::string Number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.10g", value);
    return text;
}

// A refusal: no value, and why.
JsonPtr Refuse(std::string& refusal, const std::string& why) {
    refusal = why;
    return Own(nullptr);
}

JsonPtr ParseReal(const std::string& text, std::string& refusal) {
    char* end = nullptr;
    errno = 0;
    const double value = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0' || errno != 0 || !std::isfinite(value)) {
        return Refuse(refusal, "\"" + text + "\" is not a number");
    }
    return Own(json_real(value));
}

// A two-state item takes the words of its own kind, never another's; with
// --force, any integer too.
JsonPtr ParseState(const TwoStateKind& kind, const std::string& text, bool force,
                   std::string& refusal) {
    long long number = 0;
    if (const std::optional<int> state = kind.state(text)) {
        number = *state;
    } else if (!force || !ParseInteger(text, number)) {
        return Refuse(refusal, "\"" + text + "\" is not " + kind.name + " (" + kind.words() + ")" +
                                   (force ? " nor an integer" : ""));
    }
    return Own(json_integer(number));
}

// A ranged number as brightnessctl takes brightness: a value or a share of
// the range ("50%"), or a step from the present value before or after it
// ("+10", "-10%", "10%-", "5+"); one sign, one "%" and a whole number.
struct Amount {
    long long number = 0;
    bool percent = false;
    int step = 0;  // +1 or -1 for a step, 0 for a value
};

std::optional<Amount> ParseAmount(std::string text) {
    Amount amount;
    if (!text.empty() && (text.back() == '+' || text.back() == '-')) {
        amount.step = text.back() == '+' ? 1 : -1;
        text.pop_back();
    } else if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
        amount.step = text.front() == '+' ? 1 : -1;
        text.erase(0, 1);
    }
    if (!text.empty() && text.back() == '%') {
        amount.percent = true;
        text.pop_back();
    }
    // Decimal, "010" too (never octal), or hexadecimal after "0x".
    const bool hex = text.size() > 2 && (text.compare(0, 2, "0x") == 0 || text.compare(0, 2, "0X") == 0);
    const std::string digits = hex ? text.substr(2) : text;
    char* end = nullptr;
    errno = 0;
    amount.number = std::strtoll(digits.c_str(), &end, hex ? 16 : 10);
    if (digits.empty() || digits.find_first_not_of(hex ? "0123456789abcdefABCDEF" : "0123456789") !=
                              std::string::npos || errno != 0) {
        return std::nullopt;
    }
    return amount;
}

// The value `amount` stands for on ranged `item`: a step is taken from the
// present value and stops at the range's ends, as brightnessctl's do.
JsonPtr RangedValue(Session& session, const Item& item, const Amount& amount, std::string& refusal) {
    const double span = *item.maximum - *item.minimum;
    double value = static_cast<double>(amount.number);
    if (amount.percent) {
        value = std::round(span * value / 100.0) + (amount.step == 0 ? *item.minimum : 0.0);
    }
    if (amount.step != 0) {
        const Reading present = session.read(item);
        if (!present.value) {
            return Refuse(refusal, "its present value cannot be read (" + StatusText(present.status) + ")");
        }
        value = json_number_value(present.value.get()) + amount.step * value;
        value = std::min(std::max(value, *item.minimum), *item.maximum);
    }
    // Beyond any item's 32 bits, and beyond what an integer holds exactly.
    if (!(std::fabs(value) < 1e15)) {
        return Refuse(refusal, Number(value) + " is outside its range " + Number(*item.minimum) + ".." +
                                   Number(*item.maximum));
    }
    return Own(json_integer(static_cast<json_int_t>(value)));
}

// An integer; for a ranged one also a share of its range or a step.
JsonPtr ParseNumber(Session& session, const Item& item, const std::string& text, bool force,
                    std::string& refusal) {
    if (item.ranged()) {
        const std::optional<Amount> amount = ParseAmount(text);
        if (!amount) {
            return Refuse(refusal, "\"" + text + "\" is not an integer, a share of its range (50%) "
                                   "or a step (+10, 10%-)");
        }
        // A range the document publishes is checked with the rest (Forbidden).
        return RangedValue(session, item, *amount, refusal);
    }
    long long number = 0;
    if (!ParseInteger(text, number)) {
        return Refuse(refusal, "\"" + text + "\" is not an integer");
    }
    if (!force && (number < 0 || number > 4294967295LL)) {
        return Refuse(refusal, std::to_string(number) + " does not fit the item's 32-bit range");
    }
    return Own(json_integer(static_cast<json_int_t>(number)));
}

// The true value `text` stands for on `item`, its present value (read
// when the text is relative) at hand; a refusal when it is not one.
JsonPtr Parse(Session& session, const Item& item, const std::string& text, bool force,
              std::string& refusal) {
    if (item.type == JSON_STRING) {
        const std::string refused = force ? "" : TextRefusal(item, text);
        return refused.empty() ? Own(json_string(text.c_str())) : Refuse(refusal, refused);
    }
    if (item.type == JSON_REAL) {
        return ParseReal(text, refusal);
    }
    if (const TwoStateKind* kind = item.twoStateKind()) {
        return ParseState(*kind, text, force, refusal);
    }
    return ParseNumber(session, item, text, force, refusal);
}

// What the document forbids of writing `value` to `item`, or "".
std::string Forbidden(const Item& item, const json_t* value) {
    if (item.access == "r") {
        return "it is read-only";
    }
    if (json_is_number(value) && item.outside(json_number_value(value))) {
        return Number(json_number_value(value)) + " is outside its range " +
               Number(*item.minimum) + ".." + Number(*item.maximum);
    }
    return "";
}

// An address text's numbers ("192.168.001.010" and "192.168.1.10" alike);
// a MAC address's in any case.
std::string Canonical(const Item& item, const std::string& text) {
    const int base = item.is(Quantity::HexText) ? 16 : item.is(Quantity::DecimalText) ? 10 : 0;
    if (base == 0) {
        return text;
    }
    std::string canonical;
    std::string part;
    for (size_t i = 0; i <= text.size(); ++i) {
        if (i == text.size() || text[i] == '.' || text[i] == ':') {
            canonical += std::to_string(std::strtoul(part.c_str(), nullptr, base)) + ".";
            part.clear();
        } else {
            part += text[i];
        }
    }
    return canonical;
}

bool Same(const Item& item, const json_t* wrote, const json_t* reads) {
    if (json_is_string(wrote) && json_is_string(reads)) {
        return Canonical(item, json_string_value(wrote)) == Canonical(item, json_string_value(reads));
    }
    if (json_is_number(wrote) && json_is_number(reads)) {
        const double a = json_number_value(wrote);
        const double b = json_number_value(reads);
        return a == b || std::fabs(a - b) <= 1e-9 * std::fabs(a);
    }
    return json_equal(wrote, reads);
}

// NAME=VALUE pairs, or the two words ITEM VALUE.
std::vector<std::pair<std::string, std::string>> Assignments(const std::vector<std::string>& args) {
    std::vector<std::pair<std::string, std::string>> pairs;
    bool allPairs = true;
    for (const std::string& arg : args) {
        allPairs = allPairs && arg.find('=') != std::string::npos;
    }
    if (allPairs) {
        for (const std::string& arg : args) {
            const size_t equals = arg.rfind('=');
            pairs.emplace_back(arg.substr(0, equals), arg.substr(equals + 1));
        }
    } else if (args.size() == 2) {
        pairs.emplace_back(args[0], args[1]);
    } else {
        throw ToolError("set takes NAME=VALUE... or ITEM VALUE", true);
    }
    return pairs;
}

json_t* Record(const Reading& reading, const Planned& planned, const char* outcome,
               const std::string& reason) {
    json_t* record = ReadingJson(reading);
    json_object_set_new(record, "written", planned.value ? json_deep_copy(planned.value.get())
                                                         : json_string(planned.text.c_str()));
    json_object_set_new(record, "outcome", json_string(outcome));
    if (!reason.empty()) {
        json_object_set_new(record, "reason", json_string(reason.c_str()));
    }
    return record;
}

// NAME=VALUE as it is to be written: the item, the true value, and, when it
// may not be written, why (also said on standard error).
Planned Plan(Session& session, const Options& options, const std::string& selector,
             const std::string& text) {
    Planned planned;
    planned.item = SelectValue(session.items(), selector, false, options.type.has_value()).items.front();
    planned.text = text;
    if (options.type) {
        if (*options.type != planned.item.type && !options.force && !planned.item.block.empty()) {
            planned.refusal = "the document publishes it as another type (--force writes it anyway)";
        }
        planned.item.type = *options.type;
    }
    if (planned.item.block.empty() && !options.force) {
        planned.refusal = "the capability document does not publish it, so nothing can check "
                          "the value (--force writes it anyway)";
    }
    if (planned.refusal.empty()) {
        planned.value = Parse(session, planned.item, text, options.force, planned.refusal);
    }
    if (planned.refusal.empty() && !options.force) {
        planned.refusal = Forbidden(planned.item, planned.value.get());
    }
    if (!planned.refusal.empty()) {
        std::fprintf(stderr, "voractl: cannot set %s to %s: %s\n", Printable(planned.item.path()).c_str(),
                     Printable(text).c_str(), Printable(planned.refusal).c_str());
    }
    return planned;
}

// Writes a planned value and reads it back: its record, with how it went.
// Only a write that reads back as written succeeds; one of an id outside
// the document may have nothing to read.
json_t* Write(Session& session, const Planned& planned, int& exitStatus) {
    const Item& item = planned.item;
    JsonPtr sent = session.truth().toModule(item, planned.value.get());
    const uint32_t status = session.write(item, sent.get());
    const Reading back = session.read(item);
    std::string reason;
    const char* outcome = "written";
    if (status != VORADRV_STATUS_SUCCESS) {
        outcome = "failed";
        reason = StatusText(status);
        std::fprintf(stderr, "voractl: cannot set %s to %s: %s\n", Printable(item.path()).c_str(),
                     Printable(planned.text).c_str(), reason.c_str());
    } else if (!back.value) {
        outcome = "unverified";
        reason = "it cannot be read back: " + StatusText(back.status);
        std::fprintf(stderr, "voractl: set %s to %s, but %s\n", Printable(item.path()).c_str(),
                     Printable(planned.text).c_str(), reason.c_str());
    } else if (!Same(item, planned.value.get(), back.value.get())) {
        outcome = "differs";
        reason = "wrote " + DisplayValue(planned.value.get(), item) + ", the board reads " +
                 DisplayValue(back.value.get(), item);
        std::fprintf(stderr, "voractl: %s: %s\n", Printable(item.path()).c_str(), Printable(reason).c_str());
    }
    if (std::strcmp(outcome, "written") != 0 &&
        !(std::strcmp(outcome, "unverified") == 0 && item.block.empty())) {
        exitStatus = 1;
    }
    return Record(back, planned, outcome, reason);
}

}  // namespace

int Set(Context& context) {
    Session& session = context.session;
    std::vector<Planned> plan;
    bool refused = false;
    for (const auto& [selector, text] : Assignments(context.options.arguments)) {
        plan.push_back(Plan(session, context.options, selector, text));
        refused = refused || !plan.back().refusal.empty();
    }
    // One value refused, none is written.
    JsonPtr records = Own(json_array());
    int exitStatus = refused ? 1 : 0;
    for (const Planned& planned : plan) {
        if (refused) {
            Reading none;
            none.item = &planned.item;
            json_array_append_new(records.get(),
                                  Record(none, planned, planned.refusal.empty() ? "not written" : "refused",
                                         planned.refusal));
        } else {
            json_array_append_new(records.get(), Write(session, planned, exitStatus));
        }
    }
    if (context.options.json) {
        PrintJson(context.out, json_array_size(records.get()) == 1 ? json_array_get(records.get(), 0)
                                                                   : records.get());
    }
    return exitStatus;
}

}  // namespace voractl
