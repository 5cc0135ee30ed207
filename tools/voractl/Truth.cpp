#include "Truth.h"
#include "json/JsonPtr.h"

#include <cmath>

using vorajson::JsonPtr;
using vorajson::Own;

namespace voractl {

namespace {

// 0 °C in the Embedded API's tenths of a kelvin.
constexpr double kZeroCelsius = 2731.0;

bool Temperature(const Item& item) { return item.block == "Hardware Monitor" && item.unit == "Cel"; }

bool PanelOnOff(const Item& item) { return item.block == "Backlight" && item.name == "Backlight"; }

}  // namespace

bool Truth::converts(const Item& item) const {
    return !raw_ && generation_ == "eapi" && (Temperature(item) || PanelOnOff(item));
}

JsonPtr Truth::shown(const Item& item, const json_t* read) const {
    if (converts(item) && json_is_number(read)) {
        const double value = json_number_value(read);
        if (Temperature(item)) {
            return Own(json_real(std::round(value - kZeroCelsius) / 10.0));
        }
        return Own(json_integer(value == 0.0 ? 1 : 0));  // the library says 0 for on
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
