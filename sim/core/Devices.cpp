#include "Devices.h"

#include "Units.h"

namespace vorasim {

uint32_t GetPinDirection(Call& call, unsigned int id, unsigned int mask, unsigned int* direction) {
    if (call.failsNow()) {
        return call.status();
    }
    const Pin* pin = call.board().pin(id);
    if (pin == nullptr || (mask & 1) == 0 || direction == nullptr) {
        return call.result(kUnsupported);
    }
    call.out(direction, pin->direction);
    return call.result(kOk);
}

uint32_t SetPinDirection(Call& call, unsigned int id, unsigned int mask, unsigned int direction) {
    if (call.failsNow()) {
        return call.status();
    }
    Pin* pin = call.board().pin(id);
    if (pin == nullptr || (mask & 1) == 0) {
        return call.result(kUnsupported);
    }
    const unsigned wanted = direction & mask & 1;
    if ((wanted == 1 && !pin->input) || (wanted == 0 && !pin->output)) {
        return call.result(kUnsupported);
    }
    pin->direction = wanted;
    call.changed();
    return call.result(kOk);
}

uint32_t GetPinLevel(Call& call, unsigned int id, unsigned int mask, unsigned int* level) {
    if (call.failsNow()) {
        return call.status();
    }
    const Pin* pin = call.board().pin(id);
    if (pin == nullptr || (mask & 1) == 0 || level == nullptr) {
        return call.result(kUnsupported);
    }
    call.out(level, pin->level);
    return call.result(kOk);
}

uint32_t SetPinLevel(Call& call, unsigned int id, unsigned int mask, unsigned int level) {
    if (call.failsNow()) {
        return call.status();
    }
    Pin* pin = call.board().pin(id);
    if (pin == nullptr || (mask & 1) == 0 || pin->direction != 0) {
        return call.result(kUnsupported);
    }
    pin->level = level & mask & 1;
    call.changed();
    return call.result(kOk);
}

uint32_t GetPanelBrightness(Call& call, unsigned int id, unsigned int* brightness) {
    if (call.failsNow()) {
        return call.status();
    }
    const Panel* panel = call.board().panel(id);
    if (panel == nullptr || !panel->brightness || brightness == nullptr) {
        return call.result(kUnsupported);
    }
    call.out(brightness, *panel->brightness);
    return call.result(kOk);
}

uint32_t SetPanelBrightness(Call& call, unsigned int id, unsigned int brightness) {
    if (call.failsNow()) {
        return call.status();
    }
    Panel* panel = call.board().panel(id);
    if (panel == nullptr || !panel->brightness) {
        return call.result(kUnsupported);
    }
    if (brightness < panel->minimum || brightness > panel->maximum) {
        return call.result(kInvalidParameter);
    }
    panel->brightness = brightness;
    call.changed();
    return call.result(kOk);
}

}  // namespace vorasim
