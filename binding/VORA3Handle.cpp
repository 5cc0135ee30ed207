#include "VORA3Handle.h"

VORA3Handle::VORA3Handle() {
    _handle = voradrv::LibLoad("libVORA-3.02");
    VORA3_LIBRARY(VORADRV_BIND, VORADRV_BIND)
}
