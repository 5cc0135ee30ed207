// The forms a text setting must have before voractl sends it to the
// module: what the board takes, said strictly, so that a typing slip is
// refused here with a reason rather than by the board with a status, or,
// worse, taken in a form nobody meant.
#pragma once

#include <string>

#include "Items.h"

namespace voractl {

// Why `text` may not be written to `item`; "" when it may.
std::string TextRefusal(const Item& item, const std::string& text);

// " (/24)" after a netmask item's value "255.255.255.0", as a network's
// prefix length is written; "" for any other item or value.
std::string PrefixNote(const Item& item, const std::string& value);

}  // namespace voractl
