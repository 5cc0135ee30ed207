// The seven entry points the host calls. Everything else in the module is
// hidden from the host.
#include <cstdio>
#include <exception>

#include "binding/ECTL2Handle.h"
#include "binding/VORA3Handle.h"
#include "binding/VORA4Handle.h"
#include "function/FuncBKL.h"
#include "function/FuncGPIO.h"
#include "function/FuncHWM.h"
#include "function/FuncINFO.h"
#include "function/FuncNetwork.h"
#include "function/JsonHolder.h"
#include "module/LibraryProbe.h"
#include "module/ModuleState.h"
#include "module/Status.h"
#include "voradrv.h"

#define VORADRV_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

constexpr size_t kBlockCount = 5;

// No C++ exception may cross into the host: one that escapes a call (memory
// exhausted, say) becomes STATUS_ERROR.
template <typename Body>
uint32_t Guarded(Body body) {
    try {
        return body();
    } catch (...) {
        return STATUS_ERROR;
    }
}

// Uninitialised after having been initialised: the routing map is still
// filled but no block is there any more.
bool ShutDown() { return functions.empty() && !dispatchIDMap.empty(); }

void ReleaseDocument() {
    if (jasonCapabilityPackage != nullptr) {
        json_object_clear(jasonCapabilityPackage);
        json_decref(jasonCapabilityPackage);
        jasonCapabilityPackage = nullptr;
    }
}

void DeleteBlocks() {
    for (Function* block : functions) {
        delete block;
    }
    functions.clear();
    functions.shrink_to_fit();
}

// The block that answers for `id`, or null (with the caller's "function id
// not found" message printed).
Function* BlockFor(uint32_t id, const char* notFound) {
    const int index = getFunctionIndex(id);
    if (index < 0 || static_cast<size_t>(index) >= functions.size() ||
        functions[static_cast<size_t>(index)] == nullptr) {
        std::puts(notFound);
        return nullptr;
    }
    return functions[static_cast<size_t>(index)];
}

uint32_t BuildCapabilityDocument() {
    // A document left from an earlier initialise is released, not leaked:
    // the host's copies hold the block objects by reference of their own.
    ReleaseDocument();
    jasonCapabilityPackage = json_object();
    for (size_t i = 0; i < functions.size(); ++i) {
        Function* block = functions[i];
        if (block == nullptr) {
            continue;
        }
        // Held until here: the document takes a reference of its own, and the
        // block's name (a copy) may fail to be made.
        voradrv::JsonHolder capability(json_object());
        const uint32_t status = block->VoraIoTGetMDCapability(capability.get());
        if (status == STATUS_SUCCESS) {
            json_object_set(jasonCapabilityPackage, block->getName().c_str(), capability.get());
        }
        if (status != STATUS_SUCCESS && status != STATUS_UNSUPPORTED) {
            std::printf("VORADrv create Cap: module:%d get cap failed\n", static_cast<int>(i));
            return status;
        }
    }
    if (jasonCapabilityPackage == nullptr || !json_is_object(jasonCapabilityPackage) ||
        json_object_size(jasonCapabilityPackage) == 0) {
        std::puts("VORADrv create Cap: json_pack failed...");
        return STATUS_ERROR;
    }
    return STATUS_SUCCESS;
}

uint32_t Initialize() {
    const uint32_t status = ProbeBoardLibrary();
    if (status != STATUS_SUCCESS) {
        return status;
    }
    // A second initialise without uninitialise appends five more blocks: the
    // earlier ones stay in the registry, are initialised again below and are
    // released by uninitialise with the rest. Each block enters the registry
    // as soon as it exists (the room is reserved first, so adding it cannot
    // fail): when creating the next one throws, the ones before are owned,
    // not lost.
    functions.reserve(functions.size() + kBlockCount);
    for (Function* (*create)() : {&FuncINFO::instance, &FuncHWM::instance, &FuncGPIO::instance,
                                  &FuncBKL::instance, &FuncNetwork::instance}) {
        functions.push_back(create());
    }

    for (Function* block : functions) {
        if (block == nullptr) {
            continue;
        }
        const uint32_t result = block->VoraIoTInitialize();
        if (result != STATUS_SUCCESS) {
            std::puts("VORADrvnInit: module Init failed");
            return result;
        }
    }
    for (size_t i = 0; i < functions.size(); ++i) {
        if (functions[i] != nullptr) {
            dispatchIDMap[functions[i]->getClassID()] = static_cast<uint32_t>(i);
        }
    }
    return BuildCapabilityDocument();
}

