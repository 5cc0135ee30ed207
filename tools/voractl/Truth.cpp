#include "Truth.h"
#include "json/JsonPtr.h"

using vorajson::JsonPtr;
using vorajson::Own;

namespace voractl {

namespace {

// On an Embedded API library a panel's on/off reads 0 for a lit panel.
bool Inverted(const std::string& generation, const Item& item) {
    return generation == "eapi" && item.panelSwitch();
}

// A unit the module gives in the library's own unit on this library.
bool Converted(const std::string& generation, const Item& item) {
    const Conversion& conversion = item.kind().conversion;
    return conversion.generation != nullptr && generation == conversion.generation;
}

}  // namespace

bool Truth::libraryUnit(const Item& item) const { return Converted(generation_, item); }

bool Truth::converts(const Item& item) const {
    return !raw_ && (Converted(generation_, item) || Inverted(generation_, item));
}

JsonPtr Truth::shown(const Item& item, const json_t* read) const {
    if (converts(item) && json_is_number(read)) {
        const double value = json_number_value(read);
        if (Inverted(generation_, item)) {
            return Own(json_integer(value == 0.0 ? 1 : 0));  // the library says 0 for on
        }
        return Own(json_real(item.kind().conversion.toTrue(value)));
    }
    return Own(json_deep_copy(read));
}

bool Truth::alarm(const Item& item, const json_t* read) const {
    // The limits are published in the true unit (degrees Celsius on every
    // library), so they are held against the true value.
    const JsonPtr value = Truth(generation_, false).shown(item, read);
    return json_is_number(value.get()) && item.outside(json_number_value(value.get()));
}

JsonPtr Truth::toModule(const Item&, const json_t* value) const {
    // Writing an Embedded API panel's on/off already takes 1 for on; no
    // other converted item can be written.
    return Own(json_deep_copy(value));
}

}  // namespace voractl
