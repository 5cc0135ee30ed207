// Binding of the third-generation board library "libVORA-3.02" (functions
// in Vora3Library.h). Its initialise reports success as exactly 1.
#pragma once

#include "binding/Binding.h"
#include "binding/Vora3Library.h"

class VORA3Handle : public voradrv::Binding<VORA3Handle, 1> {
public:
    VORA3_LIBRARY(VORADRV_INIT_FORWARDER, VORADRV_FORWARDER)

private:
    friend class voradrv::Binding<VORA3Handle, 1>;
    VORA3Handle();
    VORA3_LIBRARY(VORADRV_POINTER, VORADRV_POINTER)
};
