// How long a simulated call takes: a fault's latency, a recording's pace, or
// a call that never returns. Each sleeps (it costs no processor time) and
// goes on sleeping through signals, so only the end of the process ends it.
#pragma once

#include "Board.h"

namespace vorasim {

// Sleeps `seconds`, all of them.
void Wait(double seconds);

// Sleeps until the process ends.
[[noreturn]] void Hang();

// Makes the calling call take as long as `fault` says: its latency and a
// random part of its jitter, or for ever.
void Delay(const Fault& fault);

}  // namespace vorasim
