#include "Vora4BKL.h"

#include <cstdio>
#include <utility>

#include "binding/VORA4Handle.h"
#include "module/Status.h"
#include "module/StringUtil.h"

namespace {

constexpr unsigned kPanels = 3;
constexpr unsigned int kBrightnessMaximum = 0x10000;  // display capability items
constexpr unsigned int kBrightnessMinimum = 0x10001;
constexpr unsigned int kPanelNameBase = 0x60000000;  // string id of panel 0's name
constexpr unsigned int kNameSize = 32;
constexpr uint32_t kFrequencyMaximum = 65535;


}  // namespace

Vora4BKL::Vora4BKL() { items.reserve(kPanels); }

void Vora4BKL::createIPSOBKLPackage() {
    // None of these three is reset between panels: a panel whose range the
    // library leaves alone shows the range read for the panel before.
    unsigned int maximum = 0;
    unsigned int minimum = 0;
    unsigned int length = kNameSize;
    for (unsigned panel = 0; panel < kPanels; ++panel) {
        voradrv::JsonHolder array;
        unsigned int v = 0;
        if (VORA4Handle::mVoraVgaGetBacklightBrightness(panel, &v) == STATUS_SUCCESS) {
            VORA4Handle::mVoraVgaGetCaps(panel, kBrightnessMaximum, &maximum);
            VORA4Handle::mVoraVgaGetCaps(panel, kBrightnessMinimum, &minimum);
            array.reset(json_array());
            idtoLibIDMap[kBrightnessKind + 1 + panel] = panel;
            appendControl(array.get(), "brightness", "Brightness", "v", v, maximum, minimum,
                          kBrightnessKind + 1 + panel, "Step");
        }
        // Frequency and polarity do not start the panel's array: without a
        // brightness their append fails and they are not published, though
        // they stay readable by id.
        v = 0;
        if (VORA4Handle::mVoraVgaGetFrequency(panel, &v) == STATUS_SUCCESS) {
            idtoLibIDMap[kFrequencyKind + 1 + panel] = panel;
            appendControl(array.get(), "frequency", "Frequency", "v", v, kFrequencyMaximum, 0,
                          kFrequencyKind + 1 + panel, "Hz");
        }
        v = 0;
        if (VORA4Handle::mVoraVgaGetPolarity(panel, &v) == STATUS_SUCCESS) {
            idtoLibIDMap[kPolarityKind + 1 + panel] = panel;
            appendControl(array.get(), "polarity", "Polarity", "bv", v, 1, 0,
                          kPolarityKind + 1 + panel, "ON/OFF");
        }
        v = 0;
        if (VORA4Handle::mVoraVgaGetBacklightEnable(panel, &v) == STATUS_SUCCESS) {
            idtoLibIDMap[kOnOffKind + 1 + panel] = panel;
            if (array == nullptr) {
                array.reset(json_array());
            }
            appendControl(array.get(), "backlight", "Backlight", "bv", v, 1, 0,
                          kOnOffKind + 1 + panel, "ON/OFF");
        }
        if (array == nullptr) {
            continue;
        }
        // The length word keeps what the previous name call left in it, but
        // never claims more than the buffer holds.
        char name[kNameSize] = {};
        length = length > kNameSize ? kNameSize : length;
        if (VORA4Handle::mVoraBoardGetStringA(kPanelNameBase | panel, name, &length) ==
            STATUS_SUCCESS) {
            name[kNameSize - 1] = '\0';  // whatever the library wrote
        } else {
            char fallback[16];
            std::snprintf(fallback, sizeof fallback, "BackLight%u", panel);
            StringCopy(name, fallback);
        }
        if (!publishPanel(name, std::move(array), 0x1050101 + panel)) {
            return;
        }
    }
}

uint32_t Vora4BKL::VoraIoTGetMDValue(uint32_t id, json_t* value) {
    unsigned int panel = 0;
    if (const uint32_t status = findPanel(id, value, panel); status != STATUS_SUCCESS) {
        return status;
    }
    unsigned int v = 0;
    uint32_t status;
    switch (id & 0xFFFFFF00u) {
        case kFrequencyKind: status = VORA4Handle::mVoraVgaGetFrequency(panel, &v); break;
        case kPolarityKind: status = VORA4Handle::mVoraVgaGetPolarity(panel, &v); break;
        case kOnOffKind: status = VORA4Handle::mVoraVgaGetBacklightEnable(panel, &v); break;
        case kBrightnessKind:
            status = VORA4Handle::mVoraVgaGetBacklightBrightness(panel, &v);
            break;
        default: return STATUS_NOT_FOUND;
    }
    return answerRead(status, value, v);
}

uint32_t Vora4BKL::VoraIoTSetMDValue(uint32_t id, json_t* value) {
    unsigned int panel = 0;
    if (const uint32_t status = findPanel(id, value, panel); status != STATUS_SUCCESS) {
        return status;
    }
    const auto v = static_cast<uint32_t>(json_integer_value(value));
    switch (id & 0xFFFFFF00u) {
        case kFrequencyKind: return VORA4Handle::mVoraVgaSetFrequency(panel, v);
        case kPolarityKind: return VORA4Handle::mVoraVgaSetPolarity(panel, v);
        case kBrightnessKind: return VORA4Handle::mVoraVgaSetBacklightBrightness(panel, v);
        case kOnOffKind: {
            unsigned int present = 0;
            const uint32_t status = VORA4Handle::mVoraVgaGetBacklightEnable(panel, &present);
            if (status != STATUS_SUCCESS) {
                return status;
            }
            if (present == v) {
                return STATUS_SUCCESS;
            }
            return VORA4Handle::mVoraVgaSetBacklightEnable(panel, v);
        }
        default: return STATUS_NOT_FOUND;
    }
}
