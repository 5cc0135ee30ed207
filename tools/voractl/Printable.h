// Texts from the board shown to a person. Names and values come from the
// board library, a board profile or a recording, and a terminal obeys what
// it is sent: an escape sequence in a sensor's name would colour the screen,
// retitle the window or move the cursor, a newline or a tab would break the
// table. voractl's human output shows such texts escaped, as `ls -b` and
// systemctl do; its JSON output needs nothing of this (jansson writes JSON's
// own escapes).
#pragma once

#include <string>

namespace voractl {

// `text` with what a terminal would obey written as C escapes: ESC as \e,
// newline, carriage return and tab as \n, \r and \t, a backslash as \\, and
// each byte of any other control character (C0, DEL, C1), of a Unicode line
// or paragraph separator or bidirectional control, and of anything that is
// not UTF-8, as \xNN. Printable UTF-8 is kept as it is.
std::string Printable(const std::string& text);

}  // namespace voractl
