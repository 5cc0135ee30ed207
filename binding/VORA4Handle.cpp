#include "VORA4Handle.h"

VORA4Handle::VORA4Handle() {
    _handle = voradrv::LibLoad("libVORA-4.00");
    VORA4_LIBRARY(VORADRV_BIND, VORADRV_BIND)
}
