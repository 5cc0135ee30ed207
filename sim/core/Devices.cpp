#include "Devices.h"

#include "Units.h"

namespace vorasim {

namespace {

// A pin's direction or level: bit 0 of `mask` selects the pin.
uint32_t GetPin(Call& call, unsigned int id, unsigned int mask, unsigned int* out,
                unsigned Pin::*field) {
    call.note("mask", mask);
    if (call.failsNow()) {
        return call.status();
    }
    const Pin* pin = call.board().pin(id);
    if (pin == nullptr || (mask & 1) == 0 || out == nullptr) {
        return call.result(kUnsupported);
    }
    call.out(out, pin->*field);
    return call.result(kOk);
}

}  // namespace

uint32_t Initialise(Call& call, uint32_t ok, uint32_t failed) {
    if (call.failsNow()) {
        return call.status();
    }
    return call.result(call.sim().usable() ? ok : failed);
}

uint32_t BoardText(Call& call, const std::string* text, char* buffer, unsigned int* length) {
    if (length != nullptr) {
        call.note("size", *length);
    }
    if (call.failsNow()) {
        return call.status();
    }
    if (text == nullptr) {
        return call.result(kUnsupported);
    }
    return call.text(*text, buffer, length, kOk, kMoreData);
}

const uint32_t* BoardValue(const Board& board, unsigned int id, unsigned values) {
    if (id < values) {
        return board.value(kValueKeys[id]);
    }
    if (id >= 0x10000 && id <= 0x10002) {
        return board.value(kVersionKeys[id - 0x10000]);
    }
    return nullptr;
}

uint32_t GetPinDirection(Call& call, unsigned int id, unsigned int mask, unsigned int* direction) {
    return GetPin(call, id, mask, direction, &Pin::direction);
}

uint32_t SetPinDirection(Call& call, unsigned int id, unsigned int mask, unsigned int direction) {
    call.note("mask", mask).note("direction", direction);
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
    return GetPin(call, id, mask, level, &Pin::level);
}

uint32_t SetPinLevel(Call& call, unsigned int id, unsigned int mask, unsigned int level) {
    call.note("mask", mask).note("level", level);
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
    call.note("value", brightness);
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

uint32_t GetPanelEnable(Call& call, unsigned int id, unsigned int* enable, uint32_t on, uint32_t off) {
    if (call.failsNow()) {
        return call.status();
    }
    const Panel* panel = call.board().panel(id);
    if (panel == nullptr || !panel->enable || enable == nullptr) {
        return call.result(kUnsupported);
    }
    call.out(enable, *panel->enable ? on : off);
    return call.result(kOk);
}

uint32_t SetPanelEnable(Call& call, unsigned int id, unsigned int enable, uint32_t on, uint32_t off) {
    call.note("value", enable);
    if (call.failsNow()) {
        return call.status();
    }
    Panel* panel = call.board().panel(id);
    if (panel == nullptr || !panel->enable) {
        return call.result(kUnsupported);
    }
    if (enable != on && enable != off) {
        return call.result(kInvalidParameter);
    }
    panel->enable = enable == on;
    call.changed();
    return call.result(kOk);
}

}  // namespace vorasim
