#include "ToolError.h"

#include <cstdio>
#include <new>
#include <system_error>

#include "ModuleHost.h"

namespace voractl {

Exit ExitFor(const std::exception_ptr& error) noexcept {
    if (error == nullptr) {
        return {kExitInternal, "internal error: a failure without an exception", ""};
    }
    try {
        std::rethrow_exception(error);
    } catch (const ToolError& e) {
        return {e.usage() ? kExitUsage : kExitFailure, e.what(), ""};
    } catch (const voradrv::host::LoadError& e) {
        return {kExitFailure, e.what(), ""};
    } catch (const std::bad_alloc&) {
        return {kExitResource, "out of memory", ""};
    } catch (const std::system_error& e) {
        // A thread, a lock: what the system would not give.
        return {kExitResource, "the system refused a resource: ", e.what()};
    } catch (const std::exception& e) {
        return {kExitInternal, "internal error: ", e.what()};
    } catch (...) {
        return {kExitInternal, "internal error: an exception of unknown type", ""};
    }
}

int ReportFailure(const char* doing, const std::exception_ptr& error) noexcept {
    const Exit exit = ExitFor(error);
    std::fflush(stdout);
    std::fprintf(stderr, "voractl: %s%s%s%s\n", doing != nullptr ? doing : "",
                 doing != nullptr ? ": " : "", exit.reason, exit.detail);
    return exit.status;
}

}  // namespace voractl
