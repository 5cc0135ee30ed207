#include "HeapUse.h"

#include <malloc.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#if defined(__SANITIZE_ADDRESS__)
// The sanitizer run-time's count of bytes allocated and not yet freed (its
// header is not installed with every compiler).
extern "C" size_t __sanitizer_get_current_allocated_bytes(void);
#endif

namespace vtest {

namespace {
[[maybe_unused]] constexpr char kNoCache[] = "glibc.malloc.tcache_count=0";
}  // namespace

size_t HeapInUse() {
#if defined(__SANITIZE_ADDRESS__)
    return __sanitizer_get_current_allocated_bytes();
#else
    return mallinfo2().uordblks;
#endif
}

void ExactHeapFigures(char** argv) {
#if !defined(__SANITIZE_ADDRESS__)
    const char* tunables = std::getenv("GLIBC_TUNABLES");
    if (tunables == nullptr || std::strstr(tunables, kNoCache) == nullptr) {
        const std::string setting = tunables == nullptr || *tunables == '\0'
                                        ? kNoCache
                                        : std::string(tunables) + ":" + kNoCache;
        setenv("GLIBC_TUNABLES", setting.c_str(), 1);
        execv("/proc/self/exe", argv);
    }
#else
    (void)argv;
#endif
}

bool UnderMemcheck() {
    const char* memcheck = std::getenv("VTEST_MEMCHECK");
    return memcheck != nullptr && std::strcmp(memcheck, "1") == 0;
}

size_t ResidentKiB() {
    std::ifstream statm("/proc/self/statm");
    size_t pages = 0;
    size_t resident = 0;
    statm >> pages >> resident;
    return resident * static_cast<size_t>(sysconf(_SC_PAGESIZE)) / 1024;
}

}  // namespace vtest
