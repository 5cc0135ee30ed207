#include "Vora3BKL.h"

#include <utility>

#include "binding/VORA3Handle.h"
#include "module/Status.h"

namespace {

// The library reports success as 1.
constexpr uint32_t kLibraryOk = 1;
constexpr uint32_t kBrightnessId = 0x1050501;
constexpr uint32_t kPanelGroupId = 0x1050101;

uint32_t Mapped(uint32_t result) { return result == kLibraryOk ? STATUS_SUCCESS : result; }

}  // namespace

Vora3BKL::Vora3BKL() { items.reserve(3); }

void Vora3BKL::createIPSOBKLPackage() {
    // Without a range or a brightness there is nothing to publish.
    unsigned char minimum = 0;
    unsigned char maximum = 0;
    unsigned char step = 0;  // not used
    unsigned char brightness = 0;
    if (VORA3Handle::mVoraVCGetBrightRange(&minimum, &maximum, &step) != kLibraryOk ||
        VORA3Handle::mVoraVCGetBright(&brightness) != kLibraryOk) {
        return;
    }
    voradrv::JsonHolder array(json_array());
    appendControl(array.get(), "brightness", "Brightness", "v", brightness, maximum, minimum,
                  kBrightnessId, "Step");
    publishPanel("VGA", std::move(array), kPanelGroupId);
}

uint32_t Vora3BKL::VoraIoTGetMDValue(uint32_t id, json_t* value) {
    if (!isInteger(value)) {
        return STATUS_INVALID_VALUE;
    }
    if ((id & 0xFFFFFF00u) != kBrightnessKind) {
        return STATUS_NOT_FOUND;
    }
    unsigned char brightness = 0;
    if (VORA3Handle::mVoraVCGetBright(&brightness) != kLibraryOk) {
        return STATUS_ERROR;
    }
    json_integer_set(value, brightness);
    return STATUS_SUCCESS;
}

uint32_t Vora3BKL::VoraIoTSetMDValue(uint32_t id, json_t* value) {
    if (!isInteger(value)) {
        return STATUS_INVALID_VALUE;
    }
    const auto v = static_cast<uint32_t>(json_integer_value(value));
    switch (id & 0xFFFFFF00u) {
        case kOnOffKind:
            if (v == 1) {
                return Mapped(VORA3Handle::mVoraVCScreenOn());
            }
            if (v == 0) {
                return Mapped(VORA3Handle::mVoraVCScreenOff());
            }
            return STATUS_ERROR;  // no call for any other state
        case kBrightnessKind:
            return Mapped(VORA3Handle::mVoraVCSetBright(static_cast<unsigned char>(v)));
        default:
            return STATUS_NOT_FOUND;
    }
}
