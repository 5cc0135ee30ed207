#include "eCtl2BKL.h"

#include <cstdio>
#include <utility>

#include "binding/ECTL2Handle.h"
#include "module/Status.h"

namespace {

constexpr unsigned kPanels = 3;
constexpr uint32_t kBrightnessMaximum = 100;
constexpr unsigned int kNameSize = 32;
// The library's enable values.
constexpr unsigned int kEnableOn = 0;
constexpr unsigned int kEnableOff = 0xFFFFFFFF;


}  // namespace

// Room for two panels; a third grows the vector.
eCtl2BKL::eCtl2BKL() { items.reserve(2); }

void eCtl2BKL::createIPSOBKLPackage() {
    for (unsigned panel = 0; panel < kPanels; ++panel) {
        unsigned int brightness = 0;
        if (ECTL2Handle::mEApiVgaGetBacklightBrightness(panel, &brightness) != STATUS_SUCCESS) {
            continue;
        }
        // The on/off read is not checked; one the library cannot answer
        // publishes 0.
        unsigned int enable = 0;
        ECTL2Handle::mEApiVgaGetBacklightEnable(panel, &enable);
        // Panels are numbered from 1 in names and ids.
        const unsigned n = panel + 1;
        char name[kNameSize];
        std::snprintf(name, sizeof name, "Backlight %u", n);
        idtoLibIDMap[kOnOffKind + n] = panel;
        idtoLibIDMap[kBrightnessKind + n] = panel;
        voradrv::JsonHolder array(json_array());
        appendControl(array.get(), "backlight", "Backlight", "bv", enable != 0 ? 1 : 0, 1, 0,
                      kOnOffKind + n, "ON/OFF");
        appendControl(array.get(), "brightness", "Brightness", "v", brightness,
                      kBrightnessMaximum, 0, kBrightnessKind + n, "Step");
        if (!publishPanel(name, std::move(array), 0x1050100 + n)) {
            return;
        }
    }
}

uint32_t eCtl2BKL::VoraIoTGetMDValue(uint32_t id, json_t* value) {
    unsigned int panel = 0;
    if (const uint32_t status = findPanel(id, value, panel); status != STATUS_SUCCESS) {
        return status;
    }
    unsigned int v = 0;
    uint32_t status;
    switch (id & 0xFFFFFF00u) {
        case kOnOffKind:
            status = ECTL2Handle::mEApiVgaGetBacklightEnable(panel, &v);
            v = v != 0 ? 1 : 0;
            break;
        case kBrightnessKind:
            status = ECTL2Handle::mEApiVgaGetBacklightBrightness(panel, &v);
            break;
        default: return STATUS_NOT_FOUND;
    }
    return answerRead(status, value, v);
}

uint32_t eCtl2BKL::VoraIoTSetMDValue(uint32_t id, json_t* value) {
    unsigned int panel = 0;
    if (const uint32_t status = findPanel(id, value, panel); status != STATUS_SUCCESS) {
        return status;
    }
    const auto v = static_cast<uint32_t>(json_integer_value(value));
    switch (id & 0xFFFFFF00u) {
        case kOnOffKind:
            return ECTL2Handle::mEApiVgaSetBacklightEnable(panel,
                                                         v == 0 ? kEnableOff : kEnableOn);
        case kBrightnessKind:
            return ECTL2Handle::mEApiVgaSetBacklightBrightness(panel, v);
        default: return STATUS_NOT_FOUND;
    }
}
