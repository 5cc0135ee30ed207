// FuncINFO: the platform-information family. Its package is a single group
// object holding every information item.
#pragma once

#include "function/Function.h"

class FuncINFO : public Function {
public:
    // The platform-information block for the board library that is up.
    static Function* instance();

    // Releases the package.
    ~FuncINFO() override;

    // Fills an array through createIPSOInfoPackage and wraps it as the
    // package. A block with no item is an error here, unlike other families.
    uint32_t VoraIoTInitialize() override;
    uint32_t VoraIoTUninitialize() override;
    uint32_t VoraIoTGetMDCapability(json_t* capability) override;
    uint32_t VoraIoTSetMDEventHandler(VoraIoTEventHandler handler) override;

    // Appends the block's elements to `array`.
    virtual void createIPSOInfoPackage(json_t* array);

protected:
    FuncINFO();

    json_t* package = nullptr;
};
