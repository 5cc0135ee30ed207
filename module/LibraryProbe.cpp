#include "LibraryProbe.h"

#include <cstdio>

#include "binding/ECTL2Handle.h"
#include "binding/VORA3Handle.h"
#include "binding/VORA4Handle.h"
#include "module/LibLoader.h"
#include "module/Status.h"
#include "module/StringUtil.h"

namespace {

// The second path of the third-generation and EApi steps is the
// fourth-generation file under /usr/lib64, as the probe has always done.
constexpr const char* kVora4Paths[] = {"/usr/lib/libVORA-4.00.so", "/usr/lib64/libVORA-4.00.so"};
constexpr const char* kVora3Paths[] = {"/usr/lib/libVORA-3.02.so", "/usr/lib64/libVORA-4.00.so"};
constexpr const char* kEApiPaths[] = {"/usr/lib/libEApi.so", "/usr/lib64/libVORA-4.00.so"};

bool Present(const char* const (&paths)[2]) {
    return FileExists(paths[0]) || FileExists(paths[1]);
}

}  // namespace

uint32_t ProbeBoardLibrary() {
    SysErrorMsgPoP(false);
    uint32_t status = STATUS_UNSUPPORTED;

    if (Present(kVora4Paths)) {
        status = VORA4Handle::instance()->mVoraLibInitialize();
        if (status == STATUS_SUCCESS || status == STATUS_ALREADY_INITIALIZED) {
            return status;
        }
        std::printf("[VORADrv] VORA4 can not load (0x%08X)\n", status);
    }
    if (Present(kVora3Paths)) {
        const uint32_t result = VORA3Handle::instance()->mVoraDllInit();
        if (result == 1) {
            return STATUS_SUCCESS;
        }
        status = result;
        std::printf("[VORADrv] VORA3 can not load (0x%08X)\n", result);
    }
    if (Present(kEApiPaths)) {
        status = ECTL2Handle::instance()->mEApiLibInitialize();
        if (status == STATUS_SUCCESS || status == STATUS_ALREADY_INITIALIZED) {
            return status;
        }
        std::printf("[VORADrv] ECTL2 can not load (0x%08X)\n", status);
    }
    SysErrorMsgPoP(true);
    return status;
}
