#include "HeapUse.h"

#include <malloc.h>
#include <unistd.h>

#include <fstream>

#if defined(__SANITIZE_ADDRESS__)
// The sanitizer run-time's count of bytes allocated and not yet freed (its
// header is not installed with every compiler).
extern "C" size_t __sanitizer_get_current_allocated_bytes(void);
#endif

namespace vtest {

size_t HeapInUse() {
#if defined(__SANITIZE_ADDRESS__)
    return __sanitizer_get_current_allocated_bytes();
#else
    return mallinfo2().uordblks;
#endif
}

size_t ResidentKiB() {
    std::ifstream statm("/proc/self/statm");
    size_t pages = 0;
    size_t resident = 0;
    statm >> pages >> resident;
    return resident * static_cast<size_t>(sysconf(_SC_PAGESIZE)) / 1024;
}

}  // namespace vtest