uint32_t Uninitialize() {
    ReleaseDocument();
    for (Function* block : functions) {
        if (block == nullptr) {
            continue;
        }
        const uint32_t result = block->VoraIoTUninitialize();
        if (result != STATUS_SUCCESS) {
            std::printf("VORADrv unInit: module unInit failed %s\n", block->getName().c_str());
            return result;
        }
    }
    DeleteBlocks();
    // The library stays loaded until the process ends.
    if (VORA4Handle::instance()->Avaliable()) {
        return VORA4Handle::mVoraLibUninitialize();
    }
    if (VORA3Handle::instance()->Avaliable()) {
        return VORA3Handle::mVoraDllUnInit();
    }
    if (ECTL2Handle::instance()->Avaliable()) {
        return ECTL2Handle::mEApiLibUnInitialize();
    }
    return STATUS_UNSUPPORTED;
}

uint32_t GetCapability(json_t* capability) {
    if (jasonCapabilityPackage == nullptr) {
        std::puts("VORADrv get Cap: jasonCapabilityPackage is null");
        return STATUS_UNSUPPORTED;
    }
    if (capability == nullptr) {
        std::puts("VORADrv get Cap: parameter json is null");
        return STATUS_ERROR;
    }
    if (json_object_update(capability, jasonCapabilityPackage) != 0) {
        std::puts("VORADrv get Cap: unable to update an empty object with an empty object");
        return STATUS_ERROR;
    }
    if (!json_is_object(capability) || json_object_size(capability) == 0) {
        std::puts("VORADrv Get Cap: Capability failed...");
        return STATUS_ERROR;
    }
    return STATUS_SUCCESS;
}

uint32_t GetValue(uint32_t id, json_t* value) {
    Function* block = BlockFor(id, "VORADrv get value: function id not found");
    if (block == nullptr) {
        return STATUS_UNSUPPORTED;
    }
    const uint32_t result = block->VoraIoTGetMDValue(id, value);
    if (result != STATUS_SUCCESS) {
        std::printf("VORADrv get value: function:%s get value failed %08x\n",
                    block->getName().c_str(), result);
    }
    return result;
}

uint32_t SetValue(uint32_t id, json_t* value) {
    Function* block = BlockFor(id, "VORADrv set value: function id not found");
    if (block == nullptr) {
        return STATUS_UNSUPPORTED;
    }
    const uint32_t result = block->VoraIoTSetMDValue(id, value);
    if (result != STATUS_SUCCESS) {
        std::printf("VORADrv set value: function:%s set value failed\n", block->getName().c_str());
    }
    return result;
}

uint32_t SetEventHandler(VoraIoTEventHandler handler) {
    if (ShutDown()) {
        return STATUS_UNSUPPORTED;
    }
    for (Function* block : functions) {
        if (block == nullptr) {
            continue;
        }
        const uint32_t result = block->VoraIoTSetMDEventHandler(handler);
        if (result != STATUS_SUCCESS) {
            std::printf("VORADrv set Event: function: %s set event failed\n",
                        block->getName().c_str());
            return result;
        }
    }
    return STATUS_SUCCESS;
}

}  // namespace

VORADRV_EXPORT uint32_t VoraIoTInitialize(void) { return Guarded(Initialize); }

VORADRV_EXPORT uint32_t VoraIoTUninitialize(void) { return Guarded(Uninitialize); }

VORADRV_EXPORT uint32_t VoraIoTGetModuleID(void) { return VORADRV_MODULE_ID; }

VORADRV_EXPORT uint32_t VoraIoTGetMDCapability(json_t* capability) {
    return Guarded([&] { return GetCapability(capability); });
}

VORADRV_EXPORT uint32_t VoraIoTGetMDValue(uint32_t id, json_t* value) {
    return Guarded([&] { return GetValue(id, value); });
}

VORADRV_EXPORT uint32_t VoraIoTSetMDValue(uint32_t id, json_t* value) {
    return Guarded([&] { return SetValue(id, value); });
}

VORADRV_EXPORT uint32_t VoraIoTSetMDEventHandler(VoraIoTEventHandler handler) {
    return Guarded([&] { return SetEventHandler(handler); });
}
