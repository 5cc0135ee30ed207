// Binding of a PICMG Embedded API library "libEApi" (functions in
// EApiLibrary.h). Its initialise reports success as 0.
#pragma once

#include "binding/Binding.h"
#include "binding/EApiLibrary.h"

class ECTL2Handle : public voradrv::Binding<ECTL2Handle, 0> {
public:
    EAPI_LIBRARY(VORADRV_INIT_FORWARDER, VORADRV_FORWARDER)

private:
    friend class voradrv::Binding<ECTL2Handle, 0>;
    ECTL2Handle();
    EAPI_LIBRARY(VORADRV_POINTER, VORADRV_POINTER)
};
