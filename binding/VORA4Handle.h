// Binding of the fourth-generation board library "libVORA-4.00" (functions
// in Vora4Library.h). Its initialise reports success as 0.
#pragma once

#include "binding/Binding.h"
#include "binding/Vora4Library.h"

class VORA4Handle : public voradrv::Binding<VORA4Handle, 0> {
public:
    VORA4_LIBRARY(VORADRV_INIT_FORWARDER, VORADRV_FORWARDER)

private:
    friend class voradrv::Binding<VORA4Handle, 0>;
    VORA4Handle();
    VORA4_LIBRARY(VORADRV_POINTER, VORADRV_POINTER)
};
