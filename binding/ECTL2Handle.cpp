#include "ECTL2Handle.h"

ECTL2Handle::ECTL2Handle() {
    _handle = voradrv::LibLoad("libEApi");
    EAPI_LIBRARY(VORADRV_BIND, VORADRV_BIND)
}
