// Every exception ends voractl with one line on standard error and the
// exit status its kind is documented with.
#include <gtest/gtest.h>

#include <cerrno>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>

#include "ModuleHost.h"
#include "ToolError.h"
#include "files/Path.h"

using namespace voractl;

namespace {

TEST(ExitFor, EachKindOfExceptionEndsInOneLineAndItsStatus) {
    const struct {
        std::exception_ptr error;
        int status;
        const char* line;
    } cases[] = {
        {std::make_exception_ptr(ToolError("no board library")), 1, "voractl: no board library\n"},
        {std::make_exception_ptr(ToolError("unknown command \"lst\"", true)), 2,
         "voractl: unknown command \"lst\"\n"},
        {std::make_exception_ptr(voradrv::host::LoadError("cannot load the module m.so")), 1,
         "voractl: cannot load the module m.so\n"},
        {std::make_exception_ptr(std::bad_alloc()), 3, "voractl: out of memory\n"},
        {std::make_exception_ptr(std::bad_array_new_length()), 3, "voractl: out of memory\n"},
        {std::make_exception_ptr(std::system_error(EAGAIN, std::generic_category(), "thread")), 3,
         "voractl: the system refused a resource: thread: Resource temporarily unavailable\n"},
        // A file error that reached main was not said with its file: a fault.
        {std::make_exception_ptr(vorafiles::FileError("it is a FIFO")), 4,
         "voractl: internal error: it is a FIFO\n"},
        {std::make_exception_ptr(std::out_of_range("vector::_M_range_check")), 4,
         "voractl: internal error: vector::_M_range_check\n"},
        {std::make_exception_ptr(42), 4, "voractl: internal error: an exception of unknown type\n"},
    };
    for (const auto& c : cases) {
        testing::internal::CaptureStderr();
        const int status = ReportFailure(nullptr, c.error);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), c.line);
        EXPECT_EQ(status, c.status) << c.line;
    }
    testing::internal::CaptureStderr();
    ReportFailure("cannot sample the board", std::make_exception_ptr(std::bad_alloc()));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "voractl: cannot sample the board: out of memory\n");
}

}  // namespace
