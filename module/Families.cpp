// The families' factories. They are defined here, where the module assembles
// its blocks, because each knows every implementation of its family: the
// blocks derive from the families, and the families stay below them.
#include <type_traits>

#include "backlight/Vora3BKL.h"
#include "backlight/Vora4BKL.h"
#include "backlight/eCtl2BKL.h"
#include "binding/ECTL2Handle.h"
#include "binding/VORA3Handle.h"
#include "binding/VORA4Handle.h"
#include "gpio/Vora3GPIO.h"
#include "gpio/Vora4GPIO.h"
#include "gpio/eCtl2GPIO.h"
#include "hwm/Vora3HWM.h"
#include "hwm/Vora4HWM.h"
#include "hwm/eCtl2HWM.h"
#include "info/Vora3INFO.h"
#include "info/Vora4INFO.h"
#include "info/eCtl2INFO.h"
#include "network/Vora4Network.h"

namespace {

template <typename Block>
Function* Create(Function*& remembered) {
    if constexpr (!std::is_void_v<Block>) {
        remembered = new Block();
    }
    return remembered;
}

// A new block for the first library that is up, in the order fourth
// generation, third generation, EApi (`void` where the family has no block
// for that library); without a library, the block created last time (null
// if none). Every call with a library up creates a block; its owner is the
// module's registry, not the family.
template <typename Vora4, typename Vora3, typename EApi>
Function* CreateForLibrary(Function*& remembered) {
    if (VORA4Handle::instance()->Avaliable()) {
        return Create<Vora4>(remembered);
    }
    if (VORA3Handle::instance()->Avaliable()) {
        return Create<Vora3>(remembered);
    }
    if (ECTL2Handle::instance()->Avaliable()) {
        return Create<EApi>(remembered);
    }
    return remembered;
}

}  // namespace

Function* FuncINFO::instance() {
    static Function* remembered = nullptr;
    return CreateForLibrary<Vora4INFO, Vora3INFO, eCtl2INFO>(remembered);
}

Function* FuncHWM::instance() {
    static Function* remembered = nullptr;
    return CreateForLibrary<Vora4HWM, Vora3HWM, eCtl2HWM>(remembered);
}

Function* FuncGPIO::instance() {
    static Function* remembered = nullptr;
    return CreateForLibrary<Vora4GPIO, Vora3GPIO, eCtl2GPIO>(remembered);
}

Function* FuncBKL::instance() {
    static Function* remembered = nullptr;
    return CreateForLibrary<Vora4BKL, Vora3BKL, eCtl2BKL>(remembered);
}

// The out-of-band network block exists only on the fourth generation.
Function* FuncNetwork::instance() {
    static Function* remembered = nullptr;
    return CreateForLibrary<Vora4Network, void, void>(remembered);
}
